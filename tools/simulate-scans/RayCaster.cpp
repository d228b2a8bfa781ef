// The watertight triangle test, the construction of the tree by the surface area heuristic (Wald, "On fast Construction
// of SAH-based Bounding Volume Hierarchies", 2007) over 16 bins, and its traversal.
#include "RayCaster.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace simulate {
namespace {

constexpr std::uint32_t kLeafSize = 4;  // triangles; larger sets are always split
constexpr int kBins = 16;
constexpr int kStackSize = 64;    // of the traversal; the tree is less deep
constexpr int kMedianDepth = 32;  // from this depth on the median is split, so that at most 31 further levels follow

}  // namespace

TriangleTest::TriangleTest(const Ray& ray) : m_origin(ray.origin) {
    const Vec3 d = ray.direction;
    const float ax = std::fabs(d.x), ay = std::fabs(d.y), az = std::fabs(d.z);
    // The axis along which the direction is largest becomes the last one.
    m_iZ = ax > ay ? (ax > az ? 0 : 2) : (ay > az ? 1 : 2);
    m_iX = (m_iZ + 1) % 3;
    m_iY = (m_iX + 1) % 3;
    m_fShearX = d[m_iX] / d[m_iZ];
    m_fShearY = d[m_iY] / d[m_iZ];
    m_fScaleZ = 1.0f / d[m_iZ];
}

bool TriangleTest::Hits(Vec3 a, Vec3 b, Vec3 c, float* distance) const {
    // Translate and shear so that the ray is the last axis.
    a = a - m_origin;
    b = b - m_origin;
    c = c - m_origin;
    const float ax = a[m_iX] - m_fShearX * a[m_iZ], ay = a[m_iY] - m_fShearY * a[m_iZ];
    const float bx = b[m_iX] - m_fShearX * b[m_iZ], by = b[m_iY] - m_fShearY * b[m_iZ];
    const float cx = c[m_iX] - m_fShearX * c[m_iZ], cy = c[m_iY] - m_fShearY * c[m_iZ];
    // Edge functions: the sign of each is the side of the edge on which the ray passes.
    float u = cx * by - cy * bx, v = ax * cy - ay * cx, w = bx * ay - by * ax;
    if (u == 0 || v == 0 || w == 0) {
        // On an edge, or rounded to it. Products of floats are exact in double precision, so that both triangles at the
        // edge get consistent signs.
        const auto cross = [](double px, double py, double qx, double qy) {
            return static_cast<float>(px * qy - py * qx);
        };
        u = cross(cx, cy, bx, by);
        v = cross(ax, ay, cx, cy);
        w = cross(bx, by, ax, ay);
    }
    if ((u < 0 || v < 0 || w < 0) && (u > 0 || v > 0 || w > 0)) return false;
    const float area = u + v + w;
    if (area == 0) return false;  // the ray is in the plane of the triangle
    const float t = m_fScaleZ * (u * a[m_iZ] + v * b[m_iZ] + w * c[m_iZ]) / area;
    if (!(t > 0)) return false;
    *distance = t;
    return true;
}

/// Builds the tree top down: sorts items (box and centre of each triangle) into nodes, then copies the triangles in the
/// order of the leaves.
class RayCaster::Builder {
public:
    Builder(const TriangleMesh& mesh, RayCaster& out) : m_out(out) {
        const std::size_t count = mesh.TriangleCount();
        m_vItems.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            Item item{EmptyBox(), {}, static_cast<std::int32_t>(i)};
            for (std::size_t k = 0; k < 3; ++k) Widen(item.box, mesh.corners[3 * i + k]);
            for (int axis = 0; axis < 3; ++axis)
                item.centre[axis] = 0.5f * (item.box.lower[axis] + item.box.upper[axis]);
            m_vItems.push_back(item);
        }
        m_out.m_vNodes.reserve(count);
        m_out.m_vNodes.emplace_back();
        Build(0, 0, static_cast<std::uint32_t>(count), 0);
        m_out.m_vTriangles.reserve(count);
        for (const Item& item : m_vItems) {
            const Vec3* corner = &mesh.corners[3 * static_cast<std::size_t>(item.index)];
            m_out.m_vTriangles.push_back({corner[0], corner[1], corner[2], item.index});
        }
    }

