// Events of the X window: sizes, exposures, pointer, keyboard focus. What pointer and key events mean is X11Input.cpp.
#include <optional>

#include "platform/X11Window.h"

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>

namespace {

constexpr long kPointerMask = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
constexpr long kKeyMask = KeyPressMask | KeyReleaseMask;
constexpr long kWindowMask = StructureNotifyMask | ExposureMask | FocusChangeMask | kPointerMask;

/// Looks only at events that Xlib has read already.
bool CanCoalesceWithNext(Display* display, const XEvent& event) {
    if (XEventsQueued(display, QueuedAlready) == 0) return false;
    XEvent next{};
    XPeekEvent(display, &next);
    return X11Input::CanCoalesce(event, next);
}

/// The latest ConfigureNotify of a window among the queued events.
struct ConfigurationSearch {
    Window window = None;
    std::optional<XEvent> latest;
};

/// A predicate for XCheckIfEvent() that visits all queued events and removes none.
Bool VisitConfiguration(Display*, XEvent* event, XPointer argument) {
    auto& search = *reinterpret_cast<ConfigurationSearch*>(argument);
    if (event->type == ConfigureNotify && event->xconfigure.window == search.window) search.latest = *event;
    return False;
}

/// Whether the queue goes on with a notch or a repeat.
struct RunSearch {
    const X11Input& input;
    Window window;
    int left;  ///< events that may still be looked at
    bool found = false;
};

/// A predicate for XCheckIfEvent() that removes no event. It looks no further than the first event that is not the
/// release of a notch.
Bool VisitRun(Display*, XEvent* event, XPointer argument) {
    auto& search = *reinterpret_cast<RunSearch*>(argument);
    if (search.left <= 0) return False;
    const bool isOwn = event->xany.window == search.window;
    search.found = isOwn && search.input.IsNotchOrRepeat(*event);
    search.left = isOwn && X11Input::IsNotchRelease(*event) ? search.left - 1 : 0;
    return False;
}

}  // namespace

// ---- the queue

bool X11Window::HasQueuedSystemEvents() const {
    if (m_pConnection == nullptr) return false;
    return !m_pConnection->IsAlive() || XEventsQueued(m_pConnection->Get(), QueuedAfterFlush) > 0;
}

void X11Window::HandleSystemEvents() {
    const RequestScope scope(*this);
    // What is left of an event whose handler threw or called ProcessEvents().
    DispatchMouse({}, Waiting::Others);
    // Only the events that are queued at the start: a server that sends without end must not keep the host's loop here.
    // A handler may close the window and the connection with it, recreate both, or call ProcessEvents() itself.
    int count = Exists() ? XPending(m_pConnection->Get()) : 0;
    DrawDeferredFrameAtEndOfRun(count);
    for (; count > 0 && m_pConnection != nullptr && Exists(); DrawDeferredFrameAtEndOfRun(--count)) {
        Display* const display = m_pConnection->Get();
        if (XEventsQueued(display, QueuedAlready) == 0) return;
        XEvent event{};
        XNextEvent(display, &event);
        if (event.type == MotionNotify && !m_pClient->WantsEveryMove())
            for (; count > 1 && CanCoalesceWithNext(display, event); --count) XNextEvent(display, &event);
        HandleEvent(event, m_input.IsNotchOrRepeat(event) ? FindNext(count - 1) : Waiting::Others);
    }
}

X11Window::Waiting X11Window::FindNext(int count) {
    RunSearch search{m_input, m_nWindow, count};
    XEvent none{};
    XCheckIfEvent(m_pConnection->Get(), &none, VisitRun, reinterpret_cast<XPointer>(&search));
    return search.found ? Waiting::NotchOrRepeat : Waiting::Others;
}

// The event stays in the queue: a paint may throw or close the window, and finds there that the window is lost.
void X11Window::DrawDeferredFrameAtEndOfRun(int count) {
    if (!IsFrameDeferred()) return;
    if (count > 0 && Exists() && FindNext(count) == Waiting::NotchOrRepeat) return;
    DrawDeferredFrame();
}

// Each case calls the client last, because the client may close the window.
void X11Window::HandleEvent(const _XEvent& event, Waiting next) {
    if (event.type == MappingNotify) {  // has no window
        XMappingEvent mapping = event.xmapping;
        XRefreshKeyboardMapping(&mapping);
        m_keyboard = X11Keyboard::Of(m_pConnection->Get());
        return;
    }
    if (event.xany.window != m_nWindow) return;
    switch (event.type) {
        case Expose:
            // The last of a series, one per exposed rectangle. A frame always covers the whole window.
            if (event.xexpose.count == 0) m_paintQueue.Request(true);
            break;
        case ConfigureNotify:
            HandleConfiguration(event);
            break;
        case ReparentNotify:
            if (!IsChild()) break;  // into the frame of a window manager, not into a window of the host
            m_parent.window = event.xreparent.parent;
            m_request.parent = m_parent.window;
            m_request.x = event.xreparent.x;
            m_request.y = event.xreparent.y;
            break;
        case UnmapNotify:
            DispatchMouse(m_input.ReleaseButtons(), Waiting::Others);
            break;
        case DestroyNotify:
            m_nWindow = 0;
            break;
        case ClientMessage:
            if (m_nDeleteWindow != 0 && static_cast<Atom>(event.xclient.data.l[0]) == m_nDeleteWindow) Destroy();
            break;
        case FocusIn:
        case FocusOut:
            HandleFocusChange(event);
            break;
        case ButtonPress:
        case ButtonRelease:
        case MotionNotify:
            HandleMouse(event, next);
            break;
        case KeyPress:
        case KeyRelease: {
            const DeferredFrames deferred(*this, next == Waiting::NotchOrRepeat);
            m_pClient->OnKey(m_input.TranslateKey(event, m_keyboard));
            break;
        }
        default:
            break;
    }
}

