// The import of a file by its extension, with the reason as its result, and the reason of the last import or export.
#include <algorithm>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "KV_ScenePane/PathText.h"
#include "base/DebugOutput.h"
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "io/FileExtension.h"
#include "io/FileMessage.h"

namespace {

constexpr std::size_t kMostObjects = 32767;  // indices have 16 bits

template <std::size_t count>
bool IsOneOf(const std::wstring_view (&names)[count], std::wstring_view name) {
    return std::ranges::find(names, name) != std::end(names);
}

bool IsMesh(std::wstring_view extension) { return IsOneOf({L"stl", L"ois", L"msh", L"ply", L"hps"}, extension); }

bool IsScan(std::wstring_view extension) { return IsOneOf({L"xdt", L"pax", L"pcm"}, extension); }

/// Objects of the scene, and those of a parallel import that its threads have not staged.
std::size_t CountOwnObjects(CKV_ScenePaneCtrl& control) {
    if (!control.m_hImportMutex) return control.m_vpMeshes.size();
    const std::lock_guard lock(*control.m_hImportMutex);
    const auto& staged = control.m_vPendingImports;
    const auto isOwn = [](const ImportState::StagedMesh& mesh) { return mesh.m_iIndex < 0; };
    return control.m_vpMeshes.size() + static_cast<std::size_t>(std::ranges::count_if(staged, isOwn));
}

/// @param thrown  text of the exception; empty without one
std::string ReasonOf(const FileReasons& reasons, const std::string& thrown) {
    const std::string line = reasons.OneLine();
    if (!line.empty()) return line;
    return thrown.empty() ? "there is no reason" : thrown;
}

void ImportByExtension(CKV_ScenePaneCtrl& control, const std::wstring& file,
                       const KV_ScenePane::ImportOptions& options) {
    const auto refuse = [&](std::string_view reason) { ReportFileError("ImportFile", file, reason); };
    const std::wstring extension = LowerCaseExtension(file);
    if (file.empty()) return refuse("the path is empty");
    if (file.find(L'\0') != std::wstring::npos) return refuse("the path holds a zero byte");
    if (control.m_vpMeshes.size() >= kMostObjects) return refuse("the scene is full: it has 32767 objects");
    if (IsMesh(extension)) return control.ImportMesh(file.c_str());
    if (!IsScan(extension)) return refuse("unknown file type, not one of stl, ois, msh, ply, hps, xdt, pax and pcm");
    // Its threads read the settings that the options change.
    if (control.m_hImportMutex) return refuse("a parallel import is running: scans go to its entry");
    const ScopeExit restore([&control, skip = control.m_nScanSkipVal, limit = control.m_fConfidenceFilter] {
        control.m_nScanSkipVal = skip;
        control.m_fConfidenceFilter = limit;
    });
    control.SetScanSkipVal(options.skip);
    control.SetConfidenceFilter(options.confidence);
    control.ImportScan(file.c_str(), options.color);
}

}  // namespace

bool CKV_ScenePaneCtrl::ImportFile(const std::string& path, const KV_ScenePane::ImportOptions& options,
                                   std::string* reason) {
    DelayedDebugOutput delayed;  // what the sink throws says nothing about the file
    const FileReasons reasons;
    const std::size_t before = m_vpMeshes.size();
    std::string thrown;
    try {
        ImportByExtension(*this, KV_ScenePane::WidePath(path), options);
    } catch (...) {
        thrown = TextOfCaughtError();
    }
    const bool isAdded = m_vpMeshes.size() > before;
    const std::string line = isAdded ? reasons.OneLine() : ReasonOf(reasons, thrown);
    m_strLastError = isAdded ? std::string() : line;
    if (reason != nullptr) *reason = line;
    delayed.PassOn();
    return isAdded;
}

void CKV_ScenePaneCtrl::RunImport(const std::function<void()>& import) {
    const FileReasons reasons;
    const std::size_t before = CountOwnObjects(*this);
    const auto note = [&](const std::string& thrown) {
        m_strLastError = CountOwnObjects(*this) > before ? std::string() : ReasonOf(reasons, thrown);
    };
    try {
        import();
    } catch (...) {
        note(TextOfCaughtError());
        throw;
    }
    note({});
}

void CKV_ScenePaneCtrl::RunExport(BSTR path, const std::function<void()>& write) {
    const FileReasons reasons;
    try {
        write();
    } catch (...) {
        m_strLastError = ReasonOf(reasons, TextOfCaughtError());
        throw;
    }
    m_strLastError = reasons.OneLine();
    // No writer ran, and none reported it.
    if (!IsOneOf({L"stl", L"ply", L"hps"}, LowerCaseExtension(TextOrEmpty(path))))
        m_strLastError = "unknown file type, not one of stl, ply and hps";
}
