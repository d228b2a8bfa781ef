// The methods of the clip plane: what they store, what a frame then shows, and what the mouse and the keys may do.
#include <functional>
#include <limits>
#include <numbers>
#include <stdexcept>

#include "control/ScenePaneHandle.h"
#include "render/SceneFixture.h"
#include "view/InputHelp.h"

namespace {

using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

struct PlaneOfHost {
    Float3 center{}, normal{};
};
PlaneOfHost GetPlane(KV_ScenePane::_DKV_ScenePane& control) {
    PlaneOfHost plane;
    auto& [c, n] = plane;
    control.GetClipPlane(&c[0], &c[1], &c[2], &n[0], &n[1], &n[2]);
    return plane;
}
void ExpectPlane(KV_ScenePane::_DKV_ScenePane& control, const Float3& center, const Float3& normal,
                 double tolerance = 1e-6) {
    const PlaneOfHost plane = GetPlane(control);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(plane.center[i], center[i], tolerance) << "centre " << i;
        EXPECT_NEAR(plane.normal[i], normal[i], tolerance) << "normal " << i;
    }
}

/// The component library, for placements at the data.
struct StartedRegistry {
    explicit StartedRegistry(CKV_ScenePaneCtrl& control) : m_control(control) { control.InitializeKVReg(); }
    ~StartedRegistry() { m_control.FinalizeKVReg(); }
    StartedRegistry(const StartedRegistry&) = delete;
    StartedRegistry& operator=(const StartedRegistry&) = delete;

private:
    CKV_ScenePaneCtrl& m_control;
};

/// Two triangles one above the other; the estimate of a height needs two heights.
void AddData(CKV_ScenePaneCtrl& control) {
    for (const float z : {0.0f, 4.0f})
        AddMesh(control, {{-9, -9, z, 0, 0, 1}, {9, -9, z, 0, 0, 1}, {0, 9, z, 0, 0, 1}}, {Triangle{{0, 1, 2}}})
            .ComputeBoundingBox();
}

/// A square of 8 x 8 units seen from above, 48 pixels per unit, and a plane of that size. Near the corner at the top
/// left of it, a small square at another height.
class ClipMethods : public SceneTest {
protected:
    ClipMethods() : SceneTest(KV_ScenePane::WindowRequest::Kind::OffScreen, 640, 480), plane(pane->m_clipPlane) {
        Add({.center = {0, 0, 0}, .half = 4}).ComputeBoundingBox();
        Add({.center = {-3.5, 3.5, 2}, .half = 0.25}).ComputeBoundingBox();
        Frame();
        plane.SetCenter({0, 0, 0});
        plane.SetRadiusFromExtent(4);
        pane.events.events.clear();
        pane.window->Forget();
    }
    void Mouse(Kind kind, int x, int y, std::uint32_t flags = 0) { pane->SendMouse({kind, flags, x, y, 0}); }
    void Key(std::int32_t key) { pane->SendKey({true, key, 1, 0}); }
    /// Whether the square is drawn at a world x, in the row y = 1.
    [[nodiscard]] bool IsSeenAt(double x) const {
        return DistanceAt(static_cast<int>(320 + 48 * x), 192, kBackground) > 5;
    }
    /// The whole state that a host or a user can see.
    void ExpectFlags(int visible, int active) {
        EXPECT_EQ(pane->m_bClipPlaneVisible, visible);
        EXPECT_EQ(pane->m_bClipPlaneActive, active);
    }

    Plane& plane;
};

// ---- the two switches

TEST_F(ClipMethods, ShowThePlaneByTheLowByteAndClipInAnyCase) {
    const StartedRegistry started(*pane);
    const struct {
        std::int32_t argument;
        int visible;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {-1, 255}, {0x100, 0}, {0x1FF, 255}, {-256, 0}, {INT32_MIN, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.argument);
        pane->SetClipPlaneDisabled();
        ExpectFlags(0, 0);
        pane->SetClipPlaneEnabled(row.argument);
        ExpectFlags(row.visible, 1);
    }
}

