// Vertex welding: one vertex for all corners at the same position.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/HugePages.h"
#include "geometry/Vector3.h"
#include "geometry/Vertex.h"

/// Maps positions to vertex indices, and appends a vertex for every new position. Positions are compared exactly,
/// without a tolerance: 0.0 and -0.0 are equal, and the vertex has the sign of the first one; a position with a NaN is
/// equal to none, so each gets a vertex.
///
/// A hash table with open addressing. The hash depends on a random seed: a file
/// cannot be made such that its positions collide and the weld becomes slow.
/// @tparam Point  what is appended: Vertex, or Float3 for positions alone
template <class Point>
class PositionWeld {
public:
    /// @param vertices  empty; filled by Weld(). Must outlive this object; only Weld() may change it meanwhile
    /// @param expected  estimated number of vertices, for the initial size of the table
    PositionWeld(std::vector<Point>& vertices, std::size_t expected);
    /// The same with a known seed, for tests that need positions which collide.
    PositionWeld(std::vector<Point>& vertices, std::size_t expected, std::uint64_t seed);

    /// Writes one index per position to @p indices, in order. Expected time per position is constant.
    /// @throws std::length_error when there are more vertices than an index can count
    void Weld(std::span<const Float3> positions, std::int32_t* indices);
    /// Writes the index of the vertex at each position, -1 where there is none. Several threads may search at the same
    /// time.
    void Find(std::span<const Float3> positions, std::int32_t* indices) const;

    /// How often the seed was changed because too many positions collided.
    [[nodiscard]] int ReseedCount() const { return m_iReseeds; }
    /// Hash of a position; modulo the number of slots it is the slot where the search starts.
    [[nodiscard]] static std::uint64_t HashOf(const Float3& position, std::uint64_t seed);

private:
    struct Slot {
        std::uint32_t x, y, z;     ///< bits of the position, with 0.0 for -0.0
        std::uint32_t indexPlus1;  ///< 0: empty
    };
    void WeldBatch(std::span<const Float3> positions, std::int32_t* indices);
    std::int32_t Append(const Float3& position);
    std::int32_t FindOrAppend(const Float3& position, Slot key, std::size_t at);
    void MakeTable(std::size_t slots);
    void Reseed();
    /// Inserts all vertices into a new table of @p slots slots, a power of two.
    void Rebuild(std::size_t slots);

    std::vector<Point>& m_vertices;
    ZeroedPageArray<Slot> m_pSlots;
    std::size_t m_uMask = 0;    ///< slots - 1; their number is a power of two
    std::size_t m_uFilled = 0;  ///< slots in use: vertices without a NaN
    std::uint64_t m_uSeed;
    int m_iReseeds = 0;
};

extern template class PositionWeld<Vertex>;
extern template class PositionWeld<Float3>;
using VertexWeld = PositionWeld<Vertex>;
