// Picks compared with a search that shares nothing with the viewer: the line of a pixel from the frame of the view, and
// every triangle in long double by signed volumes. Where a picture has an edge or two surfaces meet the answer depends
// on the last bit; those pixels are counted and left out.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/ControlFixture.h"

namespace {

using Real = long double;
using Real3 = std::array<Real, 3>;

Real3 Minus(const Real3& a, const Real3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
Real3 Along(const Real3& from, Real t, const Real3& direction) {
    return {from[0] + t * direction[0], from[1] + t * direction[1], from[2] + t * direction[2]};
}
Real Dot(const Real3& a, const Real3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Real3 Cross(const Real3& a, const Real3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Real Size(const Real3& a) { return std::sqrt(Dot(a, a)); }
Real3 ToReal(const Float3& a) { return {a[0], a[1], a[2]}; }

struct Line {
    Real3 origin, direction;  ///< the direction has the length 1
};

/// The line through a pixel along the view, its origin at window depth 0.1, by the definition of the camera: an
/// orthographic box around the centre of the view, four scene sizes to both sides of the eye, which is two in front of
/// the centre.
Line LineThrough(const CKV_ScenePaneCtrl& control, int x, int y) {
    const Real width = control.m_nWidth, height = control.m_nHeight;
    const Real half = Real{control.m_fZoom} * control.m_fSceneSize / 2;
    const Real depth = 4 * Real{control.m_fSceneSize} * std::max(1.0f, control.m_fZoom);
    const Real right = (2 * x / width - 1) * half * (width > height ? width / height : 1);
    const Real up = (1 - 2 * y / height) * half * (width > height ? 1 : height / width);
    const Real towards = 2 * Real{control.m_fSceneSize} + (1 - 2 * 0.1L) * depth;
    const Real3 wx = ToReal(control.m_fAxisX), wy = ToReal(control.m_fAxisY), wz = ToReal(control.m_fAxisZ);
    const Real3 origin = Along(Along(Along(ToReal(control.m_fViewCenter), right, wx), up, wy), towards, wz);
    return {origin, wz};
}

struct Found {
    std::int32_t object = -1, triangle = -1;
    Real distance = 0;
    Real3 point{};
};

struct Answer {
    std::optional<Found> found;
    bool isClear = true;  ///< no edge is within the tolerance of the line, and no other hit at the same distance
};

/// How far the line passes inside a triangle, as a length: negative outside.
Real Inside(const Line& line, const std::array<Real3, 3>& corners, Real side) {
    Real least = INFINITY;
    for (std::size_t i = 0; i < 3; ++i) {
        const Real3 edge = Minus(corners[(i + 1) % 3], corners[i]);
        const Real3 across = Cross(edge, line.direction);  // its length is that of the edge as the line sees it
        const Real length = Size(across);
        if (length == 0) return -INFINITY;
        least = std::min(least, side * Dot(across, Minus(line.origin, corners[i])) / length);
    }
    return least;
}

/// @param tolerance  in units of the world: what single precision of the coordinates of the line may shift it by
Answer Search(const CKV_ScenePaneCtrl& control, int x, int y, Real tolerance) {
    const Line line = LineThrough(control, x, y);
    Answer answer;
    for (std::size_t object = 0; object < control.m_vpMeshes.size(); ++object) {
        const Mesh& mesh = *control.m_vpMeshes[object];
        if (mesh.m_iVisible == 0) continue;
        for (std::size_t i = 0; i < mesh.m_vTriangles.size(); ++i) {
            std::array<Real3, 3> corners;
            for (std::size_t k = 0; k < 3; ++k) {
                const Vertex& vertex = mesh.m_vVertices.at(static_cast<std::size_t>(mesh.m_vTriangles[i].v[k]));
                corners[k] = {vertex.x, vertex.y, vertex.z};
            }
            const Real3 normal = Cross(Minus(corners[1], corners[0]), Minus(corners[2], corners[0]));
            const Real facing = Dot(normal, line.direction);
            const Real inside = Inside(line, corners, facing > 0 ? -1 : 1);
            if (std::abs(inside) < tolerance || std::abs(facing) < 1e-3L) answer.isClear &= inside < -tolerance;
            if (inside < 0 || std::abs(facing) < 1e-5L) continue;
            const Real t = Dot(normal, Minus(corners[0], line.origin)) / facing;
            if (answer.found && std::abs(std::abs(t) - answer.found->distance) < 10 * tolerance) answer.isClear = false;
            if (answer.found && std::abs(t) >= answer.found->distance) continue;
            answer.found = {static_cast<std::int32_t>(object), static_cast<std::int32_t>(i), std::abs(t),
                            Along(line.origin, t, line.direction)};
        }
    }
    return answer;
}

// ---- scenes

class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    float operator()(float from, float to) {
        return from + (to - from) * static_cast<float>(m_engine() >> 8) * 0x1p-24f;
    }

private:
    std::mt19937 m_engine;
};

/// A wavy ball of triangles without some of them, so that the far side shows through holes.
void AddBall(CKV_ScenePaneCtrl& control, const Float3& center, float radius, Random& random) {
    constexpr int kRows = 14, kColumns = 20;
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int row = 0; row <= kRows; ++row)
        for (int column = 0; column < kColumns; ++column) {
            const float polar = 3.0f * static_cast<float>(row) / kRows + 0.07f;
            const float around = 6.2831853f * static_cast<float>(column) / kColumns, r = radius * random(0.8f, 1.2f);
            vertices.push_back({.x = center[0] + r * std::sin(polar) * std::cos(around),
                                .y = center[1] + r * std::sin(polar) * std::sin(around),
                                .z = center[2] + r * std::cos(polar)});
        }
    for (int row = 0; row < kRows; ++row)
        for (int column = 0; column < kColumns; ++column) {
            const int a = row * kColumns + column, b = row * kColumns + (column + 1) % kColumns;
            if (random(0, 1) > 0.15f) triangles.push_back({{a, b, b + kColumns}});
            if (random(0, 1) > 0.15f) triangles.push_back({{a, b + kColumns, a + kColumns}});
        }
    AddMesh(control, std::move(vertices), std::move(triangles));
}

/// Triangles of all sizes and directions, many of them crossing each other.
void AddShards(CKV_ScenePaneCtrl& control, const Float3& center, float size, Random& random) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int i = 0; i < 80; ++i) {
        const Float3 at{center[0] + random(-size, size), center[1] + random(-size, size),
                        center[2] + random(-size, size)};
        const float reach = size * random(0.05f, 0.6f);
        for (int k = 0; k < 3; ++k)
            vertices.push_back({.x = at[0] + random(-reach, reach),
                                .y = at[1] + random(-reach, reach),
                                .z = at[2] + random(-reach, reach)});
        triangles.push_back({{3 * i, 3 * i + 1, 3 * i + 2}});
    }
    AddMesh(control, std::move(vertices), std::move(triangles));
}

