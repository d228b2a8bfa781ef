// Handlers of needle events that call back: they may delete, create and select needles, change the limit, clear the
// data, throw, and destroy the viewer.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "control/ScenePaneHandle.h"
#include "markers/NeedleHelp.h"

namespace {

constexpr auto kTrue = KV_ScenePane::kVariantTrue, kFalse = KV_ScenePane::kVariantFalse;

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
    /// Whether the call changes the selection as a whole; creations leave both marked needles selected.
    [[nodiscard]] static bool SelectsOrDeselects() {
        const std::string_view name = GetParam().name;
        return !name.starts_with("Create") && name != "SetMaxNumberOfNeedles";
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
    EXPECT_LE(SelectedIdsOf(*pane).size(), 1u);
}

// In every event, also in those that it causes itself.
TEST_P(NeedleHandlers, MaySelectAgainWhatWasDeselected) {
    events.inside = [this](const std::string& event) {
        ++handled;
        if (event.starts_with("Deselected")) pane->SelectNeedle(3);
    };
    MakeCall(GetParam(), *pane, *pane);
    EXPECT_GT(handled, 0);
    EXPECT_LT(handled, 20) << "the handler kept the method busy";
    ExpectConsistentList();
    const std::size_t most = SelectsOrDeselects() ? 1 : 3;
    EXPECT_LE(SelectedIdsOf(*pane).size(), most);
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

class HandledNeedles : public Needles {};

TEST_F(HandledNeedles, CreatedByAHandlerDoNotExceedALowerLimit) {
    Create({1, 2, 3});
    events.inside = [this](const std::string& event) {
        if (event.starts_with("Deleted")) {
            EXPECT_EQ(pane->CreateNeedle(50, 0, 0, 0, 0, 0, 0), kFalse) << event;
        }
    };
    pane->SetMaxNumberOfNeedles(1);
    EXPECT_EQ(IdsOf(*pane), Ids{1});
}

TEST_F(HandledNeedles, SelectedInADeselectionAreDeselectedAsWell) {
    const struct {
        const char* name;
        std::function<void()> call;
        EventList events;
        Ids selected;
    } rows[] = {
        {"SelectNeedle",
         [this] { pane->SelectNeedle(2); },
         {"Deselected 1", "Selected 3", "Deselected 3", "Selected 2"},
         {2}},
        {"SetNeedlePickingMode",
         [this] { pane->SetNeedlePickingMode(0); },
         {"Deselected 1", "Selected 3", "Deselected 3"},
         {}},
        {"DeselectAllNeedles",
         [this] { pane->DeselectAllNeedles(); },
         {"Deselected 1", "Selected 3", "Deselected 3"},
         {}},
    };
    Create({1, 2, 3});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        MarkSelected({1});
        events.inside = [this](const std::string& event) {
            if (event == "Deselected 1") pane->SelectNeedle(3);
        };
        row.call();
        EXPECT_EQ(events.Take(), row.events);
        EXPECT_EQ(SelectedIdsOf(*pane), row.selected);

        MarkSelected({1});
        events.inside = [this](const std::string& event) {
            if (event.starts_with("Deselected")) pane->SelectNeedle(3);  // without end
        };
        row.call();
        EXPECT_LT(events.Take().size(), 10u);
        EXPECT_EQ(SelectedIdsOf(*pane), row.selected) << "the call has the last word";

        MarkSelected({1});
        std::int32_t next = 100;
        events.inside = [this, &next](const std::string& event) {
            if (!event.starts_with("Deselected")) return;
            pane->DeleteNeedle(next++);
            pane->CreateNeedle(next, 0, 0, 0, 0, 0, 0);
            pane->SelectNeedle(next);
        };
        row.call();
        EXPECT_LT(events.Take().size(), 40u);
        EXPECT_EQ(SelectedIdsOf(*pane), row.selected) << "new needles are no exception";
        events.inside = {};
        pane->DeleteNeedle(next);
        events.Take();
    }
}

TEST_F(HandledNeedles, DeletedByAHandlerAreNotReportedTwice) {
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
