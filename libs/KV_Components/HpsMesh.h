// The mesh object of hps files: positions, triangles and the accesses to them.
#pragma once
#include <cstdint>
#include <span>

#include "HpsPacking.h"
#include "KV_Components/Hps.h"
#include "Object.h"

namespace KvComponents {

/// A mesh is created empty, sized by Create(), filled while it is open, and constant after Finish(). One writable
/// access, or any number of readable ones, can be open at a time. Not for two threads at once.
class HpsMesh final : public Component {
public:
    /// An empty mesh: all operations but Create() fail.
    HpsMesh();
    /// A finished mesh.
    /// @param positions        x, y, z of each vertex
    /// @param indices          three per triangle
    /// @param hasValidIndices  whether each index is a vertex; without that it has no normals and cannot be packed
    HpsMesh(Hps::RawArray<float> positions, Hps::RawArray<std::int32_t> indices, bool hasValidIndices);

    [[nodiscard]] Interface* FindInterface(std::string_view guid) override;
    [[nodiscard]] Interface* MainInterface() override { return &m_mesh; }

    // ---- interface hps_mesh: arguments and results are described in KV_Components/Hps.h
    std::int32_t Create(std::int32_t vertexCount, std::int32_t triangleCount, const char* attributes);
    std::int32_t WritableVertexData(Object** data);
    std::int32_t ReadableVertexData(Object** data);
    std::int32_t TriangleCount(std::int32_t* count);
    std::int32_t VertexCount(std::int32_t* count);
    std::int32_t ReadIndices(std::int32_t* indices, std::size_t size);
    std::int32_t WriteIndices(const std::int32_t* indices, std::size_t size);
    /// Makes the mesh constant. Fails when an index is not a vertex.
    std::int32_t Finish(std::int32_t reserved1, std::int32_t reserved2);

    // ---- interface hps_mesh_source
    /// Makes a copy that is open: it can be written to and finished.
    std::int32_t Clone(Object** clone);

    /// Whether the mesh is finished and each of its indices is a vertex.
    [[nodiscard]] bool CanBePacked() const { return m_state == State::kFinished && m_bHasValidIndices; }
    [[nodiscard]] std::span<const float> Positions() const { return m_positions.Span(); }
    [[nodiscard]] std::span<const std::int32_t> Indices() const { return m_indices.Span(); }
    [[nodiscard]] std::size_t CountOfVertices() const { return m_positions.size() / 3; }

private:
    friend class HpsVertexData;
    enum class State { kEmpty, kOpen, kFinished };

    [[nodiscard]] std::int32_t OpenAccess(bool isWritable, Object** data);
    [[nodiscard]] bool AllIndicesAreVertices() const;

    Interface m_mesh, m_source;
    State m_state = State::kEmpty;
    Hps::RawArray<float> m_positions;
    Hps::RawArray<std::int32_t> m_indices;
    bool m_bHasValidIndices = false;  ///< checked by Finish() or by the reader
    int m_iReaders = 0;               ///< open readable accesses
    bool m_bIsWritten = false;        ///< whether a writable access is open
};

}  // namespace KvComponents
