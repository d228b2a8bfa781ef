// What the formats of scenepane-read have in common: the mesh that a file holds, before it becomes a result.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "ReaderResult.h"
#include "geometry/Vertex.h"

/// Why a file gives nothing, as one line.
class UnreadableFile : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The reason for a file that ends too early, as the viewer's own reader of ply words it.
inline constexpr const char* kCutShort = "Unexpected end of data.";

/// Which normals a mesh without any gets.
enum class NormalRule {
    Mean,  ///< as the viewer gives them to ply files
    Unit   ///< as the viewer gives them to stl files
};

/// Vertices and triangles of all parts of a file. Without triangles: a point cloud.
struct FoundMesh {
    MeshBuffers mesh{false};
    /// Every vertex has one; otherwise they are computed.
    bool hasNormals = false;
    NormalRule normalRule = NormalRule::Mean;
    /// Three per triangle, or none; v is 0 at the bottom row of the image.
    std::vector<TexCoord> texCoords;
    /// The one image that all triangles have, as a png or jpeg file; else empty.
    std::vector<std::uint8_t> image;
    /// What of the file is not in this mesh, one sentence each.
    std::vector<std::string> leftOut;
};

/// @throws UnreadableFile when there is neither a triangle nor a point, or a triangle refers to a missing vertex
[[nodiscard]] ReaderResult ResultOf(FoundMesh found);

/// @param triangle  position of the one that the corners belong to, or begin with
/// @throws UnreadableFile when a corner is none of the vertices
void RequireCorners(std::span<const std::int32_t> corners, std::size_t vertices, std::size_t triangle);

/// A colour word from channels of 0 to 255.
[[nodiscard]] constexpr std::uint32_t ColorWord(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                                                std::uint32_t alpha = 255) {
    return (alpha << 24) | (red << 16) | (green << 8) | blue;
}

/// A channel from 0 to 1 as 0 to 255; what is not a number is 0.
[[nodiscard]] std::uint32_t ChannelOf(double value);
