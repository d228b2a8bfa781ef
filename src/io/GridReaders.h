// The measurement formats pax and xdt; docs/formats describes every byte. The announced size of a grid is checked
// against the size of the file before anything is allocated.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "io/ByteInput.h"
#include "io/RecordShare.h"

using MeasurementReadError = FileReadError;

/// An array of floats that is zero without a pass over it: the system provides zeroed pages, and pages that are never
/// written need no memory.
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

/// The content of a file, in the file's units. Values after the end of a short file are zero.
///
/// The arrays are as large as the announced grid, however short the file is.
struct MeasurementGrid {
    std::int16_t m_iWidth = 0, m_iHeight = 0;  ///< both zero when the file announces no pixel
    ZeroedFloats m_vPoints;                    ///< 3 per pixel, row after row
    ZeroedFloats m_vConfidence;                ///< one per pixel; empty for xdt
    std::array<float, 16> m_fTrafo{};          ///< row-major 4 x 4, sensor to world; zero for xdt
    bool m_bHasTrafo = false;                  ///< the whole transform was in the file
    RecordShare m_pixelShare;                  ///< by the points
};

/// From a file or from the bytes of one.
/// @throws MeasurementReadError when the file cannot be opened, is not a regular file, ends before its grid's size,
///         announces a negative size, or holds less than a quarter of the grid that it announces
[[nodiscard]] MeasurementGrid ReadPaxFile(const std::wstring& path);
[[nodiscard]] MeasurementGrid ReadPax(std::span<const std::byte> bytes);
[[nodiscard]] MeasurementGrid ReadXdtFile(const std::wstring& path);
[[nodiscard]] MeasurementGrid ReadXdt(std::span<const std::byte> bytes);

/// From the units of an xdt file to those of the scene: divides every coordinate by 1000, in place. Not the same as the
/// multiplication by 0.001 that pcm files need: the results can differ in the last bit.
void ScaleXdtPoints(std::span<float> points);
