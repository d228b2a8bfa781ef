// The framebuffer of frames: its life, what the screen shows of it, and what happens on a driver that cannot make it.
#include "render/FrameTarget.h"

#include "markers/ReadDepth.h"
#include "render/SceneFixture.h"
#include "support/BareContext.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"
#include "support/Wait.h"
// last, for its macros
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

constexpr GLenum kNoError = GL_NO_ERROR;

int FramebufferObjects() {
    int count = 0;
    for (GLuint name = 1; name < 1000; ++name)
        for (const GLboolean exists : {glIsFramebuffer(name), glIsRenderbuffer(name), glIsTexture(name)})
            count += exists == GL_TRUE ? 1 : 0;
    return count;
}

class FrameTargets : public SceneInEveryWindow {
protected:
    void ExpectBound() {
        ASSERT_TRUE(pane->MakeContextCurrent());
        ExpectDefaultStacksAndBindings();
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, FrameTargets, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(FrameTargets, AreMadeWithTheContext) {
    ExpectBound();
    EXPECT_EQ(Get(GL_DEPTH_BITS), 24);
    EXPECT_EQ(Get(GL_ALPHA_BITS), 8);
    EXPECT_EQ(Get(GL_SAMPLES), 0);
    EXPECT_EQ(pane->m_frameTarget.ReadName(), pane->m_frameTarget.Name());
}

TEST_P(FrameTargets, FollowTheSizeOfTheWindowAndLeaveNothingBehind) {
    Frame();
    const int before = FramebufferObjects();
    for (int size = 300; size > 100; size -= 50) {
        Resize(size, size / 2);
        Frame();
        EXPECT_EQ(picture.width, size);
        EXPECT_EQ(PixelsThatAreNotBackground(), 0);
        EXPECT_EQ(FramebufferObjects(), before);
    }
}

TEST_P(FrameTargets, HaveTheSamplesOfARecreatedContext) {
    for (const int wanted : {4, 0}) {
        ASSERT_TRUE(pane->MakeContextCurrent());
        const int samples = AvailableSamples(wanted);
        pane->RecreateOpenglContext(3, 3, samples);
        pane->PerformRefresh();
        ExpectBound();
        EXPECT_EQ(Get(GL_SAMPLES), samples);
        EXPECT_EQ(pane->m_frameTarget.ReadName() != pane->m_frameTarget.Name(), samples > 0);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    }
}

TEST_P(FrameTargets, OfAWindowWithoutAreaCauseNoOpenGlError) {
    Resize(0, 0);
    pane->PerformRefresh();
    ExpectBound();
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
}

// ---- what the screen shows

class FrameOnScreen : public SceneTest, public testing::WithParamInterface<int> {
protected:
    FrameOnScreen() : SceneTest(WindowKind::TopLevel, 96, 64), m_display(XOpenDisplay(nullptr)) {
        EXPECT_TRUE(pane->MakeContextCurrent());
        pane->RecreateOpenglContext(3, 3, AvailableSamples(GetParam()));
        pane->SetBackgroundColorsFourCorners(HostColor(255, 0, 0), HostColor(0, 255, 0), HostColor(0, 0, 255),
                                             HostColor(255, 255, 255));
        Look(96, 64);
        Add({.half = 3});
    }
    ~FrameOnScreen() override { XCloseDisplay(m_display); }

    [[nodiscard]] bool ScreenShowsPicture() {
        XImage* const image = XGetImage(m_display, pane->NativeWindow(), 0, 0, 96, 64, AllPlanes, ZPixmap);
        if (image == nullptr) return false;
        bool same = true;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 96; ++x)
                same = same && (XGetPixel(image, x, y) & 0xFFFFFF) ==
                                   (picture.pixels.at(static_cast<std::size_t>(y * 96 + x)) & 0xFFFFFF);
        XDestroyImage(image);
        return same;
    }

    Display* m_display;
};

INSTANTIATE_TEST_SUITE_P(Samples, FrameOnScreen, testing::Values(0, 4),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_P(FrameOnScreen, IsThePictureThatIsRead) {
    Frame();
    ASSERT_EQ(picture.pixels.size(), 96u * 64u);
    EXPECT_NE(ColorAt(48, 32), ColorAt(2, 32));
    EXPECT_TRUE(WaitUntil([&] { return ScreenShowsPicture(); }, [&] { pane->ProcessEvents(); }));
}

// ---- a driver that cannot make it

TEST(FrameTargetThatCannotBeMade, IsTheFramebufferOfTheWindow) {
    const BareContext context;
    const std::size_t logStart = ReadLog().size();
    FrameTarget target;
    for (const int size : {1 << 20, 1 << 21, 1 << 21}) {
        target.SetSize(size, 1, 0);
        EXPECT_EQ(target.Name(), 0u);
        EXPECT_EQ(target.ReadName(), 0u);
        EXPECT_EQ(GlInteger(GL_FRAMEBUFFER_BINDING), 0);
        EXPECT_EQ(glGetError(), kNoError);
        EXPECT_EQ(FramebufferObjects(), 0);
    }
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    target.Resolve();
    target.CopyToWindow();
    std::array<std::uint8_t, 4> pixel{};
    glReadPixels(5, 5, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{0, 255, 0, 255}));
    EXPECT_EQ(glGetError(), kNoError);

    const std::string log = ReadLog().substr(logStart);
    const std::string line = "<WARNING>: Frames are drawn into the framebuffer of the window.\n";
    EXPECT_NE(log.find(line), std::string::npos) << log;
    EXPECT_EQ(log.find(line), log.rfind(line)) << "once";

    target.SetSize(16, 16, 0);
    EXPECT_NE(target.Name(), 0u);
    EXPECT_EQ(glGetError(), kNoError);
}

TEST(FrameTarget, StartsCleared) {
    const BareContext context;
    FrameTarget target;
    target.SetSize(16, 16, AvailableSamples(4));
    target.Resolve();
    std::array<std::uint8_t, 4> pixel{9, 9, 9, 9};
    glReadPixels(15, 15, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{}));
    EXPECT_EQ(ReadDepthAt(15, 1, 16, 16, 2.0f), 1.0f);
}

}  // namespace
