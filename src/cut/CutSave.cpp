// The method that writes cuts into the measurement files. What is written is decided in cut/SaveCut.h.
#include <exception>

#include "control/ScenePaneCtrl.h"
#include "cut/SaveCut.h"
#include "io/FileMessage.h"
#include "platform/WaitCursor.h"

using KV_ScenePane::CutSaveEntry;

namespace {

Float3 RoundedToFloat(const Double3& a) {
    return {static_cast<float>(a[0]), static_cast<float>(a[1]), static_cast<float>(a[2])};
}

/// The plane that clips, also when it is hidden. In single precision from its normal and its centre on.
std::optional<CutPlane> ActivePlane(const CKV_ScenePaneCtrl& control) {
    if (control.m_bClipPlaneActive == 0) return std::nullopt;
    const Float3 normal = RoundedToFloat(control.m_clipPlane.GetNormal());
    const Float3 center = RoundedToFloat(control.m_clipPlane.GetCenter());
    return CutPlane{normal[0], normal[1], normal[2], -Dot(normal, center)};
}

/// One line per object whose file was not read or not written. A sink of the debugger output that throws hides no other
/// line.
/// @return the first exception of the sink
std::exception_ptr ReportFailures(const std::vector<CutSaveEntry>& entries) {
    std::exception_ptr exception;
    for (const CutSaveEntry& entry : entries) {
        if (entry.reason.empty()) continue;
        try {
            ReportFileError("SaveCuttingToPcms", entry.file, entry.reason);
        } catch (...) {
            if (!exception) exception = std::current_exception();
        }
    }
    return exception;
}

}  // namespace

KV_ScenePane::VARIANT_BOOL CKV_ScenePaneCtrl::SaveCuttingToPcms() {
    const WaitCursor wait(*m_pWindow);
    const CutSaveRun run = SaveMeshCuttings(m_vpMeshes, m_fConfidenceFilter, ActivePlane(*this));
    m_vCutSaveResults = run.entries;
    // Last: the sink of the debugger output may call any method.
    const std::exception_ptr sinkException = ReportFailures(run.entries);
    if (run.exception) std::rethrow_exception(run.exception);
    if (sinkException) std::rethrow_exception(sinkException);
    return run.isWritten ? 1 : 0;
}

std::vector<CutSaveEntry> CKV_ScenePaneCtrl::PlanCutSave() const {
    return PlanMeshCuttings(m_vpMeshes, ActivePlane(*this));
}
