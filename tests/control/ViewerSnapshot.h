// Everything that calls can change in a viewer, as text with one value per line: a call that was refused leaves it as
// it was, and a difference names what has changed.
#pragma once
#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "control/ScenePaneCtrl.h"

class ViewerSnapshot {
public:
    explicit ViewerSnapshot(CKV_ScenePaneCtrl& control) {
        Scene(control);
        Markers(control);
        View(control);
        Settings(control);
    }
    [[nodiscard]] std::string Text() const { return m_text.str(); }

private:
    template <typename... Values>
    void Add(const char* name, const Values&... values) {
        m_text << name;
        ((m_text << ' ' << values), ...);
        m_text << '\n';
    }
    template <typename Numbers>
    void AddAll(const char* name, const Numbers& numbers) {
        m_text << name;
        for (const auto& number : numbers) m_text << ' ' << number;
        m_text << '\n';
    }

    void Scene(CKV_ScenePaneCtrl& control) {
        for (const auto& mesh : control.m_vpMeshes) {
            Add("object", mesh.get(), mesh->GetVertexCount(), mesh->GetTriangleCount(), mesh->GetColorRef(),
                mesh->m_iVisible, mesh->m_bBlendObjectColor, mesh->m_vpCutMasks.size(), mesh->m_iObjectTag);
            AddAll("box", mesh->m_fBoundingBox);
            AddAll("rotation", mesh->m_Trafo.m_dRotation);
            AddAll("translation", mesh->m_Trafo.m_dTranslation);
        }
        for (const auto& step : control.m_vUndoStack) Add("undo step", step.size());
        Add("lists", control.m_vpSelection.size(), control.m_vpVariableObjects.size(), control.m_vPendingImports.size(),
            control.m_hImportMutex.get(), control.m_vInteractionDlgs.size(), control.m_vCutSaveResults.size());
        m_text << "scan path " << std::string(control.m_strScanPath.begin(), control.m_strScanPath.end()) << '\n';
    }
    void Markers(CKV_ScenePaneCtrl& control) {
        for (const auto& s : control.m_vPickPointSpheres) Add("sphere", s.x, s.y, s.z, s.color);
        for (const auto& n : control.m_vNeedles)
            Add("needle", n.id, n.selected, n.pin[0], n.pin[1], n.pin[2], n.head[0], n.head[1], n.head[2]);
        for (const auto& line : control.m_vLines3D) Add("line", line.id, line.points.size());
        for (const auto& [id, set] : control.m_mapFreePoints) Add("points", id, set.numPoints, int{set.visible});
        for (const auto& overlay : control.m_vOverlays) Add("overlay", overlay.m_nWidth, int{overlay.m_bVisible});
        const auto& r = control.m_needleRender;
        Add("needles look", r.needleLength, r.headRadius, r.headColor, r.pinSize, r.pinColor, r.hitPointRadius,
            r.hitPointColor, r.headSelectionColor);
        Add("markers", control.m_nMaxNeedles, control.m_nPickMode, control.m_fPickRadius,
            int{control.m_bPickPointValid}, int{control.m_bNeedlePickingMode}, int{control.m_bNeedleDrawingMode},
            int{control.m_bLine3DDrawingMode});
    }
    void View(CKV_ScenePaneCtrl& control) {
        for (const auto& vector :
             {control.m_fAxisX, control.m_fAxisY, control.m_fAxisZ, control.m_fViewCenter, control.m_fRotationCenter})
            AddAll("view", vector);
        Add("zoom", control.m_fZoom, control.m_fDefaultZoom, control.m_fSceneSize, control.m_nViewMode,
            int{control.m_bTracingMode}, control.m_nWidth, control.m_nHeight);
        AddAll("plane", control.m_clipPlane.m_dMatrix);
        Add("plane colours", control.m_clipPlane.m_nColor, control.m_clipPlane.m_nHandleColor,
            control.m_clipPlane.m_nOutlineColor, int{control.m_bClipPlaneActive}, int{control.m_bClipPlaneVisible});
        Add("turntable", int{control.m_bAnimationRunning}, control.m_fAnimationSpeed,
            int{control.m_bToggleAnimationOnSpacebar});
        Add("input", control.m_nInteractionMode, control.m_nAllowMouse, control.m_nIgdRotation,
            control.m_nFlipMouseButtons, control.m_nRotationMode, int{control.m_bLassoCursor});
    }
    void Settings(CKV_ScenePaneCtrl& control) {
        AddAll("background", control.m_nBackgroundColors);
        Add("decorations", control.m_nCrossColor, control.m_nArrowColor, control.m_nShowArrow, control.m_nArrowAngle,
            control.m_nShowAxes, control.m_fPointCloudSize);
        Add("shadows", int{control.m_bShadowEnabled}, control.m_fShadowColor[0], control.m_fShadowColor[1],
            control.m_fShadowColor[2]);
        Add("imports", control.m_nScanSkipVal, control.m_fConfidenceFilter, int{control.m_bAllowEmptyObjects},
            control.m_hpsSourceApp, control.m_hpsSourceVersion);
        Add("lasso", control.m_lassoInside.color, control.m_lassoInside.opacity, control.m_lassoOutside.color,
            control.m_lassoOutside.opacity, control.m_nSegmentationKind, control.m_vLassoPoints.size());
        Add("properties", control.m_bDrawMosaic, control.m_nDrawMode, control.m_bMoveReduced, control.m_bModified,
            int{control.m_bBlockPaint}, control.m_hRC, control.HasWindow());
    }

    std::ostringstream m_text;
};
