// Imports and exports ply files: between the object list and io/PlyMesh.h, which reads them, and io/PlyMeshWriter.h.
#include <cassert>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "geometry/MeanNormals.h"
#include "io/FileMessage.h"
#include "io/FiniteCoordinates.h"
#include "io/PlyMesh.h"
#include "io/PlyMeshWriter.h"
#include "io/RecordShare.h"
#include "render/MeshTexture.h"

namespace {

/// The texture coordinates of the file are six numbers per triangle: three pairs, in the layout of TexCoord.
std::shared_ptr<Mesh> MakeTexturedMesh(MeshBuffers&& buffers, const PlyMeshData& data) {
    static_assert(sizeof(TexCoord) == 2 * sizeof(float));
    std::vector<TexCoord> texCoords(data.m_vTexCoords.size() / 2);
    std::memcpy(static_cast<void*>(texCoords.data()), data.m_vTexCoords.data(), texCoords.size() * sizeof(TexCoord));
    return MakePlyMesh(std::move(buffers.m_vVertices), std::move(buffers.m_vTriangles), texCoords, data.m_vImageBytes);
}

}  // namespace

int CKV_ScenePaneCtrl::ImportPly(const wchar_t* path) {
    MakeContextCurrent();  // the mesh can create its texture in it; without a context it has the image alone
    PlyMeshData data = ReadPlyMesh(path, ImportThreads());
    MeshBuffers buffers(data.m_bHasColors);
    buffers.m_vVertices = std::move(*data.m_pVertices);
    buffers.m_vTriangles = std::move(*data.m_pTriangles);
    // A point cloud is no mesh: the object would show nothing.
    if (buffers.m_vTriangles.empty()) {
        ReportFileError("ImportPly", path, "holds no faces");
        return -1;
    }
    ComputeMeanNormals(buffers, ImportThreads());
    // Both ways compute the box. Without colours all vertices are white, which counts as grey.
    m_vpMeshes.push_back(data.m_bHasTexture
                             ? MakeTexturedMesh(std::move(buffers), data)
                             : std::make_shared<Mesh>(std::move(buffers.m_vVertices), std::move(buffers.m_vTriangles),
                                                      L"", data.m_bHasColors));
    ReportBytesAfterEnd(path, data.m_uBytesAfterEnd);
    ReportNotFinite(path, data.m_uNotFinite);
    return 0;
}

void CKV_ScenePaneCtrl::ExportPly(std::int16_t objIdx, const wchar_t* path) {
    assert(ObjectAt(objIdx) != nullptr);
    const Mesh& mesh = *m_vpMeshes[static_cast<std::size_t>(objIdx)];
    // The image is written as the file that it was read from, not encoded again.
    std::span<const std::uint8_t> imageBytes;
    if (mesh.m_pTexture) imageBytes = mesh.m_pTexture->m_vImageBytes;
    const PlyMeshWriter writer(mesh.m_vVertices, mesh.m_vTriangles, mesh.m_vTexCoords, imageBytes);
    try {
        writer.Write(path);
    } catch (const std::system_error& error) {
        ReportFileError("ExportPly", path, error.what());
    }
}
