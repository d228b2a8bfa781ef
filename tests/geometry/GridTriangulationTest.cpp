// Small grids drawn by hand, with the expected vertices and triangles. Random grids: GridReferenceTest.cpp.
#include "geometry/GridTriangulation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <numbers>
#include <ostream>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A grid in the plane z = 0 with pixels one unit apart, drawn as rows of text: '#' is a point, anything else a hole.
struct Drawing {
    explicit Drawing(std::vector<std::string> rows)
        : width(static_cast<std::int16_t>(rows[0].size())), height(static_cast<std::int16_t>(rows.size())) {
        for (std::int16_t y = 0; y < height; ++y)
            for (std::int16_t x = 0; x < width; ++x) {
                points.insert(points.end(), {static_cast<float>(x), static_cast<float>(y), 0.0f});
                mask.push_back(rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#' ? 0 : 1);
            }
    }
    float& At(int x, int y, int axis) { return points[static_cast<std::size_t>(3 * (y * width + x) + axis)]; }

    std::int16_t width, height;
    std::vector<float> points;
    std::vector<std::uint16_t> mask;
    std::vector<std::uint32_t> colors;
};

const std::uint32_t* ColorsOf(const Drawing& grid) { return grid.colors.empty() ? nullptr : grid.colors.data(); }

/// The vertices as "x,y" in their order, the triangles as three of these names.
struct Outcome {
    std::vector<std::string> vertices, triangles;
};

Outcome Triangulate(const Drawing& grid, float sliverLimit = kMaxEdgeCosine, std::int32_t skip = 1) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    TriangulateGrid(grid.width, grid.height, grid.points.data(), grid.mask.data(), ColorsOf(grid), skip, sliverLimit,
                    &vertices, &triangles);
    Outcome outcome;
    for (const Vertex& v : vertices)
        outcome.vertices.push_back(std::to_string(v.gridIndex & 0xFFFF) + "," + std::to_string(v.gridIndex >> 16));
    for (const Triangle& t : triangles) {
        std::string names;
        for (const auto corner : t.v)
            names += (names.empty() ? "" : " ") + outcome.vertices.at(static_cast<std::size_t>(corner));
        outcome.triangles.push_back(names);
    }
    return outcome;
}

std::unique_ptr<Mesh> Create(const Drawing& grid, bool allowEmpty = false, const float* trafo = nullptr,
                             std::int32_t skip = 1) {
    return CreateInternalMesh(L"scan.pax", grid.width, grid.height, grid.points.data(), grid.mask.data(), trafo,
                              0x00332211, ColorsOf(grid), allowEmpty, skip);
}

struct QuadPattern {
    const char* name;
    std::vector<std::string> rows;
    std::vector<std::string> vertices, triangles;
};
void PrintTo(const QuadPattern& row, std::ostream* out) { *out << row.name; }

