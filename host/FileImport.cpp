// A file was imported when the viewer's list has grown. Otherwise the reason is in an exception or in the debugger
// output.
#include "FileImport.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "FileLook.h"
#include "FileTypes.h"
#include "ForeignImport.h"
#include "ForeignReader.h"
#include "GridCause.h"
#include "HpsCause.h"
#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "MessageTable.h"
#include "PcmReason.h"
#include "SceneFile.h"

namespace {

/// The viewer's text about a scan of which no triangle is left: the host finds out why.
constexpr const char* kNoTriangle = "its valid points form no triangle";

/// The text about an hps file that is damaged in any way: the host finds out whether its length is wrong.
constexpr const char* kInvalidHps = "Invalid file.";

/// What every import has around it: the check of the file, the capture of the viewer's output and the exceptions.
/// @param import  returns whether an object was added; may throw
/// @param cause   returns why no triangle is left of the scan; an empty text when it finds no reason
ImportResult RunImport(const std::string& file, const std::function<bool(const wchar_t* path)>& import,
                       const std::function<std::string(const wchar_t* path)>& cause) {
    const std::wstring path = KV_ScenePane::WidePath(file);
    const DebugCapture capture;
    std::string thrown;
    bool added = false;
    try {
        added = import(path.c_str());
    } catch (...) {  // exhausted memory for one file must not end the import of the others
        thrown = TextOfCaughtError();
    }
    if (!added) {
        std::string reason = FailureReason(file, capture.Text(), thrown);
        if (reason == PlainWords(kNoTriangle)) {
            if (const std::string known = cause(path.c_str()); !known.empty()) reason = known;
        } else if (reason == PlainWords(kInvalidHps)) {
            if (const std::string known = WrongHpsLength(file); !known.empty()) reason = known;
        }
        return {ImportResult::State::Failed, reason};
    }
    std::string text = FileMessage(file, capture.Text(), thrown);
    if (ExtensionOf(file) == "hps") {
        const std::string length = WrongHpsLength(file);
        text.append(text.empty() || length.empty() ? "" : "; ").append(length);
    }
    return {ImportResult::State::Added, text};
}

/// @return what the entry returned: whether the grid gives an object
/// @throws std::runtime_error with the reason when the file cannot be read
bool PassGrid(MsrStorage::MSR& scan, const GridEntry& entry, const wchar_t* path, std::int32_t index) {
    // The three flags select parts of other libraries' files; the pcm format has no such parts.
    if (!scan.Load(path, false, true, false)) throw std::runtime_error(LastPcmReason());
    if (scan.GetXYZ() == nullptr) throw std::runtime_error(kNoPcmReason);
    return entry.entry(entry.control, path, scan.GetWidth(), scan.GetHeight(), scan.GetXYZ(), scan.GetConfidence(),
                       scan.GetTrafo(), scan.GetPixelClassification(),
                       entry.leavesOutColors ? nullptr : scan.GetColorData(), entry.color, index);
}

/// Why no triangle is left of a scan that PassGrid() has passed.
std::string CauseOf(MsrStorage::MSR& scan, const GridEntry& entry) {
    return CauseOfNoTriangle({.width = scan.GetWidth(),
                              .height = scan.GetHeight(),
                              .points = scan.GetXYZ(),
                              .confidence = scan.GetConfidence(),
                              .classification = scan.GetPixelClassification()},
                             entry.skip, entry.confidence);
}

/// One file as a parallel import of its own, on this thread.
bool PassGridAlone(KV_ScenePane::_DKV_ScenePane& methods, MsrStorage::MSR& scan, GridEntry entry, const wchar_t* path) {
    methods.BeginParallelImport(&entry.control, &entry.entry);
    try {
        const bool added = PassGrid(scan, entry, path, 0);
        methods.EndParallelImport();
        return added;
    } catch (...) {
        methods.EndParallelImport();
        throw;
    }
}

/// Vertices and triangles of a scan that is imported only to count them, and removed again.
struct MeshSize {
    std::int32_t vertices = 0, triangles = 0;
};

/// @param skip  for this import
/// @return nothing when it added nothing, as without memory
std::optional<MeshSize> TriedSize(KV_ScenePane::_DKV_ScenePane& methods, const wchar_t* path, std::int16_t skip) {
    const std::int16_t before = methods.GetNumObjects(), oldSkip = methods.GetScanSkipVal();
    methods.SetScanSkipVal(skip);
    methods.SetAllowEmptyObjects(KV_ScenePane::kVariantTrue);
    std::optional<MeshSize> size;
    try {
        methods.ImportScan(path, 0);
    } catch (...) {
        // Nothing is added, so nothing is known.
    }
    if (methods.GetNumObjects() > before) {
        size.emplace();
        methods.GetMeshDataSize(before, &size->vertices, &size->triangles);
        methods.DeleteObject(before);
    }
    methods.SetAllowEmptyObjects(KV_ScenePane::kVariantFalse);
    methods.SetScanSkipVal(oldSkip);
    return size;
}

/// Why no triangle is left of a scan that only the viewer reads: it is imported again, with vertices without triangles
/// allowed and with all points. Corners of rejected triangles are vertices all the same.
std::string CauseByTrial(KV_ScenePane::_DKV_ScenePane& methods, const wchar_t* path) {
    const std::int16_t skip = methods.GetScanSkipVal();
    if (skip > 1) {
        const std::optional<MeshSize> whole = TriedSize(methods, path, 1);
        if (!whole) return {};
        const std::string parts[] = {std::to_string(skip), std::to_string(whole->triangles)};
        if (whole->triangles > 0) return FilledSentence(kOnlySkipRemoves, parts);
    }
    const std::optional<MeshSize> tried = TriedSize(methods, path, skip);
    if (!tried || tried->triangles > 0) return {};
    const std::string angles[] = {kLeastAngle, kLargestAngle};
    if (tried->vertices > 0) return FilledSentence(kAllSlivers, angles);
    return skip == 1 ? kNoNeighbours : "";
}

ImportResult ReadPoints(const std::string& file) {
    try {
        auto cloud = std::make_shared<KV_ScenePane::PointCloud>();
        std::string reason;
        if (!ReadAnyPoints(file, cloud.get(), &reason, {}))
            return {ImportResult::State::Failed, FailureReason(file, reason)};
        return {ImportResult::State::Points, FileMessage(file, reason), std::move(cloud)};
    } catch (...) {
        return {ImportResult::State::Failed, FailureReason(file, {}, TextOfCaughtError())};
    }
}

/// Why nothing of the file can be added, whatever it holds.
std::string RefusalOf(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file) {
    const std::string refusal = ImportRefusal(file);
    return refusal.empty() && FreePlaces(methods) < 1 ? kSceneIsFull : refusal;
}

/// @param look  Viewer or Grid
ImportResult ImportLookedAt(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                            const ImportSettings& settings, FileLook look) {
    const std::int16_t before = methods.GetNumObjects();
    const auto hasGrown = [&] { return methods.GetNumObjects() != before; };
    const GridEntry entry = EntryFor(settings);
    MsrStorage::MSR scan;
    const auto import = [&](const wchar_t* path) {
        if (look == FileLook::Grid) return PassGridAlone(methods, scan, entry, path);
        if (FindFileType(file)->kind == FileKind::Mesh)  // not null: ImportRefusal() comes first
            methods.ImportMesh(path);
        else
            methods.ImportScan(path, settings.color);
        return hasGrown();
    };
    const auto cause = [&](const wchar_t* path) {
        return look == FileLook::Grid ? CauseOf(scan, entry) : CauseByTrial(methods, path);
    };
    ImportResult result = RunImport(file, import, cause);
    // Also when an exception came after the object: the host's list must match the viewer's.
    if (hasGrown()) result.state = ImportResult::State::Added;
    return result;
}

}  // namespace

