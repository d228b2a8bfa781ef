// Of the API that this thread does not use only the getters are called: they read a variable of the thread and load no
// driver.
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
