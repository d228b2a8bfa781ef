// Screenshots, off-screen: the complete call, its drawing alone, and the conversion of the pixels with a copy of the
// same 16 MiB as the baseline. The counters are the peak memory of a call above the resident size before it: of the
// first call, which also builds the buffers of the meshes, and of a later one. Memory of a software driver is included
// in both. The times of complete calls are elapsed time and CPU time of all threads of the process.
#include <GL/glew.h>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ProcessMemory.h"
#include "ScanFixture.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"
#include "render/FlipPixels.h"

namespace {

constexpr std::size_t kSide = 2048, kPixels = kSide * kSide;

/// A control on an off-screen surface with @p count scans of width x height pixels, arranged in a square.
std::unique_ptr<CKV_ScenePaneCtrl> PaneOfScans(std::int64_t count, std::int64_t width, std::int64_t height) {
    KV_ScenePane::WindowRequest request;
    auto control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
    std::string reason;
    if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no off-screen surface: " + reason);
    BenchScan scan = MakeBenchScan(static_cast<int>(width), static_cast<int>(height));
    const auto columns = static_cast<std::int64_t>(std::sqrt(static_cast<double>(count)));
    for (std::int64_t i = 0; i < count; ++i) {
        scan.trafo[3] = 50.0f * static_cast<float>(width * (i % columns));
        scan.trafo[7] = 50.0f * static_cast<float>(height * (i / columns));
        control->ImportMeasurementFromMemory(scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                                             scan.trafo, 0xB0C8D8);
    }
    control->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    control->CenterView();
    return control;
}

/// Peak memory of one call above the resident size before it, MiB.
double PeakOfCall(CKV_ScenePaneCtrl& control, std::vector<std::uint32_t>& picture) {
    malloc_trim(0);  // memory freed earlier would be reused and hide the peak
    ResetPeak();
    const double before = StatusMiB("VmRSS");
    control.CaptureScreenShot(picture.data());
    return StatusMiB("VmHWM") - before;
}

void CaptureScreenShot(benchmark::State& state) {
    const auto control = PaneOfScans(state.range(0), state.range(1), state.range(2));
    std::vector<std::uint32_t> picture(kPixels, 1);  // written once, so that its pages are resident
    const double first = PeakOfCall(*control, picture), later = PeakOfCall(*control, picture);
    for (auto _ : state) control->CaptureScreenShot(picture.data());
    double triangles = 0;
    for (const auto& mesh : control->m_vpMeshes) triangles += static_cast<double>(mesh->GetTriangleCount());
    state.counters["triangles"] = triangles;
    state.counters["first_call_MiB"] = first;
    state.counters["later_call_MiB"] = later;
}
void RenderOffscreen(benchmark::State& state) {
    const auto control = PaneOfScans(state.range(0), state.range(1), state.range(2));
    if (!control->MakeContextCurrent()) return state.SkipWithError("no context");
    for (auto _ : state) {
        control->RenderOffscreen();
        glFinish();
    }
}
void Scenes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"scans", "width", "height"})->Args({0, 64, 48})->Args({1, 640, 480})->Args({100, 64, 48});
    bench->Args({1, 2048, 1536})->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}
BENCHMARK(CaptureScreenShot)->Apply(Scenes);
BENCHMARK(RenderOffscreen)->Apply(Scenes);

void ConvertPixels(benchmark::State& state) {
    const std::vector<std::uint8_t> rgba(4 * kPixels, 7);
    std::vector<std::uint32_t> argb(kPixels, 1);
    for (auto _ : state) {
        FlipToArgb(rgba, kSide, argb);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(rgba.size()));
}
BENCHMARK(ConvertPixels)->Unit(benchmark::kMillisecond);

void CopyOfTheSameBytes(benchmark::State& state) {
    const std::vector<std::uint8_t> source(4 * kPixels, 7);
    std::vector<std::uint32_t> target(kPixels, 1);
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}
BENCHMARK(CopyOfTheSameBytes)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
