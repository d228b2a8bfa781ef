// Imports of the same mesh from each kind of file, and of one scan, through the public interface: on one core and on
// all, in turn with a plain read of the same file into fresh memory. Other load on the machine changes all columns of a
// row, so the ratios are the result. It does not use the benchmark library, which does not run benchmarks in turn.
//   mesh_file_times [ROUNDS]      prints the best times in milliseconds, ratios, and the peak of the memory over the
//   start mesh_file_times --peak FILE   the peak of one import in a process that has imported nothing before, MiB
#include <fcntl.h>
#include <malloc.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "PaneFixture.h"
#include "PlyText.h"
#include "ProcessMemory.h"
#include "ScanFixture.h"
#include "SphereFixture.h"
#include "StlFixture.h"

namespace {

namespace fs = std::filesystem;
using KV_ScenePane::MeshBuffers, KV_ScenePane::Triangle, KV_ScenePane::Vertex;

/// Restricts this thread, and those that it starts, to one core; the destructor allows all again.
class OneCore {
public:
    /// @param round  each round has another core, since one of them can have more other load
    explicit OneCore(int round) {
        ::sched_getaffinity(0, sizeof m_all, &m_all);
        int wanted = round % CPU_COUNT(&m_all);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int core = 0; core < CPU_SETSIZE; ++core)
            if (CPU_ISSET(core, &m_all) && wanted-- == 0) CPU_SET(core, &one);
        ::sched_setaffinity(0, sizeof one, &one);
    }
    ~OneCore() { ::sched_setaffinity(0, sizeof m_all, &m_all); }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;

private:
    cpu_set_t m_all{};
};

/// Memory that the process did not have before, in pages of 4 KiB unless the system decides otherwise.
class FreshMemory {
public:
    explicit FreshMemory(std::size_t size)
        : m_uSize(size), m_pBytes(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (m_pBytes == MAP_FAILED) throw std::bad_alloc();
    }
    ~FreshMemory() { ::munmap(m_pBytes, m_uSize); }
    FreshMemory(const FreshMemory&) = delete;
    FreshMemory& operator=(const FreshMemory&) = delete;
    [[nodiscard]] void* Data() const { return m_pBytes; }

private:
    std::size_t m_uSize;
    void* m_pBytes;
};

/// A virtual machine returns free memory to its host after a while, and the next use of it is several times as slow. So
/// the memory that the next measurement gets is used just before.
void TouchMemory() {
    constexpr std::size_t kSize = std::size_t{256} << 20;
    const FreshMemory memory(kSize);
    ::madvise(memory.Data(), kSize, MADV_HUGEPAGE);
    std::memset(memory.Data(), 1, kSize);
}

double MillisecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double BestOf(const std::vector<double>& values) { return *std::ranges::min_element(values); }

/// A row of the table: one file, and what was measured.
struct Row {
    std::string name, path;
    std::vector<double> read = {}, one = {}, all = {};
    double peakOne = 0, peakAll = 0;

    void Read() const {
        const std::size_t size = fs::file_size(path);
        const FreshMemory memory(size);
        const int fd = ::open(path.c_str(), O_RDONLY);
        if (::read(fd, memory.Data(), size) != static_cast<ssize_t>(size)) throw std::runtime_error("short read");
        ::close(fd);
    }
};

bool IsScan(const std::string& path) { return path.ends_with(".pax"); }

void Import(KV_ScenePane::ScenePane& pane, const std::string& path) {
    const std::wstring wide = KV_ScenePane::WidePath(path);
    if (IsScan(path))
        pane.Methods().ImportScan(wide.c_str(), 0);
    else
        pane.Methods().ImportMesh(wide.c_str());
    if (pane.Methods().GetNumObjects() != 1) throw std::runtime_error("nothing was imported from " + path);
}

/// Memory that was freed by earlier imports would be used again, and hide a peak or add to it.
double PeakInFreshProcess(const std::string& path) {
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    const std::unique_ptr<FILE, int (*)(FILE*)> output(::popen((program + " --peak " + path).c_str(), "r"), ::pclose);
    double peak = -1;
    if (!output || std::fscanf(output.get(), "%lf", &peak) != 1) throw std::runtime_error("no peak of " + path);
    return peak;
}

int PrintPeak(const std::string& path) {
    const auto pane = MakePaneWithoutOpenGl();
    pane->Methods().InitializeKVReg();
    ResetPeak();
    const double before = StatusMiB("VmRSS");
    Import(*pane, path);
    std::printf("%.1f\n", StatusMiB("VmHWM") - before);
    pane->Methods().FinalizeKVReg();
    return 0;
}

