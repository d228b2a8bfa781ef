// The mesh object of hps files: positions, triangles, and the accesses to them.
#pragma once
#include <cstdint>
#include <span>

#include "HpsPacking.h"
#include "KV_Components/Hps.h"
#include "Object.h"

namespace KvComponents {

class HpsMesh final : public Component {
public:
    /// Without content, until Create().
    HpsMesh();
    /// A finished mesh.
    /// @param hasValidIndices  only then it has normals and can be packed
    HpsMesh(Hps::RawArray<float> positions, Hps::RawArray<std::int32_t> indices, bool hasValidIndices);

    [[nodiscard]] Interface* FindInterface(std::string_view guid) override;
    [[nodiscard]] Interface* MainInterface() override { return &m_mesh; }

    // ---- interface of the mesh
    std::int32_t Create(std::int32_t vertexCount, std::int32_t triangleCount, const char* attributes);
    std::int32_t WritableVertexData(Object** data);
    std::int32_t ReadableVertexData(Object** data);
    std::int32_t TriangleCount(std::int32_t* count);
    std::int32_t VertexCount(std::int32_t* count);
    std::int32_t ReadIndices(std::int32_t* indices, std::size_t size);
    std::int32_t WriteIndices(const std::int32_t* indices, std::size_t size);
    /// From here on nothing changes. Refuses triangles that name no vertex.
    std::int32_t Finish(std::int32_t reserved1, std::int32_t reserved2);

    // ---- interface of the source of clones
    /// A copy, which may be written to and finished.
    std::int32_t Clone(Object** clone);

    /// Finished, and its triangles are of its vertices.
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
    bool m_bHasValidIndices = false;  ///< known of a finished mesh
    int m_iReaders = 0;               ///< readable accesses that have not ended
    bool m_bIsWritten = false;        ///< a writable access has not ended
};

}  // namespace KvComponents
