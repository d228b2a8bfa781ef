// A viewer that is called through the automation table.
#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"
#include "random/Viewer.h"

namespace {

class DirectViewer final : public Viewer {
public:
    explicit DirectViewer(std::unique_ptr<KV_ScenePane::ScenePane> pane) : m_pane(std::move(pane)) {
        m_pane->Connect(&m_events);
    }

    Outcome Invoke(std::int32_t id, std::span<const AutomationValue> arguments) override {
        Outcome outcome;
        try {
            outcome.status = InvokeMethod(m_pane->Methods(), id, arguments, &outcome.result);
        } catch (const std::exception& error) {
            outcome.failed = true;
            outcome.text = error.what();
        }
        return outcome;
    }
    std::int32_t GetProperty(std::int32_t id) override {
        KV_ScenePane::_DKV_ScenePane& methods = m_pane->Methods();
        switch (id) {
            case 1:
                return methods.GetDrawMosaic();
            case 2:
                return methods.GetDrawMode();
            case 3:
                return methods.GetMoveReduced();
            default:
                return methods.GetReadyState();
        }
    }
    void PutProperty(std::int32_t id, std::int16_t value) override {
        KV_ScenePane::_DKV_ScenePane& methods = m_pane->Methods();
        if (id == 1) methods.SetDrawMosaic(value);
        if (id == 2) methods.SetDrawMode(value);
        if (id == 3) methods.SetMoveReduced(value);
    }
    void SendMouse(const KV_ScenePane::MouseInput& input) override {
        Guarded([&] { m_pane->SendMouse(input); });
    }
    void SendKey(const KV_ScenePane::KeyInput& input) override {
        Guarded([&] { m_pane->SendKey(input); });
    }
    void ProcessEvents() override {
        Guarded([&] { m_pane->ProcessEvents(); });
    }
    bool HasWindow() override { return m_pane->HasWindow(); }
    bool Cut(std::int16_t mode, const std::vector<KV_ScenePane::LassoPoint>& points) override {
        return m_pane->CutWithLasso(static_cast<KV_ScenePane::SegmentationMode>(mode), points);
    }
    std::int32_t UndoSteps() override { return m_pane->GetUndoStepCount(); }
    std::vector<int> CutCounts() override {
        std::vector<int> counts;
        std::ranges::transform(m_pane->PlanCutSave(), std::back_inserter(counts),
                               &KV_ScenePane::CutSaveEntry::numberOfCuts);
        return counts;
    }
    CKV_ScenePaneCtrl* Control() override { return &ControlOf(*m_pane); }
    std::vector<Event> TakeEvents() override { return std::exchange(m_events.events, {}); }

private:
    // A placement of the clip plane by the mouse throws without the component registry.
    template <typename Call>
    static void Guarded(Call call) {
        try {
            call();
        } catch (const std::runtime_error&) {
        }
    }

    EventsRecorder m_events;  // outlives the viewer
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
};

}  // namespace

std::unique_ptr<Viewer> MakeDirectViewer(const KV_ScenePane::WindowRequest& request) {
    std::string reason;
    auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    if (pane != nullptr) return std::make_unique<DirectViewer>(std::move(pane));
    ADD_FAILURE() << "no viewer: " << reason;
    return nullptr;
}
