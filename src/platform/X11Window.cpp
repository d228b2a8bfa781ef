// Window, events, pointer and focus. The OpenGL half is GlxContext.cpp, the X errors are X11Connection.cpp, and what
// pointer and keys mean is X11Input.cpp.
#include "platform/X11Window.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>

#include <algorithm>
#include <cstdio>

#include "KV_ScenePane/PathText.h"
#include "platform/CurrentContext.h"

namespace {

constexpr std::int32_t kLongestSide = 32767;       // X carries sizes in 16 bits
constexpr std::uintptr_t kLargestId = 0x1FFFFFFF;  // X leaves the three top bits of an id zero

constexpr long kPointerMask = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
constexpr long kKeyMask = KeyPressMask | KeyReleaseMask;
constexpr long kWindowMask = StructureNotifyMask | ExposureMask | FocusChangeMask | kPointerMask;

std::string ParentText(std::uintptr_t handle) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(handle));
    return std::string("The parent ") + text;
}

/// Only of what Xlib has read already.
bool NextIsOneWith(Display* display, const XEvent& event) {
    if (XEventsQueued(display, QueuedAlready) == 0) return false;
    XEvent next{};
    XPeekEvent(display, &next);
    return X11Input::CanCoalesce(event, next);
}

unsigned XSide(std::int32_t side) { return static_cast<unsigned>(std::clamp(side, 1, kLongestSide)); }

}  // namespace

/// Around requests. A round trip may read events into the queue of Xlib, where no descriptor tells of them.
class X11Window::RoundTrip {
public:
    explicit RoundTrip(X11Window& window) : m_window(window) { X11Connection::TakeErrors(); }
    ~RoundTrip() {
        if (m_window.SystemEventsWait()) m_window.m_messages.Wake();
    }
    RoundTrip(const RoundTrip&) = delete;
    RoundTrip& operator=(const RoundTrip&) = delete;

private:
    X11Window& m_window;
};

// ---- life

bool X11Window::Open(std::string* reason) {
    if (m_size.width > kLongestSide || m_size.height > kLongestSide) {
        *reason = "A window of " + std::to_string(m_size.width) + " x " + std::to_string(m_size.height) +
                  " pixels is too large";
        return false;
    }
    m_pConnection = X11Connection::Open(m_request.display, reason);
    if (m_pConnection == nullptr) return false;
    if (!IsChild()) {
        const int screen = DefaultScreen(m_pConnection->Get());
        m_parent = {RootWindow(m_pConnection->Get(), screen), screen};
    } else if (!FindParent(m_request.parent, &m_parent, reason)) {
        m_pConnection.reset();
        return false;
    }
    m_messages.Watch(ConnectionNumber(m_pConnection->Get()));
    m_keyboard = X11Keyboard::Of(m_pConnection->Get());
    XkbSetDetectableAutoRepeat(m_pConnection->Get(), True, nullptr);  // a held key repeats its press alone
    m_pGlx = std::make_unique<GlxContext>(*m_pConnection, m_parent.screen);
    return true;
}

bool X11Window::FindParent(std::uintptr_t handle, Parent* parent, std::string* reason) {
    Display* const display = m_pConnection->Get();
    XWindowAttributes attributes{};
    const X11Connection::Attempt attempt(*m_pConnection);
    const bool possible = handle != 0 && handle <= kLargestId;
    if (!possible || XGetWindowAttributes(display, handle, &attributes) == 0 || !attempt.Succeeded()) {
        *reason = ParentText(handle) + " is not a window of the X display " + m_pConnection->Name();
        return false;
    }
    if (attributes.c_class == InputOnly) {
        *reason = ParentText(handle) + " is a window for input only";
        return false;
    }
    *parent = {handle, XScreenNumberOfScreen(attributes.screen)};
    return true;
}

void X11Window::Close() {
    Display* const display = m_pConnection->Get();
    X11Connection::TakeErrors();
    m_messages.Unwatch(ConnectionNumber(display));
    m_pGlx.reset();
    if (m_pConnection->IsAlive()) {
        if (m_nWindow != 0) XDestroyWindow(display, m_nWindow);
        if (m_nColors != 0) XFreeColormap(display, m_nColors);
    }
    m_pConnection.reset();
    m_nWindow = m_nColors = 0;
    m_nCursorShape = kParentsCursor;
    m_bCapture = m_bListensToKeys = false;
    m_input = {};
    m_pendingInputs.clear();
    m_keyboard = {};
}

