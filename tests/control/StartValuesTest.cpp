// The start values of a new control.
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "support/ControlFixture.h"
#include "support/GlNow.h"

namespace {

std::unique_ptr<PaneWindow> AnyWindow() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    return MakePaneWindow(request);
}

TEST(NewControl, HasItsStartValuesOfContextAndInteraction) {
    const CKV_ScenePaneCtrl c(AnyWindow());
    EXPECT_EQ(c.m_bDrawMosaic, 0);
    EXPECT_EQ(c.m_nDrawMode, 3);
    EXPECT_EQ(c.m_bMoveReduced, 0);
    EXPECT_EQ(c.m_bMoving, 0);
    EXPECT_EQ(c.m_hRC, nullptr);
    EXPECT_EQ(c.m_pDC, nullptr);
    EXPECT_EQ(c.m_nGlMajorVersion, 3);
    EXPECT_EQ(c.m_nGlMinorVersion, 3);
    EXPECT_EQ(c.m_nGlSamples, 0);
    EXPECT_TRUE(c.m_mapFreePoints.empty());
    EXPECT_GE(c.m_mapFreePoints.bucket_count(), 8u);
    EXPECT_EQ(c.m_mapFreePoints.max_load_factor(), 1.0f);
    EXPECT_EQ(c.m_nInteractionMode, 0);
    EXPECT_EQ(c.m_nLastMouseX, 0);
    EXPECT_EQ(c.m_nLastMouseY, 0);
    EXPECT_EQ(c.m_nAllowMouse, 1);
    EXPECT_EQ(c.m_nIgdRotation, 0);
    EXPECT_EQ(c.m_bRollRotation, 0);
    EXPECT_EQ(c.m_nPickMode, 0);
    EXPECT_EQ(c.m_bPickPointValid, 0);
    EXPECT_TRUE(c.m_vPickPointSpheres.empty());
    EXPECT_EQ(c.m_mouseDispatch.mode, 1);
    EXPECT_EQ(c.m_pInteractionDlg, nullptr);
    EXPECT_EQ(c.m_bRightButtonPressed, 0);
    EXPECT_FALSE(c.m_bModified);
}

TEST(NewControl, HasItsStartValuesOfColoursAndSwitches) {
    const CKV_ScenePaneCtrl c(AnyWindow());
    EXPECT_EQ(c.m_bShadowEnabled, 0);
    EXPECT_EQ(c.m_fShadowColor, (Float3{0, 0, 0}));
    EXPECT_EQ(c.m_nCrossColor, 0xFFFFFFu);
    EXPECT_EQ(c.m_needleRender.needleLength, 10.0f);
    EXPECT_EQ(c.m_needleRender.headRadius, 1.0f);
    EXPECT_EQ(c.m_needleRender.headColor, 0xFFu);
    EXPECT_EQ(c.m_needleRender.pinSize, 0.33f);
    EXPECT_EQ(c.m_needleRender.pinColor, 0x505050u);
    EXPECT_EQ(c.m_needleRender.hitPointRadius, 0.25f);
    EXPECT_EQ(c.m_needleRender.hitPointColor, 0xFF0000u);
    EXPECT_EQ(c.m_needleRender.headSelectionColor, 0u);
    EXPECT_EQ(c.m_nArrowColor, 0xFFEAEAu);
    EXPECT_EQ(c.m_nShowArrow, 0);
    EXPECT_EQ(c.m_bTracingMode, 0);
    EXPECT_EQ(c.m_nFlipMouseButtons, 0);
    EXPECT_EQ(c.m_nRotationMode, 3);
    EXPECT_EQ(c.m_nArrowAngle, 0);
    EXPECT_EQ(c.m_nScanSkipVal, 1);
    EXPECT_EQ(c.m_nShowAxes, 0);
    EXPECT_EQ(c.m_strScanPath, L"");
    EXPECT_EQ(c.m_fConfidenceFilter, 0.0f);
    for (const std::uint32_t color : c.m_nBackgroundColors) EXPECT_EQ(color, 0x321919u);
    EXPECT_NE(c.m_pQuadric, nullptr);
    EXPECT_NE(c.m_pQuadric2, nullptr);
    EXPECT_NE(c.m_pQuadric, c.m_pQuadric2);
    EXPECT_EQ(c.m_fPickRadius, 500.0f);
}

