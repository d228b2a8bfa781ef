// Complete imports of scans through the public interface from a warm file cache: one scan per format, and sixteen on
// one and on two threads. The baseline is a copy of the same bytes.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "KV_ScenePane/DebugOutput.h"
#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "MSRDLL/PcmFile.h"
#include "PaneFixture.h"
#include "ScanFixture.h"

namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 2048, kHeight = 1536;

/// Made once, at the first use.
const BenchScan& Scan() {
    static const BenchScan scan = MakeBenchScan(kWidth, kHeight);
    return scan;
}

void Append(std::ofstream& file, const void* bytes, std::size_t size) {
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

/// The scan as a file of one format; the destructor removes it.
class ScanFile {
public:
    explicit ScanFile(const std::string& extension)
        : m_path((fs::temp_directory_path() / ("kv-bench-" + std::to_string(getpid()) + "." + extension)).string()) {
        const BenchScan& scan = Scan();
        if (extension == "pcm") {
            MsrStorage::PcmView view;
            view.m_iWidth = scan.width;
            view.m_iHeight = scan.height;
            view.m_pPoints = scan.points.data();
            view.m_pConfidence = scan.confidence.data();
            view.m_pClassification = scan.classification.data();
            view.m_pTrafo = scan.trafo;
            MsrStorage::WritePcmFile(m_path, view);
            return;
        }
        std::ofstream file(m_path, std::ios::binary);
        const std::int16_t size[2] = {kWidth, kHeight};
        Append(file, size, sizeof size);
        Append(file, scan.points.data(), scan.points.size() * sizeof(float));
        if (extension == "pax") {
            Append(file, scan.confidence.data(), scan.confidence.size() * sizeof(float));
            Append(file, scan.trafo, sizeof scan.trafo);
        }
    }
    ~ScanFile() { fs::remove(m_path); }
    ScanFile(const ScanFile&) = delete;
    ScanFile& operator=(const ScanFile&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

const ScanFile& FileOf(const char* extension) {
    static const ScanFile pcm("pcm"), pax("pax"), xdt("xdt");
    return extension[1] == 'c' ? pcm : extension[1] == 'a' ? pax : xdt;
}

void ImportScan_OfFormat(benchmark::State& state, const char* extension) {
    const auto pane = MakePaneWithoutOpenGl();
    const std::wstring path = KV_ScenePane::WidePath(FileOf(extension).Path());
    for (auto _ : state) {
        pane->Methods().ImportScan(path.c_str(), 0);
        state.PauseTiming();
        if (pane->Methods().GetNumObjects() != 1) state.SkipWithError("the scan added no object");
        pane->Methods().ClearData();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(FileOf(extension).Path())));
}
BENCHMARK_CAPTURE(ImportScan_OfFormat, pcm, "pcm")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ImportScan_OfFormat, pax, "pax")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ImportScan_OfFormat, xdt, "xdt")->Unit(benchmark::kMillisecond)->UseRealTime();

void CopyOfTheSameBytes(benchmark::State& state) {
    const BenchScan& scan = Scan();
    std::vector<float> copy(scan.points.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), scan.points.data(), copy.size() * sizeof(float));
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(copy.size() * sizeof(float)));
}
BENCHMARK(CopyOfTheSameBytes)->Unit(benchmark::kMillisecond);

void ParallelImport_SixteenScans(benchmark::State& state) {
    constexpr int kScans = 16;
    static const BenchScan scan = MakeBenchScan(1024, 768);
    const auto pane = MakePaneWithoutOpenGl();
    for (auto _ : state) {
        void* control = nullptr;
        KV_ScenePane::ImportMeasurementEntry import = nullptr;
        pane->Methods().BeginParallelImport(&control, &import);
        std::atomic<int> next{0};
        std::vector<std::jthread> threads;
        for (int t = 0; t < state.range(0); ++t)
            threads.emplace_back([&] {  // each worker imports the next scan until none is left
                for (int i = next++; i < kScans; i = next++)
                    import(control, L"bench", scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                           scan.trafo, scan.classification.data(), nullptr, 0, i);
            });
        threads.clear();  // joins
        pane->Methods().EndParallelImport();
        state.PauseTiming();
        if (pane->Methods().GetNumObjects() != kScans) state.SkipWithError("not every scan added an object");
        pane->Methods().ClearData();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kScans * scan.width * scan.height);
}
BENCHMARK(ParallelImport_SixteenScans)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
