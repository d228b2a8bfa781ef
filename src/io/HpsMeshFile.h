// Mesh files in the hps format, read and written through the objects of the component library, which alone knows the
// bytes of a file. The objects and their operations: KV_Components/Hps.h.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "geometry/Vertex.h"

/// Why an hps file was refused: it cannot be read, is damaged, or is not an hps file.
struct HpsReadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Why an hps file could not be saved: the status text of the library, and the system's error number where the library
/// has left one in errno, as ours does; else 0.
struct HpsSaveError : std::runtime_error {
    HpsSaveError(const char* status, int error) : std::runtime_error(status), m_iError(error) {}
    int m_iError;
};

/// The content of an hps file.
struct HpsData {
    std::vector<Vertex> m_vVertices;            ///< colour 0xFFFFFFFF, gridIndex 0
    std::size_t m_uNotFinite = 0;               ///< coordinates of vertices that are infinite or NaN
    std::vector<Triangle> m_vTriangles;         ///< of a mesh without a texture; all indices are valid
    std::vector<HpsFace> m_vFaces;              ///< of a mesh with a texture; all indices are valid
    std::uint32_t m_uWidth = 0, m_uHeight = 0;  ///< of the texture, pixels; 0 without one
    std::vector<std::uint32_t> m_vPixels;     ///< RGBA bytes of the texture, the row of v = 0 first; empty without one
    std::vector<std::uint8_t> m_vImageBytes;  ///< the texture file as it is stored
};

/// The text of an error code of the library's reader; empty for an unknown code.
[[nodiscard]] const char* GetHpsErrorText(std::int32_t code);

/// @throws HpsReadError when the file cannot be read: missing, damaged, or with indices or texture coordinates that do
///         not fit its vertices
/// @throws std::runtime_error when the library has no such objects (its registry is not started) or when one of them
///         fails without a reason in the file
[[nodiscard]] HpsData ReadHpsFile(const wchar_t* path);

/// What is written into an hps file. The arrays belong to the caller and are read during the call.
struct HpsContent {
    std::span<const Vertex> vertices;  ///< positions alone are written
    std::span<const Triangle> triangles;
    std::span<const TexCoord> texCoords;                     ///< three per triangle, or empty
    std::optional<std::span<const std::uint8_t>> imageFile;  ///< of the texture, when there is one
    std::string sourceApplication, sourceVersion;            ///< written up to the first zero byte
};

// ---- io/HpsMeshFileWrite.cpp
/// Normals, colours and grid indices of the mesh are not written.
/// @throws HpsSaveError when the library cannot save the file; std::runtime_error with the status text of any other
/// step
///         that failed. Whether an existing file at @p path is then
///         still the old one depends on the library
void WriteHpsFile(const HpsContent& content, const wchar_t* path);
