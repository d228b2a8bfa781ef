// A user at the clip plane, from hovering to the end of a drag: by calls of a host, and by the real pointer and
// keyboard. The plane is switched on by the methods of the host.
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "render/ReadFrame.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right, M = Button::Middle;

struct Pixel {
    int x = 0, y = 0;
    Pixel operator+(const Pixel& other) const { return {x + other.x, y + other.y}; }
};

/// Channels of 0 to 255.
using Rgb = std::array<int, 3>;
constexpr Rgb kBackground{0x19, 0x19, 0x32};

/// Which handles the shown frame has.
struct ShownHandles {
    bool arrow = false, balls = false;
    bool operator==(const ShownHandles&) const = default;
};
void PrintTo(const ShownHandles& shown, std::ostream* out) {
    *out << (shown.arrow ? "the arrow" : "no arrow") << ", " << (shown.balls ? "the balls" : "no balls");
}

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

/// A scene of 60 x 60 x 20 units about the origin, fitted into 640 x 480 pixels: 5.5 pixels per unit, and the handles
/// have the size that a user sees after a fit. The plane lies in the x-y plane. Nothing but the plane is drawn.
class PlaneUnderThePointer : public testing::TestWithParam<InputWay> {
protected:
    PlaneUnderThePointer() {
        AddMesh(*viewer,
                {{.x = -30, .y = -30, .z = -10, .nz = 1},
                 {.x = 30, .y = -30, .z = 10, .nz = 1},
                 {.x = 30, .y = 30, .z = -10, .nz = 1}},
                {{{0, 1, 2}}});
        viewer->CenterView();
        viewer->SetDrawMode(KV_ScenePane::DrawModeNothing);
        viewer->InitializeKVReg();
        viewer->SetClipPlaneEnabled(1);
        viewer->SetClipPlaneColor(kYellow, kMagenta, kGreen);
        viewer->SetClipPlane(0, 0, 0, 0, 0, 1);
        LookFromTheSide();
        user->MoveTo(20, 20);
    }
    ~PlaneUnderThePointer() override { viewer->FinalizeKVReg(); }

    // ---- views
    /// x to the right, z up: the plane is seen edge-on.
    void LookFromTheSide() { Look(KV_ScenePane::ViewFromMinusYZUp); }
    void LookFromAbove() { Look(KV_ScenePane::ViewFromPlusZYUp); }
    void LookObliquely() { Look(KV_ScenePane::ViewObliqueZUp); }
    void Look(std::int16_t mode) {
        viewer->SetViewMode(mode);
        Settle();
    }
    /// Draws what is requested.
    void Settle() {
        viewer->ProcessEvents();
        viewer->PerformRefresh();
        viewer.window->Forget();
    }

