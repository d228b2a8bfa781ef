// Which object is under a pixel. The camera looks down the z axis, 48 pixels per unit, so that pixel (x, y) shows
// ((x - 320) / 48, (240 - y) / 48); the line of a pick has its origin at z = 52.
#include <gtest/gtest.h>

#include "render/SceneFixture.h"
#include "support/ControlFixture.h"
#include "support/GlNow.h"

namespace {

using Event = EventsRecorder::Event;

class Picking : public SceneTest {
protected:
    Picking() : SceneTest(KV_ScenePane::WindowRequest::Kind::OffScreen, 640, 480) {
        Frame();
        pane.events.events.clear();
        pane.window->Forget();
    }
    /// The index under a pixel; the point in `hit`.
    std::int32_t PickAt(int x, int y) { return pane->PickObjectAt(x, y, &hit); }
    void ExpectHit(const Vec3& point) {
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(hit[i], point[i], 2e-5) << i;
            EXPECT_EQ(pane->m_fPickPoint[i], hit[i]) << i;
        }
        EXPECT_EQ(pane->m_bPickPointValid, 1);
    }

    static constexpr Float3 kUntouched{7, 8, 9};
    Float3 hit = kUntouched;
};

TEST_F(Picking, FindsTheObjectAndThePointUnderAPixel) {
    Add({.center = {-3, 0, 0}});
    Add({.center = {3, 0, 1.5}});
    EXPECT_EQ(PickAt(320 + 96, 240 - 36), 1);
    ExpectHit({2, 0.75, 1.5});
    EXPECT_EQ(PickAt(320 - 168, 240 + 60), 0);
    ExpectHit({-3.5, -1.25, 0});
}

TEST_F(Picking, FindsThePointOnASlantedTriangle) {
    AddMesh(*pane, {{-4, -4, -4, 0, 0, 1}, {4, -4, 4, 0, 0, 1}, {-4, 4, -4, 0, 0, 1}}, {Triangle{{0, 1, 2}}});  // z = x
    EXPECT_EQ(PickAt(320 - 48, 240 - 24), 0);
    ExpectHit({-1, 0.5, -1});
}

TEST_F(Picking, FindsBackFaces) {
    Add({.turned = true});
    EXPECT_EQ(PickAt(320, 240), 0);
}

TEST_F(Picking, ChangesNothingWhenTheBackgroundIsHit) {
    Add({});
    EXPECT_EQ(PickAt(320 + 100, 240), -1);  // the edge is at 96
    EXPECT_EQ(hit, kUntouched);
    EXPECT_EQ(pane->m_bPickPointValid, 0);
    EXPECT_EQ(PickAt(320 + 90, 240), 0);
    const Float3 last = hit;
    EXPECT_EQ(PickAt(320, 10), -1);
    EXPECT_EQ(hit, last);
    EXPECT_EQ(pane->m_fPickPoint, last);
    EXPECT_EQ(pane->m_bPickPointValid, 1);
}

TEST_F(Picking, FindsNothingInAnEmptyScene) { EXPECT_EQ(PickAt(320, 240), -1); }

TEST_F(Picking, FindsTheObjectBehindAHiddenOne) {
    Add({.center = {0, 0, 3}}).m_iVisible = 0;
    Add({});
    EXPECT_EQ(PickAt(320, 230), 1);
    ExpectHit({0, 10.0 / 48, 0});
    pane->m_vpMeshes[1]->m_iVisible = 0;
    EXPECT_EQ(PickAt(320, 230), -1);
}

TEST_F(Picking, NeverFindsAPointSet) {
    AddMesh(*pane, {{0, 0, 5, 0, 0, 1}, {1, 0, 5, 0, 0, 1}, {0, 1, 5, 0, 0, 1}}, {});
    EXPECT_EQ(PickAt(320, 240), -1);
    Add({});
    EXPECT_EQ(PickAt(320, 240), 1);
}

TEST_F(Picking, FindsTheNearestObjectInAnyListOrder) {
    Add({.center = {0, 0, -2}});
    Add({.center = {0, 0, 4}});
    Add({.center = {0, 0, 1}});
    EXPECT_EQ(PickAt(320, 240), 1);
    ExpectHit({0, 0, 4});
}

