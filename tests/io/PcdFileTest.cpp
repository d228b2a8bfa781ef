// Pcd files: the three forms of data, headers with faults, damaged and hostile data.
#include "io/PcdFile.h"

#include <gmock/gmock.h>
#include <malloc.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "io/LzfInput.h"
#include "io/PointSample.h"

using testing::Each;
using testing::ElementsAre;
using testing::FloatEq;
using testing::IsEmpty;

namespace {

KV_ScenePane::PointCloud Read(const std::string& bytes) { return ReadBytesAsPoints(ReadPcd, bytes); }
std::string Refusal(const std::string& bytes) { return PointRefusal(ReadPcd, bytes); }

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// A header of fields with one value each.
struct Head {
    std::string fields = "x y z", sizes = "4 4 4", types = "F F F";
    int width = 1, height = 1;
    std::string Text(const std::string& data) const {
        return "# .PCD v0.7 - Point Cloud Data file format\nVERSION 0.7\nFIELDS " + fields + "\nSIZE " + sizes +
               "\nTYPE " + types + "\nWIDTH " + std::to_string(width) + "\nHEIGHT " + std::to_string(height) +
               "\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS " + std::to_string(width * height) + "\nDATA " + data + "\n";
    }
};
const Head kColored{.fields = "x y z rgb", .sizes = "4 4 4 4", .types = "F F F U"};

/// LZF in its simplest form: literal runs alone.
std::string Literals(const std::string& bytes) {
    std::string compressed;
    for (std::size_t at = 0; at < bytes.size(); at += 32) {
        const std::string run = bytes.substr(at, 32);
        compressed += static_cast<char>(run.size() - 1);
        compressed += run;
    }
    return compressed;
}

std::string Compressed(const std::string& lzf, std::size_t size) {
    return Raw(static_cast<std::uint32_t>(lzf.size()), static_cast<std::uint32_t>(size)) + lzf;
}
std::string Compressed(const std::string& bytes) { return Compressed(Literals(bytes), bytes.size()); }

TEST(PcdFile, ReadsText) {
    const auto cloud = Read(Head{.width = 2}.Text("ascii") + "1 2 3\n -4.5\t5e-1  .25\r\n");
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, -4.5f, 0.5f, 0.25f));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

