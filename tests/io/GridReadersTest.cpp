// The formats pax and xdt: layout, units, and files that are short, odd or hostile.
#include "io/GridReaders.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>

#include "KV_ScenePane/PathText.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using testing::Each;
using testing::ElementsAre;

namespace {

using Bytes = std::vector<std::byte>;

template <class... T>
Bytes Packed(T... values) {
    Bytes bytes;
    const auto append = [&](auto value) {
        const auto* at = reinterpret_cast<const std::byte*>(&value);
        bytes.insert(bytes.end(), at, at + sizeof value);
    };
    (append(values), ...);
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes Size(std::int16_t width, std::int16_t height) { return Packed(width, height); }

/// Floats first, first + 1, ...
Bytes Counting(int count, float first) {
    Bytes bytes;
    for (int i = 0; i < count; ++i) bytes = bytes + Packed(first + static_cast<float>(i));
    return bytes;
}

/// 2 x 1 pixels: points 1 to 6, confidence 10 and 11, transform 100 to 115.
Bytes SmallPax() { return Size(2, 1) + Counting(6, 1) + Counting(2, 10) + Counting(16, 100); }
Bytes SmallXdt() { return Size(2, 1) + Counting(6, 1); }

std::vector<float> Values(const ZeroedFloats& floats) { return {floats.data(), floats.data() + floats.size()}; }

Bytes Cut(Bytes bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

}  // namespace

TEST(ReadPax, ReadsPointsConfidenceAndTransformInFileUnits) {
    const MeasurementGrid grid = ReadPax(SmallPax());
    EXPECT_EQ(grid.m_iWidth, 2);
    EXPECT_EQ(grid.m_iHeight, 1);
    EXPECT_THAT(Values(grid.m_vPoints), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(Values(grid.m_vConfidence), ElementsAre(10, 11));
    EXPECT_THAT(grid.m_fTrafo,
                ElementsAre(100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115));
}

TEST(ReadXdt, ReadsPointsAndNothingElse) {
    const MeasurementGrid grid = ReadXdt(SmallXdt());
    EXPECT_EQ(grid.m_iWidth, 2);
    EXPECT_EQ(grid.m_iHeight, 1);
    EXPECT_THAT(Values(grid.m_vPoints), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_TRUE(grid.m_vConfidence.empty());
    EXPECT_THAT(grid.m_fTrafo, Each(0.0f));
}

TEST(ReadPax, ReadsTheWidthBeforeTheHeight) {
    const MeasurementGrid grid = ReadPax(Size(1, 2) + Counting(24, 0));
    EXPECT_EQ(grid.m_iWidth, 1);
    EXPECT_EQ(grid.m_iHeight, 2);
}

TEST(ReadPax, ReadsMissingValuesOfAShortFileAsZero) {
    const MeasurementGrid noTrafo = ReadPax(Size(2, 1) + Counting(6, 1) + Counting(2, 10));
    EXPECT_THAT(Values(noTrafo.m_vConfidence), ElementsAre(10, 11));
    EXPECT_THAT(noTrafo.m_fTrafo, Each(0.0f));
    const MeasurementGrid noConfidence = ReadPax(Size(2, 1) + Counting(6, 1));
    EXPECT_THAT(Values(noConfidence.m_vPoints), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(Values(noConfidence.m_vConfidence), ElementsAre(0, 0));
    const MeasurementGrid halfThePoints = ReadPax(Size(2, 1) + Counting(3, 1));
    EXPECT_EQ(halfThePoints.m_iWidth, 2);
    EXPECT_THAT(Values(halfThePoints.m_vPoints), ElementsAre(1, 2, 3, 0, 0, 0));
}

TEST(ReadXdt, IgnoresAPartOfANumberAtTheEnd) {
    for (std::size_t size = 4 + 12; size < 4 + 16; ++size) {
        EXPECT_THAT(Values(ReadXdt(Cut(SmallXdt(), size)).m_vPoints), ElementsAre(1, 2, 3, 0, 0, 0)) << size;
    }
}

// 2 x 1 pixels are 32 bytes in pax and 24 in xdt, a quarter 8 and 6; the transform of a pax file does not count.
TEST(ReadPax, RefusesLessThanAQuarterOfTheGrid) {
    EXPECT_THAT(Values(ReadPax(Cut(SmallPax(), 4 + 8)).m_vPoints), ElementsAre(1, 2, 0, 0, 0, 0));
    EXPECT_THAT([] { (void)ReadPax(Cut(SmallPax(), 4 + 7)); },
                testing::ThrowsMessage<MeasurementReadError>(
                    testing::StrEq("holds less than a quarter of the grid that it announces")));
}

TEST(ReadXdt, RefusesLessThanAQuarterOfTheGrid) {
    EXPECT_THAT(Values(ReadXdt(Cut(SmallXdt(), 4 + 6)).m_vPoints), ElementsAre(1, 0, 0, 0, 0, 0));
    EXPECT_THROW((void)ReadXdt(Cut(SmallXdt(), 4 + 5)), MeasurementReadError);
}

TEST(ReadXdt, IgnoresBytesAfterTheGrid) {
    EXPECT_THAT(Values(ReadXdt(SmallXdt() + Counting(9, 50)).m_vPoints), ElementsAre(1, 2, 3, 4, 5, 6));
}

struct BadGrid {
    const char* name;
    Bytes bytes;
    const char* reason;
};
void PrintTo(const BadGrid& row, std::ostream* out) { *out << row.name; }

const BadGrid kBadGrids[] = {
    {"Empty", {}, "ends before the size of its grid"},
    {"HeaderOneByteShort", Cut(Size(1, 1), 3), "ends before the size of its grid"},
    {"NegativeWidth", Size(-1, 1) + Bytes(1000), "announces a grid of negative size"},
    {"NegativeHeight", Size(1, -1) + Bytes(1000), "announces a grid of negative size"},
    {"BothNegative", Size(-2, -2) + Bytes(1000), "announces a grid of negative size"},
    {"SmallestNumber", Size(-32768, -32768) + Bytes(1000), "announces a grid of negative size"},
    {"NegativeAndZero", Size(0, -1) + Bytes(1000), "announces a grid of negative size"},
    {"HugeGridInATinyFile", Size(32767, 32767) + Bytes(60), "holds less than a quarter of the grid that it announces"},
    {"HeaderAlone", Size(1, 1), "holds less than a quarter of the grid that it announces"},
};
class GridIsRefused : public testing::TestWithParam<BadGrid> {};

TEST_P(GridIsRefused, AndSaysWhy) {
    const auto refused = testing::ThrowsMessage<MeasurementReadError>(testing::StrEq(GetParam().reason));
    EXPECT_THAT([] { (void)ReadPax(GetParam().bytes); }, refused);
    EXPECT_THAT([] { (void)ReadXdt(GetParam().bytes); }, refused);
}
INSTANTIATE_TEST_SUITE_P(Grid, GridIsRefused, testing::ValuesIn(kBadGrids),
                         [](const auto& row) { return row.param.name; });

TEST(ReadPax, ReadsAGridWithoutPixelsAsAnEmptyOne) {
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}, {32767, 0}}) {
        const Bytes bytes = Size(static_cast<std::int16_t>(width), static_cast<std::int16_t>(height));
        for (const MeasurementGrid& grid : {ReadPax(bytes), ReadXdt(bytes)}) {
            EXPECT_EQ(grid.m_iWidth, 0);
            EXPECT_EQ(grid.m_iHeight, 0);
            EXPECT_TRUE(grid.m_vPoints.empty());
        }
    }
}

namespace {

using FileReader = MeasurementGrid (*)(const std::wstring&);
class GridFiles : public testing::TestWithParam<FileReader> {
protected:
    ScratchFolder folder;
};

}  // namespace

TEST_P(GridFiles, ReadsAFileLikeItsBytes) {
    const bool isPax = GetParam() == &ReadPaxFile;
    for (const std::size_t size : {10u, 16u, 17u, 28u, 36u, 50u, 100u, 200u}) {
        const Bytes bytes = Cut(isPax ? SmallPax() : SmallXdt(), size);
        WriteBytes(folder / "grid", bytes);
        if (isPax && size < 12) continue;
        const MeasurementGrid expected = isPax ? ReadPax(bytes) : ReadXdt(bytes);
        const MeasurementGrid grid = GetParam()(WidePath(folder / "grid"));
        EXPECT_EQ(grid.m_iWidth, 2);
        EXPECT_EQ(Values(grid.m_vPoints), Values(expected.m_vPoints));
        EXPECT_EQ(Values(grid.m_vConfidence), Values(expected.m_vConfidence));
        EXPECT_EQ(grid.m_fTrafo, expected.m_fTrafo);
    }
}

TEST_P(GridFiles, OpensAFileWhoseNameIsNotUtf8) {
    const std::string odd = folder / "gr\xFFid\xE2\x82";
    WriteBytes(odd, SmallPax());
    EXPECT_EQ(GetParam()(WidePath(odd)).m_iWidth, 2);
    const std::string greek = folder / "\xCE\xA3\xF0\x9F\x98\x80";
    WriteBytes(greek, SmallPax());
    EXPECT_EQ(GetParam()(WidePath(greek)).m_iWidth, 2);
}

TEST_P(GridFiles, RefusesSpecialFilesWithoutWaiting) {
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, folder / "", std::string("/dev/zero")}) {
        EXPECT_THAT([&] { (void)GetParam()(WidePath(path)); },
                    testing::ThrowsMessage<MeasurementReadError>(testing::StrEq("is not a regular file")));
    }
}

TEST_P(GridFiles, RefusesAMissingFileWithTheSystemsReason) {
    EXPECT_THAT([&] { (void)GetParam()(WidePath(folder / "missing")); },
                testing::ThrowsMessage<MeasurementReadError>(testing::StartsWith("cannot be opened: ")));
}

INSTANTIATE_TEST_SUITE_P(Both, GridFiles, testing::Values(&ReadPaxFile, &ReadXdtFile),
                         [](const auto& row) { return row.param == &ReadPaxFile ? "Pax" : "Xdt"; });

TEST(ScaleXdtPoints, DividesAndDoesNotMultiply) {
    // 9 / 1000 and 9 x 0.001 differ in the last bit in single precision.
    std::vector<float> points = {1000.0f, -2500.0f, 5.0f, 0.0f, -1.0f, 9.0f};
    ASSERT_NE(9.0f / 1000.0f, 9.0f * 0.001f);
    ScaleXdtPoints(points);
    EXPECT_THAT(points, ElementsAre(1.0f, -2.5f, 5.0f / 1000.0f, 0.0f, -1.0f / 1000.0f, 9.0f / 1000.0f));
}
