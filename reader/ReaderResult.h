// What scenepane-read found in a file, and how it passes that on: in a memory file that the host created. The host must
// not trust a byte of it: the reader may have run wild on a bad file.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "KV_ScenePane/MeshBuffers.h"

/// The content of one file, in the file's units and axes, with all transforms of its scene applied.
struct ReaderResult {
    enum class Kind : std::uint32_t {
        Refused = 0,       ///< the file gave nothing; the text says why
        Mesh = 1,          ///< vertices with normals, and triangles
        TexturedMesh = 2,  ///< a whole ply file with the image embedded, as the viewer reads it
        Points = 3         ///< vertices without normals, all of them finite, and no triangles
    };
    Kind kind = Kind::Refused;
    /// One line: why the file was refused, or what of it was left out; empty for neither.
    std::string text;
    /// Of a Mesh and of Points. Without colours the colour words are 0, as those of stl files.
    KV_ScenePane::MeshBuffers mesh{false};
    /// Of a TexturedMesh.
    std::vector<std::uint8_t> plyFile;
};

/// The bytes are no result: the reader did not finish it, or it is damaged.
class ReaderResultError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Longer texts are cut, bytes.
inline constexpr std::size_t kMaxReaderText = 4096;

/// Writes a result into an empty file. The first bytes are written last: a file whose writer died is no result.
/// @throws std::system_error
void WriteReaderResult(int fd, const ReaderResult& result);

/// Reads a result that an untrusted process has written; nobody may change the file meanwhile. Sizes are checked before
/// memory is allocated. In a mesh all indices are valid, normals are finite and grid indices are 0.
/// @throws ReaderResultError; std::bad_alloc
[[nodiscard]] ReaderResult ReadReaderResult(int fd);