TEST(PcdFile, ReadsTextWithoutALineEndAtTheEndAndWithBlankLines) {
    EXPECT_THAT(Read(Head{.width = 2}.Text("ascii") + "\n1 2 3\n\n# c\n4 5 6").xyz, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PcdFile, ReadsBinary) {
    const auto cloud = Read(Head{.width = 2}.Text("binary") + Raw(1.5f, 2.0f, 3.0f, -4.0f, 5.0f, 6.0f));
    EXPECT_THAT(cloud.xyz, ElementsAre(1.5f, 2, 3, -4, 5, 6));
    EXPECT_THAT(cloud.colors, IsEmpty());
}

TEST(PcdFile, IgnoresBytesAfterTheLastBinaryPoint) {
    EXPECT_THAT(Read(Head().Text("binary") + Raw(1.0f, 2.0f, 3.0f) + "padding").xyz, ElementsAre(1, 2, 3));
}

// Compressed data has all x first, then all y, and so on.
TEST(PcdFile, ReadsCompressedData) {
    Head head = kColored;
    head.width = 2;
    const auto cloud = Read(head.Text("binary_compressed") +
                            Compressed(Raw(1.0f, 4.0f, 2.0f, 5.0f, 3.0f, 6.0f, 0xFF0033u, 0x00FF00u)));
    EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(cloud.colors, ElementsAre(1, 0, FloatEq(0.2f), 0, 1, 0));
}

struct Packed {
    const char* name;
    const char* field;
    const char* type;
    const char* text;
};
void PrintTo(const Packed& row, std::ostream* out) { *out << row.name; }

class PcdColor : public testing::TestWithParam<Packed> {};
TEST_P(PcdColor, IsReadFromText) {
    Head head = kColored;
    head.fields = std::string("x y z ") + GetParam().field;
    head.types = std::string("F F F ") + GetParam().type;
    EXPECT_THAT(Read(head.Text("ascii") + "1 2 3 " + GetParam().text + "\n").colors, ElementsAre(1, 0, FloatEq(0.2f)));
}
const Packed kPacked[] = {
    {"Unsigned", "rgb", "U", "16711731"},          {"Signed", "rgb", "I", "16711731"},
    {"WithAlpha", "rgba", "U", "4294901811"},      {"SignedWithAlpha", "rgba", "I", "-65485"},
    {"BitsOfAFloat", "rgb", "F", "2.3418123e-38"}, {"WholeNumberInAFloatField", "rgb", "F", "16711731"},
};
INSTANTIATE_TEST_SUITE_P(PcdFile, PcdColor, testing::ValuesIn(kPacked), [](const auto& row) { return row.param.name; });

TEST(PcdFile, ReadsAColorFromTheBitsOfABinaryFloat) {
    Head head = kColored;
    head.types = "F F F F";
    EXPECT_THAT(Read(head.Text("binary") + Raw(1.0f, 2.0f, 3.0f, 0xFFFF0033u)).colors,
                ElementsAre(1, 0, FloatEq(0.2f)));
}

// The same point with fields between and around the three, some of several values, in all three forms.
TEST(PcdFile, SkipsOtherFields) {
    const std::string fields =
        "FIELDS _ z label y hist rgb x\nSIZE 1 8 2 4 4 4 4\nTYPE U F I F F U F\n"
        "COUNT 3 1 1 1 2 1 1\nWIDTH 1\nHEIGHT 1\nPOINTS 1\n";
    const std::string record =
        Raw('a', 'b', 'c') + Raw(3.0) + Raw(std::int16_t{-1}) + Raw(2.0f, 9.0f, 9.0f) + Raw(0xFF0000u) + Raw(1.0f);
    for (const std::string& file :
         {fields + "DATA ascii\n97 98 99 3 -1 2 nan 9 16711680 1\n", fields + "DATA binary\n" + record,
          fields + "DATA binary_compressed\n" + Compressed(record)}) {
        const auto cloud = Read(file);
        EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3));
        EXPECT_THAT(cloud.colors, ElementsAre(1, 0, 0));
    }
}

template <class Number>
void ExpectCoordinates(const char* type) {
    const std::string width = std::to_string(sizeof(Number));
    const Head head{.sizes = width + " " + width + " " + width, .types = std::string(type) + " " + type + " " + type};
    const std::string point = Raw(Number{1}, Number{2}, std::numeric_limits<Number>::max());
    const auto largest = static_cast<float>(std::numeric_limits<Number>::max());
    EXPECT_THAT(Read(head.Text("binary") + point).xyz, ElementsAre(1, 2, largest)) << type << width;
    EXPECT_THAT(Read(head.Text("binary_compressed") + Compressed(point)).xyz, ElementsAre(1, 2, largest));
}

TEST(PcdFile, ReadsCoordinatesOfAllTypes) {
    ExpectCoordinates<std::int8_t>("I");
    ExpectCoordinates<std::int16_t>("I");
    ExpectCoordinates<std::int32_t>("I");
    ExpectCoordinates<std::int64_t>("I");
    ExpectCoordinates<std::uint8_t>("U");
    ExpectCoordinates<std::uint16_t>("U");
    ExpectCoordinates<std::uint32_t>("U");
    ExpectCoordinates<std::uint64_t>("U");
    ExpectCoordinates<float>("F");
    const Head doubles{.sizes = "8 8 8", .types = "F F F"};
    EXPECT_THAT(Read(doubles.Text("binary") + Raw(0.1, 2.0, 3.0)).xyz, ElementsAre(0.1f, 2, 3));
    EXPECT_EQ(Refusal(doubles.Text("binary") + Raw(0.1, 1e39, 3.0)), "point 1: a coordinate is not a finite number");
}

