// The surface point under a pixel that a host asks for, and picks while window and view change. The camera looks down
// the z axis, 48 pixels per unit, so that pixel (x, y) shows ((x - 320) / 48, (240 - y) / 48); the line of a pick has
// its origin at z = 52.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "render/SceneFixture.h"
#include "support/BareContext.h"
#include "support/ControlFixture.h"
// last, for its macros
#include <X11/Xlib.h>

namespace {

using KV_ScenePane::SurfacePoint;

/// Compares all that a pick returns.
void ExpectSame(const SurfacePoint& a, const SurfacePoint& b) {
    EXPECT_EQ(a.object, b.object);
    EXPECT_EQ(a.triangle, b.triangle);
    EXPECT_EQ(a.distance, b.distance);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(a.point[i], b.point[i]) << i;
}

const SurfacePoint kUntouched{7, 8, {9, 10, 11}, 12};

class PickSurface : public SceneTest {
protected:
    PickSurface() : SceneTest(KV_ScenePane::WindowRequest::Kind::OffScreen, 640, 480) {
        Frame();
        pane.events.events.clear();
        pane.window->Forget();
    }
    bool PickAt(int x, int y) { return pane->PickSurface(x, y, &hit); }
    void ExpectHit(int object, int triangle, const Vec3& point) {
        EXPECT_EQ(hit.object, object);
        EXPECT_EQ(hit.triangle, triangle);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(hit.point[i], point[i], 2e-5) << i;
        EXPECT_NEAR(hit.distance, std::abs(52 - point[2]), 2e-5);
    }

