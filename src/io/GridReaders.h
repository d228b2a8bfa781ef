// The measurement formats pax and xdt, byte by byte in docs/formats. What they announce is checked against the bytes
// that are there before anything is allocated.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "io/ByteInput.h"

using MeasurementReadError = FileReadError;

/// Floats that are zero from the start without a pass over them: pages that nobody writes to cost nothing.
class ZeroedFloats {
public:
    ZeroedFloats() = default;
    /// @throws std::bad_alloc
    explicit ZeroedFloats(std::size_t count);

    [[nodiscard]] float* data() { return m_pValues.get(); }
    [[nodiscard]] const float* data() const { return m_pValues.get(); }
    [[nodiscard]] std::size_t size() const { return m_uCount; }
    [[nodiscard]] bool empty() const { return m_uCount == 0; }
    float& operator[](std::size_t i) { return m_pValues[i]; }
    const float& operator[](std::size_t i) const { return m_pValues[i]; }
    operator std::span<float>() { return {data(), size()}; }
    operator std::span<const float>() const { return {data(), size()}; }

private:
    struct Free {
        void operator()(float* values) const;
    };
    std::unique_ptr<float[], Free> m_pValues;
    std::size_t m_uCount = 0;
};

/// A grid as it stands in the file, in the file's units. Where the file was cut short the values are zero.
struct MeasurementGrid {
    std::int16_t m_iWidth = 0, m_iHeight = 0;  ///< both zero when the file announces no pixel
    ZeroedFloats m_vPoints;                    ///< 3 a pixel, row after row
    ZeroedFloats m_vConfidence;                ///< one a pixel; empty for xdt
    std::array<float, 16> m_fTrafo{};          ///< row-major 4 x 4; zero for xdt
};

/// @throws MeasurementReadError when the file cannot be opened, is no regular file, ends before its grid's size,
///         announces a negative size, or holds less than a quarter of the grid that it announces
[[nodiscard]] MeasurementGrid ReadPaxFile(const std::wstring& path);
[[nodiscard]] MeasurementGrid ReadPax(std::span<const std::byte> bytes);
[[nodiscard]] MeasurementGrid ReadXdtFile(const std::wstring& path);
[[nodiscard]] MeasurementGrid ReadXdt(std::span<const std::byte> bytes);

/// From the units of an xdt file to those of the scene: divides every coordinate by 1000.
void ScaleXdtPoints(std::span<float> points);
/// 1 for the pixels that the sensor did not measure: x, y and z are all equal and negative. Of scaled points.
[[nodiscard]] std::vector<std::uint16_t> XdtMask(std::span<const float> points);
/// 1 for the pixels whose confidence is below the limit; no comparison holds for a confidence that is no number.
[[nodiscard]] std::vector<std::uint16_t> ConfidenceMask(std::span<const float> confidence, float limit);
