#include "OptionTable.h"

#include "OptionValues.h"

namespace {

using ProgramOptions::Completion;

/// The name of a file; the last one counts.
template <std::string HostOptions::*file>
bool ReadFileName(std::string_view text, HostOptions& options) {
    options.*file = text;
    return !text.empty();
}

/// Appends to one of the lists of files.
template <FileList list>
bool AddFileName(std::string_view text, HostOptions& options) {
    if (text.empty()) return false;
    (options.*list).emplace_back(text);
    return true;
}

template <bool HostOptions::*flag>
bool SetFlag(std::string_view, HostOptions& options) {
    options.*flag = true;
    return true;
}

bool LeaveOutColors(std::string_view, HostOptions& options) {
    options.import.leavesOutColors = true;
    return true;
}

bool AcceptSwitch(std::string_view, HostOptions&) { return true; }

constexpr std::string_view kFileName = "a file name";
constexpr std::string_view kPictureName =
    "a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, or - alone for standard output";

constexpr Option kOptions[] = {
    {.row = {.name = "--screenshot",
             .value = "OUT",
             .help = "render the scene, fitted to the picture, into a png, jpg or webp file; - is standard output, as "
                     "png",
             .completion = Completion::Files},
     .expected = kPictureName,
     .group = OptionGroup::Results,
     .selects = kScreenshot,
     .read = ReadPicturePath},
    {.row = {.name = "--capture",
             .value = "OUT",
             .help = "the same of the whole scene at 2048x2048, smooth shaded, whatever the window's size; --size, "
                     "--draw-mode and --shadows have no meaning with it",
             .completion = Completion::Files},
     .expected = kPictureName,
     .group = OptionGroup::Results,
     .selects = kCapture,
     .read = ReadPicturePath},
    {.row = {.name = "--pick",
             .value = "X,Y",
             .help = "print the surface point under a pixel of the picture that --screenshot takes, y downward: "
                     "object, triangle, point and distance; may be repeated"},
     .expected = "X,Y, two whole numbers from 0 to 16383",
     .group = OptionGroup::Results,
     .selects = kPick,
     .read = ReadPick},
    {.row = {.name = "--info", .help = "print what each file holds; without --cut needs no OpenGL either"},
     .group = OptionGroup::Results,
     .selects = kInfo,
     .read = AcceptSwitch},
    {.row = {.name = "--json", .help = "with --info, --pick and --align: print one JSON object"},
     .group = OptionGroup::Results,
     .runs = kInfo | kPick | kAlign,
     .read = SetFlag<&HostOptions::json>,
     .goesWith = "--info, --pick and --align"},
    {.row = {.name = "--convert",
             .help =
                 "write what the file IN holds, a scan or a mesh, as the {written} file OUT; IN is no folder and no "
                 "list; needs no OpenGL either",
             .followedBy = "IN OUT"},
     .group = OptionGroup::Results,
     .selects = kConvert,
     .read = AcceptSwitch},

    {.row = {.name = "--skip", .value = "N", .help = "thin the grid: one point for N x N, 1 to 32767 (1)"},
     .expected = "a whole number from 1 to 32767",
     .group = OptionGroup::Imports,
     .runs = kImports,
     .read = ReadSkip},
    {.row = {.name = "--confidence", .value = "F", .help = "leave out points of a lower confidence (0)"},
     .expected = "a number",
     .group = OptionGroup::Imports,
     .runs = kImports,
     .read = ReadConfidence},
    {.row = {.name = "--color",
             .value = "RRGGBB|auto",
             .help = "colour of scans and free points that have none of their own (DCD4C8), and without a window of "
                     "such meshes (CCCCCC); auto, without a window: objects get colours of the palette, each its own",
             .words = "auto"},
     .expected = "six hexadecimal digits RRGGBB, or auto",
     .group = OptionGroup::Imports,
     .runs = kImports & ~(kConvert | kExport),
     .read = ReadColor},

    {.row = {.name = "--no-vertex-colors",
             .help =
                 "leave out the colours that scans and meshes have of their own; a mesh that keeps them, as one with "
                 "an image, is named in a warning"},
     .group = OptionGroup::Imports,
     .runs = kImports & ~kWindow,
     .read = LeaveOutColors,
     .goesWith = "the runs without a window"},
    {.row = {.name = "--strict",
             .help = "end with status 1 when there is a warning about a file, such as one that was cut off; it is "
                     "imported all the same, and without this option the status stays 0"},
     .group = OptionGroup::Imports,
     .runs = kImports & ~kWindow,
     .read = SetFlag<&HostOptions::strict>,
     .goesWith = "the runs without a window"},

    {.row = {.name = "--transforms",
             .value = "FILE",
             .help = "place the files as a JSON file says, before anything else is done with them: as "
                     "--save-transforms, the window and simulate-scans write it. Each transform replaces that of the "
                     "file; files without an entry are named and stay where they are. --save-cuts writes nothing when "
                     "a file was moved",
             .completion = Completion::Files},
     .expected = kFileName,
     .group = OptionGroup::Places,
     .runs = kImports,
     .isOnce = true,
     .read = ReadFileName<&HostOptions::transformFile>},

    {.row = {.name = "--points",
             .value = "FILE",
             .help = "free points; --capture fits them into the picture, but draws none",
             .completion = Completion::Files},
     .expected = kFileName,
     .group = OptionGroup::Markers,
     .runs = kPictures,
     .read = AddFileName<&HostOptions::pointFiles>},
    {.row = {.name = "--lines", .value = "FILE", .help = "3D lines", .completion = Completion::Files},
     .expected = kFileName,
     .group = OptionGroup::Markers,
     .runs = kPictures,
     .read = AddFileName<&HostOptions::lineFiles>},
    {.row = {.name = "--needles",
             .value = "FILE",
             .help = "needles that the window has saved",
             .completion = Completion::Files},
     .expected = kFileName,
     .group = OptionGroup::Markers,
     .runs = kPictures,
     .read = AddFileName<&HostOptions::needleFiles>},

    {.row = {.name = "--size", .value = "WxH", .help = "size in pixels, at most 134217728 of them (1024x768)"},
     .expected = "WIDTHxHEIGHT, each from 1 to 16384, with at most 134217728 pixels together",
     .group = OptionGroup::Pictures,
     .runs = kWindow | kScreenshot | kPick | kCutting,
     .read = ReadSize},
    {.row = {.name = "--view",
             .value = "NAME|0..7",
             .help = "0 back from +Y, 1 front from -Y, 2 right from +X, 3 left from -X, 6 oblique: Z up; 4 top from "
                     "+Z, 7 bottom-y-up from -Z: Y up; 5 bottom from -Z: Y down (top)",
             .words = "back front right left top bottom oblique bottom-y-up"},
     .expected = "back, front, right, left, top, bottom, oblique or bottom-y-up, or its number from 0 to 7",
     .group = OptionGroup::Pictures,
     .runs = kPictures | kPick | kCutting,
     .read = ReadView},
    {.row = {.name = "--views",
             .value = "all|NAME,...",
             .help = "with --screenshot and --capture: one picture for each of these views; {view} in the name of the "
                     "picture is replaced by the name of the view",
             .words = "all back front right left top bottom oblique bottom-y-up"},
     .expected = "all, or views with commas between them, each once: back, front, right, left, top, bottom, oblique, "
                 "bottom-y-up or numbers from 0 to 7",
     .group = OptionGroup::Pictures,
     .runs = kScreenshot | kCapture,
     .read = ReadViews,
     .goesWith = "--screenshot and --capture"},
    {.row = {.name = "--fit",
             .help = "with --screenshot, --pick and --cut: what is seen from this side fills the picture, before it is "
                     "clipped and cut; --zoom counts from there"},
     .group = OptionGroup::Pictures,
     .runs = kScreenshot | kPick | kCutting,
     .read = SetFlag<&HostOptions::isTight>,
     .goesWith = "--screenshot, --pick and --cut"},
    {.row = {.name = "--draw-mode",
             .value = "NAME|0..7",
             .help =
                 "0 points, 1 wireframe, 2 flat, 3 gouraud, 4 boxes, 5 per-pixel, 6 nothing, 7 shadow-map (gouraud; "
                 "in the window the one that was used last)",
             .words = "points wireframe flat gouraud boxes per-pixel nothing shadow-map"},
     .expected = "points, wireframe, flat, gouraud, boxes, per-pixel, nothing or shadow-map, or its number from 0 to 7",
     .group = OptionGroup::Pictures,
     .runs = kWindow | kScreenshot,
     .read = ReadDrawMode},
    {.row = {.name = "--background",
             .value = "RRGGBB[,RRGGBB]",
             .help = "with --screenshot and --capture: colour of the background, or those of its top and its bottom"},
     .expected = "one or two colours RRGGBB of six hexadecimal digits, with a comma between them",
     .group = OptionGroup::Pictures,
     .runs = kScreenshot | kCapture,
     .read = ReadBackground,
     .goesWith = "--screenshot and --capture"},
    {.row = {.name = "--axes", .help = "with --screenshot: show the axes"},
     .group = OptionGroup::Pictures,
     .runs = kScreenshot,
     .read = SetFlag<&HostOptions::axes>,
     .goesWith = "--screenshot"},
    {.row = {.name = "--samples",
             .value = "N",
             .help =
                 "with --screenshot: samples per pixel, which smooth the edges; drivers have some of 2, 4, 8 and 16 "
                 "(0)",
             .words = "0 2 4 8 16"},
     .expected = "a whole number from 0 to 32",
     .group = OptionGroup::Pictures,
     .runs = kScreenshot,
     .read = ReadSamples,
     .goesWith = "--screenshot"},
    {.row = {.name = "--point-size",
             .value = "N",
             .help = "with --screenshot: pixels of the points of draw mode points; of free points half of their side "
                     "in scene units (2)"},
     .expected = "a number above 0 and up to 1000",
     .group = OptionGroup::Pictures,
     .runs = kScreenshot,
     .read = ReadPointSize,
     .goesWith = "--screenshot"},
    {.row = {.name = "--zoom", .value = "Z", .help = "magnification, 0.1 to 10: 2 shows half as much (1)"},
     .expected = "a number from 0.1 to 10",
     .group = OptionGroup::Pictures,
     .runs = kPictures | kPick | kCutting,
     .read = ReadZoom},
    {.row = {.name = "--shadows", .help = "cast shadows (draw modes 5 and 6 show no object then)"},
     .group = OptionGroup::Pictures,
     .runs = kWindow | kScreenshot,
     .read = SetFlag<&HostOptions::shadows>},

    {.row = {.name = "--clip",
             .value = "CX,CY,CZ,NX,NY,NZ",
             .help = "cut off what lies on the side away from the normal N of the plane through the point C, in the "
                     "units and axes of --info; the plane itself is not drawn"},
     .expected = "CX,CY,CZ,NX,NY,NZ, six finite numbers with a normal other than 0,0,0",
     .group = OptionGroup::Clipping,
     .runs = kScreenshot | kSaveCuts | kCutting,
     .read = ReadClip,
     .goesWith = "--screenshot, --save-cuts and --cut"},
    {.row = {.name = "--clip-auto",
             .help = "the same by a horizontal plane at a height that is estimated from all files: what is above it "
                     "is shown; with --info print the plane and the rule that gave its height"},
     .group = OptionGroup::Clipping,
     .runs = kScreenshot | kInfo | kSaveCuts | kCutting,
     .read = SetFlag<&HostOptions::clipAuto>,
     .goesWith = "--screenshot, --info, --save-cuts and --cut"},

    {.row = {.name = "--cut",
             .value = "'MODE:X,Y;X,Y;...'",
             .help = "cut by a lasso in the picture that --screenshot takes; X and Y are fractions of its width and "
                     "height, Y downward. The mode is inside or outside for what is removed, or visible for what is "
                     "seen inside; freehand-inside, freehand-outside and freehand-visible also count the lines of the "
                     "lasso as inside. A polygon reaches as far as its corners in the picture: keep them below 1. May "
                     "be repeated: the lassos cut one after the other. Quote the argument: a shell ends a command at "
                     "';'"},
     .expected = "MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside or "
                 "freehand-visible",
     .group = OptionGroup::Cuts,
     .runs = kScreenshot | kInfo | kSaveCuts | kExport,
     .read = ReadCut,
     .goesWith = "--screenshot, --info, --save-cuts and --export",
     .explain = CutError},
    {.row = {.name = "--save-cuts",
             .help = "write the lassos, and the plane of --clip or --clip-auto, into the pcm files that were read, "
                     "and print a line about each file. What is removed is marked as removed in the file; so is what "
                     "--confidence leaves out. A file cannot be restored from itself"},
     .group = OptionGroup::Cuts,
     .selects = kSaveCuts,
     .read = AcceptSwitch},
    {.row = {.name = "--export",
             .value = "OUT",
             .help = "write what the lassos leave of the one file as the {written} file OUT",
             .completion = Completion::Files},
     .expected = "a file name that does not begin with -",
     .group = OptionGroup::Cuts,
     .selects = kExport,
     .read = ReadExportPath},

    {.row = {.name = "--align",
             .value = "PAIRS.txt",
             .help = "print the rigid transform that moves points of the moving files onto points of the fixed ones, "
                     "and the residual of each pair. A pair is a line of six numbers: moving point, fixed point, in "
                     "the units and axes of --info. A single pair needs twelve: moving point, its normal, fixed "
                     "point, its normal. '#' begins a comment. A warning is printed for points on one line, as two "
                     "pairs are: the turn about it is arbitrary",
             .completion = Completion::Files},
     .expected = kFileName,
     .group = OptionGroup::Alignment,
     .selects = kAlign,
     .isOnce = true,
     .read = ReadFileName<&HostOptions::pairFile>},
    {.row = {.name = "--moving",
             .help = "the files that move: all names up to the next option",
             .followedBy = "FILE..."},
     .group = OptionGroup::Alignment,
     .runs = kAlign,
     .read = AcceptSwitch,
     .goesWith = "--align",
     .files = &HostOptions::movingFiles},
    {.row = {.name = "--fixed", .help = "the files that stay, likewise", .followedBy = "FILE..."},
     .group = OptionGroup::Alignment,
     .runs = kAlign,
     .read = AcceptSwitch,
     .goesWith = "--align",
     .files = &HostOptions::fixedFiles},
    {.row = {.name = "--save-transforms",
             .value = "OUT.json",
             .help = "write where all these files are after the alignment; entries of --transforms for other files "
                     "are kept. For a picture, a conversion or the window, apply OUT.json there",
             .completion = Completion::Files},
     .expected = "a file name that ends in .json and does not begin with -",
     .group = OptionGroup::Alignment,
     .runs = kAlign,
     .isOnce = true,
     .read = ReadSavedTransforms,
     .goesWith = "--align"},

    {.row = {.name = "--reset-settings",
             .help = "forget what the window remembers: its place and panes, colours, mouse buttons, import settings, "
                     "recent files and all else that was chosen in it"},
     .group = OptionGroup::Window,
     .runs = kWindow,
     .read = SetFlag<&HostOptions::resetsSettings>},

    {.row = {.name = "--gpu",
             .value = "N|software",
             .help = "draw with graphics device N, from 0 in the order of EGL, or with the processor; else with the "
                     "first device that can, and with the processor where none can",
             .words = "software 0 1"},
     .expected = "the number of a graphics device from 0 to 31, or software",
     .group = OptionGroup::Drawing,
     .runs = kScreenshot | kCapture | kPick | kVersion | kCutting,
     .read = ReadGpu,
     .goesWith = "--screenshot, --capture, --pick, --cut and --version --verbose"},

    {.row = {.name = "--progress",
             .help = "print the number and the name of each file that is read; without this only where standard error "
                     "is a terminal"},
     .group = OptionGroup::Drawing,
     .runs = kImports & ~kWindow,
     .read = SetFlag<&HostOptions::progress>,
     .goesWith = "the runs without a window"},
    {.row = {.name = "--quiet",
             .help = "print neither that nor warnings; a warning is a line that does not change the exit status"},
     .group = OptionGroup::Drawing,
     .runs = kImports & ~kWindow,
     .read = SetFlag<&HostOptions::quiet>,
     .goesWith = "the runs without a window"},

    {.row = {.name = "--help", .shortName = "-h", .help = "print this text"}, .selects = kHelp, .read = AcceptSwitch},
    {.row = {.name = "--version", .shortName = "-V", .help = "print the version"},
     .selects = kVersion,
     .read = AcceptSwitch},
    {.row = {.name = "--verbose",
             .help = "with --version: print also the device, driver and OpenGL version that draw without a window"},
     .runs = kVersion,
     .read = SetFlag<&HostOptions::verbose>,
     .goesWith = "--version"},
};

}  // namespace

std::span<const Option> OptionTable() { return kOptions; }