    // ---- places
    Pixel PixelOf(const Double3& world) {
        double x = 0, y = 0;
        EXPECT_TRUE(viewer->MakeContextCurrent());
        viewer->ProjectPointDouble(world[0], world[1], world[2], &x, &y);
        return {static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))};
    }
    /// Of a point in the frame of the plane.
    Pixel PixelOnPlane(double x, double y, double z) {
        const auto& m = plane.m_dMatrix;
        Double3 world{};
        for (std::size_t i = 0; i < 3; ++i) world[i] = x * m[i] + y * m[4 + i] + z * m[8 + i] + m[12 + i];
        return PixelOf(world);
    }
    /// The shaft above the corner at (30, -30); the spheres are in the middle of the edges at -y and -x.
    Pixel Arrow() { return PixelOnPlane(30, -30, plane.m_dRadius / 30); }
    Pixel Ball(int index) { return index == 0 ? PixelOnPlane(0, -30, 0) : PixelOnPlane(-30, 0, 0); }
    void MoveTo(const Pixel& pixel) { user->MoveTo(pixel.x, pixel.y); }

    // ---- the shown frame
    std::vector<std::uint32_t> ShownFrame() {
        EXPECT_TRUE(viewer->MakeContextCurrent());
        viewer->m_frameTarget.Resolve();
        return ReadFrame(UserInput::kWidth, UserInput::kHeight);
    }
    static Rgb At(const std::vector<std::uint32_t>& frame, const Pixel& pixel) {
        const std::uint32_t p = frame.at(static_cast<std::size_t>(pixel.y * UserInput::kWidth + pixel.x));
        return {static_cast<int>(p >> 16 & 0xFF), static_cast<int>(p >> 8 & 0xFF), static_cast<int>(p & 0xFF)};
    }
    /// Pixels within @p reach of a place in each direction that satisfy a condition on red, green and blue.
    template <class Condition>
    static int Count(const std::vector<std::uint32_t>& frame, const Pixel& middle, int reach, Condition condition) {
        int count = 0;
        for (int y = -reach; y <= reach; ++y)
            for (int x = -reach; x <= reach; ++x) {
                const Rgb rgb = At(frame, middle + Pixel{x, y});
                count += condition(rgb[0], rgb[1], rgb[2]);
            }
        return count;
    }
    static int MagentaAround(const std::vector<std::uint32_t>& frame, const Pixel& middle) {
        return Count(frame, middle, 5, [](int r, int g, int b) { return r - g > 20 && b - g > 20; });
    }
    static int GreenAround(const std::vector<std::uint32_t>& frame, const Pixel& middle) {
        return Count(frame, middle, 2, [](int r, int g, int b) { return g - r > 20 && g - b > 20; });
    }
    ShownHandles Shown() {
        const auto frame = ShownFrame();
        const auto isShown = [&](const Pixel& place) {
            const int pixels = MagentaAround(frame, place);
            EXPECT_TRUE(pixels == 0 || pixels > 10) << pixels;
            return pixels > 0;
        };
        const bool balls = isShown(Ball(0));
        EXPECT_EQ(isShown(Ball(1)), balls);
        return {isShown(Arrow()), balls};
    }
    /// The face has an opacity of 0.5, or of 0.8 when it is hot.
    void ExpectShownHot(const Pixel& onFace, const Rgb& cold) {
        const Rgb shown = At(ShownFrame(), onFace);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(shown[i], kBackground[i] + (cold[i] - kBackground[i]) * 0.8 / 0.5, 3) << "channel " << i;
    }

    // ---- the plane
    struct CenterAndNormal {
        Float3 center{}, normal{};
    };
    CenterAndNormal Get() {
        CenterAndNormal got;
        viewer->GetClipPlane(&got.center[0], &got.center[1], &got.center[2], &got.normal[0], &got.normal[1],
                             &got.normal[2]);
        return got;
    }
    void ExpectPlane(const Double3& center, const Double3& normal, double tolerance = 1e-4) {
        const CenterAndNormal got = Get();
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(got.center[i], center[i], tolerance) << "centre " << i;
            EXPECT_NEAR(got.normal[i], normal[i], tolerance) << "normal " << i;
        }
    }
    [[nodiscard]] std::int32_t Mode() { return viewer->m_nInteractionMode; }
    [[nodiscard]] Double3 NormalOnScreen() {
        const Double3 n = plane.GetNormal();
        const auto along = [&n](const Float3& axis) { return axis[0] * n[0] + axis[1] * n[1] + axis[2] * n[2]; };
        return {along(viewer->m_fAxisX), along(viewer->m_fAxisY), along(viewer->m_fAxisZ)};
    }

    static constexpr std::int32_t kYellow = 0x00FFFF, kMagenta = 0xFF40FF, kGreen = 0x00FF00;
    static constexpr PlaneHandle kArrow{0, PlaneHandle::kArrow};
    static constexpr Pixel kNowhere{20, 20};  ///< no handle is near in any of the views
    const std::unique_ptr<UserInput> user = GetParam().makeUser();
    TestControl& viewer = user->Viewer();
    Plane& plane = viewer->m_clipPlane;
};

// ---- hovering