private:
    /// A triangle under construction.
    struct Item {
        Box box;
        float centre[3];
        std::int32_t index;
    };
    /// A plane between two bins of an axis, and its cost by the surface area heuristic.
    struct Split {
        int axis = -1;
        float lower = 0, scale = 0;  // of the bins
        int bin = 0;                 // the first bin of the right side
        float cost = std::numeric_limits<float>::infinity();
    };

    /// The box without points: any point widens it to that point.
    static Box EmptyBox() {
        constexpr float kInf = std::numeric_limits<float>::infinity();
        return {{kInf, kInf, kInf}, {-kInf, -kInf, -kInf}};
    }
    /// Enlarges a box so that it contains a point, or another box.
    static void Widen(Box& box, Vec3 p) {
        for (int axis = 0; axis < 3; ++axis) {
            box.lower[axis] = std::min(box.lower[axis], p[axis]);
            box.upper[axis] = std::max(box.upper[axis], p[axis]);
        }
    }
    static void Widen(Box& box, const Box& other) {
        for (int axis = 0; axis < 3; ++axis) {
            box.lower[axis] = std::min(box.lower[axis], other.lower[axis]);
            box.upper[axis] = std::max(box.upper[axis], other.upper[axis]);
        }
    }
    /// Half of the surface: the probability that a random ray hits the box is proportional to it.
    static float HalfArea(const Box& box) {
        const float x = box.upper[0] - box.lower[0], y = box.upper[1] - box.lower[1], z = box.upper[2] - box.lower[2];
        return x < 0 ? 0 : x * y + y * z + z * x;
    }
    /// The bin of an item by its centre. Monotone in the centre, so that partitioning gives the counted sets.
    static int BinOf(const Item& item, int axis, float lower, float scale) {
        return std::clamp(static_cast<int>((item.centre[axis] - lower) * scale), 0, kBins - 1);
    }

    /// Counts the items and their boxes per bin, and keeps the cheapest of the planes between two bins in @p best.
    void TryAxis(int axis, std::uint32_t begin, std::uint32_t end, float lower, float upper, Split* best) const {
        const float scale = static_cast<float>(kBins) / (upper - lower);
        Box boxes[kBins];
        std::uint32_t counts[kBins] = {};
        std::fill(std::begin(boxes), std::end(boxes), EmptyBox());
        for (std::uint32_t i = begin; i < end; ++i) {
            const int bin = BinOf(m_vItems[i], axis, lower, scale);
            Widen(boxes[bin], m_vItems[i].box);
            ++counts[bin];
        }
        // Two sweeps: the cost of all bins right of each plane from the right, then that of the bins left of it from
        // the left. A plane with an empty side is no split.
        float rightCost[kBins] = {};
        Box box = EmptyBox();
        std::uint32_t count = 0;
        for (int bin = kBins - 1; bin > 0; --bin) {
            Widen(box, boxes[bin]);
            count += counts[bin];
            rightCost[bin] = HalfArea(box) * static_cast<float>(count);
        }
        box = EmptyBox();
        count = 0;
        for (int bin = 1; bin < kBins; ++bin) {
            Widen(box, boxes[bin - 1]);
            count += counts[bin - 1];
            if (count == 0 || count == end - begin) continue;
            const float cost = HalfArea(box) * static_cast<float>(count) + rightCost[bin];
            if (cost < best->cost) *best = {axis, lower, scale, bin, cost};
        }
    }

    /// Splits the items of a node in two sets.
    /// @return the first item of the right set; @p begin when a leaf is cheaper
    std::uint32_t PartitionItems(std::uint32_t begin, std::uint32_t end, const Box& box, int depth) {
        // The bounds of the centres, and the axis along which they are farthest apart.
        float lower[3], upper[3];
        int widest = 0;
        for (int axis = 0; axis < 3; ++axis) {
            const auto [low, high] =
                std::minmax_element(m_vItems.begin() + begin, m_vItems.begin() + end,
                                    [axis](const Item& a, const Item& b) { return a.centre[axis] < b.centre[axis]; });
            lower[axis] = low->centre[axis];
            upper[axis] = high->centre[axis];
            if (upper[axis] - lower[axis] > upper[widest] - lower[widest]) widest = axis;
        }
        // The cheapest plane of all axes along which the centres differ.
        Split best;
        if (depth < kMedianDepth)
            for (int axis = 0; axis < 3; ++axis)
                if (upper[axis] > lower[axis]) TryAxis(axis, begin, end, lower[axis], upper[axis], &best);
        if (best.axis < 0) {
            // All centres are equal, or the tree is too deep: two halves of equal size.
            const std::uint32_t middle = begin + (end - begin) / 2;
            std::nth_element(m_vItems.begin() + begin, m_vItems.begin() + middle, m_vItems.begin() + end,
                             [widest](const Item& a, const Item& b) {
                                 return std::pair(a.centre[widest], a.index) < std::pair(b.centre[widest], b.index);
                             });
            return middle;
        }
        // The cost of one more level is about that of one triangle test.
        const float area = HalfArea(box), count = static_cast<float>(end - begin);
        if (end - begin <= kLeafSize && best.cost + area >= area * count) return begin;
        const auto middle = std::partition(m_vItems.begin() + begin, m_vItems.begin() + end, [&](const Item& item) {
            return BinOf(item, best.axis, best.lower, best.scale) < best.bin;
        });
        return static_cast<std::uint32_t>(middle - m_vItems.begin());
    }

    /// Builds the subtree of a node from the items from @p begin to @p end.
    void Build(std::uint32_t node, std::uint32_t begin, std::uint32_t end, int depth) {
        Box box = EmptyBox();
        for (std::uint32_t i = begin; i < end; ++i) Widen(box, m_vItems[i].box);
        m_out.m_vNodes[node] = {box, begin, end - begin};
        if (end - begin <= 1) return;
        const std::uint32_t middle = PartitionItems(begin, end, box, depth);
        if (middle == begin) return;
        // The children are adjacent, so that their parent stores one index. Build() may move the nodes: no reference is
        // kept.
        const auto left = static_cast<std::uint32_t>(m_out.m_vNodes.size());
        m_out.m_vNodes.resize(left + 2);
        m_out.m_vNodes[node].first = left;
        m_out.m_vNodes[node].count = 0;
        Build(left, begin, middle, depth + 1);
        Build(left + 1, middle, end, depth + 1);
    }

    RayCaster& m_out;
    std::vector<Item> m_vItems;
};

