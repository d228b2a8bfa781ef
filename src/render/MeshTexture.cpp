// Textured meshes: pictures from encoded files or as pixels, and the texture on the GPU.
#include <GL/glew.h>

#include <cassert>
#include <memory>
#include <utility>

#include "KV_Components/Image.h"
#include "geometry/Mesh.h"
#include "platform/ComponentRegistry.h"
#include "platform/CurrentContext.h"

namespace {

namespace image = KvComponents::image;

struct Picture {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};

ComponentPtr MakeImage() { return RequireComponent(image::kFactory, image::kInterface); }

/// The picture of a png or jpeg file, its bottom row first: texture coordinates of ply files count v upward.
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

/// Lets the component library judge a picture that came as pixels.
void RequirePicture(const std::uint32_t* rgbaPixels, std::uint32_t width, std::uint32_t height) {
    const ComponentPtr picture = MakeImage();
    RequireSuccess(
        image::kSetSize(picture.get(), static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)));
    RequireSuccess(image::kWritePixels(picture.get(), rgbaPixels, std::size_t{4} * width * height));
}

}  // namespace

Mesh::Mesh(std::vector<Vertex> vertices, std::vector<Triangle> triangles, std::span<const TexCoord> texCoords,
           std::span<const std::uint8_t> imageBytes)
    : m_vTriangles(std::move(triangles)),
      m_vTexCoords(texCoords.begin(), texCoords.end()),
      m_vVertices(std::move(vertices)) {
    assert(m_vTexCoords.size() == 3 * m_vTriangles.size());
    Mesh::ComputeBoundingBox();
    const Picture picture = DecodeBottomUp(imageBytes);
    CreateTexture(picture.width, picture.height, picture.rgba.data(), imageBytes);
}

Mesh::Mesh(std::vector<Vertex> vertices, std::span<const HpsFace> faces, std::wstring name,
           std::span<const std::uint8_t> imageBytes, const std::uint32_t* rgbaPixels, std::uint32_t width,
           std::uint32_t height)
    : m_vVertices(std::move(vertices)), m_sName(std::move(name)), m_bGrayColors(rgbaPixels == nullptr) {
    m_vTriangles.reserve(faces.size());
    for (const HpsFace& face : faces) m_vTriangles.push_back({{face.indices[0], face.indices[1], face.indices[2]}});
    Mesh::ComputeBoundingBox();
    if (rgbaPixels == nullptr) return;
    m_vTexCoords.reserve(3 * faces.size());
    for (const HpsFace& face : faces) m_vTexCoords.insert(m_vTexCoords.end(), face.uv, face.uv + 3);
    RequirePicture(rgbaPixels, width, height);
    CreateTexture(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height),
                  reinterpret_cast<const std::uint8_t*>(rgbaPixels), imageBytes);
}

Mesh::Texture::Texture(std::uint32_t name, void* context, std::vector<std::uint8_t> imageBytes)
    : m_uName(name), m_hContext(context), m_vImageBytes(std::move(imageBytes)) {}

Mesh::Texture::~Texture() {
    if (m_uName != 0) glDeleteTextures(1, &m_uName);
}

void Mesh::CreateTexture(std::int32_t width, std::int32_t height, const std::uint8_t* rgbaPixels,
                         std::span<const std::uint8_t> imageBytes) {
    // The name comes last: what fails before it leaves nothing behind on the GPU.
    auto texture = std::make_shared<Texture>(0, CurrentContext(),
                                             std::vector<std::uint8_t>(imageBytes.begin(), imageBytes.end()));
    if (texture->m_hContext != nullptr) {
        glGenTextures(1, &texture->m_uName);
        glBindTexture(GL_TEXTURE_2D, texture->m_uName);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgbaPixels);
        glGenerateMipmap(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    m_pTexture = std::move(texture);
}
