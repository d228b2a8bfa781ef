// Reads hps files: texture first, then texture coordinates, vertices and triangles, each checked before it is used,
// since a site can have another library with other checks. Writing is in HpsMeshFileWrite.cpp.
#include "io/HpsMeshFile.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "KV_Components/Hps.h"
#include "KV_Components/Image.h"
#include "base/HugePages.h"
#include "geometry/TriangleIndices.h"
#include "io/FiniteCoordinates.h"
#include "platform/ComponentRegistry.h"

namespace {

namespace hps_mesh = KvComponents::hps_mesh;
namespace hps_reader = KvComponents::hps_reader;
namespace hps_uv_decoder = KvComponents::hps_uv_decoder;
namespace hps_vertex_data = KvComponents::hps_vertex_data;
namespace image = KvComponents::image;
using KvComponents::kSucceeded;
using KvComponents::Object;

// A larger texture is beyond the limits of all OpenGL implementations.
constexpr std::int32_t kMaxTextureSide = 32768;

// Error codes of the library's reader that are reported from here, too: what the library accepted is checked again.
constexpr std::int32_t kInvalidVertexData = 4, kInvalidFacetData = 5, kInvalidUvData = 6, kInvalidTextureData = 7;

[[noreturn]] void Refuse(std::int32_t code, const std::string& detail = "") {
    throw HpsReadError(GetHpsErrorText(code) + (detail.empty() ? "" : " " + detail));
}

/// A count or size from the library, which must not be negative.
std::size_t RequireCount(std::int32_t count, std::int32_t errorCode) {
    if (count < 0) Refuse(errorCode);
    return static_cast<std::size_t>(count);
}

void RequireFileData(std::int32_t status, std::int32_t errorCode) {
    if (status != kSucceeded) Refuse(errorCode);
}

// ---- the mesh object

struct MeshSize {
    std::size_t vertices = 0, triangles = 0;
};

/// Both counts, each with the error of its kind of data.
MeshSize SizeOf(Object* mesh) {
    MeshSize size;
    std::int32_t count = 0;
    RequireFileData(hps_mesh::kVertexCount(mesh, &count), kInvalidVertexData);
    size.vertices = RequireCount(count, kInvalidVertexData);
    RequireFileData(hps_mesh::kTriangleCount(mesh, &count), kInvalidFacetData);
    size.triangles = RequireCount(count, kInvalidFacetData);
    return size;
}

/// Not checked.
std::vector<Triangle> ReadTriangles(Object* mesh, std::size_t triangleCount) {
    std::vector<Triangle> triangles;
    ReserveInHugePages(triangles, triangleCount);
    triangles.resize(triangleCount);
    static_assert(sizeof(Triangle) == 3 * sizeof(std::int32_t));
    RequireFileData(hps_mesh::kReadIndices(mesh, triangles.empty() ? nullptr : triangles.data()->v,
                                           triangleCount * sizeof(Triangle)),
                    kInvalidFacetData);
    return triangles;
}

[[noreturn]] void RefuseIndex(const BadIndex& bad, std::size_t vertexCount) {
    Refuse(kInvalidFacetData, "Triangle " + std::to_string(bad.triangle) + " refers to vertex " +
                                  std::to_string(bad.index) + " of " + std::to_string(vertexCount) + ".");
}

/// Throws with the first triangle that refers to a missing vertex, if there is one.
void RequireVertices(std::span<const Triangle> triangles, std::size_t vertexCount) {
    if (const auto bad = FindBadIndex(triangles, vertexCount)) RefuseIndex(*bad, vertexCount);
}

// ---- the reader object

/// A reader object with an open file, which the destructor closes.
class OpenReader {
public:
    explicit OpenReader(const wchar_t* path)
        : m_pReader(RequireComponent(hps_reader::kFactory, hps_reader::kInterface)) {
        if (hps_reader::kOpen(Get(), path) == kSucceeded) return;
        const std::int32_t code = LastError();
        if (code == kInvalidFacetData) NameBadTriangle();
        // Without an error code reading continues: it fails later, when the mesh is requested.
        if (code != 0) throw HpsReadError(GetHpsErrorText(code));
    }
    ~OpenReader() { Close(); }
    OpenReader(const OpenReader&) = delete;
    OpenReader& operator=(const OpenReader&) = delete;

