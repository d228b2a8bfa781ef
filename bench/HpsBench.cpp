// Saving and loading hps files with the objects that the viewer uses, and the bytes per triangle. The mesh is closed
// and has a million triangles: a bumpy sphere with 3 micrometres of noise. A load reads positions, normals and indices.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numbers>
#include <random>
#include <stdexcept>
#include <vector>

#include "KV_Components/Hps.h"
#include "KV_Components/ObjectRegistry.h"
#include "KV_ScenePane/PathText.h"

namespace {

using namespace KvComponents;

struct BenchMesh {
    std::vector<float> positions;
    std::vector<std::int32_t> indices;
};

/// Rings of points between two poles, triangles ring by ring: 500,002 vertices, 1,000,000 triangles.
BenchMesh BumpySphere() {
    constexpr int kRings = 500, kPoints = 1000;
    constexpr double kNoise = 0.003, kPi = std::numbers::pi;
    BenchMesh mesh;
    std::mt19937 random(1);
    const auto noise = [&random] { return (static_cast<double>(random()) / 2147483648.0 - 1.0) * kNoise; };
    const auto addPoint = [&](double theta, double phi) {
        const double bumps =
            2 * std::sin(5 * theta) * std::sin(7 * phi) + 0.3 * std::sin(40 * theta) * std::cos(31 * phi);
        const double radius = 50 + bumps + noise();
        for (const double c : {std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)})
            mesh.positions.push_back(static_cast<float>(radius * c));
    };
    const auto index = [](int ring, int point) { return 1 + ring * kPoints + point % kPoints; };
    const auto addTriangle = [&](int a, int b, int c) { mesh.indices.insert(mesh.indices.end(), {a, b, c}); };
    addPoint(0, 0);
    for (int ring = 0; ring < kRings; ++ring)
        for (int point = 0; point < kPoints; ++point)
            addPoint(kPi * (ring + 1) / (kRings + 1), 2 * kPi * point / kPoints);
    addPoint(kPi, 0);
    const int last = 1 + kRings * kPoints;
    for (int point = 0; point < kPoints; ++point) addTriangle(0, index(0, point), index(0, point + 1));
    for (int ring = 0; ring + 1 < kRings; ++ring)
        for (int point = 0; point < kPoints; ++point) {
            const int a = index(ring, point), b = index(ring, point + 1);
            const int c = index(ring + 1, point), d = index(ring + 1, point + 1);
            addTriangle(a, c, b);
            addTriangle(b, c, d);
        }
    for (int point = 0; point < kPoints; ++point)
        addTriangle(index(kRings - 1, point), last, index(kRings - 1, point + 1));
    return mesh;
}

/// The same mesh with vertices and triangles in random order.
BenchMesh Shuffled(const BenchMesh& mesh) {
    std::mt19937 random(2);
    std::vector<std::size_t> places(mesh.positions.size() / 3), triangles(mesh.indices.size() / 3);
    for (auto* order : {&places, &triangles}) {
        for (std::size_t i = 0; i < order->size(); ++i) (*order)[i] = i;
        std::shuffle(order->begin(), order->end(), random);
    }
    BenchMesh shuffled = mesh;
    for (std::size_t i = 0; i < places.size(); ++i)
        std::copy_n(&mesh.positions[3 * i], 3, &shuffled.positions[3 * places[i]]);
    for (std::size_t i = 0; i < mesh.indices.size(); ++i)
        shuffled.indices[3 * triangles[i / 3] + i % 3] =
            static_cast<std::int32_t>(places[static_cast<std::size_t>(mesh.indices[i])]);
    return shuffled;
}

/// Made once, at the first use.
const BenchMesh& MeshOf(std::int64_t isShuffled) {
    static const BenchMesh rows = BumpySphere(), shuffled = Shuffled(rows);
    return isShuffled != 0 ? shuffled : rows;
}

struct ReleaseObject {
    void operator()(Object* object) const { kRelease(object); }
};
using ObjectPointer = std::unique_ptr<Object, ReleaseObject>;

void Require(std::int32_t status) {
    if (status != kSucceeded) throw std::runtime_error("an operation failed");
}

ObjectPointer Make(const char* factory) { return ObjectPointer(MakeObject(factory)); }

