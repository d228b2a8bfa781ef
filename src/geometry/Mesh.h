// The triangle mesh: every object that the viewer shows. Vertices are in the world frame; the transform of an object
// has been applied to them, and m_Trafo records which one. This module links no graphics library: what draws a mesh is
// installed through geometry/MeshGraphics.h. Textured meshes are made by render/MeshTexture.h.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "geometry/CACADObject.h"
#include "geometry/Vertex.h"

namespace ACAD {
class CutMask;
}

/// Invariants: every index of a triangle is valid; a textured mesh has three texture coordinates per triangle. Code
/// that changes vertices, triangles or colours must call MarkBuffersDirty(), or MarkVerticesDirty() when the triangles
/// are as before, and ComputeBoundingBox() when positions change.
class Mesh : public CACADObject {
public:
    /// An OpenGL texture together with the encoded image that it came from; may be shared by several meshes.
    struct Texture {
        Texture(std::uint32_t name, void* context, std::vector<std::uint8_t> imageBytes);
        /// Deletes the texture in the context that is then current, whichever that is.
        ~Texture();
        Texture(const Texture&) = delete;
        Texture& operator=(const Texture&) = delete;

        std::uint32_t m_uName;                    ///< 0 when it was made without a context
        void* m_hContext;                         ///< context that was current when it was made
        std::vector<std::uint8_t> m_vImageBytes;  ///< the image file as it was read; exports write it back
    };

    /// An empty object.
    Mesh(std::wstring name, bool hasColors);
    /// Moves both vectors without a copy; computes the box and whether all colours are grey. Indices must be valid.
    Mesh(std::vector<Vertex>&& vertices, std::vector<Triangle>&& triangles, std::wstring name, bool hasColors);
    /// Releases the buffers: the context in which they were made must be current when there are any.
    ~Mesh() override;
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    /// Mean of the vertex positions, summed in single precision in vertex order; without vertices the centre is
    /// unchanged. Coordinates that are not finite are left out, each for itself; 0 along an axis without others.
    /// Returns 0.
    int ComputeCenter() override;
    /// Rebuilds dirty buffers first, so the rendering context must be current. No-op while no drawing code is
    /// installed. Many meshes are drawn faster within a MeshBatch (render/MeshDraw.h).
    void Draw(std::int32_t mode, bool reduced) override;
    /// From the finite coordinates alone, each for itself; inverted along an axis that has none.
    void ComputeBoundingBox() override;
    /// False when no vertex has a finite coordinate along some axis: nothing of the mesh can be shown or picked then,
    /// and its box is inverted. True for a mesh without vertices.
    [[nodiscard]] bool HasPosition() const;
    /// Rotates and moves the vertices, rotates the normals and computes the box; m_Trafo is unchanged.
    void ApplyTrafo(const CACADQTrafo& trafo) override;
    /// Applies the inverse of @p trafo to the vertices. Does not mark the buffers dirty: ApplyTrafo() always follows.
    void RevertTrafo(const CACADQTrafo& trafo);

    /// Unit normals: the normalised plain sum of the unit face normals. (ComputeMeanNormals() differs on purpose.)
    /// @param threads  at most so many work on a large mesh; the result does not depend on them
    void ComputeVertexNormals(unsigned threads = 1);
    /// Unit normal of one triangle; zero for a degenerate one.
    void GetTriangleNormal(std::size_t index, float* nx, float* ny, float* nz) const;

    /// Nearest crossing of an unbounded line with the triangles, world frame, linear in their number; hits on the far
    /// side of the origin count. Triangles are hit from both sides; those with almost no area are missed.
    /// @param direction  of any length
    /// @return distance to @p origin, or -1 when nothing is hit: both outputs are then unchanged
    /// @throws std::out_of_range "invalid vector subscript" when a triangle refers to a vertex that does not exist
    float IntersectLine(const float origin[3], const float direction[3], std::int32_t* triangleIndex,
                        float hitPoint[3]) const;
    /// Whether the unbounded line meets the bounding box.
    [[nodiscard]] bool TestLineBox(const float origin[3], const float direction[3]) const;

    /// Releases spare capacity of the triangles and the vertices.
    void ShrinkToFit();
    /// A new object without the vertices whose bit is set (bit i of word i/32) and without every triangle that uses
    /// one; vertices are in order of first use. The texture is shared, the buffers are not.
    [[nodiscard]] std::shared_ptr<Mesh> CloneWithoutVertices(std::span<const std::uint32_t> bits) const;

    /// Deletes the OpenGL buffers that exist, in the current context.
    void ReleaseBuffers();
    /// The next draw uploads vertices and indices.
    void MarkBuffersDirty() { m_bBuffersDirty = m_bTrianglesDirty = true; }
    /// The next draw uploads the vertices into the buffer that exists, and the indices only when they are not there.
    void MarkVerticesDirty() { m_bBuffersDirty = true; }
    /// A change marks the buffers dirty: the mix of colours is made at upload.
    void SetBlendColors(bool blend);
    /// Pixels, from the next draw on.
    void SetPointSize(float size) { m_fPointSize = size; }

    [[nodiscard]] std::size_t GetVertexCount() const { return m_vVertices.size(); }
    [[nodiscard]] std::size_t GetTriangleCount() const { return m_vTriangles.size(); }

    std::vector<std::shared_ptr<const ACAD::CutMask>> m_vpCutMasks;  ///< cuts of this object, oldest first
    /// The memory may be that of the index buffer: once drawn, release the buffers before it is replaced or resized.
    std::vector<Triangle> m_vTriangles;
    std::vector<TexCoord> m_vTexCoords;  ///< three per triangle in corner order when textured, else empty
    std::vector<Vertex> m_vVertices;
    std::wstring m_sName;             ///< path that the object came from, or empty
    bool m_bBuffersDirty = true;      ///< the GPU buffers must be rebuilt before the next draw
    bool m_bTrianglesDirty = true;    ///< false when the rebuild is for moved vertices alone
    bool m_bBuffersFailed = false;    ///< graphics memory was short at the last build: drawn as its bounding box
    bool m_bFailureReported = false;  ///< the debugger output has the line about it
    bool m_bHasVertexColors = false;
    /// Names of the OpenGL buffers, 0 when there is none; written by the drawing code alone.
    std::uint32_t m_uVertexBuffer = 0, m_uTriangleBuffer = 0, m_uPointBuffer = 0, m_uReducedBuffer = 0;
    std::size_t m_uVertexBytes = 0;                    ///< size of the vertex buffer
    int m_iReducedStep = 10;                           ///< the reduced drawing shows the first of this many triangles
    float m_fPointSize = 2.0f;                         ///< pixels
    std::shared_ptr<Texture> m_pTexture;               ///< null when there is none; shared with clones
    std::optional<std::array<float, 4>> m_optCutView;  ///< clip plane last written into this object's file
    /// m_Trafo as it was at the import from a measurement file; empty for other objects. Clones keep it.
    std::optional<CACADQTrafo> m_optImportTrafo;
    bool m_bCutWhileMoved = false;     ///< one of the cuts was drawn while m_Trafo was not that of the import
    bool m_bGrayColors = false;        ///< the vertex colours are all grey: the object colour tints them
    bool m_bBlendObjectColor = false;  ///< mix 15 % of the vertex colours with 85 % of the object colour
};
