// The faults of the driver stand-in, seen with plain OpenGL: linked to this program, and preloaded into one that is
// not.
#include "support/DriverStandIn.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "support/PlainContext.h"
#include "support/ScratchFolder.h"
#include "support/XvfbServer.h"

namespace {

using Color = std::array<GLubyte, 4>;

float DepthAt(int x, int y) {
    float depth = -1;
    glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    return depth;
}

Color ColorAt(int x, int y) {
    Color color{};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, color.data());
    return color;
}

void ClearFrame() {
    glClearColor(0, 0, 1, 1);
    glClearDepth(0.75);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

/// By GLX and by EGL.
class DriverStandIn : public testing::TestWithParam<const char*> {
protected:
    DriverStandIn() {
        if (std::string(GetParam()) == "Glx") {
            XvfbServer::Shared();
            m_context = std::make_unique<PlainGlxContext>();
        } else {
            m_context = std::make_unique<PlainEglContext>();
        }
    }
    void Swap() { m_context->Swap(); }

private:
    std::unique_ptr<PlainContext> m_context;
};

TEST_P(DriverStandIn, WithoutFaultsPassesFramesOn) {
    const ScopedDriverFaults none({});
    ClearFrame();
    EXPECT_NEAR(DepthAt(5, 5), 0.75, 1e-6);
    EXPECT_EQ(ColorAt(5, 5), (Color{0, 0, 255, 255}));
    Swap();
    const DriverCounters counters = ReadDriverCounters();
    EXPECT_EQ(counters.swaps, 1);
    EXPECT_EQ(counters.waits, 0);
    EXPECT_EQ(counters.backBufferReads, 2);
}

TEST_P(DriverStandIn, DropsTheDepthAtTheSwapAndKeepsTheColor) {
    const ScopedDriverFaults faults({.dropDepth = true});
    ClearFrame();
    const Color before = ColorAt(63, 63);
    EXPECT_NEAR(DepthAt(63, 63), 0.75, 1e-6);
    Swap();
    EXPECT_NEAR(DepthAt(63, 63), kDroppedDepth, 1e-6);
    EXPECT_NEAR(DepthAt(0, 0), kDroppedDepth, 1e-6);
    // The swap of a pbuffer has no effect; that of a window may exchange the buffers.
    if (std::string(GetParam()) == "Egl") {
        EXPECT_EQ(ColorAt(63, 63), before);
    }
}

TEST_P(DriverStandIn, FillsTheBackBufferAfterTheSwapAndKeepsTheDepth) {
    const ScopedDriverFaults faults({.garbageBackBuffer = true});
    ClearFrame();
    Swap();
    EXPECT_EQ(ColorAt(0, 0), std::to_array(kGarbageColor));
    EXPECT_EQ(ColorAt(63, 63), std::to_array(kGarbageColor));
    EXPECT_NEAR(DepthAt(63, 63), 0.75, 1e-6);
}

TEST_P(DriverStandIn, RestoresTheStateThatItChangesAtTheSwap) {
    const ScopedDriverFaults faults({.dropDepth = true, .garbageBackBuffer = true});
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 2, 3, 4);
    glDepthMask(GL_FALSE);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    glClearColor(0.5f, 0.25f, 0.125f, 1);
    glClearDepth(0.5);
    Swap();
    GLint bound = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(bound, static_cast<GLint>(framebuffer));
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    GLboolean depthMask = GL_TRUE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
    EXPECT_EQ(depthMask, GL_FALSE);
    std::array<GLboolean, 4> colorMask{};
    glGetBooleanv(GL_COLOR_WRITEMASK, colorMask.data());
    EXPECT_EQ(colorMask, (std::array<GLboolean, 4>{GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE}));
    std::array<GLfloat, 4> clearColor{};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clearColor.data());
    EXPECT_EQ(clearColor, (std::array<GLfloat, 4>{0.5f, 0.25f, 0.125f, 1}));
    GLdouble clearDepth = 0;
    glGetDoublev(GL_DEPTH_CLEAR_VALUE, &clearDepth);
    EXPECT_EQ(clearDepth, 0.5);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    // None of that state kept it from filling all of framebuffer 0, which is still bound for reading.
    EXPECT_EQ(ColorAt(63, 63), std::to_array(kGarbageColor));
    EXPECT_NEAR(DepthAt(63, 63), kDroppedDepth, 1e-6);
}

