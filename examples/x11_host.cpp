// The viewer in a plain X11 program: x11_host FILE...
//
// The program makes a window and the viewer as a child of it. Its event loop waits for two descriptors: that of its own
// X connection, whose events it handles itself, and that of the viewer, for which it calls ProcessEvents().
#include <X11/Xlib.h>
#include <poll.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "KV_ScenePane/ScenePane.h"

namespace {

/// The events of the host's own window. @return false when the user closed it
bool HandleOwnEvents(Display* display, KV_ScenePane::_DKV_ScenePane& methods) {
    bool isOpen = true;
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == ClientMessage) isOpen = false;  // WM_DELETE_WINDOW, the only protocol that is announced
        if (event.type != ConfigureNotify) continue;
        const auto width = static_cast<std::int16_t>(event.xconfigure.width);
        methods.SetSize(width, static_cast<std::int16_t>(event.xconfigure.height));
        methods.PerformInvalidate();
    }
    return isOpen;
}

}  // namespace

int main(int argc, char** argv) {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) return std::fputs("no X display\n", stderr), 1;
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 800, 600, 0, 0, 0);
    XSelectInput(display, window, StructureNotifyMask);
    Atom close = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, window, &close, 1);
    XMapWindow(display, window);
    XSync(display,
          False);  // the viewer has its own connection: the server must know the window before that asks for it

    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = window;
    request.width = 800;
    request.height = 600;
    std::string reason;
    auto viewer = CreateScenePane(request, &reason);
    if (!viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    for (int i = 1; i < argc; ++i)
        if (!viewer->ImportFile(argv[i], {}, &reason)) std::fprintf(stderr, "%s: %s\n", argv[i], reason.c_str());
    viewer->Methods().CenterView();

    while (HandleOwnEvents(display, viewer->Methods())) {
        viewer->ProcessEvents();
        // Events that Xlib has read already make no descriptor readable.
        if (XPending(display) > 0) continue;
        pollfd ready[] = {{ConnectionNumber(display), POLLIN, 0}, {viewer->EventDescriptor(), POLLIN, 0}};
        poll(ready, 2, -1);
    }
    viewer.reset();  // before the window that contains it
    XCloseDisplay(display);
    return 0;
}
