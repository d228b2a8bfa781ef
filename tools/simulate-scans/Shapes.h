// The objects that can be scanned, computed: 60 to 100 mm large, around the origin, y up, front towards +z.
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Vec3.h"

namespace simulate {

/// A closed surface, as a triangle soup: three corners per triangle, millimetres, counterclockwise seen from outside.
/// The corners of adjacent triangles are equal to the bit.
struct TriangleMesh {
    std::vector<Vec3> corners;  ///< three per triangle

    /// Appends a triangle.
    void AddTriangle(Vec3 a, Vec3 b, Vec3 c) { corners.insert(corners.end(), {a, b, c}); }
    /// Two triangles, divided along the diagonal from a to c.
    void AddQuad(Vec3 a, Vec3 b, Vec3 c, Vec3 d) {
        AddTriangle(a, b, c);
        AddTriangle(a, c, d);
    }
    [[nodiscard]] std::size_t TriangleCount() const { return corners.size() / 3; }
};

/// Names that MakeShape() accepts, in the order of the help text.
[[nodiscard]] const std::vector<std::string>& ShapeNames();

/// Computes a shape; each call computes it again.
/// @return the mesh; empty for an unknown name
[[nodiscard]] TriangleMesh MakeShape(std::string_view name);

/// The radius of the shape "sphere", millimetres.
inline constexpr float kSphereRadius = 40.0f;

/// Radius of the smallest sphere around the origin that contains the mesh.
[[nodiscard]] float RadiusAroundOrigin(const TriangleMesh& mesh);

/// A star-shaped surface: one point in each direction from the origin. The directions are those of a grid on a cube.
/// @param cells    squares along each edge of the cube
/// @param pointAt  the point of the surface in a unit direction
[[nodiscard]] TriangleMesh StarShape(int cells, const std::function<Vec3(Vec3 direction)>& pointAt);

}  // namespace simulate
