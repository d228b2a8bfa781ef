// Export and import of hps files with the real component library: all data must be the same afterwards.
#include <GL/glew.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "KV_Components/HpsFacets.h"
#include "KV_Components/HpsFile.h"
#include "KV_Components/HpsVertices.h"
#include "KV_ScenePane/PathText.h"
#include "render/MeshTexture.h"
#include "support/ControlFixture.h"
#include "support/PngFile.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;

/// A control whose host has started the registry.
template <class Control>
class WithRegistry : public testing::Test {
protected:
    WithRegistry() { c->InitializeKVReg(); }
    ~WithRegistry() override { c->FinalizeKVReg(); }

    void Export(const std::string& name, std::int16_t objIdx = 0) {
        c->ExportMesh(objIdx, WidePath(folder / name).c_str());
    }
    void Import(const std::string& name) { c->ImportMesh(WidePath(folder / name).c_str()); }
    [[nodiscard]] const Mesh& Last() const { return *c->m_vpMeshes.back(); }
    [[nodiscard]] std::string Line(const std::string& name, const std::string& reason) const {
        return "ImportHps(): " + (folder / name) + ": " + reason + "\n";
    }

    ScratchFolder folder;
    Control c;
};
using HpsRoundTrip = WithRegistry<NoPictureControl>;
using TexturedHpsRoundTrip = WithRegistry<OffscreenControl>;

TEST_F(HpsRoundTrip, AnExportThatFailsThrowsTheStatusAndWritesTheReason) {
    AddMesh(*c, {{.x = 0}, {.x = 4}, {.y = 4}}, {{{0, 1, 2}}});
    std::filesystem::create_directory(folder / "folder.hps");
    const std::pair<const char*, const char*> rows[] = {{"missing/a.hps", "No such file or directory"},
                                                        {"folder.hps", "Is a directory"}};
    for (const auto& [name, reason] : rows) {
        EXPECT_THAT([&] { Export(name); },
                    testing::ThrowsMessage<std::runtime_error>(testing::StrEq("the call failed")));
        EXPECT_EQ(c.debugOutput.Take(), "ExportHps(): " + (folder / name) + ": cannot be saved: " + reason + "\n");
    }
}

/// A roof of two squares: every vertex is shared by triangles in several orders.
Mesh& AddRoof(CKV_ScenePaneCtrl& control) {
    constexpr float kDenormal = std::numeric_limits<float>::denorm_min();
    return AddMesh(control,
                   {{0, 0, -0.0f}, {kDenormal, 1, 0}, {1, 0, 1e30f}, {1, 1, 0.1f}, {-2e-20f, 0, 3}, {2, 1, -7}},
                   {{{2, 0, 1}}, {{1, 3, 2}}, {{4, 2, 3}}, {{3, 5, 4}}, {{5, 5, 5}}});
}

bool SamePositions(const Mesh& a, const Mesh& b) {
    return std::ranges::equal(a.m_vVertices, b.m_vVertices, [](const Vertex& left, const Vertex& right) {
        return std::memcmp(&left, &right, 3 * sizeof(float)) == 0;
    });
}

bool SameTriangles(const Mesh& a, const Mesh& b) {
    return std::ranges::equal(a.m_vTriangles, b.m_vTriangles, [](const Triangle& left, const Triangle& right) {
        return std::ranges::equal(left.v, right.v);
    });
}

TEST_F(HpsRoundTrip, KeepsPositionsToTheBitAndTrianglesInTheirOrder) {
    const Mesh& roof = AddRoof(*c);
    Export("roof.hps");
    Import("roof.hps");
    ASSERT_EQ(c->GetNumObjects(), 2) << c.debugOutput.Text();
    EXPECT_TRUE(SamePositions(Last(), roof));
    EXPECT_TRUE(SameTriangles(Last(), roof));
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(HpsRoundTrip, NamesTheObjectAfterTheFileAndHasNoColors) {
    AddRoof(*c).m_vVertices[0].color = 0x123456;
    Export("roof.hps");
    Import("roof.hps");
    ASSERT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(Last().m_sName, WidePath(folder / "roof.hps"));
    EXPECT_TRUE(Last().m_bGrayColors);
    EXPECT_FALSE(Last().m_bHasVertexColors);
    for (const Vertex& vertex : Last().m_vVertices) {
        EXPECT_EQ(vertex.color, 0xFFFFFFFF);
        EXPECT_EQ(vertex.gridIndex, 0u);
    }
}

TEST_F(HpsRoundTrip, IsNotStagedDuringAParallelImport) {
    AddRoof(*c);
    Export("roof.hps");
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&control, &entry);
    Import("roof.hps");
    EXPECT_EQ(c->GetNumObjects(), 2);
    c->EndParallelImport();
    EXPECT_EQ(c->GetNumObjects(), 2);
}

