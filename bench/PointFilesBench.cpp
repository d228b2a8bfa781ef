// Files of points in every format beside a copy of the same bytes, with the memory that a read needs at its peak.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "KV_ScenePane/PointFiles.h"
#include "ProcessMemory.h"

namespace {

constexpr int kPoints = 5'000'000;

/// How the numbers are written.
enum class Digits { kFixed, kShortest };

/// Points of a scan: coordinates of some hundred millimetres, colours of 8 bits.
class Points {
public:
    [[nodiscard]] float Coordinate() { return static_cast<float>(m_random() % 4'000'000) / 8192.0f - 200.0f; }
    [[nodiscard]] int Color() { return static_cast<int>(m_random() % 256); }

private:
    std::mt19937 m_random{3};
};

void AppendCoordinate(std::string& text, float value, Digits digits, char separator) {
    char number[64];
    const auto end = digits == Digits::kFixed
                         ? std::to_chars(number, number + sizeof number, value, std::chars_format::fixed, 6).ptr
                         : std::to_chars(number, number + sizeof number, value).ptr;
    text.append(number, end);
    text += separator;
}

std::string TextOf(Digits digits, char separator) {
    Points points;
    std::string text;
    for (int i = 0; i < kPoints; ++i) {
        for (int k = 0; k < 3; ++k) AppendCoordinate(text, points.Coordinate(), digits, separator);
        for (int k = 0; k < 3; ++k) (text += std::to_string(points.Color())) += k == 2 ? '\n' : separator;
    }
    return text;
}

/// Records of three floats and a colour of @p colorBytes bytes.
std::string RecordsOf(int colorBytes) {
    Points points;
    std::string bytes;
    for (int i = 0; i < kPoints; ++i) {
        for (int k = 0; k < 3; ++k) {
            const float value = points.Coordinate();
            bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
        }
        for (int k = 0; k < colorBytes; ++k) bytes += static_cast<char>(points.Color());
    }
    return bytes;
}

std::string PcdHeader(const char* data) {
    return "VERSION 0.7\nFIELDS x y z rgb\nSIZE 4 4 4 4\nTYPE F F F U\nPOINTS " + std::to_string(kPoints) + "\nDATA " +
           data + "\n";
}

std::string PlyHeader(const char* format) {
    return std::string("ply\nformat ") + format + " 1.0\nelement vertex " + std::to_string(kPoints) +
           "\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\nproperty uchar green\n"
           "property uchar blue\nend_header\n";
}

/// A file that is deleted with the program.
class BenchFile {
public:
    BenchFile(const char* extension, const std::string& bytes)
        : m_path(std::filesystem::temp_directory_path() / ("kv-points-" + std::to_string(::getpid()) + extension)),
          m_size(bytes.size()) {
        std::ofstream(m_path, std::ios::binary) << bytes;
    }
    ~BenchFile() { std::filesystem::remove(m_path); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;
    [[nodiscard]] std::string Path() const { return m_path.string(); }
    [[nodiscard]] std::int64_t Size() const { return static_cast<std::int64_t>(m_size); }

private:
    std::filesystem::path m_path;
    std::size_t m_size;
};

KV_ScenePane::PointCloud Read(benchmark::State& state, const BenchFile& file) {
    KV_ScenePane::PointCloud cloud;
    std::string reason;
    if (!KV_ScenePane::ReadPointFile(file.Path(), &cloud, &reason, {})) state.SkipWithError(reason.c_str());
    return cloud;
}

/// The counter is the peak of the memory during one read over that before it, 24 bytes per point of it the result.
void ReadPoints(benchmark::State& state, const char* extension, std::string bytes) {
    const BenchFile file(extension, bytes);
    std::string().swap(bytes);
    ResetPeak();
    const double before = StatusMiB("VmHWM");
    (void)Read(state, file);
    state.counters["peak_bytes_per_point"] = (StatusMiB("VmHWM") - before) * 1024 * 1024 / kPoints;
    for (auto _ : state) benchmark::DoNotOptimize(Read(state, file).xyz.data());
    state.SetBytesProcessed(state.iterations() * file.Size());
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void ReadPoints_TextOfFixedDigits(benchmark::State& state) { ReadPoints(state, ".xyz", TextOf(Digits::kFixed, ' ')); }
void ReadPoints_TextOfShortestDigits(benchmark::State& state) {
    ReadPoints(state, ".xyz", TextOf(Digits::kShortest, ' '));
}
void ReadPoints_Csv(benchmark::State& state) {
    ReadPoints(state, ".csv", "x,y,z,red,green,blue\n" + TextOf(Digits::kFixed, ','));
}
void ReadPoints_PcdText(benchmark::State& state) {
    std::string text = PcdHeader("ascii");
    Points points;
    for (int i = 0; i < kPoints; ++i) {
        for (int k = 0; k < 3; ++k) AppendCoordinate(text, points.Coordinate(), Digits::kFixed, ' ');
        text += std::to_string(points.Color() << 16) + '\n';
    }
    ReadPoints(state, ".pcd", text);
}
void ReadPoints_PcdBinary(benchmark::State& state) { ReadPoints(state, ".pcd", PcdHeader("binary") + RecordsOf(4)); }
void ReadPoints_PcdCompressed(benchmark::State& state) {
    std::string lzf;
    const std::string records = RecordsOf(4);
    std::string plain(records.size(), '\0');  // all x, all y, all z, all colours
    for (std::size_t i = 0; i < kPoints; ++i)
        for (std::size_t k = 0; k < 4; ++k) records.copy(&plain[4 * (k * kPoints + i)], 4, 16 * i + 4 * k);
    for (std::size_t at = 0; at < plain.size(); at += 32) (lzf += '\x1F') += plain.substr(at, 32);
    const std::uint32_t sizes[] = {static_cast<std::uint32_t>(lzf.size()), static_cast<std::uint32_t>(plain.size())};
    ReadPoints(state, ".pcd",
               PcdHeader("binary_compressed") + std::string(reinterpret_cast<const char*>(sizes), sizeof sizes) + lzf);
}
void ReadPoints_PlyText(benchmark::State& state) {
    ReadPoints(state, ".ply", PlyHeader("ascii") + TextOf(Digits::kFixed, ' '));
}
void ReadPoints_PlyBinary(benchmark::State& state) {
    ReadPoints(state, ".ply", PlyHeader("binary_little_endian") + RecordsOf(3));
}

/// The yardstick: as many bytes as the text or the points have, copied into a new array.
void CopyOfTheSameBytes(benchmark::State& state, std::size_t size) {
    const std::string from(size, '1');
    for (auto _ : state) {
        std::vector<char> to(from.begin(), from.end());
        benchmark::DoNotOptimize(to.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}
void CopyOfTheText(benchmark::State& state) { CopyOfTheSameBytes(state, TextOf(Digits::kFixed, ' ').size()); }
void CopyOfThePoints(benchmark::State& state) { CopyOfTheSameBytes(state, std::size_t{24} * kPoints); }

BENCHMARK(ReadPoints_TextOfFixedDigits)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_TextOfShortestDigits)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_Csv)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_PcdText)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_PcdBinary)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_PcdCompressed)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_PlyText)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPoints_PlyBinary)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyOfTheText)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyOfThePoints)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
