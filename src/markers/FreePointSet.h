// A cloud of coloured points that is stored on the GPU alone.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"

/// The OpenGL names belong to the context of the control's window and become invalid with it.
struct FreePointSet {
    std::int32_t id = 0;
    std::int32_t numPoints = 0;
    std::uint32_t vertexArray = 0;
    std::uint32_t positionBuffer = 0;
    std::uint32_t colorBuffer = 0;
    std::uint8_t visible = 1;
    float alpha = 1.0f;
    Float3 boxMin{}, boxMax{};  ///< world frame
};
