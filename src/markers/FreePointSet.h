// A cloud of coloured points that is stored on the GPU alone.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"

/// The OpenGL names are 0 where nothing was uploaded: without a context, without points, or when graphics memory was
/// short. They are kept when their context goes, and then name nothing, or objects of others in the next context.
struct FreePointSet {
    std::int32_t id = 0;
    std::int32_t numPoints = 0;
    std::uint32_t vertexArray = 0;
    std::uint32_t positionBuffer = 0;
    std::uint32_t colorBuffer = 0;
    std::uint8_t visible = 1;
    bool isContextGone = false;  ///< the context of the names was destroyed: never drawn
    float alpha = 1.0f;
    Float3 boxMin{}, boxMax{};  ///< of the finite points, world frame; inverted when there are none

    [[nodiscard]] bool CanBeDrawn() const {
        return visible != 0 && numPoints > 0 && vertexArray != 0 && !isContextGone;
    }
};
