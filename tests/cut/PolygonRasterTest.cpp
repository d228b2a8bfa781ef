// The raster by scan lines has the bits of the even-odd test of every pixel, whatever the polygon looks like.
#include "cut/PolygonRaster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

using ACAD::CutMask;
using KV_ScenePane::LassoPoint;

namespace {

using Points = std::vector<LassoPoint>;

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();

/// The reference: every edge for every pixel.
bool PointInPolygon(float x, float y, const std::vector<float>& xs, const std::vector<float>& ys) {
    if (xs.size() < 2) return false;
    unsigned crossings = 0;
    for (std::size_t i = 0; i + 1 < xs.size(); ++i) {
        const float xi = xs[i], yi = ys[i], xj = xs[i + 1], yj = ys[i + 1];
        if (y > std::min(yi, yj) && std::max(yi, yj) >= y && std::max(xi, xj) >= x && yi != yj &&
            (xi == xj || (xj - xi) * (y - yi) / (yj - yi) + xi >= x))
            ++crossings;
    }
    return (crossings & 1) != 0;
}

MaskBits PlainMaskBits(int width, int height, const Points& points) {
    MaskBits mask;
    mask.m_vBits.m_uCount = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    mask.m_vBits.m_vWords.resize((mask.m_vBits.m_uCount + 31) / 32);
    std::vector<float> xs, ys;
    auto& bounds = mask.m_rcBounds;
    for (const LassoPoint& point : points) {
        const double x = width * point.x, y = height * point.y;
        xs.push_back(static_cast<float>(x)), ys.push_back(static_cast<float>(y));
        const double column = std::trunc(x), row = std::trunc(y);
        if (!(column >= 0 && column <= width - 1 && row >= 0 && row <= height - 1)) continue;
        bounds[0] = std::min(bounds[0], static_cast<int>(column)),
        bounds[1] = std::min(bounds[1], static_cast<int>(row));
        bounds[2] = std::max(bounds[2], static_cast<int>(column)),
        bounds[3] = std::max(bounds[3], static_cast<int>(row));
    }
    for (std::int64_t y = bounds[1]; y <= bounds[3]; ++y) {
        for (std::int64_t x = bounds[0]; x <= bounds[2]; ++x) {
            if (!PointInPolygon(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f, xs, ys)) continue;
            const auto bit = static_cast<std::size_t>(y * width + x);
            mask.m_vBits.m_vWords[bit / 32] |= 1u << (bit % 32);
        }
    }
    return mask;
}

Points Closed(Points points) {
    if (!points.empty()) points.push_back(points.front());
    return points;
}

/// Corners in pixels of a window.
Points InPixels(int width, int height, Points corners) {
    for (LassoPoint& corner : corners) corner.x /= width, corner.y /= height;
    return Closed(std::move(corners));
}

void ExpectSame(const MaskBits& mask, const MaskBits& expected, const std::string& what) {
    ASSERT_EQ(mask.m_rcBounds, expected.m_rcBounds) << what;
    ASSERT_EQ(mask.m_vBits.m_uCount, expected.m_vBits.m_uCount) << what;
    ASSERT_EQ(mask.m_vBits.m_vWords, expected.m_vBits.m_vWords) << what;
}

std::string TextOf(int width, int height, const Points& points) {
    std::string text = std::to_string(width) + " x " + std::to_string(height);
    for (const LassoPoint& point : points)
        text += " (" + std::to_string(point.x) + ", " + std::to_string(point.y) + ")";
    return text;
}

std::size_t CountSet(const MaskBits& mask) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < mask.m_vBits.m_uCount; ++i) count += mask.m_vBits.IsSet(i) ? 1 : 0;
    return count;
}

/// Rows of the mask as text, # where a bit is set.
std::vector<std::string> Rows(const MaskBits& mask, int width) {
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < mask.m_vBits.m_uCount; ++i) {
        if (i % static_cast<std::size_t>(width) == 0) rows.emplace_back();
        rows.back() += mask.m_vBits.IsSet(i) ? '#' : '.';
    }
    return rows;
}

TEST(PolygonRaster, SetsThePixelsWhoseCentresAreInside) {
    const MaskBits mask = CreateMaskBits(6, 5, InPixels(6, 5, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}));
    EXPECT_EQ(Rows(mask, 6), (std::vector<std::string>{"......", ".###..", ".###..", "......", "......"}));
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{1, 1, 4, 3})) << "of the corners, not of the bits";
}

TEST(PolygonRaster, ACentreOnTheLeftOrTheTopEdgeIsOutsideOnTheRightOrTheBottomEdgeInside) {
    const MaskBits mask = CreateMaskBits(6, 5, InPixels(6, 5, {{1.5, 1.5}, {4.5, 1.5}, {4.5, 3.5}, {1.5, 3.5}}));
    EXPECT_EQ(Rows(mask, 6), (std::vector<std::string>{"......", "......", "..###.", "..###.", "......"}));
}

