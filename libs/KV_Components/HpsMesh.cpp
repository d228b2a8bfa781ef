// The mesh object and the accesses to its vertices. Normals are computed by HpsNormals.h when they are read.
#include "HpsMesh.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "ComponentReference.h"
#include "HpsNormals.h"
#include "ObjectRegistry.h"
#include "files/Cores.h"

namespace KvComponents {

/// One access to the vertices of a mesh. It holds a reference to the mesh until EndAccess().
class HpsVertexData final : public Component {
public:
    HpsVertexData(HpsMesh& mesh, bool isWritable);
    ~HpsVertexData() override { EndAccess(); }

    [[nodiscard]] Interface* FindInterface(std::string_view) override { return nullptr; }
    [[nodiscard]] Interface* MainInterface() override { return &m_interface; }

    void EndAccess();
    std::int32_t ReadAttribute(char attribute, std::int32_t reserved, std::int32_t vertexCount, float* values,
                               std::size_t size);
    std::int32_t WriteAttribute(char attribute, std::int32_t reserved, std::int32_t vertexCount, const float* values,
                                std::size_t size);

private:
    /// Whether the arguments describe a buffer for one attribute of all vertices.
    [[nodiscard]] bool IsWhole(std::int32_t reserved, std::int32_t vertexCount, const float* values,
                               std::size_t size) const;

    Interface m_interface;
    ComponentReference<HpsMesh> m_mesh;  ///< none after EndAccess()
    bool m_bIsWritable;
};

namespace {

// Tables of operations, built once per class at the first use.
const Object::Entry* MeshTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsMesh::Create>(hps_mesh::kCreate)
                                            .Set<&HpsMesh::WritableVertexData>(hps_mesh::kWritableVertexData)
                                            .Set<&HpsMesh::ReadableVertexData>(hps_mesh::kReadableVertexData)
                                            .Set<&HpsMesh::TriangleCount>(hps_mesh::kTriangleCount)
                                            .Set<&HpsMesh::VertexCount>(hps_mesh::kVertexCount)
                                            .Set<&HpsMesh::ReadIndices>(hps_mesh::kReadIndices)
                                            .Set<&HpsMesh::WriteIndices>(hps_mesh::kWriteIndices)
                                            .Set<&HpsMesh::Finish>(hps_mesh::kFinish);
    return table.Entries();
}

const Object::Entry* SourceTable() {
    static const OperationTable table = OperationTable().Set<&HpsMesh::Clone>(hps_mesh_source::kClone);
    return table.Entries();
}

const Object::Entry* VertexDataTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsVertexData::EndAccess>(hps_vertex_data::kEndAccess)
                                            .Set<&HpsVertexData::ReadAttribute>(hps_vertex_data::kReadAttribute)
                                            .Set<&HpsVertexData::WriteAttribute>(hps_vertex_data::kWriteAttribute);
    return table.Entries();
}

/// Copies elements. @p to may be null when there are none.
template <class T>
void Copy(std::span<const T> from, T* to) {
    if (to != nullptr && !from.empty()) std::memcpy(to, from.data(), from.size_bytes());
}

template <class T>
Hps::RawArray<T> CopyOf(std::span<const T> from) {
    Hps::RawArray<T> copy(from.size());
    Copy(from, copy.data());
    return copy;
}

template <class T>
Hps::RawArray<T> Zeros(std::size_t size) {
    Hps::RawArray<T> zeros(size);
    std::fill_n(zeros.data(), size, T{});
    return zeros;
}

}  // namespace

HpsMesh::HpsMesh() : m_mesh(MeshTable(), this), m_source(SourceTable(), this) {}

HpsMesh::HpsMesh(Hps::RawArray<float> positions, Hps::RawArray<std::int32_t> indices, bool hasValidIndices)
    : m_mesh(MeshTable(), this),
      m_source(SourceTable(), this),
      m_state(State::kFinished),
      m_positions(std::move(positions)),
      m_indices(std::move(indices)),
      m_bHasValidIndices(hasValidIndices) {}

Interface* HpsMesh::FindInterface(std::string_view guid) {
    if (guid == hps_mesh::kInterface) return &m_mesh;
    if (guid == hps_mesh_source::kInterface) return &m_source;
    return nullptr;
}

std::int32_t HpsMesh::Create(std::int32_t vertexCount, std::int32_t triangleCount, const char* attributes) {
    if (vertexCount < 0 || triangleCount < 0 || attributes == nullptr || std::string_view(attributes) != "P")
        return kInvalidArgument;
    if (m_state != State::kEmpty) return kFailed;
    m_positions = Zeros<float>(3 * static_cast<std::size_t>(vertexCount));
    m_indices = Zeros<std::int32_t>(3 * static_cast<std::size_t>(triangleCount));
    m_state = State::kOpen;
    return kSucceeded;
}

std::int32_t HpsMesh::OpenAccess(bool isWritable, Object** data) {
    if (data == nullptr) return kInvalidArgument;
    *data = nullptr;
    if (m_state == State::kEmpty || m_bIsWritten) return kFailed;
    // One writer or several readers; a finished mesh has readers only.
    if (isWritable && (m_state == State::kFinished || m_iReaders > 0)) return kFailed;
    *data = (new HpsVertexData(*this, isWritable))->MainInterface();
    return kSucceeded;
}

