// Triangulation of a measurement grid on one thread and on two, compared with a copy of its input and output bytes.
// Grids: a smooth height field with a little noise and round holes on 27 % of the pixels.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "geometry/GridTriangulation.h"

namespace {

struct Grid {
    std::int16_t width, height;
    std::vector<float> points;
    std::vector<std::uint16_t> mask;

    [[nodiscard]] std::int64_t PixelCount() const { return std::int64_t{width} * height; }
};

/// Masks discs at random positions until @p share of the pixels is masked.
void PunchHoles(Grid& grid, double share, std::mt19937& random) {
    const auto wanted = static_cast<std::int64_t>(share * static_cast<double>(grid.PixelCount()));
    std::uniform_int_distribution<int> anyX(0, grid.width - 1), anyY(0, grid.height - 1),
        anyRadius(2, grid.height / 10);
    std::int64_t holes = 0;
    while (holes < wanted) {
        const int cx = anyX(random), cy = anyY(random), radius = anyRadius(random);
        for (int y = std::max(0, cy - radius); y < std::min<int>(grid.height, cy + radius); ++y)
            for (int x = std::max(0, cx - radius); x < std::min<int>(grid.width, cx + radius); ++x) {
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) >= radius * radius) continue;
                std::uint16_t& word = grid.mask[static_cast<std::size_t>(y) * grid.width + static_cast<std::size_t>(x)];
                holes += word == 0 && holes < wanted;
                if (holes <= wanted) word = 1;
            }
    }
}

// Pixels 0.05 mm apart, in millimetres. Noise of 2 micrometres makes few sliver triangles.
Grid MakeGrid(std::int64_t width, std::int64_t height) {
    std::mt19937 random(17);
    std::normal_distribution<float> noise(0.0f, 0.002f);
    Grid grid{static_cast<std::int16_t>(width), static_cast<std::int16_t>(height), {}, {}};
    grid.points.reserve(static_cast<std::size_t>(3 * width * height));
    grid.mask.assign(static_cast<std::size_t>(width * height), 0);
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            const float px = 0.05f * static_cast<float>(x), py = 0.05f * static_cast<float>(y);
            grid.points.push_back(px + noise(random));
            grid.points.push_back(py + noise(random));
            grid.points.push_back(5 * std::sin(0.1f * px) * std::cos(0.07f * py) + noise(random));
        }
    PunchHoles(grid, 0.27, random);
    return grid;
}

std::unique_ptr<Mesh> Create(const Grid& grid, std::int32_t skip, unsigned threads = 1) {
    static const float kTrafo[16] = {0.8f, -0.6f, 0, 10, 0.6f, 0.8f, 0, -20, 0, 0, 1, 500, 0, 0, 0, 1};
    return CreateInternalMesh(L"", grid.width, grid.height, grid.points.data(), grid.mask.data(), kTrafo, 0, nullptr,
                              false, skip, threads);
}

void CountPixels(benchmark::State& state, const Grid& grid) {
    state.counters["Mpixel/s"] = benchmark::Counter(static_cast<double>(state.iterations() * grid.PixelCount()) * 1e-6,
                                                    benchmark::Counter::kIsRate);
}

// Arguments: width, height, skip (every how many pixels one is used), threads.
void CreateInternalMesh_Pixels(benchmark::State& state) {
    const Grid grid = MakeGrid(state.range(0), state.range(1));
    const auto skip = static_cast<std::int32_t>(state.range(2));
    const auto threads = static_cast<unsigned>(state.range(3));
    for (auto _ : state) benchmark::DoNotOptimize(Create(grid, skip, threads));
    CountPixels(state, grid);
}

// The baseline: copies grid and mesh into newly allocated memory, which is the cost of the memory alone.
void CopyOfTheSameBytes(benchmark::State& state) {
    const Grid grid = MakeGrid(state.range(0), state.range(1));
    const auto mesh = Create(grid, static_cast<std::int32_t>(state.range(2)));
    const std::size_t pointBytes = grid.points.size() * sizeof(float), maskBytes = grid.mask.size() * 2;
    std::vector<char> scratch(pointBytes + maskBytes);
    for (auto _ : state) {
        std::memcpy(scratch.data(), grid.points.data(), pointBytes);
        std::memcpy(scratch.data() + pointBytes, grid.mask.data(), maskBytes);
        benchmark::DoNotOptimize(std::vector<Vertex>(mesh->m_vVertices));
        benchmark::DoNotOptimize(std::vector<Triangle>(mesh->m_vTriangles));
        benchmark::ClobberMemory();
    }
    CountPixels(state, grid);
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->Args({640, 480, 1})->Args({2048, 1536, 1})->Args({640, 480, 3})->Args({2048, 1536, 3});
    bench->ArgNames({"width", "height", "skip"})->Unit(benchmark::kMillisecond);
}

void SizesOnThreads(benchmark::internal::Benchmark* bench) {
    for (const int skip : {1, 3})
        for (const int threads : {1, 2}) bench->Args({640, 480, skip, threads})->Args({2048, 1536, skip, threads});
    bench->ArgNames({"width", "height", "skip", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
}

}  // namespace

BENCHMARK(CreateInternalMesh_Pixels)->Apply(SizesOnThreads);
BENCHMARK(CopyOfTheSameBytes)->Apply(Sizes);

BENCHMARK_MAIN();
