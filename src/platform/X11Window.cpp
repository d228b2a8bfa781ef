// The X window: creation, place, OpenGL, cursor. Its events are X11WindowEvents.cpp, the OpenGL calls GlxContext.cpp,
// the X errors X11Connection.cpp.
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

std::string ParentText(std::uintptr_t handle) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(handle));
    return std::string("The parent ") + text;
}

}  // namespace

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
    // From here on the host's loop wakes for the events of this connection.
    m_messages.Watch(ConnectionNumber(m_pConnection->Get()));
    m_keyboard = X11Keyboard::Of(m_pConnection->Get());
    XkbSetDetectableAutoRepeat(m_pConnection->Get(), True, nullptr);  // a held key repeats its press alone
    m_pGlx = std::make_unique<GlxContext>(*m_pConnection, m_parent.screen);
    return true;
}

// A host of another toolkit may pass anything: a pixmap, the address of a Wayland surface, an id of another display.
bool X11Window::FindParent(std::uintptr_t handle, Parent* parent, std::string* reason) {
    Display* const display = m_pConnection->Get();
    XWindowAttributes attributes{};
    const X11Connection::ErrorTrap trap(*m_pConnection);
    const bool possible = handle != 0 && handle <= kLargestId;
    if (!possible || XGetWindowAttributes(display, handle, &attributes) == 0 || !trap.Succeeded()) {
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

// In the reverse order of creation: the context needs the window, both need the connection.
void X11Window::Close() {
    Display* const display = m_pConnection->Get();
    X11Connection::InstallErrorHandlers();
    m_messages.Unwatch(ConnectionNumber(display));
    m_pGlx.reset();
    if (m_pConnection->IsAlive()) {
        if (m_nWindow != 0) XDestroyWindow(display, m_nWindow);
        if (m_nColormap != 0) XFreeColormap(display, m_nColormap);
    }
    m_pConnection.reset();
    m_nWindow = m_nColormap = m_nResizeSerial = 0;
    m_nCursorShape = kInheritCursor;
    m_bCapture = m_bSelectsKeys = false;
    m_input = {};
    m_pendingInputs.clear();
    m_keyboard = {};
}

// The buttons that are down now are released in the new window. Releases of keys go to it only if it has the focus.
bool X11Window::Recreate() {
    const bool hadFocus = HasFocus();
    X11Input input = m_input;
    input.ForgetKeys();
    if (!QueuedWindow::Recreate()) return false;
    m_input = input;
    if (hadFocus) RequestFocus();
    return true;
}

// Without a server there is no window, whatever its id.
bool X11Window::Exists() const { return m_nWindow != 0 && m_pConnection->IsAlive(); }

// The exposure of the new window arrives as an event: the first frame on the screen is drawn by ProcessEvents().
void X11Window::Show() {
    const RequestScope scope(*this);
    XMapWindow(m_pConnection->Get(), m_nWindow);
    XSync(m_pConnection->Get(), False);
}

bool X11Window::Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) {
    if (!IsChild() || !Exists()) return false;
    const RequestScope scope(*this);
    Parent found;
    std::string reason;
    if (!FindParent(parent, &found, &reason) || found.screen != m_parent.screen) return false;
    const X11Connection::ErrorTrap trap(*m_pConnection);
    XReparentWindow(m_pConnection->Get(), m_nWindow, found.window, x, y);
    if (!trap.Succeeded()) return false;
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
    const RequestScope scope(*this);
    Display* const display = m_pConnection->Get();
    m_nResizeSerial = NextRequest(display);
    XResizeWindow(display, m_nWindow, WindowSide(width), WindowSide(height));
    XSync(display, False);
}

unsigned X11Window::WindowSide(std::int32_t side) { return static_cast<unsigned>(std::clamp(side, 1, kLongestSide)); }

// ---- OpenGL

BootstrapReport X11Window::BeginBootstrap(const ContextAttributes&) {
    if (m_pGlx == nullptr) return {};
    const RequestScope scope(*this);
    return m_pGlx->BeginBootstrap();
}

bool X11Window::ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) {
    if (m_pGlx == nullptr) return false;
    const RequestScope scope(*this);
    const std::int32_t found = m_pGlx->FindFormat(attributes);
    if (found != 0) *format = found;
    return found != 0;
}