void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings) {
    methods.SetScanSkipVal(settings.skip);
    methods.SetConfidenceFilter(settings.confidence);
}

ImportResult ImportByProcess(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                             const ImportSettings& settings) {
    try {
        ReaderResult found = RunReader(file);
        if (settings.leavesOutColors && found.kind == ReaderResult::Kind::Mesh) {
            found.mesh.m_bHasColors = false;
            for (KV_ScenePane::Vertex& vertex : found.mesh.m_vVertices) vertex.color = 0;
        }
        return AddReaderResult(methods, file, found);
    } catch (...) {
        return {ImportResult::State::Failed, FailureReason(file, {}, TextOfCaughtError())};
    }
}

ImportResult ImportFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                        const ImportSettings& settings) {
    if (std::string refusal = RefusalOf(methods, file); !refusal.empty()) return {ImportResult::State::Failed, refusal};
    const FileLook look = LookAt(file);
    if (look == FileLook::Process) return ImportByProcess(methods, file, settings);
    if (look == FileLook::Points) return ReadPoints(file);
    ImportResult result = ImportLookedAt(methods, file, settings, look);
    if (result.state == ImportResult::State::Failed && HasSecondReader(file) && !ReaderProgram().empty())
        return ImportByProcess(methods, file, settings);
    return result;
}

ImportResult ImportByViewer(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                            const ImportSettings& settings) {
    if (std::string refusal = RefusalOf(methods, file); !refusal.empty()) return {ImportResult::State::Failed, refusal};
    const FileLook look = LookAt(file);
    if (look == FileLook::Points) return {ImportResult::State::Points, {}};
    return ImportLookedAt(methods, file, settings, look);
}

GridEntry EntryFor(const ImportSettings& settings) {
    return {.color = static_cast<std::uint32_t>(settings.color),
            .skip = settings.skip,
            .confidence = settings.confidence,
            .leavesOutColors = settings.leavesOutColors};
}

ImportResult ImportGridFile(const GridEntry& entry, const std::string& file, std::int32_t index) {
    if (std::string refusal = ImportRefusal(file); !refusal.empty()) return {ImportResult::State::Failed, refusal};
    MsrStorage::MSR scan;
    return RunImport(
        file, [&](const wchar_t* path) { return PassGrid(scan, entry, path, index); },
        [&](const wchar_t*) { return CauseOf(scan, entry); });
}

int FreePlaces(KV_ScenePane::_DKV_ScenePane& methods) { return kMostObjects - methods.GetNumObjects(); }

void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom) {
    methods.CenterView();
    MagnifyView(methods, zoom);
}

void MagnifyView(KV_ScenePane::_DKV_ScenePane& methods, float zoom) {
    if (zoom == 1.0f) return;
    // The present frame, with another magnification.
    float right[3], up[3], center[3], fitted = 0.0f;
    methods.GetViewParams(&right[0], &right[1], &right[2], &up[0], &up[1], &up[2], &center[0], &center[1], &center[2],
                          &fitted);
    methods.SetViewParams(right[0], right[1], right[2], up[0], up[1], up[2], center[0], center[1], center[2], zoom, 0);
}
