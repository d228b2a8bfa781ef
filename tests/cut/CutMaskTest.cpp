// Which vertices a mask removes: single rules on a mask of a few pixels, and the loop over several vertices at a time
// against one after the other.
#include "KV_ScenePane/CutMask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <vector>

using ACAD::CutMask;
using KV_ScenePane::Vertex;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity(), kNan = std::numeric_limits<float>::quiet_NaN();
constexpr std::array<double, 16> kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Vertex At(float x, float y, float z = 0.0f) {
    Vertex vertex;
    vertex.x = x, vertex.y = y, vertex.z = z;
    return vertex;
}

void SetPixel(CutMask& mask, int x, int y) {
    const auto bit = static_cast<std::size_t>(y * mask.m_nViewport[2] + x);
    mask.m_vBits.m_vWords[bit / 32] |= 1u << (bit % 32);
    auto& bounds = mask.m_rcBounds;
    bounds = {std::min(bounds[0], x), std::min(bounds[1], y), std::max(bounds[2], x), std::max(bounds[3], y)};
}

/// A window of 8 x 6 pixels. Without a camera -1 to 1 are its edges.
CutMask SmallMask(std::uint32_t kind) {
    CutMask mask;
    mask.m_nKind = kind;
    mask.m_dProjection = mask.m_dModelView = kIdentity;
    mask.m_nViewport = {0, 0, 8, 6};
    mask.m_vBits.m_uCount = 48;
    mask.m_vBits.m_vWords.resize(2);
    if (kind == ACAD::CutKindVisibleInside) mask.m_vDepth.assign(48, 0.5f);
    return mask;
}

/// What SmallMask() projects to a place in the window, y downward.
Vertex AtWindow(float x, float y, float depth = 0.5f) { return At(x / 4 - 1, 1 - y / 3, 2 * depth - 1); }
/// What is tested against that pixel of the mask: a point is looked up a row above the one that shows it.
Vertex Over(int x, int y) { return AtWindow(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 1.5f); }

/// The bits as 0 and 1.
std::vector<int> Marks(const CutMask& mask, const std::vector<Vertex>& vertices) {
    std::vector<std::uint32_t> bits((vertices.size() + 31) / 32);
    const bool isAny = mask.MarkVertices(vertices, bits);
    std::vector<int> marks;
    marks.reserve(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i) marks.push_back(static_cast<int>((bits[i / 32] >> (i % 32)) & 1));
    EXPECT_EQ(isAny, std::count(marks.begin(), marks.end(), 1) > 0);
    return marks;
}

TEST(CutMask, RemovesWhatProjectsIntoASetPixel) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    SetPixel(mask, 2, 1);
    SetPixel(mask, 4, 3);
    EXPECT_EQ(Marks(mask, {Over(2, 1), Over(4, 3), Over(3, 2), Over(2, 4)}), (std::vector<int>{1, 1, 0, 0}));
}

TEST(CutMask, OfTheOutsideKindRemovesEverythingElse) {
    CutMask mask = SmallMask(ACAD::CutKindOutside);
    SetPixel(mask, 2, 1);
    SetPixel(mask, 4, 3);
    EXPECT_EQ(Marks(mask, {Over(2, 1), Over(3, 2), At(5, 5), At(kNan, 0), At(0, kInfinity)}),
              (std::vector<int>{0, 1, 1, 1, 1}));
}

TEST(CutMask, HidesWhatIsMoreThanAThousandthBehindTheShownSurface) {
    CutMask mask = SmallMask(ACAD::CutKindVisibleInside);
    SetPixel(mask, 2, 1);
    mask.m_vDepth[(6 - 1 - 1) * 8 + 2] = 0.25f;
    const auto at = [](float depth) { return AtWindow(2.5f, 2.5f, depth); };
    EXPECT_EQ(Marks(mask, {at(0.25f), at(0.2f), at(0.25098f), at(0.25102f), at(0.5f), Over(3, 2)}),
              (std::vector<int>{1, 1, 1, 0, 0, 0}));
}

