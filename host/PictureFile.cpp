// Each format is encoded in memory first: a picture that cannot be encoded replaces no file.
#include "PictureFile.h"

#include <cstdio>  // before jpeglib.h, which needs it

#include <jpeglib.h>
#include <png.h>
#include <webp/encode.h>

#include <cerrno>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "FileTypes.h"
#include "PngFile.h"

namespace {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
struct FreeWebP {
    void operator()(void* memory) const { WebPFree(memory); }
};

/// Red, green, blue of all pixels, row by row from the top.
std::vector<std::uint8_t> RgbBytes(const KV_ScenePane::Picture& picture) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels)
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    return bytes;
}

/// libjpeg's errors must not return.
struct JpegErrors {
    jpeg_error_mgr manager{};
    std::jmp_buf jump{};
    char message[JMSG_LENGTH_MAX] = "";
};

[[noreturn]] void LeaveEncoder(j_common_ptr jpeg) {
    auto* const errors = reinterpret_cast<JpegErrors*>(jpeg->err);  // its first member
    jpeg->err->format_message(jpeg, errors->message);
    std::longjmp(errors->jump, 1);
}

/// Between setjmp() and the end nothing has a destructor.
/// @param bytes  receives memory for std::free(), also after a failure
bool EncodeJpeg(const std::uint8_t* rgb, int width, int height, JpegErrors* errors, unsigned char** bytes,
                unsigned long* size) {
    constexpr int kQuality = 92;
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors->manager);
    errors->manager.error_exit = LeaveEncoder;
    if (setjmp(errors->jump) != 0) {  // NOLINT(cert-err52-cpp): the library has no other way
        jpeg_destroy_compress(&jpeg);
        return false;
    }
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, bytes, size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, kQuality, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    const auto stride = static_cast<std::size_t>(width) * 3;
    while (jpeg.next_scanline < jpeg.image_height) {
        // The library only reads the row.
        auto* row = const_cast<JSAMPROW>(rgb + jpeg.next_scanline * stride);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return true;
}

bool WriteJpeg(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason) {
    const std::vector<std::uint8_t> rgb = RgbBytes(picture);
    JpegErrors errors;
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    const bool isEncoded = EncodeJpeg(rgb.data(), picture.width, picture.height, &errors, &encoded, &size);
    const std::unique_ptr<unsigned char, FreeMemory> owner(encoded);
    if (!isEncoded) *reason = errors.message;
    return isEncoded && WriteFileBytes(path, std::as_bytes(std::span(encoded, size)), reason);
}

bool WriteWebP(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason) {
    if (picture.width > WEBP_MAX_DIMENSION || picture.height > WEBP_MAX_DIMENSION) {
        *reason = "a webp file has at most 16383 pixels a side: write a png file";
        return false;
    }
    const std::vector<std::uint8_t> rgb = RgbBytes(picture);
    std::uint8_t* encoded = nullptr;
    const std::size_t size =
        WebPEncodeLosslessRGB(rgb.data(), picture.width, picture.height, 3 * picture.width, &encoded);
    const std::unique_ptr<std::uint8_t, FreeWebP> owner(encoded);
    if (size == 0) *reason = "the picture cannot be encoded as webp: write a png file";
    return size > 0 && WriteFileBytes(path, std::as_bytes(std::span(encoded, size)), reason);
}

/// Standard output as it is: a file that it was redirected to is not replaced.
bool PrintPng(const KV_ScenePane::Picture& picture, std::string* reason) {
    const std::vector<std::uint8_t> rgb = RgbBytes(picture);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    errno = 0;
    const bool isWritten = png_image_write_to_stdio(&image, stdout, 0, rgb.data(), 0, nullptr) != 0;
    if (isWritten && std::fflush(stdout) == 0) return true;
    *reason = errno == EBADF ? kClosedOutput : errno != 0 ? strerrordesc_np(errno) : image.message;
    return false;
}

}  // namespace

std::optional<PictureFormat> PictureFormatOf(std::string_view path) {
    const std::string extension = path.find('.') == std::string_view::npos ? "" : ExtensionOf(path);
    if (extension == "png") return PictureFormat::Png;
    if (extension == "jpg" || extension == "jpeg") return PictureFormat::Jpeg;
    if (extension == "webp") return PictureFormat::WebP;
    return std::nullopt;
}

bool WritePicture(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason) {
    if (path == kStandardOutput) return PrintPng(picture, reason);
    switch (PictureFormatOf(path).value_or(PictureFormat::Png)) {
        case PictureFormat::Jpeg:
            return WriteJpeg(path, picture, reason);
        case PictureFormat::WebP:
            return WriteWebP(path, picture, reason);
        case PictureFormat::Png:
            break;
    }
    return WritePng(path, picture, reason);
}
