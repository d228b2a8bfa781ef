// The header of ply files: grammar, errors with their positions, line ends.
#include "io/CPLYFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

#include "support/ScratchFolder.h"

namespace {
constexpr char kAsciiStart[] = "ply\nformat ascii 1.0\n";
constexpr char kBinaryStart[] = "ply\nformat binary_little_endian 1.0\n";

void Read(CPLYFile& file, const std::string& bytes, bool headerOnly = false) {
    std::istringstream stream(bytes);
    file.Read(stream, headerOnly);
}

std::string WithLineEnds(std::string text, const std::string& lineEnd) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += lineEnd.size())
        text.replace(at, 1, lineEnd);
    return text;
}

TEST(PlyHeader, IsReadIntoElementsItemsAndComments) {
    CPLYFile file;
    Read(file, std::string(kAsciiStart) +
                   "comment  two blanks and CAPITALS\nelement vertex 0\nproperty float x\n"
                   "comment\nproperty double y\nelement face 0\nproperty list uchar int vertex_indices\nend_header\n");
    EXPECT_EQ(file.GetFormat(), CPLYFile::kAscii);
    EXPECT_EQ(file.m_sVersion, "1.0");
    EXPECT_EQ(file.m_vComments, (std::vector<std::string>{"  two blanks and CAPITALS", ""}));
    EXPECT_EQ(
        file.m_sGrammar,
        "element vertex 0 property float x property double y element face 0 property list uchar int vertex_indices");
    ASSERT_EQ(file.m_vElements.size(), 2U);
    EXPECT_EQ(file.m_vElements[0]->ToString(), "element vertex 0\nproperty float x\nproperty double y");
    EXPECT_EQ(file.m_vElements[1]->ToString(), "element face 0\nproperty list uchar int vertex_indices");
    const auto& face = file.GetElement("face").GetProperty("vertex_indices");
    ASSERT_EQ(face.m_eKind, Element::ElementSubItem::Kind::kList);
    EXPECT_EQ(static_cast<const Element::List&>(face).m_iCountType, kPlyUChar);
    EXPECT_EQ(static_cast<const Element::List&>(face).m_iElementType, kPlyInt);
    ASSERT_NE(file.m_pDataSection, nullptr);
    EXPECT_EQ(file.m_pDataSection->m_sData, "\n");  // the line end of an ascii header belongs to the data
}

TEST(PlyHeader, HasCountsByName) {
    CPLYFile file;
    Read(file, std::string(kBinaryStart) + "element vertex 7\nelement face +12\nelement vertex 9\nend_header\n");
    EXPECT_EQ(file.GetVertexCount(), 7);  // the first of the name
    EXPECT_EQ(file.GetFaceCount(), 12);
    EXPECT_EQ(file.GetElementCount("face"), 12);
    EXPECT_TRUE(file.HasElement("face"));
    EXPECT_FALSE(file.HasElement("Face"));
    EXPECT_FALSE(file.GetElement("face").HasProperty("x"));
}

TEST(PlyHeader, IsAcceptedInAnyCase) {
    CPLYFile file;
    Read(file,
         "PlY\nFORMAT Binary_Little_Endian 1.0\nELEMENT Vertex 0\nPROPERTY FLOAT RED\nCOMMENT Hi\nproperty List "
         "UCHAR Int Q\nEnd_Header\n");
    EXPECT_EQ(file.GetFormat(), CPLYFile::kBinaryLittleEndian);
    EXPECT_TRUE(file.GetElement("vertex").HasProperty("red"));
    EXPECT_FALSE(file.GetElement("vertex").HasProperty("RED"));
    EXPECT_TRUE(file.GetElement("vertex").HasProperty("q"));
    EXPECT_EQ(file.m_vComments, std::vector<std::string>{" Hi"});
}

TEST(PlyHeader, CanHaveCommentsBetweenAnyTokensOfItsBody) {
    CPLYFile file;
    Read(file,
         std::string(kAsciiStart) +
             "comment a\nelement comment b\r\n vertex\ncomment c\n0 property comment element face 3\nfloat comment\n x "
             "end_header\n");
    EXPECT_EQ(file.m_sGrammar, "element vertex 0 property float x");
    EXPECT_EQ(file.m_vComments, (std::vector<std::string>{" a", " b", " c", " element face 3", ""}));
}