    [[nodiscard]] Object* Get() const { return m_pReader.get(); }
    /// Null when the reader has none.
    [[nodiscard]] ComponentPtr Mesh() const {
        Object* found = nullptr;
        const std::int32_t status = hps_reader::kMesh(Get(), &found);
        ComponentPtr mesh(found);
        return status == kSucceeded ? std::move(mesh) : nullptr;
    }
    /// Closes the file. The status is ignored: everything was read before.
    void Close() {
        if (m_bOpen) hps_reader::kClose(Get());
        m_bOpen = false;
    }
    /// Throws unless the status is success: with the reader's own reason where it has one, else with the status text.
    void Require(std::int32_t status) const {
        if (status == kSucceeded) return;
        if (const std::int32_t code = LastError(); code != 0) throw HpsReadError(GetHpsErrorText(code));
        RequireSuccess(status);
    }

private:
    /// Some libraries return the mesh of a file that they refuse: then the reason can name the bad triangle.
    void NameBadTriangle() const {
        const ComponentPtr mesh = Mesh();
        if (!mesh) return;
        const MeshSize size = SizeOf(mesh.get());
        RequireVertices(ReadTriangles(mesh.get(), size.triangles), size.vertices);
    }
    [[nodiscard]] std::int32_t LastError() const {
        std::int32_t code = 0;
        hps_reader::kLastError(Get(), &code);
        return code;
    }

    ComponentPtr m_pReader;
    bool m_bOpen = true;
};

// ---- texture

/// The texture as pixels, flipped so that the first row is that of v = 0.
void ReadPixels(const OpenReader& reader, std::int32_t orientation, HpsData& data) {
    Object* found = nullptr;
    reader.Require(hps_reader::kImage(reader.Get(), &found));
    const ComponentPtr picture(found);
    if (!picture) Refuse(kInvalidTextureData);
    if (orientation == 1 || orientation == 3) RequireSuccess(image::kFlip(picture.get()));
    std::int32_t width = 0, height = 0;
    RequireSuccess(image::kSize(picture.get(), &width, &height));
    if (std::min(width, height) < 0 || std::max(width, height) > kMaxTextureSide)
        Refuse(kInvalidTextureData, "It has " + std::to_string(width) + " x " + std::to_string(height) + " pixels.");
    data.m_uWidth = static_cast<std::uint32_t>(width);
    data.m_uHeight = static_cast<std::uint32_t>(height);
    data.m_vPixels.resize(std::size_t{data.m_uWidth} * data.m_uHeight);
    RequireSuccess(
        image::kReadPixels(picture.get(), data.m_vPixels.data(), data.m_vPixels.size() * sizeof(data.m_vPixels[0])));
}

/// The texture as the file that it was read from, for a later export.
void ReadImageFile(const OpenReader& reader, std::vector<std::uint8_t>& bytes) {
    std::int32_t size = 0, ignored[2] = {};
    reader.Require(hps_reader::kImageFileSize(reader.Get(), &size, &ignored[0], &ignored[1]));
    bytes.resize(RequireCount(size, kInvalidTextureData));
    reader.Require(hps_reader::kImageFileBytes(reader.Get(), bytes.data(), bytes.size()));
}

/// @return the block of texture coordinates; empty when the file has no texture
std::vector<std::uint8_t> ReadTexture(const OpenReader& reader, HpsData& data) {
    std::int32_t size = 0, orientation = 0;
    // the one status that is no error: the file has no texture
    if (hps_reader::kUvBlockSize(reader.Get(), &size) != kSucceeded) return {};
    reader.Require(hps_reader::kImageOrientation(reader.Get(), &orientation));
    std::vector<std::uint8_t> uvBlock(RequireCount(size, kInvalidUvData));
    reader.Require(hps_reader::kUvBlock(reader.Get(), uvBlock.data(), uvBlock.size()));
    ReadPixels(reader, orientation, data);
    ReadImageFile(reader, data.m_vImageBytes);
    return uvBlock;
}

// ---- texture coordinates

/// The texture coordinates of all vertices; empty until they are decoded. A vertex on a seam of the texture has several
/// pairs, which its triangles get in turn, in the order of the file.
class VertexPairs {
public:
    void Decode(Object* decoder, const std::vector<std::uint8_t>& block, std::size_t vertexCount) {
        constexpr char kNoCoordinates[] = "Failed to extract UV coordinates.";
        std::int32_t measuredVertices = 0, measuredPairs = 0, ignored = 0;
        if (hps_uv_decoder::kMeasure(decoder, block.data(), block.size(), &measuredVertices, &measuredPairs,
                                     &ignored) != kSucceeded)
            throw HpsReadError(kNoCoordinates);
        if (measuredVertices < 0 || static_cast<std::size_t>(measuredVertices) != vertexCount)
            throw HpsReadError("Inconsistent vertex count.");
        const std::size_t pairCount = RequireCount(measuredPairs, kInvalidUvData);
        if (pairCount > 255 * vertexCount) Refuse(kInvalidUvData);  // the number of pairs of a vertex is one byte

        const auto pairsOfVertex = MakeArrayInHugePages<std::uint8_t>(vertexCount);
        m_pPairs = MakeArrayInHugePages<float>(2 * pairCount);
        if (hps_uv_decoder::kDecode(decoder, block.data(), block.size(), pairsOfVertex.get(), vertexCount,
                                    m_pPairs.get(), 2 * pairCount * sizeof(float)) != kSucceeded)
            throw HpsReadError(kNoCoordinates);
        Distribute({pairsOfVertex.get(), vertexCount}, pairCount);
    }

