// The normal estimator object: neighbours from NeighbourSearch.h, their plane from PlaneFit.h.
#include <cmath>
#include <utility>

#include "ComponentReference.h"
#include "DefaultFloats.h"
#include "KV_Components/Geometry.h"
#include "NeighbourSearch.h"
#include "ObjectRegistry.h"
#include "PlaneFit.h"
#include "PointCloud.h"

namespace KvComponents {

namespace {

/// See KV_Components/Geometry.h for the operations.
class NormalEstimator final : public SingleInterfaceComponent {
public:
    NormalEstimator() : SingleInterfaceComponent(normal_estimator::kInterface, Operations()) {}

private:
    std::int32_t Initialize(Object** cloud, Object** search) {
        // Both references are owned from here on and released, also when the other argument is invalid.
        const ObjectPointer receivedCloud(cloud != nullptr ? *cloud : nullptr);
        const ObjectPointer receivedSearch(search != nullptr ? *search : nullptr);
        if (!receivedCloud || !receivedSearch) return kInvalidArgument;
        auto* const points = ComponentOf<PointCloud>(receivedCloud.get());
        auto* const neighbours = ComponentOf<NeighbourSearch>(receivedSearch.get());
        if (points == nullptr || neighbours == nullptr || neighbours->Cloud() != points) return kInvalidArgument;
        m_cloud = ComponentReference<PointCloud>(*points);
        m_search = ComponentReference<NeighbourSearch>(*neighbours);
        return kSucceeded;
    }

    std::int32_t EstimateNormal(const float* point, float radius, float* normal) {
        const DefaultFloats standard;
        if (point == nullptr || normal == nullptr) return kInvalidArgument;
        if (!std::isfinite(point[0]) || !std::isfinite(point[1]) || !std::isfinite(point[2])) return kInvalidArgument;
        if (!std::isfinite(radius) || radius < 0.0f) return kInvalidArgument;
        if (!m_cloud || m_search->Cloud() != &*m_cloud) return kFailed;

        const auto neighbours = m_search->Within({point[0], point[1], point[2]}, radius);
        if (!neighbours) return kFailed;
        const PointView& points = m_cloud->Points();
        const auto plane = neighbours->isAll ? PlaneNormalOf(points) : PlaneNormalOf(points, neighbours->indices);
        if (!plane) return kFailed;
        for (std::size_t axis = 0; axis < plane->size(); ++axis) normal[axis] = static_cast<float>((*plane)[axis]);
        return kSucceeded;
    }

    std::int32_t Finish() {
        m_cloud = {};
        m_search = {};
        return kSucceeded;
    }

    static const Object::Entry* Operations() {
        using namespace normal_estimator;
        static const OperationTable table = OperationTable()
                                                .Set<&NormalEstimator::Initialize>(kInitialize)
                                                .Set<&NormalEstimator::EstimateNormal>(kEstimateNormal)
                                                .Set<&NormalEstimator::Finish>(kFinish);
        return table.Entries();
    }

    ComponentReference<PointCloud> m_cloud;        ///< none before Initialize() and after Finish()
    ComponentReference<NeighbourSearch> m_search;  ///< was built for the cloud; may be finished or built anew since
};

}  // namespace

Component* MakeNormalEstimator() { return new NormalEstimator; }

}  // namespace KvComponents
