// Clicks that pick and clicks that centre: the double click in every pick mode and scheme, and the single click of the
// delayed scheme.
#include "view/ExpectedView.h"
#include "view/InputHelp.h"

namespace {

// A plate in the plane z = 5 that faces +Z, from (-40, -30) to (20, 30); object 1. Object 0 is hidden.
const Double3 kLow{-40, -30, 5}, kHigh{20, 30, 5};

Mesh& AddPlate(CKV_ScenePaneCtrl& control, float z) {
    return AddMesh(control,
                   {{.x = -40, .y = -30, .z = z, .nz = 1},
                    {.x = 20, .y = -30, .z = z, .nz = 1},
                    {.x = 20, .y = 30, .z = z, .nz = 1},
                    {.x = -40, .y = 30, .z = z, .nz = 1}},
                   {{{0, 1, 2}}, {{0, 2, 3}}});
}

/// The camera looks along -Z with half a unit per pixel; the window's centre shows the world's origin.
struct PlateControl : InputControl {
    explicit PlateControl(const Before& before = {}) {
        AddPlate(*control, 50);
        AddPlate(*control, 5);
        SetAll(before);
    }
    void SetAll(const Before& before) {
        Set(before);
        CKV_ScenePaneCtrl& c = *control;
        c.SetObjectVisibility(0, 0);
        c.m_fSceneSize = 240;  // over 480 pixels
        c.SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
        c.m_nViewMode = KV_ScenePane::ViewFromMinusXZUp;
        window->Forget();
    }
    /// The view that a centring click leads to.
    [[nodiscard]] ExpectedView Centered() const {
        ExpectedView view = ExpectedView::Of(*control);
        view.Fit(kLow, kHigh, 1);
        view.right = {0, -1, 0}, view.up = {0, 0, 1}, view.viewer = {-1, 0, 0};  // ViewFromMinusXZUp
        return view;
    }
};

// 30 pixels right of the centre and 40 above it: (15, 20) on the plate. And a place beside it.
constexpr std::int32_t kOnX = 350, kOnY = 200, kBesideX = 500, kBesideY = 200;

void ExpectPickEvent(const PlateControl& c, std::uint32_t flags) {
    ASSERT_EQ(c.events.events.size(), 1u);
    EXPECT_EQ(c.events.events[0].name, "SelectObjCoords");
    const std::vector<double>& got = c.events.events[0].arguments;
    const double expected[] = {1, 15, 20, 5, static_cast<double>(flags), kOnX, kOnY};
    ASSERT_EQ(got.size(), std::size(expected));
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], 1e-4) << i;
}

bool ReportsObjects(int pickMode) {
    return pickMode == KV_ScenePane::PickModeObjects || pickMode == KV_ScenePane::PickModeObjectsSecond ||
           pickMode == KV_ScenePane::PickModePoints;
}

void SetPickMode(PlateControl& c, int mode) {
    c->SetPickMode(static_cast<std::int16_t>(mode));
    c.events.events.clear();
}

TEST(DoubleClick, PicksOrCentersByThePickMode) {
    PlateControl c;
    for (int pickMode = -1; pickMode <= 6; ++pickMode) {
        for (const bool hits : {true, false}) {
            for (const std::int32_t igd : {0, 1}) {
                SCOPED_TRACE(testing::Message() << "pick mode " << pickMode << ", hits " << hits << ", scheme " << igd);
                c.SetAll({.igd = igd});
                SetPickMode(c, pickMode);
                const bool reports = hits && ReportsObjects(pickMode),
                           centers = !reports && pickMode != KV_ScenePane::PickModePoints;
                const ExpectedView view = centers ? c.Centered() : ExpectedView::Of(*c);
                c->OnDoubleClick(kLeft | kShift, hits ? kOnX : kBesideX, kOnY);
                ExpectView(*c, view);
                if (reports)
                    ExpectPickEvent(c, kLeft | kShift);
                else
                    EXPECT_TRUE(c.events.events.empty());
                EXPECT_EQ(c->m_bPickPointValid, hits);
                EXPECT_EQ(c.window->refreshes, centers ? 3 : 2) << "after the pick, by the view mode, at the end";
                EXPECT_EQ(c.window->invalidates, centers ? 1 : 0) << "the fit";
                EXPECT_EQ(c->m_bAnimationRunning, 0);
                EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
                EXPECT_EQ(c->m_nSavedInteractionMode, kNoMode);
                EXPECT_FALSE(c.window->HasCapture());
                EXPECT_TRUE(c.LastPointUnchanged());
                EXPECT_EQ(c->m_bMoving, 0);
            }
        }
    }
}

