// One frame, from the paint request to the swap: what is drawn, in which order, and what keeps a frame from starting.
// The objects draw themselves (MeshDraw.cpp); the shadow pass is Shadows.cpp, the background Decorations.cpp.
#include <GL/glew.h>

#include <algorithm>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"
#include "render/ReadFrame.h"

namespace {

constexpr std::int32_t kMeshFlatShaded = 2;
constexpr std::int32_t kMeshBoundingBox = 4;
constexpr float kOpaqueAlpha = 0.99f;  // below it a point set is blended

void DrawVisible(const std::vector<std::shared_ptr<Mesh>>& meshes, std::int32_t mode, bool reduced) {
    for (const auto& mesh : meshes)
        if (mesh->m_iVisible != 0) mesh->Draw(mode, reduced);
}

/// Bytes of a row of BGR pixels, as OpenGL pads it.
std::size_t FrozenRowBytes(std::int32_t width) { return (static_cast<std::size_t>(width) + 1) * 3 / 4 * 4; }

void DrawFrozenImage(const std::uint8_t* pixels, std::int32_t width, std::int32_t height) {
    glPushAttrib(GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    {
        const FlatView view(1, 1);
        glRasterPos3f(-1, -1, 0);
        glDrawPixels(width, height, GL_BGR, GL_UNSIGNED_BYTE, pixels);
    }
    glPopAttrib();
}

}  // namespace

void CKV_ScenePaneCtrl::OnPaint() {
    if (m_bBlockPaint != 0) return;  // the request stays pending
    m_pWindow->BeginPaint();
    OnDraw();
    m_pWindow->EndPaint();
}

// No guard object: should a step run out of memory, the lock stays held and no later frame draws on a broken state.
void CKV_ScenePaneCtrl::OnDraw() {
    g_drawLock->lock();
    if (m_bInDraw != 0) {  // the lock lets its own thread in again
        g_drawLock->unlock();
        return;
    }
    m_bInDraw = 1;
    if (MakeContextCurrent()) {
        const bool sizeChanged = TakeWindowSize();
        if (m_bAnimationRunning != 0) AnimationStep();
        DrawSceneOrFrozenImage(sizeChanged);
        DrawOverScene();
        if (m_pCapture != nullptr) *m_pCapture = {m_nWidth, m_nHeight, ReadBackBuffer(m_nWidth, m_nHeight)};
        m_pWindow->SwapBuffers();
    }
    m_bInDraw = 0;
    g_drawLock->unlock();
}

bool CKV_ScenePaneCtrl::TakeWindowSize() {
    const WindowSize size = m_pWindow->ClientSize();
    if (size.width == m_nWidth && size.height == m_nHeight) return false;
    m_nWidth = size.width;
    m_nHeight = size.height;
    if (m_nHeight > 0) {
        glViewport(0, 0, m_nWidth, m_nHeight);
        ApplyAspect();
        SetupViewMatrices();
    }
    return true;
}

void CKV_ScenePaneCtrl::DrawSceneOrFrozenImage(bool sizeChanged) {
    if (m_pFrozenImage == nullptr) {
        DrawScene();
    } else if (sizeChanged) {
        DrawScene();
        FreezeFrame();
    } else {
        DrawFrozenImage(m_pFrozenImage.get(), m_nFrozenWidth, m_nFrozenHeight);
    }
}

void CKV_ScenePaneCtrl::DrawOverScene() {
    if (m_nInteractionMode == ModeLasso) DrawLassoPolygon();
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->DrawInteraction();
    if (m_bLine3DDrawingMode != 0) DrawLines3D(3.0f);
    if (m_bNeedleDrawingMode != 0) DrawNeedles(1);
    if (m_pCutSession != nullptr) DrawCutSession();
    if (m_nPickMode == KV_ScenePane::PickModeCross) DrawCross();
    if (m_nShowArrow == 1) DrawLightingArrow();
    if (m_nShowAxes == 1) DrawAxes();
    DrawOverlays();
    DrawFreePoints();
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
    glReadPixels(0, 0, m_nFrozenWidth, m_nFrozenHeight, GL_BGR, GL_UNSIGNED_BYTE, m_pFrozenImage.get());
}

void CKV_ScenePaneCtrl::DrawScene() {
    const bool reduced = m_bMoveReduced == 1 && m_bMoving != 0;
    glClear(GL_DEPTH_BUFFER_BIT);
    DrawBackground();
    glColorMaterial(GL_FRONT, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    const bool planeIsDragged = m_nInteractionMode == ModePlaneHandle || m_nInteractionMode == ModePlaneRotate ||
                                m_nInteractionMode == ModePlaneMove;
    if (m_bClipPlaneActive != 0 && !planeIsDragged) m_clipPlane.EnableClipping();

    for (const auto& mesh : m_vpMeshes) mesh->SetPointSize(m_fPointCloudSize);
    if (m_nDrawMode == KV_ScenePane::DrawModeShadowMap)
        DrawShadowMapView();
    else if (m_bShadowEnabled != 0)
        DrawObjectsWithShadows(reduced);
    else if (m_nDrawMode == KV_ScenePane::DrawModePerPixel)
        DrawObjectsPerPixel(reduced);
    else
        DrawVisible(m_vpMeshes, m_nDrawMode, reduced);
    Plane::DisableClipping();

    const bool lassoIsDrawn = m_nInteractionMode == ModeLasso || m_nInteractionMode == ModeMaskLasso;
    if (m_bClipPlaneVisible != 0 && !lassoIsDrawn) {
        glPushAttrib(GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        DrawClipPlane();
        glPopAttrib();
    }
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glColor3f(0.8f, 0.0f, 1.0f);
    if (m_bPickPointValid != 0 && m_nPickMode == KV_ScenePane::PickModePoints) DrawPickPointSpheres();
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT0);
    glDisable(GL_COLOR_MATERIAL);
    for (Mesh* const mesh : m_vpSelection) mesh->Draw(kMeshBoundingBox, false);  // hidden ones too
}

void CKV_ScenePaneCtrl::DrawShadowMapView() {
    float projection[16], modelView[16];
    RenderShadowMap(projection, modelView);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, m_nShadowTexture);
    glUseProgram(m_progQuad);
    glUniform1i(glGetUniformLocation(m_progQuad, "tex"), 0);
    glBegin(GL_TRIANGLES);
    glVertex3f(-1, -1, 0);
    glVertex3f(1, -1, 0);
    glVertex3f(-1, 1, 0);
    glVertex3f(-1, 1, 0);
    glVertex3f(1, -1, 0);
    glVertex3f(1, 1, 0);
    glEnd();
    glUseProgram(0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CKV_ScenePaneCtrl::DrawObjectsWithShadows(bool reduced) {
    float projection[16], modelView[16];
    RenderShadowMap(projection, modelView);
    // A textured mesh binds its picture on unit 0 and leaves none there: beside one, the shadow map stands on unit 1.
    const bool anyPicture =
        std::ranges::any_of(m_vpMeshes, [](const auto& mesh) { return mesh->m_pTexture != nullptr; });
    const int mapUnit = anyPicture ? 1 : 0;
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(mapUnit));
    glBindTexture(GL_TEXTURE_2D, m_nShadowTexture);
    glActiveTexture(GL_TEXTURE0);
    glUseProgram(m_progShadow);
    const auto uniform = [this](const char* name) { return glGetUniformLocation(m_progShadow, name); };
    glUniform1i(uniform("ShadowMap"), mapUnit);
    glUniformMatrix4fv(uniform("shadowProjection"), 1, GL_FALSE, projection);
    glUniformMatrix4fv(uniform("shadowModelView"), 1, GL_FALSE, modelView);
    glUniform3fv(uniform("shadowColor"), 1, m_fShadowColor.data());
    glUniform1i(uniform("clipPlane0Enabled"), m_bClipPlaneActive != 0 ? 1 : 0);
    const std::array<double, 4> plane = m_clipPlane.GetEquation();
    glUniform4f(uniform("clipPlaneEquation0"), static_cast<float>(plane[0]), static_cast<float>(plane[1]),
                static_cast<float>(plane[2]), static_cast<float>(plane[3]));
    DrawVisible(m_vpMeshes, m_nDrawMode, reduced);
    glUseProgram(0);
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(mapUnit));
    glBindTexture(GL_TEXTURE_2D, 0);
    glActiveTexture(GL_TEXTURE0);
}

void CKV_ScenePaneCtrl::DrawObjectsPerPixel(bool reduced) {
    const GLint texture = glGetUniformLocation(m_progTexPerPixel, "tex");
    for (const auto& mesh : m_vpMeshes) {
        if (mesh->m_iVisible == 0) continue;
        glUseProgram(mesh->m_pTexture ? m_progTexPerPixel : m_progPerPixel);
        if (mesh->m_pTexture) glUniform1i(texture, 0);
        mesh->Draw(kMeshFlatShaded, reduced);
    }
    glUseProgram(0);
}

void CKV_ScenePaneCtrl::DrawFreePoints() {
    if (m_mapFreePoints.empty()) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glUseProgram(m_progFreeFloatingPoints);
    const auto uniform = [this](const char* name) { return glGetUniformLocation(m_progFreeFloatingPoints, name); };
    const GLint alpha = uniform("alpha");
    glUniform1f(uniform("pointSize"), m_fPointCloudSize);
    glUniform1f(uniform("windowHeight"), static_cast<float>(m_nHeight));
    glUniform1f(alpha, 1.0f);
    glEnable(GL_VERTEX_PROGRAM_POINT_SIZE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);

    const auto drawSet = [](const FreePointSet& points) {
        glBindVertexArray(points.vertexArray);
        glDrawArrays(GL_POINTS, 0, points.numPoints);
    };
    for (const auto& [id, points] : m_mapFreePoints)
        if (points.visible != 0 && !(points.alpha < kOpaqueAlpha)) drawSet(points);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBlendEquation(GL_FUNC_ADD);
    for (const auto& [id, points] : m_mapFreePoints) {
        if (points.visible == 0 || !(points.alpha < kOpaqueAlpha)) continue;
        glUniform1f(alpha, points.alpha);
        drawSet(points);
    }
    glBindVertexArray(0);
    glDisableVertexAttribArray(1);
    glDisableVertexAttribArray(0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glUseProgram(0);
    glPopAttrib();
}
