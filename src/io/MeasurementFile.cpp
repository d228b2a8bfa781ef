// A pcm file from the library's arrays to the scene's. The rules of scaling and masking are in io/MeasurementData.h.
#include "io/MeasurementFile.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "MSRDLL/Msr.h"
#include "base/HugePages.h"
#include "io/MeasurementReason.h"

namespace {

/// An empty measurement with the reason.
MeasurementData Refused(std::string reason) {
    MeasurementData data;
    data.m_sRefusal = std::move(reason);
    return data;
}

/// The colours move to the result: the library frees its own with the measurement.
void CopyColors(MeasurementData& data) {
    const std::uint32_t* const colors = std::exchange(data.m_pSourceColors, nullptr);
    if (colors == nullptr) return;
    const std::size_t pixels = data.m_vMask.size();
    ReserveInHugePages(data.m_vColors, pixels);
    data.m_vColors.assign(colors, colors + pixels);
}

/// The arrays of the library in scene units.
MeasurementData ReadMeasurement(MsrStorage::MSR& msr, float confidenceLimit) {
    const MeasurementArrays arrays = {.m_iWidth = msr.GetWidth(),
                                      .m_iHeight = msr.GetHeight(),
                                      .m_pPoints = msr.GetXYZ(),
                                      .m_pConfidence = msr.GetConfidence(),
                                      .m_pClassification = msr.GetPixelClassification(),
                                      .m_pTrafo = msr.GetTrafo(),
                                      .m_pColors = msr.GetColorData()};
    // A measurement that was never loaded has no arrays.
    if (!arrays.m_pPoints || !arrays.m_pConfidence || !arrays.m_pClassification || !arrays.m_pTrafo)
        return Refused(kNoMeasurementReason);
    MeasurementData data =
        MakeMeasurementData(arrays, {.m_eScale = GridScale::Thousandths, .m_fConfidenceLimit = confidenceLimit});
    CopyColors(data);
    return data;
}

}  // namespace

MeasurementData LoadMeasurementFile(const wchar_t* path, float confidenceLimit, MsrStorage::MSR* measurement) {
    std::optional<MsrStorage::MSR> local;
    MsrStorage::MSR& msr = measurement ? *measurement : local.emplace();
    // The three flags choose parts of the file in libraries of other sites; ours ignores them.
    if (path != nullptr && !msr.Load(path, false, true, false)) return Refused(LastMeasurementReason());
    return ReadMeasurement(msr, confidenceLimit);
}
