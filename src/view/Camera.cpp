// The live camera: from the frame to the OpenGL matrices, the fit to the scene, the canned views, pan and zoom. The
// maths is view/ViewFrame.h.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <algorithm>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"
#include "render/ShadowCamera.h"

namespace {

/// What the fit of the view is made from.
struct FittedScene {
    Box box;                          ///< union of what counts; empty when nothing does
    bool hasUnplacedObjects = false;  ///< some object would count if it had finite coordinates
};

FittedScene FindFittedScene(const CKV_ScenePaneCtrl& control) {
    FittedScene scene;
    // Bare point clouds do not count: only meshes with triangles, and the free points of the host.
    for (const auto& mesh : control.m_vpMeshes) {
        if (mesh->m_iVisible == 0 || mesh->m_vTriangles.empty()) continue;
        if (!mesh->HasPosition()) {
            scene.hasUnplacedObjects = true;
            continue;
        }
        const float* b = mesh->m_fBoundingBox;
        scene.box.Merge({b[0], b[2], b[4]}, {b[1], b[3], b[5]});
    }
    for (const auto& [id, points] : control.m_mapFreePoints)
        if (points.visible != 0) scene.box.Merge(points.boxMin, points.boxMax);
    return scene;
}

/// Also a box that is inverted along one axis is empty.
Box FixedBoxIfEmpty(const Box& box) { return box.IsEmpty() ? Box{{-50, -50, -50}, {50, 50, 50}} : box; }

}  // namespace

ViewFrame CKV_ScenePaneCtrl::LiveFrame() const { return {m_fAxisX, m_fAxisY, m_fAxisZ, m_fViewCenter}; }

// Members only: the OpenGL matrices follow with SetupViewMatrices().
void CKV_ScenePaneCtrl::SetLiveFrame(const ViewFrame& frame) {
    m_fAxisX = frame.wx;
    m_fAxisY = frame.wy;
    m_fAxisZ = frame.wz;
    m_fViewCenter = frame.center;
}

void CKV_ScenePaneCtrl::SetupViewMatrices() {
    const bool hasContext = MakeContextCurrent();
    m_bObjectDepths = false;
    // The members first: they hold without a context as well.
    ViewFrame frame = LiveFrame();
    SnapFrame(frame);
    SetLiveFrame(frame);
    m_savedView = frame;
    // The shadow camera looks at the same centre, from beside the viewer.
    const ShadowLookAt shadow = ComputeShadowLookAt(frame.wy.data(), frame.wz.data(), frame.center.data());
    std::copy_n(shadow.eye, 3, m_fShadowEye.begin());
    std::copy_n(shadow.center, 3, m_fShadowCenter.begin());
    std::copy_n(shadow.up, 3, m_fShadowUp.begin());
    if (!hasContext) return;

    // Projection, then modelview; the matrix mode is left at modelview for the frame.
    const OrthoExtents extents = ComputeOrthoExtents(m_fZoom, m_fSceneSize, m_fAspectX, m_fAspectY);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    MultiplyOrtho(-extents.halfWidth, extents.halfWidth, -extents.halfHeight, extents.halfHeight, -extents.depth,
                  extents.depth);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const Float3 eye = EyePoint(frame, m_fSceneSize);
    gluLookAt(eye[0], eye[1], eye[2], frame.center[0], frame.center[1], frame.center[2], frame.wy[0], frame.wy[1],
              frame.wy[2]);
    m_viewMatrices.SetInputs(ViewMatrices::InputsOf(extents, eye, frame));
    // OpenGL transforms a light's position by the modelview matrix in force: the light turns with the camera.
    const Float3 light = HeadLightDirection(frame);
    const GLfloat position[4] = {light[0], light[1], light[2], 0.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, position);
}

void CKV_ScenePaneCtrl::ApplyAspect() {
    const AspectFactors aspect = ComputeAspect(m_nWidth, m_nHeight);
    m_fAspectX = aspect.x;
    m_fAspectY = aspect.y;
}

void CKV_ScenePaneCtrl::UpdateViewport() {
    if (m_nHeight < 1) return;  // a minimised window has no aspect
    if (MakeContextCurrent() && m_nWidth >= 0) glViewport(0, 0, m_nWidth, m_nHeight);
    m_viewMatrices.ForgetViewport();
    ApplyAspect();
    SetupViewMatrices();
}

Box CKV_ScenePaneCtrl::GetSceneBoundingBox() const { return FixedBoxIfEmpty(FindFittedScene(*this).box); }

Box CKV_ScenePaneCtrl::GetPictureBoundingBox() const {
    Box box = FindFittedScene(*this).box;
    if (m_bLine3DDrawingMode != 0)
        for (const Line3D& line : m_vLines3D)
            for (const Float3& point : line.points) box.MergeIfFinite(point);
    if (m_bNeedleDrawingMode != 0) {
        for (const Needle& needle : m_vNeedles) {
            box.MergeIfFinite(needle.pin);
            box.MergeIfFinite(needle.head);
        }
    }
    return FixedBoxIfEmpty(box);
}

