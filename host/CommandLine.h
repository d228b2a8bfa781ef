// What the user asked for on the command line. Pure parsing: no file is opened and nothing is printed here.
#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "CutOption.h"
#include "FileImport.h"
#include "KV_ScenePane/Modes.h"
#include "KV_ScenePane/ScenePane.h"

/// What the program does in this run.
enum class HostAction {
    /// Shows the files in a window until the user closes it.
    Window,
    /// Renders the files as the window would show them into a PNG file.
    Screenshot,
    /// Renders the files into a PNG file of the viewer's fixed size.
    Capture,
    /// Prints the surface points under pixels.
    Pick,
    /// Prints the content of the files.
    Info,
    /// Writes the content of one file in another format.
    Convert,
    /// Writes the cuts and the clip plane into the pcm files.
    SaveCuts,
    /// Cuts the object of one file and writes it in another format.
    Export,
    /// Moves files onto others by pairs of points, and prints the transform.
    Align,
    Help,
    Version
};

/// A pixel of the drawing area, y downward from its top.
struct PickPixel {
    int x = 0, y = 0;
};

/// A plane that clips the objects of a picture: what the normal points to is kept.
struct ClipPlane {
    /// A point of the plane, world frame, scene units.
    std::array<float, 3> center{};
    /// Of any length above 0.
    std::array<float, 3> normal{};
};

/// The options of one command line. An option that was not given has the value below.
struct HostOptions {
    HostAction action = HostAction::Window;
    /// The picture of Screenshot and Capture, "-" for standard output; with views it holds kViewPlace. Bytes, as typed.
    std::string picturePath;
    /// The views of Screenshot and Capture, each a picture; empty for the one of @c view.
    std::vector<KV_ScenePane::ViewMode> views;
    /// Drawing area in device pixels. Capture has a size of its own.
    int width = 1024, height = 768;
    KV_ScenePane::ViewMode view = KV_ScenePane::ViewFromPlusZYUp;
    /// Without one the window has the mode that was used last, and the other runs draw DrawModeGouraud.
    std::optional<KV_ScenePane::DrawMode> drawMode;
    /// Magnification of the fitted view, 0.1 to 10; with 2 the view spans half the size.
    float zoom = 1.0f;
    /// The view is fitted to what is seen from its side, not to the box of the scene.
    bool isTight = false;
    /// Colours of a picture at its top and at its bottom, 0x00BBGGRR; without them the viewer's.
    std::optional<std::array<std::int32_t, 2>> background;
    bool axes = false;
    /// Per pixel of Screenshot; 0 for none.
    int samples = 0;
    /// Of the draw mode of points and of free points; without it the viewer's.
    std::optional<float> pointSize;
    ImportSettings import;
    /// Which of them were given: for the others the window has those that were used last.
    struct {
        bool skip = false, confidence = false, color = false;
    } given;
    /// The window forgets what it remembers, before it is made.
    bool resetsSettings = false;
    /// Objects without colours get colours of the palette (ObjectPalette.h), each its own.
    bool usesPalette = false;
    bool shadows = false;
    /// Clips the objects of Screenshot, of SaveCuts and of a run with lassos by this plane.
    std::optional<ClipPlane> clip;
    /// The same by a plane that the viewer places at the data; Info prints that plane. Never together with clip.
    bool clipAuto = false;
    /// Lassos that cut the objects of Screenshot, Info, SaveCuts and Export, in this order; Export has at least one.
    std::vector<LassoCut> cuts;
    /// The pixels of Pick, inside the drawing area, in the order that their results are printed in.
    std::vector<PickPixel> picks;
    /// Files of markers that the window, Screenshot and Capture add to the scene; bytes, as typed, in their order.
    std::vector<std::string> pointFiles, lineFiles, needleFiles;
    /// The pairs of points of Align, the files that they move and the files that stay; bytes, as typed. Only Align has
    /// them, and it has at least one of each, and no others in files.
    std::string pairFile;
    std::vector<std::string> movingFiles, fixedFiles;
    /// Transforms that replace those of the files after their import, in the window of its first files; or empty.
    /// Bytes, as typed.
    std::string transformFile;
    /// Where Align writes the transforms of all its files, or empty; bytes, as typed.
    std::string savedTransforms;
    /// A warning about a file is a failure of a run without a window.
    bool strict = false;
    /// Info, Pick and Align print JSON.
    bool json = false;
    /// What draws Screenshot, Capture, Pick, lassos and the verbose Version: as WindowRequest::gpu.
    int gpu = KV_ScenePane::WindowRequest::kAnyGpu;
    /// Version also names what draws.
    bool verbose = false;
    /// Runs without a window show which file they read, also where standard error is no terminal; or print neither
    /// that nor warnings.
    bool progress = false, quiet = false;
    /// The files to open, folders and "@LIST" among them (InputFiles.h); bytes, as typed, in their order.
    std::vector<std::string> files;
    /// The file that Convert and Export write, of a type that can be written; bytes, as typed.
    std::string exportPath;
};

/// In the name of a picture, for the name of its view.
inline constexpr std::string_view kViewPlace = "{view}";

/// What is wrong with a command line, as one line without the program's name.
struct UsageError {
    std::string text;
};

/// Reads a whole command line. The first mistake is reported; whether files exist is not checked here.
/// @param arguments  without the program's name
[[nodiscard]] std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help, ends with a line feed.
[[nodiscard]] std::string HelpText();
/// The man page, docs/scenepane.1.
[[nodiscard]] std::string ManPage();
/// The completion for bash, docs/completions/scenepane.
[[nodiscard]] std::string BashCompletion();
/// The text of --version, ends with a line feed.
[[nodiscard]] std::string VersionText();
