#include "TextStl.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "geometry/Mesh.h"
#include "io/StlMesh.h"

namespace {

std::string Facet(const char* corners) {
    return std::string("facet normal 0 0 1\nouter loop\n") + corners + "endloop\nendfacet\n";
}
const std::string kFirst = Facet("vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n");
const std::string kSecond = Facet("vertex 1 0 0\nvertex 1 1 0\nvertex 0 1 0\n");

struct Form {
    const char* name;
    std::string text;
    std::size_t vertices, triangles;
};
void PrintTo(const Form& row, std::ostream* out) { *out << row.name; }
const Form kForms[] = {
    {"OneSolid", "solid a\n" + kFirst + kSecond + "endsolid a\n", 4, 2},
    {"TwoSolids", "solid a\n" + kFirst + "endsolid a\nsolid b\n" + kSecond + "endsolid b\n", 4, 2},
    {"UpperCase",
     "SOLID A\nFACET NORMAL 0 0 1\nOUTER LOOP\nVERTEX 0 0 0\nVERTEX 1 0 0\nVERTEX 0 1 0\nENDLOOP\nENDFACET\n"
     "ENDSOLID\n",
     3, 1},
    {"ANameThatIsAKeyword", "solid vertex 1 2 3 facet\n" + kFirst + "endsolid vertex\n", 3, 1},
    {"NoNormal", "solid\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\nendsolid\n", 3,
     1},
    {"Comments", "# by hand\nsolid a # b\n" + kFirst + "# end\nendsolid\n", 3, 1},
    {"NoEndOfTheSolid", "solid a\n" + kFirst, 3, 1},
    {"NoEndOfAFacet", "solid a\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n" + kSecond, 4, 2},
    {"OneLine",
     "solid a\nfacet normal 0 0 1 outer loop vertex 0 0 0 vertex 1 0 0 vertex 0 1 0 endloop endfacet endsolid", 3, 1},
    {"CarriageReturns", "solid a\rfacet\router loop\rvertex 0 0 0\rvertex 1 0 0\rvertex 0 1 0\rendloop\rendfacet\r", 3,
     1},
    {"FourCorners", "solid a\n" + Facet("vertex 0 0 0\nvertex 1 0 0\nvertex 1 1 0\nvertex 0 1 0\n"), 4, 2},
    {"NumbersOfAnyForm", "solid a\n" + Facet("vertex +0 -0.0 0e5\nvertex 1e0 0 0\nvertex 0 1.E-0 0\n"), 3, 1},
};
class TextStl : public testing::TestWithParam<Form> {};
TEST_P(TextStl, IsReadWhateverItsForm) {
    const FoundMesh found = ReadTextStl(GetParam().text);
    EXPECT_EQ(found.mesh.m_vVertices.size(), GetParam().vertices);
    EXPECT_EQ(found.mesh.m_vTriangles.size(), GetParam().triangles);
}
INSTANTIATE_TEST_SUITE_P(Reader, TextStl, testing::ValuesIn(kForms), [](const auto& row) { return row.param.name; });

TEST(TextStl, GivesTheObjectOfTheBinaryFileOfTheSameMesh) {
    // A pyramid: smooth normals of its tip follow from four faces.
    const float corners[4][3][3] = {{{0, 0, 0}, {2, 0, 0}, {1, 1, 1}},
                                    {{2, 0, 0}, {2, 2, 0}, {1, 1, 1}},
                                    {{2, 2, 0}, {0, 2, 0}, {1, 1, 1}},
                                    {{0, 2, 0}, {0, 0, 0}, {1, 1, 1}}};
    std::string text = "solid a\n", binary(80, ' ');
    binary.append("\4\0\0\0", 4);
    for (const auto& triangle : corners) {
        text += "facet normal 0 0 0\nouter loop\n";
        binary.append(12, '\0');
        for (const auto& corner : triangle) {
            text += "vertex";
            for (const float coordinate : corner) text += ' ' + std::to_string(coordinate);
            text += '\n';
            binary.append(reinterpret_cast<const char*>(corner), sizeof corner);
        }
        text += "endloop\nendfacet\n";
        binary.append(2, '\0');
    }
    const ReaderResult result = ResultOf(ReadTextStl(text + "endsolid\n"));
    FileMesh expected = ReadStl(std::as_bytes(std::span(binary)));
    Mesh mesh({}, false);
    mesh.m_vVertices = std::move(expected.m_vVertices);
    mesh.m_vTriangles = std::move(expected.m_vTriangles);
    mesh.ComputeVertexNormals();
    ASSERT_EQ(result.mesh.m_vVertices.size(), mesh.m_vVertices.size());
    for (std::size_t i = 0; i < mesh.m_vVertices.size(); ++i)
        EXPECT_EQ(std::memcmp(&result.mesh.m_vVertices[i], &mesh.m_vVertices[i], sizeof(Vertex)), 0) << i;
    ASSERT_EQ(result.mesh.m_vTriangles.size(), 4u);
    EXPECT_EQ(std::memcmp(result.mesh.m_vTriangles.data(), mesh.m_vTriangles.data(), 4 * sizeof(Triangle)), 0);
}

constexpr const char* kInFacet = "the file ends inside a facet, which is not shown";
constexpr const char* kNoEnd = "the file ends without endsolid: triangles may be missing";
struct Cut {
    const char* name;
    std::string text;
    std::size_t triangles;
    std::vector<std::string> leftOut;
};
void PrintTo(const Cut& row, std::ostream* out) { *out << row.name; }
const std::string kStart = "solid a\n" + kFirst;
const Cut kCuts[] = {
    {"NotCut", kStart + "endsolid", 1, {}},
    {"AfterTheFacet", kStart, 1, {kNoEnd}},
    {"InTheNextWord", kStart + "fac", 1, {kNoEnd}},
    {"InTheEndOfTheSolid", kStart + "endsol", 1, {kNoEnd}},
    {"AfterAnotherSolid", kStart + "endsolid\nsolid b\n" + kSecond, 2, {kNoEnd}},
    {"BeforeTheEndOfTheFacet", kStart + kSecond.substr(0, kSecond.find("endfacet")), 2, {kNoEnd}},
    {"InTheNormal", kStart + "facet normal 0 0", 1, {kInFacet}},
    {"InTheEndOfTheLoop", kStart + kSecond.substr(0, kSecond.find("oop\nendf")), 1, {kInFacet}},
    {"AfterTheLastNumber", kStart + "facet\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0", 1, {kInFacet}},
    {"InAVertex", kStart + "facet\nvertex 0 0 0\nvertex 1", 1, {kInFacet}},
    {"InANumber", kStart + "facet\nvertex 0 0 0\nvertex 1 0 1e-", 1, {kInFacet}},
};
class TextStlCutOff : public testing::TestWithParam<Cut> {};
TEST_P(TextStlCutOff, HasItsWholeFacetsAndSaysSo) {
    const FoundMesh found = ReadTextStl(GetParam().text);
    EXPECT_EQ(found.mesh.m_vTriangles.size(), GetParam().triangles);
    EXPECT_EQ(found.leftOut, GetParam().leftOut);
    EXPECT_EQ(found.mesh.m_vVertices.size(), GetParam().triangles + 2) << "none of the facet that is left out";
}
INSTANTIATE_TEST_SUITE_P(Reader, TextStlCutOff, testing::ValuesIn(kCuts),
                         [](const auto& row) { return row.param.name; });

struct Bad {
    const char* name;
    std::string text;
    const char* reason;
};
void PrintTo(const Bad& row, std::ostream* out) { *out << row.name; }
const Bad kBad[] = {
    {"NoFacets", "solid a\nendsolid a\n", "holds no triangle"},
    {"TwoCorners", "solid a\n" + Facet("vertex 0 0 0\nvertex 1 0 0\n"), "line 6: a facet has fewer than three corners"},
    {"EndsInItsFirstFacet", "solid a\nfacet\nvertex 0 0", "Unexpected end of data."},
    {"EndsBeforeTheEndOfItsFirstFacet", "solid a\nfacet\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0",
     "Unexpected end of data."},
    {"AWord", "solid a\nfacet\nvertex 0 0 zero\n", "line 3: there is \"zero\" in place of a number"},
    {"AnUnfinishedNumber", "solid a\nfacet\nvertex 0 0 1e\n", "line 3: there is \"1e\" in place of a number"},
};
class TextStlIsRefused : public testing::TestWithParam<Bad> {};
TEST_P(TextStlIsRefused, AndSaysWhy) {
    try {
        (void)ReadTextStl(GetParam().text);
        FAIL() << "it was accepted";
    } catch (const UnreadableFile& error) {
        EXPECT_STREQ(error.what(), GetParam().reason);
    }
}
INSTANTIATE_TEST_SUITE_P(Reader, TextStlIsRefused, testing::ValuesIn(kBad),
                         [](const auto& row) { return row.param.name; });

}  // namespace
