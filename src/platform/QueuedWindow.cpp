// The life of a window, and one ProcessEvents() call: the window system's events, then messages and timers, the paint
// last.
#include "platform/QueuedWindow.h"

#include "base/ScopeExit.h"
#include "platform/UserMessage.h"

QueuedWindow::QueuedWindow(const KV_ScenePane::WindowRequest& request)
    : m_size{request.width, request.height}, m_showMessage(request.showMessage), m_showAbout(request.showAbout) {}

// ---- life

bool QueuedWindow::Create(WindowClient& client, std::string* reason) {
    if (m_life != Life::None) return false;
    m_pClient = &client;
    return Begin(reason);
}

bool QueuedWindow::Begin(std::string* reason) {
    std::string why;
    if (!m_messages.IsReady()) why = "No file descriptor is left for the events of the window";
    if (!why.empty() || !Open(&why)) {
        if (reason != nullptr) *reason = why;
        return false;
    }
    m_life = Life::Creating;
    {
        // A client that could not make its context, or whose hook threw, gets no OnDestroy(): it never had a window.
        const ScopeExit closeOnFailure([this] {
            if (m_life == Life::Creating) CloseAndForget();
        });
        if (RunOnCreate() && Exists()) m_life = Life::Alive;
    }
    if (m_life != Life::Alive) return false;
    Show();
    m_messages.WakeForQueued();  // a ProcessEvents() of the hook has left them for this window
    return true;
}

void QueuedWindow::CloseAndForget() {
    Close();
    m_paintQueue.Clear();
    m_bDeferred = false;
    m_life = Life::None;
}

void QueuedWindow::Destroy() {
    End();
    if (m_life == Life::None) m_messages.Clear();  // not in a Destroy() inside OnDestroy(): Recreate() may follow
}

// Messages and timers are kept: they belong to the window's owner, who may only be recreating the window.
void QueuedWindow::End() {
    if (m_life != Life::Alive) return;
    m_life = Life::Ending;
    const ScopeExit close([this] { CloseAndForget(); });  // also when a handler of the host throws
    m_pClient->OnDestroy();
}

bool QueuedWindow::Recreate() {
    if (m_pClient == nullptr || m_life == Life::Creating || m_life == Life::Ending) return false;
    End();
    return Begin(nullptr);
}

void QueuedWindow::EndIfWindowLost() {
    if (m_life == Life::Alive && !Exists()) End();
}

// ---- painting

bool QueuedWindow::ExistsOrWakes() {
    if (Exists()) return true;
    if (m_life == Life::Alive) m_messages.Wake();  // the next ProcessEvents() runs OnDestroy()
    return false;
}

void QueuedWindow::Refresh() {
    if (!ExistsOrWakes() || m_life == Life::Ending) return;
    m_paintQueue.Request(false);
    if (m_bMayDefer) {
        m_bDeferred = true;
        m_messages.Wake();  // for a handler that runs an event loop, or throws, before the last input is delivered
        return;
    }
    m_pClient->OnPaint();
}

// Not inside a paint, as for queued requests. While the client blocks painting the request stays pending, as after a
// Refresh().
void QueuedWindow::DrawDeferredFrame() {
    if (!std::exchange(m_bDeferred, false) || !ExistsOrWakes() || m_life == Life::Ending) return;
    const DeferredFrames atOnce(*this, false);
    if (m_paintQueue.IsDue()) m_pClient->OnPaint();
}

bool QueuedWindow::BeginPaint() {
    m_bDeferred = false;
    return m_paintQueue.Begin();
}

void QueuedWindow::Invalidate(bool erase) {
    if (!ExistsOrWakes()) return;
    m_paintQueue.Request(erase);
    m_messages.Wake();
}

// A ProcessEvents() call inside the paint clears the wake of every request made before it, and cannot paint. Without
// another wake such a request, or an exposure handled there, would not be painted before the next event of the window.
void QueuedWindow::EndPaint() {
    m_paintQueue.End();
    if (m_paintQueue.IsDue()) m_messages.Wake();
}

void QueuedWindow::RetryPaint() {
    if (m_paintQueue.IsPending()) m_messages.Wake();
}

// ---- messages

std::uint32_t QueuedWindow::StartTimer(std::uint32_t milliseconds) {
    return m_messages.StartTimer(milliseconds, kTimerMessage);
}

void QueuedWindow::ShowModalMessage(const std::string& text) { ShowUserMessage(m_showMessage, text); }

void QueuedWindow::ShowAboutBox(const KV_ScenePane::AboutText& text) { ShowAboutText(m_showAbout, text); }

// An exception of the client ends the call and passes through to the host. What is left then, also a repaint that was
// not requested by Invalidate() and has no wake of its own, is for the next call.
void QueuedWindow::ProcessEvents() {
    const DeferredFrames atOnce(*this, false);  // also in a call from a handler of an input that defers
    m_nextSwap = SwapWait::AsTheDriver;
    try {
        HandleAll();
    } catch (...) {
        m_nextSwap = SwapWait::Never;
        m_messages.Wake();
        throw;
    }
    m_nextSwap = SwapWait::Never;
}

void QueuedWindow::HandleAll() {
    if (m_life == Life::Alive) HandleSystemEvents();
    EndIfWindowLost();
    DeliverMessages();
    PaintIfDue();
    EndIfWindowLost();
    // Events that this call did not handle, or that were read during its own requests, are for the next call. Their
    // wake may have been cleared above.
    if (m_life == Life::Alive && HasQueuedSystemEvents()) m_messages.Wake();
}

// Only the messages that are queued at the start: one that posts itself again must not keep the host's loop here. In a
// call from inside a creation, such as that of a message box, they wait for the window.
void QueuedWindow::DeliverMessages() {
    std::size_t count = m_messages.Collect();
    if (m_life == Life::Creating || m_life == Life::Ending) return;
    std::uint32_t message = 0;
    for (; count > 0 && m_messages.Pop(&message); --count)
        if (m_life == Life::Alive) m_pClient->OnPrivateMessage(message);
}

// A paint that the client leaves pending does not wake again, or a loop that polls the descriptor would spin for as
// long as painting is blocked. A request made during the paint has its own wake.
void QueuedWindow::PaintIfDue() {
    if (m_life != Life::Alive || !m_paintQueue.IsDue()) return;
    m_messages.ClearWake();
    m_pClient->OnPaint();
}