TEST_P(PlaneUnderThePointer, TurnsHotOverEachHandleAndBack) {
    LookObliquely();
    const Pixel onFace = PixelOnPlane(12, 8, 0);
    const Rgb cold = At(ShownFrame(), onFace);
    ASSERT_GT(cold[0], kBackground[0] + 50);
    const std::pair<Pixel, PlaneHandle> handles[] = {
        {Arrow(), kArrow}, {Ball(0), {0, PlaneHandle::kSphere}}, {Ball(1), {1, PlaneHandle::kSphere}}};
    for (const auto& [place, handle] : handles) {
        SCOPED_TRACE(testing::Message() << "kind " << handle.kind << ", index " << handle.index);
        viewer.window->Forget();
        MoveTo(place);
        EXPECT_EQ(plane.GetPick(), handle);
        EXPECT_EQ(viewer.window->swaps, 1);
        ExpectShownHot(onFace, cold);
        MoveTo(place + Pixel{1, 1});
        EXPECT_EQ(plane.GetPick(), handle);
        EXPECT_EQ(viewer.window->swaps, 1) << "nothing has changed";
        MoveTo(kNowhere);
        EXPECT_FALSE(plane.IsPicked());
        EXPECT_EQ(viewer.window->swaps, 2);
        EXPECT_EQ(At(ShownFrame(), onFace), cold);
        MoveTo(onFace);
        EXPECT_FALSE(plane.IsPicked()) << "the face is no handle";
        EXPECT_EQ(viewer.window->swaps, 2);
    }
}

TEST_P(PlaneUnderThePointer, ShowsTheAxisOfABallUnderThePointer) {
    LookObliquely();
    const Pixel axisOfBall0 = PixelOnPlane(10, 0, 0), axisOfBall1 = PixelOnPlane(0, 10, 0);
    const auto guides = [&] {
        const auto frame = ShownFrame();
        return std::pair(GreenAround(frame, axisOfBall0) > 0, GreenAround(frame, axisOfBall1) > 0);
    };
    EXPECT_EQ(guides(), std::pair(false, false));
    MoveTo(Ball(0));
    EXPECT_EQ(guides(), std::pair(true, false));
    MoveTo(kNowhere);
    MoveTo(Ball(1));
    EXPECT_EQ(guides(), std::pair(false, true));
    user->Press(L);
    user->MoveTo(Ball(1).x + 1, Ball(1).y);
    EXPECT_TRUE(guides().second) << "also while it is dragged";
    user->Release(L);
    MoveTo(kNowhere);
    EXPECT_EQ(guides(), std::pair(false, false));
}

// ---- drags of handles

TEST_P(PlaneUnderThePointer, MovesAlongItsNormalByTheArrow) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle);
    MoveTo(arrow + Pixel{7, -25});
    ExpectPlane({0, 0, 2.5}, {0, 0, 1});
    MoveTo(arrow + Pixel{-300, 40});
    ExpectPlane({0, 0, -4}, {0, 0, 1});
    EXPECT_EQ(viewer.window->swaps, 3) << "hover and moves, one frame each";
    EXPECT_FALSE(viewer.window->HasCapture());
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(arrow + Pixel{0, -90});
    MoveTo(kNowhere);
    ExpectPlane({0, 0, -4}, {0, 0, 1});
}

TEST_P(PlaneUnderThePointer, FollowsTheArrowOutOfTheWindow) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    user->MoveTo(700, arrow.y + 10);
    ExpectPlane({0, 0, -1}, {0, 0, 1});
    user->MoveTo(arrow.x, 520);
    ExpectPlane({0, 0, (arrow.y - 520) / 10.0}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(arrow);
    ExpectPlane({0, 0, (arrow.y - 520) / 10.0}, {0, 0, 1});
    EXPECT_TRUE(user->OthersCanGrabThePointer());
}

TEST_P(PlaneUnderThePointer, TiltsByABall) {
    const Pixel center = PixelOf({0, 0, 0}), ball = Ball(1);
    const int reach = center.x - ball.x;
    const Pixel onCircle = center + Pixel{reach / 2, -static_cast<int>(std::lround(reach * std::sqrt(3) / 2))};
    EXPECT_EQ(GreenAround(ShownFrame(), onCircle), 0);
    MoveTo(ball);
    EXPECT_GT(GreenAround(ShownFrame(), onCircle), 0) << "the circle on which the ball moves";
    user->Press(L);
    const int diagonal = static_cast<int>(std::lround(reach * std::numbers::sqrt2 / 2));
    MoveTo(center + Pixel{-diagonal, -diagonal});
    const double half = std::numbers::sqrt2 / 2;
    ExpectPlane({0, 0, 0}, {half, 0, half}, 0.006);  // the search ends within 0.3 degrees
    EXPECT_GT(GreenAround(ShownFrame(), onCircle), 0);
    MoveTo(center + Pixel{0, -40});  // inside the circle the angle counts
    ExpectPlane({0, 0, 0}, {1, 0, 0}, 0.006);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(kNowhere);
    ExpectPlane({0, 0, 0}, {1, 0, 0}, 0.006);
    EXPECT_EQ(GreenAround(ShownFrame(), onCircle), 0);
}

