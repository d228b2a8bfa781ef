// Any bytes as an stl file: refused, or a mesh in proportion to the file whose indices are valid and whose export is
// read as the same number of triangles and vertices.
#include <vector>

#include "Require.h"
#include "geometry/Mesh.h"
#include "io/StlMesh.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        MeshBuffers read = ReadStl({reinterpret_cast<const std::byte*>(data), size});
        const std::size_t triangles = read.m_vTriangles.size();
        Require(triangles > 0 && triangles * 25 <= size);
        RequireValidIndices(read.m_vTriangles, read.m_vVertices.size());
        Mesh mesh(std::move(read.m_vVertices), std::move(read.m_vTriangles), L"", false);
        mesh.ComputeVertexNormals();
        std::vector<std::byte> written;
        WriteStl(mesh,
                 [&](std::span<const std::byte> part) { written.insert(written.end(), part.begin(), part.end()); });
        const MeshBuffers again = ReadStl(written);
        Require(again.m_vTriangles.size() == triangles && again.m_vVertices.size() == mesh.m_vVertices.size());
    } catch (const FileReadError&) {
    }
    return 0;
}
