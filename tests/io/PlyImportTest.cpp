// ImportMesh of ply files into a whole control, also of files that ExportMesh wrote.
#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/CPLYFile.h"
#include "io/PlySample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using namespace ply_sample;
using KV_ScenePane::WidePath;
using testing::IsEmpty;

const std::string kColored = std::string(kPositions) + kColors;

class ImportPly : public testing::Test {
protected:
    void Import(const std::string& bytes) {
        std::ofstream(m_folder / "a.ply", std::ios::binary) << bytes;
        c->ImportMesh(WidePath(m_folder / "a.ply").c_str());
    }
    /// The object with this index after it was exported and imported again.
    const Mesh& ThereAndBack(std::int16_t index) {
        const std::string path = m_folder / ("back" + std::to_string(c->GetNumObjects()) + ".ply");
        c->ExportMesh(index, WidePath(path).c_str());
        c->ImportMesh(WidePath(path).c_str());
        return *c->m_vpMeshes.back();
    }
    [[nodiscard]] std::string Path() const { return m_folder / "a.ply"; }

    ScratchFolder m_folder;
    NoPictureControl c;
};

TEST_F(ImportPly, AddsOneObjectWithMeanNormalsAndABox) {
    // Two faces at a right angle on the edge from (0, 0, 0) to (0, 1, 0); the normals in the file are ignored.
    Import(kBinary +
           Vertices(4, std::string(kPositions) + "property float nx\nproperty float ny\nproperty float nz\n") +
           Faces(2) + kEnd + Floats({0, 0, 0, 9, 9, 9, 1, 0, 0, 9, 9, 9, 0, 1, 0, 9, 9, 9, 0, 0, 1, 9, 9, 9}) +
           Face(0, 1, 2) + Face(0, 2, 3));
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& mesh = *c->m_vpMeshes[0];
    EXPECT_EQ(mesh.m_sName, L"");
    EXPECT_EQ(mesh.m_vVertices[0].nx, 0.5f);
    EXPECT_EQ(mesh.m_vVertices[0].ny, 0.0f);
    EXPECT_EQ(mesh.m_vVertices[0].nz, 0.5f);
    EXPECT_EQ(mesh.m_vVertices[1].nz, 1.0f);
    EXPECT_EQ(mesh.m_fBoundingBox[0], 0);
    EXPECT_EQ(mesh.m_fBoundingBox[1], 1);
    EXPECT_EQ(mesh.m_fBoundingBox[5], 1);
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_TRUE(mesh.m_bGrayColors);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_EQ(mesh.m_pTexture, nullptr);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(ImportPly, ShowsTheWaitCursorAndAsksForNoRepaint) {
    Import(BinaryTriangle());
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

TEST_F(ImportPly, IsNotStagedDuringAParallelImport) {
    void* context = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&context, &entry);
    Import(BinaryTriangle());
    EXPECT_EQ(c->m_vpMeshes.size(), 1u);
    c->EndParallelImport();
    EXPECT_EQ(c->m_vpMeshes.size(), 1u);
}

TEST_F(ImportPly, IsGreyUntilOneColorIsNot) {
    const auto file = [](const char* last) {
        return kText + Vertices(2, kColored) + Faces(1) + kEnd + "0 0 0 7 7 7\n1 0 0 " + last + "\n3 0 1 0\n";
    };
    for (const char* last : {"9 9 9", "9 9 8", "8 9 9", "9 8 9"}) Import(file(last));
    ASSERT_EQ(c->GetNumObjects(), 4);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_bHasVertexColors);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_bGrayColors);
    for (const int i : {1, 2, 3}) EXPECT_FALSE(c->m_vpMeshes[static_cast<std::size_t>(i)]->m_bGrayColors) << i;
}

TEST_F(ImportPly, ReturnsMinusOneWithAReasonWhenThereAreNoFaces) {
    for (const std::string& file :
         {kBinary + Vertices(3) + kEnd + Corners(), kText + Vertices(3) + Faces(0) + kEnd + "0 0 0 1 0 0 0 1 0"}) {
        Import(file);
        EXPECT_EQ(c->ImportPly(WidePath(Path()).c_str()), -1);
        EXPECT_EQ(c->GetNumObjects(), 0);
        const std::string line = "ImportPly(): " + Path() + ": holds no faces\n";
        EXPECT_EQ(c.debugOutput.Take(), line + line);
    }
    Import(TextTriangle());
    EXPECT_EQ(c->ImportPly(WidePath(Path()).c_str()), 0);
}