TEST(PlyHeader, KnowsAllTypeNames) {
    const char* const names[] = {"float32", "uint8", "uint32", "char",  "uchar", "short",
                                 "ushort",  "int",   "uint",   "float", "double"};
    const int widths[] = {4, 1, 4, 1, 1, 2, 2, 4, 4, 4, 8};
    for (int code = 1; code <= 11; ++code) {
        const std::string name = names[code - 1];
        SCOPED_TRACE(name);
        CPLYFile file;
        Read(file, std::string(kAsciiStart) + "element e 0 property " + name + " p property list " + name + " " + name +
                       " q end_header");
        const auto& element = file.GetElement("e");
        EXPECT_EQ(static_cast<const Element::Property&>(element.GetProperty("p")).m_iType, code);
        EXPECT_EQ(element.GetProperty("p").ToString(), "property " + name + " p");
        EXPECT_EQ(static_cast<const Element::List&>(element.GetProperty("q")).m_iCountType, code);
        EXPECT_EQ(static_cast<const Element::List&>(element.GetProperty("q")).m_iElementType, code);
        EXPECT_EQ(PlyTypeWidth(code), widths[code - 1]);
        EXPECT_EQ(file.m_mapTypes.at(name), code);
    }
    EXPECT_STREQ(PlyTypeName(0), "none");
    EXPECT_STREQ(PlyTypeName(12), "none");
    EXPECT_STREQ(PlyTypeName(-1), "none");
    EXPECT_EQ(PlyTypeWidth(0), 0);
}

struct BadHeader {
    const char* name;
    std::string bytes;
    std::string message;
    std::int64_t position;
};
void PrintTo(const BadHeader& row, std::ostream* out) { *out << row.name; }
std::string Ascii(const std::string& body) { return kAsciiStart + body; }
std::string InGrammar(int token, const std::string& reason) {
    return "Error in grammar at token " + std::to_string(token) + ": " + reason;
}

const BadHeader kBadHeaders[] = {
    {"Empty", "", "Magic number in PLY header not found.", 0},
    {"OtherMagic", "plyx\nformat ascii 1.0\n", "Magic number in PLY header not found.", 0},
    {"NoFormat", "ply\n", "Unknown file format.", 3},
    {"CommentBeforeFormat", "ply\ncomment hi\nformat ascii 1.0\n", "Unknown file format.", 3},
    {"FormatWithoutName", "ply\nformat", "Unknown file format.", 10},
    {"FormatOfOtherName", "ply\nformat binary 1.0\n", "Unknown file format.", 10},
    {"NoVersion", "ply\nformat ascii", "Unsupported PLY file version: ", 16},
    {"OtherVersion", "ply\nformat ascii 1.00\n", "Unsupported PLY file version: 1.00", 16},
    {"VersionKeepsItsCase", "ply\nformat ascii V1\n", "Unsupported PLY file version: V1", 16},
    {"BigEndian", "ply\nformat binary_big_endian 1.0\nend_header\n", "Big-endian binary format not yet supported.", -1},
    {"NoElement", Ascii("property float x\nend_header\n"), InGrammar(0, "\"element\" expected."), -1},
    {"UnknownKeyword", Ascii("obj_info hi\nend_header\n"), InGrammar(0, "\"element\" expected."), -1},
    {"UnknownKeywordBehindAnElement", Ascii("element v 0 property int x obj_info"),
     InGrammar(6, "\"element\" expected."), -1},
    {"ElementAlone", Ascii("element"), InGrammar(1, "expected 2 more tokens"), -1},
    {"ElementWithoutCount", Ascii("element v"), InGrammar(2, "expected 1 more tokens"), -1},
    {"CountNoNumber", Ascii("element v x"), InGrammar(2, "element count expected (integer)"), -1},
    {"CountNegative", Ascii("element v -1"), InGrammar(2, "element count expected (integer)"), -1},
    {"CountFraction", Ascii("element v 1.0"), InGrammar(2, "element count expected (integer)"), -1},
    {"CountTooLarge", Ascii("element v 2147483648"), InGrammar(2, "element count expected (integer)"), -1},
    {"PropertyAlone", Ascii("element v 0 property"), InGrammar(4, "expected 2 more tokens"), -1},
    {"PropertyWithoutName", Ascii("element v 0 property int"), InGrammar(5, "expected 1 more tokens"), -1},
    {"PropertyOfUnknownType", Ascii("element v 0 property float64 x"),
     InGrammar(4, "invalid property type \"float64\""), -1},
    {"PropertyOfTypeNone", Ascii("element v 0 property none x"), InGrammar(4, "invalid property type \"none\""), -1},
    {"ListAlone", Ascii("element v 0 property list"), InGrammar(5, "expected 3 more tokens"), -1},
    {"ListWithCountTypeOnly", Ascii("element v 0 property list uchar"), InGrammar(6, "expected 2 more tokens"), -1},
    {"ListWithoutName", Ascii("element v 0 property list uchar int"), InGrammar(7, "expected 1 more tokens"), -1},
    {"ListOfUnknownCountType", Ascii("element v 0 property list int8 int q"),
     InGrammar(5, "invalid count type in list none"), -1},
    {"ListOfUnknownElementType", Ascii("element v 0 property list uchar int32 q"),
     InGrammar(6, "invalid element type in list none"), -1},
};
class PlyHeaderRejects : public testing::TestWithParam<BadHeader> {};

