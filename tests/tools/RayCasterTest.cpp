// Rays against triangles: the tree must find the same hit as a loop over all triangles, to the bit.
#include "simulate-scans/RayCaster.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "simulate-scans/Shapes.h"

namespace simulate {
namespace {

Hit NearestByLoop(const TriangleMesh& mesh, const Ray& ray) {
    const TriangleTest test(ray);
    Hit best;
    float nearest = std::numeric_limits<float>::infinity();
    for (std::size_t i = 0; i < mesh.TriangleCount(); ++i) {
        const Vec3* p = &mesh.corners[3 * i];
        float t = 0;
        if (!test.Hits(p[0], p[1], p[2], &t) || t >= nearest) continue;
        nearest = t;
        best = {t, static_cast<std::int32_t>(i)};
    }
    return best;
}

void ExpectSameHit(const TriangleMesh& mesh, const RayCaster& caster, const Ray& ray) {
    const Hit expected = NearestByLoop(mesh, ray), found = caster.Nearest(ray);
    ASSERT_EQ(found.triangle, expected.triangle)
        << "from " << ray.origin.x << ' ' << ray.origin.y << ' ' << ray.origin.z << " along " << ray.direction.x << ' '
        << ray.direction.y << ' ' << ray.direction.z;
    ASSERT_EQ(found.distance, expected.distance);
}

/// Shapes with sharp edges and with smooth surfaces, small enough for the loop.
TriangleMesh SmallBlob() {
    return StarShape(10, [](Vec3 d) { return d * (30.0f + 6.0f * d.x * d.y + 4.0f * d.z * d.z * d.z); });
}

class RayCasterEqualsBruteForce : public testing::TestWithParam<const char*> {
protected:
    const TriangleMesh m_mesh = GetParam() == std::string("blob") ? SmallBlob() : MakeShape(GetParam());
    const RayCaster m_caster{m_mesh};
    std::mt19937 m_random{20240607};

