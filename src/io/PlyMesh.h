// What a ply file holds of a triangle mesh. Layout: docs/formats/ply.md; the grammar below it: io/CPLYFile.h.
#pragma once
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "geometry/Vertex.h"

/// A mesh as it was read. Normals are zero: those of the file are left out, since the importer computes its own.
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
    bool m_bHasColors = false;                ///< else every vertex is white
    bool m_bHasTexture = false;               ///< image and texture coordinates were both found
    std::vector<std::uint8_t> m_vImageBytes;  ///< encoded image file
    std::vector<float> m_vTexCoords;          ///< six a triangle: u0, v0, u1, v1, u2, v2
};

/// Text or little-endian. A file without faces gives no triangles, and its colours are not looked at.
/// @throws CPLYFileError when the file cannot be read, is none, holds other faces than triangles, or triangles that
///         refer to vertices which are not there. Counts are checked against the data before memory is taken
[[nodiscard]] PlyMeshData ReadPlyMesh(const std::wstring& path);
