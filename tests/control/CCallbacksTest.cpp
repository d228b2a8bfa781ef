// A host in C whose callback calls every method from every event, fails in it, or destroys the viewer in it. The host
// itself is CCallbacks.c.
#include <gtest/gtest.h>

#include <string>

#include "KV_ScenePane/DebugOutput.h"
#include "control/CCallbacks.h"
#include "support/ScratchFolder.h"
#include "support/TestFolder.h"

namespace {

[[maybe_unused]] const std::string& g_logFolder = TestFolder();

struct EventRow {
    const char* name;
    std::int32_t id;
};
void PrintTo(const EventRow& row, std::ostream* out) { *out << row.name; }

// SelectViewDirection is fired by no call and no input: CInterfaceRefusalsTest.cpp has it.
const EventRow kEvents[] = {{"ReadyStateChange", KV_EVENT_ReadyStateChange},
                            {"SelectObjCoords", KV_EVENT_SelectObjCoords},
                            {"SegmentationDone", KV_EVENT_SegmentationDone},
                            {"ViewDirectionChanged", KV_EVENT_ViewDirectionChanged},
                            {"AlignmentDone", KV_EVENT_AlignmentDone},
                            {"NeedleCreated", KV_EVENT_NeedleCreated},
                            {"NeedleSelected", KV_EVENT_NeedleSelected},
                            {"NeedleDeleted", KV_EVENT_NeedleDeleted},
                            {"NeedleDeselected", KV_EVENT_NeedleDeselected},
                            {"CustomKeyDown", KV_EVENT_CustomKeyDown},
                            {"PickPointCountChanged", KV_EVENT_PickPointCountChanged},
                            {"CutMaskApplied", KV_EVENT_CutMaskApplied}};

class CallbackInC : public testing::TestWithParam<EventRow> {
protected:
    CallbackInC() {
        KV_ScenePane::SetDebugOutputSink([](std::string_view) {});
    }
    ~CallbackInC() override { KV_ScenePane::SetDebugOutputSink({}); }

    callback_report Run(std::int32_t action) {
        callback_report report;
        EXPECT_NE(run_callback(GetParam().id, action, (m_folder / "missing.stl").c_str(), &report), 0)
            << kv_last_error();
        return report;
    }

private:
    ScratchFolder m_folder;
};

}  // namespace

TEST_P(CallbackInC, CallsEveryMethodAndTheViewerIsWhole) {
    const callback_report report = Run(CALL_EVERY_METHOD);
    EXPECT_EQ(report.status, KV_DONE) << report.error;
    EXPECT_STREQ(report.problem, "");
    EXPECT_GE(report.calls, 114);  // 120, and up to six that have no object or sphere
    EXPECT_GE(report.arrivals, 2);
    EXPECT_TRUE(report.is_whole);
}

TEST_P(CallbackInC, EndsTheCallWhenItReturnsAnotherValueThanZero) {
    const callback_report report = Run(RETURN_ONE);
    EXPECT_EQ(report.status, KV_HANDLER_FAILED);
    EXPECT_NE(std::string(report.error).find(GetParam().name), std::string::npos) << report.error;
    EXPECT_STREQ(report.problem, "");
    EXPECT_TRUE(report.is_whole);
}

TEST_P(CallbackInC, DestroysTheViewerAndReceivesNothingMore) {
    const callback_report report = Run(DESTROY_THE_VIEWER);
    EXPECT_EQ(report.status, KV_DONE) << report.error;
    EXPECT_EQ(report.arrivals, 1);
    EXPECT_EQ(report.events_after_end, 0);
    EXPECT_STREQ(report.problem, "");
}
INSTANTIATE_TEST_SUITE_P(Events, CallbackInC, testing::ValuesIn(kEvents),
                         [](const auto& row) { return row.param.name; });
