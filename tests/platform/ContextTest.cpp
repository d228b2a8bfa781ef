// Pixel format, context and life of a window are the same on an X server and without a display.
#include <gtest/gtest.h>

#include "platform/EveryWindow.h"
#include "support/BareContext.h"
#include "support/DriverTraits.h"

// After the others, whose names their macros would replace.
#include <EGL/egl.h>
#include <GL/glx.h>

namespace {

class WindowContext : public EveryWindow {};
INSTANTIATE_TEST_SUITE_P(All, WindowContext, testing::ValuesIn(EveryWindow::kKinds), EveryWindow::Name);

// ---- bootstrap and format

TEST_P(WindowContext, BootstrapFindsFormatEntryPointsAndExtensions) {
    ASSERT_TRUE(Create());
    EXPECT_TRUE(client->report.contextMade);
    EXPECT_NE(client->report.formatNumber, 0);
    EXPECT_TRUE(client->report.entryPointsLoaded);
    EXPECT_TRUE(client->report.pixelFormatExtension);
    EXPECT_TRUE(client->report.createContextExtension);
    EXPECT_TRUE(client->report.version33);
}

/// An attribute of the configuration that the current surface was made with.
int CurrentGlx(int attribute) {
    Display* const display = glXGetCurrentDisplay();
    unsigned id = 0;
    glXQueryDrawable(display, glXGetCurrentDrawable(), GLX_FBCONFIG_ID, &id);
    const int wanted[] = {GLX_FBCONFIG_ID, static_cast<int>(id), 0};
    int count = 0, value = -1;
    GLXFBConfig* const configs = glXChooseFBConfig(display, 0, wanted, &count);
    if (count == 1) glXGetFBConfigAttrib(display, configs[0], attribute, &value);
    XFree(configs);
    return value;
}
int CurrentEgl(int attribute) {
    const EGLDisplay display = eglGetCurrentDisplay();
    EGLint id = 0;
    eglQuerySurface(display, eglGetCurrentSurface(EGL_DRAW), EGL_CONFIG_ID, &id);
    const EGLint wanted[] = {EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0, value = -1;
    eglChooseConfig(display, wanted, &config, 1, &count);
    if (count == 1) eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

TEST_P(WindowContext, FormatCanDrawRgbaByOpenGlOnThisKindOfSurface) {
    ASSERT_TRUE(Create());
    ASSERT_TRUE(window->MakeCurrent());
    if (GetParam() == Kind::OffScreen) {
        EXPECT_NE(CurrentEgl(EGL_SURFACE_TYPE) & EGL_PBUFFER_BIT, 0);
        EXPECT_NE(CurrentEgl(EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT, 0);
        EXPECT_EQ(CurrentEgl(EGL_COLOR_BUFFER_TYPE), EGL_RGB_BUFFER);
    } else {
        EXPECT_NE(CurrentGlx(GLX_DRAWABLE_TYPE) & GLX_WINDOW_BIT, 0);
        EXPECT_NE(CurrentGlx(GLX_RENDER_TYPE) & GLX_RGBA_BIT, 0);
        EXPECT_EQ(CurrentGlx(GLX_X_RENDERABLE), True);
        EXPECT_EQ(CurrentGlx(GLX_X_VISUAL_TYPE), GLX_TRUE_COLOR);
    }
}

TEST_P(WindowContext, SamplesThatNoFormatHasAreNotFound) {
    client->pixelFormat.sampleBuffers = 1;
    for (const int samples : {3, 999}) {
        client->pixelFormat.samples = samples;
        EXPECT_FALSE(Create()) << samples;
        EXPECT_FALSE(client->formatFound) << samples;
    }
}

TEST_P(WindowContext, FormatIsSetOnce) {
    ASSERT_TRUE(Create());
    EXPECT_FALSE(window->SetPixelFormat(1));
}

TEST_P(WindowContext, UnknownFormatNumberIsRefused) {
    struct Client final : WindowClient {
        explicit Client(PaneWindow& w) : window(w) {}
        int OnCreate() override { return window.SetPixelFormat(123456) ? 0 : -1; }
        void OnDestroy() override {}
        void OnPaint() override {}
        void OnPrivateMessage(std::uint32_t) override {}
        PaneWindow& window;
    } other(*window);
    EXPECT_FALSE(window->Create(other, &reason));
}

// ---- context

TEST_P(WindowContext, ContextIsACompatibilityProfileOfTheVersion) {
    ASSERT_TRUE(Create());
    GLint major = 0, minor = 0, profile = 0, alphaBits = 0, depthBits = 0, doubleBuffer = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    glGetIntegerv(GL_ALPHA_BITS, &alphaBits);
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    glGetIntegerv(GL_DOUBLEBUFFER, &doubleBuffer);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_EQ(profile, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_EQ(alphaBits, 8);
    EXPECT_GE(depthBits, 24);
    if (GetParam() != Kind::OffScreen) {
        EXPECT_EQ(doubleBuffer, GL_TRUE);  // a pbuffer has one buffer
    }
    glBegin(GL_TRIANGLES);  // removed from core profiles
    glEnd();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(WindowContext, NoSamplesMeansNoSampleBuffers) {
    ASSERT_TRUE(Create());
    GLint samples = -1, buffers = -1;
    glGetIntegerv(GL_SAMPLES, &samples);
    glGetIntegerv(GL_SAMPLE_BUFFERS, &buffers);
    EXPECT_EQ(samples, 0);
    EXPECT_EQ(buffers, 0);
}

/// As AvailableSamples(), without a context of the test.
int SamplesOfDriver(int wanted) {
    const BareContext context;
    return AvailableSamples(wanted);
}

TEST_P(WindowContext, FourSamplesSmoothAnEdge) {
    window->Resize(333, 77);
    client->pixelFormat.sampleBuffers = 1;
    client->pixelFormat.samples = 4;
    if (SamplesOfDriver(4) == 0) {
        EXPECT_FALSE(Create());
        return;
    }
    ASSERT_TRUE(Create());
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, 4);
    client->color = {200, 200, 200};
    window->Refresh();
    glClearColor(200 / 255.0f, 200 / 255.0f, 200 / 255.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glLoadIdentity();
    glColor3f(0.0f, 0.0f, 0.0f);
    glRectf(-1.0f, -1.0f, 0.0f, 1.0f);  // 333 pixels wide: the edge is in the middle of the pixels of column 166
    BindResolvedCopy(333, 77);
    EXPECT_EQ(PixelAt(165, 40), (Rgba{0, 0, 0}));
    EXPECT_EQ(PixelAt(166, 40), (Rgba{100, 100, 100})) << "two of the four samples";
    EXPECT_EQ(PixelAt(167, 40), (Rgba{200, 200, 200}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(WindowContext, FailedMakeCurrentMakesNoContextCurrent) {
    ASSERT_TRUE(Create());
    ASSERT_TRUE(window->MakeCurrent());
    ASSERT_NE(glGetString(GL_VERSION), nullptr);
    const auto withoutContext = MakePaneWindow(Request());
    EXPECT_FALSE(withoutContext->MakeCurrent());
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
}

// ---- creation and end

TEST_P(WindowContext, ContextVersionThatTheDriverRefusesIsARefusedWindow) {
    client->context = {9, 9};
    EXPECT_FALSE(Create());
    EXPECT_TRUE(client->formatFound);
    EXPECT_EQ(reason, "") << "the client refused, not the window system";
    EXPECT_FALSE(window->Exists());
    EXPECT_EQ(window->NativeHandle(), 0u);
    EXPECT_EQ(window->ContextHandle(), nullptr);
    EXPECT_EQ(client->destroyed, 0);
    if (host) {
        EXPECT_EQ(host->ChildCount(), 0);
    }
    client->context = {3, 3};
    EXPECT_TRUE(Create());
}

TEST_P(WindowContext, RecreateAppliesFormatAndVersionThatAreRequestedNow) {
    ASSERT_TRUE(Create());
    const int wanted = AvailableSamples(4);
    client->pixelFormat.sampleBuffers = wanted > 0 ? 1 : 0;
    client->pixelFormat.samples = wanted;
    ASSERT_TRUE(window->Recreate());
    EXPECT_EQ(client->created, 2);
    EXPECT_EQ(client->destroyed, 1);
    EXPECT_TRUE(client->currentInOnDestroy);
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    EXPECT_EQ(samples, wanted);
    client->context = {9, 9};
    EXPECT_FALSE(window->Recreate());
    EXPECT_FALSE(window->Exists());
    client->context = {3, 3};
    EXPECT_TRUE(window->Recreate()) << "possible after a refusal";
    window->Refresh();
    EXPECT_EQ(client->pixelInside, (Rgba{40, 120, 200}));
}

TEST_P(WindowContext, DestroyNotifiesTheClientOnceWhileTheContextExists) {
    ASSERT_TRUE(Create());
    window->Destroy();
    window->Destroy();
    EXPECT_EQ(client->destroyed, 1);
    EXPECT_TRUE(client->currentInOnDestroy);
    EXPECT_FALSE(window->Exists());
    EXPECT_EQ(window->ContextHandle(), nullptr);
    EXPECT_FALSE(window->MakeCurrent());
    window->Refresh();
    window->Invalidate(true);
    window->SwapBuffers();
    window->ProcessEvents();
    EXPECT_EQ(client->paintCalls, 0);
}

TEST_P(WindowContext, TwoWindowsDrawIndependentlyAndOneCloses) {
    const auto second = MakePaneWindow(Request());
    DrawingClient secondClient(*second);
    secondClient.color = {250, 10, 20};
    ASSERT_TRUE(Create());
    ASSERT_TRUE(second->Create(secondClient, &reason)) << reason;
    EXPECT_NE(window->ContextHandle(), second->ContextHandle());
    window->Refresh();
    second->Refresh();
    EXPECT_EQ(secondClient.pixelInside, (Rgba{250, 10, 20}));
    second->Destroy();
    client->color = {1, 2, 3};
    window->Refresh();
    EXPECT_EQ(client->pixelInside, (Rgba{1, 2, 3}));
}

}  // namespace
