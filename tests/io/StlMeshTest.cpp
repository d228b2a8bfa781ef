// Binary stl: records, files that are short, text or hostile, and the written bytes.
#include "io/StlMesh.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "KV_ScenePane/PathText.h"
#include "geometry/Mesh.h"
#include "io/MeshBytes.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StrEq;
using testing::ThrowsMessage;

namespace {

std::vector<Float3> Positions(const MeshBuffers& mesh) {
    std::vector<Float3> positions;
    for (const Vertex& v : mesh.m_vVertices) positions.push_back({v.x, v.y, v.z});
    return positions;
}

std::vector<std::array<int, 3>> Corners(const MeshBuffers& mesh) {
    std::vector<std::array<int, 3>> corners;
    for (const Triangle& t : mesh.m_vTriangles) corners.push_back({t.v[0], t.v[1], t.v[2]});
    return corners;
}

std::string Refusal(const MeshBytes& bytes) {
    try {
        (void)ReadStl(bytes);
        return "accepted";
    } catch (const FileReadError& error) {
        return error.what();
    }
}

MeshBytes Written(const Mesh& mesh) {
    MeshBytes bytes;
    WriteStl(mesh, [&](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); });
    return bytes;
}

Vertex At(float x, float y, float z) {
    Vertex vertex;
    vertex.x = x;
    vertex.y = y;
    vertex.z = z;
    return vertex;
}

constexpr Float3 kA{0, 0, 0}, kB{1, 0, 0}, kC{0, 1, 0}, kD{1, 1, 0};
constexpr const char* kLessThanHalf = "holds less than half of the mesh that it announces";

}  // namespace

TEST(ReadStl, WeldsTheCornersOfASharedEdge) {
    const MeshBuffers mesh = ReadStl(StlFile({{kA, kB, kC}, {kC, kB, kD}}));
    EXPECT_THAT(Positions(mesh), ElementsAre(kA, kB, kC, kD));
    EXPECT_THAT(Corners(mesh), ElementsAre(std::array{0, 1, 2}, std::array{2, 1, 3}));
    EXPECT_FALSE(mesh.HasColors());
}

TEST(ReadStl, DoesNotWeldCoordinatesThatDifferInTheLastBit) {
    const Float3 nearB{std::nextafter(1.0f, 2.0f), 0, 0}, nearC{0, std::nextafter(1.0f, 0.0f), 0};
    EXPECT_EQ(ReadStl(StlFile({{kA, kB, kC}, {nearC, nearB, kD}})).m_vVertices.size(), 6u);
}

TEST(ReadStl, WeldsBothZeros) {
    const MeshBuffers mesh = ReadStl(StlFile({{{{-0.0f, 0, 0}, kB, kC}}, {{{0, -0.0f, -0.0f}, kC, kB}}}));
    EXPECT_EQ(mesh.m_vVertices.size(), 3u);
    EXPECT_TRUE(std::signbit(mesh.m_vVertices[0].x));
    EXPECT_FALSE(std::signbit(mesh.m_vVertices[0].y));
}

TEST(ReadStl, KeepsNansApart) {
    const Float3 hole{NAN, 0, 0};
    const MeshBuffers mesh = ReadStl(StlFile({{hole, hole, kA}, {hole, kA, kA}}));
    EXPECT_THAT(Corners(mesh), ElementsAre(std::array{0, 1, 2}, std::array{3, 2, 2}));
    EXPECT_TRUE(std::isnan(mesh.m_vVertices[3].x));
}

TEST(ReadStl, HasZeroNormalsColorsAndGridIndices) {
    const MeshBuffers mesh = ReadStl(StlFile({{kA, kB, kC}}));
    for (const Vertex& v : mesh.m_vVertices) {
        EXPECT_THAT((std::array{v.nx, v.ny, v.nz}), ElementsAre(0, 0, 0)) << "the file's normals are never used";
        EXPECT_EQ(v.color, 0u);
        EXPECT_EQ(v.gridIndex, 0u);
    }
}

TEST(ReadStl, IgnoresTheHeader) {
    const MeshBytes file = StlHead(1, "solid of a file that is binary all the same") + StlRecord(kA, kB, kC);
    EXPECT_EQ(ReadStl(file).m_vTriangles.size(), 1u);
}

TEST(ReadStl, IgnoresBytesAfterTheLastTriangle) {
    EXPECT_EQ(ReadStl(StlFile({{kA, kB, kC}}) + MeshBytes(500, std::byte{0x77})).m_vTriangles.size(), 1u);
}

