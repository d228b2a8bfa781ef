// The triangle mesh in a ply file. Layout: docs/formats/ply.md; the grammar of the file: io/CPLYFile.h.
#pragma once
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "geometry/Vertex.h"

/// A mesh as it was read, in the file's units. Normals are zero: those of the file are ignored, since the import
/// computes its own.
struct PlyMeshData {
    [[nodiscard]] std::size_t GetVertexCount() const { return m_pVertices->size(); }
    [[nodiscard]] std::size_t GetTriangleCount() const { return m_pTriangles->size(); }
    [[nodiscard]] const Vertex& GetVertex(std::size_t index) const {
        assert(index < m_pVertices->size());
        return (*m_pVertices)[index];
    }
    [[nodiscard]] const Triangle& GetTriangle(std::size_t index) const {
        assert(index < m_pTriangles->size());
        return (*m_pTriangles)[index];
    }

    std::unique_ptr<std::vector<Vertex>> m_pVertices = std::make_unique<std::vector<Vertex>>();
    std::unique_ptr<std::vector<Triangle>> m_pTriangles = std::make_unique<std::vector<Triangle>>();
    std::uint64_t m_uBytesAfterEnd = 0;       ///< of the file, after the data that its header announces
    std::size_t m_uNotFinite = 0;             ///< coordinates of vertices that are infinite or NaN
    bool m_bHasColors = false;                ///< false: every vertex is white
    bool m_bHasTexture = false;               ///< image and texture coordinates were both found
    std::vector<std::uint8_t> m_vImageBytes;  ///< encoded image file
    std::vector<float> m_vTexCoords;          ///< six per triangle: u0, v0, u1, v1, u2, v2
};

/// Reads text or little-endian data. A file without faces has no triangles, and its colours are not read.
/// @throws CPLYFileError when the file cannot be read, is not a ply file, has other faces than triangles, or triangles
/// that
///         refer to missing vertices. Counts are checked against the data before memory is allocated
/// @param threads  at most so many work on a large text file; the result does not depend on them
[[nodiscard]] PlyMeshData ReadPlyMesh(const std::wstring& path, unsigned threads = 1);
