// The rigid fit of pairs of points. Everything is of fixed size and in double, whose range holds the squares of all
// floats: nothing is allocated, nothing throws, and huge or tiny coordinates need no scaling.
#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "KV_UtilsLantern/KV_UtilsLantern.h"

namespace {

using Eigen::Matrix3d;
using Eigen::Vector3d;

enum Status : int { Success = 0, BadArguments = -1, NotFinite = -2, SamePoints = -3, OutOfRange = -4 };

// Below these parts of the coordinates and of the extent a distance from a line is rounding; see the header.
constexpr double kCoordinateRounding = 0x1p-24;
constexpr double kExtentRounding = 0x1p-20;

Vector3d PointAt(const float* xyz, int index) {
    const float* const p = xyz + 3 * static_cast<std::ptrdiff_t>(index);
    return {p[0], p[1], p[2]};
}

/// One side of the pairs.
struct PointSet {
    Vector3d centroid;
    Vector3d direction;  ///< of the fitted line, of length 1, with either sign
    double extent;       ///< root of the summed squares along the line
    double width;        ///< the same across it, along the wider direction
    double norm;         ///< root of the summed squared coordinates

    [[nodiscard]] double Tolerance() const { return kCoordinateRounding * norm + kExtentRounding * extent; }
    [[nodiscard]] bool IsOnePoint() const { return extent <= kCoordinateRounding * norm; }
    [[nodiscard]] bool IsLine() const { return width <= Tolerance(); }
};

PointSet Describe(int count, const float* xyz) {
    PointSet set{Vector3d::Zero(), Vector3d::Zero(), 0, 0, 0};  // Eigen's vectors start without values
    double squares = 0;
    for (int i = 0; i < count; ++i) {
        set.centroid += PointAt(xyz, i);
        squares += PointAt(xyz, i).squaredNorm();
    }
    set.centroid /= count;
    // The scatter of the centred points: its eigenvalues are the squared extents.
    Matrix3d scatter = Matrix3d::Zero();
    for (int i = 0; i < count; ++i) {
        const Vector3d offset = PointAt(xyz, i) - set.centroid;
        scatter += offset * offset.transpose();
    }
    const Eigen::SelfAdjointEigenSolver<Matrix3d> axes(scatter);  // eigenvalues in ascending order
    set.direction = axes.eigenvectors().col(2);
    set.extent = std::sqrt(std::max(0.0, axes.eigenvalues()[2]));
    set.width = std::sqrt(std::max(0.0, axes.eigenvalues()[1]));
    set.norm = std::sqrt(squares);
    return set;
}

/// Sum of the products target x source^T of the centred pairs.
Matrix3d Correlate(int count, const float* sourceXYZ, const Vector3d& source, const float* targetXYZ,
                   const Vector3d& target) {
    Matrix3d correlation = Matrix3d::Zero();
    for (int i = 0; i < count; ++i)
        correlation += (PointAt(targetXYZ, i) - target) * (PointAt(sourceXYZ, i) - source).transpose();
    return correlation;
}

/// The rotation R that maximises the trace of R^T x correlation.
Matrix3d NearestRotation(const Matrix3d& correlation) {
    const Eigen::JacobiSVD<Matrix3d> svd(correlation, Eigen::ComputeFullU | Eigen::ComputeFullV);
    // A reflection would fit better than any rotation where the determinant is negative: the axis that counts least
    // is turned round.
    Matrix3d u = svd.matrixU();
    if (u.determinant() * svd.matrixV().determinant() < 0) u.col(2) = -u.col(2);
    return u * svd.matrixV().transpose();
}

/// By the half angle, which is exact near 0 and near half a turn. @param from, to  of length 1, not opposite
Matrix3d ShortestRotation(const Vector3d& from, const Vector3d& to) {
    const Vector3d middle = (from + to).normalized();
    const Vector3d axis = from.cross(middle);  // length: sine of half the angle
    return Eigen::Quaterniond(from.dot(middle), axis.x(), axis.y(), axis.z()).normalized().toRotationMatrix();
}

/// Takes @p direction to its opposite.
Matrix3d HalfTurn(const Vector3d& direction) {
    const Vector3d wanted = std::abs(direction.x()) < 0.9 ? Vector3d::UnitX() : Vector3d::UnitY();
    const Vector3d axis = (wanted - wanted.dot(direction) * direction).normalized();
    return 2 * axis * axis.transpose() - Matrix3d::Identity();
}

Matrix3d RotationOfLines(const Vector3d& from, const Vector3d& to) {
    // Almost opposite: which way round is shorter is rounding, so it is always the same half turn and the small rest.
    if ((from + to).norm() <= kExtentRounding) return ShortestRotation(-from, to) * HalfTurn(from);
    return ShortestRotation(from, to);
}

/// The line of the other side: the direction that fits best to the one of the line, with its sign by the pairs.
/// @param product  correlation of the other side with the line
Vector3d FittingDirection(const Vector3d& product, const PointSet& line, const PointSet& other) {
    if (product.norm() > kExtentRounding * line.extent * other.extent) return product.normalized();
    // The positions along both lines have nothing in common, so the pairs do not say which end belongs to which.
    return line.direction.dot(other.direction) < 0 ? Vector3d(-other.direction) : other.direction;
}

Matrix3d FindRotation(const Matrix3d& correlation, const PointSet& source, const PointSet& target) {
    if (source.IsLine())
        return RotationOfLines(source.direction, FittingDirection(correlation * source.direction, source, target));
    if (target.IsLine())
        return RotationOfLines(FittingDirection(correlation.transpose() * target.direction, target, source),
                               target.direction);
    return NearestRotation(correlation);
}

/// Not inlined: g++ 12 at -O3 drops the rounding where it sees that the result becomes a double again.
[[gnu::noinline]] Eigen::Matrix3f RoundToFloat(const Matrix3d& matrix) { return matrix.cast<float>(); }

}  // namespace

int LANDLL_PickPointMatching(int count, const float* sourceXYZ, const float* targetXYZ, float* result) noexcept {
    if (count < 2 || sourceXYZ == nullptr || targetXYZ == nullptr || result == nullptr) return BadArguments;
    const PointSet source = Describe(count, sourceXYZ), target = Describe(count, targetXYZ);
    if (!std::isfinite(source.norm) || !std::isfinite(target.norm)) return NotFinite;
    if (source.IsOnePoint() || target.IsOnePoint()) return SamePoints;
    const Matrix3d correlation = Correlate(count, sourceXYZ, source.centroid, targetXYZ, target.centroid);
    const Eigen::Matrix3f rotation = RoundToFloat(FindRotation(correlation, source, target));
    // By the rounded rotation: so the centroids meet also far from the origin.
    const Vector3d translation = target.centroid - rotation.cast<double>() * source.centroid;
    if (!(translation.cwiseAbs().maxCoeff() <= std::numeric_limits<float>::max()) || !rotation.allFinite())
        return OutOfRange;
    Eigen::Map<Eigen::Matrix3f>(result, 3, 3) = rotation;  // Eigen's default order: column after column
    Eigen::Map<Eigen::Vector3f>(result + 9) = translation.cast<float>();
    return Success;
}