TEST_P(PlyHeaderRejects, AndSaysWhyAndWhere) {
    CPLYFile file;
    try {
        Read(file, GetParam().bytes);
        FAIL() << "the file was accepted";
    } catch (const CPLYFileError& error) {
        EXPECT_EQ(error.what(), GetParam().message);
        EXPECT_EQ(error.GetPosition(), GetParam().position);
    }
    EXPECT_EQ(file.m_pDataSection, nullptr);
}
INSTANTIATE_TEST_SUITE_P(Ply, PlyHeaderRejects, testing::ValuesIn(kBadHeaders),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlyHeader, HasNoMagicWhenTheFileCannotBeRead) {
    const ScratchFolder folder;
    for (const std::string& path : {folder / "missing.ply", folder / ""}) {  // nothing there; a folder
        std::ifstream stream(path, std::ios::binary);
        CPLYFile file;
        try {
            file.Read(stream, false);
            ADD_FAILURE() << path << " was accepted";
        } catch (const CPLYFileError& error) {
            EXPECT_STREQ(error.what(), "Magic number in PLY header not found.");
        }
    }
}

TEST(PlyHeader, AcceptsTheLargestCount) {
    CPLYFile file;
    Read(file, Ascii("element v 2147483647 property int x end_header\n"), true);
    EXPECT_EQ(file.GetElementCount("v"), 2147483647);
    EXPECT_EQ(file.m_pDataSection, nullptr);  // header only
}

TEST(PlyHeader, NamesWhatIsMissing) {
    CPLYFile file;
    Read(file, Ascii("element v 0 end_header\n"));
    try {
        (void)file.GetElement("V");
        ADD_FAILURE();
    } catch (const CPLYFileError& error) {
        EXPECT_STREQ(error.what(), "No such element: V");
        EXPECT_EQ(error.GetPosition(), -1);
    }
    try {
        (void)file.GetElement("v").GetProperty("x");
        ADD_FAILURE();
    } catch (const CPLYFileError& error) {
        EXPECT_STREQ(error.what(), "No such property: x");
        EXPECT_EQ(error.GetPosition(), -1);
    }
}

struct LineEnds {
    const char* name;
    std::string header;
    std::string data;  // as a binary section finds it
};
void PrintTo(const LineEnds& row, std::ostream* out) { *out << row.name; }
const std::string kLines = std::string(kBinaryStart) + "element v 0\nproperty uchar c\nend_header\n";
const LineEnds kLineEnds[] = {
    {"LineFeeds", kLines, "DATA"},
    {"CarriageReturnsAndLineFeeds", WithLineEnds(kLines, "\r\n"), "DATA"},
    {"LineFeedBehindTheMagicOnly", "ply\n" + WithLineEnds(kLines.substr(4), "\r\n"), "\nDATA"},
    {"CarriageReturnBehindTheMagicOnly", "ply\r\n" + kLines.substr(4), "ATA"},
    {"NoEndHeader", std::string(kBinaryStart) + "element v 0\nproperty uchar DATA_", ""},
};
class PlyLineEnds : public testing::TestWithParam<LineEnds> {};

