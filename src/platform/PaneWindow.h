// The interface between the control and a window system. Implementations: X11Window, OffscreenWindow, NoPictureWindow.
#pragma once
#include <cstdint>
#include <string>

#include "KV_ScenePane/Input.h"

namespace KV_ScenePane {
struct AboutText;
}

/// What a window reports to its owner, always on the thread that drives the window. Every call may close the window
/// with Destroy() or replace it with Recreate(), and may call ProcessEvents(); none may delete the window object.
class WindowClient {
public:
    /// The window is being made: choose the pixel format, make the context. 0, or -1 to refuse the window.
    virtual int OnCreate() = 0;
    /// The window is being closed. The context still exists; it may no longer be possible to make it current.
    virtual void OnDestroy() = 0;
    /// The window must be repainted. BeginPaint() removes the request; a client that returns without it leaves the
    /// request pending.
    virtual void OnPaint() = 0;
    /// A posted private message arrived.
    virtual void OnPrivateMessage(std::uint32_t message) = 0;
    /// The mouse moved, or a button or the wheel was used. Moves and releases keep arriving from outside the window
    /// while a button is held. A release that the window system cannot deliver, because the window was hidden, is
    /// reported together with the next mouse event. Queued moves with the same buttons are coalesced into the last,
    /// unless WantsEveryMove().
    virtual void OnMouse(const KV_ScenePane::MouseInput& /*input*/) {}
    /// Whether the way of the mouse matters, and not only where it is.
    [[nodiscard]] virtual bool WantsEveryMove() const { return false; }
    /// A key of the focused window. Each repeat of a held key is a separate press.
    virtual void OnKey(const KV_ScenePane::KeyInput& /*input*/) {}

protected:
    ~WindowClient() = default;
};

/// The private message that a one-shot timer posts.
inline constexpr std::uint32_t kTimerMessage = 1147;

/// Of the drawing area, pixels. May be zero or negative when the host asked for that; the surface itself has at least
/// one pixel.
struct WindowSize {
    std::int32_t width = 0, height = 0;
};

/// Default shows the cursor of the host's window, Lasso a cross hair.
enum class PaneCursor { Default, Lasso };

/// What is requested of the pixel format. Formats that cannot draw RGBA with OpenGL on this kind of surface are never
/// chosen. Bit counts are minimums; samples must match exactly.
struct PixelFormatAttributes {
    std::int32_t colorBits = 32;  ///< red, green, blue and alpha together
    std::int32_t depthBits = 24;
    std::int32_t stencilBits = 0;
    std::int32_t alphaBits = 8;
    bool doubleBuffer = true;
    std::int32_t sampleBuffers = 0;  ///< 1 with multisampling, else 0
    std::int32_t samples = 0;        ///< per pixel
};

/// Whether showing a frame may wait for the vertical retrace: as the user's driver is set, or not at all.
enum class SwapWait { AsTheDriver, Never };

/// What is requested of the context, always in the compatibility profile. It shares objects with no other context.
struct ContextAttributes {
    std::int32_t major = 3;
    std::int32_t minor = 3;
};

/// What the temporary context of the bootstrap found.
struct BootstrapReport {
    std::int32_t formatNumber = 0;      ///< pixel format of the temporary window; 0: none was found
    bool contextMade = false;           ///< false: no temporary context; the members below are not valid then
    bool entryPointsLoaded = false;     ///< GLEW is initialised
    bool pixelFormatExtension = false;  ///< formats can be requested by attributes
    bool createContextExtension = false;
    bool version33 = false;             ///< the driver offers OpenGL 3.3, whatever version is requested
    std::int32_t major = 0, minor = 0;  ///< the highest version that the driver offers; 0 when it is not known
};

/// One window, or what replaces it without a display. All calls on the thread that drives the window, except where
/// noted. Without a window (see Exists()) every call is allowed and does nothing or returns false.
class PaneWindow {
public:
    virtual ~PaneWindow() = default;

