// The process-wide debugger output, where the viewer reports reasons. A host replaces its sink through
// KV_ScenePane/DebugOutput.h.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"

/// Passes one text to the sink, by default standard error, on the calling thread. Threads have their turns one after
/// the other; no lock is held in the sink. What the sink writes itself is passed on when it has returned, before this
/// function returns.
/// @param text  UTF-8, mostly one line with its line end
/// @throws what the sink throws, after it has received the texts that it wrote itself
void DebugOutput(std::string_view text);

/// Keeps the texts of this thread until its destruction and passes them on then. For work during which a sink must not
/// run, because it may call any method of a viewer. Exceptions of the sink are dropped, unless PassOn() ends the delay.
class DelayedDebugOutput {
public:
    DelayedDebugOutput();
    ~DelayedDebugOutput();
    DelayedDebugOutput(const DelayedDebugOutput&) = delete;
    DelayedDebugOutput& operator=(const DelayedDebugOutput&) = delete;

    /// Ends the delay before the destruction. Inside another one or inside the sink it does nothing.
    /// @throws what the sink throws
    void PassOn();

private:
    bool m_bOutermost;  ///< false inside another one or inside the sink, which pass the texts on, and after PassOn()
    std::vector<std::string> m_vTexts;
};
