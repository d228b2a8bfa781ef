// Any bytes as a pcm file: refused, or a measurement that is the same to the bit when it is written and read again.
// A mutated file fails its checksums, so each input is tried a second time with repaired ones.
#include <cstring>

#include "MSRDLL/PcmFile.h"
#include "RepairChecksums.h"
#include "Require.h"

using namespace MsrStorage;

namespace {

template <class T>
void RequireSame(const T* a, const T* b, std::size_t count) {
    Require((a == nullptr) == (b == nullptr));
    Require(a == nullptr || std::memcmp(a, b, count * sizeof(T)) == 0);
}

void ReadWriteAndReadAgain(const std::vector<std::byte>& bytes) {
    PcmMeasurement first;
    try {
        first = ReadPcm(bytes);
    } catch (const PcmError&) {
        return;
    }
    const auto pixels = static_cast<std::size_t>(first.m_iWidth) * static_cast<std::size_t>(first.m_iHeight);
    Require(pixels * 17 / kPcmMaxExpansion <= bytes.size());  // in proportion to the file
    const PcmMeasurement second = ReadPcm(WritePcm(ViewOf(first)));
    Require(first.m_iWidth == second.m_iWidth && first.m_iHeight == second.m_iHeight);
    RequireSame(first.m_pPoints.get(), second.m_pPoints.get(), 3 * pixels);
    RequireSame(first.m_pConfidence.get(), second.m_pConfidence.get(), pixels);
    RequireSame(first.m_pClassification.get(), second.m_pClassification.get(), pixels);
    RequireSame(first.m_pColors.get(), second.m_pColors.get(), pixels);
    RequireSame(first.m_fTrafo.data(), second.m_fTrafo.data(), first.m_fTrafo.size());
    Require(first.m_vForeign.size() == second.m_vForeign.size());
    for (std::size_t i = 0; i < first.m_vForeign.size(); ++i)
        Require(first.m_vForeign[i].m_vBytes == second.m_vForeign[i].m_vBytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kFileSizeOffset = 24;
    (void)CheckTwice(data, size, kFileSizeOffset, ReadWriteAndReadAgain);
    return 0;
}
