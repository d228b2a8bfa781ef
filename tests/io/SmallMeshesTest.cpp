// The formats ois and msh: layout, short files, and what is refused.
#include "io/SmallMeshes.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cmath>

#include "KV_ScenePane/PathText.h"
#include "io/MeshBytes.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using testing::ElementsAre;
using testing::StrEq;
using testing::ThrowsMessage;

namespace {

MeshBytes Counts(std::int32_t vertices, std::int32_t triangles) { return Packed(vertices, triangles); }
MeshBytes Indices(std::int32_t a, std::int32_t b, std::int32_t c) { return Packed(a, b, c); }

/// Three vertices from 1 on, two triangles.
MeshBytes Ois() {
    return Counts(3, 2) + Packed(Float3{1, 2, 3}, Float3{4, 5, 6}, Float3{7, 8, 9}) + Indices(0, 1, 2) +
           Indices(2, 1, 0);
}

/// The same with normals from 0.1 on, and face normals that must be ignored.
MeshBytes Msh() {
    const MeshBytes face = Packed(Float3{5e5f, 6e6f, 7e7f});
    return Counts(3, 2) + Packed(Float3{1, 2, 3}, Float3{0.1f, 0.2f, 0.3f}, Float3{4, 5, 6}, Float3{0.4f, 0.5f, 0.6f}) +
           Packed(Float3{7, 8, 9}, Float3{0.7f, 0.8f, 0.9f}) + face + Indices(0, 1, 2) + face + Indices(2, 1, 0);
}

std::vector<std::array<float, 6>> Vertices(const MeshBuffers& mesh) {
    std::vector<std::array<float, 6>> vertices;
    for (const Vertex& v : mesh.m_vVertices) vertices.push_back({v.x, v.y, v.z, v.nx, v.ny, v.nz});
    return vertices;
}

std::vector<std::array<int, 3>> Corners(const MeshBuffers& mesh) {
    std::vector<std::array<int, 3>> corners;
    for (const Triangle& t : mesh.m_vTriangles) corners.push_back({t.v[0], t.v[1], t.v[2]});
    return corners;
}

using Row = std::array<float, 6>;
using Corner = std::array<int, 3>;

struct Format {
    const char* name;
    FileMesh (*read)(std::span<const std::byte>);
    FileMesh (*readFile)(const std::wstring&);
    MeshBytes sample;
    std::size_t vertexSize, triangleSize;
};
void PrintTo(const Format& format, std::ostream* out) { *out << format.name; }

class SmallMeshes : public testing::TestWithParam<Format> {
protected:
    [[nodiscard]] std::string Refusal(const MeshBytes& bytes) const {
        try {
            (void)GetParam().read(bytes);
            return "accepted";
        } catch (const FileReadError& error) {
            return error.what();
        }
    }
    /// The sample with another index in its second triangle.
    [[nodiscard]] MeshBytes WithIndex(std::size_t corner, std::int32_t index) const {
        MeshBytes bytes = GetParam().sample;
        std::memcpy(&bytes[bytes.size() - 12 + 4 * corner], &index, sizeof index);
        return bytes;
    }
    [[nodiscard]] MeshBytes WithCounts(std::int32_t vertices, std::int32_t triangles) const {
        const MeshBytes& sample = GetParam().sample;
        return Counts(vertices, triangles) + MeshBytes(sample.begin() + 8, sample.end());
    }
};

constexpr const char* kLessThanHalf = "holds less than half of the mesh that it announces";

}  // namespace

TEST(ReadOis, ReadsPositionsAndTriangles) {
    const MeshBuffers mesh = ReadOis(Ois());
    EXPECT_THAT(Vertices(mesh), ElementsAre(Row{1, 2, 3}, Row{4, 5, 6}, Row{7, 8, 9}));
    EXPECT_THAT(Corners(mesh), ElementsAre(Corner{0, 1, 2}, Corner{2, 1, 0}));
}

