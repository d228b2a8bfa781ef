// The objects of point statistics, called through their tables as the viewer does.
//   AddSample       heights over a range of 20 in 500 bins, weights from 0 to 1; the argument is the spread in
//                   hundredths: 0, 5 and 250 bins to each side, and far more than there are
//   CentroidAndNormal  of as many points as an estimate samples at most
//   SumOfCoordinates   the yardstick: the sums alone
#include <benchmark/benchmark.h>

#include <cfloat>
#include <random>
#include <vector>

#include "KV_Components/ComponentReference.h"
#include "KV_Components/Geometry.h"
#include "KV_Components/ObjectRegistry.h"

namespace {

using namespace KvComponents;

std::vector<float> Uniform(std::size_t count, float low, float high, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> number(low, high);
    std::vector<float> numbers(count);
    for (float& value : numbers) value = number(random);
    return numbers;
}

void AddSample(benchmark::State& state) {
    constexpr std::size_t kSamples = 100'000;
    const std::vector<float> heights = Uniform(kSamples, 0, 20, 1), weights = Uniform(kSamples, 0, 1, 2);
    const auto spread = static_cast<float>(state.range(0)) / 100;
    const ObjectPointer histogram(MakeObject(height_histogram::kFactory));
    height_histogram::kInitialize(histogram.get(), 0, 20, 500);
    for (auto _ : state)
        for (std::size_t i = 0; i < kSamples; ++i)
            height_histogram::kAddSample(histogram.get(), heights[i], spread, weights[i]);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kSamples));
}
BENCHMARK(AddSample)->Arg(0)->Arg(20)->Arg(1000)->Arg(100'000'000);

constexpr std::int32_t kPoints = 3'703'489;

void CentroidAndNormal(benchmark::State& state) {
    const std::vector<float> points = Uniform(std::size_t{3} * kPoints, 0, 20, 3);
    for (auto _ : state) {
        const ObjectPointer cloud(MakeObject(point_cloud::kFactory)), search(MakeObject(neighbour_search::kFactory));
        const ObjectPointer estimator(MakeObject(normal_estimator::kFactory));
        float centroid[3], normal[3];
        point_cloud::kSetFormat(cloud.get(), L"P");
        point_cloud::kSetCount(cloud.get(), kPoints);
        point_cloud::kSetPoints(cloud.get(), points.data(), 12, kPoints);
        point_cloud::kGetCentroid(cloud.get(), centroid);
        Object *handedCloud = cloud.get(), *handedSearch = search.get();
        kAddReference(cloud.get());
        neighbour_search::kBuild(search.get(), &handedCloud);
        kAddReference(cloud.get());
        kAddReference(search.get());
        normal_estimator::kInitialize(estimator.get(), &handedCloud, &handedSearch);
        if (normal_estimator::kEstimateNormal(estimator.get(), centroid, FLT_MAX, normal) != kSucceeded)
            state.SkipWithError("no normal");
        benchmark::DoNotOptimize(normal);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(CentroidAndNormal)->Unit(benchmark::kMillisecond);

void SumOfCoordinates(benchmark::State& state) {
    const std::vector<float> points = Uniform(std::size_t{3} * kPoints, 0, 20, 3);
    for (auto _ : state) {
        double x = 0, y = 0, z = 0;
        for (std::size_t i = 0; i < points.size(); i += 3) x += points[i], y += points[i + 1], z += points[i + 2];
        benchmark::DoNotOptimize(x + y + z);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(SumOfCoordinates)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
