// How numbers and bytes are packed in hps files; byte by byte in docs/formats/hps.md.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

namespace KvComponents::Hps {

static_assert(std::endian::native == std::endian::little, "values are moved between file and memory as they stand");

/// Bytes that do not hold what they announce.
class DamagedData : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using ByteVector = std::vector<std::byte>;
using ByteSpan = std::span<const std::byte>;

/// What a file may announce in memory for each of its bytes. A writer fills up with zeros what compresses further than
/// that, so that a reader never takes memory out of proportion to a file.
inline constexpr std::uint64_t kMaxExpansion = 256;

/// An array that is not cleared first: the pages of a large one are touched once, by what fills it.
template <class T>
class RawArray {
public:
    RawArray() = default;
    explicit RawArray(std::size_t size) : m_pValues(std::make_unique_for_overwrite<T[]>(size)), m_uSize(size) {}
    [[nodiscard]] T* data() { return m_pValues.get(); }
    [[nodiscard]] const T* data() const { return m_pValues.get(); }
    [[nodiscard]] std::size_t size() const { return m_uSize; }
    [[nodiscard]] T& operator[](std::size_t i) { return m_pValues[i]; }
    [[nodiscard]] const T& operator[](std::size_t i) const { return m_pValues[i]; }
    [[nodiscard]] std::span<const T> Span() const { return {data(), m_uSize}; }

private:
    std::unique_ptr<T[]> m_pValues;
    std::size_t m_uSize = 0;
};

template <class T>
void AppendValue(ByteVector& to, T value) {
    to.resize(to.size() + sizeof value);
    std::memcpy(&to[to.size() - sizeof value], &value, sizeof value);
}

/// Walks through bytes; throws DamagedData where they end too early.
class ByteReader {
public:
    explicit ByteReader(ByteSpan bytes) : m_rest(bytes) {}
    [[nodiscard]] ByteSpan Take(std::uint64_t size) {
        if (size > m_rest.size()) throw DamagedData("cut short");
        const ByteSpan taken = m_rest.first(static_cast<std::size_t>(size));
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }
    template <class T>
    [[nodiscard]] T TakeValue() {
        T value;
        std::memcpy(&value, Take(sizeof value).data(), sizeof value);
        return value;
    }
    [[nodiscard]] ByteSpan Rest() const { return m_rest; }

private:
    ByteSpan m_rest;
};

/// Appends a block: both lengths, then the bytes, compressed where that makes them fewer.
void AppendBlock(ByteVector& to, ByteSpan bytes);

inline constexpr std::size_t kBlockPadding = 8;
/// The bytes of a block, with kBlockPadding zeros behind them that size() counts.
/// @param most  how many bytes the block may have: checked before memory is taken
[[nodiscard]] RawArray<std::byte> TakeBlock(ByteReader& from, std::uint64_t most);

/// Signed differences as numbers whose small ones are small: 0, -1, 1, -2, 2...
[[nodiscard]] constexpr std::uint32_t FoldSign(std::uint32_t difference) {
    return (difference << 1) ^ (0u - (difference >> 31));
}
[[nodiscard]] constexpr std::uint32_t UnfoldSign(std::uint32_t folded) { return (folded >> 1) ^ (0u - (folded & 1)); }

/// Floats as numbers in the order of their values, and back, to the bit. Neighbouring floats differ by 1.
[[nodiscard]] constexpr std::uint32_t OrderedBits(std::uint32_t bits) {
    return bits ^ ((0u - (bits >> 31)) | 0x80000000u);
}
[[nodiscard]] constexpr std::uint32_t FloatBits(std::uint32_t ordered) {
    return ordered ^ ((0u - ((ordered >> 31) ^ 1u)) | 0x80000000u);
}

/// The exponent field of a float: the magnitude of a step to the next float.
[[nodiscard]] constexpr std::uint32_t ExponentOf(std::uint32_t bits) { return (bits >> 23) & 0xFF; }

/// Classes of numbers: 0 and 1 are classes of their own, a longer number is told by its length and its second bit.
[[nodiscard]] constexpr std::uint32_t ClassOf(std::uint32_t number) {
    if (number < 2) return number;
    const auto length = static_cast<std::uint32_t>(std::bit_width(number));
    return 2 * length - 2 + ((number >> (length - 2)) & 1);
}
inline constexpr std::uint32_t kClassCount = 64;
/// How many bits of a number its class leaves open.
[[nodiscard]] constexpr std::uint32_t BitsBelow(std::uint32_t kind) { return kind < 4 ? 0 : kind / 2 - 1; }
[[nodiscard]] constexpr std::uint32_t SmallestOf(std::uint32_t kind) {
    return kind < 2 ? kind : (2 + (kind & 1)) << (kind / 2 - 1);
}

/// Numbers as classes, a byte each, and the bits below the class's leading ones. The classes of every plane make a
/// block, the bits of all planes together another.
class NumberWriter {
public:
    explicit NumberWriter(std::size_t planeCount) : m_planes(planeCount) {}
    /// @param scale  what the class is shifted by: where it follows the magnitude of steps, numbers of equal size in
    /// the
    ///               unit of the whole get equal classes
    void Put(std::size_t plane, std::uint32_t number, std::uint32_t scale = 0);
    void Append(ByteVector& to);

private:
    std::vector<std::vector<std::uint8_t>> m_planes;
    ByteVector m_vBits;
    std::uint64_t m_uPending = 0;
    unsigned m_uPendingCount = 0;
};

class NumberReader {
public:
    /// @param most  numbers in a plane
    NumberReader(ByteReader& from, std::size_t planeCount, std::uint64_t most);

    [[nodiscard]] std::uint32_t Take(std::size_t plane, std::uint32_t scale = 0) {
        Plane& p = m_planes[plane];
        if (p.at == p.end) throw DamagedData("too few numbers");
        const auto kind = static_cast<std::uint8_t>(*p.at++ - 2 * scale);
        if (kind >= kClassCount) throw DamagedData("a number of more than 32 bits");
        if (m_uBit > m_uBitCount) throw DamagedData("too few bits");
        const std::uint32_t count = BitsBelow(kind);
        std::uint64_t bits;
        std::memcpy(&bits, m_bits.data() + (m_uBit >> 3), sizeof bits);
        const auto low = static_cast<std::uint32_t>((bits >> (m_uBit & 7)) & ((std::uint64_t{1} << count) - 1));
        m_uBit += count;
        return SmallestOf(kind) + low;
    }
    /// Throws unless each number and each bit was taken, but for those that fill the last byte.
    void ExpectEnd() const;

private:
    struct Plane {
        RawArray<std::byte> bytes;
        const std::uint8_t* at = nullptr;
        const std::uint8_t* end = nullptr;
    };
    std::vector<Plane> m_planes;
    RawArray<std::byte> m_bits;
    std::uint64_t m_uBit = 0, m_uBitCount = 0;
};

}  // namespace KvComponents::Hps
