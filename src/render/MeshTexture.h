// Textured meshes: made from what ply and hps files hold, and the texture on the GPU.
#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "geometry/Mesh.h"

/// A textured object of a ply file, without a name. The rendering context must be current when there is one.
/// @param texCoords   three per triangle in corner order; v = 0 is the bottom row of the picture
/// @param imageBytes  a png or jpeg file; kept, so that exports can write it back
/// @throws std::runtime_error when the picture cannot be decoded
[[nodiscard]] std::shared_ptr<Mesh> MakePlyMesh(std::vector<Vertex> vertices, std::vector<Triangle> triangles,
                                                std::span<const TexCoord> texCoords,
                                                std::span<const std::uint8_t> imageBytes);

/// An object of an hps file. With pixels it is textured, and the rendering context must be current when there is one;
/// without, the texture coordinates of the faces are dropped.
/// @param rgbaPixels  width x height pixels of bytes r, g, b, a, row after row, the first at v = 0; may be null
/// @throws std::runtime_error when the component library refuses the pixels
[[nodiscard]] std::shared_ptr<Mesh> MakeHpsMesh(std::vector<Vertex> vertices, std::span<const HpsFace> faces,
                                                std::wstring name, std::span<const std::uint8_t> imageBytes,
                                                const std::uint32_t* rgbaPixels, std::uint32_t width,
                                                std::uint32_t height);

/// Gives the mesh a texture in the current context and releases a former one. A picture larger than the driver accepts
/// is halved until it fits. Without a context the image bytes alone are kept, for exports.
/// @param rgbaPixels  4 bytes per pixel, the first row at v = 0
void CreateTexture(Mesh& mesh, std::int32_t width, std::int32_t height, const std::uint8_t* rgbaPixels,
                   std::span<const std::uint8_t> imageBytes);

/// A texture that outlives its context, and what it showed.
struct TexturePixels {
    std::shared_ptr<Mesh::Texture> texture;
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};
/// Deletes the texture on the GPU, for all meshes that share it, and adds it with its pixels to the list. Not without
/// memory for them: the meshes are drawn without a picture then. The context of the texture must be current.
void TakeOutOfContext(const std::shared_ptr<Mesh::Texture>& texture, std::vector<TexturePixels>& list);
/// Makes a texture of the list again, in the current context.
void PutIntoContext(const TexturePixels& pixels);
