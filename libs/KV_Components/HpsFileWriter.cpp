// Two objects: the compressor holds a mesh; the file writer packs it in Prepare() and writes the file in Save().
#include <cerrno>
#include <optional>
#include <system_error>

#include "ComponentReference.h"
#include "HpsFile.h"
#include "HpsMesh.h"
#include "HpsUv.h"
#include "HpsVertices.h"
#include "KV_Components/Hps.h"
#include "KV_ScenePane/PathText.h"
#include "ObjectRegistry.h"
#include "files/AtomicFile.h"

namespace KvComponents {

namespace {

/// Holds a reference to a finished mesh. The packing itself happens in HpsFileWriter::Prepare().
class HpsCompressor final : public SingleInterfaceComponent {
public:
    HpsCompressor();

    std::int32_t Bind(Object* mesh) {
        if (mesh == nullptr) return kInvalidArgument;
        HpsMesh* const bound = ComponentOf<HpsMesh>(mesh);
        if (bound == nullptr) return kInvalidArgument;
        if (m_mesh || !bound->CanBePacked()) return kFailed;
        m_mesh = ComponentReference<HpsMesh>(*bound);
        return kSucceeded;
    }
    std::int32_t Unbind() {
        if (!m_mesh) return kFailed;
        m_mesh = {};
        return kSucceeded;
    }
    /// @return null when no mesh is bound
    [[nodiscard]] const HpsMesh* BoundMesh() const { return m_mesh ? &*m_mesh : nullptr; }

private:
    ComponentReference<HpsMesh> m_mesh;
};

/// Collects the parts of a file; see hps_file_writer in KV_Components/Hps.h for the operations.
class HpsFileWriter final : public SingleInterfaceComponent {
public:
    HpsFileWriter();

    std::int32_t Bind(Object* compressor);
    std::int32_t Prepare();
    std::int32_t TextureFile(const void* bytes, std::size_t size);
    std::int32_t UvPairs(const float* pairs, std::size_t pairCount);
    std::int32_t SourceApplication(const char* application, const char* version);
    std::int32_t Save(const wchar_t* path);
    std::int32_t Unbind();

private:
    /// The packed mesh.
    struct Packed {
        std::uint32_t vertexCount = 0, triangleCount = 0;
        Hps::ByteVector facets, positions, uv;
    };

    ComponentReference<HpsCompressor> m_compressor;
    std::vector<float> m_vUvPairs;  ///< u, v per corner; empty without texture coordinates
    Hps::ByteVector m_vTexture;     ///< bytes of the picture file; empty without a texture
    std::string m_sApplication, m_sVersion;
    std::optional<Packed> m_packed;  ///< by Prepare(); reset by each change that it depends on
};

const Object::Entry* CompressorTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsCompressor::Bind>(hps_compressor::kBind)
                                            .Set<&HpsCompressor::Unbind>(hps_compressor::kUnbind);
    return table.Entries();
}

const Object::Entry* WriterTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsFileWriter::Bind>(hps_file_writer::kBind)
                                            .Set<&HpsFileWriter::Prepare>(hps_file_writer::kPrepare)
                                            .Set<&HpsFileWriter::TextureFile>(hps_file_writer::kTextureFile)
                                            .Set<&HpsFileWriter::UvPairs>(hps_file_writer::kUvPairs)
                                            .Set<&HpsFileWriter::SourceApplication>(hps_file_writer::kSourceApplication)
                                            .Set<&HpsFileWriter::Save>(hps_file_writer::kSave)
                                            .Set<&HpsFileWriter::Unbind>(hps_file_writer::kUnbind);
    return table.Entries();
}

HpsCompressor::HpsCompressor() : SingleInterfaceComponent(hps_compressor::kInterface, CompressorTable()) {}

HpsFileWriter::HpsFileWriter() : SingleInterfaceComponent(hps_file_writer::kInterface, WriterTable()) {}

std::int32_t HpsFileWriter::Bind(Object* compressor) {
    if (compressor == nullptr) return kInvalidArgument;
    HpsCompressor* const bound = ComponentOf<HpsCompressor>(compressor);
    if (bound == nullptr) return kInvalidArgument;
    if (m_compressor) return kFailed;
    m_compressor = ComponentReference<HpsCompressor>(*bound);
    return kSucceeded;
}

std::int32_t HpsFileWriter::Unbind() {
    if (!m_compressor) return kFailed;
    m_compressor = {};
    m_packed.reset();
    return kSucceeded;
}

std::int32_t HpsFileWriter::TextureFile(const void* bytes, std::size_t size) {
    if (bytes == nullptr && size > 0) return kInvalidArgument;
    const auto* const first = static_cast<const std::byte*>(bytes);
    m_vTexture.assign(first, first + size);
    return kSucceeded;
}

std::int32_t HpsFileWriter::UvPairs(const float* pairs, std::size_t pairCount) {
    if (pairs == nullptr && pairCount > 0) return kInvalidArgument;
    m_vUvPairs.assign(pairs, pairs + 2 * pairCount);
    m_packed.reset();
    return kSucceeded;
}

std::int32_t HpsFileWriter::Prepare() {
    m_packed.reset();
    const HpsMesh* const mesh = m_compressor ? m_compressor->BoundMesh() : nullptr;
    if (mesh == nullptr) return kFailed;
    const std::span<const std::int32_t> indices = mesh->Indices();
    Packed packed;
    packed.vertexCount = static_cast<std::uint32_t>(mesh->CountOfVertices());
    packed.triangleCount = static_cast<std::uint32_t>(indices.size() / 3);
    // Texture coordinates first: they are the only part that can be refused.
    if (!m_vUvPairs.empty()) {
        if (m_vUvPairs.size() != 2 * indices.size()) return kFailed;
        std::optional<Hps::ByteVector> uv = Hps::PackUv(indices, packed.vertexCount, m_vUvPairs);
        if (!uv) return kFailed;
        packed.uv = std::move(*uv);
    }
    // The triangles fix the order in which the positions are predicted.
    Hps::RawArray<Hps::Introduction> introductions;
    packed.facets = Hps::EncodeFacets(indices, packed.vertexCount, introductions);
    packed.positions = Hps::EncodePositions(mesh->Positions(), introductions.Span());
    m_packed = std::move(packed);
    return kSucceeded;
}

std::int32_t HpsFileWriter::SourceApplication(const char* application, const char* version) {
    if (application == nullptr || version == nullptr) return kInvalidArgument;
    m_sApplication = application;
    m_sVersion = version;
    return kSucceeded;
}

std::int32_t HpsFileWriter::Save(const wchar_t* path) {
    if (path == nullptr) return kInvalidArgument;
    if (!m_packed) return kFailed;
    Hps::FileContent content;
    content.vertexCount = m_packed->vertexCount;
    content.triangleCount = m_packed->triangleCount;
    content.facets = m_packed->facets;
    content.positions = m_packed->positions;
    content.uv = m_packed->uv;
    content.texture = m_vTexture;
    content.application = m_sApplication;
    content.version = m_sVersion;
    const Hps::ByteVector bytes = Hps::BuildFile(content);
    try {
        FileStorage::AtomicFile file(KV_ScenePane::PathBytes(path));
        file.WriteAt(0, bytes.data(), bytes.size());
        file.Commit();
    } catch (const std::system_error& error) {
        errno = error.code().value();
        return kFailed;
    }
    return kSucceeded;
}

}  // namespace

Component* MakeHpsFileWriter() { return new HpsFileWriter; }
Component* MakeHpsCompressor() { return new HpsCompressor; }

}  // namespace KvComponents
