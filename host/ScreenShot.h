// The picture of the whole scene in the viewer's fixed size.
#pragma once
#include "KV_ScenePane/ScenePane.h"

/// Takes the screenshot; its size does not depend on the window. Empty (width 0) when the viewer names no size.
[[nodiscard]] KV_ScenePane::Picture TakeScreenShot(KV_ScenePane::_DKV_ScenePane& methods);
