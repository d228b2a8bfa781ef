// A closed mesh for the benchmarks of mesh files, identical on every run: a bumpy sphere in rings from pole to pole.
#pragma once
#include <cmath>
#include <cstdint>
#include <numbers>

#include "KV_ScenePane/MeshBuffers.h"

/// 2 * columns * rings triangles and columns * rings + 2 vertices, without colours. 1000 x 500: 1 M triangles.
inline KV_ScenePane::MeshBuffers MakeBenchSphere(std::int32_t columns, std::int32_t rings) {
    KV_ScenePane::MeshBuffers mesh(false);
    const std::int32_t south = columns * rings + 1;
    mesh.m_vVertices.resize(static_cast<std::size_t>(south) + 1);
    const auto put = [&mesh](std::int32_t index, double latitude, double longitude) {
        const double radius = 50 + std::sin(9 * latitude) * std::cos(7 * longitude);
        KV_ScenePane::Vertex& vertex = mesh.m_vVertices[static_cast<std::size_t>(index)];
        vertex.x = static_cast<float>(radius * std::sin(latitude) * std::cos(longitude));
        vertex.y = static_cast<float>(radius * std::sin(latitude) * std::sin(longitude));
        vertex.z = static_cast<float>(radius * std::cos(latitude));
        vertex.color = 0xFFFFFFFF;
    };
    // Vertices: the north pole, the rings, the south pole.
    put(0, 0, 0);
    put(south, std::numbers::pi, 0);
    for (std::int32_t ring = 0; ring < rings; ++ring) {
        for (std::int32_t column = 0; column < columns; ++column)
            put(1 + ring * columns + column, std::numbers::pi * (ring + 1) / (rings + 1),
                2 * std::numbers::pi * column / columns);
    }
    // Triangles: a fan at each pole, two per quad between the rings.
    const auto add = [&mesh](std::int32_t a, std::int32_t b, std::int32_t c) {
        mesh.m_vTriangles.push_back({{a, b, c}});
    };
    mesh.m_vTriangles.reserve(std::size_t{2} * static_cast<std::size_t>(columns * rings));
    for (std::int32_t column = 0; column < columns; ++column) add(0, 1 + column, 1 + (column + 1) % columns);
    for (std::int32_t ring = 0; ring + 1 < rings; ++ring) {
        const std::int32_t upper = 1 + ring * columns, lower = upper + columns;
        for (std::int32_t column = 0; column < columns; ++column) {
            const std::int32_t next = (column + 1) % columns;
            add(upper + column, lower + column, lower + next);
            add(upper + column, lower + next, upper + next);
        }
    }
    const std::int32_t last = south - columns;
    for (std::int32_t column = 0; column < columns; ++column) add(last + column, south, last + (column + 1) % columns);
    return mesh;
}
