// The list of needles without a viewer: the next free id, the head under a point, the look of a new needle.
#include "markers/Needle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>

namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max(), kMin = std::numeric_limits<std::int32_t>::min();
constexpr float kInf = std::numeric_limits<float>::infinity();

std::vector<Needle> NeedlesOf(const std::vector<std::int32_t>& ids) {
    std::vector<Needle> needles;
    for (const std::int32_t id : ids) needles.push_back(MakeNeedle(id, {}, {}, {}));
    return needles;
}

struct NextIdRow {
    const char* name;
    std::vector<std::int32_t> ids;
    std::int32_t next;
};
void PrintTo(const NextIdRow& row, std::ostream* out) { *out << row.name; }

const NextIdRow kNextIds[] = {
    {"OneForAnEmptyList", {}, 1},
    {"AfterTheLargest", {1, 2, 3}, 4},
    {"InTheFirstGap", {1, 3, 5}, 2},
    {"InAGapWhateverTheOrderOfTheList", {5, 1, 2, 4}, 3},
    {"NotBelowTheSmallest", {2, 3}, 4},
    {"AfterOneThatIsNotOne", {7}, 8},
    {"AfterNegativeIds", {-5, 3}, -4},
    {"AcrossZero", {-1, 1}, 0},
    {"AfterMinusOne", {-1}, 0},
    {"BetweenTheSmallestAndTheLargest", {kMin, kMax}, kMin + 1},
    {"UpToTheLargest", {kMax - 1}, kMax},
    {"TheSmallestFreeOneAfterTheLargest", {kMax}, 1},
    {"TheSmallestFreeOneAfterARunToTheLargest", {kMax - 1, kMax, kMax - 2}, 1},
    {"InAGapBeforeTheLargest", {1, 2, kMax}, 3},
    {"InAGapBeforeARunToTheLargest", {kMax - 3, kMax - 1, kMax}, kMax - 2},
};

class NextNeedleIdIs : public testing::TestWithParam<NextIdRow> {};
TEST_P(NextNeedleIdIs, Found) {
    const std::vector<Needle> needles = NeedlesOf(GetParam().ids);
    EXPECT_EQ(NextNeedleId(needles), GetParam().next);
}
INSTANTIATE_TEST_SUITE_P(Needle, NextNeedleIdIs, testing::ValuesIn(kNextIds),
                         [](const auto& row) { return row.param.name; });

TEST(NextNeedleId, IsFreeForEverySetOfSmallIds) {
    for (unsigned set = 0; set < 1u << 9; ++set) {
        std::vector<std::int32_t> ids;
        for (int i = 0; i < 9; ++i)
            if ((set >> i & 1u) != 0) ids.push_back(i - 4);
        std::vector<Needle> needles = NeedlesOf(ids);
        const std::int32_t next = NextNeedleId(needles);
        EXPECT_EQ(FindNeedle(needles, next), nullptr) << set;
        // By counting: the first number after the smallest id that is missing.
        std::int32_t expected = ids.empty() ? 1 : ids.front();
        while (FindNeedle(needles, expected) != nullptr) ++expected;
        EXPECT_EQ(next, expected) << set;
    }
}

TEST(NextNeedleId, ReachesTheSmallestFreeOneOfARunThatSpansAllPositiveOnes) {
    // All ids from the largest down to one below the last free number cannot be listed; a run that touches 1 can.
    std::vector<Needle> needles = NeedlesOf({kMax, kMax - 1});
    EXPECT_EQ(NextNeedleId(needles), 1);
    needles.push_back(MakeNeedle(1, {}, {}, {}));
    EXPECT_EQ(NextNeedleId(needles), 2) << "now there is a gap after 1";
}

