// Packs vertices and indices into the layouts of the GPU buffers. MeshDraw.cpp uploads and draws them.
#include "render/VertexPacking.h"

#include <cmath>
#include <cstring>

namespace {

// Position and normal are the first fields of a vertex, so that one copy transfers both.
static_assert(offsetof(Vertex, nx) == 12 && offsetof(Vertex, color) == kPlainStride);

/// The low eight bits of the number, rounded down; 0 for a NaN and for numbers too large to convert.
std::uint8_t ToByte(double value) {
    const double whole = std::floor(value);
    if (!(std::fabs(whole) < 1e9)) return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(whole) & 0xFF);
}

/// Table of one channel: vertex colour times its share plus object colour times its share. The mix of single and double
/// precision fixes the rounding.
std::array<std::uint8_t, 256> MixChannel(float vertexShare, float objectShare, float objectChannel) {
    std::array<std::uint8_t, 256> mixed{};
    const float fromObject = objectShare * objectChannel;
    for (std::size_t c = 0; c < mixed.size(); ++c) {
        mixed[c] = ToByte(
            (static_cast<double>(c) / 255.0 * static_cast<double>(vertexShare) + static_cast<double>(fromObject)) *
            255.0);
    }
    return mixed;
}

}  // namespace

VertexColorTable MakeVertexColorTable(const float objectColor[3], bool blend) {
    const float vertexShare = blend ? 0.15f : 1.0f;
    const float objectShare = static_cast<float>(1.0 - static_cast<double>(vertexShare));
    return {.red = MixChannel(vertexShare, objectShare, objectColor[0]),
            .green = MixChannel(vertexShare, objectShare, objectColor[1]),
            .blue = MixChannel(vertexShare, objectShare, objectColor[2]),
            .alpha = ToByte(static_cast<double>(objectShare + vertexShare) * 255.0)};
}

void PackPlain(std::span<const Vertex> vertices, std::byte* out) {
    for (const Vertex& vertex : vertices) {
        std::memcpy(out, &vertex, kPlainStride);
        out += kPlainStride;
    }
}

// The vertex holds its colour as 0x00RRGGBB, the buffer as bytes r, g, b, a.
void PackColored(std::span<const Vertex> vertices, const VertexColorTable& table, std::byte* out) {
    for (const Vertex& vertex : vertices) {
        const std::uint8_t color[4] = {table.red[(vertex.color >> 16) & 0xFF], table.green[(vertex.color >> 8) & 0xFF],
                                       table.blue[vertex.color & 0xFF], table.alpha};
        std::memcpy(out, &vertex, kPlainStride);
        std::memcpy(out + kPlainStride, color, sizeof(color));
        out += kColoredStride;
    }
}

// Each corner becomes a separate vertex: position and normal are copied for every triangle that uses them.
void PackTextured(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                  std::span<const TexCoord> texCoords, std::byte* out) {
    std::size_t corner = 0;
    for (const Triangle& triangle : triangles) {
        for (const std::int32_t index : triangle.v) {
            std::memcpy(out, &vertices[static_cast<std::size_t>(index)], kPlainStride);
            std::memcpy(out + kPlainStride, &texCoords[corner++], sizeof(TexCoord));
            out += kTexturedStride;
        }
    }
}

void PackFirstCorners(std::span<const Triangle> triangles, std::size_t step, std::uint32_t* out) {
    for (std::size_t i = 0; i < triangles.size(); i += step) *out++ = static_cast<std::uint32_t>(triangles[i].v[0]);
}
