// What a host holds of a viewer. The control does not belong to the handle alone: each call holds it until it returns,
// so that a handler of the host may destroy the handle during the call.
#include "control/ScenePaneHandle.h"

#include <functional>
#include <utility>

#include "control/ScenePaneCtrl.h"

namespace {

using Control = CKV_ScenePaneCtrl;
using KV_ScenePane::BSTR;
using KV_ScenePane::ImportMeasurementEntry;
using KV_ScenePane::VARIANT_BOOL;

/// One call of the host. Holds the control until the call returns, because a handler may destroy the handle meanwhile.
/// Frames of the call are drawn before it returns, also in a handler of an input whose own frame is deferred.
class HostCall {
public:
    explicit HostCall(std::shared_ptr<Control> control)
        : m_pControl(std::move(control)), m_atOnce(*m_pControl->m_pWindow, false) {}
    Control* operator->() const { return m_pControl.get(); }
    Control& operator*() const { return *m_pControl; }

private:
    std::shared_ptr<Control> m_pControl;
    DeferredFrames m_atOnce;
};

/// Passes each property and method on. One row per function: without it the class would be abstract.
class HandleMethods final : public KV_ScenePane::_DKV_ScenePane {
public:
    explicit HandleMethods(const std::shared_ptr<Control>& control) : m_pControl(control) {}

    // ---- properties
    VARIANT_BOOL GetDrawMosaic() override { return Call(&Control::GetDrawMosaic); }
    void SetDrawMosaic(VARIANT_BOOL value) override { return Call(&Control::SetDrawMosaic, value); }
    std::int16_t GetDrawMode() override { return Call(&Control::GetDrawMode); }
    void SetDrawMode(std::int16_t value) override { return Call(&Control::SetDrawMode, value); }
    VARIANT_BOOL GetMoveReduced() override { return Call(&Control::GetMoveReduced); }
    void SetMoveReduced(VARIANT_BOOL value) override { return Call(&Control::SetMoveReduced, value); }
    std::int32_t GetReadyState() override { return Call(&Control::GetReadyState); }

