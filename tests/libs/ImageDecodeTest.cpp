// Decoding of image files: every kind of png, assembled by hand; jpeg, by the encoder of the jpeg library; and the
// files that are refused.
#include "KV_Components/ImageDecode.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "libs/JpegFile.h"
#include "support/PngFile.h"

namespace {

using namespace png_file;
using KvComponents::DecodeImage;
using KvComponents::IsPictureSize;
using KvComponents::Picture;

struct PngCase {
    const char* name;
    Bytes file;
    std::uint32_t width, height;
    Bytes rgba;
};
void PrintTo(const PngCase& row, std::ostream* out) { *out << row.name; }

const Bytes kPalette3 = Chunk("PLTE", {10, 20, 30, 40, 50, 60, 70, 80, 90});

/// An interlaced 3 x 3 picture of 8-bit grey whose pixel (x, y) is 10 y + x, as the passes of the format.
Bytes InterlacedGray() {
    return Make({.width = 3, .height = 3, .depth = 8, .kind = kGray, .interlaced = true},
                {0, 0,           // pass 1: (0, 0); passes 2 and 3 begin outside
                 0, 2,           // pass 4: (2, 0)
                 0, 20, 22,      // pass 5: row 2, columns 0 and 2
                 0, 1,           // pass 6: column 1 of row 0
                 0, 21,          //         and of row 2
                 0, 10, 11, 12}  // pass 7: row 1
    );
}

const PngCase kPngCases[] = {
    {"Gray1",
     Make({.width = 9, .depth = 1, .kind = kGray}, {0, 0b10100000, 0b10000000}),
     9,
     1,
     {255, 255, 255, 255, 0, 0,   0, 255, 255, 255, 255, 255, 0, 0,   0,   255, 0,   0,
      0,   255, 0,   0,   0, 255, 0, 0,   0,   255, 0,   0,   0, 255, 255, 255, 255, 255}},
    {"Gray2",
     Make({.width = 2, .depth = 2, .kind = kGray}, {0, 0b01100000}),
     2,
     1,
     {85, 85, 85, 255, 170, 170, 170, 255}},
    {"Gray4", Make({.width = 1, .depth = 4, .kind = kGray}, {0, 0x70}), 1, 1, {119, 119, 119, 255}},
    {"Gray8", Make({.width = 2, .kind = kGray}, {0, 7, 200}), 2, 1, {7, 7, 7, 255, 200, 200, 200, 255}},
    {"Gray16RoundsToTheNearest",
     Make({.width = 3, .depth = 16, .kind = kGray}, {0, 0, 128, 0, 129, 0x80, 0xFF}),
     3,
     1,
     {0, 0, 0, 255, 1, 1, 1, 255, 128, 128, 128, 255}},
    {"GrayAlpha8", Make({.kind = kGrayAlpha}, {0, 9, 77}), 1, 1, {9, 9, 9, 77}},
    {"GrayAlpha16", Make({.depth = 16, .kind = kGrayAlpha}, {0, 9, 9, 77, 77}), 1, 1, {9, 9, 9, 77}},
    {"Rgb8", Make({.height = 2, .kind = kRgb}, {0, 1, 2, 3, 0, 4, 5, 6}), 1, 2, {1, 2, 3, 255, 4, 5, 6, 255}},
    {"Rgb16", Make({.depth = 16, .kind = kRgb}, {0, 1, 1, 2, 2, 3, 3}), 1, 1, {1, 2, 3, 255}},
    {"Rgba8KeepsTheColourOfClearPixels", Make({.kind = kRgba}, {0, 1, 2, 3, 0}), 1, 1, {1, 2, 3, 0}},
    {"Rgba16", Make({.depth = 16, .kind = kRgba}, {0, 1, 1, 2, 2, 3, 3, 4, 4}), 1, 1, {1, 2, 3, 4}},
    {"Palette2",
     Make({.width = 3, .depth = 2, .kind = kPalette}, {0, 0b00011000}, kPalette3),
     3,
     1,
     {10, 20, 30, 255, 40, 50, 60, 255, 70, 80, 90, 255}},
    {"Palette8WithAlphaOfTheFirstColours",
     [] {
         Bytes chunks = kPalette3;
         Append(chunks, Chunk("tRNS", {0, 99}));
         return Make({.width = 3, .kind = kPalette}, {0, 0, 1, 2}, chunks);
     }(),
     3,
     1,
     {10, 20, 30, 0, 40, 50, 60, 99, 70, 80, 90, 255}},
    {"Gray8WithAClearValue",
     Make({.width = 2, .kind = kGray}, {0, 7, 8}, Chunk("tRNS", {0, 8})),
     2,
     1,
     {7, 7, 7, 255, 8, 8, 8, 0}},
    {"Rgb16WithAClearValueComparedInAllSixteenBits",
     Make({.width = 2, .depth = 16, .kind = kRgb}, {0, 1, 1, 2, 2, 3, 3, 1, 2, 2, 2, 3, 3},
          Chunk("tRNS", {1, 2, 2, 2, 3, 3})),
     2,
     1,
     {1, 2, 3, 255, 1, 2, 3, 0}},
    {"Interlaced", InterlacedGray(), 3, 3, {0,  0,  0,  255, 1,  1,  1,  255, 2,  2,  2,  255,
                                            10, 10, 10, 255, 11, 11, 11, 255, 12, 12, 12, 255,
                                            20, 20, 20, 255, 21, 21, 21, 255, 22, 22, 22, 255}},
    {"GammaIsNotApplied",
     Make({.kind = kGray}, {0, 100}, Chunk("gAMA", {0, 1, 0x86, 0xA0})),
     1,
     1,
     {100, 100, 100, 255}},
    {"TextsAndUnknownChunksAreSkipped",
     [] {
         Bytes chunks = Chunk("tEXt", Bytes(100'000, 'x'));
         Append(chunks, Chunk("kvPx", {1, 2, 3}));
         return Make({.kind = kGray}, {0, 100}, chunks);
     }(),
     1,
     1,
     {100, 100, 100, 255}},
};

class DecodePng : public testing::TestWithParam<PngCase> {};

TEST_P(DecodePng, ReturnsTheExpectedPixels) {
    const std::optional<Picture> picture = DecodeImage(GetParam().file);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->m_iWidth, static_cast<std::int32_t>(GetParam().width));
    EXPECT_EQ(picture->m_iHeight, static_cast<std::int32_t>(GetParam().height));
    EXPECT_EQ(picture->m_vRgba, GetParam().rgba);
}
TEST_P(DecodePng, RefusesEveryShorterFileAndPrintsNothing) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const Bytes& file = GetParam().file;
    const std::size_t step = file.size() > 10'000 ? 997 : 1;
    for (std::size_t size = 0; size < file.size(); size += step)
        EXPECT_FALSE(DecodeImage(std::span(file).first(size))) << size;
    EXPECT_FALSE(DecodeImage(std::span(file).first(file.size() - 1)));
    EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}
INSTANTIATE_TEST_SUITE_P(Kinds, DecodePng, testing::ValuesIn(kPngCases),
                         [](const auto& row) { return row.param.name; });

/// All pixels are present, but a checksum is wrong.
TEST(DecodeDamagedPng, RefusesEveryChangedByteOfCriticalChunks) {
    const Bytes file = OfRgba(2, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    ASSERT_TRUE(DecodeImage(file));
    for (std::size_t i = 0; i < file.size(); ++i) {
        Bytes damaged = file;
        damaged[i] ^= 0x55;
        EXPECT_FALSE(DecodeImage(damaged)) << i;
    }
}

TEST(DecodeOnePng, IgnoresBytesAfterItsEnd) {
    Bytes file = OfRgba(1, 1, {1, 2, 3, 4});
    Append(file, Bytes(100, 0x55));
    EXPECT_TRUE(DecodeImage(file));
}

TEST(DecodeOnePng, IgnoresADamagedTextAndPrintsNothing) {
    Bytes text = Chunk("tEXt", {'a', 0, 'b'});
    text.back() ^= 1;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_TRUE(DecodeImage(Make({.kind = kGray}, {0, 100}, text)));
    // The library warns about a second palette too.
    Bytes palettes = kPalette3;
    Append(palettes, kPalette3);
    (void)DecodeImage(Make({.kind = kPalette}, {0, 1}, palettes));
    EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}

// ---- jpeg

struct JpegCase {
    const char* name;
    JpegOptions options;
    std::array<int, 3> rgb;  ///< the uniform colour of the picture
};
void PrintTo(const JpegCase& row, std::ostream* out) { *out << row.name; }

const JpegCase kJpegCases[] = {
    {"Gray", {.kind = JCS_GRAYSCALE, .pixel = {90}}, {90, 90, 90}},
    {"Colour", {.kind = JCS_RGB, .pixel = {200, 100, 50}}, {200, 100, 50}},
    {"ColourWithoutMatrix", {.kind = JCS_RGB, .pixel = {200, 100, 50}, .stored = JCS_RGB}, {200, 100, 50}},
    {"Progressive", {.kind = JCS_RGB, .pixel = {30, 160, 220}, .progressive = true}, {30, 160, 220}},
    {"Arithmetic", {.kind = JCS_RGB, .pixel = {30, 160, 220}, .arithmetic = true}, {30, 160, 220}},
    {"RestartMarks", {.kind = JCS_RGB, .pixel = {30, 160, 220}, .restartRows = 1}, {30, 160, 220}},
    // With the marker 255 is no ink: c k / 255.
    {"CmykWithMark", {.kind = JCS_CMYK, .pixel = {200, 100, 50, 204}}, {160, 80, 40}},
    {"Ycck", {.kind = JCS_CMYK, .pixel = {200, 100, 50, 204}, .stored = JCS_YCCK}, {160, 80, 40}},
    // Without it 0 is no ink: (255 - c) (255 - k) / 255.
    {"CmykWithoutMark", {.kind = JCS_CMYK, .pixel = {55, 155, 205, 51}, .adobeMarker = false}, {160, 80, 40}},
};

class DecodeJpeg : public testing::TestWithParam<JpegCase> {};

TEST_P(DecodeJpeg, ReturnsTheColourThatWasStored) {
    const Bytes file = MakeJpeg(GetParam().options);
    const std::optional<Picture> picture = DecodeImage(file);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->m_iWidth, 40);
    ASSERT_EQ(picture->m_iHeight, 24);
    for (std::size_t i = 0; i < picture->m_vRgba.size(); i += 4) {
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_LE(std::abs(picture->m_vRgba[i + c] - GetParam().rgb[c]), 3) << "byte " << i + c;
        ASSERT_EQ(picture->m_vRgba[i + 3], 255);
    }
}
TEST_P(DecodeJpeg, RefusesEveryShorterFileAndPrintsNothing) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const Bytes file = MakeJpeg(GetParam().options);
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_FALSE(DecodeImage(std::span(file).first(size))) << size;
    EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}
