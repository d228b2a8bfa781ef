// What a press does beside choosing the mode: points of a lasso, the hold on the clip plane, the start of a roll.
#include "view/InputHelp.h"

namespace {

constexpr std::int32_t kX = 300, kY = 200;  // within the inscribed circle

// ---- lassos

TEST(LassoPress, AddsAPointInFractionsOfTheWindow) {
    InputControl c({.mode = ModeLasso});
    c->OnLeftDown(kLeft, 160, 120);
    c->OnLeftDown(kLeft | kCtrl, 639, 1);
    ASSERT_EQ(c->m_vLassoPoints.size(), 2u);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[0].x, 0.25);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[0].y, 0.25);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].x, 639.0 / 640.0);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].y, 1.0 / 480.0);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 639.0 / 640.0);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.y, 1.0 / 480.0);
    EXPECT_EQ(c.window->eraseInvalidates, 2);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeLasso);
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_TRUE(c.LastPointUnchanged());
    EXPECT_EQ(c->m_bMoving, 0);
    EXPECT_EQ(c->m_bAnimationRunning, 0);
}

TEST(LassoPress, OfTheMaskStartsASessionWithoutARepaintOrACapture) {
    InputControl c({.mode = ModeMaskLasso});
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_EQ(c.RepaintRequests(), 0);
    EXPECT_TRUE(c->m_vLassoPoints.empty()) << "those are the other lasso's";
    EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_TRUE(c.LastPointUnchanged());
}

TEST(LassoPress, OfTheMaskRepaintsWithErase) {
    InputControl c({.mode = ModeMaskLasso});
    c->m_pCutSession = std::make_unique<CutSession>();
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST(LassoPress, OfTheRightButtonAddsTheLastPoint) {
    InputControl c({.mode = ModeLasso});
    c->m_vLassoPoints = {{0.5, 0.5}};
    c->OnRightDown(kRight, 480, 360);
    ASSERT_EQ(c->m_vLassoPoints.size(), 2u);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].x, 0.75);
    EXPECT_DOUBLE_EQ(c->m_vLassoPoints[1].y, 0.75);
    EXPECT_DOUBLE_EQ(c->m_lassoCursor.x, 0.75);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_FALSE(c.window->HasCapture());
    EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
    EXPECT_EQ(c->m_bRightButtonPressed, 1);
}

// ---- the plane under a press