TEST(NewControl, HasAnEmptySceneSeenFromTheFront) {
    const CKV_ScenePaneCtrl c(AnyWindow());
    EXPECT_TRUE(c.m_vpMeshes.empty());
    EXPECT_TRUE(c.m_vUndoStack.empty());
    EXPECT_TRUE(c.m_vpSelection.empty());
    EXPECT_TRUE(c.m_vpVariableObjects.empty());
    EXPECT_EQ(c.m_fAspectY, 1.0f);
    EXPECT_EQ(c.m_fAspectX, 1.0f);
    EXPECT_EQ(c.m_fDefaultZoom, 1.0f);
    EXPECT_EQ(c.m_fZoom, 1.0f);
    EXPECT_EQ(c.m_fSceneSize, 1000.0f);
    EXPECT_EQ(c.m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(c.m_fRotationCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(c.m_fAxisX, (Float3{1, 0, 0}));
    EXPECT_EQ(c.m_fAxisY, (Float3{0, 1, 0}));
    EXPECT_EQ(c.m_fAxisZ, (Float3{0, 0, 1}));
    EXPECT_EQ(c.m_nWidth, -1);
    EXPECT_EQ(c.m_nHeight, -1);
    EXPECT_TRUE(c.m_nViewMode < 0 || c.m_nViewMode > 7) << "no view is applied before the first SetViewMode";
}

TEST(NewControl, HasNoProgramsAndNoFramebuffers) {
    const CKV_ScenePaneCtrl c(AnyWindow());
    for (const std::uint32_t name :
         {c.m_progPerPixel, c.m_progTexPerPixel, c.m_progShadow, c.m_progDepth, c.m_progQuad, c.m_progCreateMask,
          c.m_progUseMask, c.m_progFreeFloatingPoints, c.m_nShadowFbo, c.m_nShadowTexture, c.m_nOffscreenColorRb,
          c.m_nOffscreenDepthRb, c.m_nOffscreenFbo})
        EXPECT_EQ(name, 0u);
    EXPECT_EQ(c.m_nShadowMapWidth, 2048);
    EXPECT_EQ(c.m_nShadowMapHeight, 2048);
}

TEST(NewControl, HasItsStartValuesOfMarkersCutsAndAnimation) {
    const CKV_ScenePaneCtrl c(AnyWindow());
    EXPECT_TRUE(c.m_vNeedles.empty());
    EXPECT_EQ(c.m_nMaxNeedles, 8);
    EXPECT_TRUE(c.m_vLines3D.empty());
    EXPECT_TRUE(c.m_vLassoPoints.empty());
    EXPECT_EQ(c.m_pFrozenImage, nullptr);
    EXPECT_EQ(c.m_bLassoCursor, 0);
    EXPECT_EQ(c.m_bClipPlaneVisible, 0);
    EXPECT_EQ(c.m_bClipPlaneActive, 0);
    EXPECT_EQ(c.m_clipPlane.GetCenter(), (Double3{0, 0, 10}));
    EXPECT_EQ(c.m_clipPlane.GetNormal(), (Double3{0, 0, 1}));
    EXPECT_EQ(c.m_pCutMask, nullptr);
    EXPECT_EQ(c.m_pCutSession, nullptr);
    EXPECT_EQ(c.m_lassoInside.color, 0xFFu);
    EXPECT_EQ(c.m_lassoInside.opacity, 0.5f);
    EXPECT_EQ(c.m_lassoOutside.color, 0u);
    EXPECT_EQ(c.m_lassoOutside.opacity, 0.0f);
    EXPECT_EQ(c.m_bInDraw, 0);
    EXPECT_EQ(c.m_hImportMutex, nullptr);
    EXPECT_TRUE(c.m_vPendingImports.empty());
    EXPECT_EQ(c.m_bAllowEmptyObjects, 0);
    EXPECT_EQ(c.m_bBlockPaint, 0);
    EXPECT_EQ(c.m_bNeedlePickingMode, 0);
    EXPECT_EQ(c.m_bNeedleDrawingMode, 0);
    EXPECT_EQ(c.m_bLine3DDrawingMode, 0);
    EXPECT_EQ(c.m_hpsSourceApp, "");
    EXPECT_EQ(c.m_hpsSourceVersion, "");
    EXPECT_TRUE(c.m_vOverlays.empty());
    EXPECT_EQ(c.m_fPointCloudSize, 2.0f);
    EXPECT_EQ(c.m_fAnimationSpeed, 0.2f);
    EXPECT_EQ(c.m_fAnimationAxis, (Float3{0, 0, 1}));
    EXPECT_EQ(c.m_bAnimationRunning, 0);
    EXPECT_EQ(c.m_bToggleAnimationOnSpacebar, 0);
}

TEST(NewControl, RecordsTheCreatingThread) {
    const CKV_ScenePaneCtrl first(AnyWindow()), second(AnyWindow());
    std::uint32_t elsewhere = 0;
    std::thread([&] { elsewhere = CKV_ScenePaneCtrl(AnyWindow()).m_nCreatorThreadId; }).join();
    EXPECT_EQ(first.m_nCreatorThreadId, second.m_nCreatorThreadId);
    EXPECT_NE(first.m_nCreatorThreadId, elsewhere);
}

TEST(NewControl, SharesTheProcessWideDrawLockWhichIsNeverDeleted) {
    std::recursive_mutex* lock = nullptr;
    {
        const CKV_ScenePaneCtrl first(AnyWindow());
        lock = g_drawLock;
        ASSERT_NE(lock, nullptr);
        const CKV_ScenePaneCtrl second(AnyWindow());
        EXPECT_EQ(g_drawLock, lock);
    }
    EXPECT_EQ(g_drawLock, lock);
    const std::lock_guard once(*g_drawLock);
    const std::lock_guard twice(*g_drawLock);  // recursive on its owner
}

}  // namespace
