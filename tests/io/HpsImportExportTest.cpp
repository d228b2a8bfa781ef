// The control's import and export of hps files, with a component library whose answers are set by the test.
#include <GL/glew.h>
#include <gmock/gmock.h>

#include <cmath>

#include "support/ControlFixture.h"
#include "support/FakeComponents.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr wchar_t kPath[] = L"/scans/caf\u00E9.hps";

/// A library with a file of four vertices and two triangles.
class HpsLibrary : public FakeComponents {
public:
    HpsLibrary() {
        positions = {0, 0, 5, 2, 0, 5, 2, 3, 5, 0, 3, 5};
        normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
        indices = {0, 1, 2, 2, 3, 0};
    }
    void AddTexture() {
        uvBlock = {1};
        pairsOfVertex = {1, 1, 2, 1};
        pairs = {0, 0, 1, 0, 1, 1, 0.5f, 0.25f, 0, 1};
        imageWidth = 2;
        imageHeight = 1;
        pixels = {0xFF0000AA, 0xFFBB0000};
        imageFile = {'p', 'n', 'g'};
    }
};

template <class Control>
class HpsFilesOf : public testing::Test {
protected:
    [[nodiscard]] const Mesh& Last() const { return *c->m_vpMeshes.back(); }

    HpsLibrary library;
    Control c;
};
using ImportHps = HpsFilesOf<NoPictureControl>;
using ExportHps = HpsFilesOf<NoPictureControl>;
using TexturedHps = HpsFilesOf<OffscreenControl>;

// ---- import without a texture

