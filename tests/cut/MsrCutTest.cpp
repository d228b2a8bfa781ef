// The cuts of one object in its pcm file: which pixels change their class, and that nothing else changes.
#include "cut/MsrCut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "cut/CutScan.h"
#include "geometry/GridTriangulation.h"
#include "io/MeasurementFile.h"

using KV_ScenePane::CutFileNotRead;
using KV_ScenePane::CutFileNotWritten;
using KV_ScenePane::CutWritten;
using KV_ScenePane::WidePath;

namespace {

constexpr int kWidth = 7, kHeight = 5;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

bool IsInMiddle(int x, int y) { return x >= 2 && x <= 4 && y >= 1 && y <= 2; }

template <class T>
bool HasBitsOf(const T* got, const std::vector<T>& expected) {
    return got != nullptr && std::memcmp(got, expected.data(), expected.size() * sizeof(T)) == 0;
}

class WriteCut : public testing::Test {
protected:
    /// Writes the scan and then the cuts of an object from it.
    MsrCutResult Write(std::vector<std::shared_ptr<const ACAD::CutMask>> masks,
                       const std::optional<CutPlane>& plane = std::nullopt, float limit = 0.0f) {
        scan.WritePcm(file);
        return WriteCutToMsr(*ObjectOf(file, std::move(masks)), limit, plane);
    }
    std::uint8_t& ClassAt(int x, int y) { return scan.classification[static_cast<std::size_t>(y * kWidth + x)]; }

    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    ScanSample scan = FlatCutScan(kWidth, kHeight);
    std::shared_ptr<const ACAD::CutMask> middle = MaskOf(scan, IsInMiddle);
};

}  // namespace

TEST(MeasurementVertices, AreOnePerValidPixelInRowOrder) {
    MeasurementData data;
    data.m_iWidth = 3;
    data.m_iHeight = 2;
    data.m_vMask = {0, 1, 0, 0, 0, 7};
    data.m_iMasked = 2;
    data.m_vXYZ.assign(18, 1.0f);
    data.m_fTrafo = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const std::vector<Vertex> vertices = BuildMeasurementVertices(data);
    std::vector<std::uint32_t> indices;
    for (const Vertex& vertex : vertices) {
        indices.push_back(vertex.gridIndex);
        EXPECT_EQ(vertex.nx, 0.0f);
        EXPECT_EQ(vertex.ny, 0.0f);
        EXPECT_EQ(vertex.nz, 0.0f);
        EXPECT_EQ(vertex.color, 0u);
    }
    EXPECT_THAT(indices, testing::ElementsAre(0u, 2u, 0x10000u, 0x10001u));
    EXPECT_EQ(vertices.capacity(), vertices.size());
}

TEST(MeasurementVertices, AreEmptyForAMeasurementWithoutPixels) { EXPECT_TRUE(BuildMeasurementVertices({}).empty()); }

// The last row of the largest grid: its index is still not negative.
TEST(MeasurementVertices, HaveIndicesThatAreNotNegativeInTheLargestGrid) {
    MeasurementData data;
    data.m_iWidth = 1;
    data.m_iHeight = 32767;
    data.m_vMask.resize(32767);
    data.m_vXYZ.resize(std::size_t{3} * 32767);
    const std::vector<Vertex> vertices = BuildMeasurementVertices(data);
    ASSERT_EQ(vertices.size(), 32767u);
    EXPECT_EQ(vertices.back().gridIndex, 32766u << 16);
    EXPECT_GE(static_cast<std::int32_t>(vertices.back().gridIndex), 0);
}

