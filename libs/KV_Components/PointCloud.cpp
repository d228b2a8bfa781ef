// The point cloud object. The mean is computed by PlaneFit.h.
#include "PointCloud.h"

#include <string_view>

#include "DefaultFloats.h"
#include "KV_Components/Geometry.h"
#include "ObjectRegistry.h"

namespace KvComponents {

PointCloud::PointCloud() : SingleInterfaceComponent(point_cloud::kInterface, Operations()) {}

const Object::Entry* PointCloud::Operations() {
    static const OperationTable table = OperationTable()
                                            .Set<&Component::AddReference>(point_cloud::kAddReference)
                                            .Set<&PointCloud::SetFormat>(point_cloud::kSetFormat)
                                            .Set<&PointCloud::SetPoints>(point_cloud::kSetPoints)
                                            .Set<&PointCloud::SetCount>(point_cloud::kSetCount)
                                            .Set<&PointCloud::GetCentroid>(point_cloud::kGetCentroid);
    return table.Entries();
}

std::int32_t PointCloud::SetFormat(const wchar_t* format) {
    if (format == nullptr || std::wstring_view(format) != L"P") return kInvalidArgument;
    m_bHasFormat = true;
    return kSucceeded;
}

std::int32_t PointCloud::SetCount(std::int32_t count) {
    if (count < 0) return kInvalidArgument;
    if (!m_bHasFormat) return kFailed;
    m_iCount = count;
    m_points = {};
    return kSucceeded;
}

std::int32_t PointCloud::SetPoints(const float* points, std::int32_t stride, std::int32_t count) {
    constexpr std::int32_t kFloat = sizeof(float);
    if (points == nullptr || stride < 3 * kFloat || stride % kFloat != 0 || count < 0) return kInvalidArgument;
    if (!m_bHasFormat) return kFailed;
    if (count != m_iCount) return kInvalidArgument;
    m_points = PointView(points, static_cast<std::size_t>(stride / kFloat), static_cast<std::size_t>(count));
    ++m_uGeneration;
    return kSucceeded;
}

std::int32_t PointCloud::GetCentroid(float* centroid) {
    const DefaultFloats standard;
    if (centroid == nullptr) return kInvalidArgument;
    const std::optional<Point3> mean = MeanOf(m_points);
    if (!mean) return kFailed;
    for (std::size_t axis = 0; axis < mean->size(); ++axis) centroid[axis] = static_cast<float>((*mean)[axis]);
    return kSucceeded;
}

Component* MakePointCloud() { return new PointCloud; }

}  // namespace KvComponents