TEST_F(HpsRoundTrip, GivesAFlatMeshTheNormalOfItsPlane) {
    AddMesh(*c, {{0, 0, 5}, {2, 0, 5}, {2, 2, 5}, {0, 2, 5}}, {{{0, 1, 2}}, {{0, 2, 3}}});
    Export("flat.hps");
    Import("flat.hps");
    ASSERT_EQ(c->GetNumObjects(), 2);
    for (const Vertex& vertex : Last().m_vVertices) {
        EXPECT_EQ(vertex.nx, 0);
        EXPECT_EQ(vertex.ny, 0);
        EXPECT_EQ(vertex.nz, 1);
    }
    EXPECT_FLOAT_EQ(Last().m_fBoundingBox[4], 4.99f);
    EXPECT_FLOAT_EQ(Last().m_fBoundingBox[5], 5.01f);
}

TEST_F(HpsRoundTrip, KeepsAnEmptyMeshAndOneOfVerticesAlone) {
    AddMesh(*c, {}, {});
    AddMesh(*c, {{1, 2, 3}, {4, 5, 6}}, {});
    for (const std::int16_t objIdx : {std::int16_t{0}, std::int16_t{1}}) {
        Export("few.hps", objIdx);
        Import("few.hps");
        ASSERT_EQ(c->GetNumObjects(), 3 + objIdx) << c.debugOutput.Text();
        EXPECT_TRUE(SamePositions(Last(), *c->m_vpMeshes[static_cast<std::size_t>(objIdx)]));
        EXPECT_THAT(Last().m_vTriangles, IsEmpty());
    }
}

TEST_F(HpsRoundTrip, WritesTheSameBytesTheSecondTimeAndAfterAnImport) {
    AddRoof(*c);
    Export("first.hps");
    Export("second.hps");
    Import("second.hps");
    Export("third.hps", 1);
    EXPECT_EQ(ReadBytes(folder / "second.hps"), ReadBytes(folder / "first.hps"));
    EXPECT_EQ(ReadBytes(folder / "third.hps"), ReadBytes(folder / "first.hps"));
}

TEST_F(HpsRoundTrip, WritesTheSourceApplicationIntoTheFile) {
    AddRoof(*c);
    const auto holds = [this](const std::string& name, const std::string& text) {
        const std::vector<std::byte> bytes = ReadBytes(folder / name);
        const std::string content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return content.find(text) != std::string::npos;
    };
    Export("plain.hps");
    EXPECT_FALSE(holds("plain.hps", "Caf"));
    c->SetHpsSourceApp(L"Caf\u01E9 Scanner", L"12.34-beta");
    for (const std::string name : {"one.hps", "two.hps"}) {
        Export(name);
        EXPECT_TRUE(holds(name, "Caf\xE9 Scanner"));
        EXPECT_TRUE(holds(name, "12.34-beta"));
    }
}

