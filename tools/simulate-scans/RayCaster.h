// Finds the nearest triangle along a ray by a bounding volume hierarchy.
#pragma once
#include <cstdint>
#include <vector>

#include "Shapes.h"
#include "Vec3.h"

namespace simulate {

/// A half-line from its origin, millimetres.
struct Ray {
    Vec3 origin, direction;  ///< the direction may have any length but 0
};

/// The result of a ray.
struct Hit {
    float distance = 0;          ///< from the origin, in units of the length of the direction
    std::int32_t triangle = -1;  ///< index in the mesh; -1 when nothing was hit
    [[nodiscard]] bool IsHit() const { return triangle >= 0; }
};

/// A ray prepared for tests against many triangles, by Woop, Benthin and Wald, "Watertight Ray/Triangle Intersection",
/// 2013: a ray never passes between two triangles that share an edge or a corner.
class TriangleTest {
public:
    explicit TriangleTest(const Ray& ray);
    /// @param distance  receives the distance of a hit; unchanged otherwise
    /// @return whether the ray hits the triangle, from either side, at a distance above 0
    bool Hits(Vec3 a, Vec3 b, Vec3 c, float* distance) const;

private:
    Vec3 m_origin;
    int m_iX, m_iY, m_iZ;                   // permutation of the axes: the direction is largest along the last one
    float m_fShearX, m_fShearY, m_fScaleZ;  // map the direction to (0, 0, 1)
};

/// The triangles of a mesh in a binary tree of boxes. Building it is O(n log n), a ray about O(log n). Any number of
/// threads can cast rays at the same time.
class RayCaster {
public:
    /// @param mesh  copied; it need not outlive the object
    explicit RayCaster(const TriangleMesh& mesh);

    /// @return the nearest hit; of several triangles at the same distance the first one of the mesh
    [[nodiscard]] Hit Nearest(const Ray& ray) const;
    /// Unit normal of a triangle, outwards.
    [[nodiscard]] Vec3 Normal(std::int32_t triangle) const { return m_vNormals[static_cast<std::size_t>(triangle)]; }

private:
    struct Box {
        float lower[3], upper[3];
    };
    /// 32 bytes. The two children of a node are adjacent.
    struct Node {
        Box box;
        std::uint32_t
            first;  ///< in an inner node its left child, followed by the right one; in a leaf its first triangle
        std::uint32_t count;  ///< number of triangles of a leaf; 0 in an inner node
    };
    /// The corners by value: a leaf is read without an indirection.
    struct LeafTriangle {
        Vec3 a, b, c;
        std::int32_t index;  ///< in the mesh
    };
    class Builder;
    class BoxTest;

    std::vector<Node> m_vNodes;
    std::vector<LeafTriangle> m_vTriangles;
    std::vector<Vec3> m_vNormals;
    float m_fExtent = 0;  ///< largest absolute coordinate
};

}  // namespace simulate
