// The vertices of ply files as points, in text and binary.
#include "io/PlyPoints.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "io/PointSample.h"
#include "io/TextBlocks.h"

using testing::ElementsAre;
using testing::FloatEq;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

KV_ScenePane::PointCloud Read(const std::string& bytes) { return ReadBytesAsPoints(ReadPlyPoints, bytes); }
std::string Refusal(const std::string& bytes) { return PointRefusal(ReadPlyPoints, bytes); }

std::string Text(const std::string& body) { return "ply\nformat ascii 1.0\n" + body; }
std::string Binary(const std::string& body) { return "ply\nformat binary_little_endian 1.0\n" + body; }
const std::string kXyz = "property float x\nproperty float y\nproperty float z\n";
const std::string kRgb = "property uchar red\nproperty uchar green\nproperty uchar blue\n";
const std::string kEnd = "end_header\n";

std::string Vertices(int count) { return "element vertex " + std::to_string(count) + "\n" + kXyz; }

TEST(PlyPoints, ReadsText) {
    const auto cloud = Read(Text(Vertices(2) + kEnd) + "1 2 3\n-4.5\n.5 6e0");
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, -4.5f, 0.5f, 6));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

TEST(PlyPoints, ReadsBinary) {
    const auto cloud = Read(Binary(Vertices(2) + kRgb + kEnd) + Raw(1.0f, 2.0f, 3.0f) + "\xFF" + std::string(1, '\0') +
                            "\x33" + Raw(4.0f, 5.0f, 6.0f) + std::string(3, '\xFF'));
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(cloud.colors, ElementsAre(1, 0, FloatEq(0.2f), 1, 1, 1));
}

TEST(PlyPoints, ReadsColorsUnderTheirUsualNames) {
    for (const char* prefix : {"red %green %blue", "diffuse_red %diffuse_green %diffuse_blue", "R %G %B"}) {
        std::string colors = std::string("property uchar ") + prefix + "\n";
        for (std::size_t at = colors.find('%'); at != std::string::npos; at = colors.find('%'))
            colors.replace(at - 1, 2, "\nproperty uchar ");
        EXPECT_THAT(Read(Text(Vertices(1) + colors + kEnd) + "1 2 3 255 0 51").colors,
                    ElementsAre(1, 0, FloatEq(0.2f)));
    }
}

// "r" may as well be a radius.
TEST(PlyPoints, IgnoresShortColorNamesThatAreNotAllThree) {
    const auto radius = Read(Text(Vertices(1) + "property float r\n" + kEnd) + "1 2 3 4");
    EXPECT_THAT(radius.xyz, ElementsAre(1, 2, 3));
    EXPECT_THAT(radius.colors, IsEmpty());
    const auto two =
        Read(Binary(Vertices(1) + "property float g\nproperty uchar b\n" + kEnd) + Raw(1.0f, 2.0f, 3.0f) + "12345");
    EXPECT_THAT(two.colors, IsEmpty());
    EXPECT_THAT(Read(Text(Vertices(1) + "property float r\n" + kRgb + kEnd) + "1 2 3 9 255 0 51").colors,
                ElementsAre(1, 0, FloatEq(0.2f)));
}

struct ColorType {
    const char* type;
    const char* text;
};
class PlyPointsColor : public testing::TestWithParam<ColorType> {};
TEST_P(PlyPointsColor, HasTheScaleOfItsType) {
    const std::string type = std::string("property ") + GetParam().type + " ";
    const std::string colors = type + "red\n" + type + "green\n" + type + "blue\n";
    EXPECT_THAT(Read(Text(Vertices(1) + colors + kEnd) + "1 2 3 " + GetParam().text).colors,
                ElementsAre(1, 0, FloatEq(0.2f)));
}
INSTANTIATE_TEST_SUITE_P(PlyPoints, PlyPointsColor,
                         testing::Values(ColorType{"uchar", "255 0 51"}, ColorType{"uint8", "255 0 51"},
                                         ColorType{"ushort", "65535 0 13107"}, ColorType{"float", "1 0 0.2"},
                                         ColorType{"float32", "255 0 51"}, ColorType{"double", "1 0 .2"},
                                         ColorType{"int", "255 0 51"}),
                         [](const auto& row) { return row.param.type; });

