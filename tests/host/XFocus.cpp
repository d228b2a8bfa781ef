// By a connection that is opened for each query: it sees what all other connections have sent before.
#include "host/XFocus.h"

#include <X11/Xlib.h>

#include <stdexcept>

std::uintptr_t FocusedWindow() {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) throw std::runtime_error("the X display of the test cannot be opened");
    Window window = None;
    int revert = 0;
    XGetInputFocus(display, &window, &revert);
    XCloseDisplay(display);
    return window;
}
