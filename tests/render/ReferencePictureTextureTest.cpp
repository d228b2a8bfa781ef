// Pictures of textured meshes against the reference.
#include <fstream>

#include "io/PlySample.h"
#include "render/ReferencePictureScene.h"
#include "support/PngFile.h"
#include "support/ScratchFolder.h"

namespace {

using namespace reference_picture;
using reference::Renderer;
using reference::Shading;

constexpr int kTexels = 6;

/// Soft colours, so that the filter of a driver has little to round.
png_file::Bytes TextureBytes() {
    png_file::Bytes rgba;
    for (int row = 0; row < kTexels; ++row)
        for (int column = 0; column < kTexels; ++column)
            for (const int part : {100 + 20 * column, 180 - 15 * row, 80 + 12 * row + 9 * column, 255})
                rgba.push_back(static_cast<std::uint8_t>(part));
    return rgba;
}

/// The image is upright: v = 0 is its lowest row.
reference::Texture ReferenceTexture() {
    reference::Texture texture{kTexels, kTexels, {}};
    const png_file::Bytes rgba = TextureBytes();
    for (std::size_t row = kTexels; row-- > 0;)
        for (std::size_t column = 0; column < kTexels; ++column) {
            const std::uint8_t* const p = &rgba[4 * (row * kTexels + column)];
            texture.texels.push_back((1.0 / 255.0) * Vec{1.0 * p[0], 1.0 * p[1], 1.0 * p[2]});
        }
    return texture;
}

/// A place on a bowl seen from the front, within one repetition of the image.
Vec TexCoordOf(const KV_ScenePane::Vertex& vertex) {
    const auto f = [](float place) { return static_cast<double>(0.5F + 0.09F * place); };
    return {f(vertex.x), f(vertex.y), 0.0};
}

std::string TexturedFile(const HostObject& host) {
    using namespace ply_sample;
    const png_file::Bytes image = png_file::OfRgba(kTexels, kTexels, TextureBytes());
    const auto& vertices = host.mesh.GetVertices();
    const auto& triangles = host.mesh.GetTriangles();
    std::string file = kBinary + Vertices(static_cast<int>(vertices.size())) +
                       Faces(static_cast<int>(triangles.size()), kFacesWithUv) + Image(static_cast<int>(image.size())) +
                       kEnd;
    for (const auto& v : vertices) file += Floats({v.x, v.y, v.z});
    for (const auto& t : triangles) {
        file += Face(t.v[0], t.v[1], t.v[2]) + "\x06";
        for (const int corner : t.v) {
            const Vec at = TexCoordOf(vertices[static_cast<std::size_t>(corner)]);
            file += Floats({static_cast<float>(at.x), static_cast<float>(at.y)});
        }
    }
    return file + std::string(image.begin(), image.end());
}

/// The mean of the unit normals of the faces around each vertex, which is shorter than 1.
void UseMeanNormals(reference::Object* object) {
    std::vector<int> faces(object->positions.size());
    object->normals.assign(object->positions.size(), {});
    for (const auto& corners : object->triangles) {
        const auto place = [&](std::size_t i) { return object->positions[static_cast<std::size_t>(corners[i])]; };
        const Vec normal = reference::Unit(Cross(place(1) - place(0), place(2) - place(0)));
        for (const int corner : corners) {
            const auto i = static_cast<std::size_t>(corner);
            object->normals[i] = object->normals[i] + normal;
            ++faces[i];
        }
    }
    for (std::size_t i = 0; i < faces.size(); ++i) object->normals[i] = (1.0 / faces[i]) * object->normals[i];
}

/// A textured bowl that the viewer reads from a file, beside a ball without a texture.
class ReferenceTextures : public testing::TestWithParam<Case> {
protected:
    ReferenceTextures() : both({Ball({{2.0, 2.0, 0.5}, 1.6, Paint::Colored})}, GetParam().size, GetParam().view) {
        const HostObject bowl = Bowl({{-0.5, -0.5, 0.0}, 4.0, Paint::None, 0xFFFFFF});
        std::ofstream(folder / "bowl.ply", std::ios::binary) << TexturedFile(bowl);
        const std::string path = folder / "bowl.ply";
        both.Methods().InitializeKVReg();
        both.Methods().ImportMesh(std::wstring(path.begin(), path.end()).c_str());
        reference::Object object = ToReference(bowl);
        UseMeanNormals(&object);
        object.texture = ReferenceTexture();
        for (const auto& corners : object.triangles)
            for (const int corner : corners)
                object.texCoords.push_back(TexCoordOf(bowl.mesh.GetVertices()[static_cast<std::size_t>(corner)]));
        both.scene.objects.push_back(object);
        both.SetView(GetParam().view);
    }
    ~ReferenceTextures() override {
        both.Methods().ClearData();
        both.Methods().FinalizeKVReg();
    }

    ScratchFolder folder;
    TwoRenderers both;
};

TEST_P(ReferenceTextures, AreLit) {
    ASSERT_EQ(both.Methods().GetNumObjects(), 2);
    Renderer renderer(both.scene);
    const Demand demand = DemandFor(GetParam().size);
    const std::string name = NameOf(GetParam()) + "_texture";
    ExpectSamePicture(renderer.Draw(Shading::Flat), both.Draw(KV_ScenePane::DrawModeFlat), demand, name + "_flat");
    ExpectSamePicture(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud), demand,
                      name + "_gouraud");
    ExpectSamePicture(renderer.Draw(Shading::PerPixel), both.Draw(KV_ScenePane::DrawModePerPixel), demand,
                      name + "_perpixel");
    both.SetShadows({0.1, 0.05, 0.3});
    ExpectSamePicture(renderer.Draw(Shading::Shadowed), both.Draw(KV_ScenePane::DrawModeGouraud), demand,
                      name + "_shadow");
}

TEST_P(ReferenceTextures, AreFoundMissing) {
    const auto drawn = both.Draw(KV_ScenePane::DrawModePerPixel);
    both.scene.objects[1].texture = {};
    EXPECT_GE(Compare(Renderer(both.scene).Draw(Shading::PerPixel), drawn).wrong,
              GetParam().size.width < 100 ? 5 : 500);
}

INSTANTIATE_TEST_SUITE_P(Bowl, ReferenceTextures, testing::ValuesIn(CasesOf(Turned())),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