TEST_F(Picking, FindsTheFirstOfTwoAtTheSameDistance) {
    Add({.center = {0, 0, 1}});
    Add({.center = {0, 0, 1}});
    EXPECT_EQ(PickAt(320, 240), 0);
    pane->m_vpMeshes[0]->m_iVisible = 0;
    EXPECT_EQ(PickAt(320, 240), 1);
}

TEST_F(Picking, CountsAHitBehindTheOriginOfTheLineByItsDistance) {
    Add({.center = {0, 0, 42}});
    Add({.center = {0, 0, 60}});  // 8 from the origin of the line, on its other side; the other object is 10 away
    EXPECT_EQ(PickAt(320, 240), 1);
    pane->m_vpMeshes.pop_back();
    Add({.center = {0, 0, 64}});  // 12 away on the other side
    EXPECT_EQ(PickAt(320, 240), 0);
}

TEST_F(Picking, SkipsTheTrianglesOfAnObjectWhoseBoxTheLineMisses) {
    Mesh& broken = Add({.center = {4, 0, 0}, .half = 1});
    broken.m_vTriangles[0].v[0] = 1000;  // no such vertex: testing the triangle throws
    EXPECT_EQ(PickAt(320, 240), -1);
    EXPECT_THROW(PickAt(320 + 192, 240), std::out_of_range);
}

TEST_F(Picking, UsesTheTransformOfAnObject) {
    Add({.half = 1});
    EXPECT_EQ(pane->SetTrafoOfScan(0, 1, 0, 0, 3, 0, 1, 0, -2, 0, 0, 1, 0.5f, 0, 0, 0, 1), 0);
    EXPECT_EQ(PickAt(320, 240), -1);
    EXPECT_EQ(PickAt(320 + 144, 240 + 96), 0);
    ExpectHit({3, -2, 0.5});
}

TEST_F(Picking, UsesTheCurrentView) {
    Add({.center = {0, 0, 2}});
    AddMesh(*pane, {{2, -1, -1, 1, 0, 0}, {2, 3, -1, 1, 0, 0}, {2, -1, 3, 1, 0, 0}}, {Triangle{{0, 1, 2}}});  // x = 2
    pane->SetViewParams(0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0);  // from x, y to the right, z up
    EXPECT_EQ(PickAt(320 + 24, 240 - 48), 1);
    ExpectHit({2, 0.5, 1});
    EXPECT_EQ(PickAt(320, 240 + 72), -1);
    pane->SetViewParams(1, 0, 0, 0, 1, 0, 1, 0, 0, 2, 0);  // down z again, twice as near, the centre at x = 1
    EXPECT_EQ(PickAt(320 + 24, 240), 0);
    ExpectHit({1.25, 0, 2});
}

TEST_F(Picking, UsesItsOwnContextWhicheverIsCurrent) {
    Add({.center = {2, 0, 0}});
    OffscreenControl other(200, 200);
    other->CenterView();
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(PickAt(320 + 96, 240 + 12), 0);
    ExpectHit({2, -0.25, 0});
}

TEST_F(Picking, RepaintsNothingAndFiresNothing) {
    Add({});
    pane->SetPickMode(KV_ScenePane::PickModeObjects);
    pane.events.events.clear();
    EXPECT_EQ(PickAt(320, 240), 0);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
    EXPECT_TRUE(pane.events.events.empty());
}

