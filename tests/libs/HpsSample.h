// Meshes and files for the tests of the hps format.
#pragma once
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KV_Components/ComponentReference.h"
#include "KV_Components/Hps.h"
#include "KV_Components/HpsFacets.h"
#include "KV_Components/HpsFile.h"
#include "KV_Components/HpsPacking.h"
#include "KV_Components/HpsUv.h"
#include "KV_Components/HpsVertices.h"
#include "KV_Components/ObjectRegistry.h"
#include "KV_ScenePane/PathText.h"
#include "support/ScratchFolder.h"

namespace HpsSample {

using namespace KvComponents;

/// A new object, queried for the interface that callers use.
inline ObjectPointer Make(const char* factory, const char* interface) {
    const ObjectPointer made(MakeObject(factory));
    Object* found = nullptr;
    return kQuery(made.get(), interface, &found) == kSucceeded ? ObjectPointer(found) : nullptr;
}
inline ObjectPointer MakeReader() { return Make(hps_reader::kFactory, hps_reader::kInterface); }
inline ObjectPointer MakeMesh() { return Make(hps_mesh::kFactory, hps_mesh::kInterface); }
inline ObjectPointer MakeDecoder() { return Make(hps_uv_decoder::kFactory, hps_uv_decoder::kInterface); }
inline ObjectPointer MakeWriter() { return Make(hps_file_writer::kFactory, hps_file_writer::kInterface); }
inline ObjectPointer MakeCompressor() { return Make(hps_compressor::kFactory, hps_compressor::kInterface); }

struct SampleMesh {
    std::vector<float> positions;       ///< three per vertex
    std::vector<std::int32_t> indices;  ///< three per triangle
    std::vector<float> pairs;           ///< two per corner; empty without texture coordinates
    std::vector<unsigned char> texture;
    std::string application, version;

