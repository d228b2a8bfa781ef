// Text meshes with one record per line, which are read line by line and on several threads: the mesh, or the error, is
// that of the reader by tokens.
#include "io/PlyTextLines.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "io/PlyMesh.h"

namespace {

/// A file in the temporary folder; the destructor removes it.
class TextFile {
public:
    explicit TextFile(const std::string& text)
        : m_path(std::filesystem::temp_directory_path() / ("kv-lines-" + std::to_string(::getpid()) + ".ply")) {
        std::ofstream(m_path, std::ios::binary) << text;
    }
    ~TextFile() { std::filesystem::remove(m_path); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    [[nodiscard]] std::wstring Path() const { return KV_ScenePane::WidePath(m_path.string()); }

private:
    std::filesystem::path m_path;
};

constexpr char kPositions[] = "property float x\nproperty float y\nproperty float z\n";
constexpr char kColors[] = "property uchar red\nproperty uchar green\nproperty uchar blue\n";

std::string Header(std::size_t vertices, const std::string& properties, std::size_t faces) {
    return "ply\nformat ascii 1.0\nelement vertex " + std::to_string(vertices) + "\n" + properties + "element face " +
           std::to_string(faces) + "\nproperty list uchar int vertex_indices\n";
}

/// What is read from a text, or the message of its error.
struct Result {
    PlyMeshData mesh;
    std::string error;
};

Result ReadWith(const std::string& text, unsigned threads) {
    const TextFile file(text);
    try {
        return {ReadPlyMesh(file.Path(), threads), ""};
    } catch (const CPLYFileError& error) {
        return {{}, error.what() + (" at " + std::to_string(error.GetPosition()))};
    }
}

/// By tokens: a file with a third element has no form that is read by lines.
Result ReadByTokens(const std::string& header, const std::string& data) {
    return ReadWith(header + "element nothing 0\nend_header\n" + data, 1);
}

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

void ExpectSame(const Result& read, const Result& expected) {
    EXPECT_EQ(read.error, expected.error);
    EXPECT_TRUE(SameBytes(*read.mesh.m_pVertices, *expected.mesh.m_pVertices));
    EXPECT_TRUE(SameBytes(*read.mesh.m_pTriangles, *expected.mesh.m_pTriangles));
    EXPECT_EQ(read.mesh.m_bHasColors, expected.mesh.m_bHasColors);
    EXPECT_EQ(read.mesh.m_bHasTexture, expected.mesh.m_bHasTexture);
    EXPECT_EQ(read.mesh.m_uNotFinite, expected.mesh.m_uNotFinite);
    EXPECT_EQ(read.mesh.m_uBytesAfterEnd, expected.mesh.m_uBytesAfterEnd);
}

/// Whether the text has the form that is read by lines.
bool IsReadByLines(const std::string& header, const std::string& data) {
    std::istringstream stream(header + "end_header\n" + data);
    CPLYFile file;
    file.Read(stream, true);
    PlyMeshData mesh;
    return ReadPlyTextLines(file, CPLYFile::ReadRest(stream), 1, mesh);
}

struct TextCase {
    const char* name;
    std::string properties, data;  ///< of three vertices and two faces
    bool isReadByLines;
};
void PrintTo(const TextCase& row, std::ostream* out) { *out << row.name; }

const std::string kTriangle = "0 0 0\n1 0 0\n0 1 0\n";
const TextCase kTexts[] = {
    {"Plain", kPositions, kTriangle + "3 0 1 2\n3 2 1 0\n", true},
    {"NoLineFeedAtTheEnd", kPositions, kTriangle + "3 0 1 2\n3 2 1 0", true},
    {"CarriageReturns", kPositions, "0 0 0\r\n1 0 0\r\n0 1 0\r\n3 0 1 2\r\n3 2 1 0\r\n", true},
    {"BlanksAroundTokens", kPositions, "  0\t0  0 \n 1 0 0\n0 1 0\t\n\t3 0 1 2 \n 3  2 1 0  \n", true},
    {"EmptyLinesAtTheEnds", kPositions, "\n \n" + kTriangle + "3 0 1 2\n3 2 1 0\n\n \n", true},
    {"NumbersOfAllForms", kPositions,
     "-1.5e3 +.25 1e-40\n1234567.12345678 12345678901 -0\n3.4e38 1E+2 7.\n3 0 1 2\n3 2 1 0\n", true},
    {"LettersAfterNumbers", kPositions, "0x 0 0\n1.5f 0 0\n0 1y 0\n3 0 1 2\n3 2 1 0 \n", true},
    {"Colors", std::string(kPositions) + kColors, "0 0 0 1 2 3\n1 0 0 255 256 -1\n0 1 0 7.9 8 9\n3 0 1 2\n3 2 1 0\n",
     true},
    {"ColorsFirstWithAlpha", std::string(kColors) + "property uchar alpha\nproperty float nx\n" + kPositions,
     "1 2 3 4 0.5 0 0 0\n5 6 7 8 word 1 0 0\n9 10 11 12 0 0 1 0\n3 0 1 2\n3 2 1 0\n", true},
    {"AlphaWithoutColors", std::string(kPositions) + "property uchar alpha\n",
     "0 0 0 1\n1 0 0 2\n0 1 0 3\n3 0 1 2\n3 2 1 0\n", true},
    {"TwoPropertiesOfOneName", std::string(kPositions) + "property float x\n",
     "0 0 0 5\n1 0 0 6\n0 1 0 7\n3 0 1 2\n3 2 1 0\n", true},
    {"TwoRecordsInALine", kPositions, "0 0 0 1 0 0\n0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"ARecordInTwoLines", kPositions, "0 0\n0\n1 0 0 0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"AnEmptyLineBetween", kPositions, kTriangle + "\n3 0 1 2\n3 2 1 0\n", false},
    {"TokensMovedToTheNextLine", kPositions, "0 0\n0 1 0 0\n0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"TokensAfterTheEnd", kPositions, kTriangle + "3 0 1 2\n3 2 1 0\n17 18\n", false},
    {"AFormFeed", kPositions, "0 \f 0\n1 0 0\n0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"AQuad", kPositions, kTriangle + "3 0 1 2\n4 2 1 0 0\n", false},
    {"TwoIndices", kPositions, kTriangle + "2 0 1\n3 2 1 0\n", false},
    {"AWord", kPositions, "0 0 0\n1 zero 0\n0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"AWordAsIndex", kPositions, kTriangle + "3 0 1 2\n3 2 one 0\n", false},
    {"TooLargeANumber", kPositions, "0 0 0\n1 1e39 0\n0 1 0\n3 0 1 2\n3 2 1 0\n", false},
    {"ALineMissing", kPositions, kTriangle + "3 0 1 2\n", false},
    {"NoData", kPositions, "", false},
    {"AnIndexThatIsNoVertex", kPositions, kTriangle + "3 0 1 2\n3 2 3 0\n", true},
    {"NoGreen", std::string(kPositions) + "property uchar red\n", "0 0 0 1\n1 0 0 1\n0 1 0 1\n3 0 1 2\n3 2 1 0\n",
     false},
    {"NoZ", "property float x\nproperty float y\n", "0 0\n1 0\n0 1\n3 0 1 2\n3 2 1 0\n", false},
};

class PlyTextLines : public testing::TestWithParam<TextCase> {};

TEST_P(PlyTextLines, GiveWhatTokensGive) {
    const std::string header = Header(3, GetParam().properties, 2);
    ExpectSame(ReadWith(header + "end_header\n" + GetParam().data, 1), ReadByTokens(header, GetParam().data));
    EXPECT_EQ(IsReadByLines(header, GetParam().data), GetParam().isReadByLines);
}
INSTANTIATE_TEST_SUITE_P(Ply, PlyTextLines, testing::ValuesIn(kTexts),
                         [](const auto& row) { return std::string(row.param.name); });

/// Enough text for seven threads.
std::string LargeData(std::size_t vertices, std::size_t faces) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> coordinate(-100, 100);
    std::ostringstream text;
    for (std::size_t i = 0; i < vertices; ++i)
        text << coordinate(random) << ' ' << coordinate(random) << ' ' << coordinate(random) << ' ' << random() % 256
             << ' ' << random() % 256 << ' ' << random() % 256 << '\n';
    for (std::size_t i = 0; i < faces; ++i)
        text << "3 " << random() % vertices << ' ' << random() % vertices << ' ' << random() % vertices << '\n';
    return text.str();
}

TEST(PlyTextLinesOnThreads, GiveTheMeshOfTokens) {
    constexpr std::size_t kVertices = 50'001, kFaces = 100'003;
    const std::string header = Header(kVertices, std::string(kPositions) + kColors, kFaces);
    const std::string data = LargeData(kVertices, kFaces);
    ASSERT_GT(data.size(), 3'500'000u);
    ASSERT_TRUE(IsReadByLines(header, data));
    const Result expected = ReadByTokens(header, data);
    ASSERT_EQ(expected.mesh.GetTriangleCount(), kFaces);
    for (const unsigned threads : {1u, 2u, 3u, 7u}) {
        SCOPED_TRACE(threads);
        ExpectSame(ReadWith(header + "end_header\n" + data, threads), expected);
    }
}

TEST(PlyTextLinesOnThreads, GiveTheErrorOfTokens) {
    constexpr std::size_t kVertices = 50'001, kFaces = 100'003;
    const std::string header = Header(kVertices, std::string(kPositions) + kColors, kFaces);
    const std::string whole = LargeData(kVertices, kFaces);
    for (const std::size_t at : {std::size_t{1000}, whole.size() / 2, whole.size() - 100}) {
        std::string data = whole;
        data[data.find(' ', at) + 1] = '?';
        const Result expected = ReadByTokens(header, data);
        ASSERT_NE(expected.error, "");
        for (const unsigned threads : {1u, 2u, 7u}) {
            SCOPED_TRACE(threads);
            ExpectSame(ReadWith(header + "end_header\n" + data, threads), expected);
        }
    }
}

}  // namespace
