// Icons of the alignment tools, drawn by code.
#pragma once
#include <QIcon>

#include "AlignProgress.h"

/// A bright sheet that is moved onto a dim one: by an arrow, or by lines between points.
[[nodiscard]] QIcon AlignWayIcon(AlignWay way);
/// An arrow from the red point to the blue one.
[[nodiscard]] QIcon AlignContinueIcon();
/// A point and a minus sign.
[[nodiscard]] QIcon AlignDropIcon();
/// A check mark.
[[nodiscard]] QIcon AlignFinishIcon();
/// A cross.
[[nodiscard]] QIcon AlignEndIcon();
