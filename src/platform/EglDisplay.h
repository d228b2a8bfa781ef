// The EGL display of surfaces without a window system; one for the process.
#pragma once
#include <string>

struct EglDisplay {
    void* handle = nullptr;      ///< EGLDisplay, initialised; null when there is none
    bool createContext = false;  ///< contexts can be asked for by version and profile
};

/// The first that can make desktop OpenGL contexts with pbuffers: the one without any platform, each device, the
/// default.
///
/// It is never terminated. EGL counts no users: eglGetPlatformDisplay() hands the same display to everybody in the
/// process, and one eglTerminate() ends it for all of them, the host's own use of EGL included. It is one per process
/// and is reused.
/// @param reason  takes why there is none; a later call tries again
[[nodiscard]] EglDisplay SharedEglDisplay(std::string* reason);