TEST(PolygonRaster, LeavesOutWhatIsEnclosedTwice) {
    // A pentagram.
    Points star;
    for (int i = 0; i < 5; ++i) {
        const double angle = 4 * M_PI * i / 5;
        star.push_back({0.5 + 0.5 * std::sin(angle), 0.5 - 0.5 * std::cos(angle)});
    }
    const MaskBits mask = CreateMaskBits(101, 101, Closed(star));
    EXPECT_FALSE(mask.m_vBits.IsSet(50 * 101 + 50));
    EXPECT_TRUE(mask.m_vBits.IsSet(20 * 101 + 50));
}

TEST(PolygonRaster, OfTwoPointsHasTheirRectangleAndNoBits) {
    const MaskBits mask = CreateMaskBits(20, 20, InPixels(20, 20, {{2, 3}, {15.3, 17.2}}));
    EXPECT_EQ(CountSet(mask), 0u);
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{2, 3, 15, 17}));
}

TEST(PolygonRaster, OfOnePointOrNoneHasNoBits) {
    EXPECT_EQ(CountSet(CreateMaskBits(20, 20, Points{{0.5, 0.5}})), 0u);
    EXPECT_EQ(CountSet(CreateMaskBits(20, 20, Closed({{0.5, 0.5}}))), 0u);
    const MaskBits none = CreateMaskBits(20, 20, {});
    EXPECT_EQ(CountSet(none), 0u);
    EXPECT_EQ(none.m_vBits.m_uCount, 400u);
    EXPECT_EQ(none.m_rcBounds, CutMask::kNoPixel);
}

TEST(PolygonRaster, CutsOffWhatIsBeyondTheLastCornerInTheWindow) {
    // The corner at x = 30 is outside, so that columns right of 5 stay clear although the triangle covers them.
    const MaskBits mask = CreateMaskBits(20, 20, InPixels(20, 20, {{5, 2}, {30, 10}, {5, 18}}));
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{5, 2, 5, 18}));
    EXPECT_TRUE(mask.m_vBits.IsSet(10 * 20 + 5));
    EXPECT_FALSE(mask.m_vBits.IsSet(10 * 20 + 6));
}

TEST(PolygonRaster, ACornerOutsideInOneDirectionExtendsNeither) {
    const MaskBits mask = CreateMaskBits(20, 20, InPixels(20, 20, {{5, 5}, {10, 25}, {9, 9}, {-4, 18}}));
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{5, 5, 9, 9}));
}

TEST(PolygonRaster, HasNoBitsWhenNoCornerIsInTheWindow) {
    const MaskBits mask = CreateMaskBits(20, 20, InPixels(20, 20, {{-5, -5}, {25, -5}, {25, 25}, {-5, 25}}));
    EXPECT_EQ(mask.m_rcBounds, CutMask::kNoPixel);
    EXPECT_EQ(CountSet(mask), 0u);
}

TEST(PolygonRaster, ACornerLessThanAPixelAboveOrLeftOfTheWindowCountsAsInIt) {
    const MaskBits mask = CreateMaskBits(20, 20, InPixels(20, 20, {{-0.9, -0.5}, {10, 10}, {0, 10}}));
    EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{0, 0, 10, 10}));
    const MaskBits further = CreateMaskBits(16, 16, InPixels(16, 16, {{-1, 3}, {10, 10}, {4, 10}}));
    EXPECT_EQ(further.m_rcBounds, (CutMask::Rectangle{4, 10, 10, 10}));
    const MaskBits right = CreateMaskBits(16, 16, InPixels(16, 16, {{16, 3}, {15.99, 15.99}, {4, 10}}));
    EXPECT_EQ(right.m_rcBounds, (CutMask::Rectangle{4, 10, 15, 15}));
}

TEST(PolygonRaster, OfAWindowWithoutAreaHasNoBits) {
    for (const auto& [width, height] : {std::pair{0, 10}, {10, 0}, {0, 0}, {-3, 10}, {10, -3}}) {
        const MaskBits mask = CreateMaskBits(width, height, Closed({{0, 0}, {1, 0}, {1, 1}}));
        EXPECT_EQ(mask.m_vBits.m_uCount, 0u);
        EXPECT_TRUE(mask.m_vBits.m_vWords.empty());
        EXPECT_EQ(mask.m_rcBounds, CutMask::kNoPixel);
    }
}

TEST(PolygonRaster, ACornerThatIsNoNumberOrHugeDoesNotExtendTheRectangle) {
    for (const double odd : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e12, 3e9}) {
        for (const LassoPoint corner : {LassoPoint{odd, 0.5}, {0.5, odd}, {odd, odd}}) {
            const Points points = Closed({{0.1, 0.1}, {0.8, 0.2}, corner, {0.2, 0.9}});
            const MaskBits mask = CreateMaskBits(40, 30, points);
            EXPECT_EQ(mask.m_rcBounds, (CutMask::Rectangle{4, 3, 32, 27})) << odd;
            ExpectSame(mask, PlainMaskBits(40, 30, points), TextOf(40, 30, points));
        }
    }
}

