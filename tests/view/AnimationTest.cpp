// The turntable of the control, on a clock of the test: what starts and ends it, and what its frames show.
#include <cmath>
#include <cstdint>
#include <numbers>

#include "base/PerformanceCounter.h"
#include "view/CameraHelp.h"

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kVariantFalse;
using KV_ScenePane::kVariantTrue;
using Kind = KV_ScenePane::MouseInput::Kind;

std::int64_t g_ticks = 0;
std::int64_t TestCounter() { return g_ticks; }

/// The view along +Y, its centre apart from the pivot, and a stopped clock.
class AnimationTest : public testing::Test {
protected:
    AnimationTest() {
        g_ticks = 123 * PerformanceFrequency();
        c->m_pfnCounter = TestCounter;
        SetView(*c, {1, 0, 0}, {0, 0, 1}, {3, 4, 5}, 1);
        c->m_fRotationCenter = {50, 60, 70};
        c->PerformRefresh();
        c.window->Forget();
        c.events.events.clear();
    }

    /// Draws a frame this many seconds later.
    void FrameAfter(double seconds) {
        g_ticks += std::llround(seconds * static_cast<double>(PerformanceFrequency()));
        c->PerformRefresh();
    }
    /// Angle of the camera about the world's Z axis since the start, -180 to 180.
    [[nodiscard]] double Degrees() const { return std::atan2(c->m_fAxisX[1], c->m_fAxisX[0]) * 180 / std::numbers::pi; }
    void Key(std::int32_t nChar, bool isDown = true) { c->SendKey({.isDown = isDown, .nChar = nChar}); }

    OffscreenControl c;
};

// ---- start and stop

TEST_F(AnimationTest, DoesNotRunInANewControl) {
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    FrameAfter(1);
    EXPECT_EQ(Degrees(), 0.0);
    EXPECT_EQ(c->m_fAnimationSpeed, 0.2f);
    EXPECT_EQ(c->m_fAnimationAxis, (Float3{0, 0, 1}));
}

TEST_F(AnimationTest, StartReadsTheClockAndQueuesAFrameWithErase) {
    c->StartAnimation(0.5f);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    EXPECT_EQ(c->m_fAnimationSpeed, 0.5f);
    EXPECT_EQ(c->m_nAnimationStart, g_ticks);
    EXPECT_EQ(c->m_nAnimationLast, g_ticks);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
    EXPECT_EQ(Degrees(), 0.0);
}

TEST_F(AnimationTest, StartingARunningAnimationOnlyChangesItsSpeed) {
    c->StartAnimation(0.25f);
    const std::int64_t start = g_ticks;
    FrameAfter(1);  // 90 degrees
    c.window->Forget();
    c->StartAnimation(0.125f);
    ExpectNoRequest(*c.window);
    EXPECT_EQ(c->m_fAnimationSpeed, 0.125f);
    EXPECT_EQ(c->m_nAnimationStart, start);
    FrameAfter(1);
    EXPECT_NEAR(Degrees(), 90 + 45, 1e-4);
    FrameAfter(5.9);  // 7.9 seconds since the first start
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    FrameAfter(0.2);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse) << "the time of a revolution runs from the first start";
}

TEST_F(AnimationTest, StopEndsItAtOnceWithoutARepaint) {
    c->StartAnimation(0.25f);
    FrameAfter(1);
    c.window->Forget();
    c->StopAnimation();
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    ExpectNoRequest(*c.window);
    FrameAfter(1);
    EXPECT_NEAR(Degrees(), 90, 1e-4);
}

TEST_F(AnimationTest, AStartAfterAStopRunsAWholeRevolutionAgain) {
    c->StartAnimation(0.25f);
    FrameAfter(3);
    c->StopAnimation();
    FrameAfter(100);
    c->StartAnimation(0.25f);
    FrameAfter(3.9);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    EXPECT_NEAR(Degrees(), -90 - 9, 1e-3) << "the pause rotated nothing";
}

TEST_F(AnimationTest, ANewSpeedAppliesFromTheLastFrameOn) {
    c->StartAnimation(0.25f);
    FrameAfter(1);
    c.window->Forget();
    c->SetAnimationSpeed(0.125f);
    ExpectNoRequest(*c.window);
    FrameAfter(1);
    EXPECT_NEAR(Degrees(), 135, 1e-4);
}

