// From a measurement grid to a mesh: quad patterns, sliver test, and the road to an object. The vertices of the reduced
// grid come from GridVertexList.cpp.
#include "geometry/GridTriangulation.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "geometry/MeanNormals.h"

namespace {

float Dot(const float* a, const float* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

using VertexRow = std::vector<const Vertex*>;

struct RowPairTriangulator {
    std::vector<std::int32_t> m_vPrevRow, m_vNextRow;  // index of the vertex of each grid point, -1 without one

    void TriangulateRowPair(const VertexRow& upper, const VertexRow& lower, float sliverLimit,
                            std::vector<Vertex>* vertices, std::vector<Triangle>* triangles) {
        struct Corner {
            const Vertex* vertex;
            std::int32_t* index;
        };
        const auto add = [&](const Corner& p0, const Corner& p1, const Corner& p2) {
            const int sliver = IsSliver(&p0.vertex->x, &p1.vertex->x, &p2.vertex->x, sliverLimit);
            Triangle triangle;
            int i = 0;
            for (const Corner& corner : {p0, p1, p2}) {
                if (*corner.index < 0) {
                    *corner.index = static_cast<std::int32_t>(vertices->size());
                    vertices->push_back(*corner.vertex);
                }
                triangle.v[i++] = *corner.index;
            }
            if (sliver == 0) triangles->push_back(triangle);
        };
        for (std::size_t x = 0; x + 1 < upper.size(); ++x) {
            const Corner a{upper[x], &m_vPrevRow[x]}, b{upper[x + 1], &m_vPrevRow[x + 1]};
            const Corner c{lower[x], &m_vNextRow[x]}, d{lower[x + 1], &m_vNextRow[x + 1]};
            const bool hasA = a.vertex, hasB = b.vertex, hasC = c.vertex, hasD = d.vertex;
            if (hasA && hasB && hasC) add(a, c, b);
            if (hasB && hasC && hasD) add(c, d, b);
            if (hasA && hasB && !hasC && hasD) add(a, d, b);
            if (hasA && !hasB && hasC && hasD) add(a, c, d);
        }
    }
};

}  // namespace

int IsSliver(const float* p0, const float* p1, const float* p2, float sliverLimit) {
    if (sliverLimit < 0) return 0;
    const float e0[3] = {p0[0] - p1[0], p0[1] - p1[1], p0[2] - p1[2]};
    const float e1[3] = {p1[0] - p2[0], p1[1] - p2[1], p1[2] - p2[2]};
    const float e2[3] = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
    const float squaredLimit = sliverLimit * sliverLimit;
    const auto isTooSharp = [squaredLimit](const float* a, const float* b) {
        const float dot = Dot(a, b);
        return dot * dot / (Dot(a, a) * Dot(b, b)) > squaredLimit;
    };
    return isTooSharp(e1, e0) || isTooSharp(e2, e1) || isTooSharp(e2, e0) ? -1 : 0;
}

bool HasNonGrayColor(const std::uint32_t* colors, std::int64_t count) {
    if (colors == nullptr || count < 1) return false;
    return std::any_of(colors, colors + count, [](std::uint32_t c) { return ((c ^ (c >> 8)) & 0xFFFF) != 0; });
}

void TriangulateGrid(std::int16_t width, std::int16_t height, const float* points, const std::uint16_t* mask,
                     const std::uint32_t* colors, std::int32_t skip, float sliverLimit, std::vector<Vertex>* vertices,
                     std::vector<Triangle>* triangles) {
    vertices->clear();
    triangles->clear();
    const GridVertexList list = BuildGridVertexList(width, height, points, mask, colors, skip);
    if (list.m_vVertices.empty()) return;
    const auto gridWidth = static_cast<std::size_t>(list.m_iWidth);
    RowPairTriangulator triangulator{std::vector<std::int32_t>(gridWidth, -1),
                                     std::vector<std::int32_t>(gridWidth, -1)};
    vertices->reserve(list.m_vVertices.size());
    triangles->reserve(2 * list.m_vVertices.size());
    auto next = list.m_vVertices.begin();
    const auto loadRow = [&](std::int32_t row, VertexRow& cells) {
        cells.assign(gridWidth, nullptr);
        for (; next != list.m_vVertices.end() && next->gridIndex >> 16 == static_cast<std::uint32_t>(row); ++next)
            cells[next->gridIndex & 0xFFFF] = &*next;
    };
    VertexRow upper, lower;
    loadRow(0, upper);
    for (std::int32_t y = 0; y + 1 < list.m_iHeight; ++y) {
        loadRow(y + 1, lower);
        triangulator.TriangulateRowPair(upper, lower, sliverLimit, vertices, triangles);
        std::swap(upper, lower);
        std::swap(triangulator.m_vPrevRow, triangulator.m_vNextRow);
        std::fill(triangulator.m_vNextRow.begin(), triangulator.m_vNextRow.end(), -1);
    }
}

std::unique_ptr<Mesh> CreateInternalMesh(const std::wstring& name, std::int16_t width, std::int16_t height,
                                         const float* points, const std::uint16_t* mask, const float* trafo,
                                         std::uint32_t color, const std::uint32_t* colors, bool allowEmpty,
                                         std::int32_t skip) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    TriangulateGrid(width, height, points, mask, colors, skip, kMaxEdgeCosine, &vertices, &triangles);
    if (!allowEmpty && (vertices.empty() || triangles.empty())) return nullptr;
    auto mesh = std::make_unique<Mesh>(std::move(vertices), std::move(triangles), name, colors != nullptr);
    if (trafo != nullptr) {
        const float* m = trafo;
        for (Vertex& v : mesh->m_vVertices) {
            const float x = v.x, y = v.y, z = v.z;
            v.x = x * m[0] + y * m[1] + z * m[2] + m[3];
            v.y = x * m[4] + y * m[5] + z * m[6] + m[7];
            v.z = x * m[8] + y * m[9] + z * m[10] + m[11];
        }
        mesh->m_Trafo.Set(m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10], m[3], m[7], m[11]);
    }
    mesh->ComputeVertexNormals();
    mesh->ShrinkToFit();
    mesh->ComputeBoundingBox();
    const bool hasOwnColors = HasNonGrayColor(colors, std::int64_t{width} * height);
    mesh->m_bGrayColors = !hasOwnColors;
    mesh->SetColorRef(hasOwnColors ? 0xFFFFFF : color);
    return mesh;
}

std::unique_ptr<MeshBuffers> CreateInternalMeshBuffers(std::int16_t width, std::int16_t height, const float* points,
                                                       const std::uint16_t* mask, const std::uint32_t* colors,
                                                       bool allowEmpty, std::int32_t skip) {
    auto buffers = std::make_unique<MeshBuffers>(colors != nullptr);
    TriangulateGrid(width, height, points, mask, colors, skip, kMaxEdgeCosine, &buffers->m_vVertices,
                    &buffers->m_vTriangles);
    if (!allowEmpty && (buffers->m_vVertices.empty() || buffers->m_vTriangles.empty())) return nullptr;
    ComputeMeanNormals(*buffers);
    buffers->m_vTriangles.shrink_to_fit();
    buffers->m_vVertices.shrink_to_fit();
    return buffers;
}
