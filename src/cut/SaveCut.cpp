// Which objects have a cut to save, and the order of the saves.
#include "cut/SaveCut.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KV_ScenePane/PathText.h"
#include "base/ParallelTasks.h"
#include "cut/ApplyCut.h"
#include "io/FileExtension.h"
#include "io/FileMessage.h"

using KV_ScenePane::CutSaveEntry;

namespace {

float SquareOf(const CutPlane& v) { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2] + v[3] * v[3]; }

/// Whether two planes are the same but for rounding. In single precision, as the planes are.
bool IsSamePlane(const CutPlane& p, const CutPlane& q) {
    const CutPlane difference = {q[0] - p[0], q[1] - p[1], q[2] - p[2], q[3] - p[3]};
    return SquareOf(difference) <= 1e-10f * std::min(SquareOf(p), SquareOf(q));
}

/// By the text after the last point, also when that is in the name of a folder: such a name is no pcm file.
bool IsPcmName(std::wstring_view name) {
    return name.find(L'.') != std::wstring_view::npos && LowerCaseExtension(name) == L"pcm";
}

bool HasNothingToSave(const Mesh& mesh, const std::optional<CutPlane>& plane) {
    if (!mesh.m_vpCutMasks.empty()) return false;
    return !plane || (mesh.m_optCutView && IsSamePlane(*mesh.m_optCutView, *plane));
}

/// Device and inode of the file behind a path with all links followed; the path itself when there is no file.
using FileIdentity = std::tuple<dev_t, ino_t, std::string>;

FileIdentity IdentityOf(const std::wstring& file) {
    const std::string path = KV_ScenePane::PathBytes(file);
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return {0, 0, path};
    return {info.st_dev, info.st_ino, {}};
}

/// Indices of the objects that have something to save, one list per file.
std::vector<std::vector<std::size_t>> GroupByFile(std::span<const CutSaveEntry> entries) {
    std::vector<std::vector<std::size_t>> groups;
    std::map<FileIdentity, std::size_t> groupOf;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].outcome != KV_ScenePane::CutToBeWritten) continue;
        const auto [group, isNew] = groupOf.try_emplace(IdentityOf(entries[i].file), groups.size());
        if (isNew) groups.emplace_back();
        groups[group->second].push_back(i);
    }
    return groups;
}

}  // namespace

CutSaveEntry PlanMeshCutting(const Mesh& mesh, const std::optional<CutPlane>& plane) {
    CutSaveEntry entry;
    entry.outcome = HasNothingToSave(mesh, plane) ? KV_ScenePane::CutNothingToSave
                    : IsPcmName(mesh.m_sName)     ? KV_ScenePane::CutToBeWritten
                                                  : KV_ScenePane::CutNotFromPcm;
    entry.file = mesh.m_sName;
    entry.numberOfCuts = static_cast<int>(mesh.m_vpCutMasks.size());
    entry.isMoved = IsMoved(mesh);
    entry.isCutWhileMoved = mesh.m_bCutWhileMoved;
    return entry;
}

bool SaveMeshCutting(Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane, CutSaveEntry& entry) {
    const std::int16_t object = entry.object;
    entry = PlanMeshCutting(mesh, plane);
    entry.object = object;
    if (entry.outcome != KV_ScenePane::CutToBeWritten) return false;
    try {
        MsrCutResult result = WriteCutToMsr(mesh, confidenceLimit, plane);
        entry.outcome = result.outcome;
        entry.reason = std::move(result.reason);
        entry.isNothingLeft = result.isNothingLeft;
    } catch (...) {
        entry.outcome = KV_ScenePane::CutFileNotWritten;
        entry.reason = TextOfCaughtError();
        throw;
    }
    // The cuts are in the file and must not count twice.
    mesh.m_vpCutMasks.clear();
    mesh.m_bCutWhileMoved = false;
    if (plane) mesh.m_optCutView = plane;
    return true;
}

std::vector<CutSaveEntry> PlanMeshCuttings(std::span<const std::shared_ptr<Mesh>> meshes,
                                           const std::optional<CutPlane>& plane) {
    std::vector<CutSaveEntry> entries;
    entries.reserve(meshes.size());
    for (const auto& mesh : meshes) {
        entries.push_back(PlanMeshCutting(*mesh, plane));
        entries.back().object = static_cast<std::int16_t>(entries.size() - 1);
    }
    return entries;
}

CutSaveRun SaveMeshCuttings(std::span<const std::shared_ptr<Mesh>> meshes, float confidenceLimit,
                            const std::optional<CutPlane>& plane) {
    CutSaveRun run;
    run.entries = PlanMeshCuttings(meshes, plane);
    const std::vector<std::vector<std::size_t>> groups = GroupByFile(run.entries);
    struct Result {
        bool isWritten = false;
        std::exception_ptr exception;
    };
    std::vector<Result> results(meshes.size());
    RunParallelTasks(groups.size(), [&](std::size_t group) {
        for (const std::size_t i : groups[group]) {
            try {
                results[i].isWritten = SaveMeshCutting(*meshes[i], confidenceLimit, plane, run.entries[i]);
            } catch (...) {
                results[i].exception = std::current_exception();
            }
        }
    });
    // An exception after the first written object is not passed on: the entry says why the object was not written.
    for (std::size_t i = 0; i < results.size() && !run.isWritten && !run.exception; ++i) {
        run.isWritten = results[i].isWritten;
        run.exception = results[i].exception;
    }
    return run;
}