TEST(ReadStl, ReadsMoreTrianglesThanABlockHas) {
    // a strip of 20,000 triangles, each with one new corner
    std::vector<std::array<Float3, 3>> strip;
    const auto corner = [](int i) { return Float3{static_cast<float>(i), static_cast<float>(i % 2), 0}; };
    for (int i = 0; i < 20'000; ++i) strip.push_back({corner(i), corner(i + 1), corner(i + 2)});
    MeshBytes bytes = StlHead(20'000);
    for (const auto& t : strip) {
        const MeshBytes record = StlRecord(t[0], t[1], t[2]);
        bytes.insert(bytes.end(), record.begin(), record.end());
    }
    const MeshBuffers mesh = ReadStl(bytes);
    ASSERT_EQ(mesh.m_vTriangles.size(), 20'000u);
    ASSERT_EQ(mesh.m_vVertices.size(), 20'002u);
    for (int i = 0; i < 20'000; ++i) {
        const Triangle& t = mesh.m_vTriangles[static_cast<std::size_t>(i)];
        ASSERT_THAT(t.v, ElementsAre(i, i + 1, i + 2));
    }
    EXPECT_EQ(mesh.m_vVertices.back().x, 20'001.0f);
}

TEST(ReadStl, HasThreeVerticesPerTriangleOfATriangleSoup) {
    MeshBytes bytes = StlHead(5'000);
    for (int i = 0; i < 5'000; ++i) {
        const auto x = static_cast<float>(i);
        const MeshBytes record = StlRecord({x, 0, 1}, {x, 1, 2}, {x, 2, 3});
        bytes.insert(bytes.end(), record.begin(), record.end());
    }
    const MeshBuffers mesh = ReadStl(bytes);
    ASSERT_EQ(mesh.m_vVertices.size(), 15'000u);
    EXPECT_EQ(mesh.m_vVertices[14'999].x, 4'999.0f);
    EXPECT_EQ(mesh.m_vVertices[14'999].z, 3.0f);
}

// ---- short files

TEST(ReadStl, RepeatsTheLastCornerWhereAFileEndsBetweenTriangles) {
    const MeshBytes file = Cut(StlFile({{kA, kB, kC}, {kC, kB, kD}}), 84 + 50);
    const MeshBuffers mesh = ReadStl(file);
    EXPECT_THAT(Positions(mesh), ElementsAre(kA, kB, kC));
    EXPECT_THAT(Corners(mesh), ElementsAre(std::array{0, 1, 2}, std::array{2, 2, 2}));
}

TEST(ReadStl, ReadsTheWholeCoordinatesOfAnIncompleteTriangle) {
    const Float3 p{10, 11, 12}, q{13, 14, 15}, r{16, 17, 18};
    const MeshBytes file = StlFile({{kA, kB, kC}, {p, q, r}, {p, q, r}});
    struct {
        std::size_t size;  // of the second record
        std::vector<Float3> second, third;
    } const rows[] = {
        {12, {kC, kC, kC}, {kC, kC, kC}},
        {15, {kC, kC, kC}, {kC, kC, kC}},
        {16, {{10, 1, 0}, {10, 1, 0}, {10, 1, 0}}, {{10, 1, 0}, {10, 1, 0}, {10, 1, 0}}},
        {24 + 8, {p, {13, 14, 12}, {13, 14, 12}}, {{13, 14, 12}, {13, 14, 12}, {13, 14, 12}}},
        {24 + 11, {p, {13, 14, 12}, {13, 14, 12}}, {{13, 14, 12}, {13, 14, 12}, {13, 14, 12}}},
        {48, {p, q, r}, {r, r, r}},
        {49, {p, q, r}, {r, r, r}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        // The file needs half of all three triangles; the third one is missing completely.
        MeshBytes cut = Cut(file, 84 + 50 + row.size);
        if (row.size < 25) {
            cut = StlHead(2) + MeshBytes(cut.begin() + 84, cut.end());
        }
        const MeshBuffers mesh = ReadStl(cut);
        ASSERT_EQ(mesh.m_vTriangles.size(), row.size < 25 ? 2u : 3u);
        const auto positions = Positions(mesh);
        for (std::size_t i = 1; i < mesh.m_vTriangles.size(); ++i)
            for (std::size_t c = 0; c < 3; ++c) {
                const auto index = static_cast<std::size_t>(mesh.m_vTriangles[i].v[c]);
                EXPECT_EQ(positions[index], (i == 1 ? row.second : row.third)[c]) << "corner " << c << " of " << i;
            }
    }
}

TEST(ReadStl, HasZeroCoordinatesWhereNothingWasRead) {
    const MeshBuffers mesh = ReadStl(Cut(StlHead(1) + StlRecord({5, 6, 7}, kB, kC), 84 + 25));
    EXPECT_THAT(Positions(mesh), ElementsAre(Float3{5, 6, 7}));
    const MeshBuffers half = ReadStl(Cut(StlHead(1) + StlRecord({5, 6, 7}, kB, kC), 84 + 27));
    EXPECT_THAT(Corners(half), ElementsAre(std::array{0, 0, 0}));
}

TEST(ReadStl, RefusesLessThanHalfOfTheAnnouncedBytes) {
    const MeshBytes five = StlFile({{kA, kB, kC}, {kA, kB, kC}, {kA, kB, kC}, {kA, kB, kC}, {kA, kB, kC}});
    EXPECT_EQ(ReadStl(Cut(five, 84 + 125)).m_vTriangles.size(), 5u);
    EXPECT_EQ(Refusal(Cut(five, 84 + 124)), kLessThanHalf);
    EXPECT_EQ(Refusal(StlHead(1)), kLessThanHalf);
}

TEST(ReadStl, ChecksHugeCountsBeforeItAllocates) {
    for (const std::uint32_t count : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 85'899'346u /* x 50 wraps to 4 */})
        EXPECT_EQ(Refusal(StlHead(count) + StlRecord(kA, kB, kC)), kLessThanHalf) << count;
}

TEST(ReadStl, RefusesAFileWithoutTriangles) {
    EXPECT_EQ(Refusal(StlHead(0) + StlRecord(kA, kB, kC)), "holds no triangle");
    EXPECT_EQ(Refusal({}), "holds no triangle");
    EXPECT_EQ(Refusal(Cut(StlHead(1), 80)), "holds no triangle");
    EXPECT_EQ(Refusal(Cut(StlHead(1), 83)), "holds no triangle") << "half a count is no count";
}

TEST(ReadStl, MentionsTextInTheReasonOfAFileThatStartsLikeText) {
    const std::string text =
        "solid part\n facet normal 0 0 1\n  outer loop\n   vertex 0 0 0\n   vertex 1 0 0\n   vertex "
        "0 1 0\n  endloop\n endfacet\nendsolid part\n";
    EXPECT_EQ(Refusal(Padded(text, text.size())),
              std::string(kLessThanHalf) + "; it starts with \"solid\": stl as text is not read");
    EXPECT_EQ(Refusal(Padded("solid", 5)), "holds no triangle; it starts with \"solid\": stl as text is not read");
    EXPECT_THAT(Refusal(StlHead(9, "solids")), HasSubstr("text is not read"));
    EXPECT_THAT(Refusal(StlHead(9, " \tsolid")), HasSubstr("text is not read"));
    EXPECT_THAT(Refusal(StlHead(9, "SOLID PART")), HasSubstr("text is not read"));
    EXPECT_THAT(Refusal(StlHead(9, "Solid")), HasSubstr("text is not read"));
    EXPECT_THAT(Refusal(StlHead(9, "a solid")), Not(HasSubstr("text")));
    EXPECT_THAT(Refusal(StlHead(9, std::string(76, ' ') + "soli")), Not(HasSubstr("text")))
        << "the count is not part of the text";
}

// ---- files

TEST(ReadStlFile, ReadsWhatIsInTheFile) {
    const ScratchFolder folder;
    const std::string path = folder / "größe-模.stl";
    WriteBytes(path, StlFile({{kA, kB, kC}, {kC, kB, kD}}));
    EXPECT_THAT(Positions(ReadStlFile(WidePath(path))), ElementsAre(kA, kB, kC, kD));
}

TEST(ReadStlFile, RefusesSpecialFilesWithoutWaiting) {
    const ScratchFolder folder;
    const std::string pipe = folder / "pipe.stl";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, folder / "", std::string("/dev/zero")})
        EXPECT_THAT([&] { (void)ReadStlFile(WidePath(path)); },
                    ThrowsMessage<FileReadError>(StrEq("is not a regular file")));
    EXPECT_THAT([&] { (void)ReadStlFile(WidePath(folder / "missing")); },
                ThrowsMessage<FileReadError>(testing::StartsWith("cannot be opened: ")));
}

TEST(ReadStlFile, ReportsAFileThatCannotBeRead) {
    // The memory of this process as a file: regular, of size zero, and nothing is mapped at its start.
    EXPECT_THAT([&] { (void)ReadStlFile(L"/proc/self/mem"); },
                ThrowsMessage<FileReadError>(StrEq("cannot be read: Input/output error")));
}

TEST(ReadStlFile, RefusesAHugeCountInASparseFile) {
    // A sparse file of 60 GB, which needs no disk space: one triangle more than the limit.
    const ScratchFolder folder;
    const std::string path = folder / "holes.stl";
    WriteBytes(path, StlHead(0x80000000u));
    std::error_code error;
    std::filesystem::resize_file(path, 60'000'000'000, error);
    if (error) GTEST_SKIP() << "the file system has no files of this size: " << error.message();
    EXPECT_THAT([&] { (void)ReadStlFile(WidePath(path)); },
                ThrowsMessage<FileReadError>(StrEq("has more triangles than can be counted")));
}

// ---- writing

TEST(WriteStl, WritesTheHeaderThenNormalAndCornersOfEachTriangle) {
    const Mesh mesh({At(0, 0, 0), At(2, 0, 0), At(0, 3, 0), At(0, 0, 4)}, {{{0, 1, 2}}, {{0, 2, 3}}}, L"", false);
    const MeshBytes expected =
        Padded("Generated by Kavelin Messtechnik", 80) + Packed(std::uint32_t{2}) +
        Packed(Float3{0, 0, 1}, Float3{0, 0, 0}, Float3{2, 0, 0}, Float3{0, 3, 0}, std::uint16_t{0}) +
        Packed(Float3{1, 0, 0}, Float3{0, 0, 0}, Float3{0, 3, 0}, Float3{0, 0, 4}, std::uint16_t{0});
    EXPECT_EQ(Written(mesh), expected);
}

TEST(WriteStl, ComputesTheNormalFromThePositions) {
    Mesh mesh({At(0, 0, 0), At(0, 0, 5), At(0, 5, 0)}, {{{0, 1, 2}}}, L"", false);
    for (Vertex& vertex : mesh.m_vVertices) vertex.nz = 1;
    const MeshBytes bytes = Written(mesh);
    Float3 normal;
    std::memcpy(&normal, &bytes[84], sizeof normal);
    EXPECT_EQ(normal, (Float3{-1, 0, 0}));
}

TEST(WriteStl, GivesADegenerateTriangleAZeroNormal) {
    const MeshBytes bytes = Written(Mesh({At(1, 1, 1), At(2, 2, 2)}, {{{0, 1, 1}}}, L"", false));
    ASSERT_EQ(bytes.size(), 134u);
    Float3 normal;
    std::memcpy(&normal, &bytes[84], sizeof normal);
    EXPECT_EQ(normal, (Float3{0, 0, 0}));
}

TEST(WriteStl, WritesAHeaderWithACountOfZeroForAnEmptyMesh) {
    EXPECT_EQ(Written(Mesh(L"", false)), Padded("Generated by Kavelin Messtechnik", 84));
}

TEST(WriteStl, ThrowsForATriangleWithAMissingVertex) {
    for (const std::int32_t index : {3, -1, std::numeric_limits<std::int32_t>::min()})
        for (int corner = 0; corner < 3; ++corner) {
            Mesh mesh({At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, {{{0, 1, 2}}}, L"", false);
            mesh.m_vTriangles[0].v[corner] = index;
            EXPECT_THAT([&] { (void)Written(mesh); },
                        ThrowsMessage<std::out_of_range>(StrEq("invalid vector subscript")))
                << index;
        }
}

TEST(WriteStl, WritesTrianglesThatAreReadBackWelded) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int i = 0; i < 12'000; ++i) {  // more than one block; every vertex exists twice
        const auto x = static_cast<float>(i / 2) * 0.1f;
        vertices.push_back(At(x, x * x, static_cast<float>(i / 2 % 3)));
        if (i >= 2) triangles.push_back({{i - 2, i - 1, i}});
    }
    const Mesh mesh(std::vector<Vertex>(vertices), std::vector<Triangle>(triangles), L"", false);
    const MeshBuffers read = ReadStl(Written(mesh));
    ASSERT_EQ(read.m_vTriangles.size(), triangles.size());
    EXPECT_EQ(read.m_vVertices.size(), 6'000u);
    for (std::size_t i = 0; i < triangles.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            const Vertex& was = vertices[static_cast<std::size_t>(triangles[i].v[c])];
            const Vertex& is = read.m_vVertices[static_cast<std::size_t>(read.m_vTriangles[i].v[c])];
            ASSERT_TRUE(is.x == was.x && is.y == was.y && is.z == was.z) << "triangle " << i;
        }
}
