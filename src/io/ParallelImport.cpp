// Imports on the host's own threads: the entry that they call, the staging list, and its way into the scene.
#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "geometry/GridTriangulation.h"
#include "io/GridLimits.h"
#include "io/MeasurementFile.h"
#include "base/DebugOutput.h"

void CKV_ScenePaneCtrl::BeginParallelImport(void** p_this, ImportMeasurementEntry* p_fn) {
    // A second call keeps the mutex: workers of the first may still wait for it.
    if (!m_hImportMutex) m_hImportMutex = std::make_unique<std::mutex>();
    *p_this = this;
    *p_fn = &ImportMeasurementInternal;
}

bool CKV_ScenePaneCtrl::ImportMeasurementInternal(void* control, const wchar_t* name, std::int32_t width,
                                                  std::int32_t height, const float* points, const float* confidence,
                                                  const float* trafo, const std::uint8_t* classification,
                                                  const std::uint32_t* colors, std::uint32_t color,
                                                  std::int32_t index) {
    auto& self = *static_cast<CKV_ScenePaneCtrl*>(control);
    if (const std::string refusal = GridRefusal(width, height, self.m_nScanSkipVal); !refusal.empty()) {
        DebugOutput("ImportMeasurementInternal(): " + refusal + "\n");
        return false;
    }
    std::array<float, 16> scaledTrafo;
    std::copy_n(trafo, 16, scaledTrafo.begin());
    for (const std::size_t i : {3u, 7u, 11u}) scaledTrafo[i] *= kFileToSceneScale;

    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const auto scaledPoints = std::make_unique_for_overwrite<float[]>(3 * pixels);
    std::transform(points, points + 3 * pixels, scaledPoints.get(), [](float v) { return v * kFileToSceneScale; });
    const auto mask = std::make_unique_for_overwrite<std::uint16_t[]>(pixels);
    for (std::size_t i = 0; i < pixels; ++i)
        mask[i] = classification[i] >= kFirstInvalidClass || self.m_fConfidenceFilter > confidence[i] ? 1 : 0;

    std::shared_ptr<Mesh> mesh = CreateInternalMesh(
        name, static_cast<std::int16_t>(width), static_cast<std::int16_t>(height), scaledPoints.get(), mask.get(),
        scaledTrafo.data(), color, colors, self.m_bAllowEmptyObjects != 0, self.m_nScanSkipVal);
    if (!mesh) {
        DebugOutput("ImportMeasurementInternal(): CreateInternalMesh() returned nullptr\n");
        return false;
    }
    self.AddMeshToScene(std::move(mesh), index);
    return true;
}

void CKV_ScenePaneCtrl::AddMeshToScene(std::shared_ptr<Mesh> mesh, std::int32_t index) {
    if (!m_hImportMutex) {
        m_vpMeshes.push_back(std::move(mesh));
        return;
    }
    const std::lock_guard lock(*m_hImportMutex);
    m_vPendingImports.push_back({index, std::move(mesh)});
}

void CKV_ScenePaneCtrl::EndParallelImport() {
    m_hImportMutex.reset();  // the host has joined its threads
    std::sort(m_vPendingImports.begin(), m_vPendingImports.end(), [](const StagedMesh& a, const StagedMesh& b) {
        return a.m_iIndex != b.m_iIndex ? a.m_iIndex < b.m_iIndex : std::less<>()(a.m_pMesh.get(), b.m_pMesh.get());
    });
    for (StagedMesh& staged : m_vPendingImports) m_vpMeshes.push_back(std::move(staged.m_pMesh));
    m_vPendingImports.clear();
}
