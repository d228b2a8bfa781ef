// The writers of pax and xdt files, and the call of the pcm writer.
#include "ScanFiles.h"

#include <bit>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "MSRDLL/PcmFile.h"
#include "base/AtomicFile.h"

namespace simulate {
namespace {

constexpr float kMicrometresPerMillimetre = 1000.0f;

/// Writes little-endian numbers to a file, buffered.
class LittleEndianFile {
public:
    explicit LittleEndianFile(const std::filesystem::path& path) : m_file(path.string()) {
        m_vBytes.reserve(kBufferSize + 8);
    }
    /// The low 16 bits.
    void Put16(int value) {
        Put8(static_cast<std::uint32_t>(value));
        Put8(static_cast<std::uint32_t>(value) >> 8);
        FlushFullBuffer();
    }
    void PutFloat(float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (int shift = 0; shift < 32; shift += 8) Put8(bits >> shift);
        FlushFullBuffer();
    }
    void PutFloats(std::span<const float> values) {
        for (const float value : values) PutFloat(value);
    }
    void PutPoint(Vec3 point) {
        PutFloat(point.x);
        PutFloat(point.y);
        PutFloat(point.z);
    }
    /// Writes the buffered bytes and replaces the target.
    void Commit() {
        Flush();
        m_file.Commit();
    }

private:
    static constexpr std::size_t kBufferSize = 1 << 20;

    void Put8(std::uint32_t value) { m_vBytes.push_back(static_cast<std::uint8_t>(value & 0xFFu)); }
    void FlushFullBuffer() {
        if (m_vBytes.size() >= kBufferSize) Flush();
    }
    void Flush() {
        m_file.WriteAt(m_nWritten, m_vBytes.data(), m_vBytes.size());
        m_nWritten += m_vBytes.size();
        m_vBytes.clear();
    }

    AtomicFile m_file;
    std::vector<std::uint8_t> m_vBytes;
    std::uint64_t m_nWritten = 0;
};

/// Width, height (2 bytes each), points, confidence, transform.
void WritePax(const std::filesystem::path& path, const ScanGrid& grid) {
    LittleEndianFile file(path);
    file.Put16(grid.width);
    file.Put16(grid.height);
    file.PutFloats(grid.points);
    file.PutFloats(grid.confidence);
    file.PutFloats(grid.toWorld);
    file.Commit();
}

/// The point of a pixel in the frame and unit of xdt files.
Vec3 XdtPoint(const ScanGrid& grid, std::size_t pixel) {
    if (!grid.IsMeasured(pixel)) return {-1, -1, -1};
    const float* p = &grid.points[3 * pixel];
    return AvoidXdtHole(TransformPoint(grid.toWorld, {p[0], p[1], p[2]}) * kMicrometresPerMillimetre);
}

/// Width, height (2 bytes each), points.
void WriteXdt(const std::filesystem::path& path, const ScanGrid& grid) {
    LittleEndianFile file(path);
    file.Put16(grid.width);
    file.Put16(grid.height);
    for (std::size_t pixel = 0; pixel < grid.PixelCount(); ++pixel) file.PutPoint(XdtPoint(grid, pixel));
    file.Commit();
}

/// Converts the grid to micrometres in place and writes all its arrays.
void WritePcm(const std::filesystem::path& path, ScanGrid&& grid) {
    for (float& coordinate : grid.points) coordinate *= kMicrometresPerMillimetre;
    // The translation of the transform has a unit too.
    for (const std::size_t element : {3, 7, 11}) grid.toWorld[element] *= kMicrometresPerMillimetre;
    MsrStorage::PcmView view;
    view.m_iWidth = grid.width;
    view.m_iHeight = grid.height;
    view.m_pPoints = grid.points.data();
    view.m_pConfidence = grid.confidence.data();
    view.m_pClassification = grid.classes.data();
    view.m_pColors = grid.colors.empty() ? nullptr : grid.colors.data();
    view.m_pTrafo = grid.toWorld.data();
    MsrStorage::WritePcmFile(path.string(), view);
}

}  // namespace

Vec3 AvoidXdtHole(Vec3 point) {
    if (point.x < 0 && point.x == point.y && point.y == point.z) point.z = std::nextafter(point.z, 0.0f);
    return point;
}

void WriteScan(const std::filesystem::path& path, FileFormat format, ScanGrid&& grid) {
    switch (format) {
        case FileFormat::Pcm:
            return WritePcm(path, std::move(grid));
        case FileFormat::Pax:
            return WritePax(path, grid);
        case FileFormat::Xdt:
            return WriteXdt(path, grid);
    }
}

void WriteText(const std::filesystem::path& path, std::string_view text) {
    AtomicFile file(path.string());
    file.WriteAt(0, text.data(), text.size());
    file.Commit();
}

}  // namespace simulate
