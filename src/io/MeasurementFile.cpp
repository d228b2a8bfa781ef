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

/// Whether there are all arrays that every measurement has: one that was never loaded has none.
bool IsLoaded(const MeasurementArrays& arrays) {
    return arrays.m_pPoints && arrays.m_pConfidence && arrays.m_pClassification && arrays.m_pTrafo;
}

/// The arrays of the library in scene units.
MeasurementData ReadMeasurement(MsrStorage::MSR& msr, float confidenceLimit) {
    const MeasurementArrays arrays = ArraysOf(msr);
    if (!IsLoaded(arrays)) return Refused(kNoMeasurementReason);
    MeasurementData data =
        MakeMeasurementData(arrays, {.m_eScale = GridScale::Thousandths, .m_fConfidenceLimit = confidenceLimit});
    CopyColors(data);
    return data;
}

}  // namespace

MeasurementArrays ArraysOf(MsrStorage::MSR& measurement) {
    return {.m_iWidth = measurement.GetWidth(),
            .m_iHeight = measurement.GetHeight(),
            .m_pPoints = measurement.GetXYZ(),
            .m_pConfidence = measurement.GetConfidence(),
            .m_pClassification = measurement.GetPixelClassification(),
            .m_pTrafo = measurement.GetTrafo(),
            .m_pColors = measurement.GetColorData()};
}

std::string LoadMeasurement(const wchar_t* path, MsrStorage::MSR& measurement) {
    // The three flags choose parts of the file in libraries of other sites; ours ignores them.
    if (!measurement.Load(path, false, true, false)) return LastMeasurementReason();
    return IsLoaded(ArraysOf(measurement)) ? "" : kNoMeasurementReason;
}

MeasurementData LoadMeasurementFile(const wchar_t* path, float confidenceLimit, MsrStorage::MSR* measurement) {
    std::optional<MsrStorage::MSR> local;
    MsrStorage::MSR& msr = measurement ? *measurement : local.emplace();
    if (path != nullptr)
        if (std::string refusal = LoadMeasurement(path, msr); !refusal.empty()) return Refused(std::move(refusal));
    return ReadMeasurement(msr, confidenceLimit);
}
