// A freehand lasso while it is drawn, and the OpenGL objects that it draws with. Both are empty until freehand cuts are
// implemented.
#pragma once
#include <memory>

/// OpenGL objects of one freehand session.
struct CutMaskTextures {};

/// A running freehand lasso.
struct CutSession {
    std::unique_ptr<CutMaskTextures> m_pTextures;
};
