// The pick of a handle under the mouse: where it finds one, when it repaints, and that it leaves no trace in the frame.
#include <GL/glew.h>

#include <algorithm>
#include <future>
#include <limits>
#include <mutex>

#include "render/ReadFrame.h"
#include "render/SceneFixture.h"
#include "support/DriverTraits.h"
#include "view/InputHelp.h"

namespace {

using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

/// 24 pixels per unit, down the z axis; the plane's square is from -4 to 4. Its arrow is at the corner (4, -4), the
/// spheres are in the middle of the edges at -y and -x.
class PlaneHover : public SceneInEveryWindow {
protected:
    PlaneHover() {
        pane->m_bClipPlaneVisible = 1;
        pane->SetClipPlaneColor(0x00FFFF, 0xFF40FF, 0x00FF00);
        PlaceAndDraw();
    }
    /// After a fit too, which a new context runs.
    void PlaceAndDraw() {
        Look(320, 240);
        plane.SetCenter({0, 0, 0});
        plane.SetRadiusFromExtent(4);
        Draw();
    }
    /// Draws what is requested and forgets it.
    void Draw() {
        pane->ProcessEvents();
        pane->PerformRefresh();
        pane.window->Forget();
    }
    void SetSamples(int samples) {
        pane->RecreateOpenglContext(3, 3, samples);
        PlaceAndDraw();
    }
    void MoveTo(int x, int y, std::uint32_t flags = 0) { pane->SendMouse({Kind::Move, flags, x, y, 0}); }

    struct Shown {
        std::vector<std::uint32_t> colors;
        std::vector<float> depths;
        bool operator==(const Shown&) const = default;
    };
    /// The frame that is on the screen, without drawing one. With samples the mean colour and one sample's depth.
    Shown ReadShown() {
        EXPECT_TRUE(pane->MakeContextCurrent());
        const FrameTarget& target = pane->m_frameTarget;
        target.Resolve();
        if (target.ReadName() != target.Name()) {
            glBindFramebuffer(GL_READ_FRAMEBUFFER, target.Name());
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target.ReadName());
            glBlitFramebuffer(0, 0, 320, 240, 0, 0, 320, 240, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
            target.Bind();
        }
        Shown shown{ReadFrame(320, 240), std::vector<float>(320 * 240)};
        glReadPixels(0, 0, 320, 240, GL_DEPTH_COMPONENT, GL_FLOAT, shown.depths.data());
        return shown;
    }
    void ExpectNoTrace();

