// The methods and properties of the viewer. A host calls them on the thread that made the control.
#pragma once
#include <cstdint>

#include "KV_ScenePane/MeshBuffers.h"
#include "KV_ScenePane/Types.h"

namespace KV_ScenePane {

/// The automation surface of a viewer: 4 properties and 120 methods.
///
/// Colours are 0x00BBGGRR: red is in the lowest byte. An object index is a position in the object list, from 0; a bad
/// index is one outside the list. Points and directions are in the world frame, lengths in scene units, angles in
/// degrees. Input arrays are read during the call only and stay the caller's; output pointers must not be null, and
/// their memory must be large enough for what is written.
///
/// A method that refreshes draws a frame before it returns; one that invalidates queues a repaint, and to invalidate
/// with erase marks that repaint as erasing. Unless a method says otherwise it asks for no repaint, reports no error
/// and throws nothing but std::bad_alloc.
class _DKV_ScenePane {
public:
    // ---- properties
    /// Persisted and returned, false at first; has no effect on the picture.
    virtual VARIANT_BOOL GetDrawMosaic() = 0;
    /// A change invalidates with erase and marks the control as modified.
    virtual void SetDrawMosaic(VARIANT_BOOL value) = 0;
    /// How objects are drawn, a DrawMode (Modes.h). Persisted; DrawModeGouraud at first.
    virtual std::int16_t GetDrawMode() = 0;
    /// With a value that is no DrawMode no objects are drawn. A change invalidates with erase and marks the control as
    /// modified.
    virtual void SetDrawMode(std::int16_t value) = 0;
    /// Whether objects are drawn as points, one for every tenth triangle, while a drag moves the view: in every draw
    /// mode but boxes. Persisted; false at first.
    virtual VARIANT_BOOL GetMoveReduced() = 0;
    /// A change invalidates with erase and marks the control as modified.
    virtual void SetMoveReduced(VARIANT_BOOL value) = 0;
    /// 4 (complete) while HasWindow() is true, else 0 (uninitialised). After a change ReadyStateChange is fired.
    virtual std::int32_t GetReadyState() = 0;

