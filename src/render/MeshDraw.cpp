// The draw modes of a mesh. Drawing uses client arrays of the compatibility profile, so that it works with and without
// a shader program. A vertex array object per mesh was not faster.
#include "render/MeshDraw.h"

#include <GL/glew.h>

#include "KV_ScenePane/Modes.h"
#include "geometry/Mesh.h"
#include "geometry/MeshGraphics.h"
#include "render/MeshBuffers.h"
#include "render/VertexPacking.h"

using namespace KV_ScenePane;

namespace {

// All attribute groups of OpenGL 2: a draw may change several of them.
constexpr GLbitfield kAllAttributes = 0xFFFFF;

constexpr GLfloat kWhite[4] = {1.0f, 1.0f, 1.0f, 1.0f};

// A context is current on one thread, and so is the batch that knows its state.
thread_local MeshBatch* t_batch = nullptr;

// NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL expects an offset into the bound buffer as a pointer
const void* BufferOffset(std::size_t offset) { return reinterpret_cast<const void*>(offset); }

void SetClientState(GLenum array, bool on) { on ? glEnableClientState(array) : glDisableClientState(array); }

/// The bounding box as twelve lines in the current colour. None for a mesh that is nowhere.
void DrawBoundingBox(const Mesh& mesh) {
    if (!mesh.HasPosition()) return;
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
}

void DeleteTexture(std::uint32_t name) { glDeleteTextures(1, &name); }

}  // namespace

MeshBatch::MeshBatch() : m_outer(t_batch) {
    if (m_outer != nullptr) m_outer->End();
    t_batch = this;
}

MeshBatch::~MeshBatch() {
    End();
    t_batch = m_outer;
}

void MeshBatch::DrawMesh(Mesh& mesh, std::int32_t mode, bool reduced) {
    if (t_batch != nullptr) return t_batch->Draw(mesh, mode, reduced);
    MeshBatch alone;
    alone.Draw(mesh, mode, reduced);
}

/// Rebuilds dirty buffers, then draws in @p mode; modes without a case draw nothing. Reduced drawing replaces the
/// triangles by every tenth first corner.
void MeshBatch::Draw(Mesh& mesh, std::int32_t mode, bool reduced) {
    if (mesh.m_bBuffersDirty) BuildBuffers(mesh);
    if (mesh.m_vTriangles.empty()) return;  // not even its box is drawn
    if (mode < DrawModePoints || mode > DrawModeBoundingBoxes) return;
    if (mode == DrawModeBoundingBoxes || mesh.m_bBuffersFailed) {
        SetRun({DrawModeBoundingBoxes, false});
        return DrawBoundingBox(mesh);
    }
    const auto triangleCount = static_cast<std::int32_t>(mesh.m_vTriangles.size());
    if (reduced)
        DrawLit(mesh, mode, mesh.m_uReducedBuffer, GL_POINTS, triangleCount / mesh.m_iReducedStep);
    else if (mode == DrawModePoints)
        // The point buffer holds one index per triangle; a textured mesh has none and shows all its corners.
        DrawLit(mesh, mode, mesh.m_uPointBuffer, GL_POINTS, mesh.m_pTexture ? 3 * triangleCount : triangleCount);
    else
        DrawLit(mesh, mode, mesh.m_uTriangleBuffer, GL_TRIANGLES, 3 * triangleCount);
}

void MeshBatch::SetRun(const Run& run) {
    if (run == m_run) return;
    End();
    Begin(run);
}

/// Sets what all meshes of a run share: they are lit and depth-tested, except for bounding boxes.
///
/// All attributes are pushed in one call. With a second push of some groups inside, Mesa 22.3 does not restore at the
/// outer pop what was changed inside in the other groups.
void MeshBatch::Begin(const Run& run) {
    m_run = run;
    glPushAttrib(kAllAttributes);
    if (run.mode == DrawModeBoundingBoxes) return glColor3f(0.0f, 0.4f, 0.9f);
    if (run.mode == DrawModeWireframe) glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    if (run.mode == DrawModeWireframe || run.mode == DrawModeFlat) glShadeModel(GL_FLAT);
    if (run.mode == DrawModeGouraud) glShadeModel(GL_SMOOTH);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    SetClientState(GL_TEXTURE_COORD_ARRAY, run.isTextured);
    if (!run.isTextured) return;
    glActiveTexture(GL_TEXTURE0);
    glEnable(GL_TEXTURE_2D);
}

