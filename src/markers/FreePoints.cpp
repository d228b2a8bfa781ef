// Free points: coloured point sets of the host that exist on the GPU alone.
#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <mutex>
#include <string>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "markers/PointBox.h"
#include "render/MemoryCheck.h"

namespace {

constexpr float kOpaqueAlpha = 0.99f;  // sets with less are blended
// Above the limit of any driver, which draws larger points in the size of its limit. softpipe (Mesa 22.3) has none: it
// never finishes a frame with points of millions of pixels.
constexpr double kLargestPoint = 8192;

/// Copies 3 floats per point into a new buffer, and makes it an attribute of the bound vertex array.
void UploadAttribute(GLuint index, std::uint32_t& buffer, std::int32_t numPoints, const float* values) {
    glGenBuffers(1, &buffer);
    glEnableVertexAttribArray(index);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(numPoints) * GLsizeiptr{3 * sizeof(float)}, values,
                 GL_STATIC_DRAW);
    glVertexAttribPointer(index, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
}

void ReleaseUpload(FreePointSet& points) {
    glDeleteVertexArrays(1, &points.vertexArray);
    glDeleteBuffers(1, &points.positionBuffer);
    glDeleteBuffers(1, &points.colorBuffer);
    points.vertexArray = points.positionBuffer = points.colorBuffer = 0;
}

/// @return false when graphics memory is short: the set has no OpenGL objects then. A draw from buffers without store
///         would read out of bounds
bool Upload(FreePointSet& points, const float* xyz, const float* colors) {
    const MemoryCheck memory;
    glGenVertexArrays(1, &points.vertexArray);
    glBindVertexArray(points.vertexArray);
    UploadAttribute(0, points.positionBuffer, points.numPoints, xyz);
    UploadAttribute(1, points.colorBuffer, points.numPoints, colors);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    if (!MemoryCheck::HasFailed()) return true;
    ReleaseUpload(points);
    return false;
}

/// llvmpipe, alone or below zink, queues the points of a draw faster than it draws them and keeps the memory: with ten
/// million points the process has 2.7 GB after the first frame when DrawSet() does not wait (Mesa 22.3).
bool QueuesPointsInMemory() {
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer != nullptr && std::strstr(renderer, "llvmpipe") != nullptr;
}

/// One draw call, except on a driver that must not queue all points at once.
void DrawSet(const FreePointSet& points) {
    constexpr std::int32_t kMaxQueuedPoints = 250'000;  // up to 60 MB
    glBindVertexArray(points.vertexArray);
    if (points.numPoints <= kMaxQueuedPoints || !QueuesPointsInMemory()) {
        glDrawArrays(GL_POINTS, 0, points.numPoints);
        return;
    }
    for (std::int32_t first = 0, count = 0; first < points.numPoints; first += count) {
        count = std::min(kMaxQueuedPoints, points.numPoints - first);
        glDrawArrays(GL_POINTS, first, count);
        glFinish();
    }
}

/// The size of points for the shader, which makes pixels of it; a size that is not a number is 0.
float LimitedSize(float size, double pixelsPerUnit) {
    if (std::isnan(size)) return 0.0f;
    return size * pixelsPerUnit > kLargestPoint ? static_cast<float>(kLargestPoint / pixelsPerUnit) : size;
}

/// True for an alpha that is not a number.
bool IsOpaque(const FreePointSet& points) { return !(points.alpha < kOpaqueAlpha); }

}  // namespace

std::int32_t CKV_ScenePaneCtrl::ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors,
                                             float alpha) {
    assert(numPoints >= 0 && (numPoints == 0 || (xyz != nullptr && colors != nullptr)));
    const std::int32_t id = m_mapFreePoints.SmallestFreeId();
    FreePointSet& points = m_mapFreePoints[id];
    points.id = id;
    points.numPoints = numPoints;
    points.alpha = alpha;
    const Box box = BoxOfFinitePoints({xyz, 3 * static_cast<std::size_t>(numPoints)});
    points.boxMin = box.min;
    points.boxMax = box.max;
    bool isShortOfMemory = false;
    if (numPoints > 0) {
        const std::lock_guard lock(*g_drawLock);  // another control may be in a frame
        isShortOfMemory = MakeContextCurrent() && !Upload(points, xyz, colors);
    }
    // After everything else: the sink belongs to the host, which may delete the set.
    if (isShortOfMemory) DebugOutput("not enough graphics memory for point set " + std::to_string(id) + "\n");
    return id;
}

void CKV_ScenePaneCtrl::SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) {
    if (const auto entry = m_mapFreePoints.find(id); entry != m_mapFreePoints.end())
        entry->second.visible = visible != 0;
}

// The buffers stay allocated until the context goes: deleting them is no part of this method.
void CKV_ScenePaneCtrl::DeletePoints(std::int32_t id) {
    if (m_mapFreePoints.erase(id) != 0) InvalidateControl(true);
}

void CKV_ScenePaneCtrl::DrawFreePoints() {
    if (m_mapFreePoints.empty()) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glUseProgram(m_progFreeFloatingPoints);
    const auto uniform = [this](const char* name) { return glGetUniformLocation(m_progFreeFloatingPoints, name); };
    const GLint alpha = uniform("alpha");
    glUniform1f(uniform("pointSize"), LimitedSize(m_fPointCloudSize, m_nHeight * m_viewMatrices.Projection()[5]));
    glUniform1f(uniform("windowHeight"), static_cast<float>(m_nHeight));
    glUniform1f(alpha, 1.0f);
    glEnable(GL_VERTEX_PROGRAM_POINT_SIZE);  // the shader writes gl_PointSize
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);

    // Opaque sets first, so that translucent ones blend with them. Their own alpha is not used.
    for (const auto& [id, points] : m_mapFreePoints)
        if (points.CanBeDrawn() && IsOpaque(points)) DrawSet(points);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBlendEquation(GL_FUNC_ADD);
    for (const auto& [id, points] : m_mapFreePoints) {
        if (!points.CanBeDrawn() || IsOpaque(points)) continue;
        glUniform1f(alpha, points.alpha);
        DrawSet(points);
    }

    // Client state, vertex array and program are not part of the attribute stack.
    glBindVertexArray(0);
    glDisableVertexAttribArray(1);
    glDisableVertexAttribArray(0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glUseProgram(0);
    glPopAttrib();
}