TEST_F(HpsRoundTrip, ReplacesAFileAsAWhole) {
    AddRoof(*c);
    WriteBytes(folder / "a.hps", std::vector<std::byte>(100'000));
    Export("a.hps");
    Import("a.hps");
    EXPECT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(HpsRoundTrip, OpensAFileWhoseNameIsNotUtf8) {
    AddRoof(*c);
    const std::string name = "caf\xE9 \xE2\x82\xAC.hps";
    Export(name);
    EXPECT_TRUE(std::filesystem::exists(folder / name));
    Import(name);
    EXPECT_EQ(c->GetNumObjects(), 2);
}

TEST_F(HpsRoundTrip, ThrowsWhenTheFileCannotBeWritten) {
    AddRoof(*c);
    try {
        Export("no such folder/a.hps");
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the call failed");
    }
}

TEST_F(HpsRoundTrip, ThrowsForTrianglesWithMissingVerticesAndWritesNothing) {
    auto mesh = std::make_shared<Mesh>(L"", false);
    mesh->m_vVertices.resize(2);
    mesh->m_vTriangles = {{{0, 1, 2}}};
    c->m_vpMeshes.push_back(mesh);
    EXPECT_THROW(Export("bad.hps"), std::runtime_error);
    EXPECT_EQ(folder.FileCount(), 0u);
}

// ---- without a registry

TEST(HpsWithoutRegistry, ExportThrowsAndWritesNothing) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddRoof(*c);
    EXPECT_THROW(c->ExportMesh(0, WidePath(folder / "a.hps").c_str()), std::runtime_error);
    EXPECT_EQ(folder.FileCount(), 0u);
}

TEST(HpsWithoutRegistry, ImportThrowsAndAddsNothing) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddRoof(*c);
    c->InitializeKVReg();
    c->ExportMesh(0, WidePath(folder / "a.hps").c_str());
    c->FinalizeKVReg();
    EXPECT_THROW(c->ImportMesh(WidePath(folder / "a.hps").c_str()), std::runtime_error);
    EXPECT_EQ(c->GetNumObjects(), 1);
}

// ---- files that are refused

TEST_F(HpsRoundTrip, ReportsAMissingFile) {
    Import("missing.hps");
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(), Line("missing.hps", "File not found."));
}

TEST_F(HpsRoundTrip, ReportsAFileThatIsNotAnHpsFile) {
    WriteBytes(folder / "text.hps", std::vector<std::byte>(300, std::byte{'a'}));
    Import("text.hps");
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(), Line("text.hps", "Invalid file."));
}

TEST_F(HpsRoundTrip, RefusesEveryShorterAndEveryDamagedFileWithOneLine) {
    AddRoof(*c);
    Export("good.hps");
    const std::vector<std::byte> good = ReadBytes(folder / "good.hps");
    c.debugOutput.Clear();
    const auto expectRefused = [&](const std::vector<std::byte>& bytes, const std::string& what) {
        WriteBytes(folder / "bad.hps", bytes);
        Import("bad.hps");
        const std::string text = c.debugOutput.Take();
        EXPECT_EQ(c->GetNumObjects(), 1) << what;
        EXPECT_THAT(text, testing::StartsWith("ImportHps(): " + (folder / "bad.hps") + ": ")) << what;
        EXPECT_EQ(std::ranges::count(text, '\n'), 1) << what;
    };
    for (std::size_t size = 0; size < good.size(); ++size)
        expectRefused({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)},
                      "cut to " + std::to_string(size) + " bytes");
    for (std::size_t i = 0; i < good.size(); ++i) {
        std::vector<std::byte> damaged = good;
        damaged[i] ^= std::byte{0x10};
        expectRefused(damaged, "byte " + std::to_string(i));
    }
}

TEST_F(HpsRoundTrip, NamesTheFirstTriangleThatRefersToAMissingVertex) {
    namespace Hps = KvComponents::Hps;
    const std::int32_t indices[] = {0, 1, 2, 2, 1, 0, 1, 2, 3, 3, 2, 1};
    Hps::RawArray<Hps::Introduction> introductions;
    Hps::FileContent content;
    const Hps::ByteVector facets = Hps::EncodeFacets(indices, 4, introductions);
    const float positions[12] = {};
    const Hps::ByteVector packed = Hps::EncodePositions(positions, introductions.Span());
    content.vertexCount = 3;
    content.triangleCount = 4;
    content.facets = facets;
    content.positions = packed;
    const Hps::ByteVector file = Hps::BuildFile(content);
    WriteBytes(folder / "bad.hps", {file.begin(), file.end()});
    Import("bad.hps");
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(), Line("bad.hps", "Invalid facet data. Triangle 2 refers to vertex 3 of 3."));
}

