// The picture of the whole scene in a fixed size, whatever the window: drawn once more into the off-screen target and
// read back. The target is made in Shadows.cpp, the order of rows and channels in FlipPixels.h.
#include <GL/glew.h>

#include <vector>

#include "control/ScenePaneCtrl.h"
#include "render/FlipPixels.h"

namespace {

constexpr std::int32_t kPictureSize = 2048;     // of both sides; that of the off-screen target
constexpr float kMargin = 2.0f;                 // around the scene's box, scene units
constexpr std::int32_t kMeshGouraudShaded = 3;  // whatever the draw mode of the window
constexpr float kPictureLineWidth = 8.0f;       // the window's 3 would hardly be seen at this size
constexpr int kPictureNeedleText = 2;           // the large font, for the same reason

/// One row of read-back pixels, r, g, b, a. A vector of these is zeroed, aligned and without gaps.
struct alignas(32) PictureRow {
    std::uint8_t bytes[4 * kPictureSize];
};

Box WidenedBox(Box box) {
    for (std::size_t i = 0; i < 3; ++i) {
        box.min[i] -= kMargin;
        box.max[i] += kMargin;
    }
    return box;
}

/// While it lives the control looks at its whole scene, from the window's side and with the window's zoom, in the size
/// of the picture. Also a draw that runs out of memory must not leave the window with this view.
class WholeSceneView {
public:
    explicit WholeSceneView(CKV_ScenePaneCtrl& control) : m_control(control) {
        glGetIntegerv(GL_VIEWPORT, m_viewport);
        const Box box = WidenedBox(control.GetSceneBoundingBox());
        control.m_fViewCenter = control.m_fRotationCenter = box.Center();
        control.m_fSceneSize = box.Diagonal();
        control.SetupViewMatrices();
        control.InvalidateControl(false);

        control.m_nWidth = control.m_nHeight = kPictureSize;
        control.UpdateViewport();
    }
    ~WholeSceneView() {
        m_control.m_nWidth = m_width;
        m_control.m_nHeight = m_height;
        m_control.MakeContextCurrent();
        if (m_height < 1) {  // a window without height has no shape to take the aspect from: it keeps its last one
            glViewport(m_viewport[0], m_viewport[1], m_viewport[2], m_viewport[3]);
            m_control.m_fAspectX = m_aspectX;
            m_control.m_fAspectY = m_aspectY;
        }
        m_control.UpdateViewport();
        m_control.m_fViewCenter = m_viewCenter;
        m_control.m_fRotationCenter = m_rotationCenter;
        m_control.m_fSceneSize = m_sceneSize;
        m_control.SetupViewMatrices();
        m_control.InvalidateControl(false);
    }
    WholeSceneView(const WholeSceneView&) = delete;
    WholeSceneView& operator=(const WholeSceneView&) = delete;

private:
    CKV_ScenePaneCtrl& m_control;
    const Float3 m_viewCenter = m_control.m_fViewCenter, m_rotationCenter = m_control.m_fRotationCenter;
    const float m_sceneSize = m_control.m_fSceneSize;
    const std::int32_t m_width = m_control.m_nWidth, m_height = m_control.m_nHeight;
    const float m_aspectX = m_control.m_fAspectX, m_aspectY = m_control.m_fAspectY;
    GLint m_viewport[4] = {};
};

/// Drawing goes into the off-screen target while it lives.
class OffscreenTarget {
public:
    explicit OffscreenTarget(std::uint32_t framebuffer) { glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); }
    ~OffscreenTarget() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDisable(GL_COLOR_MATERIAL);
        glDisable(GL_DEPTH_TEST);
    }
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;
};

}  // namespace

void CKV_ScenePaneCtrl::GetScreenShotResolution(std::int32_t* width, std::int32_t* height) {
    *width = kPictureSize;
    *height = kPictureSize;
}

void CKV_ScenePaneCtrl::CaptureScreenShot(std::uint32_t* buffer) {
    std::vector<PictureRow> rows(kPictureSize);  // first of all: without memory nothing changes
    {
        const std::lock_guard lock(*g_drawLock);
        if (MakeContextCurrent()) {
            RenderOffscreen();
            glBindFramebuffer(GL_FRAMEBUFFER, m_nOffscreenFbo);
            glReadPixels(0, 0, kPictureSize, kPictureSize, GL_RGBA, GL_UNSIGNED_BYTE, rows.data());
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
        }
    }
    constexpr std::size_t kPixels = std::size_t{kPictureSize} * kPictureSize;
    FlipToArgb({rows.front().bytes, 4 * kPixels}, kPictureSize, {buffer, kPixels});
}

void CKV_ScenePaneCtrl::RenderOffscreen() {
    const WholeSceneView view(*this);
    const OffscreenTarget target(m_nOffscreenFbo);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawBackground();
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_DEPTH_TEST);
    for (const auto& mesh : m_vpMeshes)
        if (mesh->m_iVisible != 0) mesh->Draw(kMeshGouraudShaded, false);
    if (m_bLine3DDrawingMode != 0) DrawLines3D(kPictureLineWidth);
    if (m_bNeedleDrawingMode != 0) DrawNeedles(kPictureNeedleText);
}
