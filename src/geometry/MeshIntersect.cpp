// Where an unbounded line crosses a mesh: what picks read. Everything is computed in double precision, so that a hit
// does not depend on how far the object is from the origin of the world.
#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/Mesh.h"

namespace {

struct Vec3 {
    double x, y, z;
};

Vec3 ToVec3(const float* p) { return {p[0], p[1], p[2]}; }
Vec3 PositionOf(const Vertex& vertex) { return {vertex.x, vertex.y, vertex.z}; }
Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The ray origin + t direction, t >= 0, against the six faces of the box, edges and corners included.
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
    const Vec3 o = ToVec3(origin), d = ToVec3(direction);
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
        const Vec3 p0 = vertexAt(corner[0]), p1 = vertexAt(corner[1]), p2 = vertexAt(corner[2]);
        // Cramer's rule on the columns -d, e1, e2. The determinant is that of the plain matrix: tiny triangles are
        // missed, and that is wanted. The negated comparisons keep what is not a number out.
        const Vec3 e1 = p1 - p0, e2 = p2 - p0, r = o - p0;
        const Vec3 normal = Cross(e1, e2);
        const double determinant = -Dot(d, normal);
        if (!(std::abs(determinant) > 1e-5)) continue;
        const Vec3 rd = Cross(r, d);
        const double u = Dot(e2, rd) / determinant;
        const double v = -Dot(e1, rd) / determinant;
        if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1 && u + v <= 1)) continue;
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
    hitPoint[0] = static_cast<float>(o.x + bestT * d.x);
    hitPoint[1] = static_cast<float>(o.y + bestT * d.y);
    hitPoint[2] = static_cast<float>(o.z + bestT * d.z);
    return static_cast<float>(std::sqrt(bestSquared));
}