class Table {
public:
    explicit Table(const std::string& folder) : m_sFolder(folder), m_pane(MakePaneWithoutOpenGl()) {
        m_pane->Methods().InitializeKVReg();
    }
    ~Table() { m_pane->Methods().FinalizeKVReg(); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    [[nodiscard]] std::string PathOf(const char* name) const { return m_sFolder + "/" + name; }

    void Add(const char* name) { m_rows.push_back({.name = name, .path = PathOf(name)}); }
    /// Writes object 0 in the format of the extension.
    void ImportAndExport(const char* from, std::initializer_list<const char*> to) {
        m_pane->Methods().ImportMesh(KV_ScenePane::WidePath(PathOf(from)).c_str());
        for (const char* name : to) m_pane->Methods().ExportMesh(0, KV_ScenePane::WidePath(PathOf(name)).c_str());
        m_pane->Methods().ClearData();
    }

    void Measure(int rounds) {
        for (Row& row : m_rows) {
            row.peakAll = PeakInFreshProcess(row.path);
            const OneCore one(0);
            row.peakOne = PeakInFreshProcess(row.path);
        }
        for (int round = 0; round < rounds; ++round)
            for (Row& row : m_rows) {
                TouchMemory();
                row.read.push_back(MillisecondsOf([&] { row.Read(); }));
                {
                    const OneCore one(round);
                    row.one.push_back(TimeOf(row));
                }
                row.all.push_back(TimeOf(row));
            }
    }

    void Print() const {
        std::printf("%-18s %8s %8s %8s %8s %8s %8s %9s %9s\n", "file", "MiB", "read ms", "one ms", "all ms", "one/all",
                    "all/read", "peak one", "peak all");
        for (const Row& row : m_rows) {
            const double read = BestOf(row.read), one = BestOf(row.one), all = BestOf(row.all);
            std::printf("%-18s %8.1f %8.1f %8.1f %8.1f %8.2f %8.2f %9.1f %9.1f\n", row.name.c_str(),
                        static_cast<double>(fs::file_size(row.path)) / (1 << 20), read, one, all, one / all, all / read,
                        row.peakOne, row.peakAll);
        }
    }

private:
    void Clear() {
        m_pane->Methods().ClearData();
        malloc_trim(0);  // every import allocates new memory, as the first one does
        TouchMemory();
    }
    double TimeOf(const Row& row) {
        Clear();
        return MillisecondsOf([&] { Import(*m_pane, row.path); });
    }

    std::string m_sFolder;
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    std::vector<Row> m_rows;
};

void WriteFile(const std::string& path, const void* bytes, std::size_t size) {
    std::ofstream file(path, std::ios::binary);
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

void WriteStlFile(const std::string& path, StlOrder order) {
    const std::vector<std::byte> file = MakeBenchStl(1, order);
    WriteFile(path, file.data(), file.size());
}

/// Numbers have the fewest digits that read back as the same float.
void WriteTextPly(const std::string& path, bool hasColors) {
    const MeshBuffers mesh = MakeBenchSphere(1000, 500);
    std::string text = "ply\nformat ascii 1.0\nelement vertex " + std::to_string(mesh.m_vVertices.size()) +
                       "\nproperty float x\nproperty float y\nproperty float z\n";
    if (hasColors) text += "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    text += "element face " + std::to_string(mesh.m_vTriangles.size()) +
            "\nproperty list uchar int vertex_indices\nend_header\n";
    for (const Vertex& v : mesh.m_vVertices) {
        for (const float value : {v.x, v.y, v.z}) AppendNumber(text, value);
        text += hasColors ? "200 130 7\n" : "\n";
    }
    for (const Triangle& triangle : mesh.m_vTriangles) {
        text += "3 ";
        for (const std::int32_t index : triangle.v) AppendNumber(text, index);
        text += '\n';
    }
    WriteFile(path, text.data(), text.size());
}

/// A pax file: size, points, confidence, transform.
void WriteScan(const std::string& path) {
    const BenchScan scan = MakeBenchScan(2048, 1536);
    std::string bytes;
    const auto append = [&bytes](const void* from, std::size_t size) {
        bytes.append(static_cast<const char*>(from), size);
    };
    const std::int16_t size[2] = {static_cast<std::int16_t>(scan.width), static_cast<std::int16_t>(scan.height)};
    append(size, sizeof size);
    append(scan.points.data(), scan.points.size() * sizeof(float));
    append(scan.confidence.data(), scan.confidence.size() * sizeof(float));
    append(scan.trafo, sizeof scan.trafo);
    WriteFile(path, bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc == 3 && argv[1] == std::string_view("--peak")) return PrintPeak(argv[2]);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
    const fs::path folder = fs::temp_directory_path() / ("kv-mesh-times-" + std::to_string(::getpid()));
    fs::create_directory(folder);
    {
        Table table(folder.string());
        WriteStlFile(table.PathOf("order.stl"), StlOrder::Mesh);
        WriteStlFile(table.PathOf("shuffled.stl"), StlOrder::Shuffled);
        WriteTextPly(table.PathOf("text.ply"), false);
        WriteTextPly(table.PathOf("colours.ply"), true);
        WriteScan(table.PathOf("scan.pax"));
        table.ImportAndExport("text.ply", {"binary.ply", "mesh.hps"});
        for (const char* name :
             {"order.stl", "shuffled.stl", "binary.ply", "text.ply", "colours.ply", "mesh.hps", "scan.pax"})
            table.Add(name);
        table.Measure(rounds);
        table.Print();
    }
    fs::remove_all(folder);
} catch (const std::exception& error) {
    std::fprintf(stderr, "mesh_file_times: %s\n", error.what());
    return 1;
}
