// Cost of a freehand lasso in a window of 1920 x 1080 pixels. The lasso is an ellipse with a jagged line in it, in a
// box of this share of the window.
//   Redraw          a moved rubber band until the driver has what to draw: CPU time without the driver. Pixel buffers
//                   are plain memory and uploads do nothing
//   RedrawDiagonal  the same for a lasso across the window without area: its fill reaches all pixels
//   RedrawUnchanged a frame in which the lasso is as before, with the driver
//   RedrawDriver    a moved rubber band with the driver, until it has drawn the lasso into the frame
//   Mask            the final raster
//   Start           silhouette of an empty scene and textures
#include <GL/glew.h>
//
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"

namespace {

constexpr int kWidth = 1920, kHeight = 1080;

std::unique_ptr<CKV_ScenePaneCtrl> MakePane() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = kWidth;
    request.height = kHeight;
    auto control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
    std::string reason;
    if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
    control->PerformRefresh();
    return control;
}

/// A lasso with its rubber band, which jumps between two points.
class Lasso {
public:
    /// @param percent  of the width and of the height of the window
    Lasso(CKV_ScenePaneCtrl& control, std::int64_t percent) : m_half(0.495f * static_cast<float>(percent) / 100.0f) {
        session = std::make_unique<CutSession>(control.CreateCutMaskTextures(), LassoPixel{kWidth / 2, kHeight / 2},
                                               LassoTint{0xFFFF00, 1.0f}, LassoTint{255, 0.5f}, LassoTint{0, 0.0f},
                                               control.m_progUseMask);
        constexpr int kPoints = 400;
        for (int i = 0; i <= kPoints; ++i) {
            const double angle = 2 * std::numbers::pi * i / kPoints;
            Add(std::cos(angle), std::sin(angle));
        }
        for (int i = 0; i <= kPoints; ++i) Add(-0.6 + 1.2 * i / kPoints, i % 2 == 0 ? 0.3 : -0.3);
        session->Draw(true);
    }
    void MoveBand() {
        m_isUp = !m_isUp;
        session->SetPreviewPoint(0.5f + 0.9f * m_half, m_isUp ? 0.5f : 0.5f + 0.2f * m_half);
    }

    std::unique_ptr<CutSession> session;

private:
    void Add(double x, double y) {
        session->AddPoint(0.5f + m_half * static_cast<float>(x), 0.5f + m_half * static_cast<float>(y));
    }

    float m_half;
    bool m_isUp = false;
};

/// Whether glTexSubImage2D() does nothing.
bool s_uploadsNothing = false;

/// Pixel buffers are plain memory while it lives, and no pixel reaches the driver.
class NoUploads {
public:
    NoUploads() {
        s_memory.resize(std::size_t{kWidth} * kHeight * 4);
        m_map = __glewMapBufferRange;
        m_unmap = __glewUnmapBuffer;
        __glewMapBufferRange = [](GLenum, GLintptr, GLsizeiptr, GLbitfield) -> void* { return s_memory.data(); };
        __glewUnmapBuffer = [](GLenum) -> GLboolean { return GL_TRUE; };
        s_uploadsNothing = true;
    }
    ~NoUploads() {
        __glewMapBufferRange = m_map;
        __glewUnmapBuffer = m_unmap;
        s_uploadsNothing = false;
    }
    NoUploads(const NoUploads&) = delete;
    NoUploads& operator=(const NoUploads&) = delete;

private:
    static inline std::vector<unsigned char> s_memory;
    PFNGLMAPBUFFERRANGEPROC m_map;
    PFNGLUNMAPBUFFERPROC m_unmap;
};

void Redraw(benchmark::State& state) {
    const auto control = MakePane();
    Lasso lasso(*control, state.range(0));
    glFinish();
    glViewport(0, 0, 1, 1);  // what the driver draws costs nothing
    const NoUploads noUploads;
    for (auto _ : state) {
        lasso.MoveBand();
        lasso.session->Draw(true);
    }
}
BENCHMARK(Redraw)->ArgName("percent")->Arg(10)->Arg(25)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);

/// The most pixels that a fill can reach: a lasso without area across the window.
void RedrawDiagonal(benchmark::State& state) {
    const auto control = MakePane();
    CutSession session(control->CreateCutMaskTextures(), {1, 1}, {0xFFFF00, 1.0f}, {255, 0.5f}, {0, 0.0f},
                       control->m_progUseMask);
    session.AddPoint(0.999f, 0.998f);
    session.Draw(true);
    glFinish();
    glViewport(0, 0, 1, 1);
    const NoUploads noUploads;
    bool isUp = false;
    for (auto _ : state) {
        isUp = !isUp;
        session.SetPreviewPoint(0.99f, isUp ? 0.99f : 0.98f);
        session.Draw(true);
    }
}
BENCHMARK(RedrawDiagonal)->Unit(benchmark::kMillisecond);

void RedrawUnchanged(benchmark::State& state) {
    const auto control = MakePane();
    Lasso lasso(*control, state.range(0));
    glFinish();
    glViewport(0, 0, 1, 1);
    for (auto _ : state) lasso.session->Draw(true);
}
BENCHMARK(RedrawUnchanged)->ArgName("percent")->Arg(100)->Unit(benchmark::kMillisecond);

void RedrawDriver(benchmark::State& state) {
    const auto control = MakePane();
    Lasso lasso(*control, state.range(0));
    for (auto _ : state) {
        lasso.MoveBand();
        lasso.session->Draw(true);
        glFinish();
    }
}
BENCHMARK(RedrawDriver)
    ->ArgName("percent")
    ->Arg(10)
    ->Arg(25)
    ->Arg(50)
    ->Arg(100)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void Mask(benchmark::State& state) {
    const auto control = MakePane();
    const Lasso lasso(*control, state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(lasso.session->CreateMaskBits(kWidth, kHeight));
}
BENCHMARK(Mask)->ArgName("percent")->Arg(10)->Arg(25)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);

void Start(benchmark::State& state) {
    const auto control = MakePane();
    for (auto _ : state) benchmark::DoNotOptimize(control->CreateCutMaskTextures());
}
BENCHMARK(Start)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

// Takes the place of the driver's function in this program.
extern "C" void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                                GLenum format, GLenum type, const GLvoid* pixels) {
    if (s_uploadsNothing) return;
    using Function = void (*)(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, const GLvoid*);
    static const auto s_driver = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "glTexSubImage2D"));
    s_driver(target, level, x, y, width, height, format, type, pixels);
}

BENCHMARK_MAIN();
