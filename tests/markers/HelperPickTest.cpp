// Which helper object is under a pixel, with test objects that draw plain rectangles of pixels.
#include <gtest/gtest.h>

#include <algorithm>

#include "render/SceneFixture.h"
#include "support/ControlFixture.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"
#include "support/GlState.h"
#include "support/Wait.h"
// last, for its macros
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

/// Covers rectangles of a window of 640 x 480 with its numbers, rows counted from the bottom.
class Stand final : public RenderObject {
public:
    struct Area {
        std::uint32_t number = 0;
        int x = 0, y = 0;
        double width = 1, height = 1;
        double depth = 0.0;  ///< larger is nearer
    };
    Stand(std::vector<Area> areas, std::uint32_t count)
        : RenderObject(0), m_vAreas(std::move(areas)), m_uCount(count) {}

    void Draw() override { ADD_FAILURE() << "a pick draws only numbers"; }
    std::uint32_t DrawPickIds(std::uint32_t base) override {
        EXPECT_FALSE(IsPicked()) << "the former pick is cleared first";
        bases.push_back(base);
        state = ReadGlState();
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(0, 640, 0, 480, -10, 10);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
        for (const Area& area : m_vAreas) {
            const std::uint32_t id = base + area.number;
            glColor3ub(static_cast<GLubyte>(id), static_cast<GLubyte>(id >> 8), static_cast<GLubyte>(id >> 16));
            glBegin(GL_QUADS);
            glVertex3d(area.x, area.y, area.depth);
            glVertex3d(area.x + area.width, area.y, area.depth);
            glVertex3d(area.x + area.width, area.y + area.height, area.depth);
            glVertex3d(area.x, area.y + area.height, area.depth);
            glEnd();
        }
        glPopMatrix();
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
        return m_uCount;
    }
    [[nodiscard]] bool IsPicked() const override { return picked.has_value(); }
    void ClearPick() override { picked.reset(); }
    void OnPicked(std::uint32_t k) override { picked = k; }

    std::optional<std::uint32_t> picked;
    std::vector<std::uint32_t> bases;  ///< of every DrawPickIds()
    GlState state;                     ///< during the last DrawPickIds()

private:
    std::vector<Area> m_vAreas;
    std::uint32_t m_uCount;
};

class HelperPick : public testing::Test {
protected:
    void Pick(std::vector<RenderObject*> objects, int x, int y) { control->PickRenderObjectsAt(objects, x, y); }
    OffscreenControl control;
};

TEST_F(HelperPick, PassesTheObjectItsOwnNumberOfThePart) {
    Stand first({{1, 100, 50}}, 3), second({{0, 200, 60}, {4, 201, 60}}, 5);
    Pick({&first, &second}, 100, 50);
    EXPECT_EQ(first.picked, 1u);
    EXPECT_EQ(second.picked, std::nullopt);
    Pick({&first, &second}, 201, 60);
    EXPECT_EQ(first.picked, std::nullopt);  // cleared
    EXPECT_EQ(second.picked, 4u);
    Pick({&first, &second}, 200, 60);
    EXPECT_EQ(second.picked, 0u);
    EXPECT_EQ(first.bases, (std::vector<std::uint32_t>{0, 0, 0}));
    EXPECT_EQ(second.bases, (std::vector<std::uint32_t>{3, 3, 3}));
}

TEST_F(HelperPick, ReadsExactlyThePixelCountedFromTheBottom) {
    Stand stand({{0, 100, 50}}, 1);
    for (const auto& [x, y] : {std::pair{99, 50}, {101, 50}, {100, 49}, {100, 51}, {100, 479 - 50}}) {
        Pick({&stand}, x, y);
        EXPECT_FALSE(stand.IsPicked()) << x << ", " << y;
    }
    Pick({&stand}, 100, 50);
    EXPECT_TRUE(stand.IsPicked());
}

