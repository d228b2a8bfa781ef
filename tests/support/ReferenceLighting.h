// Colours of the reference renderer: fixed-function lighting per vertex, and the lit programs per pixel.
#pragma once
#include "support/ReferenceProjection.h"

namespace reference {

/// 0 to 1 per component.
[[nodiscard]] Vec Clamped(const Vec& color);

/// Two-sided fixed-function lighting of a vertex. The light is directional; the front diffuse is the vertex's colour.
/// @param normal  eye frame, used as it is: OpenGL is not asked to normalise
[[nodiscard]] Vec FixedFunctionFront(const Lighting& lighting, const Vec& normal, const Vec& color, const Vec& tint);
[[nodiscard]] Vec FixedFunctionBack(const Lighting& lighting, const Vec& normal, const Vec& tint);

/// What the vertex stage of a lit program passes on, interpolated linearly over a triangle.
struct Varyings {
    Vec position;  ///< eye frame
    Vec normal;    ///< unit at a vertex, shorter between
    Vec light;     ///< direction to the lamp, unit at a vertex
    Vec color;
    Vec shadow;  ///< place in the shadow map, 0 to 1 per component
};
[[nodiscard]] Varyings Mixed(const Varyings& a, const Varyings& b, const Varyings& c, const Vec& shares);

/// The program of per-pixel lighting.
[[nodiscard]] Vec PerPixel(const Lighting& lighting, const Varyings& at, const Vec& tint, bool front);
/// The program of shadows.
[[nodiscard]] Vec Shadowed(const Lighting& lighting, const Varyings& at, const Vec& tint, bool front, bool inShadow);

}  // namespace reference