TEST_F(AnimationTest, SettingASpeedDoesNotStartIt) {
    c->SetAnimationSpeed(7);
    FrameAfter(0.01);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    EXPECT_EQ(c->m_fAnimationSpeed, 7.0f);
    EXPECT_EQ(Degrees(), 0.0);
}

// ---- one revolution

TEST_F(AnimationTest, AtHalfARevolutionPerSecondItEndsAfterTwoSeconds) {
    c->StartAnimation(0.5f);
    for (int frame = 0; frame < 20; ++frame) FrameAfter(0.1);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue) << "2 seconds are not more than 2 seconds";
    EXPECT_NEAR(Degrees(), 0, 1e-3) << "once around";
    const Float3 wx = c->m_fAxisX;
    FrameAfter(0.1);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    EXPECT_EQ(c->m_fAxisX, wx) << "the frame that ends it rotates nothing";
}

TEST_F(AnimationTest, ALateFrameEndsItWithoutRotatingFurther) {
    c->StartAnimation(0.5f);
    FrameAfter(0.5);
    FrameAfter(60);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    EXPECT_NEAR(Degrees(), 90, 1e-4);
}

TEST_F(AnimationTest, RotatesByTheSameAngleAtAnyFrameRate) {
    for (const int frames : {1, 3, 50}) {
        SetView(*c, {1, 0, 0}, {0, 0, 1}, {3, 4, 5}, 1);
        c->StartAnimation(0.25f);
        for (int frame = 0; frame < frames; ++frame) FrameAfter(1.5 / frames);
        EXPECT_NEAR(Degrees(), 135, 1e-3) << frames << " frames";
        c->StopAnimation();
    }
}

TEST_F(AnimationTest, AtSpeedZeroNeverEndsAndRotatesNothing) {
    c->StartAnimation(0);
    for (const double pause : {0.0, 1.0, 1e6}) FrameAfter(pause);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0}));
    c->SetAnimationSpeed(1e-7f);
    FrameAfter(1);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue) << "10 million seconds for a revolution";
}

TEST_F(AnimationTest, AtANegativeSpeedItEndsWithTheFirstFrame) {
    c->StartAnimation(-0.5f);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    FrameAfter(0);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0}));
}

// ---- the rotation

TEST_F(AnimationTest, RotatesAboutTheWorldZAxisAndKeepsTheCentre) {
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    const Float3 wx = c->m_fAxisX, wy = c->m_fAxisY, wz = c->m_fAxisZ;
    c->m_fViewCenter = {3, 4, 5};
    c->m_fRotationCenter = {50, 60, 70};
    c->StartAnimation(0.25f);
    FrameAfter(1);
    // (x, y, z) goes to (-y, x, z)
    ExpectNear(c->m_fAxisX, {-wx[1], wx[0], wx[2]}, 2e-7, "wx");
    ExpectNear(c->m_fAxisY, {-wy[1], wy[0], wy[2]}, 2e-7, "wy");
    ExpectNear(c->m_fAxisZ, {-wz[1], wz[0], wz[2]}, 2e-7, "wz");
    EXPECT_EQ(c->m_fViewCenter, (Float3{3, 4, 5}));
    EXPECT_EQ(c->m_fRotationCenter, (Float3{50, 60, 70}));
}

TEST_F(AnimationTest, AFrameRequestsNoOtherFrame) {
    c->StartAnimation(0.5f);
    FrameAfter(0.1);
    c.window->Forget();
    FrameAfter(0.1);
    EXPECT_EQ(c.window->refreshes, 1) << "the test's own";
    EXPECT_EQ(c.window->invalidates + c.window->eraseInvalidates, 0);
    EXPECT_FALSE(c.window->IsPaintPending());
    EXPECT_TRUE(c.events.events.empty());
}

