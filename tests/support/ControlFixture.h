// A whole control for tests: on an off-screen surface of a chosen size, or without any picture. Its events and the
// debugger output are recorded; its window is a WindowProbe.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"
#include "support/WindowKindText.h"
#include "support/WindowProbe.h"

/// Receives the debugger output of the process while it lives.
class CapturedDebugOutput {
public:
    CapturedDebugOutput() {
        KV_ScenePane::SetDebugOutputSink([this](std::string_view text) {
            const std::lock_guard lock(m_mutex);
            m_text += text;
        });
    }
    ~CapturedDebugOutput() { KV_ScenePane::SetDebugOutputSink({}); }
    CapturedDebugOutput(const CapturedDebugOutput&) = delete;
    CapturedDebugOutput& operator=(const CapturedDebugOutput&) = delete;

    [[nodiscard]] std::string Text() const {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }
    void Clear() {
        const std::lock_guard lock(m_mutex);
        m_text.clear();
    }
    /// The text since the last Take() or Clear().
    std::string Take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_text, {});
    }

private:
    mutable std::mutex m_mutex;  // worker threads write, too
    std::string m_text;
};

/// Records every event that fires: its name, and its arguments as numbers.
class EventsRecorder final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    struct Event {
        std::string name;
        std::vector<double> arguments;
        bool operator==(const Event&) const = default;
    };
    std::vector<Event> events;

    void ReadyStateChange() override { Keep("ReadyStateChange"); }
    void SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz) override {
        Keep("SelectViewDirection", px, py, pz, vx, vy, vz);
    }
    void SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                         std::int32_t mouseX, std::int32_t mouseY) override {
        Keep("SelectObjCoords", idx, px, py, pz, shiftModifiers, mouseX, mouseY);
    }
    void SegmentationDone(std::int16_t numObj) override { Keep("SegmentationDone", numObj); }
    void ViewDirectionChanged(float vx, float vy, float vz) override { Keep("ViewDirectionChanged", vx, vy, vz); }
    void AlignmentDone() override { Keep("AlignmentDone"); }
    void NeedleCreated(std::int32_t id) override { Keep("NeedleCreated", id); }
    void NeedleSelected(std::int32_t id) override { Keep("NeedleSelected", id); }
    void NeedleDeleted(std::int32_t id) override { Keep("NeedleDeleted", id); }
    void NeedleDeselected(std::int32_t id) override { Keep("NeedleDeselected", id); }
    void CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override {
        Keep("CustomKeyDown", nChar, nRepCnt, nFlags);
    }
    void PickPointCountChanged(std::int32_t newCount) override { Keep("PickPointCountChanged", newCount); }
    void CutMaskApplied(std::int64_t addr) override { Keep("CutMaskApplied", addr); }

private:
    template <class... Arguments>
    void Keep(const char* name, Arguments... arguments) {
        events.push_back({name, {static_cast<double>(arguments)...}});
    }
};

/// A control with its window, its host's events and the debugger output.
class TestControl {
public:
    explicit TestControl(KV_ScenePane::WindowRequest::Kind kind, std::int32_t width = 640, std::int32_t height = 480) {
        KV_ScenePane::WindowRequest request;
        request.kind = kind;
        request.width = width;
        request.height = height;
        auto probe = std::make_unique<WindowProbe>(MakePaneWindow(request));
        window = probe.get();
        control = std::make_unique<CKV_ScenePaneCtrl>(std::move(probe));
        control->Connect(&events);
        std::string reason;
        if (!control->CreateControlWindow(&reason)) ADD_FAILURE() << "no window: " << reason;
        window->Forget();
        debugOutput.Clear();
    }

    CKV_ScenePaneCtrl* operator->() const { return control.get(); }
    CKV_ScenePaneCtrl& operator*() const { return *control; }

    CapturedDebugOutput debugOutput;
    EventsRecorder events;
    std::unique_ptr<CKV_ScenePaneCtrl> control;
    WindowProbe* window = nullptr;  ///< the control's
};

/// With OpenGL on a surface without a display.
class OffscreenControl : public TestControl {
public:
    explicit OffscreenControl(std::int32_t width = 640, std::int32_t height = 480)
        : TestControl(KV_ScenePane::WindowRequest::Kind::OffScreen, width, height) {
        control->PerformRefresh();  // the first frame adopts the size of the window
        window->Forget();
    }
};

/// Without OpenGL: imports and their results only.
class NoPictureControl : public TestControl {
public:
    NoPictureControl() : TestControl(KV_ScenePane::WindowRequest::Kind::NoPicture) {}
};

/// Adds a mesh without an import; its object index is the number of objects before.
inline Mesh& AddMesh(CKV_ScenePaneCtrl& control, std::vector<Vertex> vertices, std::vector<Triangle> triangles) {
    auto mesh = std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
    control.m_vpMeshes.push_back(mesh);
    return *mesh;
}
