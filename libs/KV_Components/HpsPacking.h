// The entropy coding of hps files: blocks of bytes through zstd, and numbers as a class byte with extra bits, so that
// zstd sees only the bytes whose histogram is skewed. Byte by byte in docs/formats/hps.md.
#pragma once
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

namespace KvComponents::Hps {

static_assert(std::endian::native == std::endian::little, "numbers are copied between file and memory unchanged");

/// Packed bytes that are cut short, or that do not unpack to the announced counts.
class DamagedData : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using ByteVector = std::vector<std::byte>;
using ByteSpan = std::span<const std::byte>;

/// Greatest number of bytes in memory per byte of a file. A reader refuses a file that announces more, so that a small
/// file cannot make it allocate much; a writer pads data that compresses better than that with zeros.
inline constexpr std::uint64_t kMaxExpansion = 64;

/// Counts of vertices, triangles and texture coordinates, and sizes that callers receive, are signed 32-bit numbers.
inline constexpr std::uint32_t kMaxCount = std::numeric_limits<std::int32_t>::max();

/// Memory that is not cleared, in huge pages where the system has them (files/HugePages.h). To be released by
/// std::free(). @throws std::bad_alloc
[[nodiscard]] void* AllocateLarge(std::uint64_t size);

/// An array whose elements are not initialised: it is about to be written as a whole.
template <class T>
class RawArray {
public:
    RawArray() = default;
    explicit RawArray(std::size_t size)
        : m_pValues(static_cast<T*>(AllocateLarge(std::uint64_t{sizeof(T)} * size))), m_uSize(size) {}
    [[nodiscard]] T* data() { return m_pValues.get(); }
    [[nodiscard]] const T* data() const { return m_pValues.get(); }
    [[nodiscard]] std::size_t size() const { return m_uSize; }
    [[nodiscard]] T& operator[](std::size_t i) { return m_pValues.get()[i]; }
    [[nodiscard]] const T& operator[](std::size_t i) const { return m_pValues.get()[i]; }
    [[nodiscard]] std::span<const T> Span() const { return {data(), m_uSize}; }

private:
    struct Free {
        void operator()(T* memory) const { std::free(memory); }
    };
    std::unique_ptr<T, Free> m_pValues;
    std::size_t m_uSize = 0;
};

template <class T>
void AppendValue(ByteVector& to, T value) {
    to.resize(to.size() + sizeof value);
    std::memcpy(&to[to.size() - sizeof value], &value, sizeof value);
}

/// Reads bytes from front to back; throws DamagedData where they end too early. The bytes must outlive it.
class ByteReader {
public:
    explicit ByteReader(ByteSpan bytes) : m_rest(bytes) {}
    [[nodiscard]] ByteSpan Read(std::uint64_t size) {
        if (size > m_rest.size()) throw DamagedData("cut short");
        const ByteSpan bytes = m_rest.first(static_cast<std::size_t>(size));
        m_rest = m_rest.subspan(bytes.size());
        return bytes;
    }
    template <class T>
    [[nodiscard]] T ReadValue() {
        T value;
        std::memcpy(&value, Read(sizeof value).data(), sizeof value);
        return value;
    }
    [[nodiscard]] ByteSpan Rest() const { return m_rest; }

private:
    ByteSpan m_rest;
};

/// What kind of redundancy bytes have: it decides how hard the compressor looks for matches.
enum class Redundancy {
    kMatches,   ///< sequences of bytes repeat
    kHistogram  ///< no sequence repeats but by chance; some bytes are more frequent than others
};
/// Appends a block: both lengths, then the bytes, compressed where that makes them fewer.
void AppendBlock(ByteVector& to, ByteSpan bytes, Redundancy redundancy);

/// NumberReader checks for the end once per three numbers of up to 30 bits, which it loads 8 bytes at a time: it can
/// read this many bytes after the end before the check throws.
inline constexpr std::size_t kBlockPadding = 16;
/// The bytes of a block, followed by kBlockPadding zeros that size() includes.
/// @param maxSize  greatest number of bytes in the block; checked before memory is allocated
/// @throws DamagedData
[[nodiscard]] RawArray<std::byte> ReadBlock(ByteReader& from, std::uint64_t maxSize);

// ---- mapping of residuals to numbers of small magnitude; for single numbers and for vectors of lanes

/// Zigzag encoding of a signed residual (two's complement): 0, -1, 1, -2, 2... become 0, 1, 2, 3, 4...
[[nodiscard]] constexpr std::uint32_t ZigzagEncode(std::uint32_t difference) {
    return (difference << 1) ^ (0u - (difference >> 31));
}
/// @tparam Bits  std::uint32_t, or a vector of them
template <class Bits>
[[nodiscard]] constexpr Bits ZigzagDecode(Bits encoded) {
    return (encoded >> 1) ^ (0u - (encoded & 1u));
}

/// The bits of floats, remapped so that unsigned order is the order of the values: neighbouring floats differ by 1.
/// FloatBits() is the inverse. Every bit pattern is mapped, those of NaNs too.
template <class Bits>
[[nodiscard]] constexpr Bits OrderedBits(Bits bits) {
    return bits ^ ((0u - (bits >> 31)) | 0x80000000u);
}
template <class Bits>
[[nodiscard]] constexpr Bits FloatBits(Bits ordered) {
    return ordered ^ ((0u - ((ordered >> 31) ^ 1u)) | 0x80000000u);
}

/// The exponent field of a float: log2 of the distance to the next float, plus a constant.
[[nodiscard]] constexpr std::uint32_t ExponentOf(std::uint32_t bits) { return (bits >> 23) & 0xFF; }

// ---- classes: the magnitude of a number, as one byte

/// The class of a number. 0 and 1 have one each; a longer number's class is its bit length and its second highest bit.
[[nodiscard]] constexpr std::uint32_t ClassOf(std::uint32_t number) {
    if (number < 2) return number;
    const auto length = static_cast<std::uint32_t>(std::bit_width(number));
    return 2 * length - 2 + ((number >> (length - 2)) & 1);
}
inline constexpr std::uint32_t kClassCount = 64;
/// Number of extra bits, the low bits that the class does not determine.
[[nodiscard]] constexpr std::uint32_t ExtraBitCount(std::uint32_t kind) { return kind < 4 ? 0 : kind / 2 - 1; }
/// The smallest number of a class.
[[nodiscard]] constexpr std::uint32_t SmallestOf(std::uint32_t kind) {
    return kind < 2 ? kind : (2 + (kind & 1)) << (kind / 2 - 1);
}

/// Writes numbers in planes, one plane per coordinate or role. The classes of each plane become a block of bytes, the
/// extra bits of all planes one more block, in the order of the Put() calls.
class NumberWriter {
public:
    explicit NumberWriter(std::size_t planeCount) : m_planes(planeCount) {}
    /// Appends a number to a plane.
    /// @param scale  shifts the class by twice this. With the exponent of the predicted float, residuals of equal
    ///               absolute size get equal classes although the distance between neighbouring floats differs
    void Put(std::size_t plane, std::uint32_t number, std::uint32_t scale = 0);
    /// Appends all blocks. Once, last.
    void Append(ByteVector& to);

private:
    std::vector<std::vector<std::uint8_t>> m_planes;
    ByteVector m_vBits;
    std::uint64_t m_uPending = 0;  ///< bits not yet in m_vBits, the oldest one lowest
    unsigned m_uPendingCount = 0;
};

/// Reads what NumberWriter wrote, in the order of its Put() calls. All members throw DamagedData.
class NumberReader {
public:
    static constexpr std::size_t kMaxPlanes = 4;

