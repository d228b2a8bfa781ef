// The object that a host holds of a viewer.
#pragma once
#include <memory>

#include "KV_ScenePane/ScenePane.h"

class CKV_ScenePaneCtrl;

/// The handle of a control. When it is destroyed inside one of its own calls, in a handler of the host, the control is
/// closed, fires and draws nothing more, and is destroyed when the outermost of these calls returns; otherwise at once.
/// @param control  not null; its other owners delay its end
[[nodiscard]] std::unique_ptr<KV_ScenePane::ScenePane> MakeHandle(std::shared_ptr<CKV_ScenePaneCtrl> control);

/// The control of a handle that MakeHandle() made.
[[nodiscard]] CKV_ScenePaneCtrl& ControlOf(KV_ScenePane::ScenePane& handle);
