// A client like the viewer: makes its context in OnCreate(), clears and draws in OnPaint().
#pragma once
#include <GL/glew.h>

#include <array>
#include <cstdint>
#include <functional>
#include <ostream>
#include <vector>

#include "platform/PaneWindow.h"

struct Rgba {
    int r = 0, g = 0, b = 0, a = 255;
    bool operator==(const Rgba&) const = default;
};
inline void PrintTo(const Rgba& c, std::ostream* out) { *out << c.r << ' ' << c.g << ' ' << c.b << ' ' << c.a; }

/// A pixel of the last frame; (0, 0) is at the bottom left.
inline Rgba PixelAt(int x, int y) {
    std::array<std::uint8_t, 4> bytes{};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

/// Resolves the samples of the default framebuffer into one that PixelAt() reads afterwards. Reading a multisampled
/// framebuffer directly returns one of the samples on llvmpipe, not their mean.
inline void BindResolvedCopy(int width, int height) {
    GLuint framebuffer = 0, colors = 0;
    glGenFramebuffers(1, &framebuffer);
    glGenRenderbuffers(1, &colors);
    glBindRenderbuffer(GL_RENDERBUFFER, colors);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colors);
    glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
}

class DrawingClient final : public WindowClient {
public:
    /// @param window  must outlive the client; destroyed (not deleted) with it
    explicit DrawingClient(PaneWindow& window) : m_window(window) {}
    ~DrawingClient() { m_window.Destroy(); }
    DrawingClient(const DrawingClient&) = delete;
    DrawingClient& operator=(const DrawingClient&) = delete;

    int OnCreate() override {
        ++created;
        report = m_window.BeginBootstrap(context);
        std::int32_t format = 0;
        const bool found = report.contextMade && m_window.ChoosePixelFormat(pixelFormat, &format);
        m_window.EndBootstrap();
        if (!found) return -1;
        formatFound = true;
        if (!m_window.SetPixelFormat(format) || !m_window.CreateContext(context) || !m_window.MakeCurrent()) return -1;
        if (refreshInOnCreate) m_window.Refresh();
        return 0;
    }

    void OnDestroy() override {
        ++destroyed;
        currentInOnDestroy = m_window.MakeCurrent();
        if (onDestroy) onDestroy();
        if (deleteContextInOnDestroy) m_window.DeleteContext();
    }

    void OnPaint() override {
        ++paintCalls;
        if (blockPaint) return;
        lastErase = m_window.BeginPaint();
        if (m_window.MakeCurrent()) Draw();
        ++painted;
        if (onPaint) onPaint();
        m_window.EndPaint();
    }

    void OnPrivateMessage(std::uint32_t message) override {
        messages.push_back(message);
        if (onMessage) onMessage(message);
    }

    void OnMouse(const KV_ScenePane::MouseInput& input) override {
        mouse.push_back(input);
        if (onMouse) onMouse(input);
    }

    void OnKey(const KV_ScenePane::KeyInput& input) override {
        keys.push_back(input);
        if (onKey) onKey(input);
    }

    /// One colour, and a white square of ten pixels at the bottom left.
    void Draw() {
        const WindowSize size = m_window.ClientSize();
        glViewport(0, 0, size.width, size.height);
        glDisable(GL_SCISSOR_TEST);
        glClearColor(static_cast<float>(color.r) / 255.0f, static_cast<float>(color.g) / 255.0f,
                     static_cast<float>(color.b) / 255.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 10, 10);
        glClearColor(1.0f, 1.0f, 1.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        pixelInside = PixelAt(size.width - 1, size.height - 1);
        pixelInSquare = PixelAt(9, 9);
        error = glGetError();
        m_window.SwapBuffers();
    }

    // ---- what to do
    PixelFormatAttributes pixelFormat;
    ContextAttributes context;
    Rgba color{40, 120, 200};
    bool blockPaint = false;
    bool refreshInOnCreate = false;
    bool deleteContextInOnDestroy = true;
    std::function<void()> onPaint, onDestroy;
    std::function<void(std::uint32_t)> onMessage;
    std::function<void(const KV_ScenePane::MouseInput&)> onMouse;
    std::function<void(const KV_ScenePane::KeyInput&)> onKey;

    // ---- what happened
    BootstrapReport report;
    bool formatFound = false;
    int created = 0, destroyed = 0;
    int paintCalls = 0, painted = 0;
    bool lastErase = false;
    bool currentInOnDestroy = false;
    Rgba pixelInside, pixelInSquare;
    GLenum error = GL_NO_ERROR;
    std::vector<std::uint32_t> messages;
    std::vector<KV_ScenePane::MouseInput> mouse;
    std::vector<KV_ScenePane::KeyInput> keys;

private:
    PaneWindow& m_window;
};