RayCaster::RayCaster(const TriangleMesh& mesh) {
    // The extent bounds the rounding error of the triangle test.
    for (const Vec3& p : mesh.corners)
        m_fExtent = std::max({m_fExtent, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    m_vNormals.reserve(mesh.TriangleCount());
    for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
        const Vec3* p = &mesh.corners[i];
        m_vNormals.push_back(Unit(Cross(p[1] - p[0], p[2] - p[0])));
    }
    Builder(mesh, *this);
}

/// A ray prepared for tests against many boxes. Each box is enlarged by more than the rounding error of the triangle
/// test, so that no triangle that would be hit is missed because of its box.
class RayCaster::BoxTest {
public:
    BoxTest(const Ray& ray, float extent) {
        const Vec3 o = ray.origin;
        const float pad = 2e-6f * (extent + std::max({std::fabs(o.x), std::fabs(o.y), std::fabs(o.z)}));
        for (int axis = 0; axis < 3; ++axis) {
            m_fInverse[axis] = 1.0f / ray.direction[axis];
            m_bBackward[axis] = std::signbit(ray.direction[axis]);
            const float outward = m_bBackward[axis] ? -pad : pad;
            m_fNearOrigin[axis] = o[axis] + outward;
            m_fFarOrigin[axis] = o[axis] - outward;
        }
    }

    /// Slab test.
    /// @param entry  receives the distance at which the ray enters the box
    /// @return whether it does so before @p limit
    bool Enters(const Box& box, float limit, float* entry) const {
        float first = 0, last = limit;
        for (int axis = 0; axis < 3; ++axis) {
            const float near = m_bBackward[axis] ? box.upper[axis] : box.lower[axis];
            const float far = m_bBackward[axis] ? box.lower[axis] : box.upper[axis];
            const float enter = (near - m_fNearOrigin[axis]) * m_fInverse[axis];
            const float leave = (far - m_fFarOrigin[axis]) * m_fInverse[axis];
            // A ray in the plane of a side gives 0 times infinity, NaN: the comparison is false, and nothing changes.
            first = enter > first ? enter : first;
            last = leave < last ? leave : last;
        }
        *entry = first;
        return first <= last;
    }

private:
    float m_fInverse[3], m_fNearOrigin[3], m_fFarOrigin[3];
    bool m_bBackward[3];
};

Hit RayCaster::Nearest(const Ray& ray) const {
    Hit best;
    best.distance = std::numeric_limits<float>::infinity();
    const TriangleTest test(ray);
    const BoxTest boxTest(ray, m_fExtent);
    // Depth first, the nearer child first; the other child waits on the stack with the distance of its entry.
    struct Waiting {
        std::uint32_t node;
        float entry;
    };
    Waiting stack[kStackSize];
    int waiting = 0;
    float entry = 0;
    if (boxTest.Enters(m_vNodes[0].box, best.distance, &entry)) stack[waiting++] = {0, entry};
    while (waiting > 0) {
        const Waiting next = stack[--waiting];
        if (next.entry > best.distance) continue;  // a nearer hit was found since it was pushed
        const Node* node = &m_vNodes[next.node];
        // Down to a leaf.
        while (node->count == 0) {
            const std::uint32_t left = node->first;
            float leftEntry = 0, rightEntry = 0;
            const bool inLeft = boxTest.Enters(m_vNodes[left].box, best.distance, &leftEntry);
            const bool inRight = boxTest.Enters(m_vNodes[left + 1].box, best.distance, &rightEntry);
            if (!inLeft && !inRight) break;
            const bool leftFirst = inLeft && (!inRight || leftEntry <= rightEntry);
            if (inLeft && inRight)
                stack[waiting++] = leftFirst ? Waiting{left + 1, rightEntry} : Waiting{left, leftEntry};
            node = &m_vNodes[leftFirst ? left : left + 1];
        }
        for (std::uint32_t i = node->first; i < node->first + node->count; ++i) {
            const LeafTriangle& triangle = m_vTriangles[i];
            float t = 0;
            if (!test.Hits(triangle.a, triangle.b, triangle.c, &t)) continue;
            // The index decides between equal distances, so that the result does not depend on the tree.
            if (t < best.distance || (t == best.distance && triangle.index < best.triangle)) best = {t, triangle.index};
        }
    }
    return best.IsHit() ? best : Hit{};
}

}  // namespace simulate