INSTANTIATE_TEST_SUITE_P(Kinds, DecodeJpeg, testing::ValuesIn(kJpegCases),
                         [](const auto& row) { return row.param.name; });

TEST(DecodeOneJpeg, BeginsWithTheTopRow) {
    const std::optional<Picture> picture =
        DecodeImage(MakeJpeg({.kind = JCS_GRAYSCALE, .pixel = {20}, .pixelOfLowerHalf = {220}}));
    ASSERT_TRUE(picture);
    EXPECT_NEAR(picture->m_vRgba.front(), 20, 3);
    EXPECT_NEAR(picture->m_vRgba[picture->m_vRgba.size() - 4], 220, 3);
}

TEST(DecodeOneJpeg, AcceptsFillBytesBetweenItsSegments) {
    Bytes file = MakeJpeg({.kind = JCS_GRAYSCALE, .pixel = {20}});
    file.insert(file.end() - 2, {0x12, 0x34});  // before the end marker
    EXPECT_TRUE(DecodeImage(file));
}

TEST(DecodeOneJpeg, RefusesASecondFrameHeader) {
    const Bytes file = MakeJpeg({.kind = JCS_GRAYSCALE, .pixel = {20}});
    Bytes twice(file.begin(), file.end() - 2);
    Append(twice, Bytes(file.begin() + 2, file.end()));
    EXPECT_FALSE(DecodeImage(twice));
}

