// Needles by the methods of the host: what is stored, which events are fired in which order, and what is repainted
// when.
#include <gtest/gtest.h>

#include <array>

#include "markers/NeedleHelp.h"

namespace {

constexpr auto kTrue = KV_ScenePane::kVariantTrue, kFalse = KV_ScenePane::kVariantFalse;

// ---- settings

TEST_F(Needles, StoreTheirModes) {
    EXPECT_EQ(pane->GetNeedlePickingMode(), kFalse);
    EXPECT_EQ(pane->GetNeedleDrawingMode(), kFalse);
    for (const std::int16_t on : std::initializer_list<std::int16_t>{-1, 1, 256}) {
        pane->SetNeedlePickingMode(on);
        pane->SetNeedleDrawingMode(on);
        EXPECT_EQ(pane->GetNeedlePickingMode(), kTrue) << on;
        EXPECT_EQ(pane->GetNeedleDrawingMode(), kTrue) << on;
        pane->SetNeedlePickingMode(0);
        pane->SetNeedleDrawingMode(0);
        EXPECT_EQ(pane->GetNeedlePickingMode(), kFalse);
        EXPECT_EQ(pane->GetNeedleDrawingMode(), kFalse);
    }
}

TEST_F(Needles, KeepTheLookThatWasSetAtTheirCreation) {
    Create({1});
    pane->SetNeedleRenderParameters(20, 2, 0x010203, 3, 0x040506, 4, -1, 0x0A0B0C);
    Create({2});
    pane->SetNeedleRenderParameters(0, 0, 0, 0, 0, 0, 0, 0);
    const Needle &first = pane->m_vNeedles[0], &second = pane->m_vNeedles[1];
    EXPECT_EQ(first.headRadius, 1.0f);
    EXPECT_EQ(first.headColor, 0xFFu);
    EXPECT_EQ(first.pinSize, 0.33f);
    EXPECT_EQ(first.pinColor, 0x505050u);
    EXPECT_EQ(first.hitPointRadius, 0.25f);
    EXPECT_EQ(first.hitPointColor, 0xFF0000u);
    EXPECT_EQ(first.headSelectionColor, 0u);
    EXPECT_EQ(second.headRadius, 2.0f);
    EXPECT_EQ(second.headColor, 0x010203u);
    EXPECT_EQ(second.pinSize, 3.0f);
    EXPECT_EQ(second.pinColor, 0x040506u);
    EXPECT_EQ(second.hitPointRadius, 4.0f);
    EXPECT_EQ(second.hitPointColor, 0xFFFFFFFFu) << "as it comes";
    EXPECT_EQ(second.headSelectionColor, 0x0A0B0Cu);
    EXPECT_EQ(pane->m_needleRender.needleLength, 0.0f);
}

TEST_F(Needles, AreDeselectedWhenPickingIsSwitchedOff) {
    Create({1, 2, 3});
    MarkSelected({3, 1});
    pane->SetNeedlePickingMode(-1);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    pane->SetNeedlePickingMode(0);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 1", "Deselected 3"}));
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{});
    EXPECT_GE(pane.window->eraseInvalidates, 1);
    EXPECT_EQ(pane.window->refreshes, 0);
    Forget();
    pane->SetNeedlePickingMode(0);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 1);
}

// ---- the limit

