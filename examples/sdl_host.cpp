// The viewer in an SDL 2 program: sdl_host FILE...
//
// The viewer's window is a child of the X11 window of an SDL window. The loop waits for two descriptors: that of SDL's
// X connection, whose events SDL handles, and that of the viewer, for which it calls ProcessEvents().
#include <SDL.h>
#include <SDL_syswm.h>
#include <poll.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "KV_ScenePane/ScenePane.h"

namespace {

/// @return false when the user closed the window
bool HandleOwnEvents(KV_ScenePane::_DKV_ScenePane& methods) {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        if (event.type == SDL_QUIT) return false;
        if (event.type != SDL_WINDOWEVENT || event.window.event != SDL_WINDOWEVENT_SIZE_CHANGED) continue;
        methods.SetSize(static_cast<std::int16_t>(event.window.data1), static_cast<std::int16_t>(event.window.data2));
        methods.PerformInvalidate();
    }
    return true;
}

int Fail(const char* what, const char* reason) {
    std::fprintf(stderr, "%s: %s\n", what, reason);
    SDL_Quit();
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    setenv("SDL_VIDEODRIVER", "x11", 1);  // the viewer needs X11 windows, also on a Wayland desktop
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return Fail("no SDL", SDL_GetError());
    SDL_Window* const window = SDL_CreateWindow("sdl_host", 0, 0, 800, 600, SDL_WINDOW_RESIZABLE);
    if (window == nullptr) return Fail("no window", SDL_GetError());
    SDL_SysWMinfo native;
    SDL_VERSION(&native.version);
    if (SDL_GetWindowWMInfo(window, &native) == SDL_FALSE) return Fail("no X11 window", SDL_GetError());
    Display* const display = native.info.x11.display;
    XSync(display,
          False);  // the viewer has its own connection: the server must know the window before that asks for it

    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = native.info.x11.window;
    request.width = 800;
    request.height = 600;
    std::string reason;
    auto viewer = CreateScenePane(request, &reason);
    if (!viewer) return Fail("no viewer", reason.c_str());
    for (int i = 1; i < argc; ++i)
        if (!viewer->ImportFile(argv[i], {}, &reason)) std::fprintf(stderr, "%s: %s\n", argv[i], reason.c_str());
    viewer->Methods().CenterView();

    while (HandleOwnEvents(viewer->Methods())) {
        viewer->ProcessEvents();
        // Events that Xlib has read already make no descriptor readable.
        if (XPending(display) > 0) continue;
        pollfd ready[] = {{ConnectionNumber(display), POLLIN, 0}, {viewer->EventDescriptor(), POLLIN, 0}};
        poll(ready, 2, -1);
    }
    viewer.reset();  // before the window that contains it
    SDL_DestroyWindow(window);
    SDL_Quit();
    return 0;
}
