// A window of an X server, a child of the host's window or top-level, drawn by GLX. Every window has a connection of
// its own: what the host does on its connections, and other viewers on theirs, never mixes with it.
#pragma once
#include <deque>
#include <memory>
#include <vector>

#include "platform/GlxContext.h"
#include "platform/QueuedWindow.h"
#include "platform/X11Connection.h"
#include "platform/X11Input.h"

union _XEvent;

/// The X window is made in SetPixelFormat(), with the visual of the format: X gives a window its visual for life.
class X11Window final : public QueuedWindow {
public:
    explicit X11Window(const PaneWindowRequest& request) : QueuedWindow(request), m_request(request) {}
    ~X11Window() override { Destroy(); }
    X11Window(const X11Window&) = delete;
    X11Window& operator=(const X11Window&) = delete;

    /// A drag and the keys go on in the new window.
    bool Recreate() override;
    [[nodiscard]] bool Exists() const override;
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return Exists() ? m_nWindow : 0; }
    bool Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) override;
    /// The size holds at once. A size that no X window can have changes nothing.
    void Resize(std::int32_t width, std::int32_t height) override;

    BootstrapReport BeginBootstrap() override;
    bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) override;
    void EndBootstrap() override;
    bool SetPixelFormat(std::int32_t format) override;
    bool CreateContext(const ContextAttributes& attributes) override;
    bool MakeCurrent() override;
    void DeleteContext() override;
    [[nodiscard]] void* ContextHandle() const override { return m_pGlx == nullptr ? nullptr : m_pGlx->Handle(); }
    void SwapBuffers() override;

    // The handlers' own note of a drag. X keeps the pointer with the window in which a button went down until all are
    // up, and more is not needed: a grab of ours could outlast the buttons, and nobody else on the screen would have
    // the pointer then.
    void SetCapture() override { m_bCapture = Exists(); }
    void ReleaseCapture() override { m_bCapture = false; }
    [[nodiscard]] bool HasCapture() const override { return m_bCapture; }
    void SetCursor(PaneCursor cursor) override;
    void BeginWaitCursor() override;
    void EndWaitCursor() override;

protected:
    bool Open(std::string* reason) override;
    void Close() override;
    void Show() override;
    void HandleSystemEvents() override;
    [[nodiscard]] bool SystemEventsWait() const override;

private:
    class RoundTrip;
    struct Parent {
        unsigned long window = 0;
        int screen = 0;
    };

    bool FindParent(std::uintptr_t handle, Parent* parent, std::string* reason);
    bool MakeWindow(const GlxContext::WindowFormat& format);
    void DescribeToWindowManager();
    /// The window system took the window, whether its event was handled or only waits.
    bool IsTaken();
    /// @param together  events that this one stands for
    void HandleEvent(const _XEvent& event, int together);
    void TakeConfiguration(const _XEvent& event);
    void TakeMouse(const _XEvent& event);
    void DispatchMouse(const std::vector<KV_ScenePane::MouseInput>& inputs);
    void TakeFocusChange(const _XEvent& event);
    [[nodiscard]] bool HasFocus();
    void TakeFocus();
    void ListenToKeys(bool listen);
    void ShowCursor();
    [[nodiscard]] bool IsChild() const { return m_request.kind == PaneWindowRequest::Kind::Child; }

    PaneWindowRequest m_request;  ///< parent and place follow what happens to the window
    std::unique_ptr<X11Connection> m_pConnection;
    std::unique_ptr<GlxContext> m_pGlx;
    Parent m_parent;
    unsigned long m_nWindow = 0;
    unsigned long m_nColors = 0;
    unsigned long m_nDeleteWindow = 0;  ///< the atom by which a window manager asks to close
    bool m_bCapture = false;
    X11Input m_input;
    std::deque<KV_ScenePane::MouseInput> m_pendingInputs;  ///< one event may be several inputs, and a handler may run a round
    X11Keyboard m_keyboard;
    bool m_bListensToKeys = false;
    PaneCursor m_cursor = PaneCursor::Default;
    int m_nWaitCursors = 0;
    static constexpr unsigned kParentsCursor = ~0u;
    unsigned m_nCursorShape = kParentsCursor;  ///< what the window shows: a shape of the cursor font, or the parent's
};