const QuadPattern kQuadPatterns[] = {
    {"AllFour", {"##", "##"}, {"0,0", "0,1", "1,0", "1,1"}, {"0,0 0,1 1,0", "0,1 1,1 1,0"}},
    {"WithoutLowerRight", {"##", "#."}, {"0,0", "0,1", "1,0"}, {"0,0 0,1 1,0"}},
    {"WithoutLowerLeft", {"##", ".#"}, {"0,0", "1,1", "1,0"}, {"0,0 1,1 1,0"}},
    {"WithoutUpperRight", {"#.", "##"}, {"0,0", "0,1", "1,1"}, {"0,0 0,1 1,1"}},
    {"WithoutUpperLeft", {".#", "##"}, {"0,1", "1,1", "1,0"}, {"0,1 1,1 1,0"}},
    {"UpperRow", {"##", ".."}, {}, {}},
    {"LowerRow", {"..", "##"}, {}, {}},
    {"LeftColumn", {"#.", "#."}, {}, {}},
    {"RightColumn", {".#", ".#"}, {}, {}},
    {"FallingDiagonal", {"#.", ".#"}, {}, {}},
    {"RisingDiagonal", {".#", "#."}, {}, {}},
    {"UpperLeft", {"#.", ".."}, {}, {}},
    {"UpperRight", {".#", ".."}, {}, {}},
    {"LowerLeft", {"..", "#."}, {}, {}},
    {"LowerRight", {"..", ".#"}, {}, {}},
    {"None", {"..", ".."}, {}, {}},
    {"RowOfPixels", {"####"}, {}, {}},
    {"ColumnOfPixels", {"#", "#", "#"}, {}, {}},
    {"TwoQuadsShareTheirEdge",
     {"###", "###"},
     {"0,0", "0,1", "1,0", "1,1", "2,0", "2,1"},
     {"0,0 0,1 1,0", "0,1 1,1 1,0", "1,0 1,1 2,0", "1,1 2,1 2,0"}},
    {"TwoRowsShareTheirEdge",
     {"##", "##", "##"},
     {"0,0", "0,1", "1,0", "1,1", "0,2", "1,2"},
     {"0,0 0,1 1,0", "0,1 1,1 1,0", "0,1 0,2 1,1", "0,2 1,2 1,1"}},
    {"HoleInTheMiddle",
     {"###", "#.#", "###"},
     {"0,0", "0,1", "1,0", "2,1", "2,0", "0,2", "1,2", "2,2"},
     {"0,0 0,1 1,0", "1,0 2,1 2,0", "0,1 0,2 1,2", "1,2 2,2 2,1"}},
    {"ThinLinesVanish",
     {"#..##", "#....", "#..##", "#..##"},
     {"3,2", "3,3", "4,2", "4,3"},
     {"3,2 3,3 4,2", "3,3 4,3 4,2"}},
};
class TriangulateGridPattern : public testing::TestWithParam<QuadPattern> {};

TEST_P(TriangulateGridPattern, MakesTheTrianglesOfTheDrawing) {
    const Outcome outcome = Triangulate(Drawing(GetParam().rows));
    EXPECT_EQ(outcome.vertices, GetParam().vertices);
    EXPECT_EQ(outcome.triangles, GetParam().triangles);
}
INSTANTIATE_TEST_SUITE_P(Quad, TriangulateGridPattern, testing::ValuesIn(kQuadPatterns),
                         [](const auto& row) { return row.param.name; });

struct Corner {
    const char* name;
    double angleDeg;
    int sliver;
};
void PrintTo(const Corner& row, std::ostream* out) { *out << row.name; }

// The cosine 0.965826 is that of 15.022 degrees.
const Corner kCorners[] = {
    {"Right", 90, 0},     {"JustWideEnough", 15.03, 0}, {"JustTooSharp", 15.01, -1}, {"JustBluntEnough", 149.9, 0},
    {"Needle", 0.01, -1}, {"VeryBlunt", 165.0, -1}};
class IsSliverCorner : public testing::TestWithParam<Corner> {};

// An isosceles triangle: up to 150 degrees at the apex the other two corners are wide enough.
TEST_P(IsSliverCorner, IsTestedAtEveryCornerOfTheTriangle) {
    const double angle = GetParam().angleDeg * std::numbers::pi / 180;
    const float p0[3] = {1, 2, 3}, p1[3] = {2, 2, 3};
    const float p2[3] = {static_cast<float>(1 + std::cos(angle)), static_cast<float>(2 + std::sin(angle)), 3};
    EXPECT_EQ(IsSliver(p0, p1, p2, kMaxEdgeCosine), GetParam().sliver);
    EXPECT_EQ(IsSliver(p1, p2, p0, kMaxEdgeCosine), GetParam().sliver);
    EXPECT_EQ(IsSliver(p2, p0, p1, kMaxEdgeCosine), GetParam().sliver);
    EXPECT_EQ(IsSliver(p2, p1, p0, kMaxEdgeCosine), GetParam().sliver);
    EXPECT_EQ(IsSliver(p0, p1, p2, -0.1f), 0) << "a negative limit switches the test off";
}
INSTANTIATE_TEST_SUITE_P(Angle, IsSliverCorner, testing::ValuesIn(kCorners),
                         [](const auto& row) { return row.param.name; });

}  // namespace

// About 15.02 degrees, fixed to the bit: rewriting the literal with other digits must not change results.
static_assert(std::bit_cast<std::uint32_t>(kMaxEdgeCosine) == 0x3F77405F);

