// What a press does to the clip plane: a drag of the plane with Ctrl, a drag of the handle under the mouse.
#include <cmath>

#include "view/InputHelp.h"

namespace {

constexpr std::int32_t kX = 300, kY = 200;  // within the inscribed circle

TEST(PressWithCtrl, HighlightsThePlaneWithTheHandlesOfItsDrag) {
    InputControl c;
    struct Row {
        Button button;
        std::int32_t flip;
        bool moveHandle, rotateHandles;
    };
    const Row rows[] = {
        {Button::Left, 0, false, true},  {Button::Left, 1, true, false},   {Button::Right, 0, true, false},
        {Button::Right, 1, false, true}, {Button::Middle, 0, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.button) << ", flip " << row.flip);
        c.Set({.flip = row.flip, .plane = true});
        c->m_clipPlane.m_drag = {};
        c.Press(row.button, kCtrl, kX, kY);
        EXPECT_TRUE(c->m_clipPlane.m_bHighlighted);
        EXPECT_FALSE(c->m_clipPlane.IsPicked());
        EXPECT_EQ(c->m_clipPlane.m_bMoveHandleVisible, row.moveHandle);
        EXPECT_EQ(c->m_clipPlane.m_bRotateHandlesVisible, row.rotateHandles);
        EXPECT_EQ(c->m_clipPlane.m_drag.pressX, kX);
        EXPECT_EQ(c->m_clipPlane.m_drag.pressY, kY);
    }
}

TEST(PressWithCtrl, OfTheRightButtonClearsThePickOfThePlane) {
    InputControl c({.plane = true});
    c->m_clipPlane.OnPicked(0);
    c->OnRightDown(kRight | kCtrl, kX, kY);
    EXPECT_FALSE(c->m_clipPlane.IsPicked());
    EXPECT_EQ(c->m_nInteractionMode, ModePlaneMove);
}

// The mode stays idle, so no handles are hidden.
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

TEST(PressOnAHandle, StartsItsDragWithoutACaptureOrADragOfTheView) {
    InputControl c;
    for (const std::int32_t igd : {0, 1}) {
        for (const PlaneHandle& pick : {PlaneHandle{0, PlaneHandle::kArrow}, PlaneHandle{1, PlaneHandle::kSphere}}) {
            SCOPED_TRACE(testing::Message() << "igd " << igd << ", kind " << pick.kind);
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

// The view is oblique: centre and normal have both coordinates.
TEST(PressOnAHandle, RecordsTheCentreAndTheDirectionOfTheNormalInPixels) {
    InputControl c({.plane = true});
    const Double3 center{3, -2, 1};
    c->m_clipPlane.SetNormal({0, 0.6, 0.8});
    c->m_clipPlane.SetCenter(center);
    c->m_clipPlane.m_pick = PlaneHandle{0, PlaneHandle::kArrow};
    c->OnLeftDown(kLeft, kX, kY);
    Double2 at{}, tip{};
    c->ProjectPointDouble(center[0], center[1], center[2], &at[0], &at[1]);
    c->ProjectPointDouble(center[0], center[1] + 0.6, center[2] + 0.8, &tip[0], &tip[1]);
    const double length = std::hypot(tip[0] - at[0], tip[1] - at[1]);
    ASSERT_GT(length, 0.1);
    const Plane::DragRecord& drag = c->m_clipPlane.m_drag;
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NEAR(drag.centerOnScreen[i], at[i], 1e-6) << i;
        EXPECT_NEAR(drag.normalOnScreen[i], (tip[i] - at[i]) / length, 1e-6) << i;
    }
}

}  // namespace
