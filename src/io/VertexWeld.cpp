// Open addressing with linear probing. A slot holds the whole position, so that a corner costs one cache miss, and that
// is hidden: the slots of the next positions are prefetched.
#include "io/VertexWeld.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>

#include "geometry/FaceNormal.h"

namespace {

/// Positions between the prefetch of a slot and its use: long enough for a load from main memory.
constexpr std::size_t kPrefetchDistance = 32;
/// Positions between two checks of the table's load.
constexpr std::size_t kBatch = 768;
constexpr std::size_t kMinSlots = 1024;
/// Longest search that is accepted before the seed is changed. At a load of three quarters a search probes three slots
/// on average, and a few hundred in the worst case of a large table.
constexpr std::size_t kMaxProbes = 1024;
/// Changes of the seed. With a random seed one is improbable; after this many the searches may be of any length, so
/// that the weld ends in any case.
constexpr int kMaxReseeds = 8;

std::uint64_t FreshSeed() {
    std::random_device device;
    return (std::uint64_t{device()} << 32) | device();
}

/// Such a position is equal to none, not even to itself: it is never searched for.
bool HasNan(const Float3& p) { return std::isnan(p[0]) || std::isnan(p[1]) || std::isnan(p[2]); }

/// The bits of a coordinate, the same for both zeros. Adding 0.0 would do that, too, but where denormals are flushed to
/// zero it would change these as well.
std::uint32_t KeyBits(float coordinate) {
    const auto bits = std::bit_cast<std::uint32_t>(coordinate);
    return (bits << 1) == 0 ? 0 : bits;
}

/// Both halves of a 128-bit product: every bit of the result depends on all bits of both factors.
std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

Float3 PositionOf(const Float3& position) { return position; }
using ::PositionOf;

template <class Point>
Point PointAt(const Float3& position);
template <>
Float3 PointAt(const Float3& position) {
    return position;
}
template <>
Vertex PointAt(const Float3& position) {
    return {.x = position[0], .y = position[1], .z = position[2]};
}

/// Two multiplications; the seed enters both factors.
std::uint64_t Hash(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint64_t seed) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
    const std::uint64_t xy = (std::uint64_t{y} << 32) | x;
    return Mix(xy ^ seed, (z ^ std::rotl(seed, 29)) * kOdd);
}

}  // namespace

template <class Point>
PositionWeld<Point>::PositionWeld(std::vector<Point>& vertices, std::size_t expected)
    : PositionWeld(vertices, expected, FreshSeed()) {}

template <class Point>
PositionWeld<Point>::PositionWeld(std::vector<Point>& vertices, std::size_t expected, std::uint64_t seed)
    : m_vertices(vertices), m_uSeed(seed) {
    MakeTable(std::bit_ceil(std::max(expected + expected / 3, kMinSlots)));
}

template <class Point>
std::uint64_t PositionWeld<Point>::HashOf(const Float3& position, std::uint64_t seed) {
    return Hash(KeyBits(position[0]), KeyBits(position[1]), KeyBits(position[2]), seed);
}

template <class Point>
void PositionWeld<Point>::MakeTable(std::size_t slots) {
    m_pSlots.reset();                                    // freed first: never two tables in memory
    m_pSlots = MakeZeroedArrayInHugePages<Slot>(slots);  // a zeroed slot is an empty one
    m_uMask = slots - 1;
    m_uFilled = 0;
}

template <class Point>
void PositionWeld<Point>::Weld(std::span<const Float3> positions, std::int32_t* indices) {
    while (!positions.empty()) {
        const std::size_t count = std::min(positions.size(), kBatch);
        WeldBatch(positions.first(count), indices);
        positions = positions.subspan(count);
        indices += count;
    }
}

// In two passes per group: hash and prefetch all, then search all.
template <class Point>
void PositionWeld<Point>::Find(std::span<const Float3> positions, std::int32_t* indices) const {
    while (!positions.empty()) {
        const auto group = positions.first(std::min(positions.size(), kPrefetchDistance));
        Slot keys[kPrefetchDistance];
        std::size_t at[kPrefetchDistance];
        for (std::size_t i = 0; i < group.size(); ++i) {
            const Float3& p = group[i];
            keys[i] = {KeyBits(p[0]), KeyBits(p[1]), KeyBits(p[2]), 0};
            at[i] = Hash(keys[i].x, keys[i].y, keys[i].z, m_uSeed);
            __builtin_prefetch(&m_pSlots[at[i] & m_uMask]);
        }
        for (std::size_t i = 0; i < group.size(); ++i) {
            const auto isAt = [&](const Slot& slot) {
                return slot.x == keys[i].x && slot.y == keys[i].y && slot.z == keys[i].z;
            };
            std::size_t slot = at[i] & m_uMask;
            while (m_pSlots[slot].indexPlus1 != 0 && !isAt(m_pSlots[slot])) slot = (slot + 1) & m_uMask;
            // An empty slot has 0, and a position with a NaN is in none.
            indices[i] = HasNan(group[i]) ? -1 : static_cast<std::int32_t>(m_pSlots[slot].indexPlus1) - 1;
        }
        positions = positions.subspan(group.size());
        indices += group.size();
    }
}

