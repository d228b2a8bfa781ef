// The exported maker of viewers.
#include <utility>

#include "KV_ScenePane/ScenePane.h"
#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"

namespace KV_ScenePane {

namespace {

KV_ScenePane::WindowRequest::Kind KindOf(WindowRequest::Kind kind) {
    switch (kind) {
        case WindowRequest::Kind::Child:
            return KV_ScenePane::WindowRequest::Kind::Child;
        case WindowRequest::Kind::TopLevel:
            return KV_ScenePane::WindowRequest::Kind::TopLevel;
        case WindowRequest::Kind::OffScreen:
            return KV_ScenePane::WindowRequest::Kind::OffScreen;
        case WindowRequest::Kind::NoPicture:
            break;
    }
    return KV_ScenePane::WindowRequest::Kind::NoPicture;
}

}  // namespace

std::unique_ptr<ScenePane> CreateScenePane(const WindowRequest& request, std::string* reason) {
    KV_ScenePane::WindowRequest windowRequest;
    windowRequest.kind = KindOf(request.kind);
    windowRequest.parent = request.parent;
    windowRequest.display = request.display;
    windowRequest.x = request.x;
    windowRequest.y = request.y;
    windowRequest.width = request.width;
    windowRequest.height = request.height;
    windowRequest.title = request.title;
    const auto lastMessage = std::make_shared<std::string>();
    windowRequest.showMessage = [hook = request.showMessage, lastMessage](const std::string& text) {
        *lastMessage = text;
        if (hook)
            hook(text);
        else
            DebugOutput(text + "\n");
    };

    auto control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(windowRequest));
    control->m_nGlMajorVersion = request.glMajor;
    control->m_nGlMinorVersion = request.glMinor;
    control->m_nGlSamples = request.samples;
    std::string windowReason;
    if (control->CreateControlWindow(&windowReason)) return control;
    if (reason != nullptr) *reason = windowReason.empty() ? *lastMessage : windowReason;
    return nullptr;
}

}  // namespace KV_ScenePane