TEST_F(Needles, AreLimitedToEightAtFirst) {
    Create({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(pane->CreateNeedle(9, 0, 0, 0, 0, 0, 0), kFalse);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    EXPECT_EQ(pane->GetNumberOfNeedles(), 8);
    pane->SetMaxNumberOfNeedles(9);
    EXPECT_EQ(pane->CreateNeedle(9, 0, 0, 0, 0, 0, 0), kTrue);
}

TEST_F(Needles, AboveALowerLimitAreDeletedFromTheEndWithoutBeingDeselected) {
    Create({5, 6, 7, 8});
    MarkSelected({7});
    pane->SetMaxNumberOfNeedles(2);
    EXPECT_EQ(events.Take(), (EventList{"Deleted 8", "Deleted 7"}));
    EXPECT_EQ(IdsOf(*pane), (Ids{5, 6}));
    ExpectRepaints(0, 1);
    Forget();
    pane->SetMaxNumberOfNeedles(2);
    pane->SetMaxNumberOfNeedles(3);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    EXPECT_EQ(pane->m_nMaxNeedles, 3);
}

TEST_F(Needles, AreAllDeletedByANegativeLimitWhichCountsAsZero) {
    Create({1, 2});
    pane->SetMaxNumberOfNeedles(-1);
    EXPECT_EQ(events.Take(), (EventList{"Deleted 2", "Deleted 1"}));
    EXPECT_EQ(pane->m_nMaxNeedles, 0);
    EXPECT_EQ(pane->CreateNeedle(1, 0, 0, 0, 0, 0, 0), kFalse);
    pane->SetMaxNumberOfNeedles(INT32_MIN);
    EXPECT_EQ(pane->m_nMaxNeedles, 0);
    pane->SetMaxNumberOfNeedles(INT32_MAX);
    EXPECT_EQ(pane->m_nMaxNeedles, INT32_MAX);
}

// ---- creation

TEST_F(Needles, AreCreatedThenShownThenReported) {
    CountRefreshesAtEvents();
    EXPECT_EQ(pane->CreateNeedle(-3, 1, 2, 3, 4, 5, 6), kTrue);
    EXPECT_EQ(events.Take(), EventList{"Created -3"});
    EXPECT_EQ(refreshesAtEvents, std::vector{1});
    ExpectRepaints(1, 0);
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{});
    std::array<float, 6> at{};
    EXPECT_EQ(pane->GetNeedle(-3, &at[0], &at[1], &at[2], &at[3], &at[4], &at[5]), kTrue);
    EXPECT_EQ(at, (std::array<float, 6>{1, 2, 3, 4, 5, 6}));
}

TEST_F(Needles, HaveDifferentIds) {
    Create({4});
    EXPECT_EQ(pane->CreateNeedle(4, 9, 9, 9, 9, 9, 9), kFalse);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    EXPECT_EQ(pane->m_vNeedles.at(0).pin, (Float3{4, 0, 0})) << "the first one stays";
}

class SeveralNeedles : public Needles {
protected:
    /// The pin of an entry is (3 i, 3 i + 1, 3 i + 2), its head the same plus 100.
    KV_ScenePane::VARIANT_BOOL CreateAll(const Ids& ids) {
        std::vector<float> pins, heads;
        for (std::size_t i = 0; i < 3 * ids.size(); ++i) {
            pins.push_back(static_cast<float>(i));
            heads.push_back(static_cast<float>(100 + i));
        }
        return pane->CreateNeedles(static_cast<std::int32_t>(ids.size()), ids.data(), pins.data(), heads.data());
    }
};

TEST_F(SeveralNeedles, AreCreatedInTheOrderOfTheArrays) {
    CountRefreshesAtEvents();
    EXPECT_EQ(CreateAll({7, -2, 5}), kTrue);
    EXPECT_EQ(events.Take(), (EventList{"Created 7", "Created -2", "Created 5"}));
    EXPECT_EQ(refreshesAtEvents, (std::vector{1, 2, 3}));
    Ids ids(3);
    std::vector<float> pins(9), heads(9);
    pane->GetNeedles(ids.data(), pins.data(), heads.data());
    EXPECT_EQ(ids, (Ids{7, -2, 5}));
    EXPECT_EQ(pins, (std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(heads, (std::vector<float>{100, 101, 102, 103, 104, 105, 106, 107, 108}));
}

TEST_F(SeveralNeedles, MoreThanTheLimitFailAsAWhole) {
    EXPECT_EQ(CreateAll({1, 2, 3, 4, 5, 6, 7, 8, 9}), kFalse);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    EXPECT_EQ(pane->GetNumberOfNeedles(), 0);
}

TEST_F(SeveralNeedles, WithoutRoomForAllAreCreatedAsFarAsTheyFit) {
    Create({101, 102, 103});
    EXPECT_EQ(CreateAll({1, 2, 3, 4, 5, 6, 7, 8}), kTrue);
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Created 2", "Created 3", "Created 4", "Created 5"}));
    EXPECT_EQ(IdsOf(*pane), (Ids{101, 102, 103, 1, 2, 3, 4, 5}));
}

TEST_F(SeveralNeedles, WithAnIdInUseFailAsAWhole) {
    Create({3});
    EXPECT_EQ(CreateAll({1, 2, 3}), kFalse);
    EXPECT_EQ(events.Take(), EventList{});
    EXPECT_EQ(IdsOf(*pane), Ids{3});
}

TEST_F(SeveralNeedles, OfOneIdAreCreatedOnce) {
    EXPECT_EQ(CreateAll({1, 2, 1, 3}), kTrue);
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Created 2", "Created 3"}));
    EXPECT_EQ(pane->m_vNeedles.at(0).pin, (Float3{0, 1, 2}));
    EXPECT_EQ(pane->m_vNeedles.at(2).pin, (Float3{9, 10, 11}));
}

TEST_F(SeveralNeedles, CanBeNone) {
    EXPECT_EQ(pane->CreateNeedles(0, nullptr, nullptr, nullptr), kTrue);
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    pane->GetNeedles(nullptr, nullptr, nullptr);
}

#ifndef NDEBUG
TEST_F(SeveralNeedles, OfANegativeNumberOrWithoutArraysAreAMistakeOfTheHost) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::int32_t id = 1;
    std::int32_t out = 0;
    std::array<float, 3> f{};
    EXPECT_DEATH(pane->CreateNeedles(-1, &id, f.data(), f.data()), "number >= 0");
    EXPECT_DEATH(pane->CreateNeedles(1, nullptr, f.data(), f.data()), "nullptr");
    EXPECT_DEATH(pane->CreateNeedles(1, &id, nullptr, f.data()), "nullptr");
    EXPECT_DEATH(pane->CreateNeedles(1, &id, f.data(), nullptr), "nullptr");
    Create({1});
    EXPECT_DEATH(pane->GetNeedles(nullptr, f.data(), f.data()), "nullptr");
    EXPECT_DEATH(pane->GetNeedles(&out, nullptr, f.data()), "nullptr");
    EXPECT_DEATH(pane->GetNeedles(&out, f.data(), nullptr), "nullptr");
}
#endif

// ---- deletion

TEST_F(Needles, AreDeletedThenTheFrameIsDrawnThenTheyAreReported) {
    Create({1, 2, 3});
    CountRefreshesAtEvents();
    EXPECT_EQ(pane->DeleteNeedle(2), kTrue);
    EXPECT_EQ(events.Take(), EventList{"Deleted 2"});
    EXPECT_EQ(refreshesAtEvents, std::vector{1});
    ExpectRepaints(1, 0);
    EXPECT_EQ(IdsOf(*pane), (Ids{1, 3}));
    EXPECT_EQ(pane->DeleteNeedle(2), kFalse);
    EXPECT_EQ(events.list.size(), 0u);
    ExpectRepaints(1, 0);
}

TEST_F(Needles, AreDeselectedBeforeTheyAreDeleted) {
    Create({1, 2});
    MarkSelected({1});
    events.inside = [this](const std::string& event) {
        EXPECT_EQ(IdsOf(*pane), event == "Deselected 1" ? (Ids{1, 2}) : Ids{2}) << event;
        EXPECT_EQ(SelectedIdsOf(*pane), Ids{}) << event;
    };
    EXPECT_EQ(pane->DeleteNeedle(1), kTrue);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 1", "Deleted 1"}));
    ExpectRepaints(1, 1);
}

TEST_F(Needles, AreAllDeletedInListOrder) {
    Create({3, 1, 2});
    MarkSelected({1});
    pane->DeleteNeedles();
    EXPECT_EQ(events.Take(), (EventList{"Deleted 3", "Deselected 1", "Deleted 1", "Deleted 2"}));
    EXPECT_EQ(pane->GetNumberOfNeedles(), 0);
    pane->DeleteNeedles();
    EXPECT_EQ(events.Take(), EventList{});
}

TEST_F(Needles, SurviveClearData) {
    Create({1, 2});
    MarkSelected({2});
    pane->ClearData();
    EXPECT_EQ(events.Take(), EventList{});
    EXPECT_EQ(IdsOf(*pane), (Ids{1, 2}));
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{2});
}

// ---- selection

TEST_F(Needles, AreSelectedOneAtATime) {
    Create({1, 2, 3});
    CountRefreshesAtEvents();
    pane->SelectNeedle(2);
    EXPECT_EQ(events.Take(), EventList{"Selected 2"});
    EXPECT_EQ(refreshesAtEvents, std::vector{0}) << "the event is fired first";
    ExpectRepaints(1, 0);
    pane->SelectNeedle(3);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 2", "Selected 3"}));
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{3});
    MarkSelected({3, 1});
    pane->SelectNeedle(3);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 1", "Selected 3"})) << "its own event again";
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{3});
}