TEST(CutMask, ADepthThatIsNoNumberHidesNothing) {
    CutMask mask = SmallMask(ACAD::CutKindVisibleInside);
    SetPixel(mask, 2, 0);
    EXPECT_EQ(Marks(mask, {At(-0.375f, 0.5f, kNan)}), (std::vector<int>{0})) << "no coordinate is a number then";
    mask.m_dModelView[10] = 0;  // z of the vertex has no part
    mask.m_dModelView[14] = std::numeric_limits<double>::quiet_NaN();
    mask.m_dProjection[8] = mask.m_dProjection[9] = mask.m_dProjection[11] = 0;
    EXPECT_EQ(Marks(mask, {At(-0.375f, 0.5f)}), (std::vector<int>{0})) << "0 times not a number";
    mask.m_dModelView[14] = 0;
    mask.m_vDepth.assign(48, kNan);
    EXPECT_EQ(Marks(mask, {At(-0.375f, 0.5f), At(-0.375f, 0.5f, 1e30f)}), (std::vector<int>{1, 1}));
    mask.m_vDepth.assign(48, 1.0f);
    mask.m_dProjection[10] = 1e300;
    mask.m_dModelView[10] = 1;
    EXPECT_EQ(Marks(mask, {At(-0.375f, 0.5f, 1e30f), At(-0.375f, 0.5f, -1e30f)}), (std::vector<int>{0, 1}))
        << "infinitely far and infinitely near";
    mask.m_vDepth.assign(48, kInfinity);
    EXPECT_EQ(Marks(mask, {At(-0.375f, 0.5f, 1e30f)}), (std::vector<int>{1})) << "at the same depth";
}

TEST(CutMask, ReadsTheDepthsFromTheBottomUpInWindowsOfOddSizes) {
    CutMask mask;
    mask.m_nKind = ACAD::CutKindVisibleInside;
    mask.m_dProjection = mask.m_dModelView = kIdentity;
    mask.m_nViewport = {0, 0, 7, 5};
    mask.m_vBits.m_uCount = 35;
    mask.m_vBits.m_vWords.resize(2);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x) SetPixel(mask, x, y);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            mask.m_vDepth.assign(35, 0.0f);
            mask.m_vDepth[static_cast<std::size_t>((4 - y) * 7 + x)] = 1.0f;
            for (int row = 0; row < 5; ++row) {
                for (int column = 0; column < 7; ++column) {
                    const Vertex vertex = At((static_cast<float>(column) + 0.5f) / 3.5f - 1,
                                             1 - (static_cast<float>(row) + 1.5f) / 2.5f, 0);
                    EXPECT_EQ(Marks(mask, {vertex})[0], row == y && column == x ? 1 : 0);
                }
            }
        }
    }
}

TEST(CutMask, WithoutSetPixelsRemovesNothingInsideAndEverythingOutside) {
    const std::vector<Vertex> vertices = {Over(2, 1), At(7, 7), At(0, 0), At(kNan, kNan, kNan)};
    EXPECT_EQ(Marks(SmallMask(ACAD::CutKindInside), vertices), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(Marks(SmallMask(ACAD::CutKindVisibleInside), vertices), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(Marks(SmallMask(ACAD::CutKindOutside), vertices), (std::vector<int>{1, 1, 1, 1}));
}

TEST(CutMask, OfNoVerticesRemovesNone) {
    EXPECT_FALSE(SmallMask(ACAD::CutKindOutside).MarkVertices({}, {}));
    EXPECT_FALSE(SmallMask(ACAD::CutKindOutside).InvalidateVertices({}));
}

TEST(CutMask, TestsAVertexBehindTheCameraAsAnyOther) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    mask.m_dProjection[11] = -1;  // w = -z
    mask.m_dProjection[15] = 0;
    SetPixel(mask, 2, 0);
    // The point mirrored at the camera falls on the same pixel.
    EXPECT_EQ(Marks(mask, {At(-0.75f, 1.0f, -2), At(0.75f, -1.0f, 2), At(-0.75f, 1.0f, 2)}),
              (std::vector<int>{1, 1, 0}));
}

TEST(CutMask, APointWithoutAProjectionIsWhereTheOneBeforeItWas) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    mask.m_dProjection[11] = -1;  // w = -z
    mask.m_dProjection[15] = 0;
    SetPixel(mask, 2, 0);
    const Vertex inside = At(-0.375f, 0.5f, -1), outside = At(0.9f, 0.9f, -1), none = At(7, 7, 0);
    EXPECT_EQ(Marks(mask, {none, inside, none, none, outside, none, inside, none}),
              (std::vector<int>{0, 1, 1, 1, 0, 0, 1, 1}));
}

