// Any bytes as an ois and as an msh file: refused, or a mesh whose triangles name its vertices, in proportion to the
// bytes.
#include <cstdlib>

#include "io/SmallMeshes.h"

namespace {

void Check(MeshBuffers (*read)(std::span<const std::byte>), std::span<const std::byte> bytes, std::size_t recordSize) {
    try {
        const MeshBuffers mesh = read(bytes);
        if ((mesh.m_vVertices.size() + mesh.m_vTriangles.size()) * recordSize > 2 * bytes.size()) std::abort();
        for (const Triangle& triangle : mesh.m_vTriangles)
            for (const std::int32_t index : triangle.v)
                if (static_cast<std::uint32_t>(index) >= mesh.m_vVertices.size()) std::abort();
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
