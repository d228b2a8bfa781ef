// Small mesh files for the tests of the host: a tetrahedron of four vertices and four triangles, in every format that
// can be opened except hps, which the tests write by an export.
#pragma once
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "host/ScanFiles.h"

inline constexpr std::array<std::array<float, 3>, 4> kTetraPoints = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
inline constexpr std::array<std::array<std::int32_t, 3>, 4> kTetraTriangles = {
    {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}}};

inline void AppendText(std::vector<std::byte>& bytes, std::string_view text) {
    AppendBytes(bytes, text.data(), text.size());
}

inline void WriteText(const std::string& path, std::string_view text) {
    std::vector<std::byte> bytes;
    AppendText(bytes, text);
    WriteBytes(path, bytes);
}

/// The header of a text file of @p vertices and @p faces, x, y, z and vertex_indices.
inline std::string PlyHeader(int vertices, int faces) {
    return "ply\nformat ascii 1.0\nelement vertex " + std::to_string(vertices) +
           "\nproperty float x\nproperty float y\nproperty float z\nelement face " + std::to_string(faces) +
           "\nproperty list uchar int vertex_indices\nend_header\n";
}

inline std::string TetraPlyText() {
    std::string text = PlyHeader(4, 4);
    for (const auto& point : kTetraPoints) {
        for (const float value : point) text += std::to_string(static_cast<int>(value)) + ' ';
        text += '\n';
    }
    for (const auto& triangle : kTetraTriangles) {
        text += '3';
        for (const std::int32_t index : triangle) text += ' ' + std::to_string(index);
        text += '\n';
    }
    return text;
}

using StlTriangle = std::array<std::array<float, 3>, 3>;  // its corners

inline void WriteStl(const std::string& path, const std::vector<StlTriangle>& triangles) {
    std::vector<std::byte> bytes(80);
    const auto count = static_cast<std::uint32_t>(triangles.size());
    AppendBytes(bytes, &count, sizeof count);
    for (const StlTriangle& triangle : triangles) {
        bytes.resize(bytes.size() + 12);  // the normal, which readers ignore
        AppendBytes(bytes, triangle.data(), sizeof triangle);
        bytes.resize(bytes.size() + 2);
    }
    WriteBytes(path, bytes);
}

inline void WriteStl(const std::string& path) {
    std::vector<StlTriangle> triangles;
    for (const auto& triangle : kTetraTriangles) {
        StlTriangle& corners = triangles.emplace_back();
        for (std::size_t i = 0; i < corners.size(); ++i)
            corners[i] = kTetraPoints[static_cast<std::size_t>(triangle[i])];
    }
    WriteStl(path, triangles);
}

namespace detail {
/// Counts, points and triangles.
/// @param normalBytes  zeros after each point and before each triangle, where the format has a normal
inline void WriteRecords(const std::string& path, std::size_t normalBytes) {
    std::vector<std::byte> bytes;
    const std::int32_t counts[] = {static_cast<std::int32_t>(kTetraPoints.size()),
                                   static_cast<std::int32_t>(kTetraTriangles.size())};
    AppendBytes(bytes, counts, sizeof counts);
    for (const auto& point : kTetraPoints) {
        AppendBytes(bytes, point.data(), 12);
        bytes.resize(bytes.size() + normalBytes);
    }
    for (const auto& triangle : kTetraTriangles) {
        bytes.resize(bytes.size() + normalBytes);
        AppendBytes(bytes, triangle.data(), 12);
    }
    WriteBytes(path, bytes);
}
}  // namespace detail

inline void WriteOis(const std::string& path) { detail::WriteRecords(path, 0); }
inline void WriteMsh(const std::string& path) { detail::WriteRecords(path, 12); }

/// A binary file with a texture; every corner has (0, 0).
inline void WriteTexturedPly(const std::string& path, const std::vector<std::byte>& image) {
    std::vector<std::byte> bytes;
    AppendText(bytes,
               "ply\nformat binary_little_endian 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
               "property float z\nelement face 4\nproperty list uchar int vertex_indices\n"
               "property list uchar float texcoord\nelement texture " +
                   std::to_string(image.size()) + "\nproperty uchar bytes\nend_header\n");
    for (const auto& point : kTetraPoints) AppendBytes(bytes, point.data(), 12);
    for (const auto& triangle : kTetraTriangles) {
        AppendText(bytes, "\3");
        AppendBytes(bytes, triangle.data(), 12);
        AppendText(bytes, "\6");
        bytes.resize(bytes.size() + 24);
    }
    AppendBytes(bytes, image.data(), image.size());
    WriteBytes(path, bytes);
}
