// Rotations of the camera: from a mouse travel to the rotated frame, and where in the window a drag rolls.
#pragma once
#include <cstdint>

#include "KV_ScenePane/Modes.h"
#include "geometry/CACADQTrafo.h"
#include "geometry/Vector3.h"
#include "view/ViewFrame.h"

/// What a rotation depends on beside the frame and the travel.
struct RotationRule {
    std::int32_t mode = KV_ScenePane::RotateFree;  ///< a KV_ScenePane::RotationMode; any other value rotates freely
    bool roll = false;          ///< about the viewing axis in any mode, following a mouse that circles the centre
    std::int32_t quadrant = 0;  ///< of the mouse, for the roll: see RollQuadrant()
    std::int32_t width = 1, height = 1;  ///< of the window, pixels
    Float3 pivot{};                      ///< fixed point of the free rotation, world frame
};

/// The frame after a mouse travel of (dx, dy) pixels, y downward. A travel across the whole window is half a turn; the
/// free rotation measures both directions by the smaller side.
///
/// Only the free rotation moves the centre, and only it works in single precision. The axes are not renormalised, so
/// rounding adds up over a long drag. A window without area leaves the frame unchanged.
[[nodiscard]] ViewFrame RotateFrame(const ViewFrame& frame, const RotationRule& rule, std::int32_t dx, std::int32_t dy);

/// The right-handed rotation about an axis of any length but 0; no translation.
[[nodiscard]] CACADQTrafo RotationAbout(const Float3& axis, double angleRad);
/// Rotates a direction in double precision, then rounds each component to float.
[[nodiscard]] Float3 RotateDirection(const CACADQTrafo& rotation, const Float3& direction);

/// Quadrant of a pixel: 0 top left, 1 top right, 2 bottom right, 3 bottom left of the window's centre pixel
/// (width / 2, height / 2), which is itself in 2.
[[nodiscard]] std::int32_t RollQuadrant(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
/// Whether a drag that begins at this pixel rolls the view. The circle itself is inside; its radius is half the smaller
/// side, rounded down.
[[nodiscard]] bool IsOutsideInscribedCircle(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
