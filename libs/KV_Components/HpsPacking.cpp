// Blocks by zstd, numbers as classes and extra bits.
#include "HpsPacking.h"

#include <zstd.h>

#include <algorithm>
#include <limits>
#include <new>

#include "files/HugePages.h"

namespace KvComponents::Hps {

namespace {

/// Releases contexts of zstd.
struct FreeContext {
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

/// One zstd frame.
ByteVector Compress(ByteSpan bytes, int level) {
    const std::unique_ptr<ZSTD_CCtx, FreeContext> context(ZSTD_createCCtx());
    if (!context) throw std::bad_alloc();
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_compressionLevel, level);
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_contentSizeFlag, 0);  // the block has the size already
    ByteVector packed(ZSTD_compressBound(bytes.size()));
    const std::size_t size = ZSTD_compress2(context.get(), packed.data(), packed.size(), bytes.data(), bytes.size());
    if (ZSTD_isError(size)) throw std::bad_alloc();
    packed.resize(size);
    return packed;
}

}  // namespace

void* AllocateLarge(std::uint64_t size) {
    using FileStorage::kHugePage;
    if (size > std::numeric_limits<std::size_t>::max() - kHugePage) throw std::bad_alloc();
    const bool isLarge = size >= kHugePage;
    // Whole huge pages: a page that is shared with another allocation would stay a small one.
    const std::uint64_t allocated = isLarge ? (size + kHugePage - 1) / kHugePage * kHugePage : size;
    void* const memory =
        isLarge ? std::aligned_alloc(kHugePage, allocated) : std::malloc(std::max<std::size_t>(allocated, 1));
    if (memory == nullptr) throw std::bad_alloc();
    FileStorage::AdviseHugePages(memory, allocated);
    return memory;
}

void AppendBlock(ByteVector& to, ByteSpan bytes, Redundancy redundancy) {
    // A match by chance costs more bits than its bytes cost by the histogram alone, and the lowest level finds the
    // fewest matches.
    const ByteVector packed = Compress(bytes, redundancy == Redundancy::kMatches ? 9 : 1);
    const bool isSmaller = packed.size() < bytes.size();
    const ByteSpan stored = isSmaller ? ByteSpan(packed) : bytes;
    AppendValue<std::uint64_t>(to, bytes.size());
    AppendValue<std::uint64_t>(to, stored.size());
    to.insert(to.end(), stored.begin(), stored.end());
}

RawArray<std::byte> ReadBlock(ByteReader& from, std::uint64_t maxSize) {
    const auto size = from.ReadValue<std::uint64_t>();
    const auto storedSize = from.ReadValue<std::uint64_t>();
    if (size > maxSize || storedSize > size) throw DamagedData("impossible length of a block");
    const ByteSpan stored = from.Read(storedSize);
    RawArray<std::byte> bytes(size + kBlockPadding);
    std::memset(bytes.data() + size, 0, kBlockPadding);
    if (storedSize == size) {  // stored without compression
        if (size > 0) std::memcpy(bytes.data(), stored.data(), size);
        return bytes;
    }
    // The frame must fill the announced size exactly.
    const std::unique_ptr<ZSTD_DCtx, FreeContext> context(ZSTD_createDCtx());
    if (!context) throw std::bad_alloc();
    const std::size_t got = ZSTD_decompressDCtx(context.get(), bytes.data(), size, stored.data(), stored.size());
    if (ZSTD_isError(got) || got != size) throw DamagedData("a block does not decompress");
    return bytes;
}

void NumberWriter::Put(std::size_t plane, std::uint32_t number, std::uint32_t scale) {
    const std::uint32_t kind = ClassOf(number);
    m_planes[plane].push_back(static_cast<std::uint8_t>(kind + 2 * scale));
    const std::uint32_t count = ExtraBitCount(kind);
    m_uPending |= static_cast<std::uint64_t>(number - SmallestOf(kind)) << m_uPendingCount;
    m_uPendingCount += count;
    // Written in words of 32 bits: a number has at most 30 extra bits, so that 64 bits never overflow.
    if (m_uPendingCount < 32) return;
    AppendValue(m_vBits, static_cast<std::uint32_t>(m_uPending));
    m_uPending >>= 32;
    m_uPendingCount -= 32;
}

void NumberWriter::Append(ByteVector& to) {
    for (; m_uPendingCount > 0; m_uPendingCount -= std::min(m_uPendingCount, 8u)) {
        m_vBits.push_back(static_cast<std::byte>(m_uPending));
        m_uPending >>= 8;
    }
    for (const auto& plane : m_planes) AppendBlock(to, std::as_bytes(std::span(plane)), Redundancy::kHistogram);
    AppendBlock(to, m_vBits, Redundancy::kHistogram);
}

NumberReader::NumberReader(ByteReader& from, std::size_t planeCount, std::uint64_t maxCount) {
    std::uint64_t numbers = 0;
    for (Plane& plane : std::span(m_planes).first(planeCount)) {
        plane.bytes = ReadBlock(from, maxCount);
        plane.at = reinterpret_cast<const std::uint8_t*>(plane.bytes.data());
        plane.end = plane.at + (plane.bytes.size() - kBlockPadding);
        numbers += plane.bytes.size() - kBlockPadding;
    }
    m_bits = ReadBlock(from, 4 * numbers);  // 32 bits per number at most
    m_uBitCount = 8 * (m_bits.size() - kBlockPadding);
}

void NumberReader::ExpectEnd() const {
    for (const Plane& plane : m_planes)
        if (plane.at != plane.end) throw DamagedData("too many numbers");
    if (m_uBit > m_uBitCount || m_uBitCount - m_uBit >= 8) throw DamagedData("another number of bits");
}

}  // namespace KvComponents::Hps