bool X11Window::Recreate() {
    const bool hadFocus = HasFocus();
    X11Input input = m_input;
    input.ForgetKeys();
    if (!QueuedWindow::Recreate()) return false;
    m_input = input;
    if (hadFocus) TakeFocus();
    return true;
}

bool X11Window::Exists() const { return m_nWindow != 0 && m_pConnection->IsAlive(); }

void X11Window::Show() {
    const RoundTrip roundTrip(*this);
    XMapWindow(m_pConnection->Get(), m_nWindow);
    XSync(m_pConnection->Get(), False);
}

bool X11Window::Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) {
    if (!IsChild() || !Exists()) return false;
    const RoundTrip roundTrip(*this);
    Parent found;
    std::string reason;
    if (!FindParent(parent, &found, &reason) || found.screen != m_parent.screen) return false;
    const X11Connection::Attempt attempt(*m_pConnection);
    XReparentWindow(m_pConnection->Get(), m_nWindow, found.window, x, y);
    if (!attempt.Succeeded()) return false;
    m_parent = found;
    m_request.parent = parent;
    m_request.x = x;
    m_request.y = y;
    return true;
}

void X11Window::Resize(std::int32_t width, std::int32_t height) {
    if (width > kLongestSide || height > kLongestSide) return;
    m_size = {width, height};
    if (!Exists()) return;
    const RoundTrip roundTrip(*this);
    Display* const display = m_pConnection->Get();
    XResizeWindow(display, m_nWindow, XSide(width), XSide(height));
    XSync(display, False);
}

// ---- OpenGL

BootstrapReport X11Window::BeginBootstrap() {
    if (m_pGlx == nullptr) return {};
    const RoundTrip roundTrip(*this);
    return m_pGlx->BeginBootstrap();
}

bool X11Window::ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) {
    if (m_pGlx == nullptr) return false;
    const RoundTrip roundTrip(*this);
    const std::int32_t found = m_pGlx->FindFormat(attributes);
    if (found != 0) *format = found;
    return found != 0;
}

void X11Window::EndBootstrap() {
    if (m_pGlx == nullptr) return;
    const RoundTrip roundTrip(*this);
    m_pGlx->EndBootstrap();
}

bool X11Window::SetPixelFormat(std::int32_t format) {
    if (m_pGlx == nullptr || m_nWindow != 0) return false;
    const RoundTrip roundTrip(*this);
    const GlxContext::WindowFormat chosen = m_pGlx->SetFormat(format);
    return chosen.visual != nullptr && MakeWindow(chosen) && m_pGlx->Attach(m_nWindow);
}

bool X11Window::MakeWindow(const GlxContext::WindowFormat& format) {
    Display* const display = m_pConnection->Get();
    const X11Connection::Attempt attempt(*m_pConnection);
    auto* const visual = static_cast<Visual*>(format.visual);
    m_nColors = XCreateColormap(display, RootWindow(display, m_parent.screen), visual, AllocNone);
    XSetWindowAttributes attributes{};
    attributes.colormap = m_nColors;
    attributes.event_mask = kWindowMask;
    // No background: the server would clear what the next frame covers anyway, and it would flicker.
    attributes.background_pixmap = None;
    m_nWindow = XCreateWindow(display, m_parent.window, m_request.x, m_request.y, XSide(m_size.width),
                              XSide(m_size.height), 0, format.depth, InputOutput, visual,
                              CWColormap | CWEventMask | CWBackPixmap | CWBorderPixel, &attributes);
    if (!attempt.Succeeded()) {
        m_nWindow = 0;
        return false;
    }
    if (!IsChild()) {
        DescribeToWindowManager();
        ListenToKeys(true);
    }
    ShowCursor();
    return true;
}

void X11Window::DescribeToWindowManager() {
    Display* const display = m_pConnection->Get();
    const std::string title = KV_ScenePane::PathBytes(m_request.title);
    XStoreName(display, m_nWindow, title.c_str());
    XChangeProperty(display, m_nWindow, XInternAtom(display, "_NET_WM_NAME", False),
                    XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()), static_cast<int>(title.size()));
    m_nDeleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
    Atom protocols[] = {m_nDeleteWindow};
    XSetWMProtocols(display, m_nWindow, protocols, 1);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(display, m_nWindow, &hints);
}

