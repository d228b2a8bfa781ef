// A freehand session without OpenGL objects, for tests that only need that there is one.
#pragma once
#include <memory>

#include "cut/CutSession.h"

/// Starts in the middle of a drawing area of this size.
inline std::unique_ptr<CutSession> MakeTestCutSession(std::int32_t width = 640, std::int32_t height = 480) {
    auto textures = std::make_unique<CutMaskTextures>();
    textures->m_nWidth = width;
    textures->m_nHeight = height;
    return std::make_unique<CutSession>(std::move(textures), LassoPixel{width / 2, height / 2},
                                        LassoTint{0xFFFF00, 1.0f}, LassoTint{255, 0.5f}, LassoTint{0, 0.0f}, 0);
}
