// By a connection that is opened for each call: a query sees what all other connections have sent before.
#include "host/XFocus.h"

#include <X11/Xlib.h>

#include <stdexcept>

namespace {
Display* OpenDisplay() {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) throw std::runtime_error("the X display of the test cannot be opened");
    return display;
}
}  // namespace

std::uintptr_t FocusedWindow() {
    Display* const display = OpenDisplay();
    Window window = None;
    int revert = 0;
    XGetInputFocus(display, &window, &revert);
    XCloseDisplay(display);
    return window;
}

void DestroyXWindow(std::uintptr_t window) {
    Display* const display = OpenDisplay();
    XDestroyWindow(display, window);
    XCloseDisplay(display);
}
