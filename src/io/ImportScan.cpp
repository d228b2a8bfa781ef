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
#include "io/FiniteCoordinates.h"
#include "io/GridLimits.h"
#include "io/GridReaders.h"
#include "io/MeasurementData.h"
#include "io/MeasurementFile.h"
#include "io/MeasurementReason.h"
#include "io/RecordShare.h"
#include "platform/WaitCursor.h"

// One function per format: read, bring to scene units, pass on.
namespace {

/// The reason of a refused file comes from the measurement library.
void ImportPcm(CKV_ScenePaneCtrl& control, const wchar_t* path, const MeasurementOrigin& origin) {
    MeasurementData data = LoadMeasurementFile(path, control.m_fConfidenceFilter, nullptr);
    if ((data.m_iWidth == 0 || data.m_iHeight == 0) && data.m_sRefusal.empty()) data.m_sRefusal = kNoMeasurementReason;
    // A file that could not be read is an empty grid: where empty objects are allowed, it still adds one, so that the
    // host's indices match its list of files.
    control.SetScanData(data, origin);
}

/// Points and translation of pax are in scene units: no scale.
void ImportPax(CKV_ScenePaneCtrl& control, const wchar_t* path, const MeasurementOrigin& origin) {
    try {
        const MeasurementGrid grid = ReadPaxFile(path);
        // The zeros in the place of a transform would move all points to the origin.
        if (!grid.m_bHasTrafo) throw MeasurementReadError("ends before the end of its transform");
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
        const bool isAdded =
            control.SetScanData(MakeMeasurementData(arrays, {.m_eMask = GridMask::EqualNegatives}), origin);
        if (isAdded) ReportMissingPixels(path, grid.m_pixelShare);
    } catch (const MeasurementReadError& error) {
        ReportFileError("ImportXdt", path, error.what());
    }
}

void ImportByExtension(CKV_ScenePaneCtrl& control, const MeasurementOrigin& origin) {
    const wchar_t* const path = origin.m_sName.c_str();
    if (origin.m_sName.empty()) return ReportFileError("ImportScan", path, "the path is empty");
    const std::wstring extension = LowerCaseExtension(path);
    if (extension == L"xdt") return ImportXdt(control, path, origin);
    if (extension == L"pax") return ImportPax(control, path, origin);
    if (extension == L"pcm") return ImportPcm(control, path, origin);
    ReportFileError("ImportScan", path, "unknown file type, not one of xdt, pax and pcm");
}

/// Why a measurement gave no mesh.
std::string NoMeshReason(const MeasurementData& data) {
    if (data.m_iWidth == 0 || data.m_iHeight == 0) return "its grid has no pixel";
    return data.m_sMaskReason.empty() ? "its valid points form no triangle" : data.m_sMaskReason;
}

}  // namespace

void CKV_ScenePaneCtrl::ImportScan(BSTR path, std::int32_t color) {
    m_strScanPath = TextOrEmpty(path);
    const WaitCursor wait(*m_pWindow);
    const MeasurementOrigin origin = {.m_sName = m_strScanPath,
                                      .m_uColor = static_cast<std::uint32_t>(color),
                                      .m_pRefusedBy = "ImportScan",
                                      .m_uThreads = ImportThreads()};
    try {
        ImportByExtension(*this, origin);
    } catch (...) {
        ReportCaughtFileError("ImportScan", m_strScanPath);
        throw;
    }
    InvalidateControl(true);
}

// Reads settings of the control and calls AddMeshToScene(), which is the only step under the import mutex.
bool CKV_ScenePaneCtrl::SetScanData(const MeasurementData& data, const MeasurementOrigin& origin) {
    const auto report = [&](const std::string& reason) {
        ReportFileError(origin.m_pRefusedBy, origin.m_sName, reason);
    };
    const std::string refusal = GridRefusal(data.m_iWidth, data.m_iHeight, m_nScanSkipVal);
    if (!data.m_sRefusal.empty())
        report(data.m_sRefusal);
    else if (!refusal.empty())
        report(refusal);
    if (!refusal.empty()) return false;  // the triangulation must not run
    std::shared_ptr<Mesh> mesh = CreateInternalMesh(origin.m_sName, static_cast<std::int16_t>(data.m_iWidth),
                                                    static_cast<std::int16_t>(data.m_iHeight), data.Points(),
                                                    data.m_vMask.data(), data.Trafo(), origin.m_uColor, data.Colors(),
                                                    m_bAllowEmptyObjects != 0, m_nScanSkipVal, origin.m_uThreads);
    if (!mesh) {
        if (data.m_sRefusal.empty()) report(NoMeshReason(data));
        DebugOutput(std::string(origin.m_pMeshedBy) + "(): CreateInternalMesh() returned nullptr\n");
        return false;
    }
    mesh->m_optImportTrafo = mesh->m_Trafo;
    AddMeshToScene(std::move(mesh), origin.m_iIndex);
    ReportNotFinite(origin.m_sName, data.m_uNotFinite);
    return true;
}