// An image-like cloud marks the pixels that were not measured.
TEST(PcdFile, OmitsTheHolesOfACloudWithRows) {
    Head head = kColored;
    head.height = 3;
    const std::string text = "1 2 3 16711680\nnan 0 nan 0\n4 5 6 255\n";
    const std::string binary = Raw(1.0f, 2.0f, 3.0f, 0xFF0000u, kNaN, kNaN, kNaN, 0u, 4.0f, 5.0f, 6.0f, 0x0000FFu);
    const std::string fields = Raw(1.0f, kNaN, 4.0f, 2.0f, -kNaN, 5.0f, 3.0f, kNaN, 6.0f, 0xFF0000u, 0u, 0x0000FFu);
    for (const std::string& file : {head.Text("ascii") + text, head.Text("binary") + binary,
                                    head.Text("binary_compressed") + Compressed(fields)}) {
        const auto cloud = Read(file);
        EXPECT_THAT(cloud.xyz, ElementsAre(1, 2, 3, 4, 5, 6));
        EXPECT_THAT(cloud.colors, ElementsAre(1, 0, 0, 0, 0, 1));
    }
}

TEST(PcdFile, RefusesACloudOfHolesAlone) {
    const Head head{.height = 2};
    EXPECT_EQ(Refusal(head.Text("ascii") + "nan nan nan\nNaN -nan nan\n"), "the file holds no points");
    EXPECT_EQ(Refusal(head.Text("binary_compressed") + Compressed(Raw(kNaN, kNaN, kNaN, kNaN, kNaN, kNaN))),
              "the file holds no points");
}

TEST(PcdFile, RefusesNaNInACloudWithoutRows) {
    const Head head{.width = 2};
    const char* const reason = "point 2: a coordinate is not a finite number";
    EXPECT_EQ(Refusal(head.Text("ascii") + "1 2 3\nnan nan nan\n"), reason);
    EXPECT_EQ(Refusal(head.Text("binary") + Raw(1.0f, 2.0f, 3.0f, kNaN, kNaN, kNaN)), reason);
    EXPECT_EQ(Refusal(head.Text("binary_compressed") + Compressed(Raw(1.0f, kNaN, 2.0f, kNaN, 3.0f, kNaN))), reason);
}

TEST(PcdFile, RefusesInfinitePointsAlsoInACloudWithRows) {
    const Head head{.height = 2};
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Refusal(head.Text("binary") + Raw(inf, inf, inf, 1.0f, 2.0f, 3.0f)),
              "point 1: a coordinate is not a finite number");
    EXPECT_EQ(Refusal(head.Text("ascii") + "1 2 3\n4 inf 6\n"), "line 12: \"inf\" is not a finite number");
}