    static constexpr PlaneHandle kArrow{0, PlaneHandle::kArrow}, kBall0{0, PlaneHandle::kSphere},
        kBall1{1, PlaneHandle::kSphere};
    Plane& plane = pane->m_clipPlane;
};

// ---- the frame stays as it is

void PlaneHover::ExpectNoTrace() {
    Add({.center = {1, 1, 2}, .half = 2});
    Draw();
    const Shown cold = ReadShown();
    ASSERT_GT(std::ranges::count_if(cold.depths, [](float depth) { return depth < 0.99f; }), 5000);
    // Beside the handles nothing is repainted: the same frame, to the bit.
    for (const auto& [x, y] : {std::pair{160, 120}, {10, 10}, {200, 100}, {0, 0}, {319, 239}, {-7, 500}}) MoveTo(x, y);
    EXPECT_EQ(pane.window->swaps, 0);
    EXPECT_TRUE(ReadShown() == cold);
    // Over a handle one frame is drawn, and it is the one that is drawn without a pick.
    MoveTo(160 + 96, 120 + 96);
    ASSERT_EQ(plane.GetPick(), kArrow);
    EXPECT_EQ(pane.window->swaps, 1);
    const Shown hot = ReadShown();
    EXPECT_FALSE(hot == cold);
    for (int i = 0; i < 3; ++i) MoveTo(160 + 95 + i, 120 + 96);
    EXPECT_EQ(pane.window->swaps, 1);
    EXPECT_TRUE(ReadShown() == hot);
    pane->PerformRefresh();
    EXPECT_TRUE(ReadShown() == hot);
    MoveTo(10, 10);
    EXPECT_EQ(pane.window->swaps, 3);
    EXPECT_TRUE(ReadShown() == cold);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_P(PlaneHover, LeavesNoTraceInColoursAndDepth) { ExpectNoTrace(); }

TEST_P(PlaneHover, LeavesNoTraceInAFrameWithSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    if (AvailableSamples(4) == 0) GTEST_SKIP() << "the driver has no samples";
    SetSamples(4);
    ASSERT_EQ(Get(GL_SAMPLES), 4);
    ExpectNoTrace();
}

TEST_P(PlaneHover, LetsANeedlePressReadTheDepthOfTheSurface) {
    Add({.center = {1, 1, 2}, .half = 2});
    pane->SetNeedlePickingMode(KV_ScenePane::kVariantTrue);
    const auto pinAfter = [&](const std::vector<std::pair<int, int>>& hovered) {
        pane->DeleteNeedles();
        Draw();
        for (const auto& [x, y] : hovered) MoveTo(x, y);
        pane->SendMouse({Kind::DoubleClick, kLeft, 196, 90, 0});
        EXPECT_EQ(pane->m_vNeedles.size(), 1u);
        return pane->m_vNeedles.empty() ? Float3{} : pane->m_vNeedles[0].pin;
    };
    const Float3 pin = pinAfter({});
    EXPECT_NEAR(pin[0], 36 / 24.0, 1e-4);
    EXPECT_NEAR(pin[1], 30 / 24.0, 1e-4);
    EXPECT_NEAR(pin[2], 2, 1e-3);
    EXPECT_EQ(pinAfter({{196, 90}}), pin);
    EXPECT_EQ(pinAfter({{256, 216}, {196, 90}}), pin);
    EXPECT_EQ(pinAfter({{160, 216}, {64, 120}, {195, 90}, {196, 90}}), pin);
}

TEST_P(PlaneHover, LeavesTheStateOfFramesAsItIs) {
    for (std::int16_t mode = KV_ScenePane::DrawModePoints; mode <= KV_ScenePane::DrawModeShadowMap; ++mode) {
        pane->SetDrawMode(mode);
        for (std::int16_t shadows = 0; shadows <= 1; ++shadows) {
            pane->SetShadowMode(shadows);
            MoveTo(256, 216);
            EXPECT_EQ(plane.GetPick(), kArrow) << "draw mode " << mode << ", shadows " << shadows;
            MoveTo(10, 10);
            EXPECT_FALSE(plane.IsPicked()) << "draw mode " << mode << ", shadows " << shadows;
            while (glGetError() != GL_NO_ERROR) {  // of the shadow pass
            }
            ExpectDefaultStacksAndBindings();
        }
    }
}

// ---- where it finds a handle

TEST_P(PlaneHover, FindsAHandleAtExactlyThePixelsThatShowOne) {
    pane->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    plane.m_bFaceVisible = plane.m_bOutlineVisible = false;
    Draw();
    const std::vector<std::uint32_t> frame = ReadShown().colors;
    int shown = 0, different = 0;
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x) {
            const bool isShown = (frame[static_cast<std::size_t>(y * 320 + x)] & 0xFFFFFF) != 0x191932;
            // Far from the handles every tenth pixel in each direction.
            if (!isShown && (x % 10 != 0 || y % 10 != 0)) {
                bool isNear = false;
                for (int dy = -2; dy <= 2; ++dy)
                    for (int dx = -2; dx <= 2; ++dx) {
                        const int nearX = std::clamp(x + dx, 0, 319), nearY = std::clamp(y + dy, 0, 239);
                        isNear |= (frame[static_cast<std::size_t>(nearY * 320 + nearX)] & 0xFFFFFF) != 0x191932;
                    }
                if (!isNear) continue;
            }
            plane.ClearPick();  // so that the guides of a sphere are never shown
            RenderObject* const objects[] = {&plane};
            pane->PickRenderObjectsAt(objects, x, 239 - y);
            shown += isShown;
            different += isShown != plane.IsPicked();
        }
    EXPECT_GT(shown, 50);
    EXPECT_EQ(different, 0);
}

TEST_P(PlaneHover, FindsAHandleAtEachBorderPixel) {
    struct Row {
        int x, y;
    };
    for (const Row& row : {Row{0, 0}, {319, 0}, {0, 239}, {319, 239}, {160, 0}, {319, 77}, {0, 120}, {99, 239}}) {
        SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
        // The sphere at -y under the middle of that pixel.
        plane.SetCenter({(row.x + 0.5 - 160) / 24, (120 - row.y - 0.5) / 24 + 4, 0});
        plane.m_bMoveHandleVisible = true;
        MoveTo(row.x, row.y);
        EXPECT_EQ(plane.GetPick(), kBall0);
    }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_P(PlaneHover, FindsNothingOutsideTheWindowAlthoughThePlaneGoesOn) {
    constexpr int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    struct Row {
        int x, y;
    };
    for (const Row& row : {Row{-1, 120}, {320, 120}, {160, -1}, {160, 240}, {-1, -1}, {320, 240}, {5000, 120}}) {
        SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
        plane.SetCenter({(row.x + 0.5 - 160) / 24, (120 - row.y - 0.5) / 24 + 4, 0});
        MoveTo(row.x, row.y);
        EXPECT_FALSE(plane.IsPicked());
    }
    plane.SetCenter({0, 0, 0});
    for (const int x : {kMin, 160, kMax})
        for (const int y : {kMin, 216, kMax}) {
            MoveTo(x, y);
            EXPECT_EQ(plane.IsPicked(), x == 160 && y == 216) << x << ", " << y;
        }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_P(PlaneHover, FindsHandlesAllOverALargeWindow) {
    // Not a window of 4000 x 4000, which would only take long.
    for (const auto& [width, height] : {std::pair{3000, 60}, {60, 3000}}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        Resize(width, height);
        pane->PerformRefresh();
        Look(width, height);   // 6 pixels per unit
        plane.m_dRadius = 60;  // spheres of 6 pixels
        for (const double share : {0.01, 0.3, 0.5, 0.7, 0.99}) {
            const int x = static_cast<int>(width * share), y = static_cast<int>(height * share);
            const double worldX = (x + 0.5 - width / 2) / 6, worldY = (height / 2 - y - 0.5) / 6;
            plane.SetCenter({worldX, worldY + 60 * std::sqrt(0.5), 0});
            MoveTo(x, y);
            EXPECT_EQ(plane.GetPick(), kBall0) << share;
            MoveTo(x + (x < width / 2 ? 12 : -12), y + (y < height / 2 ? 12 : -12));
            EXPECT_FALSE(plane.IsPicked()) << share;
        }
    }
}

// The lower edges of window and frame are one until the next frame: rows count from there.
TEST_P(PlaneHover, CountsRowsFromTheLowerEdgeOfAWindowThatHasGrownSinceItsFrame) {
    pane->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    Resize(320, 300);
    ASSERT_EQ(pane->m_nHeight, 240);
    MoveTo(160, 216);
    EXPECT_FALSE(plane.IsPicked());
    MoveTo(160, 216 + 60);
    EXPECT_EQ(plane.GetPick(), kBall0);
    MoveTo(256, 216 + 60);
    EXPECT_EQ(plane.GetPick(), kArrow);
    EXPECT_EQ(pane.window->swaps, 0);
}

TEST_P(PlaneHover, FindsHandlesOnAScreenOfAnotherScale) {
    const Shown before = ReadShown();
    for (const double scale : {2.0, 0.5}) {
        pane->SetScale(scale);
        Draw();
        MoveTo(256, 216);
        EXPECT_EQ(plane.GetPick(), kArrow);
        MoveTo(64, 120);
        EXPECT_EQ(plane.GetPick(), kBall1);
        MoveTo(10, 10);
        EXPECT_FALSE(plane.IsPicked());
    }
    pane->SetScale(1);
    Draw();
    EXPECT_TRUE(ReadShown() == before);
}

// ---- the life of the window

TEST_P(PlaneHover, PicksWhilePaintingIsBlockedAndIsPaintedAfterwards) {
    pane->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    const Shown cold = ReadShown();
    MoveTo(256, 216);
    EXPECT_EQ(plane.GetPick(), kArrow);
    EXPECT_EQ(pane.window->swaps, 0);
    EXPECT_TRUE(ReadShown() == cold);
    pane->BlockPaintEvents(KV_ScenePane::kVariantFalse);
    pane->ProcessEvents();
    EXPECT_EQ(pane.window->swaps, 1);
    EXPECT_FALSE(ReadShown() == cold);
}

TEST_P(PlaneHover, PicksInARecreatedContext) {
    for (int i = 0; i < 2; ++i) {
        MoveTo(256, 216);
        ASSERT_EQ(plane.GetPick(), kArrow);
        pane->RecreateOpenglContext(3, 3, 0);
        EXPECT_EQ(plane.GetPick(), kArrow) << "until the next hover";
        PlaceAndDraw();
        MoveTo(160, 120);
        EXPECT_FALSE(plane.IsPicked());
        MoveTo(64, 120);
        EXPECT_EQ(plane.GetPick(), kBall1);
    }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

// No frame has set the size of the new window.
TEST_P(PlaneHover, PicksNothingInARecreatedContextBeforeItsFirstFrame) {
    pane->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    pane->RecreateOpenglContext(3, 3, 0);
    for (const auto& [x, y] : {std::pair{256, 216}, {0, 0}, {-1, -1}}) {
        MoveTo(x, y);
        EXPECT_FALSE(plane.IsPicked());
    }
    EXPECT_EQ(pane.window->swaps, 0);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

/// Moves the mouse while its viewer ends the alignment.
class HoveringHost final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    explicit HoveringHost(CKV_ScenePaneCtrl& control) : m_control(control) {}
    void AlignmentDone() override {
        m_control.SendMouse({Kind::Move, 0, 256, 216, 0});
        ++finished;
    }
    int finished = 0;

private:
    CKV_ScenePaneCtrl& m_control;
};

TEST_P(PlaneHover, DoesNoHarmWhileTheContextIsRecreated) {
    HoveringHost host(*pane);
    pane->Connect(&host);
    pane->AlignInteractive();
    pane->RecreateOpenglContext(3, 3, 0);
    pane->Connect(nullptr);
    EXPECT_EQ(host.finished, 1);
    PlaceAndDraw();
    MoveTo(10, 10);
    EXPECT_FALSE(plane.IsPicked());
    MoveTo(256, 216);
    EXPECT_EQ(plane.GetPick(), kArrow);
}

// ---- the lock of drawing

/// Whether another thread could draw now.
bool IsDrawLockFree() {
    return std::async(std::launch::async,
                      [] {
                          const bool isFree = g_drawLock->try_lock();
                          if (isFree) g_drawLock->unlock();
                          return isFree;
                      })
        .get();
}

/// While it lives, every binding of a framebuffer tests the lock. A pick binds its target, draws and binds the frame's.
class BindingsUnderTheLock {
public:
    BindingsUnderTheLock() {
        locked = free = 0;
        s_bind = __glewBindFramebuffer;
        __glewBindFramebuffer = &Bind;
    }
    ~BindingsUnderTheLock() { __glewBindFramebuffer = s_bind; }
    BindingsUnderTheLock(const BindingsUnderTheLock&) = delete;
    BindingsUnderTheLock& operator=(const BindingsUnderTheLock&) = delete;

    static inline int locked = 0, free = 0;  ///< bindings with the lock held, and with the lock free

private:
    static void GLAPIENTRY Bind(GLenum target, GLuint framebuffer) {
        ++(IsDrawLockFree() ? free : locked);
        s_bind(target, framebuffer);
    }
    static inline PFNGLBINDFRAMEBUFFERPROC s_bind = nullptr;
};

TEST_P(PlaneHover, HoldsTheLockOfDrawingDuringThePickOnly) {
    MoveTo(10, 10);
    const BindingsUnderTheLock bindings;
    ASSERT_TRUE(IsDrawLockFree());
    MoveTo(20, 20);
    EXPECT_GE(BindingsUnderTheLock::locked, 2);
    EXPECT_EQ(BindingsUnderTheLock::free, 0);
    EXPECT_TRUE(IsDrawLockFree());
    MoveTo(256, 216);
    EXPECT_EQ(pane.window->swaps, 1);
    EXPECT_TRUE(IsDrawLockFree());
}

INSTANTIATE_TEST_SUITE_P(Kinds, PlaneHover, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
