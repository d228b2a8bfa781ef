// One frame, from the paint request to the swap: what is drawn, in which order, and what keeps a frame from starting.
// The objects draw themselves (MeshDraw.cpp); the depth pass of the shadows is in Shadows.cpp, the background in
// Decorations.cpp.
#include <GL/glew.h>

#include <algorithm>

#include "base/DebugOutput.h"
#include "base/PerformanceCounter.h"
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"
#include "render/MeshBuffers.h"
#include "render/MeshDraw.h"
#include "render/ReadFrame.h"

namespace {

constexpr float kWindowLineWidth = 3.0f;  // of 3D lines, pixels
constexpr int kWindowNeedleFont = 1;      // bold, 24 pixels

// ---- the frozen image

/// Bytes per row of BGR pixels: 3 per pixel, rounded up to the default pack and unpack alignment of 4.
std::size_t FrozenRowBytes(std::int32_t width) { return (static_cast<std::size_t>(width) + 1) * 3 / 4 * 4; }

void DrawFrozenImage(const std::uint8_t* pixels, std::int32_t width, std::int32_t height) {
    glPushAttrib(GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    {
        const FlatView view(1, 1);
        glRasterPos3f(-1, -1, 0);  // the lower left corner: rows run upward
        glDrawPixels(width, height, GL_BGR, GL_UNSIGNED_BYTE, pixels);
    }
    glPopAttrib();
}

// ---- the objects, by draw mode

/// Whether the objects are clipped by GL_CLIP_PLANE0. For a vertex shader that does not write gl_ClipVertex that is
/// undefined by OpenGL; drivers test gl_Position, in clip coordinates, against the plane in eye coordinates, and show
/// all or nothing. So it is off for the shadow program, which discards instead, and for the passes of the shadow map.
bool ClipsByOpenGl(const CKV_ScenePaneCtrl& control) {
    if (control.m_bClipPlaneActive == 0) return false;
    if (control.m_bShadowEnabled != 0 || control.m_nDrawMode == KV_ScenePane::DrawModeShadowMap) return false;
    // While the plane is dragged the objects are shown unclipped.
    const std::int32_t interaction = control.m_nInteractionMode;
    return interaction != ModePlaneHandle && interaction != ModePlaneRotate && interaction != ModePlaneMove;
}

/// Fills the window with the depths of the shadow map as shades of grey, for diagnosis.
void DrawShadowMapView(CKV_ScenePaneCtrl& control) {
    const ScopeExit restore([] {
        glUseProgram(0);
        glBindTexture(GL_TEXTURE_2D, 0);
    });
    float projection[16], modelView[16];  // not needed: the quad is in clip coordinates
    control.RenderShadowMap(projection, modelView);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, control.m_nShadowTexture);
    glUseProgram(control.m_progQuad);
    glUniform1i(glGetUniformLocation(control.m_progQuad, "tex"), 0);
    DrawWholeWindow();
}

/// Depth pass, then the objects in their draw mode with the shadow program. Modes that a mesh does not draw itself,
/// such as per pixel, show no objects.
void DrawObjectsWithShadows(CKV_ScenePaneCtrl& control, bool reduced) {
    // Texture unit of the shadow map. A textured mesh binds its image to unit 0 and unbinds it after its draw, so with
    // such a mesh in the scene the map must be on unit 1.
    const bool anyTexture =
        std::ranges::any_of(control.m_vpMeshes, [](const auto& mesh) { return mesh->m_pTexture != nullptr; });
    const int mapUnit = anyTexture ? 1 : 0;
    const ScopeExit restore([mapUnit] {
        glUseProgram(0);
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(mapUnit));
        glBindTexture(GL_TEXTURE_2D, 0);
        glActiveTexture(GL_TEXTURE0);
    });
    float projection[16], modelView[16];
    control.RenderShadowMap(projection, modelView);
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(mapUnit));
    glBindTexture(GL_TEXTURE_2D, control.m_nShadowTexture);
    glActiveTexture(GL_TEXTURE0);

    glUseProgram(control.m_progShadow);
    const auto uniform = [&control](const char* name) { return glGetUniformLocation(control.m_progShadow, name); };
    glUniform1i(uniform("ShadowMap"), mapUnit);
    glUniformMatrix4fv(uniform("shadowProjection"), 1, GL_FALSE, projection);
    glUniformMatrix4fv(uniform("shadowModelView"), 1, GL_FALSE, modelView);
    glUniform3fv(uniform("shadowColor"), 1, control.m_fShadowColor.data());
    control.m_clipPlane.SetClipUniforms(control.m_progShadow, control.m_bClipPlaneActive != 0);
    DrawVisible(control.m_vpMeshes, control.m_nDrawMode, reduced);
}

