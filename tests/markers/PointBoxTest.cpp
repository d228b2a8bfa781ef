// The box of a point cloud, against a plain loop.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "markers/PointBox.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

Box PlainBox(const std::vector<float>& xyz) {
    Box box;
    for (std::size_t i = 0; i + 3 <= xyz.size(); i += 3) {
        const Float3 p{xyz[i], xyz[i + 1], xyz[i + 2]};
        if (std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2])) box.Merge(p, p);
    }
    return box;
}

void ExpectSameBits(const Box& found, const Box& expected) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(found.min[axis]), std::bit_cast<std::uint32_t>(expected.min[axis]));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(found.max[axis]), std::bit_cast<std::uint32_t>(expected.max[axis]));
    }
}

TEST(BoxOfFinitePoints, IsInvertedWithoutPoints) {
    const Box box = BoxOfFinitePoints({});
    EXPECT_EQ(box.min, (Float3{FLT_MAX, FLT_MAX, FLT_MAX}));
    EXPECT_EQ(box.max, (Float3{-FLT_MAX, -FLT_MAX, -FLT_MAX}));
}

TEST(BoxOfFinitePoints, IsThePointItselfForOne) {
    const std::vector<float> xyz{1, -2, 3};
    const Box box = BoxOfFinitePoints(xyz);
    EXPECT_EQ(box.min, (Float3{1, -2, 3}));
    EXPECT_EQ(box.max, (Float3{1, -2, 3}));
}

TEST(BoxOfFinitePoints, LeavesOutAPointWithAnyCoordinateThatIsNotFinite) {
    for (const float bad : {kNan, kInf, -kInf}) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::vector<float> xyz{0, 0, 5, 2, 1, 3, 90, 90, 90};
            xyz[6 + axis] = bad;
            const Box box = BoxOfFinitePoints(xyz);
            EXPECT_EQ(box.min, (Float3{0, 0, 3})) << bad << axis;
            EXPECT_EQ(box.max, (Float3{2, 1, 5})) << bad << axis;
        }
    }
}

TEST(BoxOfFinitePoints, IsInvertedWhenNoPointIsFinite) {
    std::vector<float> xyz;
    for (int i = 0; i < 50; ++i) xyz.insert(xyz.end(), {1, i % 2 == 0 ? kNan : kInf, 1});
    EXPECT_TRUE(BoxOfFinitePoints(xyz).IsEmpty());
}

TEST(BoxOfFinitePoints, HoldsTheLargestCoordinates) {
    const Box box = BoxOfFinitePoints(std::vector<float>{FLT_MAX, -FLT_MAX, FLT_MAX, -FLT_MAX, -FLT_MAX, 0});
    EXPECT_EQ(box.min, (Float3{-FLT_MAX, -FLT_MAX, 0}));
    EXPECT_EQ(box.max, (Float3{FLT_MAX, -FLT_MAX, FLT_MAX}));
}

TEST(BoxOfFinitePoints, GivesPositiveZerosInAnyOrderOfTheZeros) {
    for (int negative = 0; negative < 40; ++negative) {
        std::vector<float> xyz(3 * 40, 0.0f);
        for (int axis = 0; axis < 3; ++axis) xyz[static_cast<std::size_t>(3 * negative + axis)] = -0.0f;
        const Box box = BoxOfFinitePoints(xyz);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_FALSE(std::signbit(box.min[axis]));
            EXPECT_FALSE(std::signbit(box.max[axis]));
        }
    }
}

// Sizes around groups of four points and around blocks of 1024, with the extremes and the points that are not finite
// at every place in turn.
TEST(BoxOfFinitePoints, HasTheBitsOfAPlainLoop) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> anywhere(-100, 100);
    std::vector<std::size_t> sizes{1023, 1024, 1025, 2048, 2051, 5000};
    for (std::size_t n = 0; n < 70; ++n) sizes.push_back(n);
    for (const std::size_t n : sizes) {
        for (const int bad : {0, 1, 5}) {
            for (int round = 0; round < 20; ++round) {
                std::vector<float> xyz(3 * n);
                for (float& value : xyz) value = anywhere(random);
                if (n > 0) xyz[random() % xyz.size()] *= 1e30f;
                for (int k = 0; k < bad && n > 0; ++k) xyz[random() % xyz.size()] = k % 2 == 0 ? kNan : -kInf;
                ExpectSameBits(BoxOfFinitePoints(xyz), PlainBox(xyz));
                if (HasFailure()) FAIL() << n << " points, " << bad << " bad ones";
            }
        }
    }
}

}  // namespace