TEST(ReadMsh, ReadsPositionsNormalsAndTriangles) {
    const MeshBuffers mesh = ReadMsh(Msh());
    EXPECT_THAT(Vertices(mesh), ElementsAre(Row{1, 2, 3, 0.1f, 0.2f, 0.3f}, Row{4, 5, 6, 0.4f, 0.5f, 0.6f},
                                            Row{7, 8, 9, 0.7f, 0.8f, 0.9f}));
    EXPECT_THAT(Corners(mesh), ElementsAre(Corner{0, 1, 2}, Corner{2, 1, 0}));
}

TEST(ReadOis, AShortFileKeepsTheLastValues) {
    // 60 bytes of records: a file of 48 ends after the first index of the first triangle
    const MeshBuffers inTriangle = ReadOis(Cut(Ois(), 8 + 36 + 4));
    EXPECT_THAT(Corners(inTriangle), ElementsAre(Corner{0, 0, 0}, Corner{0, 0, 0})) << "zero at first";
    const MeshBuffers inSecond = ReadOis(Cut(Ois(), 8 + 36 + 12 + 7));
    EXPECT_THAT(Corners(inSecond), ElementsAre(Corner{0, 1, 2}, Corner{2, 1, 2}));
    // 30 bytes are half; the third vertex has one whole coordinate and a half
    const MeshBuffers inVertex = ReadOis(Cut(Ois(), 8 + 30));
    EXPECT_THAT(Vertices(inVertex), ElementsAre(Row{1, 2, 3}, Row{4, 5, 6}, Row{7, 5, 6}));
    EXPECT_THAT(Corners(inVertex), ElementsAre(Corner{0, 0, 0}, Corner{0, 0, 0}));
}

TEST(ReadMsh, AShortFileKeepsTheLastValues) {
    // 120 bytes of records, of which 60 are half
    const MeshBuffers mesh = ReadMsh(Cut(Msh(), 8 + 48 + 15));
    EXPECT_THAT(Vertices(mesh), ElementsAre(Row{1, 2, 3, 0.1f, 0.2f, 0.3f}, Row{4, 5, 6, 0.4f, 0.5f, 0.6f},
                                            Row{7, 8, 9, 0.4f, 0.5f, 0.6f}));
    const MeshBuffers inTriangle = ReadMsh(Cut(Msh(), 8 + 72 + 24 + 16));
    EXPECT_THAT(Corners(inTriangle), ElementsAre(Corner{0, 1, 2}, Corner{2, 1, 2}));
}

TEST_P(SmallMeshes, HasZeroColorsAndGridIndices) {
    for (const Vertex& v : GetParam().read(GetParam().sample).m_vVertices) {
        EXPECT_EQ(v.color, 0u);
        EXPECT_EQ(v.gridIndex, 0u);
    }
}

TEST_P(SmallMeshes, RefusesLessThanHalfOfTheAnnouncedBytes) {
    const std::size_t records = GetParam().sample.size() - 8;
    EXPECT_EQ(Refusal(Cut(GetParam().sample, 8 + records / 2)), "accepted");
    EXPECT_EQ(Refusal(Cut(GetParam().sample, 8 + records / 2 - 1)), kLessThanHalf);
}

TEST_P(SmallMeshes, ChecksHugeCountsBeforeItAllocates) {
    EXPECT_EQ(Refusal(WithCounts(0x7FFFFFFF, 2)), kLessThanHalf);
    EXPECT_EQ(Refusal(WithCounts(3, 0x7FFFFFFF)), kLessThanHalf);
    EXPECT_EQ(Refusal(WithCounts(0x7FFFFFFF, 0x7FFFFFFF)), kLessThanHalf);
    EXPECT_EQ(Refusal(WithCounts(0x15555556, 0)), kLessThanHalf) << "multiplied by 12 or 24 it overflows 32 bits";
}

TEST_P(SmallMeshes, RefusesNegativeCounts) {
    EXPECT_EQ(Refusal(WithCounts(-1, 2)), "announces a negative count");
    EXPECT_EQ(Refusal(WithCounts(3, -1)), "announces a negative count");
    EXPECT_EQ(Refusal(WithCounts(-0x7FFFFFFF - 1, -0x7FFFFFFF - 1)), "announces a negative count");
}