// ---- textures

/// Four pixels, all different.
const std::vector<std::uint8_t> kPixels = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 8, 7, 255};

/// A square whose middle vertices have other texture coordinates in each of the two triangles.
void AddTexturedSquare(CKV_ScenePaneCtrl& control, const std::vector<std::uint8_t>& imageFile) {
    const TexCoord texCoords[] = {{0, 0}, {1, 0}, {1, 1}, {0.5f, 0.25f}, {-0.0f, 1}, {0.125f, -3}};
    control.MakeContextCurrent();
    control.m_vpMeshes.push_back(
        MakePlyMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{{0, 1, 2}}, {{2, 3, 0}}}, texCoords, imageFile));
}

bool SameTexCoords(const Mesh& a, const Mesh& b) {
    return std::ranges::equal(a.m_vTexCoords, b.m_vTexCoords, [](const TexCoord& left, const TexCoord& right) {
        return std::memcmp(&left, &right, sizeof(TexCoord)) == 0;
    });
}

std::vector<std::uint8_t> PixelsOnGpu(const Mesh& mesh) {
    std::vector<std::uint8_t> pixels(kPixels.size());
    glBindTexture(GL_TEXTURE_2D, mesh.m_pTexture->m_uName);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return pixels;
}

TEST_F(TexturedHpsRoundTrip, KeepsTextureCoordinatesOfEveryCornerAndTheImageFile) {
    const auto imageFile = png_file::OfRgba(2, 2, kPixels);
    AddTexturedSquare(*c, imageFile);
    Export("square.hps");
    Import("square.hps");
    ASSERT_EQ(c->GetNumObjects(), 2) << c.debugOutput.Text();
    EXPECT_TRUE(SamePositions(Last(), *c->m_vpMeshes[0]));
    EXPECT_TRUE(SameTriangles(Last(), *c->m_vpMeshes[0]));
    EXPECT_TRUE(SameTexCoords(Last(), *c->m_vpMeshes[0]));
    EXPECT_FALSE(Last().m_bGrayColors);
    ASSERT_NE(Last().m_pTexture, nullptr);
    EXPECT_EQ(Last().m_pTexture->m_vImageBytes, imageFile);
}

TEST_F(TexturedHpsRoundTrip, HasTheImageTheSameWayUp) {
    AddTexturedSquare(*c, png_file::OfRgba(2, 2, kPixels));
    Export("square.hps");
    Import("square.hps");
    ASSERT_EQ(c->GetNumObjects(), 2) << c.debugOutput.Text();
    // the lower row of the file first
    EXPECT_THAT(PixelsOnGpu(Last()),
                testing::ElementsAre(0, 0, 255, 255, 9, 8, 7, 255, 255, 0, 0, 255, 0, 255, 0, 255));
    EXPECT_EQ(PixelsOnGpu(Last()), PixelsOnGpu(*c->m_vpMeshes[0]));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(HpsRoundTrip, KeepsATextureWithoutOpenGl) {
    const auto imageFile = png_file::OfRgba(2, 2, kPixels);
    AddTexturedSquare(*c, imageFile);
    Export("first.hps");
    Import("first.hps");
    ASSERT_EQ(c->GetNumObjects(), 2) << c.debugOutput.Text();
    EXPECT_TRUE(SameTexCoords(Last(), *c->m_vpMeshes[0]));
    ASSERT_NE(Last().m_pTexture, nullptr);
    EXPECT_EQ(Last().m_pTexture->m_vImageBytes, imageFile);
    Export("second.hps", 1);
    EXPECT_EQ(ReadBytes(folder / "second.hps"), ReadBytes(folder / "first.hps"));
}

TEST_F(HpsRoundTrip, RefusesAFileWhoseTextureCannotBeDecoded) {
    AddTexturedSquare(*c, png_file::OfRgba(2, 2, kPixels));
    c->m_vpMeshes[0]->m_pTexture->m_vImageBytes = {'n', 'o', 'n', 'e'};
    Export("a.hps");
    Import("a.hps");
    EXPECT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.debugOutput.Text(), Line("a.hps", "Invalid texture data."));
}

}  // namespace
