// The numbers of the hps format; docs/formats/hps.md describes them byte by byte. The container around the sections is
// files/SectionFile.h.
#pragma once
#include <cstdint>

#include "files/SectionFile.h"

namespace KvComponents::Hps {

using FileStorage::kChecksumSize;
using FileStorage::kEntrySize;
using FileStorage::kHeaderSize;
using FileStorage::SectionId;

inline constexpr FileStorage::SectionFormat kFormat = {
    {'K', 'V', 'H', 'P', 'S', '\r', '\n', 0x1A}, 1, "not an hps file"};

/// The fields of the header that are the format's own.
struct HpsHeader {
    std::uint64_t fileSize;  ///< bytes
    std::uint32_t vertexCount, triangleCount;
};
static_assert(sizeof(HpsHeader) == sizeof(FileStorage::HeaderFields));

/// In the attributes of a table entry: a reader that does not know the section must refuse the file.
inline constexpr std::uint32_t kNeeded = 1;

inline constexpr std::uint32_t kFacetSection = SectionId("TRIS");
inline constexpr std::uint32_t kPositionSection = SectionId("VERT");
inline constexpr std::uint32_t kUvSection = SectionId("UVCO");
inline constexpr std::uint32_t kTextureSection = SectionId("TEXF");
inline constexpr std::uint32_t kSourceSection = SectionId("SRCE");
inline constexpr std::uint32_t kFillSection = SectionId("FILL");

}  // namespace KvComponents::Hps
