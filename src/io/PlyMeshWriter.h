// The ply file of one mesh, as exports write it. Layout: docs/formats/ply.md.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "geometry/Vertex.h"

/// A vertex as it goes into the file.
struct PlyVertexRecord {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    float nx = 0.0f, ny = 0.0f, nz = 0.0f;
    std::uint32_t color = 0xFFFFFFFF;  ///< (r << 16) | (g << 8) | b; the first vertex's decides for all
};

/// What goes into the file. It is filled by the exporter and written in one piece: a stream write a value takes far too
/// long for millions of vertices.
class PlyMeshWriter {
public:
    PlyMeshWriter(std::size_t vertexCount, std::size_t faceCount);
    /// Takes the whole mesh over; the colours lose their alpha.
    /// @param texCoords  three a triangle, or none
    PlyMeshWriter(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                  std::span<const TexCoord> texCoords, std::span<const std::uint8_t> imageBytes);

    /// Replaces the file as a whole or not at all.
    /// @throws std::system_error when it cannot be opened or written; what is no regular file cannot be opened
    void Write(const std::wstring& path) const;

    /// The whole file.
    struct FileBytes {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t size = 0;
    };
    [[nodiscard]] FileBytes Assemble() const;

    std::vector<PlyVertexRecord> m_vVertexRecords;
    int m_iFaceCount = 0;
    std::vector<std::int32_t> m_vIndices;  ///< three a face
    std::vector<TexCoord> m_vTexCoords;    ///< three a face, or empty
    std::vector<std::uint8_t> m_vImageBytes;

private:
    [[nodiscard]] bool HasColors() const;
    [[nodiscard]] std::string Header() const;
    std::byte* PutVertices(std::byte* out) const;
    std::byte* PutFaces(std::byte* out) const;
};
