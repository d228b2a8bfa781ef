// Any bytes as a picture file: refused, or a picture in proportion to the file that the image object stores, flips and
// flips back. A mutated png fails its checksums, so each is tried a second time with repaired ones.
#include <zlib.h>

#include <cstring>
#include <vector>

#include "KV_Components/Image.h"
#include "KV_Components/ObjectRegistry.h"
#include "Require.h"

using namespace KvComponents;

namespace {

using Pixels = std::vector<std::uint8_t>;

Pixels Read(Object* picture) {
    std::int32_t width = 0, height = 0;
    Require(image::kSize(picture, &width, &height) == kSucceeded);
    Pixels pixels(std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    Require(image::kReadPixels(picture, pixels.data(), pixels.size()) ==
            (pixels.empty() ? kInvalidArgument : kSucceeded));
    return pixels;
}

void DecodeAndFlip(const std::uint8_t* data, std::size_t size) {
    Object* const picture = MakeObject(image::kFactory);
    const std::int32_t status = image::kDecodeFile(picture, data, size);
    Require(status == (size == 0 ? kInvalidArgument : kSucceeded) || status == kFailed);
    const Pixels before = Read(picture);
    Require(before.empty() == (status != kSucceeded));
    Require(before.size() / 4 <= std::size_t{4} * 1024 * 1024 + 1100 * size);
    Require(image::kFlip(picture) == kSucceeded);
    const Pixels flipped = Read(picture);
    if (!before.empty()) {
        std::int32_t width = 0, height = 0;
        Require(image::kSize(picture, &width, &height) == kSucceeded);
        const std::size_t stride = std::size_t{4} * static_cast<std::size_t>(width);
        Require(std::memcmp(before.data(), flipped.data() + flipped.size() - stride, stride) == 0);
    }
    Require(image::kFlip(picture) == kSucceeded);
    Require(Read(picture) == before);
    kRelease(picture);
    Require(Component::LiveCount() == 0);
}

std::uint32_t BigEndian(const Pixels& bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
}

/// Sets the checksum of every png chunk.
void RepairChecksums(Pixels& bytes) {
    std::size_t at = 8;
    while (bytes.size() >= at + 12) {
        const std::size_t length = BigEndian(bytes, at);
        if (length > bytes.size() - at - 12) return;
        const auto crc = static_cast<std::uint32_t>(crc32(0, &bytes[at + 4], static_cast<uInt>(length + 4)));
        for (std::size_t i = 0; i < 4; ++i) bytes[at + 8 + length + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
        at += length + 12;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    DecodeAndFlip(data, size);
    if (size > 8 && data[0] == 0x89) {
        Pixels repaired(data, data + size);
        RepairChecksums(repaired);
        DecodeAndFlip(repaired.data(), repaired.size());
    }
    return 0;
}
