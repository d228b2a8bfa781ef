// The picture of the whole scene in a fixed size, whatever the size of the window: the scene is drawn into the
// off-screen framebuffer and read back. Shadows.cpp makes the framebuffer; FlipPixels.h converts rows and channels.
#include <GL/glew.h>

#include <vector>

#include "control/ScenePaneCtrl.h"
#include "render/FlipPixels.h"
#include "render/MeshBuffers.h"
#include "render/MeshDraw.h"

namespace {

constexpr float kMargin = 2.0f;            // around the box of the scene, scene units
constexpr float kPictureLineWidth = 8.0f;  // pixels; the 3 of the window would be hardly visible at this size
constexpr int kPictureNeedleFont = 2;      // 100 pixels, for the same reason

/// One row of pixels as glReadPixels() returns them: bytes r, g, b, a. A vector of rows is zeroed, aligned and without
/// padding between the rows.
struct alignas(32) PictureRow {
    std::uint8_t bytes[4 * kOffscreenSize];
};

Box WidenedBox(Box box) {
    for (std::size_t i = 0; i < 3; ++i) {
        box.min[i] -= kMargin;
        box.max[i] += kMargin;
    }
    return box;
}

/// Sets the view of the picture during its lifetime: the whole scene, in the viewing direction and with the zoom of the
/// window. A guard object, because an exception in a draw must restore the view of the window, too.
class WholeSceneView {
public:
    explicit WholeSceneView(CKV_ScenePaneCtrl& control) : m_control(control) {
        glGetIntegerv(GL_VIEWPORT, m_viewport);
        // Centre and scale: the diagonal of the box fills the picture at zoom 1.
        const Box box = WidenedBox(control.GetPictureBoundingBox());
        control.m_fViewCenter = control.m_fRotationCenter = box.Center();
        control.m_fSceneSize = box.Diagonal();
        control.SetupViewMatrices();
        control.InvalidateControl(false);

        // Size and aspect of the picture.
        control.m_nWidth = control.m_nHeight = kOffscreenSize;
        control.UpdateViewport();
    }
    ~WholeSceneView() {
        // Size and aspect first: the matrices depend on them.
        m_control.m_nWidth = m_width;
        m_control.m_nHeight = m_height;
        m_control.MakeContextCurrent();
        m_control.UpdateViewport();
        if (m_width < 0 || m_height < 1) {  // it sets no viewport then, and no meaningful aspect: restore the last ones
            glViewport(m_viewport[0], m_viewport[1], m_viewport[2], m_viewport[3]);
            m_control.m_viewMatrices.ForgetViewport();
            m_control.m_fAspectX = m_aspectX;
            m_control.m_fAspectY = m_aspectY;
        }
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

/// Binds the off-screen framebuffer during its lifetime. Afterwards the framebuffer of frames is bound, and colour
/// material and depth test are disabled as a frame expects them.
class OffscreenTarget {
public:
    explicit OffscreenTarget(const RenderState& state) : m_frameTarget(state.m_frameTarget) {
        glBindFramebuffer(GL_FRAMEBUFFER, state.m_nOffscreenFbo);
    }
    ~OffscreenTarget() {
        m_frameTarget.Bind();
        glDisable(GL_COLOR_MATERIAL);
        glDisable(GL_DEPTH_TEST);
    }
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;

private:
    const FrameTarget& m_frameTarget;
};

}  // namespace

void CKV_ScenePaneCtrl::GetScreenShotResolution(std::int32_t* width, std::int32_t* height) {
    *width = kOffscreenSize;
    *height = kOffscreenSize;
}

void CKV_ScenePaneCtrl::CaptureScreenShot(std::uint32_t* buffer) {
    std::vector<PictureRow> rows(kOffscreenSize);  // before anything changes, because it may throw
    {
        const std::lock_guard lock(*g_drawLock);
        if (MakeContextCurrent()) {
            RenderOffscreen();
            glBindFramebuffer(GL_FRAMEBUFFER, m_nOffscreenFbo);
            glReadPixels(0, 0, kOffscreenSize, kOffscreenSize, GL_RGBA, GL_UNSIGNED_BYTE, rows.data());
            m_frameTarget.Bind();
        }
    }
    // Without a context the rows are still zero: the host receives a transparent picture.
    constexpr std::size_t kPixels = std::size_t{kOffscreenSize} * kOffscreenSize;
    FlipToArgb({rows.front().bytes, 4 * kPixels}, kOffscreenSize, {buffer, kPixels});
    ReportFailedBuffers(m_vpMeshes);
}

// Always shaded and in full detail, without shadows, clip plane, selection and overlays.
void CKV_ScenePaneCtrl::RenderOffscreen() {
    const WholeSceneView view(*this);
    const OffscreenTarget target(*this);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawBackground();
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_DEPTH_TEST);
    {
        MeshBatch batch;
        for (const auto& mesh : m_vpMeshes)
            if (mesh->m_iVisible != 0) mesh->Draw(KV_ScenePane::DrawModeGouraud, false);
    }
    if (m_bLine3DDrawingMode != 0) DrawLines3D(kPictureLineWidth);
    if (m_bNeedleDrawingMode != 0) DrawNeedles(kPictureNeedleFont);
}
