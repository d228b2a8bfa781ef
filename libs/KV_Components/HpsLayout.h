// The numbers of the hps format, as docs/formats/hps.md tells them.
#pragma once
#include <cstddef>
#include <cstdint>

namespace KvComponents::Hps {

/// The line ends and the end-of-text byte in it show damage by a transfer that took the file for text.
inline constexpr unsigned char kMagic[8] = {'K', 'V', 'H', 'P', 'S', '\r', '\n', 0x1A};
inline constexpr std::uint32_t kVersion = 1;
inline constexpr std::size_t kHeaderSize = 32;  ///< magic, version, sections, file size, vertices, triangles
inline constexpr std::size_t kEntrySize = 24;   ///< id, flags, size, checksum
inline constexpr std::size_t kChecksumSize = 8;
inline constexpr std::uint32_t kMaxSections = 64;
inline constexpr std::uint32_t kNeeded = 1;  ///< flag: who does not know this section must refuse the file

constexpr std::uint32_t SectionId(const char (&name)[5]) {
    std::uint32_t id = 0;
    for (int i = 3; i >= 0; --i) id = (id << 8) | static_cast<unsigned char>(name[i]);
    return id;
}
inline constexpr std::uint32_t kFacetSection = SectionId("TRIS");
inline constexpr std::uint32_t kPositionSection = SectionId("VERT");
inline constexpr std::uint32_t kUvSection = SectionId("UVCO");
inline constexpr std::uint32_t kTextureSection = SectionId("TEXF");
inline constexpr std::uint32_t kSourceSection = SectionId("SRCE");
inline constexpr std::uint32_t kFillSection = SectionId("FILL");

}  // namespace KvComponents::Hps
