// The cursor on the screen of an X server.
#pragma once
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

#include <stdexcept>

/// What the X server shows under the pointer, as a number.
inline unsigned long ShownCursor(Display* display) {
    XSync(display, False);
    XFixesCursorImage* const image = XFixesGetCursorImage(display);
    if (image == nullptr) throw std::runtime_error("no cursor on the screen");
    unsigned long sum = 0;
    for (int i = 0; i < image->width * image->height; ++i) sum = sum * 31 + image->pixels[i];
    XFree(image);
    return sum;
}