    SurfacePoint hit = kUntouched;
};

TEST_F(PickSurface, ReturnsObjectTrianglePointAndDistance) {
    Add({.center = {-3, 0, 0}});
    Add({.center = {3, 0, 1.5}});
    EXPECT_TRUE(PickAt(320 + 192, 240 + 36));
    ExpectHit(1, 0, {4, -0.75, 1.5});
    EXPECT_TRUE(PickAt(320 + 96, 240 - 36));
    ExpectHit(1, 1, {2, 0.75, 1.5});
    EXPECT_TRUE(PickAt(320 - 168, 240 + 60));
    ExpectHit(0, 0, {-3.5, -1.25, 0});
}

TEST_F(PickSurface, CountsDistancesBehindTheOriginOfTheLineAsPositive) {
    Add({.center = {0, 0, 60}});
    EXPECT_TRUE(PickAt(320, 230));
    ExpectHit(0, 1, {0, 10.0 / 48, 60});
    EXPECT_NEAR(hit.distance, 8, 2e-5);
}

TEST_F(PickSurface, LeavesItsResultUntouchedWithoutAHit) {
    EXPECT_FALSE(PickAt(320, 240));
    Add({}).m_iVisible = 0;
    AddMesh(*pane, {{0, 0, 5, 0, 0, 1}, {1, 0, 5, 0, 0, 1}, {0, 1, 5, 0, 0, 1}}, {});  // a point set
    EXPECT_FALSE(PickAt(320, 240));
    Add({});
    EXPECT_FALSE(PickAt(320 + 100, 240));  // the edge is at 96
    ExpectSame(hit, kUntouched);
}

TEST_F(PickSurface, ChangesNoStateAndFiresNothing) {
    Add({});
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    pane->m_fPickPoint = {1, 2, 3};
    pane->m_bAnimationRunning = 1;
    pane.events.events.clear();
    EXPECT_TRUE(PickAt(320, 240));
    EXPECT_EQ(pane->m_bPickPointValid, 0) << "the spheres stay hidden";
    EXPECT_EQ(pane->m_fPickPoint, (Float3{1, 2, 3}));
    EXPECT_EQ(pane->m_bAnimationRunning, 1);
    EXPECT_TRUE(pane.events.events.empty());
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
    EXPECT_EQ(pane.window->swaps, 0);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(PickSurface, FindsTheFirstOfTwoObjectsAtTheSameDistance) {
    Add({.center = {0, 0, 1}});
    Add({.center = {0, 0, 1}});
    EXPECT_TRUE(PickAt(320, 230));
    EXPECT_EQ(hit.object, 0);
    pane->m_vpMeshes[0]->m_iVisible = 0;
    EXPECT_TRUE(PickAt(320, 230));
    EXPECT_EQ(hit.object, 1);
}

TEST_F(PickSurface, SkipsTrianglesThatAreNotFiniteOrHaveNoArea) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();
    AddMesh(*pane,
            {{-2, -2, 0, 0, 0, 1},
             {2, -2, 0, 0, 0, 1},
             {2, 2, 0, 0, 0, 1},
             {0, 3, nan, 0, 0, 1},
             {0, 0, infinity, 0, 0, 1},
             {-2, -2, 3, 0, 0, 1},
             {2, 2, 3, 0, 0, 1},
             {0, 0, 3, 0, 0, 1}},
            {{{0, 1, 3}}, {{0, 1, 4}}, {{4, 4, 4}}, {{5, 6, 7}}, {{5, 5, 6}}, {{0, 1, 2}}, {{0, 3, 2}}});
    EXPECT_TRUE(PickAt(320 + 24, 240 + 24));
    ExpectHit(0, 5, {0.5, -0.5, 0});
    EXPECT_FALSE(PickAt(320 - 24, 240 - 24)) << "the other half has a corner that is not a number";
    EXPECT_TRUE(PickAt(320, 240)) << "on the line through the triangle without area";
    ExpectHit(0, 5, {0, 0, 0});
}

// ---- between a change and the next frame

TEST_F(PickSurface, FollowsAChangedViewBeforeTheNextFrame) {
    Add({.center = {1, 0, 2}, .half = 1});
    ASSERT_TRUE(PickAt(320 + 40, 240));
    pane->SetViewParams(1, 0, 0, 0, 1, 0, 1, 0, 0, 2, 0);  // twice as near, the centre at x = 1
    EXPECT_TRUE(PickAt(320 - 90, 240 + 10));
    ExpectHit(0, 1, {1 - 90.0 / 96, -10.0 / 96, 2});
    EXPECT_FALSE(PickAt(320 - 100, 240 + 10));
    EXPECT_EQ(pane.window->refreshes, 0);
}

TEST_F(PickSurface, FollowsANewSizeBeforeTheNextFrame) {
    Add({});
    pane->SetSize(320, 240);
    EXPECT_EQ(pane.window->refreshes, 0);
    EXPECT_TRUE(PickAt(160 + 24, 120 + 12));  // 24 pixels per unit now
    ExpectHit(0, 0, {1, -0.5, 0});
    EXPECT_FALSE(PickAt(320, 240));
}

TEST_F(PickSurface, KeepsTheViewportOfAWindowThatLostItsHeight) {
    Add({});
    ASSERT_TRUE(PickAt(320, 250));
    const SurfacePoint before = hit;
    pane->SetSize(640, 0);
    hit = kUntouched;
    EXPECT_FALSE(PickAt(320, 250)) << "rows count from the upper edge, which is at the lower one now";
    ExpectSame(hit, kUntouched);
    EXPECT_TRUE(PickAt(320, 250 - 480));
    ExpectSame(hit, before);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    pane->SetSize(640, 480);
    EXPECT_TRUE(PickAt(320, 250));
    ExpectSame(hit, before);
}

TEST_F(PickSurface, FindsNothingInAWindowWithoutWidth) {
    Add({});
    pane->SetSize(0, 480);
    for (const int x : {-1, 0, 1, 320}) EXPECT_FALSE(PickAt(x, 240)) << x;
    Float3 point{};
    EXPECT_EQ(pane->PickObjectAt(0, 240, &point), -1);
    EXPECT_FALSE(pane->FindViewAxisHit(pane->m_fAxisZ).has_value());
    ExpectSame(hit, kUntouched);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(PickSurface, FindsNothingInAViewWithoutExtent) {
    Add({});
    pane->m_fSceneSize = 0;
    pane->SetupViewMatrices();
    EXPECT_FALSE(PickAt(320, 240));
    ExpectSame(hit, kUntouched);
}

TEST_F(PickSurface, WorksInANewContext) {
    ASSERT_NE(pane->RecreateOpenglContext(3, 3, 0), 0);  // removes the objects and resets the view
    EXPECT_FALSE(PickAt(320, 240));
    Add({});
    Look(640, 480);
    EXPECT_TRUE(PickAt(320 + 24, 240 + 12));
    ExpectHit(0, 0, {0.5, -0.25, 0});
}

TEST_F(PickSurface, FindsNothingWithoutAWindow) {
    Add({});
    pane.window->Destroy();
    EXPECT_FALSE(PickAt(320, 240));
    ExpectSame(hit, kUntouched);
}

TEST(PickSurfaceWithoutAPicture, FindsNothing) {
    NoPictureControl control;
    AddMesh(*control, {{-1, -1, 0, 0, 0, 1}, {1, -1, 0, 0, 0, 1}, {0, 1, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
    SurfacePoint hit = kUntouched;
    EXPECT_FALSE(control->PickSurface(0, 0, &hit));
    ExpectSame(hit, kUntouched);
}

TEST(PickSurfaceOfAMinimisedWindow, IsThatOfTheShownOne) {
    Prepared(KV_ScenePane::WindowRequest::Kind::TopLevel);
    TestControl control(KV_ScenePane::WindowRequest::Kind::TopLevel, 120, 90);
    AddMesh(*control, {{-1, -1, 0, 0, 0, 1}, {1, -1, 0, 0, 0, 1}, {0, 1, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
    control->CenterView();
    control->PerformRefresh();
    SurfacePoint shown = kUntouched, minimised = kUntouched;
    ASSERT_TRUE(control->PickSurface(58, 47, &shown));
    Display* const display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    XUnmapWindow(display, control->NativeWindow());
    XSync(display, False);
    control->ProcessEvents();
    EXPECT_TRUE(control->PickSurface(58, 47, &minimised));
    ExpectSame(minimised, shown);
    XCloseDisplay(display);
}

// ---- from the outside

TEST(PickSurfaceOfAHost, FindsAnImportedMesh) {
    Prepared(KV_ScenePane::WindowRequest::Kind::OffScreen);
    KV_ScenePane::WindowRequest request;
    request.width = 200, request.height = 100;
    std::string reason;
    const auto viewer = KV_ScenePane::CreateScenePane(request, &reason);
    ASSERT_NE(viewer, nullptr) << reason;
    const float corners[] = {0, 0, 1, 4, 0, 1, 4, 4, 1, 0, 4, 1};
    const std::int32_t triangles[] = {0, 1, 2, 0, 2, 3};
    viewer->Methods().ImportMeshFromMemory(4, 2, corners, triangles);
    viewer->Methods().ImportMeshFromMemory(4, 2, corners, triangles);
    ASSERT_EQ(viewer->Methods().GetNumObjects(), 2);
    viewer->Methods().SetObjectVisibility(0, 0);
    viewer->Methods().CenterView();
    SurfacePoint hit = kUntouched;
    EXPECT_TRUE(viewer->PickSurface(100 + 10, 50, &hit));  // no frame was drawn yet
    EXPECT_EQ(hit.object, 1);
    EXPECT_EQ(hit.triangle, 0);
    EXPECT_GT(hit.point[0], 2);
    EXPECT_NEAR(hit.point[1], 2, 1e-4);
    EXPECT_NEAR(hit.point[2], 1, 1e-4);
    EXPECT_FALSE(viewer->PickSurface(1, 1, &hit));
    EXPECT_EQ(hit.object, 1);
}

// ---- several controls on one thread

constexpr int kBallX = 45, kBallY = 30;  ///< pixel of the lower handle of the clip plane, y from the bottom

/// What the operations of a control return that read matrices, viewport or pixels.
struct Operations {
    explicit Operations(CKV_ScenePaneCtrl& control) : m_control(control) {}

    /// All numbers of one operation after the other.
    std::vector<double> All() {
        std::vector<double> all;
        for (const auto& one : m_operations) {
            prepare();
            for (const double value : one(m_control)) all.push_back(value);
        }
        return all;
    }
    /// Called before each operation.
    std::function<void()> prepare = [] {};

private:
    using Operation = std::function<std::vector<double>(CKV_ScenePaneCtrl&)>;
    CKV_ScenePaneCtrl& m_control;
    const std::vector<Operation> m_operations = {
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            Float3 p{};
            const std::int32_t object = c.PickObjectAt(c.m_nWidth / 2 + 3, c.m_nHeight / 2 + 5, &p);
            return {static_cast<double>(object), p[0], p[1], p[2]};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            SurfacePoint p;
            c.PickSurface(c.m_nWidth / 2 - 4, c.m_nHeight / 2 - 2, &p);
            return {static_cast<double>(p.object), p.point[0], p.point[1], p.point[2], p.distance};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            const auto p = c.FindViewAxisHit(c.m_fAxisZ).value_or(Float3{});
            return {p[0], p[1], p[2]};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            float p[6] = {};
            const auto found = c.GetViewDirection(p, p + 1, p + 2, p + 3, p + 4, p + 5);
            return {static_cast<double>(found), p[0], p[1], p[2], p[3], p[4], p[5]};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            std::int32_t x = 0, y = 0;
            float depth = 0;
            c.ProjectPointWithDepth(1, 2, 3, &x, &y, &depth);
            return {static_cast<double>(x), static_cast<double>(y), depth};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            double x = 0, y = 0;
            c.ProjectPointDouble(1, 2, 3, &x, &y);
            return {x, y};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            float p[3] = {};
            const int status = c.UnprojectPoint(7, 9, 0.3f, p, p + 1, p + 2);
            return {static_cast<double>(status), p[0], p[1], p[2]};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            RenderObject* const objects[] = {&c.m_clipPlane};
            c.PickRenderObjectsAt(objects, kBallX, kBallY);
            return {c.m_clipPlane.IsPicked() ? 1.0 : 0.0};
        },
        [](CKV_ScenePaneCtrl& c) -> std::vector<double> {
            c.HoverOverPlane(0, kBallX, c.m_nHeight - 1 - kBallY);
            return {c.m_clipPlane.IsPicked() ? 1.0 : 0.0};
        },
    };
};

struct ControlOfTwo : OffscreenControl {
    ControlOfTwo(int width, int height, float size) : OffscreenControl(width, height) {
        AddMesh(*control, {{-size, -size, 1, 0, 0, 1}, {size, -size, 2, 0, 0, 1}, {0, size, 3, 0, 0, 1}},
                {Triangle{{0, 1, 2}}});
        control->m_bClipPlaneVisible = 1;
        control->CenterView();
        float x = 0, y = 0, z = 0;
        EXPECT_NE(control->UnprojectPoint(kBallX, height - kBallY, 0.5f, &x, &y, &z), 0);
        control->m_clipPlane.SetRadiusFromExtent(size);
        control->m_clipPlane.SetCenter({x, y + size, 0});  // the ball is in the middle of its lower edge
        control->PerformRefresh();
    }
};

TEST(PicksAndProjections, DoNotDependOnTheContextThatIsCurrent) {
    ControlOfTwo first(200, 100, 5), second(90, 130, 80);
    BareContext foreign;
    Operations ofFirst(*first), ofSecond(*second);
    // Each with its own context current all the time, in a process with nothing else.
    ASSERT_TRUE(first->MakeContextCurrent());
    const std::vector<double> firstAlone = ofFirst.All();
    ASSERT_TRUE(second->MakeContextCurrent());
    const std::vector<double> secondAlone = ofSecond.All();
    EXPECT_NE(firstAlone, secondAlone);
    EXPECT_EQ(firstAlone.back(), 1) << "no handle was found";
    EXPECT_EQ(secondAlone.back(), 1) << "no handle was found";

    const std::function<void()> others[] = {
        [&] { foreign.MakeCurrent(); },
        [&] { EXPECT_TRUE(second->MakeContextCurrent()); },
        [&] { EXPECT_TRUE(first->MakeContextCurrent()); },
        [&] {  // nothing that was read before is kept
            foreign.MakeCurrent();
            first->SetupViewMatrices();
            second->UpdateViewport();
            foreign.MakeCurrent();
        },
    };
    for (const auto& other : others) {
        ofFirst.prepare = ofSecond.prepare = other;
        EXPECT_EQ(ofFirst.All(), firstAlone);
        EXPECT_EQ(ofSecond.All(), secondAlone);
    }
}

}  // namespace