void X11Window::EndBootstrap() {
    if (m_pGlx == nullptr) return;
    const RequestScope scope(*this);
    m_pGlx->EndBootstrap();
}

bool X11Window::SetPixelFormat(std::int32_t format) {
    if (m_pGlx == nullptr || m_nWindow != 0) return false;
    const RequestScope scope(*this);
    const GlxContext::WindowFormat chosen = m_pGlx->SetFormat(format);
    return chosen.visual != nullptr && MakeWindow(chosen) && m_pGlx->Attach(m_nWindow);
}

bool X11Window::MakeWindow(const GlxContext::WindowFormat& format) {
    Display* const display = m_pConnection->Get();
    const X11Connection::ErrorTrap trap(*m_pConnection);
    // A visual other than the parent's needs a colormap and a border of its own, or the server refuses the window.
    auto* const visual = static_cast<Visual*>(format.visual);
    m_nColormap = XCreateColormap(display, RootWindow(display, m_parent.screen), visual, AllocNone);
    XSetWindowAttributes attributes{};
    attributes.colormap = m_nColormap;
    // No background: the server would clear what the next frame covers anyway, and the window would flicker.
    attributes.background_pixmap = None;
    m_nWindow = XCreateWindow(display, m_parent.window, m_request.x, m_request.y, WindowSide(m_size.width),
                              WindowSide(m_size.height), 0, format.depth, InputOutput, visual,
                              CWColormap | CWBackPixmap | CWBorderPixel, &attributes);
    if (!trap.Succeeded()) {
        m_nWindow = 0;
        return false;
    }
    if (!IsChild()) DescribeToWindowManager();
    SelectEvents(!IsChild());
    ShowCursor();
    return true;
}

// Title in both encodings, the protocol by which a manager asks to close, and that the window wants the keyboard focus.
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
    const RequestScope scope(*this);
    return m_pGlx->Create(attributes);
}

// The window may have been destroyed with its parent while that event is still queued. GLX would then make a context
// current that draws nowhere, so the queued events are searched for it. When the context changes, the server is asked
// first, so that its events have arrived; asking it for every call would cost a round trip per frame.
bool X11Window::MakeCurrent() {
    if (Exists() && m_pGlx->Handle() != nullptr) {
        const RequestScope scope(*this);
        const bool isCurrent = m_pGlx->IsCurrent();
        if (!isCurrent) XSync(m_pConnection->Get(), False);
        if (!IsLost() && (isCurrent || m_pGlx->MakeCurrent())) return true;
    }
    ReleaseCurrentEgl();
    ReleaseCurrentGlx();
    return false;
}

// Takes that one event out of the queue; all others stay in their order for ProcessEvents().
bool X11Window::IsLost() {
    Display* const display = m_pConnection->Get();
    XEvent event{};
    if (m_nWindow != 0 && XEventsQueued(display, QueuedAfterReading) > 0 &&
        XCheckTypedWindowEvent(display, m_nWindow, DestroyNotify, &event) == True) {
        m_nWindow = 0;
        m_messages.Wake();  // the next ProcessEvents() runs OnDestroy()
    }
    return !Exists();
}

void X11Window::DeleteContext() {
    if (m_pGlx == nullptr) return;
    const RequestScope scope(*this);
    m_pGlx->Delete();
}

void X11Window::SwapBuffers() {
    if (!Exists() || m_pGlx->Handle() == nullptr) return;
    const RequestScope scope(*this);
    m_pGlx->SwapBuffers(TakeSwapWait());
}

std::string X11Window::DeviceName() const { return Exists() ? "X display " + m_pConnection->Name() : ""; }

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

// Flushed at once: after a wait cursor is set, the thread is busy for long and sends nothing.
void X11Window::ShowCursor() {
    if (!Exists()) return;
    const RequestScope scope(*this);
    const unsigned shape = m_nWaitCursors > 0              ? XC_watch
                           : m_cursor == PaneCursor::Lasso ? XC_crosshair
                                                           : kInheritCursor;
    if (shape == m_nCursorShape) return;
    m_nCursorShape = shape;
    Display* const display = m_pConnection->Get();
    const Cursor cursor = shape == kInheritCursor ? None : XCreateFontCursor(display, shape);
    XDefineCursor(display, m_nWindow, cursor);
    if (cursor != None) XFreeCursor(display, cursor);  // the window keeps it
    XFlush(display);
}
