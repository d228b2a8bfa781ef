// Mean normals of meshes that come as arrays. The unit normals of all other meshes: Mesh::ComputeVertexNormals().
#include "geometry/MeanNormals.h"

#include <cstdint>
#include <vector>

#include "geometry/FaceNormal.h"

void ComputeMeanNormals(MeshBuffers& buffers) {
    std::vector<std::int32_t> faceCount(buffers.m_vVertices.size(), 0);
    for (Vertex& vertex : buffers.m_vVertices) vertex.nx = vertex.ny = vertex.nz = 0.0f;
    for (const Triangle& triangle : buffers.m_vTriangles) {
        AddFaceNormal(FaceNormalOf(triangle, buffers.m_vVertices), triangle, buffers.m_vVertices);
        for (const auto corner : triangle.v) ++faceCount[static_cast<std::size_t>(corner)];
    }
    for (std::size_t i = 0; i < faceCount.size(); ++i) {
        if (faceCount[i] == 0) continue;
        Vertex& vertex = buffers.m_vVertices[i];
        const auto count = static_cast<float>(faceCount[i]);
        vertex.nx /= count;
        vertex.ny /= count;
        vertex.nz /= count;
    }
}
