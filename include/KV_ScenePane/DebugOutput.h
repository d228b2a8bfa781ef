// The debugger output: where the component says why an import added nothing, which method is not there yet, and so on.
#pragma once
#include <functional>
#include <string_view>

namespace KV_ScenePane {

/// Receives one piece of text in UTF-8, usually one or more whole lines. Called from any thread that imports, one call
/// at a time.
using DebugOutputSink = std::function<void(std::string_view text)>;

/// Takes over the debugger output of the whole process; an empty sink puts standard error back. After the return the
/// former sink is not called any more. Must not be called from inside a sink.
__attribute__((visibility("default"))) void SetDebugOutputSink(DebugOutputSink sink);

}  // namespace KV_ScenePane