    Vec3 RandomPoint(float extent) {
        std::uniform_real_distribution<float> range(-extent, extent);
        return {range(m_random), range(m_random), range(m_random)};
    }
    Vec3 RandomCorner() {
        return m_mesh.corners[std::uniform_int_distribution<std::size_t>(0, m_mesh.corners.size() - 1)(m_random)];
    }
};

TEST_P(RayCasterEqualsBruteForce, OnRandomRays) {
    int hits = 0;
    for (int i = 0; i < 2000; ++i) {
        const Ray ray{RandomPoint(90), RandomPoint(1)};
        ExpectSameHit(m_mesh, m_caster, ray);
        hits += m_caster.Nearest(ray).IsHit();
    }
    EXPECT_GT(hits, 50);
}

TEST_P(RayCasterEqualsBruteForce, OnRaysAlongTheAxes) {
    int hits = 0;
    for (int i = 0; i < 2000; ++i) {
        Ray ray{RandomPoint(35), {}};
        const int axis = i % 3;
        const float side = i % 2 == 0 ? 1.0f : -1.0f;
        (axis == 0 ? ray.origin.x : axis == 1 ? ray.origin.y : ray.origin.z) = -100 * side;
        (axis == 0 ? ray.direction.x : axis == 1 ? ray.direction.y : ray.direction.z) = side;
        ExpectSameHit(m_mesh, m_caster, ray);
        hits += m_caster.Nearest(ray).IsHit();
    }
    EXPECT_GT(hits, 300);
}

TEST_P(RayCasterEqualsBruteForce, OnRaysAlongTheAxesThroughCorners) {
    for (int i = 0; i < 1500; ++i) {
        Ray ray{RandomCorner(), {}};  // in the planes of boxes, where the slab test computes 0 times infinity
        const int axis = i % 3;
        (axis == 0 ? ray.origin.x : axis == 1 ? ray.origin.y : ray.origin.z) = 100;
        (axis == 0 ? ray.direction.x : axis == 1 ? ray.direction.y : ray.direction.z) = -1;
        ExpectSameHit(m_mesh, m_caster, ray);
    }
}

TEST_P(RayCasterEqualsBruteForce, OnRaysAtCornersAndEdges) {
    for (int i = 0; i < 1500; ++i) {
        const std::size_t triangle =
            std::uniform_int_distribution<std::size_t>(0, m_mesh.TriangleCount() - 1)(m_random);
        const Vec3 a = m_mesh.corners[3 * triangle], b = m_mesh.corners[3 * triangle + 1];
        const Vec3 target = i % 2 == 0 ? a : a + (b - a) * 0.5f;
        const Vec3 origin = RandomPoint(300);
        ExpectSameHit(m_mesh, m_caster, {origin, target - origin});
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, RayCasterEqualsBruteForce, testing::Values("blob", "bracket", "steps", "gear"),
                         [](const auto& row) { return std::string(row.param); });

TEST(RayCaster, EveryRayFromInsideHitsAClosedObject) {
    // From inside, towards every corner and the midpoint of every edge.
    const TriangleMesh mesh = SmallBlob();
    const RayCaster caster(mesh);
    for (std::size_t i = 0; i < mesh.corners.size(); ++i) {
        const Vec3 a = mesh.corners[i], b = mesh.corners[i - i % 3 + (i + 1) % 3];
        const Vec3 origin{1.25f, -2.5f, 0.75f};
        EXPECT_TRUE(caster.Nearest({origin, a - origin}).IsHit()) << i;
        EXPECT_TRUE(caster.Nearest({origin, (a + b) * 0.5f - origin}).IsHit()) << i;
    }
}

TEST(RayCaster, ReturnsDistanceTriangleAndNormal) {
    TriangleMesh mesh;
    mesh.AddTriangle({0, 0, -5}, {1, 0, -5}, {0, 1, -5});
    mesh.AddTriangle({0, 0, 2}, {1, 0, 2}, {0, 1, 2});
    const RayCaster caster(mesh);
    const Hit down = caster.Nearest({{0.25f, 0.25f, 10}, {0, 0, -2}});
    EXPECT_EQ(down.triangle, 1);
    EXPECT_FLOAT_EQ(down.distance, 4);  // 8 mm in units of the direction, whose length is 2
    EXPECT_EQ(caster.Normal(1), (Vec3{0, 0, 1}));
    EXPECT_EQ(caster.Nearest({{0.25f, 0.25f, -10}, {0, 0, 1}}).triangle, 0);
    EXPECT_FALSE(caster.Nearest({{0.75f, 0.75f, 10}, {0, 0, -1}}).IsHit());
    EXPECT_FALSE(caster.Nearest({{0.25f, 0.25f, 10}, {0, 0, 1}}).IsHit())
        << "the triangle is behind the origin of the ray";
}

TEST(RayCaster, ReturnsTheFirstOfTrianglesAtTheSameDistance) {
    TriangleMesh mesh;
    for (int i = 0; i < 40; ++i) mesh.AddTriangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    EXPECT_EQ(RayCaster(mesh).Nearest({{0.25f, 0.25f, 1}, {0, 0, -1}}).triangle, 0);
}

TEST(RayCaster, ARayCloserToAnEdgeThanFloatPrecisionHitsOneNeighbourOnly) {
    // The distance between the edge from b to c and the ray is 2^-27. The products whose difference is the edge
    // function differ by 2^-26 and round to the same float. a and d are on opposite sides of the edge.
    const float e = 0x1p-13f;
    const Vec3 b{-1, -(1 - e), -1}, c{1 + e, 1, -1}, a{0, 1, -1}, d{0, -1, -1};
    TriangleMesh mesh;
    mesh.AddTriangle(a, b, c);
    mesh.AddTriangle(d, c, b);
    EXPECT_EQ(RayCaster(mesh).Nearest({{0, 0, 0}, {0, 0, -1}}).triangle, 1);
}

TEST(RayCaster, NeverHitsAnEmptyMesh) {
    EXPECT_FALSE(RayCaster(TriangleMesh{}).Nearest({{0, 0, 1}, {0, 0, -1}}).IsHit());
    EXPECT_FALSE(RayCaster(TriangleMesh{}).Nearest({{0, 0, 1}, {1, 1, 1}}).IsHit());
}

TEST(RayCaster, HitsASphereAtTheDistanceOfTheFormula) {
    const TriangleMesh mesh = MakeShape("sphere");
    const RayCaster caster(mesh);
    std::mt19937 random(5);
    std::uniform_real_distribution<float> across(-39, 39);
    for (int i = 0; i < 5000; ++i) {
        const float x = across(random), y = across(random);
        const float inside = kSphereRadius * kSphereRadius - x * x - y * y;
        if (inside < 100) continue;  // at grazing incidence the facets differ too much from the sphere
        const Hit hit = caster.Nearest({{x, y, 200}, {0, 0, -1}});
        ASSERT_TRUE(hit.IsHit());
        // The facets are up to 0.005 mm below the sphere; at this incidence that is 0.02 mm along the ray.
        ASSERT_NEAR(200 - hit.distance, std::sqrt(inside), 0.021f);
    }
}

}  // namespace
}  // namespace simulate