/// Restores the state that Begin() found. The client arrays are disabled and no buffer is bound.
void MeshBatch::End() {
    if (m_run == Run{}) return;
    if (m_run.mode != DrawModeBoundingBoxes) {
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
        if (m_isColored) glDisableClientState(GL_COLOR_ARRAY);
        if (m_run.isTextured) glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        if (!m_run.isTextured) glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    glPopAttrib();
    m_run = {};
    m_pointSize = 0.0f;
    m_hasTint = m_isColored = m_isWhite = false;
}

/// @param indexBuffer  ignored for a textured mesh
/// @param count        indices, or corners of a textured mesh
void MeshBatch::DrawLit(const Mesh& mesh, std::int32_t mode, std::uint32_t indexBuffer, std::uint32_t primitive,
                        std::int32_t count) {
    const bool isTextured = mesh.m_pTexture != nullptr;
    if (mesh.m_uVertexBuffer == 0 || (!isTextured && indexBuffer == 0)) return;
    // OpenGL rejects a point size that is not above 0: such a mesh has the size that was set before the batch.
    if (!(mesh.m_fPointSize > 0.0f) && m_pointSize != 0.0f) End();
    SetRun({mode, isTextured});
    if (count == 0) return;  // without a draw Mesa does not restore the colour at the pop: it must not be set
    SetPointSize(mesh);
    SetTint(mesh);
    SetColored(mesh.m_bHasVertexColors && !isTextured);

    const auto stride =
        static_cast<GLsizei>(isTextured ? kTexturedStride : (m_isColored ? kColoredStride : kPlainStride));
    glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
    glVertexPointer(3, GL_FLOAT, stride, BufferOffset(0));
    glNormalPointer(GL_FLOAT, stride, BufferOffset(12));
    if (isTextured) {
        glBindTexture(GL_TEXTURE_2D, mesh.m_pTexture->m_uName);
        glTexCoordPointer(2, GL_FLOAT, stride, BufferOffset(24));
        glDrawArrays(primitive, 0, count);
    } else {
        if (m_isColored) glColorPointer(4, GL_UNSIGNED_BYTE, stride, BufferOffset(24));
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
        glDrawElements(primitive, count, GL_UNSIGNED_INT, nullptr);
    }
}

void MeshBatch::SetPointSize(const Mesh& mesh) {
    if (!(mesh.m_fPointSize > 0.0f) || mesh.m_fPointSize == m_pointSize) return;
    m_pointSize = mesh.m_fPointSize;
    glPointSize(m_pointSize);
}

/// The object colour is set as the colour of the light, because fixed-function lighting and the shader programs both
/// multiply by it. Vertex colours stay untinted, except grey ones that were not blended with the object colour.
void MeshBatch::SetTint(const Mesh& mesh) {
    const bool grayUnblended = mesh.m_bGrayColors && !mesh.m_bBlendObjectColor;
    const bool tinted = !mesh.m_pTexture && (!mesh.m_bHasVertexColors || grayUnblended);
    std::array<float, 4> tint{1.0f, 1.0f, 1.0f, 1.0f};
    if (tinted) tint = {mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 1.0f};
    if (m_hasTint && tint == m_tint) return;
    m_tint = tint;
    m_hasTint = true;
    glLightfv(GL_LIGHT0, GL_DIFFUSE, m_tint.data());
}

/// A mesh without vertex colours is drawn in white, which must be set again after one with colours: an array of colours
/// leaves the current colour undefined.
void MeshBatch::SetColored(bool colored) {
    if (!colored && !m_isWhite) glColor4fv(kWhite);
    m_isWhite = !colored;
    if (colored == m_isColored) return;
    m_isColored = colored;
    SetClientState(GL_COLOR_ARRAY, colored);
}

void InstallMeshDrawing() {
    static constexpr MeshGraphics kOpenGl{
        .draw = MeshBatch::DrawMesh, .releaseBuffers = ReleaseBuffers, .deleteTexture = DeleteTexture};
    InstallMeshGraphics(&kOpenGl);
}

void DrawVisible(std::span<const std::shared_ptr<Mesh>> meshes, std::int32_t mode, bool reduced) {
    MeshBatch batch;
    for (const auto& mesh : meshes)
        if (mesh->m_iVisible != 0) mesh->Draw(mode, reduced);
}
