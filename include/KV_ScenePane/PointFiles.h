// Reading of coloured points from files, for _DKV_ScenePane::ImportPoints().
#pragma once
#include <functional>
#include <string>
#include <vector>

namespace KV_ScenePane {

/// Points as a file holds them, in the units of the file. All coordinates are finite.
struct PointCloud {
    std::vector<float> xyz;     ///< 3 per point: x, y, z
    std::vector<float> colors;  ///< 3 per point: red, green, blue from 0 to 1; empty when the file has no colours
};

/// Reads a whole file of points: text (.xyz, .xyzrgb, .txt, .asc, .csv), .pcd, or the vertices of a .ply file. The
/// extension decides, in any case of letters; docs/formats/points.md describes the formats and what is refused. May be
/// called on any thread and by several at once; needs neither a viewer nor OpenGL. Besides the points it needs a few MB
/// of memory.
/// @param path      in bytes, as open() receives it
/// @param cloud     replaced when the file was read, at least one point; unchanged otherwise
/// @param reason    receives one line in English without the path when the result is false, for example
///                  "line 17: expected 6 numbers, found 5", or "cancelled"; may be null
/// @param progress  called at least every 16 MB of the file, on the calling thread, with rising values from 0 to 1, the
///                  last of which is 1; returns false to cancel. May be empty. What it throws passes through
/// @return false when the file cannot be read as a whole or @p progress cancelled
__attribute__((visibility("default"))) bool ReadPointFile(const std::string& path, PointCloud* cloud,
                                                          std::string* reason,
                                                          const std::function<bool(double)>& progress);

}  // namespace KV_ScenePane