/// Rotated by some angles about all axes; the axes are orthonormal up to the rounding of floats.
void TurnView(CKV_ScenePaneCtrl& control, Random& random) {
    const float a = random(0, 6.28f), b = random(-1.4f, 1.4f), roll = random(0, 6.28f);
    const Float3 z{std::cos(a) * std::cos(b), std::sin(a) * std::cos(b), std::sin(b)};
    const Float3 side = Normalized(::Cross(Float3{0, 0, 1}, z)), up = ::Cross(z, side);
    const Float3 x = std::cos(roll) * side + std::sin(roll) * up, y = ::Cross(z, x);
    const Float3 c = control.m_fViewCenter;
    ASSERT_NE(control.SetViewParams(x[0], x[1], x[2], y[0], y[1], y[2], c[0], c[1], c[2], random(0.5f, 3), 0), 0);
}

struct Tally {
    int hits = 0, misses = 0, unclear = 0;
};

/// Picks all over the window and around it, and compares each with the search.
Tally ComparePicks(CKV_ScenePaneCtrl& control, Real tolerance) {
    constexpr int kStep = 13;
    Tally tally;
    for (int y = -10; y < control.m_nHeight + 10; y += kStep) {
        for (int x = -10; x < control.m_nWidth + 10; x += kStep) {
            const Answer answer = Search(control, x, y, tolerance);
            if (!answer.isClear) {
                ++tally.unclear;
                continue;
            }
            const std::string at = "pixel " + std::to_string(x) + ", " + std::to_string(y);
            KV_ScenePane::SurfacePoint hit;
            Float3 point{};
            const bool isHit = control.PickSurface(x, y, &hit);
            const std::int32_t object = control.PickObjectAt(x, y, &point);
            EXPECT_EQ(isHit, answer.found.has_value()) << at;
            EXPECT_EQ(object, answer.found ? answer.found->object : -1) << at;
            if (!isHit || !answer.found) {
                ++tally.misses;
                continue;
            }
            ++tally.hits;
            EXPECT_EQ(hit.object, answer.found->object) << at;
            EXPECT_EQ(hit.triangle, answer.found->triangle) << at;
            EXPECT_NEAR(hit.distance, static_cast<double>(answer.found->distance), 20 * static_cast<double>(tolerance))
                << at;
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_EQ(hit.point[i], point[i]) << at;
                EXPECT_NEAR(hit.point[i], static_cast<double>(answer.found->point[i]),
                            20 * static_cast<double>(tolerance))
                    << at;
            }
            if (testing::Test::HasFailure()) return tally;  // one pixel says enough
        }
    }
    return tally;
}