/// A path in the temporary folder, unique for the process. The destructor removes the file.
class BenchFile {
public:
    BenchFile()
        : m_path(std::filesystem::temp_directory_path() / ("kv-bench-" + std::to_string(::getpid()) + ".hps")) {}
    ~BenchFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;
    [[nodiscard]] std::wstring Path() const { return KV_ScenePane::WidePath(m_path.string()); }
    [[nodiscard]] std::size_t Size() const { return std::filesystem::file_size(m_path); }

private:
    std::filesystem::path m_path;
};

/// Through mesh, compressor and file writer, as an export does it.
void Save(const BenchMesh& content, const std::wstring& path) {
    const auto vertices = static_cast<std::int32_t>(content.positions.size() / 3);
    const auto triangles = static_cast<std::int32_t>(content.indices.size() / 3);
    const ObjectPointer mesh = Make(hps_mesh::kFactory), compressor = Make(hps_compressor::kFactory);
    const ObjectPointer writer = Make(hps_file_writer::kFactory);
    Require(hps_mesh::kCreate(mesh.get(), vertices, triangles, "P"));
    Object* access = nullptr;
    Require(hps_mesh::kWritableVertexData(mesh.get(), &access));
    const ObjectPointer data(access);
    Require(hps_vertex_data::kWriteAttribute(access, 'P', 0, vertices, content.positions.data(),
                                             content.positions.size() * sizeof(float)));
    hps_vertex_data::kEndAccess(access);
    Require(hps_mesh::kWriteIndices(mesh.get(), content.indices.data(), content.indices.size() * sizeof(std::int32_t)));
    Require(hps_mesh::kFinish(mesh.get(), 0, 0));
    Require(hps_compressor::kBind(compressor.get(), mesh.get()));
    Require(hps_file_writer::kBind(writer.get(), compressor.get()));
    Require(hps_file_writer::kPrepare(writer.get()));
    Require(hps_file_writer::kSave(writer.get(), path.c_str()));
}

/// Arrays that a load fills, allocated before the measurement.
struct Loaded {
    std::vector<float> positions, normals;
    std::vector<std::int32_t> indices;
};

void Load(const std::wstring& path, Loaded& to) {
    const ObjectPointer reader = Make(hps_reader::kFactory);
    Require(hps_reader::kOpen(reader.get(), path.c_str()));
    Object *found = nullptr, *access = nullptr;
    Require(hps_reader::kMesh(reader.get(), &found));
    const ObjectPointer mesh(found);
    Require(hps_mesh::kReadableVertexData(found, &access));
    const ObjectPointer data(access);
    const auto vertices = static_cast<std::int32_t>(to.positions.size() / 3);
    const std::size_t size = to.positions.size() * sizeof(float);
    Require(hps_vertex_data::kReadAttribute(access, 'P', 0, vertices, to.positions.data(), size));
    Require(hps_vertex_data::kReadAttribute(access, 'N', 0, vertices, to.normals.data(), size));
    hps_vertex_data::kEndAccess(access);
    Require(hps_mesh::kReadIndices(found, to.indices.data(), to.indices.size() * sizeof(std::int32_t)));
    Require(hps_reader::kClose(reader.get()));
}

void Hps_Save(benchmark::State& state) {
    const BenchMesh& mesh = MeshOf(state.range(0));
    const BenchFile file;
    for (auto _ : state) Save(mesh, file.Path());
    state.counters["bytes_per_triangle"] =
        static_cast<double>(file.Size()) / static_cast<double>(mesh.indices.size() / 3);
}

void Hps_Load(benchmark::State& state) {
    const BenchMesh& mesh = MeshOf(state.range(0));
    const BenchFile file;
    Save(mesh, file.Path());
    Loaded loaded;
    loaded.positions.resize(mesh.positions.size());
    loaded.normals.resize(mesh.positions.size());
    loaded.indices.resize(mesh.indices.size());
    for (auto _ : state) Load(file.Path(), loaded);
    if (loaded.positions != mesh.positions || loaded.indices != mesh.indices)
        state.SkipWithError("the mesh differs from the one that was saved");
}

/// The baseline: one copy of the same arrays in memory.
void CopyOfTheSameMesh(benchmark::State& state) {
    const BenchMesh& mesh = MeshOf(0);
    BenchMesh copy = mesh;
    for (auto _ : state) {
        std::copy(mesh.positions.begin(), mesh.positions.end(), copy.positions.begin());
        std::copy(mesh.indices.begin(), mesh.indices.end(), copy.indices.begin());
        benchmark::ClobberMemory();
    }
}

BENCHMARK(Hps_Save)
    ->ArgName("shuffled")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Hps_Load)
    ->ArgName("shuffled")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(CopyOfTheSameMesh)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
