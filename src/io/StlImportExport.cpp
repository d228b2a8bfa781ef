// Imports and exports stl files: between the object list and io/StlMesh.h, which reads and writes them.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "KV_ScenePane/PathText.h"
#include "base/AtomicFile.h"
#include "control/ScenePaneCtrl.h"
#include "io/FileMessage.h"
#include "io/FiniteCoordinates.h"
#include "io/RecordShare.h"
#include "io/StlMesh.h"
#include "platform/WaitCursor.h"

int CKV_ScenePaneCtrl::ImportStl(const wchar_t* path) {
    try {
        FileMesh buffers = ReadStlFile(path, ImportThreads());
        // no name, no colours: the object gets the default colour
        auto mesh = std::make_shared<Mesh>(std::wstring(), false);
        mesh->m_vVertices = std::move(buffers.m_vVertices);
        mesh->m_vTriangles = std::move(buffers.m_vTriangles);
        // smooth normals: the corners at one position share a vertex
        mesh->ComputeVertexNormals(ImportThreads());
        mesh->ComputeBoundingBox();
        m_vpMeshes.push_back(std::move(mesh));  // what throws before it changes nothing
        ReportMissing(path, buffers.m_vertexShare, buffers.m_triangleShare);
        ReportNotFinite(path, buffers.m_uNotFinite);
        return 0;
    } catch (const FileReadError& error) {
        ReportFileError("ImportStl", path, error.what());
    } catch (const std::length_error& error) {
        ReportFileError("ImportStl", path, error.what());
    }
    return -1;
}

void CKV_ScenePaneCtrl::ExportStl(std::int16_t objIdx, const wchar_t* path) {
    assert(ObjectAt(objIdx) != nullptr);
    const Mesh& mesh = *m_vpMeshes[static_cast<std::size_t>(objIdx)];
    try {
        AtomicFile file(KV_ScenePane::PathBytes(path));
        const WaitCursor wait(*m_pWindow);
        // Blocks go to the temporary file; the target is replaced by Commit() alone.
        std::uint64_t offset = 0;
        WriteStl(mesh, [&](std::span<const std::byte> bytes) {
            file.WriteAt(offset, bytes.data(), bytes.size());
            offset += bytes.size();
        });
        file.Commit();
    } catch (const std::system_error& error) {
        ReportFileError("ExportStl", path, error.what());
    } catch (const std::length_error& error) {
        ReportFileError("ExportStl", path, error.what());
    }
}
