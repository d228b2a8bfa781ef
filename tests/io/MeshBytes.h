// Bytes of small mesh files, put together value by value.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "geometry/Vector3.h"

using MeshBytes = std::vector<std::byte>;

template <class... T>
MeshBytes Packed(const T&... values) {
    MeshBytes bytes;
    const auto append = [&](const auto& value) {
        const auto* at = reinterpret_cast<const std::byte*>(&value);
        bytes.insert(bytes.end(), at, at + sizeof value);
    };
    (append(values), ...);
    return bytes;
}

inline MeshBytes operator+(MeshBytes a, const MeshBytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline MeshBytes Cut(MeshBytes bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

/// Text filled up with zero bytes.
inline MeshBytes Padded(std::string_view text, std::size_t size) {
    MeshBytes bytes(size);
    if (!text.empty()) std::memcpy(bytes.data(), text.data(), text.size());  // no null pointer for memcpy()
    return bytes;
}

inline MeshBytes StlHead(std::uint32_t count, std::string_view header = "any") {
    return Padded(header, 80) + Packed(count);
}

/// The normal and the attribute are not used by the reader, and differ from all other numbers.
inline MeshBytes StlRecord(const Float3& a, const Float3& b, const Float3& c) {
    return Packed(Float3{7e7f, 8e8f, 9e9f}, a, b, c, std::uint16_t{0xABCD});
}

inline MeshBytes StlFile(const std::vector<std::array<Float3, 3>>& triangles) {
    MeshBytes bytes = StlHead(static_cast<std::uint32_t>(triangles.size()));
    for (const auto& t : triangles) bytes = bytes + StlRecord(t[0], t[1], t[2]);
    return bytes;
}
