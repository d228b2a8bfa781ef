// Where an unbounded line crosses a mesh, for picks. Computed in double precision, so that a hit does not depend on how
// far the object is from the origin of the world.
#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/Mesh.h"
#include "geometry/Vector3.h"

namespace {

Double3 PositionOf(const Vertex& vertex) { return {vertex.x, vertex.y, vertex.z}; }

// The ray origin + t direction, t >= 0, against the six faces of the box, edges and corners included. An axis along
// which the ray hardly moves is skipped: the faces of the other axes decide.
bool RayHitsBox(const float* box, const float* origin, const double (&direction)[3]) {
    for (int axis = 0; axis < 3; ++axis) {
        if (std::abs(direction[axis]) < 1e-6) continue;
        const int second = (axis + 1) % 3, third = (axis + 2) % 3;
        const auto isInside = [&](int other, double t) {
            const double at = origin[other] + t * direction[other];
            return at >= box[2 * other] && at <= box[2 * other + 1];
        };
        for (int face = 2 * axis; face <= 2 * axis + 1; ++face) {
            const double t = (static_cast<double>(box[face]) - origin[axis]) / direction[axis];
            if (t >= 0 && isInside(second, t) && isInside(third, t)) return true;
        }
    }
    return false;
}

}  // namespace

bool Mesh::TestLineBox(const float origin[3], const float direction[3]) const {
    return RayHitsBox(m_fBoundingBox, origin, {direction[0], direction[1], direction[2]}) ||
           RayHitsBox(m_fBoundingBox, origin, {-direction[0], -direction[1], -direction[2]});
}

float Mesh::IntersectLine(const float origin[3], const float direction[3], std::int32_t* triangleIndex,
                          float hitPoint[3]) const {
    if (!TestLineBox(origin, direction)) return -1.0f;
    // Everything in double precision from here on.
    const Double3 o = ToDouble3(ToFloat3(origin)), d = ToDouble3(ToFloat3(direction));
    const double squaredLength = Dot(d, d);
    const auto vertexAt = [this](std::int32_t index) {
        if (static_cast<std::size_t>(index) >= m_vVertices.size()) throw std::out_of_range("invalid vector subscript");
        return PositionOf(m_vVertices[static_cast<std::size_t>(index)]);
    };
    bool isHit = false;
    double bestT = 0, bestSquared = 0;
    std::size_t bestTriangle = 0;
    for (std::size_t i = 0; i < m_vTriangles.size(); ++i) {
        const auto& corner = m_vTriangles[i].v;
        const Double3 p0 = vertexAt(corner[0]), p1 = vertexAt(corner[1]), p2 = vertexAt(corner[2]);
        // o + t d = p0 + u e1 + v e2 by Cramer's rule on the columns -d, e1, e2, as in Moeller and Trumbore, "Fast,
        // Minimum Storage Ray-Triangle Intersection" (1997). The limit is on the plain determinant, which scales with
        // the area: tiny triangles are missed, and that is wanted. The negated comparisons reject what is not a number.
        const Double3 e1 = p1 - p0, e2 = p2 - p0, r = o - p0;
        const Double3 normal = Cross(e1, e2);
        const double determinant = -Dot(d, normal);
        if (!(std::abs(determinant) > 1e-5)) continue;
        const Double3 rd = Cross(r, d);
        const double u = Dot(e2, rd) / determinant;
        const double v = -Dot(e1, rd) / determinant;
        if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1 && u + v <= 1)) continue;
        // Of all hits the one nearest to the origin, on either side of it; the first one in a tie.
        const double t = Dot(r, normal) / determinant;
        const double squared = t * t * squaredLength;
        if (isHit && !(squared < bestSquared)) continue;
        isHit = true;
        bestT = t;
        bestSquared = squared;
        bestTriangle = i;
    }
    if (!isHit) return -1.0f;
    *triangleIndex = static_cast<std::int32_t>(bestTriangle);
    hitPoint[0] = static_cast<float>(o[0] + bestT * d[0]);
    hitPoint[1] = static_cast<float>(o[1] + bestT * d[1]);
    hitPoint[2] = static_cast<float>(o[2] + bestT * d[2]);
    return static_cast<float>(std::sqrt(bestSquared));
}