// Dark colours of a whole-number type are not fractions.
TEST(PlyPoints, DoesNotGuessTheScaleOfBytes) {
    EXPECT_THAT(Read(Text(Vertices(1) + kRgb + kEnd) + "1 2 3 1 0 1").colors,
                ElementsAre(FloatEq(1 / 255.0f), 0, FloatEq(1 / 255.0f)));
    EXPECT_THAT(Read(Binary(Vertices(1) + kRgb + kEnd) + Raw(1.0f, 2.0f, 3.0f) + std::string("\1\0\1", 3)).colors,
                ElementsAre(FloatEq(1 / 255.0f), 0, FloatEq(1 / 255.0f)));
}

template <class Number>
void ExpectCoordinates(const std::string& type) {
    const std::string property = "property " + type + " ";
    const std::string header = "element vertex 1\nproperty uchar flag\n" + property + "z\n" + property + "y\n" +
                               "property short mark\n" + property + "x\n" + kEnd;
    const std::string data = Raw('f') + Raw(Number{3}, Number{2}) + Raw(std::int16_t{9}) + Raw(Number{1});
    EXPECT_THAT(Read(Binary(header) + data).xyz, ElementsAre(1, 2, 3)) << type;
    EXPECT_THAT(Read(Text(header) + "7 3 2 9 1").xyz, ElementsAre(1, 2, 3)) << type;
}

TEST(PlyPoints, ReadsCoordinatesOfAllTypesInAnyOrder) {
    ExpectCoordinates<std::int8_t>("char");
    ExpectCoordinates<std::uint8_t>("uchar");
    ExpectCoordinates<std::int16_t>("short");
    ExpectCoordinates<std::uint16_t>("ushort");
    ExpectCoordinates<std::int32_t>("int");
    ExpectCoordinates<std::uint32_t>("uint");
    ExpectCoordinates<float>("float");
    ExpectCoordinates<double>("double");
    ExpectCoordinates<std::int8_t>("int8");
    ExpectCoordinates<std::uint8_t>("uint8");
    ExpectCoordinates<std::int16_t>("int16");
    ExpectCoordinates<std::uint16_t>("uint16");
    ExpectCoordinates<std::int32_t>("int32");
    ExpectCoordinates<std::uint32_t>("uint32");
    ExpectCoordinates<float>("float32");
    ExpectCoordinates<double>("float64");
}

TEST(PlyPoints, IgnoresTheFaces) {
    const std::string faces = "element face 1\nproperty list uchar int vertex_indices\n" + kEnd;
    EXPECT_THAT(Read(Text(Vertices(1) + faces) + "1 2 3\n3 0 0 0\n").xyz, ElementsAre(1, 2, 3));
    EXPECT_THAT(Read(Binary(Vertices(1) + faces) + Raw(1.0f, 2.0f, 3.0f) + "damaged").xyz, ElementsAre(1, 2, 3));
}

// A list with a negative count is empty.
TEST(PlyPoints, SkipsElementsBeforeTheVertices) {
    const std::string header =
        "element empty 2000000000\nelement note 2\nproperty short a\nproperty uchar b\n"
        "element face 2\nproperty uchar mark\nproperty list uchar int vertex_indices\n"
        "property list char double w\n" +
        Vertices(1) + kEnd;
    EXPECT_THAT(Read(Text(header) + "1 2 3 4\n 7 3 0 0 0 -1\n8 0 2 .5 .5\n 1 2 3\n").xyz, ElementsAre(1, 2, 3));
    const std::string faces =
        Raw('\7', '\3', 0, 0, 0) + Raw('\xFF') + Raw('\7') + Raw('\0') + Raw('\2') + Raw(0.5, 0.5);
    EXPECT_THAT(Read(Binary(header) + "123456" + faces + Raw(1.0f, 2.0f, 3.0f)).xyz, ElementsAre(1, 2, 3));
}

// Lists that are longer than what is read at once, and counts at the ends of what is read.
TEST(PlyPoints, SkipsLongLists) {
    std::string data;
    const int lists = 300;
    for (int i = 0; i < lists; ++i) data += Raw(1000 + i) + std::string(static_cast<std::size_t>(1000 + i), 'x');
    const std::string header =
        "element strip " + std::to_string(lists) + "\nproperty list int uchar s\n" + Vertices(1) + kEnd;
    EXPECT_THAT(Read(Binary(header) + data + Raw(1.0f, 2.0f, 3.0f)).xyz, ElementsAre(1, 2, 3));
}

