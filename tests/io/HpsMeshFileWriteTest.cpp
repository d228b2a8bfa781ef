// Writing of hps files with a component library whose answers are set by the test.
#include <gmock/gmock.h>

#include <array>
#include <cmath>

#include "io/HpsMeshFile.h"
#include "support/FakeComponents.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kPath[] = L"/out/caf\u00E9.hps";

class WriteHpsFileTest : public testing::Test {
protected:
    WriteHpsFileTest() {
        content.vertices = vertices;
        content.triangles = triangles;
        content.sourceApplication = "viewer";
        content.sourceVersion = "1.2";
    }
    void AddTexture() {
        content.texCoords = texCoords;
        content.imageFile = imageFile;
    }

    const std::array<Vertex, 3> vertices{
        Vertex{1, 2, 3, 9, 9, 9, 0x11, 1}, {4, 5, -0.0f, 9, 9, 9, 0x22, 2}, {7, 8, 9, 9, 9, 9, 0x33, 3}};
    const std::array<Triangle, 2> triangles{Triangle{{0, 1, 2}}, {{2, 1, 0}}};
    const std::array<TexCoord, 6> texCoords{TexCoord{0, 1}, {2, 3}, {4, 5}, {6, 7}, {8, 9}, {10, 11}};
    const std::array<std::uint8_t, 4> imageFile{'p', 'n', 'g', 0};
    HpsContent content;
    FakeComponents library;
};

TEST_F(WriteHpsFileTest, CallsTheLibraryInThisOrder) {
    AddTexture();
    WriteHpsFile(content, kPath);
    EXPECT_THAT(
        library.calls,
        ElementsAre("new mesh", "mesh.create 3 2 P", "mesh.writableVertexData", "vertices.write P 0 3 36 bytes",
                    "vertices.endAccess", "vertices gone", "mesh.writeIndices 24 bytes", "source.query", "source.clone",
                    "source gone", "clone.finish 0 0", "clone.triangleCount", "new writer", "new compressor",
                    "compressor.bind clone", "writer.bind compressor", "writer.uvPairs 6", "writer.textureFile 4 bytes",
                    "writer.prepare", "writer.sourceApplication", "writer.save", "writer.unbind", "compressor.unbind",
                    "compressor gone", "writer gone", "clone gone", "mesh gone"));
}

TEST_F(WriteHpsFileTest, PassesPositionsAndIndicesUnchanged) {
    WriteHpsFile(content, kPath);
    EXPECT_THAT(library.writtenPositions, ElementsAre(1, 2, 3, 4, 5, -0.0f, 7, 8, 9));
    EXPECT_TRUE(std::signbit(library.writtenPositions[5]));
    EXPECT_THAT(library.writtenIndices, ElementsAre(0, 1, 2, 2, 1, 0));
    EXPECT_EQ(library.savedPath, kPath);
    EXPECT_EQ(library.application, "viewer");
    EXPECT_EQ(library.version, "1.2");
}

