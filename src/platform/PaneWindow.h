// The seam between the control and a window system. Implementations: X11Window, OffscreenWindow, NoPictureWindow.
#pragma once
#include <cstdint>
#include <string>

#include "KV_ScenePane/Input.h"

/// What a window tells its owner, always on the thread that drives the window.
class WindowClient {
public:
    /// The window is being made: choose the pixel format, make the context. 0, or -1 to refuse the window.
    virtual int OnCreate() = 0;
    /// The window goes. The context still exists; it may no longer be possible to make it current.
    virtual void OnDestroy() = 0;
    /// The window must be repainted. Validated by BeginPaint(); a client that returns without it leaves the request
    /// pending.
    virtual void OnPaint() = 0;
    /// A posted private message arrived.
    virtual void OnPrivateMessage(std::uint32_t message) = 0;
    /// The mouse moved, or a button or the wheel did something. Moves and releases keep coming from outside the window
    /// while a button is held, and a release that the window system cannot deliver, because the window was hidden,
    /// comes with the next thing that does. Moves that wait together are one move.
    virtual void OnMouse(const KV_ScenePane::MouseInput& /*input*/) {}
    /// A key of the focused window. Presses of a held key that wait together are one press with their count.
    virtual void OnKey(const KV_ScenePane::KeyInput& /*input*/) {}

protected:
    ~WindowClient() = default;
};

/// Posted by a one-shot timer.
inline constexpr std::uint32_t kTimerMessage = 1147;

struct WindowSize {
    std::int32_t width = 0, height = 0;
};

enum class PaneCursor { Default, Lasso };

/// What is asked of the pixel format; exactly one format is chosen.
struct PixelFormatAttributes {
    bool drawToWindow = true;
    bool supportOpenGl = true;
    std::int32_t colorBits = 32;
    std::int32_t depthBits = 24;
    std::int32_t stencilBits = 0;
    std::int32_t alphaBits = 8;
    bool doubleBuffer = true;
    std::int32_t sampleBuffers = 0;
    std::int32_t samples = 0;
};

/// What is asked of the context, always in the compatibility profile. It shares with no other.
struct ContextAttributes {
    std::int32_t major = 3;
    std::int32_t minor = 3;
};

/// What the throw-away context of the bootstrap found.
struct BootstrapReport {
    std::int32_t formatNumber = 0;      ///< pixel format of the throw-away window
    bool contextMade = false;           ///< false: no throw-away context; nothing else holds then
    bool entryPointsLoaded = false;     ///< GLEW is ready
    bool pixelFormatExtension = false;  ///< formats can be asked for by attributes
    bool createContextExtension = false;
    bool version33 = false;  ///< the driver offers OpenGL 3.3, whatever version is requested
};

class PaneWindow {
public:
    virtual ~PaneWindow() = default;

    // ---- life
    /// Makes the window; runs OnCreate() of the client, which makes the context on it.
    /// @param client  outlives the window
    /// @param reason  takes why there is no window when the window system refused; untouched when the client did
    /// @return false when there is no window now
    virtual bool Create(WindowClient& client, std::string* reason) = 0;
    /// Runs OnDestroy(), then destroys the window. Does nothing without one.
    virtual void Destroy() = 0;
    /// Destroys the window and makes it again at its present place and size.
    virtual bool Recreate() = 0;
    /// False before creation, after destruction and once the window system took the window away.
    [[nodiscard]] virtual bool Exists() const = 0;
    /// The window's id in the window system; 0 when it has none.
    [[nodiscard]] virtual std::uintptr_t NativeHandle() const = 0;
    /// Moves a child window into another parent; false when that is no window of this system.
    virtual bool Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) = 0;

    // ---- size, pixels of the drawing area
    [[nodiscard]] virtual WindowSize ClientSize() const = 0;
    virtual void Resize(std::int32_t width, std::int32_t height) = 0;

    // ---- painting
    /// Repaints before the return. While the client blocks painting the request stays pending.
    virtual void Refresh() = 0;
    /// Queues a repaint. Requests before the next paint are one request, which erases when one of them asked to.
    virtual void Invalidate(bool erase) = 0;
    /// Opens a paint: the pending request is taken. Returns whether it asked to erase.
    virtual bool BeginPaint() = 0;
    virtual void EndPaint() = 0;
    /// A request that the client left pending is tried again at the next ProcessEvents().
    virtual void RetryPaint() = 0;
    [[nodiscard]] virtual bool IsPaintPending() const = 0;

    // ---- OpenGL, in the order in which a client calls it
    /// Makes a throw-away context current, so that entry points can be loaded and formats asked for.
    virtual BootstrapReport BeginBootstrap() = 0;
    /// @param format  takes the number of the format found
    /// @return false when the call failed
    virtual bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) = 0;
    virtual void EndBootstrap() = 0;
    /// Gives the window the pixel format.
    virtual bool SetPixelFormat(std::int32_t format) = 0;
    /// Makes the context. A refusal of the driver is false, never the end of the process.
    virtual bool CreateContext(const ContextAttributes& attributes) = 0;
    /// Makes the window's context current on this thread. On false no context is current.
    virtual bool MakeCurrent() = 0;
    /// Releases and deletes the context. Does nothing without one.
    virtual void DeleteContext() = 0;
    /// The rendering context as an opaque handle; null without one.
    [[nodiscard]] virtual void* ContextHandle() const = 0;
    virtual void SwapBuffers() = 0;

    // ---- pointer
    /// A capture is the client's own note of a drag. It needs nothing of the window system: see OnMouse().
    virtual void SetCapture() = 0;
    virtual void ReleaseCapture() = 0;
    [[nodiscard]] virtual bool HasCapture() const = 0;
    virtual void SetCursor(PaneCursor cursor) = 0;
    /// Begin and End nest; the wait cursor shows while at least one is open.
    virtual void BeginWaitCursor() = 0;
    virtual void EndWaitCursor() = 0;

    // ---- messages
    /// Starts a one-shot timer that posts kTimerMessage. Returns its id, never 0.
    virtual std::uint32_t StartTimer(std::uint32_t milliseconds) = 0;
    /// A timer that has not posted yet does not post any more. Unknown ids are ignored.
    virtual void StopTimer(std::uint32_t id) = 0;
    /// Queues a private message; may be called from any thread.
    virtual void PostPrivateMessage(std::uint32_t message) = 0;
    /// Shows a message that the user must see, and returns when it was read.
    virtual void ShowModalMessage(const std::string& text) = 0;
    /// Readable when ProcessEvents() has work.
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Handles what waits, repaints last. Never blocks.
    virtual void ProcessEvents() = 0;
};
