// A viewer that is called through the C interface.
#include <gtest/gtest.h>

#include <utility>

#include "KV_ScenePane/kv_scenepane.h"
#include "control/CInterfacePane.h"
#include "control/ScenePaneHandle.h"
#include "random/Viewer.h"

namespace {

kv_value ToC(const AutomationValue& value) {
    kv_value result{};
    if (const auto* i16 = std::get_if<std::int16_t>(&value)) result = {KV_SHORT, {.i16 = *i16}};
    if (const auto* i32 = std::get_if<std::int32_t>(&value)) result = {KV_LONG, {.i32 = *i32}};
    if (const auto* f32 = std::get_if<float>(&value)) result = {KV_FLOAT, {.f32 = *f32}};
    if (const auto* wide = std::get_if<const wchar_t*>(&value)) result = {KV_STRING, {.wide = *wide}};
    if (const auto* pointer = std::get_if<void*>(&value)) result = {KV_POINTER, {.pointer = *pointer}};
    return result;
}

AutomationValue FromC(const kv_value& value) {
    switch (value.type) {
        case KV_SHORT:
            return value.as.i16;
        case KV_LONG:
            return value.as.i32;
        case KV_FLOAT:
            return value.as.f32;
        default:
            return std::monostate();
    }
}

double Number(const kv_value& value) {
    switch (value.type) {
        case KV_SHORT:
            return value.as.i16;
        case KV_LONG:
            return value.as.i32;
        case KV_FLOAT:
            return value.as.f32;
        default:
            return static_cast<double>(value.as.i64);
    }
}

int32_t KeepEvent(void* user, int32_t id, const kv_value* arguments, size_t count) {
    Event event{kv_member_by_id(KV_EVENT, id)->name, {}};
    for (size_t i = 0; i < count; ++i) event.arguments.push_back(Number(arguments[i]));
    static_cast<std::vector<Event>*>(user)->push_back(std::move(event));
    return 0;
}

class CViewer final : public Viewer {
public:
    explicit CViewer(kv_pane* pane) : m_pane(pane) { kv_connect(m_pane, KeepEvent, &m_events); }
    ~CViewer() override { kv_destroy(m_pane); }
    CViewer(const CViewer&) = delete;
    CViewer& operator=(const CViewer&) = delete;

    Outcome Invoke(std::int32_t id, std::span<const AutomationValue> arguments) override {
        std::vector<kv_value> values;
        values.reserve(arguments.size());
        for (const AutomationValue& argument : arguments) values.push_back(ToC(argument));
        kv_value result{};
        Outcome outcome;
        switch (kv_invoke(m_pane, id, values.data(), values.size(), &result)) {
            case KV_DONE:
                outcome.result = FromC(result);
                break;
            case KV_UNKNOWN_ID:
                outcome.status = AutomationStatus::UnknownId;
                break;
            case KV_BAD_ARGUMENTS:
                outcome.status = AutomationStatus::BadArguments;
                break;
            default:
                outcome.failed = true;
                outcome.text = kv_last_error();
        }
        return outcome;
    }
    std::int32_t GetProperty(std::int32_t id) override {
        kv_value value{};
        EXPECT_EQ(kv_get_property(m_pane, id, &value), KV_DONE) << kv_last_error();
        return static_cast<std::int32_t>(Number(value));
    }
    void PutProperty(std::int32_t id, std::int16_t value) override {
        const kv_value given = ToC(AutomationValue(value));
        EXPECT_EQ(kv_put_property(m_pane, id, &given), KV_DONE) << kv_last_error();
    }
    void SendMouse(const KV_ScenePane::MouseInput& input) override {
        kv_send_mouse(m_pane, static_cast<int32_t>(input.kind), input.flags, input.x, input.y, input.delta);
    }
    void SendKey(const KV_ScenePane::KeyInput& input) override {
        kv_send_key(m_pane, input.isDown ? 1 : 0, input.nChar, input.nRepCnt, input.nFlags);
    }
    void ProcessEvents() override { kv_process_events(m_pane); }
    bool HasWindow() override { return kv_has_window(m_pane) != 0; }
    bool Cut(std::int16_t mode, const std::vector<KV_ScenePane::LassoPoint>& points) override {
        std::vector<double> numbers;
        for (const auto& point : points) numbers.insert(numbers.end(), {point.x, point.y});
        int32_t changed = -1;
        EXPECT_EQ(kv_cut_with_lasso(m_pane, mode, numbers.data(), points.size(), &changed), KV_DONE) << kv_last_error();
        return changed == 1;
    }
    std::int32_t UndoSteps() override { return kv_undo_step_count(m_pane); }
    std::vector<int> CutCounts() override {
        std::vector<kv_cut_save_entry> entries(kv_cut_save_entries(m_pane, 1, nullptr, 0));
        kv_cut_save_entries(m_pane, 1, entries.data(), entries.size());
        std::vector<int> counts;
        counts.reserve(entries.size());
        for (const kv_cut_save_entry& entry : entries) counts.push_back(entry.cut_count);
        return counts;
    }
    CKV_ScenePaneCtrl* Control() override { return &ControlOf(*m_pane->m_pViewer); }
    std::vector<Event> TakeEvents() override { return std::exchange(m_events, {}); }

private:
    kv_pane* m_pane;
    std::vector<Event> m_events;
};

}  // namespace

std::unique_ptr<Viewer> MakeCViewer(const KV_ScenePane::WindowRequest& request) {
    kv_window_request c{};
    kv_window_request_init(&c);
    const bool hasPicture = request.kind == KV_ScenePane::WindowRequest::Kind::OffScreen;
    c.kind = hasPicture ? KV_OFF_SCREEN : KV_NO_PICTURE;
    c.width = request.width;
    c.height = request.height;
    c.gpu = request.gpu;
    if (kv_pane* const pane = kv_create(&c)) return std::make_unique<CViewer>(pane);
    ADD_FAILURE() << "no viewer: " << kv_last_error();
    return nullptr;
}
