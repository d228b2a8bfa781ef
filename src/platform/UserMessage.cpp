// The one place that decides where a message is shown.
#include "platform/UserMessage.h"

#include "base/DebugOutput.h"

void ShowUserMessage(const std::function<void(const std::string& text)>& hook, const std::string& text) {
    if (hook)
        hook(text);
    else
        DebugOutput(text + "\n");
}

void ShowAboutText(const std::function<void(const KV_ScenePane::AboutText& text)>& hook,
                   const KV_ScenePane::AboutText& text) {
    if (hook)
        hook(text);
    else
        DebugOutput(text.line + "\n");
}
