// Any bytes as an stl file: refused, or a mesh whose triangles name its vertices, in proportion to the bytes, and whose
// export reads back as the same triangles.
#include <cstdlib>
#include <vector>

#include "geometry/Mesh.h"
#include "io/StlMesh.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        MeshBuffers read = ReadStl({reinterpret_cast<const std::byte*>(data), size});
        const std::size_t triangles = read.m_vTriangles.size();
        if (triangles == 0 || triangles * 25 > size) std::abort();
        for (const Triangle& triangle : read.m_vTriangles)
            for (const std::int32_t index : triangle.v)
                if (static_cast<std::uint32_t>(index) >= read.m_vVertices.size()) std::abort();
        Mesh mesh(std::move(read.m_vVertices), std::move(read.m_vTriangles), L"", false);
        mesh.ComputeVertexNormals();
        std::vector<std::byte> written;
        WriteStl(mesh,
                 [&](std::span<const std::byte> part) { written.insert(written.end(), part.begin(), part.end()); });
        const MeshBuffers again = ReadStl(written);
        if (again.m_vTriangles.size() != triangles || again.m_vVertices.size() != mesh.m_vVertices.size()) std::abort();
    } catch (const FileReadError&) {
    }
    return 0;
}
