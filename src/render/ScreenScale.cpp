// The size of text, lines and points on screens with more pixels per inch than usual.
#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "control/ScenePaneCtrl.h"
#include "platform/Fonts.h"

namespace {

// Text remains readable, and the largest font 192 pixels high.
constexpr double kMinScale = 0.25, kMaxScale = 8.0;

/// Compiles the bold lists from @p base on; they draw nothing on a machine without fonts.
void CompileBoldLists(GLuint base, float scale) {
    const GlyphSet bold = RasterizeFont(ScaledFont({.family = "Courier New", .weight = 700, .height = -16}, scale));
    if (!bold.IsEmpty()) CompileGlyphs(base, std::span(bold.glyphs).subspan(' ', kBoldListCount));
}

}  // namespace

void CKV_ScenePaneCtrl::SetScale(double scale) {
    const double used = std::isfinite(scale) && scale > 0 ? std::clamp(scale, kMinScale, kMaxScale) : 1.0;
    if (m_fScale == static_cast<float>(used)) return;
    m_fScale = static_cast<float>(used);
    if (!MakeContextCurrent()) return;  // the next context is made with it
    ApplyScale();
    InvalidateControl(false);
}

// The width is what lines have that set none of their own: axes, boxes, wires, the outline of the plane.
void CKV_ScenePaneCtrl::ApplyScale() {
    m_textDraw.CreateFonts(RasterizeFont, m_fScale);
    CompileBoldLists(m_nFontListBase, m_fScale);
    glLineWidth(m_fScale);
}
