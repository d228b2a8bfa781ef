// Mean and best plane of points. The plane is through the mean; its normal is the direction of least variance.
#include "PlaneFit.h"

#include <Eigen/Eigenvalues>
#include <cmath>

namespace KvComponents {

namespace {

bool IsFinite(const Point3& point) {
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

/// @param pointAt  the point of a number below @p count
template <class PointAt>
std::optional<Point3> Mean(std::size_t count, const PointAt& pointAt) {
    double x = 0.0, y = 0.0, z = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const float* const point = pointAt(i);
        x += double{point[0]};
        y += double{point[1]};
        z += double{point[2]};
    }
    const auto n = static_cast<double>(count);
    const Point3 mean{x / n, y / n, z / n};  // finite floats have a finite sum
    if (!IsFinite(mean)) return std::nullopt;
    return mean;
}

/// The covariance matrix, not divided by the number of points: its eigenvectors are the same.
template <class PointAt>
Eigen::Matrix3d Covariance(std::size_t count, const PointAt& pointAt, const Point3& mean) {
    double xx = 0.0, xy = 0.0, xz = 0.0, yy = 0.0, yz = 0.0, zz = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const float* const point = pointAt(i);
        const double x = point[0] - mean[0], y = point[1] - mean[1], z = point[2] - mean[2];
        xx += x * x;
        xy += x * y;
        xz += x * z;
        yy += y * y;
        yz += y * z;
        zz += z * z;
    }
    Eigen::Matrix3d covariance;
    covariance << xx, xy, xz, xy, yy, yz, xz, yz, zz;
    return covariance;
}

Point3 Oriented(const Eigen::Vector3d& normal) {
    const double sign = normal.z() != 0.0 ? normal.z() : normal.y() != 0.0 ? normal.y() : normal.x();
    const Eigen::Vector3d up = sign < 0.0 ? Eigen::Vector3d(-normal) : normal;
    return {up.x() + 0.0, up.y() + 0.0, up.z() + 0.0};  // + 0.0: no negative zero
}

template <class PointAt>
std::optional<Point3> PlaneNormal(std::size_t count, const PointAt& pointAt) {
    if (count < 3) return std::nullopt;
    const std::optional<Point3> mean = Mean(count, pointAt);
    if (!mean) return std::nullopt;
    // The eigenvalues are in ascending order.
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(Covariance(count, pointAt, *mean));
    return Oriented(solver.eigenvectors().col(0));
}

}  // namespace

std::optional<Point3> MeanOf(const PointView& points) {
    return Mean(points.size(), [&](std::size_t i) { return points[i]; });
}

std::optional<Point3> PlaneNormalOf(const PointView& points) {
    return PlaneNormal(points.size(), [&](std::size_t i) { return points[i]; });
}

std::optional<Point3> PlaneNormalOf(const PointView& points, std::span<const std::uint32_t> indices) {
    return PlaneNormal(indices.size(), [&](std::size_t i) { return points[indices[i]]; });
}

}  // namespace KvComponents
