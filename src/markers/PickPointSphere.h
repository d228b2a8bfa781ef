// A numbered sphere at a picked point.
#pragma once
#include <cstdint>

struct PickPointSphere {
    float x = 0.0f, y = 0.0f, z = 0.0f;  ///< world frame
    std::uint32_t color = 0;             ///< 0x00BBGGRR
};
