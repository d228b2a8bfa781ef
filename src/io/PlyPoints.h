// The vertices of a ply file as points; faces are ignored. Layout: docs/formats/points.md; a file as a mesh:
// io/PlyMesh.h.
#pragma once
#include "KV_ScenePane/PointFiles.h"
#include "io/ByteInput.h"
#include "io/ReadProgress.h"

/// Only blocks of the data are in memory, and nothing after the vertices is read.
/// @throws FileReadError; "point N: ..." with N from 1
[[nodiscard]] KV_ScenePane::PointCloud ReadPlyPoints(ByteInput& input, ReadProgress& progress);
