// The clone without some vertices is that of a plain loop: same vertices, triangles and box, bit for bit.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "geometry/Mesh.h"

namespace {

/// Every number in a record is used, so that a wrong one shows.
Vertex NumberedVertex(std::size_t i, std::mt19937& random) {
    Vertex vertex;
    vertex.x = static_cast<float>(random() % 1000) / 7, vertex.y = static_cast<float>(random() % 1000) / 3;
    vertex.z = static_cast<float>(i);
    vertex.nx = 0.25f, vertex.ny = -1, vertex.nz = static_cast<float>(random() % 9);
    vertex.color = static_cast<std::uint32_t>(random()), vertex.gridIndex = static_cast<std::uint32_t>(i);
    return vertex;
}

struct Parts {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    std::vector<TexCoord> texCoords;
};

Parts PlainClone(const Mesh& mesh, const std::vector<bool>& isRemoved) {
    Parts parts;
    std::vector<int> newIndex(mesh.m_vVertices.size(), -1);
    for (std::size_t i = 0; i < mesh.m_vTriangles.size(); ++i) {
        Triangle triangle = mesh.m_vTriangles[i];
        bool isKept = true;
        for (const int corner : triangle.v) isKept = isKept && !isRemoved[static_cast<std::size_t>(corner)];
        if (!isKept) continue;
        for (int& corner : triangle.v) {
            int& number = newIndex[static_cast<std::size_t>(corner)];
            if (number < 0) {
                number = static_cast<int>(parts.vertices.size());
                parts.vertices.push_back(mesh.m_vVertices[static_cast<std::size_t>(corner)]);
            }
            corner = number;
        }
        parts.triangles.push_back(triangle);
        if (mesh.m_vTexCoords.empty()) continue;
        for (std::size_t corner = 0; corner < 3; ++corner) parts.texCoords.push_back(mesh.m_vTexCoords[3 * i + corner]);
    }
    return parts;
}

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

TEST(CloneWithoutVertices, HasTheResultOfAPlainLoop) {
    std::mt19937 random(20261122);
    std::size_t kept = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<Vertex> vertices(1 + random() % 200);
        for (std::size_t i = 0; i < vertices.size(); ++i) vertices[i] = NumberedVertex(i, random);
        std::vector<Triangle> triangles(random() % 300);
        const auto corner = [&] { return static_cast<std::int32_t>(random() % vertices.size()); };
        for (Triangle& triangle : triangles) triangle = {{corner(), corner(), corner()}};
        Mesh mesh(std::move(vertices), std::move(triangles), L"a", true);
        if (round % 3 == 0) {
            mesh.m_vTexCoords.resize(3 * mesh.m_vTriangles.size());
            for (TexCoord& coordinate : mesh.m_vTexCoords) coordinate.u = static_cast<float>(random() % 1000);
        }
        const unsigned oneIn = round % 5 == 0 ? 1 + random() % 2 : 20;
        std::vector<bool> isRemoved(mesh.m_vVertices.size());
        std::vector<std::uint32_t> bits((isRemoved.size() + 31) / 32);
        for (std::size_t i = 0; i < isRemoved.size(); ++i) {
            isRemoved[i] = random() % oneIn == 0;
            bits[i / 32] |= static_cast<std::uint32_t>(isRemoved[i]) << (i % 32);
        }
        Parts expected = PlainClone(mesh, isRemoved);
        const auto clone = mesh.CloneWithoutVertices(bits);
        ASSERT_TRUE(SameBytes(clone->m_vVertices, expected.vertices)) << "round " << round;
        ASSERT_TRUE(SameBytes(clone->m_vTriangles, expected.triangles)) << "round " << round;
        ASSERT_TRUE(SameBytes(clone->m_vTexCoords, expected.texCoords)) << "round " << round;
        EXPECT_EQ(clone->m_vVertices.capacity(), clone->m_vVertices.size());
        EXPECT_EQ(clone->m_vTriangles.capacity(), clone->m_vTriangles.size());
        EXPECT_EQ(clone->m_vTexCoords.capacity(), clone->m_vTexCoords.size());
        kept += clone->m_vTriangles.size();
        if (clone->m_vTriangles.empty()) continue;
        const Mesh whole(std::move(expected.vertices), {}, L"", false);
        EXPECT_EQ(std::memcmp(clone->m_fBoundingBox, whole.m_fBoundingBox, sizeof whole.m_fBoundingBox), 0);
    }
    EXPECT_GT(kept, 10000u);
}

TEST(CloneWithoutVertices, StartsWithTheDefaultsOfWhatIsNotCopied) {
    Mesh mesh({Vertex{}, Vertex{}, Vertex{}}, {{{0, 1, 2}}}, L"a", false);
    mesh.m_bBlendObjectColor = true;
    mesh.m_fPointSize = 9;
    mesh.m_iVisible = 7;
    mesh.m_iObjectTag = 0;
    mesh.m_optCutView = {{1, 2, 3, 4}};
    mesh.m_uVertexBuffer = 5;
    mesh.m_optImportTrafo.emplace().m_dTranslation[1] = 17;
    const std::uint32_t none[] = {0};
    const auto clone = mesh.CloneWithoutVertices(none);
    mesh.m_uVertexBuffer = 0;
    EXPECT_FALSE(clone->m_bBlendObjectColor);
    EXPECT_EQ(clone->m_fPointSize, 2.0f);
    EXPECT_EQ(clone->m_iVisible, 1);
    EXPECT_EQ(clone->m_iObjectTag, -1);
    EXPECT_FALSE(clone->m_optCutView.has_value());
    EXPECT_EQ(clone->m_uVertexBuffer, 0u);
    ASSERT_TRUE(clone->m_optImportTrafo.has_value());
    EXPECT_EQ(clone->m_optImportTrafo->m_dTranslation[1], 17);
}

}  // namespace