TEST(IsSliver, AcceptsThreeCoincidentCornersButNotTwo) {
    const float p[3] = {1, 2, 3}, q[3] = {2, 2, 3};
    EXPECT_EQ(IsSliver(p, p, p, kMaxEdgeCosine), 0);
    EXPECT_EQ(IsSliver(p, p, q, kMaxEdgeCosine), -1) << "the two long edges coincide";
}

TEST(IsSliver, AcceptsPointsThatAreNotNumbers) {
    const float p[3] = {0, 0, 0}, q[3] = {1, 0, 0}, r[3] = {NAN, 1, 0}, far[3] = {INFINITY, 0, 0};
    EXPECT_EQ(IsSliver(p, q, r, kMaxEdgeCosine), 0);
    EXPECT_EQ(IsSliver(p, q, far, kMaxEdgeCosine), 0);
}

TEST(IsSliver, RejectsCollinearCorners) {
    const float p[3] = {0, 0, 0}, q[3] = {1, 1, 1}, r[3] = {3, 3, 3};
    EXPECT_EQ(IsSliver(p, q, r, kMaxEdgeCosine), -1);
    EXPECT_EQ(IsSliver(p, q, r, 1.0f), 0) << "a quotient of exactly 1 does not exceed 1";
}

TEST(TriangulateGrid, KeepsTheVerticesOfRejectedTriangles) {
    Drawing grid({"##", "#."});
    grid.At(0, 1, 0) = -1;  // the three lie on the line y = 0
    grid.At(0, 1, 1) = 0;
    const Outcome outcome = Triangulate(grid);
    EXPECT_THAT(outcome.vertices, ElementsAre("0,0", "0,1", "1,0"));
    EXPECT_THAT(outcome.triangles, IsEmpty());
    EXPECT_THAT(Triangulate(grid, -1).triangles, ElementsAre("0,0 0,1 1,0"));
}

TEST(TriangulateGrid, RejectsEachTriangleOfAQuadSeparately) {
    Drawing first({"##", "##"});
    first.At(0, 0, 0) = first.At(0, 0, 1) = 0.49f;  // A close to the diagonal from B to C
    EXPECT_THAT(Triangulate(first).triangles, ElementsAre("0,1 1,1 1,0"));
    Drawing second({"##", "##"});
    second.At(1, 1, 0) = second.At(1, 1, 1) = 0.51f;
    EXPECT_THAT(Triangulate(second).triangles, ElementsAre("0,0 0,1 1,0"));
    EXPECT_EQ(Triangulate(second).vertices.size(), 4u);
}

TEST(TriangulateGrid, WritesPositionsAndColoursButNoNormals) {
    Drawing grid({"##", "##"});
    grid.colors = {10, 20, 30, 40};
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    TriangulateGrid(2, 2, grid.points.data(), grid.mask.data(), grid.colors.data(), 1, kMaxEdgeCosine, &vertices,
                    &triangles);
    ASSERT_EQ(vertices.size(), 4u);
    EXPECT_EQ(vertices[1].color, 30u);
    EXPECT_EQ(vertices[2].color, 20u);
    EXPECT_EQ(vertices[1].gridIndex, 0x00010000u);
    EXPECT_EQ(vertices[2].gridIndex, 0x00000001u);
    EXPECT_EQ(vertices[1].y, 1.0f);
    EXPECT_EQ(vertices[1].nz, 0.0f);
}

TEST(TriangulateGrid, ClearsItsOutputsWhenThereIsNoVertex) {
    std::vector<Vertex> vertices(2);
    std::vector<Triangle> triangles(2);
    TriangulateGrid(0, 0, nullptr, nullptr, nullptr, 1, kMaxEdgeCosine, &vertices, &triangles);
    EXPECT_THAT(vertices, IsEmpty());
    EXPECT_THAT(triangles, IsEmpty());
}

TEST(BuildGridVertexList, ListsThePixelsOfALineThatHasNoTriangle) {
    const Drawing line({"##.#"});
    EXPECT_EQ(BuildGridVertexList(4, 1, line.points.data(), line.mask.data(), nullptr, 1).m_vVertices.size(), 3u);
    EXPECT_THAT(Triangulate(line).vertices, IsEmpty());
}

