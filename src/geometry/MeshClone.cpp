// The copy of a mesh without some of its vertices: what a cut leaves of an object. The sizes of all arrays are counted
// before they are allocated, in huge pages: page faults and moves of growing arrays took most of the time.
#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/HugePages.h"
#include "geometry/Mesh.h"

namespace {

/// One bit per triangle.
struct KeptTriangles {
    explicit KeptTriangles(std::size_t triangles) : words((triangles + 63) / 64) {}

    /// Calls visit(i) for every kept triangle in order.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (std::size_t i = 0; i < words.size(); ++i)
            for (std::uint64_t word = words[i]; word != 0; word &= word - 1)
                visit(64 * i + static_cast<std::size_t>(std::countr_zero(word)));
    }

    std::vector<std::uint64_t> words;
    std::size_t count = 0;
};

/// Those without a corner whose bit is set.
KeptTriangles FindKept(const std::vector<Triangle>& triangles, std::span<const std::uint32_t> removed) {
    const auto bitOf = [removed](std::int32_t vertex) {
        const auto i = static_cast<std::uint32_t>(vertex);
        return removed[i / 32] >> (i % 32);
    };
    KeptTriangles kept(triangles.size());
    for (std::size_t first = 0; first < triangles.size(); first += 64) {
        const std::size_t count = std::min<std::size_t>(64, triangles.size() - first);
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const auto& v = triangles[first + i].v;
            word |= std::uint64_t{~(bitOf(v[0]) | bitOf(v[1]) | bitOf(v[2])) & 1} << i;
        }
        kept.words[first / 64] = word;
        kept.count += static_cast<std::size_t>(std::popcount(word));
    }
    return kept;
}

/// The vertices that triangles use, numbered in the order of their first use.
class VertexNumbers {
public:
    explicit VertexNumbers(std::size_t vertices)
        : m_pNew(MakeArrayInHugePages<std::int32_t>(vertices)),
          m_pOld(MakeArrayInHugePages<std::int32_t>(vertices + 1)) {
        std::fill_n(m_pNew.get(), vertices, -1);
    }

    std::int32_t Number(std::int32_t vertex) {
        std::int32_t& number = m_pNew[static_cast<std::size_t>(vertex)];
        // Without a branch: whether a corner is new follows no pattern.
        m_pOld[m_uCount] = vertex;
        const bool isNew = number < 0;
        number = isNew ? static_cast<std::int32_t>(m_uCount) : number;
        m_uCount += isNew ? 1 : 0;
        return number;
    }
    /// The old index of each new vertex.
    [[nodiscard]] std::span<const std::int32_t> OldIndices() const { return {m_pOld.get(), m_uCount}; }

private:
    HugePageArray<std::int32_t> m_pNew, m_pOld;
    std::size_t m_uCount = 0;
};

}  // namespace

std::shared_ptr<Mesh> Mesh::CloneWithoutVertices(std::span<const std::uint32_t> bits) const {
    assert(bits.size() >= (m_vVertices.size() + 31) / 32);
    auto clone = std::make_shared<Mesh>(m_sName, m_bHasVertexColors);
    clone->m_bGrayColors = m_bGrayColors;

    const KeptTriangles kept = FindKept(m_vTriangles, bits);
    if (kept.count > 0) {
        VertexNumbers numbers(m_vVertices.size());
        ReserveInHugePages(clone->m_vTriangles, kept.count);
        kept.ForEach([&](std::size_t i) {
            const auto& v = m_vTriangles[i].v;
            const std::int32_t a = numbers.Number(v[0]), b = numbers.Number(v[1]), c = numbers.Number(v[2]);
            clone->m_vTriangles.push_back({{a, b, c}});
        });
        ReserveInHugePages(clone->m_vVertices, numbers.OldIndices().size());
        for (const std::int32_t old : numbers.OldIndices())
            clone->m_vVertices.push_back(m_vVertices[static_cast<std::size_t>(old)]);
        clone->ComputeBoundingBox();
    }
    if (!m_vTexCoords.empty()) {
        ReserveInHugePages(clone->m_vTexCoords, 3 * kept.count);
        kept.ForEach([&](std::size_t i) {
            clone->m_vTexCoords.insert(clone->m_vTexCoords.end(), &m_vTexCoords[3 * i], &m_vTexCoords[3 * i] + 3);
        });
    }
    // Everything else as it is here; the texture is shared.
    clone->m_Trafo = m_Trafo;
    clone->m_optImportTrafo = m_optImportTrafo;
    clone->m_bBuffersDirty = true;
    clone->SetColorRef(GetColorRef());
    clone->m_pTexture = m_pTexture;
    return clone;
}
