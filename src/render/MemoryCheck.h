// Finds out whether uploads failed because graphics memory is short.
#pragma once
#include <GL/glew.h>

#include <array>

/// Looks for GL_OUT_OF_MEMORY during its lifetime. Errors from before are set aside, since they would hide it, and
/// raised again at the end: whoever checks for errors after a frame still finds them.
class MemoryCheck {
public:
    MemoryCheck() {
        for (GLenum& error : m_older) {
            error = glGetError();
            if (error == GL_NO_ERROR) break;
        }
    }
    ~MemoryCheck() {
        for (const GLenum error : m_older) RaiseAgain(error);
    }
    MemoryCheck(const MemoryCheck&) = delete;
    MemoryCheck& operator=(const MemoryCheck&) = delete;

    [[nodiscard]] static bool HasFailed() {
        bool failed = false;
        // A lost context reports an error at every query: the number of queries is limited.
        for (int i = 0; i < 8; ++i) {
            const GLenum error = glGetError();
            if (error == GL_NO_ERROR) break;
            failed = failed || error == GL_OUT_OF_MEMORY;
        }
        return failed;
    }

private:
    /// Raises an error that was read, by a call that fails with it and changes nothing. The other errors have no such
    /// call.
    static void RaiseAgain(GLenum error) {
        if (error == GL_INVALID_ENUM) glEnable(GL_NONE);
        if (error == GL_INVALID_VALUE) glPointSize(0.0f);
        if (error == GL_INVALID_OPERATION) glEndList();
        if (error == GL_STACK_UNDERFLOW) glPopClientAttrib();
    }

    std::array<GLenum, 8> m_older{};  // OpenGL keeps at most one error of each kind
};
