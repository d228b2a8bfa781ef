// The ply file of one mesh, as exports write it. Layout: docs/formats/ply.md.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/HugePages.h"
#include "geometry/Vertex.h"

/// A vertex as it is written.
struct PlyVertexRecord {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    float nx = 0.0f, ny = 0.0f, nz = 0.0f;
    std::uint32_t color = 0xFFFFFFFF;  ///< (r << 16) | (g << 8) | b; the first vertex's decides for all
};

/// The content of the file. It is written in one piece: one stream write per value is too slow for millions of
/// vertices. Peak memory is that of this content and of the whole file.
class PlyMeshWriter {
public:
    /// Zeroed records, for the caller to fill.
    PlyMeshWriter(std::size_t vertexCount, std::size_t faceCount);
    /// Copies the mesh; the colours lose their alpha.
    /// @param texCoords   three per triangle, or none
    /// @param imageBytes  encoded image file, or none
    PlyMeshWriter(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                  std::span<const TexCoord> texCoords, std::span<const std::uint8_t> imageBytes);

    /// Replaces the file as a whole or not at all.
    /// @throws std::system_error when it cannot be opened or written; only regular files can be replaced
    void Write(const std::wstring& path) const;

    /// A whole file in memory.
    struct FileBytes {
        HugePageArray<std::byte> bytes;
        std::size_t size = 0;
    };
    [[nodiscard]] FileBytes Assemble() const;

    std::vector<PlyVertexRecord> m_vVertexRecords;
    int m_iFaceCount = 0;
    std::vector<std::int32_t> m_vIndices;  ///< three per face
    std::vector<TexCoord> m_vTexCoords;    ///< three per face, or empty
    std::vector<std::uint8_t> m_vImageBytes;

private:
    [[nodiscard]] bool HasColors() const;
    [[nodiscard]] std::string Header() const;
    std::byte* PutVertices(std::byte* out) const;
    std::byte* PutFaces(std::byte* out) const;
};
