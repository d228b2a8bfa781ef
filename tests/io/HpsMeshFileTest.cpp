// Reading of hps files with a component library whose answers are set by the test: order of the calls, result, and
// files whose parts contradict each other.
#include "io/HpsMeshFile.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <functional>
#include <limits>

#include "support/FakeComponents.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr wchar_t kPath[] = L"/scans/caf\u00E9.hps";

/// Three vertices and one triangle.
void EnterTriangle(FakeComponents& library) {
    library.positions = {0, 0, 0, 1, 0, 0, 0, 1, -0.0f};
    library.normals = {0, 0, 1, 0, 1, 0, 1, 0, 0};
    library.indices = {2, 0, 1};
}

/// A texture of 2 x 2 pixels; one pair per vertex.
void EnterTexture(FakeComponents& library) {
    library.uvBlock = {1, 2, 3, 4, 5};
    library.pairsOfVertex = {1, 1, 1};
    library.pairs = {0.0f, 0.5f, 1.0f, 1.5f, 2.0f, 2.5f};
    library.imageWidth = library.imageHeight = 2;
    library.pixels = {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004};
    library.imageFile = {'j', 'p', 'g'};
}

std::vector<std::array<float, 2>> PairsOf(const HpsData& data) {
    std::vector<std::array<float, 2>> pairs;
    for (const HpsFace& face : data.m_vFaces)
        for (const TexCoord& uv : face.uv) pairs.push_back({uv.u, uv.v});
    return pairs;
}

/// Of the triangles of a mesh without a texture, of the faces of one with a texture.
std::vector<std::int32_t> IndicesOf(const HpsData& data) {
    EXPECT_TRUE(data.m_vTriangles.empty() || data.m_vFaces.empty());
    std::vector<std::int32_t> indices;
    for (const Triangle& triangle : data.m_vTriangles) indices.insert(indices.end(), triangle.v, triangle.v + 3);
    for (const HpsFace& face : data.m_vFaces) indices.insert(indices.end(), face.v, face.v + 3);
    return indices;
}

// ---- the texts

TEST(GetHpsErrorText, HasOneTextPerCode) {
    const struct {
        std::int32_t code;
        const char* text;
    } rows[] = {{0, "No error."},
                {1, "File not found."},
                {2, "Can't read file."},
                {3, "Invalid file."},
                {4, "Invalid vertex data."},
                {5, "Invalid facet data."},
                {6, "Invalid UV data."},
                {7, "Invalid texture data."},
                {8, ""},
                {-1, ""},
                {std::numeric_limits<std::int32_t>::min(), ""},
                {std::numeric_limits<std::int32_t>::max(), ""}};
    for (const auto& row : rows) EXPECT_STREQ(GetHpsErrorText(row.code), row.text) << row.code;
}

// ---- the way of a good file

TEST(ReadHpsFile, CallsTheLibraryInThisOrderForAnUntexturedMesh) {
    FakeComponents library;
    EnterTriangle(library);
    (void)ReadHpsFile(kPath);
    EXPECT_THAT(library.calls,
                ElementsAre("new reader", "reader.open /scans/caf\xC3\xA9.hps", "reader.uvBlockSize", "new decoder",
                            "reader.mesh", "mesh.vertexCount", "mesh.triangleCount", "mesh.readableVertexData",
                            "vertices.read P 0 3 36 bytes", "vertices.read N 0 3 36 bytes", "vertices.endAccess",
                            "vertices gone", "mesh.readIndices 12 bytes", "reader.close", "mesh gone", "decoder gone",
                            "reader gone"));
}

TEST(ReadHpsFile, CallsTheLibraryInThisOrderForATexturedMesh) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.orientation = 1;
    (void)ReadHpsFile(kPath);
    EXPECT_THAT(
        library.calls,
        ElementsAre("new reader", "reader.open /scans/caf\xC3\xA9.hps", "reader.uvBlockSize", "reader.imageOrientation",
                    "reader.uvBlock 5 bytes", "reader.image", "image.flip", "image.size", "image.readPixels 16 bytes",
                    "image gone", "reader.imageFileSize", "reader.imageFileBytes 3 bytes", "new decoder", "reader.mesh",
                    "mesh.vertexCount", "mesh.triangleCount", "decoder.measure 5 bytes",
                    "decoder.decode 5 bytes, 3 bytes, 24 bytes", "mesh.readableVertexData",
                    "vertices.read P 0 3 36 bytes", "vertices.read N 0 3 36 bytes", "vertices.endAccess",
                    "vertices gone", "mesh.readIndices 12 bytes", "reader.close", "mesh gone", "decoder gone",
                    "reader gone"));
}

