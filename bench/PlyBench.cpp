// Imports and exports of ply files of 1 M triangles through the public interface, from a warm file cache, with the peak
// memory. The baselines read, copy and write the same bytes; one benchmark is the computation of the normals alone.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "KV_ScenePane/DebugOutput.h"
#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "PaneFixture.h"
#include "PlyText.h"
#include "ProcessMemory.h"
#include "SphereFixture.h"
#include "base/AtomicFile.h"
#include "geometry/MeanNormals.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kColumns = 1000, kRings = 500;

enum Kind { kBinary, kBinaryWithNormalsAndColors, kText, kTextWithColors };
constexpr const char* kKindNames[] = {"binary", "binary, normals and colours", "text", "text, colours"};

const MeshBuffers& Sphere() {
    static const MeshBuffers sphere = MakeBenchSphere(kColumns, kRings);
    return sphere;
}

/// The sphere as other programs write it: one list per face; text numbers have the fewest digits that read back as the
/// same float.
std::string FileText(Kind kind) {
    const MeshBuffers& mesh = Sphere();
    const bool isText = kind == kText || kind == kTextWithColors;
    const bool hasColors = kind == kTextWithColors || kind == kBinaryWithNormalsAndColors;
    std::string text = std::string("ply\nformat ") + (isText ? "ascii" : "binary_little_endian") + " 1.0\n" +
                       "element vertex " + std::to_string(mesh.m_vVertices.size()) +
                       "\nproperty float x\nproperty float y\nproperty float z\n";
    if (kind == kBinaryWithNormalsAndColors) text += "property float nx\nproperty float ny\nproperty float nz\n";
    if (hasColors) text += "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    text += "element face " + std::to_string(mesh.m_vTriangles.size()) +
            "\nproperty list uchar int vertex_indices\nend_header\n";
    for (const Vertex& v : mesh.m_vVertices) {
        if (isText) {
            for (const float value : {v.x, v.y, v.z}) AppendNumber(text, value);
            if (hasColors) text += "200 130 7";
            text += '\n';
        } else {
            text.append(reinterpret_cast<const char*>(&v), kind == kBinary ? 12 : 24);
            if (hasColors) text += "\xC8\x82\x07";
        }
    }
    for (const Triangle& triangle : mesh.m_vTriangles) {
        text += isText ? "3 " : "\x03";
        if (!isText) text.append(reinterpret_cast<const char*>(&triangle), sizeof triangle);
        for (const std::int32_t index : triangle.v)
            if (isText) AppendNumber(text, index);
        if (isText) text += '\n';
    }
    return text;
}

/// A path in the temporary folder, unique for the process. The destructor removes the file.
class ScratchPath {
public:
    explicit ScratchPath(const std::string& name)
        : m_path((fs::temp_directory_path() / ("kv-bench-" + std::to_string(getpid()) + name + ".ply")).string()) {}
    ~ScratchPath() {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }
    ScratchPath(const ScratchPath&) = delete;
    ScratchPath& operator=(const ScratchPath&) = delete;
    [[nodiscard]] const std::string& Bytes() const { return m_path; }
    [[nodiscard]] std::wstring Wide() const { return KV_ScenePane::WidePath(m_path); }

private:
    std::string m_path;
};

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

/// Throws when the mesh is incomplete.
void Import(KV_ScenePane::ScenePane& pane, const ScratchPath& path) {
    pane.Methods().ImportMesh(path.Wide().c_str());
    std::int32_t vertices = 0, triangles = 0;
    pane.Methods().GetMeshDataSize(0, &vertices, &triangles);
    if (triangles != 2 * kColumns * kRings) throw std::runtime_error("an incomplete mesh was imported");
}

