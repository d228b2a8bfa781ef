// Parallel import: the entry that the host's threads call, the staging list, and its transfer to the object list.
#include <algorithm>
#include <exception>
#include <functional>
#include <string>
#include <utility>

#include "base/ParallelTasks.h"
#include "control/ScenePaneCtrl.h"
#include "io/FileMessage.h"
#include "io/MeasurementData.h"

namespace {

constexpr char kEntryName[] = "ImportMeasurementInternal";

/// The entry that the host's threads call. It reads settings of the control without a lock: the host must not change
/// them during a parallel import. No exception leaves it, since a thread of the host may have no handler for it: an
/// import that fails returns false with its reason in the debugger output.
bool ImportMeasurementInternal(void* control, const wchar_t* name, std::int32_t width, std::int32_t height,
                               const float* points, const float* confidence, const float* trafo,
                               const std::uint8_t* classification, const std::uint32_t* colors, std::uint32_t color,
                               std::int32_t index) try {
    auto& self = *static_cast<CKV_ScenePaneCtrl*>(control);
    const MeasurementArrays arrays = {.m_iWidth = width,
                                      .m_iHeight = height,
                                      .m_pPoints = points,
                                      .m_pConfidence = confidence,
                                      .m_pClassification = classification,
                                      .m_pTrafo = trafo,
                                      .m_pColors = colors};
    const MeasurementRules rules = {.m_eScale = GridScale::Thousandths, .m_fConfidenceLimit = self.m_fConfidenceFilter};
    return self.SetScanData(MakeMeasurementData(arrays, rules), {.m_sName = std::wstring(TextOrEmpty(name)),
                                                                 .m_uColor = color,
                                                                 .m_iIndex = index,
                                                                 .m_pRefusedBy = kEntryName,
                                                                 .m_pMeshedBy = kEntryName});
} catch (const std::exception&) {
    ReportCaughtError(kEntryName, TextOrEmpty(name));
    return false;
}

}  // namespace

void CKV_ScenePaneCtrl::BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) {
    // A second call keeps the mutex: threads of the first can be waiting for it.
    if (!m_hImportMutex) m_hImportMutex = std::make_unique<std::mutex>();
    *p_this = this;
    *p_fn = &ImportMeasurementInternal;
}

// The only shared state that the host's threads write; the mutex is held for one append.
void CKV_ScenePaneCtrl::AddMeshToScene(std::shared_ptr<Mesh> mesh, std::int32_t index) {
    if (!m_hImportMutex) {
        m_vpMeshes.push_back(std::move(mesh));
        return;
    }
    const std::lock_guard lock(*m_hImportMutex);
    m_vPendingImports.push_back({index, std::move(mesh)});
}

unsigned CKV_ScenePaneCtrl::ImportThreads() const { return m_hImportMutex ? 1 : AllowedCores(); }

void CKV_ScenePaneCtrl::EndParallelImport() {
    // From here on objects are appended to the list directly.
    m_hImportMutex.reset();  // no thread uses it: the host joins its threads before it calls this
    // By index; equal indices by address, so that the order does not depend on the order of arrival.
    std::sort(m_vPendingImports.begin(), m_vPendingImports.end(), [](const StagedMesh& a, const StagedMesh& b) {
        return a.m_iIndex != b.m_iIndex ? a.m_iIndex < b.m_iIndex : std::less<>()(a.m_pMesh.get(), b.m_pMesh.get());
    });
    for (StagedMesh& staged : m_vPendingImports) m_vpMeshes.push_back(std::move(staged.m_pMesh));
    m_vPendingImports.clear();
}
