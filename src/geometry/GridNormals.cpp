// Face normals of the quads between two rows, four at a time, and their sums at the grid points.
#include "geometry/GridNormals.h"

#include <cstring>

#include "geometry/GridQuads.h"

namespace {

const Vec3x4 kNothing = {Float4{}, Float4{}, Float4{}};

Int4 LoadBytes(const std::uint8_t* from) {
    using Byte4 = std::uint8_t __attribute__((vector_size(4)));
    Byte4 bytes;
    std::memcpy(&bytes, from, sizeof(bytes));
    return __builtin_convertvector(bytes, Int4);
}

Vec3x4 FaceNormal4(const Vec3x4& p0, const Vec3x4& p1, const Vec3x4& p2) { return Normalized(Cross(p1 - p0, p2 - p0)); }

}  // namespace

GridNormals::GridNormals(std::size_t width)
    : m_uWidth(width),
      m_first(kLeft + width + PointRow::kPadding),
      m_second(kLeft + width + PointRow::kPadding),
      m_lowerSum(width + PointRow::kPadding),
      m_upper(width + PointRow::kPadding) {}

void GridNormals::ComputeFaceNormals(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads) {
    for (std::size_t x = 0; x < m_uWidth; x += 4) {
        const Int4 bits = LoadBytes(quads + x);
        const Int4 isFirst = (bits & kQuadFirst) != 0, isSecond = (bits & kQuadSecond) != 0;
        if (!HasAny(isFirst | isSecond)) {
            m_first.Store(kLeft + x, kNothing);
            m_second.Store(kLeft + x, kNothing);
            continue;
        }
        const Vec3x4 a = upper.m_points.Load(x), b = upper.m_points.Load(x + 1);
        const Vec3x4 c = lower.m_points.Load(x), d = lower.m_points.Load(x + 1);
        const Int4 hasB = (bits & kQuadB) != 0, hasC = (bits & kQuadC) != 0;
        m_first.Store(kLeft + x, KeepWhere(isFirst, FaceNormal4(a, c, Select(hasB, b, d))));
        m_second.Store(kLeft + x, KeepWhere(isSecond, FaceNormal4(Select(hasC, c, a), d, b)));
    }
}

// A triangle that is not kept adds a zero, which changes no sum that began with zero. What is added to grid points that
// are no vertices does not matter.
void GridNormals::AddRowPair(const PointRow& upper, const PointRow& lower, const std::uint8_t* quads) {
    ComputeFaceNormals(upper, lower, quads);
    for (std::size_t x = 0; x < m_uWidth; x += 4) {
        const Vec3x4 leftFirst = m_first.Load(kLeft + x - 1), leftSecond = m_second.Load(kLeft + x - 1);
        const Vec3x4 first = m_first.Load(kLeft + x), second = m_second.Load(kLeft + x);
        // As corner B of the quad to the left and A of this one, which the second triangle holds only for want of C.
        const Int4 hasC = LoadInt4(&lower.m_vValid[x]), hasB = LoadInt4(&upper.m_vValid[x]);
        const Vec3x4 sum = m_lowerSum.Load(x) + leftFirst + leftSecond + first + KeepWhere(~hasC, second);
        m_upper.Store(x, Normalized(sum));
        // As corner D of the quad to the left, which the first triangle holds only for want of B, and C of this one.
        m_lowerSum.Store(x, kNothing + KeepWhere(~hasB, leftFirst) + leftSecond + first + second);
    }
}

void GridNormals::FinishLowerRow() {
    for (std::size_t x = 0; x < m_uWidth; x += 4) m_upper.Store(x, Normalized(m_lowerSum.Load(x)));
}
