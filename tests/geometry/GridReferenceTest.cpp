// The vectorised triangulation against the slow reference, bit for bit, on random grids.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "geometry/GridNormals.h"
#include "geometry/GridQuads.h"
#include "geometry/GridReference.h"
#include "geometry/GridTriangulation.h"

using grid_reference::Grid;
using grid_reference::Result;

namespace {

// The payload of a NaN depends on the processor; everything else must agree, including the sign of a zero.
bool IsSame(float a, float b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

bool IsSame(const Vertex& a, const Vertex& b) {
    return IsSame(a.x, b.x) && IsSame(a.y, b.y) && IsSame(a.z, b.z) && IsSame(a.nx, b.nx) && IsSame(a.ny, b.ny) &&
           IsSame(a.nz, b.nz) && a.color == b.color && a.gridIndex == b.gridIndex;
}

void ExpectSame(const std::vector<Vertex>& vertices, const std::vector<Triangle>& triangles, const Result& expected) {
    ASSERT_EQ(vertices.size(), expected.vertices.size());
    ASSERT_EQ(triangles.size(), expected.triangles.size());
    for (std::size_t i = 0; i < vertices.size(); ++i)
        ASSERT_TRUE(IsSame(vertices[i], expected.vertices[i]))
            << "vertex " << i << " at row " << (vertices[i].gridIndex >> 16) << ", column "
            << (vertices[i].gridIndex & 0xFFFF) << ": normal " << vertices[i].nx << " " << vertices[i].ny << " "
            << vertices[i].nz << " instead of " << expected.vertices[i].nx << " " << expected.vertices[i].ny << " "
            << expected.vertices[i].nz;
    for (std::size_t i = 0; i < triangles.size(); ++i)
        ASSERT_TRUE(std::equal(triangles[i].v, triangles[i].v + 3, expected.triangles[i].v)) << "triangle " << i;
}

const float* PointsOf(const Grid& grid) { return grid.points.data(); }
const std::uint32_t* ColorsOf(const Grid& grid) { return grid.colors.empty() ? nullptr : grid.colors.data(); }

// The box against Mesh::ComputeBoundingBox() of a copy.
void ExpectSameBox(const Mesh& mesh) {
    Mesh copy(std::vector<Vertex>(mesh.m_vVertices), {}, L"", false);
    for (int i = 0; i < 6; ++i) {
        const float side = mesh.m_fBoundingBox[i], expected = copy.m_fBoundingBox[i];
        ASSERT_TRUE(side == expected || IsSame(side, expected)) << i << ": " << side << " instead of " << expected;
    }
}

void ExpectSameByEveryFunction(const Grid& grid, int skip, const float* trafo) {
    const auto width = static_cast<std::int16_t>(grid.width), height = static_cast<std::int16_t>(grid.height);
    for (const float limit : {kMaxEdgeCosine, -1.0f, 0.5f, 0.0f}) {
        std::vector<Vertex> vertices(3);  // must be replaced
        std::vector<Triangle> triangles(3);
        TriangulateGrid(width, height, PointsOf(grid), grid.mask.data(), ColorsOf(grid), skip, limit, &vertices,
                        &triangles);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(vertices, triangles, grid_reference::Triangulate(grid, skip, limit)));
    }
    const Result bare = grid_reference::Triangulate(grid, skip, kMaxEdgeCosine);
    const bool isEmpty = bare.vertices.empty() || bare.triangles.empty();

    Result expected = bare;
    if (trafo != nullptr) grid_reference::Transform(expected.vertices, trafo);
    grid_reference::ComputeUnitNormals(expected);
    for (const bool allowEmpty : {false, true}) {
        const auto mesh = CreateInternalMesh(L"", width, height, PointsOf(grid), grid.mask.data(), trafo, 0,
                                             ColorsOf(grid), allowEmpty, skip);
        ASSERT_EQ(mesh == nullptr, isEmpty && !allowEmpty);
        if (!mesh) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectSame(mesh->m_vVertices, mesh->m_vTriangles, expected));
        ASSERT_NO_FATAL_FAILURE(ExpectSameBox(*mesh));
        ASSERT_EQ(mesh->m_vVertices.capacity(), mesh->m_vVertices.size());
        ASSERT_EQ(mesh->m_vTriangles.capacity(), mesh->m_vTriangles.size());
    }
    expected = bare;
    grid_reference::ComputeMeanNormals(expected);
    const auto buffers =
        CreateInternalMeshBuffers(width, height, PointsOf(grid), grid.mask.data(), ColorsOf(grid), false, skip);
    ASSERT_EQ(buffers == nullptr, isEmpty);
    if (!buffers) return;
    ASSERT_NO_FATAL_FAILURE(ExpectSame(buffers->m_vVertices, buffers->m_vTriangles, expected));
}

