// Means and planes of points, and the neighbours that they are computed over, against plain searches and constructions.
#include "KV_Components/PlaneFit.h"

#include <cfloat>
#include <cmath>
#include <numbers>
#include <random>
#include <set>

#include "GeometryObjects.h"
#include "KV_Components/NeighbourSearch.h"

namespace {

using namespace GeometryObjects;
using Random = std::mt19937;

float Uniform(Random& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

PointView ViewOf(const std::vector<float>& coordinates, std::size_t floatsPerPoint = 3) {
    return {coordinates.data(), floatsPerPoint, coordinates.size() / floatsPerPoint};
}

double Dot(const Point3& a, const Point3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

double SumOfSquaredDistances(const PointView& points, const Point3& normal) {
    const Point3 mean = MeanOf(points).value();
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const float* const p = points[i];
        const double distance = Dot({p[0] - mean[0], p[1] - mean[1], p[2] - mean[2]}, normal);
        sum += distance * distance;
    }
    return sum;
}

Point3 Direction(double azimuth, double z) {
    const double radius = std::sqrt(1.0 - z * z);
    return {radius * std::cos(azimuth), radius * std::sin(azimuth), z};
}

TEST(PlaneNormalOf, IsThatOfThePlaneOfThePoints) {
    Random random(1);
    for (int round = 0; round < 200; ++round) {
        // Points of a tilted square far from the origin: two directions in the plane, and none across.
        const Point3 normal = Direction(Uniform(random, -3.1f, 3.1f), Uniform(random, 0.01f, 0.99f));
        const double length = std::hypot(normal[0], normal[1]);
        const Point3 u{-normal[1] / length, normal[0] / length, 0.0};
        const Point3 v{normal[1] * u[2] - normal[2] * u[1], normal[2] * u[0] - normal[0] * u[2],
                       normal[0] * u[1] - normal[1] * u[0]};
        std::vector<float> points;
        for (int i = 0; i < 50; ++i) {
            const double a = Uniform(random, -20.0f, 20.0f), b = Uniform(random, -20.0f, 20.0f);
            for (std::size_t axis = 0; axis < 3; ++axis)
                points.push_back(static_cast<float>(100.0 + a * u[axis] + b * v[axis]));
        }
        const std::optional<Point3> found = PlaneNormalOf(ViewOf(points));
        ASSERT_TRUE(found);
        EXPECT_NEAR(Dot(*found, *found), 1.0, 1e-12);
        EXPECT_GE(Dot(*found, normal), 1.0 - 1e-11) << "coordinates have the digits of a float";
    }
}

TEST(PlaneNormalOf, NoOtherDirectionHasSmallerDistances) {
    Random random(2);
    std::vector<float> points;
    for (int i = 0; i < 300; ++i)
        for (const float extent : {30.0f, 12.0f, 3.0f}) points.push_back(Uniform(random, 50.0f, 50.0f + extent));
    const PointView view = ViewOf(points);
    const double best = SumOfSquaredDistances(view, PlaneNormalOf(view).value());
    for (int i = 0; i < 20'000; ++i) {
        const Point3 direction = Direction(Uniform(random, -3.2f, 3.2f), Uniform(random, 0.0f, 1.0f));
        ASSERT_GE(SumOfSquaredDistances(view, direction), best * (1.0 - 1e-12));
    }
}

TEST(PlaneNormalOf, PointsUpAndWithoutAHeightAlongYOrX) {
    const auto normalOf = [](const std::vector<float>& points) { return PlaneNormalOf(ViewOf(points)).value(); };
    // Each plane with its corners in both orders.
    for (const bool isReversed : {false, true}) {
        const auto corners = [&](std::vector<float> points) {
            if (isReversed)
                for (float& value : points) value = -value;
            return normalOf(points);
        };
        EXPECT_EQ(corners({0, 0, 0, 4, 0, 0, 0, 4, 0, 4, 4, 0}), (Point3{0, 0, 1}));
        EXPECT_EQ(corners({0, 0, 0, 4, 0, 0, 0, 0, 4, 4, 0, 4}), (Point3{0, 1, 0}));
        EXPECT_EQ(corners({0, 0, 0, 0, 4, 0, 0, 0, 4, 0, 4, 4}), (Point3{1, 0, 0}));
        const Point3 tilted = corners({0, 0, 0, 4, 0, 4, 0, 4, 0, 4, 4, 4});  // z = x
        EXPECT_NEAR(tilted[0], -std::numbers::sqrt2 / 2, 1e-12);
        EXPECT_NEAR(tilted[2], std::numbers::sqrt2 / 2, 1e-12);
        const Point3 wall = corners({0, 0, 0, 4, -4, 0, 0, 0, 4, 4, -4, 4});  // x + y = 0
        EXPECT_NEAR(wall[0], std::numbers::sqrt2 / 2, 1e-12);
        EXPECT_NEAR(wall[1], std::numbers::sqrt2 / 2, 1e-12);
    }
}

TEST(PlaneNormalOf, OfAnyWallPointsAlongYOrX) {
    int walls = 0;
    for (int x = -7; x <= 7; ++x)
        for (int y = -7; y <= 7; ++y) {
            if (x == 0 && y == 0) continue;
            const auto u = static_cast<float>(x), v = static_cast<float>(y);
            const std::vector<float> points{0, 0, 0, 4 * u, 4 * v, 0, 0, 0, 4, 4 * u, 4 * v, 4};
            const Point3 normal = PlaneNormalOf(ViewOf(points)).value();
            const double first = normal[2] != 0.0 ? normal[2] : normal[1] != 0.0 ? normal[1] : normal[0];
            EXPECT_GT(first, 0.0) << x << " " << y;
            EXPECT_NEAR(normal[0] * x + normal[1] * y, 0.0, 1e-12);
            walls += normal[2] == 0.0;
        }
    EXPECT_GT(walls, 100) << "heights of exactly 0";
}

TEST(PlaneNormalOf, PointsOnALineHaveANormalAcrossIt) {
    Random random(3);
    for (int round = 0; round < 100; ++round) {
        const Point3 line = Direction(Uniform(random, -3.1f, 3.1f), Uniform(random, -1.0f, 1.0f));
        std::vector<float> points;
        for (int i = 0; i < 20; ++i)
            for (const double axis : line) points.push_back(static_cast<float>(i * axis));
        const Point3 normal = PlaneNormalOf(ViewOf(points)).value();
        EXPECT_NEAR(Dot(normal, normal), 1.0, 1e-12);
        EXPECT_NEAR(Dot(normal, line), 0.0, 1e-6);
        EXPECT_GE(normal[2], 0.0);
    }
    const Point3 normal = PlaneNormalOf(ViewOf(std::vector<float>(30, 2.5f))).value();
    EXPECT_NEAR(Dot(normal, normal), 1.0, 1e-12) << "points at one place";
}

TEST(PlaneNormalOf, CoordinatesOfAllSizesGiveAUnitVector) {
    for (const float size : {1e-38f, 1e-20f, 1e20f, 3e38f}) {
        const std::vector<float> points{0, 0, 0, size, 0, 0, 0, size, 0, size, size, 0};
        EXPECT_EQ(PlaneNormalOf(ViewOf(points)), (Point3{0, 0, 1})) << size;
    }
}

TEST(PlaneNormalOf, UsesTheListedPointsOnly) {
    const std::vector<float> points{5, 5, 5, 7, 0, 1, 0, 7, 0, 0, 0, 7, 1, 0, 0, 7};  // four floats per point
    const std::vector<std::uint32_t> indices{3, 1, 2};
    EXPECT_EQ(PlaneNormalOf(ViewOf(points, 4), indices), (Point3{0, 0, 1}));
    EXPECT_FALSE(PlaneNormalOf(ViewOf(points, 4), std::span(indices).first(2)));
    EXPECT_FALSE(PlaneNormalOf(ViewOf(points, 4), {}));
}

class Neighbours : public NoLeak {
protected:
    static NeighbourSearch& SearchOf(const ObjectPointer& search) {
        return *ComponentOf<NeighbourSearch>(search.get());
    }

    /// The plain search, in double.
    static std::set<std::uint32_t> Plain(const PointView& points, const Point3& place, float radius) {
        std::set<std::uint32_t> found;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double x = points[i][0] - place[0], y = points[i][1] - place[1], z = points[i][2] - place[2];
            if (x * x + y * y + z * z <= double{radius} * double{radius}) found.insert(static_cast<std::uint32_t>(i));
        }
        return found;
    }
    static void ExpectPlain(NeighbourSearch& search, const PointView& points, const Point3& place, float radius) {
        const auto neighbours = search.Within(place, radius);
        ASSERT_TRUE(neighbours);
        const std::set<std::uint32_t> expected = Plain(points, place, radius);
        if (neighbours->isAll) {
            EXPECT_EQ(expected.size(), points.size());
            EXPECT_TRUE(neighbours->indices.empty());
            return;
        }
        EXPECT_EQ(neighbours->indices.size(), expected.size()) << "each point once";
        EXPECT_EQ(std::set<std::uint32_t>(neighbours->indices.begin(), neighbours->indices.end()), expected);
    }
};

TEST_F(Neighbours, AreThoseOfAPlainSearch) {
    Random random(4);
    for (const std::size_t count : {1, 2, 9, 11, 500, 5000}) {
        std::vector<float> points(3 * count);
        // Whole numbers in part, so that points coincide and are at the radius exactly.
        for (float& value : points) {
            value = Uniform(random, -9.0f, 9.0f);
            if (count == 500) value = std::round(value);
        }
        const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud);
        for (int round = 0; round < 60; ++round) {
            Point3 place{Uniform(random, -12.0f, 12.0f), Uniform(random, -12.0f, 12.0f),
                         Uniform(random, -12.0f, 12.0f)};
            for (double& value : place)
                if (round % 2 == 0) value = std::round(value);
            ExpectPlain(SearchOf(search), ViewOf(points), place, static_cast<float>(round % 30));
        }
    }
}

