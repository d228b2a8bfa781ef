// The neighbour search object: which points of a cloud are within a radius of a place.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "ComponentReference.h"
#include "PointCloud.h"

namespace KvComponents {

/// See KV_Components/Geometry.h for the operations. The tree is built by the first query that needs one.
class NeighbourSearch final : public SingleInterfaceComponent {
public:
    NeighbourSearch();
    ~NeighbourSearch() override;

    struct Neighbours {
        bool isAll = false;                  ///< the whole cloud; then there are no indices
        std::vector<std::uint32_t> indices;  ///< of the points, in no particular order
    };
    /// The points at a distance of at most the radius, in double.
    /// @param radius  0 or more; one whose square is infinite as a float finds all points, at once
    /// @return none without a cloud with points and where a coordinate of the cloud is not finite
    [[nodiscard]] std::optional<Neighbours> Within(const Point3& place, float radius);

    /// null before Build() and after Finish()
    [[nodiscard]] const PointCloud* Cloud() const { return m_cloud ? &*m_cloud : nullptr; }
    /// Whether a query has built the tree. For tests: a query of all points must not.
    [[nodiscard]] bool HasTree() const { return m_tree != nullptr; }

private:
    struct Box {
        Point3 min, max;
        bool isFinite;  ///< whether all coordinates are
    };
    class Tree;

    std::int32_t Build(Object** cloud);
    std::int32_t Finish();
    void Forget();
    static Box BoxOf(const PointView& points);
    static const Object::Entry* Operations();

    ComponentReference<PointCloud> m_cloud;
    std::uint64_t m_uGeneration = 0;  ///< of the points that box and tree were computed from
    std::optional<Box> m_box;
    std::unique_ptr<Tree> m_tree;
};

}  // namespace KvComponents
