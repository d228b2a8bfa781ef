// CKV_ScenePaneCtrl: the one object that a host sees. Its state comes from its modules, one struct each, whose header
// says what holds between the members; the methods are grouped by the source file that defines them.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "align/AlignState.h"
#include "clip/ClipState.h"
#include "control/SceneState.h"
#include "cut/CutSource.h"
#include "cut/CutState.h"
#include "geometry/Box.h"
#include "geometry/Mesh.h"
#include "geometry/Vector3.h"
#include "io/ImportState.h"
#include "markers/MarkerState.h"
#include "platform/PaneWindow.h"
#include "render/RenderState.h"
#include "view/AnimationState.h"
#include "view/CameraState.h"
#include "view/InputState.h"
#include "view/ViewFrame.h"

class PropExchange;
struct MeasurementData;

/// One critical section for the whole process, held across a frame so that two controls never draw at the same time.
/// Created by the first control, never deleted. Recursive on its owner.
extern std::recursive_mutex* g_drawLock;

/// The clip plane's handles that are shown and offered.
enum class PlaneHandles { Both, Move, Rotate };

class CKV_ScenePaneCtrl final : public SceneState,
                                public RenderState,
                                public CameraState,
                                public InputState,
                                public AnimationState,
                                public ImportState,
                                public MarkerState,
                                public ClipState,
                                public CutState,
                                public AlignState,
                                public KV_ScenePane::_DKV_ScenePane,
                                public WindowClient {
public:
    using VARIANT_BOOL = KV_ScenePane::VARIANT_BOOL;
    using BSTR = KV_ScenePane::BSTR;
    using ImportMeasurementEntry = KV_ScenePane::ImportMeasurementEntry;

    // ---- control/ScenePaneCtrl.cpp
    /// Sets the members; creates no window and makes no OpenGL call.
    explicit CKV_ScenePaneCtrl(std::unique_ptr<PaneWindow> window);
    /// Destroys the window first when it is still there.
    ~CKV_ScenePaneCtrl();
    CKV_ScenePaneCtrl(const CKV_ScenePaneCtrl&) = delete;
    CKV_ScenePaneCtrl& operator=(const CKV_ScenePaneCtrl&) = delete;
    /// Creates the window and with it the context.
    /// @param reason  receives why the window system refused; untouched when the context was refused
    /// @return false when there is no window
    bool CreateControlWindow(std::string* reason);
    /// Makes the control's context current; false without one, and then no context is current.
    bool MakeContextCurrent();
    /// Draws a frame before it returns.
    void RefreshControl();
    /// Queues a repaint. @param erase  passed on to the window with the request
    void InvalidateControl(bool erase);
    /// Fires an event. All events go through it: the repaint that a method requests after an event is not lost when the
    /// handler throws.
    template <typename... Parameters, typename... Arguments>
    void Fire(void (KV_ScenePane::_DKV_ScenePaneEvents::*event)(Parameters...), Arguments... arguments) {
        if (m_pEvents == nullptr) return;
        try {
            (m_pEvents->*event)(arguments...);
        } catch (...) {
            InvalidateControl(false);
            throw;
        }
    }

    // ---- control/ScenePaneCtrl.cpp: what the host's handle passes on (control/ScenePaneHandle.cpp)
    void Connect(KV_ScenePane::_DKV_ScenePaneEvents* events);
    [[nodiscard]] int EventDescriptor() const;
    void ProcessEvents();
    /// Fires ReadyStateChange when the ready state is another one than the host knows; not while the context is being
    /// made again, which may succeed.
    void ReportReadyState();
    [[nodiscard]] bool HasWindow() const;
    [[nodiscard]] std::uintptr_t NativeWindow() const;
    bool Reparent(std::uintptr_t parent, int x, int y);
    void SendMouse(const KV_ScenePane::MouseInput& input);
    void SendKey(const KV_ScenePane::KeyInput& input);
    bool GetObjectInfo(std::int16_t idx, KV_ScenePane::ObjectInfo* info);
    bool GetGraphicsInfo(KV_ScenePane::GraphicsInfo* info);
    bool CapturePicture(KV_ScenePane::Picture* picture);

    // ---- control/PersistedProperties.cpp
    /// Exchanges the version, then the persisted properties in their order. Repaints nothing and leaves m_bModified.
    /// @throws PropertyStoreError for a store that cannot be read: the properties are then as before
    void DoPropExchange(PropExchange& exchange);
    [[nodiscard]] std::string SaveProperties(KV_ScenePane::PropertyFormat format);
    bool LoadProperties(std::string_view store, std::string* reason);

    /// The host has destroyed the handle, perhaps inside a call of it: from here on nothing is fired, shown or drawn,
    /// and input is ignored.
    void CloseForHost();

    // ---- control/SettingMethods.cpp: properties. Each change invalidates with erase and marks the control modified.
    VARIANT_BOOL GetDrawMosaic() override;
    void SetDrawMosaic(VARIANT_BOOL value) override;
    std::int16_t GetDrawMode() override;
    void SetDrawMode(std::int16_t value) override;
    VARIANT_BOOL GetMoveReduced() override;
    void SetMoveReduced(VARIANT_BOOL value) override;
    std::int32_t GetReadyState() override;

    // ---- control/SceneMethods.cpp
    void SetSize(std::int16_t sx, std::int16_t sy) override;
    void ClearData() override;
    std::int16_t GetNumObjects() override;
    std::int32_t GetObjectColor(std::int16_t idx) override;
    void SetObjectColor(std::int16_t idx, std::int32_t color) override;
    void SetObjectVisibility(std::int16_t idx, std::int16_t visible) override;
    void GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) override;
    VARIANT_BOOL GetObjectCenter(std::int16_t objectIdx, float* x, float* y, float* z) override;
    void GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min, float* y_max,
                              float* z_min, float* z_max) override;
    std::int16_t GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4, float* v5,
                                float* v6, float* v7, float* v8, float* v9, float* v10, float* v11, float* v12,
                                float* v13, float* v14, float* v15) override;
    std::int16_t SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4, float v5, float v6,
                                float v7, float v8, float v9, float v10, float v11, float v12, float v13, float v14,
                                float v15) override;
    void DeleteObject(std::int16_t idx) override;
    void SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) override;
    void ResetSelection() override;
    void AddSelection(std::int16_t idx) override;
    void ResetVariableObjects() override;
    void AddVariableObject(std::int16_t idx) override;

    // ---- control/SettingMethods.cpp
    void SetAllowEmptyObjects(VARIANT_BOOL allow) override;
    void BlockPaintEvents(VARIANT_BOOL block) override;
    void SetReflection(float brightness, float shining) override;
    void SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) override;
    void SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                        std::int32_t BottomLeftColor, std::int32_t BottomRightColor) override;
    void SetCrossColor(std::int32_t color) override;
    std::int32_t GetCrossColor() override;
    void SetArrowColor(std::int32_t color) override;
    void ShowLightingArrow(std::int16_t show) override;
    void ShowAxes(std::int16_t show) override;
    void SetArrowAngle(std::int16_t angle) override;
    void SetScanSkipVal(std::int16_t skipVal) override;
    std::int16_t GetScanSkipVal() override;
    void SetConfidenceFilter(float confFilter) override;
    void SetPickRadius(float r) override;
    void SetPointCloudRenderPointSize(float size) override;
    void PerformRefresh() override;
    void PerformInvalidate() override;
    void SetMeshFilename_Removed() override;

    // ---- io/ImportScan.cpp
    void ImportScan(BSTR path, std::int32_t color) override;

    // ---- io/ImportFile.cpp
    bool ImportFile(const std::string& path, const KV_ScenePane::ImportOptions& options, std::string* reason);
    /// Runs an import of the host, and keeps in m_strLastError why it added nothing.
    void RunImport(const std::function<void()>& import);
    /// Runs ExportMesh() of the host, and keeps in m_strLastError why it wrote nothing.
    void RunExport(BSTR path, const std::function<void()>& write);

    // ---- io/MemoryImports.cpp
    void ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                     const float* confidence, const float* trafo, std::int32_t color) override;
    void ImportMeshedMeasurement(const MeshBuffers* mesh, BSTR filename, std::int32_t color) override;
    void ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles, const float* vertices,
                              const std::int32_t* triangles) override;

    // ---- io/ParallelImport.cpp
    void BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) override;
    void EndParallelImport() override;

    // ---- render/ContextLifecycle.cpp
    VARIANT_BOOL RecreateOpenglContext(std::int32_t majorVersion, std::int32_t minorVersion,
                                       std::int32_t numberOfSamples) override;

    // ---- render/Shadows.cpp
    void SetShadowMode(std::int16_t mode) override;
    std::int16_t GetShadowMode() override;
    void SetShadowColor(float red, float green, float blue) override;

    // ---- render/Overlays.cpp
    std::int32_t AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width, std::int32_t height,
                                float relPosX, float relPosY, float relOffsetX, float relOffsetY, float absOffsetX,
                                float absOffsetY) override;
    void SetOverlayVisibility(std::int32_t index, std::int32_t enable) override;

    // ---- render/Screenshot.cpp
    void CaptureScreenShot(std::uint32_t* buffer) override;
    void GetScreenShotResolution(std::int32_t* width, std::int32_t* height) override;

    // ---- view/Camera.cpp
    void SetViewMode(std::int16_t mode) override;
    VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx, float cy,
                               float cz, float zoom, std::int16_t freezeBBox) override;
    void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx, float* cy,
                       float* cz, float* zoom) override;
    VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz) override;
    void CenterView() override;
    void SetDefaultZoomFactor(float newDefault) override;
    void TracingMode(std::int16_t on) override;

    // ---- view/MouseInput.cpp
    void FlipMouseButtons(std::int16_t flip) override;
    void AllowMouseInteraction(std::int16_t on) override;
    void SetIGDRotation(std::int16_t on) override;

    // ---- view/ViewRotation.cpp
    void SetRotationMode(std::int16_t mode) override;

    // ---- view/Animation.cpp
    void StartAnimation(float revolutionsPerSecond) override;
    void StopAnimation() override;
    void ToggleAnimationOnSpacebar(std::int32_t enabled) override;
    VARIANT_BOOL IsAnimationRunning() override;
    void SetAnimationSpeed(float revolutionsPerSecond) override;

    // ---- markers/Picking.cpp
    void SetPickMode(std::int16_t mode) override;
    std::int16_t GetPickMode() override;

    // ---- markers/PickPointSpheres.cpp
    std::int32_t AddPickPointSphere(float x, float y, float z, std::int32_t color) override;
    void MovePickPointSphere(std::int32_t id, float x, float y, float z) override;
    void RemovePickPointSphere(std::int32_t id) override;
    void ClearPickPointSpheres() override;
    std::int32_t GetNumberOfPickPointSpheres() override;
    void GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) override;
    std::int32_t FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) override;

    // ---- markers/Lines3D.cpp
    void SetLine3DDrawingMode(VARIANT_BOOL enable) override;
    VARIANT_BOOL GetLine3DDrawingMode() override;
    VARIANT_BOOL CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs, const float* XYZs) override;

    // ---- markers/FreePoints.cpp
    std::int32_t ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors, float alpha) override;
    void SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) override;
    void DeletePoints(std::int32_t id) override;

    // ---- markers/Needles.cpp
    void SetNeedlePickingMode(VARIANT_BOOL enable) override;
    VARIANT_BOOL GetNeedlePickingMode() override;
    void SetNeedleDrawingMode(VARIANT_BOOL enable) override;
    VARIANT_BOOL GetNeedleDrawingMode() override;
    void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, std::int32_t needleHeadColor,
                                   float needlePinSize, std::int32_t needlePinColor, float needleHitPointRadius,
                                   std::int32_t needleHitPointColor, std::int32_t needleHeadSelectionColor) override;
    void SetMaxNumberOfNeedles(std::int32_t num) override;
    VARIANT_BOOL CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ, float headPosX,
                              float headPosY, float headPosZ) override;
    VARIANT_BOOL CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                               const float* headPosXYZ) override;
    VARIANT_BOOL DeleteNeedle(std::int32_t id) override;
    void DeleteNeedles() override;
    void SelectNeedle(std::int32_t id) override;
    VARIANT_BOOL DeselectNeedle(std::int32_t id) override;
    void DeselectAllNeedles() override;
    std::int32_t GetNumberOfNeedles() override;
    VARIANT_BOOL GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX,
                           float* headPosY, float* headPosZ) override;
    void GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) override;

    // ---- clip/ClipMethods.cpp
    void SetClipPlaneEnabled(std::int32_t displayClipPlane) override;
    void SetClipPlaneDisabled() override;
    void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                      float normalZ) override;
    void SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) override;
    void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                      float* normalZ) override;
    void DisplayClipPlanePartCloseToData() override;
    /// ScenePane::GetClipHeight().
    [[nodiscard]] KV_ScenePane::ClipHeight GetClipHeight() const { return m_clipHeight; }

    // ---- align/AlignMethods.cpp
    void AlignInteractive() override;
    void AlignPickPoints() override;
    void FinishInteraction() override;
    /// ScenePane::GetAlignmentPicks().
    [[nodiscard]] KV_ScenePane::AlignmentPicks GetAlignmentPicks() const;

    // ---- align/AlignPairs.cpp
    /// ScenePane::AlignByPairs().
    bool AlignByPairs(std::span<const KV_ScenePane::AlignmentPair> pairs);
    /// The variable objects that are in the scene, in the order of their list; one that is listed twice is there twice.
    /// One that only an undo step holds stays as it was at the cut.
    [[nodiscard]] std::vector<std::shared_ptr<Mesh>> MovingObjects() const;
    /// Moves these objects by MatchPoints() and stores the result of the alignment. Asks for no repaint.
    /// @param target  as many as @p source
    /// @return whether there is a transform
    bool MoveByPoints(std::span<const Vertex> source, std::span<const Vertex> target);

    // ---- control/AboutBox.cpp
    void AboutBox() override;

    // ---- cut/CutMethods.cpp: sessions
    void StartSegmentation(std::int16_t mode) override;
    void EndSegmentation() override;
    void SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                               float outsideOpacity) override;
    /// ScenePane::CutWithLasso().
    bool CutWithLasso(KV_ScenePane::SegmentationMode mode, std::span<const KV_ScenePane::LassoPoint> points);
    /// Keeps m_bLassoCursor and the cursor of the window equal.
    void ShowLassoCursor(bool show);

    // ---- cut/UndoStack.cpp
    std::int32_t PerformUndo() override;
    void ClearUndoStack() override;
    [[nodiscard]] int GetUndoStepCount() const { return static_cast<int>(m_vUndoStack.size()); }

    // ---- cut/CutMaskList.cpp
    VARIANT_BOOL GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) override;
    void ClearCutMasks() override;

    // ---- cut/CutSave.cpp
    VARIANT_BOOL SaveCuttingToPcms() override;
    /// ScenePane::PlanCutSave().
    [[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> PlanCutSave() const;

    // ---- io/MeshImportExport.cpp
    void ImportMesh(BSTR path) override;
    void ExportMesh(std::int16_t objIdx, BSTR path) override;

    // ---- control/ComponentMethods.cpp
    void InitializeKVReg() override;
    void FinalizeKVReg() override;
    void SetHpsSourceApp(BSTR appName, BSTR appVersion) override;

    // ---- control/SceneMethods.cpp
    /// The object at a host's index, or null when it is negative or past the end.
    [[nodiscard]] Mesh* ObjectAt(std::int16_t idx) const;
    /// The entries of m_vpSelection whose object still exists, in their order; they exist as long as the result.
    [[nodiscard]] std::vector<std::shared_ptr<Mesh>> LiveSelection() const;
    /// The same of m_vpVariableObjects.
    [[nodiscard]] std::vector<std::shared_ptr<Mesh>> LiveVariableObjects() const;

    // ---- io/ImportScan.cpp
    /// Common end of all imports of a grid: triangulates it and passes the object to AddMeshToScene(). Any thread
    /// during a parallel import.
    /// @return whether an object was added; if not, the reason is in the debugger output
    bool SetScanData(const MeasurementData& data, const MeasurementOrigin& origin);

    // ---- io/PlyImportExport.cpp, StlImportExport.cpp, SmallMeshImport.cpp, HpsImportExport.cpp: the formats of
    // ImportMesh and ExportMesh. An import adds one object or none. The reason of a refused file is thrown, or written
    // to the debugger output with -1 returned.
    int ImportPly(const wchar_t* path);
    void ExportPly(std::int16_t objIdx, const wchar_t* path);
    int ImportStl(const wchar_t* path);
    void ExportStl(std::int16_t objIdx, const wchar_t* path);
    int ImportOis(const wchar_t* path);
    int ImportMsh(const wchar_t* path);
    int ImportHps(const wchar_t* path);
    void ExportHps(std::int16_t objIdx, const wchar_t* path);

    // ---- io/ParallelImport.cpp
    /// Appends a finished measurement to the object list, or to the staging list while a parallel import is running.
    /// Any thread during a parallel import.
    /// @param index  order among the staged objects; unused outside a parallel import
    void AddMeshToScene(std::shared_ptr<Mesh> mesh, std::int32_t index);
    /// Threads that an import by a method may use, the calling one included: all cores, or none but its own during a
    /// parallel import, when the host's threads use them.
    [[nodiscard]] unsigned ImportThreads() const;

    // ---- render/ContextLifecycle.cpp
    int OnCreate() override;
    void OnDestroy() override;

    // ---- render/ScreenScale.cpp
    /// Sets m_fScale, see ScenePane::SetScale().
    void SetScale(double scale);
    /// Makes the fonts and the line width of m_fScale in the current context.
    void ApplyScale();

    // ---- render/Frame.cpp
    void OnPaint() override;
    /// Keeps the pixels of the last frame as the frozen image, which later frames show in place of the scene.
    void FreezeFrame();
    /// Stores a changed size of the window and sets up viewport and matrices for it. The context is current.
    /// @return whether the size has changed
    bool StoreWindowSize();
    /// Makes the depths of m_frameTarget those of the objects in the live view, see m_bObjectDepths. The colours stay,
    /// except after a change of the size. The context is current.
    void DrawObjectDepths();

    // ---- render/Shadows.cpp
    /// Builds the programs and both off-screen framebuffers in the current context; ends the process on a failure.
    void InitFramebuffers();
    /// Draws the visible objects into the shadow map, seen from the light. The program of the depth pass stays bound.
    /// @param projection, modelView  receive the matrices of the light, 16 floats each, column-major
    void RenderShadowMap(float* projection, float* modelView);

    // ---- render/Decorations.cpp, Axes.cpp, Overlays.cpp: steps of a frame; each restores the OpenGL state
    void DrawBackground();
    void DrawCross();
    void DrawLightingArrow();
    void DrawAxes();
    void DrawOverlays();
    /// Uploads the texture of every overlay into the current context, which is new.
    void UploadOverlays();

    // ---- render/Screenshot.cpp
    /// Draws the whole scene into the off-screen framebuffer and restores the view. The context is current.
    void RenderOffscreen();

    // ---- steps of a frame that other modules draw; without effect while their lists are empty
    void DrawLassoPolygon();  // cut/CutFrame.cpp
    void DrawCutSession();    // cut/CutFrame.cpp
    /// @param lineWidth  pixels
    void DrawLines3D(float lineWidth);  // markers/Lines3D.cpp
    /// @param fontIndex  of the numbers beside the heads
    void DrawNeedles(int fontIndex);  // markers/NeedleDraw.cpp
    void DrawPickPointSpheres();      // markers/PickPointSpheres.cpp
    /// Draws the visible point sets, opaque ones first. The context is current.
    void DrawFreePoints();  // markers/FreePoints.cpp
    void DrawClipPlane();   // clip/ClipFrame.cpp

    // ---- clip/ClipPlacement.cpp: the height of the data
    /// A height for a horizontal clip plane, from the vertices of all objects, also of hidden ones.
    /// @throws std::runtime_error with the text of the status that an object of the component library returned, and
    ///         when the library has no such object
    [[nodiscard]] KV_ScenePane::ClipHeight EstimateClipHeight() const;
    /// Makes the clip plane horizontal at the estimated height, in the middle of the scene box; -20 without a height.
    /// Shows the wait cursor, writes a line to the log and stores m_clipHeight. Asks for no repaint.
    /// @throws what EstimateClipHeight() throws: the plane and m_clipHeight are then as before
    void PlaceClipPlaneAtData();

    // ---- cut/CutFinish.cpp
    /// Ends the session: cuts all visible objects unless @p cancel. The order of events and changes is part of the
    /// surface. Throws only what handlers and hooks throw: a failure of the cut is passed to ShowModalMessage().
    /// @return whether an object has changed
    bool FinishSegmentation(bool cancel);
    /// The mask of a region in the drawing area, with the camera of the last frame; the context is made current first.
    std::shared_ptr<const ACAD::CutMask> CreateCutMask(std::uint32_t kind, const CutSource& source);

    // ---- cut/CutInput.cpp: the lasso under the mouse
    /// Adds a corner of the polygon. @param x, y  pixel of the drawing area
    /// @return false without memory for it: the message about it has been shown, in which the host may do anything
    bool AddLassoPoint(std::int32_t x, std::int32_t y);
    // Of the freehand lasso; x and y are fractions of the drawing area.
    /// Makes the session from the waiting textures; without them nothing happens.
    void StartCutSession(float x, float y);
    /// @return as AddLassoPoint()
    bool AddCutSessionPoint(float x, float y);
    void PreviewCutSessionPoint(float x, float y);

    // ---- cut/CutTextures.cpp
    /// The OpenGL objects of a freehand session, with the silhouette of the visible objects; null without a context.
    std::unique_ptr<CutMaskTextures> CreateCutMaskTextures();

    // ---- view/Camera.cpp
    /// Rebuilds projection, modelview, shadow camera and light from the frame; makes the context current.
    void SetupViewMatrices();
    /// Viewport and aspect from the stored size; makes the context current.
    void UpdateViewport();
    /// UpdateViewport() and the size check of the frame in one: stores the aspect factors of the stored size.
    void ApplyAspect();
    void FitViewToScene();
    /// Union of the visible meshes with triangles and the visible free points; -50..50 when there is none.
    [[nodiscard]] Box GetSceneBoundingBox() const;
    /// What a screenshot shows: GetSceneBoundingBox() with the lines and the needles, if they are drawn.
    [[nodiscard]] Box GetPictureBoundingBox() const;
    /// Moves the centre by a mouse travel in pixels.
    void PanView(std::int32_t dx, std::int32_t dy);
    void ZoomView(std::int32_t dx, std::int32_t dy);
    /// Nearest surface on the axis through the window's centre.
    [[nodiscard]] std::optional<Float3> FindViewAxisHit(const Float3& direction);
    void FireViewDirectionChanged();
    [[nodiscard]] ViewFrame LiveFrame() const;
    void SetLiveFrame(const ViewFrame& frame);

    // ---- view/Conversions.cpp: by the current OpenGL matrices; window pixels, y downward
    /// Combined matrix of a frame other than the live one, 16 floats, column-major.
    void ComputeFrameMatrix(const ViewFrame& frame, float* matrix);
    /// @return false when the projection is not finite or does not fit the integers, and without a context
    bool ProjectPoint(float x, float y, float z, std::int32_t* windowX, std::int32_t* windowY);
    bool ProjectPointWithDepth(float x, float y, float z, std::int32_t* windowX, std::int32_t* windowY, float* depth);
    void ProjectPointDouble(double x, double y, double z, double* windowX, double* windowY);
    /// 0 when there is no inverse or no context; the outputs are then untouched.
    int UnprojectPoint(std::int32_t windowX, std::int32_t windowY, float depth, float* x, float* y, float* z);

    // ---- view/MouseInput.cpp: input of the window to the dispatcher, which calls the handlers below at once or
    // delayed
    /// Registers the handlers with the dispatcher.
    void ConnectMouseHandlers();
    /// ScenePane::SetMouseFilter().
    void SetMouseFilter(std::function<bool(const KV_ScenePane::MouseInput&)> filter);
    void OnMouse(const KV_ScenePane::MouseInput& input) override;
    [[nodiscard]] bool WantsEveryMove() const override;
    void OnPrivateMessage(std::uint32_t message) override;
    /// For a press that waits while the window is made again.
    void RestartDispatchTimer();
    void OnMouseWheel(std::uint32_t flags, std::int32_t delta);

    // ---- view/MousePress.cpp: x and y are pixels of the drawing area, flags as in MouseInput and kMouseMoved
    void OnLeftDown(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void OnMiddleDown(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void OnRightDown(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void OnDoubleClick(std::uint32_t flags, std::int32_t x, std::int32_t y);
    /// @param moving  the view is about to move, so that objects may be drawn reduced
    void BeginDrag(std::int32_t x, std::int32_t y, bool moving);

    // ---- view/MouseMove.cpp
    void OnMouseMoved(std::uint32_t flags, std::int32_t x, std::int32_t y);

    // ---- view/MouseRelease.cpp
    void OnLeftUp(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void OnMiddleUp(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void OnRightUp(std::uint32_t flags, std::int32_t x, std::int32_t y);

    // ---- clip/PlaneInput.cpp: the clip plane under the mouse
    /// Whether a mouse input with these flags is for the plane in place of the view: with Ctrl, while it is shown.
    [[nodiscard]] bool IsForPlane(std::uint32_t flags) const;
    /// Starts a drag of the whole plane and sets the mode; the handles that it does not use are hidden.
    /// @param mode  ModePlaneRotate or ModePlaneMove; ModeIdle only highlights the plane
    void EnterPlaneDrag(std::int32_t x, std::int32_t y, std::int32_t mode);
    /// Starts a drag of the handle that the last hover found; there must be one.
    void BeginPlaneHandleDrag(std::int32_t x, std::int32_t y);
    /// One step of a drag of the plane or of a handle. Ends the drag of the whole plane when Ctrl or the plane is gone.
    /// @return whether the point becomes the last one
    bool DragPlane(std::uint32_t flags, std::int32_t x, std::int32_t y);
    /// Shows all handles again. @param ctrl  the plane stays highlighted
    void EndPlaneDrag(bool ctrl);
    /// Picks the handle under the mouse, and repaints when the mouse came onto a handle or left all of them. Highlights
    /// the plane while Ctrl is held.
    void HoverOverPlane(std::uint32_t flags, std::int32_t x, std::int32_t y);
    void ShowPlaneHandles(PlaneHandles handles);

    // ---- view/Keys.cpp
    void OnKey(const KV_ScenePane::KeyInput& input) override;
    void OnKeyPressed(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags);
    void OnKeyReleased(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags);

    // ---- view/ViewRotation.cpp: the rotation of the live view; the maths is RotateFrame() in view/Rotation.h
    void RotateView(std::int32_t dx, std::int32_t dy);
    /// @p frame after a mouse travel, by the rotation mode and the roll of the control.
    [[nodiscard]] ViewFrame ComputeRotatedFrame(const ViewFrame& frame, std::int32_t dx, std::int32_t dy) const;

    // ---- view/Animation.cpp
    /// One step of the running turntable by the clock; after the time of one revolution it ends the animation.
    void AnimationStep();

    // ---- markers/Needles.cpp
    [[nodiscard]] bool IsNeedleListFull() const;
    /// The operation behind SelectNeedle().
    /// @return whether the needle existed, still after the events of those that it deselects
    bool SelectOnlyNeedle(std::int32_t id);
    /// Deselects every selected needle but this one, with the events.
    void DeselectNeedlesBut(std::int32_t id);

    // ---- markers/NeedleInput.cpp: x and y are pixels of the drawing area
    /// A left press: selects the needle whose head the window shows there, or deselects all.
    void SelectNeedleAt(std::int32_t x, std::int32_t y);
    /// A move with the left button held: moves the head of the selected needle.
    /// @return whether a needle is selected: then the move has no other meaning. The caller refreshes
    bool DragSelectedNeedle(std::int32_t x, std::int32_t y);
    /// A double click: makes a needle on the surface that the window shows there, and selects it.
    void CreateNeedleAt(std::int32_t x, std::int32_t y);
    /// Deletes the first selected needle, with the events. The caller refreshes.
    void DeleteSelectedNeedle();

    // ---- markers/Picking.cpp
    /// The visible object under a pixel, or -1; @p hit receives the point, world frame. It is kept as the last pick.
    std::int32_t PickObjectAt(std::int32_t x, std::int32_t y, Float3* hit);
    /// ScenePane::PickSurface(): the same search, which keeps nothing.
    bool PickSurface(std::int32_t x, std::int32_t y, KV_ScenePane::SurfacePoint* hit);
    /// Picks by colour: draws the objects in false colours, where nobody sees it, and lets the one at the pixel
    /// store its pick; the others clear theirs. The caller holds g_drawLock.
    /// @param y  from the bottom of the window
    void PickRenderObjectsAt(std::span<RenderObject* const> objects, std::int32_t x, std::int32_t y);
    /// Fires SelectViewDirection in PickModeCross. The dispatcher has a slot for it that no input reaches.
    void OnRightDoubleClick(std::uint32_t flags, std::int32_t x, std::int32_t y);
};