TEST(BuildGridVertexList, KeepsEveryValidPixelInRowOrder) {
    Drawing grid({"#.#", ".#."});
    grid.mask[1] = 0x8000;
    grid.colors = {1, 2, 3, 4, 5, 6};
    const GridVertexList list = BuildGridVertexList(3, 2, grid.points.data(), grid.mask.data(), grid.colors.data(), 1);
    EXPECT_EQ(list.m_iWidth, 3);
    EXPECT_EQ(list.m_iHeight, 2);
    ASSERT_EQ(list.m_vVertices.size(), 3u);
    EXPECT_EQ(list.m_vVertices[0].gridIndex, 0u);
    EXPECT_EQ(list.m_vVertices[1].gridIndex, 2u);
    EXPECT_EQ(list.m_vVertices[2].gridIndex, 0x00010001u);
    EXPECT_EQ(list.m_vVertices[2].color, 5u);
    EXPECT_EQ(list.m_vVertices[2].x, 1.0f);
    EXPECT_EQ(BuildGridVertexList(3, 2, grid.points.data(), grid.mask.data(), nullptr, 1).m_vVertices[2].color, 0u);
}

namespace {

GridVertexList ListOf(const Drawing& grid, std::int32_t skip) {
    return BuildGridVertexList(grid.width, grid.height, grid.points.data(), grid.mask.data(), ColorsOf(grid), skip);
}

}  // namespace

TEST(BuildGridVertexList, AveragesTheValidPointsOfACell) {
    Drawing grid({"#.", "##"});
    grid.At(0, 1, 2) = 6;
    const GridVertexList list = ListOf(grid, 2);
    EXPECT_EQ(list.m_iWidth, 1);
    EXPECT_EQ(list.m_iHeight, 1);
    ASSERT_EQ(list.m_vVertices.size(), 1u);
    EXPECT_EQ(list.m_vVertices[0].x, 1.0f / 3.0f);
    EXPECT_EQ(list.m_vVertices[0].y, 2.0f / 3.0f);
    EXPECT_EQ(list.m_vVertices[0].z, 2.0f);
}

TEST(BuildGridVertexList, RequiresHalfOfTheCellsPixelsRoundedDown) {
    EXPECT_EQ(ListOf(Drawing({"#.", ".#"}), 2).m_vVertices.size(), 1u) << "2 of 4";
    EXPECT_EQ(ListOf(Drawing({"#.", ".."}), 2).m_vVertices.size(), 0u) << "1 of 4";
    EXPECT_EQ(ListOf(Drawing({"##.", "#.#", "..."}), 3).m_vVertices.size(), 1u) << "4 of 9";
    EXPECT_EQ(ListOf(Drawing({"##.", "..#", "..."}), 3).m_vVertices.size(), 0u) << "3 of 9";
}

TEST(BuildGridVertexList, RequiresTheSameCountOfNarrowCellsAtTheEdge) {
    // Skip 3 on five columns: the second cell has only two columns and still needs 4 valid pixels.
    const GridVertexList full = ListOf(Drawing({"#####", "#####", "#####"}), 3);
    EXPECT_EQ(full.m_iWidth, 2);
    EXPECT_EQ(full.m_vVertices.size(), 2u);
    EXPECT_EQ(ListOf(Drawing({"#####", "####.", "###.."}), 3).m_vVertices.size(), 1u) << "3 of 6";
    EXPECT_EQ(ListOf(Drawing({"####", "####", "####"}), 3).m_vVertices.size(), 1u) << "3 of 3 is too few";
    EXPECT_EQ(ListOf(Drawing({"##", "##", "##"}), 2).m_iHeight, 2);
}

TEST(BuildGridVertexList, UsesTheColourOfTheUpperLeftPixelEvenIfItIsAHole) {
    Drawing grid({"##.#", "####"});
    grid.colors = {1, 2, 3, 4, 5, 6, 7, 8};
    const GridVertexList list = ListOf(grid, 2);
    ASSERT_EQ(list.m_vVertices.size(), 2u);
    EXPECT_EQ(list.m_vVertices[0].color, 1u);
    EXPECT_EQ(list.m_vVertices[1].color, 3u);
    EXPECT_EQ(list.m_vVertices[1].gridIndex, 1u);
}

