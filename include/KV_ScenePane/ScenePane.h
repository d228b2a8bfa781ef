// Creation of a viewer: in a window of the host, in a top-level window, or without a display.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/Alignment.h"
#include "KV_ScenePane/ClipHeight.h"
#include "KV_ScenePane/Cutting.h"
#include "KV_ScenePane/Input.h"
#include "KV_ScenePane/Version.h"
#include "KV_ScenePane/_DKV_ScenePane.h"
#include "KV_ScenePane/_DKV_ScenePaneEvents.h"

namespace KV_ScenePane {

/// The about dialog: a modal window with this title, one line of text and an "OK" button.
struct AboutText {
    std::string title, line;
};

/// How a store of the persisted properties is written.
enum class PropertyFormat : std::int32_t {
    Text = 0,   ///< lines that a person can read and change
    Binary = 1  ///< a few bytes with a checksum
};

/// Where and how a viewer is shown.
struct WindowRequest {
    /// What the viewer is drawn on.
    enum class Kind {
        Child,      ///< a child of the X11 window @c parent of the host
        TopLevel,   ///< an X11 window of its own
        OffScreen,  ///< a surface without a display, by EGL; input only by SendMouse() and SendKey()
        NoPicture   ///< no surface and no OpenGL: imports, exports and their results only
    };
    Kind kind = Kind::OffScreen;
    /// X11 window id of the host, for Child; unused by the other kinds.
    std::uintptr_t parent = 0;
    /// X display name, for Child and TopLevel; empty for $DISPLAY.
    std::string display;
    /// Position in the parent, pixels.
    int x = 0, y = 0;
    /// Size of the drawing area, pixels; the size of the pictures of an OffScreen viewer.
    int width = 640, height = 480;
    /// Title of a TopLevel window.
    std::wstring title = L"KV_ScenePane";
    /// Requested OpenGL version, compatibility profile. 3.3 is the lowest that the viewer draws with.
    int glMajor = 3, glMinor = 3;
    /// Samples per pixel that smooth the edges; 0 for none. A driver that does not offer exactly this number draws with
    /// none, without a message; the reason of CreateScenePane() names the numbers that it offers.
    /// RecreateOpenglContext() refuses such a number.
    int samples = 0;
    static constexpr int kAnyGpu = -1;    ///< graphics devices first, then the default display, software last
    static constexpr int kSoftware = -2;  ///< the processor draws, whatever graphics devices there are
    /// What draws an OffScreen viewer: kAnyGpu, kSoftware, or the number of a graphics device from 0 in the order in
    /// which EGL lists them. kAnyGpu passes over a device that does not draw, or not with the requested version. The
    /// other kinds leave the choice to the X server.
    int gpu = kAnyGpu;
    /// Factor of text, lines and points, see ScenePane::SetScale(): 2 on a screen with twice the pixels per inch.
    double scale = 1;
    /// Shows a message that the user must see, such as a refused OpenGL version, and returns when it was read. Called
    /// on the viewer's thread; it may run an event loop. Empty: such messages go to the debugger output.
    std::function<void(const std::string& text)> showMessage;
    /// Shows the about dialog of AboutBox() and returns when it is closed; called as showMessage is. Empty: the line
    /// goes to the debugger output, and AboutBox() returns at once.
    std::function<void(const AboutText& text)> showAbout;
};

/// How ScenePane::ImportFile() reads a scan; meshes ignore it.
struct ImportOptions {
    /// The grid is thinned to one point per skip x skip points.
    std::int16_t skip = 1;
    /// Points of a lower confidence are left out; those at the limit are kept.
    float confidence = 0;
    /// 0x00BBGGRR, of a scan without colours: a light beige.
    std::int32_t color = 0xC8D4DC;
};

/// Properties of an object that the automation surface does not return.
struct ObjectInfo {
    /// Path of the file it was read from, or the host's name for it; may be empty.
    std::wstring name;
    /// Whether its vertices have colours.
    bool hasVertexColors = false;
};

/// What draws a viewer, for a report to the user or to support.
struct GraphicsInfo {
    /// How the driver was reached, such as "graphics device 0, /dev/dri/card0", "software device" or "X display :0".
    std::string device;
    /// GL_RENDERER, GL_VENDOR and GL_VERSION of the driver.
    std::string renderer, vendor, version;
};

/// A frame as the window shows it.
struct Picture {
    /// Size in pixels.
    int width = 0, height = 0;
    /// width x height words 0xAARRGGBB, row by row without padding, top row first.
    std::vector<std::uint32_t> pixels;
};

/// The frames of a viewer since it was created, for a display of the frame time and for hosts that draw less while
/// frames are slow.
struct FrameStatistics {
    /// Frames that were drawn and passed to the window system, also those of CapturePicture(). Not the pictures of
    /// CaptureScreenShot(), which are no frames of the window, and not paints that were refused.
    std::uint64_t count = 0;
    /// Of the last one, from its start until it was passed to the window system. A graphics card may still be drawing
    /// then; software has finished.
    double seconds = 0;
};

/// The nearest surface point of a visible object under a pixel.
struct SurfacePoint {
    /// Index of the object.
    std::int16_t object = -1;
    /// Index of the triangle in the object, from 0 in the order of its file or of its import.
    std::int32_t triangle = -1;
    /// x, y, z in scene units, world frame.
    float point[3] = {};
    /// Length along the view direction, scene units, from the point of the pixel at window depth 0.1, which is in front
    /// of the scene that the view was fitted to; never negative. Objects behind that point count by their distance,
    /// too.
    float distance = 0;
};

/// One viewer. All calls are made on the thread that created it; the destructor closes the window. Several viewers may
/// exist in one process and on one thread. A viewer leaves its OpenGL context current.
///
/// A viewer may be destroyed inside any handler of its host: an event, showMessage, or the sink of the debugger output.
/// Inside a call of that same viewer it goes on living until the outermost of these calls has returned, and its window
/// is closed then; it fires, shows and draws nothing more in the meantime. The host must not use the viewer, nor the
/// reference from Methods(), after the destruction.
///
/// What a handler or hook throws reaches the caller of the method, ProcessEvents(), SendMouse() or SendKey() in which
/// it ran. The viewer goes on working; events and repaints that were waiting are handled by the next ProcessEvents().
/// The same holds for a placement of the shown clip plane by the mouse, which throws as SetClipPlaneEnabled() does: a
/// double click with Ctrl throws out of ProcessEvents() or SendMouse(), a middle click with Ctrl in the delayed scheme
/// out of ProcessEvents(). No key places the plane.
class ScenePane {
public:
    virtual ~ScenePane() = default;