// Slanted, scaled and moved: positions to the bit as the triangulation computes them.
TEST(MeasurementVertices, AreWhereTheImportPutsThem) {
    constexpr int kSide = 12;
    ScanSample scan(kSide, kSide, 731.7f);
    for (std::size_t i = 0; i < scan.points.size(); ++i) scan.points[i] += std::sin(static_cast<float>(i)) * 31.3f;
    scan.trafo = {0.98f, -0.13f, 0.11f, 1234.5f, 0.14f, 1.02f, -0.07f, -99.9f, -0.1f, 0.09f, 0.97f, 3.3f, 0, 0, 0, 1};
    const ScratchFolder folder;
    scan.WritePcm(folder / "a.pcm");
    const MeasurementData data = LoadMeasurementFile(WidePath(folder / "a.pcm").c_str(), 0.0f, nullptr);
    const auto mesh =
        CreateInternalMesh(L"", kSide, kSide, data.Points(), data.m_vMask.data(), data.Trafo(), 0, nullptr, false, 1);
    const std::vector<Vertex> vertices = BuildMeasurementVertices(data);
    ASSERT_EQ(vertices.size(), std::size_t{kSide * kSide});
    ASSERT_EQ(mesh->GetVertexCount(), vertices.size());
    for (const Vertex& imported : mesh->m_vVertices) {
        const std::size_t pixel = (imported.gridIndex >> 16) * kSide + (imported.gridIndex & 0xFFFF);
        EXPECT_EQ(vertices[pixel].gridIndex, imported.gridIndex);
        EXPECT_EQ(std::memcmp(&vertices[pixel], &imported, 3 * sizeof(float)), 0) << "pixel " << pixel;
    }
}

TEST_F(WriteCut, GivesTheClassOfACutToThePixelsInTheMaskAlone) {
    for (auto& value : scan.classification) value = 10;
    EXPECT_EQ(Write({middle}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, IsInMiddle));
}

TEST_F(WriteCut, KeepsTheClassesOfPixelsThatAreNotValid) {
    ClassAt(2, 1) = 239;
    ClassAt(3, 1) = 240;
    ClassAt(4, 1) = 245;
    ClassAt(2, 2) = 255;
    EXPECT_EQ(Write({middle}).outcome, CutWritten);
    std::vector<std::uint8_t> expected = ClassesAfterCut(scan, IsInMiddle);
    for (const auto& [x, y, value] : {std::tuple{3, 1, 240}, {4, 1, 245}, {2, 2, 255}})
        expected[static_cast<std::size_t>(y * kWidth + x)] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(ClassesIn(file), expected);
}

TEST_F(WriteCut, ChangesNothingButTheClasses) {
    scan.colors.resize(scan.confidence.size());
    for (std::size_t i = 0; i < scan.confidence.size(); ++i) {
        scan.confidence[i] = 0.01f * static_cast<float>(i);
        scan.colors[i] = static_cast<std::uint32_t>(i * 0x01020304u);
    }
    scan.points[0] = kNaN;
    const MsrStorage::PcmForeignSection note{0x65746F6E, 3, 4, std::vector<std::byte>(5, std::byte{6})};
    EXPECT_EQ(Write({middle}).outcome, CutWritten);  // writes the scan without the section, then cuts
    MsrStorage::PcmMeasurement measurement = MsrStorage::ReadPcmFile(file);
    measurement.m_vForeign = {note};
    MsrStorage::WritePcmFile(file, ViewOf(measurement));
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(file, {MaskOf(scan, [](int x, int) { return x == 0; })}), 0.0f, {}).outcome,
              CutWritten);

    const MsrStorage::PcmMeasurement after = MsrStorage::ReadPcmFile(file);
    EXPECT_EQ(after.m_iWidth, kWidth);
    EXPECT_EQ(after.m_iHeight, kHeight);
    EXPECT_TRUE(HasBitsOf(after.m_pPoints.get(), scan.points));
    EXPECT_TRUE(HasBitsOf(after.m_pConfidence.get(), scan.confidence));
    EXPECT_TRUE(HasBitsOf(after.m_pColors.get(), scan.colors));
    EXPECT_EQ(after.m_fTrafo, scan.trafo);
    ASSERT_EQ(after.m_vForeign.size(), 1u);
    EXPECT_EQ(after.m_vForeign[0].m_vBytes, note.m_vBytes);
}

TEST_F(WriteCut, RemovesPixelsBelowTheConfidenceLimitThoughNoCutTouchesThem) {
    scan.confidence[0] = 0.49f;
    scan.confidence[1] = 0.5f;  // at the limit: valid
    scan.confidence[2] = kNaN;  // no number is not below the limit
    ClassAt(3, 0) = 245;
    scan.confidence[3] = 0.1f;
    EXPECT_EQ(Write({middle}, {}, 0.5f).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file),
              ClassesAfterCut(scan, [](int x, int y) { return IsInMiddle(x, y) || (x == 0 && y == 0); }));
}

TEST_F(WriteCut, RemovesWhatIsBelowThePlane) {
    // World y of row r is 3.5 - r: rows 0 to 4 are at 3.5 to -0.5.
    EXPECT_EQ(Write({}, CutPlane{0, 1, 0, -1.25f}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, [](int, int y) { return y > 2; }));
}