TEST(PolygonRaster, IsExactInAWindowThatIsWiderThanFloatsAreFine) {
    // Pixel centres are rounded to even numbers here.
    constexpr int kWidth = (1 << 24) + 200;
    const Points points = InPixels(kWidth, 1, {{kWidth - 300.0, 0.2}, {kWidth - 20.25, 0.3}, {kWidth - 60.0, 0.9}});
    ExpectSame(CreateMaskBits(kWidth, 1, points), PlainMaskBits(kWidth, 1, points), "wide");
}

// ---- many polygons

class Random {
public:
    explicit Random(std::uint64_t seed) : m_engine(seed) {}
    int Int(int from, int to) { return from + static_cast<int>(m_engine() % static_cast<unsigned>(to - from + 1)); }
    double Uniform(double from, double to) {
        return from + (to - from) * static_cast<double>(m_engine() >> 11) * 0x1p-53;
    }

private:
    std::mt19937_64 m_engine;
};

/// How corners are chosen, in pixels of the window.
struct CornerSource {
    const char* name;
    LassoPoint (*corner)(Random& random, int width, int height);
};
void PrintTo(const CornerSource& source, std::ostream* out) { *out << source.name; }

const CornerSource kCornerSources[] = {
    {"Anywhere",
     [](Random& random, int width, int height) -> LassoPoint {
         return {random.Uniform(0, width), random.Uniform(0, height)};
     }},
    {"OnPixelCentres",
     [](Random& random, int width, int height) -> LassoPoint {
         return {random.Int(-1, width) + 0.5, random.Int(-1, height) + 0.5};
     }},
    {"OnPixelCorners",
     [](Random& random, int width, int height) -> LassoPoint {
         return {static_cast<double>(random.Int(0, width)), static_cast<double>(random.Int(0, height))};
     }},
    {"OnFewPlaces",
     [](Random& random, int width, int height) -> LassoPoint {  // duplicates, upright and level edges
         return {random.Int(0, 2) * width / 3.0 + 0.5, random.Int(0, 2) * height / 3.0 + 0.5};
     }},
    {"AlsoOutside",
     [](Random& random, int width, int height) -> LassoPoint {
         return {random.Uniform(-2 * width, 3 * width), random.Uniform(-height, 2 * height)};
     }},
    {"OddNumbers",
     [](Random& random, int width, int height) -> LassoPoint {
         const double odd[] = {kNan, kInfinity, -kInfinity, 1e39, -1e39, 1e30, 1e-40, -0.0, -0.5, 2147483648.0};
         LassoPoint point{random.Uniform(0, width), random.Uniform(0, height)};
         if (random.Int(0, 3) == 0) point.x = odd[random.Int(0, 9)];
         if (random.Int(0, 3) == 0) point.y = odd[random.Int(0, 9)];
         return point;
     }},
    {"OnALine",
     [](Random& random, int width, int height) -> LassoPoint {
         const double t = random.Uniform(0, 1);
         return {t * width, t * height};
     }},
    {"CloseToCentres",
     [](Random& random, int width, int height) -> LassoPoint {
         const auto at = [&](int limit) {
             return static_cast<double>(static_cast<float>(random.Int(0, limit)) + 0.5f) + random.Int(-2, 2) * 0x1p-22;
         };
         return {at(width), at(height)};
     }},
};

class PolygonRasterOfManyPolygons : public testing::TestWithParam<CornerSource> {};

TEST_P(PolygonRasterOfManyPolygons, HasTheBitsOfThePlainTest) {
    Random random(20261122);
    std::size_t bits = 0;
    for (int round = 0; round < 700; ++round) {
        const int width = random.Int(1, 140), height = random.Int(1, 40);
        Points points(static_cast<std::size_t>(random.Int(0, round % 10 == 0 ? 60 : 9)));
        for (LassoPoint& point : points) {
            point = GetParam().corner(random, width, height);
            point.x /= width, point.y /= height;
        }
        if (random.Int(0, 9) > 0) points = Closed(points);  // the raster itself does not require it
        const MaskBits mask = CreateMaskBits(width, height, points);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(mask, PlainMaskBits(width, height, points), TextOf(width, height, points)));
        bits += CountSet(mask);
    }
    EXPECT_GT(bits, 1000u) << "the polygons enclose too little to show anything";
}
INSTANTIATE_TEST_SUITE_P(Corners, PolygonRasterOfManyPolygons, testing::ValuesIn(kCornerSources),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PolygonRaster, HasTheBitsOfThePlainTestInLargeWindows) {
    Random random(7);
    for (const int corners : {8, 64, 400}) {
        Points points(static_cast<std::size_t>(corners));
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * M_PI * i / corners, radius = random.Uniform(0.2, 0.5);
            points[static_cast<std::size_t>(i)] = {0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle)};
        }
        points = Closed(points);
        const int width = corners == 64 ? 641 : 320, height = corners == 400 ? 100 : 240;
        ExpectSame(CreateMaskBits(width, height, points), PlainMaskBits(width, height, points), "star");
    }
}

}  // namespace
