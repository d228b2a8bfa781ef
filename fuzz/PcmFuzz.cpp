// Any bytes as a pcm file: refused, or a measurement that comes back to the bit when it is written and read again.
// A mutated file fails its checksums at once, so each input is tried a second time with seals that fit.
#include <xxhash.h>

#include <cstdlib>
#include <cstring>

#include "MSRDLL/PcmFile.h"

using namespace MsrStorage;

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kHeaderSize = 32, kEntrySize = 24, kChecksumSize = 8;

void Put(Bytes& bytes, std::size_t at, std::uint64_t value) { std::memcpy(&bytes[at], &value, sizeof value); }

std::uint64_t Get(const Bytes& bytes, std::size_t at) {
    std::uint64_t value;
    std::memcpy(&value, &bytes[at], sizeof value);
    return value;
}

/// Puts in right what only a writer could: the file's size, every section's checksum and the table's.
void Seal(Bytes& bytes) {
    if (bytes.size() < kHeaderSize) return;
    std::uint32_t count = 0;
    std::memcpy(&count, &bytes[12], sizeof count);
    if (count > (bytes.size() - kHeaderSize) / kEntrySize) return;
    const std::size_t tableEnd = kHeaderSize + count * kEntrySize;
    if (bytes.size() - tableEnd < kChecksumSize) return;
    Put(bytes, 24, bytes.size());
    std::size_t at = tableEnd + kChecksumSize;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = kHeaderSize + i * kEntrySize;
        const std::uint64_t size = Get(bytes, entry + 8);
        if (size > bytes.size() - at) break;
        Put(bytes, entry + 16, XXH3_64bits(bytes.data() + at, size));
        at += size;
    }
    Put(bytes, tableEnd, XXH3_64bits(bytes.data(), tableEnd));
}

template <class T>
void ExpectSame(const T* a, const T* b, std::size_t count) {
    if ((a == nullptr) != (b == nullptr)) std::abort();
    if (a != nullptr && std::memcmp(a, b, count * sizeof(T)) != 0) std::abort();
}

void ReadWriteAndReadAgain(const Bytes& bytes) {
    PcmMeasurement first;
    try {
        first = ReadPcm(bytes);
    } catch (const PcmError&) {
        return;
    }
    const auto pixels = static_cast<std::size_t>(first.m_iWidth) * static_cast<std::size_t>(first.m_iHeight);
    if (pixels * 17 / kPcmMaxExpansion > bytes.size()) std::abort();  // out of proportion
    const PcmMeasurement second = ReadPcm(WritePcm(ViewOf(first)));
    if (first.m_iWidth != second.m_iWidth || first.m_iHeight != second.m_iHeight) std::abort();
    ExpectSame(first.m_pPoints.get(), second.m_pPoints.get(), 3 * pixels);
    ExpectSame(first.m_pConfidence.get(), second.m_pConfidence.get(), pixels);
    ExpectSame(first.m_pClassification.get(), second.m_pClassification.get(), pixels);
    ExpectSame(first.m_pColors.get(), second.m_pColors.get(), pixels);
    ExpectSame(first.m_fTrafo.data(), second.m_fTrafo.data(), first.m_fTrafo.size());
    if (first.m_vForeign.size() != second.m_vForeign.size()) std::abort();
    for (std::size_t i = 0; i < first.m_vForeign.size(); ++i) {
        if (first.m_vForeign[i].m_vBytes != second.m_vForeign[i].m_vBytes) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto* from = reinterpret_cast<const std::byte*>(data);
    Bytes bytes(from, from + size);
    ReadWriteAndReadAgain(bytes);
    Seal(bytes);
    ReadWriteAndReadAgain(bytes);
    return 0;
}