/// Views of a random scene; there must be hits and misses, and few pixels that are left out.
void CompareViews(CKV_ScenePaneCtrl& control, Random& random, Real tolerance) {
    control.CenterView();
    Tally all;
    for (int view = 0; view < 5 && !testing::Test::HasFailure(); ++view) {
        TurnView(control, random);
        const Tally tally = ComparePicks(control, tolerance);
        all.hits += tally.hits;
        all.misses += tally.misses;
        all.unclear += tally.unclear;
    }
    EXPECT_GT(all.hits, 300);
    EXPECT_GT(all.misses, 60);
    EXPECT_LT(all.unclear, (all.hits + all.misses) / 10);
}

TEST(BruteForcePick, AgreesThroughTheHolesAndAtTheSilhouettesOfABall) {
    OffscreenControl control(320, 240);
    Random random(1);
    AddBall(*control, {3, -2, 1}, 40, random);
    CompareViews(*control, random, 1e-3L);
}

TEST(BruteForcePick, AgreesAmongOverlappingAndHiddenObjectsAndPointSets) {
    OffscreenControl control(200, 310);
    Random random(2);
    AddBall(*control, {0, 0, 0}, 30, random);
    AddBall(*control, {5, 8, -4}, 30, random);
    AddShards(*control, {0, 0, 0}, 40, random);
    AddBall(*control, {0, 0, 0}, 60, random);
    control->m_vpMeshes[3]->m_iVisible = 0;
    std::vector<Vertex> points(500);
    for (Vertex& point : points) point.x = random(-50, 50), point.y = random(-50, 50), point.z = random(-50, 50);
    AddMesh(*control, std::move(points), {});
    CompareViews(*control, random, 1e-3L);
}

TEST(BruteForcePick, AgreesOnShardsThatCrossEachOther) {
    OffscreenControl control(333, 201);
    Random random(3);
    AddShards(*control, {-7, 0, 12}, 50, random);
    AddShards(*control, {20, 3, 2}, 20, random);
    CompareViews(*control, random, 1e-3L);
}

// A float has steps of 1/16 at a million: the line of a pixel is known to about that.
TEST(BruteForcePick, AgreesAMillionUnitsFromTheOrigin) {
    OffscreenControl control(320, 240);
    Random random(4);
    AddBall(*control, {1e6f, -6e5f, 8e5f}, 2000, random);
    AddShards(*control, {1e6f + 500, -6e5f, 8e5f}, 3000, random);
    CompareViews(*control, random, 0.5L);
}

// A view of a part far from the viewer: most of the scene is behind window depth 0.1, where its distance
// counts as well.
TEST(BruteForcePick, AgreesBehindTheOriginOfTheLine) {
    OffscreenControl control(320, 240);
    Random random(5);
    AddBall(*control, {0, 0, 0}, 20, random);
    control->CenterView();
    const float towards = 5.2f * control->m_fSceneSize;
    AddBall(*control, {0, 0, towards + 60}, 25, random);
    AddBall(*control, {0, 0, towards - 70}, 25, random);
    ASSERT_NE(control->SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0), 0);
    const Tally tally = ComparePicks(*control, 1e-3L);
    EXPECT_GT(tally.hits, 60);
    int behind = 0;
    for (int x = 0; x < 320; x += 4) {
        KV_ScenePane::SurfacePoint hit;
        if (!control->PickSurface(x, 120, &hit)) continue;
        EXPECT_GE(hit.distance, 0);
        behind += hit.point[2] > towards ? 1 : 0;
    }
    EXPECT_GT(behind, 5);
}

}  // namespace
