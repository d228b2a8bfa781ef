// The files byte by byte, parsed independently of the writer.
#include "simulate-scans/ScanFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "MSRDLL/PcmFile.h"
#include "support/ScratchFolder.h"

namespace simulate {
namespace {

std::vector<unsigned char> BytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int Word16(const std::vector<unsigned char>& bytes, std::size_t at) { return bytes[at] | (bytes[at + 1] << 8); }

float FloatAt(const std::vector<unsigned char>& bytes, std::size_t at) {
    const std::uint32_t bits =
        bytes[at] | (bytes[at + 1] << 8) | (bytes[at + 2] << 16) | (static_cast<std::uint32_t>(bytes[at + 3]) << 24);
    float value = 0;
    std::memcpy(&value, &bits, 4);
    return value;
}

/// 3 x 2 pixels. The first and the last pixel of the second row were not measured.
ScanGrid SmallGrid() {
    ScanGrid grid;
    grid.width = 3;
    grid.height = 2;
    grid.toWorld = {0, -1, 0, 10, 1, 0, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1};  // a quarter turn about z, then a shift
    grid.points = {1, 2, -3, 4, 5, -6, 7, 8, -9, 0, 0, 0, 0.5f, 0.25f, -0.125f, 0, 0, 0};
    grid.confidence = {1, 0.75f, 0.5f, -1, 0.25f, -1};
    grid.classes = {0, 10, 20, 250, 30, 250};
    return grid;
}

TEST(WriteScan, PaxHasSizePointsConfidenceAndTransformInMillimetres) {
    const ScratchFolder folder;
    WriteScan(folder.Path() / "a.pax", FileFormat::Pax, SmallGrid());
    const auto bytes = BytesOf(folder.Path() / "a.pax");
    ASSERT_EQ(bytes.size(), 4u + 6 * 12 + 6 * 4 + 64);
    EXPECT_EQ(Word16(bytes, 0), 3);
    EXPECT_EQ(Word16(bytes, 2), 2);
    EXPECT_EQ(FloatAt(bytes, 4), 1);
    EXPECT_EQ(FloatAt(bytes, 12), -3);
    EXPECT_EQ(FloatAt(bytes, 4 + 4 * 12 + 8), -0.125f);
    EXPECT_EQ(FloatAt(bytes, 4 + 3 * 12), 0);
    EXPECT_EQ(FloatAt(bytes, 76), 1);
    EXPECT_EQ(FloatAt(bytes, 76 + 3 * 4), -1);
    EXPECT_EQ(FloatAt(bytes, 100), 0);
    EXPECT_EQ(FloatAt(bytes, 100 + 4), -1);
    EXPECT_EQ(FloatAt(bytes, 100 + 3 * 4), 10);
    EXPECT_EQ(FloatAt(bytes, 100 + 7 * 4), 20);
    EXPECT_EQ(FloatAt(bytes, 100 + 15 * 4), 1);
}

TEST(WriteScan, XdtHasSizeAndWorldPointsInMicrometres) {
    const ScratchFolder folder;
    WriteScan(folder.Path() / "a.xdt", FileFormat::Xdt, SmallGrid());
    const auto bytes = BytesOf(folder.Path() / "a.xdt");
    ASSERT_EQ(bytes.size(), 4u + 6 * 12);
    EXPECT_EQ(Word16(bytes, 0), 3);
    EXPECT_EQ(Word16(bytes, 2), 2);
    EXPECT_EQ(FloatAt(bytes, 4), 8'000);    // -2 + 10 mm
    EXPECT_EQ(FloatAt(bytes, 8), 21'000);   // 1 + 20
    EXPECT_EQ(FloatAt(bytes, 12), 27'000);  // -3 + 30
    for (std::size_t coordinate = 0; coordinate < 3; ++coordinate) {
        EXPECT_EQ(FloatAt(bytes, 4 + 3 * 12 + 4 * coordinate), -1);
        EXPECT_EQ(FloatAt(bytes, 4 + 5 * 12 + 4 * coordinate), -1);
    }
}

TEST(WriteScan, AMeasuredXdtPointIsNeverThreeEqualNegatives) {
    ScanGrid grid = SmallGrid();
    grid.toWorld = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 3; ++i) grid.points[i] = -2;
    const ScratchFolder folder;
    WriteScan(folder.Path() / "a.xdt", FileFormat::Xdt, std::move(grid));
    const auto bytes = BytesOf(folder.Path() / "a.xdt");
    EXPECT_EQ(FloatAt(bytes, 4), -2000);
    EXPECT_EQ(FloatAt(bytes, 8), -2000);
    EXPECT_EQ(FloatAt(bytes, 12), std::nextafter(-2000.0f, 0.0f));
}

TEST(AvoidXdtHole, DoesNotChangeOtherPoints) {
    for (const Vec3 point : {Vec3{0, 0, 0}, Vec3{1, 1, 1}, Vec3{-1, -1, -2}, Vec3{-2, -1, -1}, Vec3{-1, -2, -1}})
        EXPECT_EQ(AvoidXdtHole(point), point);
}

TEST(WriteScan, PcmHasAllArraysInMicrometres) {
    const ScratchFolder folder;
    const ScanGrid original = SmallGrid();
    WriteScan(folder.Path() / "a.pcm", FileFormat::Pcm, SmallGrid());
    const auto read = MsrStorage::ReadPcmFile((folder.Path() / "a.pcm").string());
    ASSERT_EQ(read.m_iWidth, 3);
    ASSERT_EQ(read.m_iHeight, 2);
    for (std::size_t i = 0; i < 18; ++i) EXPECT_EQ(read.m_pPoints[i], original.points[i] * 1000) << i;
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(read.m_pConfidence[i], original.confidence[i]);
        EXPECT_EQ(read.m_pClassification[i], original.classes[i]);
    }
    EXPECT_EQ(read.m_pColors, nullptr);
    EXPECT_EQ(read.m_fTrafo, (Transform{0, -1, 0, 10'000, 1, 0, 0, 20'000, 0, 0, 1, 30'000, 0, 0, 0, 1}));
}

TEST(WriteScan, PcmHasColorsWhereTheScanHasColors) {
    ScanGrid grid = SmallGrid();
    grid.colors = {0xFF010203, 0xFF040506, 0xFF070809, 0, 0xFF0A0B0C, 0};
    const auto colors = grid.colors;
    const ScratchFolder folder;
    WriteScan(folder.Path() / "a.pcm", FileFormat::Pcm, std::move(grid));
    const auto read = MsrStorage::ReadPcmFile((folder.Path() / "a.pcm").string());
    ASSERT_NE(read.m_pColors, nullptr);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(read.m_pColors[i], colors[i]);
}

TEST(WriteScan, ReplacesAnOldFileAndKeepsNoTemporaryFile) {
    const ScratchFolder folder;
    std::ofstream(folder.Path() / "a.xdt") << std::string(10'000, 'x');
    WriteScan(folder.Path() / "a.xdt", FileFormat::Xdt, SmallGrid());
    EXPECT_EQ(std::filesystem::file_size(folder.Path() / "a.xdt"), 76u);
    const auto files = std::filesystem::directory_iterator(folder.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(WriteScan, ThrowsWhenTheFolderDoesNotExist) {
    const ScratchFolder folder;
    for (const FileFormat format : {FileFormat::Pcm, FileFormat::Pax, FileFormat::Xdt})
        EXPECT_THROW(WriteScan(folder.Path() / "no" / "a", format, SmallGrid()), std::runtime_error);
}

}  // namespace
}  // namespace simulate
