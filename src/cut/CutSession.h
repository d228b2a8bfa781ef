// The live freehand lasso and the OpenGL objects that it draws with.
#pragma once
#include <memory>

/// OpenGL objects of one freehand session.
struct CutMaskTextures {};

/// A running freehand lasso.
struct CutSession {
    std::unique_ptr<CutMaskTextures> m_pTextures;
};
