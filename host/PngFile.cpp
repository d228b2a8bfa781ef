// PNG by libpng's simplified interface, which never jumps out of our frames.
#include "PngFile.h"

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace {

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

std::vector<png_byte> RgbBytes(const KV_ScenePane::Picture& picture) {
    std::vector<png_byte> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<png_byte>(pixel >> shift));
    }
    return bytes;
}

/// Everything but the place: encodes, writes and flushes to disk. Empty, or the reason of a failure.
std::string WriteTo(FILE* file, const KV_ScenePane::Picture& picture) {
    const std::vector<png_byte> bytes = RgbBytes(picture);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    errno = 0;
    if (png_image_write_to_stdio(&image, file, 0, bytes.data(), 0, nullptr) == 0)
        return errno != 0 ? strerrordesc_np(errno) : image.message;
    if (std::fflush(file) != 0) return strerrordesc_np(errno);
    // A pipe or device has nothing to flush.
    if (fsync(fileno(file)) != 0 && errno != EINVAL && errno != EROFS) return strerrordesc_np(errno);
    return {};
}

std::string WriteToDevice(const std::string& path, const KV_ScenePane::Picture& picture) {
    const File file(std::fopen(path.c_str(), "wb"));
    return file ? WriteTo(file.get(), picture) : strerrordesc_np(errno);
}

std::string WriteBesideAndRename(const std::string& path, const KV_ScenePane::Picture& picture) {
    std::string beside = path + ".XXXXXX";
    const int descriptor = mkostemp(beside.data(), O_CLOEXEC);
    if (descriptor < 0) return strerrordesc_np(errno);
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);  // as any new file, not private as a temporary one
    std::string reason;
    {
        const File file(fdopen(descriptor, "wb"));
        reason = WriteTo(file.get(), picture);
    }
    if (reason.empty() && std::rename(beside.c_str(), path.c_str()) != 0) reason = strerrordesc_np(errno);
    if (!reason.empty()) unlink(beside.c_str());
    return reason;
}

}  // namespace

bool WritePng(const std::string& path, const KV_ScenePane::Picture& picture, std::string* reason) {
    struct stat status {};
    const bool device = stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
    *reason = device ? WriteToDevice(path, picture) : WriteBesideAndRename(path, picture);
    return reason->empty();
}