TEST_F(Neighbours, OfAllPointsNeedNoTree) {
    std::vector<float> points;
    for (int i = 0; i < 100; ++i)
        for (const int value : {i % 10, i / 10, 0}) points.push_back(static_cast<float>(value));
    const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud);
    NeighbourSearch& neighbours = SearchOf(search);
    EXPECT_FALSE(neighbours.HasTree()) << "not built ahead";
    EXPECT_TRUE(neighbours.Within({1e30, 0, 0}, FLT_MAX)->isAll) << "infinite as a square";
    EXPECT_TRUE(neighbours.Within({0, 0, 0}, 12.75f)->isAll) << "the far corner is at 12.73";
    EXPECT_TRUE(neighbours.Within({9, 9, 0}, 100.0f)->isAll);
    EXPECT_FALSE(neighbours.HasTree());
    EXPECT_FALSE(neighbours.Within({0, 0, 0}, 12.7f)->isAll);
    EXPECT_TRUE(neighbours.HasTree());
}

TEST_F(Neighbours, AreReadFromTheArrayOfTheCallerWithItsStride) {
    Random random(5);
    std::vector<float> vertices(8 * 400);
    for (float& value : vertices) value = Uniform(random, -9.0f, 9.0f);
    const ObjectPointer cloud = Make(point_cloud::kFactory);
    ASSERT_EQ(point_cloud::kSetFormat(cloud.get(), L"P"), kOk);
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 400), kOk);
    ASSERT_EQ(point_cloud::kSetPoints(cloud.get(), vertices.data(), 32, 400), kOk);
    const ObjectPointer search = SearchIn(cloud);
    ExpectPlain(SearchOf(search), ViewOf(vertices, 8), {1, 2, 3}, 6.0f);
}

