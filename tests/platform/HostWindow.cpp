// Requests to an X server as a host makes them, each processed when the function returns.
#include "platform/HostWindow.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/extensions/Xfixes.h>

#include <stdexcept>

HostWindow::HostWindow() : m_pDisplay(XOpenDisplay(nullptr)) {
    if (m_pDisplay == nullptr) throw std::runtime_error("the host has no display");
    m_nWindow = XCreateSimpleWindow(m_pDisplay, DefaultRootWindow(m_pDisplay), 0, 0, 640, 480, 0, 0, 0x336699);
    XSelectInput(m_pDisplay, m_nWindow, StructureNotifyMask);
    XDefineCursor(m_pDisplay, m_nWindow, XCreateFontCursor(m_pDisplay, XC_left_ptr));
    XMapRaised(m_pDisplay, m_nWindow);
    for (XEvent event{}; event.type != MapNotify;) XNextEvent(m_pDisplay, &event);
}

HostWindow::~HostWindow() {
    if (m_pDisplay != nullptr) XCloseDisplay(m_pDisplay);
}

void HostWindow::Forget() { m_pDisplay = nullptr; }

unsigned long HostWindow::MakePixmap() { return XCreatePixmap(m_pDisplay, m_nWindow, 8, 8, 24); }

unsigned long HostWindow::MakeInputOnly() {
    const Window window =
        XCreateWindow(m_pDisplay, m_nWindow, 0, 0, 50, 50, 0, 0, InputOnly, CopyFromParent, 0, nullptr);
    XSync(m_pDisplay, False);
    return window;
}

WindowPlace HostWindow::PlaceOf(unsigned long window) {
    XWindowAttributes attributes{};
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    XGetWindowAttributes(m_pDisplay, window, &attributes);
    XQueryTree(m_pDisplay, window, &root, &parent, &children, &count);
    XFree(children);
    return {parent,           attributes.x,      attributes.y,
            attributes.width, attributes.height, attributes.map_state != IsUnmapped};
}

int HostWindow::ChildCount() {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    XQueryTree(m_pDisplay, m_nWindow, &root, &parent, &children, &count);
    XFree(children);
    return static_cast<int>(count);
}

int HostWindow::CountTitled(const std::string& title, WindowPlace* place) {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    int found = 0;
    // Windows of a connection that was closed before may disappear between the requests: not while the server is
    // grabbed.
    XGrabServer(m_pDisplay);
    XQueryTree(m_pDisplay, DefaultRootWindow(m_pDisplay), &root, &parent, &children, &count);
    for (unsigned i = 0; i < count; ++i) {
        if (TextProperty(children[i], "WM_NAME") != title) continue;
        ++found;
        if (place != nullptr) *place = PlaceOf(children[i]);
    }
    XUngrabServer(m_pDisplay);
    XSync(m_pDisplay, False);
    XFree(children);
    return found;
}

std::string HostWindow::TextProperty(unsigned long window, const char* name) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* bytes = nullptr;
    XGetWindowProperty(m_pDisplay, window, XInternAtom(m_pDisplay, name, False), 0, 1000, False, AnyPropertyType, &type,
                       &format, &count, &left, &bytes);
    const std::string text(bytes == nullptr ? "" : reinterpret_cast<const char*>(bytes), bytes == nullptr ? 0 : count);
    XFree(bytes);
    return text;
}

Rgba HostWindow::ShownAt(int x, int y) {
    XSync(m_pDisplay, False);
    XImage* const image = XGetImage(m_pDisplay, DefaultRootWindow(m_pDisplay), x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr) throw std::runtime_error("no picture of the screen");
    const unsigned long pixel = XGetPixel(image, 0, 0);
    XDestroyImage(image);
    return {static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255), static_cast<int>(pixel & 255)};
}

void HostWindow::Resize(unsigned long window, int width, int height) {
    XResizeWindow(m_pDisplay, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(m_pDisplay, False);
}

void HostWindow::SendDelete(unsigned long window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(m_pDisplay, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(m_pDisplay, "WM_DELETE_WINDOW", False));
    XSendEvent(m_pDisplay, window, False, NoEventMask, &event);
    XSync(m_pDisplay, False);
}

void HostWindow::SendMove(unsigned long window, int x, int y) {
    XEvent event{};
    event.xmotion.type = MotionNotify;
    event.xmotion.window = window;
    event.xmotion.x = x;
    event.xmotion.y = y;
    XSendEvent(m_pDisplay, window, False, PointerMotionMask, &event);
    XSync(m_pDisplay, False);
}

void HostWindow::SendClick(unsigned long window, unsigned button, int x, int y, unsigned long time) {
    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.window = window;
    event.xbutton.button = button;
    event.xbutton.x = x;
    event.xbutton.y = y;
    event.xbutton.time = time;
    XSendEvent(m_pDisplay, window, False, ButtonPressMask, &event);
    event.xbutton.type = ButtonRelease;
    event.xbutton.state = Button1Mask << (button - 1);
    XSendEvent(m_pDisplay, window, False, ButtonReleaseMask, &event);
    XSync(m_pDisplay, False);
}

void HostWindow::SendKeyPresses(unsigned long window, unsigned long symbol, int count) {
    for (int i = 0; i < count; ++i) SendKey(window, symbol, true);
}

void HostWindow::SendKeyRelease(unsigned long window, unsigned long symbol) { SendKey(window, symbol, false); }

void HostWindow::SendKey(unsigned long window, unsigned long symbol, bool isDown) {
    XEvent event{};
    event.xkey.type = isDown ? KeyPress : KeyRelease;
    event.xkey.window = window;
    event.xkey.keycode = XKeysymToKeycode(m_pDisplay, symbol);
    XSendEvent(m_pDisplay, window, False, isDown ? KeyPressMask : KeyReleaseMask, &event);
    XSync(m_pDisplay, False);
}

bool HostWindow::CanGrabPointer() {
    const bool grabbed = XGrabPointer(m_pDisplay, m_nWindow, False, ButtonPressMask, GrabModeAsync, GrabModeAsync, None,
                                      None, CurrentTime) == GrabSuccess;
    XUngrabPointer(m_pDisplay, CurrentTime);
    XSync(m_pDisplay, False);
    return grabbed;
}

void HostWindow::PointAt(unsigned long window) {
    XWarpPointer(m_pDisplay, None, window, 0, 0, 0, 0, 20, 20);
    XSync(m_pDisplay, False);
}

unsigned long HostWindow::ShownCursor() {
    XSync(m_pDisplay, False);
    XFixesCursorImage* const image = XFixesGetCursorImage(m_pDisplay);
    if (image == nullptr) throw std::runtime_error("no cursor on the screen");
    // Not the serial number, which changes with every definition of the same look.
    unsigned long sum = 0;
    for (int i = 0; i < image->width * image->height; ++i) sum = sum * 31 + image->pixels[i];
    XFree(image);
    return sum;
}

void HostWindow::Destroy() {
    XDestroyWindow(m_pDisplay, m_nWindow);
    XSync(m_pDisplay, False);
}

void HostWindow::Sync() { XSync(m_pDisplay, False); }