TEST(IsOnHead, AddsATenthOfAUnitToTheRadius) {
    Needle needle = MakeNeedle(1, {}, {10, 20, 30}, {.headRadius = 2.0f});
    EXPECT_TRUE(IsOnHead(needle, {10, 20, 30}));
    for (const float sign : {-1.0f, 1.0f}) {
        EXPECT_TRUE(IsOnHead(needle, {10, 20 + sign * 2.0999f, 30}));
        EXPECT_FALSE(IsOnHead(needle, {10, 20 + sign * 2.1001f, 30}));
    }
    const float third = 2.0999f / std::sqrt(3.0f), more = 2.1001f / std::sqrt(3.0f);
    EXPECT_TRUE(IsOnHead(needle, {10 + third, 20 - third, 30 + third}));
    EXPECT_FALSE(IsOnHead(needle, {10 + more, 20 - more, 30 + more}));
    needle.headRadius = 0;
    EXPECT_TRUE(IsOnHead(needle, {10, 20.0999f, 30}));
    EXPECT_FALSE(IsOnHead(needle, {10, 20.1001f, 30}));
}

// 1e30 squared is no float.
TEST(IsOnHead, DoesNotOverflow) {
    const Needle needle = MakeNeedle(1, {}, {}, {.headRadius = 1e30f});
    EXPECT_TRUE(IsOnHead(needle, {9e29f, 0, 0}));
    EXPECT_FALSE(IsOnHead(needle, {1.1e30f, 0, 0}));
}

TEST(IsOnHead, IsFalseForAHeadThatIsNowhere) {
    for (const Float3& head : {Float3{NAN, 0, 0}, Float3{0, kInf, 0}, Float3{0, 0, -kInf}, Float3{NAN, NAN, NAN}})
        EXPECT_FALSE(IsOnHead(MakeNeedle(1, {}, head, {}), {0, 0, 0}));
    EXPECT_FALSE(IsOnHead(MakeNeedle(1, {}, {}, {.headRadius = NAN}), {0, 0, 0}));
    EXPECT_FALSE(IsOnHead(MakeNeedle(1, {}, {}, {.headRadius = INFINITY}), {0, 0, 0}));
    EXPECT_FALSE(IsOnHead(MakeNeedle(1, {}, {INFINITY, 0, 0}, {.headRadius = INFINITY}), {0, 0, 0}));
}

TEST(MakeNeedle, CopiesTheLookAndSelectsNothing) {
    const Needle needle = MakeNeedle(-7, {1, 2, 3}, {4, 5, 6},
                                     {.needleLength = 9,
                                      .headRadius = 8,
                                      .headColor = 0x010203,
                                      .pinSize = 7,
                                      .pinColor = 0x040506,
                                      .hitPointRadius = 6,
                                      .hitPointColor = 0x070809,
                                      .headSelectionColor = 0x0A0B0C});
    EXPECT_EQ(needle.id, -7);
    EXPECT_EQ(needle.pin, (Float3{1, 2, 3}));
    EXPECT_EQ(needle.head, (Float3{4, 5, 6}));
    EXPECT_EQ(needle.headRadius, 8.0f);
    EXPECT_EQ(needle.headColor, 0x010203u);
    EXPECT_EQ(needle.pinSize, 7.0f);
    EXPECT_EQ(needle.pinColor, 0x040506u);
    EXPECT_EQ(needle.hitPointRadius, 6.0f);
    EXPECT_EQ(needle.hitPointColor, 0x070809u);
    EXPECT_EQ(needle.headSelectionColor, 0x0A0B0Cu);
    EXPECT_FALSE(needle.selected);
}

TEST(SelectedNeedleIds, AreInListOrder) {
    std::vector<Needle> needles = NeedlesOf({5, 3, 9, 1});
    EXPECT_TRUE(SelectedNeedleIds(needles).empty());
    FindNeedle(needles, 9)->selected = FindNeedle(needles, 5)->selected = true;
    EXPECT_EQ(SelectedNeedleIds(needles), (std::vector<std::int32_t>{5, 9}));
    EXPECT_EQ(FindNeedle(needles, 4), nullptr);
}

}  // namespace
