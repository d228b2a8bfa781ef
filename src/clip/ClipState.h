// The clip plane of a control and its two switches.
#pragma once
#include <cstdint>

#include "KV_ScenePane/ClipHeight.h"
#include "clip/Plane.h"

/// Written by clip/ alone.
///
/// Invariant: the plane is valid whether or not it is switched on; a control starts with it at (0, 0, 10).
struct ClipState {
    std::uint8_t m_bClipPlaneVisible = 0;  ///< the plane is drawn, and its handles react to the mouse
    std::uint8_t m_bClipPlaneActive = 0;   ///< objects are clipped by it
    Plane m_clipPlane;
    KV_ScenePane::ClipHeight m_clipHeight;  ///< of the last placement at the data
};
