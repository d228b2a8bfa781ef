// A replacement for a viewer under the C interface: its methods are recorded, and any function can run in its place.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "control/CInterfacePane.h"
#include "control/RecordingPane.h"

class RecordingViewer final : public KV_ScenePane::ScenePane {
public:
    RecordingPane methods;
    KV_ScenePane::_DKV_ScenePaneEvents* events = nullptr;
    std::function<void()> process = [] {};  ///< runs in ProcessEvents()
    std::vector<KV_ScenePane::MouseInput> mouse;
    std::vector<KV_ScenePane::KeyInput> keys;
    double scale = 0;
    KV_ScenePane::AlignmentResult alignment;
    KV_ScenePane::ClipHeight clipHeight;
    std::vector<KV_ScenePane::CutSaveEntry> planned, saved;
    bool modified = false;
    KV_ScenePane::FrameStatistics frames;
    std::string imported;  ///< what the last ImportFile() got
    std::string refusal;   ///< its reason; empty: it adds an object
    std::string store;     ///< what SaveProperties() returns

    KV_ScenePane::_DKV_ScenePane& Methods() override { return methods; }
    void Connect(KV_ScenePane::_DKV_ScenePaneEvents* receiver) override { events = receiver; }
    [[nodiscard]] int EventDescriptor() const override { return 17; }
    void ProcessEvents() override { process(); }
    [[nodiscard]] bool HasWindow() const override { return true; }
    [[nodiscard]] std::uintptr_t NativeWindow() const override { return 0x1234567; }
    bool Reparent(std::uintptr_t parent, int x, int y) override { return parent == 8 && x == -1 && y == 2; }
    void SendMouse(const KV_ScenePane::MouseInput& input) override { mouse.push_back(input); }
    void SendKey(const KV_ScenePane::KeyInput& input) override { keys.push_back(input); }
    void SetMouseFilter(std::function<bool(const KV_ScenePane::MouseInput&)> /*filter*/) override {}
    bool GetObjectInfo(std::int16_t /*idx*/, KV_ScenePane::ObjectInfo* /*info*/) override { return false; }
    bool GetGraphicsInfo(KV_ScenePane::GraphicsInfo* /*info*/) override { return false; }
    void SetScale(double value) override { scale = value; }
    bool CapturePicture(KV_ScenePane::Picture* /*picture*/) override { return false; }
    bool PickSurface(int /*x*/, int /*y*/, KV_ScenePane::SurfacePoint* /*hit*/) override { return false; }
    [[nodiscard]] KV_ScenePane::ClipHeight GetClipHeight() const override { return clipHeight; }
    bool CutWithLasso(KV_ScenePane::SegmentationMode /*mode*/,
                      std::span<const KV_ScenePane::LassoPoint> /*points*/) override {
        return false;
    }
    [[nodiscard]] int GetUndoStepCount() const override { return 5; }
    [[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> PlanCutSave() const override { return planned; }
    [[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> GetCutSaveResults() const override { return saved; }
    [[nodiscard]] KV_ScenePane::AlignmentPicks GetAlignmentPicks() const override { return {}; }
    bool AlignByPairs(std::span<const KV_ScenePane::AlignmentPair> pairs) override {
        alignment.pairs.assign(pairs.begin(), pairs.end());
        return alignment.isFound;
    }
    [[nodiscard]] KV_ScenePane::AlignmentResult GetAlignmentResult() const override { return alignment; }
    [[nodiscard]] std::string SaveProperties(KV_ScenePane::PropertyFormat format) override {
        return format == KV_ScenePane::PropertyFormat::Text ? store + "text" : store;
    }
    bool LoadProperties(std::string_view bytes, std::string* reason) override {
        if (bytes == store) return true;
        *reason = "the store is damaged";
        return false;
    }
    [[nodiscard]] bool IsModified() const override { return modified; }
    [[nodiscard]] KV_ScenePane::FrameStatistics GetFrameStatistics() const override { return frames; }
    bool ImportFile(const std::string& path, const KV_ScenePane::ImportOptions& options, std::string* reason) override {
        imported = path + ' ' + std::to_string(options.skip) + ' ' + std::to_string(options.confidence) + ' ' +
                   std::to_string(options.color);
        *reason = refusal;
        return refusal.empty();
    }
    [[nodiscard]] std::string LastError() const override { return refusal; }
};

/// A viewer of the C interface over a RecordingViewer.
class RecordedPane {
public:
    RecordedPane() {
        auto made = std::make_unique<RecordingViewer>();
        viewer = made.get();
        pane = new kv_pane;
        pane->m_pViewer = std::move(made);
    }
    ~RecordedPane() { kv_destroy(pane); }
    RecordedPane(const RecordedPane&) = delete;
    RecordedPane& operator=(const RecordedPane&) = delete;

    RecordingViewer* viewer;
    kv_pane* pane;
};
