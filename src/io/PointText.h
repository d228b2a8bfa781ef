// Points as text, one per line. Layout: docs/formats/points.md.
#pragma once
#include "KV_ScenePane/PointFiles.h"
#include "io/ByteInput.h"
#include "io/ReadProgress.h"

/// The time is linear in the size of the file, which is read twice: lines are counted first, so that the arrays are
/// allocated once.
/// @throws FileReadError "line N: ..." with N from 1
[[nodiscard]] KV_ScenePane::PointCloud ReadPointText(ByteInput& input, ReadProgress& progress);
