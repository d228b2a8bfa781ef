#include "EventFormatter.h"

#include <gtest/gtest.h>

#include <ostream>

#include "host/CommaLocale.h"

namespace {

struct RecordedLines final : EventFormatter {
    std::string text;
    void ReportLine(const std::string& line) override { text += line; }
};

struct Event {
    const char* name;
    void (*fire)(KV_ScenePane::_DKV_ScenePaneEvents& events);
    const char* line;
};
void PrintTo(const Event& row, std::ostream* out) { *out << row.name; }

using Events = KV_ScenePane::_DKV_ScenePaneEvents;
const Event kEvents[] = {
    {"ReadyStateChange", [](Events& e) { e.ReadyStateChange(); }, "ReadyStateChange()"},
    {"SelectViewDirection", [](Events& e) { e.SelectViewDirection(1, 2, 3, 0, 0, -1); },
     "SelectViewDirection(px = 1, py = 2, pz = 3, vx = 0, vy = 0, vz = -1)"},
    {"SelectObjCoords", [](Events& e) { e.SelectObjCoords(7, 1.5f, -2.25f, 0.1f, 9, 640, -3); },
     "SelectObjCoords(idx = 7, px = 1.5, py = -2.25, pz = 0.1, shiftModifiers = 9, mouseX = 640, mouseY = -3)"},
    {"SegmentationDone", [](Events& e) { e.SegmentationDone(-1); }, "SegmentationDone(numObj = -1)"},
    {"ViewDirectionChanged", [](Events& e) { e.ViewDirectionChanged(0.5f, 0, 1e-20f); },
     "ViewDirectionChanged(vx = 0.5, vy = 0, vz = 1e-20)"},
    {"AlignmentDone", [](Events& e) { e.AlignmentDone(); }, "AlignmentDone()"},
    {"NeedleCreated", [](Events& e) { e.NeedleCreated(1); }, "NeedleCreated(id = 1)"},
    {"NeedleSelected", [](Events& e) { e.NeedleSelected(2); }, "NeedleSelected(id = 2)"},
    {"NeedleDeleted", [](Events& e) { e.NeedleDeleted(3); }, "NeedleDeleted(id = 3)"},
    {"NeedleDeselected", [](Events& e) { e.NeedleDeselected(4); }, "NeedleDeselected(id = 4)"},
    {"CustomKeyDown", [](Events& e) { e.CustomKeyDown(65, 2, 0x4000); },
     "CustomKeyDown(nChar = 65, nRepCnt = 2, nFlags = 16384)"},
    {"PickPointCountChanged", [](Events& e) { e.PickPointCountChanged(0); }, "PickPointCountChanged(newCount = 0)"},
    {"CutMaskApplied", [](Events& e) { e.CutMaskApplied(std::int64_t{1} << 40); },
     "CutMaskApplied(addr = 1099511627776)"},
};
class EventFormatterTest : public testing::TestWithParam<Event> {};

TEST_P(EventFormatterTest, IsItsNameWithItsArguments) {
    RecordedLines lines;
    GetParam().fire(lines);
    EXPECT_EQ(lines.text, GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(Events, EventFormatterTest, testing::ValuesIn(kEvents),
                         [](const auto& row) { return row.param.name; });

TEST(EventFormatter, WritesNumbersWithADecimalPointInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    RecordedLines lines;
    lines.ViewDirectionChanged(0.5f, 1234567.0f, 0);
    EXPECT_EQ(lines.text, "ViewDirectionChanged(vx = 0.5, vy = 1234567, vz = 0)");
}

}  // namespace
