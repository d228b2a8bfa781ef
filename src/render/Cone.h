// A lit cone, the tip of an axis.
#pragma once
#include "geometry/Vector3.h"

/// Draws a cone without its base disc in the current colour, lit by GL_LIGHT0. Afterwards lighting is disabled and the
/// diffuse front material has that colour. A cone along -z is not rotated: it points along +z from the same base.
/// @param base, tip  in the coordinates of the current modelview matrix
/// @param radius     of the circle around @p base
void DrawCone(const Float3& base, const Float3& tip, float radius);