namespace {

/// Two cells of skip x skip pixels side by side or one above the other; every point of the first one is at
/// (1, 0, 0), of the second one at (1 + distance, 0, 0).
std::size_t CountOfTwoCells(std::int32_t skip, float distance, bool isAbove) {
    const auto n = static_cast<std::size_t>(skip);
    Drawing grid(std::vector<std::string>(isAbove ? 2 * n : n, std::string(isAbove ? n : 2 * n, '#')));
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) {
            grid.At(x, y, 0) = (isAbove ? y : x) < skip ? 1.0f : 1.0f + distance;
            grid.At(x, y, 1) = 0;
        }
    return ListOf(grid, skip).m_vVertices.size();
}

}  // namespace

TEST(BuildGridVertexList, BreaksTheSurfaceAtStepsBeyondTheLimitOfTheSkipValue) {
    const std::pair<std::int32_t, float> limits[] = {{2, 5.0f},  {3, 5.0f}, {4, 5.25f}, {5, 5.25f},
                                                     {6, 5.75f}, {7, 6.5f}, {8, 8.0f},  {9, 8.0f}};
    for (const auto& [skip, limit] : limits)
        for (const bool isAbove : {false, true}) {
            EXPECT_EQ(CountOfTwoCells(skip, limit, isAbove), 2u) << skip;
            EXPECT_EQ(CountOfTwoCells(skip, limit + 0.001f, isAbove), 1u) << skip;
            EXPECT_EQ(CountOfTwoCells(skip, -limit - 0.001f, isAbove), 1u) << skip;
        }
}

TEST(BuildGridVertexList, DropsTheCellAfterAStepAndKeepsItsNeighbour) {
    Drawing grid({"######", "######"});
    for (int y = 0; y < 2; ++y)
        for (int x = 2; x < 6; ++x) grid.At(x, y, 2) = 9;
    const GridVertexList list = ListOf(grid, 2);
    ASSERT_EQ(list.m_vVertices.size(), 2u);
    EXPECT_EQ(list.m_vVertices[0].gridIndex, 0u);
    EXPECT_EQ(list.m_vVertices[1].gridIndex, 2u) << "it is compared with the dropped cell, which is at the same height";
}

TEST(BuildGridVertexList, ComparesWithNeighboursThatHaveTooFewPixels) {
    Drawing grid({".###", "..##"});  // one valid pixel in the first cell: no vertex
    grid.At(1, 0, 2) = 9;
    EXPECT_THAT(ListOf(grid, 2).m_vVertices, IsEmpty());
    grid.mask[1] = 1;  // no pixel at all: nothing to compare with
    EXPECT_EQ(ListOf(grid, 2).m_vVertices.size(), 1u);
}

TEST(BuildGridVertexList, IgnoresANeighbourAtTheOrigin) {
    Drawing grid({"####", "####"});
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x) {
            grid.At(x, y, 0) = x < 2 ? 0.0f : 100.0f;
            grid.At(x, y, 1) = 0;
        }
    EXPECT_EQ(ListOf(grid, 2).m_vVertices.size(), 2u);
    grid.At(0, 0, 1) = 0.001f;
    EXPECT_EQ(ListOf(grid, 2).m_vVertices.size(), 1u);
}

TEST(BuildGridVertexList, AcceptsAnySkipValueAboveZero) {
    const GridVertexList list = ListOf(Drawing({"##", "##"}), 0x7FFFFFFF);
    EXPECT_EQ(list.m_iWidth, 1);
    EXPECT_EQ(list.m_iHeight, 1);
    EXPECT_THAT(list.m_vVertices, IsEmpty());
}