bool X11Window::CreateContext(const ContextAttributes& attributes) {
    if (!Exists()) return false;
    const RoundTrip roundTrip(*this);
    return m_pGlx->Create(attributes);
}

// The window may have been destroyed with its parent and the event not be handled yet. GLX would then call a context
// current that draws nowhere, so the events that have arrived are looked through; all of them when the context changes.
bool X11Window::MakeCurrent() {
    if (Exists() && m_pGlx->Handle() != nullptr) {
        const RoundTrip roundTrip(*this);
        const bool isCurrent = m_pGlx->IsCurrent();
        if (!isCurrent) XSync(m_pConnection->Get(), False);
        if (!IsTaken() && (isCurrent || m_pGlx->MakeCurrent())) return true;
    }
    ReleaseCurrentEgl();
    ReleaseCurrentGlx();
    return false;
}

bool X11Window::IsTaken() {
    Display* const display = m_pConnection->Get();
    XEvent event{};
    if (m_nWindow != 0 && XEventsQueued(display, QueuedAfterReading) > 0 &&
        XCheckTypedWindowEvent(display, m_nWindow, DestroyNotify, &event) == True) {
        m_nWindow = 0;
        m_messages.Wake();  // the client hears of it in the next round
    }
    return !Exists();
}

void X11Window::DeleteContext() {
    if (m_pGlx == nullptr) return;
    const RoundTrip roundTrip(*this);
    m_pGlx->Delete();
}

void X11Window::SwapBuffers() {
    if (!Exists() || m_pGlx->Handle() == nullptr) return;
    const RoundTrip roundTrip(*this);
    m_pGlx->SwapBuffers();
}

// ---- pointer

void X11Window::SetCursor(PaneCursor cursor) {
    m_cursor = cursor;
    ShowCursor();
}

void X11Window::BeginWaitCursor() {
    ++m_nWaitCursors;
    ShowCursor();
}

void X11Window::EndWaitCursor() {
    m_nWaitCursors = std::max(0, m_nWaitCursors - 1);
    ShowCursor();
}

// Flushed at once: a wait cursor is shown by one who is about to keep the thread busy.
void X11Window::ShowCursor() {
    if (!Exists()) return;
    const RoundTrip roundTrip(*this);
    const unsigned shape = m_nWaitCursors > 0              ? XC_watch
                           : m_cursor == PaneCursor::Lasso ? XC_crosshair
                                                           : kParentsCursor;
    if (shape == m_nCursorShape) return;
    m_nCursorShape = shape;
    Display* const display = m_pConnection->Get();
    const Cursor cursor = shape == kParentsCursor ? None : XCreateFontCursor(display, shape);
    XDefineCursor(display, m_nWindow, cursor);
    if (cursor != None) XFreeCursor(display, cursor);  // the window keeps it
    XFlush(display);
}

// ---- events

bool X11Window::SystemEventsWait() const {
    if (m_pConnection == nullptr) return false;
    return !m_pConnection->IsAlive() || XEventsQueued(m_pConnection->Get(), QueuedAfterFlush) > 0;
}

void X11Window::HandleSystemEvents() {
    const RoundTrip roundTrip(*this);
    // As many as wait now: a server that sends without end must not keep the host's loop here. A handler may close the
    // window and the connection with it, make both anew, or run a round of its own.
    for (int count = XPending(m_pConnection->Get()); count > 0 && m_pConnection != nullptr && Exists(); --count) {
        Display* const display = m_pConnection->Get();
        if (XEventsQueued(display, QueuedAlready) == 0) return;
        XEvent event{};
        XNextEvent(display, &event);
        int together = 1;
        for (; count > 1 && NextIsOneWith(display, event); --count, ++together) XNextEvent(display, &event);
        HandleEvent(event, together);
    }
}

