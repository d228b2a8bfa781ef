// The output of --info, --pick and --align: the objects of a scene, surface points of them, and what moves objects onto
// others, as text and as JSON.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/PointFiles.h"
#include "KV_ScenePane/ScenePane.h"

/// What the viewer reports about one object of the scene.
struct ObjectReport {
    /// The file that the object came from; bytes, as typed.
    std::string file;
    /// Position in the viewer's list.
    int index = 0;
    /// The name in the viewer: the path, or empty for some mesh formats.
    std::wstring name;
    std::int32_t vertices = 0, triangles = 0;
    /// World frame, scene units: min x, max x, min y, max y, min z, max z.
    std::array<float, 6> box{};
    /// World frame, scene units.
    std::array<float, 3> center{};
    /// 0x00BBGGRR. Not shown when the vertices have colours.
    std::int32_t color = 0;
    bool hasVertexColors = false;
    /// 4 x 4, row by row, sensor to world frame.
    std::array<float, 16> transform{};
};

/// Whether min is at most max along each axis. That is false for the box of an object without finite points.
[[nodiscard]] bool IsBox(const std::array<float, 6>& box);
/// Whether a point of the object has three finite coordinates, or it has no points: without it nothing can be shown.
[[nodiscard]] bool HasPosition(const ObjectReport& object);

/// A file of free points, which are no object.
struct PointsReport {
    std::string file;  ///< as typed, bytes
    std::size_t count = 0;
    bool hasColors = false;
    /// As that of an object.
    std::array<float, 6> box{};
};

/// A file that added no object.
struct FailedFile {
    std::string file;    ///< as typed, bytes
    std::string reason;  ///< one line
};

/// What is wrong with a file that added an object all the same.
struct FileWarning {
    std::string file;  ///< as typed, bytes
    std::string text;  ///< one line
};

/// The clip plane as the viewer placed it at the data.
struct ClipReport {
    KV_ScenePane::ClipHeight height;
    /// World frame, scene units.
    std::array<float, 3> center{};
    std::array<float, 3> normal{};
};

/// What a lasso did.
struct CutReport {
    KV_ScenePane::SegmentationMode mode = KV_ScenePane::PolygonInside;
    bool hasChanged = false;  ///< at least one object
};

/// The result of one --info run. Every file is an object, points or failed, in the order of the command line.
struct SceneReport {
    std::vector<ObjectReport> objects;
    std::vector<FailedFile> failed;
    std::vector<FileWarning> warnings = {};
    std::vector<PointsReport> points = {};
    /// Empty when the run did not place the plane.
    std::optional<ClipReport> clip = {};
    /// In the order in which they were applied; the objects are those after them.
    std::vector<CutReport> cuts = {};
};

/// The result for one pixel.
struct PickReport {
    /// Pixel of the drawing area, y downward.
    int x = 0, y = 0;
    /// Empty when no surface is under the pixel.
    std::optional<KV_ScenePane::SurfacePoint> hit;
    /// The file that the hit object came from; bytes, as typed.
    std::string file;
};

/// Asks the viewer for one object. @param index  must be in its list
[[nodiscard]] ObjectReport ReportObject(KV_ScenePane::ScenePane& pane, std::int16_t index, std::string file);

[[nodiscard]] PointsReport ReportPoints(const KV_ScenePane::PointCloud& cloud, std::string file);

/// Asks the viewer for its clip plane after a placement.
[[nodiscard]] ClipReport ReportClip(KV_ScenePane::ScenePane& pane);

/// Text for a reader; ends with a line feed unless it is empty.
[[nodiscard]] std::string ReportText(const SceneReport& report);
/// One JSON object in UTF-8, ends with a line feed. Numbers have the digits that are needed to read back the same
/// float; NaN and infinity are null, and so are box and center of an object without a finite point. Bytes of names that
/// are not UTF-8 become lone surrogates \udc80 to \udcff. The member "clip" exists only with report.clip, its member
/// "rule" only for a height that was found; the member "cuts" only with a lasso.
[[nodiscard]] std::string ReportJson(const SceneReport& report);

/// Text for a reader, in the order of the picks; ends with a line feed.
[[nodiscard]] std::string PickText(const std::vector<PickReport>& picks);
/// One JSON object on one line, in UTF-8; numbers and names as in ReportJson(). A pick without a hit has the object -1
/// and neither file, triangle, point nor distance.
[[nodiscard]] std::string PickJson(const std::vector<PickReport>& picks);

/// The transform by rows, then the residual of each pair, then their root mean square; ends with a line feed.
[[nodiscard]] std::string AlignmentText(const KV_ScenePane::AlignmentResult& result);
/// One JSON object on one line. Numbers have the digits that are needed to read back the same double.
[[nodiscard]] std::string AlignmentJson(const KV_ScenePane::AlignmentResult& result);

/// A packed colour 0x00BBGGRR as RRGGBB.
[[nodiscard]] std::string ColorText(std::int32_t color);
/// The shortest text that reads back as the same float, whatever the locale.
[[nodiscard]] std::string NumberText(float value);
