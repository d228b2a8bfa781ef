// Limits of the graphics driver of a viewer.
#pragma once
#include <optional>

#include "KV_ScenePane/ScenePane.h"

struct GraphicsLimits {
    int largestSide = 0;  ///< pixels of a framebuffer
    int samples = 0;      ///< per pixel of the frames; 0 for none
};

/// Asks the OpenGL context of the viewer, which is current afterwards. Nothing for a viewer that draws nothing and
/// before its first frame.
[[nodiscard]] std::optional<GraphicsLimits> GraphicsLimitsOf(KV_ScenePane::ScenePane& pane);