    // ---- methods, in the order of their ids
    void SetSize(std::int16_t sx, std::int16_t sy) override { return Call(&Control::SetSize, sx, sy); }
    void ClearData() override { return Call(&Control::ClearData); }
    void ClearUndoStack() override { return Call(&Control::ClearUndoStack); }
    void SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                               float outsideOpacity) override {
        return Call(&Control::SetLassoCuttingColors, inside, insideOpacity, outside, outsideOpacity);
    }
    void DisplayClipPlanePartCloseToData() override { return Call(&Control::DisplayClipPlanePartCloseToData); }
    std::int32_t FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) override {
        return Call(&Control::FindNearestPickPointSphere, sx, sy);
    }
    void RemovePickPointSphere(std::int32_t id) override { return Call(&Control::RemovePickPointSphere, id); }
    void GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) override {
        return Call(&Control::GetPickPointSphereCoords, id, x, y, z);
    }
    std::int32_t GetNumberOfPickPointSpheres() override { return Call(&Control::GetNumberOfPickPointSpheres); }
    void SetMaxNumberOfNeedles(std::int32_t num) override { return Call(&Control::SetMaxNumberOfNeedles, num); }
    VARIANT_BOOL DeselectNeedle(std::int32_t id) override { return Call(&Control::DeselectNeedle, id); }
    void DeselectAllNeedles() override { return Call(&Control::DeselectAllNeedles); }
    void SelectNeedle(std::int32_t id) override { return Call(&Control::SelectNeedle, id); }
    VARIANT_BOOL RecreateOpenglContext(std::int32_t majorVersion, std::int32_t minorVersion,
                                       std::int32_t numberOfSamples) override {
        return Call(&Control::RecreateOpenglContext, majorVersion, minorVersion, numberOfSamples);
    }
    void SetPickMode(std::int16_t mode) override { return Call(&Control::SetPickMode, mode); }
    std::int16_t GetPickMode() override { return Call(&Control::GetPickMode); }
    void SetCrossColor(std::int32_t color) override { return Call(&Control::SetCrossColor, color); }
    std::int32_t GetCrossColor() override { return Call(&Control::GetCrossColor); }
    VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz) override {
        return Call(&Control::GetViewDirection, px, py, pz, vx, vy, vz);
    }
    std::int16_t GetNumObjects() override { return Call(&Control::GetNumObjects); }
    std::int32_t GetObjectColor(std::int16_t idx) override { return Call(&Control::GetObjectColor, idx); }
    void SetObjectColor(std::int16_t idx, std::int32_t color) override {
        return Call(&Control::SetObjectColor, idx, color);
    }
    void StartSegmentation(std::int16_t mode) override { return Call(&Control::StartSegmentation, mode); }
    void GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) override {
        return Call(&Control::GetMeshDataSize, objIdx, numP, numT);
    }
    void ClearPickPointSpheres() override { return Call(&Control::ClearPickPointSpheres); }
    void MovePickPointSphere(std::int32_t id, float x, float y, float z) override {
        return Call(&Control::MovePickPointSphere, id, x, y, z);
    }
    std::int32_t PerformUndo() override { return Call(&Control::PerformUndo); }
    void ImportMesh(BSTR path) override { return Import(&Control::ImportMesh, path); }
    void ExportMesh(std::int16_t objIdx, BSTR path) override {
        const HostCall call(m_pControl);
        call->RunExport(path, [&] { call->ExportMesh(objIdx, path); });
    }
    void ImportScan(BSTR path, std::int32_t color) override { return Import(&Control::ImportScan, path, color); }
    void ShowLightingArrow(std::int16_t show) override { return Call(&Control::ShowLightingArrow, show); }
    void SetArrowColor(std::int32_t color) override { return Call(&Control::SetArrowColor, color); }
    void TracingMode(std::int16_t on) override { return Call(&Control::TracingMode, on); }
    void FlipMouseButtons(std::int16_t flip) override { return Call(&Control::FlipMouseButtons, flip); }
    void SetRotationMode(std::int16_t mode) override { return Call(&Control::SetRotationMode, mode); }
    void SetViewMode(std::int16_t mode) override { return Call(&Control::SetViewMode, mode); }
    void ResetSelection() override { return Call(&Control::ResetSelection); }
    void AddSelection(std::int16_t idx) override { return Call(&Control::AddSelection, idx); }
    void ResetVariableObjects() override { return Call(&Control::ResetVariableObjects); }
    void AddVariableObject(std::int16_t idx) override { return Call(&Control::AddVariableObject, idx); }
    void AlignInteractive() override { return Call(&Control::AlignInteractive); }
    void AlignPickPoints() override { return Call(&Control::AlignPickPoints); }
    void PerformRefresh() override { return Call(&Control::PerformRefresh); }
    void SetArrowAngle(std::int16_t angle) override { return Call(&Control::SetArrowAngle, angle); }
    void CenterView() override { return Call(&Control::CenterView); }
    void SetScanSkipVal(std::int16_t skipVal) override { return Call(&Control::SetScanSkipVal, skipVal); }
    std::int16_t GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4, float* v5,
                                float* v6, float* v7, float* v8, float* v9, float* v10, float* v11, float* v12,
                                float* v13, float* v14, float* v15) override {
        return Call(&Control::GetTrafoOfScan, idx, v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14,
                    v15);
    }
    void SetObjectVisibility(std::int16_t idx, std::int16_t visible) override {
        return Call(&Control::SetObjectVisibility, idx, visible);
    }
    void ShowAxes(std::int16_t show) override { return Call(&Control::ShowAxes, show); }
    void SetConfidenceFilter(float confFilter) override { return Call(&Control::SetConfidenceFilter, confFilter); }
    void FinishInteraction() override { return Call(&Control::FinishInteraction); }
    void SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) override {
        return Call(&Control::SetBackgroundColors, TopColor, BottomColor);
    }
    void DeleteObject(std::int16_t idx) override { return Call(&Control::DeleteObject, idx); }
    VARIANT_BOOL CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                               const float* headPosXYZ) override {
        return Call(&Control::CreateNeedles, number, id, pinPosXYZ, headPosXYZ);
    }
    void DeleteNeedles() override { return Call(&Control::DeleteNeedles); }
    VARIANT_BOOL GetObjectCenter(std::int16_t objectIdx, float* x, float* y, float* z) override {
        return Call(&Control::GetObjectCenter, objectIdx, x, y, z);
    }
    VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx, float cy,
                               float cz, float zoom, std::int16_t freezeBBox) override {
        return Call(&Control::SetViewParams, wx1, wx2, wx3, wy1, wy2, wy3, cx, cy, cz, zoom, freezeBBox);
    }
    std::int32_t AddPickPointSphere(float x, float y, float z, std::int32_t color) override {
        return Call(&Control::AddPickPointSphere, x, y, z, color);
    }
    void AllowMouseInteraction(std::int16_t on) override { return Call(&Control::AllowMouseInteraction, on); }
    VARIANT_BOOL SaveCuttingToPcms() override { return Call(&Control::SaveCuttingToPcms); }
    void SetIGDRotation(std::int16_t on) override { return Call(&Control::SetIGDRotation, on); }
    void SetReflection(float brightness, float shining) override {
        return Call(&Control::SetReflection, brightness, shining);
    }
    std::int16_t SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4, float v5, float v6,
                                float v7, float v8, float v9, float v10, float v11, float v12, float v13, float v14,
                                float v15) override {
        return Call(&Control::SetTrafoOfScan, idx, v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14,
                    v15);
    }
    void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx, float* cy,
                       float* cz, float* zoom) override {
        return Call(&Control::GetViewParams, wx1, wx2, wx3, wy1, wy2, wy3, cx, cy, cz, zoom);
    }
    void EndSegmentation() override { return Call(&Control::EndSegmentation); }
    void SetShadowMode(std::int16_t mode) override { return Call(&Control::SetShadowMode, mode); }
    std::int16_t GetShadowMode() override { return Call(&Control::GetShadowMode); }
    void SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                        std::int32_t BottomLeftColor, std::int32_t BottomRightColor) override {
        return Call(&Control::SetBackgroundColorsFourCorners, TopLeftColor, TopRightColor, BottomLeftColor,
                    BottomRightColor);
    }
    void SetPickRadius(float r) override { return Call(&Control::SetPickRadius, r); }
    void PerformInvalidate() override { return Call(&Control::PerformInvalidate); }
    void GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min, float* y_max,
                              float* z_min, float* z_max) override {
        return Call(&Control::GetObjectBoundingBox, objectIdx, x_min, x_max, y_min, y_max, z_min, z_max);
    }
    VARIANT_BOOL CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ, float headPosX,
                              float headPosY, float headPosZ) override {
        return Call(&Control::CreateNeedle, id, pinPosX, pinPosY, pinPosZ, headPosX, headPosY, headPosZ);
    }
    void BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) override {
        return Call(&Control::BeginParallelImport, p_this, p_fn);
    }
    void EndParallelImport() override { return Call(&Control::EndParallelImport); }
    void SetAllowEmptyObjects(VARIANT_BOOL allow) override { return Call(&Control::SetAllowEmptyObjects, allow); }
    void BlockPaintEvents(VARIANT_BOOL block) override { return Call(&Control::BlockPaintEvents, block); }
    void SetMeshFilename_Removed() override { return Call(&Control::SetMeshFilename_Removed); }
    void SetLine3DDrawingMode(VARIANT_BOOL enable) override { return Call(&Control::SetLine3DDrawingMode, enable); }
    VARIANT_BOOL GetLine3DDrawingMode() override { return Call(&Control::GetLine3DDrawingMode); }
    VARIANT_BOOL CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs, const float* XYZs) override {
        return Call(&Control::CreateLine3D, id, numberOfXYZs, XYZs);
    }
    void DeletePoints(std::int32_t id) override { return Call(&Control::DeletePoints, id); }
    void SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) override {
        return Call(&Control::SetPointsVisibility, id, visible);
    }
    std::int32_t ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors, float alpha) override {
        return Call(&Control::ImportPoints, numPoints, xyz, colors, alpha);
    }
    std::int16_t GetScanSkipVal() override { return Call(&Control::GetScanSkipVal); }
    void SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) override {
        return Call(&Control::SetBlendObjectColors, idx, enabled);
    }
    void SetShadowColor(float red, float green, float blue) override {
        return Call(&Control::SetShadowColor, red, green, blue);
    }
    void ImportMeshedMeasurement(const MeshBuffers* mesh, BSTR filename, std::int32_t color) override {
        return Import(&Control::ImportMeshedMeasurement, mesh, filename, color);
    }
    void StartAnimation(float revolutionsPerSecond) override {
        return Call(&Control::StartAnimation, revolutionsPerSecond);
    }
    void StopAnimation() override { return Call(&Control::StopAnimation); }
    void ToggleAnimationOnSpacebar(std::int32_t enabled) override {
        return Call(&Control::ToggleAnimationOnSpacebar, enabled);
    }
    VARIANT_BOOL IsAnimationRunning() override { return Call(&Control::IsAnimationRunning); }
    void SetAnimationSpeed(float revolutionsPerSecond) override {
        return Call(&Control::SetAnimationSpeed, revolutionsPerSecond);
    }
    void SetPointCloudRenderPointSize(float size) override {
        return Call(&Control::SetPointCloudRenderPointSize, size);
    }
    void CaptureScreenShot(std::uint32_t* buffer) override { return Call(&Control::CaptureScreenShot, buffer); }
    void GetScreenShotResolution(std::int32_t* width, std::int32_t* height) override {
        return Call(&Control::GetScreenShotResolution, width, height);
    }
    std::int32_t AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width, std::int32_t height,
                                float relPosX, float relPosY, float relOffsetX, float relOffsetY, float absOffsetX,
                                float absOffsetY) override {
        return Call(&Control::AddOverlayData, argbU8DataPtrHack, width, height, relPosX, relPosY, relOffsetX,
                    relOffsetY, absOffsetX, absOffsetY);
    }
    void SetOverlayVisibility(std::int32_t index, std::int32_t enable) override {
        return Call(&Control::SetOverlayVisibility, index, enable);
    }
    void SetDefaultZoomFactor(float newDefault) override { return Call(&Control::SetDefaultZoomFactor, newDefault); }
    void SetClipPlaneEnabled(std::int32_t displayClipPlane) override {
        return Call(&Control::SetClipPlaneEnabled, displayClipPlane);
    }
    void SetClipPlaneDisabled() override { return Call(&Control::SetClipPlaneDisabled); }
    void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                      float normalZ) override {
        return Call(&Control::SetClipPlane, centerX, centerY, centerZ, normalX, normalY, normalZ);
    }
    void SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) override {
        return Call(&Control::SetClipPlaneColor, color, handleColor, outlineColor);
    }
    void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                      float* normalZ) override {
        return Call(&Control::GetClipPlane, centerX, centerY, centerZ, normalX, normalY, normalZ);
    }
    void SetNeedlePickingMode(VARIANT_BOOL enable) override { return Call(&Control::SetNeedlePickingMode, enable); }
    void SetNeedleDrawingMode(VARIANT_BOOL enable) override { return Call(&Control::SetNeedleDrawingMode, enable); }
    void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, std::int32_t needleHeadColor,
                                   float needlePinSize, std::int32_t needlePinColor, float needleHitPointRadius,
                                   std::int32_t needleHitPointColor, std::int32_t needleHeadSelectionColor) override {
        return Call(&Control::SetNeedleRenderParameters, needleLength, needleHeadRadius, needleHeadColor, needlePinSize,
                    needlePinColor, needleHitPointRadius, needleHitPointColor, needleHeadSelectionColor);
    }
    VARIANT_BOOL GetNeedlePickingMode() override { return Call(&Control::GetNeedlePickingMode); }
    VARIANT_BOOL GetNeedleDrawingMode() override { return Call(&Control::GetNeedleDrawingMode); }
    VARIANT_BOOL DeleteNeedle(std::int32_t id) override { return Call(&Control::DeleteNeedle, id); }
    std::int32_t GetNumberOfNeedles() override { return Call(&Control::GetNumberOfNeedles); }
    VARIANT_BOOL GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX,
                           float* headPosY, float* headPosZ) override {
        return Call(&Control::GetNeedle, id, pinPosX, pinPosY, pinPosZ, headPosX, headPosY, headPosZ);
    }
    void GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) override {
        return Call(&Control::GetNeedles, id, pinPosXYZ, headPosXYZ);
    }
    void ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                     const float* confidence, const float* trafo, std::int32_t color) override {
        return Import(&Control::ImportMeasurementFromMemory, width, height, points, confidence, trafo, color);
    }
    void ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles, const float* vertices,
                              const std::int32_t* triangles) override {
        return Import(&Control::ImportMeshFromMemory, numberOfVertices, numberOfTriangles, vertices, triangles);
    }
    VARIANT_BOOL GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) override {
        return Call(&Control::GetCutMasks, count, cutMaskPtrs);
    }
    void ClearCutMasks() override { return Call(&Control::ClearCutMasks); }
    void InitializeKVReg() override { return Call(&Control::InitializeKVReg); }
    void FinalizeKVReg() override { return Call(&Control::FinalizeKVReg); }
    void SetHpsSourceApp(BSTR appName, BSTR appVersion) override {
        return Call(&Control::SetHpsSourceApp, appName, appVersion);
    }
    void AboutBox() override { return Call(&Control::AboutBox); }

