// Selects the mesh format by the file's extension. Each format has its own source file beside this one. Any other
// extension does nothing.
#include "control/ScenePaneCtrl.h"
#include "io/FileExtension.h"
#include "platform/WaitCursor.h"

void CKV_ScenePaneCtrl::ImportMesh(BSTR path) {
    const std::wstring extension = LowerCaseExtension(path == nullptr ? L"" : path);
    const WaitCursor wait(*m_pWindow);
    if (extension == L"stl") ImportStl(path);
    if (extension == L"ois") ImportOis(path);
    if (extension == L"msh") ImportMsh(path);
    if (extension == L"ply") ImportPly(path);
    if (extension == L"hps") ImportHps(path);
}

// No wait cursor for all formats: the export of stl shows one itself.
void CKV_ScenePaneCtrl::ExportMesh(std::int16_t objIdx, BSTR path) {
    const std::wstring extension = LowerCaseExtension(path == nullptr ? L"" : path);
    if (extension == L"stl") ExportStl(objIdx, path);
    if (extension == L"ply") ExportPly(objIdx, path);
    if (extension == L"hps") ExportHps(objIdx, path);
}
