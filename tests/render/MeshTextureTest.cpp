// Textured meshes: position of the pixels of the picture on the screen, failures, and ownership of the texture.
#include <set>
#include <stdexcept>

#include "render/MeshTexture.h"
#include "render/SceneFixture.h"
#include "support/PngFile.h"

using namespace lighting;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A picture of 8 x 8 pixels in four colours.
struct Quarters {
    Vec3 topLeft{1, 0, 0}, topRight{0, 1, 0}, bottomLeft{0, 0, 1}, bottomRight{1, 0.8, 0};

    /// Four bytes per pixel, the top row first.
    [[nodiscard]] Bytes Pixels() const {
        Bytes rgba;
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) {
                const Vec3& color = y < 4 ? (x < 4 ? topLeft : topRight) : (x < 4 ? bottomLeft : bottomRight);
                for (const double channel : color) rgba.push_back(static_cast<std::uint8_t>(255 * channel));
                rgba.push_back(255);
            }
        return rgba;
    }
    [[nodiscard]] Bytes File() const { return png_file::OfRgba(8, 8, Pixels()); }
};

/// Texture coordinates for the triangles of a Square that show the whole picture upright; v counts upward.
const std::vector<TexCoord> kUpright{{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};

std::vector<HpsFace> FacesOf(const Square& square, const std::vector<TexCoord>& texCoords) {
    std::vector<HpsFace> faces;
    for (const Triangle& triangle : square.Triangles()) {
        HpsFace face;
        for (std::size_t c = 0; c < 3; ++c) {
            face.v[c] = triangle.v[c];
            face.uv[c] = texCoords[3 * faces.size() + c];
        }
        faces.push_back(face);
    }
    return faces;
}

std::vector<std::uint32_t> Words(const Bytes& rgba) {
    std::vector<std::uint32_t> words;
    for (std::size_t i = 0; i < rgba.size(); i += 4)
        words.push_back(rgba[i] | rgba[i + 1] << 8 | rgba[i + 2] << 16 | static_cast<std::uint32_t>(rgba[i + 3]) << 24);
    return words;
}

class TexturedMeshes : public SceneTest {
protected:
    TexturedMeshes() {
        pane->InitializeKVReg();
        EXPECT_TRUE(pane->MakeContextCurrent());
    }
    ~TexturedMeshes() override { pane->FinalizeKVReg(); }

    static std::shared_ptr<Mesh> FromPly(const Square& square, const std::vector<TexCoord>& texCoords,
                                         const Bytes& file) {
        return MakePlyMesh(square.Vertices(), square.Triangles(), texCoords, file);
    }
    void Show(std::shared_ptr<Mesh> mesh) { pane->m_vpMeshes = {std::move(mesh)}; }
    void FrameInMode(int mode) {
        pane->m_nDrawMode = static_cast<std::int16_t>(mode);
        Frame();
    }
    static std::set<GLuint> Textures() {
        std::set<GLuint> names;
        for (GLuint name = 1; name < 1000; ++name)
            if (glIsTexture(name) == GL_TRUE) names.insert(name);
        return names;
    }

    const Quarters quarters;
    const Square square{.normal = {0.6, 0.0, 0.8}};  // columns 112 to 207, rows 72 to 167
};

struct Spot {
    int x, y;
    Vec3 texel;
};

class EveryShadedMode : public TexturedMeshes, public testing::WithParamInterface<int> {
protected:
    void ExpectSpots(const std::vector<Spot>& spots) {
        FrameInMode(GetParam());
        for (const Spot& spot : spots) {
            Surface surface = square.At(camera, spot.x, spot.y, {1, 1, 1});
            surface.color = spot.texel;
            ExpectPixel(spot.x, spot.y,
                        GetParam() == KV_ScenePane::DrawModePerPixel
                            ? PerPixel(camera, surface)
                            : Times(FixedFunction(camera, square.At(camera, spot.x, spot.y, {1, 1, 1})), spot.texel));
        }
    }
    /// Points near the corners of each quarter, but not within half a texel of another colour, where the colours mix.
    [[nodiscard]] std::vector<Spot> Upright() const {
        std::vector<Spot> spots;
        for (const auto& [left, top, texel] : {std::tuple{112, 72, quarters.topLeft},
                                               {160, 72, quarters.topRight},
                                               {112, 120, quarters.bottomLeft},
                                               {160, 120, quarters.bottomRight}})
            for (const int x : {left + 7, left + 24, left + 40})
                for (const int y : {top + 7, top + 24, top + 40}) spots.push_back({x, y, texel});
        return spots;
    }
};
INSTANTIATE_TEST_SUITE_P(Modes, EveryShadedMode,
                         testing::Values(KV_ScenePane::DrawModeFlat, KV_ScenePane::DrawModeGouraud,
                                         KV_ScenePane::DrawModePerPixel),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_P(EveryShadedMode, ShowsThePictureOfAPlyUpright) {
    Show(FromPly(square, kUpright, quarters.File()));
    ExpectSpots(Upright());
    EXPECT_EQ(PixelsThatAreNotBackground(), 96 * 96);
}

TEST_P(EveryShadedMode, ShowsTheFirstRowOfHpsPixelsAtVZero) {
    Show(
        MakeHpsMesh(square.Vertices(), FacesOf(square, kUpright), L"", Bytes{}, Words(quarters.Pixels()).data(), 8, 8));
    ExpectSpots({{136, 96, quarters.bottomLeft},
                 {184, 96, quarters.bottomRight},
                 {136, 144, quarters.topLeft},
                 {184, 144, quarters.topRight}});
}

TEST_P(EveryShadedMode, MapsAPartOfThePictureAndRepeatsIt) {
    // The right half of the picture across the square, twice.
    std::vector<TexCoord> texCoords = kUpright;
    for (TexCoord& at : texCoords) at = {0.5f + 0.5f * at.u, 2.0f * at.v};
    Show(FromPly(square, texCoords, quarters.File()));
    ExpectSpots({{160, 84, quarters.topRight},
                 {160, 108, quarters.bottomRight},
                 {160, 132, quarters.topRight},
                 {160, 156, quarters.bottomRight}});
}

TEST_P(EveryShadedMode, KeepsTheLightWhiteWhateverTheColoursOfTheObject) {
    const auto mesh = FromPly(square, kUpright, quarters.File());
    mesh->SetColorRef(0x00204080);
    for (Vertex& vertex : mesh->m_vVertices) vertex.color = 0xFF808080;
    for (const bool hasColors : {false, true})
        for (const bool gray : {false, true}) {
            mesh->m_bHasVertexColors = hasColors;
            mesh->m_bGrayColors = gray;
            mesh->MarkBuffersDirty();
            Show(mesh);
            ExpectSpots(Upright());
        }
}

TEST_F(TexturedMeshes, ShowTheirPictureOnTheEdgesInWireframe) {
    Show(FromPly(square, kUpright, quarters.File()));
    FrameInMode(KV_ScenePane::DrawModeWireframe);
    // On the diagonal from the lower left to the upper right; a line covers one of two neighbouring pixels.
    const auto brightest = [&](int x, int y) {
        Vec3 color = ColorAt(x, y);
        for (const int dx : {-1, 1})
            if (DistanceAt(x + dx, y, kBackground) > 1.0) color = ColorAt(x + dx, y);
        return color;
    };
    const Vec3 lit = FixedFunction(camera, square.At(camera, 130, 149, {1, 1, 1}));
    const Vec3 low = brightest(130, 149), high = brightest(189, 90);
    EXPECT_NEAR(low[2], lit[2], 0.02);
    EXPECT_LT(low[0] + low[1], 0.02);
    EXPECT_NEAR(high[1], lit[1], 0.02);
    EXPECT_LT(high[0] + high[2], 0.02);
    ExpectBackground(125, 100);
}

TEST_F(TexturedMeshes, ShowAllTheirCornersAsPoints) {
    // Each corner of the square lies in the middle of its quarter of the picture.
    std::vector<TexCoord> texCoords = kUpright;
    for (TexCoord& at : texCoords) at = {0.25f + 0.5f * at.u, 0.25f + 0.5f * at.v};
    Show(FromPly(square, texCoords, quarters.File()));
    FrameInMode(KV_ScenePane::DrawModePoints);
    const Vec3 lit = FixedFunction(camera, square.At(camera, 160, 120, {1, 1, 1}));
    ExpectPixel(112, 72, Times(lit, quarters.topLeft));
    ExpectPixel(207, 72, Times(lit, quarters.topRight));
    ExpectPixel(112, 167, Times(lit, quarters.bottomLeft));
    ExpectPixel(207, 167, Times(lit, quarters.bottomRight));
    EXPECT_EQ(PixelsThatAreNotBackground(), 4 * 4);
}

// ---- the members that MakePlyMesh() and MakeHpsMesh() set

TEST_F(TexturedMeshes, CastAndReceiveShadowsAsOtherMeshesDo) {
    const Square occluder{.center = {0.3, 0.5, 3}, .half = 1.2}, receiver{.half = 4.0},
        beside{.center = {-1.5, -1.5, 1}, .half = 0.7};
    const auto frame = [&](bool textured) {
        pane->m_vpMeshes.clear();
        for (const Square& part : {occluder, receiver}) {
            if (textured)
                pane->m_vpMeshes.push_back(FromPly(part, kUpright, quarters.File()));
            else
                Add(part, {1, 1, 1});
        }
        Add(beside, {1, 1, 1});
        FrameInMode(KV_ScenePane::DrawModeGouraud);
        return picture.pixels;
    };
    const auto lit = frame(false);
    pane->SetShadowMode(1);
    pane->SetShadowColor(0.1f, 0.0f, 0.3f);
    const auto expected = frame(false);
    EXPECT_NE(expected, lit) << "no shadow falls";
    EXPECT_EQ(frame(true), expected);
    EXPECT_EQ(frame(false), expected) << "the next frame is unchanged";
}

TEST_F(TexturedMeshes, FromAPlyHoldTheDataOfTheFile) {
    const Bytes file = quarters.File();
    const auto mesh = FromPly(square, kUpright, file);
    EXPECT_EQ(mesh->m_sName, L"");
    EXPECT_EQ(mesh->GetVertexCount(), 4u);
    ASSERT_EQ(mesh->GetTriangleCount(), 2u);
    EXPECT_EQ(mesh->m_vTriangles[1].v[2], 3);
    ASSERT_EQ(mesh->m_vTexCoords.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(mesh->m_vTexCoords[i].u, kUpright[i].u);
        EXPECT_EQ(mesh->m_vTexCoords[i].v, kUpright[i].v);
    }
    EXPECT_FALSE(mesh->m_bGrayColors);
    EXPECT_EQ(mesh->m_fBoundingBox[0], -2.0f);
    EXPECT_EQ(mesh->m_fBoundingBox[3], 2.0f);
    EXPECT_TRUE(mesh->m_bBuffersDirty);
    ASSERT_TRUE(mesh->m_pTexture);
    EXPECT_EQ(mesh->m_pTexture->m_vImageBytes, file);
    EXPECT_EQ(mesh->m_pTexture->m_hContext, pane->m_hRC);
}

TEST_F(TexturedMeshes, FromAnHpsHoldNameFacesAndImageBytes) {
    const Bytes imageBytes{9, 8, 7};  // not decoded, because the pixels are given
    const auto made = MakeHpsMesh(square.Vertices(), FacesOf(square, kUpright), L"/scans/tooth.hps", imageBytes,
                                  Words(quarters.Pixels()).data(), 8, 8);
    const Mesh& mesh = *made;
    EXPECT_EQ(mesh.m_sName, L"/scans/tooth.hps");
    ASSERT_EQ(mesh.GetTriangleCount(), 2u);
    EXPECT_EQ(mesh.m_vTriangles[1].v[1], 2);
    ASSERT_EQ(mesh.m_vTexCoords.size(), 6u);
    EXPECT_EQ(mesh.m_vTexCoords[5].v, 1.0f);
    EXPECT_FALSE(mesh.m_bGrayColors);
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_EQ(mesh.m_fBoundingBox[1], 2.0f);
    ASSERT_TRUE(mesh.m_pTexture);
    EXPECT_EQ(mesh.m_pTexture->m_vImageBytes, imageBytes);
}

TEST_F(TexturedMeshes, FromAnHpsWithoutPixelsHaveNoTexture) {
    const std::set<GLuint> before = Textures();
    const auto made = MakeHpsMesh(square.Vertices(), FacesOf(square, kUpright), L"tooth.hps", {}, nullptr, 0, 0);
    const Mesh& mesh = *made;
    EXPECT_TRUE(mesh.m_bGrayColors);
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_EQ(mesh.GetTriangleCount(), 2u);
    EXPECT_TRUE(mesh.m_vTexCoords.empty());
    EXPECT_FALSE(mesh.m_pTexture);
    EXPECT_EQ(mesh.m_fBoundingBox[0], -2.0f);
    EXPECT_EQ(Textures(), before);
}

// ---- failures

class TextureFailures : public TexturedMeshes {
protected:
    template <class Make>
    void ExpectRefusal(const std::string& text, Make make) {
        const std::set<GLuint> before = Textures();
        try {
            make();
            ADD_FAILURE() << "the mesh was made";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), text);
        }
        EXPECT_EQ(Textures(), before);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
};

TEST_F(TextureFailures, OfTheDecoderThrowTheReason) {
    Bytes file = quarters.File();
    file.pop_back();
    ExpectRefusal("the call failed", [&] { FromPly(square, kUpright, file); });
    ExpectRefusal("an invalid argument was passed to an interface method", [&] { FromPly(square, kUpright, {}); });
}

TEST_F(TextureFailures, OfHpsPictureSizesThrowTheReason) {
    const std::uint32_t pixel = 0;
    for (const auto& [width, height] : {std::pair{0u, 1u}, {1u, 0u}, {16385u, 1u}, {1u, 0xFFFFFFFFu}})
        ExpectRefusal("an invalid argument was passed to an interface method", [&, w = width, h = height] {
            (void)MakeHpsMesh(square.Vertices(), FacesOf(square, kUpright), L"", {}, &pixel, w, h);
        });
}

TEST_F(TextureFailures, OfAnUninitializedRegistryNameTheObject) {
    pane->FinalizeKVReg();
    ExpectRefusal(
        "the component library gives no object {312F34D3-886E-4DEB-8B33-D8F9B923D637}: is the registry "
        "started (InitializeKVReg)?",
        [&] { FromPly(square, kUpright, quarters.File()); });
    pane->InitializeKVReg();
}

// ---- ownership

TEST_F(TexturedMeshes, DeleteTheirTextureWhenDestroyed) {
    const std::set<GLuint> before = Textures();
    auto mesh = FromPly(square, kUpright, quarters.File());
    const GLuint name = mesh->m_pTexture->m_uName;
    EXPECT_EQ(glIsTexture(name), GL_TRUE);
    mesh->Draw(KV_ScenePane::DrawModeGouraud, false);
    mesh.reset();
    EXPECT_EQ(glIsTexture(name), GL_FALSE);
    EXPECT_EQ(Textures(), before);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TexturedMeshes, ShareTheirTextureWithTheirClones) {
    auto mesh = FromPly(square, kUpright, quarters.File());
    const GLuint name = mesh->m_pTexture->m_uName;
    const std::uint32_t removed[] = {1u << 1};  // the lower right corner: the upper left triangle remains
    std::shared_ptr<Mesh> clone = mesh->CloneWithoutVertices(removed);
    EXPECT_EQ(clone->m_pTexture, mesh->m_pTexture);
    mesh.reset();
    EXPECT_EQ(glIsTexture(name), GL_TRUE);
    Show(clone);
    FrameInMode(KV_ScenePane::DrawModeFlat);
    ExpectPixel(130, 96, Times(FixedFunction(camera, square.At(camera, 130, 96, {1, 1, 1})), quarters.topLeft));
    ExpectBackground(190, 140);
    pane->m_vpMeshes.clear();
    clone.reset();
    EXPECT_EQ(glIsTexture(name), GL_FALSE);
}

TEST_F(TexturedMeshes, DeleteTheFormerTextureWhenItIsReplaced) {
    const auto mesh = FromPly(square, kUpright, quarters.File());
    const GLuint former = mesh->m_pTexture->m_uName;
    const Bytes pixel{1, 2, 3, 255};
    CreateTexture(*mesh, 1, 1, pixel.data(), Bytes{5});
    EXPECT_NE(mesh->m_pTexture->m_uName, former);
    EXPECT_EQ(glIsTexture(former), GL_FALSE);
    EXPECT_EQ(glIsTexture(mesh->m_pTexture->m_uName), GL_TRUE);
    EXPECT_EQ(mesh->m_pTexture->m_vImageBytes, Bytes{5});
}

TEST_F(TexturedMeshes, HaveMipmapsAndTheFiltersForThem) {
    const auto mesh = FromPly(square, kUpright, quarters.File());
    glBindTexture(GL_TEXTURE_2D, mesh->m_pTexture->m_uName);
    const auto parameter = [](GLenum name) {
        GLint value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    };
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    // Levels of 8 x 8, 4 x 4, 2 x 2 and 1 x 1; the last is the mean of the quarters.
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 2);
    std::uint8_t mean[4] = {};
    glGetTexImage(GL_TEXTURE_2D, 3, GL_RGBA, GL_UNSIGNED_BYTE, mean);
    EXPECT_NEAR(mean[0], 128, 2);
    EXPECT_NEAR(mean[1], 115, 2);
    EXPECT_NEAR(mean[2], 64, 2);
    glBindTexture(GL_TEXTURE_2D, 0);
}

