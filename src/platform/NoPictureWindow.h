// A window without surface and OpenGL, for imports and their results. Messages and timers work as in every window.
#pragma once
#include "platform/CurrentContext.h"
#include "platform/QueuedWindow.h"

/// Create() does not run OnCreate(), so the client never tries to make a context. Paint requests are ignored: nothing
/// could show their result.
class NoPictureWindow final : public QueuedWindow {
public:
    explicit NoPictureWindow(const KV_ScenePane::WindowRequest& request) : QueuedWindow(request) {}
    ~NoPictureWindow() override { Destroy(); }
    NoPictureWindow(const NoPictureWindow&) = delete;
    NoPictureWindow& operator=(const NoPictureWindow&) = delete;

    [[nodiscard]] bool Exists() const override { return m_bOpen; }
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return 0; }
    bool Reparent(std::uintptr_t, std::int32_t, std::int32_t) override { return false; }
    void Resize(std::int32_t width, std::int32_t height) override { m_size = {width, height}; }

    // No request becomes pending: it could never be painted.
    void Refresh() override {}
    void Invalidate(bool) override {}

    BootstrapReport BeginBootstrap(const ContextAttributes&) override { return {}; }
    bool ChoosePixelFormat(const PixelFormatAttributes&, std::int32_t*) override { return false; }
    void EndBootstrap() override {}
    bool SetPixelFormat(std::int32_t) override { return false; }
    bool CreateContext(const ContextAttributes&) override { return false; }
    /// Always false; as in every window no context is current then.
    bool MakeCurrent() override {
        ReleaseCurrentGlx();
        ReleaseCurrentEgl();
        return false;
    }
    void DeleteContext() override {}
    [[nodiscard]] void* ContextHandle() const override { return nullptr; }
    void SwapBuffers() override {}

    void SetCapture() override {}
    void ReleaseCapture() override {}
    [[nodiscard]] bool HasCapture() const override { return false; }
    void SetCursor(PaneCursor) override {}
    void BeginWaitCursor() override {}
    void EndWaitCursor() override {}

protected:
    bool Open(std::string*) override { return m_bOpen = true; }
    bool RunOnCreate() override { return true; }
    void Close() override { m_bOpen = false; }

private:
    bool m_bOpen = false;
};
