// Which class answers which request.
#include "platform/WindowFactory.h"

#include "platform/NoPictureWindow.h"
#include "platform/OffscreenWindow.h"
#include "platform/X11Window.h"

std::unique_ptr<PaneWindow> MakePaneWindow(const PaneWindowRequest& request) {
    switch (request.kind) {
        case PaneWindowRequest::Kind::Child:
        case PaneWindowRequest::Kind::TopLevel:
            return std::make_unique<X11Window>(request);
        case PaneWindowRequest::Kind::OffScreen:
            return std::make_unique<OffscreenWindow>(request);
        case PaneWindowRequest::Kind::NoPicture:
            break;
    }
    return std::make_unique<NoPictureWindow>(request);
}
