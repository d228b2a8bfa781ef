// Simulates the measurement of an object by a structured-light scanner, with noise, dropouts and steep surfaces
// missing.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "RayCaster.h"

namespace simulate {

/// A rigid transform (a rotation and a translation), row-major 4 x 4, sensor to world, millimetres.
using Transform = std::array<float, 16>;

/// Rotation and translation of a point; rotation of a direction.
[[nodiscard]] Vec3 TransformPoint(const Transform& transform, Vec3 point);
[[nodiscard]] Vec3 TransformDirection(const Transform& transform, Vec3 direction);

/// Poses of the sensor: evenly spaced around the y axis at changing elevations, looking at the origin. The first one
/// looks at the front (+z). In the sensor frame x is to the right, y up, and the sensor looks along -z.
/// @param count     at least 1
/// @param distance  of the sensor from the origin, millimetres
/// @return sensor to world
[[nodiscard]] std::vector<Transform> PosesAround(int count, float distance);

/// The sensor.
struct ScannerSettings {
    int width = 640, height = 480;  ///< pixels
    bool parallel = false;          ///< parallel rays instead of a pinhole camera
    float noise = 0.02f;            ///< standard deviation along the ray, millimetres
    float dropout = 0.01f;          ///< fraction of the pixels on the object that are not measured, 0 to 1
    float maxIncidenceDeg = 75.0f;  ///< largest angle between ray and normal that is measured; below 90
    bool colors = false;            ///< whether the scan has colours
    std::uint64_t seed = 1;         ///< of noise and dropouts
    float objectRadius = 50.0f;     ///< millimetres around the origin; the field of view just contains it
    float distance = 400.0f;        ///< of the sensor from the origin, millimetres; larger than objectRadius
};

inline constexpr std::uint8_t kClassNotMeasured = 250;  ///< 240 and above are not valid
inline constexpr float kConfidenceNotMeasured = -1.0f;

/// A scan, row by row, top row first. A pixel that was not measured has the point (0, 0, 0) and confidence -1.
struct ScanGrid {
    int width = 0, height = 0;
    Transform toWorld{};                ///< sensor to world, millimetres
    std::vector<float> points;          ///< x, y, z per pixel, sensor frame, millimetres
    std::vector<float> confidence;      ///< 1 where the ray is along the normal, 0 at the largest measured angle
    std::vector<std::uint8_t> classes;  ///< 0, 10 ... 50: surface towards -x, +x, -y, +y, -z, +z
    std::vector<std::uint32_t> colors;  ///< 0xAARRGGBB per pixel; empty without colours

    /// width x height
    [[nodiscard]] std::size_t PixelCount() const { return confidence.size(); }
    /// Whether the pixel has a point.
    [[nodiscard]] bool IsMeasured(std::size_t pixel) const { return classes[pixel] != kClassNotMeasured; }
    /// Number of pixels with a point. Linear in the number of pixels.
    [[nodiscard]] std::size_t MeasuredCount() const;
};

/// The ray through the centre of a pixel, in the sensor frame; its direction has length 1.
[[nodiscard]] Ray PixelRay(const ScannerSettings& settings, int column, int row);

/// Measures one scan: one ray per pixel against the object. Pixels without a hit are not measured.
/// @param pose        sensor to world
/// @param scanNumber  part of the seed, so that each scan has other noise and dropouts
/// @param threads     at least 1; the result does not depend on it
[[nodiscard]] ScanGrid MeasureFrom(const RayCaster& object, const Transform& pose, const ScannerSettings& settings,
                                   int scanNumber, int threads);

}  // namespace simulate
