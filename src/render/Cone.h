// A lit cone, the tip of an axis.
#pragma once
#include "geometry/Vector3.h"

/// Draws a cone without its base disc, lit by GL_LIGHT0. Afterwards lighting is disabled and the diffuse front material
/// has its colour. A cone along -z is not rotated: it points along +z from the same base.
/// @param base, tip  in the coordinates of the current modelview matrix
/// @param radius     of the circle around @p base
/// @param color      r, g, b in 0..1; passed because a query of the current colour would wait for the driver
void DrawCone(const Float3& base, const Float3& tip, float radius, const Float3& color);
