// Only the getters are called in an API that this thread does not use: they read a variable of the thread and load
// nothing.
#include "platform/CurrentContext.h"

#include <EGL/egl.h>
#include <GL/glew.h>
#include <GL/glx.h>

void ReleaseCurrentGlx() {
    if (glXGetCurrentContext() != nullptr) glXMakeCurrent(glXGetCurrentDisplay(), None, nullptr);
}

void ReleaseCurrentEgl() {
    if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

void* CurrentContext() {
    if (void* const context = eglGetCurrentContext()) return context;
    return glXGetCurrentContext();
}