// Keeps the directions of the view. The fit alone moves the pivot of the free rotation.
void CKV_ScenePaneCtrl::FitViewToScene() {
    m_fZoom = m_fDefaultZoom;
    const FittedScene scene = FindFittedScene(*this);
    const Box box = FixedBoxIfEmpty(scene.box);
    m_fViewCenter = m_fRotationCenter = box.Center();
    m_fSceneSize = box.Diagonal();

    // The plane keeps its direction, moves to the foot of the new centre and covers the box; its handles show again.
    // Among objects that are nowhere it stays where it is: the fixed box is not theirs.
    const Float3 extents = box.Extents();
    if (!scene.box.IsEmpty() || !scene.hasUnplacedObjects)
        m_clipPlane.SetCenter(m_clipPlane.ProjectOntoPlane(ToDouble3(m_fViewCenter)));
    m_clipPlane.SetRadiusFromExtent(0.5 * std::max({extents[0], extents[1], extents[2]}));
    m_clipPlane.m_bHighlighted = false;
    ShowPlaneHandles(PlaneHandles::Both);

    SetupViewMatrices();
    InvalidateControl(false);
}

void CKV_ScenePaneCtrl::PanView(std::int32_t dx, std::int32_t dy) {
    m_fViewCenter =
        PannedCenter(LiveFrame(), {m_fSceneSize, m_fZoom, m_fAspectX, m_fAspectY, m_nWidth, m_nHeight}, dx, dy);
    SetupViewMatrices();
    // The direction is the same as before a pan; tracing hosts are notified of every drag all the same.
    if (m_bTracingMode != 0) FireViewDirectionChanged();
    RefreshControl();
}

// At a limit the zoom stays, and the repaint is requested all the same.
void CKV_ScenePaneCtrl::ZoomView(std::int32_t dx, std::int32_t dy) {
    const float zoom = ZoomedBy(m_fZoom, dx, dy);
    if (zoom != m_fZoom) {
        m_fZoom = zoom;
        SetupViewMatrices();
    }
    RefreshControl();
}

// The maths is FindAxisHit() in view/ViewFrame.h; this finds the axis through the centre pixel.
std::optional<Float3> CKV_ScenePaneCtrl::FindViewAxisHit(const Float3& direction) {
    Float3 origin{};
    // Window depth 0.1 lies in front of the fitted scene.
    if (UnprojectPoint(m_nWidth / 2, m_nHeight / 2, 0.1f, &origin[0], &origin[1], &origin[2]) == 0) return std::nullopt;
    return FindAxisHit(m_vpMeshes, origin, direction);
}

void CKV_ScenePaneCtrl::FireViewDirectionChanged() {
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::ViewDirectionChanged, m_fAxisZ[0], m_fAxisZ[1], m_fAxisZ[2]);
}

void CKV_ScenePaneCtrl::SetViewMode(std::int16_t mode) {
    m_nViewMode = mode;  // also one outside the list: a centring click applies it again
    if (auto view = CannedView(mode)) {
        view->center = m_fViewCenter;
        SetLiveFrame(*view);
    }
    SetupViewMatrices();
    RefreshControl();
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2,
                                                                 float wy3, float cx, float cy, float cz, float zoom,
                                                                 std::int16_t /*freezeBBox*/) {
    const Float3 wx{wx1, wx2, wx3}, wy{wy1, wy2, wy3};
    // Rejected axes change nothing. Accepted ones are stored as they are: no renormalisation.
    if (!IsViewFrame(wx, wy)) return KV_ScenePane::kVariantFalse;
    SetLiveFrame({wx, wy, Cross(wx, wy), {cx, cy, cz}});
    m_fZoom = m_fDefaultZoom / std::min(std::max(zoom, 0.1f), 10.0f);
    SetupViewMatrices();
    if (m_bTracingMode != 0) FireViewDirectionChanged();
    InvalidateControl(true);
    return KV_ScenePane::kVariantTrue;
}

// The reciprocal zoom alone, though SetViewParams() divides the default zoom by its argument: hosts rely on both.
void CKV_ScenePaneCtrl::GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx,
                                      float* cy, float* cz, float* zoom) {
    *wx1 = m_fAxisX[0], *wx2 = m_fAxisX[1], *wx3 = m_fAxisX[2];
    *wy1 = m_fAxisY[0], *wy2 = m_fAxisY[1], *wy3 = m_fAxisY[2];
    *cx = m_fViewCenter[0], *cy = m_fViewCenter[1], *cz = m_fViewCenter[2];
    *zoom = 1.0f / m_fZoom;
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::GetViewDirection(float* px, float* py, float* pz, float* vx,
                                                                    float* vy, float* vz) {
    // Without a hit the outputs stay untouched.
    const auto hit = FindViewAxisHit(m_fAxisZ);
    if (!hit) return KV_ScenePane::kVariantFalse;
    *px = (*hit)[0], *py = (*hit)[1], *pz = (*hit)[2];
    *vx = m_fAxisZ[0], *vy = m_fAxisZ[1], *vz = m_fAxisZ[2];
    return KV_ScenePane::kVariantTrue;
}

void CKV_ScenePaneCtrl::CenterView() { FitViewToScene(); }

void CKV_ScenePaneCtrl::SetDefaultZoomFactor(float newDefault) { m_fDefaultZoom = newDefault; }

void CKV_ScenePaneCtrl::TracingMode(std::int16_t on) { m_bTracingMode = on == 1; }