TEST(ReadHpsFile, GivesWhiteVerticesWithPositionsAndNormals) {
    FakeComponents library;
    EnterTriangle(library);
    const HpsData data = ReadHpsFile(kPath);
    ASSERT_EQ(data.m_vVertices.size(), 3u);
    const Vertex expected[] = {
        {0, 0, 0, 0, 0, 1, 0xFFFFFFFF, 0}, {1, 0, 0, 0, 1, 0, 0xFFFFFFFF, 0}, {0, 1, -0.0f, 1, 0, 0, 0xFFFFFFFF, 0}};
    EXPECT_EQ(std::memcmp(data.m_vVertices.data(), expected, sizeof(expected)), 0);
}

TEST(ReadHpsFile, GivesTrianglesAndNoFacesWhereThereIsNoTexture) {
    FakeComponents library;
    EnterTriangle(library);
    library.indices = {2, 0, 1, 1, 1, 1};
    const HpsData data = ReadHpsFile(kPath);
    EXPECT_THAT(IndicesOf(data), ElementsAre(2, 0, 1, 1, 1, 1));
    EXPECT_THAT(data.m_vFaces, IsEmpty());
    EXPECT_EQ(data.m_uWidth, 0u);
    EXPECT_EQ(data.m_uHeight, 0u);
    EXPECT_THAT(data.m_vPixels, IsEmpty());
    EXPECT_THAT(data.m_vImageBytes, IsEmpty());
}

TEST(ReadHpsFile, ReadsAMeshWithoutVertices) {
    FakeComponents library;
    const HpsData data = ReadHpsFile(kPath);
    EXPECT_THAT(data.m_vVertices, IsEmpty());
    EXPECT_THAT(IndicesOf(data), IsEmpty());
}

TEST(ReadHpsFile, GivesTheTextureWithItsFile) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.imageWidth = 4;
    library.imageHeight = 1;
    const HpsData data = ReadHpsFile(kPath);
    EXPECT_EQ(data.m_uWidth, 4u);
    EXPECT_EQ(data.m_uHeight, 1u);
    EXPECT_THAT(data.m_vPixels, ElementsAre(0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004));
    EXPECT_THAT(data.m_vImageBytes, ElementsAre('j', 'p', 'g'));
}

TEST(ReadHpsFile, FlipsTheImageOfOrientationsOneAndThreeAlone) {
    for (const std::int32_t orientation : {-1, 0, 1, 2, 3, 4}) {
        FakeComponents library;
        EnterTriangle(library);
        EnterTexture(library);
        library.orientation = orientation;
        const HpsData data = ReadHpsFile(kPath);
        if (orientation == 1 || orientation == 3)
            EXPECT_THAT(data.m_vPixels, ElementsAre(0xFF000003, 0xFF000004, 0xFF000001, 0xFF000002)) << orientation;
        else
            EXPECT_THAT(data.m_vPixels, ElementsAre(0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004)) << orientation;
    }
}

TEST(ReadHpsFile, DecodesButDoesNotUseTheCoordinatesOfAnEmptyImage) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.imageWidth = library.imageHeight = 0;
    library.pixels.clear();
    const HpsData data = ReadHpsFile(kPath);
    EXPECT_THAT(library.CallsOf("decoder."), testing::SizeIs(2));
    EXPECT_THAT(data.m_vPixels, IsEmpty());
    EXPECT_THAT(PairsOf(data), testing::Each(std::array<float, 2>{0, 0}));
}

// ---- texture coordinates

