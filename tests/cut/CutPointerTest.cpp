// A lasso by the real pointer and keyboard in a window, against the same lasso by calls on an off-screen viewer.
#include "cut/CutScene.h"
#include "support/XvfbServer.h"
#include "view/UserInput.h"

// After the others: their macros would replace names in those.
#include <X11/extensions/XTest.h>

#include "support/ShownCursor.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right;

/// A user with the plates of a CutControl.
struct Operator {
    explicit Operator(std::unique_ptr<UserInput> input) : user(std::move(input)), viewer(user->Viewer()) {
        viewer->m_vpMeshes = {MakePlate(41, 4, 2), MakePlate(11, 4.5, -2)};
        LookDown(*viewer);
        viewer->Connect(&host);
        viewer->PerformRefresh();
    }
    void Click(int x, int y) {
        user->MoveTo(x, y);
        user->Press(L);
        user->Release(L);
    }
    void Drag(const LassoCorners& way) {
        user->MoveTo(way[0].x, way[0].y);
        user->Press(L);
        for (std::size_t i = 1; i < way.size(); ++i) user->MoveTo(way[i].x, way[i].y);
        user->Release(L);
    }
    void RightClick(int x, int y) {
        user->MoveTo(x, y);
        user->Press(R);
        user->Release(R);
    }
    /// The mask of the only cut so far.
    std::shared_ptr<const ACAD::CutMask> TheMask() {
        const auto& masks = viewer->m_vpMeshes.at(0)->m_vpCutMasks;
        EXPECT_EQ(masks.size(), 1u);
        return masks.empty() ? std::make_shared<const ACAD::CutMask>() : masks[0];
    }
    const std::unique_ptr<UserInput> user;
    TestControl& viewer;
    CutEvents host;
};