TEST(HasNonGrayColor, ComparesTheThreeLowBytes) {
    const std::uint32_t gray[] = {0x00000000, 0xFF7F7F7F, 0x12FFFFFF};
    EXPECT_FALSE(HasNonGrayColor(gray, 3));
    EXPECT_FALSE(HasNonGrayColor(nullptr, 3));
    for (const std::uint32_t color : {0x7F7F7Eu, 0x7F7E7Fu, 0x7E7F7Fu}) {
        EXPECT_TRUE(HasNonGrayColor(&color, 1)) << color;
        EXPECT_FALSE(HasNonGrayColor(&color, 0));
        EXPECT_FALSE(HasNonGrayColor(&color, -1));
    }
}

TEST(HasNonGrayColor, FindsASingleColourAtAnyPosition) {
    for (const std::size_t count : {1u, 7u, 4096u, 10000u})
        for (const std::size_t at : {std::size_t{0}, count / 2, count - 1}) {
            std::vector<std::uint32_t> colors(count, 0x00404040);
            EXPECT_FALSE(HasNonGrayColor(colors.data(), static_cast<std::int64_t>(count)));
            colors[at] = 0x00404041;
            EXPECT_TRUE(HasNonGrayColor(colors.data(), static_cast<std::int64_t>(count))) << at << " of " << count;
        }
}

TEST(CreateInternalMesh, ReturnsNothingForAGridWithoutValidPixels) {
    const Drawing grid({"...", "..."});
    EXPECT_EQ(Create(grid), nullptr);
    const auto mesh = Create(grid, true);
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->GetVertexCount(), 0u);
    EXPECT_EQ(mesh->m_sName, L"scan.pax");
    EXPECT_EQ(mesh->GetColorRef(), 0x332211u);
    EXPECT_THAT(mesh->m_fBoundingBox, ElementsAre(0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f));
}

TEST(CreateInternalMesh, ReturnsAnEmptyObjectForAGridOfNoSizeWhenAllowed) {
    EXPECT_EQ(CreateInternalMesh(L"", 0, 0, nullptr, nullptr, nullptr, 0, nullptr, false, 1), nullptr);
    EXPECT_NE(CreateInternalMesh(L"", 0, 0, nullptr, nullptr, nullptr, 0, nullptr, true, 1), nullptr);
}

TEST(CreateInternalMesh, ReturnsVerticesWithoutTrianglesOnlyWhenAllowed) {
    Drawing grid({"##", "#."});
    grid.At(0, 1, 0) = -1;
    grid.At(0, 1, 1) = 0;
    EXPECT_EQ(Create(grid), nullptr);
    const auto mesh = Create(grid, true);
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->GetVertexCount(), 3u);
    EXPECT_EQ(mesh->GetTriangleCount(), 0u);
    EXPECT_THAT(mesh->m_fBoundingBox, ElementsAre(-1, 1, -0.01f, 0.01f, -0.01f, 0.01f));
}

TEST(CreateInternalMesh, KeepsScaleInTheVerticesAndTheRotationInTheTrafo) {
    // Twice as large, a quarter turn about z, then moved.
    const float trafo[16] = {0, -2, 0, 10, 2, 0, 0, 20, 0, 0, 2, 30, 9, 9, 9, 9};
    const auto mesh = Create(Drawing({"##", "##"}), false, trafo);
    ASSERT_NE(mesh, nullptr);
    const Vertex& below = mesh->m_vVertices[1];  // pixel 0, 1
    EXPECT_EQ(below.x, 8);
    EXPECT_EQ(below.y, 20);
    EXPECT_EQ(below.z, 30);
    EXPECT_EQ(below.nz, -1) << "the grid's rows run downward, so the surface faces -z";
    EXPECT_THAT(mesh->m_fBoundingBox, ElementsAre(8, 10, 20, 22, 29.99f, 30.01f));
    // The quaternion of the scaled matrix is 4 w^2 = 1 + 2 = 3 and z = 4 / 4w, which is 0.6 to 0.8 after normalising.
    EXPECT_NEAR(mesh->m_Trafo.m_dQuat[0], 0.6, 1e-12);
    EXPECT_NEAR(mesh->m_Trafo.m_dQuat[3], 0.8, 1e-12);
    EXPECT_NEAR(mesh->m_Trafo.m_dRotation[0], -0.28, 1e-12);
    EXPECT_NEAR(mesh->m_Trafo.m_dRotation[1], 0.96, 1e-12);
    EXPECT_THAT(mesh->m_Trafo.m_dTranslation, ElementsAre(10, 20, 30));
}