TEST(ReadHpsFile, GivesTheTrianglesOfAVertexItsPairsInOrder) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.indices = {0, 1, 2, 0, 1, 2, 2, 1, 0};
    library.pairsOfVertex = {1, 3, 2};
    library.pairs = {0, 0, 10, 1, 11, 1, 12, 1, 20, 2, 21, 2};
    using Pair = std::array<float, 2>;
    EXPECT_THAT(PairsOf(ReadHpsFile(kPath)),
                ElementsAre(Pair{0, 0}, Pair{10, 1}, Pair{20, 2},    //
                            Pair{0, 0}, Pair{11, 1}, Pair{21, 2},    // the second of each; vertex 0 starts over
                            Pair{20, 2}, Pair{12, 1}, Pair{0, 0}));  // vertex 2 starts over
}

TEST(ReadHpsFile, CountsEveryCornerOfOneTriangle) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.indices = {0, 0, 0, 0, 0, 0};
    library.pairsOfVertex = {2, 0, 0};
    library.pairs = {1, 2, 3, 4};
    using Pair = std::array<float, 2>;
    EXPECT_THAT(PairsOf(ReadHpsFile(kPath)), ElementsAre(Pair{1, 2}, Pair{3, 4}, Pair{1, 2},  //
                                                         Pair{3, 4}, Pair{1, 2}, Pair{3, 4}));
}

TEST(ReadHpsFile, StartsOverAfterTheLastPairOfAVertex) {
    // 700 triangles of vertices with 1 to 255 pairs, compared with the rule: use count modulo number of pairs
    FakeComponents library;
    EnterTexture(library);
    constexpr std::size_t kVertices = 255;
    library.positions.resize(3 * kVertices);
    library.normals = library.positions;
    library.pairsOfVertex.clear();
    library.pairs.clear();
    std::vector<std::vector<std::array<float, 2>>> pairsOf(kVertices);
    float next = 0;
    for (std::size_t i = 0; i < kVertices; ++i) {
        library.pairsOfVertex.push_back(static_cast<std::uint8_t>(i + 1));
        for (std::size_t k = 0; k <= i; ++k, ++next) {
            pairsOf[i].push_back({next, -next});
            library.pairs.insert(library.pairs.end(), {next, -next});
        }
    }
    std::uint32_t random = 1;
    for (int i = 0; i < 2100; ++i) {
        random = random * 1664525 + 1013904223;
        library.indices.push_back(static_cast<std::int32_t>((random >> 16) % (i % 2 == 0 ? kVertices : 3)));
    }
    std::vector<std::array<float, 2>> expected;
    std::vector<std::size_t> uses(kVertices);
    for (const std::int32_t index : library.indices) {
        const auto vertex = static_cast<std::size_t>(index);
        expected.push_back(pairsOf[vertex][uses[vertex]++ % pairsOf[vertex].size()]);
    }
    EXPECT_EQ(PairsOf(ReadHpsFile(kPath)), expected);
}

TEST(ReadHpsFile, AcceptsAnUnusedVertexWithoutTextureCoordinates) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.indices = {0, 1, 1};
    library.pairsOfVertex = {1, 1, 0};
    library.pairs = {1, 2, 3, 4};
    EXPECT_EQ(ReadHpsFile(kPath).m_vFaces.size(), 1u);
}

TEST(ReadHpsFile, IgnoresPairsThatNoVertexHas) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    library.pairs.insert(library.pairs.end(), {7, 7});
    using Pair = std::array<float, 2>;
    EXPECT_THAT(PairsOf(ReadHpsFile(kPath)), ElementsAre(Pair{2, 2.5f}, Pair{0, 0.5f}, Pair{1, 1.5f}));
}

// ---- files that are refused

struct Refusal {
    const char* name;
    std::function<void(FakeComponents&)> damage;  ///< of a good textured file
    const char* reason;
};
void PrintTo(const Refusal& row, std::ostream* out) { *out << row.name; }

/// The mesh operation fails, but the reader has no error code.
Refusal Failing(const char* name, const char* operation, const char* reason) {
    return {name, [operation](FakeComponents& library) { library.answers[operation] = -1; }, reason};
}

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min(), kMax = std::numeric_limits<std::int32_t>::max();

