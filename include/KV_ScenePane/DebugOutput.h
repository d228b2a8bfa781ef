// The debugger output: one process-wide channel for reasons and warnings, such as why an import added nothing.
#pragma once
#include <functional>
#include <string_view>

namespace KV_ScenePane {

/// Receives one piece of text in UTF-8, usually one or more whole lines, each ended by a line feed. Called on the
/// thread that writes it, which may be any thread that imports, one call at a time; never inside a frame. It may call
/// methods of a viewer, destroy the viewer and replace itself; what these write arrives when it has returned. It must
/// not wait for another thread that writes, such as a thread that imports, neither itself nor in an event loop that it
/// runs. What it throws reaches the call that wrote the text, except during a
/// repaint.
using DebugOutputSink = std::function<void(std::string_view text)>;

/// Redirects the debugger output of the whole process, of all viewers in it. Without a sink it is written to standard
/// error.
/// @param sink  receives all later text; empty restores standard error. After the return the former sink is not called
///              any more, except that a sink which replaces itself runs to its end.
__attribute__((visibility("default"))) void SetDebugOutputSink(DebugOutputSink sink);

}  // namespace KV_ScenePane