TEST_P(DriverStandIn, FailsTheChosenUploadsOnceEach) {
    const ScopedDriverFaults faults({.failUpload = 2, .failUploadCount = 2});
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    const std::array<char, 16> bytes{};
    const std::pair<GLenum, GLint> expected[] = {
        {GL_NO_ERROR, 16}, {GL_OUT_OF_MEMORY, 0}, {GL_OUT_OF_MEMORY, 0}, {GL_NO_ERROR, 16}};
    for (const auto& [error, size] : expected) {
        glBufferData(GL_ARRAY_BUFFER, sizeof(bytes), bytes.data(), GL_STATIC_DRAW);
        EXPECT_EQ(glGetError(), error);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << "an error is reported once";
        GLint has = -1;
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &has);
        EXPECT_EQ(has, size);
    }
    EXPECT_EQ(ReadDriverCounters().uploads, 4);
    EXPECT_EQ(ReadDriverCounters().failedUploads, 2);
}

TEST_P(DriverStandIn, CountsQueriesAndReadsOfTheBackBufferOnly) {
    const ScopedDriverFaults none({});
    GLuint framebuffer = 0, color = 0;
    glGenFramebuffers(1, &framebuffer);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA, 8, 8);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
    ColorAt(1, 1);
    EXPECT_EQ(ReadDriverCounters().backBufferReads, 0);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    glBlitFramebuffer(0, 0, 8, 8, 0, 0, 8, 8, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    EXPECT_EQ(ReadDriverCounters().backBufferReads, 1);

    EXPECT_EQ(ReadDriverCounters().queries, 0);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glIsEnabled(GL_BLEND);
    EXPECT_EQ(ReadDriverCounters().queries, 2);
}

INSTANTIATE_TEST_SUITE_P(Through, DriverStandIn, testing::Values("Glx", "Egl"),
                         [](const auto& row) { return std::string(row.param); });

// ---- waits

/// Long enough to be distinguished from the time of a swap without a wait on a busy machine.
constexpr double kBlankMs = 150;

double MillisecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

class DriverStandInBlanks : public testing::Test {
protected:
    DriverStandInBlanks() { XvfbServer::Shared(); }
};

TEST_F(DriverStandInBlanks, ASwapSleepsUntilTheIntervalIsZero) {
    PlainGlxContext context;
    const ScopedDriverFaults faults({.blankMs = kBlankMs});
    EXPECT_GE(MillisecondsOf([&] { context.Swap(); }), kBlankMs);
    EXPECT_EQ(ReadDriverCounters().waits, 1) << "the interval is 1 at the start";

    const auto setInterval = reinterpret_cast<PFNGLXSWAPINTERVALEXTPROC>(
        glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXSwapIntervalEXT")));
    setInterval(context.GetDisplay(), context.Drawable(), 0);
    unsigned int interval = 7;
    glXQueryDrawable(context.GetDisplay(), context.Drawable(), GLX_SWAP_INTERVAL_EXT, &interval);
    EXPECT_EQ(interval, 0U);
    context.Swap();
    EXPECT_EQ(ReadDriverCounters().waits, 1);
    setInterval(context.GetDisplay(), context.Drawable(), 2);
    EXPECT_GE(MillisecondsOf([&] { context.Swap(); }), 2 * kBlankMs);
    EXPECT_EQ(ReadDriverCounters().swaps, 3);
    EXPECT_EQ(ReadDriverCounters().waits, 2);
}

TEST_F(DriverStandInBlanks, TheOlderExtensionsSetTheCurrentDrawableAndSgiRefusesZero) {
    PlainGlxContext context;
    const ScopedDriverFaults faults({.blankMs = 1});
    const auto procedure = [](const char* name) {
        return glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name));
    };
    const auto setMesa = reinterpret_cast<PFNGLXSWAPINTERVALMESAPROC>(procedure("glXSwapIntervalMESA"));
    const auto getMesa = reinterpret_cast<PFNGLXGETSWAPINTERVALMESAPROC>(procedure("glXGetSwapIntervalMESA"));
    const auto setSgi = reinterpret_cast<PFNGLXSWAPINTERVALSGIPROC>(procedure("glXSwapIntervalSGI"));
    EXPECT_EQ(getMesa(), 1);
    EXPECT_EQ(setSgi(0), GLX_BAD_VALUE);
    EXPECT_EQ(getMesa(), 1);
    EXPECT_EQ(setMesa(0), 0);
    EXPECT_EQ(getMesa(), 0);
    EXPECT_EQ(setSgi(2), 0);
    EXPECT_EQ(getMesa(), 2);
}

