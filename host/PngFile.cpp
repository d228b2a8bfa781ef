// Encodes with libpng's simplified interface, which never jumps out of our frames, then writes the bytes at once.
#include "PngFile.h"

#include <png.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include "CaughtError.h"
#include "MessageTable.h"
#include "files/AtomicFile.h"

namespace {

/// The pixels as libpng expects them: red, green, blue and perhaps alpha, row after row from the top.
std::vector<png_byte> ChannelBytes(const KV_ScenePane::Picture& picture, PngAlpha alpha) {
    const bool hasAlpha = alpha == PngAlpha::Kept;
    std::vector<png_byte> bytes;
    bytes.reserve(picture.pixels.size() * (hasAlpha ? 4 : 3));
    for (const std::uint32_t pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<png_byte>(pixel >> shift));
        if (hasAlpha) bytes.push_back(static_cast<png_byte>(pixel >> 24));
    }
    return bytes;
}

/// The content of the file. @throws std::runtime_error with libpng's message
std::vector<png_byte> Encode(const KV_ScenePane::Picture& picture, PngAlpha alpha) {
    const std::vector<png_byte> channels = ChannelBytes(picture, alpha);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = alpha == PngAlpha::Kept ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    // An upper limit, so that the picture is compressed only once: asking for the exact size would compress it too.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<png_byte> bytes(size);
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, channels.data(), 0, nullptr) == 0)
        throw std::runtime_error(image.message);
    bytes.resize(size);
    return bytes;
}

/// A pipe or a device cannot be replaced by a file. @throws std::runtime_error
void WriteDirectly(const std::string& path, std::span<const std::byte> bytes) {
    const auto check = [](bool good) {
        if (!good) throw std::runtime_error(std::string("cannot be saved: ") + strerrordesc_np(errno));
    };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), &std::fclose);
    check(file != nullptr);
    check(std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size());
    check(std::fflush(file.get()) == 0);  // a full device says so here, not before
}

void ReplaceFile(const std::string& path, std::span<const std::byte> bytes) {
    FileStorage::AtomicFile file(path);
    file.WriteAt(0, bytes.data(), bytes.size());
    file.Commit();
}

}  // namespace

bool WritePng(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason, PngAlpha alpha) {
    try {
        const std::vector<png_byte> bytes = Encode(picture, alpha);
        return WriteFileBytes(path, std::as_bytes(std::span(bytes)), reason);
    } catch (...) {  // of libpng, or exhausted memory
        *reason = TextOfCaughtError();
        return false;
    }
}

bool WriteFileBytes(const std::string& path, std::span<const std::byte> bytes, std::string* reason) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    try {
        if (exists && !S_ISREG(status.st_mode))
            WriteDirectly(path, bytes);
        else
            ReplaceFile(path, bytes);
        return true;
    } catch (const std::runtime_error& error) {
        *reason = PlainWords(error.what());
        return false;
    }
}