TEST_P(PlaneUnderThePointer, HidesTheOtherKindOfHandleDuringADrag) {
    LookObliquely();
    const ShownHandles all{true, true};
    EXPECT_EQ(Shown(), all);
    MoveTo(Arrow());
    user->Press(L);
    user->MoveTo(Arrow().x + 1, Arrow().y);
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = true, .balls = false}));
    user->Release(L);
    EXPECT_EQ(Shown(), all);
    MoveTo(kNowhere);
    MoveTo(Ball(0));
    user->Press(L);
    user->MoveTo(Ball(0).x + 1, Ball(0).y);
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = false, .balls = true}));
    user->Release(L);
    EXPECT_EQ(Shown(), all);
}

TEST_P(PlaneUnderThePointer, IsPutBackByEscapeWhileTheButtonIsHeld) {
    viewer->SetClipPlane(0, 0, 1, 0.1f, 0, 0.9f);
    const auto before = plane.m_dMatrix;
    const Float3 axis = viewer->m_fAxisX;
    for (const bool byArrow : {true, false}) {
        SCOPED_TRACE(byArrow ? "arrow" : "ball");
        const Pixel handle = byArrow ? Arrow() : Ball(1);
        MoveTo(handle);
        user->Press(L);
        ASSERT_EQ(Mode(), ModePlaneHandle);
        MoveTo(handle + Pixel{30, -60});
        ASSERT_NE(plane.m_dMatrix, before);
        user->Type(KV_ScenePane::kKeyEscape);
        EXPECT_EQ(plane.m_dMatrix, before);
        EXPECT_EQ(Mode(), ModeIdle);
        EXPECT_EQ(Shown(), (ShownHandles{true, true}));
        MoveTo(handle + Pixel{60, -30});
        MoveTo(handle);
        MoveTo(handle + Pixel{0, 90});
        user->Release(L);
        EXPECT_EQ(plane.m_dMatrix, before);
        EXPECT_EQ(viewer->m_fAxisX, axis);
        EXPECT_EQ(Mode(), ModeIdle);
        // And it can be dragged again; farther than 2 pixels from the first press, which no double click is.
        MoveTo(handle + (byArrow ? Pixel{0, -3} : Pixel{3, 0}));
        user->Press(L);
        ASSERT_EQ(Mode(), ModePlaneHandle);
        MoveTo(handle + Pixel{30, -60});
        EXPECT_NE(plane.m_dMatrix, before);
        user->Release(L);
        plane.m_dMatrix = before;
        Settle();
    }
}

TEST_P(PlaneUnderThePointer, ReturnsTheTiltedNormalAndLosesTheTwistWhenItIsSet) {
    const Pixel center = PixelOf({0, 0, 0}), ball = Ball(1);
    const int diagonal = static_cast<int>(std::lround((center.x - ball.x) * std::numbers::sqrt2 / 2));
    MoveTo(ball);
    user->Press(L);
    MoveTo(center + Pixel{-diagonal, -diagonal});
    user->Release(L);
    Look(KV_ScenePane::ViewFromPlusXZUp);       // y to the right: the other ball is at the left
    const Pixel other = Ball(0) + Pixel{3, 0};  // the first press was at the same place: no double click
    MoveTo(other);
    ASSERT_EQ(plane.GetPick(), (PlaneHandle{0, PlaneHandle::kSphere}));
    user->Press(L);
    MoveTo(other + Pixel{40, -90});
    user->Release(L);

    const CenterAndNormal got = Get();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(got.normal[i], static_cast<float>(plane.GetNormal()[i]));
    EXPECT_GT(got.normal[0], 0.1);
    EXPECT_GT(got.normal[1], 0.1);
    Plane shortest;
    shortest.SetNormal({got.normal[0], got.normal[1], got.normal[2]});
    EXPECT_GT(std::abs(plane.m_dMatrix[1] - shortest.m_dMatrix[1]), 0.05) << "the drags have twisted the plane";
    viewer->SetClipPlane(got.center[0], got.center[1], got.center[2], got.normal[0], got.normal[1], got.normal[2]);
    for (std::size_t i = 0; i < 11; ++i) EXPECT_NEAR(plane.m_dMatrix[i], shortest.m_dMatrix[i], 1e-12) << i;
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(Get().normal[i], got.normal[i], 1e-6);
}

