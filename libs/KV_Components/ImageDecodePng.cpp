// Decodes png files by libpng. The library reports errors by longjmp(): a function that can be left this way has no
// local object with a destructor, and the library's own objects are members of PngReader, which releases them.
#include <png.h>

#include <csetjmp>
#include <cstring>

#include "ImageDecode.h"

namespace KvComponents {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Both replace handlers that print to standard error.
[[noreturn]] void Fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void IgnoreWarning(png_structp, png_const_charp) {}

/// Callback of the library: the next bytes of the file.
void ReadBytes(png_structp png, png_bytep out, std::size_t size) {
    auto& rest = *static_cast<Bytes*>(png_get_io_ptr(png));
    if (size > rest.size()) png_error(png, "the file is cut short");
    std::memcpy(out, rest.data(), size);
    rest = rest.subspan(size);
}

/// Owns the reader of the library and the rest of the file that it has not read.
class PngReader {
public:
    explicit PngReader(Bytes file) : m_rest(file) {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &Fail, &IgnoreWarning);
        if (m_png != nullptr) m_info = png_create_info_struct(m_png);
    }
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    /// Reads up to the pixels, and requests them as RGBA of 4 bytes, whatever the file has.
    [[nodiscard]] bool ReadHeader() {
        if (m_info == nullptr || setjmp(png_jmpbuf(m_png)) != 0) return false;
        png_set_read_fn(m_png, &m_rest, &ReadBytes);
        png_set_user_limits(m_png, kMaxImageSide, kMaxImageSide);
        // Chunks with texts and profiles, which can be long, are skipped.
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(m_png, m_info);
        png_set_expand(m_png);
        png_set_scale_16(m_png);
        png_set_gray_to_rgb(m_png);
        png_set_add_alpha(m_png, 0xFF, PNG_FILLER_AFTER);
        png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        return png_get_rowbytes(m_png, m_info) == std::size_t{4} * Width();
    }
    /// Reads up to the end of the file, so that a file that is cut short is detected.
    [[nodiscard]] bool ReadRows(png_bytepp rows) {
        if (setjmp(png_jmpbuf(m_png)) != 0) return false;
        png_read_image(m_png, rows);
        png_read_end(m_png, nullptr);
        return true;
    }

    [[nodiscard]] png_uint_32 Width() const { return png_get_image_width(m_png, m_info); }
    [[nodiscard]] png_uint_32 Height() const { return png_get_image_height(m_png, m_info); }

private:
    Bytes m_rest;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

}  // namespace

std::optional<Picture> DecodePng(Bytes file) {
    PngReader reader(file);
    if (!reader.ReadHeader() || !IsPictureSize(reader.Width(), reader.Height(), file.size())) return std::nullopt;
    const std::size_t stride = std::size_t{4} * reader.Width();
    Picture picture{static_cast<std::int32_t>(reader.Width()), static_cast<std::int32_t>(reader.Height()), {}};
    picture.m_vRgba.resize(stride * reader.Height());
    std::vector<png_bytep> rows(reader.Height());
    for (std::size_t y = 0; y < rows.size(); ++y) rows[y] = &picture.m_vRgba[y * stride];
    if (!reader.ReadRows(rows.data())) return std::nullopt;
    return picture;
}

}  // namespace KvComponents
