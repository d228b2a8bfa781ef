// Finds an EGL display that needs no window system.
#include "platform/EglDisplay.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <string_view>
#include <vector>

namespace {

/// @param display  EGL_NO_DISPLAY for the extensions of the client library
bool HasExtension(EGLDisplay display, std::string_view name) {
    const char* const text = eglQueryString(display, EGL_EXTENSIONS);
    std::string_view rest = text == nullptr ? "" : text;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        if (word == name) return true;
        rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    }
    return false;
}

/// Null when the library does not have the function.
template <typename Function>
Function EntryPoint(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

/// In the order of preference.
std::vector<EGLDisplay> CandidateDisplays() {
    std::vector<EGLDisplay> displays;
    const auto getPlatformDisplay = EntryPoint<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (getPlatformDisplay != nullptr && HasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless"))
        displays.push_back(getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr));
    const auto queryDevices = EntryPoint<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    if (getPlatformDisplay != nullptr && queryDevices != nullptr &&
        HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device")) {
        std::array<EGLDeviceEXT, 32> devices{};
        EGLint count = 0;
        if (queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count) == EGL_TRUE)
            for (EGLint i = 0; i < count; ++i)
                displays.push_back(
                    getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)], nullptr));
    }
    displays.push_back(eglGetDisplay(EGL_DEFAULT_DISPLAY));
    return displays;
}

bool HasPbufferConfigs(EGLDisplay display) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    return eglChooseConfig(display, wanted, &config, 1, &count) == EGL_TRUE && count > 0;
}

/// EGL 1.5 has contexts by version and profile in its core; before it they are an extension.
EglDisplay Find() {
    for (const EGLDisplay display : CandidateDisplays()) {
        EGLint major = 0, minor = 0;
        if (display == EGL_NO_DISPLAY || eglInitialize(display, &major, &minor) != EGL_TRUE ||
            !HasPbufferConfigs(display))
            continue;
        const bool version15 = major > 1 || (major == 1 && minor >= 5);
        return {display, version15 || HasExtension(display, "EGL_KHR_create_context")};
    }
    return {};
}

}  // namespace

// A failure is not kept: a display may become available later, for example when a driver is loaded.
EglDisplay SharedEglDisplay(std::string* reason) {
    static std::mutex lock;
    static EglDisplay found;
    const std::lock_guard guard(lock);
    if (found.handle == nullptr) found = Find();
    if (found.handle == nullptr && reason != nullptr)
        *reason = "EGL offers no display that draws OpenGL without a window";
    return found;
}
