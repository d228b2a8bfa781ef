#include "ReaderResult.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

using Kind = ReaderResult::Kind;

class ReaderResultFile : public testing::Test {
protected:
    ~ReaderResultFile() override { close(m_fd); }

    /// What is read of bytes; the reason when they are refused.
    [[nodiscard]] std::string ReasonOf(const std::string& bytes) const {
        EXPECT_EQ(ftruncate(m_fd, 0), 0);
        EXPECT_EQ(pwrite(m_fd, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        try {
            (void)ReadReaderResult(m_fd);
        } catch (const ReaderResultError& error) {
            return error.what();
        }
        return "accepted";
    }
    [[nodiscard]] std::string BytesOf(const ReaderResult& result) const {
        EXPECT_EQ(ftruncate(m_fd, 0), 0);
        WriteReaderResult(m_fd, result);
        std::string bytes(static_cast<std::size_t>(lseek(m_fd, 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(m_fd, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

    int m_fd = memfd_create("result", 0);
};

ReaderResult MeshOfOneTriangle() {
    ReaderResult result;
    result.kind = Kind::Mesh;
    result.text = "its lines are not shown";
    result.mesh.m_bHasColors = true;
    result.mesh.m_vVertices = {{0, 0, 0, 0, 0, 1, 0xFF102030, 7}, {1, 0, 0, NAN, 0, 1, 1, 0}, {0, 1, 0, 0, 0, 1, 2, 0}};
    result.mesh.m_vTriangles = {{{0, 1, 2}}};
    return result;
}

TEST_F(ReaderResultFile, GivesBackWhatWasWrittenWithoutWhatSpoilsAPicture) {
    WriteReaderResult(m_fd, MeshOfOneTriangle());
    const ReaderResult read = ReadReaderResult(m_fd);
    EXPECT_EQ(read.kind, Kind::Mesh);
    EXPECT_EQ(read.text, "its lines are not shown");
    EXPECT_TRUE(read.mesh.m_bHasColors);
    ASSERT_EQ(read.mesh.m_vVertices.size(), 3u);
    EXPECT_EQ(read.mesh.m_vVertices[0].color, 0xFF102030u);
    EXPECT_EQ(read.mesh.m_vVertices[0].gridIndex, 0u) << "the vertex is of no grid";
    EXPECT_EQ(read.mesh.m_vVertices[1].nz, 0.0f) << "a normal that is no number";
    ASSERT_EQ(read.mesh.m_vTriangles.size(), 1u);
    EXPECT_EQ(read.mesh.m_vTriangles[0].v[2], 2);
}

TEST_F(ReaderResultFile, OfOtherKindsGivesThemBack) {
    ReaderResult points;
    points.kind = Kind::Points;
    points.mesh.m_vVertices = {{1, 2, 3}};
    WriteReaderResult(m_fd, points);
    const ReaderResult read = ReadReaderResult(m_fd);
    EXPECT_EQ(read.kind, Kind::Points);
    EXPECT_EQ(read.mesh.m_vVertices[0].color, 0u) << "without colours";
    ReaderResult textured;
    textured.kind = Kind::TexturedMesh;
    textured.plyFile = {1, 2, 3};
    EXPECT_EQ(ReasonOf(BytesOf(textured)), "accepted");
    ReaderResult refused;
    refused.text = "why";
    EXPECT_EQ(ReasonOf(BytesOf(refused)), "accepted");
    refused.text.assign(10'000, 'a');
    EXPECT_EQ(ReasonOf(BytesOf(refused)), "accepted") << "a long text is cut when it is written";
}

TEST_F(ReaderResultFile, ThatWasNotFinishedIsNone) {
    EXPECT_EQ(ReasonOf(""), "the result is cut short");
    EXPECT_EQ(ReasonOf(std::string(48, '\0')), "there is no result") << "the magic bytes are written last";
}

TEST_F(ReaderResultFile, IsRefusedWhereverItIsCutOff) {
    const std::string whole = BytesOf(MeshOfOneTriangle());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(ReasonOf(whole.substr(0, size)), "accepted") << size;
    EXPECT_EQ(ReasonOf(whole), "accepted");
    EXPECT_EQ(ReasonOf(whole + '\0'), "the result is damaged") << "bytes that belong to nothing";
}

struct Damage {
    const char* name;
    std::size_t offset;
    std::uint64_t value;
    std::size_t bytes;
};
constexpr std::size_t kTextBytes = 23, kVerticesAt = 48 + kTextBytes, kTrianglesAt = kVerticesAt + 96;
constexpr Damage kDamages[] = {
    {"AnotherMagic", 0, 0, 1},
    {"AnUnknownKind", 8, 4, 4},
    {"ARefusalWithAMesh", 8, 0, 4},
    {"ColoursThatAreNeitherThereNorNot", 12, 2, 4},
    {"MoreTextThanBytes", 16, 4000, 8},
    {"TextOfAnySize", 16, ~0ULL, 8},
    {"MoreVerticesThanBytes", 24, 4, 8},
    {"VerticesThatWrap", 24, 1ULL << 59, 8},
    {"NoVertices", 24, 0, 8},
    {"NoTriangles", 32, 0, 8},
    {"TrianglesThatWrap", 32, ~0ULL / 12 + 2, 8},
    {"APlyFileBesideTheMesh", 40, 1, 8},
    {"AnIndexOutside", kTrianglesAt + 8, 3, 4},
    {"AnIndexBelowZero", kTrianglesAt + 8, 0xFFFFFFFF, 4},
};

TEST_F(ReaderResultFile, WithADamagedFieldIsRefused) {
    const std::string whole = BytesOf(MeshOfOneTriangle());
    for (const Damage& damage : kDamages) {
        std::string bytes = whole;
        std::memcpy(&bytes[damage.offset], &damage.value, damage.bytes);
        const std::string reason = ReasonOf(bytes);
        EXPECT_TRUE(reason == "the result is damaged" || reason == "the result is cut short" ||
                    reason == "there is no result")
            << damage.name << ": " << reason;
    }
}

TEST_F(ReaderResultFile, OfPointsMustHaveFiniteCoordinates) {
    ReaderResult points;
    points.kind = Kind::Points;
    points.mesh.m_vVertices = {{1, std::numeric_limits<float>::infinity(), 3}};
    EXPECT_EQ(ReasonOf(BytesOf(points)), "the result is damaged");
}

}  // namespace