/// Each object with the program that fits it: with or without a texture.
void DrawObjectsPerPixel(CKV_ScenePaneCtrl& control, bool reduced) {
    const GLint texture = glGetUniformLocation(control.m_progTexPerPixel, "tex");
    const ScopeExit restore([] { glUseProgram(0); });
    MeshBatch batch;
    std::uint32_t inUse = 0;
    for (const auto& mesh : control.m_vpMeshes) {
        if (mesh->m_iVisible == 0) continue;
        const std::uint32_t program = mesh->m_pTexture ? control.m_progTexPerPixel : control.m_progPerPixel;
        if (program != inUse) {
            glUseProgram(program);
            if (mesh->m_pTexture) glUniform1i(texture, 0);
            inUse = program;
        }
        mesh->Draw(KV_ScenePane::DrawModeFlat, reduced);
    }
}

// ---- the steps of a frame

/// Whether the clip plane is part of the scene: not while a lasso is drawn.
bool ShowsClipPlane(const CKV_ScenePaneCtrl& control) {
    const std::int32_t interaction = control.m_nInteractionMode;
    return control.m_bClipPlaneVisible != 0 && interaction != ModeLasso && interaction != ModeMaskLasso;
}

bool ShowsPickPointSpheres(const CKV_ScenePaneCtrl& control) {
    return control.m_bPickPointValid != 0 && control.m_nPickMode == KV_ScenePane::PickModePoints;
}

/// Whether frames show the objects by a part of their points.
bool ShowsReduced(const CKV_ScenePaneCtrl& control) { return control.m_bMoveReduced == 1 && control.m_bMoving != 0; }

/// The visible objects in the draw mode of the control. GL_COLOR_MATERIAL is left enabled.
void DrawObjects(CKV_ScenePaneCtrl& control, bool reduced) {
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    const ScopeExit restore([] { Plane::DisableClipping(); });
    if (ClipsByOpenGl(control)) control.m_clipPlane.EnableClipping();

    for (const auto& mesh : control.m_vpMeshes) mesh->SetPointSize(control.m_fPointCloudSize * control.m_fScale);
    // The shadow map is drawn in place of the objects; shadows win over every other mode.
    if (control.m_nDrawMode == KV_ScenePane::DrawModeShadowMap)
        DrawShadowMapView(control);
    else if (control.m_bShadowEnabled != 0)
        DrawObjectsWithShadows(control, reduced);
    else if (control.m_nDrawMode == KV_ScenePane::DrawModePerPixel)
        DrawObjectsPerPixel(control, reduced);
    else
        DrawVisible(control.m_vpMeshes, control.m_nDrawMode, reduced);
}

/// Background, objects, clip plane, pick points, selection.
void DrawScene(CKV_ScenePaneCtrl& control) {
    glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);  // they are packed: clearing one reads the other
    control.DrawBackground();
    DrawObjects(control, ShowsReduced(control));
    if (ShowsClipPlane(control)) {
        glPushAttrib(GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        control.DrawClipPlane();
        glPopAttrib();
    }
    // Pick-point spheres: lit, purple.
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glColor3f(0.8f, 0.0f, 1.0f);
    if (ShowsPickPointSpheres(control)) control.DrawPickPointSpheres();
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT0);
    // The boxes of the selection, also of hidden objects. Without depth test: they are visible through the objects.
    glDisable(GL_COLOR_MATERIAL);
    MeshBatch batch;
    for (const auto& mesh : control.LiveSelection()) mesh->Draw(KV_ScenePane::DrawModeBoundingBoxes, false);
}

void DrawSceneOrFrozenImage(CKV_ScenePaneCtrl& control, bool sizeChanged) {
    if (control.m_pFrozenImage == nullptr) {
        DrawScene(control);
    } else if (sizeChanged) {  // the image fits no longer: freeze what the scene shows now
        DrawScene(control);
        control.FreezeFrame();
    } else {
        DrawFrozenImage(control.m_pFrozenImage.get(), control.m_nFrozenWidth, control.m_nFrozenHeight);
    }
}

/// What lies over the scene, the frozen one too. Later steps cover earlier ones.
void DrawOverScene(CKV_ScenePaneCtrl& control) {
    if (control.m_nInteractionMode == ModeLasso) control.DrawLassoPolygon();
    if (control.m_pInteractionDlg != nullptr) control.m_pInteractionDlg->DrawInteraction();
    if (control.m_bLine3DDrawingMode != 0) control.DrawLines3D(kWindowLineWidth * control.m_fScale);
    if (control.m_bNeedleDrawingMode != 0) control.DrawNeedles(kWindowNeedleFont);
    if (control.m_pCutSession != nullptr) control.DrawCutSession();
    if (control.m_nPickMode == KV_ScenePane::PickModeCross) control.DrawCross();
    if (control.m_nShowArrow == 1) control.DrawLightingArrow();
    if (control.m_nShowAxes == 1) control.DrawAxes();
    control.DrawOverlays();
    control.DrawFreePoints();
}

