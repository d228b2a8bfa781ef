// Messages that the user must read, with or without a host that shows them.
#pragma once
#include <functional>
#include <string>

#include "KV_ScenePane/ScenePane.h"

/// Passes the text to the host's hook, which returns when the user has read it. Without a hook the text is one line of
/// the debugger output.
void ShowUserMessage(const std::function<void(const std::string& text)>& hook, const std::string& text);

/// The same for the about dialog, of which the debugger output receives the line.
void ShowAboutText(const std::function<void(const KV_ScenePane::AboutText& text)>& hook,
                   const KV_ScenePane::AboutText& text);
