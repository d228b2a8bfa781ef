#include "clip/ClipHeightReference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr int kBins = 500;
constexpr double kEverywhere = std::numeric_limits<double>::infinity();

struct Point {
    double x, y, z, up;
};

struct Histogram {
    double low, width, spread;
    std::array<double, kBins> values{};
    std::vector<std::pair<double, double>> samples{};  ///< value and weight

    [[nodiscard]] double Center(int bin) const { return low + width * (bin + 0.5); }
    void Add(double value, double weight) {
        const int first = std::max(0, static_cast<int>((value - spread - low) / width) - 2);
        const int last = std::min(kBins - 1, static_cast<int>((value + spread - low) / width) + 2);
        const auto share = [&](int bin) { return std::max(0.0, 1 - std::abs(Center(bin) - value) / spread); };
        double sum = 0;
        for (int bin = first; bin <= last; ++bin) sum += share(bin);
        for (int bin = first; bin <= last; ++bin) values[static_cast<std::size_t>(bin)] += weight * share(bin) / sum;
        samples.emplace_back(value, weight);
    }
    [[nodiscard]] double Mean() const {
        double weights = 0, sum = 0;
        for (const auto& [value, weight] : samples) weights += weight, sum += weight * value;
        return sum / weights;
    }
    [[nodiscard]] double Variance() const {
        const double mean = Mean();
        double weights = 0, sum = 0;
        for (const auto& [value, weight] : samples) weights += weight, sum += weight * (value - mean) * (value - mean);
        return sum / weights;
    }
    /// No bin within half the window is higher, and it is the first of its plateau.
    [[nodiscard]] bool IsPeak(int bin, int window) const {
        const double value = values[static_cast<std::size_t>(bin)];
        if (value <= 0) return false;
        if (bin > 0 && values[static_cast<std::size_t>(bin - 1)] == value) return false;
        for (int other = std::max(0, bin - window / 2); other <= std::min(kBins - 1, bin + window / 2); ++other)
            if (values[static_cast<std::size_t>(other)] > value) return false;
        return true;
    }
};

/// The distance of the points from their best plane: the root of the smallest eigenvalue of their covariance, by the
/// closed formula for symmetric 3 x 3 matrices.
double RmsOfBestPlane(const std::vector<Point>& points) {
    const auto n = static_cast<double>(points.size());
    double cx = 0, cy = 0, cz = 0;
    for (const Point& p : points) cx += p.x / n, cy += p.y / n, cz += p.z / n;
    double xx = 0, yy = 0, zz = 0, xy = 0, xz = 0, yz = 0;
    for (const Point& p : points) {
        const double x = p.x - cx, y = p.y - cy, z = p.z - cz;
        xx += x * x / n, yy += y * y / n, zz += z * z / n;
        xy += x * y / n, xz += x * z / n, yz += y * z / n;
    }
    const double q = (xx + yy + zz) / 3;
    const double a = xx - q, b = yy - q, c = zz - q;
    const double p = std::sqrt((a * a + b * b + c * c + 2 * (xy * xy + xz * xz + yz * yz)) / 6);
    if (p == 0) return std::sqrt(q);
    const double determinant = a * (b * c - yz * yz) - xy * (xy * c - yz * xz) + xz * (xy * yz - b * xz);
    const double angle = std::acos(std::clamp(determinant / (2 * p * p * p), -1.0, 1.0)) / 3;
    const double smallest = q + 2 * p * std::cos(angle + 2 * std::numbers::pi / 3);
    return std::sqrt(std::max(smallest, 0.0));
}

/// In bins. In single precision, by which a spread of five bins may be six.
int WindowOf(float width) {
    const float spread = std::max(0.1f, 5.0f * width);
    return static_cast<int>(5.0f * std::ceil(spread / width));
}

double FlatHeight(const Histogram& histogram, int peak, int window, bool* secondLevel) {
    const double top = histogram.values[static_cast<std::size_t>(peak)];
    for (int bin = peak + 1; bin < kBins; ++bin) {
        const double value = histogram.values[static_cast<std::size_t>(bin)];
        if (!histogram.IsPeak(bin, window) || value <= 0.1 * top || value >= 0.5 * top) continue;
        *secondLevel = true;
        return histogram.Center(bin);
    }
    return histogram.Center(peak) + std::sqrt(histogram.Variance());
}

double CurvedHeight(const Histogram& histogram, int peak) {
    for (int bin = peak - 1; bin >= 0; --bin)
        if (histogram.values[static_cast<std::size_t>(bin)] < 0.2 * histogram.values[static_cast<std::size_t>(peak)])
            return histogram.Center(bin);
    return histogram.Center(peak);
}

}  // namespace

ReferenceClipHeight ReferenceEstimate(std::span<const std::shared_ptr<Mesh>> meshes) {
    std::vector<Point> all;
    for (const auto& mesh : meshes)
        for (const Vertex& v : mesh->m_vVertices) all.push_back({v.x, v.y, v.z, v.nz});
    ReferenceClipHeight result;
    if (all.empty()) return result;

    const auto extremes = [&](auto coordinate) {
        const auto [low, high] = std::ranges::minmax_element(all, {}, coordinate);
        return std::pair{(*low).*coordinate, (*high).*coordinate};
    };
    const auto [minX, maxX] = extremes(&Point::x);
    const auto [minY, maxY] = extremes(&Point::y);
    const auto [minZ, maxZ] = extremes(&Point::z);
    const double spotX = (minX + maxX) / 2, spotY = maxY / 4 + minY * 3 / 4;
    const auto within = [&](double radius) {
        std::vector<Point> near;
        for (const Point& p : all)
            if (std::hypot(p.x - spotX, p.y - spotY) < radius) near.push_back(p);
        return near;
    };

    Histogram histogram{.low = minZ, .width = (maxZ - minZ) / kBins, .spread = 0};
    histogram.spread = std::max(0.1, 5 * histogram.width);
    result.binWidth = histogram.width;
    const auto spot = within(1);
    KV_ScenePane::ClipHeightKind kind = KV_ScenePane::HeightFromAllPoints;
    if (spot.size() < 10) {
        for (const Point& p : within(kEverywhere)) {
            histogram.Add(p.z, std::max(0.0, p.up));
            histogram.Add(p.z, std::max(0.0, 1 - std::abs(p.up)));
        }
    } else {
        const auto near = within(12);
        for (const auto& points : {spot, near})
            for (const Point& p : points) histogram.Add(p.z, std::max(0.0, p.up));
        result.rms = RmsOfBestPlane(near);
        kind = result.rms > 1.1 ? KV_ScenePane::HeightCurvedSpot : KV_ScenePane::HeightFlatSpot;
    }

    const auto highest = std::ranges::max_element(histogram.values);
    if (*highest <= 0) return result;
    const auto peak = static_cast<int>(highest - histogram.values.begin());
    const int window = WindowOf(static_cast<float>(histogram.width));
    result.found = true;
    result.kind = kind;
    if (kind == KV_ScenePane::HeightFlatSpot)
        result.height = FlatHeight(histogram, peak, window, &result.secondLevel);
    else if (kind == KV_ScenePane::HeightCurvedSpot)
        result.height = CurvedHeight(histogram, peak);
    else
        result.height = histogram.Mean();
    return result;
}
