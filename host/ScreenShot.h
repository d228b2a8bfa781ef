// The picture of the whole scene at a fixed size, whatever the size of the window.
#pragma once
#include "KV_ScenePane/ScenePane.h"

/// Renders the screenshot of the viewer. The view on screen is unchanged. @return of width 0 when the viewer reports no
/// size
/// @throws std::bad_alloc
[[nodiscard]] KV_ScenePane::Picture TakeScreenShot(KV_ScenePane::_DKV_ScenePane& methods);
