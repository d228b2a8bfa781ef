// Reading measurement files of 2048 x 1536 pixels with 27 % holes from a warm file cache. The baselines read the same
// file and copy it once: into newly allocated memory, as a reader does, and into memory that is reused.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "MSRDLL/PcmFile.h"
#include "ScanFixture.h"
#include "io/GridReaders.h"
#include "io/MeasurementFile.h"

namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 2048, kHeight = 1536;

enum Kind { kPcm, kPcmColors, kPcmScattered, kPax, kXdt };

/// Holes of single pixels instead of patches: the worst case for putting the stored values back at their pixels.
BenchScan Scattered(BenchScan scan) {
    std::mt19937 random(2);
    for (std::size_t i = 0; i < scan.confidence.size(); ++i) {
        const bool hole = random() % 100 < 27;
        const float at = static_cast<float>(i);
        const float point[3] = {hole ? 0.0f : at, hole ? 0.0f : at + 1, hole ? 0.0f : at + 2};
        std::copy_n(point, 3, &scan.points[3 * i]);
        scan.confidence[i] = hole ? -1.0f : 1.0f;
        scan.classification[i] = hole ? 250 : 1;
    }
    return scan;
}

/// A scan as a file of one kind; the destructor removes it.
class ScanFile {
public:
    explicit ScanFile(Kind kind)
        : m_path((fs::temp_directory_path() / ("kv-bench-" + std::to_string(getpid()) + "-" + std::to_string(kind)))
                     .string()) {
        BenchScan scan = MakeBenchScan(kWidth, kHeight);
        if (kind == kPcmScattered) scan = Scattered(scan);
        // The confidence differs from pixel to pixel, as that of a sensor does.
        for (std::size_t i = 0; i < scan.confidence.size(); ++i) {
            if (scan.confidence[i] > 0) scan.confidence[i] = static_cast<float>(i % 1000) * 0.001f;
        }
        if (kind == kPax || kind == kXdt) {
            WriteGrid(scan, kind);
        } else {
            WritePcm(scan, kind != kPcm);
        }
    }
    ~ScanFile() {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }
    ScanFile(const ScanFile&) = delete;
    ScanFile& operator=(const ScanFile&) = delete;
    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::wstring Wide() const { return KV_ScenePane::WidePath(m_path); }
    [[nodiscard]] std::size_t Size() const { return fs::file_size(m_path); }

private:
    void WritePcm(const BenchScan& scan, bool withColors) const {
        std::vector<std::uint32_t> colors(scan.confidence.size());
        for (std::size_t i = 0; i < colors.size(); ++i) {
            colors[i] = scan.confidence[i] < 0 ? 0 : 0xFF000000u | static_cast<std::uint32_t>(i * 2654435761u >> 8);
        }
        MsrStorage::WritePcmFile(m_path, {.m_iWidth = scan.width,
                                          .m_iHeight = scan.height,
                                          .m_pPoints = scan.points.data(),
                                          .m_pConfidence = scan.confidence.data(),
                                          .m_pClassification = scan.classification.data(),
                                          .m_pColors = withColors ? colors.data() : nullptr,
                                          .m_pTrafo = scan.trafo,
                                          .m_foreign = {}});
    }
    void WriteGrid(const BenchScan& scan, Kind kind) const {
        std::ofstream file(m_path, std::ios::binary);
        const auto append = [&](const void* bytes, std::size_t size) {
            file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
        };
        const std::int16_t size[2] = {kWidth, kHeight};
        append(size, sizeof size);
        append(scan.points.data(), scan.points.size() * sizeof(float));
        if (kind == kXdt) return;
        append(scan.confidence.data(), scan.confidence.size() * sizeof(float));
        append(scan.trafo, sizeof scan.trafo);
    }

    std::string m_path;
};

/// Made at the first use.
const ScanFile& File(std::int64_t kind) {
    static std::unique_ptr<ScanFile> files[5];
    auto& file = files[kind];
    if (!file) file = std::make_unique<ScanFile>(static_cast<Kind>(kind));
    return *file;
}

/// Reads the whole file with plain system calls.
void ReadTo(const ScanFile& file, char* to) {
    const int fd = ::open(file.Path().c_str(), O_RDONLY);
    std::size_t left = file.Size();
    while (left > 0) {
        const ssize_t got = ::read(fd, to, left);
        if (got <= 0) throw std::runtime_error("cannot read");
        to += got;
        left -= static_cast<std::size_t>(got);
    }
    ::close(fd);
}

void Report(benchmark::State& state, const ScanFile& file) {
    static const char* const kNames[] = {"pcm", "pcm with colours", "pcm with colours, scattered holes", "pax", "xdt"};
    state.SetLabel(kNames[state.range(0)]);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.Size()));
}

void ReadAndCopyToNewMemory(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::size_t size = file.Size();
    for (auto _ : state) {
        const auto read = std::make_unique_for_overwrite<char[]>(size);
        const auto copy = std::make_unique_for_overwrite<char[]>(size);
        ReadTo(file, read.get());
        std::memcpy(copy.get(), read.get(), size);
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
    }
    Report(state, file);
}

void ReadAndCopyToKeptMemory(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::size_t size = file.Size();
    std::vector<char> read(size), copy(size);
    for (auto _ : state) {
        ReadTo(file, read.data());
        std::memcpy(copy.data(), read.data(), size);
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    Report(state, file);
}

void MsrLoad(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::wstring path = file.Wide();
    for (auto _ : state) {
        MsrStorage::MSR msr;
        if (!msr.Load(path.c_str(), false, true, false)) state.SkipWithError("not loaded");
        benchmark::DoNotOptimize(msr.GetXYZ());
    }
    Report(state, file);
}

void LoadMeasurementFileOf(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::wstring path = file.Wide();
    for (auto _ : state) {
        const MeasurementData data = LoadMeasurementFile(path.c_str(), 0.0f, nullptr);
        if (data.m_iWidth != kWidth) state.SkipWithError("not loaded");
        benchmark::DoNotOptimize(data.m_vXYZ.data());
    }
    Report(state, file);
}

void MsrSave(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::wstring path = file.Wide();
    MsrStorage::MSR msr;
    if (!msr.Load(path.c_str(), false, true, false)) state.SkipWithError("not loaded");
    for (auto _ : state) {
        if (!msr.Save(path.c_str(), true, true)) state.SkipWithError("not saved");
    }
    Report(state, file);
}

void ReadGridFile(benchmark::State& state) {
    const ScanFile& file = File(state.range(0));
    const std::wstring path = file.Wide();
    for (auto _ : state) {
        const MeasurementGrid grid = state.range(0) == kPax ? ReadPaxFile(path) : ReadXdtFile(path);
        benchmark::DoNotOptimize(grid.m_vPoints.data());
    }
    Report(state, file);
}

constexpr auto kUnit = benchmark::kMillisecond;
BENCHMARK(ReadAndCopyToKeptMemory)->DenseRange(kPcm, kXdt)->Unit(kUnit);
BENCHMARK(ReadAndCopyToNewMemory)->DenseRange(kPcm, kXdt)->Unit(kUnit);
BENCHMARK(MsrLoad)->DenseRange(kPcm, kPcmScattered)->Unit(kUnit);
BENCHMARK(LoadMeasurementFileOf)->DenseRange(kPcm, kPcmScattered)->Unit(kUnit);
BENCHMARK(MsrSave)->DenseRange(kPcm, kPcmScattered)->Unit(kUnit)->UseRealTime();
BENCHMARK(ReadGridFile)->DenseRange(kPax, kXdt)->Unit(kUnit);

}  // namespace

BENCHMARK_MAIN();
