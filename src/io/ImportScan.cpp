// The methods that bring a measurement file into the scene. The formats are read in io/GridReaders.h and
// io/MeasurementFile.h; a file that adds nothing gives the reason in the debugger output.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/GridTriangulation.h"
#include "io/FileExtension.h"
#include "io/FileMessage.h"
#include "io/GridLimits.h"
#include "io/GridReaders.h"
#include "io/MeasurementData.h"
#include "io/MeasurementFile.h"
#include "io/MeasurementReason.h"
#include "platform/WaitCursor.h"

// One function per format: read, bring to scene units, pass on.
namespace {

/// The reason of a refused file comes from the measurement library.
void ImportPcm(CKV_ScenePaneCtrl& control, const wchar_t* path, const MeasurementOrigin& origin) {
    const MeasurementData data = LoadMeasurementFile(path, control.m_fConfidenceFilter, nullptr);
    if (data.m_iWidth == 0 || data.m_iHeight == 0)
        ReportFileError("ImportScan", path, data.m_sRefusal.empty() ? kNoMeasurementReason : data.m_sRefusal);
    // A file that could not be read is an empty grid: where empty objects are allowed, it still adds one, so that the
    // host's indices match its list of files.
    control.SetScanData(data, origin);
}

/// Points and translation of pax are in scene units: no scale.
void ImportPax(CKV_ScenePaneCtrl& control, const wchar_t* path, const MeasurementOrigin& origin) {
    try {
        const MeasurementGrid grid = ReadPaxFile(path);
        const MeasurementArrays arrays = {.m_iWidth = grid.m_iWidth,
                                          .m_iHeight = grid.m_iHeight,
                                          .m_pPoints = grid.m_vPoints.data(),
                                          .m_pConfidence = grid.m_vConfidence.data(),
                                          .m_pTrafo = grid.m_fTrafo.data()};
        control.SetScanData(MakeMeasurementData(arrays, {.m_fConfidenceLimit = control.m_fConfidenceFilter}), origin);
    } catch (const MeasurementReadError& error) {
        ReportFileError("ImportPax", path, error.what());
    }
}

/// xdt has points alone. Their scale is a division, in place in the reader's array.
void ImportXdt(CKV_ScenePaneCtrl& control, const wchar_t* path, const MeasurementOrigin& origin) {
    try {
        MeasurementGrid grid = ReadXdtFile(path);
        ScaleXdtPoints(grid.m_vPoints);
        const MeasurementArrays arrays = {
            .m_iWidth = grid.m_iWidth, .m_iHeight = grid.m_iHeight, .m_pPoints = grid.m_vPoints.data()};
        control.SetScanData(MakeMeasurementData(arrays, {.m_eMask = GridMask::EqualNegatives}), origin);
    } catch (const MeasurementReadError& error) {
        ReportFileError("ImportXdt", path, error.what());
    }
}

}  // namespace

void CKV_ScenePaneCtrl::ImportScan(BSTR path, std::int32_t color) {
    m_strScanPath = path == nullptr ? L"" : path;
    const std::wstring extension = LowerCaseExtension(m_strScanPath);
    const WaitCursor wait(*m_pWindow);
    const MeasurementOrigin origin = {.m_sName = m_strScanPath, .m_uColor = static_cast<std::uint32_t>(color)};
    if (extension == L"xdt") ImportXdt(*this, path, origin);
    if (extension == L"pax") ImportPax(*this, path, origin);
    if (extension == L"pcm") ImportPcm(*this, path, origin);
    InvalidateControl(true);
}

// Reads settings of the control and calls AddMeshToScene(), which is the only step under the import mutex.
bool CKV_ScenePaneCtrl::SetScanData(const MeasurementData& data, const MeasurementOrigin& origin) {
    if (const std::string refusal = GridRefusal(data.m_iWidth, data.m_iHeight, m_nScanSkipVal); !refusal.empty()) {
        DebugOutput(std::string(origin.m_pRefusedBy) + "(): " + refusal + "\n");
        return false;
    }
    std::shared_ptr<Mesh> mesh =
        CreateInternalMesh(origin.m_sName, static_cast<std::int16_t>(data.m_iWidth),
                           static_cast<std::int16_t>(data.m_iHeight), data.Points(), data.m_vMask.data(), data.Trafo(),
                           origin.m_uColor, data.Colors(), m_bAllowEmptyObjects != 0, m_nScanSkipVal);
    if (!mesh) {
        DebugOutput(std::string(origin.m_pMeshedBy) + "(): CreateInternalMesh() returned nullptr\n");
        return false;
    }
    AddMeshToScene(std::move(mesh), origin.m_iIndex);
    return true;
}