TEST_F(TexturedMeshes, HalveAPictureLargerThanTheLimitOfTheDriver) {
    GLint longestSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longestSide);
    // One pixel too wide: columns of 40 and 60 are averaged to 50, and the odd last column is dropped.
    const std::int32_t width = longestSide + 1;
    Bytes pixels;
    for (int y = 0; y < 3; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            for (const int channel : {x % 2 == 0 ? 40 : 60, 100 * y, 7, 255})
                pixels.push_back(static_cast<std::uint8_t>(channel));
    const auto mesh = FromPly(square, kUpright, quarters.File());
    CreateTexture(*mesh, width, 3, pixels.data(), {});
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glBindTexture(GL_TEXTURE_2D, mesh->m_pTexture->m_uName);
    GLint size[2] = {};
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &size[0]);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &size[1]);
    ASSERT_EQ(size[0], width / 2);
    ASSERT_EQ(size[1], 1);
    Bytes found(std::size_t{4} * static_cast<std::size_t>(size[0]));
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, found.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    for (std::size_t i = 0; i < found.size(); i += 4)
        ASSERT_EQ((Bytes(&found[i], &found[i] + 4)), (Bytes{50, 50, 7, 255})) << i / 4;
}

/// Without OpenGL, as in a conversion on a server: an export writes the image file back.
TEST(TexturedMeshesWithoutContext, KeepOnlyTheImageBytes) {
    NoPictureControl control;
    control->InitializeKVReg();
    const Bytes file = Quarters{}.File();
    {
        const auto made = MakePlyMesh(Square{}.Vertices(), Square{}.Triangles(), kUpright, file);
        const Mesh& mesh = *made;
        ASSERT_TRUE(mesh.m_pTexture);
        EXPECT_EQ(mesh.m_pTexture->m_uName, 0u);
        EXPECT_EQ(mesh.m_pTexture->m_hContext, nullptr);
        EXPECT_EQ(mesh.m_pTexture->m_vImageBytes, file);
    }
    control->FinalizeKVReg();
}

}  // namespace