TEST_F(ClipMethods, LoseThePlaneOfTheHostOnlyWhenThePlaneIsShown) {
    const StartedRegistry started(*pane);
    pane->SetClipPlane(1, 2, 3, 1, 0, 0);
    pane->SetClipPlaneEnabled(0x100);
    ExpectPlane(*pane, {1, 2, 3}, {1, 0, 0});
    pane->SetClipPlaneEnabled(1);
    EXPECT_EQ(GetPlane(*pane).normal, (Float3{0, 0, 1}));
    EXPECT_EQ(GetPlane(*pane).center[0], 0.0f);  // the middle of the square
    pane->SetClipPlane(1, 2, 3, 1, 0, 0);
    ExpectPlane(*pane, {1, 2, 3}, {1, 0, 0});
    ExpectFlags(1, 1);
}

TEST_F(ClipMethods, ClipByAHiddenPlaneThatTheMouseAndTheKeysDoNotReach) {
    pane->SetClipPlane(1, 0, 0, 1, 0, 0);
    pane->SetClipPlaneEnabled(0);
    plane.m_nOutlineColor = plane.m_nColor = plane.m_nHandleColor = 0x00FF00;
    Frame();
    EXPECT_TRUE(IsSeenAt(1.1));
    EXPECT_FALSE(IsSeenAt(0.9));
    EXPECT_FALSE(IsSeenAt(-3));
    // Its outline, seen on its edge, would be there; and nothing is drawn beside the square.
    EXPECT_EQ(DrawnPixelsIn(0, 0, 320 + 46, 480), 0);

    // A plane in the window's surface has its handles at 432: where the hover and the press would find them.
    pane->SetClipPlane(0, 0, -1, 0, 0, 1);
    for (const auto& [x, y] : {std::pair{512, 432}, {320, 432}, {128, 240}}) {
        Mouse(Kind::Move, x, y);
        EXPECT_FALSE(plane.IsPicked());
        Mouse(Kind::LeftDown, x, y, kLeft | kCtrl);
        EXPECT_EQ(pane->m_nInteractionMode, ModeRotate);
        Mouse(Kind::LeftUp, x, y, kCtrl);
    }
    for (const std::int32_t key : {KV_ScenePane::kKeyUp, KV_ScenePane::kKeyDown, KV_ScenePane::kKeyCtrl}) Key(key);
    ExpectPlane(*pane, {0, 0, -1}, {0, 0, 1});
}

TEST_F(ClipMethods, EndClippingAndLetADoubleClickWithCtrlCentreTheViewAgain) {
    const StartedRegistry started(*pane);
    pane->SetClipPlane(1, 0, 0, 1, 0, 0);
    pane->SetClipPlaneEnabled(1);
    pane->m_fViewCenter = {30, 40, 50};
    Mouse(Kind::DoubleClick, 5, 5, kLeft | kCtrl);
    EXPECT_EQ(pane->m_fViewCenter, (Float3{30, 40, 50})) << "the plane was placed instead";
    pane->SetClipPlane(1, 0, 0, 1, 0, 0);
    pane->SetClipPlaneDisabled();
    ExpectFlags(0, 0);
    Mouse(Kind::DoubleClick, 5, 5, kLeft | kCtrl);
    EXPECT_EQ(pane->m_fViewCenter, (Float3{0, 0, 1}));
    ExpectPlane(*pane, {1, 0, 1}, {1, 0, 0});
    Look(640, 480);
    Frame();
    EXPECT_TRUE(IsSeenAt(0.9));
    EXPECT_TRUE(IsSeenAt(-3));
}

TEST_F(ClipMethods, KeepPlaneAndRepaintNothingWhenThePlacementFails) {
    pane->SetClipPlane(1, 2, 3, 0, 1, 0);
    const auto before = plane.m_dMatrix;
    pane.window->Forget();
    EXPECT_THROW(pane->SetClipPlaneEnabled(1), std::runtime_error) << "the registry is not started";
    ExpectFlags(1, 1);
    EXPECT_EQ(plane.m_dMatrix, before);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
    Frame();  // clipped by the plane as it was: y above 2 is kept
    EXPECT_GT(DistanceAt(330, 240 - 48 * 3, kBackground), 5);
    ExpectBackground(330, 240 - 48 * 1);
}

// ---- the plane

TEST_F(ClipMethods, CutThePictureBeforeTheyReturn) {
    pane->SetClipPlaneEnabled(0);
    pane.window->Forget();
    pane->SetClipPlane(1, 0, 0, 1, 0, 0);
    EXPECT_EQ(pane.window->refreshes, 1);
    EXPECT_EQ(pane.window->invalidates + pane.window->eraseInvalidates, 0);
    Frame();
    EXPECT_TRUE(IsSeenAt(1.1));
    EXPECT_FALSE(IsSeenAt(0.9));
    pane->SetClipPlane(-1, 0, 0, -1, 0, 0);  // the other side of another plane
    Frame();
    EXPECT_TRUE(IsSeenAt(-1.1));
    EXPECT_FALSE(IsSeenAt(-0.9));
}

