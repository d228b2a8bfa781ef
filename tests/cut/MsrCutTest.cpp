// The cuts of one object in its pcm file: which pixels change their class, and that nothing else changes.
#include "cut/MsrCut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstring>
#include <limits>

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

TEST_F(WriteCut, RemovesWhatIsBelowThePlaneAndKeepsWhatIsOnIt) {
    // World y of row r is 3.5 - r: rows 0 to 4 are at 3.5 to -0.5. The plane is at the height of row 2.
    EXPECT_EQ(Write({}, CutPlane{0, 1, 0, -1.5f}).outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ClassesAfterCut(scan, [](int, int y) { return y > 2; }));
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