/// Each scan costs a pass over the whole picture, but only about a dozen bytes.
TEST(DecodeOneJpeg, MayHaveAHundredScansAndNoMore) {
    // The DC coefficient, then one scan per AC coefficient, the first few of them in two steps (successive
    // approximation).
    const auto withScans = [](int count) {
        JpegOptions options{.kind = JCS_GRAYSCALE, .pixel = {20}};
        options.scans.push_back({1, {0}, 0, 0, 0, 0});
        const int inTwoSteps = count - 64;
        for (int k = 1; k < 64; ++k) options.scans.push_back({1, {0}, k, k, 0, k <= inTwoSteps ? 1 : 0});
        for (int k = 1; k <= inTwoSteps; ++k) options.scans.push_back({1, {0}, k, k, 1, 0});
        return MakeJpeg(options);
    };
    EXPECT_TRUE(DecodeImage(withScans(100)));
    EXPECT_FALSE(DecodeImage(withScans(101)));
}

// ---- other formats, and pictures that are too large

TEST(DecodeImageRefuses, FilesInOtherFormats) {
    for (const std::string_view text : {"", "P", "\x89PNG\r\n\x1A", "\x89PNG\r\n\x1A\n", "\xFF\xD8", "\xFF\xD8\xFF",
                                        "GIF89a", "BM", "\xFF\xD8\xFF\xD9"})
        EXPECT_FALSE(DecodeImage({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()})) << text;
}