struct Refused {
    const char* name;
    std::string bytes;
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

class PcdRefuses : public testing::TestWithParam<Refused> {};
TEST_P(PcdRefuses, WithTheReason) { EXPECT_EQ(Refusal(GetParam().bytes), GetParam().reason); }

/// A header whose lines after FIELDS, SIZE and TYPE are given.
std::string After(const std::string& lines) { return "FIELDS x y z\nSIZE 4 4 4\nTYPE F F F\n" + lines; }
const std::string kPoint = Raw(1.0f, 2.0f, 3.0f);

const Refused kRefused[] = {
    // headers
    {"Empty", "", "the header has no line DATA"},
    {"NoDataLine", After("WIDTH 1\nHEIGHT 1\nPOINTS 1\n"), "the header has no line DATA"},
    {"HeaderWithoutAnEnd", std::string(70000, '#'), "the header has no line DATA in its first 65536 bytes"},
    {"AnotherFile", "ply\nformat ascii 1.0\n", "line 1: \"ply\" is not a keyword of a pcd header"},
    {"NoFields", "WIDTH 1\nDATA ascii\n1 2 3\n", "the header has no line FIELDS"},
    {"FieldsWithoutNames", "FIELDS\n", "line 1: there are no fields"},
    {"FieldsTwice", "FIELDS x y z\nFIELDS x y z\n", "line 2: the fields are listed twice"},
    {"NoSize", "FIELDS x y z\nTYPE F F F\nWIDTH 1\nDATA ascii\n1 2 3\n", "the header has no line SIZE"},
    {"NoType", "FIELDS x y z\nSIZE 4 4 4\nWIDTH 1\nDATA ascii\n1 2 3\n", "the header has no line TYPE"},
    {"SizeBeforeFields", "SIZE 4 4 4\n", "line 1: the line FIELDS must come first"},
    {"FewerSizes", "FIELDS x y z\nSIZE 4 4\n", "line 2: expected one entry for each of the 3 fields, found 2"},
    {"MoreTypes", "FIELDS x y z\nTYPE F F F F\n", "line 2: expected one entry for each of the 3 fields, found 4"},
    {"Size3", "FIELDS x y z\nSIZE 4 3 4\n", "line 2: size \"3\" is not 1, 2, 4 or 8"},
    {"SizeIsNoNumber", "FIELDS x y z\nSIZE 4 x 4\n", "line 2: \"x\" is not a whole number"},
    {"NegativeSize", "FIELDS x y z\nSIZE 4 -4 4\n", "line 2: \"-4\" is not a whole number"},
    {"UnknownType", "FIELDS x y z\nTYPE F D F\n", "line 2: type \"D\" is not I, U or F"},
    {"Count0", "FIELDS x y z\nCOUNT 1 0 1\n", "line 2: count \"0\" is not possible"},
    {"HugeCount", "FIELDS x y z\nCOUNT 1 1 18446744073709551615\n",
     "line 2: count \"18446744073709551615\" is not possible"},
    {"NoZ", "FIELDS x y w\nSIZE 4 4 4\nTYPE F F F\nWIDTH 1\nDATA ascii\n1 2 3\n", "the fields have no \"z\""},
    {"TwoX", "FIELDS x y z x\nSIZE 4 4 4 4\nTYPE F F F F\nWIDTH 1\nDATA ascii\n1 2 3 4\n",
     "the fields name \"x\" twice"},
    {"XWithSeveralValues", After("COUNT 2 1 1\nWIDTH 1\nDATA ascii\n1 1 2 3\n"), "field \"x\" has more than one value"},
    {"FloatOfTwoBytes", "FIELDS x y z\nSIZE 4 2 4\nTYPE F F F\nWIDTH 1\nDATA binary\n",
     "field \"y\" is a floating-point number of 2 bytes"},
    {"ColorOfOneByte", "FIELDS x y z rgb\nSIZE 4 4 4 1\nTYPE F F F U\nWIDTH 1\nDATA ascii\n1 2 3 4\n",
     "field \"rgb\" is not one value of 4 bytes"},
    {"NoPointCount", After("DATA ascii\n1 2 3\n"), "the header has no number of points"},
    {"PointsContradictTheSize", After("WIDTH 2\nHEIGHT 2\nPOINTS 3\nDATA ascii\n1 2 3\n"),
     "POINTS is 3, but WIDTH times HEIGHT is 4"},
    {"SizeOverflows", After("WIDTH 4294967296\nHEIGHT 4294967296\nDATA ascii\n1 2 3\n"),
     "WIDTH times HEIGHT is too large"},
    {"WidthIsNoNumber", After("WIDTH many\n"), "line 4: \"many\" is not a whole number"},
    {"NegativePoints", After("POINTS -1\n"), "line 4: \"-1\" is not a whole number"},
    {"PointsTooLargeForANumber", After("POINTS 99999999999999999999\n"),
     "line 4: \"99999999999999999999\" is not a whole number"},
    {"TwoWidths", After("WIDTH 1 2\n"), "line 4: expected one number, found 2"},
    {"UnknownData", After("WIDTH 1\nDATA gzip\n"), "line 5: DATA is not ascii, binary or binary_compressed"},
    // text
    {"NoPoints", Head{.width = 0}.Text("ascii"), "the file holds no points"},
    {"TextHasFewerPoints", Head{.width = 3}.Text("ascii") + "1.25 2.5 3.5\n4.5 5.5 6.5\n",
     "the file announces 3 points and has 2"},
    {"TextHasNoRoom", Head{.width = 1000}.Text("ascii") + "1 2 3\n",
     "the file announces 1000 points and has space for 1"},
    {"TextHasMorePoints", Head{.width = 1}.Text("ascii") + "1 2 3\n4 5 6\n",
     "line 12: there are more points than the 1 that the header announces"},
    {"TextHasFewerValues", Head{.width = 1}.Text("ascii") + "1.25 2.5\n", "line 11: expected 3 values, found 2"},
    {"TextHasMoreValues", Head{.width = 1}.Text("ascii") + "1 2 3 4\n", "line 11: expected 3 values, found more"},
    {"Word", Head{.width = 1}.Text("ascii") + "1 2 three\n", "line 11: \"three\" is not a number"},
    {"UnitAfterANumber", Head{.width = 1}.Text("ascii") + "1 2mm 3\n", "line 11: \"2mm\" is not a number"},
    {"ColorIsNoNumber", kColored.Text("ascii") + "1 2 3 red\n", "line 11: colour \"red\" is not a number"},
    {"ColorIsNaN", Head{"x y z rgb", "4 4 4 4", "F F F F"}.Text("ascii") + "1 2 3 nan\n",
     "line 11: colour \"nan\" is not a finite number"},
    {"ColorTooLarge", kColored.Text("ascii") + "1 2 3 4294967296\n",
     "line 11: colour \"4294967296\" does not fit 32 bits"},
    // binary
    {"BinaryIsCutShort", Head{.width = 2}.Text("binary") + kPoint + kPoint.substr(1),
     "the file announces 2 points and has space for 1"},
    {"BinaryCountIsHuge", After("WIDTH 4294967295\nHEIGHT 4294967295\nDATA binary\n") + kPoint,
     "the file announces 18446744065119617025 points and has space for 1"},
    {"BinaryRecordIsHuge",
     "FIELDS x y z t\nSIZE 4 4 4 8\nTYPE F F F F\nCOUNT 1 1 1 1099511627776\nWIDTH 1\nDATA binary\n" + kPoint,
     "a point is too large"},
    {"BinaryRecordIsLargerThanABlock",
     "FIELDS x y z t\nSIZE 4 4 4 1\nTYPE F F F U\nCOUNT 1 1 1 1048576\nWIDTH 1\nDATA binary\n" +
         std::string(1048588, '\0'),
     "a point has more than 1048576 bytes"},
    // compressed
    {"CompressedHasNoSizes", Head().Text("binary_compressed") + "1234567", "the file ends before its points"},
    {"CompressedIsCutShort", Head().Text("binary_compressed") + Compressed(kPoint).substr(0, 20),
     "the file announces 13 compressed bytes and has 12"},
    {"DecompressedIsTooSmall", Head{.width = 2}.Text("binary_compressed") + Compressed(kPoint),
     "the file announces 2 points and has space for 1"},
    {"DecompressedIsTooLarge", Head().Text("binary_compressed") + Compressed(kPoint + kPoint),
     "the decompressed size is 24 bytes and not that of the points"},
    {"MoreThanAnyCompressionReaches", After("WIDTH 1000000\nDATA binary_compressed\n") + Compressed("123", 12000000),
     "the compressed data is cut short"},
    {"CompressedEndsEarly", Head().Text("binary_compressed") + Compressed(Literals(kPoint.substr(2)), 12),
     "the compressed data is cut short"},
    {"CompressedEndsInALiteral",
     Head().Text("binary_compressed") + Compressed("\x0B"
                                                   "12345678901",
                                                   12),
     "the compressed data is cut short"},
    {"CompressedIsLongerThanAnnounced", Head().Text("binary_compressed") + Compressed(Literals(kPoint + "4"), 12),
     "the compressed data is longer than the points"},
    {"CopyFromBeforeTheStart", Head().Text("binary_compressed") + Compressed(std::string("\0A\x20\x01", 4), 12),
     "the compressed data is damaged"},
};
INSTANTIATE_TEST_SUITE_P(PcdFile, PcdRefuses, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST(PcdFile, EndsWithAReasonWhenTheFileBecomesShorter) {
    for (const char* data : {"ascii", "binary"}) {
        const std::string bytes = Head{.width = 2}.Text(data) + "1.0 2.0 3.0\n";
        ShortenedInput input(bytes, bytes.size() + 100);
        ReadProgress progress({}, input.Size());
        EXPECT_THAT([&] { (void)ReadPcd(input, progress); },
                    testing::ThrowsMessage<FileReadError>("the file became shorter while it was read"));
    }
}

TEST(PcdFile, ReportsRisingProgress) {
    Head head = kColored;
    head.width = 200'000;
    for (const char* data : {"binary", "binary_compressed"}) {
        const std::string points(std::size_t{16} * 200'000, '\1');
        std::vector<double> parts;
        (void)ReadBytesAsPoints(
            ReadPcd, head.Text(data) + (std::string(data) == "binary" ? points : Compressed(points)), [&](double part) {
                parts.push_back(part);
                return true;
            });
        ASSERT_GE(parts.size(), 20u) << data;
        EXPECT_TRUE(std::ranges::is_sorted(parts, std::less_equal<>{})) << "not strictly rising";
    }
}

// One number that is repeated: 12 million points in 410 kB, with a fault at the end.
TEST(PcdFile, AllocatesNoArraysForDamagedCompressedData) {
    Head head{.sizes = "1 1 1", .types = "U U U", .width = 12'000'000 / 264 * 264};
    const std::size_t copies = static_cast<std::size_t>(head.width) * 3 / 264;
    std::string lzf("\0A", 2);
    for (std::size_t i = 0; i + 1 < copies; ++i) lzf += std::string("\xE0\xFF\0", 3);
    const std::string damaged = head.Text("binary_compressed") + Compressed(lzf + "\x3F\xFF", 264 * copies);
    const auto allocated = [] { return ::mallinfo2().hblkhd; };
    const std::size_t before = allocated();
    std::size_t most = 0;
    int calls = 0;
    EXPECT_THAT(
        [&] {
            (void)ReadBytesAsPoints(ReadPcd, damaged, [&](double) {
                most = std::max(most, allocated());
                return ++calls > 0;
            });
        },
        testing::ThrowsMessage<FileReadError>("the compressed data is cut short"));
    EXPECT_GE(calls, 30);
    EXPECT_LE(most, before + 1'000'000);
    int last = 0;
    EXPECT_THAT([&] { (void)ReadBytesAsPoints(ReadPcd, damaged, [&](double) { return ++last < 2; }); },
                testing::ThrowsMessage<FileReadError>("cancelled"));
}

// ---- LZF

std::string Decompress(const std::string& lzf, std::size_t size) {
    MemoryInput input(std::as_bytes(std::span(lzf)));
    LzfInput data(input, lzf.size());
    std::string bytes(size, '\0');
    data.Read(bytes.data(), size);
    return bytes;
}

TEST(Lzf, CopiesWhatItHasWritten) {
    // "abc", then 6 bytes from 3 back, then 2 + 7 + 5 = 14 bytes from 1 back
    const std::string lzf = std::string(
                                "\x02"
                                "abc") +
                            "\x80\x02" + "\xE0\x05" + std::string(1, '\0');
    EXPECT_EQ(Decompress(lzf, 23), "abcabcabc" + std::string(14, 'c'));
}

// Also across the end of what is decompressed at once.
TEST(Lzf, ReachesExactly8192BytesBack) {
    const std::string longest = "\x3F\xFF";  // 3 bytes from 8192 back
    for (const std::size_t size : {8192, 65536}) {
        std::string start(size, '\0');
        std::iota(start.begin(), start.end(), '\0');
        start[size - 8192] = 'S';
        EXPECT_EQ(Decompress(Literals(start) + longest, size + 3), start + start.substr(size - 8192, 3));
    }
}

// More than the window and more than one round, in pieces of any size.
TEST(Lzf, KeepsItsWindowOverALongText) {
    std::string lzf = Literals("0123456789");
    std::string expected = "0123456789";
    for (int i = 0; i < 2000; ++i) {
        lzf += std::string("\xE0\xFF\x09", 3);  // 264 bytes from 10 back
        for (int k = 0; k < 264; ++k) expected += expected[expected.size() - 10];
    }
    EXPECT_EQ(Decompress(lzf, expected.size()), expected);
    EXPECT_LE(expected.size(), LzfInput::LargestSize(lzf.size()));
    MemoryInput input(std::as_bytes(std::span(lzf)));
    LzfInput data(input, lzf.size());
    std::string bytes;
    for (std::size_t piece = 1; bytes.size() < expected.size(); piece = piece % 999 + 1) {
        std::string part(std::min(piece, expected.size() - bytes.size()), '\0');
        data.Read(part.data(), part.size());
        bytes += part;
    }
    EXPECT_EQ(bytes, expected);
}

}  // namespace
