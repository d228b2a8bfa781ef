// Textured meshes: pictures from encoded files or as pixels, and the texture on the GPU. The component library decodes
// the files and checks the sizes; its failures are exceptions with its text.
#include "render/MeshTexture.h"

#include <GL/glew.h>

#include <algorithm>
#include <cassert>
#include <memory>
#include <new>
#include <utility>

#include "KV_Components/Image.h"
#include "platform/ComponentRegistry.h"
#include "platform/CurrentContext.h"

namespace {

namespace image = KvComponents::image;

/// Bytes r, g, b, a per pixel, row after row.
struct Picture {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};

ComponentPtr MakeImage() { return RequireComponent(image::kFactory, image::kInterface); }

/// Decodes a png or jpeg file, bottom row first, because the texture coordinates of ply files count v upward.
Picture DecodeBottomUp(std::span<const std::uint8_t> imageBytes) {
    const ComponentPtr decoder = MakeImage();
    RequireSuccess(image::kDecodeFile(decoder.get(), imageBytes.data(), imageBytes.size()));
    RequireSuccess(image::kFlip(decoder.get()));
    Picture picture;
    RequireSuccess(image::kSize(decoder.get(), &picture.width, &picture.height));
    picture.rgba.resize(std::size_t{4} * static_cast<std::size_t>(picture.width) *
                        static_cast<std::size_t>(picture.height));
    RequireSuccess(image::kReadPixels(decoder.get(), picture.rgba.data(), picture.rgba.size()));
    return picture;
}

/// Half the width and height, at least 1; each pixel is the rounded mean of four. Odd last rows and columns are
/// dropped.
Picture Halved(const std::uint8_t* rgba, std::int32_t width, std::int32_t height) {
    Picture half{std::max(width / 2, 1), std::max(height / 2, 1), {}};
    half.rgba.reserve(std::size_t{4} * static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height));
    // Clamped to the picture: a side of 1 pixel has no second row or column.
    const auto at = [=](std::int32_t x, std::int32_t y, std::size_t channel) -> unsigned {
        const auto row = static_cast<std::size_t>(std::min(y, height - 1));
        const auto column = static_cast<std::size_t>(std::min(x, width - 1));
        return rgba[4 * (row * static_cast<std::size_t>(width) + column) + channel];
    };
    for (std::int32_t y = 0; y < half.height; ++y)
        for (std::int32_t x = 0; x < half.width; ++x)
            for (std::size_t c = 0; c < 4; ++c)
                half.rgba.push_back(
                    static_cast<std::uint8_t>((at(2 * x, 2 * y, c) + at(2 * x + 1, 2 * y, c) + at(2 * x, 2 * y + 1, c) +
                                               at(2 * x + 1, 2 * y + 1, c) + 2) /
                                              4));
    return half;
}

/// Uploads to the bound texture. A picture larger than the limit of the driver is halved until it fits: a coarse
/// picture is better than none.
void UploadPicture(std::int32_t width, std::int32_t height, const std::uint8_t* rgba) {
    GLint longestSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longestSide);
    Picture smaller;
    while (std::max(width, height) > std::max(longestSide, 1)) {
        smaller = Halved(rgba, width, height);
        width = smaller.width;
        height = smaller.height;
        rgba = smaller.rgba.data();
    }
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
}

/// The texture must have no name. Its name is generated last: when an allocation fails before, nothing is on the GPU.
void MakeOnGpu(Mesh::Texture& texture, std::int32_t width, std::int32_t height, const std::uint8_t* rgba) {
    glGenTextures(1, &texture.m_uName);
    glBindTexture(GL_TEXTURE_2D, texture.m_uName);
    UploadPicture(width, height, rgba);
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glBindTexture(GL_TEXTURE_2D, 0);
}

