// Between window and world, by the OpenGL matrices of the camera. Window y runs downward, OpenGL's upward.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <cstdint>
#include <limits>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"

namespace {

struct WindowPoint {
    double x = 0.0, y = 0.0, depth = 0.0;  // y upward
    bool isProjected = false;
};

/// By the matrices of the control; the depth is 0 at the near plane and 1 at the far plane. All is 0 without a context.
WindowPoint Project(CKV_ScenePaneCtrl& control, double x, double y, double z) {
    WindowPoint p;
    if (!control.MakeContextCurrent()) return p;
    ViewMatrices& m = control.m_viewMatrices;
    p.isProjected = gluProject(x, y, z, m.ModelView().data(), m.Projection().data(), m.Viewport().data(), &p.x, &p.y,
                               &p.depth) == GLU_TRUE;
    return p;
}

using Limits = std::numeric_limits<std::int32_t>;

/// False for a value that is not a number.
bool HasPixel(double value) { return value > Limits::min() - 1.0 && value < Limits::max() + 1.0; }

/// Truncated towards 0. What has no pixel is the smallest one.
std::int32_t ToPixel(double value) { return HasPixel(value) ? static_cast<std::int32_t>(value) : Limits::min(); }

}  // namespace

void CKV_ScenePaneCtrl::ComputeFrameMatrix(const ViewFrame& frame, float* matrix) {
    if (!MakeContextCurrent()) return;
    // OpenGL multiplies, on the modelview stack; stack and matrix mode are put back.
    GLint mode = GL_MODELVIEW;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    const OrthoExtents extents = ComputeOrthoExtents(m_fZoom, m_fSceneSize, m_fAspectX, m_fAspectY);
    MultiplyOrtho(-extents.halfWidth, extents.halfWidth, -extents.halfHeight, extents.halfHeight, -extents.depth,
                  extents.depth);
    const Float3 eye = EyePoint(frame, m_fSceneSize);
    gluLookAt(eye[0], eye[1], eye[2], frame.center[0], frame.center[1], frame.center[2], frame.wy[0], frame.wy[1],
              frame.wy[2]);
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
    glPopMatrix();
    glMatrixMode(static_cast<GLenum>(mode));
}

bool CKV_ScenePaneCtrl::ProjectPoint(float x, float y, float z, std::int32_t* windowX, std::int32_t* windowY) {
    float depth = 0.0f;
    return ProjectPointWithDepth(x, y, z, windowX, windowY, &depth);
}

bool CKV_ScenePaneCtrl::ProjectPointWithDepth(float x, float y, float z, std::int32_t* windowX, std::int32_t* windowY,
                                              float* depth) {
    const WindowPoint p = Project(*this, x, y, z);
    // Truncated towards 0, y after a subtraction in float: both are part of the public result.
    const double downwardY = static_cast<float>(m_nHeight) - static_cast<float>(p.y);
    *windowX = ToPixel(p.x);
    *windowY = ToPixel(downwardY);
    *depth = static_cast<float>(p.depth);
    return p.isProjected && HasPixel(p.x) && HasPixel(downwardY);
}

// Without rounding, for the drags of the clip plane, which measure directions of less than a pixel.
void CKV_ScenePaneCtrl::ProjectPointDouble(double x, double y, double z, double* windowX, double* windowY) {
    const WindowPoint p = Project(*this, x, y, z);
    *windowX = p.x;
    *windowY = m_nHeight - p.y;
}

// The pixel's corner, not its centre: gluProject() of the result gives back whole window coordinates.
int CKV_ScenePaneCtrl::UnprojectPoint(std::int32_t windowX, std::int32_t windowY, float depth, float* x, float* y,
                                      float* z) {
    if (!MakeContextCurrent()) return 0;
    ViewMatrices& m = m_viewMatrices;
    GLdouble world[3] = {};
    // 0 when the product of the matrices has no inverse, such as for a scene without extent.
    const int status = gluUnProject(windowX, static_cast<double>(m_nHeight) - windowY, depth, m.ModelView().data(),
                                    m.Projection().data(), m.Viewport().data(), &world[0], &world[1], &world[2]);
    if (status == 0) return 0;
    *x = static_cast<float>(world[0]);
    *y = static_cast<float>(world[1]);
    *z = static_cast<float>(world[2]);
    return status;
}
