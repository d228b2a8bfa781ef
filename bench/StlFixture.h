// Stl files in memory for the benchmarks: the sphere of SphereFixture.h as separate triangles.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "SphereFixture.h"
#include "geometry/Vector3.h"

enum class StlOrder {
    Mesh,      ///< neighbouring triangles are close to each other in the file
    Shuffled,  ///< triangles in random order
    Soup,      ///< triangle soup: no two corners at the same position, so that no vertices are welded
};

/// A binary file of @p million million triangles.
inline std::vector<std::byte> MakeBenchStl(int million, StlOrder order) {
    constexpr std::size_t kHead = 84, kRecord = 50;
    const KV_ScenePane::MeshBuffers sphere = MakeBenchSphere(1000 * million, 500);
    std::vector<std::array<Float3, 3>> triangles;
    triangles.reserve(sphere.m_vTriangles.size());
    const auto position = [&sphere](std::int32_t index) {
        const auto& vertex = sphere.m_vVertices[static_cast<std::size_t>(index)];
        return Float3{vertex.x, vertex.y, vertex.z};
    };
    for (const auto& triangle : sphere.m_vTriangles)
        triangles.push_back({position(triangle.v[0]), position(triangle.v[1]), position(triangle.v[2])});
    if (order == StlOrder::Shuffled) std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
    if (order == StlOrder::Soup) {
        float x = 0;
        for (auto& triangle : triangles)
            for (Float3& corner : triangle) corner[0] = x++;  // whole numbers below 2^24 all differ
    }
    std::vector<std::byte> file(kHead + kRecord * triangles.size());
    const auto count = static_cast<std::uint32_t>(triangles.size());
    std::memcpy(&file[80], &count, sizeof count);
    for (std::size_t i = 0; i < triangles.size(); ++i)
        std::memcpy(&file[kHead + kRecord * i + 12], &triangles[i], sizeof triangles[i]);
    return file;
}
