// The context that is current on a thread, whichever of GLX and EGL it came from.
#pragma once

/// Makes no GLX context current on this thread. While one is, EGL refuses to make its own current, and the reverse.
void ReleaseCurrentGlx();
void ReleaseCurrentEgl();

/// The context that is current on this thread as an opaque handle; null when there is none.
[[nodiscard]] void* CurrentContext();