TEST(CutMask, APointWithoutAProjectionIsWhereTheOneBeforeItWasAtAnyPlace) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    mask.m_dProjection[11] = -1;  // w = -z
    mask.m_dProjection[15] = 0;
    SetPixel(mask, 2, 0);
    const Vertex inside = At(-0.375f, 0.5f, -1), outside = At(0.9f, 0.9f, -1), none = At(7, 7, 0);
    for (std::size_t place = 2; place < 140; ++place) {
        std::vector<Vertex> vertices(140, outside);
        vertices[place - 2] = inside;
        vertices[place] = none;
        std::vector<int> expected(140, 0);
        expected[place - 2] = 1;
        EXPECT_EQ(Marks(mask, vertices), expected) << place;
        vertices[place - 1] = inside;
        expected[place - 1] = expected[place] = 1;
        EXPECT_EQ(Marks(mask, vertices), expected) << place;
        // A vertex that is not tested because it has no pixel is not the one before.
        vertices[place - 1] = outside;
        vertices[place - 1].gridIndex = 0xFFFFFFFF;
        EXPECT_TRUE(mask.InvalidateVertices(vertices));
        EXPECT_EQ(vertices[place].gridIndex, 0xFFFFFFFF) << place;
    }
}

TEST(CutMask, SumsTheProductsInTheOrderOfTheCoordinates) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    mask.m_dModelView[0] = 1e20, mask.m_dModelView[4] = -1e20, mask.m_dModelView[8] = 1;
    mask.m_dModelView[5] = 0.5;
    SetPixel(mask, 2, 0);
    EXPECT_EQ(Marks(mask, std::vector<Vertex>(33, At(1, 1, -0.375f))), std::vector<int>(33, 1));
}

TEST(CutMask, TheFirstPointWithoutAProjectionIsAtTheBottomLeftPixel) {
    CutMask mask = SmallMask(ACAD::CutKindVisibleInside);
    mask.m_dProjection = {};  // w = 0
    SetPixel(mask, 0, 5);
    EXPECT_EQ(Marks(mask, std::vector<Vertex>(40, At(3, 3, 3))), std::vector<int>(40, 1));
    mask.m_vDepth[0] = -0.01f;  // depth 0 is behind it
    EXPECT_EQ(Marks(mask, std::vector<Vertex>(40, At(3, 3, 3))), std::vector<int>(40, 0));
}

TEST(CutMask, TruncatesWindowCoordinatesTowardsZero) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x) SetPixel(mask, x, y);
    EXPECT_EQ(Marks(mask, {AtWindow(-0.5f, 3), AtWindow(-1, 3), AtWindow(7.9f, 3), AtWindow(8, 3)}),
              (std::vector<int>{1, 0, 1, 0}))
        << "half a pixel left of the window is its first column";
    // The row is the distance from the top minus one, truncated: the first two rows of pixels share row 0.
    EXPECT_EQ(Marks(mask, {AtWindow(3, 0.1f), AtWindow(3, 0), AtWindow(3, 6.9f), AtWindow(3, 7.1f)}),
              (std::vector<int>{1, 0, 1, 0}));
}

TEST(CutMask, APointLiesARowAboveThePixelThatShowsIt) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    SetPixel(mask, 2, 3);
    EXPECT_EQ(Marks(mask, {AtWindow(2.5f, 3.5f), AtWindow(2.5f, 4.5f), AtWindow(2.5f, 4.01f), AtWindow(2.5f, 5.01f)}),
              (std::vector<int>{0, 1, 1, 0}));
}

TEST(CutMask, PointsThatAreNotFiniteOrFarAwayAreOutside) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x) SetPixel(mask, x, y);
    std::vector<Vertex> vertices;
    for (const float odd : {kNan, kInfinity, -kInfinity, 3e38f, -3e38f, 1e9f, -1e9f, 5.4e8f, 1e20f}) {
        for (const Vertex& vertex : {At(odd, 0), At(0, odd), At(odd, odd)}) vertices.push_back(vertex);
    }
    EXPECT_EQ(Marks(mask, vertices), std::vector<int>(vertices.size(), 0));
    mask.m_nKind = ACAD::CutKindOutside;
    EXPECT_EQ(Marks(mask, vertices), std::vector<int>(vertices.size(), 1));
}

