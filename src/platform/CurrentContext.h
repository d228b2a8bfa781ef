// The OpenGL context that is current on the calling thread, of GLX or of EGL.
#pragma once

/// Makes no GLX context current on this thread, or no EGL context. While one of GLX is current, EGL refuses to make its
/// own current, and the reverse.
void ReleaseCurrentGlx();
void ReleaseCurrentEgl();

/// The context that is current on this thread as an opaque handle; null when there is none.
[[nodiscard]] void* CurrentContext();
