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
};

class Parser {
public:
    explicit Parser(std::string_view text) : m_words(text) {}

    Facets Read() {
        while (m_words.Next()) {
            if (m_words.Is("solid") || m_words.Is("endsolid")) {
                EndFacet();
                m_words.SkipLine();  // the name of the solid
            } else if (m_words.Is("vertex")) {
                ReadVertex();
            } else if (m_words.Is("facet") || m_words.Is("endloop") || m_words.Is("endfacet")) {
                EndFacet();
            }
        }
        EndFacet();
        return std::move(m_facets);
    }

private:
    void ReadVertex() {
        std::array<double, 3> position{};
        for (double& coordinate : position) {
            if (!m_words.Next()) throw m_words.Error("a vertex needs three numbers");
            if (!m_words.Number(coordinate)) throw m_words.NoNumber();
        }
        m_facets.corners.push_back(
            {static_cast<float>(position[0]), static_cast<float>(position[1]), static_cast<float>(position[2])});
        ++m_uCorners;
    }

    void EndFacet() {
        if (m_uCorners == 0) return;
        if (m_uCorners < 3) throw m_words.Error("a facet has fewer than three corners");
        m_facets.sizes.push_back(m_uCorners);
        m_uCorners = 0;
    }

    NumberWords m_words;
    Facets m_facets;
    std::size_t m_uCorners = 0;  // of the facet that is read
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
    return found;
}