class LassoUnderThePointer : public testing::TestWithParam<SegmentationMode> {
protected:
    /// Both users do the same.
    void Both(const std::function<void(Operator&)>& script) {
        for (Operator* const each : {&pointer, &calls}) script(*each);
    }
    void ExpectTheSameCut() {
        EXPECT_EQ(pointer.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(calls.host.Take(), (EventNames{"mask", "done 2"}));
        ExpectSameMask(*pointer.TheMask(), *calls.TheMask());
        EXPECT_EQ(VertexCounts(*pointer.viewer), VertexCounts(*calls.viewer));
        for (const Operator* const each : {&pointer, &calls}) {
            EXPECT_EQ(each->viewer->m_nInteractionMode, ModeIdle);
            EXPECT_EQ(each->viewer->GetUndoStepCount(), 1);
        }
    }
    Operator pointer{MakePointerInput()}, calls{MakeCallInput()};
};

TEST_P(LassoUnderThePointer, OfDragsAndClicksIsTheSameAsByCalls) {
    Both([](Operator& who) {
        who.viewer->StartSegmentation(GetParam());
        who.Drag({{200, 100}, {215, 150}, {190, 200}, {230, 260}});
        who.Click(300, 330);
        who.Click(421, 300);
        who.Drag({{430, 260}, {400, 215}, {433, 190}, {431, 150}});
        who.user->MoveTo(360, 70);
        who.RightClick(330, 95);
    });
    ExpectTheSameCut();
    const auto mask = pointer.TheMask();
    const bool freehand = IsFreehand(GetParam());
    EXPECT_EQ(mask->m_rcBounds[0], freehand ? 190 : 200) << "only a freehand lasso has the way of a drag";
    EXPECT_TRUE(mask->m_vBits.IsSet(200 * 640 + 320));
    EXPECT_FALSE(mask->m_vBits.IsSet(80 * 640 + 320));
}

TEST_P(LassoUnderThePointer, SurvivesAResizeInTheMiddle) {
    Both([](Operator& who) {
        who.viewer->StartSegmentation(GetParam());
        who.Drag({{200, 100}, {215, 150}, {190, 200}});
        who.viewer.window->Resize(500, 400);
        PumpUntil(*who.viewer, "the frame of the new size",
                  [&] { return who.viewer->m_nWidth == 500 && !who.viewer.window->IsPaintPending(); });
        who.Click(150, 300);
        who.Drag({{330, 290}, {360, 250}, {340, 120}});
        who.RightClick(250, 70);
    });
    ExpectTheSameCut();
    const auto mask = pointer.TheMask();
    EXPECT_EQ(mask->m_nViewport, (std::array<std::int32_t, 4>{0, 0, 500, 400}));
    EXPECT_EQ(mask->m_vBits.m_uCount, 500u * 400u);
    EXPECT_TRUE(mask->m_vBits.IsSet(200 * 500 + 250));
}

TEST_P(LassoUnderThePointer, IsCancelledByEscapeAndDrawnAgain) {
    Both([](Operator& who) {
        who.viewer->StartSegmentation(GetParam());
        who.Click(200, 100);
        who.Drag({{190, 300}, {400, 310}, {410, 200}});
        who.user->Type(KV_ScenePane::kKeyEscape);
        EXPECT_EQ(who.host.Take(), EventNames{"done -1"});
        EXPECT_EQ(who.viewer->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(who.viewer->m_pCutSession, nullptr);
        const Float3 axis = who.viewer->m_fAxisX;
        who.viewer->StartSegmentation(GetParam());
        who.user->HoldShift(true);
        who.user->HoldCtrl(true);
        who.Click(220, 120);
        who.user->Type(KV_ScenePane::kKeyEscape);
        who.user->HoldCtrl(false);
        who.user->HoldShift(false);
        EXPECT_EQ(who.host.Take(), EventNames{"done -1"});
        who.viewer->StartSegmentation(GetParam());
        who.Click(230, 130);
        who.user->Type(KV_ScenePane::kKeySpace);
        EXPECT_EQ(who.viewer->IsAnimationRunning(), 0);
        who.Click(240, 330);
        who.user->Wheel(1);
        who.Click(420, 320);
        EXPECT_EQ(who.viewer->m_fAxisX, axis) << "no input turns the view";
        who.RightClick(410, 110);
    });
    ExpectTheSameCut();
}

TEST_P(LassoUnderThePointer, ThatWasDrawnOverTheEdgeOfTheWindow) {
    Both([](Operator& who) {
        who.viewer->StartSegmentation(GetParam());
        who.Drag({{330, 200}, {700, 210}, {690, 510}, {350, 500}, {320, 400}});
        who.Click(220, 330);
        who.RightClick(225, 190);
    });
    ExpectTheSameCut();
    EXPECT_TRUE(pointer.TheMask()->m_vBits.IsSet(250 * 640 + 235));
}

INSTANTIATE_TEST_SUITE_P(Ways, LassoUnderThePointer, testing::ValuesIn(kAllWays),
                         [](const auto& row) { return std::string(kNamesOfWays[row.param]); });

// ---- a hand that is faster than the frames

/// Moves the pointer to a pixel of a window while the viewer does not look.
void MoveUnseen(Display* display, std::uintptr_t window, int x, int y) {
    Window child = None;
    int left = 0, top = 0;
    XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, &left, &top, &child);
    XTestFakeMotionEvent(display, -1, left + x, top + y, CurrentTime);
    XSync(display, False);
}

TEST(FreehandLasso, HasAllPointsOfADragThatIsFasterThanTheFrames) {
    Operator who(MakePointerInput());
    Display* const display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    who.viewer->StartSegmentation(KV_ScenePane::FreehandInside);
    who.user->MoveTo(200, 100);
    who.user->Press(L);
    ASSERT_NE(who.viewer->m_pCutSession, nullptr);
    const std::vector<LassoPixel>& points = who.viewer->m_pCutSession->m_vPending;
    who.viewer->PerformRefresh();
    ASSERT_TRUE(points.empty());
    for (int i = 1; i <= 20; ++i) MoveUnseen(display, who.viewer->m_pWindow->NativeHandle(), 200 + 5 * i, 100 + 10 * i);
    // No frame is drawn before all moves are handled, so that the points wait.
    who.viewer->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    PumpUntil(*who.viewer, "the last move", [&] { return !points.empty() && points.back() == LassoPixel{300, 300}; });
    who.viewer->BlockPaintEvents(KV_ScenePane::kVariantFalse);
    EXPECT_EQ(points.size(), 20u);
    who.user->Release(L);
    XCloseDisplay(display);
}

// ---- the cursor on the screen

TEST(LassoCursor, IsOnTheScreenDuringASession) {
    Operator who(MakePointerInput());
    Display* const display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    who.user->MoveTo(300, 200);
    const unsigned long usual = ShownCursor(display);
    using Ending = std::function<void(Operator&)>;
    const Ending endings[] = {[](Operator& w) { w.viewer->EndSegmentation(); },
                              [](Operator& w) { w.user->Type(KV_ScenePane::kKeyEscape); },
                              [](Operator& w) {
                                  w.Click(200, 100);
                                  w.Click(250, 300);
                                  w.RightClick(400, 200);
                              }};
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside})
        for (const Ending& end : endings) {
            who.viewer->StartSegmentation(way);
            const unsigned long lasso = ShownCursor(display);
            EXPECT_NE(lasso, usual);
            who.user->MoveTo(310, 210);
            EXPECT_EQ(ShownCursor(display), lasso);
            end(who);
            EXPECT_EQ(ShownCursor(display), usual);
        }
    who.viewer->StartSegmentation(6);
    who.viewer->EndSegmentation();
    EXPECT_NE(ShownCursor(display), usual) << "stays until a session has run";
    XCloseDisplay(display);
}

}  // namespace
