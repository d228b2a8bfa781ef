// The triangle mesh: building, box, centre, transform, normals. Its clone is in MeshClone.cpp, its intersection with a
// line in MeshIntersect.cpp, its drawing in render/MeshDraw.cpp.
#include "geometry/Mesh.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <initializer_list>
#include <span>
#include <utility>

#include "geometry/FaceNormal.h"
#include "geometry/FaceNormalSums.h"

namespace {

// Whether the three colour bytes are equal, by one comparison of neighbouring bytes.
bool IsGray(const Vertex& vertex) { return ((vertex.color ^ (vertex.color >> 8)) & 0xFFFF) == 0; }

// The extremes of the finite coordinates along one axis; inverted like the box of an empty mesh when there are none.
struct FiniteRange {
    float low = 1.0f, high = -1.0f;

    void Add(float coordinate) {
        if (!std::isfinite(coordinate)) return;
        if (low > high) low = high = coordinate;
        low = std::min(low, coordinate);
        high = std::max(high, coordinate);
    }
};

// The mean of the finite coordinates along one axis; 0 when there are none.
struct FiniteMean {
    float sum = 0.0f;
    std::size_t count = 0;

    void Add(float coordinate) {
        if (!std::isfinite(coordinate)) return;
        sum += coordinate;
        ++count;
    }
    [[nodiscard]] float Get() const { return count == 0 ? 0.0f : sum / static_cast<float>(count); }
};

// Adds every vertex to three statistics, one per axis.
template <class Statistic>
std::array<Statistic, 3> FiniteOnly(const std::vector<Vertex>& vertices) {
    std::array<Statistic, 3> axes;
    for (const Vertex& vertex : vertices) {
        axes[0].Add(vertex.x);
        axes[1].Add(vertex.y);
        axes[2].Add(vertex.z);
    }
    return axes;
}

bool AreFinite(std::initializer_list<float> values) {
    return std::all_of(values.begin(), values.end(), [](float value) { return std::isfinite(value); });
}

// The extremes of all positions. Starts with the first vertex: a NaN after it loses every comparison, any other
// coordinate that is not finite shows in the result.
struct Extremes {
    float minX, minY, minZ, maxX, maxY, maxZ;

    explicit Extremes(const Vertex& first)
        : minX(first.x), minY(first.y), minZ(first.z), maxX(first.x), maxY(first.y), maxZ(first.z) {}
    void Add(const Vertex& vertex) {
        minX = std::min(minX, vertex.x);
        maxX = std::max(maxX, vertex.x);
        minY = std::min(minY, vertex.y);
        maxY = std::max(maxY, vertex.y);
        minZ = std::min(minZ, vertex.z);
        maxZ = std::max(maxZ, vertex.z);
    }
};

// Calls move(vertex) for every vertex and computes the box of the result, in one pass over the memory.
template <class Move>
void MoveAndBound(Mesh& mesh, Move move) {
    if (mesh.m_vVertices.empty()) return mesh.SetBoundingBox(1, -1, 1, -1, 1, -1);
    move(mesh.m_vVertices.front());
    Extremes e(mesh.m_vVertices.front());
    for (Vertex& vertex : std::span(mesh.m_vVertices).subspan(1)) {
        move(vertex);
        e.Add(vertex);
    }
    if (AreFinite({e.minX, e.maxX, e.minY, e.maxY, e.minZ, e.maxZ}))
        return mesh.SetBoundingBox(e.minX, e.maxX, e.minY, e.maxY, e.minZ, e.maxZ);
    const auto [x, y, z] = FiniteOnly<FiniteRange>(mesh.m_vVertices);
    mesh.SetBoundingBox(x.low, x.high, y.low, y.high, z.low, z.high);
}

}  // namespace

Mesh::Mesh(std::wstring name, bool hasColors) : m_sName(std::move(name)), m_bHasVertexColors(hasColors) {}

Mesh::Mesh(std::vector<Vertex>&& vertices, std::vector<Triangle>&& triangles, std::wstring name, bool hasColors)
    : m_vTriangles(std::move(triangles)),
      m_vVertices(std::move(vertices)),
      m_sName(std::move(name)),
      m_bHasVertexColors(hasColors),
      m_bGrayColors(std::all_of(m_vVertices.begin(), m_vVertices.end(), IsGray)) {
    Mesh::ComputeBoundingBox();
}

Mesh::~Mesh() { ReleaseBuffers(); }

int Mesh::ComputeCenter() {
    if (m_vVertices.empty()) return 0;
    float x = 0, y = 0, z = 0;
    for (const Vertex& vertex : m_vVertices) {
        x += vertex.x;
        y += vertex.y;
        z += vertex.z;
    }
    const auto count = static_cast<float>(m_vVertices.size());
    m_fCenter[0] = x / count;
    m_fCenter[1] = y / count;
    m_fCenter[2] = z / count;
    m_bCenterValid = true;
    if (AreFinite({x, y, z})) return 0;
    const auto axes = FiniteOnly<FiniteMean>(m_vVertices);
    for (std::size_t i = 0; i < axes.size(); ++i) m_fCenter[i] = axes[i].Get();
    return 0;
}

