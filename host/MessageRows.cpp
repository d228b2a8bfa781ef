// The rows of the table, grouped by who writes the text; MessageTable.cpp finds them.
#include <QCoreApplication>

#include "MessageTable.h"

// Sentences that contain "; " could not be found again by TranslatedWords().
const char kTooFarApart[] = QT_TRANSLATE_NOOP(
    "Messages", "no triangle is left: with skip %1 neighbouring points are more than %2 mm apart: import with skip 1");
const char kTooFarApartAtAnySkip[] =
    QT_TRANSLATE_NOOP("Messages", "no triangle is left: with skip %1 neighbouring points are more than %2 mm apart");
const char kTooFewPerCell[] = QT_TRANSLATE_NOOP(
    "Messages",
    "no triangle is left: with skip %1 too few neighbouring cells have %2 valid points: import with a smaller skip");
const char kAllSlivers[] =
    QT_TRANSLATE_NOOP("Messages",
                      "no triangle is left: each has an angle below %1 or above %2 degrees: measure the surface less "
                      "obliquely");
const char kNoNeighbours[] = QT_TRANSLATE_NOOP(
    "Messages",
    "no triangle is left: nowhere are three neighbouring points valid: lower the confidence limit or measure again");
const char kOneRow[] =
    QT_TRANSLATE_NOOP("Messages", "no triangle is left: a grid of %1 x %2 points has no neighbours in one direction");
const char kOnlySkipRemoves[] =
    QT_TRANSLATE_NOOP("Messages", "no triangle is left with skip %1, but %2 with skip 1: import with skip 1");

const char kNoFiniteCoordinate[] = QT_TRANSLATE_NOOP(
    "Messages", "no point has finite coordinates, nothing of it can be shown: export the file again from its source");
const char kSceneIsFull[] = QT_TRANSLATE_NOOP(
    "Messages", "the scene is full: it holds at most 32767 objects: remove some, or open fewer files");
const char kNoSuchFile[] = QT_TRANSLATE_NOOP("Messages", "there is no such file: check its name and its folder");
const char kIsFolder[] = QT_TRANSLATE_NOOP("Messages", "this is a folder: name its files, or open it in the window");
const char kUnknownType[] = QT_TRANSLATE_NOOP("Messages", "the type of the file is not known: it is none of %1");
const char kNoReader[] = QT_TRANSLATE_NOOP(
    "Messages", "the program scenepane-read, which reads such files, is missing: install scenepane again");
const char kReaderNotStarted[] = QT_TRANSLATE_NOOP(
    "Messages", "the program scenepane-read, which reads such files, could not be started: %1: close other programs");
const char kReaderDamaged[] = QT_TRANSLATE_NOOP(
    "Messages",
    "the program scenepane-read, which reads such files, could not be started: %1: install scenepane again");
const char kReaderResultTooLarge[] = QT_TRANSLATE_NOOP(
    "Messages",
    "what the file holds does not fit into memory, or is above the size limit of files: close other programs, or raise "
    "the limit (ulimit -f)");
const char kReaderTooSlow[] = QT_TRANSLATE_NOOP(
    "Messages", "reading the file was given up after %1 seconds: it is damaged or too large for its format");
const char kReaderCrashed[] =
    QT_TRANSLATE_NOOP("Messages", "the file is damaged, or of a form that is not read: its reader ended with %1");
const char kReaderFailed[] =
    QT_TRANSLATE_NOOP("Messages", "the file is damaged, or of a form that is not read: its reader failed: %1");
const char kNoTemporaryFile[] = QT_TRANSLATE_NOOP(
    "Messages",
    "its image needs a temporary file, which could not be made: set TMPDIR to a folder that can be written");
const char kMeshWithImage[] =
    QT_TRANSLATE_NOOP("Messages", "the file holds a mesh with an image: open it as a mesh, not as free points");
const char kPointsAlone[] = QT_TRANSLATE_NOOP(
    "Messages", "the file has points but no triangles: free points can be shown and counted, but are no object");
