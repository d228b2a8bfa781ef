// A replacement for the control that records which method was called with which arguments.
#pragma once
#include <string>
#include <type_traits>
#include <vector>

#include "control/AutomationTable.h"

/// The value that every method with a result returns.
inline constexpr std::int16_t kRecordedShort = 1234;
inline constexpr std::int32_t kRecordedLong = 123456789;

class RecordingPane final : public KV_ScenePane::_DKV_ScenePane {
public:
    struct Call {
        std::string name;
        std::vector<AutomationValue> arguments;
    };
    std::vector<Call> calls;

    using VARIANT_BOOL = KV_ScenePane::VARIANT_BOOL;
    using BSTR = KV_ScenePane::BSTR;
    using ImportMeasurementEntry = KV_ScenePane::ImportMeasurementEntry;
    using MeshBuffers = KV_ScenePane::MeshBuffers;

    // ---- one line per method
    VARIANT_BOOL GetDrawMosaic() override { return Record<VARIANT_BOOL>("GetDrawMosaic"); }
    void SetDrawMosaic(VARIANT_BOOL value) override { Record("SetDrawMosaic", value); }
    std::int16_t GetDrawMode() override { return Record<std::int16_t>("GetDrawMode"); }
    void SetDrawMode(std::int16_t value) override { Record("SetDrawMode", value); }
    VARIANT_BOOL GetMoveReduced() override { return Record<VARIANT_BOOL>("GetMoveReduced"); }
    void SetMoveReduced(VARIANT_BOOL value) override { Record("SetMoveReduced", value); }
    std::int32_t GetReadyState() override { return Record<std::int32_t>("GetReadyState"); }
    void SetSize(std::int16_t sx, std::int16_t sy) override { Record("SetSize", sx, sy); }
    void ClearData() override { Record("ClearData"); }
    void ClearUndoStack() override { Record("ClearUndoStack"); }
    void SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                               float outsideOpacity) override {
        Record("SetLassoCuttingColors", inside, insideOpacity, outside, outsideOpacity);
    }
    void DisplayClipPlanePartCloseToData() override { Record("DisplayClipPlanePartCloseToData"); }
    std::int32_t FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) override {
        return Record<std::int32_t>("FindNearestPickPointSphere", sx, sy);
    }
    void RemovePickPointSphere(std::int32_t id) override { Record("RemovePickPointSphere", id); }
    void GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) override {
        Record("GetPickPointSphereCoords", id, x, y, z);
    }
    std::int32_t GetNumberOfPickPointSpheres() override { return Record<std::int32_t>("GetNumberOfPickPointSpheres"); }
    void SetMaxNumberOfNeedles(std::int32_t num) override { Record("SetMaxNumberOfNeedles", num); }
    VARIANT_BOOL DeselectNeedle(std::int32_t id) override { return Record<VARIANT_BOOL>("DeselectNeedle", id); }
    void DeselectAllNeedles() override { Record("DeselectAllNeedles"); }
    void SelectNeedle(std::int32_t id) override { Record("SelectNeedle", id); }
    VARIANT_BOOL RecreateOpenglContext(std::int32_t majorVersion, std::int32_t minorVersion,
                                       std::int32_t numberOfSamples) override {
        return Record<VARIANT_BOOL>("RecreateOpenglContext", majorVersion, minorVersion, numberOfSamples);
    }
    void SetPickMode(std::int16_t mode) override { Record("SetPickMode", mode); }
    std::int16_t GetPickMode() override { return Record<std::int16_t>("GetPickMode"); }
    void SetCrossColor(std::int32_t color) override { Record("SetCrossColor", color); }
    std::int32_t GetCrossColor() override { return Record<std::int32_t>("GetCrossColor"); }
    VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz) override {
        return Record<VARIANT_BOOL>("GetViewDirection", px, py, pz, vx, vy, vz);
    }
    std::int16_t GetNumObjects() override { return Record<std::int16_t>("GetNumObjects"); }
    std::int32_t GetObjectColor(std::int16_t idx) override { return Record<std::int32_t>("GetObjectColor", idx); }
    void SetObjectColor(std::int16_t idx, std::int32_t color) override { Record("SetObjectColor", idx, color); }
    void StartSegmentation(std::int16_t mode) override { Record("StartSegmentation", mode); }
    void GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) override {
        Record("GetMeshDataSize", objIdx, numP, numT);
    }
    void ClearPickPointSpheres() override { Record("ClearPickPointSpheres"); }
    void MovePickPointSphere(std::int32_t id, float x, float y, float z) override {
        Record("MovePickPointSphere", id, x, y, z);
    }
    std::int32_t PerformUndo() override { return Record<std::int32_t>("PerformUndo"); }
    void ImportMesh(BSTR path) override { Record("ImportMesh", path); }
    void ExportMesh(std::int16_t objIdx, BSTR path) override { Record("ExportMesh", objIdx, path); }
    void ImportScan(BSTR path, std::int32_t color) override { Record("ImportScan", path, color); }
    void ShowLightingArrow(std::int16_t show) override { Record("ShowLightingArrow", show); }
    void SetArrowColor(std::int32_t color) override { Record("SetArrowColor", color); }
    void TracingMode(std::int16_t on) override { Record("TracingMode", on); }
    void FlipMouseButtons(std::int16_t flip) override { Record("FlipMouseButtons", flip); }
    void SetRotationMode(std::int16_t mode) override { Record("SetRotationMode", mode); }
    void SetViewMode(std::int16_t mode) override { Record("SetViewMode", mode); }
    void ResetSelection() override { Record("ResetSelection"); }
    void AddSelection(std::int16_t idx) override { Record("AddSelection", idx); }
    void ResetVariableObjects() override { Record("ResetVariableObjects"); }
    void AddVariableObject(std::int16_t idx) override { Record("AddVariableObject", idx); }
    void AlignInteractive() override { Record("AlignInteractive"); }
    void AlignPickPoints() override { Record("AlignPickPoints"); }
    void PerformRefresh() override { Record("PerformRefresh"); }
    void SetArrowAngle(std::int16_t angle) override { Record("SetArrowAngle", angle); }
    void CenterView() override { Record("CenterView"); }
    void SetScanSkipVal(std::int16_t skipVal) override { Record("SetScanSkipVal", skipVal); }
    std::int16_t GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4, float* v5,
                                float* v6, float* v7, float* v8, float* v9, float* v10, float* v11, float* v12,
                                float* v13, float* v14, float* v15) override {
        return Record<std::int16_t>("GetTrafoOfScan", idx, v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13,
                                    v14, v15);
    }
    void SetObjectVisibility(std::int16_t idx, std::int16_t visible) override {
        Record("SetObjectVisibility", idx, visible);
    }
    void ShowAxes(std::int16_t show) override { Record("ShowAxes", show); }
    void SetConfidenceFilter(float confFilter) override { Record("SetConfidenceFilter", confFilter); }
    void FinishInteraction() override { Record("FinishInteraction"); }
    void SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) override {
        Record("SetBackgroundColors", TopColor, BottomColor);
    }
    void DeleteObject(std::int16_t idx) override { Record("DeleteObject", idx); }
    VARIANT_BOOL CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                               const float* headPosXYZ) override {
        return Record<VARIANT_BOOL>("CreateNeedles", number, id, pinPosXYZ, headPosXYZ);
    }
    void DeleteNeedles() override { Record("DeleteNeedles"); }
    VARIANT_BOOL GetObjectCenter(std::int16_t objectIdx, float* x, float* y, float* z) override {
        return Record<VARIANT_BOOL>("GetObjectCenter", objectIdx, x, y, z);
    }
    VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx, float cy,
                               float cz, float zoom, std::int16_t freezeBBox) override {
        return Record<VARIANT_BOOL>("SetViewParams", wx1, wx2, wx3, wy1, wy2, wy3, cx, cy, cz, zoom, freezeBBox);
    }
    std::int32_t AddPickPointSphere(float x, float y, float z, std::int32_t color) override {
        return Record<std::int32_t>("AddPickPointSphere", x, y, z, color);
    }
    void AllowMouseInteraction(std::int16_t on) override { Record("AllowMouseInteraction", on); }
    VARIANT_BOOL SaveCuttingToPcms() override { return Record<VARIANT_BOOL>("SaveCuttingToPcms"); }
    void SetIGDRotation(std::int16_t on) override { Record("SetIGDRotation", on); }
    void SetReflection(float brightness, float shining) override { Record("SetReflection", brightness, shining); }
    std::int16_t SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4, float v5, float v6,
                                float v7, float v8, float v9, float v10, float v11, float v12, float v13, float v14,
                                float v15) override {
        return Record<std::int16_t>("SetTrafoOfScan", idx, v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13,
                                    v14, v15);
    }
    void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx, float* cy,
                       float* cz, float* zoom) override {
        Record("GetViewParams", wx1, wx2, wx3, wy1, wy2, wy3, cx, cy, cz, zoom);
    }
    void EndSegmentation() override { Record("EndSegmentation"); }
    void SetShadowMode(std::int16_t mode) override { Record("SetShadowMode", mode); }
    std::int16_t GetShadowMode() override { return Record<std::int16_t>("GetShadowMode"); }
    void SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                        std::int32_t BottomLeftColor, std::int32_t BottomRightColor) override {
        Record("SetBackgroundColorsFourCorners", TopLeftColor, TopRightColor, BottomLeftColor, BottomRightColor);
    }
    void SetPickRadius(float r) override { Record("SetPickRadius", r); }
    void PerformInvalidate() override { Record("PerformInvalidate"); }
    void GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min, float* y_max,
                              float* z_min, float* z_max) override {
        Record("GetObjectBoundingBox", objectIdx, x_min, x_max, y_min, y_max, z_min, z_max);
    }
    VARIANT_BOOL CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ, float headPosX,
                              float headPosY, float headPosZ) override {
        return Record<VARIANT_BOOL>("CreateNeedle", id, pinPosX, pinPosY, pinPosZ, headPosX, headPosY, headPosZ);
    }
    void BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) override {
        Record("BeginParallelImport", p_this, p_fn);
    }
    void EndParallelImport() override { Record("EndParallelImport"); }
    void SetAllowEmptyObjects(VARIANT_BOOL allow) override { Record("SetAllowEmptyObjects", allow); }
    void BlockPaintEvents(VARIANT_BOOL block) override { Record("BlockPaintEvents", block); }
    void SetMeshFilename_Removed() override { Record("SetMeshFilename_Removed"); }
    void SetLine3DDrawingMode(VARIANT_BOOL enable) override { Record("SetLine3DDrawingMode", enable); }
    VARIANT_BOOL GetLine3DDrawingMode() override { return Record<VARIANT_BOOL>("GetLine3DDrawingMode"); }
    VARIANT_BOOL CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs, const float* XYZs) override {
        return Record<VARIANT_BOOL>("CreateLine3D", id, numberOfXYZs, XYZs);
    }
    void DeletePoints(std::int32_t id) override { Record("DeletePoints", id); }
    void SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) override {
        Record("SetPointsVisibility", id, visible);
    }
    std::int32_t ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors, float alpha) override {
        return Record<std::int32_t>("ImportPoints", numPoints, xyz, colors, alpha);
    }
    std::int16_t GetScanSkipVal() override { return Record<std::int16_t>("GetScanSkipVal"); }
    void SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) override {
        Record("SetBlendObjectColors", idx, enabled);
    }
    void SetShadowColor(float red, float green, float blue) override { Record("SetShadowColor", red, green, blue); }
    void ImportMeshedMeasurement(const MeshBuffers* mesh, BSTR filename, std::int32_t color) override {
        Record("ImportMeshedMeasurement", mesh, filename, color);
    }
    void StartAnimation(float revolutionsPerSecond) override { Record("StartAnimation", revolutionsPerSecond); }
    void StopAnimation() override { Record("StopAnimation"); }
    void ToggleAnimationOnSpacebar(std::int32_t enabled) override { Record("ToggleAnimationOnSpacebar", enabled); }
    VARIANT_BOOL IsAnimationRunning() override { return Record<VARIANT_BOOL>("IsAnimationRunning"); }
    void SetAnimationSpeed(float revolutionsPerSecond) override { Record("SetAnimationSpeed", revolutionsPerSecond); }
    void SetPointCloudRenderPointSize(float size) override { Record("SetPointCloudRenderPointSize", size); }
    void CaptureScreenShot(std::uint32_t* buffer) override { Record("CaptureScreenShot", buffer); }
    void GetScreenShotResolution(std::int32_t* width, std::int32_t* height) override {
        Record("GetScreenShotResolution", width, height);
    }
    std::int32_t AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width, std::int32_t height,
                                float relPosX, float relPosY, float relOffsetX, float relOffsetY, float absOffsetX,
                                float absOffsetY) override {
        return Record<std::int32_t>("AddOverlayData", argbU8DataPtrHack, width, height, relPosX, relPosY, relOffsetX,
                                    relOffsetY, absOffsetX, absOffsetY);
    }
    void SetOverlayVisibility(std::int32_t index, std::int32_t enable) override {
        Record("SetOverlayVisibility", index, enable);
    }
    void SetDefaultZoomFactor(float newDefault) override { Record("SetDefaultZoomFactor", newDefault); }
    void SetClipPlaneEnabled(std::int32_t displayClipPlane) override {
        Record("SetClipPlaneEnabled", displayClipPlane);
    }
    void SetClipPlaneDisabled() override { Record("SetClipPlaneDisabled"); }
    void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                      float normalZ) override {
        Record("SetClipPlane", centerX, centerY, centerZ, normalX, normalY, normalZ);
    }
    void SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) override {
        Record("SetClipPlaneColor", color, handleColor, outlineColor);
    }
    void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                      float* normalZ) override {
        Record("GetClipPlane", centerX, centerY, centerZ, normalX, normalY, normalZ);
    }
    void SetNeedlePickingMode(VARIANT_BOOL enable) override { Record("SetNeedlePickingMode", enable); }
    void SetNeedleDrawingMode(VARIANT_BOOL enable) override { Record("SetNeedleDrawingMode", enable); }
    void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, std::int32_t needleHeadColor,
                                   float needlePinSize, std::int32_t needlePinColor, float needleHitPointRadius,
                                   std::int32_t needleHitPointColor, std::int32_t needleHeadSelectionColor) override {
        Record("SetNeedleRenderParameters", needleLength, needleHeadRadius, needleHeadColor, needlePinSize,
               needlePinColor, needleHitPointRadius, needleHitPointColor, needleHeadSelectionColor);
    }
    VARIANT_BOOL GetNeedlePickingMode() override { return Record<VARIANT_BOOL>("GetNeedlePickingMode"); }
    VARIANT_BOOL GetNeedleDrawingMode() override { return Record<VARIANT_BOOL>("GetNeedleDrawingMode"); }
    VARIANT_BOOL DeleteNeedle(std::int32_t id) override { return Record<VARIANT_BOOL>("DeleteNeedle", id); }
    std::int32_t GetNumberOfNeedles() override { return Record<std::int32_t>("GetNumberOfNeedles"); }
    VARIANT_BOOL GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX,
                           float* headPosY, float* headPosZ) override {
        return Record<VARIANT_BOOL>("GetNeedle", id, pinPosX, pinPosY, pinPosZ, headPosX, headPosY, headPosZ);
    }
    void GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) override {
        Record("GetNeedles", id, pinPosXYZ, headPosXYZ);
    }
    void ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                     const float* confidence, const float* trafo, std::int32_t color) override {
        Record("ImportMeasurementFromMemory", width, height, points, confidence, trafo, color);
    }
    void ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles, const float* vertices,
                              const std::int32_t* triangles) override {
        Record("ImportMeshFromMemory", numberOfVertices, numberOfTriangles, vertices, triangles);
    }
    VARIANT_BOOL GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) override {
        return Record<VARIANT_BOOL>("GetCutMasks", count, cutMaskPtrs);
    }
    void ClearCutMasks() override { Record("ClearCutMasks"); }
    void InitializeKVReg() override { Record("InitializeKVReg"); }
    void FinalizeKVReg() override { Record("FinalizeKVReg"); }
    void SetHpsSourceApp(BSTR appName, BSTR appVersion) override { Record("SetHpsSourceApp", appName, appVersion); }
    void AboutBox() override { Record("AboutBox"); }

private:
    template <class T>
    static AutomationValue AsValue(T value) {
        if constexpr (std::is_same_v<T, BSTR> || !std::is_pointer_v<T>)
            return value;
        else
            return const_cast<void*>(static_cast<const void*>(value));
    }

    template <class Result = void, class... Arguments>
    Result Record(const char* name, Arguments... arguments) {
        calls.push_back({name, {AsValue(arguments)...}});
        if constexpr (std::is_same_v<Result, std::int16_t>) return kRecordedShort;
        if constexpr (std::is_same_v<Result, std::int32_t>) return kRecordedLong;
    }
};
