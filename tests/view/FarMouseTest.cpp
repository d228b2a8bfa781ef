// A mouse as far away as its coordinates allow: no computation with them overflows, which the undefined behaviour
// sanitizer reports, and a travel that has no number is the largest one in its direction.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "view/InputHelp.h"

namespace {

using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min(), kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kFar[] = {kMin, kMin + 1, kMax, 0};
constexpr std::pair<std::int32_t, std::int32_t> kFarPoints[] = {
    {kMin, kMin}, {kMax, kMax}, {kMin, kMax}, {0, kMin}, {kMax, 1}};
constexpr std::uint32_t kModifiers[] = {0, kShift, kCtrl};

class FarMouse : public testing::Test {
protected:
    FarMouse() {
        AddMesh(*pane, {{-9, -9, 0, 0, 0, 1}, {9, -9, 0, 0, 0, 1}, {0, 9, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
        pane->CenterView();
    }
    void Send(Kind kind, std::uint32_t flags, std::int32_t x, std::int32_t y, std::int32_t delta = 0) {
        pane->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y, .delta = delta});
    }
    /// Every kind of input at two far points after each other.
    void SendAllKinds(std::uint32_t flags, std::int32_t x, std::int32_t y) {
        const std::int32_t oppositeX = x < 0 ? kMax : kMin, oppositeY = y < 0 ? kMax : kMin;
        Send(Kind::Move, flags, x, y);
        for (const auto& [down, up, button] : {std::tuple{Kind::LeftDown, Kind::LeftUp, kLeft},
                                               {Kind::MiddleDown, Kind::MiddleUp, kMiddle},
                                               {Kind::RightDown, Kind::RightUp, kRight}}) {
            Send(down, flags | button, x, y);
            Send(Kind::Move, flags | button, oppositeX, oppositeY);
            Send(Kind::Move, flags | button, x, y);
            Send(up, flags, oppositeX, y);
        }
        Send(Kind::DoubleClick, flags | kLeft, x, y);
        for (const std::int32_t delta : {kMin, kMax}) Send(Kind::Wheel, flags, x, y, delta);
    }
    OffscreenControl pane{64, 48};
};

TEST_F(FarMouse, IsHandledInEveryMode) {
    RecordingDialog dialog;
    for (const bool isDelayed : {false, true})
        for (const bool extras : {false, true})
            for (const std::int32_t mode : kAllModes) {
                SCOPED_TRACE(testing::Message()
                             << "mode " << mode << ", delayed " << isDelayed << ", extras " << extras);
                pane->SetIGDRotation(isDelayed ? 1 : 0);
                pane->m_bClipPlaneVisible = extras;
                pane->SetNeedlePickingMode(extras ? -1 : 0);
                for (const std::uint32_t flags : kModifiers)
                    for (const auto& [x, y] : kFarPoints) {
                        pane->m_pInteractionDlg =
                            mode == ModeAlignInteractive || mode == ModeAlignPickPoints ? &dialog : nullptr;
                        pane->m_nInteractionMode = mode;
                        SendAllKinds(flags, x, y);
                        pane->m_pInteractionDlg = nullptr;
                        pane->m_vLassoPoints.clear();
                    }
                pane->CenterView();
            }
    EXPECT_FALSE(dialog.calls.empty());
    EXPECT_EQ(pane->GetNumberOfNeedles(), 0);
}

TEST_F(FarMouse, DragsTheViewInTheDirectionOfItsTravel) {
    for (const std::int32_t to : {kMin, kMax}) {
        pane->CenterView();
        pane->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
        const Float3 center = pane->m_fViewCenter;
        const std::int32_t from = to == kMin ? kMax : kMin;
        Send(Kind::RightDown, kRight, from, from);
        ASSERT_EQ(pane->m_nInteractionMode, ModePan);
        Send(Kind::Move, kRight, to, to);
        // The scene follows the mouse, the centre goes the other way; y runs downward.
        const float sign = to < 0 ? 1.0f : -1.0f;
        EXPECT_GT(sign * (pane->m_fViewCenter[0] - center[0]), 1e6f) << to;
        EXPECT_LT(sign * (pane->m_fViewCenter[1] - center[1]), -1e6f) << to;
        Send(Kind::RightUp, 0, to, to);
    }
}

TEST_F(FarMouse, FindsNothing) {
    KV_ScenePane::SurfacePoint hit;
    for (const std::int32_t x : kFar)
        for (const std::int32_t y : kFar) {
            if (x == 0 && y == 0) continue;
            EXPECT_FALSE(pane->PickSurface(x, y, &hit)) << x << ", " << y;
        }
}

/// The row above a pixel has the larger y in the world, however far away both are.
TEST_F(FarMouse, HasAPlaceInTheWorld) {
    pane->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    for (const std::int32_t y : {kMin, kMax}) {
        Float3 point{};
        ASSERT_NE(pane->UnprojectPoint(0, y, 0.5f, &point[0], &point[1], &point[2]), 0);
        EXPECT_TRUE(std::isfinite(point[1]));
        EXPECT_EQ(point[1] > 0, y < 0) << y;
        EXPECT_GT(std::abs(point[1]), 1e6f);
    }
}

}  // namespace
