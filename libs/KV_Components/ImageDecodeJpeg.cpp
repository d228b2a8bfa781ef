// Decodes jpeg files by libjpeg-turbo. The library reports errors by longjmp(): a function that can be left this way
// has no local object with a destructor, and the library's own objects are members of JpegReader, which releases them.
#include <cstdio>  // jpeglib.h needs it and does not include it
// The order of the next two matters; the comments keep the formatter from sorting them.
#include <jpeglib.h>
// jerror.h needs jpeglib.h.
#include <jerror.h>

#include <csetjmp>

#include "ImageDecode.h"

namespace KvComponents {

namespace {

// A progressive file can have any number of empty scans, each of which costs a pass over the whole picture. Encoders
// write about ten.
constexpr int kMaxScans = 100;

/// Warnings about details that many intact files have. All other warnings mean that picture data are missing or wrong;
/// the library would replace them by grey.
bool IsHarmless(int warning) {
    return warning == JWRN_EXTRANEOUS_DATA || warning == JWRN_JFIF_MAJOR || warning == JWRN_ADOBE_XFORM;
}

/// Owns the decompressor of the library.
class JpegReader {
public:
    JpegReader() {
        m_jpeg.err = jpeg_std_error(&m_errors);
        m_jpeg.client_data = this;
        m_errors.error_exit = &Fail;
        m_errors.emit_message = &HandleMessage;
        m_errors.output_message = [](j_common_ptr) {};
        m_progress.progress_monitor = &CountScans;
    }
    ~JpegReader() { jpeg_destroy_decompress(&m_jpeg); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// Reads up to the first scan.
    [[nodiscard]] bool ReadHeader(std::span<const std::uint8_t> file) {
        if (setjmp(m_failed) != 0) return false;
        jpeg_create_decompress(&m_jpeg);
        m_jpeg.progress = &m_progress;
        jpeg_mem_src(&m_jpeg, file.data(), file.size());
        jpeg_read_header(&m_jpeg, TRUE);
        m_jpeg.out_color_space = IsCmyk() ? JCS_CMYK : JCS_EXT_RGBA;
        return true;
    }
    /// Reads 4 bytes per pixel: CMYK as in the file, otherwise RGBA. Reads up to the end of the file, so that a file
    /// that is cut short is detected.
    [[nodiscard]] bool ReadRows(std::uint8_t* pixels) {
        if (setjmp(m_failed) != 0) return false;
        jpeg_start_decompress(&m_jpeg);
        if (m_jpeg.output_components != 4 || m_jpeg.output_width != Width()) return false;
        while (m_jpeg.output_scanline < m_jpeg.output_height) {
            JSAMPROW row = pixels + std::size_t{4} * Width() * m_jpeg.output_scanline;
            jpeg_read_scanlines(&m_jpeg, &row, 1);
        }
        jpeg_finish_decompress(&m_jpeg);
        return true;
    }

    [[nodiscard]] JDIMENSION Width() const { return m_jpeg.image_width; }
    [[nodiscard]] JDIMENSION Height() const { return m_jpeg.image_height; }
    [[nodiscard]] bool IsCmyk() const { return m_jpeg.num_components == 4; }
    /// Whether CMYK values are inverted (255 is no ink), as programs that write this marker do.
    [[nodiscard]] bool HasAdobeMarker() const { return m_jpeg.saw_Adobe_marker != 0; }

private:
    // Callbacks of the library.
    [[noreturn]] static void Fail(j_common_ptr jpeg) {
        std::longjmp(static_cast<JpegReader*>(jpeg->client_data)->m_failed, 1);
    }
    static void HandleMessage(j_common_ptr jpeg, int level) {
        const bool isWarning = level < 0;
        if (isWarning && !IsHarmless(jpeg->err->msg_code)) Fail(jpeg);
    }
    static void CountScans(j_common_ptr jpeg) {
        if (static_cast<JpegReader*>(jpeg->client_data)->m_jpeg.input_scan_number > kMaxScans) Fail(jpeg);
    }

    jpeg_decompress_struct m_jpeg{};
    jpeg_error_mgr m_errors{};
    jpeg_progress_mgr m_progress{};
    std::jmp_buf m_failed{};
};

/// @param inverted  whether 255 is no ink
void ConvertCmykToRgba(std::span<std::uint8_t> pixels, bool inverted) {
    const unsigned flip = inverted ? 0 : 255;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned light = pixels[i + 3] ^ flip;
        for (std::size_t c = i; c < i + 3; ++c)
            pixels[c] = static_cast<std::uint8_t>(((pixels[c] ^ flip) * light + 127) / 255);
        pixels[i + 3] = 0xFF;
    }
}

}  // namespace

std::optional<Picture> DecodeJpeg(std::span<const std::uint8_t> file) {
    JpegReader reader;
    if (!reader.ReadHeader(file) || !IsPictureSize(reader.Width(), reader.Height(), file.size())) return std::nullopt;
    Picture picture{static_cast<std::int32_t>(reader.Width()), static_cast<std::int32_t>(reader.Height()), {}};
    picture.m_vRgba.resize(std::size_t{4} * reader.Width() * reader.Height());
    if (!reader.ReadRows(picture.m_vRgba.data())) return std::nullopt;
    if (reader.IsCmyk()) ConvertCmykToRgba(picture.m_vRgba, reader.HasAdobeMarker());
    return picture;
}

}  // namespace KvComponents
