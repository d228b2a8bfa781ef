// Reads and writes pcm files: one gridded optical measurement. Byte by byte in docs/formats/pcm.md.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "files/AtomicFile.h"
#include "files/SectionFile.h"

namespace MsrStorage {

/// Why a pcm file could not be read or written: what() is the rule that was broken, Explanation() adds where.
using PcmError = FileStorage::SectionFileError;

inline constexpr int kPcmMaxSide = 32767;  ///< pixels
/// Greatest number of bytes of the grid in memory per byte of the file; readers refuse a file that announces more.
inline constexpr std::uint64_t kPcmMaxExpansion = 64;

/// A section that this version does not know. It is kept unchanged and written again.
struct PcmForeignSection {
    std::uint32_t m_uId = 0;
    std::uint16_t m_uEncoding = 0, m_uFlags = 0;
    std::vector<std::byte> m_vBytes;
};

/// A measurement in memory. The arrays are null when it is empty. Row by row: pixel (x, y) is at index y * width + x.
struct PcmMeasurement {
    int m_iWidth = 0, m_iHeight = 0;                    ///< 1..32767 each, or both zero
    std::unique_ptr<float[]> m_pPoints;                 ///< x, y, z per pixel, sensor frame, micrometres
    std::unique_ptr<float[]> m_pConfidence;             ///< one per pixel
    std::unique_ptr<std::uint8_t[]> m_pClassification;  ///< one per pixel; 240 and above are not valid
    std::unique_ptr<std::uint32_t[]> m_pColors;         ///< one per pixel, 0xAARRGGBB; null without colours
    std::array<float, 16> m_fTrafo{};                   ///< row-major 4 x 4, sensor to world, micrometres
    std::vector<PcmForeignSection> m_vForeign;
};

/// A measurement to be written. The arrays belong to the caller; their layout is that of PcmMeasurement.
struct PcmView {
    int m_iWidth = 0, m_iHeight = 0;
    const float* m_pPoints = nullptr;
    const float* m_pConfidence = nullptr;
    const std::uint8_t* m_pClassification = nullptr;
    const std::uint32_t* m_pColors = nullptr;  ///< may be null
    const float* m_pTrafo = nullptr;           ///< 16 floats
    std::span<const PcmForeignSection> m_foreign;
};

/// @param measurement  must outlive the result
[[nodiscard]] PcmView ViewOf(const PcmMeasurement& measurement);

/// Reads a measurement. Every bit of every value is as it was written, NaNs included. Linear in the size of the grid.
/// @param path  in bytes, as open() receives it
/// @throws PcmError when the file is not a whole, undamaged pcm file of a known version. All sizes are checked against
///         the size of the file before memory is allocated
[[nodiscard]] PcmMeasurement ReadPcmFile(const std::string& path);
[[nodiscard]] PcmMeasurement ReadPcm(std::span<const std::byte> bytes);

/// Writes a measurement to a file, which is replaced as a whole (files/AtomicFile.h).
/// @param calls  system calls, for tests that let them fail
/// @throws PcmError for a grid without arrays or with a size outside 1..32767; std::system_error when the system fails.
///         The old file is unchanged then
void WritePcmFile(const std::string& path, const PcmView& view,
                  FileStorage::FileCalls& calls = FileStorage::FileCalls::Real());
[[nodiscard]] std::vector<std::byte> WritePcm(const PcmView& view);

}  // namespace MsrStorage
