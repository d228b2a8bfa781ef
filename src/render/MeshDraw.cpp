// The GPU buffers of a mesh and its draw modes. VertexPacking.h packs the bytes of the buffers, MeshTexture.cpp makes
// the texture. Drawing uses client arrays of the compatibility profile, so that it works with and without a shader
// program.
#include "render/MeshDraw.h"

#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>

#include "KV_ScenePane/Modes.h"
#include "geometry/Mesh.h"
#include "geometry/MeshGraphics.h"
#include "render/VertexPacking.h"

using namespace KV_ScenePane;

namespace {

// All attribute groups of OpenGL 2: a draw may change several of them.
constexpr GLbitfield kAllAttributes = 0xFFFFF;

// Large meshes are packed and uploaded in pieces of this many bytes, which fit into the cache: there is never a second
// copy of all vertices.
constexpr std::size_t kUploadPiece = std::size_t{256} * 1024;

/// Binds the buffer; generates it when @p name is 0. A rebuild keeps the name and replaces the content.
void BindGenerated(GLenum target, std::uint32_t& name) {
    if (name == 0) glGenBuffers(1, &name);
    glBindBuffer(target, name);
}

/// Fills the bound buffer with @p count records of @p stride bytes.
/// @param pack  called as pack(first, count, out) for each piece in order; writes count records to out
template <typename Pack>
void UploadInPieces(GLenum target, std::size_t count, std::size_t stride, Pack pack) {
    const std::size_t pieceCount = std::min(count, kUploadPiece / stride);
    const auto piece = std::make_unique_for_overwrite<std::byte[]>(pieceCount * stride);
    glBufferData(target, static_cast<GLsizeiptr>(count * stride), nullptr, GL_STATIC_DRAW);
    for (std::size_t first = 0; first < count; first += pieceCount) {
        const std::size_t pieceEnd = std::min(count, first + pieceCount);
        pack(first, pieceEnd - first, piece.get());
        glBufferSubData(target, static_cast<GLintptr>(first * stride),
                        static_cast<GLsizeiptr>((pieceEnd - first) * stride), piece.get());
    }
}

/// Fills the bound index buffer with corner 0 of every @p step-th triangle.
void UploadFirstCorners(std::span<const Triangle> triangles, std::size_t step) {
    const std::size_t count = (triangles.size() + step - 1) / step;
    UploadInPieces(GL_ELEMENT_ARRAY_BUFFER, count, sizeof(std::uint32_t),
                   [&](std::size_t first, std::size_t pieceCount, std::byte* out) {
                       const std::size_t firstTriangle = first * step;
                       const std::size_t rest = triangles.size() - firstTriangle;
                       const auto piece = triangles.subspan(firstTriangle, std::min(rest, pieceCount * step));
                       PackFirstCorners(piece, step, reinterpret_cast<std::uint32_t*>(out));
                   });
}

// NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL expects an offset into the bound buffer as a pointer
const void* BufferOffset(std::size_t offset) { return reinterpret_cast<const void*>(offset); }

/// The bounding box as twelve blue lines, with the current lighting and matrices. Restores the current colour.
void DrawBoundingBox(const Mesh& mesh) {
    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    glColor3f(0.0f, 0.4f, 0.9f);
    const auto& [minX, maxX, minY, maxY, minZ, maxZ] = mesh.m_fBoundingBox;
    const float corners[4][2] = {{minX, minY}, {maxX, minY}, {maxX, maxY}, {minX, maxY}};
    for (const float z : {minZ, maxZ}) {
        glBegin(GL_LINE_LOOP);
        for (const auto& corner : corners) glVertex3f(corner[0], corner[1], z);
        glEnd();
    }
    glBegin(GL_LINES);
    for (const auto& corner : corners) {
        glVertex3f(corner[0], corner[1], minZ);
        glVertex3f(corner[0], corner[1], maxZ);
    }
    glEnd();
    glColor3fv(color);
}

/// Deletes the buffers that exist; the context that they belong to must be current.
void ReleaseBuffers(Mesh& mesh) {
    for (std::uint32_t* name :
         {&mesh.m_uVertexBuffer, &mesh.m_uTriangleBuffer, &mesh.m_uPointBuffer, &mesh.m_uReducedBuffer}) {
        if (*name == 0) continue;
        glDeleteBuffers(1, name);
        *name = 0;
    }
}

/// Uploads vertices and indices. A textured mesh has no index buffers, since its corners are not shared; any other has
/// three: its triangles, one point per triangle, and the points of reduced drawing.
void BuildBuffers(Mesh& mesh) {
    if (mesh.m_vTriangles.empty()) {
        mesh.m_bBuffersDirty = false;
        return;
    }
    // Vertices: textured, coloured or plain layout.
    const std::span<const Vertex> vertices(mesh.m_vVertices);
    const std::span<const Triangle> triangles(mesh.m_vTriangles);
    BindGenerated(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
    if (mesh.m_pTexture) {
        const std::span<const TexCoord> texCoords(mesh.m_vTexCoords);
        assert(texCoords.size() == 3 * triangles.size());
        UploadInPieces(GL_ARRAY_BUFFER, triangles.size(), 3 * kTexturedStride,
                       [&](std::size_t first, std::size_t count, std::byte* out) {
                           PackTextured(vertices, triangles.subspan(first, count),
                                        texCoords.subspan(3 * first, 3 * count), out);
                       });
        mesh.m_bBuffersDirty = false;
        return;
    }
    if (mesh.m_bHasVertexColors) {
        const VertexColorTable table = MakeVertexColorTable(mesh.m_fColor, mesh.m_bBlendObjectColor);
        UploadInPieces(GL_ARRAY_BUFFER, vertices.size(), kColoredStride,
                       [&](std::size_t first, std::size_t count, std::byte* out) {
                           PackColored(vertices.subspan(first, count), table, out);
                       });
    } else {
        UploadInPieces(GL_ARRAY_BUFFER, vertices.size(), kPlainStride,
                       [&](std::size_t first, std::size_t count, std::byte* out) {
                           PackPlain(vertices.subspan(first, count), out);
                       });
    }
    // Indices. A Triangle is three 32-bit integers, the layout of the index buffer: no packing.
    BindGenerated(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uTriangleBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(triangles.size_bytes()), triangles.data(),
                 GL_STATIC_DRAW);
    BindGenerated(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uPointBuffer);
    UploadFirstCorners(triangles, 1);
    BindGenerated(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uReducedBuffer);
    UploadFirstCorners(triangles, static_cast<std::size_t>(mesh.m_iReducedStep));
    mesh.m_bBuffersDirty = false;
}

/// Binds the buffers to the client arrays and draws. Afterwards no buffer is bound and the client arrays are disabled.
/// @param indexBuffer  ignored for a textured mesh
/// @param count        indices, or corners of a textured mesh
void DrawArrays(const Mesh& mesh, std::uint32_t indexBuffer, std::uint32_t primitive, std::int32_t count) {
    const bool textured = mesh.m_pTexture != nullptr;
    const bool colored = mesh.m_bHasVertexColors && !textured;
    const auto setClientState = [](GLenum array, bool on) {
        on ? glEnableClientState(array) : glDisableClientState(array);
    };
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    setClientState(GL_COLOR_ARRAY, colored);
    setClientState(GL_TEXTURE_COORD_ARRAY, textured);

    if (mesh.m_uVertexBuffer != 0 && textured) {
        const GLboolean wasEnabled = glIsEnabled(GL_TEXTURE_2D);
        glEnable(GL_TEXTURE_2D);
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, mesh.m_pTexture->m_uName);
        glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
        constexpr auto kStride = static_cast<GLsizei>(kTexturedStride);
        glVertexPointer(3, GL_FLOAT, kStride, BufferOffset(0));
        glNormalPointer(GL_FLOAT, kStride, BufferOffset(12));
        glTexCoordPointer(2, GL_FLOAT, kStride, BufferOffset(24));
        glDrawArrays(primitive, 0, count);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        if (wasEnabled == GL_FALSE) glDisable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    } else if (mesh.m_uVertexBuffer != 0 && indexBuffer != 0) {
        const auto stride = static_cast<GLsizei>(colored ? kColoredStride : kPlainStride);
        glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
        glVertexPointer(3, GL_FLOAT, stride, BufferOffset(0));
        glNormalPointer(GL_FLOAT, stride, BufferOffset(12));
        if (colored) glColorPointer(4, GL_UNSIGNED_BYTE, stride, BufferOffset(24));
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
        glDrawElements(primitive, count, GL_UNSIGNED_INT, nullptr);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    if (colored) glDisableClientState(GL_COLOR_ARRAY);
    if (textured) glDisableClientState(GL_TEXTURE_COORD_ARRAY);
}

/// Draws with lighting and depth test, in the colour of the object, of its vertices or of its texture.
void DrawLit(const Mesh& mesh, std::uint32_t indexBuffer, std::uint32_t primitive, std::int32_t count) {
    const GLfloat objectColor[4] = {mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 1.0f};
    const GLfloat white[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    // The object colour is set as the colour of the light, because fixed-function lighting and the shader programs both
    // multiply by it. Vertex colours stay untinted, except grey ones that were not blended with the object colour.
    const bool grayUnblended = mesh.m_bGrayColors && !mesh.m_bBlendObjectColor;
    const bool tinted = !mesh.m_pTexture && (!mesh.m_bHasVertexColors || grayUnblended);
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, tinted ? objectColor : white);
    glColor4fv(white);
    glEnable(GL_DEPTH_TEST);
    DrawArrays(mesh, indexBuffer, primitive, count);
    glPopAttrib();
}

/// Rebuilds dirty buffers, then draws in @p mode; modes without a case draw nothing. Reduced drawing replaces the
/// triangles by every tenth first corner.
void DrawMesh(Mesh& mesh, std::int32_t mode, bool reduced) {
    if (mesh.m_bBuffersDirty) BuildBuffers(mesh);
    if (mesh.m_vTriangles.empty()) return;  // without a bounding box, too
    glPushAttrib(kAllAttributes);
    glColor4f(mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 0.5f);
    glPointSize(mesh.m_fPointSize);

    const auto triangleCount = static_cast<std::int32_t>(mesh.m_vTriangles.size());
    const auto draw = [&](std::uint32_t indexBuffer, std::uint32_t primitive, std::int32_t count) {
        if (reduced)
            DrawLit(mesh, mesh.m_uReducedBuffer, GL_POINTS, triangleCount / mesh.m_iReducedStep);
        else
            DrawLit(mesh, indexBuffer, primitive, count);
    };
    switch (mode) {
        case DrawModePoints:
            // The point buffer holds one index per triangle; a textured mesh has none and shows all its corners.
            draw(mesh.m_uPointBuffer, GL_POINTS, mesh.m_pTexture ? 3 * triangleCount : triangleCount);
            break;
        case DrawModeWireframe:
            glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
            glShadeModel(GL_FLAT);
            draw(mesh.m_uTriangleBuffer, GL_TRIANGLES, 3 * triangleCount);
            break;
        case DrawModeFlat:
            glShadeModel(GL_FLAT);
            draw(mesh.m_uTriangleBuffer, GL_TRIANGLES, 3 * triangleCount);
            break;
        case DrawModeGouraud:
            glShadeModel(GL_SMOOTH);
            draw(mesh.m_uTriangleBuffer, GL_TRIANGLES, 3 * triangleCount);
            break;
        case DrawModeBoundingBoxes:
            DrawBoundingBox(mesh);
            break;
        default:
            break;
    }
    glPopAttrib();
}

void DeleteTexture(std::uint32_t name) { glDeleteTextures(1, &name); }

constexpr MeshGraphics kOpenGl{.draw = DrawMesh, .releaseBuffers = ReleaseBuffers, .deleteTexture = DeleteTexture};

}  // namespace

void InstallMeshDrawing() { InstallMeshGraphics(&kOpenGl); }
