// Text as it must be in the framebuffer, composed pixel by pixel from its glyphs, and the text that is there.
#pragma once
#include <GL/glew.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Fonts.h"

/// The requests for the three fonts of the scene's text, by their indices.
inline const FontRequest kFonts[] = {{"", 400, 12}, {"Courier New", 700, -24}, {"Courier New", 900, -100}};

/// The lower left corner of the framebuffer, rows from the top down as text: '#' is a drawn pixel, '.' none.
class TextPicture {
public:
    TextPicture(int width, int height)
        : m_rows(static_cast<std::size_t>(height), std::string(static_cast<std::size_t>(width), '.')) {}

    /// Sets the pixels of a text whose raster position is at (x, y), counted from the bottom; returns where the next
    /// character goes.
    int Write(const GlyphSet& font, std::string_view text, int x, int y) {
        for (const char c : text) {
            const Glyph& glyph = font.glyphs.at(static_cast<unsigned char>(c));
            for (int row = 0; row < glyph.height; ++row)
                for (int column = 0; column < glyph.width; ++column)
                    if (IsSet(glyph, column, row))
                        Set(x - static_cast<int>(glyph.originX) + column, y - static_cast<int>(glyph.originY) + row);
            x += glyph.advance;
        }
        return x;
    }

    static bool IsSet(const Glyph& glyph, int column, int row) {
        const int rowBytes = (glyph.width + 7) / 8;
        const int byte = glyph.bits.at(static_cast<std::size_t>(row * rowBytes + column / 8));
        return (byte >> (7 - column % 8) & 1) != 0;
    }

    /// The framebuffer now; red pixels are drawn ones.
    static TextPicture OfFramebuffer(int width, int height) {
        TextPicture picture(width, height);
        std::vector<std::uint8_t> rgba(static_cast<std::size_t>(4 * width * height));
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (rgba[static_cast<std::size_t>(4 * (y * width + x))] > 127) picture.Set(x, y);
        return picture;
    }

    /// @param y  counted from the bottom; nothing is set outside
    void Set(int x, int y) {
        if (y < 0 || x < 0 || static_cast<std::size_t>(y) >= m_rows.size()) return;
        std::string& row = m_rows[m_rows.size() - 1 - static_cast<std::size_t>(y)];
        if (static_cast<std::size_t>(x) < row.size()) row[static_cast<std::size_t>(x)] = '#';
    }
    [[nodiscard]] std::size_t Count() const {
        std::size_t count = 0;
        for (const std::string& row : m_rows) count += static_cast<std::size_t>(std::ranges::count(row, '#'));
        return count;
    }
    [[nodiscard]] const std::vector<std::string>& Rows() const { return m_rows; }
    bool operator==(const TextPicture&) const = default;
    friend void PrintTo(const TextPicture& picture, std::ostream* out) {
        *out << '\n';
        for (const std::string& row : picture.m_rows)
            if (row.find('#') != std::string::npos) *out << row << '\n';
    }

private:
    std::vector<std::string> m_rows;
};

/// Black, and white text from (x, y) on.
inline void BeginText(int x, int y) {
    glUseProgram(0);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_DEPTH_TEST);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor3f(1, 1, 1);
    glWindowPos2i(x, y);
}