TEST_F(ClipMethods, UseTheDirectionOfANormalOfAnyLength) {
    pane->SetClipPlane(1, 2, 3, 0.6f, 0, 0.8f);
    const auto unit = plane.m_dMatrix;
    for (const float length : {2.0f, 1e-3f, 1e-30f, 1e30f}) {
        pane->SetClipPlane(1, 2, 3, 0.6f * length, 0, 0.8f * length);
        for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(plane.m_dMatrix[i], unit[i], 2e-7) << length;
    }
    pane->SetClipPlane(1, 2, 3, 0, 0, 2);
    ExpectPlane(*pane, {1, 2, 3}, {0, 0, 1}, 0);
}

TEST_F(ClipMethods, ReadAZeroNormalAsTheZAxis) {
    pane->SetClipPlaneEnabled(0);
    pane->SetClipPlane(1, 2, 3, 0, 0, 0);
    // A quarter turn about no axis: its cosine, 6e-17, is all that is left, and is normalised to (0, 0, 1).
    ExpectPlane(*pane, {1, 2, 3}, {0, 0, 1});
    pane->m_bClipPlaneVisible = 1;
    Frame();
    EXPECT_FALSE(IsSeenAt(1)) << "below the plane";
    pane->SetClipPlane(1, 2, -3, 0, 0, 0);
    Frame();
    EXPECT_TRUE(IsSeenAt(1));
}

TEST_F(ClipMethods, ReturnTheNormalThatWasSetWithinTheRoundingOfFloats) {
    constexpr double kPi = std::numbers::pi;
    std::vector<double> fromZ{0, 1e-13, 1e-12, 1e-10, 1e-8, 3e-8, 1e-6, 1e-4, 0.01, 0.5, kPi / 2};
    for (std::size_t i = fromZ.size(); i-- > 0;) fromZ.push_back(kPi - fromZ[i]);
    for (const double theta : fromZ)
        for (int step = 0; step < 16; ++step) {
            const double phi = 2 * kPi * step / 16;
            const Float3 normal{static_cast<float>(std::sin(theta) * std::cos(phi)),
                                static_cast<float>(std::sin(theta) * std::sin(phi)),
                                static_cast<float>(std::cos(theta))};
            plane.SetNormal(ToDouble3(normal));
            plane.SetCenter({0.1f, -1e6f, 1e-6f});
            const PlaneOfHost found = GetPlane(*pane);
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(found.normal[i], normal[i], 1.2e-7) << theta << ' ' << phi << ' ' << i;
            EXPECT_EQ(found.center, (Float3{0.1f, -1e6f, 1e-6f}));
        }
}

TEST_F(ClipMethods, SlideThePlaneUnderTheDataWithinItsOwnSurface) {
    for (auto& mesh : pane->m_vpMeshes) mesh->m_iVisible = 0;
    Add({.center = {10, 20, 30}, .half = 1}).ComputeBoundingBox();
    pane->SetClipPlane(100, 0, 0, 0.6f, 0, 0.8f);
    const auto equation = plane.GetEquation();
    pane.window->Forget();
    pane->DisplayClipPlanePartCloseToData();
    EXPECT_EQ(pane.window->eraseInvalidates, 1);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates, 0);
    // 0.6 (10 - 100) + 0.8 30 = -30: the foot is 30 units along the normal from the middle of the visible object.
    ExpectPlane(*pane, {10 + 18, 20, 30 + 24}, {0.6f, 0, 0.8f}, 1e-5);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(plane.GetEquation()[i], equation[i], 1e-5);
    ExpectFlags(0, 0);

    pane->m_vpMeshes.clear();  // the fixed box about the origin
    pane->SetClipPlane(100, 7, 0, 0, 0, 1);
    pane->DisplayClipPlanePartCloseToData();
    ExpectPlane(*pane, {0, 0, 0}, {0, 0, 1}, 0);
}

