// The methods that bring a measurement file into the scene. The formats are read in io/GridReaders.h and
// io/MeasurementFile.h; a file that adds nothing says why in the debugger output.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "geometry/GridTriangulation.h"
#include "io/FileExtension.h"
#include "io/FileMessage.h"
#include "io/GridLimits.h"
#include "io/GridReaders.h"
#include "io/MeasurementFile.h"
#include "base/DebugOutput.h"
#include "platform/WaitCursor.h"

void CKV_ScenePaneCtrl::ImportScan(BSTR path, std::int32_t color) {
    m_strScanPath = path == nullptr ? L"" : path;
    const std::wstring extension = LowerCaseExtension(m_strScanPath);
    const WaitCursor wait(*m_pWindow);
    const auto colorRef = static_cast<std::uint32_t>(color);
    if (extension == L"xdt") ImportXdt(path, colorRef);
    if (extension == L"pax") ImportPax(path, colorRef);
    if (extension == L"pcm") ImportPcm(path, colorRef);
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::ImportPcm(const wchar_t* path, std::uint32_t color) {
    const MeasurementData data = LoadMeasurementFile(path, m_fConfidenceFilter, nullptr);
    if (data.m_iWidth == 0 || data.m_iHeight == 0)
        ReportFileError("ImportScan", path, "not a readable pcm file, or damaged");
    SetScanData(data.m_iWidth, data.m_iHeight, data.m_vXYZ.data(), data.m_vMask.data(), data.m_fTrafo.data(), color,
                data.m_vColors.empty() ? nullptr : data.m_vColors.data());
}

void CKV_ScenePaneCtrl::ImportPax(const wchar_t* path, std::uint32_t color) {
    try {
        const MeasurementGrid grid = ReadPaxFile(path);
        const std::vector<std::uint16_t> mask = ConfidenceMask(grid.m_vConfidence, m_fConfidenceFilter);
        SetScanData(grid.m_iWidth, grid.m_iHeight, grid.m_vPoints.data(), mask.data(), grid.m_fTrafo.data(), color,
                    nullptr);
    } catch (const MeasurementReadError& error) {
        ReportFileError("ImportPax", path, error.what());
    }
}

void CKV_ScenePaneCtrl::ImportXdt(const wchar_t* path, std::uint32_t color) {
    try {
        MeasurementGrid grid = ReadXdtFile(path);
        ScaleXdtPoints(grid.m_vPoints);
        const std::vector<std::uint16_t> mask = XdtMask(grid.m_vPoints);
        SetScanData(grid.m_iWidth, grid.m_iHeight, grid.m_vPoints.data(), mask.data(), nullptr, color, nullptr);
    } catch (const MeasurementReadError& error) {
        ReportFileError("ImportXdt", path, error.what());
    }
}

void CKV_ScenePaneCtrl::SetScanData(std::int32_t width, std::int32_t height, const float* points,
                                    const std::uint16_t* mask, const float* trafo, std::uint32_t color,
                                    const std::uint32_t* colors) {
    if (const std::string refusal = GridRefusal(width, height, m_nScanSkipVal); !refusal.empty()) {
        DebugOutput("SetScanData(): " + refusal + "\n");
        return;
    }
    std::shared_ptr<Mesh> mesh =
        CreateInternalMesh(m_strScanPath, static_cast<std::int16_t>(width), static_cast<std::int16_t>(height), points,
                           mask, trafo, color, colors, m_bAllowEmptyObjects != 0, m_nScanSkipVal);
    if (!mesh) {
        DebugOutput("SetScanData(): CreateInternalMesh() returned nullptr\n");
        return;
    }
    AddMeshToScene(std::move(mesh), -1);
}
