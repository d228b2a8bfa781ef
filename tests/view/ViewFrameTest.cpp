// The camera as plain numbers, by hand: fixed views, snap, projection, pan, zoom, the surface on an axis.
#include "view/ViewFrame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "view/VectorHelp.h"

namespace {

constexpr float kS = 0.70710678f;  // half the square root of two

// ---- canned views

struct View {
    int mode;
    Float3 wx, wy, wz;
};
void PrintTo(const View& view, std::ostream* out) { *out << "mode " << view.mode; }

const View kViews[] = {
    {0, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
    {1, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
    {2, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
    {3, {0, -1, 0}, {0, 0, 1}, {-1, 0, 0}},
    {4, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    {5, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
    {6, {-kS, kS, 0}, {-0.5f, -0.5f, kS}, {0.5f, 0.5f, kS}},
    {7, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
};
class CannedViews : public testing::TestWithParam<View> {};

TEST_P(CannedViews, HaveARightHandedFrame) {
    const View& expected = GetParam();
    const auto frame = CannedView(expected.mode);
    ASSERT_TRUE(frame.has_value());
    ExpectNear(frame->wx, expected.wx, 1e-7f, "wx");
    ExpectNear(frame->wy, expected.wy, 1e-7f, "wy");
    ExpectNear(frame->wz, expected.wz, 1e-7f, "wz");
    ExpectNear(Cross(frame->wx, frame->wy), frame->wz, 1e-6f, "wx cross wy");
}
INSTANTIATE_TEST_SUITE_P(All, CannedViews, testing::ValuesIn(kViews),
                         [](const auto& row) { return "Mode" + std::to_string(row.param.mode); });

TEST(CannedView, IsNothingForOtherModes) {
    for (const int mode : {-32768, -1, 8, 9, 32767}) EXPECT_FALSE(CannedView(mode).has_value()) << mode;
}

// ---- snap

ViewFrame NearY(float wzX, float wzY) {
    return {.wx = {0.6f, 0, 0.8f}, .wy = {0.8f, 0, -0.6f}, .wz = {wzX, wzY, 0}, .center = {1, 2, 3}};
}

TEST(SnapFrame, MakesAViewAxisWithinTheThresholdOfYExact) {
    ViewFrame frame = NearY(0.99e-5f, 1);
    SnapFrame(frame);
    EXPECT_EQ(frame.wz, (Float3{0, 1, 0}));
    EXPECT_EQ(frame.wx, (Float3{0.6f, 0, 0.8f})) << "the rotation of the picture about the axis is kept";
    EXPECT_EQ(frame.wy, (Float3{0.8f, 0, -0.6f}));
    EXPECT_EQ(frame.center, (Float3{1, 2, 3}));
}

TEST(SnapFrame, KeepsAViewAxisJustOutsideTheThreshold) {
    ViewFrame frame = NearY(1.01e-5f, 1);
    SnapFrame(frame);
    EXPECT_EQ(frame.wz, (Float3{1.01e-5f, 1, 0}));
}

TEST(SnapFrame, KeepsTheSignOfTheAxis) {
    ViewFrame frame = NearY(-0.99e-5f, -1);
    SnapFrame(frame);
    EXPECT_EQ(frame.wz, (Float3{0, -1, 0}));
}

TEST(SnapFrame, AppliesToATiltTowardsZAsWell) {
    ViewFrame inside = NearY(0, 1), outside = NearY(0, 1);
    inside.wz[2] = -0.99e-5f;
    outside.wz[2] = -1.01e-5f;
    SnapFrame(inside);
    SnapFrame(outside);
    EXPECT_EQ(inside.wz, (Float3{0, 1, 0}));
    EXPECT_EQ(outside.wz[2], -1.01e-5f);
}

struct AxisSnap {
    const char* name;
    float wxX, wyZ;
    Float3 wx, wy;  // expected
};
void PrintTo(const AxisSnap& row, std::ostream* out) { *out << row.name; }

const AxisSnap kAxisSnaps[] = {
    {"JustInside", 1 - 0.9e-5f, -0.999f, {1, 0, 0}, {0, 0, -1}},
    {"JustInsideOnTheNegativeSide", -(1 - 0.9e-5f), 0.999f, {-1, 0, 0}, {0, 0, 1}},
    {"WyWithoutZCountsAsNegative", 1, 0, {1, 0, 0}, {0, 0, -1}},
    {"JustOutside", 1 - 1.1e-5f, -0.999f, {1 - 1.1e-5f, 0.004f, 0.002f}, {0.003f, 0.001f, -0.999f}},
};
class SnapOfTheScreenAxes : public testing::TestWithParam<AxisSnap> {};

TEST_P(SnapOfTheScreenAxes, IsAppliedAfterThatOfTheViewAxis) {
    const AxisSnap& row = GetParam();
    ViewFrame frame{.wx = {row.wxX, 0.004f, 0.002f}, .wy = {0.003f, 0.001f, row.wyZ}, .wz = {1e-6f, 1, 0}};
    SnapFrame(frame);
    EXPECT_EQ(frame.wz, (Float3{0, 1, 0}));
    EXPECT_EQ(frame.wx, row.wx);
    EXPECT_EQ(frame.wy, row.wy);
}
INSTANTIATE_TEST_SUITE_P(All, SnapOfTheScreenAxes, testing::ValuesIn(kAxisSnaps),
                         [](const auto& row) { return row.param.name; });

TEST(SnapFrame, KeepsTheScreenAxesWhenTheViewAxisIsNotSnapped) {
    const ViewFrame before{.wx = {1 - 0.5e-5f, 0, 0}, .wy = {0, 1e-4f, -1}, .wz = {0, 1, 1e-4f}};
    ViewFrame frame = before;
    SnapFrame(frame);
    EXPECT_EQ(frame.wx, before.wx);
    EXPECT_EQ(frame.wy, before.wy);
    EXPECT_EQ(frame.wz, before.wz);
}

// ---- projection, aspect, eye, light

TEST(ComputeOrthoExtents, IsHalfTheSceneTimesZoomAndAspect) {
    const OrthoExtents extents = ComputeOrthoExtents(0.5f, 200, 1.5f, 1);
    EXPECT_DOUBLE_EQ(extents.halfWidth, 75);  // 1.5 * 0.5 * 200 / 2
    EXPECT_DOUBLE_EQ(extents.halfHeight, 50);
    EXPECT_DOUBLE_EQ(extents.depth, 800);
}

TEST(ComputeOrthoExtents, DeepensWithTheZoomOnlyAboveOne) {
    EXPECT_DOUBLE_EQ(ComputeOrthoExtents(0.25f, 10, 1, 1).depth, 40);
    EXPECT_DOUBLE_EQ(ComputeOrthoExtents(1, 10, 1, 1).depth, 40);
    EXPECT_DOUBLE_EQ(ComputeOrthoExtents(1.25f, 10, 1, 1).depth, 50);
    EXPECT_DOUBLE_EQ(ComputeOrthoExtents(8, 10, 1, 1).depth, 320);
}

TEST(ComputeAspect, IsTheRatioForTheLongerSide) {
    EXPECT_EQ(ComputeAspect(600, 400).x, 1.5f);
    EXPECT_EQ(ComputeAspect(600, 400).y, 1.0f);
    EXPECT_EQ(ComputeAspect(400, 500).x, 1.0f);
    EXPECT_EQ(ComputeAspect(400, 500).y, 1.25f);
    EXPECT_EQ(ComputeAspect(333, 333).x, 1.0f);
    EXPECT_EQ(ComputeAspect(333, 333).y, 1.0f);
    EXPECT_FLOAT_EQ(ComputeAspect(1, 777).y, 777.0f);
}

TEST(EyePoint, IsTwoSceneSizesFromTheCentre) {
    const ViewFrame frame{.wz = {0.6f, 0, -0.8f}, .center = {1, 2, 3}};
    ExpectNear(EyePoint(frame, 100), {121, 2, -157}, 1e-4f, "eye");
}

TEST(HeadLightDirection, TiltsTowardsTheBottomOfTheScreen) {
    const ViewFrame frame{.wx = {0, 1, 0}, .wy = {0, 0, 1}, .wz = {1, 0, 0}};
    EXPECT_EQ(HeadLightDirection(frame), (Float3{1000000, 0, -50000}));
}

// ---- what is accepted as a view

struct ViewAxes {
    const char* name;
    Float3 wx, wy;
    bool accepted;
};
void PrintTo(const ViewAxes& row, std::ostream* out) { *out << row.name; }

const ViewAxes kViewAxes[] = {
    {"Exact", {1, 0, 0}, {0, 1, 0}, true},
    {"LeftHandedToo", {0, 1, 0}, {1, 0, 0}, true},
    {"WxJustLongEnough", {0.99504f, 0, 0}, {0, 1, 0}, true},   // squared 0.99010
    {"WxTooShort", {0.99494f, 0, 0}, {0, 1, 0}, false},        // squared 0.98991
    {"WxJustShortEnough", {1.00494f, 0, 0}, {0, 1, 0}, true},  // squared 1.00990
    {"WxTooLong", {1.00504f, 0, 0}, {0, 1, 0}, false},         // squared 1.01011
    {"WyJustLongEnough", {1, 0, 0}, {0, 0.99504f, 0}, true},
    {"WyTooShort", {1, 0, 0}, {0, 0.99494f, 0}, false},
    {"WyJustShortEnough", {1, 0, 0}, {0, 1.00494f, 0}, true},
    {"WyTooLong", {1, 0, 0}, {0, 1.00504f, 0}, false},
    {"DotJustInside", {1, 0, 0}, {0.0099f, 0.99995f, 0}, true},
    {"DotJustOutside", {1, 0, 0}, {0.0101f, 0.99995f, 0}, false},
    {"NegativeDotJustInside", {1, 0, 0}, {-0.0099f, 0.99995f, 0}, true},
    {"NegativeDotJustOutside", {1, 0, 0}, {-0.0101f, 0.99995f, 0}, false},
    {"FiveDegreesFromPerpendicular", {1, 0, 0}, {0.08715574f, 0.99619470f, 0}, false},
    {"Zero", {0, 0, 0}, {0, 1, 0}, false},
};
class IsViewFrameOf : public testing::TestWithParam<ViewAxes> {};
TEST_P(IsViewFrameOf, AcceptsNearlyOrthonormalAxes) {
    EXPECT_EQ(IsViewFrame(GetParam().wx, GetParam().wy), GetParam().accepted);
}
INSTANTIATE_TEST_SUITE_P(All, IsViewFrameOf, testing::ValuesIn(kViewAxes),
                         [](const auto& row) { return row.param.name; });

// ---- pan and zoom

TEST(PannedCenter, MovesAgainstTheDragInAWideWindow) {
    const ViewFrame frame{.wx = {0, 1, 0}, .wy = {0, 0, 1}, .wz = {1, 0, 0}, .center = {5, 5, 5}};
    // 400 pixels of height show 100 * 2 units: half a unit per pixel, in both directions
    const PanScale scale{.sceneSize = 100, .zoom = 2, .aspectX = 1.5f, .aspectY = 1, .width = 600, .height = 400};
    ExpectNear(PannedCenter(frame, scale, 10, 0), {5, 0, 5}, 1e-5f, "to the right");
    ExpectNear(PannedCenter(frame, scale, 0, 10), {5, 5, 10}, 1e-5f, "downward");
    ExpectNear(PannedCenter(frame, scale, -4, -6), {5, 7, 2}, 1e-5f, "to the left and upward");
}

TEST(PannedCenter, UsesTheWidthInATallWindow) {
    const PanScale scale{.sceneSize = 100, .zoom = 1, .aspectX = 1, .aspectY = 2, .width = 200, .height = 400};
    ExpectNear(PannedCenter({}, scale, 20, 20), {-10, 10, 0}, 1e-5f, "half a unit per pixel");
}

TEST(PannedCenter, IsUnchangedInAWindowWithoutArea) {
    const ViewFrame frame{.center = {5, 6, 7}};
    for (const auto& [width, height] : {std::pair{0, 480}, std::pair{640, 0}, std::pair{0, 0}, std::pair{-1, -1}}) {
        const PanScale scale{.sceneSize = 100, .zoom = 1, .aspectX = 1, .aspectY = 1, .width = width, .height = height};
        EXPECT_EQ(PannedCenter(frame, scale, 10, 20), frame.center) << width << " x " << height;
    }
}

struct ZoomStep {
    const char* name;
    float zoom;
    int dx, dy;
    float expected;
};
void PrintTo(const ZoomStep& row, std::ostream* out) { *out << row.name; }

const float kJustAboveMinimum = std::nextafter(0.1f, 1.0f), kJustBelowMaximum = std::nextafter(10.0f, 0.0f);
const ZoomStep kZoomSteps[] = {
    {"UpwardByFiveHundredHalves", 1, 0, -500, 0.5f},
    {"DownwardByFiveHundredDoubles", 1, 0, 500, 2},
    {"DiagonalCountsByItsLength", 1, 300, 400, 2},
    {"RightwardZoomsIn", 1, 400, 300, 0.5f},
    {"LeftwardZoomsOut", 1, -500, 0, 2},
    {"OnTheDiagonalZoomsIn", 3, 300, 300, 3 / 1.8485281f},
    {"NoTravelChangesNothing", 1.5f, 0, 0, 1.5f},
    {"AtTheMinimumDoesNotZoomIn", 0.1f, 0, -500, 0.1f},
    {"JustAboveTheMinimumOvershootsByOneFactor", kJustAboveMinimum, 0, -500, kJustAboveMinimum / 2},
    {"BelowTheMinimumZoomsOutAgain", 0.05f, 0, 500, 0.1f},
    {"AtTheMaximumDoesNotZoomOut", 10, 0, 500, 10},
    {"JustBelowTheMaximumOvershootsByOneFactor", kJustBelowMaximum, 0, 500, kJustBelowMaximum * 2},
    {"AboveTheMaximumZoomsInAgain", 20, 0, -500, 10},
    {"AHugeTravelDoesNotWrap", 1, 60000, 0, 1 / 121.0f},
};
class ZoomedByADrag : public testing::TestWithParam<ZoomStep> {};
TEST_P(ZoomedByADrag, FollowsTheLengthOfTheTravelUpToTheLimits) {
    EXPECT_FLOAT_EQ(ZoomedBy(GetParam().zoom, GetParam().dx, GetParam().dy), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(All, ZoomedByADrag, testing::ValuesIn(kZoomSteps),
                         [](const auto& row) { return row.param.name; });

// ---- the surface on an axis

Vertex At(float x, float y, float z, Float3 normal = {0, 0, 1}) {
    return {.x = x, .y = y, .z = z, .nx = normal[0], .ny = normal[1], .nz = normal[2]};
}
std::vector<std::shared_ptr<Mesh>> Meshes(std::vector<std::vector<Vertex>> lists) {
    std::vector<std::shared_ptr<Mesh>> meshes;
    for (auto& vertices : lists)
        meshes.push_back(std::make_shared<Mesh>(std::move(vertices), std::vector<Triangle>(), L"", false));
    return meshes;
}
const Float3 kOrigin{0, 0, 100};
const Float3 kUp{0, 0, 1};

TEST(FindAxisHit, FindsNothingInAnEmptyScene) {
    EXPECT_FALSE(FindAxisHit({}, kOrigin, kUp).has_value());
    EXPECT_FALSE(FindAxisHit(Meshes({{}}), kOrigin, kUp).has_value());
}

TEST(FindAxisHit, SkipsVerticesThatFaceAway) {
    const auto meshes = Meshes({{At(0, 0, 1, {0, 0, -1}), At(0, 0, 2, {1, 0, -1e-6f})}});
    EXPECT_FALSE(FindAxisHit(meshes, kOrigin, kUp).has_value());
}

TEST(FindAxisHit, FindsVerticesSeenEdgeOnAndWithoutANormal) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 1, {1, 0, 0})}}), kOrigin, kUp), (Float3{0, 0, 1}));
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 2, {0, 0, 0})}}), kOrigin, kUp), (Float3{0, 0, 2}));
}

