// A structured-light scanner: what it would measure of an object from a pose, with its faults.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "RayCaster.h"

namespace simulate {

/// A rigid transform, row-major 4 x 4, sensor to world, millimetres.
using Transform = std::array<float, 16>;

[[nodiscard]] Vec3 TransformPoint(const Transform& transform, Vec3 point);
[[nodiscard]] Vec3 TransformDirection(const Transform& transform, Vec3 direction);

/// Where the sensor stands: once around the object, now higher and now lower, always looking at the origin. The first
/// looks at the front. In the sensor frame x is right, y up, and the sensor looks along -z.
/// @param distance  of the sensor from the origin
[[nodiscard]] std::vector<Transform> PosesAround(int count, float distance);

struct ScannerSettings {
    int width = 640, height = 480;
    bool parallel = false;          ///< parallel rays instead of a pinhole camera
    float noise = 0.02f;            ///< deviation along the ray, millimetres
    float dropout = 0.01f;          ///< share of the pixels on the object that are lost, 0 to 1
    float maxIncidenceDeg = 75.0f;  ///< a surface seen more steeply than this is not measured; below 90
    bool colors = false;
    std::uint64_t seed = 1;
    float objectRadius = 50.0f;  ///< fills the picture
    float distance = 400.0f;     ///< of the sensor from the origin; larger than the object's radius
};

inline constexpr std::uint8_t kClassNotMeasured = 250;  ///< 240 and above count as not valid
inline constexpr float kConfidenceNotMeasured = -1.0f;

/// A measurement, row after row, top row first. A pixel that was not measured is a point at zero with confidence -1.
struct ScanGrid {
    int width = 0, height = 0;
    Transform toWorld{};
    std::vector<float> points;          ///< 3 a pixel, sensor frame, millimetres
    std::vector<float> confidence;      ///< 1 face to face, falling to 0 at the steepest angle that is measured
    std::vector<std::uint8_t> classes;  ///< 0, 10 ... 50: the object's sides -x, +x, -y, +y, -z, +z
    std::vector<std::uint32_t> colors;  ///< 0xAARRGGBB, or empty

    [[nodiscard]] std::size_t PixelCount() const { return confidence.size(); }
    [[nodiscard]] bool IsMeasured(std::size_t pixel) const { return classes[pixel] != kClassNotMeasured; }
    [[nodiscard]] std::size_t MeasuredCount() const;
};

/// The ray of a pixel, sensor frame, direction of unit length.
[[nodiscard]] Ray PixelRay(const ScannerSettings& settings, int column, int row);

/// @param scanNumber  with the settings' seed and the pixel it decides noise and dropouts
/// @param threads     at least 1; plays no part in the result
[[nodiscard]] ScanGrid MeasureFrom(const RayCaster& object, const Transform& pose, const ScannerSettings& settings,
                                   int scanNumber, int threads);

}  // namespace simulate
