// The images of a scene: one for the whole mesh where that is possible, else the colours that they give to the
// vertices.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "FoundMesh.h"
#include "KV_Components/ImageDecode.h"
#include "NamedFiles.h"

struct aiMaterial;
struct aiMesh;
struct aiScene;

/// The parts of a scene are added one after the other, then Finish() is called once.
class MeshImages {
public:
    /// The first vertex and the first triangle of a part, of those that were found so far.
    struct Start {
        std::size_t vertex = 0, triangle = 0;
    };

    /// @param scene  outlives this object
    MeshImages(const aiScene& scene, const NamedFiles& files) : m_scene(scene), m_files(files) {}

    /// @param found  already has the vertices and triangles of the part
    void Add(const aiMesh& mesh, const aiMaterial& material, Start start, FoundMesh& found);
    /// Adds the image, or colours the vertices.
    void Finish(FoundMesh& found);

private:
    struct Part {
        std::string image;  // its name in the scene; empty without one
        std::size_t firstVertex = 0, vertexCount = 0;
        std::vector<TexCoord> texCoords;  // of its vertices; empty without an image
    };

    [[nodiscard]] std::vector<std::uint8_t> Load(const std::string& image) const;
    void ColorVertices(const Part& part, const KvComponents::Picture& picture, FoundMesh& found) const;
    void SetOneImage(const std::string& image, FoundMesh& found);
    void ColorByImages(FoundMesh& found);

    const aiScene& m_scene;
    NamedFiles m_files;
    std::vector<Part> m_vParts;
    std::set<std::string> m_setMissing;  // images that were not found
};
