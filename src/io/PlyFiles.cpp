// Imports and exports ply files. Reading and writing: io/PlyMesh.h, io/PlyMeshWriter.h.
#include <system_error>

#include "KV_ScenePane/PathText.h"
#include "control/ScenePaneCtrl.h"
#include "io/PlyMeshWriter.h"
#include "platform/DebugOutput.h"

int CKV_ScenePaneCtrl::ImportPly(const wchar_t*) { return -1; }

void CKV_ScenePaneCtrl::ExportPly(std::int16_t objIdx, const wchar_t* path) {
    const Mesh& mesh = *m_vpMeshes[static_cast<std::size_t>(objIdx)];
    std::span<const std::uint8_t> imageBytes;
    if (mesh.m_pTexture) imageBytes = mesh.m_pTexture->m_vImageBytes;
    const PlyMeshWriter writer(mesh.m_vVertices, mesh.m_vTriangles, mesh.m_vTexCoords, imageBytes);
    try {
        writer.Write(path);
    } catch (const std::system_error& error) {
        // The host is told nothing; who looks for the reason finds it here.
        DebugOutput("ExportPly(): " + KV_ScenePane::PathBytes(path) + ": " + error.what() + "\n");
    }
}