TEST_F(ClipMethods, KeepDirectionAndSwitchesWhenTheSceneIsClearedOrFitted) {
    pane->SetClipPlane(1, 2, 3, 0, 3, 4);
    pane->m_bClipPlaneVisible = pane->m_bClipPlaneActive = 1;
    pane->SetClipPlaneColor(0x102030, 0x405060, 0x708090);
    const auto equation = plane.GetEquation();
    const std::function<void()> calls[] = {[&] { pane->ClearData(); }, [&] { pane->CenterView(); }};
    for (const auto& call : calls) {
        call();
        ExpectFlags(1, 1);
        for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(plane.GetEquation()[i], equation[i], 1e-9);
        EXPECT_EQ(plane.m_nColor, 0x102030u);
    }
}

TEST_F(ClipMethods, LoseTheTwistOfAHandleDragWhenItsNormalIsSetAgain) {
    plane.m_dMatrix = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    const PlaneOfHost found = GetPlane(*pane);
    pane->SetClipPlane(1, 2, 3, found.normal[0], found.normal[1], found.normal[2]);
    EXPECT_EQ(plane.m_dMatrix, (std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}));
}

// ---- the colours

TEST_F(ClipMethods, ColourFaceHandlesAndOutline) {
    pane->SetClipPlaneColor(0x112233, 0x445566, static_cast<std::int32_t>(0xFF778899));
    EXPECT_EQ(plane.m_nColor, 0x112233u);
    EXPECT_EQ(plane.m_nHotColor, 0x112233u);
    EXPECT_EQ(plane.m_nHandleColor, 0x445566u);
    EXPECT_EQ(plane.m_nOutlineColor, 0xFF778899u);
    EXPECT_EQ(plane.m_nHotOutlineColor, 0xFF778899u);
    EXPECT_EQ(pane.window->refreshes, 1);
    EXPECT_EQ(pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

TEST_F(ClipMethods, DrawThePlaneInTheColoursOfTheHost) {
    pane->m_vpMeshes.clear();
    pane->m_bClipPlaneVisible = 1;
    pane->SetClipPlaneColor(0x0000C0, 0x00C000, 0xC00000);  // red, green, blue
    const auto strongest = [this](int x, int y) {
        const Vec3 color = ColorAt(x, y);
        return std::max_element(color.begin(), color.end()) - color.begin();
    };
    for (const bool hot : {false, true}) {
        plane.m_bHighlighted = hot;
        Frame();
        EXPECT_EQ(strongest(320, 200), 0);
        EXPECT_EQ(strongest(320, 431), 1);  // the sphere at -y
        EXPECT_EQ(strongest(400, 47), 2) << "the upper edge";
    }
}

// ---- arguments without a plane

TEST_F(ClipMethods, SurviveNumbersThatAreNotFinite) {
    pane->SetClipPlaneEnabled(0);
    pane->SetClipPlane(1, 0, 0, 1, 0, 0);
    pane->m_bClipPlaneVisible = 1;
    Frame();
    const auto expected = picture.pixels;
    const auto view = pane->m_fViewCenter;
    for (const float odd : {kNan, kInfinity, -kInfinity, std::numeric_limits<float>::max()})
        for (std::size_t which = 0; which < 7; ++which) {
            SCOPED_TRACE(testing::Message() << odd << " as argument " << which);
            std::array<float, 6> a{1, 2, 0, 0.5f, 0.5f, 0.5f};
            if (which < 6) a[which] = odd;
            if (which == 6) a.fill(odd);
            pane->SetClipPlane(a[0], a[1], a[2], a[3], a[4], a[5]);
            for (const std::int16_t shadows : std::initializer_list<std::int16_t>{0, 1})
                for (const auto mode : {KV_ScenePane::DrawModePoints, KV_ScenePane::DrawModeWireframe,
                                        KV_ScenePane::DrawModeGouraud, KV_ScenePane::DrawModePerPixel}) {
                    pane->SetShadowMode(shadows);
                    pane->m_nDrawMode = mode;
                    Frame();  // without an OpenGL error, all stacks as before
                }
            pane->SetShadowMode(0);
            pane->m_nDrawMode = KV_ScenePane::DrawModeGouraud;
            (void)GetPlane(*pane);
            pane->DisplayClipPlanePartCloseToData();
            for (const std::uint32_t flags : {0u, kCtrl}) {
                Mouse(Kind::Move, 320, 432, flags);
                for (const auto& [down, up, button] :
                     {std::tuple{Kind::LeftDown, Kind::LeftUp, kLeft}, {Kind::RightDown, Kind::RightUp, kRight}}) {
                    Mouse(down, 320, 432, button | flags);
                    Mouse(Kind::Move, 300, 400, button | flags);
                    Mouse(up, 300, 400, flags);
                }
            }
            plane.OnPicked(1);  // a drag of a sphere of a plane that is nowhere
            Mouse(Kind::LeftDown, 320, 432, kLeft);
            Mouse(Kind::Move, 300, 400, kLeft);
            Mouse(Kind::LeftUp, 300, 400);
            for (const std::int32_t key : {KV_ScenePane::kKeyUp, KV_ScenePane::kKeyDown, KV_ScenePane::kKeyEscape})
                Key(key);
            pane->m_nInteractionMode = ModeIdle;
            for (const float v : pane->m_fViewCenter) EXPECT_TRUE(std::isfinite(v));

            // The next plane is as good as ever.
            pane->SetClipPlane(1, 0, 0, 1, 0, 0);
            plane.ClearPick();
            plane.m_bHighlighted = false;
            pane->ShowPlaneHandles(PlaneHandles::Both);
            Look(640, 480);
            pane->m_fViewCenter = view;
            pane->SetupViewMatrices();
            Frame();
            EXPECT_EQ(picture.pixels, expected);
        }
}

// ---- controls without OpenGL, and the host's surface

/// With AddData(), without a started registry.
void CallAll(KV_ScenePane::_DKV_ScenePane& methods) {
    methods.SetClipPlane(1, 2, 3, 0, 2, 0);
    ExpectPlane(methods, {1, 2, 3}, {0, 1, 0});
    methods.SetClipPlaneColor(1, 2, 3);
    methods.SetClipPlaneEnabled(0);
    EXPECT_THROW(methods.SetClipPlaneEnabled(1), std::runtime_error);
    ExpectPlane(methods, {1, 2, 3}, {0, 1, 0});
    methods.DisplayClipPlanePartCloseToData();
    ExpectPlane(methods, {0, 2, 2}, {0, 1, 0});
    methods.SetClipPlaneDisabled();
}

TEST(ClipMethodsWithoutOpenGl, StoreAndReturnThePlane) {
    NoPictureControl control;
    ExpectPlane(*control, {0, 0, 10}, {0, 0, 1}, 0);
    AddData(*control);
    CallAll(*control);
    const StartedRegistry started(*control);
    control->SetClipPlaneEnabled(1);
    EXPECT_TRUE(control->m_clipHeight.found);
    ExpectPlane(*control, {0, 0, control->m_clipHeight.height}, {0, 0, 1}, 0);
    control->m_vpMeshes.clear();
    control->SetClipPlaneEnabled(1);
    EXPECT_FALSE(control->m_clipHeight.found);
    ExpectPlane(*control, {0, 0, -20}, {0, 0, 1}, 0);
}

TEST(ClipMethodsWithoutOpenGl, WorkBeforeTheWindowExists) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = 40, request.height = 30;
    TestFolder();
    CKV_ScenePaneCtrl control(MakePaneWindow(request));
    AddData(control);
    CallAll(control);
    control.m_vpMeshes.pop_back();
    control.SetClipPlane(0, 0, 0, 1, 0, 0);
    control.SetClipPlaneEnabled(0);
    std::string reason;
    ASSERT_TRUE(control.CreateControlWindow(&reason)) << reason;
    control.CenterView();
    KV_ScenePane::Picture picture;
    ASSERT_TRUE(control.CapturePicture(&picture));
    const auto isSeen = [&](int x) {
        return picture.pixels[static_cast<std::size_t>(17 * 40 + x)] != picture.pixels[0];
    };
    EXPECT_TRUE(isSeen(21));
    EXPECT_FALSE(isSeen(18));
}

TEST(ClipMethodsOfAHost, ReportAFailedPlacementByAnExceptionAndGoOn) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = 40, request.height = 30;
    TestFolder();
    std::string reason;
    const auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    ASSERT_NE(pane, nullptr) << reason;
    AddData(ControlOf(*pane));
    CallAll(pane->Methods());
    EXPECT_FALSE(pane->GetClipHeight().found);
    pane->Methods().PerformRefresh();
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(pane->CapturePicture(&picture));
}

}  // namespace
