// Class MSR over the pcm format: errors become false, since its callers know no others.
#include "MSRDLL/Msr.h"

#include <algorithm>
#include <exception>
#include <iterator>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/PcmFile.h"

namespace MsrStorage {

struct MSR::Data {
    PcmMeasurement measurement;
};

MSR::MSR() : m_pData(std::make_unique<Data>()) {}
MSR::~MSR() = default;

bool MSR::Load(const wchar_t* path, bool, bool, bool) {
    m_pData->measurement = {};
    if (path == nullptr) return false;
    try {
        m_pData->measurement = ReadPcmFile(KV_ScenePane::PathBytes(path));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool MSR::Save(const wchar_t* path, bool, bool) {
    if (path == nullptr) return false;
    try {
        WritePcmFile(KV_ScenePane::PathBytes(path), ViewOf(m_pData->measurement));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool MSR::SaveTrafoMatrix(const wchar_t* path, const float* matrix) {
    if (path == nullptr || matrix == nullptr) return false;
    try {
        const std::string bytes = KV_ScenePane::PathBytes(path);
        // Read whole: a file that is damaged elsewhere must not get a fresh seal.
        PcmMeasurement measurement = ReadPcmFile(bytes);
        std::copy_n(matrix, std::size(measurement.m_fTrafo), measurement.m_fTrafo.begin());
        WritePcmFile(bytes, ViewOf(measurement));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

float* MSR::GetXYZ() { return m_pData->measurement.m_pPoints.get(); }
float* MSR::GetConfidence() { return m_pData->measurement.m_pConfidence.get(); }
std::uint8_t* MSR::GetPixelClassification() { return m_pData->measurement.m_pClassification.get(); }
float* MSR::GetTrafo() {
    PcmMeasurement& measurement = m_pData->measurement;
    return measurement.m_pPoints ? measurement.m_fTrafo.data() : nullptr;
}
int MSR::GetWidth() { return m_pData->measurement.m_iWidth; }
int MSR::GetHeight() { return m_pData->measurement.m_iHeight; }
std::uint32_t* MSR::GetColorData() { return m_pData->measurement.m_pColors.get(); }

}  // namespace MsrStorage
