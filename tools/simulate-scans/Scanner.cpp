// Poses, rays, and the values of a pixel: noise, dropouts, confidence, class and colour.
#include "Scanner.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

#include "Repeatable.h"

namespace simulate {
namespace {

/// @return 2 * axis + side, for the axis along which the normal has its largest component; side 1 is positive
int SideOf(Vec3 normal) {
    const float ax = std::fabs(normal.x), ay = std::fabs(normal.y), az = std::fabs(normal.z);
    const int axis = ax >= ay && ax >= az ? 0 : ay >= az ? 1 : 2;
    return 2 * axis + (normal[axis] > 0 ? 1 : 0);
}

/// A checkerboard of cubes of 10 mm, with another hue for each side of the object.
std::uint32_t PaintAt(Vec3 world, int side) {
    static constexpr std::uint32_t kLight[6] = {0xFFE0B070, 0xFFD08080, 0xFF90C080, 0xFFA0D0C0, 0xFF8090D0, 0xFFE0D0B8};
    const auto cell = [](float value) { return static_cast<int>(std::floor(value * 0.1f)); };
    const std::uint32_t light = kLight[side];
    if (((cell(world.x) + cell(world.y) + cell(world.z)) & 1) == 0) return light;
    return 0xFF000000u | ((light >> 1) & 0x7F7F7Fu);
}

/// Fills the rows of a grid. Rows can be measured on several threads, since each pixel has its own random stream.
class Measurement {
public:
    Measurement(const RayCaster& object, const ScannerSettings& settings, int scanNumber, ScanGrid* grid)
        : m_object(object),
          m_settings(settings),
          m_nScan(static_cast<std::uint64_t>(scanNumber)),
          m_grid(*grid),
          m_fMinCosine(static_cast<float>(CosTurns(settings.maxIncidenceDeg / 360.0))) {}

    void MeasureRow(int row) {
        const auto width = static_cast<std::size_t>(m_grid.width);
        for (int column = 0; column < m_grid.width; ++column)
            MeasurePixel(column, row, static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column));
    }

private:
    void MeasurePixel(int column, int row, std::size_t pixel) {
        const Ray ray = PixelRay(m_settings, column, row);
        const Ray worldRay{TransformPoint(m_grid.toWorld, ray.origin),
                           TransformDirection(m_grid.toWorld, ray.direction)};
        const Hit hit = m_object.Nearest(worldRay);
        if (!hit.IsHit()) return;
        // Surfaces that are seen too obliquely, and those seen from the back, are not measured.
        const Vec3 normal = m_object.Normal(hit.triangle);
        const float cosine = -Dot(normal, worldRay.direction);
        if (cosine < m_fMinCosine) return;
        // The numbers are drawn in a fixed order, dropout first, then noise: one seed, one set of files.
        RandomStream random(m_settings.seed, m_nScan, pixel);
        if (random.Uniform() < m_settings.dropout) return;
        // Noise moves the point along the ray only.
        const Vec3 point = ray.origin + ray.direction * (hit.distance + m_settings.noise * random.Gaussian());
        m_grid.points[3 * pixel] = point.x;
        m_grid.points[3 * pixel + 1] = point.y;
        m_grid.points[3 * pixel + 2] = point.z;
        m_grid.confidence[pixel] = std::clamp((cosine - m_fMinCosine) / (1.0f - m_fMinCosine), 0.0f, 1.0f);
        // Class and colour are those of the exact point.
        const int side = SideOf(normal);
        m_grid.classes[pixel] = static_cast<std::uint8_t>(10 * side);
        if (!m_grid.colors.empty())
            m_grid.colors[pixel] = PaintAt(worldRay.origin + worldRay.direction * hit.distance, side);
    }

