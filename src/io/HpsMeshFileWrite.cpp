// Writes hps files. The steps: fill a mesh object, clone it, bind the clone to a compressor
// and that to a file writer, add the texture, save. Declarations: io/HpsMeshFile.h.
#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <memory>
#include <stdexcept>

#include "KV_Components/Hps.h"
#include "base/HugePages.h"
#include "io/HpsMeshFile.h"
#include "platform/ComponentRegistry.h"

namespace {

namespace hps_compressor = KvComponents::hps_compressor;
namespace hps_file_writer = KvComponents::hps_file_writer;
namespace hps_mesh = KvComponents::hps_mesh;
namespace hps_mesh_source = KvComponents::hps_mesh_source;
namespace hps_vertex_data = KvComponents::hps_vertex_data;
using KvComponents::Object;

std::int32_t CountOf(std::size_t count) {
    assert(count <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()));
    return static_cast<std::int32_t>(count);
}

/// Positions as one array of three floats per vertex; the library reads the whole array in one call.
void WritePositions(Object* mesh, std::span<const Vertex> vertices) {
    Object* found = nullptr;
    RequireSuccess(hps_mesh::kWritableVertexData(mesh, &found));
    const ComponentPtr data(found);
    if (!data) throw std::runtime_error(GetStatusText(KvComponents::kInvalidReturnValue));
    // the access ends whatever is thrown below
    struct EndOfAccess {
        Object* data;
        ~EndOfAccess() { hps_vertex_data::kEndAccess(data); }
    } const end{found};

    const std::size_t size = 3 * vertices.size() * sizeof(float);
    const auto positions = MakeArrayInHugePages<float>(3 * vertices.size());
    float* out = positions.get();
    for (const Vertex& vertex : vertices) {
        *out++ = vertex.x;
        *out++ = vertex.y;
        *out++ = vertex.z;
    }
    RequireSuccess(
        hps_vertex_data::kWriteAttribute(data.get(), 'P', 0, CountOf(vertices.size()), positions.get(), size));
}

/// A mesh object with positions ("P") and indices.
ComponentPtr MakeMesh(const HpsContent& content) {
    ComponentPtr mesh = RequireComponent(hps_mesh::kFactory, hps_mesh::kInterface);
    RequireSuccess(
        hps_mesh::kCreate(mesh.get(), CountOf(content.vertices.size()), CountOf(content.triangles.size()), "P"));
    WritePositions(mesh.get(), content.vertices);
    // A Triangle has the memory layout that the mesh object reads.
    static_assert(sizeof(Triangle) == 3 * sizeof(std::int32_t));
    RequireSuccess(hps_mesh::kWriteIndices(mesh.get(), reinterpret_cast<const std::int32_t*>(content.triangles.data()),
                                           content.triangles.size_bytes()));
    return mesh;
}

/// A copy of the mesh, which is what the compressor works on.
ComponentPtr CloneMesh(Object* mesh) {
    Object* found = nullptr;
    RequireSuccess(KvComponents::kQuery(mesh, hps_mesh_source::kInterface, &found));
    const ComponentPtr source(found);
    found = nullptr;
    const std::int32_t status = hps_mesh_source::kClone(source.get(), &found);
    const ComponentPtr cloned(found);
    ComponentPtr clone;
    if (status == KvComponents::kSucceeded && cloned) clone = QueryComponent(cloned.get(), hps_mesh::kInterface);
    if (!clone) throw std::runtime_error("Clone<INTF>() failed");
    return clone;
}

}  // namespace

void WriteHpsFile(const HpsContent& content, const wchar_t* path) {
    // ---- the mesh and its clone
    const ComponentPtr mesh = MakeMesh(content);
    const ComponentPtr clone = CloneMesh(mesh.get());
    RequireSuccess(hps_mesh::kFinish(clone.get(), 0, 0));
    std::int32_t triangleCount = 0;
    RequireSuccess(hps_mesh::kTriangleCount(clone.get(), &triangleCount));

    // ---- clone to compressor, compressor to writer
    const ComponentPtr writer = RequireComponent(hps_file_writer::kFactory, hps_file_writer::kInterface);
    const ComponentPtr compressor = RequireComponent(hps_compressor::kFactory, hps_compressor::kInterface);
    ComponentUse meshBinding(hps_compressor::kBind(compressor.get(), clone.get()), compressor.get(),
                             hps_compressor::kUnbind);
    ComponentUse compressorBinding(hps_file_writer::kBind(writer.get(), compressor.get()), writer.get(),
                                   hps_file_writer::kUnbind);
    // ---- texture
    if (!content.texCoords.empty()) {
        const std::size_t pairCount = 3 * static_cast<std::size_t>(std::max(triangleCount, 0));
        // The library reads this many pairs: with a larger clone it would read past the end of the array.
        if (pairCount != content.texCoords.size())
            throw std::runtime_error("the cloned mesh has " + std::to_string(triangleCount) + " triangles, not " +
                                     std::to_string(content.triangles.size()));
        static_assert(sizeof(TexCoord) == 2 * sizeof(float));
        RequireSuccess(hps_file_writer::kUvPairs(writer.get(), reinterpret_cast<const float*>(content.texCoords.data()),
                                                 pairCount));
    }
    if (content.imageFile)
        RequireSuccess(
            hps_file_writer::kTextureFile(writer.get(), content.imageFile->data(), content.imageFile->size()));
    // ---- the file
    RequireSuccess(hps_file_writer::kPrepare(writer.get()));
    RequireSuccess(hps_file_writer::kSourceApplication(writer.get(), content.sourceApplication.c_str(),
                                                       content.sourceVersion.c_str()));
    errno = 0;
    const std::int32_t status = hps_file_writer::kSave(writer.get(), path);
    if (status != KvComponents::kSucceeded) throw HpsSaveError(GetStatusText(status), errno);
    // in the opposite order; here a failure counts, in the destructors it does not
    compressorBinding.Finish();
    meshBinding.Finish();
}
