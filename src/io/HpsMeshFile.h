// Mesh files in the hps format, read and written through the objects of the component library: nothing here knows the
// bytes of a file.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "geometry/Vertex.h"

/// The file is no hps file, or a damaged one.
struct HpsReadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What an hps file holds.
struct HpsData {
    std::vector<Vertex> m_vVertices;  ///< colour 0xFFFFFFFF, gridIndex 0
    std::vector<HpsFace> m_vFaces;    ///< indices are valid
    std::uint32_t m_uWidth = 0, m_uHeight = 0;
    std::vector<std::uint32_t> m_vPixels;     ///< RGBA bytes of the texture, the row of v = 0 first; empty without one
    std::vector<std::uint8_t> m_vImageBytes;  ///< the texture file as it is stored
};

/// The text of the reader's error code; empty for a code that is not listed.
[[nodiscard]] const char* GetHpsErrorText(std::int32_t code);

/// @throws HpsReadError when the file cannot be read: missing, damaged, or with indices or texture coordinates that do
///         not fit its vertices
/// @throws std::runtime_error when the library has no such objects (its registry is not started) or when one of them
///         fails without a reason in the file
[[nodiscard]] HpsData ReadHpsFile(const wchar_t* path);

/// What goes into an hps file. Looked at, not kept.
struct HpsContent {
    std::span<const Vertex> vertices;  ///< positions alone are written
    std::span<const Triangle> triangles;
    std::span<const TexCoord> texCoords;                     ///< three a triangle, or empty
    std::optional<std::span<const std::uint8_t>> imageFile;  ///< of the texture, when there is one
    std::string sourceApplication, sourceVersion;            ///< written up to the first zero byte
};

// ---- io/HpsMeshFileWrite.cpp
/// @throws std::runtime_error with the status text of the step that failed; a file that stood at @p path is then as the
///         library left it
void WriteHpsFile(const HpsContent& content, const wchar_t* path);
