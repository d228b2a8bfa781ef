// Open addressing: a slot holds the whole position, so that a corner costs one look into memory, which is asked for a
// batch ahead.
#include "io/VertexWeld.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>

#include "base/HugePages.h"

namespace {

/// Positions whose slots are on their way from memory at the same time.
constexpr std::size_t kAhead = 32;
/// Positions between two looks at the room in the table.
constexpr std::size_t kBatch = 768;
constexpr std::size_t kFewestSlots = 1024;
/// At three quarters full a search sees three slots on average, and the longest run of a large table some hundreds.
constexpr std::size_t kLongestSearch = 1024;
/// A seed that fails is bad luck; that so many fail has never been seen, and then the search may take as long as it
/// will.
constexpr int kMaxReseeds = 8;

std::uint64_t FreshSeed() {
    std::random_device device;
    return (std::uint64_t{device()} << 32) | device();
}

bool HasNan(const Float3& p) { return std::isnan(p[0]) || std::isnan(p[1]) || std::isnan(p[2]); }

/// The bits of a coordinate with one pattern for both zeros. Not by adding 0.0, which a processor that flushes
/// denormals would turn into more than that.
std::uint32_t KeyBits(float coordinate) {
    const auto bits = std::bit_cast<std::uint32_t>(coordinate);
    return (bits << 1) == 0 ? 0 : bits;
}

std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t Hash(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint64_t seed) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
    const std::uint64_t xy = (std::uint64_t{y} << 32) | x;
    return Mix(xy ^ seed, (z ^ std::rotl(seed, 29)) * kOdd);
}

}  // namespace

VertexWeld::VertexWeld(std::vector<Vertex>& vertices, std::size_t expected)
    : VertexWeld(vertices, expected, FreshSeed()) {}

VertexWeld::VertexWeld(std::vector<Vertex>& vertices, std::size_t expected, std::uint64_t seed)
    : m_vertices(vertices), m_uSeed(seed) {
    MakeTable(std::bit_ceil(std::max(expected + expected / 3, kFewestSlots)));
}

void VertexWeld::Free::operator()(Slot* slots) const { std::free(slots); }

std::uint64_t VertexWeld::HashOf(const Float3& position, std::uint64_t seed) {
    return Hash(KeyBits(position[0]), KeyBits(position[1]), KeyBits(position[2]), seed);
}

void VertexWeld::MakeTable(std::size_t slots) {
    m_pSlots.reset();  // never two tables at a time
    m_pSlots.reset(static_cast<Slot*>(std::calloc(slots, sizeof(Slot))));
    if (!m_pSlots) throw std::bad_alloc();
    AdviseHugePages(m_pSlots.get(), slots * sizeof(Slot));
    m_uMask = slots - 1;
    m_uFilled = 0;
}

void VertexWeld::Weld(std::span<const Float3> positions, std::int32_t* indices) {
    while (!positions.empty()) {
        const std::size_t count = std::min(positions.size(), kBatch);
        WeldBatch(positions.first(count), indices);
        positions = positions.subspan(count);
        indices += count;
    }
}

void VertexWeld::WeldBatch(std::span<const Float3> positions, std::int32_t* indices) {
    // Room for the whole batch, so that the table keeps its size until the batch is through.
    while (m_uFilled + positions.size() > (m_uMask + 1) / 4 * 3) Rebuild(2 * (m_uMask + 1));
    struct Coming {
        Slot key;
        std::size_t at;
        std::uint64_t seed;
    };
    Coming ring[kAhead];
    for (std::size_t i = 0; i < positions.size() + kAhead; ++i) {
        Coming& coming = ring[i % kAhead];
        if (i >= kAhead) {
            const Float3& p = positions[i - kAhead];
            if (coming.seed != m_uSeed) coming.at = HashOf(p, m_uSeed);
            indices[i - kAhead] = HasNan(p) ? Append(p) : FindOrAppend(p, coming.key, coming.at);
        }
        if (i < positions.size()) {
            const Float3& p = positions[i];
            const Slot key{KeyBits(p[0]), KeyBits(p[1]), KeyBits(p[2]), 0};
            coming = {key, Hash(key.x, key.y, key.z, m_uSeed), m_uSeed};
            __builtin_prefetch(&m_pSlots[coming.at & m_uMask]);
        }
    }
}

std::int32_t VertexWeld::Append(const Float3& position) {
    if (m_vertices.size() >= std::size_t{std::numeric_limits<std::int32_t>::max()})
        throw std::length_error("more vertices than an index can count");
    Vertex& vertex = m_vertices.emplace_back();
    vertex.x = position[0];
    vertex.y = position[1];
    vertex.z = position[2];
    return static_cast<std::int32_t>(m_vertices.size() - 1);
}

std::int32_t VertexWeld::FindOrAppend(const Float3& position, Slot key, std::size_t at) {
    std::size_t searched = 0;
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
        if (++searched == kLongestSearch && m_iReseeds < kMaxReseeds) {
            Reseed();
            at = Hash(key.x, key.y, key.z, m_uSeed) - 1;
            searched = 0;
        }
    }
}

void VertexWeld::Reseed() {
    ++m_iReseeds;
    m_uSeed = FreshSeed();
    Rebuild(m_uMask + 1);
}

void VertexWeld::Rebuild(std::size_t slots) {
    MakeTable(slots);
    for (std::size_t first = 0; first < m_vertices.size(); first += kAhead) {
        const std::size_t count = std::min(kAhead, m_vertices.size() - first);
        Slot keys[kAhead];
        std::size_t at[kAhead];
        std::size_t kept = 0;
        for (std::size_t i = first; i < first + count; ++i) {
            const Float3 p = {m_vertices[i].x, m_vertices[i].y, m_vertices[i].z};
            if (HasNan(p)) continue;
            keys[kept] = {KeyBits(p[0]), KeyBits(p[1]), KeyBits(p[2]), static_cast<std::uint32_t>(i) + 1};
            at[kept] = Hash(keys[kept].x, keys[kept].y, keys[kept].z, m_uSeed) & m_uMask;
            __builtin_prefetch(&m_pSlots[at[kept]], 1);
            ++kept;
        }
        for (std::size_t i = 0; i < kept; ++i) {
            std::size_t free = at[i];
            while (m_pSlots[free].indexPlus1 != 0) free = (free + 1) & m_uMask;  // all positions differ
            m_pSlots[free] = keys[i];
        }
        m_uFilled += kept;
    }
}