const char kEmptyFolder[] = QT_TRANSLATE_NOOP("Messages", "the folder holds no file that can be opened");
const char kUnreadFolder[] = QT_TRANSLATE_NOOP("Messages", "the folder could not be read: %1: check its permissions");
const char kFullFolder[] = QT_TRANSLATE_NOOP("Messages", "the folder holds too many files, not all of them are opened");
const char kNoNeedles[] = QT_TRANSLATE_NOOP("Messages", "the file holds no needles");

namespace {

constexpr const char* kDamaged =
    QT_TRANSLATE_NOOP("Messages", "the file is damaged: copy or export it again from its source");
constexpr const char* kCutShort =
    QT_TRANSLATE_NOOP("Messages", "the file is cut short: copy or export it again from its source");
constexpr const char* kNewerFile =
    QT_TRANSLATE_NOOP("Messages", "the file is of a version that is not known here: a newer scenepane may read it");
constexpr const char* kBadHeader =
    QT_TRANSLATE_NOOP("Messages", "the header of the ply file is not valid: %2: export it again from its source");
constexpr const char* kListType = QT_TRANSLATE_NOOP(
    "Messages", "the ply file has a list of a type that is not read: export it again with lists of whole numbers");
constexpr const char* kNotFinite = QT_TRANSLATE_NOOP(
    "Messages", "a number in the ply file is not finite: export it again without such vertices, or as binary ply");
constexpr const char* kNoPly = QT_TRANSLATE_NOOP("Messages", "this is no ply file, whatever its name says");
constexpr const char* kDiskFull =
    QT_TRANSLATE_NOOP("Messages", "the disk is full: free some space or choose another folder");
constexpr const char* kNotSaved =
    QT_TRANSLATE_NOOP("Messages", "the file could not be replaced: %1: check the folder and its permissions");
constexpr const char* kNoFile =
    QT_TRANSLATE_NOOP("Messages", "this is a device or a pipe and no file: choose another name");
constexpr const char* kDriver = QT_TRANSLATE_NOOP(
    "Messages",
    "install the current driver of the graphics card, or set LIBGL_ALWAYS_SOFTWARE=1 to draw with the processor");
constexpr const char* kNoWindowlessDriver =
    QT_TRANSLATE_NOOP("Messages",
                      "no driver draws OpenGL without a window: install the driver of the graphics card or the "
                      "software renderer of Mesa");
constexpr const char* kTooLarge =
    QT_TRANSLATE_NOOP("Messages", "an area of %1 x %2 pixels is larger than the driver can draw: choose a smaller one");
constexpr const char* kSourceArrays =
    QT_TRANSLATE_NOOP("Messages", "the file has no points or no confidence values: export it again from its source");
constexpr const char* kLogo =
    QT_TRANSLATE_NOOP("Messages", "the picture is larger than the driver can draw: choose a smaller one");

// Lines about cuts that are saved; CutSaveReport.h makes them.
constexpr const char* kCutWritten = QT_TRANSLATE_NOOP("Messages", "%1: written");
constexpr const char* kCutWrittenEmpty = QT_TRANSLATE_NOOP("Messages", "%1: written, no point is left in it");
constexpr const char* kCutNothingNew = QT_TRANSLATE_NOOP("Messages", "%1: skipped, nothing new was cut from it");
constexpr const char* kCutNotPcm = QT_TRANSLATE_NOOP("Messages", "%1: skipped, only pcm files can hold cuts");
constexpr const char* kCutNotRead = QT_TRANSLATE_NOOP("Messages", "%1: failed, the file could not be read");
constexpr const char* kCutNotReadReason = QT_TRANSLATE_NOOP("Messages", "%1: failed, the file could not be read: %2");
constexpr const char* kCutNotWritten =
    QT_TRANSLATE_NOOP("Messages", "%1: failed, the file could not be written and is as before");
constexpr const char* kCutNotWrittenReason =
    QT_TRANSLATE_NOOP("Messages", "%1: failed, the file could not be written and is as before: %2");
constexpr const char* kCutMoved =
    QT_TRANSLATE_NOOP("Messages", "%1: moved since its import, take back the alignment first");
constexpr const char* kCutWhileMoved = QT_TRANSLATE_NOOP("Messages", "%1: was cut while it was moved");
constexpr const char* kCutAgain =
    QT_TRANSLATE_NOOP("Messages", "undo these cuts, take back the alignment first, and cut again");
constexpr const char* kCutClips =
    QT_TRANSLATE_NOOP("Messages", "the clip plane is active: what it clips is removed from every pcm file");
constexpr const char* kCutFilters =
    QT_TRANSLATE_NOOP("Messages", "the confidence filter is above 0: points below it are removed from the files, too");

constexpr MessageRow kRows[] = {
    // ---- memory
    {"there is not enough memory",
     QT_TRANSLATE_NOOP("Messages", "there is not enough memory: close other programs or remove objects")},
    {"insufficient memory",
     QT_TRANSLATE_NOOP("Messages", "there is not enough memory: close other programs or remove objects")},
    {"Not enough memory for the data of the file.",
     QT_TRANSLATE_NOOP("Messages", "there is not enough memory for this file: close other programs or remove objects")},
    {"not enough graphics memory for object %1",
     QT_TRANSLATE_NOOP("Messages",
                       "there is not enough graphics memory for object %1: remove objects or import with a larger "
                       "skip")},
    {"not enough graphics memory for point set %1",
     QT_TRANSLATE_NOOP("Messages", "there is not enough graphics memory for free points %1: remove other objects")},

    // ---- scans
    {"CreateInternalMesh() returned nullptr",
     QT_TRANSLATE_NOOP("Messages",
                       "no triangle is left of the scan: import with a smaller skip or a lower confidence "
                       "limit")},
    {"its valid points form no triangle",
     QT_TRANSLATE_NOOP("Messages", "no triangle is left: the valid points form none with these import settings")},
    {"its grid has no pixel", QT_TRANSLATE_NOOP("Messages", "the scan is empty: its grid has no points")},
    {"no pixel was measured", QT_TRANSLATE_NOOP("Messages", "the scan is empty: the sensor measured no point")},
    {"all pixels are classified as invalid",
     QT_TRANSLATE_NOOP("Messages", "no point is left: the scanner marked all as invalid")},
    {"no pixel passes the confidence limit %1",
     QT_TRANSLATE_NOOP("Messages", "no point is left: none has the confidence %1: lower the limit of the import")},
    {"not a readable pcm file, or damaged", kDamaged},
    {"holds less than a quarter of the grid that it announces", kCutShort},
    {"ends before the size of its grid", kCutShort},
    {"ends before the end of its transform", kCutShort},
    {"announces a grid of negative size", kDamaged},
    {"a grid of %1 x %2 is not possible",
     QT_TRANSLATE_NOOP("Messages", "a grid of %1 x %2 points is not possible: the file is damaged")},
    {"the skip value %1 is below 1", QT_TRANSLATE_NOOP("Messages", "the skip value is %1: choose 1 or more")},
    {"there is no array of points", kSourceArrays},
    {"there is no array of confidence values", kSourceArrays},
    {"unknown file type, not one of %1", kUnknownType},
    {"the path is empty", QT_TRANSLATE_NOOP("Messages", "no file is named")},

    // ---- pcm files
    {"file is cut short%1", kCutShort},
    {"file is cut short", kCutShort},
    {"header is cut short at byte %1",
     QT_TRANSLATE_NOOP("Messages", "the file is cut short after %1 bytes: copy or export it again from its source")},
    {"header is cut short", kCutShort},
    {"header is damaged", kDamaged},
    {"a section is damaged", kDamaged},
    {"a section has a wrong length", kDamaged},
    {"a section is longer than the file", kCutShort},
    {"a needed section is missing", kDamaged},
    {"a section stands twice", kDamaged},
    {"bytes that belong to no section", kDamaged},
    {"impossible number of sections", kDamaged},
    {"impossible grid size", kDamaged},
    {"coverage has a wrong length", kDamaged},
    {"coverage of no pixel", kDamaged},
    {"grid is out of proportion to the file", kDamaged},
    {"file has another length than it should", kCutShort},
    {"of a version that is not known here", kNewerFile},
    {"needs a section that this version does not know", kNewerFile},
    {"a section has flags that this version does not know", kNewerFile},
    {"nothing to write", QT_TRANSLATE_NOOP("Messages", "nothing is left that could be written")},
    {"a foreign section that readers refuse", kNewerFile},
    {"too many sections", kDamaged},

    // ---- meshes
    {"1 coordinates are not finite",
     QT_TRANSLATE_NOOP("Messages",
                       "one coordinate is not finite: triangles may be missing there: export the file again from its "
                       "source")},
    {"%1 coordinates are not finite",
     QT_TRANSLATE_NOOP("Messages",
                       "%1 coordinates are not finite: triangles may be missing there: export the file again from its "
                       "source")},
    {"%1 of %2 vertices and %3 of %4 triangles are in the file",
     QT_TRANSLATE_NOOP(
         "Messages",
         "%1 of %2 points and %3 of %4 triangles are in the file, the rest was cut off: copy or export it "
         "again from its source")},
    {"%1 of %2 vertices are in the file",
     QT_TRANSLATE_NOOP("Messages",
                       "%1 of %2 points are in the file, the rest was cut off: copy or export it again from its "
                       "source")},
    {"%1 of %2 triangles are in the file",
     QT_TRANSLATE_NOOP("Messages",
                       "%1 of %2 triangles are in the file, the rest was cut off: copy or export it again from its "
                       "source")},
    {"%1 of %2 pixels are in the file",
     QT_TRANSLATE_NOOP(
         "Messages",
         "%1 of %2 points of the grid are in the file, the rest was cut off: copy or export it again from "
         "its source")},
    {"%1 bytes follow the end of its data",
     QT_TRANSLATE_NOOP("Messages",
                       "the file goes on for %1 bytes after the end of its data, they are ignored: check that it is "
                       "the right file")},
    {"holds no faces",
     QT_TRANSLATE_NOOP("Messages",
                       "the file has points but no triangles: import it as free points (File > Import free points, or "
                       "--points)")},
    {"holds no triangle; it starts with \"solid\": stl as text is not read",
     QT_TRANSLATE_NOOP("Messages", "the file is stl as text, which is not read: save it as binary stl")},
    {"%1; it starts with \"solid\": stl as text is not read",
     QT_TRANSLATE_NOOP("Messages", "the file is stl as text, which is not read: save it as binary stl")},
    {"holds no triangle", QT_TRANSLATE_NOOP("Messages", "the file has no triangle")},
    {"has more triangles than can be counted",
     QT_TRANSLATE_NOOP("Messages", "the file has more triangles than can be imported: split it")},
    {"more triangles than an stl file can count",
     QT_TRANSLATE_NOOP("Messages", "the object has more triangles than an stl file can hold: export it as ply")},
    {"more vertices than an index can count",
     QT_TRANSLATE_NOOP("Messages", "the file has more points than can be imported: split it")},
    {"triangle %1 refers to vertex %2 of %3", kDamaged},
    {"Triangle %1 refers to vertex %2 of %3", kDamaged},
    {"holds less than half of the mesh that it announces", kCutShort},
    {"ends before its counts", kCutShort},
    {"announces a negative count", kDamaged},
    {"the file became shorter while it was read",
     QT_TRANSLATE_NOOP("Messages", "the file was changed while it was read: open it again when it is complete")},
    {"Magic number in PLY header not found.", kNoPly},
    {"Unknown file format.", kNoPly},
    {"Unsupported PLY file version: %1",
     QT_TRANSLATE_NOOP("Messages", "ply of version %1 is not read: export it as version 1.0")},
    {"Big-endian binary format not yet supported.",
     QT_TRANSLATE_NOOP("Messages", "big-endian ply is not read: export it as text or as little-endian ply")},
    {"Non-triangle faces not supported.",
     QT_TRANSLATE_NOOP("Messages",
                       "the file has faces with more than three corners: triangulate it and export it again")},
    {"Expected 6 UV coordinates per face.",
     QT_TRANSLATE_NOOP("Messages", "the texture coordinates of the file are not six per triangle: export it again")},
    {"Unexpected end of data.", kCutShort},
    {"Error in grammar at token %1: \"element\" expected.",
     QT_TRANSLATE_NOOP("Messages",
                       "the header of the ply file has a line that is not read, as one with obj_info: export it again "
                       "without such lines")},
    {"Error in grammar at token %1: invalid property type \"%2\"",
     QT_TRANSLATE_NOOP("Messages",
                       "the ply file has values of the type %2, which is not read: export it again with float "
                       "coordinates")},
    {"Error in grammar at token %1: invalid count type in list none", kListType},
    {"Error in grammar at token %1: invalid element type in list none", kListType},
    {"Error in grammar at token %1: element count expected (integer)",
     QT_TRANSLATE_NOOP("Messages",
                       "the header of the ply file does not say how many points or faces follow: export it again from "
                       "its source")},
    {"Error in grammar at token %1: expected %2 more tokens",
     QT_TRANSLATE_NOOP("Messages", "the header of the ply file is cut short: copy or export it again from its source")},
    {"Error in grammar at token %1: %2", kBadHeader},
    {"Float expected, but found this: nan", kNotFinite},
    {"Float expected, but found this: -nan", kNotFinite},
    {"Float expected, but found this: NaN", kNotFinite},
    {"Float expected, but found this: inf", kNotFinite},
    {"Float expected, but found this: -inf", kNotFinite},
    {"Integer expected, but found this: %1",
     QT_TRANSLATE_NOOP("Messages", "the file is damaged: there is \"%1\" in place of a whole number")},
    {"Float expected, but found this: %1",
     QT_TRANSLATE_NOOP("Messages", "the file is damaged: there is \"%1\" in place of a number")},
    {"No such property: %1",
     QT_TRANSLATE_NOOP("Messages", "the ply file has no property \"%1\": export it again with it")},
    {"No such element: %1", QT_TRANSLATE_NOOP("Messages", "the ply file has no \"%1\": export it again with it")},
    {"No array-style access to elements that contain list properties.",
     QT_TRANSLATE_NOOP("Messages", "the points of the ply file have lists, which are not read")},
    {"not an integer: %1", QT_TRANSLATE_NOOP("Messages", "the ply file has %1 where a whole number must be")},
    {"not a floating-point: %1", QT_TRANSLATE_NOOP("Messages", "the ply file has %1 where a decimal number must be")},
    {"not a list: %1", QT_TRANSLATE_NOOP("Messages", "the ply file has no list \"%1\"")},

    // ---- files that scenepane-read reads
    {"the header of the file has no end",
     QT_TRANSLATE_NOOP("Messages", "the header of the ply file is cut short: copy or export it again from its source")},
    {"the header has an incomplete property",
     QT_TRANSLATE_NOOP("Messages",
                       "a property in the header of the ply file is not complete: export it again from its source")},
    {"the header does not say how many %1 follow",
     QT_TRANSLATE_NOOP("Messages",
                       "the header of the ply file does not say how many points or faces follow: export it again from "
                       "its source")},
    {"values of the type %1 are not known",
     QT_TRANSLATE_NOOP("Messages",
                       "the ply file has values of the type %1, which is not known: export it again with float "
                       "coordinates")},
    {"line %1: there is %2 in place of a number",
     QT_TRANSLATE_NOOP("Messages", "the file is damaged: in line %1 there is %2 in place of a number")},
    {"line %1: a vertex needs three numbers", kCutShort},
    {"line %1: a facet has fewer than three corners",
     QT_TRANSLATE_NOOP("Messages", "the file is damaged: a triangle before line %1 has fewer than three corners")},
    {"line %1: a point needs three numbers",
     QT_TRANSLATE_NOOP("Messages", "the file is damaged: the point in line %1 has fewer than three coordinates")},
    {"the file ends inside a facet, which is not shown",
     QT_TRANSLATE_NOOP("Messages", "the file ends inside a facet, which is not shown: copy it again")},
    {"the file ends without endsolid: triangles may be missing",
     QT_TRANSLATE_NOOP("Messages",
                       "the file ends without endsolid, triangles may be missing: check that it is complete")},
    {"the file is empty", QT_TRANSLATE_NOOP("Messages", "the file is empty: copy or export it again from its source")},
    {"its content is not of the type that its name says",
     QT_TRANSLATE_NOOP("Messages",
                       "its content is not of the type that its name says: check the extension, or export it "
                       "again from its source")},
    {"the colours of its materials are not shown: there is no file %1",
     QT_TRANSLATE_NOOP("Messages", "the colours of its materials are not shown: there is no file %1 beside it")},
    {"its image is not shown: there is no file %1",
     QT_TRANSLATE_NOOP("Messages", "its image is not shown: there is no file %1 beside it")},
    {"its image is not shown: it is no png or jpeg file, or damaged",
     QT_TRANSLATE_NOOP("Messages", "its image is not shown: it is no png or jpeg file, or damaged")},
    {"an image is not shown: it is no png or jpeg file, or damaged: %1",
     QT_TRANSLATE_NOOP("Messages", "an image is not shown: it is no png or jpeg file, or damaged: %1")},
    {"its images are not shown: it has more than one",
     QT_TRANSLATE_NOOP("Messages", "its images are not shown: it has more than one")},
    {"its lines are not shown", QT_TRANSLATE_NOOP("Messages", "its lines are not shown")},
    {"the colours of its faces are not shown", QT_TRANSLATE_NOOP("Messages", "the colours of its faces are not shown")},
    {"%1 points without finite coordinates are left out",
     QT_TRANSLATE_NOOP("Messages", "%1 points without finite coordinates are left out")},

    // ---- hps files
    {"File not found.", QT_TRANSLATE_NOOP("Messages", "there is no such file")},
    {"Can't read file.", QT_TRANSLATE_NOOP("Messages", "the file cannot be read: check its permissions")},
    {"Can't decode HPS mesh file.", kDamaged},
    {"Invalid file.", QT_TRANSLATE_NOOP("Messages", "this is no hps file, or it is damaged")},
    {"Invalid vertex data.", kDamaged},
    {"Invalid facet data. %1", kDamaged},
    {"Invalid facet data.", kDamaged},
    {"Invalid UV data.", kDamaged},
    {"Invalid texture data.", QT_TRANSLATE_NOOP("Messages", "the picture on the surface is damaged or no picture")},
    {"Failed to extract UV coordinates.", kDamaged},
    {"Inconsistent vertex count.", kDamaged},
    {"the component library gives no object %1",
     QT_TRANSLATE_NOOP("Messages", "libKV_Components.so is of another version (no %1): install scenepane again")},
    {"requested interface not supported",
     QT_TRANSLATE_NOOP("Messages", "libKV_Components.so is of another version: install scenepane again")},

    // ---- files that are written
    {"%1: No space left on device", kDiskFull},
    {"%1: Disk quota exceeded", kDiskFull},
    {"%1: Is a directory", QT_TRANSLATE_NOOP("Messages", "this is a folder: choose the name of a file")},
    {"not a regular file: %1", kNoFile},
    {"cannot be saved: Operation not supported", kNoFile},
    {"cannot be saved: %1", kNotSaved},
    {"the call failed",
     QT_TRANSLATE_NOOP("Messages",
                       "libKV_Components.so has failed and gives no reason: check the file and its folder")},
    {"cannot rename: %1", kNotSaved},
    {"cannot write: %1", kNotSaved},
    {"cannot flush: %1", kNotSaved},
    {"cannot close: %1", kNotSaved},
    {"cannot create a file beside the target: %1", kNotSaved},
    {"cannot open the folder: %1", kNotSaved},
    {"cannot set the mode: %1", kNotSaved},
    {"cannot be written: %1",
     QT_TRANSLATE_NOOP("Messages", "the file must not be written: %1: change its permissions or choose another name")},

    // ---- drivers, windows and embedding
    {"OpenGL context could not be created. Requested version: %1",
     QT_TRANSLATE_NOOP("Messages", "the graphics driver does not have OpenGL %1")},
    {"OpenGL %1 is not offered by the driver: %2",
     QT_TRANSLATE_NOOP("Messages", "the graphics driver does not have OpenGL %1")},
    {"OpenGL context could not be created. ",
     QT_TRANSLATE_NOOP("Messages", "the graphics driver does not have OpenGL")},
    {"OpenGL context could not be created.", QT_TRANSLATE_NOOP("Messages", "the graphics driver does not have OpenGL")},
    {"The 3D viewer could not be initialized.%1", kDriver},
    {"EGL offers no display that draws OpenGL without a window", kNoWindowlessDriver},
    {"EGL offers no OpenGL that is drawn by the processor",
     QT_TRANSLATE_NOOP("Messages", "the processor cannot draw: install the software renderer of Mesa")},
    {"A window of %1 x %2 pixels is too large", kTooLarge},
    {"An off-screen surface of %1 x %2 pixels is too large", kTooLarge},
    {"No X display: $DISPLAY is not set",
     QT_TRANSLATE_NOOP("Messages", "there is no X display: start it in a desktop session or set DISPLAY")},
    {"No X display: $DISPLAY is %1, which cannot be opened",
     QT_TRANSLATE_NOOP("Messages", "the X display %1 cannot be opened: check DISPLAY and the permissions (xhost)")},
    {"No X display: %1 cannot be opened",
     QT_TRANSLATE_NOOP("Messages", "the X display %1 cannot be opened: check its name and the permissions (xhost)")},
    {"The parent %1 is not a window of the X display %2",
     QT_TRANSLATE_NOOP("Messages", "the window system is not X11: start with QT_QPA_PLATFORM=xcb")},
    {"The parent %1 is a window for input only",
     QT_TRANSLATE_NOOP("Messages", "the window system is not X11: start with QT_QPA_PLATFORM=xcb")},
    {"No file descriptor is left for the events of the window",
     QT_TRANSLATE_NOOP("Messages", "too many files are open: close other programs or raise the limit (ulimit -n)")},
    {"the image is larger than the driver's textures", kLogo},
    {"OpenGL did not take the image",
     QT_TRANSLATE_NOOP("Messages", "the driver did not accept the picture: there may be too little graphics memory")},

    // ---- sentences that the program makes itself: they are here to be translated
    {kTooFarApart, kTooFarApart},
    {kTooFarApartAtAnySkip, kTooFarApartAtAnySkip},
    {kTooFewPerCell, kTooFewPerCell},
    {kAllSlivers, kAllSlivers},
    {kNoNeighbours, kNoNeighbours},
    {kOneRow, kOneRow},
    {kOnlySkipRemoves, kOnlySkipRemoves},
    {kNoFiniteCoordinate, kNoFiniteCoordinate},
    {kSceneIsFull, kSceneIsFull},
    {kNoSuchFile, kNoSuchFile},
    {kIsFolder, kIsFolder},
    {kUnknownType, kUnknownType},
    {kNoReader, kNoReader},
    {kReaderNotStarted, kReaderNotStarted},
    {kReaderDamaged, kReaderDamaged},
    {kReaderTooSlow, kReaderTooSlow},
    {kReaderResultTooLarge, kReaderResultTooLarge},
    {kReaderCrashed, kReaderCrashed},
    {kReaderFailed, kReaderFailed},
    {kNoTemporaryFile, kNoTemporaryFile},
    {kMeshWithImage, kMeshWithImage},
    {kPointsAlone, kPointsAlone},
    {kEmptyFolder, kEmptyFolder},
    {kUnreadFolder, kUnreadFolder},
    {kFullFolder, kFullFolder},
    {kNoNeedles, kNoNeedles},
    {kCutWritten, kCutWritten},
    {kCutWrittenEmpty, kCutWrittenEmpty},
    {kCutNothingNew, kCutNothingNew},
    {kCutNotPcm, kCutNotPcm},
    {kCutNotRead, kCutNotRead},
    {kCutNotReadReason, kCutNotReadReason},
    {kCutNotWritten, kCutNotWritten},
    {kCutNotWrittenReason, kCutNotWrittenReason},
    {kCutMoved, kCutMoved},
    {kCutWhileMoved, kCutWhileMoved},
    {kCutAgain, kCutAgain},
    {kCutClips, kCutClips},
    {kCutFilters, kCutFilters},
};

}  // namespace

std::span<const MessageRow> MessageRows() { return kRows; }