/// Checks a picture that was given as pixels with the limits of the component library.
/// @throws std::runtime_error when it rejects the size
void RequirePicture(const std::uint32_t* rgbaPixels, std::uint32_t width, std::uint32_t height) {
    const ComponentPtr picture = MakeImage();
    RequireSuccess(image::kSetSize(picture.get(), static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)));
    RequireSuccess(image::kWritePixels(picture.get(), rgbaPixels, std::size_t{4} * width * height));
}

}  // namespace

std::shared_ptr<Mesh> MakePlyMesh(std::vector<Vertex> vertices, std::vector<Triangle> triangles,
                                  std::span<const TexCoord> texCoords, std::span<const std::uint8_t> imageBytes) {
    assert(texCoords.size() == 3 * triangles.size());
    auto mesh = std::make_shared<Mesh>(std::wstring(), false);
    mesh->m_vVertices = std::move(vertices);
    mesh->m_vTriangles = std::move(triangles);
    mesh->m_vTexCoords.assign(texCoords.begin(), texCoords.end());
    mesh->ComputeBoundingBox();
    const Picture picture = DecodeBottomUp(imageBytes);
    CreateTexture(*mesh, picture.width, picture.height, picture.rgba.data(), imageBytes);
    return mesh;
}

std::shared_ptr<Mesh> MakeHpsMesh(std::vector<Vertex> vertices, std::span<const HpsFace> faces, std::wstring name,
                                  std::span<const std::uint8_t> imageBytes, const std::uint32_t* rgbaPixels,
                                  std::uint32_t width, std::uint32_t height) {
    auto mesh = std::make_shared<Mesh>(std::move(name), false);
    mesh->m_bGrayColors = rgbaPixels == nullptr;
    mesh->m_vVertices = std::move(vertices);
    mesh->m_vTriangles.reserve(faces.size());
    for (const HpsFace& face : faces) mesh->m_vTriangles.push_back({{face.v[0], face.v[1], face.v[2]}});
    mesh->ComputeBoundingBox();
    if (rgbaPixels == nullptr) return mesh;
    mesh->m_vTexCoords.reserve(3 * faces.size());
    for (const HpsFace& face : faces) mesh->m_vTexCoords.insert(mesh->m_vTexCoords.end(), face.uv, face.uv + 3);
    RequirePicture(rgbaPixels, width, height);
    CreateTexture(*mesh, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height),
                  reinterpret_cast<const std::uint8_t*>(rgbaPixels), imageBytes);
    return mesh;
}

void CreateTexture(Mesh& mesh, std::int32_t width, std::int32_t height, const std::uint8_t* rgbaPixels,
                   std::span<const std::uint8_t> imageBytes) {
    auto texture = std::make_shared<Mesh::Texture>(0, CurrentContext(),
                                                   std::vector<std::uint8_t>(imageBytes.begin(), imageBytes.end()));
    if (texture->m_hContext != nullptr) MakeOnGpu(*texture, width, height, rgbaPixels);
    mesh.m_pTexture = std::move(texture);
}

void TakeOutOfContext(const std::shared_ptr<Mesh::Texture>& texture, std::vector<TexturePixels>& list) {
    if (texture->m_uName == 0) return;
    glBindTexture(GL_TEXTURE_2D, texture->m_uName);
    try {
        TexturePixels pixels{texture, 0, 0, {}};
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &pixels.width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &pixels.height);
        pixels.rgba.resize(std::size_t{4} * static_cast<std::size_t>(pixels.width) *
                           static_cast<std::size_t>(pixels.height));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.rgba.data());
        list.push_back(std::move(pixels));
    } catch (const std::bad_alloc&) {
        // no picture, but no name of a context that is gone either
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(1, &texture->m_uName);
    texture->m_uName = 0;
    texture->m_hContext = nullptr;
}

void PutIntoContext(const TexturePixels& pixels) {
    pixels.texture->m_hContext = CurrentContext();
    MakeOnGpu(*pixels.texture, pixels.width, pixels.height, pixels.rgba.data());
}
