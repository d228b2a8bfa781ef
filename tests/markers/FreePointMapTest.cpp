// The free point sets by id: the order of a walk, and the smallest free id.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "markers/FreePointMap.h"

namespace {

std::vector<std::int32_t> Ids(const FreePointMap& map) {
    std::vector<std::int32_t> ids;
    for (const auto& [id, points] : map) ids.push_back(id);
    return ids;
}

FreePointSet SetWith(float alpha) {
    FreePointSet points;
    points.alpha = alpha;
    return points;
}

TEST(FreePointMap, StartsWithEightBucketsAndTheLoadFactorOne) {
    const FreePointMap map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_GE(map.bucket_count(), 8u);
    EXPECT_EQ(map.max_load_factor(), 1.0f);
}

TEST(FreePointMap, WalksFromTheOldestEntryToTheNewest) {
    FreePointMap map;
    for (const std::int32_t id : {7, -3, 100, 0, 2000000, 1}) map[id].id = id;
    EXPECT_EQ(Ids(map), (std::vector<std::int32_t>{7, -3, 100, 0, 2000000, 1}));
    map[100].alpha = 0.5f;  // a change is no new entry
    EXPECT_EQ(Ids(map), (std::vector<std::int32_t>{7, -3, 100, 0, 2000000, 1}));
}

TEST(FreePointMap, MakesAnIdThatWasErasedAndIsUsedAgainTheNewest) {
    FreePointMap map;
    for (const std::int32_t id : {0, 1, 2}) map[id].id = id;
    EXPECT_EQ(map.erase(0), 1u);
    map[0].id = 0;
    EXPECT_EQ(Ids(map), (std::vector<std::int32_t>{1, 2, 0}));
}

TEST(FreePointMap, KeepsTheOrderAndTheReferencesWhenItGrowsOverItsBuckets) {
    FreePointMap map;
    const FreePointSet* first = &map[5000];
    std::vector<std::int32_t> expected{5000};
    for (std::int32_t id = 3000; id > 0; --id) map[id], expected.push_back(id);
    EXPECT_EQ(Ids(map), expected);
    EXPECT_EQ(&map[5000], first);
    EXPECT_GE(map.bucket_count(), 3001u);
}

TEST(FreePointMap, EmplaceKeepsAnOlderEntry) {
    FreePointMap map;
    const auto [made, isNew] = map.emplace(3, SetWith(0.25f));
    EXPECT_TRUE(isNew);
    EXPECT_EQ(made->first, 3);
    const auto [found, isNewAgain] = map.emplace(3, SetWith(0.75f));
    EXPECT_FALSE(isNewAgain);
    EXPECT_EQ(found, made);
    EXPECT_EQ(map[3].alpha, 0.25f);
    EXPECT_EQ(map.size(), 1u);
}

TEST(FreePointMap, FindsAndErasesById) {
    FreePointMap map;
    map[4].alpha = 0.5f;
    ASSERT_NE(map.find(4), map.end());
    EXPECT_EQ(map.find(4)->second.alpha, 0.5f);
    EXPECT_EQ(map.find(5), map.end());
    EXPECT_EQ(map.erase(5), 0u);
    EXPECT_EQ(map.erase(4), 1u);
    EXPECT_EQ(map.erase(4), 0u);
    EXPECT_EQ(map.find(4), map.end());
    EXPECT_FALSE(map.contains(4));
    EXPECT_TRUE(map.empty());
}

TEST(FreePointMap, GivesTheSmallestIdFromZeroWithoutAnEntry) {
    FreePointMap map;
    EXPECT_EQ(map.SmallestFreeId(), 0);
    EXPECT_EQ(map.SmallestFreeId(), 0);  // asking takes no id
    map[0], map[1], map[3], map[-1];
    EXPECT_EQ(map.SmallestFreeId(), 2);
    map[2];
    EXPECT_EQ(map.SmallestFreeId(), 4);
    map.erase(3), map.erase(1), map.erase(-1);
    EXPECT_EQ(map.SmallestFreeId(), 1);
    map[1];
    EXPECT_EQ(map.SmallestFreeId(), 3);
    map.clear();
    EXPECT_EQ(map.SmallestFreeId(), 0);
}

// Against a search from 0 on, with ids chosen by the map and by the caller.
TEST(FreePointMap, GivesTheSameFreeIdsAsASearchAfterManyChanges) {
    FreePointMap map;
    std::mt19937 random(5);
    for (int step = 0; step < 20000; ++step) {
        const auto id = static_cast<std::int32_t>(random() % 60) - 3;
        switch (random() % 4) {
            case 0:
                map.erase(id);
                break;
            case 1:
                map[id];
                break;
            default:
                map[map.SmallestFreeId()];
        }
        if (step % 5000 == 4999) map.clear();
        std::int32_t expected = 0;
        while (map.find(expected) != map.end()) ++expected;
        ASSERT_EQ(map.SmallestFreeId(), expected) << step;
    }
}

// With a search from 0 on for each of them, this would be 10^10 steps.
TEST(FreePointMap, FindsFreeIdsAmongManySetsWithoutASearchFromZero) {
    constexpr std::int32_t kCount = 100000;
    FreePointMap map;
    for (std::int32_t i = 0; i < kCount; ++i) {
        ASSERT_EQ(map.SmallestFreeId(), i);
        map[i];
    }
    for (std::int32_t i = 0; i < kCount; ++i) {  // one hole, then the end
        map.erase(0);
        ASSERT_EQ(map.SmallestFreeId(), 0);
        map[0];
        ASSERT_EQ(map.SmallestFreeId(), kCount + i);
        map[kCount + i];
    }
}

}  // namespace
