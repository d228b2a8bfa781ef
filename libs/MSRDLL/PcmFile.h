// The pcm file format: one gridded optical measurement. Byte by byte in docs/formats/pcm.md.
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

inline constexpr int kPcmMaxSide = 32767;
/// The grid of a file takes at most this many times the file's size in memory; readers refuse more.
inline constexpr std::uint64_t kPcmMaxExpansion = 64;

/// A section that this version does not know: kept as it stands, and written again.
struct PcmForeignSection {
    std::uint32_t m_uId = 0;
    std::uint16_t m_uEncoding = 0, m_uFlags = 0;
    std::vector<std::byte> m_vBytes;
};

/// A measurement as it is in memory. The arrays are null when it is empty.
struct PcmMeasurement {
    int m_iWidth = 0, m_iHeight = 0;                    ///< 1..32767 each, or both zero
    std::unique_ptr<float[]> m_pPoints;                 ///< 3 a pixel, row after row, sensor frame, micrometres
    std::unique_ptr<float[]> m_pConfidence;             ///< one a pixel
    std::unique_ptr<std::uint8_t[]> m_pClassification;  ///< one a pixel; 240 and above are not valid
    std::unique_ptr<std::uint32_t[]> m_pColors;         ///< one a pixel, 0xAARRGGBB; null when there are none
    std::array<float, 16> m_fTrafo{};                   ///< row-major 4 x 4, sensor to world, micrometres
    std::vector<PcmForeignSection> m_vForeign;
};

/// What is to be written: the arrays stay the caller's.
struct PcmView {
    int m_iWidth = 0, m_iHeight = 0;
    const float* m_pPoints = nullptr;
    const float* m_pConfidence = nullptr;
    const std::uint8_t* m_pClassification = nullptr;
    const std::uint32_t* m_pColors = nullptr;  ///< may be null
    const float* m_pTrafo = nullptr;           ///< 16 floats
    std::span<const PcmForeignSection> m_foreign;
};

[[nodiscard]] PcmView ViewOf(const PcmMeasurement& measurement);

/// Reads a measurement; every bit of every value comes back as it was written.
/// @param path  in bytes, as the open call takes it
/// @throws PcmError for what is not a whole, undamaged pcm file of a known version. Sizes are checked against that of
///         the file before anything is allocated
[[nodiscard]] PcmMeasurement ReadPcmFile(const std::string& path);
[[nodiscard]] PcmMeasurement ReadPcm(std::span<const std::byte> bytes);

/// Writes a measurement and replaces @p path by it, as AtomicFile does.
/// @throws PcmError for a grid without arrays or with a size outside 1..32767; std::system_error from the disk. The old
///         file is whole then
void WritePcmFile(const std::string& path, const PcmView& view,
                  FileStorage::FileCalls& calls = FileStorage::FileCalls::Real());
[[nodiscard]] std::vector<std::byte> WritePcm(const PcmView& view);

}  // namespace MsrStorage
