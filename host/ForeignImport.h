// From what scenepane-read found in a file to objects and points of the viewer.
#pragma once
#include <functional>
#include <string>

#include "FileImport.h"
#include "KV_ScenePane/PointFiles.h"
#include "KV_ScenePane/_DKV_ScenePane.h"
#include "ReaderResult.h"

/// Adds a mesh to the viewer, on its thread. A mesh with an image passes through a temporary ply file, as only such a
/// file can give an image to the viewer. Points are returned, not added. Needs a DebugRouter, and the component
/// registry for images.
/// @param file   path in bytes, the object's name
/// @param found  the result for that file
[[nodiscard]] ImportResult AddReaderResult(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                           const ReaderResult& found);

/// As KV_ScenePane::ReadPointFile(), but for every file that holds points or a mesh, whose vertices are the points
/// then: by scenepane-read where the viewer has no reader or refuses the file. Any thread.
[[nodiscard]] bool ReadAnyPoints(const std::string& path, KV_ScenePane::PointCloud* cloud, std::string* reason,
                                 const std::function<bool(double)>& progress);