void X11Window::HandleConfiguration(const _XEvent& event) {
    const XConfigureEvent& configuration = event.xconfigure;
    if (IsChild()) {
        m_request.x = configuration.x;
        m_request.y = configuration.y;
    }
    ApplySize(event);
}

// A size that X reported before it processed our last Resize() is not the window's any more; the event that belongs to
// that request follows. Without this check a handler that is called in between would paint in the former size.
void X11Window::ApplySize(const _XEvent& configureNotify) {
    const XConfigureEvent& configuration = configureNotify.xconfigure;
    if (configuration.serial < m_nResizeSerial) return;
    // A requested size of zero stays zero although the X window has one pixel.
    const bool sameSize = WindowSide(m_size.width) == static_cast<unsigned>(configuration.width) &&
                          WindowSide(m_size.height) == static_cast<unsigned>(configuration.height);
    if (!sameSize) m_size = {configuration.width, configuration.height};
}

// The window may have been resized while the event is still queued: a frame of the former size would not fill it, and a
// picture of it would hold pixels that do not exist. The event stays queued, for what else it changes.
bool X11Window::BeginPaint() {
    if (Exists()) {
        const RequestScope scope(*this);
        ConfigurationSearch search{m_nWindow, std::nullopt};
        XEvent none{};
        XCheckIfEvent(m_pConnection->Get(), &none, VisitConfiguration, reinterpret_cast<XPointer>(&search));
        if (search.latest) ApplySize(*search.latest);
    }
    return QueuedWindow::BeginPaint();
}

// ---- pointer

void X11Window::HandleMouse(const _XEvent& event, Waiting next) {
    std::vector<KV_ScenePane::MouseInput> inputs = m_input.FindLostReleases(event);
    if (const std::optional<KV_ScenePane::MouseInput> input = m_input.TranslateMouse(event)) {
        if (event.type == ButtonPress && input->kind != KV_ScenePane::MouseInput::Kind::Wheel) RequestFocus();
        inputs.push_back(*input);
    }
    DispatchMouse(inputs, next);
}

// One event may become several inputs. They are queued in a member: a handler that closes the window drops the rest,
// and one that calls ProcessEvents() gets the rest before the inputs of later events.
void X11Window::DispatchMouse(const std::vector<KV_ScenePane::MouseInput>& inputs, Waiting next) {
    m_pendingInputs.insert(m_pendingInputs.end(), inputs.begin(), inputs.end());
    while (!m_pendingInputs.empty()) {
        const KV_ScenePane::MouseInput input = m_pendingInputs.front();
        const bool isNotch = input.kind == KV_ScenePane::MouseInput::Kind::Wheel;
        if (!isNotch && IsFrameDeferred()) {  // a release that was lost before a notch
            DrawDeferredFrame();              // may close the window, or handle the inputs in a nested call
            continue;
        }
        m_pendingInputs.pop_front();
        const DeferredFrames deferred(*this, isNotch && next == Waiting::NotchOrRepeat);
        m_pClient->OnMouse(input);
    }
}

// ---- keyboard focus

bool X11Window::HasFocus() {
    if (!Exists()) return false;
    const RequestScope scope(*this);
    Window focused = None;
    int revert = 0;
    XGetInputFocus(m_pConnection->Get(), &focused, &revert);
    return focused == m_nWindow;
}

// Not with the time of the press, as is usual between programs: a window manager may have given the focus to the host's
// window for the same press, at a later time. X would then ignore this request, and the pane would get no keys.
void X11Window::RequestFocus() {
    const RequestScope scope(*this);
    const X11Connection::ErrorTrap trap(*m_pConnection);
    const bool wereSelected = m_bSelectsKeys;
    SelectKeyEvents(true);  // before the focus changes: a key that comes in between would be lost
    XSetInputFocus(m_pConnection->Get(), m_nWindow, RevertToParent, CurrentTime);
    if (!trap.Succeeded()) SelectKeyEvents(wereSelected);
}

void X11Window::HandleFocusChange(const _XEvent& event) {
    const XFocusChangeEvent& change = event.xfocus;
    if (event.type == FocusOut) m_input.ForgetKeys();
    // Neither a grab nor the pointer's place changes which window has the focus.
    const bool isByGrab = change.mode == NotifyGrab || change.mode == NotifyUngrab;
    const bool isByPointer = change.detail == NotifyPointer || change.detail == NotifyPointerRoot;
    if (IsChild() && !isByGrab && !isByPointer) SelectKeyEvents(event.type == FocusIn);
}

// X reports the keys of a focused window to its child below the pointer, if that has selected them: a pane that always
// did would get what the user types into a field of the host while the pointer is over the pane.
void X11Window::SelectKeyEvents(bool select) {
    if (select == m_bSelectsKeys) return;
    SelectEvents(select);
    XFlush(m_pConnection->Get());
}

void X11Window::SelectEvents(bool withKeys) {
    m_bSelectsKeys = withKeys;
    XSelectInput(m_pConnection->Get(), m_nWindow, withKeys ? kWindowMask | kKeyMask : kWindowMask);
}
