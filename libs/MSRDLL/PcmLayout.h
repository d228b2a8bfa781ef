// The numbers of the pcm format, for its reader and its writer; docs/formats/pcm.md describes them byte by byte. The
// container around the sections is files/SectionFile.h.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "files/SectionFile.h"

namespace MsrStorage::PcmLayout {

inline constexpr FileStorage::SectionFormat kFormat = {
    {'K', 'V', 'P', 'C', 'M', '\r', '\n', 0x1A}, 1, "not a pcm file"};

/// The fields of the header that are the format's own.
struct PcmHeader {
    std::uint32_t width, height;  ///< pixels
    std::uint64_t fileSize;       ///< bytes
};
static_assert(sizeof(PcmHeader) == sizeof(FileStorage::HeaderFields));

inline constexpr std::uint32_t kCoverage = FileStorage::SectionId("COVR");
inline constexpr std::uint32_t kPoints = FileStorage::SectionId("XYZ ");
inline constexpr std::uint32_t kConfidence = FileStorage::SectionId("CONF");
inline constexpr std::uint32_t kClassification = FileStorage::SectionId("CLAS");
inline constexpr std::uint32_t kColors = FileStorage::SectionId("COLR");
inline constexpr std::uint32_t kTrafo = FileStorage::SectionId("TRAF");
inline constexpr std::uint32_t kKnownSections[] = {kCoverage, kPoints, kConfidence, kClassification, kColors, kTrafo};

inline bool IsKnown(std::uint32_t id) {
    return std::find(std::begin(kKnownSections), std::end(kKnownSections), id) != std::end(kKnownSections);
}

/// How the values of a section are stored.
enum Encoding : std::uint16_t {
    kDense = 0,     ///< one value per pixel
    kConstant = 1,  ///< one value for all pixels
    kSparse = 2,    ///< the value of the pixels that are not covered, then the values of the covered ones
};

// The attributes of a table entry are the encoding (low 16 bits) and the flags (high 16 bits).
inline constexpr std::uint16_t kNeeded = 1;  ///< flag: a reader that does not know the section must refuse the file
inline constexpr std::uint32_t kNeededBit = std::uint32_t{kNeeded} << 16;

[[nodiscard]] constexpr std::uint32_t Attributes(std::uint16_t encoding, std::uint16_t flags) {
    return encoding | (std::uint32_t{flags} << 16);
}
[[nodiscard]] constexpr std::uint16_t EncodingOf(const FileStorage::SectionEntry& entry) {
    return static_cast<std::uint16_t>(entry.attributes);
}
[[nodiscard]] constexpr std::uint16_t FlagsOf(const FileStorage::SectionEntry& entry) {
    return static_cast<std::uint16_t>(entry.attributes >> 16);
}

/// Size of a block that is read or written at once, in bytes: it stays in the second-level cache between its checksum
/// and its copy, and is a multiple of the size of every value.
inline constexpr std::size_t kBlockSize = 192 * 1024;

/// Bytes of memory for a grid.
inline std::uint64_t DecodedSize(std::uint64_t pixels, bool hasColors) {
    return pixels *
           (3 * sizeof(float) + sizeof(float) + sizeof(std::uint8_t) + (hasColors ? sizeof(std::uint32_t) : 0));
}

}  // namespace MsrStorage::PcmLayout
