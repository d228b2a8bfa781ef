// Cost of the height estimate for the clip plane, on one core, with as many vertices as are all sampled, in 8 objects.
//   EstimateClipHeight  wide: too few vertices near the spot, so that all are added to the histogram twice; flat and
//                       curved: all lie within 12 units of the spot and are fitted by a plane; thin: flat, with a
//                       spread of very many bins. The counter is the peak of the memory beyond that before, in bytes
//                       per vertex; the points kept for the fit are 12
//   PassOverVertices    the yardstick: the sum of one coordinate
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "KV_Components/Registry.h"
#include "ProcessMemory.h"
#include "clip/ClipHeight.h"

namespace {

constexpr std::int32_t kVertexCount = 3703489, kObjects = 8;

enum class Shape : std::int8_t { Wide, Flat, Curved, Thin };
const char* NameOf(Shape shape) {
    static constexpr const char* kNames[] = {"wide", "flat", "curved", "thin"};
    return kNames[static_cast<std::size_t>(shape)];
}

/// A point of the surface over (u, v), both from 0 to 1, with its normal.
Vertex PointOf(Shape shape, float u, float v, float noise) {
    const float size = shape == Shape::Wide ? 3000.0f : 12.0f;
    Vertex vertex{.x = size * u, .y = size * v, .z = 0.05f * noise, .nz = 1};
    if (shape == Shape::Thin) vertex.z = 0.02f * noise;
    if (shape == Shape::Wide) vertex.z = 10 * std::sin(20 * u) * std::cos(17 * v) + noise;
    if (shape == Shape::Curved) {  // an ellipsoid
        vertex.nx = 1.2f * (u - 0.5f), vertex.ny = 1.2f * (v - 0.5f);
        vertex.nz = std::sqrt(1 - vertex.nx * vertex.nx - vertex.ny * vertex.ny);
        vertex.z = 14 * vertex.nz + 0.05f * noise;
    }
    return vertex;
}

/// A grid of points in the order of a scan.
std::vector<std::shared_ptr<Mesh>> MakeScene(Shape shape) {
    const auto columns = static_cast<std::int32_t>(std::sqrt(kVertexCount));
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-1, 1);
    std::vector<std::shared_ptr<Mesh>> meshes;
    for (std::int32_t object = 0; object < kObjects; ++object) {
        auto mesh = std::make_shared<Mesh>(std::wstring(), false);
        const std::int32_t first = kVertexCount / kObjects * object;
        const std::int32_t end = object + 1 == kObjects ? kVertexCount : first + kVertexCount / kObjects;
        mesh->m_vVertices.reserve(static_cast<std::size_t>(end - first));
        for (std::int32_t i = first; i < end; ++i)
            mesh->m_vVertices.push_back(PointOf(shape, static_cast<float>(i % columns) / static_cast<float>(columns),
                                                static_cast<float>(i / columns) / static_cast<float>(columns),
                                                noise(random)));
        meshes.push_back(std::move(mesh));
    }
    return meshes;
}

struct Registry {
    Registry() { KV_Components_Ordinal1(); }
    ~Registry() { KV_Components_Ordinal3(); }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
};

void EstimateClipHeight(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(0));
    const Registry registry;
    const auto meshes = MakeScene(shape);
    KV_ScenePane::ClipHeight found;
    malloc_trim(0);
    ResetPeak();
    const double before = StatusMiB("VmRSS");
    for (auto _ : state) found = EstimateFromSpans(SpansOf(meshes), ClipHeightStep(kVertexCount));
    state.counters["bytes"] = (StatusMiB("VmHWM") - before) * 1048576 / kVertexCount;
    const auto expected = shape == Shape::Wide     ? KV_ScenePane::HeightFromAllPoints
                          : shape == Shape::Curved ? KV_ScenePane::HeightCurvedSpot
                                                   : KV_ScenePane::HeightFlatSpot;
    state.SetLabel(std::string(NameOf(shape)) + ", height " + std::to_string(found.height));
    if (!found.found || found.kind != expected) state.SkipWithError("another rule was used");
    state.SetItemsProcessed(state.iterations() * kVertexCount);
}
BENCHMARK(EstimateClipHeight)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void PassOverVertices(benchmark::State& state) {
    const auto meshes = MakeScene(Shape::Flat);
    for (auto _ : state) {
        float sum = 0;
        for (const auto& mesh : meshes)
            for (const Vertex& vertex : mesh->m_vVertices) sum += vertex.z;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kVertexCount);
}
BENCHMARK(PassOverVertices)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