// Whatever calls the client comes last: it may have closed the window.
void X11Window::HandleEvent(const _XEvent& event, int together) {
    if (event.type == MappingNotify) {  // of no window
        XMappingEvent mapping = event.xmapping;
        XRefreshKeyboardMapping(&mapping);
        m_keyboard = X11Keyboard::Of(m_pConnection->Get());
        return;
    }
    if (event.xany.window != m_nWindow) return;
    switch (event.type) {
        case Expose:
            if (event.xexpose.count == 0) m_paintQueue.Request(true);
            break;
        case ConfigureNotify:
            TakeConfiguration(event);
            break;
        case ReparentNotify:
            if (!IsChild()) break;  // a window manager's frame is no parent of ours
            m_parent.window = event.xreparent.parent;
            m_request.parent = m_parent.window;
            m_request.x = event.xreparent.x;
            m_request.y = event.xreparent.y;
            break;
        case UnmapNotify:
            DispatchMouse(m_input.ReleaseButtons());
            break;
        case DestroyNotify:
            m_nWindow = 0;
            break;
        case ClientMessage:
            if (m_nDeleteWindow != 0 && static_cast<Atom>(event.xclient.data.l[0]) == m_nDeleteWindow) Destroy();
            break;
        case FocusIn:
        case FocusOut:
            TakeFocusChange(event);
            break;
        case ButtonPress:
        case ButtonRelease:
        case MotionNotify:
            TakeMouse(event);
            break;
        case KeyPress:
        case KeyRelease:
            m_pClient->OnKey(m_input.TakeKey(event, together, m_keyboard));
            break;
        default:
            break;
    }
}

void X11Window::TakeConfiguration(const _XEvent& event) {
    const XConfigureEvent& configuration = event.xconfigure;
    if (IsChild()) {
        m_request.x = configuration.x;
        m_request.y = configuration.y;
    }
    // The window of a size of nothing has one pixel.
    const bool sameSize = XSide(m_size.width) == static_cast<unsigned>(configuration.width) &&
                          XSide(m_size.height) == static_cast<unsigned>(configuration.height);
    if (!sameSize) m_size = {configuration.width, configuration.height};
}

void X11Window::TakeMouse(const _XEvent& event) {
    std::vector<KV_ScenePane::MouseInput> inputs = m_input.TakeLostReleases(event);
    if (const std::optional<KV_ScenePane::MouseInput> input = m_input.TakeMouse(event)) {
        if (event.type == ButtonPress && input->kind != KV_ScenePane::MouseInput::Kind::Wheel) TakeFocus();
        inputs.push_back(*input);
    }
    DispatchMouse(inputs);
}

// A handler may close the window, or run a round that tells the rest before what it finds itself.
void X11Window::DispatchMouse(const std::vector<KV_ScenePane::MouseInput>& inputs) {
    m_pendingInputs.insert(m_pendingInputs.end(), inputs.begin(), inputs.end());
    while (!m_pendingInputs.empty()) {
        const KV_ScenePane::MouseInput input = m_pendingInputs.front();
        m_pendingInputs.pop_front();
        m_pClient->OnMouse(input);
    }
}

// ---- keys

bool X11Window::HasFocus() {
    if (!Exists()) return false;
    const RoundTrip roundTrip(*this);
    Window focused = None;
    int revert = 0;
    XGetInputFocus(m_pConnection->Get(), &focused, &revert);
    return focused == m_nWindow;
}

// Not with the time of the press, as programs do that share the screen: a window manager may have given the focus to
// the host's window for the same press, at a later time, and the pane inside it would stay deaf.
void X11Window::TakeFocus() {
    const RoundTrip roundTrip(*this);
    const X11Connection::Attempt attempt(*m_pConnection);
    XSetInputFocus(m_pConnection->Get(), m_nWindow, RevertToParent, CurrentTime);
    if (attempt.Succeeded()) ListenToKeys(true);
}

void X11Window::TakeFocusChange(const _XEvent& event) {
    const XFocusChangeEvent& change = event.xfocus;
    if (event.type == FocusOut) m_input.ForgetKeys();
    const bool isByGrab = change.mode == NotifyGrab || change.mode == NotifyUngrab;
    const bool isByPointer = change.detail == NotifyPointer || change.detail == NotifyPointerRoot;
    if (IsChild() && !isByGrab && !isByPointer) ListenToKeys(event.type == FocusIn);
}

// X gives the keys of a focused window to the child below the pointer, if that listens: a pane that always did would
// take what the user types into a field of the host while the pointer rests on the pane.
void X11Window::ListenToKeys(bool listen) {
    if (listen == m_bListensToKeys) return;
    m_bListensToKeys = listen;
    XSelectInput(m_pConnection->Get(), m_nWindow, listen ? kWindowMask | kKeyMask : kWindowMask);
    XFlush(m_pConnection->Get());
}
