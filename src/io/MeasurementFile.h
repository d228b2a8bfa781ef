// A pcm file as the scene takes it: scaled, masked, in arrays of its own.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

namespace MsrStorage {
class MSR;
}

/// From the units of pcm files to those of the scene.
inline constexpr float kFileToSceneScale = 0.001f;
/// Pixels of this class and above are not valid.
inline constexpr std::uint8_t kFirstInvalidClass = 240;

/// All zero and empty when there was nothing to read.
struct MeasurementData {
    int m_iWidth = 0, m_iHeight = 0;
    std::vector<float> m_vXYZ;             ///< 3 a pixel, row after row, thousandths of the file's units
    std::vector<std::uint16_t> m_vMask;    ///< one a pixel, 0 is valid
    int m_iMasked = 0;                     ///< pixels whose mask is not zero
    std::array<float, 16> m_fTrafo{};      ///< row-major 4 x 4, translation in thousandths
    std::vector<std::uint32_t> m_vColors;  ///< one a pixel, or empty
};

/// @param path             file to load, or null: @p measurement is loaded already
/// @param confidenceLimit  pixels of less confidence are masked
/// @param measurement      where the file is loaded to, for a caller who wants to write it again; null for a local one,
///                         which is gone again when this returns
[[nodiscard]] MeasurementData LoadMeasurementFile(const wchar_t* path, float confidenceLimit,
                                                  MsrStorage::MSR* measurement);
