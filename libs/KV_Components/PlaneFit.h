// Mean and best plane of points, in double.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace KvComponents {

using Point3 = std::array<double, 3>;

/// Points in an array that the view does not own: x, y, z as floats, then possibly further floats of the same point.
class PointView {
public:
    PointView() = default;
    /// @param floatsPerPoint  from one point to the next, 3 or more
    PointView(const float* points, std::size_t floatsPerPoint, std::size_t count)
        : m_pPoints(points), m_uFloatsPerPoint(floatsPerPoint), m_uCount(count) {}
    [[nodiscard]] std::size_t size() const { return m_uCount; }
    [[nodiscard]] const float* operator[](std::size_t index) const { return m_pPoints + index * m_uFloatsPerPoint; }

private:
    const float* m_pPoints = nullptr;
    std::size_t m_uFloatsPerPoint = 3;
    std::size_t m_uCount = 0;
};

/// @return the mean; none without points and where a coordinate is not finite
[[nodiscard]] std::optional<Point3> MeanOf(const PointView& points);

/// The unit normal of the plane through the mean of the points with the least sum of squared distances. The first of z,
/// y, x that is not 0 is positive. Where several planes fit equally well, as for points on a line, it is one of them.
/// @return none with fewer than 3 points and where a coordinate is not finite
[[nodiscard]] std::optional<Point3> PlaneNormalOf(const PointView& points);
/// The same for some of the points.
/// @param indices  into @p points
[[nodiscard]] std::optional<Point3> PlaneNormalOf(const PointView& points, std::span<const std::uint32_t> indices);

}  // namespace KvComponents