TEST(IsPictureSize, LimitsTheSidesAndThePixelsPerByteOfTheFile) {
    EXPECT_FALSE(IsPictureSize(0, 1, 100));
    EXPECT_FALSE(IsPictureSize(1, 0, 100));
    EXPECT_TRUE(IsPictureSize(16384, 1, 0));
    EXPECT_FALSE(IsPictureSize(16385, 1, 1'000'000));
    EXPECT_FALSE(IsPictureSize(1, 16385, 1'000'000));
    EXPECT_TRUE(IsPictureSize(2048, 2048, 0));
    EXPECT_FALSE(IsPictureSize(2048, 2049, 0));
    EXPECT_FALSE(IsPictureSize(2048, 2049, 1));  // 2048 pixels more need two bytes
    EXPECT_TRUE(IsPictureSize(2048, 2049, 2));
    EXPECT_TRUE(IsPictureSize(16384, 16384, 240'220));  // 264,241,152 pixels more
    EXPECT_FALSE(IsPictureSize(16384, 16384, 240'219));
}

TEST(DecodeImageRefuses, PicturesOutOfProportionToTheirFile) {
    // The size in the header is enough; no pixels are decoded.
    EXPECT_FALSE(DecodeImage(Make({.width = 16384, .height = 16384}, {0})));
    EXPECT_FALSE(DecodeImage(Make({.width = 0x7FFFFFFF, .height = 0x7FFFFFFF}, {0})));
    Bytes jpeg = MakeJpeg({.kind = JCS_GRAYSCALE, .pixel = {20}});
    for (std::size_t i = 0; i + 8 < jpeg.size(); ++i)
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xC0) jpeg[i + 5] = jpeg[i + 7] = 0xFF;  // 65304 x 65320
    EXPECT_FALSE(DecodeImage(jpeg));
}

}  // namespace