    NumberReader() = default;
    /// Unpacks the blocks.
    /// @param maxCount  greatest number of numbers per plane; checked before memory is allocated
    NumberReader(ByteReader& from, std::size_t planeCount, std::uint64_t maxCount);

    /// The next number of a plane.
    [[nodiscard]] std::uint32_t Read(std::size_t plane, std::uint32_t scale = 0) {
        if (m_uBit > m_uBitCount) throw DamagedData("too few bits");
        return ReadNext(m_planes[plane], scale);
    }
    /// The next number of each of the first three planes. kBlockPadding is the reason why one check of the end is
    /// enough.
    template <class Scales>
    [[nodiscard]] std::array<std::uint32_t, 3> ReadThree(const Scales& scales) {
        if (m_uBit > m_uBitCount) throw DamagedData("too few bits");
        const std::uint32_t first = ReadNext(m_planes[0], scales[0]);
        const std::uint32_t second = ReadNext(m_planes[1], scales[1]);
        return {first, second, ReadNext(m_planes[2], scales[2])};
    }
    /// Throws unless all numbers and all bits were read, except the padding bits of the last byte.
    void ExpectEnd() const;

private:
    struct Plane {
        RawArray<std::byte> bytes;
        const std::uint8_t* at = nullptr;
        const std::uint8_t* end = nullptr;
    };
    struct Class {
        std::uint32_t smallest, bits;  ///< smallest number, number of extra bits
    };
    static constexpr std::array<Class, kClassCount> kClasses = [] {
        std::array<Class, kClassCount> classes{};
        for (std::uint32_t i = 0; i < kClassCount; ++i) classes[i] = {SmallestOf(i), ExtraBitCount(i)};
        return classes;
    }();

    [[nodiscard]] std::uint32_t ReadNext(Plane& plane, std::uint32_t scale) {
        if (plane.at == plane.end) throw DamagedData("too few numbers");
        const auto kind = static_cast<std::uint8_t>(*plane.at++ - 2 * scale);
        if (kind >= kClassCount) throw DamagedData("a number of more than 32 bits");
        std::uint64_t bits;
        std::memcpy(&bits, m_bits.data() + (m_uBit >> 3), sizeof bits);
        const std::uint64_t extra = (bits >> (m_uBit & 7)) & ((std::uint64_t{1} << kClasses[kind].bits) - 1);
        m_uBit += kClasses[kind].bits;
        return kClasses[kind].smallest + static_cast<std::uint32_t>(extra);
    }

    std::array<Plane, kMaxPlanes> m_planes;
    RawArray<std::byte> m_bits;
    std::uint64_t m_uBit = 0, m_uBitCount = 0;  ///< next bit to read, bits in the block
};

}  // namespace KvComponents::Hps
