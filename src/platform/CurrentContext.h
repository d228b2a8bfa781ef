// The OpenGL context that is current on the calling thread, of GLX or of EGL.
#pragma once
#include <cstdint>

/// Makes no GLX context current on this thread, or no EGL context. While one of GLX is current, EGL refuses to make its
/// own current, and the reverse.
void ReleaseCurrentGlx();
void ReleaseCurrentEgl();

/// The OpenGL version of the context that is current on this thread; the numbers are unchanged where it has none.
void ReadCurrentVersion(std::int32_t* major, std::int32_t* minor);

/// The context that is current on this thread as an opaque handle; null when there is none.
[[nodiscard]] void* CurrentContext();
