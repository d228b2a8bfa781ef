// A file was imported when the viewer's list has grown. Otherwise the reason is in an exception or in the debugger
// output.
#include "FileImport.h"

#include <functional>
#include <stdexcept>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "FileTypes.h"
#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "PcmReason.h"
#include "SceneFile.h"

namespace {

/// What every import has around it: the check of the file, the capture of the viewer's output and the exceptions.
/// @param import  returns whether an object was added; may throw
ImportResult RunImport(const std::string& file, const std::function<bool(const wchar_t* path)>& import) {
    if (std::string refusal = ImportRefusal(file); !refusal.empty()) return {ImportResult::State::Failed, refusal};
    const std::wstring path = KV_ScenePane::WidePath(file);
    const DebugCapture capture;
    std::string thrown;
    bool added = false;
    try {
        added = import(path.c_str());
    } catch (...) {  // exhausted memory for one file must not end the import of the others
        thrown = TextOfCaughtError();
    }
    if (!added) return {ImportResult::State::Failed, FailureReason(file, capture.Text(), thrown)};
    return {ImportResult::State::Added, FileMessage(file, capture.Text(), thrown)};
}

/// @return what the entry returned: whether the grid gives an object
/// @throws std::runtime_error with the reason when the file cannot be read
bool PassGrid(const GridEntry& entry, const wchar_t* path, std::int32_t index) {
    MsrStorage::MSR scan;
    // The three flags select parts of other libraries' files; the pcm format has no such parts.
    if (!scan.Load(path, false, true, false)) throw std::runtime_error(LastPcmReason());
    if (scan.GetXYZ() == nullptr) throw std::runtime_error(kNoPcmReason);
    return entry.entry(entry.control, path, scan.GetWidth(), scan.GetHeight(), scan.GetXYZ(), scan.GetConfidence(),
                       scan.GetTrafo(), scan.GetPixelClassification(), scan.GetColorData(), entry.color, index);
}

/// One file as a parallel import of its own, on this thread.
bool PassGridAlone(KV_ScenePane::_DKV_ScenePane& methods, const wchar_t* path, std::int32_t color) {
    GridEntry entry{.color = static_cast<std::uint32_t>(color)};
    methods.BeginParallelImport(&entry.control, &entry.entry);
    try {
        const bool added = PassGrid(entry, path, 0);
        methods.EndParallelImport();
        return added;
    } catch (...) {
        methods.EndParallelImport();
        throw;
    }
}

}  // namespace

void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings) {
    methods.SetScanSkipVal(settings.skip);
    methods.SetConfidenceFilter(settings.confidence);
}

ImportResult ImportFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, std::int32_t color) {
    const std::int16_t before = methods.GetNumObjects();
    const auto hasGrown = [&] { return methods.GetNumObjects() != before; };
    ImportResult result = RunImport(file, [&](const wchar_t* path) {
        const FileType& type = *FindFileType(file);  // ImportRefusal() has refused unknown types
        if (type.readByHost) return PassGridAlone(methods, path, color);
        if (type.kind == FileKind::Mesh)
            methods.ImportMesh(path);
        else
            methods.ImportScan(path, color);
        return hasGrown();
    });
    // Also when an exception came after the object: the host's list must match the viewer's.
    if (hasGrown()) result.state = ImportResult::State::Added;
    return result;
}

ImportResult ImportGridFile(const GridEntry& entry, const std::string& file, std::int32_t index) {
    return RunImport(file, [&](const wchar_t* path) { return PassGrid(entry, path, index); });
}

void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom) {
    methods.CenterView();
    if (zoom == 1.0f) return;
    // The frame that was just fitted, with another magnification.
    float right[3], up[3], center[3], fitted = 0.0f;
    methods.GetViewParams(&right[0], &right[1], &right[2], &up[0], &up[1], &up[2], &center[0], &center[1], &center[2],
                          &fitted);
    methods.SetViewParams(right[0], right[1], right[2], up[0], up[1], up[2], center[0], center[1], center[2], zoom, 0);
}