TEST_F(WriteCut, KeepsWhatIsInThePlane) {
    EXPECT_EQ(Write({}, CutPlane{0, 0, 1, 0}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), scan.classification);
    EXPECT_EQ(Write({}, CutPlane{0, 0, 1, -1e-30f}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, [](int, int) { return true; }));
}

TEST_F(WriteCut, AddsUpThePlaneAndAllMasks) {
    const auto left = MaskOf(scan, [](int x, int) { return x == 0; });
    // Seen from the other side: x of the world runs to the left.
    auto mirrored = MaskOf(scan, [](int x, int) { return x == 0; });
    mirrored->m_dModelView[0] = -1.0;
    mirrored->m_dModelView[12] = kWidth;
    EXPECT_EQ(Write({left, mirrored, middle}, CutPlane{0, 1, 0, 0}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, [](int x, int y) {
                  return x == 0 || x == kWidth - 1 || IsInMiddle(x, y) || y == 4;
              }));
}

TEST_F(WriteCut, CutsOutsideAndWhatIsVisible) {
    const auto outside = MaskOf(ACAD::CutKindOutside, kWidth, kHeight, [](int x, int) { return x < 6; });
    auto visible = MaskOf(ACAD::CutKindVisibleInside, kWidth, kHeight, IsInMiddle);
    visible->m_vDepth.assign(kWidth * kHeight, 0.5f);
    // Depths are stored from the bottom row on. Pixel (3, 1) is hidden by a nearer surface.
    visible->m_vDepth[(kHeight - 1 - 1) * kWidth + 3] = 0.4f;
    EXPECT_EQ(Write({outside, visible}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file),
              ClassesAfterCut(scan, [](int x, int y) { return x == 6 || (IsInMiddle(x, y) && !(x == 3 && y == 1)); }));
}

TEST_F(WriteCut, UsesTheTransformOfTheFileAndNotThatOfTheObject) {
    scan.trafo[3] = 1000.0f;  // one pixel to the right
    scan.WritePcm(file);
    const auto mesh = ObjectOf(file, {middle});
    mesh->m_Trafo.m_dTranslation[0] = 100.0;
    EXPECT_EQ(WriteCutToMsr(*mesh, 0.0f, {}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, [](int x, int y) { return IsInMiddle(x + 1, y); }));
}

// The object may be thinned, or cut already: every pixel of the file is tested.
TEST_F(WriteCut, DoesNotDependOnTheVerticesOfTheObject) {
    scan.WritePcm(file);
    const auto mesh = ObjectOf(file, {middle});
    mesh->m_vVertices.resize(1);
    EXPECT_EQ(WriteCutToMsr(*mesh, 0.0f, {}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, IsInMiddle));
}

TEST_F(WriteCut, GivesTheSameFileWhenItIsRepeated) {
    EXPECT_EQ(Write({middle}, CutPlane{0, 1, 0, 0}).outcome, CutWritten);
    const auto first = ReadBytes(file);
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, CutPlane{0, 1, 0, 0}).outcome, CutWritten);
    EXPECT_EQ(ReadBytes(file), first);
}

TEST_F(WriteCut, WritesAFileInWhichNothingIsLeft) {
    EXPECT_EQ(Write({MaskOf(scan, [](int, int) { return true; })}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), std::vector<std::uint8_t>(kWidth * kHeight, 250));
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, {}).outcome, CutWritten);
}

TEST_F(WriteCut, KeepsPixelsWhosePositionIsNotANumber) {
    scan.SetPoint(2 * kWidth + 3, {kNaN, kNaN, kNaN});
    EXPECT_EQ(Write({middle}, CutPlane{0, 1, 0, 0}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file),
              ClassesAfterCut(scan, [](int x, int y) { return (IsInMiddle(x, y) || y == 4) && !(x == 3 && y == 2); }));
}

// ---- blocks of rows