    /// The automation surface. The reference is valid as long as the viewer.
    [[nodiscard]] virtual _DKV_ScenePane& Methods() = 0;

    /// Connects the receiver of the events; replaces a former one.
    /// @param events  owned by the host; must outlive the viewer or be disconnected with null
    virtual void Connect(_DKV_ScenePaneEvents* events) = 0;

    /// A file descriptor that is readable when ProcessEvents() has work: for poll(), QSocketNotifier or
    /// g_unix_fd_add(). It stays the same for the life of the viewer and must not be read or closed by the host.
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Handles pending window messages, posted messages, timers and, last, queued repaints. Never blocks.
    /// @throws std::runtime_error when the mouse places the clip plane and its estimate fails; what handlers and hooks
    ///         throw
    virtual void ProcessEvents() = 0;

    /// False once the window is gone: the host destroyed it or, of an OffScreen viewer, terminated its EGL display, or
    /// a recreation of the context failed.
    [[nodiscard]] virtual bool HasWindow() const = 0;
    /// The X11 window id; 0 without one.
    [[nodiscard]] virtual std::uintptr_t NativeWindow() const = 0;
    /// Moves a Child into another window of the host.
    /// @param x, y  position in the new parent, pixels
    /// @return false when the new parent is not an X11 window: the viewer is then unchanged
    virtual bool Reparent(std::uintptr_t parent, int x, int y) = 0;

    /// Handles one mouse event before it returns, as if the window had received it: the only input of an off-screen
    /// viewer, and for hosts whose toolkit does not pass events on to child windows.
    /// @throws what ProcessEvents() throws; for a placement only on a double click
    virtual void SendMouse(const MouseInput& input) = 0;
    /// The same for one key event. Throws only what handlers and hooks throw.
    virtual void SendKey(const KeyInput& input) = 0;

