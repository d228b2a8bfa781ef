// The viewer in a plain X11 program: x11_host [--frames N] FILE...
#include <X11/Xlib.h>
#include <poll.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"

int main(int argc, char** argv) {
    const bool timed = argc > 2 && std::strcmp(argv[1], "--frames") == 0;  // ends by itself, for tests
    int frames = timed ? std::atoi(argv[2]) : -1;
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) return std::fputs("no X display\n", stderr), 1;
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 800, 600, 0, 0, 0);
    XSelectInput(display, window, StructureNotifyMask);
    Atom close = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, window, &close, 1);
    XMapWindow(display, window);
    XSync(display, False);  // the viewer has a connection of its own: the window must exist before it looks for it

    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = window;
    request.width = 800, request.height = 600;
    std::string reason;
    auto viewer = CreateScenePane(request, &reason);
    if (!viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    for (int i = timed ? 3 : 1; i < argc; ++i)
        viewer->Methods().ImportScan(KV_ScenePane::WidePath(argv[i]).c_str(), 0xC8D4DC);
    viewer->Methods().CenterView();

    for (bool running = true; running && frames != 0; frames -= timed ? 1 : 0) {
        pollfd ready[] = {{ConnectionNumber(display), POLLIN, 0}, {viewer->EventDescriptor(), POLLIN, 0}};
        if (XPending(display) == 0) poll(ready, 2, timed ? 50 : -1);
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type == ClientMessage) running = false;
            if (event.type != ConfigureNotify) continue;
            const auto width = static_cast<std::int16_t>(event.xconfigure.width);
            viewer->Methods().SetSize(width, static_cast<std::int16_t>(event.xconfigure.height));
            viewer->Methods().PerformInvalidate();
        }
        viewer->ProcessEvents();
    }
    viewer.reset();  // before the window that it lives in
    XCloseDisplay(display);
    return 0;
}