TEST_F(ImportPly, ThrowsTheReasonAndDoesNotChangeTheScene) {
    Import(BinaryTriangle());
    const Mesh* const before = c->m_vpMeshes[0].get();
    c.window->Forget();
    const std::string quad = kBinary + Vertices(3) + Faces(1) + kEnd + Corners() + "\x04" + Bytes(0, 1, 2, 0);
    const std::string outside = kBinary + Vertices(3) + Faces(1) + kEnd + Corners() + Face(0, 1, 3);
    for (const std::string& file : {std::string(), quad, outside, BinaryTriangle().substr(0, 130)})
        EXPECT_THROW(Import(file), CPLYFileError);
    EXPECT_THROW(c->ImportMesh(WidePath(m_folder / "missing.ply").c_str()), CPLYFileError);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0].get(), before);
    EXPECT_EQ(c.window->waitCursorsBegun, 5);
    EXPECT_EQ(c.window->waitCursorsEnded, 5);  // every wait cursor has ended
}

TEST_F(ImportPly, AcceptsAnExtensionInCapitals) {
    std::ofstream(m_folder / "A.PLY", std::ios::binary) << TextTriangle();
    c->ImportMesh(WidePath(m_folder / "A.PLY").c_str());
    EXPECT_EQ(c->GetNumObjects(), 1);
}

// ---- there and back

void ExpectSameMesh(const Mesh& a, const Mesh& b) {
    ASSERT_EQ(a.GetVertexCount(), b.GetVertexCount());
    ASSERT_EQ(a.GetTriangleCount(), b.GetTriangleCount());
    EXPECT_EQ(std::memcmp(a.m_vVertices.data(), b.m_vVertices.data(), a.GetVertexCount() * sizeof(Vertex)), 0);
    EXPECT_EQ(std::memcmp(a.m_vTriangles.data(), b.m_vTriangles.data(), a.GetTriangleCount() * sizeof(Triangle)), 0);
    EXPECT_EQ(a.m_bHasVertexColors, b.m_bHasVertexColors);
    EXPECT_EQ(a.m_bGrayColors, b.m_bGrayColors);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(a.m_fBoundingBox[i], b.m_fBoundingBox[i]);
}

TEST_F(ImportPly, ImportsExportedColoredMeshesBitForBit) {
    std::string vertices;
    for (int i = 0; i < 100; ++i) {
        const auto f = static_cast<float>(i);
        vertices += Floats({std::sin(f), std::cos(f), 0.1f * f}) +
                    Bytes(static_cast<std::uint8_t>(i + 1), static_cast<std::uint8_t>(2 * i), std::uint8_t{255});
    }
    std::string faces;
    for (int i = 0; i + 2 < 100; ++i) faces += Face(i, i + 1, i + 2);
    Import(kBinary + Vertices(100, kColored) + Faces(98) + kEnd + vertices + faces);
    ExpectSameMesh(*c->m_vpMeshes[0], ThereAndBack(0));
    EXPECT_TRUE(c->m_vpMeshes[1]->m_bHasVertexColors);
}

TEST_F(ImportPly, ImportsExportedUncoloredMeshesAsWhite) {
    Import(BinaryTriangle());
    const Mesh& back = ThereAndBack(0);
    EXPECT_TRUE(back.m_bHasVertexColors);  // white is written as a colour
    EXPECT_TRUE(back.m_bGrayColors);
    for (const Vertex& vertex : back.m_vVertices) EXPECT_EQ(vertex.color, 0xFFFFFFFF);
    ExpectSameMesh(back, ThereAndBack(1));
}

TEST_F(ImportPly, LosesTheColorsOfAMeshWhoseFirstVertexIsBlack) {
    AddMesh(*c, {{0, 0, 0, 0, 0, 0, 0xFF000000}, {1, 0, 0, 0, 0, 0, 0xFF123456}, {0, 1, 0}}, {{{0, 1, 2}}});
    const Mesh& back = ThereAndBack(0);
    EXPECT_FALSE(back.m_bHasVertexColors);
    EXPECT_EQ(back.m_vVertices[1].color, 0xFFFFFFFF);
}

TEST_F(ImportPly, DoesNotImportAnExportedMeshWithoutTriangles) {
    AddMesh(*c, {{}, {}}, {});
    AddMesh(*c, {}, {});
    for (std::int16_t index = 0; index < 2; ++index) {
        const std::string path = m_folder / "none.ply";
        c->ExportMesh(index, WidePath(path).c_str());
        EXPECT_EQ(c->ImportPly(WidePath(path).c_str()), -1);
        EXPECT_EQ(c->GetNumObjects(), 2);
    }
}

}  // namespace