TEST(DoubleClick, WithFlippedButtonsOnlyRepaints) {
    PlateControl c;
    for (const int pickMode :
         {KV_ScenePane::PickModeOff, KV_ScenePane::PickModeObjects, KV_ScenePane::PickModePoints}) {
        c.SetAll({.flip = -1});
        SetPickMode(c, pickMode);
        const ExpectedView view = ExpectedView::Of(*c);
        c->OnDoubleClick(kLeft, kOnX, kOnY);
        ExpectView(*c, view);
        EXPECT_TRUE(c.events.events.empty());
        EXPECT_EQ(c->m_bPickPointValid, 0);
        EXPECT_EQ(c.window->refreshes, 1);
        EXPECT_EQ(c.RepaintRequests(), 1);
        EXPECT_EQ(c->m_bAnimationRunning, 0);
    }
}

TEST(DoubleClick, ActsInEveryInteractionMode) {
    PlateControl c;
    for (const std::int32_t mode : kAllModes) {
        SCOPED_TRACE(mode);
        c.SetAll({.mode = mode});
        const ExpectedView view = c.Centered();
        c->OnDoubleClick(kLeft, kBesideX, kBesideY);
        ExpectView(*c, view);
        EXPECT_EQ(c->m_nInteractionMode, mode);
    }
}

TEST(DoubleClick, WithCtrlAndAVisiblePlaneDoesNotCenterTheView) {
    PlateControl c({.plane = true});
    const ExpectedView view = ExpectedView::Of(*c);
    c->InitializeKVReg();  // the plane is placed at the data instead
    c->OnDoubleClick(kLeft | kCtrl, kBesideX, kBesideY);
    c->FinalizeKVReg();
    ExpectView(*c, view);
    EXPECT_EQ(c.window->refreshes, 2);
    EXPECT_TRUE(c->m_clipHeight.found);
    c->m_bClipPlaneVisible = 0;
    const ExpectedView centered = c.Centered();
    c->OnDoubleClick(kLeft | kCtrl, kBesideX, kBesideY);
    ExpectView(*c, centered);
}

TEST(DoubleClick, WithCtrlPlacesAVisiblePlaneInEveryPickModeExceptThatOfPoints) {
    PlateControl c;
    c->InitializeKVReg();
    for (int pickMode = -1; pickMode <= 6; ++pickMode) {
        SCOPED_TRACE(pickMode);
        c.SetAll({.plane = true});
        SetPickMode(c, pickMode);
        c->m_clipHeight = {};
        c->m_clipPlane.SetCenter({100, 200, 300});
        const ExpectedView view = ExpectedView::Of(*c);
        c->OnDoubleClick(kLeft | kCtrl, kBesideX, kBesideY);
        ExpectView(*c, view);
        const bool places = pickMode != KV_ScenePane::PickModePoints;
        EXPECT_EQ(c->m_clipHeight.found, places);
        EXPECT_EQ(c->m_clipPlane.GetCenter() == (Double3{100, 200, 300}), !places);
    }
    c->FinalizeKVReg();
}

TEST(DoubleClick, InNeedlePickingModeDoesNotCenterTheView) {
    PlateControl c;
    c->m_bNeedlePickingMode = 1;
    const ExpectedView view = ExpectedView::Of(*c);
    c->OnDoubleClick(kLeft, kBesideX, kBesideY);
    ExpectView(*c, view);
    EXPECT_EQ(c.window->refreshes, 2);
}

TEST(DoubleClick, AfterAViewModeOutsideTheListFitsAndRotatesNothing) {
    PlateControl c;
    c->SetViewMode(9);
    EXPECT_EQ(c->m_nViewMode, 9);
    ExpectedView view = ExpectedView::Of(*c);
    view.Fit(kLow, kHigh, 1);
    c->OnDoubleClick(kLeft, kBesideX, kBesideY);
    ExpectView(*c, view);
    EXPECT_EQ(c->m_nViewMode, 9);
}

TEST(DoubleClick, BeforeAnyViewModeFitsAndRotatesNothing) {
    OffscreenControl c;
    AddPlate(*c, 5);
    ASSERT_TRUE(c->SetViewParams(0.6f, 0.8f, 0, 0, 0, 1, 1, 2, 3, 1, 0));
    ExpectedView view = ExpectedView::Of(*c);
    view.Fit(kLow, kHigh, 1);
    c->OnDoubleClick(kLeft, 5, 5);
    ExpectView(*c, view);
}

