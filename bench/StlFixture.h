// Stl files in memory, for benchmarks.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

#include "geometry/Float3.h"

enum class StlOrder {
    Mesh,      ///< neighbours stand together
    Shuffled,  ///< triangles in no order
    Soup,      ///< no two corners at the same position, so that nothing welds
};

/// A bumpy sphere of rings x columns quads less the poles: 2 x rings x columns triangles, rings x columns + 2 vertices.
inline std::vector<std::byte> MakeBenchStl(int million, StlOrder order) {
    constexpr std::size_t kHead = 84, kRecord = 50;
    const int rings = 500, columns = 1000 * million;
    const auto position = [&](int ring, int column) -> Float3 {
        const double polar = std::numbers::pi * ring / (rings + 1);
        const double around = 2 * std::numbers::pi * (column % columns) / columns;
        const double radius = 50 + 3 * std::sin(9 * polar) * std::cos(7 * around);
        // The poles are one point each, whatever the column.
        if (ring == 0 || ring == rings + 1) return {0, 0, ring == 0 ? 50.0f : -50.0f};
        return {static_cast<float>(radius * std::sin(polar) * std::cos(around)),
                static_cast<float>(radius * std::sin(polar) * std::sin(around)),
                static_cast<float>(radius * std::cos(polar))};
    };
    std::vector<std::array<Float3, 3>> triangles;
    for (int ring = 0; ring <= rings; ++ring)
        for (int column = 0; column < columns; ++column) {
            const Float3 a = position(ring, column), b = position(ring, column + 1);
            const Float3 c = position(ring + 1, column), d = position(ring + 1, column + 1);
            if (ring < rings) triangles.push_back({a, c, d});
            if (ring > 0) triangles.push_back({a, d, b});
        }
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
