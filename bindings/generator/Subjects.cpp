// Which method belongs to which subject of the reference.
#include "Subjects.h"

#include <algorithm>
#include <set>
#include <string>

namespace bindings {

std::span<const Subject> Subjects() {
    static const std::vector<Subject> subjects{
        {"Window and repainting",
         {"SetSize", "RecreateOpenglContext", "PerformRefresh", "PerformInvalidate", "BlockPaintEvents"}},
        {"Scene and objects",
         {"GetNumObjects", "ClearData", "DeleteObject", "GetObjectColor", "SetObjectColor", "SetBlendObjectColors",
          "SetObjectVisibility", "GetMeshDataSize", "GetObjectCenter", "GetObjectBoundingBox", "GetTrafoOfScan",
          "SetTrafoOfScan", "AddSelection", "ResetSelection"}},
        {"Import and export",
         {"ImportMesh", "ExportMesh", "ImportScan", "ImportMeshFromMemory", "ImportMeasurementFromMemory",
          "ImportMeshedMeasurement", "BeginParallelImport", "EndParallelImport", "SetScanSkipVal", "GetScanSkipVal",
          "SetConfidenceFilter", "SetAllowEmptyObjects", "SetHpsSourceApp", "SetMeshFilename_Removed"}},
        {"View and navigation",
         {"SetViewMode", "CenterView", "SetDefaultZoomFactor", "SetViewParams", "GetViewParams", "GetViewDirection",
          "TracingMode", "SetRotationMode", "FlipMouseButtons", "SetIGDRotation", "AllowMouseInteraction"}},
        {"Animation",
         {"StartAnimation", "StopAnimation", "IsAnimationRunning", "SetAnimationSpeed", "ToggleAnimationOnSpacebar"}},
        {"Picking and pick-point spheres",
         {"SetPickMode", "GetPickMode", "SetPickRadius", "AddPickPointSphere", "MovePickPointSphere",
          "RemovePickPointSphere", "ClearPickPointSpheres", "GetNumberOfPickPointSpheres", "GetPickPointSphereCoords",
          "FindNearestPickPointSphere"}},
        {"Needles",
         {"CreateNeedle", "CreateNeedles", "GetNumberOfNeedles", "GetNeedle", "GetNeedles", "SelectNeedle",
          "DeselectNeedle", "DeselectAllNeedles", "DeleteNeedle", "DeleteNeedles", "SetMaxNumberOfNeedles",
          "SetNeedleDrawingMode", "GetNeedleDrawingMode", "SetNeedlePickingMode", "GetNeedlePickingMode",
          "SetNeedleRenderParameters"}},
        {"Lines and free points",
         {"CreateLine3D", "SetLine3DDrawingMode", "GetLine3DDrawingMode", "ImportPoints", "SetPointsVisibility",
          "DeletePoints", "SetPointCloudRenderPointSize"}},
        {"Clip plane",
         {"SetClipPlaneEnabled", "SetClipPlaneDisabled", "SetClipPlane", "GetClipPlane", "SetClipPlaneColor",
          "DisplayClipPlanePartCloseToData"}},
        {"Cutting",
         {"StartSegmentation", "EndSegmentation", "SetLassoCuttingColors", "PerformUndo", "ClearUndoStack",
          "SaveCuttingToPcms", "GetCutMasks", "ClearCutMasks"}},
        {"Alignment",
         {"AddVariableObject", "ResetVariableObjects", "AlignInteractive", "AlignPickPoints", "FinishInteraction"}},
        {"Decorations and look",
         {"SetBackgroundColors", "SetBackgroundColorsFourCorners", "ShowAxes", "ShowLightingArrow", "SetArrowColor",
          "SetArrowAngle", "SetCrossColor", "GetCrossColor", "SetReflection", "AddOverlayData",
          "SetOverlayVisibility"}},
        {"Shadows and screenshots",
         {"SetShadowMode", "GetShadowMode", "SetShadowColor", "CaptureScreenShot", "GetScreenShotResolution"}},
        {"Module", {"InitializeKVReg", "FinalizeKVReg", "AboutBox"}}};
    return subjects;
}

void CheckSubjects(std::span<const Subject> subjects, const Surface& surface) {
    std::set<std::string_view> listed;
    for (const Subject& subject : subjects)
        for (const std::string_view name : subject.methods) {
            if (std::ranges::find(surface.methods, name, &Member::name) == surface.methods.end())
                throw SourceError("the subject " + std::string(subject.title) + " has " + std::string(name) +
                                  ", which is no method");
            if (!listed.insert(name).second) throw SourceError(std::string(name) + " has two subjects");
        }
    for (const Member& method : surface.methods)
        if (!listed.contains(method.name)) throw SourceError(method.name + " has no subject in the reference");
}

}  // namespace bindings