TEST_P(PlaneUnderThePointer, DoesNotReactByTheArrowWhenItIsSeenFaceOn) {
    LookFromAbove();
    MoveTo(Arrow());
    ASSERT_EQ(plane.GetPick(), kArrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle);
    for (const Pixel& to : {Pixel{600, 20}, {5, 470}, {320, 240}}) {
        MoveTo(to);
        ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    }
    user->Release(L);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

// ---- Ctrl

TEST_P(PlaneUnderThePointer, RotatesAsIfGluedToTheViewWhileCtrlIsHeldDuringARotation) {
    user->MoveTo(320, 300);
    user->Press(L);
    user->MoveTo(330, 300);
    ASSERT_EQ(Mode(), ModeRotate);
    const Float3 axisX = viewer->m_fAxisX, axisZ = viewer->m_fAxisZ;
    user->HoldCtrl(true);
    EXPECT_EQ(Mode(), ModeRotate) << "until the next move";
    EXPECT_TRUE(plane.m_bHighlighted);
    Settle();
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = false, .balls = true}));
    user->MoveTo(330, 310);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    // 20 of 480 pixels down are 7.5 degrees about the screen's horizontal, counted from the last move of the view.
    for (const int steps : {1, 2, 3}) {
        user->MoveTo(330, 300 + 20 * steps);
        const double angle = steps * 7.5 * std::numbers::pi / 180;
        EXPECT_NEAR(NormalOnScreen()[0], 0, 1e-5);
        EXPECT_NEAR(NormalOnScreen()[1], std::cos(angle), 1e-5);
        EXPECT_NEAR(NormalOnScreen()[2], std::sin(angle), 1e-5);
    }
    EXPECT_EQ(viewer->m_fAxisX, axisX) << "the view stays";
    EXPECT_EQ(viewer->m_fAxisZ, axisZ);

    const auto rotated = plane.m_dMatrix;
    user->HoldCtrl(false);
    EXPECT_EQ(Mode(), ModeRotate);
    EXPECT_FALSE(plane.m_bHighlighted);
    Settle();
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    user->MoveTo(400, 360);
    EXPECT_NE(viewer->m_fAxisX, axisX) << "the view rotates on";
    EXPECT_EQ(plane.m_dMatrix, rotated);
    user->HoldCtrl(true);
    user->MoveTo(401, 360);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_TRUE(plane.m_bHighlighted) << "Ctrl is still held";
    EXPECT_EQ(plane.m_dMatrix, rotated);
    user->HoldCtrl(false);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_P(PlaneUnderThePointer, MovesAlongItsNormalWhileCtrlIsHeldDuringAPan) {
    user->MoveTo(320, 300);
    user->Press(R);
    user->MoveTo(330, 300);
    ASSERT_EQ(Mode(), ModePan);
    const Float3 center = viewer->m_fViewCenter;
    ASSERT_NE(center[0], 0.0f);
    user->HoldCtrl(true);
    EXPECT_EQ(Mode(), ModePan);
    EXPECT_TRUE(plane.m_bHighlighted);
    EXPECT_TRUE(plane.m_bMoveHandleVisible);
    EXPECT_FALSE(plane.m_bRotateHandlesVisible);
    user->MoveTo(340, 310);
    EXPECT_EQ(Mode(), ModePlaneMove);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    user->MoveTo(390, 280);  // 30 pixels up from where Ctrl took effect
    ExpectPlane({0, 0, 3}, {0, 0, 1});
    user->MoveTo(390, 325);
    ExpectPlane({0, 0, -1.5}, {0, 0, 1});
    EXPECT_EQ(viewer->m_fViewCenter, center);
    user->HoldCtrl(false);
    EXPECT_EQ(Mode(), ModePan);
    user->MoveTo(400, 335);
    EXPECT_LT(viewer->m_fViewCenter[0], center[0]);
    ExpectPlane({0, 0, -1.5}, {0, 0, 1});
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_FALSE(plane.m_bHighlighted);
}

