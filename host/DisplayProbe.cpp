// Opens the display and closes it again.
#include "DisplayProbe.h"

#include <X11/Xlib.h>

bool CanOpenDisplay() {
    Display* const display = XOpenDisplay(nullptr);
    if (display != nullptr) XCloseDisplay(display);
    return display != nullptr;
}
