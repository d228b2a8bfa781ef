// Makes the window object of a request; the window itself is made by Create().
#pragma once
#include <memory>

#include "KV_ScenePane/ScenePane.h"
#include "platform/PaneWindow.h"

/// An object of the class that serves the request's kind. The OpenGL version and samples of the request are not used
/// here: the client asks for them in OnCreate(). Never null.
[[nodiscard]] std::unique_ptr<PaneWindow> MakePaneWindow(const KV_ScenePane::WindowRequest& request);
