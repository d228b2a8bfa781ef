// A lit cone, the head of an axis.
#pragma once
#include "geometry/Float3.h"

/// Draws it in the current colour and without a bottom; GL_LIGHT0 shines on it. Lighting is off afterwards, and the
/// front material keeps the colour. A cone down the z axis exactly is not turned over: it stands up.
/// @param radius  of the circle around @p base
void DrawCone(const Float3& base, const Float3& tip, float radius);
