// The frame of an hps file: header, table of sections, checksums. What the sections hold is packed and unpacked
// elsewhere. Byte by byte in docs/formats/hps.md.
#pragma once
#include <cstdint>
#include <string>

#include "HpsPacking.h"

namespace KvComponents::Hps {

/// Why a file cannot be read; the numbers that readers tell their callers.
enum class ReadError : std::int32_t { kNone, kNotFound, kUnreadable, kInvalidFile, kVertices, kFacets, kUv, kTexture };

class FileError : public std::runtime_error {
public:
    FileError(ReadError code, const char* reason) : std::runtime_error(reason), m_code(code) {}
    ReadError m_code;
};

inline constexpr std::uint32_t kMaxOrientation = 3;
/// Rows have to be turned round before v = 0 is the first one: pictures begin at the top.
inline constexpr std::uint32_t kTopFirst = 1;

/// What a file holds; packed, and belonging to somebody else.
struct FileContent {
    std::uint32_t vertexCount = 0, triangleCount = 0;
    ByteSpan facets, positions;
    ByteSpan uv;       ///< empty: none
    ByteSpan texture;  ///< a whole picture file; empty: none
    std::uint32_t orientation = kTopFirst;
    std::string application, version;  ///< of the program that the mesh is from
};

[[nodiscard]] ByteVector BuildFile(const FileContent& content);

/// @param file  must outlive the result, whose sections lie in it. All checksums are checked, and the counts against
///              the file's size
/// @throws FileError
[[nodiscard]] FileContent ParseFile(ByteSpan file);

/// A whole file that begins like an hps file of its length.
/// @throws FileError
[[nodiscard]] RawArray<std::byte> LoadFile(const std::string& path);

}  // namespace KvComponents::Hps