class PlyPointsProgress : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(PlyPoints, PlyPointsProgress, testing::Values(100, 100'000));
// With few and with many vertices after the lists.
TEST_P(PlyPointsProgress, IsReportedWhileListsAreSkippedAndCancelsThere) {
    const int count = GetParam();
    std::string data;
    for (int i = 0; i < 4000; ++i) data += Raw(std::int16_t{1000}) + std::string(1000, 'x');
    const std::string bytes = Binary("element strip 4000\nproperty list short uchar s\n" + Vertices(count) + kEnd) +
                              data + std::string(12 * static_cast<std::size_t>(count), '\0');
    std::vector<double> parts;
    (void)ReadBytesAsPoints(ReadPlyPoints, bytes, [&](double part) {
        parts.push_back(part);
        return true;
    });
    EXPECT_GE(parts.size(), 60u);
    EXPECT_TRUE(std::ranges::is_sorted(parts, std::less_equal<>{})) << "not strictly rising";
    for (std::size_t i = 1; i < parts.size(); ++i) EXPECT_LT(parts[i] - parts[i - 1], 0.05);
    EXPECT_LT(parts.front(), 0.05);
    EXPECT_GT(parts.back(), 0.95);
    int calls = 0;
    EXPECT_THAT([&] { (void)ReadBytesAsPoints(ReadPlyPoints, bytes, [&](double) { return ++calls < 3; }); },
                testing::ThrowsMessage<FileReadError>("cancelled"));
    EXPECT_EQ(calls, 3);
}

TEST(PlyPoints, ReadsObjInfoLinesAsComments) {
    const std::string body = "obj_info num_cols 512\ncomment made by hand\nobj_info\n" + Vertices(1) + kEnd;
    EXPECT_THAT(Read(Text(body) + "1 2 3").xyz, ElementsAre(1, 2, 3));
    EXPECT_THAT(Read(Binary(body) + Raw(1.0f, 2.0f, 3.0f)).xyz, ElementsAre(1, 2, 3));
}

TEST(PlyPoints, ReadsHeadersWithCarriageReturns) {
    std::string header = Binary(Vertices(1) + kEnd);
    for (std::size_t at = header.find('\n'); at != std::string::npos; at = header.find('\n', at + 2))
        header.insert(at, "\r");
    EXPECT_THAT(Read(header + Raw(1.0f, 2.0f, 3.0f)).xyz, ElementsAre(1, 2, 3));
}

struct Refused {
    const char* name;
    std::string bytes;
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

class PlyPointsRefuses : public testing::TestWithParam<Refused> {};
TEST_P(PlyPointsRefuses, WithTheReason) { EXPECT_EQ(Refusal(GetParam().bytes), GetParam().reason); }

const Refused kRefused[] = {
    {"AnotherFile", "xyz", "Magic number in PLY header not found."},
    {"BigEndian", "ply\nformat binary_big_endian 1.0\n" + Vertices(1) + kEnd,
     "Big-endian binary format not yet supported."},
    {"NoVertex", Text("element point 1\n" + kXyz + kEnd) + "1 2 3", "No such element: vertex"},
    {"NoY", Text("element vertex 1\nproperty float x\nproperty float z\n" + kEnd) + "1 3", "No such property: y"},
    {"ListAsX", Text("element vertex 1\nproperty list uchar int x\n" + kXyz + kEnd) + "1 1 1 2 3",
     "vertices with lists are not read"},
    {"RedAlone", Text(Vertices(1) + "property uchar red\n" + kEnd) + "1 2 3 4",
     "the vertices have some of the colours red, green and blue only"},
    {"ColorsOfDifferentTypes",
     Text(Vertices(1) + "property uchar red\nproperty uchar green\nproperty float blue\n" + kEnd) + "1 2 3 4 5 6",
     "red, green and blue are numbers of different types"},
    {"UnknownType", Text("element vertex 1\nproperty real x\n" + kEnd),
     "Error in grammar at token 4: invalid property type \"real\""},
    {"NoVertices", Text(Vertices(0) + kEnd), "the file holds no points"},
    {"NoVerticesInBinary", Binary(Vertices(0) + kEnd), "the file holds no points"},
    {"TextHasNoRoom", Text(Vertices(2000000000) + kEnd) + "1 2 3\n",
     "the file announces 2000000000 points and has space for 1"},
    {"TextIsCutShort", Text(Vertices(2) + kEnd) + "1.5 2.5 3.5\n4.5 5.5", "the file announces 2 points and has 1"},
    {"BinaryIsCutShort", Binary(Vertices(2) + kEnd) + Raw(1.0f, 2.0f, 3.0f) + "12345678901",
     "the file announces 2 points and has space for 1"},
    {"NoEndOfHeader", Binary(Vertices(2)), "the file announces 2 points and has space for 0"},
    {"HeaderIsTooLong", Text("comment " + std::string(1 << 20, 'c') + "\n" + Vertices(1) + kEnd) + "1 2 3",
     "the header is longer than 1048576 bytes"},
    {"Word", Text(Vertices(2) + kEnd) + "1 2 3\n4 five 6", "point 2: \"five\" is not a number"},
    {"UnitAfterANumber", Text(Vertices(1) + kEnd) + "1 2 3mm", "point 1: \"3mm\" is not a number"},
    {"NotANumber", Text(Vertices(1) + kEnd) + "1 2 nan", "point 1: \"nan\" is not a finite number"},
    {"Infinite", Text(Vertices(1) + kEnd) + "1 2 +inf", "point 1: \"+inf\" is not a finite number"},
    {"NotANumberInBinary", Binary(Vertices(1) + kEnd) + Raw(1.0f, 2.0f, std::numeric_limits<float>::quiet_NaN()),
     "point 1: a coordinate is not a finite number"},
    {"ColorAbove255", Text(Vertices(1) + kRgb + kEnd) + "1 2 3 0 256 0", "point 1: a colour is not from 0 to 255"},
    {"NegativeColor",
     Text(Vertices(1) + "property float red\nproperty float green\nproperty float blue\n" + kEnd) + "1 2 3 -1 0 0",
     "point 1: a colour is not from 0 to 255"},
    {"ListCountIsNoInteger", Text("element face 1\nproperty list uchar int i\n" + Vertices(1) + kEnd) + "x 1 2 3",
     "Integer expected, but found this: \"x\""},
    {"FloatAsListCount", Binary("element face 1\nproperty list float int i\n" + Vertices(1) + kEnd) + "12341234",
     "not an integer: float"},
    {"ElementBeforeIsCutShort", Binary("element note 9\nproperty double d\n" + Vertices(1) + kEnd) + "12",
     "Unexpected end of data."},
    {"ListBeforeIsCutShort", Binary("element face 1\nproperty list uint double d\n" + Vertices(1) + kEnd) + "1234",
     "Unexpected end of data."},
    {"WordsBeforeAreCutShort", Text("element note 9\nproperty double d\n" + Vertices(1) + kEnd) + "1 2 3 4",
     "Unexpected end of data."},
};
INSTANTIATE_TEST_SUITE_P(PlyPoints, PlyPointsRefuses, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST(PlyPoints, RefusesAWordThatIsLongerThanABlock) {
    EXPECT_EQ(Refusal(Text(Vertices(1) + kEnd) + "1 2 " + std::string(TextBlocks::kBlock + 1, '3')),
              "a word is longer than 262144 characters");
}

TEST(PlyPoints, ShowsOneShortLineAboutALongWordOfTheHeader) {
    const std::string reason = Refusal(Text("element vertex 1\nproperty \x01" + std::string(100000, 't') + " x\n"));
    EXPECT_THAT(reason, HasSubstr("invalid property type \"?ttt"));
    EXPECT_LT(reason.size(), 250u);
}

TEST(PlyPoints, EndsWithAReasonWhenTheFileBecomesShorter) {
    for (const std::string& header : {Text(Vertices(2) + kEnd), Binary(Vertices(2) + kEnd)}) {
        const std::string bytes = header + "1 2 3 4 5 6 ";
        ShortenedInput input(bytes, bytes.size() + 100);
        ReadProgress progress({}, input.Size());
        EXPECT_THAT([&] { (void)ReadPlyPoints(input, progress); },
                    testing::ThrowsMessage<FileReadError>("the file became shorter while it was read"));
    }
}

// Records and words across the ends of blocks.
TEST(PlyPoints, ReadsManyPoints) {
    const int count = 100'000;
    std::string text, binary;
    std::vector<float> expected;
    for (int i = 0; i < 3 * count; ++i) {
        const auto value = static_cast<float>(i) / 8;
        expected.push_back(value);
        text += std::to_string(i / 8) + "." + std::to_string(i % 8 * 125 + 1000).substr(1) + (i % 5 == 4 ? "\n" : " ");
        binary += Raw(value);
    }
    EXPECT_EQ(Read(Text(Vertices(count) + kEnd) + text).xyz, expected);
    EXPECT_EQ(Read(Binary(Vertices(count) + kEnd) + binary).xyz, expected);
}

}  // namespace