private:
    template <typename Result, typename... Parameters, typename... Arguments>
    Result Call(Result (Control::*method)(Parameters...), Arguments... arguments) {
        const HostCall call(m_pControl);  // this object may be gone when the method returns
        return ((*call).*method)(arguments...);
    }
    template <typename... Parameters, typename... Arguments>
    void Import(void (Control::*method)(Parameters...), Arguments... arguments) {
        const HostCall call(m_pControl);
        call->RunImport([&] { ((*call).*method)(arguments...); });
    }

    const std::shared_ptr<Control>& m_pControl;  ///< the handle's
};

class Handle final : public KV_ScenePane::ScenePane {
public:
    explicit Handle(std::shared_ptr<Control> control) : m_pControl(std::move(control)), m_methods(m_pControl) {}
    ~Handle() override { m_pControl->CloseForHost(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    KV_ScenePane::_DKV_ScenePane& Methods() override { return m_methods; }
    void Connect(KV_ScenePane::_DKV_ScenePaneEvents* events) override { m_pControl->Connect(events); }
    [[nodiscard]] int EventDescriptor() const override { return m_pControl->EventDescriptor(); }
    [[nodiscard]] bool HasWindow() const override { return m_pControl->HasWindow(); }
    [[nodiscard]] std::uintptr_t NativeWindow() const override { return m_pControl->NativeWindow(); }

    // The calls in which a handler, a hook or the sink of the debugger output may run.
    void ProcessEvents() override { Held()->ProcessEvents(); }
    bool Reparent(std::uintptr_t parent, int x, int y) override { return Held()->Reparent(parent, x, y); }
    void SendMouse(const KV_ScenePane::MouseInput& input) override { Held()->SendMouse(input); }
    void SendKey(const KV_ScenePane::KeyInput& input) override { Held()->SendKey(input); }
    void SetMouseFilter(std::function<bool(const KV_ScenePane::MouseInput&)> filter) override {
        Held()->SetMouseFilter(std::move(filter));
    }
    bool GetObjectInfo(std::int16_t idx, KV_ScenePane::ObjectInfo* info) override {
        return Held()->GetObjectInfo(idx, info);
    }
    bool GetGraphicsInfo(KV_ScenePane::GraphicsInfo* info) override { return Held()->GetGraphicsInfo(info); }
    void SetScale(double scale) override { Held()->SetScale(scale); }
    bool CapturePicture(KV_ScenePane::Picture* picture) override { return Held()->CapturePicture(picture); }
    bool PickSurface(int x, int y, KV_ScenePane::SurfacePoint* hit) override { return Held()->PickSurface(x, y, hit); }

    [[nodiscard]] KV_ScenePane::ClipHeight GetClipHeight() const override { return m_pControl->GetClipHeight(); }

    bool CutWithLasso(KV_ScenePane::SegmentationMode mode, std::span<const KV_ScenePane::LassoPoint> points) override {
        return Held()->CutWithLasso(mode, points);
    }
    [[nodiscard]] int GetUndoStepCount() const override { return m_pControl->GetUndoStepCount(); }
    [[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> PlanCutSave() const override {
        return m_pControl->PlanCutSave();
    }
    [[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> GetCutSaveResults() const override {
        return m_pControl->m_vCutSaveResults;
    }

    [[nodiscard]] KV_ScenePane::AlignmentPicks GetAlignmentPicks() const override {
        return m_pControl->GetAlignmentPicks();
    }
    bool AlignByPairs(std::span<const KV_ScenePane::AlignmentPair> pairs) override {
        return Held()->AlignByPairs(pairs);
    }
    [[nodiscard]] KV_ScenePane::AlignmentResult GetAlignmentResult() const override {
        return m_pControl->m_lastAlignment;
    }

    [[nodiscard]] std::string SaveProperties(KV_ScenePane::PropertyFormat format) override {
        return Held()->SaveProperties(format);
    }
    bool LoadProperties(std::string_view store, std::string* reason) override {
        return Held()->LoadProperties(store, reason);
    }
    [[nodiscard]] bool IsModified() const override { return m_pControl->m_bModified; }
    [[nodiscard]] KV_ScenePane::FrameStatistics GetFrameStatistics() const override {
        return {m_pControl->m_nFrameCount, m_pControl->m_fFrameSeconds};
    }

    bool ImportFile(const std::string& path, const KV_ScenePane::ImportOptions& options, std::string* reason) override {
        return Held()->ImportFile(path, options, reason);
    }
    [[nodiscard]] std::string LastError() const override { return m_pControl->m_strLastError; }

    Control& TheControl() { return *m_pControl; }

private:
    /// A temporary of the calling expression, which ends when the call has returned.
    [[nodiscard]] HostCall Held() const { return HostCall(m_pControl); }

    std::shared_ptr<Control> m_pControl;
    HandleMethods m_methods;
};

}  // namespace

std::unique_ptr<KV_ScenePane::ScenePane> MakeHandle(std::shared_ptr<CKV_ScenePaneCtrl> control) {
    return std::make_unique<Handle>(std::move(control));
}

CKV_ScenePaneCtrl& ControlOf(KV_ScenePane::ScenePane& handle) { return dynamic_cast<Handle&>(handle).TheControl(); }