const Refusal kRefusals[] = {
    // reported by the reader when it opens the file
    {"FileNotFound", [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 1; }, "File not found."},
    {"UnreadableFile", [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 2; }, "Can't read file."},
    {"InvalidFile", [](auto& l) { l.answers["reader.open"] = 0, l.lastError = 3; }, "Invalid file."},
    {"InvalidVertexData", [](auto& l) { l.answers["reader.open"] = -2, l.lastError = 4; }, "Invalid vertex data."},
    {"InvalidFacetData", [](auto& l) { l.answers["reader.open"] = -6, l.lastError = 5; }, "Invalid facet data."},
    {"InvalidUvData", [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 6; }, "Invalid UV data."},
    {"InvalidTextureData", [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 7; }, "Invalid texture data."},
    {"UnknownReason", [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 8; }, ""},
    {"InvalidFacetDataWithTheMeshAtHand",
     [](auto& l) { l.answers["reader.open"] = -1, l.lastError = 5, l.indices = {0, 1, 2, 0, 1, 3, 9, 9, 9}; },
     "Invalid facet data. Triangle 1 refers to vertex 3 of 3."},
    {"InvalidFacetDataWithoutAMesh",
     [](auto& l) { l.answers["reader.open"] = l.answers["reader.mesh"] = -1, l.lastError = 5; }, "Invalid facet data."},
    {"InvalidFacetDataWithIndicesThatCannotBeHad",
     [](auto& l) { l.answers["reader.open"] = l.answers["mesh.readIndices"] = -1, l.lastError = 5; },
     "Invalid facet data."},
    // reported by the reader when it returns the texture
    {"UvBlockWithReason", [](auto& l) { l.answers["reader.uvBlock"] = -1, l.lastError = 6; }, "Invalid UV data."},
    {"ImageWithReason", [](auto& l) { l.answers["reader.image"] = -1, l.lastError = 7; }, "Invalid texture data."},
    {"NullImage", [](auto& l) { l.nulls.insert("reader.image"); }, "Invalid texture data."},
    // the mesh
    Failing("NoMesh", "reader.mesh", "Can't decode HPS mesh file."),
    {"NullMesh", [](auto& l) { l.nulls.insert("reader.mesh"); }, "Can't decode HPS mesh file."},
    {"NoMeshWithReason", [](auto& l) { l.answers["reader.mesh"] = -1, l.lastError = 4; },
     "Can't decode HPS mesh file."},
    Failing("NoVertexCount", "mesh.vertexCount", "Invalid vertex data."),
    Failing("NoTriangleCount", "mesh.triangleCount", "Invalid facet data."),
    Failing("NoVertexData", "mesh.readableVertexData", "Invalid vertex data."),
    {"NullVertexData", [](auto& l) { l.nulls.insert("mesh.readableVertexData"); }, "Invalid vertex data."},
    Failing("NoAttributes", "vertices.read", "Invalid vertex data."),
    {"NoNormals", [](auto& l) { l.normals.pop_back(); }, "Invalid vertex data."},
    Failing("NoIndices", "mesh.readIndices", "Invalid facet data."),
    // counts
    {"NegativeVertexCount", [](auto& l) { l.vertexCount = -1; }, "Invalid vertex data."},
    {"SmallestVertexCount", [](auto& l) { l.vertexCount = kMin; }, "Invalid vertex data."},
    {"NegativeTriangleCount", [](auto& l) { l.triangleCount = -1; }, "Invalid facet data."},
    {"MoreVerticesThanThereAre", [](auto& l) { l.vertexCount = l.measuredVertices = 4; },
     "Failed to extract UV coordinates."},
    {"MoreTrianglesThanThereAre", [](auto& l) { l.triangleCount = 2; }, "Invalid facet data."},
    {"HugeTriangleCount", [](auto& l) { l.triangleCount = 500'000'000; }, "Invalid facet data."},
    {"HugeVertexCount", [](auto& l) { l.vertexCount = kMax; }, "Inconsistent vertex count."},
    {"HugeVertexCountUntextured", [](auto& l) { l.vertexCount = 500'000'000, l.uvBlock.reset(); },
     "Invalid vertex data."},
    // texture coordinates
    {"FewerVerticesMeasured", [](auto& l) { l.measuredVertices = 2; }, "Inconsistent vertex count."},
    {"MoreVerticesMeasured", [](auto& l) { l.measuredVertices = 4; }, "Inconsistent vertex count."},
    {"NegativeVerticesMeasured", [](auto& l) { l.measuredVertices = -3; }, "Inconsistent vertex count."},
    Failing("MeasureFails", "decoder.measure", "Failed to extract UV coordinates."),
    Failing("DecodeFails", "decoder.decode", "Failed to extract UV coordinates."),
    {"NegativePairCount", [](auto& l) { l.measuredPairs = -1; }, "Invalid UV data."},
    {"MorePairsThanBytesCanCount", [](auto& l) { l.measuredPairs = 3 * 255 + 1; }, "Invalid UV data."},
    {"FewerPairsThanCounted",
     [](auto& l) {
         l.pairsOfVertex = {1, 2, 1};
     },
     "Invalid UV data."},
    {"CountedInTheLastVertex",
     [](auto& l) {
         l.pairsOfVertex = {1, 1, 2};
     },
     "Invalid UV data."},
    {"NegativeUvBlockSize", [](auto& l) { l.uvBlockSize = -1; }, "Invalid UV data."},
    {"UsedVertexWithoutPairs",
     [](auto& l) {
         l.pairsOfVertex = {1, 0, 2};
     },
     "Invalid UV data. Triangle 0 uses vertex 1, which has no texture coordinates."},
    {"EmptyUvBlock", [](auto& l) { l.uvBlock->clear(); },
     "Invalid UV data. Triangle 0 uses vertex 2, which has no texture coordinates."},
    // the texture
    {"NegativeWidth", [](auto& l) { l.imageWidth = -2; }, "Invalid texture data. It has -2 x 2 pixels."},
    {"NegativeHeight", [](auto& l) { l.imageHeight = kMin; }, "Invalid texture data. It has 2 x -2147483648 pixels."},
    {"BothNegative", [](auto& l) { l.imageWidth = l.imageHeight = -2; },
     "Invalid texture data. It has -2 x -2 pixels."},
    {"TooWide", [](auto& l) { l.imageWidth = 32769; }, "Invalid texture data. It has 32769 x 2 pixels."},
    {"Huge", [](auto& l) { l.imageWidth = l.imageHeight = kMax; },
     "Invalid texture data. It has 2147483647 x 2147483647 pixels."},
    {"NegativeImageFile", [](auto& l) { l.imageFileSize = -1; }, "Invalid texture data."},
    // indices
    {"IndexPastTheEnd", [](auto& l) { l.indices = {0, 1, 2, 1, 2, 0, 2, 3, 0, 9, 9, 9}; },
     "Invalid facet data. Triangle 2 refers to vertex 3 of 3."},
    {"NegativeIndex",
     [](auto& l) {
         l.indices = {0, 1, -1};
     },
     "Invalid facet data. Triangle 0 refers to vertex -1 of 3."},
    {"IndexPastTheEndUntextured", [](auto& l) { l.uvBlock.reset(), l.indices = {0, 1, 2, 0, 0, kMax}; },
     "Invalid facet data. Triangle 1 refers to vertex 2147483647 of 3."},
    {"NegativeIndexUntextured",
     [](auto& l) {
         l.uvBlock.reset(), l.indices = {kMin, 1, 2};
     },
     "Invalid facet data. Triangle 0 refers to vertex -2147483648 of 3."},
    {"TrianglesWithoutVertices", [](auto& l) { l.uvBlock.reset(), l.positions.clear(), l.normals.clear(); },
     "Invalid facet data. Triangle 0 refers to vertex 2 of 0."},
};

class ReadHpsFileRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(ReadHpsFileRefuses, WithAReasonAndReleasesEverything) {
    FakeComponents library;
    EnterTriangle(library);
    EnterTexture(library);
    GetParam().damage(library);
    try {
        (void)ReadHpsFile(kPath);
        FAIL() << "the file was accepted";
    } catch (const HpsReadError& error) {
        EXPECT_STREQ(error.what(), GetParam().reason);
    }
    EXPECT_EQ(library.Alive(), 0) << Lines(library.calls);
    const bool opened = !library.answers.contains("reader.open");
    EXPECT_EQ(library.CallsOf("reader.close").size(), opened ? 1u : 0u) << "an open file is closed";
    EXPECT_EQ(library.CallsOf("vertices.endAccess").size(), library.CallsOf("vertices gone").size());
}
INSTANTIATE_TEST_SUITE_P(Hps, ReadHpsFileRefuses, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return row.param.name; });

TEST(ReadHpsFile, FailsAtTheMeshWhenOpeningFailsWithoutAReason) {
    FakeComponents library;
    library.answers = {{"reader.open", -1}, {"reader.mesh", -1}};
    try {
        (void)ReadHpsFile(kPath);
        FAIL() << "the file was accepted";
    } catch (const HpsReadError& error) {
        EXPECT_STREQ(error.what(), "Can't decode HPS mesh file.");
    }
    EXPECT_THAT(library.calls, ElementsAre("new reader", "reader.open /scans/caf\xC3\xA9.hps", "reader.lastError",
                                           "reader.uvBlockSize", "new decoder", "reader.mesh", "decoder gone",
                                           "reader.close", "reader gone"));
}

