// The nearest triangle along a ray, found through a tree of boxes.
#pragma once
#include <cstdint>
#include <vector>

#include "Shapes.h"
#include "Vec3.h"

namespace simulate {

struct Ray {
    Vec3 origin, direction;  ///< the direction need not be of unit length, but not zero
};

struct Hit {
    float distance = 0;          ///< in lengths of the ray's direction
    std::int32_t triangle = -1;  ///< position in the mesh, -1 for a miss
    [[nodiscard]] bool IsHit() const { return triangle >= 0; }
};

/// A ray made ready for many triangles, after Woop, Benthin and Wald, "Watertight Ray/Triangle Intersection", 2013: no
/// ray slips between two triangles that share an edge or a corner.
class TriangleTest {
public:
    explicit TriangleTest(const Ray& ray);
    /// Whether the triangle is hit, from either side, at a distance above 0; then stores the distance.
    bool Hits(Vec3 a, Vec3 b, Vec3 c, float* distance) const;

private:
    Vec3 m_origin;
    int m_iX, m_iY, m_iZ;  // the axes, turned so that the ray runs mainly along the last
    float m_fShearX, m_fShearY, m_fScaleZ;
};

/// Triangles in a tree of boxes. Any number of threads may cast rays at once.
class RayCaster {
public:
    explicit RayCaster(const TriangleMesh& mesh);

    /// @return of several triangles at the same distance the first of the mesh
    [[nodiscard]] Hit Nearest(const Ray& ray) const;
    /// Unit normal of a triangle, outwards.
    [[nodiscard]] Vec3 Normal(std::int32_t triangle) const { return m_vNormals[static_cast<std::size_t>(triangle)]; }

private:
    struct Box {
        float lower[3], upper[3];
    };
    struct Node {
        Box box;
        std::uint32_t first;  ///< the left child, its sibling behind it; in a leaf the first of its triangles
        std::uint32_t count;  ///< triangles in a leaf, 0 in an inner node
    };
    struct LeafTriangle {
        Vec3 a, b, c;
        std::int32_t index;
    };
    class Builder;
    class Walk;

    std::vector<Node> m_vNodes;
    std::vector<LeafTriangle> m_vTriangles;
    std::vector<Vec3> m_vNormals;
    float m_fExtent = 0;  ///< largest absolute coordinate
};

}  // namespace simulate
