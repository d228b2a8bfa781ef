// From a travel to a rotation, against Rodrigues' formula in double precision; the signs by hand.
#include "view/Rotation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>

#include "view/VectorHelp.h"

namespace {

using KV_ScenePane::RotateAboutHorizontal, KV_ScenePane::RotateAboutVertical, KV_ScenePane::RotateAboutViewAxis;
using KV_ScenePane::RotateFree;

constexpr double kPi = std::numbers::pi;
constexpr std::int32_t kOneAxisModes[] = {RotateAboutHorizontal, RotateAboutVertical, RotateAboutViewAxis};
constexpr std::int32_t kAllModes[] = {RotateAboutHorizontal, RotateAboutVertical, RotateAboutViewAxis, RotateFree};
constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max();

/// In double precision, then rounded once.
Float3 Rodrigues(const Float3& axis, double angle, const Float3& v) {
    return RoundToFloat3(RotateByRodrigues(ToDouble3(axis), angle, ToDouble3(v)));
}
void ExpectSame(const ViewFrame& got, const ViewFrame& expected) {
    EXPECT_EQ(got.wx, expected.wx);
    EXPECT_EQ(got.wy, expected.wy);
    EXPECT_EQ(got.wz, expected.wz);
    EXPECT_EQ(got.center, expected.center);
}

/// No axis of it is simple.
ViewFrame ObliqueFrame() {
    const Float3 about{0.36f, -0.48f, 0.8f};
    return {Rodrigues(about, 0.7, {1, 0, 0}),
            Rodrigues(about, 0.7, {0, 1, 0}),
            Rodrigues(about, 0.7, {0, 0, 1}),
            {12.5f, -3.25f, 40.0f}};
}

RotationRule Rule(std::int32_t mode, std::int32_t width, std::int32_t height) {
    return {.mode = mode, .width = width, .height = height, .pivot = {1, 2, 3}};
}
RotationRule RollRule(std::int32_t quadrant, std::int32_t width, std::int32_t height) {
    return {.roll = true, .quadrant = quadrant, .width = width, .height = height};
}

// ---- signs, by hand

TEST(FreeRotation, MovesTheFrontOfTheSceneWithTheMouse) {
    // The point that faces the viewer, (0, 0, 1), is under the mouse.
    for (const std::int32_t mode : {RotateAboutVertical, RotateFree}) {
        const ViewFrame right = RotateFrame({}, Rule(mode, 300, 300), 10, 0);
        EXPECT_GT(right.wx[2], 0.1f) << "it moves to the right of the screen, mode " << mode;
        EXPECT_EQ(right.wy, (Float3{0, 1, 0}));
    }
    for (const std::int32_t mode : {RotateAboutHorizontal, RotateFree}) {
        const ViewFrame down = RotateFrame({}, Rule(mode, 300, 300), 0, 10);
        EXPECT_LT(down.wy[2], -0.1f) << "it moves to the bottom of the screen, mode " << mode;
        EXPECT_EQ(down.wx, (Float3{1, 0, 0}));
    }
}

TEST(RotationAboutTheViewingAxis, RotatesThePictureClockwiseWhenTheMouseMovesRightOrUp) {
    const ViewFrame right = RotateFrame({}, Rule(RotateAboutViewAxis, 300, 300), 10, 0);
    EXPECT_GT(right.wx[1], 0.1f) << "the top of the picture moves right";
    const ViewFrame up = RotateFrame({}, Rule(RotateAboutViewAxis, 300, 300), 0, -10);
    EXPECT_GT(up.wx[1], 0.1f);
    const ViewFrame down = RotateFrame({}, Rule(RotateAboutViewAxis, 300, 300), 0, 10);
    EXPECT_LT(down.wx[1], -0.1f) << "the top of the picture moves left";
}

struct HandCase {
    const char* name;
    std::int32_t mode, width, height, dx, dy;
    Float3 wx, wy, wz;
};
void PrintTo(const HandCase& row, std::ostream* out) { *out << row.name; }

// From the frame along the world's axes, by quarter and half turns.
const HandCase kHandCases[] = {
    {"HorizontalHalfTheHeightDown", RotateAboutHorizontal, 640, 480, 0, 240, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
    {"HorizontalHalfTheHeightUp", RotateAboutHorizontal, 640, 480, 0, -240, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
    {"HorizontalWholeHeight", RotateAboutHorizontal, 640, 480, 0, 480, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
    {"HorizontalIgnoresTheTravelToTheSide", RotateAboutHorizontal, 640, 480, 320, 0, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    {"VerticalHalfTheWidthRight", RotateAboutVertical, 640, 480, 320, 0, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0}},
    {"VerticalHalfTheWidthLeft", RotateAboutVertical, 640, 480, -320, 0, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
    {"VerticalIgnoresTheTravelDown", RotateAboutVertical, 640, 480, 0, 240, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    {"ViewAxisHalfTheWidthRight", RotateAboutViewAxis, 640, 480, 320, 0, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
    {"ViewAxisHalfTheHeightDown", RotateAboutViewAxis, 640, 480, 0, 240, {0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
    {"FreeAcrossTheSmallerSideRight", RotateFree, 640, 480, 480, 0, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
    {"FreeAcrossTheSmallerSideDown", RotateFree, 480, 640, 0, 480, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
    {"FreeHalfRight", RotateFree, 640, 480, 240, 0, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0}},
    {"FreeHalfDown", RotateFree, 640, 480, 0, 240, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
    // Right first: wz is then -X, and the rotation downward moves wy to its opposite.
    {"FreeHalfRightThenHalfDown", RotateFree, 640, 480, 240, 240, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
};
class QuarterAndHalfTurn : public testing::TestWithParam<HandCase> {};

TEST_P(QuarterAndHalfTurn, EndsOnTheAxes) {
    const HandCase& row = GetParam();
    const ViewFrame turned = RotateFrame({}, Rule(row.mode, row.width, row.height), row.dx, row.dy);
    ExpectNear(turned.wx, row.wx, 2e-7, "wx");
    ExpectNear(turned.wy, row.wy, 2e-7, "wy");
    ExpectNear(turned.wz, row.wz, 2e-7, "wz");
}
INSTANTIATE_TEST_SUITE_P(Rotation, QuarterAndHalfTurn, testing::ValuesIn(kHandCases),
                         [](const auto& row) { return row.param.name; });

// ---- every mode and window shape against Rodrigues

struct Shape {
    std::int32_t width, height;
};
const Shape kShapes[] = {{640, 480}, {480, 640}, {1000, 200}, {1, 1}, {1, 4000}, {4000, 1}, {641, 479}, {7, 3}};
const Shape kTravels[] = {{0, 0}, {1, 0}, {0, 1}, {-1, 1}, {3, -2}, {17, 5}, {-5, -17}, {250, -900}, {4001, 3999}};

template <class Check>
void ForAllShapesAndTravels(Check check) {
    for (const Shape& shape : kShapes)
        for (const Shape& travel : kTravels) {
            SCOPED_TRACE("window " + std::to_string(shape.width) + " x " + std::to_string(shape.height) + ", travel " +
                         std::to_string(travel.width) + ", " + std::to_string(travel.height));
            check(shape, travel.width, travel.height);
        }
}

// Equal floats, not near ones: a rotation in single precision, or one rounding more, would fail.
TEST(RotationAboutTheHorizontal, IsTheDoublePrecisionRotationRoundedOnce) {
    const ViewFrame f = ObliqueFrame();
    ForAllShapesAndTravels([&](const Shape& shape, std::int32_t dx, std::int32_t dy) {
        const double a = -dy * kPi / shape.height;
        ExpectSame(RotateFrame(f, Rule(RotateAboutHorizontal, shape.width, shape.height), dx, dy),
                   {f.wx, Rodrigues(f.wx, a, f.wy), Rodrigues(f.wx, a, f.wz), f.center});
    });
}

TEST(RotationAboutTheVertical, IsTheDoublePrecisionRotationRoundedOnce) {
    const ViewFrame f = ObliqueFrame();
    ForAllShapesAndTravels([&](const Shape& shape, std::int32_t dx, std::int32_t dy) {
        const double a = -dx * kPi / shape.width;
        ExpectSame(RotateFrame(f, Rule(RotateAboutVertical, shape.width, shape.height), dx, dy),
                   {Rodrigues(f.wy, a, f.wx), f.wy, Rodrigues(f.wy, a, f.wz), f.center});
    });
}

TEST(RotationAboutTheViewingAxis, IsTheDoublePrecisionRotationByTheLargerAngleRoundedOnce) {
    const ViewFrame f = ObliqueFrame();
    ForAllShapesAndTravels([&](const Shape& shape, std::int32_t dx, std::int32_t dy) {
        const double byX = dx * kPi / shape.width, byY = -dy * kPi / shape.height;
        const double a = std::fabs(byY) > std::fabs(byX) ? byY : byX;
        ExpectSame(RotateFrame(f, Rule(RotateAboutViewAxis, shape.width, shape.height), dx, dy),
                   {Rodrigues(f.wz, a, f.wx), Rodrigues(f.wz, a, f.wy), f.wz, f.center});
    });
}

TEST(RotationAboutTheViewingAxis, UsesTheDirectionWithTheLargerAngleNotTheLongerTravel) {
    // 5 of 200 pixels are a larger angle than 10 of 1000.
    const double degrees = -180.0 * 5 / 200;
    const ViewFrame turned = RotateFrame({}, Rule(RotateAboutViewAxis, 1000, 200), 10, 5);
    EXPECT_NEAR(std::atan2(turned.wx[1], turned.wx[0]) * 180 / kPi, degrees, 1e-5);
    // and 24 of 1000 are less, 26 more.
    EXPECT_LT(RotateFrame({}, Rule(RotateAboutViewAxis, 1000, 200), 24, 5).wx[1], 0.0f);
    EXPECT_GT(RotateFrame({}, Rule(RotateAboutViewAxis, 1000, 200), 26, 5).wx[1], 0.0f);
}

TEST(RotationAboutTheViewingAxis, UsesTheHorizontalTravelWhenBothAnglesAreEqual) {
    for (const std::int32_t dy : {10, -10}) {
        EXPECT_GT(RotateFrame({}, Rule(RotateAboutViewAxis, 300, 300), 10, dy).wx[1], 0.0f) << dy;
        EXPECT_LT(RotateFrame({}, Rule(RotateAboutViewAxis, 300, 300), -10, dy).wx[1], 0.0f) << dy;
    }
}

// ---- the free rotation

/// Its steps in floats, one component at a time.
ViewFrame FreeInFloats(const ViewFrame& f, const RotationRule& rule, std::int32_t dx, std::int32_t dy) {
    const float pi = 3.14159265358979f;
    const float s = static_cast<float>(rule.width < rule.height ? rule.width : rule.height);
    float x = static_cast<float>(dx) * 180.0f / s, y = static_cast<float>(dy) * 180.0f / s;
    x = x * pi / 180.0f;
    y = y * pi / 180.0f;
    const float cx = std::cos(x), sx = std::sin(x), cy = std::cos(y), sy = std::sin(y);
    float r[3], a = 0, b = 0, c = 0;
    for (std::size_t i = 0; i < 3; ++i) r[i] = f.center[i] - rule.pivot[i];
    for (std::size_t i = 0; i < 3; ++i) {
        a += r[i] * f.wx[i];
        b += r[i] * f.wy[i];
        c += r[i] * f.wz[i];
    }
    ViewFrame out;
    for (std::size_t i = 0; i < 3; ++i) {
        out.wx[i] = cx * f.wx[i] + sx * f.wz[i];
        const float z = cx * f.wz[i] - sx * f.wx[i];
        out.wy[i] = cy * f.wy[i] - sy * z;
        out.wz[i] = sy * f.wy[i] + cy * z;
        out.center[i] = rule.pivot[i] + a * out.wx[i] + b * out.wy[i] + c * out.wz[i];
    }
    return out;
}

TEST(FreeRotation, IsComputedInSinglePrecision) {
    ForAllShapesAndTravels([](const Shape& shape, std::int32_t dx, std::int32_t dy) {
        const RotationRule rule = Rule(RotateFree, shape.width, shape.height);
        ExpectSame(RotateFrame(ObliqueFrame(), rule, dx, dy), FreeInFloats(ObliqueFrame(), rule, dx, dy));
    });
}

TEST(FreeRotation, RotatesAboutTheVerticalAndThenAboutTheNewHorizontalThroughThePivot) {
    const ViewFrame f = ObliqueFrame();
    ForAllShapesAndTravels([&](const Shape& shape, std::int32_t dx, std::int32_t dy) {
        const RotationRule rule = Rule(RotateFree, shape.width, shape.height);
        const double side = std::min(shape.width, shape.height);
        const double x = -dx * kPi / side, y = -dy * kPi / side;
        const Double3 wx = RotateByRodrigues(ToDouble3(f.wy), x, ToDouble3(f.wx));
        const auto both = [&](const Float3& v) {
            return RotateByRodrigues(wx, y, RotateByRodrigues(ToDouble3(f.wy), x, ToDouble3(v)));
        };
        Double3 center = both(f.center - rule.pivot);
        for (std::size_t i = 0; i < 3; ++i) center[i] += rule.pivot[i];

        // The angle in floats is off by about its last place; a long travel in a small window is many revolutions.
        const double angleError = 4 * 6e-8 * std::max(std::fabs(x), std::fabs(y));
        const double tolerance = 4e-7 + angleError;
        const ViewFrame turned = RotateFrame(f, rule, dx, dy);
        ExpectNear(turned.wx, RoundToFloat3(wx), tolerance, "wx");
        ExpectNear(turned.wy, RoundToFloat3(both(f.wy)), tolerance, "wy");
        ExpectNear(turned.wz, RoundToFloat3(both(f.wz)), tolerance, "wz");
        ExpectNear(turned.center, RoundToFloat3(center), 40 * tolerance, "the centre is about 40 from the pivot");
    });
}

TEST(FreeRotation, MovesTheCentreAroundThePivot) {
    const ViewFrame frame{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 0, 5}};
    const RotationRule rule{.mode = RotateFree, .width = 100, .height = 300, .pivot = {10, 0, 0}};
    // A quarter turn; what faced the viewer has moved right, so the viewer looks from the left.
    ExpectNear(RotateFrame(frame, rule, 50, 0).center, {5, 0, 0}, 2e-6, "centre");
    ExpectNear(RotateFrame(frame, rule, 0, 50).center, {10, 5, 0}, 2e-6, "centre");
}

TEST(FreeRotation, KeepsACentreThatIsThePivot) {
    ViewFrame frame = ObliqueFrame();
    const RotationRule rule{.mode = RotateFree, .width = 640, .height = 480, .pivot = frame.center};
    EXPECT_EQ(RotateFrame(frame, rule, 33, -71).center, frame.center);
}

TEST(FreeRotation, IsUsedForEveryUnknownMode) {
    const ViewFrame f = ObliqueFrame();
    const ViewFrame expected = RotateFrame(f, Rule(RotateFree, 640, 480), 30, -20);
    for (const std::int32_t mode : {-1, 4, 7, 32767, -32768})
        ExpectSame(RotateFrame(f, Rule(mode, 640, 480), 30, -20), expected);
}

TEST(OneAxisRotations, DoNotMoveTheCentreWhereverThePivotIs) {
    ViewFrame frame = ObliqueFrame();
    for (const std::int32_t mode : kOneAxisModes) {
        RotationRule rule = Rule(mode, 640, 480);
        rule.pivot = {1000, -2000, 3000};
        const ViewFrame turned = RotateFrame(frame, rule, 100, 90);
        EXPECT_EQ(turned.center, frame.center);
        rule.pivot = {};
        ExpectSame(turned, RotateFrame(frame, rule, 100, 90));
    }
}

// ---- the roll

struct RollCase {
    std::int32_t quadrant, dx, dy;
    double degrees;  ///< of the camera about wz, counter-clockwise
};
// A window of 360 x 360: half a degree per pixel.
const RollCase kRollCases[] = {
    {0, 10, 0, 5}, {1, 10, 0, 5}, {2, 10, 0, -5}, {3, 10, 0, -5},  {0, -10, 0, -5}, {2, -10, 0, 5}, {0, 0, 10, -5},
    {1, 0, 10, 5}, {2, 0, 10, 5}, {3, 0, 10, -5}, {1, 0, -10, -5}, {3, 0, -10, 5},  {2, 4, 20, 10}, {2, 20, 4, -10},
};

TEST(Roll, RotatesByTheTravelWithTheSignOfTheQuadrant) {
    for (const RollCase& row : kRollCases) {
        const ViewFrame turned = RotateFrame({}, RollRule(row.quadrant, 360, 360), row.dx, row.dy);
        EXPECT_NEAR(std::atan2(turned.wx[1], turned.wx[0]) * 180 / kPi, row.degrees, 1e-5)
            << "quadrant " << row.quadrant << ", travel " << row.dx << ", " << row.dy;
        EXPECT_EQ(turned.wz, (Float3{0, 0, 1}));
    }
}

TEST(Roll, MovesThePictureWithAMouseThatCirclesTheCentre) {
    constexpr double kRadius = 300;
    for (int degrees = 5; degrees < 360; degrees += 10)
        for (const double sense : {1.0, -1.0}) {
            const double at = degrees * kPi / 180;
            const std::int32_t x = 400 + static_cast<std::int32_t>(std::lround(kRadius * std::cos(at)));
            const std::int32_t y = 400 + static_cast<std::int32_t>(std::lround(kRadius * std::sin(at)));
            const auto dx = static_cast<std::int32_t>(std::lround(-20 * sense * std::sin(at)));
            const auto dy = static_cast<std::int32_t>(std::lround(20 * sense * std::cos(at)));
            const ViewFrame turned = RotateFrame({}, RollRule(RollQuadrant(x, y, 800, 800), 800, 800), dx, dy);
            // The world's point under the mouse, on the screen before and after; its y runs upward.
            const Float3 point{static_cast<float>(x - 400), static_cast<float>(400 - y), 0};
            const double movedX = Dot(point, turned.wx) - point[0], movedY = Dot(point, turned.wy) - point[1];
            EXPECT_GT(movedX * dx - movedY * dy, 0.0) << "mouse at " << degrees << " degrees, sense " << sense;
        }
}

TEST(Roll, IgnoresTheRotationMode) {
    const ViewFrame f = ObliqueFrame();
    for (std::int32_t quadrant = 0; quadrant < 4; ++quadrant) {
        const bool bottom = quadrant >= 2, right = quadrant == 1 || quadrant == 2;
        const ViewFrame expected =
            RotateFrame(f, Rule(RotateAboutViewAxis, 640, 480), bottom ? -31 : 31, right ? -12 : 12);
        for (const std::int32_t mode : {0, 1, 2, 3, -4}) {
            RotationRule rule = RollRule(quadrant, 640, 480);
            rule.mode = mode;
            ExpectSame(RotateFrame(f, rule, 31, 12), expected);
        }
    }
}

// ---- limits of the travel and the window

TEST(RotateFrame, WithoutTravelKeepsTheAxes) {
    const ViewFrame f = ObliqueFrame();
    for (const std::int32_t mode : kOneAxisModes) ExpectSame(RotateFrame(f, Rule(mode, 640, 480), 0, 0), f);
    for (std::int32_t quadrant = 0; quadrant < 4; ++quadrant)
        ExpectSame(RotateFrame(f, RollRule(quadrant, 640, 480), 0, 0), f);
    const ViewFrame freely = RotateFrame(f, Rule(RotateFree, 640, 480), 0, 0);
    EXPECT_EQ(freely.wx, f.wx);
    EXPECT_EQ(freely.wy, f.wy);
    EXPECT_EQ(freely.wz, f.wz);
    ExpectNear(freely.center, f.center, 1e-5, "the centre goes through the axes and back");
}

TEST(RotateFrame, InAWindowWithoutAreaKeepsTheFrame) {
    const ViewFrame f = ObliqueFrame();
    for (const Shape& shape : {Shape{0, 480}, Shape{640, 0}, Shape{0, 0}, Shape{-1, -1}})
        for (const std::int32_t mode : kAllModes) {
            ExpectSame(RotateFrame(f, Rule(mode, shape.width, shape.height), 5, 7), f);
            ExpectSame(RotateFrame(f, RollRule(mode, shape.width, shape.height), 5, 7), f);
        }
}

TEST(RotateFrame, StaysOrthonormalForTheLargestTravel) {
    constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
    const ViewFrame f = ObliqueFrame();
    const auto expectFrame = [](const ViewFrame& turned) {
        EXPECT_TRUE(IsViewFrame(turned.wx, turned.wy));
        ExpectNear(Cross(turned.wx, turned.wy), turned.wz, 1e-5, "wz");
    };
    for (const Shape& travel : {Shape{kLow, kLow}, Shape{kFar, kLow}, Shape{kLow, kFar}}) {
        for (const std::int32_t mode : kAllModes)
            expectFrame(RotateFrame(f, Rule(mode, 640, 480), travel.width, travel.height));
        expectFrame(RotateFrame(f, RollRule(2, 640, 480), travel.width, travel.height));
    }
}

// ---- drift

/// The largest departure of the six products of the axes from those of an orthonormal frame.
double Departure(const ViewFrame& frame) {
    const Double3 x = ToDouble3(frame.wx), y = ToDouble3(frame.wy), z = ToDouble3(frame.wz);
    return std::max({std::fabs(Dot(x, x) - 1), std::fabs(Dot(y, y) - 1), std::fabs(Dot(z, z) - 1), std::fabs(Dot(x, y)),
                     std::fabs(Dot(y, z)), std::fabs(Dot(z, x))});
}

ViewFrame AfterRandomTurns(std::int32_t count, std::uint32_t seed, std::int32_t firstMode, std::int32_t lastMode) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int32_t> travel(-6, 6), mode(firstMode, lastMode);
    ViewFrame frame = ObliqueFrame();
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t dx = travel(random), dy = travel(random);
        frame = RotateFrame(frame, Rule(mode(random), 800, 600), dx, dy);
    }
    return frame;
}

constexpr std::int32_t kTurns = 100000;
constexpr double kHalfUlp = 0x1p-25;  // of a component between 0.5 and 1, the largest there is

// Each rotation is exact but for one rounding of each component: an axis is off by at most sqrt(3) half units, a
// product of two axes by twice that. Even if all of a hundred thousand erred the same way, 0.0104 would be the sum.
TEST(RandomSmallRotations, AboutOneAxisEachKeepTheFrameOrthonormalWithinTheirRoundings) {
    for (const std::uint32_t seed : {1u, 2u, 3u})
        EXPECT_LT(Departure(AfterRandomTurns(kTurns, seed, RotateAboutHorizontal, RotateAboutViewAxis)),
                  kTurns * 2 * std::sqrt(3.0) * kHalfUlp);
}

// In floats a component is two products and their sum, three roundings; sine and cosine are off by half a unit each,
// which stretches a vector by up to sqrt(2) half units more. wy and wz see two such steps: 2 * (3 * sqrt(3) + sqrt(2))
// half units an axis, twice that a product.
TEST(RandomSmallRotations, OfAllModesKeepTheFrameOrthonormalWithinTheirRoundings) {
    const double perTurn = 2 * 2 * (3 * std::sqrt(3.0) + std::sqrt(2.0)) * kHalfUlp;
    for (const std::uint32_t seed : {1u, 2u, 3u}) {
        EXPECT_LT(Departure(AfterRandomTurns(kTurns, seed, RotateAboutHorizontal, RotateFree)), kTurns * perTurn);
        EXPECT_LT(Departure(AfterRandomTurns(kTurns, seed, RotateFree, RotateFree)), kTurns * perTurn);
    }
}

// Roundings go either way, so a walk of n of them ends about sqrt(n) from its start, not n. What does not cancel is the
// error of the few sines and cosines, each used ten thousand times: about 0.003 for the free rotation. A hundredth is
// also the limit of SetViewParams: a view that a host reads back after hours of dragging is still accepted.
TEST(RandomSmallRotations, KeepAFrameThatIsAcceptedAsAView) {
    for (const std::uint32_t seed : {1u, 2u, 3u, 4u, 5u})
        for (const std::int32_t firstMode : {RotateAboutHorizontal, RotateFree}) {
            const ViewFrame frame = AfterRandomTurns(kTurns, seed, firstMode, RotateFree);
            EXPECT_TRUE(IsViewFrame(frame.wx, frame.wy));
        }
}

// ---- single rotations

TEST(RotationAbout, IsRightHandedForAnAxisOfAnyLength) {
    for (const float length : {1.0f, 0.001f, 1e6f}) {
        ExpectNear(RotateDirection(RotationAbout({0, 0, length}, kPi / 2), {1, 0, 0}), {0, 1, 0}, 1e-7, "x to y");
        ExpectNear(RotateDirection(RotationAbout({length, 0, 0}, kPi / 2), {0, 1, 0}), {0, 0, 1}, 1e-7, "y to z");
        ExpectNear(RotateDirection(RotationAbout({0, length, 0}, kPi / 2), {0, 0, 1}), {1, 0, 0}, 1e-7, "z to x");
    }
}

TEST(RotationAbout, IsAUnitQuaternionWithoutTranslation) {
    const CACADQTrafo rotation = RotationAbout({1, 2, 2}, 1.0);
    const double s = std::sin(0.5);
    EXPECT_NEAR(rotation.m_dQuat[0], std::cos(0.5), 1e-15);
    EXPECT_NEAR(rotation.m_dQuat[1], s / 3, 1e-15);
    EXPECT_NEAR(rotation.m_dQuat[2], s * 2 / 3, 1e-15);
    EXPECT_NEAR(rotation.m_dQuat[3], s * 2 / 3, 1e-15);
    for (const double t : rotation.m_dTranslation) EXPECT_EQ(t, 0.0);
}

// ---- where a drag rolls

TEST(RollQuadrant, CountsClockwiseFromTheTopLeftWithTheCentreLinesAtRightAndBottom) {
    for (const std::int32_t odd : {0, 1}) {  // integer halves
        EXPECT_EQ(RollQuadrant(319, 239, 640 + odd, 480 + odd), 0);
        EXPECT_EQ(RollQuadrant(320, 239, 640 + odd, 480 + odd), 1);
        EXPECT_EQ(RollQuadrant(320, 240, 640 + odd, 480 + odd), 2);
        EXPECT_EQ(RollQuadrant(319, 240, 640 + odd, 480 + odd), 3);
    }
    EXPECT_EQ(RollQuadrant(-50, -50, 640, 480), 0) << "a captured mouse outside the window";
    EXPECT_EQ(RollQuadrant(900, 900, 640, 480), 2);
    EXPECT_EQ(RollQuadrant(0, 0, 1, 1), 2);
}

TEST(InscribedCircle, IncludesItsRim) {
    EXPECT_FALSE(IsOutsideInscribedCircle(320, 240, 640, 480));
    EXPECT_FALSE(IsOutsideInscribedCircle(320, 0, 640, 480));
    EXPECT_TRUE(IsOutsideInscribedCircle(320, -1, 640, 480));
    EXPECT_FALSE(IsOutsideInscribedCircle(80, 240, 640, 480));
    EXPECT_TRUE(IsOutsideInscribedCircle(79, 240, 640, 480));
    EXPECT_FALSE(IsOutsideInscribedCircle(320 - 144, 240 + 192, 640, 480)) << "144, 192, 240";
    EXPECT_TRUE(IsOutsideInscribedCircle(320 - 144, 240 + 193, 640, 480));
    EXPECT_TRUE(IsOutsideInscribedCircle(0, 0, 640, 480));
}

TEST(InscribedCircle, HasHalfTheSmallerSideRoundedDownAsRadius) {
    EXPECT_FALSE(IsOutsideInscribedCircle(0, 500, 101, 1001)) << "radius 50 about (50, 500)";
    EXPECT_FALSE(IsOutsideInscribedCircle(100, 500, 101, 1001));
    EXPECT_TRUE(IsOutsideInscribedCircle(101, 500, 101, 1001));
    EXPECT_TRUE(IsOutsideInscribedCircle(50, 551, 101, 1001));
    EXPECT_FALSE(IsOutsideInscribedCircle(0, 0, 1, 1)) << "a circle of radius 0";
    EXPECT_TRUE(IsOutsideInscribedCircle(1, 0, 1, 1));
    EXPECT_TRUE(IsOutsideInscribedCircle(kFar, kFar, 640, 480));
    EXPECT_TRUE(IsOutsideInscribedCircle(-kFar, -kFar, 640, 480));
}

}  // namespace