TEST_P(SmallMeshes, RefusesAFileThatEndsBeforeItsCounts) {
    EXPECT_EQ(Refusal({}), "ends before its counts");
    EXPECT_EQ(Refusal(Cut(GetParam().sample, 7)), "ends before its counts");
}

TEST_P(SmallMeshes, CanBeWithoutTrianglesOrVertices) {
    EXPECT_EQ(GetParam().read(WithCounts(3, 0)).m_vVertices.size(), 3u);
    EXPECT_TRUE(GetParam().read(WithCounts(3, 0)).m_vTriangles.empty());
    EXPECT_TRUE(GetParam().read(Counts(0, 0)).m_vVertices.empty());
}

TEST_P(SmallMeshes, NamesTheFirstTriangleThatRefersToAMissingVertex) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
        EXPECT_EQ(Refusal(WithIndex(corner, 2)), "accepted");
        EXPECT_EQ(Refusal(WithIndex(corner, 3)), "triangle 1 refers to vertex 3, but there are 3");
        EXPECT_EQ(Refusal(WithIndex(corner, -1)), "triangle 1 refers to vertex -1, but there are 3");
    }
    EXPECT_EQ(Refusal(WithCounts(0, 2)), "triangle 0 refers to vertex " +
                                             std::string(GetParam().vertexSize == 12 ? "1065353216" : "1036831949") +
                                             ", but there are 0")
        << "the bits of 1.0 or 0.1, where vertices are missing";
}

TEST_P(SmallMeshes, ReadsMoreThanABlockOfRecords) {
    constexpr std::int32_t kCount = 30'000;
    MeshBytes bytes = Counts(kCount, kCount);
    for (std::int32_t i = 0; i < kCount; ++i) {
        bytes.insert(bytes.end(), GetParam().vertexSize, std::byte{0});
        const auto x = static_cast<float>(i);
        std::memcpy(&bytes[bytes.size() - GetParam().vertexSize], &x, sizeof x);
    }
    for (std::int32_t i = 0; i < kCount; ++i) {
        bytes.insert(bytes.end(), GetParam().triangleSize, std::byte{0});
        std::memcpy(&bytes[bytes.size() - 12], &i, sizeof i);
    }
    const MeshBuffers mesh = GetParam().read(bytes);
    ASSERT_EQ(mesh.m_vVertices.size(), std::size_t{kCount});
    ASSERT_EQ(mesh.m_vTriangles.size(), std::size_t{kCount});
    for (std::int32_t i = 0; i < kCount; ++i) {
        ASSERT_EQ(mesh.m_vVertices[static_cast<std::size_t>(i)].x, static_cast<float>(i));
        ASSERT_THAT(mesh.m_vTriangles[static_cast<std::size_t>(i)].v, ElementsAre(i, 0, 0));
    }
}

TEST_P(SmallMeshes, ReadsWhatIsInTheFileAndNothingElse) {
    const ScratchFolder folder;
    const std::string path = folder / "größe-模";
    WriteBytes(path, GetParam().sample);
    EXPECT_EQ(Vertices(GetParam().readFile(WidePath(path))), Vertices(GetParam().read(GetParam().sample)));
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THAT([&] { (void)GetParam().readFile(WidePath(pipe)); },
                ThrowsMessage<FileReadError>(StrEq("is not a regular file")));
    EXPECT_THAT([&] { (void)GetParam().readFile(WidePath(folder / "missing")); },
                ThrowsMessage<FileReadError>(testing::StartsWith("cannot be opened: ")));
}

INSTANTIATE_TEST_SUITE_P(Both, SmallMeshes,
                         testing::Values(Format{"Ois", ReadOis, ReadOisFile, Ois(), 12, 12},
                                         Format{"Msh", ReadMsh, ReadMshFile, Msh(), 24, 24}),
                         [](const auto& row) { return row.param.name; });
