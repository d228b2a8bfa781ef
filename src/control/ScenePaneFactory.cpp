// Makes viewers; the version of the library.
#include <utility>

#include "KV_ScenePane/ScenePane.h"
#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"
#include "platform/UserMessage.h"
#include "platform/WindowFactory.h"

namespace KV_ScenePane {

std::unique_ptr<ScenePane> CreateScenePane(const WindowRequest& request, std::string* reason) {
    // When the driver refuses the context, the reason is what the control shows to the user.
    const auto lastMessage = std::make_shared<std::string>();
    WindowRequest recorded = request;
    recorded.showMessage = [hook = request.showMessage, lastMessage](const std::string& text) {
        *lastMessage = text;
        ShowUserMessage(hook, text);
    };

    auto control = std::make_shared<CKV_ScenePaneCtrl>(MakePaneWindow(recorded));
    control->m_nGlMajorVersion = request.glMajor;
    control->m_nGlMinorVersion = request.glMinor;
    control->m_nGlSamples = request.samples;
    control->m_bSamplesOptional = true;
    control->SetScale(request.scale);
    std::string windowReason;
    const bool isCreated = control->CreateControlWindow(&windowReason);
    if (reason != nullptr) *reason = control->m_strContextRemark;  // samples that were left out, or a refused version
    if (isCreated) return MakeHandle(std::move(control));
    if (reason != nullptr && !windowReason.empty()) *reason = windowReason;
    if (reason != nullptr && reason->empty()) *reason = *lastMessage;
    return nullptr;
}

int LibraryVersion() { return KV_SCENEPANE_VERSION; }

}  // namespace KV_ScenePane
