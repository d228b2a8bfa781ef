// The header of the format is in docs/formats/hps.md.
#include "HpsCause.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "MessageTable.h"
#include "files/RegularFile.h"

namespace {

constexpr std::array<unsigned char, 8> kMagic = {0x4B, 0x56, 0x48, 0x50, 0x53, 0x0D, 0x0A, 0x1A};
constexpr std::size_t kLengthAt = 16;

}  // namespace

std::string WrongHpsLength(const std::string& file) {
    try {
        const FileStorage::RegularFile input(file);
        std::array<unsigned char, kLengthAt + sizeof(std::uint64_t)> start{};
        if (input.ReadAt(0, start.data(), start.size()) < kMagic.size()) return {};
        if (std::memcmp(start.data(), kMagic.data(), kMagic.size()) != 0) return {};
        if (input.Size() < start.size()) return PlainWords("file is cut short");
        std::uint64_t length = 0;
        std::memcpy(&length, &start[kLengthAt], sizeof length);
        if (input.Size() < length) return PlainWords("file is cut short");
        if (input.Size() == length) return {};
        return PlainWords(std::to_string(input.Size() - length) + " bytes follow the end of its data");
    } catch (const FileStorage::FileAccessError&) {
        return {};
    }
}
