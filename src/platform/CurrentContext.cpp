// Of the API that this thread does not use only the getters are called: they read a variable of the thread and load no
// driver.
#include "platform/CurrentContext.h"

#include <EGL/egl.h>
#include <GL/glew.h>
#include <GL/glx.h>

#include <charconv>
#include <string_view>
#include <system_error>

void ReleaseCurrentGlx() {
    if (glXGetCurrentContext() != nullptr) glXMakeCurrent(glXGetCurrentDisplay(), None, nullptr);
}

void ReleaseCurrentEgl() {
    if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

// From the text that every version has: "4.5 (Compatibility Profile) Mesa ...".
void ReadCurrentVersion(std::int32_t* major, std::int32_t* minor) {
    const auto* const text = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    const std::string_view version = text == nullptr ? "" : text;
    const char* const end = version.data() + version.size();
    std::int32_t first = 0, second = 0;
    const auto point = std::from_chars(version.data(), end, first);
    if (point.ec != std::errc() || point.ptr == end || *point.ptr != '.') return;
    if (std::from_chars(point.ptr + 1, end, second).ec != std::errc()) return;
    *major = first;
    *minor = second;
}

void* CurrentContext() {
    if (void* const context = eglGetCurrentContext()) return context;
    return glXGetCurrentContext();
}
