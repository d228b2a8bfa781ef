// Jpeg files of one or two colours, in each form that the encoder can write.
#pragma once
#include <cstdint>
#include <cstdio>  // jpeglib.h needs it and does not include it
#include <cstdlib>
#include <vector>
// The order matters; this comment keeps the formatter from sorting the includes.
#include <jpeglib.h>

struct JpegOptions {
    J_COLOR_SPACE kind = JCS_RGB;
    std::vector<std::uint8_t> pixel;
    std::vector<std::uint8_t> pixelOfLowerHalf = {};  ///< empty: the same as the upper half
    J_COLOR_SPACE stored = JCS_UNKNOWN;               ///< JCS_UNKNOWN: the default of the encoder
    bool progressive = false;
    bool arithmetic = false;
    int restartRows = 0;
    bool adobeMarker = true;                 ///< for CMYK
    std::vector<jpeg_scan_info> scans = {};  ///< of a progressive file; empty: the default of the encoder
};

/// 40 x 24 pixels. A picture of one colour is decoded to that colour except for rounding.
inline std::vector<std::uint8_t> MakeJpeg(const JpegOptions& options) {
    constexpr JDIMENSION kWidth = 40, kHeight = 24;
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &out, &size);
    jpeg.image_width = kWidth;
    jpeg.image_height = kHeight;
    jpeg.input_components = static_cast<int>(options.pixel.size());
    jpeg.in_color_space = options.kind;
    jpeg_set_defaults(&jpeg);
    if (options.stored != JCS_UNKNOWN) jpeg_set_colorspace(&jpeg, options.stored);
    jpeg_set_quality(&jpeg, 100, TRUE);
    if (options.progressive) jpeg_simple_progression(&jpeg);
    jpeg.arith_code = options.arithmetic ? TRUE : FALSE;
    jpeg.restart_in_rows = options.restartRows;
    if (!options.adobeMarker) jpeg.write_Adobe_marker = FALSE;
    if (!options.scans.empty()) {
        jpeg.scan_info = options.scans.data();
        jpeg.num_scans = static_cast<int>(options.scans.size());
    }
    jpeg_start_compress(&jpeg, TRUE);
    for (JDIMENSION y = 0; y < kHeight; ++y) {
        const bool lower = y >= kHeight / 2 && !options.pixelOfLowerHalf.empty();
        const std::vector<std::uint8_t>& pixel = lower ? options.pixelOfLowerHalf : options.pixel;
        std::vector<std::uint8_t> row;
        for (JDIMENSION x = 0; x < kWidth; ++x) row.insert(row.end(), pixel.begin(), pixel.end());
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    std::vector<std::uint8_t> file(out, out + size);
    jpeg_destroy_compress(&jpeg);
    std::free(out);
    return file;
}
