// A window of an X server, a child of the host's window or top-level, drawn by GLX. Every window has a connection of
// its own: requests and events never mix with those of the host or of other viewers.
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
    explicit X11Window(const KV_ScenePane::WindowRequest& request) : QueuedWindow(request), m_request(request) {}
    ~X11Window() override { Destroy(); }
    X11Window(const X11Window&) = delete;
    X11Window& operator=(const X11Window&) = delete;

    // ---- X11Window.cpp
    /// A drag in progress and the keyboard focus go over to the new window.
    bool Recreate() override;
    [[nodiscard]] bool Exists() const override;
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return Exists() ? m_nWindow : 0; }
    bool Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) override;
    /// Waits for the server: the X window has the size when this returns, unless a window manager decides otherwise.
    void Resize(std::int32_t width, std::int32_t height) override;

    BootstrapReport BeginBootstrap(const ContextAttributes& wanted) override;
    bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) override;
    void EndBootstrap() override;
    bool SetPixelFormat(std::int32_t format) override;
    bool CreateContext(const ContextAttributes& attributes) override;
    bool MakeCurrent() override;
    void DeleteContext() override;
    [[nodiscard]] void* ContextHandle() const override { return m_pGlx == nullptr ? nullptr : m_pGlx->Handle(); }
    void SwapBuffers() override;
    [[nodiscard]] std::string DeviceName() const override;

    // The handlers' own note of a drag. X reports the pointer to the window in which a button went down until all are
    // up, and that is enough: a grab of ours could outlast the buttons, and no other program would get the pointer
    // then.
    void SetCapture() override { m_bCapture = Exists(); }
    void ReleaseCapture() override { m_bCapture = false; }
    [[nodiscard]] bool HasCapture() const override { return m_bCapture; }
    void SetCursor(PaneCursor cursor) override;
    void BeginWaitCursor() override;
    void EndWaitCursor() override;

    // ---- X11WindowEvents.cpp
    bool BeginPaint() override;

protected:
    bool Open(std::string* reason) override;
    void Close() override;
    void Show() override;
    void HandleSystemEvents() override;
    [[nodiscard]] bool HasQueuedSystemEvents() const override;

private:
    /// To be held around requests. A round trip may read events into the queue of Xlib, where the descriptor does not
    /// show them: wakes the loop for these at its end.
    class RequestScope {
    public:
        explicit RequestScope(X11Window& window) : m_window(window) { X11Connection::InstallErrorHandlers(); }
        ~RequestScope() {
            if (m_window.HasQueuedSystemEvents()) m_window.m_messages.Wake();
        }
        RequestScope(const RequestScope&) = delete;
        RequestScope& operator=(const RequestScope&) = delete;

    private:
        X11Window& m_window;
    };

    struct Parent {
        unsigned long window = 0;
        int screen = 0;
    };

    // ---- X11Window.cpp
    bool FindParent(std::uintptr_t handle, Parent* parent, std::string* reason);
    bool MakeWindow(const GlxContext::WindowFormat& format);
    void DescribeToWindowManager();
    /// Whether the window system destroyed the window, also when that event is still queued.
    bool IsLost();
    void ShowCursor();
    /// The side of the X window for a requested side, which may be zero or negative: at least one pixel.
    static unsigned WindowSide(std::int32_t side);
    [[nodiscard]] bool IsChild() const { return m_request.kind == KV_ScenePane::WindowRequest::Kind::Child; }

    // ---- X11WindowEvents.cpp
    /// What follows an input among the events that wait.
    enum class Waiting { Others, NotchOrRepeat };
    /// What the queue goes on with; the releases of notches are passed over.
    /// @param count  events at the head of the queue that may be looked at
    [[nodiscard]] Waiting FindNext(int count);
    /// Draws a deferred frame, unless the next event belongs to the run of notches and repeats that deferred it.
    void DrawDeferredFrameAtEndOfRun(int count);
    void HandleEvent(const _XEvent& event, Waiting next);
    void HandleConfiguration(const _XEvent& event);
    void ApplySize(const _XEvent& configureNotify);
    void HandleMouse(const _XEvent& event, Waiting next);
    void DispatchMouse(const std::vector<KV_ScenePane::MouseInput>& inputs, Waiting next);
    void HandleFocusChange(const _XEvent& event);
    [[nodiscard]] bool HasFocus();
    void RequestFocus();
    /// While it has the focus a child selects key events too; a top-level window always does.
    void SelectKeyEvents(bool select);
    void SelectEvents(bool withKeys);

    KV_ScenePane::WindowRequest m_request;  ///< parent and place follow what happens to the window
    std::unique_ptr<X11Connection> m_pConnection;
    std::unique_ptr<GlxContext> m_pGlx;
    Parent m_parent;
    unsigned long m_nWindow = 0;  ///< 0 also once the window system destroyed it
    unsigned long m_nColormap = 0;
    unsigned long m_nDeleteWindow = 0;  ///< the atom by which a window manager asks to close; 0 for a child
    unsigned long m_nResizeSerial = 0;  ///< of the request of the last Resize(); events before it have former sizes
    bool m_bCapture = false;
    X11Input m_input;
    std::deque<KV_ScenePane::MouseInput> m_pendingInputs;  ///< translated, and not dispatched yet
    X11Keyboard m_keyboard;
    bool m_bSelectsKeys = false;
    PaneCursor m_cursor = PaneCursor::Default;
    int m_nWaitCursors = 0;
    static constexpr unsigned kInheritCursor = ~0u;
    unsigned m_nCursorShape = kInheritCursor;  ///< what the window shows: a shape of the cursor font, or the parent's
};
