// Needles by the methods of the host: what is stored, which events are fired in which order, and what is repainted
// when.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "control/ScenePaneHandle.h"
#include "markers/NeedleHelp.h"

namespace {

using Ids = std::vector<std::int32_t>;
constexpr auto kTrue = KV_ScenePane::kVariantTrue, kFalse = KV_ScenePane::kVariantFalse;

class Needles : public testing::Test {
protected:
    Needles() { pane->Connect(&events); }

    void Create(const Ids& ids) {
        for (const std::int32_t id : ids) {
            const auto f = static_cast<float>(id);
            EXPECT_EQ(pane->CreateNeedle(id, f, 0, 0, f, 10, 0), kTrue) << id;
        }
        Forget();
    }
    /// Without events of others, as no method can.
    void MarkSelected(const Ids& ids) {
        for (Needle& needle : pane->m_vNeedles) needle.selected = std::ranges::find(ids, needle.id) != ids.end();
    }
    void Forget() {
        events.list.clear();
        pane.window->Forget();
    }
    void ExpectRepaints(int refreshes, int eraseInvalidates) {
        EXPECT_EQ(pane.window->refreshes, refreshes);
        EXPECT_EQ(pane.window->eraseInvalidates, eraseInvalidates);
        EXPECT_EQ(pane.window->invalidates, 0);
    }
    /// The refreshes that were requested before each event.
    void CountRefreshesAtEvents() {
        events.inside = [this](const std::string&) { refreshesAtEvents.push_back(pane.window->refreshes); };
    }

