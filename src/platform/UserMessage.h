// Messages that the user must read, with or without a host that shows them.
#pragma once
#include <functional>
#include <string>

/// Passes the text to the host's hook, which returns when the user has read it. Without a hook the text is one line of
/// the debugger output.
void ShowUserMessage(const std::function<void(const std::string& text)>& hook, const std::string& text);
