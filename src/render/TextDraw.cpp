// The display lists of the three fonts.
#include "render/TextDraw.h"

#include <GL/gl.h>

namespace {
constexpr GLuint kFirstLists[] = {1000, 1256, 1512};
constexpr GLsizei kGlyphCount = 256;
}  // namespace

COpenGLTextDraw::~COpenGLTextDraw() {
    for (const GLuint first : kFirstLists) {
        if (glIsList(first) == GL_TRUE) glDeleteLists(first, kGlyphCount);
    }
}

void COpenGLTextDraw::CreateFonts(PaneWindow& /*window*/) {
    m_vCharWidths = {};
    m_vLineHeights = {};
}
