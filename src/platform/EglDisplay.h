// The EGL display of surfaces without a window system. The process has one.
#pragma once
#include <string>

struct EglDisplay {
    void* handle = nullptr;      ///< EGLDisplay, initialised; null when there is none
    bool createContext = false;  ///< contexts can be requested by version and profile
};

/// The first display that can make desktop OpenGL contexts with pbuffers, of these: the surfaceless platform, each
/// device, the default display. Any thread.
///
/// It is never terminated. EGL does not count users: eglGetPlatformDisplay() returns the same display to every caller
/// in the process, and one eglTerminate() ends it for all of them, the host's own use of EGL included.
/// @param reason  receives why there is none; a later call tries again. May be null
[[nodiscard]] EglDisplay SharedEglDisplay(std::string* reason);