    // ---- life
    /// Makes the window; runs OnCreate() of the client, which makes the context on it.
    /// @param client  must outlive the window
    /// @param reason  receives why the window system refused the window; unchanged when the client refused it. May be
    ///                null
    /// @return false when there is no window now
    virtual bool Create(WindowClient& client, std::string* reason) = 0;
    /// Runs OnDestroy(), then destroys the window with its queued messages and timers.
    virtual void Destroy() = 0;
    /// Destroys the window and makes it again at its present place and size. Messages and timers are kept.
    virtual bool Recreate() = 0;
    /// False before creation, after destruction and once the window system destroyed the window.
    [[nodiscard]] virtual bool Exists() const = 0;
    /// The window's id in the window system; 0 when it has none.
    [[nodiscard]] virtual std::uintptr_t NativeHandle() const = 0;
    /// Moves a child window into another parent, to (x, y) in its pixels; false when that is no window of this system.
    virtual bool Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) = 0;

    // ---- size
    [[nodiscard]] virtual WindowSize ClientSize() const = 0;
    /// ClientSize() is the new size when this returns. A size that the window system cannot make changes nothing.
    virtual void Resize(std::int32_t width, std::int32_t height) = 0;

    // ---- painting
    /// Repaints before the return. While the client blocks painting the request stays pending. In the handler of a
    /// wheel notch or of a key's repeat the frame is deferred while more of them wait: it is drawn once, with the last
    /// one, and before any other event is handled.
    virtual void Refresh() = 0;
    /// Sets whether Refresh() may defer its frame. Calls of the host set false: they rely on a frame that is drawn
    /// before they return. @return the former setting
    virtual bool AllowDeferredFrames(bool /*allow*/) { return false; }
    /// Draws a frame that was deferred, if there is one.
    virtual void DrawDeferredFrame() {}
    /// Queues a repaint. Requests before the next paint are coalesced; it erases when one of them asked to.
    virtual void Invalidate(bool erase) = 0;
    /// Opens a paint and removes the pending request. Returns whether that asked to erase. From here to EndPaint()
    /// ClientSize() is the size that the window system reported last, also when that event is still queued.
    virtual bool BeginPaint() = 0;
    virtual void EndPaint() = 0;
    /// Makes the next ProcessEvents() try a request again that the client left pending.
    virtual void RetryPaint() = 0;
    [[nodiscard]] virtual bool IsPaintPending() const = 0;

    // ---- OpenGL, in the order in which a client calls it
    /// Makes a temporary context current, so that entry points can be loaded and formats queried.
    /// @param wanted  the version that the client will request: a window that can choose among several drivers takes
    ///                one that has it
    virtual BootstrapReport BeginBootstrap(const ContextAttributes& wanted) = 0;
    /// @param format  receives the number of the format found
    /// @return false when no format has the attributes
    virtual bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) = 0;
    virtual void EndBootstrap() = 0;
    /// Gives the window the pixel format, once in its life.
    virtual bool SetPixelFormat(std::int32_t format) = 0;
    /// Makes the context. False when the driver refuses it; that never ends the process.
    virtual bool CreateContext(const ContextAttributes& attributes) = 0;
    /// Makes the window's context current on this thread. On false no context is current: OpenGL calls that follow
    /// cannot change objects of another window.
    virtual bool MakeCurrent() = 0;
    /// Releases and deletes the context.
    virtual void DeleteContext() = 0;
    /// The rendering context as an opaque handle; null without one.
    [[nodiscard]] virtual void* ContextHandle() const = 0;
    /// Shows what was copied or drawn into the framebuffer of the window. The first frame of a ProcessEvents() call
    /// keeps to the driver's setting for the vertical retrace, which paces drags. No other frame waits: the time of
    /// calls of the host that repaint would add up to one retrace each.
    virtual void SwapBuffers() = 0;
    /// What draws, for a report to the user; empty without a window.
    [[nodiscard]] virtual std::string DeviceName() const { return {}; }

    // ---- pointer
    /// Notes that a drag is in progress. Needs nothing of the window system: see OnMouse().
    virtual void SetCapture() = 0;
    virtual void ReleaseCapture() = 0;
    [[nodiscard]] virtual bool HasCapture() const = 0;
    virtual void SetCursor(PaneCursor cursor) = 0;
    /// Begin and End nest; the wait cursor shows while at least one is open. An End without a Begin is ignored.
    virtual void BeginWaitCursor() = 0;
    virtual void EndWaitCursor() = 0;

    // ---- messages
    /// Starts a one-shot timer that posts kTimerMessage. Returns its id, never 0.
    virtual std::uint32_t StartTimer(std::uint32_t milliseconds) = 0;
    /// A timer whose message is not queued yet does not post it any more. Unknown ids are ignored.
    virtual void StopTimer(std::uint32_t id) = 0;
    /// Queues a private message; may be called from any thread.
    virtual void PostPrivateMessage(std::uint32_t message) = 0;
    /// Shows a message to the user and returns when it was read. See ShowUserMessage() for a host without a hook.
    virtual void ShowModalMessage(const std::string& text) = 0;
    /// Shows the about dialog and returns when it is closed. See ShowAboutText() for a host without a hook.
    virtual void ShowAboutBox(const KV_ScenePane::AboutText& text) = 0;
    /// Readable when ProcessEvents() has work.
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Handles the queued events of the window system, then messages and timers, then repaints. Never blocks. What is
    /// queued meanwhile is for the next call.
    virtual void ProcessEvents() = 0;
};

/// Sets PaneWindow::AllowDeferredFrames() during its lifetime.
class DeferredFrames {
public:
    DeferredFrames(PaneWindow& window, bool allow) : m_window(window), m_bFormer(window.AllowDeferredFrames(allow)) {}
    ~DeferredFrames() { m_window.AllowDeferredFrames(m_bFormer); }
    DeferredFrames(const DeferredFrames&) = delete;
    DeferredFrames& operator=(const DeferredFrames&) = delete;

private:
    PaneWindow& m_window;
    bool m_bFormer;
};
