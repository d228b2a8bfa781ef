// Writes a mesh into one buffer: header, vertices, faces, image; and the buffer into a file. The reader:
// io/PlyMesh.cpp.
#include "io/PlyMeshWriter.h"

#include <bit>
#include <cassert>
#include <cstring>

#include "KV_ScenePane/PathText.h"
#include "base/AtomicFile.h"
#include "base/HugePages.h"

static_assert(std::endian::native == std::endian::little, "numbers are copied into the file without a conversion");

namespace {

constexpr std::size_t kFloatBytes = 6 * sizeof(float);  // position and normal of a vertex, or three u, v of a face
constexpr std::size_t kColorBytes = 3;
constexpr std::size_t kIndexBytes = 3 * sizeof(std::int32_t);
constexpr std::uint32_t kColorMask = 0xFFFFFF;

/// @return the position after the copied bytes
std::byte* Put(std::byte* out, const void* from, std::size_t size) {
    if (size > 0) std::memcpy(out, from, size);
    return out + size;
}

}  // namespace

PlyMeshWriter::PlyMeshWriter(std::size_t vertexCount, std::size_t faceCount)
    : m_vVertexRecords(vertexCount), m_iFaceCount(static_cast<int>(faceCount)), m_vIndices(3 * faceCount) {}

PlyMeshWriter::PlyMeshWriter(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                             std::span<const TexCoord> texCoords, std::span<const std::uint8_t> imageBytes)
    : m_iFaceCount(static_cast<int>(triangles.size())),
      m_vTexCoords(texCoords.begin(), texCoords.end()),
      m_vImageBytes(imageBytes.begin(), imageBytes.end()) {
    assert(texCoords.empty() || texCoords.size() == 3 * triangles.size());
    // The alpha is not written, and the mask also makes opaque black the black that means "no colours".
    ReserveInHugePages(m_vVertexRecords, vertices.size());
    for (const Vertex& v : vertices)
        m_vVertexRecords.push_back({v.x, v.y, v.z, v.nx, v.ny, v.nz, v.color & kColorMask});
    ReserveInHugePages(m_vIndices, 3 * triangles.size());
    static_assert(sizeof(Triangle) == kIndexBytes);
    if (!triangles.empty()) {
        const std::int32_t* const indices = triangles.data()->v;
        m_vIndices.assign(indices, indices + 3 * triangles.size());
    }
}

// The first vertex decides for all: a mesh without colours has black ones.
bool PlyMeshWriter::HasColors() const {
    return !m_vVertexRecords.empty() && (m_vVertexRecords.front().color & kColorMask) != 0;
}

// Lines, names and order: docs/formats/ply.md.
std::string PlyMeshWriter::Header() const {
    std::string header =
        "ply\n"
        "format binary_little_endian 1.0\n"
        "comment created by kavelin messtechnik gmbh\n"
        "element vertex " +
        std::to_string(m_vVertexRecords.size()) +
        "\nproperty float x\nproperty float y\nproperty float z\n"
        "property float nx\nproperty float ny\nproperty float nz\n";
    if (HasColors()) header += "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    if (m_iFaceCount > 0) {
        header += "element face " + std::to_string(m_iFaceCount) + "\nproperty list uchar int vertex_indices\n";
        if (!m_vTexCoords.empty()) header += "property list uint8 float texcoord\n";
    }
    if (!m_vImageBytes.empty())
        header += "element texture " + std::to_string(m_vImageBytes.size()) + "\nproperty uchar bytes\n";
    return header + "end_header\n";
}

// Position and normal, then three bytes of colour if there are colours.
std::byte* PlyMeshWriter::PutVertices(std::byte* out) const {
    static_assert(offsetof(PlyVertexRecord, color) == kFloatBytes);
    const bool hasColors = HasColors();
    for (const PlyVertexRecord& record : m_vVertexRecords) {
        out = Put(out, &record, kFloatBytes);
        if (!hasColors) continue;
        // red, green, blue
        for (const int shift : {16, 8, 0}) *out++ = static_cast<std::byte>(record.color >> shift);
    }
    return out;
}

// The count 3 and three indices, then the count 6 and three u, v if there are texture coordinates.
std::byte* PlyMeshWriter::PutFaces(std::byte* out) const {
    const std::int32_t* indices = m_vIndices.data();
    const TexCoord* texCoords = m_vTexCoords.empty() ? nullptr : m_vTexCoords.data();
    for (int i = 0; i < m_iFaceCount; ++i) {
        *out++ = std::byte{3};
        out = Put(out, indices, kIndexBytes);
        indices += 3;
        if (texCoords == nullptr) continue;
        *out++ = std::byte{6};
        out = Put(out, texCoords, kFloatBytes);
        texCoords += 3;
    }
    return out;
}

// Copies whole records with memcpy(); only the colours are converted.
PlyMeshWriter::FileBytes PlyMeshWriter::Assemble() const {
    // The exact size first, so that the buffer is allocated once.
    const std::string header = Header();
    const std::size_t vertexBytes = kFloatBytes + (HasColors() ? kColorBytes : 0);
    const std::size_t faceBytes = 1 + kIndexBytes + (m_vTexCoords.empty() ? 0 : 1 + kFloatBytes);
    FileBytes file;
    file.size = header.size() + m_vVertexRecords.size() * vertexBytes +
                static_cast<std::size_t>(m_iFaceCount) * faceBytes + m_vImageBytes.size();
    file.bytes = MakeArrayInHugePages<std::byte>(file.size);
    std::byte* out = Put(file.bytes.get(), header.data(), header.size());
    out = PutVertices(out);
    out = PutFaces(out);
    [[maybe_unused]] const std::byte* const end = Put(out, m_vImageBytes.data(), m_vImageBytes.size());
    assert(end == file.bytes.get() + file.size);
    return file;
}

void PlyMeshWriter::Write(const std::wstring& path) const {
    // Opened first: a target that cannot be written costs no assembly.
    AtomicFile target(KV_ScenePane::PathBytes(path));
    const FileBytes file = Assemble();
    target.WriteAt(0, file.bytes.get(), file.size);
    target.Commit();
}