TEST_P(PlaneUnderThePointer, IsHighlightedByTheCtrlKeyAlone) {
    LookObliquely();
    const Pixel onFace = PixelOnPlane(12, 8, 0);
    const Rgb cold = At(ShownFrame(), onFace);
    user->HoldCtrl(true);
    viewer->ProcessEvents();
    ExpectShownHot(onFace, cold);
    EXPECT_EQ(Shown(), (ShownHandles{true, true}));
    user->HoldCtrl(false);
    viewer->ProcessEvents();
    EXPECT_EQ(At(ShownFrame(), onFace), cold);
}

TEST_P(PlaneUnderThePointer, FollowsCtrlWithTheButtonsExchanged) {
    viewer->FlipMouseButtons(1);
    struct Row {
        Button button;
        std::int32_t mode;
    };
    user->HoldCtrl(true);
    for (const Row& row : {Row{L, ModePlaneMove}, {R, ModePlaneRotate}, {M, ModePlaneRotate}}) {
        SCOPED_TRACE(testing::PrintToString(row.button));
        viewer->SetClipPlane(0, 0, 0, 0, 0, 1);
        user->MoveTo(320, 300);
        user->Press(row.button);
        EXPECT_EQ(Mode(), row.mode);
        user->MoveTo(320, 340);  // 15 degrees, or 4 units
        if (row.mode == ModePlaneMove)
            ExpectPlane({0, 0, -4}, {0, 0, 1});
        else
            ExpectPlane({0, 0, 0}, {0, -std::sin(std::numbers::pi / 12), std::cos(std::numbers::pi / 12)});
        user->Release(row.button);
        EXPECT_EQ(Mode(), ModeIdle);
        user->MoveTo(20, 20);
    }
}

// ---- keys

TEST_P(PlaneUnderThePointer, MovesByExactlyOneUnitPerArrowKey) {
    user->Type(KV_ScenePane::kKeyUp);
    user->Type(KV_ScenePane::kKeyUp);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, 2}));
    user->Type(KV_ScenePane::kKeyDown);
    EXPECT_EQ(plane.GetCenter(), (Double3{0, 0, 1}));
    EXPECT_EQ(viewer.window->swaps, 3);
}

TEST_P(PlaneUnderThePointer, MovesByTheNormalRotatedOnceMoreWhenItIsTilted) {
    viewer->SetClipPlane(1, 2, 3, 0, 0.6f, 0.8f);
    user->Type(KV_ScenePane::kKeyUp);
    // The rotation that maps (0, 0, 1) to (0, 0.6, 0.8) maps that to (0, 2 * 0.6 * 0.8, 0.64 - 0.36).
    ExpectPlane({1, 2.96, 3.28}, {0, 0.6, 0.8}, 1e-6);
    viewer->SetClipPlane(1, 2, 3, 1, 0, 0);
    user->Type(KV_ScenePane::kKeyDown);
    ExpectPlane({1, 2, 4}, {1, 0, 0}, 1e-6);
}

// ---- what keeps the mouse away from the plane