    [[nodiscard]] bool Has(std::size_t vertex) const {
        return vertex < m_vRings.size() && m_vRings[vertex].begin != m_vRings[vertex].end;
    }
    [[nodiscard]] TexCoord Next(std::size_t vertex) {
        Ring& ring = m_vRings[vertex];
        const float* const pair = &m_pPairs[2 * std::size_t{ring.next}];
        if (++ring.next == ring.end) ring.next = ring.begin;
        return {pair[0], pair[1]};
    }

private:
    /// The pairs of one vertex, as indices; next moves from begin to end and starts over.
    struct Ring {
        std::uint32_t begin, end, next;
    };

    /// Assigns the pairs to the vertices: those of vertex 0 come first in the file.
    void Distribute(std::span<const std::uint8_t> pairsOfVertex, std::size_t pairCount) {
        ReserveInHugePages(m_vRings, pairsOfVertex.size());
        std::uint32_t begin = 0;
        for (const std::uint8_t count : pairsOfVertex) {
            if (count > pairCount - begin) Refuse(kInvalidUvData);
            m_vRings.push_back({begin, begin + count, begin});
            begin += count;
        }
    }

    std::vector<Ring> m_vRings;
    HugePageArray<float> m_pPairs;  ///< u, v; those of vertex 0 first
};

// ---- vertices and faces

/// Read access to the vertices of a mesh, which the destructor ends.
class VertexAccess {
public:
    VertexAccess(Object* mesh, std::size_t vertexCount) : m_vertexCount(vertexCount) {
        Object* found = nullptr;
        RequireFileData(hps_mesh::kReadableVertexData(mesh, &found), kInvalidVertexData);
        m_pData.reset(found);
        if (!m_pData) Refuse(kInvalidVertexData);
    }
    ~VertexAccess() { hps_vertex_data::kEndAccess(m_pData.get()); }
    VertexAccess(const VertexAccess&) = delete;
    VertexAccess& operator=(const VertexAccess&) = delete;

