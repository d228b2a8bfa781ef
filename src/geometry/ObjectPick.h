// Which of several objects a line hits first.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "geometry/Vector3.h"

class Mesh;

/// A point of an object on a line.
struct ObjectHit {
    std::size_t object = 0;     ///< index in the span
    std::int32_t triangle = 0;  ///< of the object
    Float3 point{};             ///< world frame
    float distance = 0.0f;      ///< from the origin of the line, scene units
};

/// The hit nearest to @p origin of the visible objects on an unbounded line, on either side of the origin; of two at
/// the same distance that of the first object. Costs of Mesh::IntersectLine() per object.
/// @param direction  of any length
/// @throws std::out_of_range as Mesh::IntersectLine()
[[nodiscard]] std::optional<ObjectHit> FindNearestObject(std::span<const std::shared_ptr<Mesh>> meshes,
                                                         const Float3& origin, const Float3& direction);
