// Drags that rotate the view of a whole control: what they change, which repaints they request, and when they roll.
#include <cmath>
#include <cstdint>
#include <numbers>

#include "view/CameraHelp.h"

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseMiddle;
using KV_ScenePane::kMouseRight;
using Kind = KV_ScenePane::MouseInput::Kind;

/// 640 x 480: the circle has radius 240 about (320, 240).
class RotatingDrag : public testing::Test {
protected:
    RotatingDrag() {
        SetView(*c, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, 1);
        c.window->Forget();
    }
    void Mouse(Kind kind, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        c->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    }
    /// Of the camera about the viewing axis, counter-clockwise.
    [[nodiscard]] double RolledDegrees() const {
        return std::atan2(c->m_fAxisX[1], c->m_fAxisX[0]) * 180 / std::numbers::pi;
    }
    OffscreenControl c;
};

TEST_F(RotatingDrag, UpdatesTheCameraAndRefreshesOncePerMove) {
    c->m_fRotationCenter = {0, 0, -10};
    Mouse(Kind::LeftDown, kMouseLeft, 320, 240);
    c.window->Forget();
    Mouse(Kind::Move, kMouseLeft, 320 + 240, 240);  // half the smaller side, free: a quarter turn
    ExpectNear(c->m_fAxisX, {0, 0, 1}, 1e-6, "wx");
    ExpectNear(c->m_fAxisY, {0, 1, 0}, 1e-6, "wy");
    ExpectNear(c->m_fAxisZ, {-1, 0, 0}, 1e-6, "wz");
    ExpectNear(c->m_fViewCenter, {-10, 0, -10}, 1e-5, "centre, around the pivot");
    EXPECT_EQ(c->m_savedView.wz, c->m_fAxisZ) << "the matrices follow";
    ExpectOnlyRefresh(*c.window);
    EXPECT_TRUE(c.events.events.empty()) << "reported in tracing mode only";
}

TEST_F(RotatingDrag, ReportsTheDirectionToTheHostInTracingMode) {
    c->TracingMode(1);
    Mouse(Kind::LeftDown, kMouseLeft, 320, 240);
    c.events.events.clear();
    Mouse(Kind::Move, kMouseLeft, 320 + 120, 240);
    ASSERT_EQ(c.events.events.size(), 1u);
    EXPECT_EQ(c.events.events[0].name, "ViewDirectionChanged");
}

TEST_F(RotatingDrag, UsesANewRotationModeWithTheNextMove) {
    Mouse(Kind::LeftDown, kMouseLeft, 320, 240);
    c->SetRotationMode(KV_ScenePane::RotateAboutHorizontal);
    Mouse(Kind::Move, kMouseLeft, 400, 240);
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0})) << "about the horizontal only";
    c->SetRotationMode(KV_ScenePane::RotateAboutVertical);
    Mouse(Kind::Move, kMouseLeft, 400 + 320, 100);
    ExpectNear(c->m_fAxisX, {0, 0, 1}, 1e-6, "a quarter turn about the vertical");
    EXPECT_EQ(c->m_fAxisY, (Float3{0, 1, 0}));
}

TEST_F(RotatingDrag, RollsOnlyFromAPressOutsideTheCircle) {
    Mouse(Kind::LeftDown, kMouseLeft, 80, 240);
    EXPECT_EQ(c->m_bRollRotation, 0) << "on the rim";
    Mouse(Kind::LeftUp, 0, 80, 240);
    Mouse(Kind::LeftDown, kMouseLeft, 79, 240);
    EXPECT_EQ(c->m_bRollRotation, 1);
    EXPECT_EQ(c->m_nRollQuadrant, 3);
    Mouse(Kind::LeftUp, 0, 79, 240);
    EXPECT_EQ(c->m_bRollRotation, 0) << "it ends with the drag";
}

TEST_F(RotatingDrag, ARollFollowsTheQuadrantOfTheMouseInAnyRotationMode) {
    c->SetRotationMode(KV_ScenePane::RotateAboutVertical);
    Mouse(Kind::LeftDown, kMouseLeft, 10, 10);
    EXPECT_EQ(c->m_nRollQuadrant, 0);
    Mouse(Kind::Move, kMouseLeft, 10 + 64, 10);  // a tenth of 180 degrees
    EXPECT_NEAR(RolledDegrees(), 18, 1e-4);
    Mouse(Kind::Move, kMouseLeft, 630, 470);  // by the quadrant of the last point, top left
    EXPECT_EQ(c->m_nRollQuadrant, 0);
    const double before = RolledDegrees();
    Mouse(Kind::Move, kMouseLeft, 630 - 64, 470);
    EXPECT_EQ(c->m_nRollQuadrant, 2);
    EXPECT_NEAR(std::remainder(RolledDegrees() - before, 360), 18, 1e-4)
        << "to the left at the bottom is clockwise, too";
    ExpectNear(c->m_fAxisZ, {0, 0, 1}, 1e-6, "wz");
}

TEST_F(RotatingDrag, ARollEndsByTheReleaseOfAnyButton) {
    Mouse(Kind::LeftDown, kMouseLeft, 10, 10);
    Mouse(Kind::RightUp, 0, 10, 10);
    EXPECT_EQ(c->m_bRollRotation, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST_F(RotatingDrag, APanOrAMiddleDragNeverRolls) {
    Mouse(Kind::RightDown, kMouseRight, 10, 10);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_bRollRotation, 0);
    Mouse(Kind::RightUp, 0, 10, 10);
    Mouse(Kind::MiddleDown, kMouseMiddle, 10, 10);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_EQ(c->m_bRollRotation, 0);
}

TEST_F(RotatingDrag, StoresTheViewAndThePointOfThePress) {
    Mouse(Kind::LeftDown, kMouseLeft, 33, 44);
    EXPECT_EQ(c->m_nLastMouseX, 33);
    EXPECT_EQ(c->m_nLastMouseY, 44);
    EXPECT_EQ(c->m_bMoving, 1);
    EXPECT_EQ(c->m_savedView.wx, (Float3{1, 0, 0}));
}

TEST_F(RotatingDrag, RollsInAnInteractiveAlignmentToo) {
    c->m_nInteractionMode = ModeAlignInteractive;
    c->BeginDrag(639, 0, true);
    EXPECT_EQ(c->m_bRollRotation, 1);
    EXPECT_EQ(c->m_nRollQuadrant, 1);
    c->m_bRollRotation = 0;
    c->m_nInteractionMode = ModeAlignPickPoints;
    c->BeginDrag(639, 0, false);
    EXPECT_EQ(c->m_bRollRotation, 0);
    EXPECT_EQ(c->m_bMoving, 0);
}

}  // namespace
