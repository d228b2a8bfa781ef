// The plane moved and tilted: by hand, and against a reference search with the same steps on another formula.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "clip/Plane.h"

namespace {

constexpr double kDegree = std::numbers::pi / 180;
constexpr PlaneHandle kArrow{0, PlaneHandle::kArrow}, kSphere0{0, PlaneHandle::kSphere},
    kSphere1{1, PlaneHandle::kSphere};

void ExpectNear(const Double3& actual, const Double3& expected, double tolerance = 1e-12) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

// ---- the keys

TEST(PlaneMove, MovesAlongTheNormalWhenItIsNotTilted) {
    Plane plane;
    plane.SetCenter({1, 2, 3});
    plane.MoveAlongNormal(1.0);
    EXPECT_EQ(plane.GetCenter(), (Double3{1, 2, 4}));
    plane.MoveAlongNormal(-1.0);
    plane.MoveAlongNormal(-1.0);
    EXPECT_EQ(plane.GetCenter(), (Double3{1, 2, 2}));
    EXPECT_EQ(plane.GetNormal(), (Double3{0, 0, 1}));
}

TEST(PlaneMove, RotatesTheNormalOnceMoreWhenItIsTilted) {
    Plane plane;
    plane.SetNormal({1, 0, 0});  // a quarter turn about y maps z to x, and x to -z
    plane.SetCenter({1, 2, 3});
    plane.MoveAlongNormal(1.0);
    ExpectNear(plane.GetCenter(), {1, 2, 2});
    plane.SetNormal({0, 0.6, 0.8});  // the rotation that maps z to (0.6, 0.8) maps this to (2 * 0.48, 0.64 - 0.36)
    plane.SetCenter({0, 0, 0});
    plane.MoveAlongNormal(-2.0);
    ExpectNear(plane.GetCenter(), {0, -1.92, -0.56});
    ExpectNear(plane.GetNormal(), {0, 0.6, 0.8});
}

// ---- the arrow, and the plane as a whole

TEST(PlaneArrow, MovesOneUnitForTenPixelsFromThePress) {
    Plane plane;
    plane.SetCenter({1, 2, 3});
    plane.BeginHandleDrag(100, 50, {80, 90}, {0, -48}, kArrow);  // the normal points up on the screen
    const ScreenProjector notAsked;
    plane.DragHandle(100, 40, notAsked);
    ExpectNear(plane.GetCenter(), {1, 2, 4});
    plane.DragHandle(163, 35, notAsked);  // sideways travel is ignored, and each move counts from the press
    ExpectNear(plane.GetCenter(), {1, 2, 4.5});
    plane.DragHandle(100, 73, notAsked);
    ExpectNear(plane.GetCenter(), {1, 2, 0.7});
    plane.DragHandle(100, 50, notAsked);
    EXPECT_EQ(plane.GetCenter(), (Double3{1, 2, 3}));
    EXPECT_EQ(plane.GetNormal(), (Double3{0, 0, 1}));
}

TEST(PlaneArrow, UsesTheComponentOfTheTravelAlongASlantedNormal) {
    Plane plane;
    plane.SetNormal({0, 0.6, 0.8});
    plane.BeginHandleDrag(0, 0, {0, 0}, {3, 4}, kArrow);
    plane.DragHandle(10, 0, {});  // 0.6 of ten pixels
    ExpectNear(plane.GetCenter(), {0, 0.36, 0.48});
    plane.DragHandle(-4, 3, {});  // across
    ExpectNear(plane.GetCenter(), {0, 0, 0});
}

TEST(PlaneArrow, DoesNotReactWhenThePlaneIsSeenFaceOn) {
    Plane plane;
    plane.SetCenter({1, 2, 3});
    plane.BeginHandleDrag(100, 100, {80, 90}, {0, 0}, kArrow);
    plane.DragHandle(300, -500, {});
    EXPECT_EQ(plane.GetCenter(), (Double3{1, 2, 3}));
}

TEST(PlaneArrow, AcceptsTravelBeyondTheRangeOfAnInteger) {
    Plane plane;
    plane.BeginHandleDrag(-2'000'000'000, 0, {0, 0}, {1, 0}, kArrow);
    plane.DragHandle(2'000'000'000, 0, {});
    ExpectNear(plane.GetCenter(), {0, 0, 4e8}, 1e-6);
}

TEST(PlaneAsAWhole, MovesAlongItsNormalLikeTheArrow) {
    Plane plane;
    plane.SetNormal({1, 0, 0});
    plane.SetCenter({1, 2, 3});
    plane.BeginPlaneDrag(10, 10, {5, 0});
    plane.DragAlongNormal(30, 77);
    ExpectNear(plane.GetCenter(), {3, 2, 3});
    plane.DragAlongNormal(5, 10);
    ExpectNear(plane.GetCenter(), {0.5, 2, 3});
}

TEST(PlaneDragStart, RecordsThePlaneAtThePress) {
    Plane plane;
    plane.SetNormal({0, 3, 4});
    plane.SetCenter({1, 2, 3});
    plane.BeginHandleDrag(12, 34, {56, 78}, {6, -8}, kSphere1);
    EXPECT_EQ(plane.m_drag.pick, kSphere1);
    EXPECT_EQ(plane.m_drag.pressX, 12);
    EXPECT_EQ(plane.m_drag.pressY, 34);
    EXPECT_EQ(plane.m_drag.centerOnScreen, (Double2{56, 78}));
    EXPECT_NEAR(plane.m_drag.normalOnScreen[0], 0.6, 1e-15);
    EXPECT_NEAR(plane.m_drag.normalOnScreen[1], -0.8, 1e-15);
    EXPECT_EQ(plane.m_drag.center, (Double3{1, 2, 3}));
    EXPECT_EQ(plane.m_drag.matrix, plane.m_dMatrix);
    plane.BeginPlaneDrag(1, 2, {0, 0});
    EXPECT_EQ(plane.m_drag.normalOnScreen, (Double2{0, 0}));
}

TEST(PlaneDragStart, IsRestoredOnRequest) {
    Plane plane;
    plane.SetNormal({0.1, 0.7, 0.3});
    plane.SetCenter({1, 2, 3});
    const auto before = plane.m_dMatrix;
    plane.BeginHandleDrag(0, 0, {}, {1, 0}, kArrow);
    plane.DragHandle(50, 0, {});
    const auto after = plane.m_dMatrix;
    ASSERT_NE(after, before);
    plane.RestoreDragStart(false);
    EXPECT_EQ(plane.m_dMatrix, after);
    plane.RestoreDragStart(true);
    EXPECT_EQ(plane.m_dMatrix, before);
}

// ---- the spheres

// The plane's y axis to the right and its normal upward, a million pixels per unit: whole pixels are exact enough for
// any angle. The first sphere starts left of the centre and rises as it tilts.
constexpr double kScale = 1e6;
Double2 FromTheSide(const Double3& p) { return {kScale * p[1], -kScale * p[2]}; }

struct TiltCase {
    const char* name;
    double mouseDegrees;  ///< from where the sphere is, around the centre
    double mouseReach;    ///< 1 is the sphere's own distance
    double expectedDegrees;
};
void PrintTo(const TiltCase& row, std::ostream* out) { *out << row.name; }

// The search steps are 5, 2.5, 1.25, 0.625 and 0.3125 degrees. Each is used only if its first step ends no farther from
// the mouse than the sphere was at the start, and then moves by at least that step.
const TiltCase kTiltCases[] = {
    // 45; 42.5 or 47.5, from where two steps of 1.25 come back; off and back again by the last two
    {"OnTheGrid", 45, 1, 45},
    {"OnTheGridDownward", -45, 1, -45},
    // 5 and 2.5 end farther than 1 away; 1.25; back to 0.625; 0.9375, off by 0.0625
    {"OneDegree", 1, 1, 0.9375},
    {"OneDegreeDownward", -1, 1, -0.9375},
    {"TooNearForTheSmallestStep", 0.15, 1, 0},
    {"WhereTheSphereIs", 0, 1, 0},
    {"FartherOutSteersByTheAngle", 1, 3, 0.9375},
    {"FartherInSteersByTheAngle", 1, 0.25, 0.9375},
    {"FarFromTheSphere", 150, 0.5, 150},
    {"BeyondTheCentre", 179, 2, 179.0625},
};
class PlaneSphere : public testing::TestWithParam<TiltCase> {};

TEST_P(PlaneSphere, TiltsThePlaneTowardsTheMouse) {
    Plane plane;
    plane.SetRadiusFromExtent(4);  // the first sphere at (0, -4, 0), its axis -x
    plane.SetCenter({5, 0, 0});
    plane.BeginHandleDrag(-4'000'000, 0, {0, 0}, {0, -1}, kSphere0);
    const double angle = GetParam().mouseDegrees * kDegree, reach = 4 * kScale * GetParam().mouseReach;
    plane.DragHandle(static_cast<int>(std::lround(-reach * std::cos(angle))),
                     static_cast<int>(std::lround(-reach * std::sin(angle))), FromTheSide);
    const double tilt = GetParam().expectedDegrees * kDegree;
    ExpectNear(plane.GetNormal(), {0, std::sin(tilt), std::cos(tilt)});
    EXPECT_EQ(plane.GetCenter(), (Double3{5, 0, 0}));
}
INSTANTIATE_TEST_SUITE_P(FromTheSide, PlaneSphere, testing::ValuesIn(kTiltCases),
                         [](const auto& row) { return row.param.name; });

TEST(PlaneSpheres, TiltAboutTheAxisAcrossTheirOwnDirection) {
    Plane plane;
    plane.SetRadiusFromExtent(4);  // the second sphere at (-4, 0, 0), its axis +y
    const ScreenProjector fromTheSide = [](const Double3& p) { return Double2{kScale * p[0], -kScale * p[2]}; };
    plane.BeginHandleDrag(-4'000'000, 0, {0, 0}, {0, -1}, kSphere1);
    plane.DragHandle(0, -4'000'000, fromTheSide);  // a quarter turn: the sphere straight up
    ExpectNear(plane.GetNormal(), {1, 0, 0}, 1e-9);
}

TEST(PlaneSpheres, EachMoveStartsFromTheLastOne) {
    Plane plane;
    plane.SetRadiusFromExtent(4);
    plane.BeginHandleDrag(-4'000'000, 0, {0, 0}, {0, -1}, kSphere0);
    for (int degrees = 10; degrees <= 90; degrees += 10)
        plane.DragHandle(static_cast<int>(std::lround(-4e6 * std::cos(degrees * kDegree))),
                         static_cast<int>(std::lround(-4e6 * std::sin(degrees * kDegree))), FromTheSide);
    ExpectNear(plane.GetNormal(), {0, 1, 0}, 1e-9);
}

TEST(PlaneSpheres, DoNotMoveForAMouseWithinAPixelOfTheCentre) {
    const ScreenProjector tenPixels = [](const Double3& p) { return Double2{100 + 10 * p[1], 100 - 10 * p[2]}; };
    Plane plane;
    plane.SetRadiusFromExtent(4);
    const auto before = plane.m_dMatrix;
    plane.BeginHandleDrag(60, 100, {100, 100}, {0, -10}, kSphere0);
    plane.DragHandle(100, 100, tenPixels);
    EXPECT_EQ(plane.m_dMatrix, before);
    plane.DragHandle(100, 99, tenPixels);  // a whole pixel up
    ExpectNear(plane.GetNormal(), {0, 1, 0}, 1e-9);
}

TEST(PlaneSpheres, FollowAMouseAtTheCentreWhenTheyProjectThere) {
    // The sphere projects onto the centre, no farther from it than the mouse: the mouse position is used unchanged.
    const ScreenProjector fromTheSphere = [](const Double3& p) { return Double2{100 + 10 * p[0], 100 - 10 * p[2]}; };
    Plane plane;
    plane.SetRadiusFromExtent(4);
    plane.BeginHandleDrag(100, 100, {100, 100}, {0, -10}, kSphere0);
    plane.DragHandle(100, 98, fromTheSphere);  // rises to 40 sin 2.8125 = 1.963 pixels, the nearest to 2 on the way
    const double tilt = 2.8125 * kDegree;
    ExpectNear(plane.GetNormal(), {0, std::sin(tilt), std::cos(tilt)});
}

TEST(PlaneSpheres, DoNothingOnAPlaneWithoutExtent) {
    Plane plane;
    plane.BeginHandleDrag(0, 0, {0, 0}, {0, -1}, kSphere0);
    const auto before = plane.m_dMatrix;
    plane.DragHandle(100, 50, FromTheSide);
    EXPECT_EQ(plane.m_dMatrix, before);
}

TEST(PlaneSpheres, EndTheSearchWhenTheProjectionIsNotANumber) {
    Plane plane;
    plane.SetRadiusFromExtent(4);
    plane.BeginHandleDrag(0, 0, {0, 0}, {0, -1}, kSphere0);
    const auto before = plane.m_dMatrix;
    plane.DragHandle(3, 4, [](const Double3&) { return Double2{NAN, NAN}; });
    EXPECT_EQ(plane.m_dMatrix, before);
    plane.DragHandle(3, 4, [](const Double3&) { return Double2{7, 7}; });
    EXPECT_EQ(plane.m_dMatrix, before);
}

TEST(PlaneSpheres, AddATwistThatSettingTheSameNormalRemoves) {
    Plane plane;
    plane.SetRadiusFromExtent(4);
    plane.BeginHandleDrag(-4'000'000, 0, {0, 0}, {0, -1}, kSphere0);
    plane.DragHandle(-2'828'427, -2'828'427, FromTheSide);
    const Double3 once = plane.GetNormal();
    plane.BeginHandleDrag(0, 0, {0, 0}, {0, -1}, kSphere1);
    plane.DragHandle(0, -4'000'000, [](const Double3& p) { return Double2{kScale * p[0], -kScale * p[2]}; });
    const Double3 normal = plane.GetNormal();
    EXPECT_GT(std::abs(normal[0] - once[0]), 0.1);
    Plane fresh;
    fresh.SetNormal(normal);
    EXPECT_GT(std::abs(fresh.m_dMatrix[0] - plane.m_dMatrix[0]) + std::abs(fresh.m_dMatrix[1] - plane.m_dMatrix[1]),
              0.01);
    plane.SetNormal(normal);
    for (std::size_t i = 0; i < 11; ++i) EXPECT_NEAR(plane.m_dMatrix[i], fresh.m_dMatrix[i], 1e-12) << i;
}

// ---- against the reference search

/// The path of the sphere in space: cos along its direction from the centre, sin along the normal.
struct SpherePath {
    Double3 center{}, along{}, normal{};
    [[nodiscard]] Double3 At(double degrees) const {
        const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
        const double reach = std::sqrt(along[0] * along[0] + along[1] * along[1] + along[2] * along[2]);
        Double3 p{};
        for (std::size_t i = 0; i < 3; ++i) p[i] = center[i] + c * along[i] + s * reach * normal[i];
        return p;
    }
};

double Gap(const Double2& a, const Double2& b) { return std::hypot(a[0] - b[0], a[1] - b[1]); }

double ReferenceTilt(const SpherePath& way, const ScreenProjector& project, Double2 mouse) {
    const Double2 center = project(way.center), start = project(way.At(0));
    if (Gap(start, center) > Gap(mouse, center)) {
        if (Gap(mouse, center) < 1) return 0;
        const double factor = Gap(start, center) / Gap(mouse, center);
        mouse = {center[0] + factor * (mouse[0] - center[0]), center[1] + factor * (mouse[1] - center[1])};
    }
    const auto gapAt = [&](double degrees) { return Gap(project(way.At(degrees)), mouse); };
    const double gapAtStart = gapAt(0);
    double best = 0, step = 10;
    for (int round = 0; round < 5; ++round) {
        step /= 2;
        const double a = gapAt(best + step), b = gapAt(best - step);
        if (a > gapAtStart && b > gapAtStart) continue;
        const double direction = b <= a ? -step : step;
        double v = b <= a ? b : a;
        double sum = 0, former = 0;
        if (v < gapAtStart) {
            do {
                sum += direction;
                former = v;
                v = gapAt(best + sum + direction);
            } while (v < former);
        }
        best += sum;
    }
    return best;
}

TEST(PlaneSpheres, TakeTheStepsOfTheReferenceSearchInAnyView) {
    std::mt19937 random(20260);
    std::uniform_real_distribution<double> any(-1, 1);
    int tilted = 0;
    for (int i = 0; i < 500; ++i) {
        Plane plane;
        plane.SetRadiusFromExtent(1 + 50 * std::abs(any(random)));
        plane.SetNormal({any(random), any(random), any(random)});
        plane.SetCenter({10 * any(random), 10 * any(random), 10 * any(random)});
        double rows[2][3];
        for (auto& row : rows)
            for (double& value : row) value = 10 * any(random);
        const ScreenProjector project = [&](const Double3& p) {
            return Double2{320 + rows[0][0] * p[0] + rows[0][1] * p[1] + rows[0][2] * p[2],
                           240 + rows[1][0] * p[0] + rows[1][1] * p[1] + rows[1][2] * p[2]};
        };
        const PlaneHandle sphere = i % 2 == 0 ? kSphere0 : kSphere1;
        // With the start angle of -45 degrees the spheres lie at -y and -x, at the extent from the centre.
        const double extent = plane.m_dRadius / std::numbers::sqrt2;
        const std::size_t column = sphere == kSphere0 ? 4 : 0;
        SpherePath way{plane.GetCenter(), {}, plane.GetNormal()};
        for (std::size_t k = 0; k < 3; ++k) way.along[k] = -extent * plane.m_dMatrix[column + k];
        const int x = static_cast<int>(320 + 600 * any(random)), y = static_cast<int>(240 + 600 * any(random));

        const double tilt = ReferenceTilt(way, project, {static_cast<double>(x), static_cast<double>(y)});
        plane.BeginHandleDrag(x, y, project(way.center), {1, 0}, sphere);
        plane.DragHandle(x, y, project);
        Double3 expected{};  // the normal after the sphere moved towards it
        for (std::size_t k = 0; k < 3; ++k)
            expected[k] = std::cos(tilt * kDegree) * way.normal[k] - std::sin(tilt * kDegree) * way.along[k] / extent;
        for (std::size_t k = 0; k < 3; ++k) ASSERT_NEAR(plane.GetNormal()[k], expected[k], 1e-9) << "case " << i;
        ASSERT_EQ(plane.GetCenter(), way.center);
        tilted += tilt != 0 ? 1 : 0;
    }
    EXPECT_GT(tilted, 400);
}

}  // namespace