TEST(CutMask, StartsAtTheOriginOfTheViewport) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    mask.m_nViewport[0] = 2, mask.m_nViewport[1] = -1;
    SetPixel(mask, 4, 3);
    // Two pixels right and one down of where it was.
    EXPECT_EQ(Marks(mask, {AtWindow(2.5f, 3.5f), AtWindow(4.5f, 4.5f)}), (std::vector<int>{1, 0}));
}

TEST(CutMask, ReadsNoBitsBeyondThoseThatItHas) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    SetPixel(mask, 2, 1);
    mask.m_rcBounds = {0, 0, 1000, 1000};
    mask.m_nViewport = {0, 0, 1000, 1000};  // larger than the window, whose resize was not drawn yet
    std::vector<Vertex> vertices;
    for (int i = 0; i < 64; ++i) vertices.push_back(At(static_cast<float>(i) / 32 - 1, -0.5f));
    EXPECT_EQ(Marks(mask, vertices), std::vector<int>(64, 0));
    // The last word has bits after the last pixel.
    mask.m_vBits.m_vWords[1] = 0xFFFF0000;
    EXPECT_EQ(Marks(mask, {At(-0.899f, 0.997f)}), (std::vector<int>{0})) << "column 50 of row 0";
}

TEST(CutMask, LeavesTheBitsOfOtherVerticesAsTheyAre) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    SetPixel(mask, 2, 1);
    std::vector<Vertex> vertices(40, At(9, 9));
    vertices[33] = AtWindow(2.5f, 2.5f);
    std::uint32_t bits[] = {0xF0u, 0xF001u, 0xABCDu};
    EXPECT_TRUE(mask.MarkVertices(vertices, bits));
    EXPECT_EQ(bits[0], 0xF0u);
    EXPECT_EQ(bits[1], 0xF003u);
    EXPECT_EQ(bits[2], 0xABCDu);
}

TEST(InvalidateVertices, SetsTheGridIndexOfTheRemovedVerticesAlone) {
    CutMask mask = SmallMask(ACAD::CutKindInside);
    SetPixel(mask, 2, 1);
    std::vector<Vertex> vertices = {AtWindow(2.5f, 2.5f), At(9, 9), AtWindow(2.5f, 2.5f), AtWindow(2.5f, 2.5f)};
    vertices[0].gridIndex = 0x7FFFFFFF;
    vertices[1].gridIndex = 7;
    vertices[2].gridIndex = 0x80000000;  // negative: removed before
    vertices[3].gridIndex = 0;
    vertices[3].color = 5;
    EXPECT_TRUE(mask.InvalidateVertices(vertices));
    EXPECT_EQ(vertices[0].gridIndex, 0xFFFFFFFFu);
    EXPECT_EQ(vertices[1].gridIndex, 7u);
    EXPECT_EQ(vertices[2].gridIndex, 0x80000000u);
    EXPECT_EQ(vertices[3].gridIndex, 0xFFFFFFFFu);
    EXPECT_EQ(vertices[3].color, 5u);
    EXPECT_FALSE(mask.InvalidateVertices(vertices)) << "all that it removes are removed already";
}

// ---- the plain loop

/// The rules one after the other, for one vertex at a time.
class PlainTest {
public:
    explicit PlainTest(const CutMask& mask) : m_mask(mask) {}