TEST_F(WriteHpsFileTest, PassesPairsAndTextureFileToTheLibrary) {
    AddTexture();
    WriteHpsFile(content, kPath);
    EXPECT_THAT(library.writtenPairs, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    EXPECT_THAT(library.writtenTextureFile, ElementsAre('p', 'n', 'g', 0));
}

TEST_F(WriteHpsFileTest, WritesNeitherPairsNorTextureFileOfAnUntexturedMesh) {
    WriteHpsFile(content, kPath);
    EXPECT_THAT(library.CallsOf("writer.uvPairs"), IsEmpty());
    EXPECT_THAT(library.CallsOf("writer.textureFile"), IsEmpty());
    EXPECT_THAT(library.CallsOf("writer.save"), testing::SizeIs(1));
}

TEST_F(WriteHpsFileTest, WritesTheTextureFileOfAMeshWithoutCoordinates) {
    content.imageFile = imageFile;
    WriteHpsFile(content, kPath);
    EXPECT_THAT(library.CallsOf("writer.uvPairs"), IsEmpty());
    EXPECT_THAT(library.writtenTextureFile, testing::SizeIs(4));
}

TEST_F(WriteHpsFileTest, WritesAMeshWithoutVertices) {
    content.vertices = {};
    content.triangles = {};
    WriteHpsFile(content, kPath);
    EXPECT_THAT(library.CallsOf("mesh.create"), ElementsAre("mesh.create 0 0 P"));
    EXPECT_THAT(library.writtenPositions, IsEmpty());
    EXPECT_THAT(library.CallsOf("writer.save"), testing::SizeIs(1));
}

TEST_F(WriteHpsFileTest, PassesTwoEmptyStrings) {
    content.sourceApplication.clear();
    content.sourceVersion.clear();
    library.application = library.version = "former";
    WriteHpsFile(content, kPath);
    EXPECT_EQ(library.application, "");
    EXPECT_EQ(library.version, "");
    EXPECT_THAT(library.CallsOf("writer.sourceApplication"), testing::SizeIs(1));
}

TEST_F(WriteHpsFileTest, RefusesACloneWithAnotherTriangleCount) {
    AddTexture();
    for (const std::int32_t count : {1, 3, 1'000'000'000, -1}) {
        library.triangleCount = count;
        EXPECT_THROW(WriteHpsFile(content, kPath), std::runtime_error) << count;
        EXPECT_EQ(library.Alive(), 0);
    }
    EXPECT_THAT(library.CallsOf("writer.uvPairs"), IsEmpty());
}

// ---- every step can fail

struct FailingStep {
    const char* operation;
    std::int32_t status;
    const char* text;
};
void PrintTo(const FailingStep& row, std::ostream* out) { *out << row.operation; }

class WriteHpsFileFailsAt : public WriteHpsFileTest, public testing::WithParamInterface<FailingStep> {};

TEST_P(WriteHpsFileFailsAt, ThrowsTheStatusTextAndReleasesEverything) {
    AddTexture();
    const std::string operation = GetParam().operation;
    library.answers[operation] = GetParam().status;
    try {
        WriteHpsFile(content, kPath);
        FAIL() << "the status was ignored";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), GetParam().text);
    }
    EXPECT_EQ(library.Alive(), 0) << Lines(library.calls);
    EXPECT_EQ(library.CallsOf("vertices.endAccess").size(), library.CallsOf("vertices gone").size());
    const bool saves = operation.ends_with("unbind");
    EXPECT_EQ(library.CallsOf("writer.save").size(), saves || operation == "writer.save" ? 1u : 0u);
    // each binding is undone once, the outer one first
    const bool compressorBound = !library.CallsOf("compressor.bind").empty() && operation != "compressor.bind";
    const bool writerBound = !library.CallsOf("writer.bind").empty() && operation != "writer.bind";
    EXPECT_EQ(library.CallsOf("compressor.unbind").size(), compressorBound ? 1u : 0u);
    EXPECT_EQ(library.CallsOf("writer.unbind").size(), writerBound ? 1u : 0u);
}
INSTANTIATE_TEST_SUITE_P(
    Hps, WriteHpsFileFailsAt,
    testing::Values(FailingStep{"mesh.create", -1, "the call failed"},
                    FailingStep{"mesh.writableVertexData", -2, "an exception occurred"},
                    FailingStep{"vertices.write", -4, "an invalid argument was passed to an interface method"},
                    FailingStep{"mesh.writeIndices", -5, "the method is not implemented"},
                    FailingStep{"source.query", -3, "requested interface not supported"},
                    FailingStep{"source.clone", -1, "Clone<INTF>() failed"},
                    FailingStep{"clone.query", -3, "Clone<INTF>() failed"},
                    FailingStep{"clone.finish", -6, "the operation has been canceled"},
                    FailingStep{"clone.triangleCount", 0, "this is an invalid return value"},
                    FailingStep{"compressor.bind", 2, "?"}, FailingStep{"writer.bind", -1, "the call failed"},
                    FailingStep{"writer.uvPairs", -4, "an invalid argument was passed to an interface method"},
                    FailingStep{"writer.textureFile", -1, "the call failed"},
                    FailingStep{"writer.prepare", -2, "an exception occurred"},
                    FailingStep{"writer.sourceApplication", -5, "the method is not implemented"},
                    FailingStep{"writer.save", -1, "the call failed"},
                    FailingStep{"writer.unbind", -1, "the call failed"},
                    FailingStep{"compressor.unbind", 0, "this is an invalid return value"}),
    [](const auto& row) {
        std::string name = row.param.operation;
        name[name.find('.')] = '_';
        return name;
    });

TEST_F(WriteHpsFileTest, ThrowsForANullClone) {
    library.nulls.insert("source.clone");
    try {
        WriteHpsFile(content, kPath);
        FAIL() << "the clone was used";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Clone<INTF>() failed");
    }
}

TEST_F(WriteHpsFileTest, ThrowsForNullVertexData) {
    library.nulls.insert("mesh.writableVertexData");
    EXPECT_THROW(WriteHpsFile(content, kPath), std::runtime_error);
}

TEST_F(WriteHpsFileTest, ThrowsAtTheFirstObjectThatTheLibraryDoesNotHave) {
    for (const std::string kind : {"mesh", "writer", "compressor"}) {
        library.missing = {kind};
        library.calls.clear();
        EXPECT_THROW(WriteHpsFile(content, kPath), std::runtime_error) << kind;
        EXPECT_EQ(library.Alive(), 0) << kind;
        EXPECT_THAT(library.CallsOf("writer.save"), IsEmpty()) << kind;
        EXPECT_EQ(library.calls.empty(), kind == "mesh") << kind;
    }
}

}  // namespace
