// Meshes as plain arrays: what a host passes to ImportMeshedMeasurement(), and what imports build before there is an
// object.
#pragma once
#include <cstdint>
#include <vector>

namespace KV_ScenePane {

/// One vertex: eight 32-bit words in this order, as they are uploaded and written to files.
struct Vertex {
    /// Position, world frame.
    float x = 0.0f, y = 0.0f, z = 0.0f;
    /// Unit normal, world frame.
    float nx = 0.0f, ny = 0.0f, nz = 0.0f;
    /// (a << 24) | (r << 16) | (g << 8) | b.
    std::uint32_t color = 0;
    /// (row << 16) | column in the measurement grid; 0 when not from a grid.
    std::uint32_t gridIndex = 0;
};
static_assert(sizeof(Vertex) == 32);

/// Three indices into the vertices of the same mesh, counterclockwise seen from outside.
struct Triangle {
    std::int32_t v[3] = {0, 0, 0};
};
static_assert(sizeof(Triangle) == 12);

/// A mesh before it is an object. A plain record that is shared across the library boundary: its fields and their order
/// are fixed.
struct MeshBuffers {
    /// @param hasColors  whether the colour words of the vertices are used
    explicit MeshBuffers(bool hasColors) : m_bHasColors(hasColors) {}

    [[nodiscard]] const std::vector<Vertex>& GetVertices() const { return m_vVertices; }
    [[nodiscard]] const std::vector<Triangle>& GetTriangles() const { return m_vTriangles; }
    [[nodiscard]] bool HasColors() const { return m_bHasColors; }

    std::vector<Triangle> m_vTriangles;
    std::vector<Vertex> m_vVertices;
    bool m_bHasColors;  ///< the colour words of the vertices are used
};

}  // namespace KV_ScenePane