namespace {

/// The classes after a cut, by all vertices of the grid at once.
std::vector<std::uint8_t> PlainClasses(const std::string& file, const Mesh& mesh, float limit,
                                       const std::optional<CutPlane>& plane) {
    const MeasurementData data = LoadMeasurementFile(WidePath(file).c_str(), limit, nullptr);
    std::vector<Vertex> vertices = BuildMeasurementVertices(data);
    for (Vertex& vertex : vertices) {
        const CutPlane p = plane.value_or(CutPlane{});
        if (p[0] * vertex.x + p[1] * vertex.y + p[2] * vertex.z + p[3] < 0) vertex.gridIndex = 0xFFFFFFFF;
    }
    for (const auto& mask : mesh.m_vpCutMasks) mask->InvalidateVertices(vertices);
    const std::vector<std::uint8_t> before = ClassesIn(file);
    std::vector<std::uint8_t> after = before;
    for (std::uint8_t& value : after) value = value < 240 ? 250 : value;
    for (const Vertex& vertex : vertices) {
        if (vertex.gridIndex == 0xFFFFFFFF) continue;
        const std::size_t pixel =
            static_cast<std::size_t>(vertex.gridIndex >> 16) * static_cast<std::size_t>(data.m_iWidth) +
            (vertex.gridIndex & 0xFFFF);
        after[pixel] = before[pixel];
    }
    return after;
}

/// Points of a few coordinates, 0 among them, in the region of a mask of 40 x 30 pixels and around it.
ScanSample RandomScan(std::mt19937& random, int width, int height) {
    ScanSample scan(width, height, 1000.0f);
    for (float& value : scan.points) value = static_cast<float>(random() % 60) * 1000.0f - 10000.0f;
    for (std::size_t i = 2; i < scan.points.size(); i += 3)
        scan.points[i] = random() % 2 == 0 ? 0.0f : static_cast<float>(random() % 3) * 1000.0f;
    for (std::uint8_t& value : scan.classification) value = static_cast<std::uint8_t>(random() % 4 == 0 ? 245 : 7);
    for (float& value : scan.confidence) value = static_cast<float>(random() % 10) * 0.1f;
    return scan;
}

}  // namespace

// Also with a camera in which a point has no projection, so that the one before it counts: here where z is 0, or 1.
TEST_F(WriteCut, GivesTheClassesOfAllVerticesAtOnce) {
    std::mt19937 random(11);
    for (int round = 0; round < 12; ++round) {
        scan = RandomScan(random, 90 + round * 37, 240 - round * 11);
        std::vector<std::shared_ptr<const ACAD::CutMask>> masks;
        for (std::uint32_t kind = 0; kind < 3; ++kind) {
            auto mask = MaskOf(kind, 40, 30, [&](int, int) { return random() % 8 == 0; });
            if (kind == ACAD::CutKindVisibleInside) mask->m_vDepth.assign(40 * 30, 0.75f);
            if (kind == ACAD::CutKindOutside) mask = MaskOf(kind, 40, 30, [](int, int) { return true; });
            if (round % 3 == 1 && kind == 0) {  // w = z
                mask->m_dProjection[11] = 1.0;
                mask->m_dProjection[15] = 0.0;
            }
            if (round % 3 == 2 && kind == 1) {  // w = z - 1
                mask->m_dModelView[11] = 1.0;
                mask->m_dModelView[15] = -1.0;
            }
            masks.push_back(mask);
        }
        const float limit = round % 2 == 0 ? 0.0f : 0.25f;
        const std::optional<CutPlane> plane =
            round % 4 == 0 ? std::optional(CutPlane{0.6f, 0.8f, 0, -3}) : std::nullopt;
        scan.WritePcm(file);
        const auto mesh = ObjectOf(file, masks);
        const std::vector<std::uint8_t> expected = PlainClasses(file, *mesh, limit, plane);
        EXPECT_GT(std::ranges::count(expected, 250), 100);
        EXPECT_GT(std::ranges::count(expected, 7), 100);
        EXPECT_EQ(WriteCutToMsr(*mesh, limit, plane).outcome, CutWritten);
        EXPECT_EQ(ClassesIn(file), expected) << "round " << round;
    }
}

