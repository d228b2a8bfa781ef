// The library flattens the scene and makes triangles; what is left here is to put its meshes together. Images are in
// MeshImages.h.
#include "LibraryScene.h"

#include <assimp/config.h>
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cmath>
#include <new>
#include <optional>

#include "KV_ScenePane/PathText.h"
#include "LibraryFiles.h"
#include "MeshImages.h"
#include "io/FileExtension.h"

namespace {

/// Materials of these formats have light intensities; pictures and vertex colours here are as on the screen.
bool HasLinearColors(const std::string& file) {
    const std::wstring extension = LowerCaseExtension(KV_ScenePane::WidePath(file));
    return extension == L"gltf" || extension == L"glb";
}

/// The curve of sRGB.
double OnScreen(double linear) {
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
}

std::uint32_t WordOf(const aiColor4D& color, bool isLinear) {
    const auto channel = [isLinear](float value) {
        return ChannelOf(isLinear ? OnScreen(double{value}) : double{value});
    };
    return ColorWord(channel(color.r), channel(color.g), channel(color.b), ChannelOf(double{color.a}));
}

/// The colour of a material; nothing when it has none of interest: the viewer's own colour is better than a plain one.
std::optional<std::uint32_t> ColorOf(const aiMaterial& material, bool isLinear) {
    aiColor4D color;
    if (material.Get(AI_MATKEY_COLOR_DIFFUSE, color) != aiReturn_SUCCESS) return std::nullopt;
    // The second one is what the library gives to materials without a colour, and to formats without materials.
    for (const float plain : {1.0f, 0.6f})
        if (color.r == plain && color.g == plain && color.b == plain) return std::nullopt;
    color.a = 1.0f;  // not the opacity: what is half transparent is shown whole
    return WordOf(color, isLinear);
}

class Collector {
public:
    Collector(const aiScene& scene, const NamedFiles& files, bool isLinear)
        : m_scene(scene), m_images(scene, files), m_bLinear(isLinear) {}

    FoundMesh Collect() {
        m_found.hasNormals = true;
        for (unsigned i = 0; i < m_scene.mNumMeshes; ++i) AddMesh(*m_scene.mMeshes[i]);
        m_images.Finish(m_found);
        if (m_bHasLines) m_found.leftOut.emplace_back("its lines are not shown");
        return std::move(m_found);
    }

private:
    void AddMesh(const aiMesh& mesh) {
        const aiMaterial& material = *m_scene.mMaterials[mesh.mMaterialIndex];
        const std::size_t first = m_found.mesh.m_vVertices.size();
        const std::optional<std::uint32_t> color = ColorOf(material, m_bLinear);
        m_found.mesh.m_bHasColors = m_found.mesh.m_bHasColors || mesh.HasVertexColors(0) || color;
        m_found.hasNormals = m_found.hasNormals && mesh.HasNormals();
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            const aiVector3D& p = mesh.mVertices[i];
            const aiVector3D n = mesh.HasNormals() ? mesh.mNormals[i] : aiVector3D(0.0f);
            const std::uint32_t word = mesh.HasVertexColors(0) ? WordOf(mesh.mColors[0][i], m_bLinear)
                                                               : color.value_or(ColorWord(255, 255, 255));
            m_found.mesh.m_vVertices.push_back({p.x, p.y, p.z, n.x, n.y, n.z, word, 0});
        }
        const std::size_t firstTriangle = m_found.mesh.m_vTriangles.size();
        for (unsigned i = 0; i < mesh.mNumFaces; ++i) AddFace(mesh.mFaces[i], first);
        m_images.Add(mesh, material, {first, firstTriangle}, m_found);
    }

    void AddFace(const aiFace& face, std::size_t first) {
        m_bHasLines = m_bHasLines || face.mNumIndices == 2;
        if (face.mNumIndices != 3) return;  // a point or a line
        Triangle triangle;
        for (unsigned i = 0; i < 3; ++i) triangle.v[i] = static_cast<std::int32_t>(first + face.mIndices[i]);
        m_found.mesh.m_vTriangles.push_back(triangle);
    }

    const aiScene& m_scene;
    MeshImages m_images;
    FoundMesh m_found;
    bool m_bLinear;
    bool m_bHasLines = false;
};

/// The text of the library as one line without paths of this machine.
/// @param file  that was read before, so what failed to open is its content
/// @throws std::bad_alloc, which the library passes on as a text
std::string ReasonOf(std::string text, const std::string& file) {
    for (const char* const shortage : {"bad_alloc", "length_error", "_M_default_append", "vector::", "bad_array"})
        if (text.find(shortage) != std::string::npos) throw std::bad_alloc();
    constexpr std::size_t kMost = 200;
    text.erase(std::min(text.find_first_of("\r\n"), text.size()));
    const bool isOpening =
        text.find("ailed to open") != std::string::npos || text.find("nable to open") != std::string::npos;
    if (text.starts_with("No suitable reader") || (isOpening && text.find(file) != std::string::npos))
        return "its content is not of the type that its name says";
    const std::string folder = file.substr(0, file.rfind('/') + 1);
    for (std::size_t at = 0; !folder.empty() && (at = text.find(folder, at)) != std::string::npos;)
        text.erase(at, folder.size());
    return text.substr(0, kMost);
}

}  // namespace

FoundMesh ReadByLibrary(const std::string& file, const NamedFiles& files) {
    Assimp::Importer importer;
    importer.SetIOHandler(new LibraryFiles(files));  // the importer owns it
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS, aiComponent_TANGENTS_AND_BITANGENTS | aiComponent_BONEWEIGHTS |
                                                            aiComponent_ANIMATIONS | aiComponent_LIGHTS |
                                                            aiComponent_CAMERAS);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, true);  // coordinates as in the file
    constexpr unsigned kSteps = aiProcess_Triangulate | aiProcess_RemoveComponent | aiProcess_PreTransformVertices |
                                aiProcess_JoinIdenticalVertices;
    const aiScene* const scene = importer.ReadFile(file, kSteps);
    if (scene == nullptr) throw UnreadableFile(ReasonOf(importer.GetErrorString(), file));
    return Collector(*scene, files, HasLinearColors(file)).Collect();
}
