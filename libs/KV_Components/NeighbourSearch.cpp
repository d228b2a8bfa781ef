// The neighbour search object, on the k-d tree of nanoflann, which reads the points where they are.
#include "NeighbourSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nanoflann.hpp>

#include "KV_Components/Geometry.h"
#include "ObjectRegistry.h"

namespace KvComponents {

namespace {

/// The points through the functions that nanoflann calls.
struct TreePoints {
    PointView points;

    [[nodiscard]] std::size_t kdtree_get_point_count() const { return points.size(); }
    [[nodiscard]] double kdtree_get_pt(std::uint32_t index, std::size_t axis) const { return points[index][axis]; }
    template <class TreeBox>
    bool kdtree_get_bbox(TreeBox&) const {
        return false;  // nanoflann computes it
    }
};

/// Collects the indices of the points within a radius, whose distance may also be equal to it.
class IndicesWithin {
public:
    IndicesWithin(double squaredRadius, std::vector<std::uint32_t>& indices)
        : m_fSquaredRadius(squaredRadius), m_indices(indices) {}
    bool addPoint(double squaredDistance, std::uint32_t index) {
        if (squaredDistance <= m_fSquaredRadius) m_indices.push_back(index);
        return true;
    }
    /// The tree skips boxes and points beyond this squared distance. It is larger than the radius by more than the
    /// rounding errors of these distances, so that a point at the radius is not skipped.
    [[nodiscard]] double worstDist() const {
        return m_fSquaredRadius * (1.0 + 1e-9) + std::numeric_limits<double>::min();
    }
    [[nodiscard]] bool full() const { return true; }
    [[nodiscard]] std::size_t size() const { return m_indices.size(); }

private:
    double m_fSquaredRadius;
    std::vector<std::uint32_t>& m_indices;
};

/// The square of the distance from the place to the farthest corner of the box.
double SquaredDistanceToCorner(const Point3& place, const Point3& min, const Point3& max) {
    double sum = 0.0;
    for (std::size_t axis = 0; axis < place.size(); ++axis) {
        const double distance = std::max(std::abs(place[axis] - min[axis]), std::abs(place[axis] - max[axis]));
        sum += distance * distance;
    }
    return sum;
}

}  // namespace

class NeighbourSearch::Tree {
public:
    explicit Tree(const PointView& points) : m_points{points}, m_tree(3, m_points) {}
    [[nodiscard]] std::vector<std::uint32_t> Within(const Point3& place, double squaredRadius) const {
        std::vector<std::uint32_t> indices;
        IndicesWithin found(squaredRadius, indices);
        m_tree.findNeighbors(found, place.data(), {});
        return indices;
    }

private:
    using Metric = nanoflann::L2_Simple_Adaptor<double, TreePoints, double, std::uint32_t>;

    TreePoints m_points;
    nanoflann::KDTreeSingleIndexAdaptor<Metric, TreePoints, 3, std::uint32_t> m_tree;
};

NeighbourSearch::NeighbourSearch() : SingleInterfaceComponent(neighbour_search::kInterface, Operations()) {}

NeighbourSearch::~NeighbourSearch() = default;

const Object::Entry* NeighbourSearch::Operations() {
    static const OperationTable table = OperationTable()
                                            .Set<&NeighbourSearch::Build>(neighbour_search::kBuild)
                                            .Set<&NeighbourSearch::Finish>(neighbour_search::kFinish);
    return table.Entries();
}

std::int32_t NeighbourSearch::Build(Object** cloud) {
    if (cloud == nullptr || *cloud == nullptr) return kInvalidArgument;
    const ObjectPointer received(*cloud);
    auto* const points = ComponentOf<PointCloud>(received.get());
    if (points == nullptr) return kInvalidArgument;
    if (points->Points().size() == 0) return kFailed;
    Forget();
    m_cloud = ComponentReference<PointCloud>(*points);
    return kSucceeded;
}

std::int32_t NeighbourSearch::Finish() {
    Forget();
    m_cloud = {};
    return kSucceeded;
}

void NeighbourSearch::Forget() {
    m_tree.reset();
    m_box.reset();
}

NeighbourSearch::Box NeighbourSearch::BoxOf(const PointView& points) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Box box{{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}, true};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const float* const point = points[i];
        for (std::size_t axis = 0; axis < box.min.size(); ++axis) {
            const double value = point[axis];
            box.min[axis] = std::min(box.min[axis], value);
            box.max[axis] = std::max(box.max[axis], value);
            box.isFinite &= std::isfinite(point[axis]);
        }
    }
    return box;
}

std::optional<NeighbourSearch::Neighbours> NeighbourSearch::Within(const Point3& place, float radius) {
    if (!m_cloud || m_cloud->Points().size() == 0) return std::nullopt;
    if (std::isinf(radius * radius)) return Neighbours{true, {}};
    const PointView& points = m_cloud->Points();
    if (m_uGeneration != m_cloud->Generation()) Forget();
    m_uGeneration = m_cloud->Generation();
    if (!m_box) m_box = BoxOf(points);
    if (!m_box->isFinite) return std::nullopt;

    const double squaredRadius = double{radius} * double{radius};
    if (SquaredDistanceToCorner(place, m_box->min, m_box->max) <= squaredRadius) return Neighbours{true, {}};
    if (!m_tree) m_tree = std::make_unique<Tree>(points);
    return Neighbours{false, m_tree->Within(place, squaredRadius)};
}

Component* MakeNeighbourSearch() { return new NeighbourSearch; }

}  // namespace KvComponents
