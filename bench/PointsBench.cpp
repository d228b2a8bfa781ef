// Import and frames of free points, off-screen. The yardstick of the import is a copy of the same bytes into fresh
// memory and a plain loop that computes the box.
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "markers/PointBox.h"
#include "platform/WindowFactory.h"

namespace {

struct Points {
    std::vector<float> xyz, colors;
};

/// In a cube of 100 units, in no order.
const Points& MakePoints(std::int64_t count) {
    static Points points;
    const auto size = static_cast<std::size_t>(3 * count);
    if (points.xyz.size() == size) return points;
    points.xyz.resize(size), points.colors.resize(size);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(-50, 50), channel(0, 1);
    for (float& value : points.xyz) value = coordinate(random);
    for (float& value : points.colors) value = channel(random);
    return points;
}

std::unique_ptr<CKV_ScenePaneCtrl> MakeControl(int width, int height) {
    KV_ScenePane::WindowRequest request;
    request.width = width;
    request.height = height;
    auto control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
    std::string reason;
    if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no off-screen surface: " + reason);
    control->MakeContextCurrent();
    control->PerformRefresh();
    return control;
}

Box PlainBox(const std::vector<float>& xyz) {
    Box box;
    for (std::size_t i = 0; i + 3 <= xyz.size(); i += 3) {
        const Float3 p = ToFloat3(&xyz[i]);
        if (std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2])) box.Merge(p, p);
    }
    return box;
}

void SetBytes(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * state.range(0) * 24); }

// ---- import

void ImportPoints_Points(benchmark::State& state) {
    const Points& points = MakePoints(state.range(0));
    const auto control = MakeControl(64, 64);
    for (auto _ : state) {
        const std::int32_t id = control->ImportPoints(static_cast<std::int32_t>(state.range(0)), points.xyz.data(),
                                                      points.colors.data(), 1.0f);
        glFinish();
        state.PauseTiming();  // DeletePoints() leaves the buffers to the context
        const FreePointSet set = control->m_mapFreePoints[id];
        glDeleteVertexArrays(1, &set.vertexArray);
        glDeleteBuffers(1, &set.positionBuffer);
        glDeleteBuffers(1, &set.colorBuffer);
        control->m_mapFreePoints.clear();
        glFinish();
        state.ResumeTiming();
    }
    SetBytes(state);
}

void CopyAndPlainBox_SamePoints(benchmark::State& state) {
    const Points& points = MakePoints(state.range(0));
    const std::size_t bytes = points.xyz.size() * sizeof(float);
    for (auto _ : state) {
        auto xyz = std::make_unique_for_overwrite<std::byte[]>(bytes);
        auto colors = std::make_unique_for_overwrite<std::byte[]>(bytes);
        std::memcpy(xyz.get(), points.xyz.data(), bytes);
        std::memcpy(colors.get(), points.colors.data(), bytes);
        benchmark::DoNotOptimize(xyz.get());
        benchmark::DoNotOptimize(colors.get());
        benchmark::DoNotOptimize(PlainBox(points.xyz));
        state.PauseTiming();  // freeing is not part of an import
        xyz.reset(), colors.reset();
        state.ResumeTiming();
    }
    SetBytes(state);
}

void BoxOfFinitePoints_Points(benchmark::State& state) {
    const Points& points = MakePoints(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(BoxOfFinitePoints(points.xyz));
    state.SetBytesProcessed(state.iterations() * state.range(0) * 12);
}

void PlainBox_Points(benchmark::State& state) {
    const Points& points = MakePoints(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(PlainBox(points.xyz));
    state.SetBytesProcessed(state.iterations() * state.range(0) * 12);
}

BENCHMARK(ImportPoints_Points)->Arg(100'000)->Arg(5'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CopyAndPlainBox_SamePoints)->Arg(100'000)->Arg(5'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BoxOfFinitePoints_Points)->Arg(5'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainBox_Points)->Arg(5'000'000)->Unit(benchmark::kMillisecond);

// ---- frames. All points are left of the window: what is measured is the submission and the transform in the driver.

void Frame_OnePointSet(benchmark::State& state) {
    const Points& points = MakePoints(state.range(0));
    const auto control = MakeControl(512, 512);
    control->ImportPoints(static_cast<std::int32_t>(state.range(0)), points.xyz.data(), points.colors.data(), 1.0f);
    control->SetPointCloudRenderPointSize(0.02f);
    control->SetViewParams(1, 0, 0, 0, 1, 0, 1e6f, 0, 0, 1, 0);
    for (auto _ : state) {
        control->PerformRefresh();
        glFinish();
    }
}

void Submission_OfPointSets(benchmark::State& state) {
    const auto control = MakeControl(64, 64);
    const float point[3] = {1e6f, 0, 0};
    for (std::int64_t i = 0; i < state.range(0); ++i) control->ImportPoints(1, point, point, i % 2 == 0 ? 1.0f : 0.5f);
    for (auto _ : state) {
        control->PerformRefresh();
        glFinish();
    }
}

BENCHMARK(Frame_OnePointSet)->Arg(0)->Arg(5'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Submission_OfPointSets)->Arg(0)->Arg(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
