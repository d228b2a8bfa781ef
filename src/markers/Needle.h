// A needle: a straight pin from a point on the surface to a round head.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"

/// The look of needles that are made from now on. Lengths and radii in world units, colours 0x00BBGGRR.
struct NeedleRenderParameters {
    float needleLength = 10.0f;
    float headRadius = 1.0f;
    std::uint32_t headColor = 0xFF;
    float pinSize = 0.33f;
    std::uint32_t pinColor = 0x505050;
    float hitPointRadius = 0.25f;
    std::uint32_t hitPointColor = 0xFF0000;
    std::uint32_t headSelectionColor = 0;
};

struct Needle {
    std::int32_t id = 0;    ///< chosen by the host
    Float3 pinPosition{};   ///< world frame
    Float3 headPosition{};  ///< world frame
};
