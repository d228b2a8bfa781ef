// Words are compared without regard to case. Only "vertex" and the ends of a facet matter.
#include "TextStl.h"

#include <array>
#include <span>
#include <string>
#include <vector>

#include "NumberWords.h"
#include "Polygons.h"
#include "geometry/Vector3.h"
#include "io/VertexWeld.h"

namespace {

/// The corners of all facets, in the order of the file.
struct Facets {
    std::vector<Float3> corners;
    std::vector<std::size_t> sizes;  // of each facet
    std::string cutOff;              // what the end of the text lacks; empty when it is whole
};

class Parser {
public:
    explicit Parser(std::string_view text) : m_words(text) {}

    Facets Read() {
        while (m_words.Next()) {
            const bool isEndOfSolid = m_words.Is("endsolid");
            if (isEndOfSolid || m_words.Is("solid")) {
                EndFacet();
                m_bSolidEnded = isEndOfSolid;
                m_words.SkipLine();  // the name of the solid
            } else if (m_words.Is("vertex")) {
                BeginFacet();
                if (!ReadVertex()) break;
            } else if (m_words.Is("facet")) {
                EndFacet();
                BeginFacet();
            } else if (m_words.Is("endloop") || m_words.Is("endfacet")) {
                EndFacet();
            }
        }
        NoteEnd();
        return std::move(m_facets);
    }

private:
    /// @return false when the text ends before or within a number
    bool ReadVertex() {
        std::array<double, 3> position{};
        for (double& coordinate : position) {
            if (!m_words.Next()) return false;
            if (m_words.Number(coordinate)) continue;
            if (m_words.IsAtEnd()) return false;
            throw m_words.NoNumber();
        }
        m_facets.corners.push_back(
            {static_cast<float>(position[0]), static_cast<float>(position[1]), static_cast<float>(position[2])});
        ++m_uCorners;
        return true;
    }

    void BeginFacet() {
        m_bInFacet = true;
        m_bSolidEnded = false;
    }

    void EndFacet() {
        m_bInFacet = false;
        if (m_uCorners == 0) return;
        if (m_uCorners < 3) throw m_words.Error("a facet has fewer than three corners");
        m_facets.sizes.push_back(m_uCorners);
        m_uCorners = 0;
    }

    /// Without its end, the last number of a facet may lack digits.
    void NoteEnd() {
        if (m_bInFacet) {
            m_facets.corners.resize(m_facets.corners.size() - m_uCorners);
            if (m_facets.sizes.empty()) throw UnreadableFile(kCutShort);
            m_facets.cutOff = "the file ends inside a facet, which is not shown";
        } else if (!m_bSolidEnded) {
            m_facets.cutOff = "the file ends without endsolid: triangles may be missing";
        }
    }

    NumberWords m_words;
    Facets m_facets;
    std::size_t m_uCorners = 0;  // of the facet that is read
    bool m_bInFacet = false;
    bool m_bSolidEnded = false;
};

}  // namespace

FoundMesh ReadTextStl(std::string_view text) {
    const Facets facets = Parser(text).Read();
    FoundMesh found;
    found.normalRule = NormalRule::Unit;
    std::vector<std::int32_t> indices(facets.corners.size());
    // Closed surfaces have about one vertex for two triangles.
    VertexWeld(found.mesh.m_vVertices, facets.corners.size() / 5).Weld(facets.corners, indices.data());
    found.mesh.m_vTriangles.reserve(facets.sizes.size());
    std::span<const std::int32_t> left(indices);
    for (const std::size_t size : facets.sizes) {
        AppendPolygon(found.mesh.m_vVertices, left.first(size), found.mesh.m_vTriangles, nullptr);
        left = left.subspan(size);
    }
    if (found.mesh.m_vTriangles.empty()) throw UnreadableFile("holds no triangle");
    if (!facets.cutOff.empty()) found.leftOut.push_back(facets.cutOff);
    return found;
}
