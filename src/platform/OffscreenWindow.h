// Drawing without a display server, into an EGL pbuffer. As in a window there is a default framebuffer.
#pragma once
#include "platform/EglDisplay.h"
#include "platform/QueuedWindow.h"

/// It has no pointer: cursors have no effect, a capture is only remembered. Contexts need no display and no window
/// manager, but an EGL display: see EglDisplay.h.
class OffscreenWindow final : public QueuedWindow {
public:
    explicit OffscreenWindow(const KV_ScenePane::WindowRequest& request)
        : QueuedWindow(request), m_nGpu(request.gpu), m_wanted{request.glMajor, request.glMinor} {}
    ~OffscreenWindow() override { Destroy(); }
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;

    /// False also once somebody in the process has terminated the EGL display.
    [[nodiscard]] bool Exists() const override;
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return 0; }
    bool Reparent(std::uintptr_t, std::int32_t, std::int32_t) override { return false; }
    /// Replaces the surface and queues a repaint. The context is kept, and remains current when it was.
    void Resize(std::int32_t width, std::int32_t height) override;

    BootstrapReport BeginBootstrap(const ContextAttributes& wanted) override;
    bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) override;
    void EndBootstrap() override;
    bool SetPixelFormat(std::int32_t format) override;
    bool CreateContext(const ContextAttributes& attributes) override;
    bool MakeCurrent() override;
    void DeleteContext() override;
    [[nodiscard]] void* ContextHandle() const override { return m_pContext; }
    void SwapBuffers() override;
    [[nodiscard]] std::string DeviceName() const override { return m_display.name; }

    void SetCapture() override { m_bCapture = Exists(); }
    void ReleaseCapture() override { m_bCapture = false; }
    [[nodiscard]] bool HasCapture() const override { return m_bCapture; }
    void SetCursor(PaneCursor) override {}
    void BeginWaitCursor() override {}
    void EndWaitCursor() override {}

protected:
    bool Open(std::string* reason) override;
    void Close() override;

private:
    const int m_nGpu;            ///< as WindowRequest::gpu
    ContextAttributes m_wanted;  ///< of the last context
    EglDisplay m_display;
    // EGLConfig, EGLSurface, EGLContext without the EGL headers: these include those of X11 with their macros.
    void* m_pConfig = nullptr;
    void* m_pSurface = nullptr;
    void* m_pContext = nullptr;
    void* m_pBootstrapSurface = nullptr;
    void* m_pBootstrapContext = nullptr;
    bool m_bCapture = false;
};
