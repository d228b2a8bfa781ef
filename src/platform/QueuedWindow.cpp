// The life of a window, and one round of its events: the window system's, then messages and timers, the paint last.
#include "platform/QueuedWindow.h"

#include "base/DebugOutput.h"

QueuedWindow::QueuedWindow(const PaneWindowRequest& request)
    : m_size{request.width, request.height}, m_showMessage(request.showMessage) {}

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
    // A client that was refused its context is not told OnDestroy(): it never had a window.
    if (!RunOnCreate() || !Exists()) {
        Close();
        m_paintQueue.Clear();
        m_life = Life::None;
        return false;
    }
    m_life = Life::Alive;
    Show();
    return true;
}

void QueuedWindow::Destroy() {
    End();
    if (m_life == Life::None) m_messages.Clear();
}

// Messages and timers stay: they belong to the window's owner, who may only be recreating the window.
void QueuedWindow::End() {
    if (m_life != Life::Alive) return;
    m_life = Life::Ending;
    m_pClient->OnDestroy();
    Close();
    m_paintQueue.Clear();
    m_life = Life::None;
}

bool QueuedWindow::Recreate() {
    if (m_pClient == nullptr || m_life == Life::Creating || m_life == Life::Ending) return false;
    End();
    return Begin(nullptr);
}

void QueuedWindow::Refresh() {
    if (!Exists() || m_life == Life::Ending) return;
    m_paintQueue.Request(false);
    m_pClient->OnPaint();
}

void QueuedWindow::Invalidate(bool erase) {
    if (!Exists()) return;
    m_paintQueue.Request(erase);
    m_messages.Wake();
}

void QueuedWindow::RetryPaint() {
    if (m_paintQueue.IsPending()) m_messages.Wake();
}

std::uint32_t QueuedWindow::StartTimer(std::uint32_t milliseconds) {
    return m_messages.StartTimer(milliseconds, kTimerMessage);
}

void QueuedWindow::ShowModalMessage(const std::string& text) {
    if (m_showMessage)
        m_showMessage(text);
    else
        DebugOutput(text + "\n");
}

void QueuedWindow::ProcessEvents() {
    if (m_life == Life::Alive) HandleSystemEvents();
    EndIfTaken();
    DeliverMessages();
    PaintIfDue();
    EndIfTaken();
    // What the round left behind, or read by its own requests, is for the next one; its wake may be forgotten by now.
    if (m_life == Life::Alive && SystemEventsWait()) m_messages.Wake();
}

void QueuedWindow::EndIfTaken() {
    if (m_life == Life::Alive && !Exists()) End();
}

void QueuedWindow::DeliverMessages() {
    std::uint32_t message = 0;
    for (std::size_t count = m_messages.Collect(); count > 0 && m_messages.Take(&message); --count)
        if (m_life == Life::Alive) m_pClient->OnPrivateMessage(message);
}

// A paint that the client leaves pending is not signalled again, or a loop that polls the descriptor would spin for as
// long as painting is blocked. A request made during the paint has signalled for itself.
void QueuedWindow::PaintIfDue() {
    if (m_life != Life::Alive || !m_paintQueue.IsDue()) return;
    m_messages.Settle();
    m_pClient->OnPaint();
}
