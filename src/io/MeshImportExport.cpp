// Selects the mesh format by the file's extension. Each format has its own source file beside this one.
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "io/FileExtension.h"
#include "io/FileMessage.h"
#include "platform/WaitCursor.h"

namespace {

using Importer = int (CKV_ScenePaneCtrl::*)(const wchar_t* path);

/// Null for an extension that is not that of a mesh.
Importer ImporterOf(std::wstring_view extension) {
    const std::pair<std::wstring_view, Importer> importers[] = {{L"stl", &CKV_ScenePaneCtrl::ImportStl},
                                                                {L"ois", &CKV_ScenePaneCtrl::ImportOis},
                                                                {L"msh", &CKV_ScenePaneCtrl::ImportMsh},
                                                                {L"ply", &CKV_ScenePaneCtrl::ImportPly},
                                                                {L"hps", &CKV_ScenePaneCtrl::ImportHps}};
    for (const auto& [name, importer] : importers)
        if (extension == name) return importer;
    return nullptr;
}

}  // namespace

// The importers report why a file was refused; here is what never reaches one of them, and what they throw.
void CKV_ScenePaneCtrl::ImportMesh(BSTR path) {
    const WaitCursor wait(*m_pWindow);
    const std::wstring_view file = TextOrEmpty(path);
    if (file.empty()) return ReportFileError("ImportMesh", file, "the path is empty");
    const Importer importer = ImporterOf(LowerCaseExtension(file));
    if (importer == nullptr)
        return ReportFileError("ImportMesh", file, "unknown file type, not one of stl, ois, msh, ply and hps");
    try {
        (this->*importer)(path);
    } catch (...) {
        ReportCaughtFileError("ImportMesh", file);
        throw;
    }
}

// Any other extension does nothing. No wait cursor for all formats: the export of stl shows one itself.
void CKV_ScenePaneCtrl::ExportMesh(std::int16_t objIdx, BSTR path) {
    const std::wstring extension = LowerCaseExtension(path == nullptr ? L"" : path);
    if (extension == L"stl") ExportStl(objIdx, path);
    if (extension == L"ply") ExportPly(objIdx, path);
    if (extension == L"hps") ExportHps(objIdx, path);
}