TEST_F(AnimationTest, TheFrameShowsTheViewAfterItsStep) {
    // A patch in the right half of the picture; half a revolution later it is in the left half, in the same frame.
    SetView(*c, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, 1);
    c->m_fSceneSize = 100;
    AddBox(*c, {15, -15, 0}, {45, 15, 0});
    const auto isPatch = [](const KV_ScenePane::Picture& picture, int x, int y) {
        const auto at = [&](int column, int row) {
            return picture.pixels[static_cast<std::size_t>(row * picture.width + column)];
        };
        return at(x, y) != at(0, 0);
    };
    // 480 pixels are 100 units; the triangle covers (25, 5), half a revolution later (-25, -5).
    constexpr int kRight = 320 + 120, kLeft = 320 - 120, kUpper = 240 - 24, kLower = 240 + 24;
    KV_ScenePane::Picture before, after;
    c->StartAnimation(0.5f);
    ASSERT_TRUE(c->CapturePicture(&before));
    g_ticks += PerformanceFrequency();
    ASSERT_TRUE(c->CapturePicture(&after));
    EXPECT_TRUE(isPatch(before, kRight, kUpper));
    EXPECT_FALSE(isPatch(before, kLeft, kLower));
    EXPECT_FALSE(isPatch(after, kRight, kUpper));
    EXPECT_TRUE(isPatch(after, kLeft, kLower));
}

// ---- what stops it

TEST_F(AnimationTest, PressesAndDoubleClicksStopItButNotMovesReleasesAndTheWheel) {
    for (const Kind kind : {Kind::LeftDown, Kind::MiddleDown, Kind::RightDown, Kind::DoubleClick}) {
        c->StartAnimation(0.01f);
        c->SendMouse({.kind = kind, .x = 320, .y = 240});
        EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse) << "kind " << static_cast<int>(kind);
    }
    for (const Kind kind : {Kind::Move, Kind::LeftUp, Kind::MiddleUp, Kind::RightUp, Kind::Wheel}) {
        c->StartAnimation(0.01f);
        c->SendMouse({.kind = kind, .x = 320, .y = 240, .delta = 120});
        EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue) << "kind " << static_cast<int>(kind);
    }
}

TEST_F(AnimationTest, AnyKeyPressStopsItButNoKeyRelease) {
    for (const std::int32_t nChar : {65, 27, 17, 32, 0, 999}) {
        c->StartAnimation(0.01f);
        Key(nChar, false);
        EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue) << nChar;
        Key(nChar);
        EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse) << nChar;
    }
}

TEST_F(AnimationTest, ADelayedPressStopsItOnlyWhenItIsDispatched) {
    c->SetIGDRotation(1);
    c->StartAnimation(0.01f);
    c->SendMouse({.kind = Kind::LeftDown, .flags = kMouseLeft, .x = 320, .y = 240});
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
}

// ---- the space bar

TEST_F(AnimationTest, WhenAllowedTheSpaceBarStartsItAtTheStoredSpeedAndStopsIt) {
    Key(KV_ScenePane::kKeySpace);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse) << "not allowed at first";

    c->ToggleAnimationOnSpacebar(1);
    c->SetAnimationSpeed(0.25f);
    c.window->Forget();
    Key(KV_ScenePane::kKeySpace);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    FrameAfter(1);
    EXPECT_NEAR(Degrees(), 90, 1e-4);

    Key(KV_ScenePane::kKeySpace);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse);
    Key(KV_ScenePane::kKeySpace);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
}

TEST_F(AnimationTest, TheSpaceBarStartsItAgainAfterItEndedByItself) {
    c->ToggleAnimationOnSpacebar(1);
    c->StartAnimation(0.5f);
    FrameAfter(3);
    Key(KV_ScenePane::kKeySpace);
    EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue);
    EXPECT_EQ(c->m_nAnimationStart, g_ticks);
}

TEST_F(AnimationTest, OnlyTheLowByteOfTheSpaceBarSwitchCounts) {
    for (const std::int32_t enabled : {1, -1, 255, 0x102}) {
        c->ToggleAnimationOnSpacebar(enabled);
        EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, enabled & 0xFF);
        Key(KV_ScenePane::kKeySpace);
        EXPECT_EQ(c->IsAnimationRunning(), kVariantTrue) << enabled;
        c->StopAnimation();
    }
    for (const std::int32_t disabled : {0, 256, -256}) {
        c->ToggleAnimationOnSpacebar(disabled);
        Key(KV_ScenePane::kKeySpace);
        EXPECT_EQ(c->IsAnimationRunning(), kVariantFalse) << disabled;
    }
}

TEST(AnimationClock, IsThePerformanceCounterByDefault) {
    NoPictureControl c;
    const std::int64_t before = PerformanceCounter();
    c->StartAnimation(1);
    EXPECT_GE(c->m_nAnimationStart, before);
    EXPECT_LE(c->m_nAnimationStart, PerformanceCounter());
}

}  // namespace
