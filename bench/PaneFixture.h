// A viewer without OpenGL for the benchmarks of imports.
#pragma once
#include <memory>
#include <stdexcept>

#include "KV_ScenePane/ScenePane.h"

/// @throws std::runtime_error when there is no viewer
inline std::unique_ptr<KV_ScenePane::ScenePane> MakePaneWithoutOpenGl() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    auto pane = KV_ScenePane::CreateScenePane(request, nullptr);
    if (!pane) throw std::runtime_error("no viewer");
    return pane;
}
