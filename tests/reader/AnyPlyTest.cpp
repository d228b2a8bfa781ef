#include "AnyPly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>

namespace {

std::vector<std::uint8_t> NoFile(const std::string&) { return {}; }

FoundMesh Read(std::string_view file) { return ReadAnyPly(file, NoFile); }

std::string ReasonFor(std::string_view file) {
    try {
        (void)Read(file);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

/// The bytes of a number, in the order of the file.
template <class Number>
std::string Bytes(Number value, bool isBigEndian) {
    std::array<char, sizeof value> bytes;
    std::memcpy(bytes.data(), &value, sizeof value);
    if (isBigEndian != (std::endian::native == std::endian::big)) std::ranges::reverse(bytes);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::array<int, 3>> TrianglesOf(const FoundMesh& found) {
    std::vector<std::array<int, 3>> triangles;
    for (const Triangle& triangle : found.mesh.m_vTriangles)
        triangles.push_back({triangle.v[0], triangle.v[1], triangle.v[2]});
    return triangles;
}

const std::string kXyz = "property float x\nproperty float y\nproperty float z\n";
const std::string kFaces = "property list uchar int vertex_indices\n";
const std::string kTriangle = "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n";

std::string Text(const std::string& vertexLines, const std::string& data) {
    return "ply\nformat ascii 1.0\nelement vertex 3\n" + vertexLines + "element face 1\n" + kFaces + "end_header\n" +
           data;
}

struct Layout {
    const char* name;
    std::string file;
};
void PrintTo(const Layout& row, std::ostream* out) { *out << row.name; }

const Layout kTriangles[] = {
    {"Plain", Text(kXyz, kTriangle)},
    {"ObjectInformation", "ply\nformat ascii 1.0\nobj_info from a scanner\nelement vertex 3\n" + kXyz +
                              "element face 1\n" + kFaces + "end_header\n" + kTriangle},
    {"MarkOfTheEncoding", "\xEF\xBB\xBF" + Text(kXyz, kTriangle)},
    {"EmptyLinesBefore", "\n\r\n" + Text(kXyz, kTriangle)},
    {"UpperCase",
     "PLY\nFORMAT ASCII 1.0\nELEMENT VERTEX 3\nPROPERTY FLOAT X\nPROPERTY FLOAT Y\nPROPERTY FLOAT Z\n"
     "ELEMENT FACE 1\nPROPERTY LIST UCHAR INT VERTEX_INDICES\nEND_HEADER\n" +
         kTriangle},
    {"CarriageReturns",
     "ply\rformat ascii 1.0\relement vertex 3\rproperty float x\rproperty float y\rproperty float z\r"
     "element face 1\rproperty list uchar int vertex_index\rend_header\r0 0 0\r1 0 0\r0 1 0\r3 0 1 2\r"},
    {"BlanksAndTabs", "ply  \n format   ascii\t1.0\n\telement  vertex 3\n" + kXyz + "element face 1\n" + kFaces +
                          " end_header \n" + kTriangle},
    {"AnotherVersion",
     "ply\nformat ascii 1.1\nelement vertex 3\n" + kXyz + "element face 1\n" + kFaces + "end_header\n" + kTriangle},
    {"UnknownWords", "ply\nformat ascii 1.0\nauthor somebody\nelement vertex 3\n" + kXyz + "element face 1\n" + kFaces +
                         "end_header\n" + kTriangle},
    {"CommentsInTheData", Text(kXyz, "0 0 0\ncomment one\n1 0 0\n\nobj_info two\n0 1 0\n3 0 1 2\n")},
    {"MoreNumbersInALineThanAnnounced", Text(kXyz, "0 0 0 9\n1 0 0 9 9\n0 1 0 9\n3 0 1 2 7 7\n")},
    {"DoubleCoordinates", Text("property double x\nproperty float64 y\nproperty double z\n", kTriangle)},
    {"WholeCoordinates", Text("property int32 x\nproperty int16 y\nproperty int8 z\n", kTriangle)},
    {"NumbersWithSignAndExponent", Text(kXyz, "+0 0e0 -0\n1.0E0 0 0\n0 .1e1 0\n3 0 1 2\n")},
    {"FacesBeforeVertices", "ply\nformat ascii 1.0\nelement face 1\n" + kFaces + "element vertex 3\n" + kXyz +
                                "end_header\n3 0 1 2\n0 0 0\n1 0 0\n0 1 0\n"},
    {"ListsAtTheVertices",
     Text(kXyz + "property list uchar float weights\n", "0 0 0 0\n1 0 0 2 5 5\n0 1 0 1 5\n3 0 1 2\n")},
    {"OtherElements", "ply\nformat ascii 1.0\nelement camera 1\nproperty float focus\nelement vertex 3\n" + kXyz +
                          "element face 1\n" + kFaces + "element edge 1\nproperty int a\nend_header\n9\n" + kTriangle +
                          "1\n"},
    {"AListOfAnotherName", "ply\nformat ascii 1.0\nelement vertex 3\n" + kXyz +
                               "element face 1\nproperty list uint8 uint64 corners\nend_header\n" + kTriangle},
    {"LinesAndPointsAmongTheFaces", "ply\nformat ascii 1.0\nelement vertex 3\n" + kXyz + "element face 4\n" + kFaces +
                                        "end_header\n0 0 0\n1 0 0\n0 1 0\n2 0 1\n1 0\n0\n3 0 1 2\n"},
};
class PlyOfATriangle : public testing::TestWithParam<Layout> {};

TEST_P(PlyOfATriangle, IsReadWhateverItsForm) {
    const FoundMesh found = Read(GetParam().file);
    EXPECT_EQ(TrianglesOf(found), (std::vector<std::array<int, 3>>{{0, 1, 2}}));
    ASSERT_EQ(found.mesh.m_vVertices.size(), 3u);
    const float expected[3][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(found.mesh.m_vVertices[i].x, expected[i][0]) << i;
        EXPECT_EQ(found.mesh.m_vVertices[i].y, expected[i][1]) << i;
        EXPECT_EQ(found.mesh.m_vVertices[i].z, expected[i][2]) << i;
    }
}
INSTANTIATE_TEST_SUITE_P(AnyPly, PlyOfATriangle, testing::ValuesIn(kTriangles),
                         [](const auto& row) { return row.param.name; });

TEST(AnyPly, OfBytesInEitherOrderGivesTheSameMesh) {
    for (const bool isBig : {false, true}) {
        for (const std::string lineEnd : {"\n", "\r\n"}) {
            std::string file = "ply\nformat binary_" + std::string(isBig ? "big" : "little") +
                               "_endian 1.0\nelement vertex 3\nproperty double x\nproperty float y\nproperty int16 z\n"
                               "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                               "element face 1\nproperty list uint16 int64 vertex_indices\nend_header\n";
            for (std::size_t at = 0; (at = file.find('\n', at)) != std::string::npos; at += lineEnd.size())
                file.replace(at, 1, lineEnd);
            for (const double x : {0.5, 1e300, -2.0}) {
                file += Bytes(x, isBig) + Bytes(1.25f, isBig) + Bytes(std::int16_t{-300}, isBig);
                file += "\x10\x20\x30";
            }
            file += Bytes(std::uint16_t{3}, isBig);
            for (const std::int64_t index : {2, 1, 0}) file += Bytes(index, isBig);
            const FoundMesh found = Read(file);
            EXPECT_EQ(TrianglesOf(found), (std::vector<std::array<int, 3>>{{2, 1, 0}}));
            ASSERT_EQ(found.mesh.m_vVertices.size(), 3u);
            EXPECT_EQ(found.mesh.m_vVertices[0].x, 0.5f);
            EXPECT_TRUE(std::isinf(found.mesh.m_vVertices[1].x)) << "larger than a float";
            EXPECT_EQ(found.mesh.m_vVertices[2].y, 1.25f);
            EXPECT_EQ(found.mesh.m_vVertices[2].z, -300.0f);
            EXPECT_EQ(found.mesh.m_vVertices[2].color, 0xFF102030u);
        }
    }
}

TEST(AnyPly, OfCarriageReturnsAloneMayHaveDataThatBeginsWithALineFeed) {
    std::string file =
        "ply\rformat binary_little_endian 1.0\relement vertex 1\rproperty uchar x\rproperty uchar y\r"
        "property uchar z\rend_header\r";
    file += "\n\x01\x02";
    const FoundMesh found = Read(file);
    EXPECT_EQ(found.mesh.m_vVertices[0].x, 10.0f);
    EXPECT_EQ(found.mesh.m_vVertices[0].z, 2.0f);
}

TEST(AnyPly, OfPolygonsHasTheirTrianglesInOrder) {
    const FoundMesh found = Read("ply\nformat ascii 1.0\nelement vertex 5\n" + kXyz + "element face 2\n" + kFaces +
                                 "end_header\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n0.5 2 0\n4 0 1 2 3\n3 3 2 4\n");
    EXPECT_EQ(TrianglesOf(found), (std::vector<std::array<int, 3>>{{0, 1, 2}, {0, 2, 3}, {3, 2, 4}}));
}

TEST(AnyPly, OfStripsTurnsEverySecondTriangleAndBeginsAgainAtANegativeIndex) {
    const FoundMesh found = Read("ply\nformat ascii 1.0\nelement vertex 5\n" + kXyz +
                                 "element tristrips 1\nproperty list int int vertex_indices\nend_header\n"
                                 "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 2 0\n8 0 1 2 3 -1 2 3 4\n");
    EXPECT_EQ(TrianglesOf(found), (std::vector<std::array<int, 3>>{{0, 1, 2}, {2, 1, 3}, {2, 3, 4}}));
}

struct Colors {
    const char* name;
    const char* type;
    const char* names[3];
    std::string values;  // red, green, blue of the first vertex and of the two others
    std::uint32_t first;
};
void PrintTo(const Colors& row, std::ostream* out) { *out << row.name; }
const Colors kColors[] = {
    {"Bytes", "uchar", {"red", "green", "blue"}, "255 128 1;0 0 0", 0xFFFF8001},
    {"Words", "ushort", {"red", "green", "blue"}, "65535 32896 257;0 0 0", 0xFFFF8001},
    {"WordsOfBytes", "ushort", {"red", "green", "blue"}, "255 128 1;0 0 0", 0xFFFF8001},
    {"Fractions", "float", {"red", "green", "blue"}, "1 0.5 0;0 0 0", 0xFFFF8000},
    {"FloatsOfBytes", "float", {"red", "green", "blue"}, "200 128 1;0 0 0", 0xFFC88001},
    {"ShortNames", "uchar", {"r", "g", "b"}, "255 128 1;0 0 0", 0xFFFF8001},
    {"NamesOfMaterials", "uchar", {"diffuse_red", "diffuse_green", "diffuse_blue"}, "255 128 1;0 0 0", 0xFFFF8001},
};
class PlyColors : public testing::TestWithParam<Colors> {};
TEST_P(PlyColors, HaveTheRangeOfTheirLargestValue) {
    std::string lines = kXyz;
    for (const char* const name : GetParam().names)
        lines += std::string("property ") + GetParam().type + ' ' + name + '\n';
    const std::size_t end = GetParam().values.find(';');
    const std::string first = GetParam().values.substr(0, end), other = GetParam().values.substr(end + 1);
    const FoundMesh found =
        Read(Text(lines, "0 0 0 " + first + "\n1 0 0 " + other + "\n0 1 0 " + other + "\n3 0 1 2\n"));
    EXPECT_TRUE(found.mesh.m_bHasColors);
    EXPECT_EQ(found.mesh.m_vVertices[0].color, GetParam().first);
    EXPECT_EQ(found.mesh.m_vVertices[1].color, 0xFF000000u);
}
INSTANTIATE_TEST_SUITE_P(AnyPly, PlyColors, testing::ValuesIn(kColors), [](const auto& row) { return row.param.name; });

TEST(AnyPly, NamesAnImageThatIsNotThereAndHasNoneOfSeveral) {
    const std::string uv = "property float s\nproperty float t\n";
    const std::string data = "0 0 0 0 0\n1 0 0 1 0\n0 1 0 0 1\n3 0 1 2\n";
    std::string file = Text(kXyz + uv, data);
    const std::size_t at = file.find("element");
    FoundMesh found = Read(std::string(file).insert(at, "comment TextureFile a b.png\n"));
    EXPECT_EQ(found.leftOut, std::vector<std::string>{"its image is not shown: there is no file a b.png"});
    EXPECT_EQ(found.texCoords.size(), 3u);
    found = Read(std::string(file).insert(at, "comment TextureFile a\ncomment TextureFile b\n"));
    EXPECT_EQ(found.leftOut, std::vector<std::string>{"its images are not shown: it has more than one"});
}

TEST(AnyPly, LoadsTheImageThatItsHeaderNames) {
    std::string file = Text(kXyz, "0 0 0\n1 0 0\n0 1 0\n3 0 1 2 6 0 0 1 0 0 1\n");
    file.insert(file.find("end_header"), "property list uchar float texcoord\n");
    file.insert(file.find("element"), "comment TextureFile a.png\n");
    std::string asked;
    const FoundMesh found = ReadAnyPly(file, [&](const std::string& name) {
        asked = name;
        return std::vector<std::uint8_t>{1, 2};
    });
    EXPECT_EQ(asked, "a.png");
    EXPECT_EQ(found.image, (std::vector<std::uint8_t>{1, 2}));
    ASSERT_EQ(found.texCoords.size(), 3u);
    EXPECT_EQ(found.texCoords[1].u, 1.0f);
    EXPECT_EQ(found.texCoords[2].v, 1.0f);
}

struct Rest {
    const char* name;
    std::string file;
    std::vector<std::string> leftOut;
};
void PrintTo(const Rest& row, std::ostream* out) { *out << row.name; }
const std::string kBytes =
    "ply\nformat binary_big_endian 1.0\nelement vertex 1\nproperty uchar x\nproperty uchar y\n"
    "property uchar z\nend_header\n123";
const Rest kRests[] = {
    {"NothingAfterBytes", kBytes, {}},
    {"BytesAfterBytes", kBytes + "4567", {"4 bytes follow the end of its data"}},
    {"WhiteSpaceAfterText", Text(kXyz, kTriangle + " \r\n\n\t"), {}},
    {"ACommentAfterText", Text(kXyz, kTriangle + "comment the end\n"), {}},
    {"WordsAfterText", Text(kXyz, kTriangle + "\n3 0 1 2\nend\n"), {"12 bytes follow the end of its data"}},
    {"WordsAfterPoints",
     "ply\nformat ascii 1.0\nelement vertex 1\n" + kXyz + "end_header\n0 0 0\n1 0",
     {"3 bytes follow the end of its data"}},
};
class PlyAfterItsEnd : public testing::TestWithParam<Rest> {};
TEST_P(PlyAfterItsEnd, SaysHowMuchFollows) { EXPECT_EQ(Read(GetParam().file).leftOut, GetParam().leftOut); }
INSTANTIATE_TEST_SUITE_P(AnyPly, PlyAfterItsEnd, testing::ValuesIn(kRests),
                         [](const auto& row) { return row.param.name; });

struct Bad {
    const char* name;
    std::string file;
    const char* reason;
};
void PrintTo(const Bad& row, std::ostream* out) { *out << row.name; }
const std::string kBinary = "ply\nformat binary_little_endian 1.0\n";
const Bad kBad[] = {
    {"Nothing", "", "Magic number in PLY header not found."},
    {"OtherText", "poly", "Magic number in PLY header not found."},
    {"NoEndOfTheHeader", "ply\nformat ascii 1.0\nelement vertex 1", "the header of the file has no end"},
    {"NoFormat", "ply\nend_header\n", "Unknown file format."},
    {"UnknownFormat", "ply\nformat ebcdic 1.0\nend_header\n", "Unknown file format."},
    {"NoVertices", "ply\nformat ascii 1.0\nend_header\n", "No such element: vertex"},
    {"NoZ", "ply\nformat ascii 1.0\nelement vertex 0\nproperty float x\nproperty float y\nend_header\n",
     "No such property: z"},
    {"NoCount", "ply\nformat ascii 1.0\nelement vertex\nend_header\n",
     "the header does not say how many \"vertex\" follow"},
    {"NegativeCount", "ply\nformat ascii 1.0\nelement vertex -1\nend_header\n",
     "the header does not say how many \"vertex\" follow"},
    {"PropertyOfNothing", "ply\nformat ascii 1.0\nproperty float x\nend_header\n",
     "the header has an incomplete property"},
    {"ListWithoutAName", "ply\nformat ascii 1.0\nelement face 1\nproperty list uchar int\nend_header\n",
     "the header has an incomplete property"},
    {"UnknownType", "ply\nformat ascii 1.0\nelement vertex 1\nproperty quad x\nend_header\n",
     "values of the type \"quad\" are not known"},
    {"FacesWithoutIndices",
     "ply\nformat ascii 1.0\nelement vertex 1\n" + kXyz + "element face 1\nproperty int a\nend_header\n0 0 0\n1\n",
     "No such property: vertex_indices"},
    {"IndexOutside", Text(kXyz, "0 0 0\n1 0 0\n0 1 0\n3 0 1 3\n"), "triangle 0 refers to vertex 3 of 3"},
    {"IndexBelowZero", Text(kXyz, "0 0 0\n1 0 0\n0 1 0\n3 0 1 -1\n"), "triangle 0 refers to vertex -1 of 3"},
    {"IndexWithAFraction", Text(kXyz, "0 0 0\n1 0 0\n0 1 0\n3 0 1 1.5\n"), "triangle 0 refers to vertex -1 of 3"},
    {"TextCutShort", Text(kXyz, "0 0 0\n1 0 0\n0 1 0\n3 0 1\n"), "Unexpected end of data."},
    {"AWordForANumber", Text(kXyz, "0 0 0\n1 none 0\n0 1 0\n3 0 1 2\n"),
     "line 11: there is \"none\" in place of a number"},
    {"MoreVerticesThanBytes", "ply\nformat ascii 1.0\nelement vertex 4000000000\n" + kXyz + "end_header\n0 0 0\n",
     "Unexpected end of data."},
    {"MoreBinaryVerticesThanBytes",
     kBinary + "element vertex 18446744073709551615\n" + kXyz + "end_header\n0123456789ab", "Unexpected end of data."},
    {"LongListInFewBytes",
     kBinary + "element face 1\nproperty list uint int vertex_indices\nend_header\n\xff\xff\xff\xff",
     "Unexpected end of data."},
    {"CountThatIsNoNumber",
     kBinary + "element face 1\nproperty list float int vertex_indices\nend_header\n" + std::string("\0\0\x20\x40", 4),
     "Unexpected end of data."},
};
class PlyIsRefused : public testing::TestWithParam<Bad> {};
TEST_P(PlyIsRefused, AndSaysWhy) { EXPECT_EQ(ReasonFor(GetParam().file), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(AnyPly, PlyIsRefused, testing::ValuesIn(kBad), [](const auto& row) { return row.param.name; });

TEST(AnyPly, OfCountlessRecordsWithoutPropertiesTakesNoTime) {
    const std::string empty = "element nothing 18446744073709551615\nelement tristrips 18446744073709551615\n";
    EXPECT_EQ(Read(kBinary + empty + "element vertex 0\n" + kXyz + "end_header\n").mesh.m_vVertices.size(), 0u);
}

}  // namespace