    /// @param attribute  'P' positions, 'N' normals
    /// @param values     receives three floats per vertex
    void Read(char attribute, float* values) const {
        RequireFileData(
            hps_vertex_data::kReadAttribute(m_pData.get(), attribute, 0, static_cast<std::int32_t>(m_vertexCount),
                                            values, 3 * m_vertexCount * sizeof(float)),
            kInvalidVertexData);
    }

private:
    ComponentPtr m_pData;
    std::size_t m_vertexCount;
};

// Positions and normals through the same array: fresh memory costs more than the copy.
void ReadVertices(Object* mesh, std::size_t vertexCount, HpsData& data) {
    const VertexAccess access(mesh, vertexCount);
    const auto values = MakeArrayInHugePages<float>(3 * vertexCount);
    access.Read('P', values.get());
    data.m_uNotFinite = CountNotFinite({values.get(), 3 * vertexCount});
    std::vector<Vertex>& vertices = data.m_vVertices;
    ReserveInHugePages(vertices, vertexCount);
    for (const float* p = values.get(); vertices.size() < vertexCount; p += 3)
        vertices.push_back({.x = p[0], .y = p[1], .z = p[2], .color = 0xFFFFFFFF});
    access.Read('N', values.get());
    const float* n = values.get();
    for (Vertex& vertex : vertices) {
        vertex.nx = n[0];
        vertex.ny = n[1];
        vertex.nz = n[2];
        n += 3;
    }
}

std::vector<HpsFace> MakeFaces(std::span<const Triangle> triangles, std::size_t vertexCount, VertexPairs& pairs) {
    std::vector<HpsFace> faces;
    ReserveInHugePages(faces, triangles.size());
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        HpsFace& face = faces.emplace_back();
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const std::int32_t index = triangles[i].v[corner];
            const auto vertex = static_cast<std::size_t>(index);
            if (index < 0 || vertex >= vertexCount) RefuseIndex({i, index}, vertexCount);
            if (!pairs.Has(vertex))
                Refuse(kInvalidUvData, "Triangle " + std::to_string(i) + " uses vertex " + std::to_string(index) +
                                           ", which has no texture coordinates.");
            face.v[corner] = index;
            face.uv[corner] = pairs.Next(vertex);
        }
    }
    return faces;
}

}  // namespace

const char* GetHpsErrorText(std::int32_t code) {
    switch (code) {
        case 0:
            return "No error.";
        case 1:
            return "File not found.";
        case 2:
            return "Can't read file.";
        case 3:
            return "Invalid file.";
        case kInvalidVertexData:
            return "Invalid vertex data.";
        case kInvalidFacetData:
            return "Invalid facet data.";
        case kInvalidUvData:
            return "Invalid UV data.";
        case kInvalidTextureData:
            return "Invalid texture data.";
        default:
            return "";
    }
}

// The order of the steps decides which reason is reported for a file with several faults.
HpsData ReadHpsFile(const wchar_t* path) {
    HpsData data;
    MeshSize size;
    VertexPairs pairs;
    {
        OpenReader reader(path);
        const std::vector<std::uint8_t> uvBlock = ReadTexture(reader, data);
        const ComponentPtr decoder = RequireComponent(hps_uv_decoder::kFactory, hps_uv_decoder::kInterface);
        const ComponentPtr mesh = reader.Mesh();
        if (!mesh) throw HpsReadError("Can't decode HPS mesh file.");
        size = SizeOf(mesh.get());
        if (!uvBlock.empty()) pairs.Decode(decoder.get(), uvBlock, size.vertices);
        ReadVertices(mesh.get(), size.vertices, data);
        data.m_vTriangles = ReadTriangles(mesh.get(), size.triangles);
        reader.Close();
    }  // frees the library's mesh and file before the faces, the largest array, are allocated
    if (data.m_vPixels.empty()) {
        RequireVertices(data.m_vTriangles, size.vertices);
        return data;
    }
    data.m_vFaces = MakeFaces(data.m_vTriangles, size.vertices, pairs);
    data.m_vTriangles = {};
    return data;
}