std::int32_t HpsMesh::WritableVertexData(Object** data) { return OpenAccess(true, data); }

std::int32_t HpsMesh::ReadableVertexData(Object** data) { return OpenAccess(false, data); }

std::int32_t HpsMesh::TriangleCount(std::int32_t* count) {
    if (count == nullptr) return kInvalidArgument;
    if (m_state == State::kEmpty) return kFailed;
    *count = static_cast<std::int32_t>(m_indices.size() / 3);
    return kSucceeded;
}

std::int32_t HpsMesh::VertexCount(std::int32_t* count) {
    if (count == nullptr) return kInvalidArgument;
    if (m_state == State::kEmpty) return kFailed;
    *count = static_cast<std::int32_t>(CountOfVertices());
    return kSucceeded;
}

std::int32_t HpsMesh::ReadIndices(std::int32_t* indices, std::size_t size) {
    if (m_state == State::kEmpty) return kFailed;
    if (size != Indices().size_bytes() || (indices == nullptr && size > 0)) return kInvalidArgument;
    Copy(Indices(), indices);
    return kSucceeded;
}

std::int32_t HpsMesh::WriteIndices(const std::int32_t* indices, std::size_t size) {
    if (m_state != State::kOpen) return kFailed;
    if (size != Indices().size_bytes() || (indices == nullptr && size > 0)) return kInvalidArgument;
    Copy(std::span(indices, m_indices.size()), m_indices.data());
    return kSucceeded;
}

bool HpsMesh::AllIndicesAreVertices() const {
    // Unsigned, so that one comparison refuses negative indices too.
    const auto count = static_cast<std::uint32_t>(CountOfVertices());
    return std::all_of(Indices().begin(), Indices().end(),
                       [count](std::int32_t index) { return static_cast<std::uint32_t>(index) < count; });
}

std::int32_t HpsMesh::Finish(std::int32_t reserved1, std::int32_t reserved2) {
    if (reserved1 != 0 || reserved2 != 0) return kInvalidArgument;
    if (m_state != State::kOpen || m_bIsWritten || !AllIndicesAreVertices()) return kFailed;
    m_bHasValidIndices = true;
    m_state = State::kFinished;
    return kSucceeded;
}

std::int32_t HpsMesh::Clone(Object** clone) {
    if (clone == nullptr) return kInvalidArgument;
    *clone = nullptr;
    if (m_state == State::kEmpty) return kFailed;
    auto copy = ComponentReference<HpsMesh>::Adopt(new HpsMesh);
    copy->m_positions = CopyOf(Positions());
    copy->m_indices = CopyOf(Indices());
    copy->m_state = State::kOpen;
    *clone = copy.Detach()->MainInterface();
    return kSucceeded;
}

HpsVertexData::HpsVertexData(HpsMesh& mesh, bool isWritable)
    : m_interface(VertexDataTable(), this), m_mesh(mesh), m_bIsWritable(isWritable) {
    if (isWritable) {
        mesh.m_bIsWritten = true;
    } else {
        ++mesh.m_iReaders;
    }
}

void HpsVertexData::EndAccess() {
    if (!m_mesh) return;
    if (m_bIsWritable) {
        m_mesh->m_bIsWritten = false;
    } else {
        --m_mesh->m_iReaders;
    }
    const ComponentReference<HpsMesh> ended = std::move(m_mesh);  // releases the mesh, which this may delete
}

bool HpsVertexData::IsWhole(std::int32_t reserved, std::int32_t vertexCount, const float* values,
                            std::size_t size) const {
    const std::span<const float> positions = m_mesh->Positions();
    return reserved == 0 && vertexCount >= 0 && static_cast<std::size_t>(vertexCount) == positions.size() / 3 &&
           size == positions.size_bytes() && (values != nullptr || size == 0);
}

std::int32_t HpsVertexData::ReadAttribute(char attribute, std::int32_t reserved, std::int32_t vertexCount,
                                          float* values, std::size_t size) {
    if (!m_mesh) return kFailed;
    if ((attribute != 'P' && attribute != 'N') || !IsWhole(reserved, vertexCount, values, size))
        return kInvalidArgument;
    if (attribute == 'P') {
        Copy(m_mesh->Positions(), values);
        return kSucceeded;
    }
    // An open mesh is checked on each call, since its indices can still change.
    if (!m_mesh->m_bHasValidIndices && !m_mesh->AllIndicesAreVertices()) return kFailed;
    Hps::ComputeNormals(m_mesh->Positions(), m_mesh->Indices(), {values, m_mesh->Positions().size()},
                        FileStorage::AllowedCores());
    return kSucceeded;
}

std::int32_t HpsVertexData::WriteAttribute(char attribute, std::int32_t reserved, std::int32_t vertexCount,
                                           const float* values, std::size_t size) {
    if (!m_mesh || !m_bIsWritable) return kFailed;
    // Normals cannot be written: they are computed from the triangles.
    if (attribute != 'P' || !IsWhole(reserved, vertexCount, values, size)) return kInvalidArgument;
    Copy(std::span(values, m_mesh->m_positions.size()), m_mesh->m_positions.data());
    return kSucceeded;
}

Component* MakeHpsMesh() { return new HpsMesh; }

}  // namespace KvComponents