TEST(FindAxisHit, ReturnsTheFootOnTheAxisNotTheVertex) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(3, 4, 7)}}), kOrigin, kUp), (Float3{0, 0, 7}));
}

TEST(FindAxisHit, FindsTheVertexNearestToTheAxisWhenNoneIsClose) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(9, 0, 50), At(0, 5, 1)}, {At(6, 0, 90)}}), kOrigin, kUp), (Float3{0, 0, 1}));
}

TEST(FindAxisHit, FindsTheFrontmostOfTheVerticesCloseToTheAxis) {
    // the second is nearer to the axis, the third is nearer to the origin
    EXPECT_EQ(FindAxisHit(Meshes({{At(0.2f, 0, 10), At(0, 0, 20)}, {At(0, 0.3f, 60)}}), kOrigin, kUp),
              (Float3{0, 0, 60}));
}

TEST(FindAxisHit, CountsASquaredDistanceBelowATenthAsClose) {
    // squared 0.09999 and 0.10001
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 20), At(0.31622f, 0, 60)}}), kOrigin, kUp), (Float3{0, 0, 60}));
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 20), At(0.31624f, 0, 60)}}), kOrigin, kUp), (Float3{0, 0, 20}));
}

TEST(FindAxisHit, FindsVerticesOnBothSidesOfTheOrigin) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 130), At(0, 0, 20)}}), kOrigin, kUp), (Float3{0, 0, 130}));
}

