// Icons of the cutting tools, drawn by code.
#pragma once
#include <QIcon>

#include "KV_ScenePane/Cutting.h"

/// A sheet and the lasso on it: what is removed is red and crossed out. A second sheet behind it is left by the ways
/// that remove only what is visible.
[[nodiscard]] QIcon CutWayIcon(KV_ScenePane::SegmentationMode way);
/// A cross.
[[nodiscard]] QIcon CutCancelIcon();
/// An arrow that turns back.
[[nodiscard]] QIcon CutUndoIcon();
/// A pair of scissors over a sheet.
[[nodiscard]] QIcon CutSaveIcon();
