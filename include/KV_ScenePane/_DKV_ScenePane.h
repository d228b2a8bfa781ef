// The methods and properties of the viewer. A host calls them on the thread that made the control.
#pragma once
#include <cstdint>

#include "KV_ScenePane/MeshBuffers.h"
#include "KV_ScenePane/Types.h"

namespace KV_ScenePane {

/// The automation surface. Colours are 0x00BBGGRR. Object indices are positions in the object list, from 0. Pointers
/// that go in are read during the call only; pointers that come out must lead to enough room.
class _DKV_ScenePane {
public:
    // ---- properties
    /// Stored and persisted; has no effect on the picture
    virtual VARIANT_BOOL GetDrawMosaic() = 0;
    virtual void SetDrawMosaic(VARIANT_BOOL value) = 0;
    /// 0 points, 1 wireframe, 2 flat, 3 Gouraud, 4 boxes, 5 lit per pixel, 6 nothing, 7 the shadow map
    virtual std::int16_t GetDrawMode() = 0;
    virtual void SetDrawMode(std::int16_t value) = 0;
    /// Show a tenth of the points while a drag moves the view
    virtual VARIANT_BOOL GetMoveReduced() = 0;
    virtual void SetMoveReduced(VARIANT_BOOL value) = 0;
    /// Always 4, complete
    virtual std::int32_t GetReadyState() = 0;

