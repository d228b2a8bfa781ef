// Imports and exports hps files: between the object list and io/HpsMeshFile.h, which reads and writes them.
#include <cassert>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "files/SystemMessage.h"
#include "io/FileMessage.h"
#include "io/FiniteCoordinates.h"
#include "io/HpsMeshFile.h"
#include "render/MeshTexture.h"

namespace {

/// The low byte of every UTF-16 unit of the text. No code page is used: characters above 255 are cut.
std::string LowBytes(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t character : text) {
        const auto c = static_cast<std::uint32_t>(character);
        // Above the 16-bit range a character is a pair of units; the low byte of the first comes from the bits
        // above 10.
        if (c >= 0x10000) bytes.push_back(static_cast<char>((c - 0x10000) >> 10));
        bytes.push_back(static_cast<char>(c));
    }
    return bytes;
}

}  // namespace

void CKV_ScenePaneCtrl::SetHpsSourceApp(BSTR appName, BSTR appVersion) {
    m_hpsSourceApp = LowBytes(appName == nullptr ? L"" : appName);
    m_hpsSourceVersion = LowBytes(appVersion == nullptr ? L"" : appVersion);
}

int CKV_ScenePaneCtrl::ImportHps(const wchar_t* path) {
    MakeContextCurrent();  // the mesh creates its texture in it
    HpsData data;
    try {
        data = ReadHpsFile(path);
    } catch (const HpsReadError& error) {
        ReportFileError("ImportHps", path, *error.what() == '\0' ? "an error without a text" : error.what());
        return -1;
    }
    std::shared_ptr<Mesh> mesh;
    if (data.m_vPixels.empty()) {
        mesh = std::make_shared<Mesh>(path, false);
        mesh->m_bGrayColors = true;
        mesh->m_vVertices = std::move(data.m_vVertices);
        mesh->m_vTriangles = std::move(data.m_vTriangles);
        mesh->ComputeBoundingBox();
    } else {
        mesh = MakeHpsMesh(std::move(data.m_vVertices), data.m_vFaces, path, data.m_vImageBytes, data.m_vPixels.data(),
                           data.m_uWidth, data.m_uHeight);
    }
    m_vpMeshes.push_back(std::move(mesh));
    ReportNotFinite(path, data.m_uNotFinite);
    return 0;
}

void CKV_ScenePaneCtrl::ExportHps(std::int16_t objIdx, const wchar_t* path) {
    assert(ObjectAt(objIdx) != nullptr);
    const Mesh& mesh = *m_vpMeshes[static_cast<std::size_t>(objIdx)];
    // References to the mesh: only names are copied.
    HpsContent content;
    content.vertices = mesh.m_vVertices;
    content.triangles = mesh.m_vTriangles;
    content.texCoords = mesh.m_vTexCoords;
    if (mesh.m_pTexture) content.imageFile = mesh.m_pTexture->m_vImageBytes;
    content.sourceApplication = m_hpsSourceApp;
    content.sourceVersion = m_hpsSourceVersion;
    try {
        WriteHpsFile(content, path);
    } catch (const HpsSaveError& error) {
        // The status text alone is the same for every cause.
        if (error.m_iError != 0)
            ReportFileError("ExportHps", path, "cannot be saved: " + FileStorage::SystemMessage(error.m_iError));
        throw;
    }
}