/// Makes random grids from one seed: a wavy surface with noise, steps, holes in all sizes, and optional defects.
class GridMaker {
public:
    explicit GridMaker(unsigned seed) : m_random(seed) {}

    Grid Make(int width, int height) {
        Grid grid{width, height, {}, {}, {}};
        const auto count = static_cast<std::size_t>(width * height);
        const float noise = Pick({0.0f, 0.05f, 0.5f, 3.0f});
        const float mirror = Pick({1.0f, -1.0f});
        const float step = Pick({0.0f, 7.0f});
        const float scale = Pick({1.0f, 1.0f, 1e-3f, 1e-12f, 1e12f});
        const double holeShare = Pick({0.0f, 0.02f, 0.3f, 0.7f});
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const float ridge = (x / 5 + y / 4) % 4 == 0 ? step : 0.0f;
                const float z = 3 * std::sin(0.3f * static_cast<float>(x)) + 0.1f * static_cast<float>(y) + ridge;
                grid.points.push_back(scale * (mirror * static_cast<float>(x) + noise * Uniform()));
                grid.points.push_back(scale * (static_cast<float>(y) + noise * Uniform()));
                grid.points.push_back(scale * (z + noise * Uniform()));
                grid.mask.push_back(Chance(holeShare) ? Pick<std::uint16_t>({1, 2, 256, 65535}) : 0);
            }
        PunchHoles(grid);
        if (Chance(0.5))
            for (std::size_t i = 0; i < count; ++i) grid.colors.push_back(static_cast<std::uint32_t>(m_random()));
        return grid;
    }

    /// Replaces some coordinates by values that no measurement should contain: infinities, NaN, huge numbers.
    void AddInvalidCoordinates(Grid& grid) {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        for (float& coordinate : grid.points)
            if (Chance(0.05))
                coordinate = Pick({NAN, kInfinity, -kInfinity, 0.0f, -0.0f, 1e30f, -1e25f, 1e-30f, 1e-40f});
    }

    /// Makes neighbouring pixels coincide or lie on a line.
    void Collapse(Grid& grid) {
        const auto count = grid.mask.size();
        for (std::size_t i = 1; i < count; ++i)
            if (Chance(0.3))
                for (std::size_t k = 0; k < 3; ++k) grid.points[3 * i + k] = grid.points[3 * i + k - 3];
        if (Chance(0.5))
            for (float& coordinate : grid.points) coordinate = std::round(coordinate / 2) * 2;
    }

    bool Chance(double share) { return std::uniform_real_distribution<double>(0, 1)(m_random) < share; }
    int Size(int most) { return std::uniform_int_distribution<int>(1, most)(m_random); }

    std::vector<float> Trafo() {
        std::vector<float> matrix;
        for (int i = 0; i < 16; ++i) matrix.push_back(2 * Uniform());
        return matrix;
    }

private:
    float Uniform() { return std::uniform_real_distribution<float>(-1, 1)(m_random); }

    template <typename T>
    T Pick(std::initializer_list<T> values) {
        return values.begin()[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(m_random)];
    }

    void PunchHoles(Grid& grid) {
        for (int hole = Size(4) - 1; hole > 0; --hole) {
            const int cx = Size(grid.width), cy = Size(grid.height), radius = Size(9);
            for (int y = 0; y < grid.height; ++y)
                for (int x = 0; x < grid.width; ++x)
                    if ((x - cx) * (x - cx) + (y - cy) * (y - cy) < radius * radius)
                        grid.mask[static_cast<std::size_t>(y * grid.width + x)] = 1;
        }
    }

    std::mt19937 m_random;
};

