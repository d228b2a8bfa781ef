// Which class serves which kind of request.
#include "platform/WindowFactory.h"

#include "platform/NoPictureWindow.h"
#include "platform/OffscreenWindow.h"
#include "platform/X11Window.h"

std::unique_ptr<PaneWindow> MakePaneWindow(const KV_ScenePane::WindowRequest& request) {
    using Kind = KV_ScenePane::WindowRequest::Kind;
    switch (request.kind) {
        case Kind::Child:
        case Kind::TopLevel:
            return std::make_unique<X11Window>(request);
        case Kind::OffScreen:
            return std::make_unique<OffscreenWindow>(request);
        case Kind::NoPicture:
            break;
    }
    return std::make_unique<NoPictureWindow>(request);
}
