// From a measurement grid to a mesh: the pass over rows of points that writes vertices and triangles, and the objects
// made of them. Which triangles are kept is decided in GridQuads.cpp, the normals are computed in GridNormals.cpp,
// averaged cells come from GridVertexList.cpp.
#include "geometry/GridTriangulation.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

#include "base/HugePages.h"
#include "base/ParallelTasks.h"
#include "geometry/GridNormals.h"
#include "geometry/GridQuads.h"
#include "geometry/GridRows.h"
#include "geometry/MeanNormals.h"
#include "geometry/Vector3.h"

namespace {

Float4 AsFloat4(Int4 bits) {
    Float4 value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

/// The extremes of all vertices that were written: the box of Mesh::ComputeBoundingBox() to the last bit, without
/// another pass over the vertices.
class GridBox {
public:
    void Add(Int4 isVertex, const Vec3x4& p) {
        const Float4 excluded = AsFloat4(~isVertex);  // all bits set is not a number, which no comparison selects
        AddPoint({Select(isVertex, p.x, excluded), Select(isVertex, p.y, excluded), Select(isVertex, p.z, excluded)});
    }
    /// The extremes of the rows below as well.
    void Add(const GridBox& below) {
        AddPoint(below.m_low);
        AddPoint(below.m_high);
    }
    void SetBoxOf(Mesh& mesh) const {
        if (mesh.m_vVertices.empty()) {
            mesh.ComputeBoundingBox();
            return;
        }
        const auto [minX, maxX] = Extremes(m_low.x, m_high.x);
        const auto [minY, maxY] = Extremes(m_low.y, m_high.y);
        const auto [minZ, maxZ] = Extremes(m_low.z, m_high.z);
        // Infinite with an infinite coordinate, and along an axis where no coordinate is a number: the mesh computes
        // its box from the finite ones.
        const float bounds[] = {minX, maxX, minY, maxY, minZ, maxZ};
        if (!std::ranges::all_of(bounds, [](float bound) { return std::isfinite(bound); })) {
            mesh.ComputeBoundingBox();
            return;
        }
        mesh.SetBoundingBox(minX, maxX, minY, maxY, minZ, maxZ);
    }

private:
    void AddPoint(const Vec3x4& p) {
        AddAxis(p.x, m_low.x, m_high.x);
        AddAxis(p.y, m_low.y, m_high.y);
        AddAxis(p.z, m_low.z, m_high.z);
    }
    // A coordinate that is not a number is neither less nor greater, so it changes nothing.
    static void AddAxis(Float4 value, Float4& low, Float4& high) {
        low = Select(value < low, value, low);
        high = Select(value > high, value, high);
    }
    static std::pair<float, float> Extremes(Float4 low, Float4 high) {
        return {std::min({low[0], low[1], low[2], low[3]}), std::max({high[0], high[1], high[2], high[3]})};
    }

    static constexpr float kInfinity = std::numeric_limits<float>::infinity();
    Vec3x4 m_low{SplatFloat4(kInfinity), SplatFloat4(kInfinity), SplatFloat4(kInfinity)};
    Vec3x4 m_high{SplatFloat4(-kInfinity), SplatFloat4(-kInfinity), SplatFloat4(-kInfinity)};
};

// Writes the vertices of one row of the grid, four at a time, to the places that their indices name. The indices are
// padded with -1.
void WriteVertexRow(const PointRow& row, const Vec3Row& normals, const std::vector<std::int32_t>& indices,
                    std::size_t width, std::size_t y, Vertex* vertices, GridBox& box) {
    const auto firstGridIndex = static_cast<std::int32_t>(y << 16);
    for (std::size_t x = 0; x < width; x += 4) {
        const Int4 isVertex = LoadLanes<Int4>(&indices[x]) >= 0;
        if (!HasAny(isVertex)) continue;
        const Vec3x4 p = row.m_points.Load(x), n = normals.Load(x);
        box.Add(isVertex, p);
        Int4 colors;
        std::memcpy(&colors, &row.m_vColors[x], sizeof(colors));
        const auto column = static_cast<std::int32_t>(x);
        // The records of four vertices as two halves of four floats each.
        Float4 front[4] = {p.x, p.y, p.z, n.x};
        Float4 back[4] = {n.y, n.z, AsFloat4(colors), AsFloat4(firstGridIndex + (column + Int4{0, 1, 2, 3}))};
        Transpose(front[0], front[1], front[2], front[3]);
        Transpose(back[0], back[1], back[2], back[3]);
        // Inside a surface four neighbouring points have consecutive indices: their records are one piece of memory.
        const std::int32_t first = indices[x];
        if (first >= 0 && !HasAny(LoadLanes<Int4>(&indices[x]) != first + Int4{0, 1, 2, 3})) {
            auto* const records = reinterpret_cast<float*>(&vertices[static_cast<std::size_t>(first)]);
            for (std::size_t lane = 0; lane < 4; ++lane) {
                StoreLanes(records + 8 * lane, front[lane]);
                StoreLanes(records + 8 * lane + 4, back[lane]);
            }
            continue;
        }
        // At edges and holes, one by one.
        for (std::size_t lane = 0; lane < 4; ++lane) {
            const std::int32_t index = indices[x + lane];
            if (index < 0) continue;
            const Float4 record[2] = {front[lane], back[lane]};
            static_assert(sizeof(record) == sizeof(Vertex));
            std::memcpy(&vertices[static_cast<std::size_t>(index)], record, sizeof(record));
        }
    }
}

// Empties the vector and reserves memory for exactly this many elements, in huge pages where these save time.
template <typename T>
void ReserveExactly(std::vector<T>& vector, std::size_t count) {
    if (vector.capacity() != count) vector = {};
    vector.clear();
    ReserveInHugePages(vector, count);
}

struct TriangulationOptions {
    float sliverLimit = kMaxEdgeCosine;
    const float* trafo = nullptr;  // applied to the vertices; the sliver test uses the points before the transform
    bool withNormals = false;
    unsigned threads = 1;
};

/// The mesh that is made. Its arrays have the memory for all vertices and triangles; they grow, which writes zeros,
/// just before the vertices and triangles are written there, while the memory is in the cache.
struct GridMesh {
    std::vector<Vertex>& vertices;
    std::vector<Triangle>& triangles;

    void GrowTo(const GridQuads& quads, std::size_t y) const {
        vertices.resize(quads.VerticesBefore(y));
        triangles.resize(quads.TrianglesBefore(y));
    }
};

/// Rows of quads, from the first to before the last, and the grid points above them; below the last row of quads of the
/// grid also the points below it.
struct Band {
    std::size_t first, last;
};

/// Writes the vertices and triangles of one band: points, triangles, normals row by row. A row of vertices is written
/// when the triangles below it are known. The results of other bands are not needed: the row of quads above the band is
/// computed here as well.
class BandWriter {
public:
    /// @param rows  a copy of the caller's
    BandWriter(GridRows rows, const TriangulationOptions& options, const GridQuads& quads, Vertex* vertices,
               Triangle* triangles)
        : m_rows(rows),
          m_options(options),
          m_quads(quads),
          m_pVertices(vertices),
          m_pTriangles(triangles),
          m_uWidth(rows.Width()),
          m_upper(m_uWidth),
          m_lower(m_uWidth),
          m_noNormals(m_uWidth + PointRow::kPadding),
          m_indexer(m_uWidth) {
        if (options.withNormals) m_normals.emplace(m_uWidth);
    }

    /// @param grow  called with each row of quads before its vertices and triangles are written
    template <typename Grow>
    GridBox Write(Band band, const Grow& grow) {
        StartAt(band.first);
        std::size_t y = band.first;
        for (; y < band.last; ++y) {
            AddRowPair(y);
            assert(m_indexer.VertexCount() == m_quads.VerticesBefore(y + 1));
            grow(y);
            std::copy(m_indexer.TrianglesBegin(), m_indexer.TrianglesEnd(), m_pTriangles + m_quads.TrianglesBefore(y));
            WriteUpperRow(y);
            Advance();
        }
        if (y + 1 < m_rows.Height()) return m_box;
        if (m_normals) m_normals->FinishLowerRow();
        WriteUpperRow(y);
        return m_box;
    }

private:
    /// Loads the row of points @p y and what the row of quads above it adds to it.
    void StartAt(std::size_t y) {
        const std::size_t first = y == 0 ? 0 : y - 1;
        m_indexer.StartAt(m_quads, first);
        Load(first, m_upper);
        if (y == 0) return;
        AddRowPair(first);
        Advance();
    }
    void Load(std::size_t y, PointRow& row) {
        m_rows.Load(y, row);
        if (m_options.trafo != nullptr) TransformRow(m_options.trafo, m_uWidth, row);
    }
    void AddRowPair(std::size_t y) {
        Load(y + 1, m_lower);
        m_indexer.TriangulateRowPair(m_quads.Row(y));
        if (m_normals) m_normals->AddRowPair(m_upper, m_lower, m_quads.Row(y));
    }
    void Advance() {
        std::swap(m_upper, m_lower);
        m_indexer.Advance();
    }
    void WriteUpperRow(std::size_t y) {
        WriteVertexRow(m_upper, m_normals ? m_normals->UpperRow() : m_noNormals, m_indexer.UpperRow(), m_uWidth, y,
                       m_pVertices, m_box);
    }

    GridRows m_rows;
    const TriangulationOptions& m_options;
    const GridQuads& m_quads;
    Vertex* m_pVertices;
    Triangle* m_pTriangles;
    std::size_t m_uWidth;
    PointRow m_upper, m_lower;
    const Vec3Row m_noNormals;
    GridIndexer m_indexer;
    std::optional<GridNormals> m_normals;
    GridBox m_box;
};

/// The bands one after the other to the next free thread. They begin in their order, which is the order in which the
/// arrays grow.
GridBox WriteBands(const GridRows& rows, const TriangulationOptions& options, const GridQuads& quads,
                   const GridMesh& mesh) {
    // Few rows, so that the zeros of a band are in the cache still, but enough that the row of quads that each band
    // computes in addition does not matter.
    constexpr std::size_t kBandRows = 32;
    const std::size_t quadRows = rows.Height() - 1, bands = (quadRows + kBandRows - 1) / kBandRows;
    std::vector<GridBox> boxes(bands);
    std::mutex mutex;
    std::size_t begun = 0;
    Vertex* const vertices = mesh.vertices.data();
    Triangle* const triangles = mesh.triangles.data();
    RunTasks(bands, options.threads, [&](std::size_t) {
        BandWriter writer(rows, options, quads, vertices, triangles);
        std::size_t band = 0;
        {
            const std::lock_guard lock(mutex);
            band = begun++;
            mesh.GrowTo(quads, std::min(quadRows, (band + 1) * kBandRows));
        }
        const Band range{band * kBandRows, std::min(quadRows, (band + 1) * kBandRows)};
        boxes[band] = writer.Write(range, [](std::size_t) {});
    });
    GridBox box;
    for (const GridBox& one : boxes) box.Add(one);
    return box;
}

GridBox TriangulateRows(const GridRows& rows, const TriangulationOptions& options, std::vector<Vertex>& vertices,
                        std::vector<Triangle>& triangles) {
    // First pass: which triangles are kept, and how many. The arrays get their exact size before anything is written.
    const GridQuads quads(rows, options.sliverLimit, BestLaneCount(), options.threads);
    ReserveExactly(vertices, quads.VertexCount());
    ReserveExactly(triangles, quads.TriangleCount());
    if (quads.VertexCount() == 0) return {};
    // Second pass: points, triangles, normals.
    const GridMesh mesh{vertices, triangles};
    if (options.threads > 1) return WriteBands(rows, options, quads, mesh);
    BandWriter writer(rows, options, quads, vertices.data(), triangles.data());
    return writer.Write({0, rows.Height() - 1}, [&](std::size_t y) { mesh.GrowTo(quads, y + 1); });
}

GridBox TriangulateGridWith(TriangulationOptions options, std::int16_t width, std::int16_t height, const float* points,
                            const std::uint16_t* mask, const std::uint32_t* colors, std::int32_t skip,
                            std::vector<Vertex>& vertices, std::vector<Triangle>& triangles) {
    assert(width >= 0 && height >= 0 && skip >= 1);
    constexpr std::size_t kMinPixels = 50'000;  // per thread: below this its start costs more than it saves
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    options.threads = ThreadsFor(pixels, kMinPixels, options.threads);
    if (skip == 1)  // directly from the pixels: a list of them would be as large as the mesh
        return TriangulateRows(GridRows(width, height, points, mask, colors), options, vertices, triangles);
    const GridVertexList list = BuildGridVertexList(width, height, points, mask, colors, skip, options.threads);
    const std::size_t cells = static_cast<std::size_t>(list.m_iWidth) * static_cast<std::size_t>(list.m_iHeight);
    options.threads = ThreadsFor(cells, kMinPixels, options.threads);
    return TriangulateRows(GridRows(list), options, vertices, triangles);
}

}  // namespace

int IsSliver(const float* p0, const float* p1, const float* p2, float sliverLimit) {
    if (sliverLimit < 0) return 0;
    const Float3 a = ToFloat3(p0), b = ToFloat3(p1), c = ToFloat3(p2);
    const Float3 e0 = a - b, e1 = b - c, e2 = c - a;
    // Squared cosines, without a root: the sign of the dot product does not matter, so blunt corners count too.
    const float squaredLimit = sliverLimit * sliverLimit;
    const auto isTooSharp = [squaredLimit](const Float3& e, const Float3& f) {
        const float dot = Dot(e, f);
        return dot * dot / (Dot(e, e) * Dot(f, f)) > squaredLimit;
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
    TriangulateGridWith({.sliverLimit = sliverLimit}, width, height, points, mask, colors, skip, *vertices, *triangles);
}

std::unique_ptr<Mesh> CreateInternalMesh(const std::wstring& name, std::int16_t width, std::int16_t height,
                                         const float* points, const std::uint16_t* mask, const float* trafo,
                                         std::uint32_t color, const std::uint32_t* colors, bool allowEmpty,
                                         std::int32_t skip, unsigned threads) {
    auto mesh = std::make_unique<Mesh>(name, colors != nullptr);
    const GridBox box = TriangulateGridWith({.trafo = trafo, .withNormals = true, .threads = threads}, width, height,
                                            points, mask, colors, skip, mesh->m_vVertices, mesh->m_vTriangles);
    if (!allowEmpty && (mesh->m_vVertices.empty() || mesh->m_vTriangles.empty())) return nullptr;
    if (trafo != nullptr) {  // row-major to the column order of Set()
        const float* m = trafo;
        mesh->m_Trafo.Set(m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10], m[3], m[7], m[11]);
    }
    box.SetBoxOf(*mesh);
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
    return buffers;
}