TEST_F(ImportHps, AddsAnUntexturedFileAsAGrayMeshThatUsesNoVertexColors) {
    EXPECT_EQ(c->ImportHps(kPath), 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_TRUE(Last().m_bGrayColors);
    EXPECT_FALSE(Last().m_bHasVertexColors);
    EXPECT_EQ(Last().m_pTexture, nullptr);
    EXPECT_THAT(Last().m_vTexCoords, IsEmpty());
    EXPECT_THAT(library.CallsOf("new image"), IsEmpty());
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(ImportHps, GivesTheObjectThePathAsItsNameAndTheBoxOfItsVertices) {
    c->ImportHps(kPath);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(Last().m_sName, kPath);
    float box[6];
    c->GetObjectBoundingBox(0, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_THAT(box, ElementsAre(0, 2, 0, 3, 5 - 0.01f, 5 + 0.01f));
}

TEST_F(ImportHps, GivesTheObjectTheFilesVerticesAndTriangles) {
    c->ImportHps(kPath);
    ASSERT_EQ(c->GetNumObjects(), 1);
    ASSERT_EQ(Last().GetVertexCount(), 4u);
    EXPECT_EQ(Last().m_vVertices[2].x, 2);
    EXPECT_EQ(Last().m_vVertices[2].y, 3);
    EXPECT_EQ(Last().m_vVertices[2].nz, 1);
    EXPECT_EQ(Last().m_vVertices[2].color, 0xFFFFFFFF);
    ASSERT_EQ(Last().GetTriangleCount(), 2u);
    EXPECT_THAT(Last().m_vTriangles[1].v, ElementsAre(2, 3, 0));
}

TEST_F(ImportHps, ShowsTheWaitCursorAndRequestsNoRepaint) {
    c->ImportMesh(L"/scans/a.HpS");
    EXPECT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

TEST_F(ImportHps, AddsAnEmptyObjectForAFileWithoutVertices) {
    library.positions.clear();
    library.normals.clear();
    library.indices.clear();
    EXPECT_EQ(c->ImportHps(kPath), 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(Last().m_fBoundingBox[0], 0.99f);
}

TEST_F(ImportHps, AppendsAfterTheExistingObjects) {
    const Mesh& first = AddMesh(*c, {}, {});
    c->ImportHps(kPath);
    c->ImportHps(kPath);
    ASSERT_EQ(c->GetNumObjects(), 3);
    EXPECT_EQ(c->m_vpMeshes[0].get(), &first);
}

// ---- import that adds nothing

TEST_F(ImportHps, ReportsTheReasonOfARefusedFileInOneLine) {
    library.answers["reader.open"] = -1;
    library.lastError = 3;
    EXPECT_EQ(c->ImportHps(kPath), -1);
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(), "ImportHps(): /scans/caf\xC3\xA9.hps: Invalid file.\n");
}

TEST_F(ImportHps, NamesTheFirstTriangleThatRefersToAMissingVertex) {
    library.indices = {0, 1, 2, 0, 4, 1, 9, 9, 9};
    EXPECT_EQ(c->ImportHps(kPath), -1);
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(),
              "ImportHps(): /scans/caf\xC3\xA9.hps: Invalid facet data. Triangle 1 refers to vertex 4 of 4.\n");
}

TEST_F(ImportHps, ReportsARefusedFileInTheDebuggerOutputOnly) {
    library.answers["reader.mesh"] = -1;
    EXPECT_NO_THROW(c->ImportMesh(kPath));
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_THAT(c.debugOutput.Text(), EndsWith(": Can't decode HPS mesh file.\n"));
}

TEST_F(ImportHps, ReportsAnErrorWithoutATextToo) {
    library.answers["reader.open"] = -1;
    library.lastError = 99;
    EXPECT_EQ(c->ImportHps(kPath), -1);
    EXPECT_EQ(c.debugOutput.Text(), "ImportHps(): /scans/caf\xC3\xA9.hps: an error without a text\n");
}

TEST_F(ImportHps, ThrowsWhenTheRegistryGivesNoReader) {
    library.missing = {"reader"};
    try {
        c->ImportMesh(kPath);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("InitializeKVReg"));
    }
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}

// ---- textures

TEST_F(TexturedHps, KeepTextureCoordinatesAndTheImageFile) {
    library.AddTexture();
    EXPECT_EQ(c->ImportHps(kPath), 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_FALSE(Last().m_bGrayColors);
    EXPECT_FALSE(Last().m_bHasVertexColors);
    EXPECT_EQ(Last().m_sName, kPath);
    ASSERT_THAT(Last().m_vTexCoords, SizeIs(6));
    const float expected[6][2] = {{0, 0}, {1, 0}, {1, 1}, {0.5f, 0.25f}, {0, 1}, {0, 0}};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(Last().m_vTexCoords[i].u, expected[i][0]) << i;
        EXPECT_EQ(Last().m_vTexCoords[i].v, expected[i][1]) << i;
    }
    ASSERT_NE(Last().m_pTexture, nullptr);
    EXPECT_THAT(Last().m_pTexture->m_vImageBytes, ElementsAre('p', 'n', 'g'));
}

TEST_F(TexturedHps, PassThePixelsToAnImageObjectAndTheGpu) {
    library.AddTexture();
    c->ImportHps(kPath);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_THAT(library.CallsOf("image.setSize"), ElementsAre("image.setSize 2 1"));
    EXPECT_THAT(library.writtenPixels, ElementsAre(0xFF0000AA, 0xFFBB0000));
    ASSERT_NE(Last().m_pTexture, nullptr);
    std::uint32_t onGpu[2] = {};
    c->MakeContextCurrent();
    glBindTexture(GL_TEXTURE_2D, Last().m_pTexture->m_uName);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, onGpu);
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_THAT(onGpu, ElementsAre(0xFF0000AA, 0xFFBB0000));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(TexturedHps, MakeTheTextureInTheControlsOwnContext) {
    library.AddTexture();
    const OffscreenControl other;
    ASSERT_TRUE(other->MakeContextCurrent());
    c->ImportHps(kPath);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(Last().m_pTexture->m_hContext, c.window->ContextHandle());
}

TEST_F(TexturedHps, ThrowTheStatusTextWhenTheImageObjectRefusesThem) {
    for (const auto& [operation, status, text] :
         {std::tuple{"image.setSize", -4, "an invalid argument was passed to an interface method"},
          std::tuple{"image.writePixels", -2, "an exception occurred"}}) {
        library.AddTexture();
        library.answers = {{operation, status}};
        try {
            c->ImportMesh(kPath);
            ADD_FAILURE() << operation << " is not called or its failure is ignored";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), text);
        }
        EXPECT_EQ(c->GetNumObjects(), 0);
        EXPECT_EQ(library.Alive(), 0);
    }
}

// ---- export

