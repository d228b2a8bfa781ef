// Grids that are triangulated on several threads: the mesh is that of one thread to the bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "geometry/GridTriangulation.h"

namespace {

constexpr float kTrafo[16] = {0.8f, -0.6f, 0, 10, 0.6f, 0.8f, 0, -20, 0, 0, 1, 500, 0, 0, 0, 1};

struct Grid {
    std::int16_t width = 0, height = 0;
    std::vector<float> points;
    std::vector<std::uint16_t> mask;
    std::vector<std::uint32_t> colors;
};

/// A wavy surface with steps, holes of all sizes and some odd coordinates.
/// @param holes  share of the pixels that are masked one by one
Grid MakeGrid(std::int16_t width, std::int16_t height, double holes) {
    std::mt19937 random(static_cast<unsigned>(width) * 31 + static_cast<unsigned>(height));
    std::uniform_real_distribution<float> noise(-0.3f, 0.3f);
    std::bernoulli_distribution isHole(holes), isOdd(1e-4);
    Grid grid{.width = width, .height = height, .points = {}, .mask = {}, .colors = {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto px = static_cast<float>(x), py = static_cast<float>(y);
            float z = 5 * std::sin(0.1f * px) * std::cos(0.07f * py) + noise(random);
            if (x / 40 % 2 == 1) z += 30;  // steps, with slivers across them
            if (isOdd(random)) z = std::numeric_limits<float>::infinity();
            if (isOdd(random)) z = NAN;
            grid.points.insert(grid.points.end(), {px + noise(random), py + noise(random), z});
            const bool isInDisc = (x - 90) * (x - 90) + (y - 60) * (y - 60) < 2000;
            grid.mask.push_back(isHole(random) || isInDisc || y / 50 % 4 == 3 ? 1 : 0);
            grid.colors.push_back(static_cast<std::uint32_t>(random()));
        }
    return grid;
}

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

struct GridCase {
    const char* name;
    std::int16_t width, height;
    double holes;
    std::int32_t skip;
};
void PrintTo(const GridCase& row, std::ostream* out) { *out << row.name; }

// All but one have enough pixels, or cells, for seven threads.
const GridCase kGrids[] = {
    {"FewHoles", 800, 500, 0.001, 1},           {"ManyHoles", 800, 500, 0.3, 1},
    {"AlmostAllHoles", 800, 500, 0.9, 1},       {"OneColumnMoreThanTheLanes", 801, 500, 0.1, 1},
    {"OneRowMoreThanABand", 12200, 33, 0.1, 1}, {"TwoRows", 30000, 2, 0.1, 1},
    {"TwoColumns", 2, 30000, 0.1, 1},           {"Averages", 1300, 1100, 0.2, 2},
};

class GridOnThreads : public testing::TestWithParam<GridCase> {};

TEST_P(GridOnThreads, GivesTheMeshOfOneThread) {
    const Grid grid = MakeGrid(GetParam().width, GetParam().height, GetParam().holes);
    const auto meshOf = [&](unsigned threads) {
        return CreateInternalMesh(L"", grid.width, grid.height, grid.points.data(), grid.mask.data(), kTrafo, 0,
                                  grid.colors.data(), true, GetParam().skip, threads);
    };
    const auto expected = meshOf(1);
    ASSERT_FALSE(expected->m_vTriangles.empty());
    for (const unsigned threads : {2u, 3u, 7u}) {
        SCOPED_TRACE(threads);
        const auto mesh = meshOf(threads);
        EXPECT_TRUE(SameBytes(mesh->m_vVertices, expected->m_vVertices));
        EXPECT_TRUE(SameBytes(mesh->m_vTriangles, expected->m_vTriangles));
        EXPECT_EQ(std::memcmp(mesh->m_fBoundingBox, expected->m_fBoundingBox, sizeof mesh->m_fBoundingBox), 0);
        EXPECT_EQ(mesh->m_vVertices.capacity(), mesh->m_vVertices.size());
        EXPECT_EQ(mesh->m_vTriangles.capacity(), mesh->m_vTriangles.size());
    }
}
INSTANTIATE_TEST_SUITE_P(Grid, GridOnThreads, testing::ValuesIn(kGrids),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GridOnThreads, GivesAnEmptyMeshWhereNoPixelIsValid) {
    Grid grid = MakeGrid(800, 500, 0);
    grid.mask.assign(grid.mask.size(), 1);
    const auto mesh = CreateInternalMesh(L"", grid.width, grid.height, grid.points.data(), grid.mask.data(), nullptr, 0,
                                         nullptr, true, 1, 3);
    EXPECT_TRUE(mesh->m_vVertices.empty());
    EXPECT_TRUE(mesh->m_vTriangles.empty());
}

TEST(GridOnThreads, ListsTheCellsOfOneThread) {
    const Grid grid = MakeGrid(799, 501, 0.4);
    for (const std::int32_t skip : {2, 3, 5, 1000}) {
        const auto listOf = [&](unsigned threads) {
            return BuildGridVertexList(grid.width, grid.height, grid.points.data(), grid.mask.data(),
                                       grid.colors.data(), skip, threads);
        };
        const GridVertexList expected = listOf(1);
        EXPECT_EQ(expected.m_vVertices.empty(), skip == 1000);
        for (const unsigned threads : {2u, 3u, 7u})
            EXPECT_TRUE(SameBytes(listOf(threads).m_vVertices, expected.m_vVertices)) << skip << ", " << threads;
    }
}

}  // namespace