TEST(PickingWithoutAPicture, FindsNothing) {
    NoPictureControl control;
    AddMesh(*control, {{-1, -1, 0, 0, 0, 1}, {1, -1, 0, 0, 0, 1}, {0, 1, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
    Float3 hit{7, 8, 9};
    EXPECT_EQ(control->PickObjectAt(0, 0, &hit), -1);
    EXPECT_EQ(hit, (Float3{7, 8, 9}));
}

// ---- the pick modes

TEST_F(Picking, ModeIsStoredAndReadBackInSixteenBits) {
    EXPECT_EQ(pane->GetPickMode(), KV_ScenePane::PickModeOff);
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{1, 2, 3, 4, 5, 77, -3}) {
        pane->SetPickMode(mode);
        EXPECT_EQ(pane->m_nPickMode, mode);
        EXPECT_EQ(pane->GetPickMode(), mode);
    }
    pane->m_nPickMode = 0x30005;
    EXPECT_EQ(pane->GetPickMode(), 5);
}

TEST_F(Picking, SettingTheModeAgainDropsThePickAndTheSpheres) {
    Add({});
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    ASSERT_EQ(PickAt(320, 240), 0);
    pane->m_vPickPointSpheres.resize(3);
    pane.events.events.clear();
    pane->SetPickMode(KV_ScenePane::PickModePoints);  // the mode is already set
    EXPECT_EQ(pane->m_bPickPointValid, 0);
    EXPECT_TRUE(pane->m_vPickPointSpheres.empty());
    EXPECT_EQ(pane.events.events, (std::vector<Event>{{"PickPointCountChanged", {0}}}));
    pane->SetPickMode(KV_ScenePane::PickModeOff);  // also reported for an empty list
    EXPECT_EQ(pane.events.events.size(), 2u);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

TEST(PickMode, CanBeSetWithoutConnectedEvents) {
    NoPictureControl control;
    control->Connect(nullptr);
    control->m_vPickPointSpheres.resize(1);
    control->SetPickMode(KV_ScenePane::PickModeObjects);
    EXPECT_EQ(control->GetPickMode(), KV_ScenePane::PickModeObjects);
    EXPECT_TRUE(control->m_vPickPointSpheres.empty());
}

// ---- the view direction

TEST_F(Picking, ViewDirectionIsReportedInTheCrossModeOnly) {
    Add({.center = {2, 2, 1.5}, .half = 2});  // a corner in the window's centre
    pane->m_bAnimationRunning = 1;
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{0, 2, 3, 4, 5}) {
        pane->SetPickMode(mode);
        pane.events.events.clear();
        pane->OnRightDoubleClick(0, 5, 5);
        EXPECT_TRUE(pane.events.events.empty()) << mode;
        EXPECT_EQ(pane->m_bAnimationRunning, 1);
    }
    pane->SetPickMode(KV_ScenePane::PickModeCross);
    pane.events.events.clear();
    pane->OnRightDoubleClick(0, 5, 5);
    EXPECT_EQ(pane->m_bAnimationRunning, 0);
    ASSERT_EQ(pane.events.events.size(), 1u);
    const Event& event = pane.events.events[0];
    EXPECT_EQ(event.name, "SelectViewDirection");
    const double expected[] = {0, 0, 1.5, 0, 0, 1};
    ASSERT_EQ(event.arguments.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(event.arguments[i], expected[i], 1e-5) << i;
}

TEST_F(Picking, ViewDirectionOfAnEmptySceneIsNotReported) {
    pane->SetPickMode(KV_ScenePane::PickModeCross);
    pane->m_bAnimationRunning = 1;
    pane.events.events.clear();
    pane->OnRightDoubleClick(0, 5, 5);
    EXPECT_TRUE(pane.events.events.empty());
    EXPECT_EQ(pane->m_bAnimationRunning, 0);
}

// The dispatcher has a slot for a double click of the right button that no input reaches, in either scheme.
TEST_F(Picking, ViewDirectionStaysSilentForAllMouseInput) {
    using Kind = KV_ScenePane::MouseInput::Kind;
    Add({.center = {2, 2, 1.5}, .half = 2});
    pane->SetPickMode(KV_ScenePane::PickModeCross);
    pane.events.events.clear();
    for (const std::int16_t scheme : {std::int16_t{0}, std::int16_t{1}}) {
        pane->SetIGDRotation(scheme);
        for (int i = 0; i < 3; ++i)
            for (const Kind kind : {Kind::RightDown, Kind::RightUp, Kind::RightDown, Kind::RightUp, Kind::DoubleClick,
                                    Kind::LeftUp, Kind::MiddleDown, Kind::MiddleUp, Kind::Move, Kind::Wheel}) {
                const std::uint32_t flags = kind == Kind::RightDown ? KV_ScenePane::kMouseRight : 0;
                pane->SendMouse({kind, flags, 320, 240, 0});
                pane->OnPrivateMessage(1147);  // the delayed scheme delivers what waits
                pane->ProcessEvents();
            }
    }
    for (const Event& event : pane.events.events) EXPECT_NE(event.name, "SelectViewDirection");
}

}  // namespace
