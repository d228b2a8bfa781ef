// Bitmap text in the scene: three fonts as display lists at fixed numbers.
#pragma once
#include <array>
#include <cstdint>

class PaneWindow;

class COpenGLTextDraw {
public:
    COpenGLTextDraw() = default;
    /// Deletes the glyphs in the context that is then current.
    virtual ~COpenGLTextDraw();
    COpenGLTextDraw(const COpenGLTextDraw&) = delete;
    COpenGLTextDraw& operator=(const COpenGLTextDraw&) = delete;

    /// Makes the glyphs in the current context. No window system here offers fonts yet: as on a machine without fonts
    /// there are no glyphs, and text of no width.
    void CreateFonts(PaneWindow& window);

    std::array<std::array<std::int32_t, 256>, 3> m_vCharWidths{};  ///< pixels, per font
    std::array<std::int32_t, 3> m_vLineHeights{};                  ///< pixels, per font
};