/// Whether a frame has anything beside the objects that writes depth.
bool WritesOtherDepths(const CKV_ScenePaneCtrl& control) {
    return ShowsClipPlane(control) || ShowsPickPointSpheres(control) || control.m_pInteractionDlg != nullptr ||
           control.m_nShowAxes == 1 || !control.m_mapFreePoints.empty() ||
           (control.m_bLine3DDrawingMode != 0 && !control.m_vLines3D.empty()) ||
           (control.m_bNeedleDrawingMode != 0 && !control.m_vNeedles.empty());
}

double SecondsSince(std::int64_t start) {
    return static_cast<double>(PerformanceCounter() - start) / static_cast<double>(PerformanceFrequency());
}

// No guard object: when a step runs out of memory the lock stays held and the flag set, so that no later frame draws
// from a broken state.
void DrawFrame(CKV_ScenePaneCtrl& control) {
    g_drawLock->lock();
    if (control.m_bInDraw != 0) {  // the lock is recursive: a step of this frame has asked for another one
        g_drawLock->unlock();
        return;
    }
    control.m_bInDraw = 1;
    if (control.MakeContextCurrent()) {
        const std::int64_t start = PerformanceCounter();
        const bool sizeChanged = control.StoreWindowSize();
        control.m_frameTarget.SetSize(control.m_nWidth, control.m_nHeight, control.m_nGlSamples);
        control.m_frameTarget.Bind();
        if (control.m_bAnimationRunning != 0) control.AnimationStep();
        DrawSceneOrFrozenImage(control, sizeChanged);
        // The depths of the window's own framebuffer may be lost at the swap.
        control.m_bObjectDepths = control.m_pFrozenImage == nullptr && control.m_frameTarget.Name() != 0 &&
                                  !ShowsReduced(control) && !WritesOtherDepths(control);
        DrawOverScene(control);
        if (control.m_pCapture != nullptr) {
            control.m_frameTarget.Resolve();
            *control.m_pCapture = {control.m_nWidth, control.m_nHeight, ReadFrame(control.m_nWidth, control.m_nHeight)};
        }
        // The surface of an off-screen window is shown to nobody: the copy would be for nothing.
        if (control.m_pWindow->NativeHandle() != 0) control.m_frameTarget.CopyToWindow();
        control.m_pWindow->SwapBuffers();
        ++control.m_nFrameCount;
        control.m_fFrameSeconds = SecondsSince(start);
    }
    control.m_bInDraw = 0;
    g_drawLock->unlock();
}

}  // namespace

void CKV_ScenePaneCtrl::OnPaint() {
    if (m_bBlockPaint != 0 || m_bClosed) return;  // the request stays pending
    DelayedDebugOutput delayed;                   // a sink may call any method, which must not happen inside a frame
    m_pWindow->BeginPaint();
    DrawFrame(*this);
    m_pWindow->EndPaint();
    ReportFailedBuffers(m_vpMeshes);
}

// Frames show the frozen image from here on, until it is freed.
void CKV_ScenePaneCtrl::FreezeFrame() {
    m_pFrozenImage.reset();
    if (!MakeContextCurrent()) return;
    const WindowSize size = m_pWindow->ClientSize();
    m_nFrozenWidth = std::max(size.width, 0);
    m_nFrozenHeight = std::max(size.height, 0);
    m_pFrozenImage =
        std::make_unique<std::uint8_t[]>(FrozenRowBytes(m_nFrozenWidth) * static_cast<std::size_t>(m_nFrozenHeight));
    m_frameTarget.Resolve();  // inside a frame too: what it has drawn so far
    glReadPixels(0, 0, m_nFrozenWidth, m_nFrozenHeight, GL_BGR, GL_UNSIGNED_BYTE, m_pFrozenImage.get());
}

bool CKV_ScenePaneCtrl::StoreWindowSize() {
    const WindowSize size = m_pWindow->ClientSize();
    if (size.width == m_nWidth && size.height == m_nHeight) return false;
    m_nWidth = size.width;
    m_nHeight = size.height;
    UpdateViewport();
    return true;
}

// What lies over the objects has written its own depth, and a changed view moves all of them.
void CKV_ScenePaneCtrl::DrawObjectDepths() {
    const std::lock_guard lock(*g_drawLock);
    StoreWindowSize();
    m_frameTarget.SetSize(m_nWidth, m_nHeight, m_nGlSamples);
    m_frameTarget.Bind();
    m_bObjectDepths = false;
    glPushAttrib(GL_COLOR_BUFFER_BIT);
    // Also without memory for the buffers of a mesh: a frame relies on what it finds.
    const ScopeExit restore([] {
        glDisable(GL_COLOR_MATERIAL);
        glPopAttrib();
    });
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    DrawObjects(*this, false);
    m_bObjectDepths = m_frameTarget.Name() != 0;
}
