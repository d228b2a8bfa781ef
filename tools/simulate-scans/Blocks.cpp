// The surface of a grid of blocks: one rectangle wherever a solid block meets an empty one. A face with a hole is a
// ring of triangles between the rectangle and the circle.
#include "Blocks.h"

#include "Repeatable.h"

namespace simulate {
namespace {

constexpr int kHoleSegments = 64;  // a multiple of 4: each corner of a face is joined to a quarter of the circle

using Index = std::array<int, 3>;

/// Collects the triangles of all blocks.
class SurfaceMaker {
public:
    explicit SurfaceMaker(const BlockGrid& grid) : m_grid(grid) {}

    /// To be called once.
    TriangleMesh Make() {
        const int nx = Blocks(0), ny = Blocks(1), nz = Blocks(2);
        // Each solid block adds its own faces, so that each face is added once.
        for (int z = 0; z < nz; ++z)
            for (int y = 0; y < ny; ++y)
                for (int x = 0; x < nx; ++x) AddBlock({x, y, z});
        return std::move(m_mesh);
    }

private:
    int Blocks(int axis) const { return static_cast<int>(m_grid.breaks[static_cast<std::size_t>(axis)].size()) - 1; }

    /// The block at a position; an empty one outside the grid.
    Block At(const Index& at) const {
        for (int axis = 0; axis < 3; ++axis)
            if (at[static_cast<std::size_t>(axis)] < 0 || at[static_cast<std::size_t>(axis)] >= Blocks(axis)) return {};
        return m_grid.blockAt(at[0], at[1], at[2]);
    }

    /// Adds the faces of a block to empty neighbours, and the wall of its hole.
    void AddBlock(const Index& at) {
        const Block block = At(at);
        if (!block.solid) return;
        for (int axis = 0; axis < 3; ++axis) {
            for (const int side : {0, 1}) {  // lower and upper face
                Index neighbour = at;
                neighbour[static_cast<std::size_t>(axis)] += side == 0 ? -1 : 1;
                if (!At(neighbour).solid) AddFace(at, axis, side, block.holeAxis == axis ? block.holeRadius : 0);
            }
        }
        if (block.holeAxis >= 0) AddHoleWall(at, block.holeAxis, block.holeRadius);
    }

    /// A point with the coordinate @p w along @p axis, @p u along the next axis and @p v along the one after it
    /// (cyclic).
    static Vec3 Place(int axis, float w, float u, float v) {
        return axis == 0 ? Vec3{w, u, v} : axis == 1 ? Vec3{v, w, u} : Vec3{u, v, w};
    }

    /// Coordinate of the lower (0) or upper (1) bound of a block along an axis, which is counted modulo 3.
    float Plane(const Index& at, int axis, int side) const {
        const auto a = static_cast<std::size_t>(axis % 3);
        const int plane = at[a] + side;
        return m_grid.breaks[a][static_cast<std::size_t>(plane)];
    }

    /// A point of the hole's circle on the lower (0) or upper (1) end, by its segment.
    Vec3 OnHole(const Index& at, int axis, int side, float radius, int segment) const {
        const float u = 0.5f * (Plane(at, axis + 1, 0) + Plane(at, axis + 1, 1));
        const float v = 0.5f * (Plane(at, axis + 2, 0) + Plane(at, axis + 2, 1));
        // Segment 0 is in the direction of the first corner of the face, which has the lower u and the lower v.
        const double turns = 0.625 + (segment % kHoleSegments) / static_cast<double>(kHoleSegments);
        return Place(axis, Plane(at, axis, side), u + radius * static_cast<float>(CosTurns(turns)),
                     v + radius * static_cast<float>(SinTurns(turns)));
    }

    /// @param holeRadius  0 for a face without a hole
    void AddFace(const Index& at, int axis, int side, float holeRadius) {
        const auto corner = [&](int k) {  // counterclockwise, seen against the direction of the axis
            return Place(axis, Plane(at, axis, side), Plane(at, axis + 1, k % 4 == 1 || k % 4 == 2),
                         Plane(at, axis + 2, k % 4 >= 2));
        };
        const auto add = [&](Vec3 a, Vec3 b, Vec3 c) {
            side == 1 ? m_mesh.AddTriangle(a, b, c) : m_mesh.AddTriangle(a, c, b);
        };
        if (holeRadius <= 0) {
            add(corner(0), corner(1), corner(2));
            add(corner(0), corner(2), corner(3));
            return;
        }
        // Each corner gets a fan to its quarter of the circle; one triangle per edge of the face joins two fans.
        constexpr int kQuarter = kHoleSegments / 4;
        for (int k = 0; k < 4; ++k) {
            const int middle = k * kQuarter + kQuarter / 2;
            for (int s = middle - kQuarter; s < middle; ++s)
                add(corner(k), OnHole(at, axis, side, holeRadius, s + 1 + kHoleSegments),
                    OnHole(at, axis, side, holeRadius, s + kHoleSegments));
            add(corner(k), corner(k + 1), OnHole(at, axis, side, holeRadius, middle));
        }
    }

    /// The inside of the hole, between both ends.
    void AddHoleWall(const Index& at, int axis, float radius) {
        // Oriented towards the axis of the hole, which is outside the object.
        for (int s = 0; s < kHoleSegments; ++s)
            m_mesh.AddQuad(OnHole(at, axis, 1, radius, s), OnHole(at, axis, 1, radius, s + 1),
                           OnHole(at, axis, 0, radius, s + 1), OnHole(at, axis, 0, radius, s));
    }

    const BlockGrid& m_grid;
    TriangleMesh m_mesh;
};

}  // namespace

TriangleMesh MeshOf(const BlockGrid& grid) { return SurfaceMaker(grid).Make(); }

}  // namespace simulate
