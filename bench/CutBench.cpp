// Cost of a cut of one object with a million vertices on one core, and the memory of an undo stack. The times are those
// of the processor: the polygon's pixels, the test of all vertices and the clone of what is left.
//   Cut               kind 0 (inside), 1 (outside), 2 (visible inside; without the read of the depths); corners of the
//                     polygon; tenths of the object that it encloses. All of it in two sizes of window
//   RasterOfPolygon   the pixels alone; RasterOfZigzag: with all edges in all rows
//   CopyOfTheObject   the yardstick: vertices and triangles into fresh memory
//   FiftyCuts         of one object among 20: resident memory of the undo stack in MiB, and how many MiB the clones
//   have
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <utility>
#include <vector>

#include "ProcessMemory.h"
#include "base/HugePages.h"
#include "cut/ApplyCut.h"
#include "cut/PolygonRaster.h"
#include "geometry/GridTriangulation.h"

namespace {

using KV_ScenePane::LassoPoint;

struct WindowSize {
    std::int32_t width, height;
};
constexpr WindowSize kWindows[] = {{1024, 768}, {1920, 1080}};

/// A wavy square from -1 to 1 as a scanner delivers it.
std::shared_ptr<Mesh> MakeScan(std::int16_t side) {
    const auto count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    std::vector<float> points;
    points.reserve(3 * count);
    const float step = 2.0f / static_cast<float>(side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            points.insert(points.end(), {static_cast<float>(x) * step - 1, 1 - static_cast<float>(y) * step,
                                         0.1f * std::sin(static_cast<float>(x) * 5 * step) *
                                             std::cos(static_cast<float>(y) * 6 * step)});
    const std::vector<std::uint16_t> mask(count);
    return CreateInternalMesh(L"scan", side, side, points.data(), mask.data(), nullptr, 0, nullptr, false, 1);
}

const std::shared_ptr<Mesh>& MillionVertices() {
    static const std::shared_ptr<Mesh> mesh = MakeScan(1000);
    return mesh;
}

/// A star around the middle of the window, closed. @param tenths  of the object; 10 is all of the window
std::vector<LassoPoint> Star(std::int64_t corners, std::int64_t tenths) {
    std::vector<LassoPoint> points;
    points.reserve(static_cast<std::size_t>(corners) + 1);
    const double radius = tenths == 10 ? 2.0 : 0.5 * std::sqrt(static_cast<double>(tenths) / 10);
    for (std::int64_t i = 0; i <= corners; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i % corners) / static_cast<double>(corners);
        const double r = i % 2 == 0 ? radius : 0.85 * radius;
        points.push_back(
            {std::clamp(0.5 + r * std::cos(angle), 0.0, 0.9999), std::clamp(0.5 + r * std::sin(angle), 0.0, 0.9999)});
    }
    return points;
}

/// A camera five units before the object, which fills the height of the window.
std::shared_ptr<ACAD::CutMask> MakeMask(std::uint32_t kind, const WindowSize& window, MaskBits&& bits) {
    auto mask = std::make_shared<ACAD::CutMask>();
    const double aspect = static_cast<double>(window.width) / window.height, focus = 4.5;
    mask->m_nKind = kind;
    mask->m_dModelView = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -5, 1};
    mask->m_dProjection = {focus / aspect, 0, 0, 0, 0, focus, 0, 0, 0, 0, -11.0 / 9, -1, 0, 0, -20.0 / 9, 0};
    mask->m_nViewport = {0, 0, window.width, window.height};
    mask->m_rcBounds = bits.m_rcBounds;
    mask->m_vBits = std::move(bits.m_vBits);
    return mask;
}

void Cut(benchmark::State& state) {
    const auto kind = static_cast<std::uint32_t>(state.range(0));
    const WindowSize window = kWindows[state.range(1)];
    const std::vector<LassoPoint> points = Star(state.range(2), state.range(3));
    const std::vector<float> depths(static_cast<std::size_t>(window.width * window.height), 1.0f);
    const auto& mesh = MillionVertices();
    std::size_t left = 0;
    for (auto _ : state) {
        const auto mask = MakeMask(kind, window, CreateMaskBits(window.width, window.height, points));
        if (kind == ACAD::CutKindVisibleInside) {
            state.PauseTiming();
            mask->m_vDepth = depths;
            state.ResumeTiming();
        }
        const auto cut = CutMesh(mesh, mask);
        state.PauseTiming();
        left = cut->GetVertexCount();
        malloc_trim(0);  // each cut is the first one: its memory is fresh
        state.ResumeTiming();
    }
    state.counters["left"] = static_cast<double>(left);
}
BENCHMARK(Cut)
    ->ArgNames({"kind", "large", "corners", "tenths"})
    ->ArgsProduct({{0, 1, 2}, {0, 1}, {8, 64, 400}, {1, 5, 10}})
    ->Unit(benchmark::kMillisecond);

