// The image object through its table of operations, as callers see it.
#include "KV_Components/Image.h"

#include <gtest/gtest.h>

#include <vector>

#include "KV_Components/ObjectRegistry.h"
#include "support/PngFile.h"

namespace {

using namespace KvComponents;
using Bytes = std::vector<std::uint8_t>;

class ImageObject : public testing::Test {
protected:
    ~ImageObject() override {
        kRelease(picture);
        EXPECT_EQ(Component::LiveCount(), m_liveBefore);
    }

    void ExpectSize(std::int32_t width, std::int32_t height) {
        std::int32_t w = -7, h = -7;
        EXPECT_EQ(image::kSize(picture, &w, &h), kSucceeded);
        EXPECT_EQ(w, width);
        EXPECT_EQ(h, height);
    }
    void ExpectPixels(const Bytes& expected) {
        Bytes pixels(expected.size(), 0xEE);
        EXPECT_EQ(image::kReadPixels(picture, pixels.data(), pixels.size()), kSucceeded);
        EXPECT_EQ(pixels, expected);
    }

    const std::int32_t m_liveBefore = Component::LiveCount();
    Object* picture = MakeObject(image::kFactory);
};

TEST_F(ImageObject, IsEmptyAtFirst) {
    ExpectSize(0, 0);
    std::uint8_t byte = 7;
    EXPECT_EQ(image::kReadPixels(picture, &byte, 0), kSucceeded);
    EXPECT_EQ(image::kReadPixels(picture, &byte, 1), kInvalidArgument);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(image::kFlip(picture), kSucceeded);
}

TEST_F(ImageObject, HasZeroPixelsAfterItsSizeWasSet) {
    EXPECT_EQ(image::kSetSize(picture, 2, 3), kSucceeded);
    ExpectSize(2, 3);
    ExpectPixels(Bytes(24, 0));
    EXPECT_EQ(image::kWritePixels(picture, Bytes(24, 9).data(), 24), kSucceeded);
    EXPECT_EQ(image::kSetSize(picture, 2, 3), kSucceeded);
    ExpectPixels(Bytes(24, 0));
}

TEST_F(ImageObject, AcceptsSizesWithinItsLimitsOnly) {
    EXPECT_EQ(image::kSetSize(picture, 16384, 1), kSucceeded);
    EXPECT_EQ(image::kSetSize(picture, 1, 16384), kSucceeded);
    for (const auto& [w, h] :
         {std::pair{16385, 1}, {1, 16385}, {0, 1}, {1, 0}, {-1, 1}, {1, -1}, {INT32_MIN, INT32_MIN}})
        EXPECT_EQ(image::kSetSize(picture, w, h), kInvalidArgument) << w << " x " << h;
    ExpectSize(1, 16384);
}

TEST_F(ImageObject, ReturnsThePixelsThatWereWritten) {
    const Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(image::kSetSize(picture, 1, 2), kSucceeded);
    EXPECT_EQ(image::kWritePixels(picture, pixels.data(), 8), kSucceeded);
    ExpectPixels(pixels);
}

TEST_F(ImageObject, RefusesNullPointersAndWrongSizes) {
    Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(image::kSetSize(picture, 1, 2), kSucceeded);
    std::int32_t value = 7;
    EXPECT_EQ(image::kSize(picture, nullptr, &value), kInvalidArgument);
    EXPECT_EQ(image::kSize(picture, &value, nullptr), kInvalidArgument);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(image::kReadPixels(picture, nullptr, 8), kInvalidArgument);
    EXPECT_EQ(image::kWritePixels(picture, nullptr, 8), kInvalidArgument);
    for (const std::size_t size : {0, 7, 9}) {
        EXPECT_EQ(image::kReadPixels(picture, pixels.data(), size), kInvalidArgument) << size;
        EXPECT_EQ(image::kWritePixels(picture, pixels.data(), size), kInvalidArgument) << size;
    }
    EXPECT_EQ(image::kDecodeFile(picture, nullptr, 8), kInvalidArgument);
    EXPECT_EQ(image::kDecodeFile(picture, pixels.data(), 0), kInvalidArgument);
    ExpectPixels(Bytes(8, 0));
}

TEST_F(ImageObject, FlipReversesTheOrderOfTheRows) {
    const Bytes a{1, 1, 1, 1, 2, 2, 2, 2}, b{3, 3, 3, 3, 4, 4, 4, 4}, c{5, 5, 5, 5, 6, 6, 6, 6};
    const auto stack = [](std::initializer_list<Bytes> rows) {
        Bytes pixels;
        for (const Bytes& row : rows) png_file::Append(pixels, row);
        return pixels;
    };
    for (const auto& [before, after] :
         {std::pair{stack({a}), stack({a})}, {stack({a, b}), stack({b, a})}, {stack({a, b, c}), stack({c, b, a})}}) {
        ASSERT_EQ(image::kSetSize(picture, 2, static_cast<std::int32_t>(before.size() / 8)), kSucceeded);
        ASSERT_EQ(image::kWritePixels(picture, before.data(), before.size()), kSucceeded);
        EXPECT_EQ(image::kFlip(picture), kSucceeded);
        ExpectPixels(after);
    }
}

TEST_F(ImageObject, KeepsItsPictureWhenTheNextFileIsDamaged) {
    const Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8};
    Bytes file = png_file::OfRgba(1, 2, pixels);
    EXPECT_EQ(image::kDecodeFile(picture, file.data(), file.size()), kSucceeded);
    ExpectSize(1, 2);
    ExpectPixels(pixels);
    const Bytes other = png_file::OfRgba(2, 2, Bytes(16, 9));
    EXPECT_EQ(image::kDecodeFile(picture, other.data(), other.size() - 1), kFailed);
    EXPECT_EQ(image::kDecodeFile(picture, "no picture", 10), kFailed);
    ExpectSize(1, 2);
    ExpectPixels(pixels);
    EXPECT_EQ(image::kDecodeFile(picture, other.data(), other.size()), kSucceeded);
    ExpectSize(2, 2);
    ExpectPixels(Bytes(16, 9));
}

}  // namespace