    bool IsRemoved(const Vertex& vertex) {
        float e[4], c[4];
        Multiply(m_mask.m_dModelView, vertex.x, vertex.y, vertex.z, 1.0f, e);
        Multiply(m_mask.m_dProjection, e[0], e[1], e[2], e[3], c);
        const auto& viewport = m_mask.m_nViewport;
        if (c[3] != 0) {
            m_x = (c[0] / c[3] * 0.5f + 0.5f) * static_cast<float>(viewport[2]) + static_cast<float>(viewport[0]);
            m_y = (c[1] / c[3] * 0.5f + 0.5f) * static_cast<float>(viewport[3]) + static_cast<float>(viewport[1]);
            m_z = c[2] / c[3] * 0.5f + 0.5f;
        }
        const double x = std::trunc(static_cast<double>(m_x));
        const double y = std::trunc(static_cast<double>(static_cast<float>(viewport[3]) - m_y) - 1.0);
        const auto& bounds = m_mask.m_rcBounds;
        bool isInside = x >= bounds[0] && x <= bounds[2] && y >= bounds[1] && y <= bounds[3];
        const auto column = isInside ? static_cast<std::int64_t>(x) : 0,
                   row = isInside ? static_cast<std::int64_t>(y) : 0;
        if (isInside) isInside = m_mask.m_vBits.IsSet(static_cast<std::size_t>(row * viewport[2] + column));
        if (m_mask.m_nKind == 1) return !isInside;
        if (m_mask.m_nKind == 0 || !isInside) return isInside;
        const float depth = m_mask.m_vDepth[static_cast<std::size_t>((viewport[3] - row - 1) * viewport[2] + column)];
        return !(static_cast<double>(m_z) - 0.001 > static_cast<double>(depth));
    }

private:
    static void Multiply(const std::array<double, 16>& m, float x, float y, float z, float w, float (&out)[4]) {
        for (std::size_t i = 0; i < 4; ++i) {
            double sum = m[i] * static_cast<double>(x);
            sum += m[4 + i] * static_cast<double>(y);
            sum += m[8 + i] * static_cast<double>(z);
            sum += m[12 + i] * static_cast<double>(w);
            out[i] = static_cast<float>(sum);
        }
    }
    const CutMask& m_mask;
    float m_x = 0, m_y = 0, m_z = 0;
};

class Random {
public:
    explicit Random(std::uint64_t seed) : m_engine(seed) {}
    int Int(int from, int to) { return from + static_cast<int>(m_engine() % static_cast<unsigned>(to - from + 1)); }
    double Uniform(double from, double to) {
        return from + (to - from) * static_cast<double>(m_engine() >> 11) * 0x1p-53;
    }
    bool OneIn(int n) { return Int(1, n) == 1; }

private:
    std::mt19937_64 m_engine;
};

CutMask RandomMask(Random& random) {
    CutMask mask;
    mask.m_nKind = static_cast<std::uint32_t>(random.Int(0, 2));
    const int width = random.Int(1, 70), height = random.Int(1, 50);
    mask.m_nViewport = {random.OneIn(3) ? random.Int(-9, 9) : 0, random.OneIn(3) ? random.Int(-9, 9) : 0, width,
                        height};
    mask.m_vBits.m_uCount = static_cast<std::uint64_t>(width * height);
    mask.m_vBits.m_vWords.resize((mask.m_vBits.m_uCount + 31) / 32);
    const int left = random.Int(0, width - 1), top = random.Int(0, height - 1);
    const int right = random.Int(left, width - 1), bottom = random.Int(top, height - 1);
    if (!random.OneIn(20))
        for (int y = top; y <= bottom; ++y)
            for (int x = left; x <= right; ++x)
                if (!random.OneIn(4)) SetPixel(mask, x, y);
    // A rectangle with set pixels around it: what is outside the rectangle is not looked up.
    if (random.OneIn(3) && mask.m_rcBounds != CutMask::kNoPixel)
        mask.m_rcBounds[0] += 1, mask.m_rcBounds[1] += 1, mask.m_rcBounds[2] -= 1, mask.m_rcBounds[3] -= 1;
    for (int i = 0; i < 16; ++i) {
        const auto at = static_cast<std::size_t>(i);
        mask.m_dModelView[at] = kIdentity[at] + random.Uniform(-0.3, 0.3);
        mask.m_dProjection[at] = kIdentity[at] + random.Uniform(-0.3, 0.3);
    }
    if (random.OneIn(3)) mask.m_dModelView = kIdentity;
    if (random.OneIn(3)) mask.m_dProjection = kIdentity;
    if (random.OneIn(3)) mask.m_dProjection[11] = -1, mask.m_dProjection[15] = 0;
    if (random.OneIn(30)) mask.m_dProjection[static_cast<std::size_t>(random.Int(0, 15))] = 1e300;
    if (random.OneIn(30)) mask.m_dProjection = {};
    if (mask.m_nKind == 2) {
        mask.m_vDepth.resize(mask.m_vBits.m_uCount);
        for (float& depth : mask.m_vDepth) depth = static_cast<float>(random.Uniform(0, 1));
        if (random.OneIn(3)) mask.m_vDepth[0] = kNan;
    }
    return mask;
}

