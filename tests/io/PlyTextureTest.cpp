// Textured meshes in ply files, with and without an OpenGL context: the bytes of the image survive export and import.
#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/PlySample.h"
#include "support/ControlFixture.h"
#include "support/PngFile.h"
#include "support/ScratchFolder.h"

namespace {

using namespace ply_sample;
using KV_ScenePane::WidePath;
using testing::ElementsAreArray;

using ImageBytes = std::vector<std::uint8_t>;

/// 2 x 1 pixels, red and blue.
ImageBytes Png() { return png_file::OfRgba(2, 1, {255, 0, 0, 255, 0, 0, 255, 255}); }

/// The triangle of Corners() with texture coordinates 0 to 2.5, and vertex colours, which are not used.
std::string TexturedFile(const ImageBytes& image) {
    const std::string vertex = std::string(kPositions) + kColors;
    const std::string corners =
        Floats({0, 0, 0}) + "\x01\x02\x03" + Floats({1, 0, 0}) + "\x01\x02\x03" + Floats({0, 1, 0}) + "\x01\x02\x03";
    return kBinary + Vertices(3, vertex) + Faces(1, kFacesWithUv) + Image(static_cast<int>(image.size())) + kEnd +
           corners + Face(0, 1, 2) + "\x06" + Floats({0, 0.5f, 1, 1.5f, 2, 2.5f}) +
           std::string(image.begin(), image.end());
}

/// A control with the component library's registry started.
template <class Control>
class WithRegistry : public Control {
public:
    WithRegistry() { this->control->InitializeKVReg(); }
    ~WithRegistry() {
        this->control->ClearData();
        this->control->FinalizeKVReg();
    }
};

void ImportFile(CKV_ScenePaneCtrl& control, const ScratchFolder& folder, const std::string& bytes) {
    std::ofstream(folder / "a.ply", std::ios::binary) << bytes;
    control.ImportMesh(WidePath(folder / "a.ply").c_str());
}

std::vector<float> Flat(const std::vector<TexCoord>& texCoords) {
    std::vector<float> flat;
    for (const TexCoord& t : texCoords) flat.insert(flat.end(), {t.u, t.v});
    return flat;
}

void ExpectTheTexturedTriangle(const Mesh& mesh) {
    EXPECT_EQ(mesh.GetVertexCount(), 3u);
    EXPECT_EQ(mesh.GetTriangleCount(), 1u);
    EXPECT_THAT(Flat(mesh.m_vTexCoords), ElementsAreArray({0.0f, 0.5f, 1.0f, 1.5f, 2.0f, 2.5f}));
    EXPECT_EQ(mesh.m_sName, L"");
    EXPECT_FALSE(mesh.m_bGrayColors);
    EXPECT_EQ(mesh.m_vVertices[0].nz, 1.0f);
    EXPECT_EQ(mesh.m_fBoundingBox[1], 1.0f);
    ASSERT_NE(mesh.m_pTexture, nullptr);
    EXPECT_THAT(mesh.m_pTexture->m_vImageBytes, ElementsAreArray(Png()));
}

template <class Control>
void ExpectTheImageThereAndBack() {
    const ScratchFolder folder;
    WithRegistry<Control> c;
    ImportFile(*c, folder, TexturedFile(Png()));
    ASSERT_EQ(c->GetNumObjects(), 1);
    ExpectTheTexturedTriangle(*c->m_vpMeshes[0]);
    c->ExportMesh(0, WidePath(folder / "b.ply").c_str());
    c->ImportMesh(WidePath(folder / "b.ply").c_str());
    ASSERT_EQ(c->GetNumObjects(), 2);
    ExpectTheTexturedTriangle(*c->m_vpMeshes[1]);
    // Every further export and import gives the same bytes.
    c->ExportMesh(1, WidePath(folder / "c.ply").c_str());
    EXPECT_EQ(ReadBytes(folder / "b.ply"), ReadBytes(folder / "c.ply"));
}

TEST(PlyTexture, SurvivesExportAndImportByteForByteWithoutAContext) { ExpectTheImageThereAndBack<NoPictureControl>(); }

TEST(PlyTexture, SurvivesExportAndImportByteForByteWithAContext) { ExpectTheImageThereAndBack<OffscreenControl>(); }

TEST(PlyTexture, IsUploadedWhereThereIsAContext) {
    const ScratchFolder folder;
    WithRegistry<OffscreenControl> picture;
    ImportFile(*picture, folder, TexturedFile(Png()));
    EXPECT_NE(picture->m_vpMeshes[0]->m_pTexture->m_uName, 0u);
    EXPECT_EQ(picture->m_vpMeshes[0]->m_pTexture->m_hContext, picture.window->ContextHandle());
    WithRegistry<NoPictureControl> none;
    ImportFile(*none, folder, TexturedFile(Png()));
    EXPECT_EQ(none->m_vpMeshes[0]->m_pTexture->m_uName, 0u);
}

TEST(PlyTexture, EndsTheImportWhenItCannotBeDecoded) {
    const ScratchFolder folder;
    WithRegistry<NoPictureControl> c;
    ImageBytes broken = Png();
    broken.resize(broken.size() / 2);
    for (const ImageBytes& image : {broken, ImageBytes{'n', 'o'}})
        EXPECT_THROW(ImportFile(*c, folder, TexturedFile(image)), std::runtime_error);
    EXPECT_EQ(c->GetNumObjects(), 0);
}

TEST(PlyTexture, NeedsTheComponentRegistry) {
    const ScratchFolder folder;
    NoPictureControl c;
    EXPECT_THROW(ImportFile(*c, folder, TexturedFile(Png())), std::runtime_error);
    EXPECT_EQ(c->GetNumObjects(), 0);
}

TEST(PlyTexture, IsIgnoredInTextFiles) {
    const ScratchFolder folder;
    NoPictureControl c;  // its registry is not started
    ImportFile(*c, folder,
               kText + Vertices(3) + Faces(1, kFacesWithUv) + Image(2) + kEnd +
                   "0 0 0 1 0 0 0 1 0\n3 0 1 2 6 0 0 1 0 0 1\n65 66\n");
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->m_pTexture, nullptr);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_vTexCoords.empty());
}

}  // namespace
