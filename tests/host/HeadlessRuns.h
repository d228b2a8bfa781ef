// The results of a run without a window: printed text and PNG files.
#pragma once
#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "Headless.h"
#include "host/ScanFiles.h"

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

/// Pictures of 200 x 200 pixels of the flat 11 x 11 grid from (0, 0) to (10, 10). Its diagonal, 14.14, fills a side of
/// the picture: at zoom 1 it spans the pixels 29.3 to 170.7 in both directions, 14.14 pixels per unit.
class GridPictures : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        WriteXdt(m_folder / "a.xdt", 11, 11);
        m_options.picturePath = m_folder / "a.png";
        m_options.width = m_options.height = 200;
        m_options.files = {m_folder / "a.xdt"};
    }
    /// @param warnings  what is printed although the picture is written
    [[nodiscard]] Png Taken(const std::string& warnings = "") const {
        const Printed err;
        EXPECT_EQ(RunScreenshot(m_options, err), kExitGood);
        EXPECT_EQ(err.Text(), warnings);
        return ReadPng(m_options.picturePath);
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};
