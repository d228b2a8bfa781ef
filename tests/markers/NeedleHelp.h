// What the tests of needles share: their events as texts in their order, and handlers that run a function of the test.
#pragma once
#include <functional>
#include <string>
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

/// The ids in list order.
inline std::vector<std::int32_t> IdsOf(const CKV_ScenePaneCtrl& control) {
    std::vector<std::int32_t> ids;
    for (const Needle& needle : control.m_vNeedles) ids.push_back(needle.id);
    return ids;
}

inline std::vector<std::int32_t> SelectedIdsOf(const CKV_ScenePaneCtrl& control) {
    return SelectedNeedleIds(control.m_vNeedles);
}
