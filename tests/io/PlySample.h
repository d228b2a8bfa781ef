// Ply files put together by hand.
#pragma once
#include <cstdint>
#include <cstring>
#include <string>

namespace ply_sample {

constexpr char kText[] = "ply\nformat ascii 1.0\n";
constexpr char kBinary[] = "ply\nformat binary_little_endian 1.0\n";
constexpr char kPositions[] = "property float x\nproperty float y\nproperty float z\n";
constexpr char kColors[] = "property uchar red\nproperty uchar green\nproperty uchar blue\n";
constexpr char kFaces[] = "property list uchar int vertex_indices\n";
constexpr char kFacesWithUv[] = "property list uchar int vertex_indices\nproperty list uint8 float texcoord\n";

inline std::string Vertices(int count, const std::string& properties = kPositions) {
    return "element vertex " + std::to_string(count) + "\n" + properties;
}
inline std::string Faces(int count, const std::string& properties = kFaces) {
    return "element face " + std::to_string(count) + "\n" + properties;
}
inline std::string Image(int count) { return "element texture " + std::to_string(count) + "\nproperty uchar bytes\n"; }
constexpr char kEnd[] = "end_header\n";

/// The bytes of some numbers, one after the other.
template <class... Numbers>
std::string Bytes(Numbers... numbers) {
    std::string bytes;
    const auto append = [&bytes](auto number) {
        char raw[sizeof number];
        std::memcpy(raw, &number, sizeof number);
        bytes.append(raw, sizeof number);
    };
    (append(numbers), ...);
    return bytes;
}
inline std::string Floats(std::initializer_list<float> values) {
    std::string bytes;
    for (const float value : values) bytes += Bytes(value);
    return bytes;
}
inline std::string Face(std::int32_t a, std::int32_t b, std::int32_t c) { return Bytes(std::uint8_t{3}, a, b, c); }

/// The corners that the tests share, (0, 0, 0), (1, 0, 0) and (0, 1, 0), and the one triangle between them.
inline std::string Corners() { return Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}); }
inline std::string BinaryTriangle() {
    return std::string(kBinary) + Vertices(3) + Faces(1) + kEnd + Corners() + Face(0, 1, 2);
}
inline std::string TextTriangle() {
    return std::string(kText) + Vertices(3) + Faces(1) + kEnd + "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n";
}

}  // namespace ply_sample
