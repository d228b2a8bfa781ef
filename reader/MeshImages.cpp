// Texture coordinates repeat outside 0 to 1, as most formats define it.
#include "MeshImages.h"

#include <assimp/material.h>
#include <assimp/scene.h>
#include <assimp/texture.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace {

/// The name of the image that gives a material its colour; empty without one.
std::string ImageOf(const aiMaterial& material) {
    for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}) {
        aiString path;
        if (material.GetTexture(type, 0, &path) == aiReturn_SUCCESS && path.length > 0) return path.C_Str();
    }
    return {};
}

std::size_t PixelAt(float coordinate, std::int32_t size) {
    const double fraction = std::isfinite(coordinate) ? coordinate - std::floor(double{coordinate}) : 0.0;
    return std::min(static_cast<std::size_t>(fraction * size), static_cast<std::size_t>(size) - 1);
}

std::uint32_t ColorAt(const KvComponents::Picture& picture, TexCoord at) {
    const std::size_t x = PixelAt(at.u, picture.m_iWidth);
    const std::size_t fromBottom = PixelAt(at.v, picture.m_iHeight);
    const std::size_t y = static_cast<std::size_t>(picture.m_iHeight) - 1 - fromBottom;
    const std::uint8_t* const pixel = &picture.m_vRgba[4 * (y * static_cast<std::size_t>(picture.m_iWidth) + x)];
    return ColorWord(pixel[0], pixel[1], pixel[2]);
}

}  // namespace

void MeshImages::Add(const aiMesh& mesh, const aiMaterial& material, Start start, FoundMesh& found) {
    Part part{ImageOf(material), start.vertex, mesh.mNumVertices, {}};
    if (!mesh.HasTextureCoords(0)) part.image.clear();
    if (!part.image.empty()) {
        part.texCoords.reserve(mesh.mNumVertices);
        for (unsigned i = 0; i < mesh.mNumVertices; ++i)
            part.texCoords.push_back({mesh.mTextureCoords[0][i].x, mesh.mTextureCoords[0][i].y});
        for (std::size_t i = start.triangle; i < found.mesh.m_vTriangles.size(); ++i)
            for (const std::int32_t corner : found.mesh.m_vTriangles[i].v)
                found.texCoords.push_back(part.texCoords[static_cast<std::size_t>(corner) - start.vertex]);
    }
    m_vParts.push_back(std::move(part));
}

void MeshImages::Finish(FoundMesh& found) {
    std::set<std::string> images;
    for (const Part& part : m_vParts)
        if (!part.image.empty()) images.insert(part.image);
    const bool coversAll = found.texCoords.size() == 3 * found.mesh.m_vTriangles.size();
    if (images.size() == 1 && coversAll)
        SetOneImage(*images.begin(), found);
    else if (!images.empty())
        ColorByImages(found);
    for (const std::string& image : m_setMissing)
        found.leftOut.push_back("its image is not shown: there is no file " + image);
}

void MeshImages::SetOneImage(const std::string& image, FoundMesh& found) {
    found.image = Load(image);
    if (found.image.empty()) m_setMissing.insert(image);
}

void MeshImages::ColorByImages(FoundMesh& found) {
    found.texCoords.clear();
    std::set<std::string> unreadable;
    // One decoded image at a time.
    std::vector<const Part*> parts;
    for (const Part& part : m_vParts)
        if (!part.image.empty()) parts.push_back(&part);
    std::ranges::stable_sort(parts, {}, [](const Part* part) { return part->image; });
    std::optional<KvComponents::Picture> picture;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i == 0 || parts[i]->image != parts[i - 1]->image) {
            const std::vector<std::uint8_t> file = Load(parts[i]->image);
            if (file.empty()) m_setMissing.insert(parts[i]->image);
            picture = KvComponents::DecodeImage(file);
            if (!picture && !file.empty()) unreadable.insert(parts[i]->image);
        }
        if (picture) ColorVertices(*parts[i], *picture, found);
    }
    for (const std::string& image : unreadable)
        found.leftOut.push_back("an image is not shown: it is no png or jpeg file, or damaged: " + image);
}

void MeshImages::ColorVertices(const Part& part, const KvComponents::Picture& picture, FoundMesh& found) const {
    found.mesh.m_bHasColors = true;
    for (std::size_t i = 0; i < part.vertexCount; ++i)
        found.mesh.m_vVertices[part.firstVertex + i].color = ColorAt(picture, part.texCoords[i]);
}

std::vector<std::uint8_t> MeshImages::Load(const std::string& image) const {
    const aiTexture* const embedded = m_scene.GetEmbeddedTexture(image.c_str());
    if (embedded == nullptr) return m_files.Load(image);
    if (embedded->mHeight != 0) return {};  // raw pixels, which only old game formats have
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(embedded->pcData);
    return {bytes, bytes + embedded->mWidth};
}