    [[nodiscard]] std::int32_t VertexCount() const { return static_cast<std::int32_t>(positions.size() / 3); }
    [[nodiscard]] std::int32_t TriangleCount() const { return static_cast<std::int32_t>(indices.size() / 3); }
};

inline SampleMesh Tetrahedron() {
    return {{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3}, {}, {}, "app", "1.2"};
}

/// A png file of one column: red above blue.
inline std::vector<unsigned char> RedAboveBlue() {
    return {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
            0x00, 0x01, 0x00, 0x00, 0x00, 0x02, 0x08, 0x02, 0x00, 0x00, 0x00, 0x16, 0xE3, 0x21, 0x70, 0x00, 0x00, 0x00,
            0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0xF8, 0xCF, 0x00, 0x02, 0xFF, 0x01, 0x08, 0x00, 0x01, 0xFF,
            0x06, 0xCE, 0xA9, 0x25, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
}

/// The tetrahedron with a different pair at every corner.
inline SampleMesh TexturedTetrahedron() {
    SampleMesh mesh = Tetrahedron();
    for (std::size_t i = 0; i < 2 * mesh.indices.size(); ++i) mesh.pairs.push_back(static_cast<float>(i) / 32.0f);
    mesh.texture = RedAboveBlue();
    return mesh;
}

/// The parts of a file. Tests change them and build a file with correct checksums.
struct Parts {
    explicit Parts(const SampleMesh& mesh) {
        vertexCount = static_cast<std::uint32_t>(mesh.VertexCount());
        triangleCount = static_cast<std::uint32_t>(mesh.TriangleCount());
        Hps::RawArray<Hps::Introduction> introductions;
        facets = Hps::EncodeFacets(mesh.indices, vertexCount, introductions);
        positions = Hps::EncodePositions(mesh.positions, introductions.Span());
        if (!mesh.pairs.empty()) uv = Hps::PackUv(mesh.indices, vertexCount, mesh.pairs).value();
        const auto* const texels = reinterpret_cast<const std::byte*>(mesh.texture.data());
        texture.assign(texels, texels + mesh.texture.size());
    }
    [[nodiscard]] Hps::ByteVector File() const {
        return Hps::BuildFile({vertexCount, triangleCount, facets, positions, uv, texture, orientation, "app", "1"});
    }
    std::uint32_t vertexCount, triangleCount, orientation = 1;
    Hps::ByteVector facets, positions, uv, texture;
};

template <class T>
std::size_t BytesOf(const std::vector<T>& values) {
    return values.size() * sizeof(T);
}

/// A mesh object with the content of a sample.
inline ObjectPointer MakeMesh(const SampleMesh& sample, bool isFinished) {
    ObjectPointer mesh = MakeMesh();
    if (hps_mesh::kCreate(mesh.get(), sample.VertexCount(), sample.TriangleCount(), "P") != kSucceeded) return nullptr;
    Object* access = nullptr;
    if (hps_mesh::kWritableVertexData(mesh.get(), &access) != kSucceeded) return nullptr;
    const ObjectPointer data(access);
    if (hps_vertex_data::kWriteAttribute(data.get(), 'P', 0, sample.VertexCount(), sample.positions.data(),
                                         BytesOf(sample.positions)) != kSucceeded)
        return nullptr;
    hps_vertex_data::kEndAccess(data.get());
    if (hps_mesh::kWriteIndices(mesh.get(), sample.indices.data(), BytesOf(sample.indices)) != kSucceeded)
        return nullptr;
    if (isFinished && hps_mesh::kFinish(mesh.get(), 0, 0) != kSucceeded) return nullptr;
    return mesh;
}

/// Writes a file as the viewer does. @return the first status that is not kSucceeded
inline std::int32_t Save(const SampleMesh& sample, const std::string& path) {
    const ObjectPointer mesh = MakeMesh(sample, true);
    const ObjectPointer compressor = MakeCompressor(), writer = MakeWriter();
    if (!mesh) return kInvalidReturnValue;
    std::int32_t status = hps_compressor::kBind(compressor.get(), mesh.get());
    const auto then = [&status](auto&& operation, auto... arguments) {
        if (status == kSucceeded) status = operation(arguments...);
    };
    then(hps_file_writer::kBind, writer.get(), compressor.get());
    if (!sample.pairs.empty())
        then(hps_file_writer::kUvPairs, writer.get(), sample.pairs.data(), sample.pairs.size() / 2);
    if (!sample.texture.empty())
        then(hps_file_writer::kTextureFile, writer.get(), sample.texture.data(), sample.texture.size());
    then(hps_file_writer::kPrepare, writer.get());
    then(hps_file_writer::kSourceApplication, writer.get(), sample.application.c_str(), sample.version.c_str());
    then(hps_file_writer::kSave, writer.get(), KV_ScenePane::WidePath(path).c_str());
    then(hps_file_writer::kUnbind, writer.get());
    then(hps_compressor::kUnbind, compressor.get());
    return status;
}

/// Positions and indices of a mesh object; nullopt when an operation fails.
inline std::optional<SampleMesh> ContentOf(Object* mesh) {
    SampleMesh content;
    std::int32_t vertexCount = 0, triangleCount = 0;
    if (hps_mesh::kVertexCount(mesh, &vertexCount) != kSucceeded) return {};
    if (hps_mesh::kTriangleCount(mesh, &triangleCount) != kSucceeded) return {};
    content.positions.resize(3 * static_cast<std::size_t>(vertexCount));
    content.indices.resize(3 * static_cast<std::size_t>(triangleCount));
    Object* access = nullptr;
    if (hps_mesh::kReadableVertexData(mesh, &access) != kSucceeded) return {};
    const ObjectPointer data(access);
    if (hps_vertex_data::kReadAttribute(data.get(), 'P', 0, vertexCount, content.positions.data(),
                                        BytesOf(content.positions)) != kSucceeded)
        return {};
    hps_vertex_data::kEndAccess(data.get());
    if (hps_mesh::kReadIndices(mesh, content.indices.data(), BytesOf(content.indices)) != kSucceeded) return {};
    return content;
}

inline bool SameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), BytesOf(a)) == 0);
}

/// Opens a file. @return the error code, or -1 when open fails without one
inline std::int32_t OpenError(Object* reader, const std::string& path) {
    const std::int32_t status = hps_reader::kOpen(reader, KV_ScenePane::WidePath(path).c_str());
    std::int32_t code = -1;
    if (hps_reader::kLastError(reader, &code) != kSucceeded) return -1;
    if (status == kSucceeded) return code;
    return code == 0 ? -1 : code;
}

}  // namespace HpsSample