TEST(FindAxisHit, FindsTheNearestToTheAxisWhenTheFrontmostIsAtTheOrigin) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(0.2f, 0, 100), At(0.1f, 0, 20), At(0.15f, 0, 60)}}), kOrigin, kUp),
              (Float3{0, 0, 20}));
}

TEST(FindAxisHit, KeepsTheFirstOfEqualCandidates) {
    EXPECT_EQ(FindAxisHit(Meshes({{At(5, 0, 1), At(0, 5, 2)}, {At(-5, 0, 3)}}), kOrigin, kUp), (Float3{0, 0, 1}));
    EXPECT_EQ(FindAxisHit(Meshes({{At(0, 0, 90), At(0, 0, 110)}}), kOrigin, kUp), (Float3{0, 0, 90}));
}

TEST(FindAxisHit, IncludesHiddenMeshes) {
    const auto meshes = Meshes({{At(1, 0, 3)}, {At(2, 0, 4)}});
    meshes[0]->m_iVisible = 0;
    EXPECT_EQ(FindAxisHit(meshes, kOrigin, kUp), (Float3{0, 0, 3}));
}

TEST(FindAxisHit, WorksAlongATiltedAxis) {
    const Float3 direction{0.6f, 0, 0.8f};
    const auto hit = FindAxisHit(Meshes({{At(6 + 0.16f, 0, 8 - 0.12f)}}), {0, 0, 0}, direction);  // 0.2 off the axis
    ASSERT_TRUE(hit.has_value());
    ExpectNear(*hit, {6, 0, 8}, 1e-5f, "foot");
}

}  // namespace
