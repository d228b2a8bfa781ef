// The results of a run without a window: printed text and PNG files.
#pragma once
#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// A stream that records what is printed to it.
class Printed {
public:
    Printed() : m_file(open_memstream(&m_pText, &m_nSize)) {}
    ~Printed() {
        std::fclose(m_file);
        std::free(m_pText);
    }
    Printed(const Printed&) = delete;
    Printed& operator=(const Printed&) = delete;
    operator std::FILE*() const { return m_file; }
    [[nodiscard]] std::string Text() const {
        std::fflush(m_file);
        return {m_pText, m_nSize};
    }

private:
    char* m_pText = nullptr;
    std::size_t m_nSize = 0;
    std::FILE* m_file;
};

struct Png {
    int width = 0, height = 0;
    std::vector<png_byte> bytes;
    /// RRGGBB, y from the top.
    [[nodiscard]] unsigned At(int x, int y) const {
        const png_byte* const rgb = &bytes.at(static_cast<std::size_t>(3 * (y * width + x)));
        return static_cast<unsigned>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
    }
};

inline Png ReadPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Png png;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        ADD_FAILURE() << path << ": " << image.message;
        return png;
    }
    image.format = PNG_FORMAT_RGB;
    png.width = static_cast<int>(image.width);
    png.height = static_cast<int>(image.height);
    png.bytes.resize(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, png.bytes.data(), 0, nullptr);
    return png;
}