TEST_P(PlyLineEnds, DecideWhereTheDataStarts) {
    CPLYFile file;
    Read(file, GetParam().header + (GetParam().data.empty() ? "" : "DATA"));
    ASSERT_NE(file.m_pDataSection, nullptr);
    EXPECT_EQ(file.m_pDataSection->m_sData, GetParam().data);
}
INSTANTIATE_TEST_SUITE_P(Ply, PlyLineEnds, testing::ValuesIn(kLineEnds),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlyFileError, HasItsWholeTextAlsoWithAZeroByteOfTheFile) {
    EXPECT_STREQ(CPLYFileError(std::string("found \0this\0", 12)).what(), "found ?this?");
    CPLYFile file;
    try {
        Read(file, "ply\nformat ascii 1." + std::string(1, '\0') + "2\n");
        FAIL() << "the file was accepted";
    } catch (const CPLYFileError& error) {
        EXPECT_STREQ(error.what(), "Unsupported PLY file version: 1.?2");
    }
}

TEST(PlyHeader, IsReadFromTheStreamsPositionButItsLineEndsFromTheStart) {
    std::istringstream stream("abc\r\n" + kLines + "DATA");
    stream.seekg(5);
    CPLYFile file;
    file.Read(stream, false);
    EXPECT_EQ(file.m_pDataSection->m_sData, "ATA");
    std::istringstream other("ply other");
    other.seekg(3);
    try {
        file.Read(other, false);
        ADD_FAILURE();
    } catch (const CPLYFileError& error) {
        EXPECT_STREQ(error.what(), "Magic number in PLY header not found.");
        EXPECT_EQ(error.GetPosition(), 3);
    }
}

TEST(PlyHeader, CanEndWithTheFile) {
    CPLYFile file;
    Read(file, std::string(kBinaryStart) + "element v 0 end_header");
    ASSERT_NE(file.m_pDataSection, nullptr);
    EXPECT_EQ(file.m_pDataSection->m_sData, "");
}

TEST(PlyFile, ReadsDataLargerThanAReadBuffer) {
    std::string data(1'000'003, ' ');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * i % 251);
    CPLYFile file;
    Read(file, std::string(kBinaryStart) + "element v 1000003 property uchar c end_header\n" + data);
    EXPECT_EQ(file.m_pDataSection->m_sData, data);
}

TEST(PlyFile, CannotBeCopiedOrMoved) {
    EXPECT_FALSE(std::is_move_constructible_v<CPLYFile>);
    EXPECT_FALSE(std::is_move_assignable_v<CPLYFile>);
}

TEST(PlyFile, IsReusableAfterClear) {
    CPLYFile file;
    Read(file, Ascii("comment a\nelement v 1 property int x\nend_header\n4"));
    file.Clear();
    EXPECT_EQ(file.GetFormat(), CPLYFile::kNotRead);
    EXPECT_EQ(file.m_sVersion, "");
    EXPECT_TRUE(file.m_vComments.empty());
    EXPECT_EQ(file.m_sGrammar, "");
    EXPECT_TRUE(file.m_vElements.empty());
    EXPECT_EQ(file.m_pDataSection, nullptr);
    Read(file, std::string(kBinaryStart) + "element w 0\nend_header\n");
    EXPECT_EQ(file.GetFormat(), CPLYFile::kBinaryLittleEndian);
    EXPECT_EQ(file.m_sGrammar, "element w 0");
}

TEST(PlyFile, ReadsAgainAfterAnError) {
    CPLYFile file;
    EXPECT_THROW(Read(file, Ascii("element v 1 property int x element")), CPLYFileError);
    Read(file, Ascii("element w 1 property int y end_header 4"));
    EXPECT_EQ(file.m_vElements.size(), 1U);
    EXPECT_EQ(file.m_pDataSection->m_iEnd, 1);
}
}  // namespace
