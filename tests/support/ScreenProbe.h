// Whether the driver shows frames in the windows of the X server of the tests.
#pragma once
#include <chrono>
#include <thread>

#include "support/PlainContext.h"
// last, for its macros
#include <X11/Xutil.h>

/// False for zink on an X server without DRI3, where windows stay black after every swap. Asked with plain GLX, and
/// without the viewer: a fault of the viewer does not make it false. No context is current afterwards, and its window
/// has covered others: ask before the viewer under test is made, or process its events.
inline bool DriverShowsWindows() {
    static const bool shows = [] {
        PlainGlxContext context;
        glClearColor(0, 1, 0, 1);
        for (int i = 0; i < 20; ++i) {
            glClear(GL_COLOR_BUFFER_BIT);
            context.Swap();
            XImage* const image = XGetImage(context.GetDisplay(), context.Drawable(), 5, 5, 1, 1, AllPlanes, ZPixmap);
            const bool green = image != nullptr && (XGetPixel(image, 0, 0) & 0xFFFFFF) == 0x00FF00;
            if (image != nullptr) XDestroyImage(image);
            if (green) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }();
    return shows;
}
