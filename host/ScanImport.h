// The import of one file through the viewer's own methods.
#pragma once
#include <cstdint>
#include <string>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// What holds for every file of an import.
struct ImportSettings {
    std::int16_t skip = 1;
    float confidence = 0.0f;
    std::int32_t color = 0xC8D4DC;  ///< 0x00BBGGRR, for scans without colours of their own: a light beige
};

/// What came of one file.
struct ImportResult {
    enum class State {
        NotStarted,  ///< cancelled before its turn
        Added,
        Failed
    };
    State state = State::NotStarted;
    std::string text;  ///< one line: why it added nothing, or what the viewer said beside adding it; may be empty then
};

/// Hands skip value and confidence limit to the viewer, for the imports to come.
void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings);

/// Imports @p file (bytes). Needs a DebugRouter for the reason of a failure.
[[nodiscard]] ImportResult ImportScanFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                          std::int32_t color);

/// Fits the view to the scene, then magnifies: 2 shows half as much.
void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom);
