// The sections of an hps file. Their container is files/SectionFile.h, their content is packed by HpsFacets.h,
// HpsVertices.h and HpsUv.h. Byte by byte in docs/formats/hps.md.
#pragma once
#include <cstdint>
#include <string>

#include "HpsPacking.h"

namespace KvComponents::Hps {

/// Why a file cannot be read: the codes of hps_reader::kLastError.
enum class ReadError : std::int32_t { kNone, kNotFound, kUnreadable, kInvalidFile, kVertices, kFacets, kUv, kTexture };

/// Thrown for a file that cannot be read.
class FileError : public std::runtime_error {
public:
    FileError(ReadError code, const char* reason) : std::runtime_error(reason), m_code(code) {}
    ReadError m_code;
};

inline constexpr std::uint32_t kMaxOrientation = 3;
/// The first row of the picture is its top, v = 1: callers flip the rows so that v = 0 comes first.
inline constexpr std::uint32_t kTopFirst = 1;

/// The sections of a file, still packed. The memory belongs to the caller.
struct FileContent {
    std::uint32_t vertexCount = 0, triangleCount = 0;
    ByteSpan facets, positions;
    ByteSpan uv;       ///< empty when the mesh has no texture coordinates
    ByteSpan texture;  ///< bytes of a picture file; empty when there is no texture
    std::uint32_t orientation = kTopFirst;
    std::string application, version;  ///< of the program that wrote the mesh
};

/// The bytes of a whole file. A mesh that compresses too well is padded, see kMaxExpansion.
[[nodiscard]] ByteVector BuildFile(const FileContent& content);

/// Finds the sections of a file. All checksums are checked, and the counts against the size of the file.
/// @param file  must outlive the result, whose spans point into it
/// @throws FileError
[[nodiscard]] FileContent ParseFile(ByteSpan file);

/// Reads the bytes of an hps file up to the length that its header announces; what follows them is ignored.
/// @throws FileError
[[nodiscard]] RawArray<std::byte> LoadFile(const std::string& path);

}  // namespace KvComponents::Hps
