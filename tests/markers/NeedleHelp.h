// What the tests of needles share: their events as texts in their order, and handlers that run a function of the test.
#pragma once
#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/ControlFixture.h"

using EventList = std::vector<std::string>;

/// Records the events as "Created 3". Picks of objects, whose order among them counts, are "Picked".
class NeedleEvents final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    EventList list;
    std::function<void(const std::string&)> inside;  ///< runs in each event; may be empty

    EventList Take() { return std::exchange(list, {}); }

    void NeedleCreated(std::int32_t id) override { Keep("Created " + std::to_string(id)); }
    void NeedleSelected(std::int32_t id) override { Keep("Selected " + std::to_string(id)); }
    void NeedleDeleted(std::int32_t id) override { Keep("Deleted " + std::to_string(id)); }
    void NeedleDeselected(std::int32_t id) override { Keep("Deselected " + std::to_string(id)); }
    void SelectObjCoords(std::int16_t, float, float, float, std::int32_t, std::int32_t, std::int32_t) override {
        Keep("Picked");
    }

private:
    void Keep(const std::string& event) {
        list.push_back(event);
        if (inside) inside(event);
    }
};

using Ids = std::vector<std::int32_t>;

/// In list order.
inline Ids IdsOf(const CKV_ScenePaneCtrl& control) {
    Ids ids;
    for (const Needle& needle : control.m_vNeedles) ids.push_back(needle.id);
    return ids;
}

inline Ids SelectedIdsOf(const CKV_ScenePaneCtrl& control) { return SelectedNeedleIds(control.m_vNeedles); }

/// A viewer without OpenGL and its needles.
class Needles : public testing::Test {
protected:
    Needles() { pane->Connect(&events); }

    void Create(const Ids& ids) {
        for (const std::int32_t id : ids) {
            const auto f = static_cast<float>(id);
            EXPECT_EQ(pane->CreateNeedle(id, f, 0, 0, f, 10, 0), KV_ScenePane::kVariantTrue) << id;
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