TEST(PressWithCtrl, TakesThePlaneWithTheHandlesOfItsMove) {
    InputControl c;
    struct Row {
        const char* name;
        void (CKV_ScenePaneCtrl::*press)(std::uint32_t, std::int32_t, std::int32_t);
        std::int32_t flip;
        bool moveHandle, rotateHandles;
    };
    const Row rows[] = {
        {"left", &CKV_ScenePaneCtrl::OnLeftDown, 0, false, true},
        {"left, flipped", &CKV_ScenePaneCtrl::OnLeftDown, 1, true, false},
        {"right", &CKV_ScenePaneCtrl::OnRightDown, 0, true, false},
        {"right, flipped", &CKV_ScenePaneCtrl::OnRightDown, 1, false, true},
        {"middle", &CKV_ScenePaneCtrl::OnMiddleDown, 0, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        c.Set({.flip = row.flip, .plane = true});
        c->m_clipPlane.m_drag = {};
        ((*c).*row.press)(kCtrl, kX, kY);
        EXPECT_TRUE(c->m_clipPlane.m_bHighlighted);
        EXPECT_FALSE(c->m_clipPlane.IsPicked());
        EXPECT_EQ(c->m_clipPlane.m_bMoveHandleVisible, row.moveHandle);
        EXPECT_EQ(c->m_clipPlane.m_bRotateHandlesVisible, row.rotateHandles);
        EXPECT_EQ(c->m_clipPlane.m_drag.pressX, kX);
        EXPECT_EQ(c->m_clipPlane.m_drag.pressY, kY);
    }
}

TEST(PressWithCtrl, OfARightDragForgetsThePicksOfThePlane) {
    InputControl c({.plane = true});
    c->m_clipPlane.OnPicked(0);
    c->OnRightDown(kRight | kCtrl, kX, kY);
    EXPECT_FALSE(c->m_clipPlane.IsPicked());
    EXPECT_EQ(c->m_nInteractionMode, ModePlaneMove);
}

// The mode stays idle, and so there is nothing to hide handles for.
TEST(PressWithCtrl, InTheDelayedSchemeHighlightsThePlane) {
    InputControl c({.igd = 1, .plane = true});
    c->m_clipPlane.m_drag = {};
    c->OnLeftDown(kLeft | kCtrl, kX, kY);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_TRUE(c->m_clipPlane.m_bHighlighted);
    EXPECT_EQ(c->m_clipPlane.m_drag.pressX, kX);
    EXPECT_EQ(c->m_clipPlane.m_drag.pressY, kY);
    EXPECT_TRUE(c->m_clipPlane.m_bMoveHandleVisible);
    EXPECT_TRUE(c->m_clipPlane.m_bRotateHandlesVisible);
}

TEST(PressOnAHandle, HoldsItWithoutCaptureOrViewDrag) {
    InputControl c;
    for (const std::int32_t igd : {0, 1}) {
        for (const PlaneHandle& pick : {PlaneHandle{0, PlaneHandle::kArrow}, PlaneHandle{1, PlaneHandle::kSphere}}) {
            SCOPED_TRACE(testing::Message() << "scheme " << igd << ", kind " << pick.kind);
            c.Set({.igd = igd, .plane = true});
            c->m_clipPlane.m_pick = pick;
            c->m_clipPlane.m_drag = {};
            c->OnLeftDown(kLeft, kX, kY);
            EXPECT_EQ(c->m_nInteractionMode, ModePlaneHandle);
            EXPECT_EQ(c->m_nSavedInteractionMode, 0);
            EXPECT_FALSE(c.window->HasCapture());
            EXPECT_TRUE(c.LastPointUnchanged());
            EXPECT_EQ(c->m_bMoving, 0);
            EXPECT_EQ(c->m_bAnimationRunning, 0);
            EXPECT_EQ(c->m_clipPlane.m_bMoveHandleVisible, pick.kind == PlaneHandle::kArrow);
            EXPECT_EQ(c->m_clipPlane.m_bRotateHandlesVisible, pick.kind == PlaneHandle::kSphere);
            EXPECT_EQ(c->m_clipPlane.m_drag.pressX, kX);
            EXPECT_EQ(c->m_clipPlane.m_drag.pressY, kY);
            EXPECT_EQ(c->m_clipPlane.m_drag.pick, pick);
            EXPECT_EQ(c.RepaintRequests(), 0);
        }
    }
}

// ---- roll

struct RollPress {
    const char* name;
    std::int32_t x, y;
    bool roll;
    std::int32_t quadrant;
};
// The centre pixel is (320, 240), the radius 240.
constexpr RollPress kRollPresses[] = {
    {"on the circle, left", 80, 240, false, 0},
    {"just outside it, left", 79, 240, true, 3},
    {"on the circle, top", 320, 0, false, 0},
    {"on the circle by 3-4-5", 464, 48, false, 0},
    {"just outside there", 465, 48, true, 1},
    {"top left", 20, 20, true, 0},
    {"top right", 620, 20, true, 1},
    {"bottom right", 620, 470, true, 2},
    {"bottom left", 20, 470, true, 3},
    {"right of the circle, level with the centre", 570, 240, true, 2},
    {"right of the circle, a pixel above", 570, 239, true, 1},
};

TEST(PressOutsideTheCircle, RollsAndKnowsItsQuadrant) {
    InputControl c;
    for (const RollPress& row : kRollPresses) {
        SCOPED_TRACE(row.name);
        c.Set({});
        c->OnLeftDown(kLeft, row.x, row.y);
        EXPECT_EQ(c->m_bRollRotation, row.roll);
        if (row.roll) {
            EXPECT_EQ(c->m_nRollQuadrant, row.quadrant);
        }
    }
}

TEST(PressOutsideTheCircle, RollsOnlyWhatRotates) {
    struct Row {
        const char* name;
        Before before;
        void (CKV_ScenePaneCtrl::*press)(std::uint32_t, std::int32_t, std::int32_t);
        std::uint32_t flags;
        bool roll;
    };
    const auto left = &CKV_ScenePaneCtrl::OnLeftDown, right = &CKV_ScenePaneCtrl::OnRightDown,
               middle = &CKV_ScenePaneCtrl::OnMiddleDown;
    const Row rows[] = {
        {"left", {}, left, kLeft, true},
        {"right pans", {}, right, kRight, false},
        {"middle: the mode comes after the drag's start", {}, middle, kMiddle, false},
        {"left, flipped, pans", {.flip = 1}, left, kLeft, false},
        {"right, flipped", {.flip = 1}, right, kRight, true},
        {"middle, flipped", {.flip = 1}, middle, kMiddle, false},
        {"left, delayed, does nothing", {.igd = 1}, left, kLeft, false},
        {"right, delayed", {.igd = 1}, right, kRight, true},
        {"left with ctrl becomes a plane drag afterwards", {.plane = true}, left, kLeft | kCtrl, true},
        {"alignment, left", {.mode = ModeAlignInteractive}, left, kLeft, true},
        {"alignment, right", {.mode = ModeAlignInteractive}, right, kRight, true},
        {"alignment, right with ctrl, pans", {.mode = ModeAlignInteractive}, right, kRight | kCtrl, false},
        {"pick points, left", {.mode = ModeAlignPickPoints}, left, kLeft, false},
        {"pick points, left with ctrl, rotates", {.mode = ModeAlignPickPoints}, left, kLeft | kCtrl, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        InputControl c(row.before);
        ((*c).*row.press)(row.flags, 20, 20);
        EXPECT_EQ(c->m_bRollRotation, row.roll);
    }
}

}  // namespace