    NoPictureControl pane;
    NeedleEvents events;
    std::vector<int> refreshesAtEvents;
};

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

// ---- handlers that call back

/// A call of the host that fires events among three needles, of which 1 and 3 are selected: a method, or a key.
struct FiringCall {
    const char* name;
    std::function<void(KV_ScenePane::_DKV_ScenePane&)> method;
    std::int32_t key = 0;
};
void PrintTo(const FiringCall& row, std::ostream* out) { *out << row.name; }
std::string NameOfCall(const testing::TestParamInfo<FiringCall>& row) { return row.param.name; }

const FiringCall kFiringCalls[] = {
    {"SetNeedlePickingMode", [](auto& c) { c.SetNeedlePickingMode(0); }},
    {"SetMaxNumberOfNeedles", [](auto& c) { c.SetMaxNumberOfNeedles(1); }},
    {"CreateNeedle", [](auto& c) { c.CreateNeedle(10, 0, 0, 0, 1, 1, 1); }},
    {"CreateNeedles",
     [](auto& c) {
         const std::int32_t ids[] = {10, 11, 12};
         const float at[9] = {};
         c.CreateNeedles(3, ids, at, at);
     }},
    {"DeleteNeedle", [](auto& c) { c.DeleteNeedle(3); }},
    {"DeleteNeedles", [](auto& c) { c.DeleteNeedles(); }},
    {"SelectNeedle", [](auto& c) { c.SelectNeedle(2); }},
    {"SelectSelectedNeedle", [](auto& c) { c.SelectNeedle(1); }},
    {"DeselectNeedle", [](auto& c) { c.DeselectNeedle(1); }},
    {"DeselectAllNeedles", [](auto& c) { c.DeselectAllNeedles(); }},
    {"DeleteKey", [](auto& c) { c.SetNeedlePickingMode(1); }, KV_ScenePane::kKeyDelete},
    {"EscapeKey", [](auto& c) { c.SetNeedlePickingMode(1); }, KV_ScenePane::kKeyEscape},
};

/// @param viewer   a control or a handle
/// @param methods  of the viewer
template <typename Viewer>
void MakeCall(const FiringCall& row, Viewer& viewer, KV_ScenePane::_DKV_ScenePane& methods) {
    row.method(methods);
    if (row.key != 0) viewer.SendKey({.nChar = row.key});
}

class NeedleHandlers : public Needles, public testing::WithParamInterface<FiringCall> {
protected:
    NeedleHandlers() {
        Create({1, 2, 3});
        MarkSelected({1, 3});
    }
    /// Calls the method; @p handler runs in each of its events, not in those that it causes itself.
    void CallWith(const std::function<void()>& handler) {
        events.inside = [this, handler](const std::string&) {
            if (depth > 0) return;
            ++depth;
            ++handled;
            handler();
            --depth;
        };
        MakeCall(GetParam(), *pane, *pane);
        events.inside = {};
        EXPECT_GT(handled, 0) << "no event";
    }
    /// Each needle is reported as deleted as often as it was there, and ids differ.
    void ExpectConsistentList() {
        const Ids ids = IdsOf(*pane);
        EXPECT_EQ(std::set(ids.begin(), ids.end()).size(), ids.size());
        std::map<std::string, int> deleted, created;
        for (const std::string& event : events.list) {
            const std::string id = event.substr(event.find(' '));
            if (event.starts_with("Deleted")) ++deleted[id];
            if (event.starts_with("Created")) ++created[id];
        }
        for (const auto& [id, count] : deleted) {
            const bool isThere = std::ranges::count(ids, std::stoi(id)) != 0;
            const int initially = std::stoi(id) <= 3 ? 1 : 0;
            EXPECT_EQ(initially + created[id] - count, isThere ? 1 : 0) << "needle" << id;
        }
    }
    int depth = 0, handled = 0;
};
INSTANTIATE_TEST_SUITE_P(Methods, NeedleHandlers, testing::ValuesIn(kFiringCalls), NameOfCall);

TEST_P(NeedleHandlers, MayDeleteAllNeedles) {
    CallWith([this] { pane->DeleteNeedles(); });
    EXPECT_LE(pane->GetNumberOfNeedles(), pane->m_nMaxNeedles);
    ExpectConsistentList();
    EXPECT_EQ(SelectedIdsOf(*pane), Ids{});
}

TEST_P(NeedleHandlers, MayClearTheData) {
    CallWith([this] { pane->ClearData(); });
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayCreateANeedle) {
    CallWith([this] { pane->CreateNeedle(100 + handled, 0, 0, 0, 0, 0, 0); });
    EXPECT_LE(pane->GetNumberOfNeedles(), pane->m_nMaxNeedles);
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayCreateManyNeedlesWhichMovesTheList) {
    pane->SetMaxNumberOfNeedles(1000);
    Forget();
    CallWith([this] {
        for (int i = 0; i < 100; ++i) pane->CreateNeedle(1000 * handled + i, 0, 0, 0, 0, 0, 0);
    });
    EXPECT_LE(pane->GetNumberOfNeedles(), pane->m_nMaxNeedles);
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayDeleteTheNeedleOfTheEvent) {
    events.inside = [this](const std::string& event) {
        ++handled;
        pane->DeleteNeedle(std::stoi(event.substr(event.find(' '))));
    };
    MakeCall(GetParam(), *pane, *pane);
    EXPECT_GT(handled, 0);
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MaySelectAnotherNeedle) {
    CallWith([this] { pane->SelectNeedle(handled % 2 == 0 ? 1 : 2); });
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayChangeTheLimit) {
    CallWith([this] { pane->SetMaxNumberOfNeedles(handled % 2 == 0 ? 5 : 0); });
    EXPECT_LE(pane->GetNumberOfNeedles(), pane->m_nMaxNeedles);
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayRecreateTheNeedleOfTheEventWithoutEnd) {
    events.inside = [this](const std::string& event) {
        if (++handled > 50) return;
        if (event.starts_with("Deleted"))
            pane->CreateNeedle(std::stoi(event.substr(event.find(' '))), 0, 0, 0, 0, 0, 0);
    };
    MakeCall(GetParam(), *pane, *pane);
    EXPECT_GT(handled, 0);
    EXPECT_LT(handled, 20) << "the handler kept the method busy";
    EXPECT_LE(pane->GetNumberOfNeedles(), pane->m_nMaxNeedles);
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayThrowAndTheRepaintIsNotLost) {
    events.inside = [](const std::string&) { throw std::runtime_error("of the host"); };
    pane.window->Forget();
    EXPECT_THROW(MakeCall(GetParam(), *pane, *pane), std::runtime_error);
    EXPECT_GT(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
    events.inside = {};
    ExpectConsistentList();
}

TEST_P(NeedleHandlers, MayDestroyTheViewer) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    auto viewer = KV_ScenePane::CreateScenePane(request, nullptr);
    ASSERT_NE(viewer, nullptr);
    for (const std::int32_t id : {1, 2, 3}) viewer->Methods().CreateNeedle(id, 0, 0, 0, 1, 1, 1);
    for (Needle& needle : ControlOf(*viewer).m_vNeedles) needle.selected = needle.id != 2;
    NeedleEvents own;
    viewer->Connect(&own);
    own.inside = [&](const std::string&) { viewer.reset(); };
    KV_ScenePane::ScenePane& handle = *viewer;
    MakeCall(GetParam(), handle, handle.Methods());
    EXPECT_EQ(viewer, nullptr);
    EXPECT_EQ(own.list.size(), 1u) << "nothing is fired afterwards";
}

TEST_F(Needles, CreatedByAHandlerDoNotExceedALowerLimit) {
    Create({1, 2, 3});
    events.inside = [this](const std::string& event) {
        if (event.starts_with("Deleted")) {
            EXPECT_EQ(pane->CreateNeedle(50, 0, 0, 0, 0, 0, 0), kFalse) << event;
        }
    };
    pane->SetMaxNumberOfNeedles(1);
    EXPECT_EQ(IdsOf(*pane), Ids{1});
}

TEST_F(Needles, DeletedByAHandlerAreNotReportedTwice) {
    Create({1, 2});
    MarkSelected({1});
    events.inside = [this](const std::string& event) {
        if (event == "Deselected 1") pane->DeleteNeedle(1);
    };
    EXPECT_EQ(pane->DeleteNeedle(1), kTrue) << "it existed";
    EXPECT_EQ(events.Take(), (EventList{"Deselected 1", "Deleted 1"}));
    EXPECT_EQ(IdsOf(*pane), Ids{2});
    MarkSelected({2});
    Create({3});
    events.inside = [this](const std::string& event) {
        if (event == "Deselected 2") pane->DeleteNeedle(3);
    };
    pane->SelectNeedle(3);
    EXPECT_EQ(events.Take(), (EventList{"Deselected 2", "Deleted 3"})) << "no selection of a needle that is gone";
}

}  // namespace
