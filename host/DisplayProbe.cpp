// Asks the X server itself: $DISPLAY alone may name a server that is gone or that refuses this user.
#include "DisplayProbe.h"

#include <X11/Xlib.h>

bool CanOpenDisplay() {
    Display* const display = XOpenDisplay(nullptr);
    if (display != nullptr) XCloseDisplay(display);
    return display != nullptr;
}
