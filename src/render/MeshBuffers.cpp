// Upload of the vertices and indices of a mesh, and what happens when graphics memory is short.
#include "render/MeshBuffers.h"

#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "base/DebugOutput.h"
#include "render/MemoryCheck.h"
#include "render/VertexPacking.h"

namespace {

// Large meshes are packed and uploaded in pieces of this many bytes, which fit into the cache: there is never a second
// copy of all vertices.
constexpr std::size_t kUploadPiece = std::size_t{256} * 1024;

/// Binds the buffer; generates it when @p name is 0. A rebuild keeps the name and replaces the content.
void BindGenerated(GLenum target, std::uint32_t& name) {
    if (name == 0) glGenBuffers(1, &name);
    glBindBuffer(target, name);
}

/// Fills the bound buffer with @p count records of @p stride bytes.
/// @param bytesThere  size of the buffer: one of another size is allocated
/// @param pack        called as pack(first, count, out) for each piece in order; writes count records to out
/// @return size of the buffer afterwards
template <typename Pack>
std::size_t UploadInPieces(GLenum target, std::size_t bytesThere, std::size_t count, std::size_t stride, Pack pack) {
    const std::size_t pieceCount = std::min(count, kUploadPiece / stride);
    const auto piece = std::make_unique_for_overwrite<std::byte[]>(pieceCount * stride);
    if (bytesThere != count * stride)
        glBufferData(target, static_cast<GLsizeiptr>(count * stride), nullptr, GL_STATIC_DRAW);
    for (std::size_t first = 0; first < count; first += pieceCount) {
        const std::size_t pieceEnd = std::min(count, first + pieceCount);
        pack(first, pieceEnd - first, piece.get());
        glBufferSubData(target, static_cast<GLintptr>(first * stride),
                        static_cast<GLsizeiptr>((pieceEnd - first) * stride), piece.get());
    }
    return count * stride;
}

/// Fills the bound index buffer with corner 0 of every @p step-th triangle.
void UploadFirstCorners(std::span<const Triangle> triangles, std::size_t step) {
    const std::size_t count = (triangles.size() + step - 1) / step;
    UploadInPieces(GL_ELEMENT_ARRAY_BUFFER, 0, count, sizeof(std::uint32_t),
                   [&](std::size_t first, std::size_t pieceCount, std::byte* out) {
                       const std::size_t firstTriangle = first * step;
                       const std::size_t rest = triangles.size() - firstTriangle;
                       const auto piece = triangles.subspan(firstTriangle, std::min(rest, pieceCount * step));
                       PackFirstCorners(piece, step, reinterpret_cast<std::uint32_t*>(out));
                   });
}

/// The vertices in the textured, coloured or plain layout. Those of a moved object go into the memory that the buffer
/// has: a software driver that allocates it again clears all its pages, which takes longer than to fill them.
void UploadVertices(Mesh& mesh) {
    const std::size_t bytesThere = mesh.m_bTrianglesDirty ? 0 : mesh.m_uVertexBytes;
    std::size_t& bytes = mesh.m_uVertexBytes;
    const std::span<const Vertex> vertices(mesh.m_vVertices);
    const std::span<const Triangle> triangles(mesh.m_vTriangles);
    BindGenerated(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
    if (mesh.m_pTexture) {
        const std::span<const TexCoord> texCoords(mesh.m_vTexCoords);
        assert(texCoords.size() == 3 * triangles.size());
        bytes = UploadInPieces(GL_ARRAY_BUFFER, bytesThere, triangles.size(), 3 * kTexturedStride,
                               [&](std::size_t first, std::size_t count, std::byte* out) {
                                   PackTextured(vertices, triangles.subspan(first, count),
                                                texCoords.subspan(3 * first, 3 * count), out);
                               });
    } else if (mesh.m_bHasVertexColors) {
        const VertexColorTable table = MakeVertexColorTable(mesh.m_fColor, mesh.m_bBlendObjectColor);
        bytes = UploadInPieces(GL_ARRAY_BUFFER, bytesThere, vertices.size(), kColoredStride,
                               [&](std::size_t first, std::size_t count, std::byte* out) {
                                   PackColored(vertices.subspan(first, count), table, out);
                               });
    } else {
        bytes = UploadInPieces(GL_ARRAY_BUFFER, bytesThere, vertices.size(), kPlainStride,
                               [&](std::size_t first, std::size_t count, std::byte* out) {
                                   PackPlain(vertices.subspan(first, count), out);
                               });
    }
}

/// Whether the driver can use the arrays of a mesh in place of a copy, and draws on the processor: a GPU would read
/// them over the bus in every frame.
bool ReadsHostMemory() {
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return GLEW_AMD_pinned_memory && renderer != nullptr && std::string_view(renderer).starts_with("llvmpipe");
}

/// A Triangle is three 32-bit integers, the layout of the index buffer: no packing, and where the driver can, no copy.
/// The array of a mesh that was drawn is replaced only together with its buffers.
void UploadTriangles(std::span<const Triangle> triangles, std::uint32_t& name) {
    const bool inPlace = ReadsHostMemory();
    const GLenum target = inPlace ? GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD : GL_ELEMENT_ARRAY_BUFFER;
    BindGenerated(target, name);
    glBufferData(target, static_cast<GLsizeiptr>(triangles.size_bytes()), triangles.data(), GL_STATIC_DRAW);
    if (inPlace) glBindBuffer(target, 0);
}

/// Triangles, one point per triangle, and the points of reduced drawing.
void UploadIndices(Mesh& mesh) {
    const std::span<const Triangle> triangles(mesh.m_vTriangles);
    UploadTriangles(triangles, mesh.m_uTriangleBuffer);
    BindGenerated(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uPointBuffer);
    UploadFirstCorners(triangles, 1);
    BindGenerated(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uReducedBuffer);
    UploadFirstCorners(triangles, static_cast<std::size_t>(mesh.m_iReducedStep));
}

/// Not for a moved object: indices are more bytes than vertices.
bool NeedsIndices(const Mesh& mesh) {
    if (mesh.m_pTexture) return false;  // its corners are not shared
    return mesh.m_bTrianglesDirty || mesh.m_uTriangleBuffer == 0;
}

}  // namespace

void BuildBuffers(Mesh& mesh) {
    if (!mesh.m_vTriangles.empty()) {
        const MemoryCheck memory;
        UploadVertices(mesh);
        if (NeedsIndices(mesh)) UploadIndices(mesh);
        mesh.m_bBuffersFailed = MemoryCheck::HasFailed();
        if (mesh.m_bBuffersFailed)
            ReleaseBuffers(mesh);  // what was uploaded is of no use without the rest
        else
            mesh.m_bFailureReported = mesh.m_bTrianglesDirty = false;
    }
    mesh.m_bBuffersDirty = false;
}

void ReleaseBuffers(Mesh& mesh) {
    for (std::uint32_t* name :
         {&mesh.m_uVertexBuffer, &mesh.m_uTriangleBuffer, &mesh.m_uPointBuffer, &mesh.m_uReducedBuffer}) {
        if (*name == 0) continue;
        glDeleteBuffers(1, name);
        *name = 0;
    }
    mesh.m_uVertexBytes = 0;
}

void ReportFailedBuffers(const std::vector<std::shared_ptr<Mesh>>& meshes) {
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        if (!meshes[i]->m_bBuffersFailed || meshes[i]->m_bFailureReported) continue;
        meshes[i]->m_bFailureReported = true;
        DebugOutput("not enough graphics memory for object " + std::to_string(i) + "\n");
    }
}
