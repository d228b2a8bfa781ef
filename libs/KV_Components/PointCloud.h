// The point cloud object: points in an array of the caller.
#pragma once
#include <cstdint>

#include "Object.h"
#include "PlaneFit.h"

namespace KvComponents {

/// See KV_Components/Geometry.h for the operations.
class PointCloud final : public SingleInterfaceComponent {
public:
    PointCloud();

    [[nodiscard]] const PointView& Points() const { return m_points; }
    /// Changes with each SetPoints(): results computed from former points are then out of date.
    [[nodiscard]] std::uint64_t Generation() const { return m_uGeneration; }

private:
    std::int32_t SetFormat(const wchar_t* format);
    std::int32_t SetPoints(const float* points, std::int32_t stride, std::int32_t count);
    std::int32_t SetCount(std::int32_t count);
    std::int32_t GetCentroid(float* centroid);

    static const Object::Entry* Operations();

    bool m_bHasFormat = false;
    std::int32_t m_iCount = 0;  ///< of SetCount(); m_points is empty until SetPoints()
    PointView m_points;
    std::uint64_t m_uGeneration = 0;
};

}  // namespace KvComponents