    // ---- methods, in the order of their ids
    /// Sets the control size and the drawing area, pixels. Asks for no repaint
    virtual void SetSize(std::int16_t sx, std::int16_t sy) = 0;
    /// Empties the scene, undo stack and lines, resets the view; invalidates. Selection and variable objects keep stale
    /// entries: reset them first
    virtual void ClearData() = 0;
    /// Destroys all snapshots
    virtual void ClearUndoStack() = 0;
    /// Stores colour and opacity for inside and outside the lasso
    virtual void SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                                       float outsideOpacity) = 0;
    /// Places the plane close to the data
    virtual void DisplayClipPlanePartCloseToData() = 0;
    /// Id of the sphere nearest to a screen point
    virtual std::int32_t FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) = 0;
    /// Removes a sphere, fires PickPointCountChanged
    virtual void RemovePickPointSphere(std::int32_t id) = 0;
    /// Position of a sphere
    virtual void GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) = 0;
    /// Number of spheres
    virtual std::int32_t GetNumberOfPickPointSpheres() = 0;
    /// Sets m_nMaxNeedles (negative counts as 0), deletes needles from the end down to it, firing NeedleDeleted for
    /// each
    virtual void SetMaxNumberOfNeedles(std::int32_t num) = 0;
    /// True when the needle was selected; fires NeedleDeselected
    virtual VARIANT_BOOL DeselectNeedle(std::int32_t id) = 0;
    /// Deselects every selected needle
    virtual void DeselectAllNeedles() = 0;
    /// Selects the needle, fires NeedleSelected, refreshes
    virtual void SelectNeedle(std::int32_t id) = 0;
    /// Recreates the window's context with another version or number of samples; the scene is lost, overlays stay.
    /// Always true: a failure shows in the message and the log
    virtual VARIANT_BOOL RecreateOpenglContext(std::int32_t majorVersion, std::int32_t minorVersion,
                                               std::int32_t numberOfSamples) = 0;
    /// 0, 4: a double click centres the view; 1: the same, and the centre cross shows; 2, 3: a double click on an
    /// object fires SelectObjCoords; 5: the same, beside the objects it does nothing, and pick-point spheres show.
    /// Drops the last pick and all spheres, fires PickPointCountChanged with 0. Asks for no repaint
    virtual void SetPickMode(std::int16_t mode) = 0;
    virtual std::int16_t GetPickMode() = 0;
    /// Colour of the centre cross, 0x00BBGGRR; it shows in pick mode 1. Asks for no repaint
    virtual void SetCrossColor(std::int32_t color) = 0;
    /// Colour of the centre cross, 0x00BBGGRR
    virtual std::int32_t GetCrossColor() = 0;
    /// Point of the surface in the middle of the window (found by its vertices) and the direction to the viewer; false
    /// when no vertex faces the viewer: the outputs are then untouched
    virtual VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz) = 0;
    /// Size of the object list
    virtual std::int16_t GetNumObjects() = 0;
    /// Colour, 0x00BBGGRR, each channel rounded down; -1 for a bad index
    virtual std::int32_t GetObjectColor(std::int16_t idx) = 0;
    /// Sets the colour, 0x00BBGGRR; invalidates. A bad index or the present colour does nothing
    virtual void SetObjectColor(std::int16_t idx, std::int32_t color) = 0;
    /// Starts a lasso or mask lasso
    virtual void StartSegmentation(std::int16_t mode) = 0;
    /// Vertex and triangle counts; the index must be valid, it is not checked
    virtual void GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) = 0;
    /// Empties the list, fires PickPointCountChanged
    virtual void ClearPickPointSpheres() = 0;
    /// Moves a sphere
    virtual void MovePickPointSphere(std::int32_t id, float x, float y, float z) = 0;
    /// Restores the last snapshot
    virtual std::int32_t PerformUndo() = 0;
    /// Imports a file, chosen by extension
    virtual void ImportMesh(BSTR path) = 0;
    /// Exports an object, chosen by extension
    virtual void ExportMesh(std::int16_t objIdx, BSTR path) = 0;
    /// Imports a measurement, chosen by extension: pcm, pax or xdt; color (0x00BBGGRR) is taken when the scan has no
    /// colours of its own. A file that adds nothing says why in the debugger output
    virtual void ImportScan(BSTR path, std::int32_t color) = 0;
    /// 1 shows the lighting arrow, any other value hides it; refreshes
    virtual void ShowLightingArrow(std::int16_t show) = 0;
    /// Colour of the lighting arrow, 0x00BBGGRR; refreshes
    virtual void SetArrowColor(std::int32_t color) = 0;
    /// 1 fires ViewDirectionChanged while the view moves or is set, any other value does not
    virtual void TracingMode(std::int16_t on) = 0;
    /// Non-zero swaps the buttons: left pans, right rotates. A double click then does nothing
    virtual void FlipMouseButtons(std::int16_t flip) = 0;
    /// What a rotating drag turns about: 0 the screen's horizontal, 1 its vertical, 2 the viewing axis, else free.
    /// Holds from the next step of a drag
    virtual void SetRotationMode(std::int16_t mode) = 0;
    /// Sets one of eight fixed views, 0 to 7; another value keeps the view. Refreshes in any case. A double click that
    /// centres returns to the view set last, while the axes show to 4
    virtual void SetViewMode(std::int16_t mode) = 0;
    /// Empties the selection. Asks for no repaint
    virtual void ResetSelection() = 0;
    /// Selects the object: it is shown with its box. Asks for no repaint
    virtual void AddSelection(std::int16_t idx) = 0;
    /// Empties the list of objects that an alignment may move
    virtual void ResetVariableObjects() = 0;
    /// Appends the object to those that an alignment may move
    virtual void AddVariableObject(std::int16_t idx) = 0;
    /// Opens the dialog, mode 6
    virtual void AlignInteractive() = 0;
    /// Opens the dialog, mode 7
    virtual void AlignPickPoints() = 0;
    /// Redraws now
    virtual void PerformRefresh() = 0;
    /// Where the lighting arrow stands around the picture: degrees, 0 at the top, counterclockwise. Asks for no repaint
    virtual void SetArrowAngle(std::int16_t angle) = 0;
    /// Fits the view to the visible objects, keeping its direction; invalidates
    virtual void CenterView() = 0;
    /// N: later imports average cells of N x N pixels to one point each; 1 keeps all pixels, below 1 they add nothing
    virtual void SetScanSkipVal(std::int16_t skipVal) = 0;
    /// The 4 x 4 transform baked into the object, row by row, last row 0 0 0 1; 0, or -1 for a bad index
    virtual std::int16_t GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4,
                                        float* v5, float* v6, float* v7, float* v8, float* v9, float* v10, float* v11,
                                        float* v12, float* v13, float* v14, float* v15) = 0;
    /// 0 hides, anything else shows; invalidates
    virtual void SetObjectVisibility(std::int16_t idx, std::int16_t visible) = 0;
    /// 1 shows the axes, any other value hides them; refreshes. While they show, each frame stores view mode 4: a
    /// double click that centres then returns to the view from +Z
    virtual void ShowAxes(std::int16_t show) = 0;
    /// Pixels with a lower confidence are skipped by later imports
    virtual void SetConfidenceFilter(float confFilter) = 0;
    /// Ends a running alignment; AlignmentDone follows. Nothing happens without one
    virtual void FinishInteraction() = 0;
    /// Colours of the upper and the lower corners, 0x00BBGGRR; refreshes
    virtual void SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) = 0;
    /// Removes the object; later indices move down by one. Asks for no repaint. Selection and variable objects may keep
    /// a stale entry: reset them first
    virtual void DeleteObject(std::int16_t idx) = 0;
    /// Creates several needles
    virtual VARIANT_BOOL CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                                       const float* headPosXYZ) = 0;
    /// Deletes all needles
    virtual void DeleteNeedles() = 0;
    /// Centre, false for a bad index
    virtual VARIANT_BOOL GetObjectCenter(std::int16_t objectIdx, float* x, float* y, float* z) = 0;
    /// Sets the whole view: the screen-right and screen-up axes (unit length, perpendicular), the centre and the
    /// magnification; freezeBBox is not used. False when the axes are not accepted
    virtual VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx,
                                       float cy, float cz, float zoom, std::int16_t freezeBBox) = 0;
    /// Adds a sphere, returns its id
    virtual std::int32_t AddPickPointSphere(float x, float y, float z, std::int32_t color) = 0;
    /// Moves and the wheel act only while it is exactly 1. Presses and keys always do
    virtual void AllowMouseInteraction(std::int16_t on) = 0;
    /// Writes cuts back to measurement files
    virtual VARIANT_BOOL SaveCuttingToPcms() = 0;
    /// Non-zero: presses wait a tenth of a second, so that a chord and a click without travel can be told from a drag.
    /// Then right rotates, right with left or Shift pans, left alone picks, middle centres the view, the wheel is
    /// reversed. 0: back to direct; a press that waits is dropped
    virtual void SetIGDRotation(std::int16_t on) = 0;
    /// Specular material, refreshes
    virtual void SetReflection(float brightness, float shining) = 0;
    /// Replaces the transform baked into the object: its rotation and translation, row by row; the last row is
    /// ignored; 0, or -1 for a bad index
    virtual std::int16_t SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4, float v5,
                                        float v6, float v7, float v8, float v9, float v10, float v11, float v12,
                                        float v13, float v14, float v15) = 0;
    /// Reads the screen-right and screen-up axes, the centre and the magnification
    virtual void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx,
                               float* cy, float* cz, float* zoom) = 0;
    /// Ends the running cut
    virtual void EndSegmentation() = 0;
    /// 1 switches shadows on, any other value off. Asks for no repaint
    virtual void SetShadowMode(std::int16_t mode) = 0;
    /// 1 when on
    virtual std::int16_t GetShadowMode() = 0;
    /// Colours of the four corners, 0x00BBGGRR; refreshes
    virtual void SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                                std::int32_t BottomLeftColor, std::int32_t BottomRightColor) = 0;
    /// Radius of the pick-point spheres, scene units. Asks for no repaint
    virtual void SetPickRadius(float r) = 0;
    /// Queues a repaint
    virtual void PerformInvalidate() = 0;
    /// Box of the object, world frame; for a bad index the inverted box 1, -1 on each axis
    virtual void GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min, float* y_max,
                                      float* z_min, float* z_max) = 0;
    /// Creates one needle
    virtual VARIANT_BOOL CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ, float headPosX,
                                      float headPosY, float headPosZ) = 0;
    /// Starts a parallel import and hands out what worker threads call: the control's address and the import entry
    virtual void BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) = 0;
    /// Ends a parallel import: the finished objects join the list in the order of their indices. All workers must
    /// have returned
    virtual void EndParallelImport() = 0;
    /// Whether later imports of measurements without any triangle add an object all the same
    virtual void SetAllowEmptyObjects(VARIANT_BOOL allow) = 0;
    /// Holds all frames back, refreshes too, until painting is unblocked; what was asked for is then drawn
    virtual void BlockPaintEvents(VARIANT_BOOL block) = 0;
    /// Does nothing; the entry stays so that the ids after it keep their numbers
    virtual void SetMeshFilename_Removed() = 0;
    /// Stores the flag
    virtual void SetLine3DDrawingMode(VARIANT_BOOL enable) = 0;
    /// Reads the flag
    virtual VARIANT_BOOL GetLine3DDrawingMode() = 0;
    /// Creates a polyline under a new id
    virtual VARIANT_BOOL CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs, const float* XYZs) = 0;
    /// Deletes a free point set
    virtual void DeletePoints(std::int32_t id) = 0;
    /// Shows or hides a free point set
    virtual void SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) = 0;
    /// Uploads a free point set, returns its id
    virtual std::int32_t ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors, float alpha) = 0;
    /// Reads the value
    virtual std::int16_t GetScanSkipVal() = 0;
    /// Not 0 mixes 85 % of the object colour into the vertex colours. Asks for no repaint
    virtual void SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) = 0;
    /// Colour of the shadows, 0 to 1 each. Asks for no repaint
    virtual void SetShadowColor(float red, float green, float blue) = 0;
    /// Takes over a copy of a host mesh as an object with its normals as they are
    virtual void ImportMeshedMeasurement(const MeshBuffers* mesh, BSTR filename, std::int32_t color) = 0;
    /// Turns the scene about the world's Z axis, one revolution. It turns in the frames that are drawn, and asks for
    /// none: the host refreshes while it runs. A press or a key stops it. Of a running animation only the speed changes
    virtual void StartAnimation(float revolutionsPerSecond) = 0;
    virtual void StopAnimation() = 0;
    /// Whether the space bar starts an animation. The start of a segmentation switches it off, its end on
    virtual void ToggleAnimationOnSpacebar(std::int32_t enabled) = 0;
    virtual VARIANT_BOOL IsAnimationRunning() = 0;
    /// 0 stands still and never ends by itself
    virtual void SetAnimationSpeed(float revolutionsPerSecond) = 0;
    /// Size of points: pixels for objects, scene units for free points. Asks for no repaint
    virtual void SetPointCloudRenderPointSize(float size) = 0;
    /// Draws the whole scene, seen from the window's side and with its zoom, into a picture of 2048 x 2048 pixels: the
    /// background, the visible objects, the 3D lines and the needles. The view and the window stay as they are.
    /// @param buffer  takes 2048 x 2048 words (16,777,216 bytes), 0xAARRGGBB as integers of the machine, row after row
    ///                without padding, top row first; its size is not checked. All zero without OpenGL
    virtual void CaptureScreenShot(std::uint32_t* buffer) = 0;
    /// Always 2048, 2048
    virtual void GetScreenShotResolution(std::int32_t* width, std::int32_t* height) = 0;
    /// Lays an image of width x height pixels, bytes b, g, r, a, top row first, over the scene, at its own size. Its
    /// left edge is at window width x relPosX + image width x relOffsetX + absOffsetX pixels, its top edge the same
    /// with y: 1 and -1 pin it to the right or lower edge. The pixels are copied and live as long as the viewer,
    /// through RecreateOpenglContext() too. Null is an image that is transparent everywhere. A size below 1 x 1 is no
    /// image: nothing is drawn. So is one that the driver does not take, as when a side is above its
    /// GL_MAX_TEXTURE_SIZE; the debugger output says so. Returns the index in any case, valid for the life of the
    /// viewer. Asks for no repaint
    virtual std::int32_t AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width, std::int32_t height,
                                        float relPosX, float relPosY, float relOffsetX, float relOffsetY,
                                        float absOffsetX, float absOffsetY) = 0;
    /// Shows it when the low byte of enable is not 0. The index must be one that AddOverlayData returned. Asks for no
    /// repaint
    virtual void SetOverlayVisibility(std::int32_t index, std::int32_t enable) = 0;
    /// Stores the value, used by the next centring
    virtual void SetDefaultZoomFactor(float newDefault) = 0;
    /// Clipping on; the plane is shown when the argument is non-zero
    virtual void SetClipPlaneEnabled(std::int32_t displayClipPlane) = 0;
    /// Clipping and display off
    virtual void SetClipPlaneDisabled() = 0;
    /// Centre and normal of the plane
    virtual void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                              float normalZ) = 0;
    /// Colours of the plane
    virtual void SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) = 0;
    /// Reads centre and normal
    virtual void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                              float* normalZ) = 0;
    /// Stores the flag; off deselects all needles
    virtual void SetNeedlePickingMode(VARIANT_BOOL enable) = 0;
    /// Stores the flag
    virtual void SetNeedleDrawingMode(VARIANT_BOOL enable) = 0;
    /// Stores the parameters for needles made later
    virtual void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, std::int32_t needleHeadColor,
                                           float needlePinSize, std::int32_t needlePinColor, float needleHitPointRadius,
                                           std::int32_t needleHitPointColor, std::int32_t needleHeadSelectionColor) = 0;
    /// Reads the flag
    virtual VARIANT_BOOL GetNeedlePickingMode() = 0;
    /// Reads the flag
    virtual VARIANT_BOOL GetNeedleDrawingMode() = 0;
    /// Deletes one needle, true when it existed
    virtual VARIANT_BOOL DeleteNeedle(std::int32_t id) = 0;
    /// Number of needles
    virtual std::int32_t GetNumberOfNeedles() = 0;
    /// Reads one needle, true when it exists
    virtual VARIANT_BOOL GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX,
                                   float* headPosY, float* headPosZ) = 0;
    /// Copies all needles into the host arrays
    virtual void GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) = 0;
    /// Turns a host grid into an object: 3 floats a pixel, row after row, in scene units; one confidence a pixel; 16
    /// floats row-major sensor to world
    virtual void ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                             const float* confidence, const float* trafo, std::int32_t color) = 0;
    /// Turns host arrays into an object: 3 floats a vertex, world frame; 3 indices a triangle, not checked
    virtual void ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles,
                                      const float* vertices, const std::int32_t* triangles) = 0;
    /// Counts (cutMaskPtrs null) or hands out the distinct cut masks of all objects; false when more are asked for
    /// than there are
    virtual VARIANT_BOOL GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) = 0;
    /// Empties the cut masks of all objects
    virtual void ClearCutMasks() = 0;
    /// Starts the component registry
    virtual void InitializeKVReg() = 0;
    /// Stops the component registry
    virtual void FinalizeKVReg() = 0;
    /// Stores both strings for HPS export
    virtual void SetHpsSourceApp(BSTR appName, BSTR appVersion) = 0;
    /// Shows the modal about dialog
    virtual void AboutBox() = 0;

protected:
    ~_DKV_ScenePane() = default;
};

}  // namespace KV_ScenePane