    /// Sees every mouse input, of the window and of SendMouse(), before the viewer handles it, also in the delayed
    /// scheme. It may do what a handler may: call methods, replace itself, run an event loop, destroy the viewer,
    /// throw. An input for which it throws is not handled. Input that arrives in an event loop of the filter is handled
    /// before the one that the filter looks at. To show a menu, return first and show it later (in Qt: by a queued
    /// connection), or the drag of the press has not ended yet.
    /// @param filter  called on the viewer's thread; true: the viewer ignores the input. Replaces a former one; empty
    ///                for none. Kept until then or until the viewer is destroyed, and not called any more afterwards
    virtual void SetMouseFilter(std::function<bool(const MouseInput&)> filter) = 0;

    /// @return false for an index outside the list: @p info is then untouched
    virtual bool GetObjectInfo(std::int16_t idx, ObjectInfo* info) = 0;

    /// @return false for a NoPicture viewer and without a window: @p info is then untouched
    virtual bool GetGraphicsInfo(GraphicsInfo* info) = 0;

    /// Sets the factor by which the fonts, the width of all lines but a freehand lasso, and the size of the points of
    /// objects grow, and queues a repaint. Sizes in scene units, positions in pixels and overlay images stay.
    /// @param scale  limited to 0.25 to 8; counts as 1 when it is not finite or not above 0
    virtual void SetScale(double scale) = 0;

    /// Draws a frame and copies it, in the size of the drawing area with all decorations.
    /// @param picture  receives the frame; empty pixels on failure
    /// @return false for a NoPicture viewer, without a window, and while painting is blocked
    virtual bool CapturePicture(Picture* picture) = 0;

    /// Finds what is under a pixel by a line along the view direction through the triangles of all visible objects, in
    /// double precision. Changes no state and fires nothing. The cost is one pass over the triangles of the objects
    /// whose bounding box the line touches.
    /// @param x, y  pixel of the drawing area, y downward; pixels outside it count, too
    /// @param hit   receives the nearest point; of two at the same distance, that of the object that is first in the
    ///              list. Untouched without a hit
    /// @return false without a hit, for a NoPicture viewer and without a window
    virtual bool PickSurface(int x, int y, SurfacePoint* hit) = 0;

    /// What the last placement of the clip plane at the data found, by SetClipPlaneEnabled() or by the mouse; a default
    /// ClipHeight before the first one. A placement that threw does not count.
    [[nodiscard]] virtual ClipHeight GetClipHeight() const = 0;

    /// Cuts all visible objects by a lasso with these corners, as if an operator had drawn it: fires the same events
    /// and makes the same undo step. A session that runs is cancelled before. Unless painting is blocked a frame
    /// is drawn first, in the present size of the drawing area.
    /// @param points  of a polygon the corners in their order, at least two, closed by the viewer; of a freehand lasso
    ///                the start and the points of its line. Corners that are not finite are outside the window
    /// @return whether an object has changed. False with SegmentationDone(-1) when nothing was hit; false without an
    ///         event for a number that is no mode, for a NoPicture viewer and without a window
    /// @throws what handlers and hooks throw: the session is over then, with its cut
    /// @throws std::bad_alloc  for the lasso itself: the session is over then, without a cut
    virtual bool CutWithLasso(SegmentationMode mode, std::span<const LassoPoint> points) = 0;
    /// Number of cuts that PerformUndo() can take back.
    [[nodiscard]] virtual int GetUndoStepCount() const = 0;
    /// What SaveCuttingToPcms() would do now, one entry per object in the order of the list. Reads and writes no file.
    [[nodiscard]] virtual std::vector<CutSaveEntry> PlanCutSave() const = 0;
    /// What the last SaveCuttingToPcms() did, one entry per object of that moment; empty before the first one.
    [[nodiscard]] virtual std::vector<CutSaveEntry> GetCutSaveResults() const = 0;