TEST_F(Neighbours, FollowThePointsOfTheCloud) {
    const std::vector<float> before{0, 0, 0, 1, 0, 0, 2, 0, 0, 50, 0, 0}, after{7, 0, 0};
    const ObjectPointer cloud = CloudOf(before), search = SearchIn(cloud);
    NeighbourSearch& neighbours = SearchOf(search);
    EXPECT_EQ(neighbours.Within({0, 0, 0}, 3.0f)->indices.size(), 3u);
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 1), kOk);
    EXPECT_FALSE(neighbours.Within({0, 0, 0}, 3.0f)) << "the points are gone";
    EXPECT_FALSE(neighbours.Within({0, 0, 0}, FLT_MAX));
    ASSERT_EQ(point_cloud::kSetPoints(cloud.get(), after.data(), 12, 1), kOk);
    EXPECT_TRUE(neighbours.Within({0, 0, 0}, 3.0f)->indices.empty());
    EXPECT_TRUE(neighbours.Within({0, 0, 0}, 7.0f)->isAll);
}

TEST_F(Neighbours, AreThoseOfTheLastCloud) {
    const std::vector<float> before{0, 0, 0, 1, 0, 0, 2, 0, 0, 50, 0, 0}, after{40, 0, 0, 80, 0, 0};
    const ObjectPointer search = SearchIn(CloudOf(before)), cloud = CloudOf(after);
    EXPECT_EQ(SearchOf(search).Within({0, 0, 0}, 3.0f)->indices.size(), 3u);
    Object* handed = Handed(cloud);
    ASSERT_EQ(neighbour_search::kBuild(search.get(), &handed), kOk);
    EXPECT_TRUE(SearchOf(search).Within({0, 0, 0}, 3.0f)->indices.empty());
    EXPECT_EQ(SearchOf(search).Within({70, 0, 0}, 10.0f)->indices, std::vector<std::uint32_t>{1});
}

TEST_F(Neighbours, AnInfiniteSquareOfTheRadiusFindsPointsFartherThanTheRadius) {
    const std::vector<float> points{-FLT_MAX, 0, 0, FLT_MAX, 0, 0};
    const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud);
    EXPECT_TRUE(SearchOf(search).Within({FLT_MAX, 0, 0}, FLT_MAX)->isAll);
    EXPECT_TRUE(SearchOf(search).Within({FLT_MAX, 0, 0}, 1.9e19f)->isAll) << "the square is 3.6e38";
    EXPECT_FALSE(SearchOf(search).Within({FLT_MAX, 0, 0}, 1.8e19f)->isAll);
}

TEST_F(Neighbours, PointsAtOnePlaceAreAllFound) {
    std::vector<float> points(3 * 3000, 2.5f);
    points.insert(points.end(), {90, 90, 90});
    const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud);
    ExpectPlain(SearchOf(search), ViewOf(points), {2.5, 2.5, 2.5}, 0.0f);
    ExpectPlain(SearchOf(search), ViewOf(points), {2.5, 2.5, 3.5}, 1.0f);
    ExpectPlain(SearchOf(search), ViewOf(points), {2.5, 2.5, 3.5}, 0.999f);
}

}  // namespace
