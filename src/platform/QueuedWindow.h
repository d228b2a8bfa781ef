// What all windows share: the order of a life, the queue of paints, messages and timers, the message to the user.
#pragma once
#include <functional>

#include "platform/MessageQueue.h"
#include "platform/PaintQueue.h"
#include "platform/PaneWindow.h"
#include "platform/WindowFactory.h"

/// A window is not deleted from inside a call to its client; Destroy() may be called there.
class QueuedWindow : public PaneWindow {
public:
    bool Create(WindowClient& client, std::string* reason) override;
    void Destroy() override;
    bool Recreate() override;

    [[nodiscard]] WindowSize ClientSize() const override { return m_size; }

    void Refresh() override;
    void Invalidate(bool erase) override;
    bool BeginPaint() override { return m_paintQueue.Begin(); }
    void EndPaint() override { m_paintQueue.End(); }
    void RetryPaint() override;
    [[nodiscard]] bool IsPaintPending() const override { return m_paintQueue.IsPending(); }

    std::uint32_t StartTimer(std::uint32_t milliseconds) override;
    void StopTimer(std::uint32_t id) override { m_messages.StopTimer(id); }
    void PostPrivateMessage(std::uint32_t message) override { m_messages.Post(message); }
    void ShowModalMessage(const std::string& text) override;
    [[nodiscard]] int EventDescriptor() const override { return m_messages.Descriptor(); }
    void ProcessEvents() override;

protected:
    explicit QueuedWindow(const PaneWindowRequest& request);

    // ---- what a window system adds
    /// Gets hold of the window system, without a window yet. False leaves nothing open and tells why.
    virtual bool Open(std::string* reason) = 0;
    /// Has the client make its context; false when it refuses the window.
    virtual bool RunOnCreate() { return m_pClient->OnCreate() == 0; }
    /// Frees all that Open() and the client's OnCreate() made, the context too. Called also after a part of it failed.
    virtual void Close() = 0;
    /// The client made its context: the window may be seen.
    virtual void Show() {}
    /// Handles what the window system sent. Paints are only requested; a window that is gone only stops to exist.
    virtual void HandleSystemEvents() {}
    /// Whether events have arrived that no descriptor tells of.
    [[nodiscard]] virtual bool SystemEventsWait() const { return false; }

    WindowClient* m_pClient = nullptr;  ///< of the last Create()
    WindowSize m_size;
    PaintQueue m_paintQueue;
    MessageQueue m_messages;

private:
    enum class Life { None, Creating, Alive, Ending };

    bool Begin(std::string* reason);
    void End();
    /// The window system took the window: the client hears of it as of any other end.
    void EndIfTaken();
    void DeliverMessages();
    void PaintIfDue();

    Life m_life = Life::None;
    std::function<void(const std::string& text)> m_showMessage;
};