    // ---- methods, in the order of their ids
    /// Sets the size of the window and of the drawing area.
    /// @param sx, sy  pixels of the device
    /// Asks for no repaint.
    virtual void SetSize(std::int16_t sx, std::int16_t sy) = 0;
    /// Removes all objects, undo steps, 3D lines and cut masks in progress, turns the view to the world axes and fits
    /// it; invalidates. Needles, pick-point spheres, free points and overlays stay. The selection and the variable
    /// objects keep their entries, which have no effect any more.
    virtual void ClearData() = 0;
    /// Drops all undo steps; the objects of the scene stay. Asks for no repaint.
    virtual void ClearUndoStack() = 0;
    /// Tint of the objects under a freehand lasso, from the next session on; half-transparent red inside and none
    /// outside at first. Two tints are refused: colour 255 with opacity 0, and inside the tint of the line, 0xFFFF00
    /// with opacity 1. The first click of a session then shows a message, and the session has no lasso.
    /// @param inside                         of what the cut removes, 0x00BBGGRR
    /// @param outside                        of the rest, 0x00BBGGRR
    /// @param insideOpacity, outsideOpacity  0 invisible to 1 opaque
    virtual void SetLassoCuttingColors(std::int32_t inside, float insideOpacity, std::int32_t outside,
                                       float outsideOpacity) = 0;
    /// Slides the clip plane within its own surface to the centre of the data, so that its handles are on screen;
    /// invalidates with erase.
    virtual void DisplayClipPlanePartCloseToData() = 0;
    /// Finds the pick-point sphere whose centre is nearest to a point of the window, in whole pixels: depth and radius
    /// do not count, nor whether it is drawn. Of several at the same distance it is the one with the lowest id.
    /// @param sx, sy  pixels of the drawing area, y downward
    /// @return its id; -1 without OpenGL and when no sphere counts: one does not whose pixel is not finite, outside 32
    ///         bits, or at a squared distance of 2147483647 or more
    virtual std::int32_t FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) = 0;
    /// Removes a sphere; the ids after it move down by one. Fires PickPointCountChanged, then refreshes. The id must be
    /// valid: it is not checked.
    virtual void RemovePickPointSphere(std::int32_t id) = 0;
    /// Centre of a sphere, world frame. The id must be valid: it is not checked.
    virtual void GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) = 0;
    /// Number of pick-point spheres; their ids are 0 to this number minus 1.
    virtual std::int32_t GetNumberOfPickPointSpheres() = 0;
    /// Limits the number of needles, 8 at first. A negative number counts as 0. Needles above the limit are deleted
    /// from the end, with NeedleDeleted for each and without NeedleDeselected; invalidates with erase when there were
    /// any.
    virtual void SetMaxNumberOfNeedles(std::int32_t num) = 0;
    /// Deselects a needle: invalidates with erase and fires NeedleDeselected.
    /// @return true when it was selected
    virtual VARIANT_BOOL DeselectNeedle(std::int32_t id) = 0;
    /// DeselectNeedle() for every selected needle.
    virtual void DeselectAllNeedles() = 0;
    /// Selects a needle after it has deselected all others (DeselectNeedle()); fires NeedleSelected, also for one that
    /// was selected, and refreshes. An unknown id does nothing.
    virtual void SelectNeedle(std::int32_t id) = 0;
    /// Makes the window again with another OpenGL context. Objects, undo steps and lines are lost; overlays, needles
    /// and pick-point spheres stay. Free point sets keep id and box but are never drawn again. What showMessage throws
    /// for a refused context reaches the caller; there is no window then, as after any refusal.
    /// @param majorVersion, minorVersion  requested version, compatibility profile
    /// @param numberOfSamples  samples per pixel, exactly; 0 for none
    /// @return always true: a failure is reported by the message and the log, and HasWindow() is then false
    virtual VARIANT_BOOL RecreateOpenglContext(std::int32_t majorVersion, std::int32_t minorVersion,
                                               std::int32_t numberOfSamples) = 0;
    /// What clicks report, a PickMode (Modes.h). Drops the last pick and all pick-point spheres and fires
    /// PickPointCountChanged with 0. Asks for no repaint.
    virtual void SetPickMode(std::int16_t mode) = 0;
    /// The value of the last SetPickMode(); 0 at first.
    virtual std::int16_t GetPickMode() = 0;
    /// Colour of the centre cross, which shows in pick mode 1. Asks for no repaint.
    /// @param color  0x00BBGGRR
    virtual void SetCrossColor(std::int32_t color) = 0;
    /// Colour of the centre cross, 0x00BBGGRR.
    virtual std::int32_t GetCrossColor() = 0;
    /// The surface point on the axis through the middle of the window, found by its vertices, and the unit direction to
    /// the viewer; both in the world frame.
    /// @return false when no vertex faces the viewer: the outputs are then untouched
    virtual VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz) = 0;
    /// Number of objects, which is the length of the object list.
    virtual std::int16_t GetNumObjects() = 0;
    /// Colour of an object, 0x00BBGGRR, each channel rounded down; -1 for a bad index.
    virtual std::int32_t GetObjectColor(std::int16_t idx) = 0;
    /// Sets the colour of an object; invalidates. A bad index or the present colour does nothing.
    /// @param color  0x00BBGGRR
    virtual void SetObjectColor(std::int16_t idx, std::int32_t color) = 0;
    /// Starts a session in which the operator cuts all visible objects by a lasso; SegmentationDone reports its end.
    /// Left clicks add corners, and drags the way of a freehand lasso; a right click adds the last one and cuts; Escape
    /// and EndSegmentation() cancel. A session that runs is replaced without an event. Refreshes. Until the end the
    /// window shows the lasso cursor, and the space bar starts no animation. What a freehand lasso tints is where the
    /// objects were at the start: do not change the view or the objects before the end.
    /// A freehand lasso cannot be drawn in a window wider or higher than the largest texture: a message says so.
    /// @param mode  a SegmentationMode (Cutting.h); another value starts no session and has the other effects
    /// @throws std::bad_alloc, and what handlers and hooks throw: no session runs then, and no event reports that
    virtual void StartSegmentation(std::int16_t mode) = 0;
    /// Numbers of vertices and triangles of an object. The index must be valid: it is not checked.
    virtual void GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) = 0;
    /// Removes all pick-point spheres; fires PickPointCountChanged with 0, also when there were none, then refreshes.
    virtual void ClearPickPointSpheres() = 0;
    /// Sets the centre of a sphere, world frame; the colour stays. Refreshes. The id must be valid: it is not checked.
    virtual void MovePickPointSphere(std::int32_t id, float x, float y, float z) = 0;
    /// Restores the object list as it was before the last cut and refreshes: objects added since vanish, deleted ones
    /// return, indices may change. Fires no event; a session goes on. Colour, visibility and transform of objects that
    /// the cut did not replace stay as they are.
    /// @return number of undo steps that are left; also 0 when there was none
    virtual std::int32_t PerformUndo() = 0;
    /// Reads a mesh file, chosen by its extension: ply, stl, ois, msh or hps; adds one object. Reads on the calling
    /// thread. What is refused adds nothing, and one line of the debugger output has its path and the reason; a ply
    /// file throws the reason as well. Textures and hps files need InitializeKVReg() before.
    ///
    /// Of all imports: coordinates that are infinite or NaN count in no bounding box and no fit of the view; the object
    /// is added, and the line "FILE: N coordinates are not finite" says how many there were, of measurements in the
    /// pixels that are not masked. An stl, ois, msh or xdt file that was cut off is added, too, with a line such as
    /// "FILE: 768 of 1280 triangles are in the file", and a ply file that goes on after its end with "FILE: 6 bytes
    /// follow the end of its data".
    /// @throws std::exception  unreadable ply file, missing component registry, exhausted memory
    virtual void ImportMesh(BSTR path) = 0;
    /// Writes an object, format chosen by the extension: ply, stl or hps. An existing file is replaced as a whole, or
    /// stays as it is when the export fails.
    /// @param objIdx  valid index; it is not checked
    /// @throws std::exception  a failed hps export; the reason of every failure is written to the debugger output
    virtual void ExportMesh(std::int16_t objIdx, BSTR path) = 0;
    /// Reads a measurement, chosen by its extension: pcm, pax or xdt; adds one object and invalidates with erase. A
    /// file that adds nothing is reported in the debugger output.
    /// @param color  0x00BBGGRR, for scans without colours of their own
    virtual void ImportScan(BSTR path, std::int32_t color) = 0;
    /// 1 shows the lighting arrow, any other value hides it; refreshes.
    virtual void ShowLightingArrow(std::int16_t show) = 0;
    /// Colour of the lighting arrow, 0x00BBGGRR; refreshes.
    virtual void SetArrowColor(std::int32_t color) = 0;
    /// 1 fires ViewDirectionChanged while the view moves or is set, any other value does not.
    virtual void TracingMode(std::int16_t on) = 0;
    /// Not 0 swaps the buttons: left pans, right rotates. A double click then does nothing.
    virtual void FlipMouseButtons(std::int16_t flip) = 0;
    /// What a rotating drag turns the scene about, a RotationMode (Modes.h); any other value rotates freely. Applies
    /// from the next step of a drag.
    virtual void SetRotationMode(std::int16_t mode) = 0;
    /// Turns to one of the eight fixed views, a ViewMode (Modes.h), without moving or zooming; another value keeps the
    /// view. Refreshes in any case. A double click that centres the view returns to the value set last; while the axes
    /// show, that is 4.
    virtual void SetViewMode(std::int16_t mode) = 0;
    /// Empties the selection. Asks for no repaint.
    virtual void ResetSelection() = 0;
    /// Appends an object to the selection: its bounding box is drawn. A bad index does nothing. Asks for no repaint.
    virtual void AddSelection(std::int16_t idx) = 0;
    /// Empties the list of objects that an alignment may move.
    virtual void ResetVariableObjects() = 0;
    /// Appends an object to those that an alignment may move. A bad index does nothing.
    virtual void AddVariableObject(std::int16_t idx) = 0;
    /// Starts the alignment by hand: drags turn and move the variable objects as they would turn and move the view; the
    /// other objects are dimmed. AlignmentDone is fired at the end, which takes no movement back.
    virtual void AlignInteractive() = 0;
    /// Starts the alignment by pairs of picked points: clicks pick on the variable objects, after Space on the others;
    /// with as many points there the variable objects move and the alignment ends. AlignmentDone is fired at the end,
    /// also when nothing has moved. Delete drops the last point, Escape ends.
    virtual void AlignPickPoints() = 0;
    /// Draws a frame before it returns.
    virtual void PerformRefresh() = 0;
    /// Position of the lighting arrow around the picture: degrees counterclockwise, 0 at the top. Asks for no repaint.
    virtual void SetArrowAngle(std::int16_t angle) = 0;
    /// Fits the view to the visible objects without turning it; invalidates.
    virtual void CenterView() = 0;
    /// Thinning of later imports of measurements: cells of N x N pixels are averaged to one point. 1 keeps all pixels;
    /// imports with a value below 1 add nothing.
    virtual void SetScanSkipVal(std::int16_t skipVal) = 0;
    /// The transform that is baked into the vertices of an object: 4 x 4, sensor to world, row by row; the last row
    /// is 0 0 0 1.
    /// @return 0, or -1 for a bad index: the outputs are then untouched
    virtual std::int16_t GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4,
                                        float* v5, float* v6, float* v7, float* v8, float* v9, float* v10, float* v11,
                                        float* v12, float* v13, float* v14, float* v15) = 0;
    /// 0 hides an object, anything else shows it; invalidates. A bad index does nothing.
    virtual void SetObjectVisibility(std::int16_t idx, std::int16_t visible) = 0;
    /// 1 shows the axes, any other value hides them; refreshes. While they show, each frame sets view mode 4: a double
    /// click that centres the view then returns to the view from +Z.
    virtual void ShowAxes(std::int16_t show) = 0;
    /// Later imports of measurements skip pixels of a lower confidence; 0 at first.
    virtual void SetConfidenceFilter(float confFilter) = 0;
    /// Ends a running alignment; AlignmentDone is fired. Nothing happens without one.
    virtual void FinishInteraction() = 0;
    /// Colours of the upper and of the lower corners, 0x00BBGGRR; refreshes.
    virtual void SetBackgroundColors(std::int32_t TopColor, std::int32_t BottomColor) = 0;
    /// Removes an object; later indices move down by one. Asks for no repaint. The selection and the variable objects
    /// keep an entry of it, which has no effect once no undo step holds the object either.
    virtual void DeleteObject(std::int16_t idx) = 0;
    /// CreateNeedle() for each entry, in their order. When an id exists, or there are more entries than
    /// SetMaxNumberOfNeedles() allows in all, no needle is created. Entries beyond the limit, and the
    /// later ones of an id that the array holds twice, are skipped.
    /// @param number  number of needles, not negative
    /// @param id      one id per needle
    /// @param pinPosXYZ, headPosXYZ  3 floats per needle, as in CreateNeedle(); read during the call only
    /// @return false when nothing was tried; true also when entries were skipped
    virtual VARIANT_BOOL CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                                       const float* headPosXYZ) = 0;
    /// DeleteNeedle() for each needle, in list order.
    virtual void DeleteNeedles() = 0;
    /// Mean of the vertices of an object, world frame.
    /// @return false for a bad index: the outputs are then untouched
    virtual VARIANT_BOOL GetObjectCenter(std::int16_t objectIdx, float* x, float* y, float* z) = 0;
    /// Sets the whole view; invalidates with erase.
    /// @param wx1, wx2, wx3  direction to the right of the screen, unit length, world frame
    /// @param wy1, wy2, wy3  direction to the top of the screen, unit length, perpendicular to the first
    /// @param cx, cy, cz     world point at the centre of the window
    /// @param zoom           magnification, 2 shows half as much
    /// @param freezeBBox     not used
    /// @return false when the directions are not perpendicular unit vectors: the view is then unchanged
    virtual VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx,
                                       float cy, float cz, float zoom, std::int16_t freezeBBox) = 0;
    /// Adds a sphere; fires PickPointCountChanged, then refreshes. Spheres are kept in every pick mode, until the mode
    /// is set again, and are drawn in mode 5 after a pick has hit an object in that mode.
    /// @param x, y, z  centre, world frame
    /// @param color    0x00BBGGRR, lit
    /// @return its id, whatever a handler of the event changed
    virtual std::int32_t AddPickPointSphere(float x, float y, float z, std::int32_t color) = 0;
    /// Mouse moves and the wheel act only while the value is exactly 1. Presses and keys always act.
    virtual void AllowMouseInteraction(std::int16_t on) = 0;
    /// Writes the cuts of all objects, and the clip plane while it is enabled, hidden or not, into the pcm files that
    /// the objects came from: valid pixels that they or the confidence filter remove get the class 250. All else in the
    /// files stays. An object without cuts is written only when the plane differs from the one that its file was
    /// written with last. Cuts are tested with the transform of the file, not with that of SetTrafoOfScan(). Each file
    /// is replaced as a whole or not at all. Objects lose their cuts, also where the file could not be read or written:
    /// ScenePane::GetCutSaveResults() lists those, with lines in the debugger output.
    /// @return 1 when there was at least one file to write, else 0. A file that could not be read or written counts
    /// @throws std::bad_alloc when memory is short between the read and the write of a file and no object before was
    ///         written; that object keeps its cuts, and all other files are written. When memory is short during a
    ///         read or a write, only that file fails
    virtual VARIANT_BOOL SaveCuttingToPcms() = 0;
    /// Selects what the mouse does. Not 0: the delayed scheme. A press waits a tenth of a second, so that two buttons
    /// pressed together and a click without movement differ from a drag. Right rotates, right with left or Shift pans,
    /// left picks, middle centres the view (with Ctrl, while the clip plane is shown, it places the plane at the data),
    /// the wheel is reversed. 0: the direct scheme; a press that waits is dropped.
    virtual void SetIGDRotation(std::int16_t on) = 0;
    /// Specular reflection of all objects; refreshes.
    /// @param brightness  grey level of the reflection, 0 none to 1 full
    /// @param shining     1 for a wide highlight to 0 for the narrowest
    virtual void SetReflection(float brightness, float shining) = 0;
    /// Replaces the transform that is baked into the vertices of an object; refreshes. 4 x 4, sensor to world, row by
    /// row; the last row is ignored.
    /// @return 0, or -1 for a bad index
    virtual std::int16_t SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4, float v5,
                                        float v6, float v7, float v8, float v9, float v10, float v11, float v12,
                                        float v13, float v14, float v15) = 0;
    /// The directions to the right and to the top of the screen and the centre, world frame, and the magnification, as
    /// SetViewParams() accepts them.
    virtual void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx,
                               float* cy, float* cz, float* zoom) = 0;
    /// Cancels the running session of StartSegmentation(), fires SegmentationDone with -1 and refreshes. Does nothing
    /// without one.
    virtual void EndSegmentation() = 0;
    /// 1 switches shadows on, any other value off. They show in draw modes 0 to 4; modes 5 and 6 draw no objects then.
    /// Asks for no repaint.
    virtual void SetShadowMode(std::int16_t mode) = 0;
    /// 1 when shadows are on, else 0.
    virtual std::int16_t GetShadowMode() = 0;
    /// Colours of the four corners, 0x00BBGGRR; refreshes.
    virtual void SetBackgroundColorsFourCorners(std::int32_t TopLeftColor, std::int32_t TopRightColor,
                                                std::int32_t BottomLeftColor, std::int32_t BottomRightColor) = 0;
    /// Radius of all pick-point spheres, scene units; 500 at first. Asks for no repaint.
    virtual void SetPickRadius(float r) = 0;
    /// Queues a repaint for the next ProcessEvents().
    virtual void PerformInvalidate() = 0;
    /// Bounding box of an object, world frame. A bad index gives the inverted box, 1 to -1 on each axis, and three
    /// lines in the debugger output.
    virtual void GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min, float* y_max,
                                      float* z_min, float* z_max) = 0;
    /// Appends a needle with the look of the last SetNeedleRenderParameters(), not selected; refreshes, then fires
    /// NeedleCreated. It is drawn after SetNeedleDrawingMode().
    /// @param id                            any number that no needle has
    /// @param pinPosX, pinPosY, pinPosZ     point on the surface, world frame
    /// @param headPosX, headPosY, headPosZ  centre of the head, world frame
    /// Coordinates that are not finite are accepted and give what OpenGL draws of them.
    /// @return false, and no needle, when the limit is reached or the id exists
    virtual VARIANT_BOOL CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ, float headPosX,
                                      float headPosY, float headPosZ) = 0;
    /// Starts an import on threads of the host.
    /// @param p_this  receives the first argument of the entry
    /// @param p_fn    receives the entry that worker threads call; see ImportMeasurementEntry
    /// Until EndParallelImport() no setting of imports may change.
    virtual void BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) = 0;
    /// Ends a parallel import: the finished objects join the list in the order of their indices. All worker threads
    /// must have returned. Asks for no repaint.
    virtual void EndParallelImport() = 0;
    /// Whether a later import of a measurement without any triangle adds an object. False at first.
    virtual void SetAllowEmptyObjects(VARIANT_BOOL allow) = 0;
    /// Not 0 holds back all frames, refreshes too. 0 allows painting again and draws what was requested in between.
    virtual void BlockPaintEvents(VARIANT_BOOL block) = 0;
    /// Does nothing; the entry stays so that the ids after it keep their numbers.
    virtual void SetMeshFilename_Removed() = 0;
    /// Whether 3D lines are drawn, in the window and in screenshots. Asks for no repaint.
    virtual void SetLine3DDrawingMode(VARIANT_BOOL enable) = 0;
    /// Whether 3D lines are drawn; false at first.
    virtual VARIANT_BOOL GetLine3DDrawingMode() = 0;
    /// Creates a polyline from a copy of the points; refreshes. Lines are black and 3 pixels wide, 8 in a screenshot;
    /// ClearData() removes them. One of fewer than two points is kept and draws nothing. They do not count for the fit
    /// of the view.
    /// @param id            any number that no other line has
    /// @param numberOfXYZs  0 or more points
    /// @param XYZs          3 floats per point, world frame; may be null without points. Segments to points that are
    ///                      not finite look as the driver draws them
    /// @return false when the id exists: nothing happens then
    virtual VARIANT_BOOL CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs, const float* XYZs) = 0;
    /// Deletes a set of free points; invalidates with erase. Its graphics memory stays allocated until the OpenGL
    /// context goes. An unknown id does nothing.
    virtual void DeletePoints(std::int32_t id) = 0;
    /// Shows or hides a set of free points; a hidden one does not count for the fit of the view. An unknown id does
    /// nothing. Asks for no repaint.
    virtual void SetPointsVisibility(std::int32_t id, VARIANT_BOOL visible) = 0;
    /// Uploads a set of free points, which is no object: it is not picked or cut, and ClearData() leaves it. The viewer
    /// keeps no copy of the points; without OpenGL, or when graphics memory is short (then with a line in the debugger
    /// output), the set has its id and its box but is not drawn. After RecreateOpenglContext() it is not drawn either.
    /// Sets are drawn last in the frame, opaque ones first, in the order of their imports. Asks for no repaint.
    /// @param numPoints  0 or more; a set of 0 points has an id and draws nothing
    /// @param xyz        3 floats per point, world frame; those that are not finite do not count for the fit
    /// @param colors     3 floats per point, r, g, b in 0 to 1. Both arrays may be null only without points
    /// @param alpha      opacity of the whole set: 0.99 and more is opaque, 0 and less is invisible
    /// @return its id, the smallest from 0 that no set has
    virtual std::int32_t ImportPoints(std::int32_t numPoints, const float* xyz, const float* colors, float alpha) = 0;
    /// The value of the last SetScanSkipVal(); 1 at first.
    virtual std::int16_t GetScanSkipVal() = 0;
    /// Not 0 mixes 85 % of the object colour into the vertex colours. A bad index does nothing. Asks for no repaint.
    virtual void SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) = 0;
    /// Colour of the shadows, each channel 0 to 1. Asks for no repaint.
    virtual void SetShadowColor(float red, float green, float blue) = 0;
    /// Adds a copy of a mesh of the host as an object; its normals are kept.
    /// @param mesh      vertices and triangles
    /// @param filename  name of the object; may be null
    /// @param color     0x00BBGGRR, for a mesh without colours of its own
    virtual void ImportMeshedMeasurement(const MeshBuffers* mesh, BSTR filename, std::int32_t color) = 0;
    /// Turns the scene once about the world's Z axis. The scene turns in the frames that are drawn, and no frame is
    /// requested: the host refreshes while IsAnimationRunning(). A press or a key stops it. While an animation runs
    /// only its speed changes.
    virtual void StartAnimation(float revolutionsPerSecond) = 0;
    /// Stops a running animation where it is.
    virtual void StopAnimation() = 0;
    /// Whether the space bar starts an animation. The start of a segmentation switches this off, its end on.
    virtual void ToggleAnimationOnSpacebar(std::int32_t enabled) = 0;
    /// True from StartAnimation() to the end of the revolution or StopAnimation().
    virtual VARIANT_BOOL IsAnimationRunning() = 0;
    /// Speed of a running or later animation. At 0 the scene rests and the animation does not end by itself.
    virtual void SetAnimationSpeed(float revolutionsPerSecond) = 0;
    /// Size of points; 2 at first. Objects in draw mode 0: side in pixels. Free points: half of the side in scene
    /// units, up to the largest points of the driver. Asks for no repaint.
    virtual void SetPointCloudRenderPointSize(float size) = 0;
    /// Draws the whole scene, from the window's side and with its zoom, into a picture of 2048 x 2048 pixels:
    /// background, visible objects, and 3D lines and needles while they are switched on. It is framed to the visible
    /// objects, the visible free points, which it does not show, and the lines and needles that it shows. The view
    /// stays as it is; a repaint of the window is queued.
    /// @param buffer  receives 2048 x 2048 words (16,777,216 bytes), 0xAARRGGBB in the byte order of the machine, rows
    ///                without padding, top row first; its size is not checked. All zero without OpenGL
    virtual void CaptureScreenShot(std::uint32_t* buffer) = 0;
    /// Always 2048, 2048: the size of CaptureScreenShot() in pixels.
    virtual void GetScreenShotResolution(std::int32_t* width, std::int32_t* height) = 0;
    /// Lays an image over the scene at its own size. Its left edge is at window width x relPosX + image width x
    /// relOffsetX + absOffsetX pixels, its top edge the same with y: 1 and -1 keep it at the right or lower edge.
    /// @param argbU8DataPtrHack  width x height pixels of bytes b, g, r, a, top row first; copied, kept for the life of
    ///                           the viewer and through RecreateOpenglContext(). Null is a transparent image
    /// @return its index, in any case. A size below 1 x 1, or a side above GL_MAX_TEXTURE_SIZE (then with a line in the
    ///         debugger output), draws nothing
    /// Asks for no repaint.
    virtual std::int32_t AddOverlayData(const std::uint8_t* argbU8DataPtrHack, std::int32_t width, std::int32_t height,
                                        float relPosX, float relPosY, float relOffsetX, float relOffsetY,
                                        float absOffsetX, float absOffsetY) = 0;
    /// Shows an overlay when the low byte of enable is not 0. The index must be one that AddOverlayData() returned.
    /// Asks for no repaint.
    virtual void SetOverlayVisibility(std::int32_t index, std::int32_t enable) = 0;
    /// Zoom factor that CenterView() and other fits start with, larger shows more; 1 at first.
    virtual void SetDefaultZoomFactor(float newDefault) = 0;
    /// Clips objects by the plane, and invalidates with erase. When the low byte of displayClipPlane is not 0, the
    /// plane is drawn, the mouse and the keys move it, and it is placed at the data: horizontal, in the middle of the
    /// scene box, at a height estimated from the vertices, for which the registry must be started (InitializeKVReg()).
    /// A plane that was set before is thereby lost: call SetClipPlane() afterwards. When the byte is 0, the plane clips
    /// where it is and is hidden.
    /// @throws std::runtime_error when the component library cannot create a part of the estimate, or with the text of
    ///         the status that one returned, for vertices that all have the same height "an invalid argument was passed
    ///         to an interface method": clipping is then on with the plane as it was, and no repaint is asked for
    virtual void SetClipPlaneEnabled(std::int32_t displayClipPlane) = 0;
    /// Ends clipping and hides the plane; invalidates with erase.
    virtual void SetClipPlaneDisabled() = 0;
    /// Places the clip plane and refreshes; what the normal points to is kept. Does not switch clipping on.
    /// @param centerX, centerY, centerZ  point of the plane, world frame
    /// @param normalX, normalY, normalZ  normal of any length above 0, world frame
    virtual void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY,
                              float normalZ) = 0;
    /// Colours of the plane, its handles and its outline, 0x00BBGGRR, all 0 at first; refreshes.
    virtual void SetClipPlaneColor(std::int32_t color, std::int32_t handleColor, std::int32_t outlineColor) = 0;
    /// Centre and unit normal of the clip plane, world frame, as the last method, placement, key or drag left it.
    virtual void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY,
                              float* normalZ) = 0;
    /// Whether mouse and keys act on needles; false at first. Switching it off deselects all needles and invalidates
    /// with erase.
    ///
    /// A double click on the surface creates a needle and selects it; it does not centre the view. The needle points to
    /// the viewer, or along (1, 1, 1) when no vertex on the view axis faces the viewer, and has the smallest id that is
    /// free above the lowest one in use. A left press on a head selects its needle, one elsewhere deselects all. A move
    /// with the left button held drags the head of the selected needle parallel to the screen and fires no event.
    /// Escape deselects all, Delete deletes the selected one.
    virtual void SetNeedlePickingMode(VARIANT_BOOL enable) = 0;
    /// Whether needles are drawn, in frames and in CaptureScreenShot(); false at first. The mouse acts on needles that
    /// are not drawn as well. Asks for no repaint.
    virtual void SetNeedleDrawingMode(VARIANT_BOOL enable) = 0;
    /// Look of needles that are created later; existing ones keep theirs. Asks for no repaint.
    /// @param needleLength          from pin to head of needles that the mouse creates, scene units; 10 at first
    /// @param needleHeadRadius      scene units; 1 at first
    /// @param needlePinSize         radius of the pin at the head, scene units, a fifth of it at the surface; 0.33
    ///                              at first
    /// @param needleHitPointRadius  radius of the ball at the surface, scene units, none when not above 0; 0.25 at
    ///                              first
    /// Colours are 0x00BBGGRR: at first 0xFF, 0x505050, 0xFF0000 and 0.
    virtual void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, std::int32_t needleHeadColor,
                                           float needlePinSize, std::int32_t needlePinColor, float needleHitPointRadius,
                                           std::int32_t needleHitPointColor, std::int32_t needleHeadSelectionColor) = 0;
    /// Whether mouse and keys act on needles.
    virtual VARIANT_BOOL GetNeedlePickingMode() = 0;
    /// Whether needles are drawn.
    virtual VARIANT_BOOL GetNeedleDrawingMode() = 0;
    /// Deletes a needle, after DeselectNeedle() for a selected one; refreshes, then fires NeedleDeleted.
    /// @return whether it existed
    virtual VARIANT_BOOL DeleteNeedle(std::int32_t id) = 0;
    /// Number of needles.
    virtual std::int32_t GetNumberOfNeedles() = 0;
    /// Pin and head of a needle, world frame.
    /// @return false for an unknown id: the outputs are then untouched
    virtual VARIANT_BOOL GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX,
                                   float* headPosY, float* headPosZ) = 0;
    /// Copies all needles, in the order of their creation.
    /// @param id                     receives one id per needle, GetNumberOfNeedles() in all
    /// @param pinPosXYZ, headPosXYZ  receive 3 floats per needle each, world frame
    virtual void GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) = 0;
    /// Adds a measured grid from arrays of the host as an object; invalidates with erase.
    /// @param width, height  1 to 32767 each
    /// @param points         3 floats per pixel, row by row, sensor frame, scene units: nothing is scaled
    /// @param confidence     one float per pixel
    /// @param trafo          16 floats, row-major 4 x 4, sensor to world
    /// @param color          0x00BBGGRR
    virtual void ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                             const float* confidence, const float* trafo, std::int32_t color) = 0;
    /// Adds a mesh from arrays of the host as an object; its normals are computed.
    /// @param vertices   3 floats per vertex, world frame
    /// @param triangles  3 indices per triangle; not checked
    virtual void ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles,
                                      const float* vertices, const std::int32_t* triangles) = 0;
    /// The distinct cut masks of all objects of the scene, ascending by address.
    /// @param count        when cutMaskPtrs is null, receives their number; else it is the number to copy
    /// @param cutMaskPtrs  an array that receives so many addresses of ACAD::CutMask (CutMask.h), or null. A mask lives
    ///                     while an object of the scene or of an undo step has it
    /// @return false, with nothing written, when more are requested than exist, a negative number, or with null count
    virtual VARIANT_BOOL GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) = 0;
    /// Removes the cut masks of all objects of the scene, which keep their shape: SaveCuttingToPcms() does not write
    /// these cuts. Asks for no repaint, makes no undo step; objects of undo steps alone keep theirs.
    virtual void ClearCutMasks() = 0;
    /// Starts the component registry, which textures and hps files need. Calls are counted.
    virtual void InitializeKVReg() = 0;
    /// Takes back one InitializeKVReg(); the last one stops the registry.
    virtual void FinalizeKVReg() = 0;
    /// Name and version of the host program, written into hps files.
    virtual void SetHpsSourceApp(BSTR appName, BSTR appVersion) = 0;
    /// Shows the about dialog by showAbout of the window request and returns when it is closed. Without that hook its
    /// line of text goes to the debugger output, and the method returns at once.
    /// @throws what the hook throws
    virtual void AboutBox() = 0;

protected:
    ~_DKV_ScenePane() = default;
};

}  // namespace KV_ScenePane