class GridAgainstReference : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(GridAgainstReference, AgreesOnRandomGridsToTheLastBit) {
    std::size_t triangleCount = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        GridMaker maker(seed);
        Grid grid = maker.Make(maker.Size(55 + 15 * GetParam()), maker.Size(30 + 10 * GetParam()));
        if (maker.Chance(0.2)) maker.AddInvalidCoordinates(grid);
        if (maker.Chance(0.2)) maker.Collapse(grid);
        const std::vector<float> trafo = maker.Trafo();
        ASSERT_NO_FATAL_FAILURE(
            ExpectSameByEveryFunction(grid, GetParam(), maker.Chance(0.5) ? trafo.data() : nullptr));
        triangleCount += grid_reference::Triangulate(grid, GetParam(), kMaxEdgeCosine).triangles.size();
    }
    EXPECT_GT(triangleCount, 1000u) << "too few triangles for a meaningful comparison";
}

TEST_P(GridAgainstReference, AgreesOnLinesOfPixelsAndTinyGrids) {
    for (int width = 1; width <= 10; ++width)
        for (int height = 1; height <= 10; ++height) {
            if (width > 3 && height > 3) continue;
            for (unsigned seed = 0; seed < 20; ++seed) {
                SCOPED_TRACE(testing::Message() << width << " x " << height << ", seed " << seed);
                GridMaker maker(1000 * seed + 7);
                ASSERT_NO_FATAL_FAILURE(ExpectSameByEveryFunction(maker.Make(width, height), GetParam(), nullptr));
            }
        }
}

INSTANTIATE_TEST_SUITE_P(Skip, GridAgainstReference, testing::Values(1, 2, 3, 4, 5, 6, 7, 8, 13),
                         [](const auto& row) { return std::to_string(row.param); });

