// A measurement in the units of the scene, as the triangulation reads it. All imports of grids make it here, whether
// the arrays come from a file or from the host.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// From the units of pcm files (micrometres) to those of the scene.
inline constexpr float kFileToSceneScale = 0.001f;
/// Pixels of this class and above are not valid.
inline constexpr std::uint8_t kFirstInvalidClass = 240;

/// The arrays of one measurement. All of them belong to the caller.
struct MeasurementArrays {
    std::int32_t m_iWidth = 0, m_iHeight = 0;         ///< pixels
    const float* m_pPoints = nullptr;                 ///< 3 per pixel, row after row, sensor frame
    const float* m_pConfidence = nullptr;             ///< one per pixel; null with GridMask::EqualNegatives alone
    const std::uint8_t* m_pClassification = nullptr;  ///< one per pixel; null: there is none
    const float* m_pTrafo = nullptr;                  ///< row-major 4 x 4, sensor to world; null: there is none
    const std::uint32_t* m_pColors = nullptr;         ///< one per pixel in the form of Vertex::color; null: none
};

/// What happens to coordinates and translation.
enum class GridScale {
    None,        ///< they are in scene units: the points are used where they are, without a copy
    Thousandths  ///< both are multiplied by kFileToSceneScale
};

/// Which pixels are masked.
enum class GridMask {
    ClassAndConfidence,  ///< confidence below the limit and, where there are classes, kFirstInvalidClass and above
    EqualNegatives       ///< x, y and z are the same negative number: the sensor did not measure the pixel
};

struct MeasurementRules {
    GridScale m_eScale = GridScale::None;
    GridMask m_eMask = GridMask::ClassAndConfidence;
    float m_fConfidenceLimit = 0.0f;  ///< a pixel at the limit is valid, and so is one whose confidence is NaN
};

/// A measurement in scene units. All zero and empty when there was nothing to read.
struct MeasurementData {
    int m_iWidth = 0, m_iHeight = 0;
    std::vector<float> m_vXYZ;             ///< 3 per pixel, row after row; empty when the source's points are used
    std::vector<std::uint16_t> m_vMask;    ///< one per pixel, 0 is valid
    int m_iMasked = 0;                     ///< pixels whose mask is not zero
    std::array<float, 16> m_fTrafo{};      ///< row-major 4 x 4, translation in scene units
    bool m_bHasTrafo = true;               ///< false: the source has none, and the object keeps the identity
    std::vector<std::uint32_t> m_vColors;  ///< one per pixel; empty when the source's are used or there are none
    std::string m_sRefusal;                ///< why there is no grid: the file or an array is missing; else empty
    std::size_t m_uNotFinite = 0;          ///< coordinates of valid pixels that are infinite or NaN
    std::string m_sMaskReason;             ///< when all pixels are masked, why none is valid; else empty

    const float* m_pSourcePoints = nullptr;          ///< the caller's points where m_vXYZ is empty
    const std::uint32_t* m_pSourceColors = nullptr;  ///< the caller's colours where m_vColors is empty; may be null

    // In the form that CreateInternalMesh() expects.
    [[nodiscard]] const float* Points() const { return m_vXYZ.empty() ? m_pSourcePoints : m_vXYZ.data(); }
    [[nodiscard]] const float* Trafo() const { return m_bHasTrafo ? m_fTrafo.data() : nullptr; }
    [[nodiscard]] const std::uint32_t* Colors() const { return m_vColors.empty() ? m_pSourceColors : m_vColors.data(); }
};

/// Scales and masks a measurement, in one pass per array. Any thread.
/// @param arrays  must outlive the result, which refers to the colours and, when nothing is scaled, to the points. A
///                size that IsPossibleGrid() denies gives data of that size without arrays, and nothing is read; a
///                grid without the arrays that the rules need gives an empty measurement with m_sRefusal
[[nodiscard]] MeasurementData MakeMeasurementData(const MeasurementArrays& arrays, const MeasurementRules& rules);
