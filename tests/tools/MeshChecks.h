// Properties of a triangle mesh: whether it is closed, and its volume.
#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <utility>

#include "simulate-scans/Shapes.h"

namespace simulate {

inline std::array<float, 3> KeyOf(Vec3 p) { return {p.x, p.y, p.z}; }

/// Number of directed edges without an edge in the opposite direction; 0 for a closed surface.
inline int UnpairedEdges(const TriangleMesh& mesh) {
    std::map<std::pair<std::array<float, 3>, std::array<float, 3>>, int> balance;
    for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
        for (std::size_t k = 0; k < 3; ++k) {
            const auto a = KeyOf(mesh.corners[i + k]), b = KeyOf(mesh.corners[i + (k + 1) % 3]);
            ++balance[{a, b}];
            --balance[{b, a}];
        }
    }
    int unpaired = 0;
    for (const auto& [edge, count] : balance) unpaired += count > 0 ? count : 0;
    return unpaired;
}

/// Volume by the divergence theorem; positive when the triangles are counterclockwise seen from outside.
inline double VolumeOf(const TriangleMesh& mesh) {
    double sixfold = 0;
    for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
        const Vec3 a = mesh.corners[i], b = mesh.corners[i + 1], c = mesh.corners[i + 2];
        sixfold += double{a.x} * (double{b.y} * c.z - double{b.z} * c.y) +
                   double{a.y} * (double{b.z} * c.x - double{b.x} * c.z) +
                   double{a.z} * (double{b.x} * c.y - double{b.y} * c.x);
    }
    return sixfold / 6;
}

}  // namespace simulate
