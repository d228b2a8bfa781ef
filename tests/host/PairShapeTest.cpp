// Pairs whose points are on one line.
#include "PairShape.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using Point = std::array<float, 3>;
using KV_ScenePane::AlignmentPair;

std::vector<AlignmentPair> Pairs(const std::vector<Point>& moving, const std::vector<Point>& fixed) {
    std::vector<AlignmentPair> pairs(moving.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            pairs[i].moving.point[axis] = moving[i][axis];
            pairs[i].fixed.point[axis] = fixed.at(i)[axis];
        }
    }
    return pairs;
}

bool AreOnALine(const std::vector<Point>& points) { return ::AreOnALine(Pairs(points, points)); }

TEST(PairShape, TwoPairsAreAlwaysOnALine) {
    EXPECT_TRUE(AreOnALine({{0, 0, 0}, {3, 4, 5}}));
    EXPECT_TRUE(AreOnALine({{7, 7, 7}, {7, 7, 7}})) << "at one place";
}

TEST(PairShape, ASinglePairIsNotJudgedByItsPoints) {
    EXPECT_FALSE(AreOnALine({{1, 2, 3}}));
    EXPECT_FALSE(AreOnALine(std::vector<Point>{}));
}

TEST(PairShape, PointsWithinAHundredthOfTheirExtentAreOnALine) {
    for (const float scale : {1e-12f, 1.0f, 1e12f}) {
        EXPECT_TRUE(AreOnALine({{0, 0, 0}, {40 * scale, 0.99f * scale, 0}, {100 * scale, 0, 0}})) << scale;
        EXPECT_FALSE(AreOnALine({{0, 0, 0}, {40 * scale, 1.01f * scale, 0}, {100 * scale, 0, 0}})) << scale;
    }
}

TEST(PairShape, TheOrderOfThePairsHasNoInfluence) {
    EXPECT_TRUE(AreOnALine({{5, 5, 5}, {0, 0, 0}, {9, 9, 9}, {2, 2, 2}}));
    EXPECT_FALSE(AreOnALine({{5, 5, 5}, {0, 0, 0}, {9, 9, 9}, {2, 2, 3}}));
    EXPECT_FALSE(AreOnALine({{2, 2, 3}, {9, 9, 9}, {0, 0, 0}, {5, 5, 5}}));
}

TEST(PairShape, ALineOnOneSideIsEnough) {
    const std::vector<Point> line = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, corner = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}};
    EXPECT_TRUE(::AreOnALine(Pairs(line, corner)));
    EXPECT_TRUE(::AreOnALine(Pairs(corner, line)));
    EXPECT_FALSE(::AreOnALine(Pairs(corner, corner)));
}

}  // namespace