TEST(ReadHpsFile, HasNoTextureWhenTheLibraryGivesNoUvBlock) {
    for (const std::int32_t status : {0, -1, -5, 2}) {
        FakeComponents library;
        EnterTriangle(library);
        EnterTexture(library);
        library.answers["reader.uvBlockSize"] = status;
        library.lastError = 6;
        EXPECT_THAT(ReadHpsFile(kPath).m_vPixels, IsEmpty()) << status;
        EXPECT_THAT(library.CallsOf("decoder."), IsEmpty());
        EXPECT_THAT(library.CallsOf("reader.image"), IsEmpty());
    }
}

// ---- failures that are not the file's

struct Failure {
    const char* operation;
    std::int32_t status;
    const char* text;
};

TEST(ReadHpsFile, ThrowsTheTextOfATextureOperationsStatus) {
    const Failure rows[] = {{"reader.imageOrientation", -5, "the method is not implemented"},
                            {"reader.uvBlock", -4, "an invalid argument was passed to an interface method"},
                            {"reader.image", -1, "the call failed"},
                            {"image.flip", -2, "an exception occurred"},
                            {"image.size", 0, "this is an invalid return value"},
                            {"image.readPixels", -6, "the operation has been canceled"},
                            {"reader.imageFileSize", -3, "requested interface not supported"},
                            {"reader.imageFileBytes", 17, "?"}};
    for (const Failure& row : rows) {
        FakeComponents library;
        EnterTriangle(library);
        EnterTexture(library);
        library.orientation = 3;
        library.answers[row.operation] = row.status;
        try {
            (void)ReadHpsFile(kPath);
            ADD_FAILURE() << row.operation << " is not called or its failure is ignored";
        } catch (const HpsReadError&) {
            ADD_FAILURE() << "an HpsReadError, but the reader has no error code";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), row.text) << row.operation;
        }
        EXPECT_EQ(library.Alive(), 0) << row.operation;
        EXPECT_THAT(library.CallsOf("reader.close"), testing::SizeIs(1));
    }
}

TEST(ReadHpsFile, ThrowsWhenTheLibraryGivesNoObject) {
    for (const std::string kind : {"reader", "decoder"}) {
        for (const bool noInterface : {false, true}) {
            FakeComponents library;
            EnterTriangle(library);
            if (noInterface)
                library.answers[kind + ".query"] = -3;
            else
                library.missing.insert(kind);
            try {
                (void)ReadHpsFile(kPath);
                ADD_FAILURE() << kind;
            } catch (const HpsReadError&) {
                ADD_FAILURE() << "an HpsReadError, but the file is good";
            } catch (const std::runtime_error& error) {
                EXPECT_THAT(error.what(), HasSubstr("InitializeKVReg"));
            }
            EXPECT_EQ(library.Alive(), 0) << kind;
        }
    }
}

}  // namespace
