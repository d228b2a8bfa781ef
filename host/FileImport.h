// The import of one file through the viewer's own methods.
#pragma once
#include <cstdint>
#include <string>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// What holds for every scan of an import.
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
    /// One line without the file's name: why it added nothing, or what the viewer said beside adding it; may be empty
    /// then.
    std::string text;
};

/// Hands skip value and confidence limit to the viewer, for the imports to come.
void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings);

/// Imports @p file (bytes), a scan or a mesh. Needs a DebugRouter for the reason of a failure, and the component
/// registry for an hps file or a texture. Never throws what the import throws: that is a reason, too.
[[nodiscard]] ImportResult ImportFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                      std::int32_t color);

/// Fits the view to the scene, then magnifies: 2 shows half as much.
void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom);