TEST_F(ExportHps, GivesTheObjectsPositionsAndIndicesToTheLibrary) {
    AddMesh(*c, {{}}, {});
    AddMesh(*c, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {{{2, 1, 0}}});
    c->ExportMesh(1, kPath);
    EXPECT_THAT(library.writtenPositions, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT(library.writtenIndices, ElementsAre(2, 1, 0));
    EXPECT_THAT(library.CallsOf("writer.uvPairs"), IsEmpty());
    EXPECT_THAT(library.CallsOf("writer.textureFile"), IsEmpty());
    EXPECT_EQ(library.savedPath, kPath);
    EXPECT_EQ(c.window->waitCursorsBegun, 0);
}

TEST_F(ExportHps, GivesTextureCoordinatesAndImageFileToTheLibrary) {
    library.AddTexture();
    ASSERT_EQ(c->ImportHps(kPath), 0) << "without OpenGL a textured mesh keeps its image file";
    c->ExportHps(0, kPath);
    EXPECT_THAT(library.writtenPairs, ElementsAre(0, 0, 1, 0, 1, 1, 0.5f, 0.25f, 0, 1, 0, 0));
    EXPECT_THAT(library.writtenTextureFile, ElementsAre('p', 'n', 'g'));
}

TEST_F(ExportHps, IsTheSameTheSecondTime) {
    AddMesh(*c, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {{{2, 1, 0}}});
    c->ExportHps(0, kPath);
    const std::vector<std::string> calls = std::exchange(library.calls, {});
    c->ExportHps(0, kPath);
    EXPECT_EQ(library.calls, calls);
}

TEST_F(ExportHps, PassesErrorsToTheCallerOfExportMesh) {
    AddMesh(*c, {{1, 2, 3}}, {});
    library.answers["writer.save"] = -1;
    try {
        c->ExportMesh(0, kPath);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the call failed");
    }
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(ExportHps, FailsAtTheFirstObjectWithoutARegistry) {
    AddMesh(*c, {{1, 2, 3}}, {});
    library.missing = {"mesh", "writer", "compressor"};
    EXPECT_THROW(c->ExportMesh(0, kPath), std::runtime_error);
    EXPECT_THAT(library.calls, IsEmpty());
}

// ---- the source application

TEST_F(ExportHps, PassesTwoEmptyStringsWithoutASourceApplication) {
    AddMesh(*c, {{}}, {});
    library.application = library.version = "former";
    c->ExportHps(0, kPath);
    EXPECT_EQ(library.application, "");
    EXPECT_EQ(library.version, "");
}

TEST_F(ExportHps, KeepsTheSourceApplicationForEveryFileUntilItChanges) {
    AddMesh(*c, {{}}, {});
    c->SetHpsSourceApp(L"Scan Studio", L"4.2");
    for (int i = 0; i < 2; ++i) {
        library.application = library.version = "";
        c->ExportHps(0, kPath);
        EXPECT_EQ(library.application, "Scan Studio");
        EXPECT_EQ(library.version, "4.2");
    }
    c->SetHpsSourceApp(L"", L"5");
    c->ExportHps(0, kPath);
    EXPECT_EQ(library.application, "");
    EXPECT_EQ(library.version, "5");
}

TEST_F(ExportHps, CutsLettersOfTheSourceApplicationToTheLowByteOfEachUnit) {
    const struct {
        const wchar_t* text;
        std::string bytes;
    } rows[] = {{nullptr, ""},
                {L"", ""},
                {L"plain", "plain"},
                {L"caf\u00E9", "caf\xE9"},                // as it would be in Latin-1
                {L"\u20AC", "\xAC"},                      // 20AC
                {L"\u0141a\uFFFF", "Aa\xFF"},             // 0141
                {L"\U00010000", std::string("\0\0", 2)},  // D800 DC00
                {L"\U0001F680!", "\x3D\x80!"},            // D83D DE80
                {L"\U0010FFFF", "\xFF\xFF"}};             // DBFF DFFF
    for (const auto& row : rows) {
        c->SetHpsSourceApp(row.text, L"v");
        EXPECT_EQ(c->m_hpsSourceApp, row.bytes);
        EXPECT_EQ(c->m_hpsSourceVersion, "v");
        c->SetHpsSourceApp(L"a", row.text);
        EXPECT_EQ(c->m_hpsSourceApp, "a");
        EXPECT_EQ(c->m_hpsSourceVersion, row.bytes);
    }
}

}  // namespace
