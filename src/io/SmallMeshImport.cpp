// Imports ois and msh files, which io/SmallMeshes.h reads. The normals of ois are computed here; msh has its own.
#include <memory>
#include <string>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "io/FileMessage.h"
#include "io/FiniteCoordinates.h"
#include "io/RecordShare.h"
#include "io/SmallMeshes.h"

namespace {

/// An object without name and colours; normals are those of the buffers. Leaves their arrays empty.
std::shared_ptr<Mesh> MakeMesh(MeshBuffers& buffers) {
    auto mesh = std::make_shared<Mesh>(std::wstring(), false);
    mesh->m_vVertices = std::move(buffers.m_vVertices);
    mesh->m_vTriangles = std::move(buffers.m_vTriangles);
    return mesh;
}

}  // namespace

int CKV_ScenePaneCtrl::ImportOis(const wchar_t* path) {
    try {
        // smooth normals by vertex index: nothing is welded
        FileMesh buffers = ReadOisFile(path);
        std::shared_ptr<Mesh> mesh = MakeMesh(buffers);
        mesh->ComputeVertexNormals();
        mesh->ComputeBoundingBox();
        m_vpMeshes.push_back(std::move(mesh));
        ReportMissing(path, buffers.m_vertexShare, buffers.m_triangleShare);
        ReportNotFinite(path, buffers.m_uNotFinite);
        return 0;
    } catch (const FileReadError& error) {
        ReportFileError("ImportOis", path, error.what());
        return -1;
    }
}

int CKV_ScenePaneCtrl::ImportMsh(const wchar_t* path) {
    try {
        // with the normals of the file, whatever their length
        FileMesh buffers = ReadMshFile(path);
        std::shared_ptr<Mesh> mesh = MakeMesh(buffers);
        mesh->ComputeBoundingBox();
        m_vpMeshes.push_back(std::move(mesh));
        ReportMissing(path, buffers.m_vertexShare, buffers.m_triangleShare);
        ReportNotFinite(path, buffers.m_uNotFinite);
        return 0;
    } catch (const FileReadError& error) {
        ReportFileError("ImportMsh", path, error.what());
        return -1;
    }
}
