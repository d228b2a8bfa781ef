// A user at the shown clip plane, by calls of a host or by the real pointer and keyboard, and what the user sees. The
// plane is switched on by the methods of the host.
#pragma once
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "render/ReadFrame.h"
#include "view/UserInput.h"

struct Pixel {
    int x = 0, y = 0;
    Pixel operator+(const Pixel& other) const { return {x + other.x, y + other.y}; }
};

/// Channels of 0 to 255.
using Rgb = std::array<int, 3>;
inline constexpr Rgb kBackground{0x19, 0x19, 0x32};

/// Which handles the shown frame has.
struct ShownHandles {
    bool arrow = false, balls = false;
    bool operator==(const ShownHandles&) const = default;
};
inline void PrintTo(const ShownHandles& shown, std::ostream* out) {
    *out << (shown.arrow ? "the arrow" : "no arrow") << ", " << (shown.balls ? "the balls" : "no balls");
}

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
inline void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

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

/// Both ways of input, as parameters of a test suite.
inline auto BothWays() {
    return testing::Values(InputWay{"ByCalls", &MakeCallInput}, InputWay{"RealPointer", &MakePointerInput});
}
inline std::string NameOfWay(const testing::TestParamInfo<InputWay>& row) { return row.param.name; }
