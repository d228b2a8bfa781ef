// Icons of the main tool bar, drawn by code.
#pragma once
#include <QIcon>

#include "KV_ScenePane/Modes.h"

/// A folder.
[[nodiscard]] QIcon OpenIcon();
/// A camera.
[[nodiscard]] QIcon PictureIcon();
/// A body between the corners of a frame.
[[nodiscard]] QIcon FitIcon();
/// The axis that the view is from, with a mark at the side where the upper end of the picture's axis is; a cube for the
/// oblique view.
[[nodiscard]] QIcon ViewIcon(KV_ScenePane::ViewMode mode);
/// A body as the mode draws it.
[[nodiscard]] QIcon DrawModeIcon(KV_ScenePane::DrawMode mode);
/// A body and its shadow.
[[nodiscard]] QIcon ShadowsIcon();