TEST_P(PlaneUnderThePointer, IsOutOfReachWhileItIsHidden) {
    const Pixel arrow = Arrow();
    viewer->SetClipPlaneEnabled(0);
    MoveTo(arrow);
    EXPECT_FALSE(plane.IsPicked());
    user->Press(L);
    EXPECT_EQ(Mode(), ModeRotate);
    user->HoldCtrl(true);
    MoveTo(arrow + Pixel{0, -40});
    EXPECT_EQ(Mode(), ModeRotate);
    user->Release(L);
    user->HoldCtrl(false);
    user->Type(KV_ScenePane::kKeyUp);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

TEST_P(PlaneUnderThePointer, IsOutOfReachWhenItIsHiddenUnderThePointer) {
    MoveTo(Arrow());
    ASSERT_TRUE(plane.IsPicked());
    viewer->SetClipPlaneEnabled(0);
    user->Press(L);
    EXPECT_EQ(Mode(), ModeRotate);
    user->MoveTo(320, 100);
    user->Release(L);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

TEST_P(PlaneUnderThePointer, LeavesTheDoubleClickToTheViewWhenItIsDisabled) {
    viewer->SetClipPlane(0, 0, 0, 0, 0.6f, 0.8f);
    viewer->SetClipPlaneDisabled();
    viewer->m_fViewCenter = {5, 6, 7};
    viewer->m_fZoom = 2;
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->DoubleClick();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(viewer->m_fZoom, 1.0f);
    EXPECT_NEAR(Get().normal[1], 0.6, 1e-6) << "the plane was not placed";
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneUnderThePointer, IsPlacedAtTheDataByADoubleClickWithCtrl) {
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    viewer->m_fViewCenter = {5, 6, 7};
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    viewer.window->Forget();
    user->DoubleClick();
    const auto height = static_cast<double>(viewer->GetClipHeight().height);
    EXPECT_NE(height, 9);
    ExpectPlane({0, 0, height}, {0, 0, 1}, 1e-5);
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{5, 6, 7})) << "the view stays";
    EXPECT_EQ(viewer.window->waitCursorsBegun, 1);
    EXPECT_EQ(viewer.window->waitCursorsEnded, 1);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneUnderThePointer, StaysWhileTheHostDoesNotAllowTheMouse) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    ASSERT_TRUE(plane.IsPicked());
    viewer->AllowMouseInteraction(0);
    viewer.window->Forget();
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle) << "presses are not held back";
    MoveTo(arrow + Pixel{0, -50});
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    EXPECT_EQ(viewer.window->swaps, 0);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(kNowhere);
    EXPECT_TRUE(plane.IsPicked()) << "no hover clears it";
    viewer->AllowMouseInteraction(1);
    MoveTo(kNowhere + Pixel{1, 0});
    EXPECT_FALSE(plane.IsPicked());
}

// ---- the delayed scheme

TEST_P(PlaneUnderThePointer, IsDraggedByAHandleInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModeIdle) << "not before the delay is over";
    EndDispatchDelay(viewer);
    ASSERT_EQ(Mode(), ModePlaneHandle);
    MoveTo(arrow + Pixel{0, -20});
    ExpectPlane({0, 0, 2}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    EXPECT_TRUE(plane.m_bRotateHandlesVisible);
    MoveTo(arrow + Pixel{0, -90});
    ExpectPlane({0, 0, 2}, {0, 0, 1});
}

TEST_P(PlaneUnderThePointer, IsMovedByTheChordOfTheDelayedSchemeAndRotatedByTheRightButton) {
    viewer->SetIGDRotation(1);
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->Press(R);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->Press(L);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneMove);
    user->MoveTo(320, 290);
    ExpectPlane({0, 0, 1}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModePlaneRotate);
    user->MoveTo(320, 330);
    ExpectPlane({0, 0, 1}, {0, -std::sin(std::numbers::pi / 12), std::cos(std::numbers::pi / 12)});
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneUnderThePointer, IsMovedByBothButtonsPressedAtOnceInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    user->Press(R);
    user->Press(L);
    EndDispatchDelay(viewer);
    EXPECT_EQ(Mode(), ModePlaneMove);
    user->MoveTo(320, 280);
    ExpectPlane({0, 0, 2}, {0, 0, 1});
    user->Release(L);
    user->Release(R);
    EXPECT_EQ(Mode(), ModeIdle);
}

TEST_P(PlaneUnderThePointer, IsPlacedByAMiddleClickWithCtrlInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    viewer->m_fViewCenter = {5, 6, 7};
    const auto click = [&] {
        user->Press(M);
        user->Release(M);
        EndDispatchDelay(viewer);
    };
    user->MoveTo(320, 300);
    user->HoldCtrl(true);
    Settle();
    const auto before = ShownFrame();
    click();
    EXPECT_EQ(viewer.window->swaps, 1);
    EXPECT_FALSE(ShownFrame() == before) << "the placed plane is shown at once";
    ExpectPlane({0, 0, static_cast<double>(viewer->GetClipHeight().height)}, {0, 0, 1}, 1e-5);
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{5, 6, 7}));
    user->HoldCtrl(false);
    viewer->SetClipPlane(0, 0, 9, 0, 0.6f, 0.8f);
    click();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_NEAR(Get().normal[1], 0.6, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Ways, PlaneUnderThePointer,
                         testing::Values(InputWay{"ByCalls", &MakeCallInput},
                                         InputWay{"RealPointer", &MakePointerInput}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
