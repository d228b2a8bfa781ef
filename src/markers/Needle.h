// A needle: a pin that stands in the surface and ends in a head.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"

/// How needles that are made later look.
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
    std::int32_t id = 0;
    Float3 pinPosition{};   ///< world frame
    Float3 headPosition{};  ///< world frame
};
