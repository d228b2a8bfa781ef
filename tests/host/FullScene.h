// A scene with as many objects as its indices can address, but for some places.
#pragma once
#include <cstdint>
#include <memory>

#include "FileImport.h"
#include "KV_ScenePane/ScenePane.h"

/// A viewer without a surface, with so many small triangles.
inline std::unique_ptr<KV_ScenePane::ScenePane> PaneWithObjects(int count) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    auto pane = KV_ScenePane::CreateScenePane(request, nullptr);
    const float vertices[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::int32_t triangle[] = {0, 1, 2};
    for (int i = 0; i < count; ++i) pane->Methods().ImportMeshFromMemory(3, 1, vertices, triangle);
    return pane;
}
