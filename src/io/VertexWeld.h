// One vertex for all corners at the same position.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "geometry/Vector3.h"
#include "geometry/Vertex.h"

/// Gives every position the index of the vertex that has it, and appends a vertex where none has. Positions are
/// compared exactly: 0.0 and -0.0 are one, and the vertex keeps the sign that came first; a position with a NaN is
/// never equal to any, so each makes a vertex of its own.
/// The results are those of a map from position to index. Which slot of its table a position takes depends on a seed
/// that no file can know, so that no file can make it slow.
class VertexWeld {
public:
    /// @param vertices  empty; filled by Weld(), and touched by nobody else meanwhile
    /// @param expected  how many there will be, as a guess: the table starts with this size
    VertexWeld(std::vector<Vertex>& vertices, std::size_t expected);
    /// The same with a known seed, for tests that make positions which meet in one slot.
    VertexWeld(std::vector<Vertex>& vertices, std::size_t expected, std::uint64_t seed);

    /// Writes one index a position to @p indices, in order.
    /// @throws std::length_error when there are more vertices than an index can count
    void Weld(std::span<const Float3> positions, std::int32_t* indices);

    /// Times that the seed changed because too many positions met.
    [[nodiscard]] int ReseedCount() const { return m_iReseeds; }
    /// Where the search for a position starts under a seed, before it is cut to the table's size.
    [[nodiscard]] static std::uint64_t HashOf(const Float3& position, std::uint64_t seed);

private:
    struct Slot {
        std::uint32_t x, y, z;     ///< bits of the position, with 0.0 for -0.0
        std::uint32_t indexPlus1;  ///< 0: empty
    };
    struct Free {
        void operator()(Slot* slots) const;
    };

    void WeldBatch(std::span<const Float3> positions, std::int32_t* indices);
    std::int32_t Append(const Float3& position);
    std::int32_t FindOrAppend(const Float3& position, Slot key, std::size_t at);
    void MakeTable(std::size_t slots);
    void Reseed();
    /// Puts every vertex into a fresh table.
    void Rebuild(std::size_t slots);

    std::vector<Vertex>& m_vertices;
    std::unique_ptr<Slot[], Free> m_pSlots;
    std::size_t m_uMask = 0;    ///< slots - 1; their number is a power of two
    std::size_t m_uFilled = 0;  ///< slots in use: vertices without a NaN
    std::uint64_t m_uSeed;
    int m_iReseeds = 0;
};