    const RayCaster& m_object;
    const ScannerSettings& m_settings;
    const std::uint64_t m_nScan;
    ScanGrid& m_grid;
    const float m_fMinCosine;  // of the largest angle that is measured
};

/// Van der Corput sequence in base 2: 0, 1/2, 1/4, 3/4, 1/8 ...
float VanDerCorput(unsigned number) {
    float value = 0;
    for (float digit = 0.5f; number != 0; number >>= 1, digit *= 0.5f)
        if (number & 1u) value += digit;
    return value;
}

/// A sensor that looks at the origin. Angles in turns: azimuth around y from +z, elevation above the xz plane.
Transform LookAtOrigin(double azimuthTurns, double elevationTurns, float distance) {
    const auto sinA = static_cast<float>(SinTurns(azimuthTurns)), cosA = static_cast<float>(CosTurns(azimuthTurns));
    const auto sinE = static_cast<float>(SinTurns(elevationTurns)), cosE = static_cast<float>(CosTurns(elevationTurns));
    // The axes of the sensor in the world are the columns of the rotation.
    const Vec3 right{cosA, 0, -sinA}, back{sinA * cosE, sinE, cosA * cosE};
    const Vec3 up = Cross(back, right);
    return {right.x, up.x, back.x, back.x * distance,  //
            right.y, up.y, back.y, back.y * distance,  //
            right.z, up.z, back.z, back.z * distance,  //
            0,       0,    0,      1};
}

}  // namespace

Vec3 TransformDirection(const Transform& m, Vec3 d) {
    return {m[0] * d.x + m[1] * d.y + m[2] * d.z, m[4] * d.x + m[5] * d.y + m[6] * d.z,
            m[8] * d.x + m[9] * d.y + m[10] * d.z};
}

Vec3 TransformPoint(const Transform& m, Vec3 point) { return TransformDirection(m, point) + Vec3{m[3], m[7], m[11]}; }

std::vector<Transform> PosesAround(int count, float distance) {
    std::vector<Transform> poses;
    for (int i = 0; i < count; ++i) {
        // 20, -10, 50, 5, 35 ... degrees: adjacent poses see above and below the edges that occlude each other's view.
        const double elevationDeg =
            20.0 - 60.0 * VanDerCorput(static_cast<unsigned>(i) % 8u) + (i % 4 == 2 ? 45.0 : 0.0);
        poses.push_back(LookAtOrigin(static_cast<double>(i) / count, elevationDeg / 360.0, distance));
    }
    return poses;
}

std::size_t ScanGrid::MeasuredCount() const {
    return classes.size() - static_cast<std::size_t>(std::count(classes.begin(), classes.end(), kClassNotMeasured));
}

Ray PixelRay(const ScannerSettings& settings, int column, int row) {
    const float radius = settings.objectRadius * 1.05f, distance = settings.distance;
    // Coordinates of the pixel centre; 1 is half of the shorter side of the picture.
    const float halfPicture = 0.5f * static_cast<float>(std::min(settings.width, settings.height));
    const float right = (static_cast<float>(column) + 0.5f - 0.5f * static_cast<float>(settings.width)) / halfPicture;
    const float up = (0.5f * static_cast<float>(settings.height) - static_cast<float>(row) - 0.5f) / halfPicture;
    if (settings.parallel) return {{right * radius, up * radius, 0}, {0, 0, -1}};
    // The slope of the cone that touches the sphere around the object.
    const float slope = radius / std::sqrt(std::max(distance * distance - radius * radius, radius * radius));
    return {{0, 0, 0}, Unit({right * slope, up * slope, -1})};
}

ScanGrid MeasureFrom(const RayCaster& object, const Transform& pose, const ScannerSettings& settings, int scanNumber,
                     int threads) {
    ScanGrid grid;
    grid.width = settings.width;
    grid.height = settings.height;
    grid.toWorld = pose;
    const std::size_t pixels = static_cast<std::size_t>(settings.width) * static_cast<std::size_t>(settings.height);
    grid.points.assign(3 * pixels, 0.0f);
    grid.confidence.assign(pixels, kConfidenceNotMeasured);
    grid.classes.assign(pixels, kClassNotMeasured);
    if (settings.colors) grid.colors.assign(pixels, 0);

    // Each thread, this one included, measures the next row that no other thread has.
    Measurement measurement(object, settings, scanNumber, &grid);
    std::atomic<int> nextRow = 0;
    const auto work = [&] {
        for (int row = nextRow++; row < settings.height; row = nextRow++) measurement.MeasureRow(row);
    };
    std::vector<std::jthread> helpers;
    for (int i = 1; i < threads; ++i) helpers.emplace_back(work);
    work();
    helpers.clear();  // joins
    return grid;
}

}  // namespace simulate
