#include "geometry/ObjectPick.h"

#include "geometry/Mesh.h"

std::optional<ObjectHit> FindNearestObject(std::span<const std::shared_ptr<Mesh>> meshes, const Float3& origin,
                                           const Float3& direction) {
    std::optional<ObjectHit> nearest;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        if (meshes[i]->m_iVisible == 0) continue;
        ObjectHit hit{.object = i};
        hit.distance = meshes[i]->IntersectLine(origin.data(), direction.data(), &hit.triangle, hit.point.data());
        // The negated comparisons reject a distance that is not a number.
        if (!(hit.distance >= 0.0f) || (nearest && !(hit.distance < nearest->distance))) continue;
        nearest = hit;
    }
    return nearest;
}
