// The masks of the objects as a host reads them.
#include <algorithm>

#include "cut/CutScene.h"

namespace {

using Pointers = std::vector<const ACAD::CutMask*>;

bool Cut(CutControl& c, const LassoCorners& corners) {
    return c->CutWithLasso(KV_ScenePane::PolygonInside, FractionsOf(corners, 640, 480));
}
const LassoCorners kCorner = RectangleOf(120, 40, 200, 120);

std::int32_t CountMasks(CutControl& c) {
    std::int32_t count = -5;
    EXPECT_EQ(c->GetCutMasks(&count, nullptr), KV_ScenePane::kVariantTrue);
    return count;
}
Pointers Fetch(CutControl& c, std::int32_t number) {
    Pointers pointers(static_cast<std::size_t>(number));
    std::int32_t count = number;
    EXPECT_EQ(c->GetCutMasks(&count, pointers.data()), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(count, number);
    return pointers;
}

TEST(GetCutMasks, WithoutACountIsRefused) {
    CutControl c;
    const ACAD::CutMask* pointer = nullptr;
    EXPECT_EQ(c->GetCutMasks(nullptr, nullptr), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(c->GetCutMasks(nullptr, &pointer), KV_ScenePane::kVariantFalse);
}

TEST(GetCutMasks, WithoutACutReportsNone) {
    CutControl c;
    EXPECT_EQ(CountMasks(c), 0);
}

TEST(GetCutMasks, CountsAMaskOfTwoObjectsOnce) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    ASSERT_EQ(c->m_vpMeshes[0]->m_vpCutMasks, c->m_vpMeshes[1]->m_vpCutMasks);
    EXPECT_EQ(CountMasks(c), 1);
    EXPECT_EQ(Fetch(c, 1), Pointers{c->m_vpMeshes[0]->m_vpCutMasks[0].get()});
}

TEST(GetCutMasks, ReturnsTheirAddressesInAscendingOrder) {
    CutControl c;
    Pointers announced;
    c.host.onMask = [&](const ACAD::CutMask& mask) { announced.push_back(&mask); };
    for (int i = 0; i < 12; ++i) ASSERT_TRUE(Cut(c, RectangleOf(140 + 20 * i, 60, 164 + 20 * i, 90)));
    std::ranges::sort(announced, std::less<>());
    EXPECT_EQ(CountMasks(c), 12);
    EXPECT_EQ(Fetch(c, 12), announced);
    EXPECT_EQ(Fetch(c, 5), Pointers(announced.begin(), announced.begin() + 5)) << "fewer are allowed";
}

TEST(GetCutMasks, OfNoneWritesNothing) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    const ACAD::CutMask untouched;
    const ACAD::CutMask* pointer = &untouched;
    std::int32_t count = 0;
    EXPECT_EQ(c->GetCutMasks(&count, &pointer), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(pointer, &untouched);
    EXPECT_EQ(count, 0);
}

TEST(GetCutMasks, OfMoreThanThereAreOrOfANegativeNumberWritesNothing) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    const ACAD::CutMask untouched;
    Pointers pointers(2, &untouched);
    for (const std::int32_t number : {2, 1000000, -1, INT32_MIN}) {
        std::int32_t count = number;
        EXPECT_EQ(c->GetCutMasks(&count, pointers.data()), KV_ScenePane::kVariantFalse);
        EXPECT_EQ(count, number);
        EXPECT_EQ(pointers, Pointers(2, &untouched));
    }
    std::int32_t count = -3;
    EXPECT_EQ(c->GetCutMasks(&count, nullptr), KV_ScenePane::kVariantTrue) << "a query reads no count";
    EXPECT_EQ(count, 1);
}

TEST(GetCutMasks, LosesTheMaskOfACutThatIsTakenBack) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    ASSERT_TRUE(Cut(c, kCorner));
    EXPECT_EQ(CountMasks(c), 2);
    c->PerformUndo();
    EXPECT_EQ(CountMasks(c), 1);
    c->PerformUndo();
    EXPECT_EQ(CountMasks(c), 0);
}

TEST(GetCutMasks, GivesTheHistoryOfAnObjectInTheOrderOfItsCuts) {
    CutControl c;
    Pointers announced;
    c.host.onMask = [&](const ACAD::CutMask& mask) { announced.push_back(&mask); };
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    ASSERT_TRUE(Cut(c, kCorner));
    Pointers held;
    for (const auto& mask : c->m_vpMeshes[0]->m_vpCutMasks) held.push_back(mask.get());
    EXPECT_EQ(held, announced);
}

TEST(GetCutMasks, KeepsAMaskAliveWhileAnUndoStepHoldsIt) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    const std::weak_ptr<const ACAD::CutMask> mask = c->m_vpMeshes[0]->m_vpCutMasks[0];
    ASSERT_TRUE(Cut(c, kCorner));
    c->DeleteObject(0);
    c->DeleteObject(0);
    EXPECT_EQ(CountMasks(c), 0);
    EXPECT_FALSE(mask.expired());
    c->ClearUndoStack();
    EXPECT_TRUE(mask.expired());
}

TEST(ClearCutMasks, EmptiesTheListsOfTheSceneAndKeepsItsShape) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    const auto counts = VertexCounts(*c);
    c.window->Forget();
    c->ClearCutMasks();
    EXPECT_EQ(CountMasks(c), 0);
    EXPECT_EQ(VertexCounts(*c), counts);
    EXPECT_EQ(c->GetUndoStepCount(), 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

TEST(ClearCutMasks, LeavesThoseOfOlderGenerations) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    ASSERT_TRUE(Cut(c, kCorner));
    c->ClearCutMasks();
    c->PerformUndo();
    EXPECT_EQ(c->m_vpMeshes[0]->m_vpCutMasks.size(), 1u);
    EXPECT_EQ(CountMasks(c), 1);
}

TEST(CutMasks, OfAnObjectThatLosesNothingStayAsTheyAre) {
    CutControl c;
    ASSERT_TRUE(Cut(c, kMiddleBlock));
    const auto former = c->m_vpMeshes[1];
    ASSERT_TRUE(c->CutWithLasso(KV_ScenePane::PolygonVisible, FractionsOf(kCorner, 640, 480)));
    EXPECT_EQ(c->m_vpMeshes[1], former);
    EXPECT_EQ(former->m_vpCutMasks.size(), 1u);
    EXPECT_EQ(c->m_vpMeshes[0]->m_vpCutMasks.size(), 2u);
}

}  // namespace
