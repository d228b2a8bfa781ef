// Imports ois and msh files. The formats are read in io/SmallMeshes.h.
#include <memory>
#include <string>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "io/FileMessage.h"
#include "io/SmallMeshes.h"

namespace {

std::shared_ptr<Mesh> MakeMesh(MeshBuffers&& buffers) {
    auto mesh = std::make_shared<Mesh>(std::wstring(), false);
    mesh->m_vVertices = std::move(buffers.m_vVertices);
    mesh->m_vTriangles = std::move(buffers.m_vTriangles);
    return mesh;
}

}  // namespace

int CKV_ScenePaneCtrl::ImportOis(const wchar_t* path) {
    try {
        std::shared_ptr<Mesh> mesh = MakeMesh(ReadOisFile(path));
        mesh->ComputeVertexNormals();
        mesh->ComputeBoundingBox();
        m_vpMeshes.push_back(std::move(mesh));
        return 0;
    } catch (const FileReadError& error) {
        ReportFileError("ImportOis", path, error.what());
        return -1;
    }
}

int CKV_ScenePaneCtrl::ImportMsh(const wchar_t* path) {
    try {
        std::shared_ptr<Mesh> mesh = MakeMesh(ReadMshFile(path));
        mesh->ComputeBoundingBox();
        m_vpMeshes.push_back(std::move(mesh));
        return 0;
    } catch (const FileReadError& error) {
        ReportFileError("ImportMsh", path, error.what());
        return -1;
    }
}