TEST_F(Needles, ThatDoNotExistCannotBeSelected) {
    Create({1, 2});
    MarkSelected({1});
    pane->SelectNeedle(9);
    EXPECT_FALSE(pane->SelectOnlyNeedle(9));
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{1});
    EXPECT_TRUE(pane->SelectOnlyNeedle(2));
}

TEST_F(Needles, AreDeselectedThenARepaintIsQueuedThenTheyAreReported) {
    Create({1, 2});
    MarkSelected({1});
    std::vector<int> requestsAtEvents;
    events.inside = [&](const std::string&) { requestsAtEvents.push_back(pane.window->eraseInvalidates); };
    EXPECT_EQ(pane->DeselectNeedle(2), kFalse);
    EXPECT_EQ(pane->DeselectNeedle(9), kFalse);
    EXPECT_EQ(events.list.size(), 0u);
    ExpectRepaints(0, 0);
    EXPECT_EQ(pane->DeselectNeedle(1), kTrue);
    EXPECT_EQ(events.Take(), EventList{"Deselected 1"});
    EXPECT_EQ(requestsAtEvents, std::vector{1});
    ExpectRepaints(0, 1);
    EXPECT_EQ(pane->DeselectNeedle(1), kFalse);
}

TEST_F(Needles, AreAllDeselectedInListOrder) {
    Create({3, 1, 2});
    MarkSelected({2, 3});
    pane->DeselectAllNeedles();
    EXPECT_EQ(events.Take(), (EventList{"Deselected 3", "Deselected 2"}));
    ExpectRepaints(0, 2);
    Forget();
    pane->DeselectAllNeedles();
    EXPECT_EQ(events.Take(), EventList{});
    ExpectRepaints(0, 0);
}

TEST_F(Needles, ThatDoNotExistHaveNoPosition) {
    Create({1});
    std::array<float, 6> at{9, 9, 9, 9, 9, 9};
    EXPECT_EQ(pane->GetNeedle(2, &at[0], &at[1], &at[2], &at[3], &at[4], &at[5]), kFalse);
    EXPECT_EQ(at, (std::array<float, 6>{9, 9, 9, 9, 9, 9}));
}

}  // namespace
