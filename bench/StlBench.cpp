// Binary stl files of a closed mesh, in mesh order and shuffled: the import of the control with welding, normals and
// box, its parts, and the export. The baselines weld with an ordered map, read the same file and write the same bytes.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "StlFixture.h"
#include "base/AtomicFile.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/Vector3.h"
#include "io/StlMesh.h"
#include "platform/WindowFactory.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHead = 84, kRecord = 50;

/// A file of one kind and its bytes. Made at the first use; the destructor removes the file.
class StlSample {
public:
    static const StlSample& Of(benchmark::State& state) {
        static std::map<std::pair<int, bool>, StlSample> samples;
        const std::pair<int, bool> key(static_cast<int>(state.range(0)), state.range(1) != 0);
        if (!samples.contains(key)) samples.clear();  // to keep only one in memory
        return samples.try_emplace(key, key.first, key.second).first->second;
    }
    StlSample(int million, bool shuffled)
        : bytes(MakeBenchStl(million, shuffled ? StlOrder::Shuffled : StlOrder::Mesh)),
          path((fs::temp_directory_path() / ("kv-bench-" + std::to_string(getpid()) + ".stl")).string()) {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ~StlSample() { fs::remove(path); }
    StlSample(const StlSample&) = delete;
    StlSample& operator=(const StlSample&) = delete;

    const std::vector<std::byte> bytes;
    const std::string path;
};

/// A control without OpenGL.
class Pane {
public:
    Pane() : m_control(std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(Request()))) {
        std::string reason;
        if (!m_control->CreateControlWindow(&reason)) throw std::runtime_error(reason);
    }
    CKV_ScenePaneCtrl* operator->() const { return m_control.get(); }

private:
    static KV_ScenePane::WindowRequest Request() {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
        return request;
    }
    std::unique_ptr<CKV_ScenePaneCtrl> m_control;
};

void Report(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0) * 1'000'000);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(StlSample::Of(state).bytes.size()));
}

void ImportStl(benchmark::State& state) {
    const std::wstring path = KV_ScenePane::WidePath(StlSample::Of(state).path);
    const Pane pane;
    for (auto _ : state) {
        if (pane->ImportStl(path.c_str()) != 0) state.SkipWithError("not imported");
        state.PauseTiming();
        pane->ClearData();
        state.ResumeTiming();
    }
    Report(state);
}

void ReadStl_Welded(benchmark::State& state) {
    const std::wstring path = KV_ScenePane::WidePath(StlSample::Of(state).path);
    for (auto _ : state) benchmark::DoNotOptimize(ReadStlFile(path));
    Report(state);
}

void ComputeVertexNormals(benchmark::State& state) {
    MeshBuffers buffers = ReadStl(StlSample::Of(state).bytes);
    Mesh mesh(std::move(buffers.m_vVertices), std::move(buffers.m_vTriangles), L"", false);
    for (auto _ : state) mesh.ComputeVertexNormals();
    Report(state);
}

void WeldByAnOrderedMap(benchmark::State& state) {
    const auto& bytes = StlSample::Of(state).bytes;
    for (auto _ : state) {
        std::map<Float3, std::int32_t> indexOf;
        std::vector<Float3> vertices;
        std::vector<std::int32_t> indices;
        for (std::size_t at = kHead; at < bytes.size(); at += kRecord)
            for (std::size_t corner = 0; corner < 3; ++corner) {
                Float3 position;
                std::memcpy(&position, &bytes[at + 12 + 12 * corner], sizeof position);
                const auto [found, isNew] = indexOf.try_emplace(position, static_cast<std::int32_t>(vertices.size()));
                if (isNew) vertices.push_back(position);
                indices.push_back(found->second);
            }
        benchmark::DoNotOptimize(indices.data());
    }
    Report(state);
}

void ReadingTheFile(benchmark::State& state) {
    const StlSample& sample = StlSample::Of(state);
    for (auto _ : state) {
        const std::unique_ptr<std::byte[]> bytes = std::make_unique_for_overwrite<std::byte[]>(sample.bytes.size());
        std::ifstream(sample.path, std::ios::binary)
            .read(reinterpret_cast<char*>(bytes.get()), static_cast<std::streamsize>(sample.bytes.size()));
        benchmark::DoNotOptimize(bytes.get());
    }
    Report(state);
}

void ExportStl(benchmark::State& state) {
    const StlSample& sample = StlSample::Of(state);
    const Pane pane;
    pane->ImportStl(KV_ScenePane::WidePath(sample.path).c_str());
    const std::string path = sample.path + ".out.stl";
    for (auto _ : state) pane->ExportStl(0, KV_ScenePane::WidePath(path).c_str());
    if (fs::file_size(path) != sample.bytes.size()) state.SkipWithError("not exported");
    fs::remove(path);
    Report(state);
}

void WritingTheSameBytes(benchmark::State& state) {
    const StlSample& sample = StlSample::Of(state);
    const std::string path = sample.path + ".out.stl";
    for (auto _ : state) {
        AtomicFile file(path);
        file.WriteAt(0, sample.bytes.data(), sample.bytes.size());
        file.Commit();
    }
    fs::remove(path);
    Report(state);
}

/// Arguments: millions of triangles, and 1 for shuffled triangles.
void Kinds(benchmark::internal::Benchmark* bench) {
    for (const int million : {1, 5})
        for (const int shuffled : {0, 1}) bench->Args({million, shuffled});
    bench->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
}
BENCHMARK(ImportStl)->Apply(Kinds);
BENCHMARK(ReadStl_Welded)->Apply(Kinds);
BENCHMARK(ComputeVertexNormals)->Apply(Kinds);
BENCHMARK(ReadingTheFile)->Apply(Kinds);
BENCHMARK(ExportStl)->Apply(Kinds);
BENCHMARK(WritingTheSameBytes)->Apply(Kinds);
BENCHMARK(WeldByAnOrderedMap)->Args({1, 0})->Args({1, 1})->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
