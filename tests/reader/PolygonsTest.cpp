#include "Polygons.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace {

struct Polygon {
    const char* name;
    std::vector<std::array<float, 3>> corners;
    double area;
};
void PrintTo(const Polygon& row, std::ostream* out) { *out << row.name; }

double AreaOf(const Vertex& a, const Vertex& b, const Vertex& c) {
    const double x = double{b.y - a.y} * (c.z - a.z) - double{b.z - a.z} * (c.y - a.y);
    const double y = double{b.z - a.z} * (c.x - a.x) - double{b.x - a.x} * (c.z - a.z);
    const double z = double{b.x - a.x} * (c.y - a.y) - double{b.y - a.y} * (c.x - a.x);
    return 0.5 * std::sqrt(x * x + y * y + z * z);
}

const Polygon kPolygons[] = {
    {"Square", {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, 4},
    {"SquareInXz", {{0, 5, 0}, {0, 5, 2}, {2, 5, 2}, {2, 5, 0}}, 4},
    {"ClockwiseSquare", {{0, 0, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}, 4},
    {"Arrow", {{0, 0, 0}, {4, 2, 0}, {0, 4, 0}, {1, 2, 0}}, 6},
    {"ConcaveAtTheFirstCorner", {{1, 2, 0}, {0, 0, 0}, {4, 2, 0}, {0, 4, 0}}, 6},
    {"LetterU", {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {2, 3, 0}, {2, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}}, 7},
    {"HoleJoinedByACut",
     {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 0}, {1, 1, 0}, {1, 3, 0}, {3, 3, 0}, {3, 1, 0}, {1, 1, 0}},
     12},
};
class PolygonTriangles : public testing::TestWithParam<Polygon> {};

TEST_P(PolygonTriangles, CoverItWithoutOverlap) {
    std::vector<Vertex> vertices;
    for (const auto& [x, y, z] : GetParam().corners) vertices.push_back({x, y, z});
    std::vector<std::int32_t> corners(vertices.size());
    std::iota(corners.begin(), corners.end(), 0);
    std::vector<Triangle> triangles;
    std::vector<std::size_t> picked;
    AppendPolygon(vertices, corners, triangles, &picked);
    ASSERT_EQ(triangles.size(), corners.size() - 2);
    double area = 0;
    for (const Triangle& t : triangles)
        area += AreaOf(vertices[static_cast<std::size_t>(t.v[0])], vertices[static_cast<std::size_t>(t.v[1])],
                       vertices[static_cast<std::size_t>(t.v[2])]);
    EXPECT_NEAR(area, GetParam().area, 1e-6) << "more where triangles overlap or leave it";
    ASSERT_EQ(picked.size(), 3 * triangles.size());
    for (std::size_t i = 0; i < picked.size(); ++i) EXPECT_EQ(corners[picked[i]], triangles[i / 3].v[i % 3]) << i;
}
INSTANTIATE_TEST_SUITE_P(Polygons, PolygonTriangles, testing::ValuesIn(kPolygons),
                         [](const auto& row) { return row.param.name; });

TEST(Polygons, OfFewerThanThreeCornersHaveNoTriangles) {
    const std::vector<Vertex> vertices(3);
    const std::int32_t corners[] = {0, 1};
    std::vector<Triangle> triangles;
    AppendPolygon(vertices, corners, triangles, nullptr);
    AppendPolygon(vertices, {}, triangles, nullptr);
    EXPECT_TRUE(triangles.empty());
}

TEST(Polygons, WithoutAreaOrThatCrossThemselvesHaveTheSameNumberOfTriangles) {
    std::vector<Vertex> vertices;
    for (const auto& [x, y] : {std::pair{0, 0}, {2, 2}, {2, 0}, {0, 2}, {1, 1}, {1, 1}})
        vertices.push_back({static_cast<float>(x), static_cast<float>(y), NAN});
    const std::int32_t corners[] = {0, 1, 2, 3, 4, 5};
    std::vector<Triangle> triangles;
    AppendPolygon(vertices, corners, triangles, nullptr);
    EXPECT_EQ(triangles.size(), 4u);
    const std::int32_t same[] = {0, 0, 0, 0};
    AppendPolygon(vertices, same, triangles, nullptr);
    EXPECT_EQ(triangles.size(), 6u);
}

}  // namespace