// A ring of positions: one is inserted, and the slot of one that comes later is prefetched.
template <class Point>
void PositionWeld<Point>::WeldBatch(std::span<const Float3> positions, std::int32_t* indices) {
    // Load at most three quarters after the whole batch: the table does not grow within it.
    while (m_uFilled + positions.size() > (m_uMask + 1) / 4 * 3) Rebuild(2 * (m_uMask + 1));
    /// A position whose slot is being prefetched.
    struct Prefetched {
        Slot key;
        std::size_t at;
        std::uint64_t seed;
    };
    Prefetched ring[kPrefetchDistance];
    for (std::size_t i = 0; i < positions.size() + kPrefetchDistance; ++i) {
        Prefetched& prefetched = ring[i % kPrefetchDistance];
        if (i >= kPrefetchDistance) {
            const Float3& p = positions[i - kPrefetchDistance];
            // a change of the seed within the batch makes the hash invalid
            if (prefetched.seed != m_uSeed) prefetched.at = HashOf(p, m_uSeed);
            indices[i - kPrefetchDistance] = HasNan(p) ? Append(p) : FindOrAppend(p, prefetched.key, prefetched.at);
        }
        if (i < positions.size()) {
            const Float3& p = positions[i];
            const Slot key{KeyBits(p[0]), KeyBits(p[1]), KeyBits(p[2]), 0};
            prefetched = {key, Hash(key.x, key.y, key.z, m_uSeed), m_uSeed};
            __builtin_prefetch(&m_pSlots[prefetched.at & m_uMask]);
        }
    }
}

template <class Point>
std::int32_t PositionWeld<Point>::Append(const Float3& position) {
    if (m_vertices.size() >= std::size_t{std::numeric_limits<std::int32_t>::max()})
        throw std::length_error("more vertices than an index can count");
    m_vertices.push_back(PointAt<Point>(position));
    return static_cast<std::int32_t>(m_vertices.size() - 1);
}

template <class Point>
std::int32_t PositionWeld<Point>::FindOrAppend(const Float3& position, Slot key, std::size_t at) {
    std::size_t probes = 0;
    for (;; ++at) {
        Slot& slot = m_pSlots[at & m_uMask];
        if (slot.indexPlus1 == 0) {
            const std::int32_t index = Append(position);
            slot = {key.x, key.y, key.z, static_cast<std::uint32_t>(index) + 1};
            ++m_uFilled;
            return index;
        }
        if (slot.x == key.x && slot.y == key.y && slot.z == key.z)
            return static_cast<std::int32_t>(slot.indexPlus1 - 1);
        if (++probes == kMaxProbes && m_iReseeds < kMaxReseeds) {
            Reseed();
            at = Hash(key.x, key.y, key.z, m_uSeed) - 1;  // the loop adds 1
            probes = 0;
        }
    }
}

// The indices do not depend on the seed: only the places in the table change.
template <class Point>
void PositionWeld<Point>::Reseed() {
    ++m_iReseeds;
    m_uSeed = FreshSeed();
    Rebuild(m_uMask + 1);
}

template <class Point>
void PositionWeld<Point>::Rebuild(std::size_t slots) {
    MakeTable(slots);
    // in two passes per group: hash and prefetch all, then insert all
    for (std::size_t first = 0; first < m_vertices.size(); first += kPrefetchDistance) {
        const std::size_t count = std::min(kPrefetchDistance, m_vertices.size() - first);
        Slot keys[kPrefetchDistance];
        std::size_t at[kPrefetchDistance];
        std::size_t kept = 0;
        for (std::size_t i = first; i < first + count; ++i) {
            const Float3 p = PositionOf(m_vertices[i]);
            if (HasNan(p)) continue;
            keys[kept] = {KeyBits(p[0]), KeyBits(p[1]), KeyBits(p[2]), static_cast<std::uint32_t>(i) + 1};
            at[kept] = Hash(keys[kept].x, keys[kept].y, keys[kept].z, m_uSeed) & m_uMask;
            __builtin_prefetch(&m_pSlots[at[kept]], 1);
            ++kept;
        }
        for (std::size_t i = 0; i < kept; ++i) {
            std::size_t free = at[i];
            while (m_pSlots[free].indexPlus1 != 0) free = (free + 1) & m_uMask;  // no comparison: all positions differ
            m_pSlots[free] = keys[i];
        }
        m_uFilled += kept;
    }
}

template class PositionWeld<Vertex>;
template class PositionWeld<Float3>;
