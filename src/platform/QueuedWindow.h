// What all windows share: the order of creation and destruction, the queue of paints, messages and timers, and the
// messages to the user.
#pragma once
#include <functional>
#include <utility>

#include "platform/MessageQueue.h"
#include "platform/PaintQueue.h"
#include "platform/PaneWindow.h"
#include "platform/WindowFactory.h"

/// Must not be deleted inside a call to its client; Destroy() and Recreate() may be called there. A derived class calls
/// Destroy() in its destructor: the base class cannot, because Close() is virtual.
class QueuedWindow : public PaneWindow {
public:
    bool Create(WindowClient& client, std::string* reason) override;
    void Destroy() override;
    bool Recreate() override;

    [[nodiscard]] WindowSize ClientSize() const override { return m_size; }

    void Refresh() override;
    bool AllowDeferredFrames(bool allow) override { return std::exchange(m_bMayDefer, allow); }
    void DrawDeferredFrame() override;
    void Invalidate(bool erase) override;
    bool BeginPaint() override;
    void EndPaint() override;
    void RetryPaint() override;
    [[nodiscard]] bool IsPaintPending() const override { return m_paintQueue.IsPending(); }

    std::uint32_t StartTimer(std::uint32_t milliseconds) override;
    void StopTimer(std::uint32_t id) override { m_messages.StopTimer(id); }
    void PostPrivateMessage(std::uint32_t message) override { m_messages.Post(message); }
    void ShowModalMessage(const std::string& text) override;
    void ShowAboutBox(const KV_ScenePane::AboutText& text) override;
    [[nodiscard]] int EventDescriptor() const override { return m_messages.Descriptor(); }
    void ProcessEvents() override;

protected:
    explicit QueuedWindow(const KV_ScenePane::WindowRequest& request);

    // ---- what a window system implements
    /// Connects to the window system, without a window yet. On false nothing is left open and @p reason is set.
    virtual bool Open(std::string* reason) = 0;
    /// Has the client make its context; false when it refuses the window.
    virtual bool RunOnCreate() { return m_pClient->OnCreate() == 0; }
    /// Frees all that Open() and the client's OnCreate() made, the context too. Called also after a part of it failed.
    virtual void Close() = 0;
    /// Makes the window visible. Called once the client has made its context.
    virtual void Show() {}
    /// Handles the queued events of the window system. Paints are only requested here; for a window that the window
    /// system destroyed it is enough that Exists() becomes false.
    virtual void HandleSystemEvents() {}
    /// Whether events have arrived that were already read from the watched descriptor, which is not readable then.
    [[nodiscard]] virtual bool HasQueuedSystemEvents() const { return false; }

    [[nodiscard]] bool IsFrameDeferred() const { return m_bDeferred; }

    /// For the frame that is shown now, see SwapBuffers().
    [[nodiscard]] SwapWait TakeSwapWait() { return std::exchange(m_nextSwap, SwapWait::Never); }

    WindowClient* m_pClient = nullptr;  ///< of the last Create()
    WindowSize m_size;
    PaintQueue m_paintQueue;
    MessageQueue m_messages;

private:
    enum class Life { None, Creating, Alive, Ending };

    /// For calls of the client. The loss of a window without an event is reported to the host by nothing else.
    bool ExistsOrWakes();
    bool Begin(std::string* reason);
    void End();
    /// The last step of every end: nothing of the window is left.
    void CloseAndForget();
    void HandleAll();
    /// Runs OnDestroy() for a window that the window system destroyed, as for any other end.
    void EndIfWindowLost();
    void DeliverMessages();
    void PaintIfDue();

    Life m_life = Life::None;
    SwapWait m_nextSwap = SwapWait::Never;
    bool m_bMayDefer = false;  ///< see AllowDeferredFrames()
    bool m_bDeferred = false;  ///< Refresh() has left its frame to a later input; its request is pending
    std::function<void(const std::string& text)> m_showMessage;            ///< the host's hook; may be empty
    std::function<void(const KV_ScenePane::AboutText& text)> m_showAbout;  ///< the same
};
