// A file of points, by its extension. The formats: io/PointText.h, io/PcdFile.h, io/PlyPoints.h.
#pragma once
#include <functional>
#include <string>

#include "KV_ScenePane/PointFiles.h"

/// KV_ScenePane::ReadPointFile() for callers that handle errors as exceptions.
/// @throws FileReadError with the reason, std::bad_alloc, std::length_error
[[nodiscard]] KV_ScenePane::PointCloud ReadPoints(const std::string& path, const std::function<bool(double)>& progress);
