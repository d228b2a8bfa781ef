// For measurements without the driver: a window whose context can be detached. Every OpenGL call then returns at once
// from the empty function that the dispatch library (libglvnd) has for that case.
#pragma once
#include <GL/glew.h>

#include <cstdint>

#include "platform/CurrentContext.h"
#include "support/WindowProbe.h"

/// After DetachContext() no context is current, MakeCurrent() reports success nevertheless, and a swap shows nothing.
class DetachableWindow final : public WindowProbe {
public:
    using WindowProbe::WindowProbe;

    void DetachContext() {
        m_isDetached = true;
        ReleaseCurrentEgl();
        ReleaseCurrentGlx();
    }
    void AttachContext() {
        m_isDetached = false;
        MakeCurrent();
    }
    bool MakeCurrent() override {
        ++makeCurrents;
        return m_isDetached || WindowProbe::MakeCurrent();
    }
    void SwapBuffers() override {
        ++swaps;
        if (!m_isDetached) WindowProbe::SwapBuffers();
    }

    std::int64_t makeCurrents = 0, swaps = 0;

private:
    bool m_isDetached = false;
};

/// Whether OpenGL calls have no effect, both those that are linked and those that are loaded by name.
inline bool OpenGlCallsDoNothing() {
    GLuint name = 0;
    glGenBuffers(1, &name);
    return CurrentContext() == nullptr && glGetString(GL_VERSION) == nullptr && name == 0;
}