/// Counters in MiB: peak of one import above the resident size before it, size of its mesh, size of its file.
void CountMemory(benchmark::State& state, KV_ScenePane::ScenePane& pane, const ScratchPath& path) {
    malloc_trim(0);
    ResetPeak();
    const double before = StatusMiB("VmRSS");
    Import(pane, path);
    state.counters["peakMiB"] = StatusMiB("VmHWM") - before;
    const MeshBuffers& mesh = Sphere();
    state.counters["meshMiB"] =
        static_cast<double>(mesh.m_vVertices.size() * sizeof(Vertex) + mesh.m_vTriangles.size() * sizeof(Triangle)) /
        (1 << 20);
    state.counters["fileMiB"] = static_cast<double>(fs::file_size(path.Bytes())) / (1 << 20);
    pane.Methods().ClearData();
}

void ImportPly(benchmark::State& state) {
    const auto kind = static_cast<Kind>(state.range(0));
    state.SetLabel(kKindNames[kind]);
    const ScratchPath path("import");
    WriteFile(path.Bytes(), FileText(kind));
    const auto pane = MakePaneWithoutOpenGl();
    CountMemory(state, *pane, path);
    for (auto _ : state) {
        Import(*pane, path);
        state.PauseTiming();
        pane->Methods().ClearData();
        malloc_trim(0);  // every import allocates new memory, as the first one does
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * 2 * kColumns * kRings);
}

void ReadOfTheSameFile(benchmark::State& state) {
    const ScratchPath path("read");
    WriteFile(path.Bytes(), FileText(static_cast<Kind>(state.range(0))));
    const std::size_t size = fs::file_size(path.Bytes());
    for (auto _ : state) {
        const auto bytes = std::make_unique_for_overwrite<char[]>(size);
        const int fd = ::open(path.Bytes().c_str(), O_RDONLY);
        if (::read(fd, bytes.get(), size) != static_cast<ssize_t>(size)) state.SkipWithError("short read");
        ::close(fd);
        state.PauseTiming();
        malloc_trim(0);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void CopyOfTheSameBytes(benchmark::State& state) {
    const std::string text = FileText(static_cast<Kind>(state.range(0)));
    std::string copy(text.size(), '\0');
    for (auto _ : state) {
        text.copy(copy.data(), text.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void MeanNormals(benchmark::State& state) {
    MeshBuffers mesh = Sphere();
    for (auto _ : state) {
        ComputeMeanNormals(mesh);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * 2 * kColumns * kRings);
}

void ExportPly(benchmark::State& state) {
    const ScratchPath from("source"), to("export");
    WriteFile(from.Bytes(), FileText(kBinaryWithNormalsAndColors));
    const auto pane = MakePaneWithoutOpenGl();
    Import(*pane, from);
    const std::wstring path = to.Wide();
    for (auto _ : state) pane->Methods().ExportMesh(0, path.c_str());
    if (fs::file_size(to.Bytes()) < fs::file_size(from.Bytes())) state.SkipWithError("the file is short");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(to.Bytes())));
}

void WriteOfTheSameBytes(benchmark::State& state) {
    const std::string text = FileText(kBinaryWithNormalsAndColors);
    const ScratchPath to("write");
    for (auto _ : state) {
        AtomicFile file(to.Bytes());
        file.WriteAt(0, text.data(), text.size());
        file.Commit();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void WriteOfTheSameBytesWithoutFlush(benchmark::State& state) {
    const std::string text = FileText(kBinaryWithNormalsAndColors);
    const ScratchPath to("plain");
    for (auto _ : state) {
        const int fd = ::open(to.Bytes().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (::write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) state.SkipWithError("short");
        ::close(fd);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

BENCHMARK(ImportPly)->DenseRange(kBinary, kTextWithColors)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadOfTheSameFile)->DenseRange(kBinary, kTextWithColors)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyOfTheSameBytes)->DenseRange(kBinary, kTextWithColors)->Unit(benchmark::kMillisecond);
BENCHMARK(MeanNormals)->Unit(benchmark::kMillisecond);
BENCHMARK(ExportPly)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteOfTheSameBytes)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteOfTheSameBytesWithoutFlush)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
