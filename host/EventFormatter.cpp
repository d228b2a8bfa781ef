// One line per event. Numbers are formatted as in the report of --info, so that they do not depend on the locale.
#include "EventFormatter.h"

#include <initializer_list>
#include <string_view>

#include "SceneReport.h"

namespace {

/// The name and the text of one argument of an event.
struct Argument {
    Argument(std::string_view argumentName, float value) : name(argumentName), text(NumberText(value)) {}
    Argument(std::string_view argumentName, std::int64_t value) : name(argumentName), text(std::to_string(value)) {}
    std::string_view name;
    std::string text;
};

/// "Event(name = value, name = value)".
std::string Line(std::string_view event, std::initializer_list<Argument> arguments) {
    std::string line(event);
    line += '(';
    for (const Argument& argument : arguments) {
        if (line.back() != '(') line += ", ";
        line.append(argument.name) += " = " + argument.text;
    }
    return line + ')';
}

}  // namespace

// In the order of the interface of the events. Integers are widened explicitly: an int32 converts to both types of
// Argument's constructors, which is ambiguous.

void EventFormatter::ReadyStateChange() { ReportLine(Line("ReadyStateChange", {})); }

void EventFormatter::SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz) {
    ReportLine(Line("SelectViewDirection", {{"px", px}, {"py", py}, {"pz", pz}, {"vx", vx}, {"vy", vy}, {"vz", vz}}));
}

void EventFormatter::SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                                     std::int32_t mouseX, std::int32_t mouseY) {
    ReportLine(Line("SelectObjCoords", {{"idx", std::int64_t{idx}},
                                        {"px", px},
                                        {"py", py},
                                        {"pz", pz},
                                        {"shiftModifiers", std::int64_t{shiftModifiers}},
                                        {"mouseX", std::int64_t{mouseX}},
                                        {"mouseY", std::int64_t{mouseY}}}));
}

void EventFormatter::SegmentationDone(std::int16_t numObj) {
    ReportLine(Line("SegmentationDone", {{"numObj", std::int64_t{numObj}}}));
}

void EventFormatter::ViewDirectionChanged(float vx, float vy, float vz) {
    ReportLine(Line("ViewDirectionChanged", {{"vx", vx}, {"vy", vy}, {"vz", vz}}));
}

void EventFormatter::AlignmentDone() { ReportLine(Line("AlignmentDone", {})); }

void EventFormatter::NeedleCreated(std::int32_t id) { ReportLine(Line("NeedleCreated", {{"id", std::int64_t{id}}})); }

void EventFormatter::NeedleSelected(std::int32_t id) { ReportLine(Line("NeedleSelected", {{"id", std::int64_t{id}}})); }

void EventFormatter::NeedleDeleted(std::int32_t id) { ReportLine(Line("NeedleDeleted", {{"id", std::int64_t{id}}})); }

void EventFormatter::NeedleDeselected(std::int32_t id) {
    ReportLine(Line("NeedleDeselected", {{"id", std::int64_t{id}}}));
}

void EventFormatter::CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    ReportLine(
        Line("CustomKeyDown",
             {{"nChar", std::int64_t{nChar}}, {"nRepCnt", std::int64_t{nRepCnt}}, {"nFlags", std::int64_t{nFlags}}}));
}

void EventFormatter::PickPointCountChanged(std::int32_t newCount) {
    ReportLine(Line("PickPointCountChanged", {{"newCount", std::int64_t{newCount}}}));
}

void EventFormatter::CutMaskApplied(std::int64_t addr) { ReportLine(Line("CutMaskApplied", {{"addr", addr}})); }