TEST(DoubleClick, WithTheAxesShownReturnsToTheViewFromPlusZ) {
    PlateControl c;
    c->ShowAxes(1);
    c->SetViewMode(KV_ScenePane::ViewFromMinusXZUp);
    ASSERT_EQ(c->m_nViewMode, KV_ScenePane::ViewFromPlusZYUp) << "the frame of the view mode drew the axes";
    ExpectedView view = ExpectedView::Of(*c);
    view.Fit(kLow, kHigh, 1);
    view.right = {1, 0, 0}, view.up = {0, 1, 0}, view.viewer = {0, 0, 1};
    c->OnDoubleClick(kLeft, 5, 5);
    ExpectView(*c, view);
}

TEST(DoubleClick, PicksThroughAHiddenObject) {
    PlateControl c;
    SetPickMode(c, KV_ScenePane::PickModeObjects);
    c->OnDoubleClick(kLeft, kOnX, kOnY);
    ExpectPickEvent(c, kLeft);
    c.events.events.clear();
    c->SetObjectVisibility(0, 1);
    c->OnDoubleClick(kLeft, kOnX, kOnY);
    ASSERT_EQ(c.events.events.size(), 1u);
    EXPECT_EQ(c.events.events[0].arguments[0], 0);
    EXPECT_NEAR(c.events.events[0].arguments[3], 50, 1e-4);
}

// ---- the single click of the delayed scheme

TEST(LeftClickInTheDelayedScheme, PicksOnlyWithoutTheMovedBit) {
    PlateControl c;
    for (int pickMode = 0; pickMode <= 5; ++pickMode) {
        for (const std::uint32_t moved : {0u, kMouseMoved}) {
            for (const bool hits : {true, false}) {
                SCOPED_TRACE(testing::Message()
                             << "pick mode " << pickMode << ", moved " << moved << ", hits " << hits);
                c.SetAll({.igd = 1});
                SetPickMode(c, pickMode);
                const bool asks = ReportsObjects(pickMode) && moved == 0, reports = asks && hits;
                const std::int32_t x = hits ? kOnX : kBesideX;
                const ExpectedView view = ExpectedView::Of(*c);
                c->OnLeftDown(kLeft | moved, x, kOnY);
                if (reports)
                    ExpectPickEvent(c, kLeft);
                else
                    EXPECT_TRUE(c.events.events.empty());
                EXPECT_EQ(c->m_bPickPointValid, reports);
                EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
                EXPECT_EQ(c->m_nSavedInteractionMode, 0);
                EXPECT_EQ(c.window->HasCapture(), !reports) << "a pick begins no drag";
                EXPECT_EQ(c->m_bMoving, reports ? 0 : 1);
                EXPECT_EQ(c->m_nLastMouseX, reports ? kNoX : x);
                EXPECT_EQ(c.window->refreshes, reports ? 1 : 0);
                EXPECT_EQ(c.RepaintRequests(), reports ? 1 : 0);
                ExpectView(*c, view);
            }
        }
    }
}

TEST(LeftClickInTheDelayedScheme, ReportsItsFlagsUnchanged) {
    PlateControl c({.igd = 1, .plane = true});
    SetPickMode(c, KV_ScenePane::PickModePoints);
    c->OnLeftDown(kLeft | kCtrl | kMiddle, kOnX, kOnY);
    ExpectPickEvent(c, kLeft | kCtrl | kMiddle);
}

TEST(LeftClickInTheDelayedScheme, PansInsteadOfPickingWithShiftOrRight) {
    PlateControl c;
    for (const std::uint32_t held : {kShift, kRight}) {
        c.SetAll({.igd = 1});
        SetPickMode(c, KV_ScenePane::PickModeObjects);
        c->OnLeftDown(kLeft | held, kOnX, kOnY);
        EXPECT_TRUE(c.events.events.empty());
        EXPECT_EQ(c->m_nInteractionMode, ModePan);
        EXPECT_TRUE(c.window->HasCapture());
    }
}

TEST(LeftClickInTheDirectSchemes, NeverPicks) {
    PlateControl c;
    for (const std::int32_t flip : {0, 1}) {
        for (const int pickMode :
             {KV_ScenePane::PickModeObjects, KV_ScenePane::PickModeObjectsSecond, KV_ScenePane::PickModePoints}) {
            c.SetAll({.flip = flip});
            SetPickMode(c, pickMode);
            c->OnLeftDown(kLeft, kOnX, kOnY);
            c->OnLeftUp(0, kOnX, kOnY);
            EXPECT_TRUE(c.events.events.empty());
            EXPECT_EQ(c->m_bPickPointValid, 0);
        }
    }
}

}  // namespace