/// @param isRound  coordinates on edges and centres of pixels, and those whose w is 0 with a perspective
Vertex RandomVertex(Random& random, const CutMask& mask, bool isRound) {
    constexpr float kOdd[] = {kNan, kInfinity, -kInfinity, 3e38f, 1e10f, -1e10f, 1e-40f, -0.0f};
    const auto coordinate = [&](int pixels) {
        if (isRound && pixels > 0)
            return static_cast<float>(random.Int(-4, 2 * pixels + 4)) / static_cast<float>(pixels) - 1;
        if (isRound) return static_cast<float>(random.Int(-1, 1));
        return static_cast<float>(random.Uniform(-1.2, 1.2));
    };
    Vertex vertex = At(coordinate(mask.m_nViewport[2]), coordinate(mask.m_nViewport[3]), coordinate(0));
    if (random.OneIn(20)) vertex.x = kOdd[random.Int(0, 7)];
    if (random.OneIn(20)) vertex.y = kOdd[random.Int(0, 7)];
    if (random.OneIn(20)) vertex.z = kOdd[random.Int(0, 7)];
    vertex.gridIndex = random.OneIn(3) ? 0xFFFFFFFF : static_cast<std::uint32_t>(random.Int(0, 1000000));
    return vertex;
}

TEST(CutMask, HasTheBitsOfAPlainLoop) {
    Random random(20261122);
    std::size_t removed = 0, kept = 0;
    for (int round = 0; round < 3000; ++round) {
        const CutMask mask = RandomMask(random);
        std::vector<Vertex> vertices(static_cast<std::size_t>(random.Int(0, 300)));
        const bool isRound = random.OneIn(2);
        for (Vertex& vertex : vertices) vertex = RandomVertex(random, mask, isRound);
        const std::span<const Vertex> part = std::span(vertices).subspan(vertices.empty() ? 0 : random.Int(0, 1));
        std::vector<std::uint32_t> bits((part.size() + 31) / 32), expected(bits);
        PlainTest plain(mask);
        bool isAny = false;
        for (std::size_t i = 0; i < part.size(); ++i) {
            const bool isRemoved = plain.IsRemoved(part[i]);
            expected[i / 32] |= static_cast<std::uint32_t>(isRemoved) << (i % 32);
            isAny = isAny || isRemoved;
            ++(isRemoved ? removed : kept);
        }
        ASSERT_EQ(mask.MarkVertices(part, bits), isAny) << "round " << round;
        ASSERT_EQ(bits, expected) << "round " << round;
    }
    EXPECT_GT(removed, 10000u);
    EXPECT_GT(kept, 10000u);
}

TEST(InvalidateVertices, HasTheResultOfAPlainLoop) {
    Random random(5);
    std::size_t removed = 0;
    for (int round = 0; round < 1500; ++round) {
        const CutMask mask = RandomMask(random);
        std::vector<Vertex> vertices(static_cast<std::size_t>(random.Int(0, 300)));
        const bool isRound = random.OneIn(2);
        for (Vertex& vertex : vertices) vertex = RandomVertex(random, mask, isRound);
        std::vector<Vertex> expected = vertices;
        PlainTest plain(mask);
        bool isAny = false;
        for (Vertex& vertex : expected) {
            if (static_cast<std::int32_t>(vertex.gridIndex) < 0 || !plain.IsRemoved(vertex)) continue;
            vertex.gridIndex = 0xFFFFFFFF;
            isAny = true;
            ++removed;
        }
        ASSERT_EQ(mask.InvalidateVertices(vertices), isAny) << "round " << round;
        ASSERT_TRUE(vertices.empty() ||
                    std::memcmp(vertices.data(), expected.data(), vertices.size() * sizeof(Vertex)) == 0)
            << "round " << round;
    }
    EXPECT_GT(removed, 10000u);
}

}  // namespace
