// The test of points against a mask: the projection by the camera of the mask, and the pixel that it falls on.
#include "KV_ScenePane/CutMask.h"

#include <cassert>
#include <cmath>

namespace ACAD {

namespace {

using KV_ScenePane::Vertex;

struct WindowPoint {
    float x = 0.0f, y = 0.0f, z = 0.0f;
};

/// One row of a matrix times a point, in double and rounded once.
float Row(const std::array<double, 16>& matrix, std::size_t row, double x, double y, double z, double w) {
    return static_cast<float>(matrix[row] * x + matrix[row + 4] * y + matrix[row + 8] * z + matrix[row + 12] * w);
}

class PointTest {
public:
    explicit PointTest(const CutMask& mask) : m_mask(mask) {}

    /// Whether the cut removes a point. A point without a projection counts as where the one before it was.
    bool Removes(const Vertex& vertex) {
        Project(vertex);
        if (m_mask.m_nKind == CutKindOutside) return !IsInside();
        return IsInside() && (m_mask.m_nKind != CutKindVisibleInside || IsVisible());
    }

private:
    void Project(const Vertex& vertex) {
        const auto& view = m_mask.m_dModelView;
        const auto& projection = m_mask.m_dProjection;
        const double x = vertex.x, y = vertex.y, z = vertex.z;
        const double ex = Row(view, 0, x, y, z, 1.0), ey = Row(view, 1, x, y, z, 1.0);
        const double ez = Row(view, 2, x, y, z, 1.0), ew = Row(view, 3, x, y, z, 1.0);
        const float w = Row(projection, 3, ex, ey, ez, ew);
        if (w == 0.0f) return;
        const auto& viewport = m_mask.m_nViewport;
        const auto left = static_cast<float>(viewport[0]), bottom = static_cast<float>(viewport[1]);
        const auto width = static_cast<float>(viewport[2]), height = static_cast<float>(viewport[3]);
        m_point.x = (Row(projection, 0, ex, ey, ez, ew) / w * 0.5f + 0.5f) * width + left;
        m_point.y = (Row(projection, 1, ex, ey, ez, ew) / w * 0.5f + 0.5f) * height + bottom;
        m_point.z = Row(projection, 2, ex, ey, ez, ew) / w * 0.5f + 0.5f;
    }

    [[nodiscard]] bool IsInside() {
        // Compared before the conversion: what is not finite or beyond the integers is in no rectangle.
        const double x = std::trunc(static_cast<double>(m_point.x));
        const double y = std::trunc(static_cast<double>(static_cast<float>(m_mask.m_nViewport[3]) - m_point.y) - 1.0);
        const auto& bounds = m_mask.m_rcBounds;
        if (!(x >= bounds[0] && x <= bounds[2] && y >= bounds[1] && y <= bounds[3])) return false;
        m_nColumn = static_cast<std::int64_t>(x);
        m_nRow = static_cast<std::int64_t>(y);
        // The window may have another size than the viewport for a moment after it was resized.
        const auto bit = static_cast<std::uint64_t>(m_nRow * m_mask.m_nViewport[2] + m_nColumn);
        return bit < m_mask.m_vBits.m_uCount && m_mask.m_vBits.IsSet(bit);
    }

    [[nodiscard]] bool IsVisible() const {
        const auto index =
            static_cast<std::uint64_t>((m_mask.m_nViewport[3] - m_nRow - 1) * m_mask.m_nViewport[2] + m_nColumn);
        assert(index < m_mask.m_vDepth.size());
        // What is at most a thousandth of the depth range behind the shown surface still belongs to it.
        return index < m_mask.m_vDepth.size() && !(static_cast<double>(m_point.z) - 0.001 > m_mask.m_vDepth[index]);
    }

    const CutMask& m_mask;
    WindowPoint m_point;
    std::int64_t m_nColumn = 0, m_nRow = 0;
};

}  // namespace

bool CutMask::MarkVertices(std::span<const Vertex> vertices, std::span<std::uint32_t> bits) const {
    assert(bits.size() >= (vertices.size() + 31) / 32);
    PointTest test(*this);
    bool isAnyRemoved = false;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (!test.Removes(vertices[i])) continue;
        bits[i / 32] |= std::uint32_t{1} << (i % 32);
        isAnyRemoved = true;
    }
    return isAnyRemoved;
}

bool CutMask::InvalidateVertices(std::span<Vertex> vertices) const {
    constexpr std::uint32_t kRemoved = 0xFFFFFFFF;  // -1 as a signed number
    PointTest test(*this);
    bool isAnyRemoved = false;
    for (Vertex& vertex : vertices) {
        if (static_cast<std::int32_t>(vertex.gridIndex) < 0 || !test.Removes(vertex)) continue;
        vertex.gridIndex = kRemoved;
        isAnyRemoved = true;
    }
    return isAnyRemoved;
}

}  // namespace ACAD