// A scan from rows far above to rows far below the masks: blocks beside a mask are not tested, those at its border are.
TEST_F(WriteCut, GivesTheClassesOfAllVerticesAtOnceAroundSmallMasks) {
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        const int width = 900 + round, height = 60;  // nine rows per block
        scan = FlatCutScan(width, height);
        std::vector<std::shared_ptr<const ACAD::CutMask>> masks;
        for (const std::uint32_t kind : {0u, 2u, 0u}) {
            const int left = static_cast<int>(random() % 800), top = static_cast<int>(random() % 60);
            auto mask = MaskOf(kind, width, height,
                               [&](int x, int y) { return x >= left && x < left + 40 && y >= top && y < top + 5; });
            // Seen from the side, from above, and with a window that does not start at 0.
            if (round % 3 == 1)
                std::swap(mask->m_dModelView[0], mask->m_dModelView[4]), mask->m_dModelView[1] = 1.0,
                                                                         mask->m_dModelView[5] = 0.0;
            if (round % 5 == 2) mask->m_dProjection[5] *= -1.0, mask->m_dProjection[13] *= -1.0;
            if (round % 7 == 3) mask->m_nViewport[0] = 11, mask->m_nViewport[1] = -7;
            if (round % 4 == 3) mask->m_dProjection[15] = -2.0;
            if (kind == ACAD::CutKindVisibleInside)
                mask->m_vDepth.assign(static_cast<std::size_t>(width * height), 0.75f);
            masks.push_back(mask);
        }
        scan.SetPoint(static_cast<std::size_t>(random()) % scan.confidence.size(), {kNaN, 0, 0});
        if (round == 9) scan.SetPoint(777, {std::numeric_limits<float>::infinity(), 0, 0});
        scan.WritePcm(file);
        const auto mesh = ObjectOf(file, masks);
        const std::vector<std::uint8_t> expected = PlainClasses(file, *mesh, 0.0f, {});
        EXPECT_EQ(WriteCutToMsr(*mesh, 0.0f, {}).outcome, CutWritten);
        EXPECT_EQ(ClassesIn(file), expected) << "round " << round;
    }
}

// ---- files that changed between import and save

TEST_F(WriteCut, UsesTheSizeThatTheGridHasNow) {
    scan = FlatCutScan(kWidth + 3, kHeight);
    EXPECT_EQ(Write({middle}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, IsInMiddle));
}

TEST_F(WriteCut, LeavesAFileThatIsCutShortAtAnyByte) {
    scan.WritePcm(file);
    const auto whole = ReadBytes(file);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<std::byte> part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        WriteBytes(file, part);
        const MsrCutResult result = WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, {});
        ASSERT_EQ(result.outcome, CutFileNotRead) << size;
        ASSERT_FALSE(result.reason.empty()) << size;
        ASSERT_EQ(ReadBytes(file), part);
    }
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(WriteCut, LeavesAFileWithOneDamagedByte) {
    scan.WritePcm(file);
    const auto whole = ReadBytes(file);
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        auto damaged = whole;
        damaged[at] ^= std::byte{0x10};
        WriteBytes(file, damaged);
        ASSERT_EQ(WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, {}).outcome, CutFileNotRead) << at;
        ASSERT_EQ(ReadBytes(file), damaged);
    }
}

TEST_F(WriteCut, SaysWhyAFileIsNotRead) {
    EXPECT_THAT(WriteCutToMsr(*ObjectOf(folder / "missing.pcm", {middle}), 0.0f, {}).reason,
                testing::HasSubstr("No such file"));
    std::filesystem::create_directory(folder / "folder.pcm");
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(folder / "folder.pcm", {middle}), 0.0f, {}).reason, "is not a regular file");
    ASSERT_EQ(mkfifo((folder / "pipe.pcm").c_str(), 0600), 0);
    const MsrCutResult pipe = WriteCutToMsr(*ObjectOf(folder / "pipe.pcm", {middle}), 0.0f, {});
    EXPECT_EQ(pipe.outcome, CutFileNotRead);
    EXPECT_EQ(pipe.reason, "is not a regular file");
    EXPECT_EQ(WriteCutToMsr(*ObjectOf("/dev/null", {middle}), 0.0f, {}).outcome, CutFileNotRead);
    EXPECT_EQ(WriteCutToMsr(*ObjectOf("", {middle}), 0.0f, {}).outcome, CutFileNotRead);
}

TEST_F(WriteCut, FollowsALinkAndKeepsIt) {
    scan.WritePcm(folder / "target.pcm");
    std::filesystem::create_symlink("target.pcm", file);
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, {}).outcome, CutWritten);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(ClassesIn(folder / "target.pcm"), ClassesAfterCut(scan, IsInMiddle));
}

TEST_F(WriteCut, KeepsTheModeOfTheFile) {
    scan.WritePcm(file);
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    EXPECT_EQ(WriteCutToMsr(*ObjectOf(file, {middle}), 0.0f, {}).outcome, CutWritten);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0640});
}