TEST_F(HelperPick, DecodesNumbersOfThreeBytes) {
    const std::vector<Stand::Area> none;
    Stand blocker(none, 0x030201), stand({{0, 10, 10}, {1, 20, 10}, {255, 30, 10}}, 256);
    for (const auto& [x, k] : {std::pair{10, 0u}, {20, 1u}, {30, 255u}}) {
        Pick({&blocker, &stand}, x, 10);
        EXPECT_EQ(stand.picked, k);
        EXPECT_FALSE(blocker.IsPicked());
    }
    EXPECT_EQ(stand.bases.back(), 0x030201u);
}

TEST_F(HelperPick, CallsNoObjectForANumberWithoutAPart) {
    Stand stand({{2, 10, 10}}, 2);
    Pick({&stand}, 10, 10);
    EXPECT_FALSE(stand.IsPicked());
}

TEST_F(HelperPick, CallsNoObjectBesideThePartsOrWithoutParts) {
    Stand stand({}, 0), silent({{0, 10, 10}}, 0);
    stand.picked = 3;
    Pick({&stand, &silent}, 10, 10);
    EXPECT_FALSE(stand.IsPicked());
    EXPECT_FALSE(silent.IsPicked());
    Pick({}, 320, 240);
    EXPECT_EQ(GlErrorOf(*control), GLenum{GL_NO_ERROR});
}

TEST_F(HelperPick, FindsNothingOutsideTheWindow) {
    Stand stand({{0, 0, 0, 640, 480}}, 1);
    for (const auto& [x, y] : {std::pair{-1, 10}, {640, 10}, {10, -1}, {10, 480}, {-30000, 30000}}) {
        Pick({&stand}, x, y);
        EXPECT_FALSE(stand.IsPicked()) << x << ", " << y;
    }
    for (const auto& [x, y] : {std::pair{0, 0}, {639, 479}}) {
        Pick({&stand}, x, y);
        EXPECT_TRUE(stand.IsPicked()) << x << ", " << y;
    }
    EXPECT_EQ(GlErrorOf(*control), GLenum{GL_NO_ERROR});
}

TEST_F(HelperPick, PicksTheNearerOfTwoPartsInAnyOrder) {
    Stand back({{0, 10, 10, 9, 9, -1}}, 1), front({{0, 10, 10, 9, 9, 1}}, 1);
    Pick({&back, &front}, 12, 12);
    EXPECT_TRUE(front.IsPicked());
    Pick({&front, &back}, 12, 12);
    EXPECT_TRUE(front.IsPicked());
    EXPECT_FALSE(back.IsPicked());
}

