// Points in pcd files: text, binary and compressed. Layout: docs/formats/points.md.
#pragma once
#include "KV_ScenePane/PointFiles.h"
#include "io/ByteInput.h"
#include "io/ReadProgress.h"

/// Besides the points only blocks are in memory. All counts are checked against the size of the file before memory is
/// allocated.
/// @throws FileReadError; "line N: ..." with N from 1 in the header and in text, "point N: ..." elsewhere
[[nodiscard]] KV_ScenePane::PointCloud ReadPcd(ByteInput& input, ReadProgress& progress);