namespace {

bool IsVertex(const GridQuads& quads, std::size_t x, std::size_t y) {
    const std::uint8_t* const below = quads.Row(y);
    if ((below[x] & kQuadA) != 0 || (x > 0 && (below[x - 1] & kQuadB) != 0)) return true;
    if (y == 0) return false;
    const std::uint8_t* const above = quads.Row(y - 1);
    return (above[x] & kQuadC) != 0 || (x > 0 && (above[x - 1] & kQuadD) != 0);
}

void ExpectSameNormals(const GridQuads& quads, const GridNormals& four, const GridNormals& eight, std::size_t width,
                       std::size_t y) {
    for (std::size_t x = 0; x < width; ++x) {
        if (!IsVertex(quads, x, y)) continue;
        ASSERT_TRUE(IsSame(four.UpperRow().m_vX[x], eight.UpperRow().m_vX[x])) << x << ", " << y;
        ASSERT_TRUE(IsSame(four.UpperRow().m_vY[x], eight.UpperRow().m_vY[x])) << x << ", " << y;
        ASSERT_TRUE(IsSame(four.UpperRow().m_vZ[x], eight.UpperRow().m_vZ[x])) << x << ", " << y;
    }
}

void ExpectSameRows(const Grid& grid) {
    const float trafo[12] = {0.8f, -0.6f, 0.1f, 10, 0.6f, 0.8f, -0.2f, -20, 0.3f, 0.1f, 1.1f, 500};
    GridRows four(grid.width, grid.height, PointsOf(grid), grid.mask.data(), nullptr, LaneCount::kFour);
    GridRows eight(grid.width, grid.height, PointsOf(grid), grid.mask.data(), nullptr, LaneCount::kEight);
    const std::size_t width = four.Width();
    PointRow fourRow(width), eightRow(width);
    const auto expectSame = [&](std::size_t y) {
        ASSERT_EQ(fourRow.m_vValid, eightRow.m_vValid) << y;
        for (std::size_t x = 0; x < width; ++x) {
            if (fourRow.m_vValid[x] == 0) continue;
            ASSERT_TRUE(IsSame(fourRow.m_points.m_vX[x], eightRow.m_points.m_vX[x])) << x << ", " << y;
            ASSERT_TRUE(IsSame(fourRow.m_points.m_vY[x], eightRow.m_points.m_vY[x])) << x << ", " << y;
            ASSERT_TRUE(IsSame(fourRow.m_points.m_vZ[x], eightRow.m_points.m_vZ[x])) << x << ", " << y;
        }
    };
    for (std::size_t y = 0; y < four.Height(); ++y) {
        four.Load(y, fourRow);
        eight.Load(y, eightRow);
        ASSERT_NO_FATAL_FAILURE(expectSame(y));
        TransformRow(trafo, width, fourRow, LaneCount::kFour);
        TransformRow(trafo, width, eightRow, LaneCount::kEight);
        ASSERT_NO_FATAL_FAILURE(expectSame(y));
    }
}

void ExpectSameInBothLaneCounts(const Grid& grid) {
    GridRows rows(grid.width, grid.height, PointsOf(grid), grid.mask.data(), nullptr);
    const GridQuads four(rows, kMaxEdgeCosine, LaneCount::kFour), eight(rows, kMaxEdgeCosine, LaneCount::kEight);
    ASSERT_EQ(four.VertexCount(), eight.VertexCount());
    ASSERT_EQ(four.TriangleCount(), eight.TriangleCount());
    const std::size_t width = rows.Width();
    GridNormals fourNormals(width, LaneCount::kFour), eightNormals(width, LaneCount::kEight);
    PointRow upper(width), lower(width);
    rows.Load(0, upper);
    for (std::size_t y = 0; y + 1 < rows.Height(); ++y) {
        rows.Load(y + 1, lower);
        ASSERT_TRUE(std::equal(four.Row(y), four.Row(y) + width, eight.Row(y))) << y;
        fourNormals.AddRowPair(upper, lower, four.Row(y));
        eightNormals.AddRowPair(upper, lower, four.Row(y));
        ASSERT_NO_FATAL_FAILURE(ExpectSameNormals(four, fourNormals, eightNormals, width, y));
        std::swap(upper, lower);
    }
}

}  // namespace

TEST(GridLanes, FourAndEightLanesGiveTheSameBits) {
    if (BestLaneCount() == LaneCount::kFour) GTEST_SKIP() << "this processor has no vectors of eight";
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        GridMaker maker(seed);
        Grid grid = maker.Make(maker.Size(70), maker.Size(40));
        if (maker.Chance(0.2)) maker.AddInvalidCoordinates(grid);
        if (maker.Chance(0.2)) maker.Collapse(grid);
        ASSERT_NO_FATAL_FAILURE(ExpectSameRows(grid));
        ASSERT_NO_FATAL_FAILURE(ExpectSameInBothLaneCounts(grid));
    }
}

TEST(GridAgainstReference, AgreesOnEveryMaskOfThreeByThreePixels) {
    Grid grid{3, 3, {}, std::vector<std::uint16_t>(9), {}};
    for (int i = 0; i < 9; ++i)
        for (const float coordinate :
             {static_cast<float>(i % 3), static_cast<float>(i / 3), 0.1f * static_cast<float>(i * i)})
            grid.points.push_back(coordinate);
    for (unsigned pattern = 0; pattern < 512; ++pattern) {
        SCOPED_TRACE(pattern);
        for (unsigned i = 0; i < 9; ++i) grid.mask[i] = (pattern >> i) & 1;
        ASSERT_NO_FATAL_FAILURE(ExpectSameByEveryFunction(grid, 1, nullptr));
    }
}

TEST(GridAgainstReference, AgreesOnALongRow) {
    GridMaker maker(5);
    ASSERT_NO_FATAL_FAILURE(ExpectSameByEveryFunction(maker.Make(32767, 3), 1, nullptr));
    ASSERT_NO_FATAL_FAILURE(ExpectSameByEveryFunction(maker.Make(3, 32767), 1, nullptr));
    ASSERT_NO_FATAL_FAILURE(ExpectSameByEveryFunction(maker.Make(32767, 9), 3, nullptr));
}