TEST_F(HelperPick, IsNotHiddenByTheSceneThatWasDrawnBefore) {
    AddMesh(*control, {{-9, -9, 0, 0, 0, 1}, {9, -9, 0, 0, 0, 1}, {0, 9, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
    control->CenterView();
    control->PerformRefresh();
    Stand stand({{0, 300, 200, 40, 40, -9}}, 1);
    Pick({&stand}, 320, 220);
    EXPECT_TRUE(stand.IsPicked());
}

TEST_F(HelperPick, DrawsWithoutAnyStateThatCouldChangeTheNumbers) {
    ASSERT_TRUE(control->MakeContextCurrent());
    for (const GLenum name :
         {GL_BLEND, GL_DITHER, GL_FOG, GL_LIGHTING, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_MULTISAMPLE})
        glEnable(name);
    glDisable(GL_DEPTH_TEST);
    Stand stand({{0, 10, 10}}, 1);
    Pick({&stand}, 10, 10);
    EXPECT_TRUE(stand.IsPicked());
    for (const char* name : {"GL_BLEND", "GL_DITHER", "GL_FOG", "GL_LIGHTING", "GL_TEXTURE_1D", "GL_TEXTURE_2D",
                             "GL_TEXTURE_3D", "GL_MULTISAMPLE"})
        EXPECT_EQ(stand.state.at(name)[0], 0) << name;
    EXPECT_EQ(stand.state.at("GL_DEPTH_TEST")[0], 1);
    EXPECT_EQ(stand.state.at("GL_SHADE_MODEL")[0], GL_FLAT);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(stand.state.at("GL_COLOR_CLEAR_VALUE")[i], 1) << i;
    EXPECT_EQ(stand.state.at("GL_DRAW_BUFFER")[0], GL_COLOR_ATTACHMENT0);  // a target of its own
}

TEST_F(HelperPick, RestoresEveryAttribute) {
    ASSERT_TRUE(control->MakeContextCurrent());
    for (const GLenum name :
         {GL_BLEND, GL_FOG, GL_LIGHTING, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_MULTISAMPLE})
        glEnable(name);
    glDisable(GL_DEPTH_TEST);
    glClearColor(0.25f, 0.5f, 0.75f, 0.125f);
    glColor4f(0.5f, 0.25f, 0.125f, 1);
    const GlState before = ReadGlState();
    GLfloat colorBefore[4], colorAfter[4];
    glGetFloatv(GL_CURRENT_COLOR, colorBefore);
    Stand stand({{0, 10, 10}}, 1);
    Pick({&stand}, 10, 10);
    glGetFloatv(GL_CURRENT_COLOR, colorAfter);
    ExpectGlStateIs(before);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(colorAfter[i], colorBefore[i]);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(HelperPick, NeitherSwapsNorRepaints) {
    Stand stand({{0, 10, 10}}, 1);
    Pick({&stand}, 10, 10);
    EXPECT_TRUE(stand.IsPicked());
    EXPECT_EQ(control.window->swaps, 0);
    EXPECT_EQ(control.window->refreshes + control.window->invalidates + control.window->eraseInvalidates, 0);
}

TEST_F(HelperPick, DrawsInItsOwnWindowWhicheverIsCurrent) {
    Stand stand({{0, 600, 400}}, 1);
    OffscreenControl other(100, 100);
    ASSERT_TRUE(other->MakeContextCurrent());
    Pick({&stand}, 600, 400);
    EXPECT_TRUE(stand.IsPicked());
}

TEST_F(HelperPick, IsExactInAMultisampledWindow) {
    ASSERT_TRUE(control->MakeContextCurrent());
    const int samples = AvailableSamples(4);
    if (samples == 0) GTEST_SKIP() << "the driver has no samples";
    control->RecreateOpenglContext(3, 3, samples);
    control->PerformRefresh();
    ASSERT_TRUE(control->MakeContextCurrent());
    ASSERT_EQ(GlInteger(GL_SAMPLES), samples);
    ASSERT_TRUE(glIsEnabled(GL_MULTISAMPLE));
    // Number 2 borders on number 0 within pixel 109, left of its middle: a mean of both would be number 1.
    Stand stand({{0, 100, 100, 9.45, 9, 1}, {2, 100, 100, 20, 9, 0}}, 3);
    for (int x = 100; x < 120; ++x) {
        Pick({&stand}, x, 104);
        EXPECT_EQ(stand.picked, x < 109 ? 0u : 2u) << x;
    }
    EXPECT_TRUE(glIsEnabled(GL_MULTISAMPLE));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

/// Colours and depths of the framebuffer that is bound for reading, 640 x 480 pixels.
struct WholeFrame {
    std::vector<std::uint32_t> colors = std::vector<std::uint32_t>(640 * 480);
    std::vector<float> depths = std::vector<float>(640 * 480);
    bool operator==(const WholeFrame&) const = default;
};
WholeFrame ReadWholeFrame() {
    WholeFrame frame;
    glReadPixels(0, 0, 640, 480, GL_RGBA, GL_UNSIGNED_BYTE, frame.colors.data());
    glReadPixels(0, 0, 640, 480, GL_DEPTH_COMPONENT, GL_FLOAT, frame.depths.data());
    return frame;
}

class HelperPickInAFrame : public HelperPick {
protected:
    void ExpectUnchanged(int samples) {
        ASSERT_TRUE(control->MakeContextCurrent());
        control->RecreateOpenglContext(3, 3, samples);
        AddMesh(*control, {{-9, -9, -9, 0, 0, 1}, {9, -9, 0, 0, 0, 1}, {0, 9, 9, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
        control->CenterView();
        control->PerformRefresh();
        ASSERT_TRUE(control->MakeContextCurrent());
        const FrameTarget& target = control->m_frameTarget;
        ASSERT_EQ(target.Name() != target.ReadName(), samples > 0);
        // With samples the frame cannot be read where it was drawn; both of its framebuffers are resolved and read.
        const auto readAll = [&] {
            target.Resolve();
            if (samples > 0) {
                glBindFramebuffer(GL_READ_FRAMEBUFFER, target.Name());
                glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target.ReadName());
                glBlitFramebuffer(0, 0, 640, 480, 0, 0, 640, 480, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
                target.Bind();
            }
            return ReadWholeFrame();
        };
        const WholeFrame before = readAll();
        ASSERT_GT(std::ranges::count_if(before.depths, [](float depth) { return depth < 0.9f; }), 10000);
        Stand stand({{0, 0, 0, 640, 480, 9}}, 1);
        for (const auto& [x, y] : {std::pair{0, 0}, {320, 240}, {639, 479}, {17, 400}, {-5, 3}}) {
            Pick({&stand}, x, y);
            EXPECT_EQ(stand.IsPicked(), x >= 0);
        }
        EXPECT_TRUE(readAll() == before);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
};

TEST_F(HelperPickInAFrame, ChangesNeitherItsColoursNorItsDepths) { ExpectUnchanged(0); }

TEST_F(HelperPickInAFrame, ChangesNeitherItsColoursNorItsDepthsWithSamples) {
    ASSERT_TRUE(control->MakeContextCurrent());
    if (AvailableSamples(4) == 0) GTEST_SKIP() << "the driver has no samples";
    ExpectUnchanged(4);
}

TEST(HelperPickWithoutAPicture, CallsNoObject) {
    NoPictureControl control;
    Stand stand({{0, 0, 0, 640, 480}}, 1);
    RenderObject* const objects[] = {&stand};
    control->PickRenderObjectsAt(objects, 10, 10);
    EXPECT_FALSE(stand.IsPicked());
    EXPECT_TRUE(stand.bases.empty());
}

TEST(HelperPickOnScreen, DoesNotChangeTheVisiblePicture) {
    Prepared(KV_ScenePane::WindowRequest::Kind::TopLevel);
    TestControl control(KV_ScenePane::WindowRequest::Kind::TopLevel, 64, 48);
    control->SetBackgroundColors(0x30C080, 0x30C080);
    control->PerformRefresh();
    Display* const display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    const auto shownAt = [&](int x, int y) {
        XImage* const image = XGetImage(display, control->NativeWindow(), x, y, 1, 1, AllPlanes, ZPixmap);
        const unsigned long pixel = image == nullptr ? 0 : XGetPixel(image, 0, 0) & 0xFFFFFF;
        if (image != nullptr) XDestroyImage(image);
        return pixel;
    };
    // Some drivers show a frame a moment after the swap.
    EXPECT_TRUE(WaitUntil([&] { return shownAt(10, 10) == 0x80C030u; }));
    ASSERT_TRUE(control->MakeContextCurrent());
    Stand stand({{0, 0, 0, 640, 480}}, 1);
    RenderObject* const objects[] = {&stand};
    control->PickRenderObjectsAt(objects, 10, 10);
    EXPECT_TRUE(stand.IsPicked());
    glFinish();
    EXPECT_EQ(shownAt(10, 10), 0x80C030u);
    EXPECT_EQ(shownAt(50, 40), 0x80C030u);
    XCloseDisplay(display);
}

}  // namespace
