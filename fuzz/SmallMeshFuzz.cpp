// Any bytes as an ois and as an msh file: refused, or a mesh in proportion to the file whose indices are valid.
#include "Require.h"
#include "io/SmallMeshes.h"

namespace {

void Check(FileMesh (*read)(std::span<const std::byte>), std::span<const std::byte> bytes, std::size_t recordSize) {
    try {
        const MeshBuffers mesh = read(bytes);
        Require((mesh.m_vVertices.size() + mesh.m_vTriangles.size()) * recordSize <= 2 * bytes.size());
        RequireValidIndices(mesh.m_vTriangles, mesh.m_vVertices.size());
    } catch (const FileReadError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(reinterpret_cast<const std::byte*>(data), size);
    Check(ReadOis, bytes, 12);
    Check(ReadMsh, bytes, 24);
    return 0;
}