void RasterOfPolygon(benchmark::State& state) {
    const WindowSize window = kWindows[state.range(0)];
    const std::vector<LassoPoint> points = Star(state.range(1), 10);
    for (auto _ : state) benchmark::DoNotOptimize(CreateMaskBits(window.width, window.height, points));
}
BENCHMARK(RasterOfPolygon)
    ->ArgNames({"large", "corners"})
    ->ArgsProduct({{0, 1}, {8, 64, 400, 4000}})
    ->Unit(benchmark::kMillisecond);

/// Every edge crosses every row: as many edges as can be in one row.
void RasterOfZigzag(benchmark::State& state) {
    const WindowSize window = kWindows[1];
    std::vector<LassoPoint> points;
    points.reserve(static_cast<std::size_t>(state.range(0)) + 1);
    for (std::int64_t i = 0; i < state.range(0); ++i)
        points.push_back({static_cast<double>(i) / static_cast<double>(state.range(0)), i % 2 == 0 ? 0.0 : 0.9999});
    points.push_back(points.front());
    for (auto _ : state) benchmark::DoNotOptimize(CreateMaskBits(window.width, window.height, points));
}
BENCHMARK(RasterOfZigzag)->ArgName("corners")->Arg(8)->Arg(64)->Arg(400)->Unit(benchmark::kMillisecond);

void CopyOfTheObject(benchmark::State& state) {
    const auto& mesh = MillionVertices();
    for (auto _ : state) {
        std::vector<Vertex> vertices;
        std::vector<Triangle> triangles;
        ReserveInHugePages(vertices, mesh->m_vVertices.size());
        ReserveInHugePages(triangles, mesh->m_vTriangles.size());
        vertices.assign(mesh->m_vVertices.begin(), mesh->m_vVertices.end());
        triangles.assign(mesh->m_vTriangles.begin(), mesh->m_vTriangles.end());
        benchmark::DoNotOptimize(vertices.data());
        benchmark::DoNotOptimize(triangles.data());
        state.PauseTiming();
        vertices = {};
        triangles = {};
        malloc_trim(0);
        state.ResumeTiming();
    }
}
BENCHMARK(CopyOfTheObject)->Unit(benchmark::kMillisecond);

double MiBOf(const Mesh& mesh) {
    return static_cast<double>(mesh.m_vVertices.capacity() * sizeof(Vertex) +
                               mesh.m_vTriangles.capacity() * sizeof(Triangle)) /
           (1024 * 1024);
}

void FiftyCuts(benchmark::State& state) {
    const WindowSize window = kWindows[1];
    double used = 0, clones = 0, masks = 0;
    for (auto _ : state) {
        std::vector<std::shared_ptr<Mesh>> objects;
        for (int i = 0; i < 20; ++i) {
            objects.push_back(MakeScan(400));
            if (i == 7) continue;
            for (Vertex& vertex : objects.back()->m_vVertices) vertex.x += 100;  // beside the window
        }
        malloc_trim(0);
        const double before = StatusMiB("VmRSS");
        clones = masks = 0;
        std::vector<std::vector<std::shared_ptr<Mesh>>> undo;
        for (int step = 0; step < 50; ++step) {
            // A spot that moves over the object.
            std::vector<LassoPoint> points = Star(64, 1);
            for (LassoPoint& point : points) {
                point.x = 0.25 + 0.05 * (step % 10) + 0.15 * (point.x - 0.5);
                point.y = 0.1 + 0.16 * (step / 10) + 0.15 * (point.y - 0.5);
            }
            const auto mask = MakeMask(0, window, CreateMaskBits(window.width, window.height, points));
            auto cut = ApplyCutMask(objects, mask);
            if (cut.empty()) return state.SkipWithError("a cut has hit nothing");
            undo.push_back(std::exchange(objects, std::move(cut)));
            clones += MiBOf(*objects[7]);
            masks += static_cast<double>(mask->m_vBits.m_vWords.size() * 4) / (1024 * 1024);
        }
        malloc_trim(0);
        used = StatusMiB("VmRSS") - before;
    }
    state.counters["used_MiB"] = used;
    state.counters["clones_MiB"] = clones;
    state.counters["masks_MiB"] = masks;
}
BENCHMARK(FiftyCuts)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
