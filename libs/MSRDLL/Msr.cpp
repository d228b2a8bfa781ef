// Class MSR over PcmFile.h: exceptions become false, and their reason is kept for MsrLastReason().
#include "MSRDLL/Msr.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <new>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/MsrLastReason.h"
#include "MSRDLL/PcmFile.h"

namespace MsrStorage {
namespace {

/// A plain array, without a destructor that could run before the last use at the end of a thread. The longest reason,
/// a step and the system's message, has about 100 bytes.
thread_local char t_reason[512] = "";

void SetReason(const char* reason) { (void)std::snprintf(t_reason, sizeof t_reason, "%s", reason); }

/// Runs one operation of class MSR and notes the reason when it fails.
/// @param path  checked for null before the operation runs
/// @return whether it succeeded
template <class Operation>
bool RunOperation(const wchar_t* path, Operation operation) {
    SetReason("");
    try {
        if (path == nullptr) throw PcmError("there is no path");
        operation(KV_ScenePane::PathBytes(path));
        return true;
    } catch (const PcmError& error) {
        SetReason(error.Explanation().c_str());
    } catch (const std::bad_alloc&) {
        SetReason("not enough memory");
    } catch (const std::exception& error) {
        SetReason(error.what());
    }
    return false;
}

}  // namespace

struct MSR::Data {
    PcmMeasurement measurement;
};

MSR::MSR() : m_pData(std::make_unique<Data>()) {}
MSR::~MSR() = default;

bool MSR::Load(const wchar_t* path, bool, bool, bool) {
    m_pData->measurement = {};
    return RunOperation(path, [this](const std::string& bytes) { m_pData->measurement = ReadPcmFile(bytes); });
}

bool MSR::Save(const wchar_t* path, bool, bool) {
    return RunOperation(path, [this](const std::string& bytes) { WritePcmFile(bytes, ViewOf(m_pData->measurement)); });
}

bool MSR::SaveTrafoMatrix(const wchar_t* path, const float* matrix) {
    return RunOperation(path, [matrix](const std::string& bytes) {
        if (matrix == nullptr) throw PcmError("there is no matrix");
        // The whole file is read: damage elsewhere in it must not be sealed under new checksums.
        PcmMeasurement measurement = ReadPcmFile(bytes);
        std::copy_n(matrix, std::size(measurement.m_fTrafo), measurement.m_fTrafo.begin());
        WritePcmFile(bytes, ViewOf(measurement));
    });
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

const char* MsrLastReason() { return MsrStorage::t_reason; }