TEST(CreateInternalMesh, ComputesNormalsInTheWorldFrame) {
    const float mirrorZ[16] = {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto mesh = Create(Drawing({"##", "##"}), false, mirrorZ);
    for (const Vertex& vertex : mesh->m_vVertices) EXPECT_EQ(vertex.nz, 1);
}

TEST(CreateInternalMesh, WithoutATrafoKeepsTheIdentity) {
    const auto mesh = Create(Drawing({"##", "##"}));
    EXPECT_THAT(mesh->m_Trafo.m_dRotation, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_THAT(mesh->m_Trafo.m_dTranslation, ElementsAre(0, 0, 0));
    EXPECT_THAT(mesh->m_Trafo.m_dQuat, ElementsAre(1, 0, 0, 0));
}

TEST(CreateInternalMesh, TintsAGreyScanAndKeepsAColouredOneWhite) {
    Drawing grid({"##.", "##."});
    const auto plain = Create(grid);
    EXPECT_FALSE(plain->m_bHasVertexColors);
    EXPECT_TRUE(plain->m_bGrayColors);
    EXPECT_EQ(plain->GetColorRef(), 0x332211u);

    grid.colors.assign(6, 0xFF808080);
    const auto gray = Create(grid);
    EXPECT_TRUE(gray->m_bHasVertexColors);
    EXPECT_TRUE(gray->m_bGrayColors);
    EXPECT_EQ(gray->GetColorRef(), 0x332211u);

    grid.colors[5] = 0xFF808081;  // in a hole
    const auto colored = Create(grid);
    EXPECT_TRUE(colored->m_bHasVertexColors);
    EXPECT_FALSE(colored->m_bGrayColors);
    EXPECT_EQ(colored->GetColorRef(), 0xFFFFFFu);
}

TEST(CreateInternalMesh, ConnectsTheCellsOfAReducedGrid) {
    const auto mesh = Create(Drawing({"####", "####", "####", "####"}), false, nullptr, 2);
    ASSERT_NE(mesh, nullptr);
    ASSERT_EQ(mesh->GetVertexCount(), 4u);
    EXPECT_EQ(mesh->GetTriangleCount(), 2u);
    EXPECT_EQ(mesh->m_vVertices[3].x, 2.5f);
    EXPECT_EQ(mesh->m_vVertices[3].gridIndex, 0x00010001u);
}

TEST(CreateInternalMeshBuffers, HasMeanNormalsAndNoSpareCapacity) {
    Drawing grid({"##", "##"});
    grid.At(0, 0, 2) = 1;  // a fold along the diagonal
    grid.colors = {1, 2, 3, 4};
    const auto buffers =
        CreateInternalMeshBuffers(2, 2, grid.points.data(), grid.mask.data(), grid.colors.data(), false, 1);
    ASSERT_NE(buffers, nullptr);
    EXPECT_TRUE(buffers->HasColors());
    ASSERT_EQ(buffers->GetVertices().size(), 4u);
    EXPECT_EQ(buffers->GetTriangles().size(), 2u);
    EXPECT_EQ(buffers->m_vVertices.capacity(), 4u);
    EXPECT_EQ(buffers->m_vTriangles.capacity(), 2u);
    const Vertex& fold = buffers->GetVertices()[1];
    EXPECT_LT(std::hypot(fold.nx, fold.ny, fold.nz), 0.95f) << "the mean of two directions is shorter than 1";
}

TEST(CreateInternalMeshBuffers, ReturnsNothingForAnEmptyGridUnlessAllowed) {
    const Drawing grid({"#.", ".#"});
    EXPECT_EQ(CreateInternalMeshBuffers(2, 2, grid.points.data(), grid.mask.data(), nullptr, false, 1), nullptr);
    const auto buffers = CreateInternalMeshBuffers(2, 2, grid.points.data(), grid.mask.data(), nullptr, true, 1);
    ASSERT_NE(buffers, nullptr);
    EXPECT_FALSE(buffers->HasColors());
    EXPECT_TRUE(buffers->GetVertices().empty());
}
