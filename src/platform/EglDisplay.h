// The EGL displays of surfaces without a window system. The process shares them; in which order they are tried is
// EglCandidates.h.
#pragma once
#include <cstdint>
#include <string>

#include "platform/PaneWindow.h"

struct EglDisplay {
    void* handle = nullptr;        ///< EGLDisplay, initialised; null when there is none
    bool createContext = false;    ///< contexts can be requested by version and profile
    std::string name;              ///< of the device, for a report to the user
    std::uint32_t generation = 0;  ///< number of its initialisation, see IsEglDisplayAlive()
};

/// A display that makes desktop OpenGL contexts with pbuffers. Any thread.
///
/// It is never terminated. EGL does not count users: eglGetPlatformDisplay() returns the same display to every caller
/// in the process, and one eglTerminate() ends it for all of them, the host's own use of EGL included. A display that
/// the host has terminated is initialised again.
/// @param gpu     as WindowRequest::gpu
/// @param wanted  a display without this version is passed over; when none has it, the first that draws at all is
///                returned, and refuses the context itself
/// @param reason  receives why there is none; a later call tries again. May be null
[[nodiscard]] EglDisplay SharedEglDisplay(int gpu, const ContextAttributes& wanted, std::string* reason);

/// False once somebody has terminated the display, also when it was initialised again since: its surfaces and contexts
/// are gone then, and their handles may belong to others. Any thread.
[[nodiscard]] bool IsEglDisplayAlive(const EglDisplay& display);

/// The smallest configuration of pbuffers that has the attributes, with exactly the samples; null when there is none.
/// @param display  EGLDisplay
[[nodiscard]] void* FindEglConfig(void* display, const PixelFormatAttributes& attributes);

/// A context in the compatibility profile that shares with no other; null when the driver refuses it.
/// @param display, config  EGLDisplay and EGLConfig
[[nodiscard]] void* CreateEglContext(void* display, void* config, const ContextAttributes& wanted);

/// Binds desktop OpenGL as this thread's EGL API while it lives, and the former one after that: the host may make
/// OpenGL ES contexts.
class ScopedDesktopOpenGl {
public:
    ScopedDesktopOpenGl();
    ~ScopedDesktopOpenGl();
    ScopedDesktopOpenGl(const ScopedDesktopOpenGl&) = delete;
    ScopedDesktopOpenGl& operator=(const ScopedDesktopOpenGl&) = delete;

private:
    unsigned int m_former;
};