TEST_F(DriverStandInBlanks, TheListOfExtensionsHasTheChosenOnes) {
    PlainGlxContext context;
    const auto list = [&] {
        return " " + std::string(glXQueryExtensionsString(context.GetDisplay(), DefaultScreen(context.GetDisplay()))) +
               " ";
    };
    const ScopedDriverFaults faults({.blankMs = 1, .swapControlExt = false, .swapControlSgi = false});
    EXPECT_EQ(list().find(" GLX_EXT_swap_control "), std::string::npos);
    EXPECT_NE(list().find(" GLX_MESA_swap_control "), std::string::npos);
    EXPECT_EQ(list().find(" GLX_SGI_swap_control "), std::string::npos);
    const ScopedDriverFaults others({.blankMs = 1, .swapControlMesa = false});
    EXPECT_NE(list().find(" GLX_EXT_swap_control "), std::string::npos);
    EXPECT_EQ(list().find(" GLX_MESA_swap_control "), std::string::npos);
    EXPECT_NE(list().find(" GLX_SGI_swap_control "), std::string::npos);
}

TEST_F(DriverStandInBlanks, AnEglSwapSleepsUntilTheIntervalIsZero) {
    PlainEglContext context;
    const ScopedDriverFaults faults({.blankMs = kBlankMs});
    EXPECT_GE(MillisecondsOf([&] { context.Swap(); }), kBlankMs);
    eglSwapInterval(context.GetDisplay(), 0);
    context.Swap();
    EXPECT_EQ(ReadDriverCounters().waits, 1);
}

// ---- preloaded

std::string Output(const std::string& command) {
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return "no shell";
    std::string text;
    std::array<char, 4096> bytes{};
    for (std::size_t count = 0; (count = fread(bytes.data(), 1, bytes.size(), pipe)) > 0;)
        text.append(bytes.data(), count);
    text.append(pclose(pipe) == 0 ? "" : "failed\n");
    return text;
}

class DriverStandInPreloaded : public testing::TestWithParam<const char*> {
protected:
    DriverStandInPreloaded() { XvfbServer::Shared(); }
    /// What the client prints under the variables.
    static std::string Client(const std::string& variables) {
        return Output("env " + variables + " \"" KV_STAND_IN_CLIENT "\" " + GetParam() + " 2>&1");
    }
    static inline const std::string kPreload = "LD_PRELOAD=\"" KV_STAND_IN_PRELOAD "\" ";
};

TEST_P(DriverStandInPreloaded, FaultsComeFromTheEnvironment) {
    const ScratchFolder folder;
    const std::string report = folder / "report";
    EXPECT_EQ(Client(kPreload +
                     "KV_STAND_IN_DROP_DEPTH=1 KV_STAND_IN_GARBAGE_BACK_BUFFER=1 KV_STAND_IN_FAIL_UPLOAD=2 "
                     "KV_STAND_IN_BLANK_MS=50 KV_STAND_IN_REPORT=" +
                     report),
              "depth 0.25\ncolor 255 0 255\nerrors 0 1285 0\nwaited 1\nsame 1\n");
    std::ifstream file(report);
    const std::string counters{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(counters.starts_with("swaps 2\nwaits 2\nuploads 3\nfailedUploads 1\nbackBufferReads 2\n")) << counters;
}

TEST_P(DriverStandInPreloaded, WithoutFaultsTheProgramSeesTheSameDriver) {
    const std::string seen = Client(kPreload);
    EXPECT_TRUE(seen.ends_with("errors 0 0 0\nwaited 0\nsame 1\n")) << seen;
    EXPECT_EQ(seen, Client(""));
}

INSTANTIATE_TEST_SUITE_P(Into, DriverStandInPreloaded, testing::Values("glx", "egl"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