    /// What the running alignment waits for, and the points that were picked so far.
    [[nodiscard]] virtual AlignmentPicks GetAlignmentPicks() const = 0;
    /// Moves the variable objects (AddVariableObject()) so that the moving points come to the fixed points, as at the
    /// end of AlignPickPoints(): a single pair turns the moving normal into the fixed one, too; of two and more only
    /// the points count. Two pairs, and points on a line, leave the rotation about the line open: the objects turn by
    /// the shortest way. Only objects that are in the scene move; one that is listed twice moves twice. Needs no
    /// OpenGL. A running alignment goes on. Fires nothing.
    /// @param pairs  world frame; normals of any length. A single pair needs both normals: with a normal of 0, and with
    ///               opposite normals, the objects turn by half a turn about the x axis of the world
    /// @return whether a transform was found: the points of each side must not all be the same, and all must be finite.
    ///         GetAlignmentResult() has it, and the residual of each pair; without a transform nothing moves
    virtual bool AlignByPairs(std::span<const AlignmentPair> pairs) = 0;
    /// What the last alignment by points found, by AlignByPairs() or by the operator. A default result before the first
    /// one, from AlignPickPoints() until the last point is picked, and after an alignment that ended before that.
    [[nodiscard]] virtual AlignmentResult GetAlignmentResult() const = 0;

    /// Writes the persisted properties DrawMosaic, DrawMode and MoveReduced, for LoadProperties(). IsModified() is
    /// false afterwards.
    [[nodiscard]] virtual std::string SaveProperties(PropertyFormat format) = 0;
    /// Reads a store that SaveProperties() wrote, of either format, and sets the properties, which repaints as setting
    /// them does. A damaged store, and one of a newer major version, leaves the properties at their defaults.
    /// IsModified() is false afterwards.
    /// @param store   the bytes of the store; untrusted
    /// @param reason  receives why the store was refused, as a sentence for the user; may be null
    /// @return whether the store was read
    virtual bool LoadProperties(std::string_view store, std::string* reason) = 0;
    /// Whether a persisted property was changed since it was last saved or loaded.
    [[nodiscard]] virtual bool IsModified() const = 0;

    /// Number of frames so far, and the duration of the last one. Both 0 before the first frame and for a NoPicture
    /// viewer. A new window or context continues the count.
    [[nodiscard]] virtual FrameStatistics GetFrameStatistics() const = 0;

    /// Imports one file by the method that its extension names: ImportMesh() for stl, ply, hps, ois and msh,
    /// ImportScan() for pcm, pax and xdt. It throws nothing that the import throws. The debugger output receives the
    /// same lines as from these methods, after the import; what its sink throws passes through, also when an object was
    /// added. The skip value and the confidence filter of the viewer are the same afterwards. During a parallel import
    /// scans are refused, and so is an object beyond the 32767th.
    /// @param path    in bytes, as open() receives it
    /// @param reason  receives one line without path and operation: why nothing was added; with the result true what is
    ///                odd about the file, such as "768 of 1280 triangles are in the file", and mostly nothing. May be
    ///                null
    /// @return whether an object was added
    virtual bool ImportFile(const std::string& path, const ImportOptions& options, std::string* reason) = 0;
    /// Why the last import or export failed, as one line without path and operation. Counted are ImportFile() and the
    /// methods ImportMesh(), ImportScan(), ImportMeshedMeasurement(), ImportMeasurementFromMemory(),
    /// ImportMeshFromMemory() and ExportMesh(), also when they throw. Empty when the last of them added an object or
    /// wrote its file, and before the first one. The entry of a parallel import does not change it, nor does
    /// SaveCuttingToPcms(), which has GetCutSaveResults().
    [[nodiscard]] virtual std::string LastError() const = 0;
};

/// Version of the library that the program runs with, as a number to compare with KV_SCENEPANE_VERSION. Any thread.
[[nodiscard]] __attribute__((visibility("default"))) int LibraryVersion();

/// Creates a viewer.
/// @param request  read during the call; showMessage is kept
/// @param reason   receives, as a sentence for the user, why there is none: no display, not an X11 window, no OpenGL,
/// or
///                 a refused version with those that the driver offers. With a viewer it is empty, or says that the
///                 driver does not offer the samples of the request, and which it offers. May be null
/// @return null when the window or its context was refused
/// @throws std::bad_alloc, and what showMessage or the sink of the debugger output throws
[[nodiscard]] __attribute__((visibility("default"))) std::unique_ptr<ScenePane> CreateScenePane(
    const WindowRequest& request, std::string* reason);

}  // namespace KV_ScenePane