void Mesh::ComputeBoundingBox() {
    MoveAndBound(*this, [](const Vertex&) {});
}

bool Mesh::HasPosition() const {
    const float* const box = m_fBoundingBox;
    return m_vVertices.empty() || (box[0] <= box[1] && box[2] <= box[3] && box[4] <= box[5]);
}

// The rotation in double precision, rounded once, then the translation in single precision: RevertTrafo() has the
// same steps in the opposite order.
void Mesh::ApplyTrafo(const CACADQTrafo& trafo) {
    const auto& r = trafo.m_dRotation;
    const auto tx = static_cast<float>(trafo.m_dTranslation[0]);
    const auto ty = static_cast<float>(trafo.m_dTranslation[1]);
    const auto tz = static_cast<float>(trafo.m_dTranslation[2]);
    MarkVerticesDirty();
    m_bCenterValid = false;
    MoveAndBound(*this, [&](Vertex& v) {
        const double x = v.x, y = v.y, z = v.z;
        v.x = static_cast<float>(x * r[0] + y * r[3] + z * r[6]) + tx;
        v.y = static_cast<float>(x * r[1] + y * r[4] + z * r[7]) + ty;
        v.z = static_cast<float>(x * r[2] + y * r[5] + z * r[8]) + tz;
        const double nx = v.nx, ny = v.ny, nz = v.nz;
        v.nx = static_cast<float>(nx * r[0] + ny * r[3] + nz * r[6]);
        v.ny = static_cast<float>(nx * r[1] + ny * r[4] + nz * r[7]);
        v.nz = static_cast<float>(nx * r[2] + ny * r[5] + nz * r[8]);
    });
}

// The transpose of the rotation is its inverse.
void Mesh::RevertTrafo(const CACADQTrafo& trafo) {
    const auto& r = trafo.m_dRotation;
    const auto tx = static_cast<float>(trafo.m_dTranslation[0]);
    const auto ty = static_cast<float>(trafo.m_dTranslation[1]);
    const auto tz = static_cast<float>(trafo.m_dTranslation[2]);
    m_bCenterValid = false;
    MoveAndBound(*this, [&](Vertex& v) {
        const double x = v.x - tx, y = v.y - ty, z = v.z - tz;
        v.x = static_cast<float>(x * r[0] + y * r[1] + z * r[2]);
        v.y = static_cast<float>(x * r[3] + y * r[4] + z * r[5]);
        v.z = static_cast<float>(x * r[6] + y * r[7] + z * r[8]);
        const double nx = v.nx, ny = v.ny, nz = v.nz;
        v.nx = static_cast<float>(nx * r[0] + ny * r[1] + nz * r[2]);
        v.ny = static_cast<float>(nx * r[3] + ny * r[4] + nz * r[5]);
        v.nz = static_cast<float>(nx * r[6] + ny * r[7] + nz * r[8]);
    });
}

void Mesh::ComputeVertexNormals(unsigned threads) {
    // The sum of the unit normals of the faces around each vertex, not weighted by area or angle.
    const auto sums = SumFaceNormals(m_vTriangles, m_vVertices, threads);
    // Normalised, four vertices at a time; a vertex without a face gets zero.
    ForEachVertexRange(m_vVertices.size(), threads, [&](std::size_t first, std::size_t last) {
        constexpr std::size_t kFour = 4;
        for (; first < last; first += kFour) {
            const std::size_t count = std::min(kFour, last - first);
            Float4 rows[kFour] = {};
            std::copy_n(&sums[first], count, rows);
            Transpose(rows[0], rows[1], rows[2], rows[3]);
            const Vec3x4 unit = Normalized(Vec3x4{rows[0], rows[1], rows[2]});
            for (std::size_t lane = 0; lane < count; ++lane) {
                Vertex& vertex = m_vVertices[first + lane];
                vertex.nx = unit.x[lane];
                vertex.ny = unit.y[lane];
                vertex.nz = unit.z[lane];
            }
        }
    });
}

void Mesh::GetTriangleNormal(std::size_t index, float* nx, float* ny, float* nz) const {
    assert(index < m_vTriangles.size());
    const Float3 normal = FaceNormalOf(m_vTriangles[index], m_vVertices);
    *nx = normal[0];
    *ny = normal[1];
    *nz = normal[2];
}

void Mesh::ShrinkToFit() {
    m_vTriangles.shrink_to_fit();
    m_vVertices.shrink_to_fit();
}

void Mesh::SetBlendColors(bool blend) {
    if (m_bBlendObjectColor == blend) return;
    m_bBlendObjectColor = blend;
    MarkBuffersDirty();
}
