// How numbers and bytes are packed in hps files; byte by byte in docs/formats/hps.md.
#pragma once
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
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
inline constexpr std::uint64_t kMaxExpansion = 64;

/// Memory that is not cleared, in large pages where the system offers them: a large array's many small ones cost more
/// than the work on it. To be given back by std::free(). @throws std::bad_alloc
[[nodiscard]] void* AllocateLarge(std::uint64_t size);

/// An array that is not cleared first.
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

/// What bytes are like.
enum class Kind {
    kPattern,   ///< they repeat
    kScattered  ///< some are more frequent than others, and that is all
};
/// Appends a block: both lengths, then the bytes, compressed where that makes them fewer.
void AppendBlock(ByteVector& to, ByteSpan bytes, Kind kind);

/// Three numbers of up to 30 bits may be taken behind the end before that is noticed, by loads of 8 bytes.
inline constexpr std::size_t kBlockPadding = 16;
/// The bytes of a block, with kBlockPadding zeros behind them that size() counts.
/// @param most  how many bytes the block may have: checked before memory is taken
[[nodiscard]] RawArray<std::byte> TakeBlock(ByteReader& from, std::uint64_t most);

/// Signed differences as numbers whose small ones are small: 0, -1, 1, -2, 2...
[[nodiscard]] constexpr std::uint32_t ZigzagEncode(std::uint32_t difference) {
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
    /// @param scale  what the class is shifted by. Where it follows the magnitude of steps between floats, numbers that
    ///               are equally large in the unit of the whole get equal classes
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
    static constexpr std::size_t kMaxPlanes = 4;

    NumberReader() = default;
    /// @param most  numbers in a plane
    NumberReader(ByteReader& from, std::size_t planeCount, std::uint64_t most);

    /// The next number of a plane.
    [[nodiscard]] std::uint32_t Take(std::size_t plane, std::uint32_t scale = 0) {
        if (m_uBit > m_uBitCount) throw DamagedData("too few bits");
        return TakeUnlessEnded(m_planes[plane], scale);
    }
    /// The next number of each of the first three planes, which is what the padding of the bits allows in one go.
    template <class Scales>
    [[nodiscard]] std::array<std::uint32_t, 3> TakeThree(const Scales& scales) {
        if (m_uBit > m_uBitCount) throw DamagedData("too few bits");
        const std::uint32_t first = TakeUnlessEnded(m_planes[0], scales[0]);
        const std::uint32_t second = TakeUnlessEnded(m_planes[1], scales[1]);
        return {first, second, TakeUnlessEnded(m_planes[2], scales[2])};
    }
    /// Throws unless each number and each bit was taken, but for those that fill the last byte.
    void ExpectEnd() const;

private:
    struct Plane {
        RawArray<std::byte> bytes;
        const std::uint8_t* at = nullptr;
        const std::uint8_t* end = nullptr;
    };
    struct Class {
        std::uint32_t smallest, bits;
    };
    static constexpr std::array<Class, kClassCount> kClasses = [] {
        std::array<Class, kClassCount> classes{};
        for (std::uint32_t i = 0; i < kClassCount; ++i) classes[i] = {SmallestOf(i), BitsBelow(i)};
        return classes;
    }();

    [[nodiscard]] std::uint32_t TakeUnlessEnded(Plane& plane, std::uint32_t scale) {
        if (plane.at == plane.end) throw DamagedData("too few numbers");
        const auto kind = static_cast<std::uint8_t>(*plane.at++ - 2 * scale);
        if (kind >= kClassCount) throw DamagedData("a number of more than 32 bits");
        std::uint64_t bits;
        std::memcpy(&bits, m_bits.data() + (m_uBit >> 3), sizeof bits);
        const std::uint64_t below = (bits >> (m_uBit & 7)) & ((std::uint64_t{1} << kClasses[kind].bits) - 1);
        m_uBit += kClasses[kind].bits;
        return kClasses[kind].smallest + static_cast<std::uint32_t>(below);
    }

    std::array<Plane, kMaxPlanes> m_planes;
    RawArray<std::byte> m_bits;
    std::uint64_t m_uBit = 0, m_uBitCount = 0;
};

}  // namespace KvComponents::Hps
