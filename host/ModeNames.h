// The names of views and draw modes on the command line, at the positions of their numbers (KV_ScenePane/Modes.h).
#pragma once
#include <array>
#include <string_view>

/// Names of the sides of an object that lies on the XY plane with its front toward -Y; of the two from -Z,
/// "bottom" has X to the right.
inline constexpr std::array<std::string_view, 8> kViewNames = {"back", "front",  "right",   "left",
                                                               "top",  "bottom", "oblique", "bottom-y-up"};

inline constexpr std::array<std::string_view, 8> kDrawModeNames = {"points", "wireframe", "flat",    "gouraud",
                                                                   "boxes",  "per-pixel", "nothing", "shadow-map"};
