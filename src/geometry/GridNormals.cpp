// Face normals of the quads between two rows, several quads at a time, and their sums at the grid points.
#include "geometry/GridNormals.h"

#include "geometry/GridQuads.h"

namespace {

template <typename F>
KV_LANES Vec3<F> FaceNormal(const Vec3<F>& p0, const Vec3<F>& p1, const Vec3<F>& p2) {
    return Normalized(Cross(p1 - p0, p2 - p0));
}

}  // namespace

GridNormals::GridNormals(std::size_t width, LaneCount lanes)
    : m_lanes(lanes),
      m_uWidth(width),
      m_first(kLeft + width + PointRow::kPadding),
      m_second(kLeft + width + PointRow::kPadding),
      m_lowerSum(width + PointRow::kPadding),
      m_upper(width + PointRow::kPadding) {}

template <typename F>
KV_LANES void GridNormals::ComputeFaceNormals(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads) {
    using Int = typename Lanes<F>::Int;
    for (std::size_t x = 0; x < m_uWidth; x += Lanes<F>::kCount) {
        // Which triangles of these quads are kept.
        const Int bits = __builtin_convertvector(LoadLanes<typename Lanes<F>::Byte>(quads + x), Int);
        const Int isFirst = (bits & kQuadFirst) != 0, isSecond = (bits & kQuadSecond) != 0;
        if (!HasAny(isFirst | isSecond)) {
            const Vec3<F> none{F{}, F{}, F{}};
            m_first.Store(kLeft + x, none);
            m_second.Store(kLeft + x, none);
            continue;
        }
        // The two face normals; a missing corner is replaced as GridQuads.h describes.
        const Vec3<F> a = upper.m_points.Load<F>(x), b = upper.m_points.Load<F>(x + 1);
        const Vec3<F> c = lower.m_points.Load<F>(x), d = lower.m_points.Load<F>(x + 1);
        const Int hasB = (bits & kQuadB) != 0, hasC = (bits & kQuadC) != 0;
        m_first.Store(kLeft + x, KeepWhere(isFirst, FaceNormal(a, c, Select(hasB, b, d))));
        m_second.Store(kLeft + x, KeepWhere(isSecond, FaceNormal(Select(hasC, c, a), d, b)));
    }
}

// The sums need no branches: a rejected triangle adds a zero, which changes no sum that started with zero, and the sums
// of grid points that are not vertices are never read.
template <typename F>
KV_LANES void GridNormals::AddFaceNormals(const PointRow& upper, const PointRow& lower) {
    using Int = typename Lanes<F>::Int;
    const Vec3<F> none{F{}, F{}, F{}};
    for (std::size_t x = 0; x < m_uWidth; x += Lanes<F>::kCount) {
        const Int hasC = LoadLanes<Int>(&lower.m_vValid[x]), hasB = LoadLanes<Int>(&upper.m_vValid[x]);
        if (!HasAny(hasB | hasC)) continue;
        const Vec3<F> leftFirst = m_first.Load<F>(kLeft + x - 1), leftSecond = m_second.Load<F>(kLeft + x - 1);
        const Vec3<F> first = m_first.Load<F>(kLeft + x), second = m_second.Load<F>(kLeft + x);
        // The upper point at x is corner B of the quad to its left and corner A of its own quad. The second triangle of
        // its own quad has A only where C is missing.
        const Vec3<F> sum = m_lowerSum.Load<F>(x) + leftFirst + leftSecond + first + KeepWhere(~hasC, second);
        m_upper.Store(x, Normalized(sum));
        // The lower point at x is corner D of the quad to its left and corner C of its own quad. The first triangle of
        // the left quad has D only where B is missing.
        m_lowerSum.Store(x, none + KeepWhere(~hasB, leftFirst) + leftSecond + first + second);
    }
}

#if defined(KV_HAS_EIGHT_LANES)
KV_HAS_EIGHT_LANES void GridNormals::AddRowPairEight(const PointRow& upper, const PointRow& lower,
                                                     const std::uint8_t* quads) {
    ComputeFaceNormals<Float8>(upper, lower, quads);
    AddFaceNormals<Float8>(upper, lower);
}
#endif

void GridNormals::AddRowPair(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads) {
#if defined(KV_HAS_EIGHT_LANES)
    if (m_lanes == LaneCount::kEight) return AddRowPairEight(upper, lower, quads);
#endif
    ComputeFaceNormals<Float4>(upper, lower, quads);
    AddFaceNormals<Float4>(upper, lower);
}

void GridNormals::FinishLowerRow() {
    for (std::size_t x = 0; x < m_uWidth; x += 4) m_upper.Store(x, Normalized(m_lowerSum.Load(x)));
}
