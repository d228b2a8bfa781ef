// From a mouse travel to a turned camera frame, and where in the window a drag rolls.
#pragma once
#include <cstdint>

#include "geometry/CACADQTrafo.h"
#include "geometry/Float3.h"
#include "view/ViewFrame.h"

/// What a rotation depends on beside the frame and the travel.
struct RotationRule {
    std::int32_t mode = 3;      ///< 0 about the screen's horizontal, 1 its vertical, 2 the viewing axis; others: free
    bool roll = false;          ///< about the viewing axis whatever the mode, following a mouse that circles the centre
    std::int32_t quadrant = 0;  ///< of the mouse, for the roll: see RollQuadrant()
    std::int32_t width = 1, height = 1;  ///< of the window, pixels
    Float3 pivot{};                      ///< fixed point of the free rotation, world frame
};

/// The frame after a mouse travel of (dx, dy) pixels, y downward. Only the free rotation moves the centre, and only it
/// works in single precision. Nothing renormalises the axes. In a window without area the frame stays.
[[nodiscard]] ViewFrame ComputeRotatedFrame(const ViewFrame& frame, const RotationRule& rule, std::int32_t dx,
                                            std::int32_t dy);

/// The right-handed rotation about an axis of any length but 0; no translation.
[[nodiscard]] CACADQTrafo RotationAbout(const Float3& axis, double angleRad);
/// A direction turned in double precision, each component then rounded to float.
[[nodiscard]] Float3 TurnedDirection(const CACADQTrafo& rotation, const Float3& direction);

/// 0 top left, 1 top right, 2 bottom right, 3 bottom left of the window's centre pixel, which is itself in 2.
[[nodiscard]] std::int32_t RollQuadrant(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
/// A press there rolls the view.
[[nodiscard]] bool IsOutsideInscribedCircle(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
