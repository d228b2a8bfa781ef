// The dispatch of automation methods by id: to a recording replacement, and to the real control.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "control/AutomationTable.h"
#include "control/RecordingPane.h"
#include "support/ControlFixture.h"

namespace {

const AutomationMethod& Method(std::string_view name) {
    for (const AutomationMethod& method : AutomationMethods())
        if (method.name == name) return method;
    throw std::invalid_argument("no method " + std::string(name));
}

/// Values that differ by position, so that swapped arguments are detected.
std::vector<AutomationValue> DistinctArguments(const AutomationMethod& method) {
    static const wchar_t text[] = L"0123456789abcdefghij";
    static char memory[32];
    std::vector<AutomationValue> values;
    for (std::size_t i = 1; i < method.signature.size(); ++i) {
        const auto n = static_cast<std::int32_t>(i);
        switch (method.signature[i]) {
            case 's':
                values.emplace_back(static_cast<std::int16_t>(-100 - n));
                break;
            case 'i':
                values.emplace_back(1000000 + n);
                break;
            case 'f':
                values.emplace_back(0.5f + static_cast<float>(n));
                break;
            case 'w':
                values.emplace_back(text + i);
                break;
            default:
                values.emplace_back(static_cast<void*>(memory + i));
                break;
        }
    }
    return values;
}

AutomationValue RecordedResult(const AutomationMethod& method) {
    switch (method.signature[0]) {
        case 's':
            return kRecordedShort;
        case 'i':
            return kRecordedLong;
        default:
            return std::monostate();
    }
}

TEST(InvokeMethod, CallsTheMethodOfTheIdWithItsArgumentsInOrderAndPassesTheResult) {
    for (const AutomationMethod& method : AutomationMethods()) {
        RecordingPane pane;
        const std::vector<AutomationValue> arguments = DistinctArguments(method);
        AutomationValue result = 4.0f;
        EXPECT_EQ(InvokeMethod(pane, method.id, arguments, &result), AutomationStatus::Done) << method.name;
        ASSERT_EQ(pane.calls.size(), 1u) << method.name;
        EXPECT_EQ(pane.calls[0].name, method.name);
        EXPECT_EQ(pane.calls[0].arguments, arguments) << method.name;
        EXPECT_EQ(result, RecordedResult(method)) << method.name;
    }
}

TEST(InvokeMethod, AcceptsANullResult) {
    RecordingPane pane;
    EXPECT_EQ(InvokeMethod(pane, 23, {}, nullptr), AutomationStatus::Done);
    EXPECT_EQ(pane.calls.size(), 1u);
}

TEST(InvokeMethod, RefusesIdsThatAreNotMethods) {
    for (const std::int32_t id : {0, 1, 2, 3, 123, -1, -525, -551, -609, INT32_MAX, INT32_MIN}) {
        RecordingPane pane;
        AutomationValue result = 4.0f;
        EXPECT_EQ(InvokeMethod(pane, id, {}, &result), AutomationStatus::UnknownId) << id;
        EXPECT_TRUE(pane.calls.empty()) << id;
        EXPECT_EQ(result, AutomationValue(4.0f)) << id;
    }
}

TEST(InvokeMethod, RefusesOneArgumentTooManyOrTooFew) {
    for (const AutomationMethod& method : AutomationMethods()) {
        RecordingPane pane;
        std::vector<AutomationValue> arguments = DistinctArguments(method);
        if (!arguments.empty()) {
            const std::span<const AutomationValue> oneLess(arguments.data(), arguments.size() - 1);
            EXPECT_EQ(InvokeMethod(pane, method.id, oneLess, nullptr), AutomationStatus::BadArguments) << method.name;
        }
        arguments.emplace_back(std::int16_t{0});
        EXPECT_EQ(InvokeMethod(pane, method.id, arguments, nullptr), AutomationStatus::BadArguments) << method.name;
        EXPECT_TRUE(pane.calls.empty()) << method.name;
    }
}

TEST(InvokeMethod, RefusesAWrongTypeInEveryPosition) {
    const std::pair<char, AutomationValue> ofEachType[] = {
        {'s', std::int16_t{1}}, {'i', std::int32_t{1}}, {'f', 1.0f}, {'w', L"text"}, {'p', static_cast<void*>(nullptr)},
        {'-', std::monostate()}};
    for (const AutomationMethod& method : AutomationMethods())
        for (std::size_t i = 1; i < method.signature.size(); ++i)
            for (const auto& [letter, value] : ofEachType) {
                if (letter == method.signature[i]) continue;
                RecordingPane pane;
                std::vector<AutomationValue> arguments = DistinctArguments(method);
                arguments[i - 1] = value;
                EXPECT_EQ(InvokeMethod(pane, method.id, arguments, nullptr), AutomationStatus::BadArguments)
                    << method.name << ", argument " << i << " as " << letter;
                EXPECT_TRUE(pane.calls.empty()) << method.name;
            }
}

// ---- rows by id and by name

template <typename Row>
void ExpectFound(std::span<const Row> rows, const Row* (*byId)(std::int32_t), const Row* (*byName)(std::string_view)) {
    for (const Row& row : rows) {
        EXPECT_EQ(byId(row.id), &row) << row.name;
        EXPECT_EQ(byName(row.name), &row) << row.name;
        // A part of another text, without a zero at its end.
        EXPECT_EQ(byName(std::string(row.name).append("x").substr(0, row.name.size())), &row) << row.name;
        EXPECT_EQ(byName(row.name.substr(1)), nullptr) << row.name;
    }
    for (const std::int32_t id : {0, 123, -1, -551, INT32_MAX, INT32_MIN}) EXPECT_EQ(byId(id), nullptr) << id;
    for (const std::string_view name : {"", "setsize", "Set", "SetSize "}) EXPECT_EQ(byName(name), nullptr) << name;
}

TEST(AutomationRows, AreFoundByIdAndByName) {
    ExpectFound<AutomationMethod>(AutomationMethods(), &FindMethod, &FindMethod);
    ExpectFound<AutomationProperty>(AutomationProperties(), &FindProperty, &FindProperty);
    ExpectFound<AutomationEvent>(AutomationEvents(), &FindEvent, &FindEvent);
    EXPECT_EQ(FindMethod(2), nullptr) << "a property";
    EXPECT_EQ(FindProperty(4), nullptr) << "a method";
    EXPECT_EQ(FindEvent(-552), nullptr) << "a method";
}

// ---- properties and events by the table

TEST(AutomationProperties, AreReadAndWrittenByTheirRows) {
    for (const AutomationProperty& property : AutomationProperties()) {
        RecordingPane pane;
        const bool isLong = property.id == -525;
        EXPECT_EQ(property.code, isLong ? 'i' : 's') << property.name;
        EXPECT_EQ(property.get(pane), isLong ? AutomationValue(kRecordedLong) : AutomationValue(kRecordedShort));
        EXPECT_EQ(pane.calls.back().name, "Get" + std::string(property.name));
        EXPECT_EQ(property.put == nullptr, isLong) << property.name;
        if (isLong) continue;
        property.put(pane, std::int16_t{7});
        EXPECT_EQ(pane.calls.back().name, "Set" + std::string(property.name));
        EXPECT_EQ(pane.calls.back().arguments, std::vector<AutomationValue>{std::int16_t{7}}) << property.name;
    }
}

/// The numbers of arguments, as EventsRecorder keeps them.
std::vector<double> Numbers(const std::vector<AutomationValue>& values) {
    std::vector<double> numbers;
    for (const AutomationValue& value : values)
        std::visit(
            [&](auto number) {
                if constexpr (std::is_arithmetic_v<decltype(number)>) numbers.push_back(static_cast<double>(number));
            },
            value);
    return numbers;
}

TEST(AutomationEvents, AreFiredByTheirRows) {
    for (const AutomationEvent& event : AutomationEvents()) {
        EventsRecorder recorder;
        std::vector<AutomationValue> arguments;
        for (std::size_t i = 1; i < event.signature.size(); ++i) {
            const auto n = static_cast<std::int32_t>(i);
            const std::map<char, AutomationValue> values = {{'s', static_cast<std::int16_t>(-n)},
                                                            {'i', 1000000 + n},
                                                            {'f', 0.5f + static_cast<float>(n)},
                                                            {'l', std::int64_t{1} << 40}};
            arguments.push_back(values.at(event.signature[i]));
        }
        event.fire(recorder, arguments);
        ASSERT_EQ(recorder.events.size(), 1u) << event.name;
        EXPECT_EQ(recorder.events[0].name, event.name);
        EXPECT_EQ(recorder.events[0].arguments, Numbers(arguments)) << event.name;
    }
}

// ---- the dispatch on the real control

class AutomationOfTheControl : public testing::Test {
protected:
    AutomationValue Invoke(std::int32_t id, const std::vector<AutomationValue>& arguments) {
        AutomationValue result;
        EXPECT_EQ(InvokeMethod(*m_control, id, arguments, &result), AutomationStatus::Done) << id;
        return result;
    }

    NoPictureControl m_control;
};

TEST_F(AutomationOfTheControl, StoresAndReadsSettingsById) {
    Invoke(20, {std::int32_t{0x123456}});
    EXPECT_EQ(m_control->m_nCrossColor, 0x123456u);
    EXPECT_EQ(Invoke(21, {}), AutomationValue(std::int32_t{0x123456}));
    Invoke(49, {std::int16_t{7}});
    EXPECT_EQ(Invoke(87, {}), AutomationValue(std::int16_t{7}));
    Invoke(69, {std::int16_t{1}});
    EXPECT_EQ(Invoke(70, {}), AutomationValue(std::int16_t{1}));
}

TEST_F(AutomationOfTheControl, ImportsAMeshFromPointersAndReadsItsBoxThroughPointers) {
    float vertices[] = {1, 2, 3, 11, 2, 3, 1, 22, 33};
    std::int32_t triangles[] = {0, 1, 2};
    Invoke(117, {std::int32_t{3}, std::int32_t{1}, static_cast<void*>(vertices), static_cast<void*>(triangles)});
    EXPECT_EQ(Invoke(23, {}), AutomationValue(std::int16_t{1}));
    float box[6] = {};
    std::vector<AutomationValue> arguments = {std::int16_t{0}};
    for (float& value : box) arguments.emplace_back(static_cast<void*>(&value));
    Invoke(74, arguments);
    EXPECT_EQ(std::vector<float>(box, box + 6), (std::vector<float>{1, 11, 2, 22, 3, 33}));
    float v[3] = {};
    EXPECT_EQ(
        Invoke(59, {std::int16_t{1}, static_cast<void*>(v), static_cast<void*>(v + 1), static_cast<void*>(v + 2)}),
        AutomationValue(std::int16_t{0}));
    EXPECT_EQ(
        Invoke(59, {std::int16_t{0}, static_cast<void*>(v), static_cast<void*>(v + 1), static_cast<void*>(v + 2)}),
        AutomationValue(std::int16_t{-1}));
}

TEST_F(AutomationOfTheControl, PassesTheArraysOfNeedlesByTheirPointers) {
    std::int32_t ids[] = {5, -6};
    float pins[] = {1, 2, 3, 4, 5, 6}, heads[] = {7, 8, 9, 10, 11, 12};
    const auto pointer = [](auto* p) { return AutomationValue(static_cast<void*>(p)); };
    EXPECT_EQ(Invoke(57, {std::int32_t{2}, pointer(ids), pointer(pins), pointer(heads)}),
              AutomationValue(std::int16_t{-1}));
    EXPECT_EQ(Invoke(113, {}), AutomationValue(std::int32_t{2}));
    std::int32_t foundIds[2] = {};
    float foundPins[6] = {}, foundHeads[6] = {};
    Invoke(115, {pointer(foundIds), pointer(foundPins), pointer(foundHeads)});
    EXPECT_TRUE(std::ranges::equal(foundIds, ids));
    EXPECT_TRUE(std::ranges::equal(foundPins, pins));
    EXPECT_TRUE(std::ranges::equal(foundHeads, heads));
    EXPECT_EQ(Invoke(16, {std::int32_t{-6}}), AutomationValue(std::monostate())) << "SelectNeedle returns nothing";
    EXPECT_TRUE(m_control->m_vNeedles.at(1).selected);
    EXPECT_EQ(Invoke(14, {std::int32_t{-6}}), AutomationValue(std::int16_t{-1}));
    EXPECT_EQ(Invoke(112, {std::int32_t{5}}), AutomationValue(std::int16_t{-1}));
    EXPECT_EQ(Invoke(112, {std::int32_t{5}}), AutomationValue(std::int16_t{0}));
}

TEST_F(AutomationOfTheControl, DoesNothingAtTheRemovedId80) {
    EXPECT_EQ(Method("SetMeshFilename_Removed").id, 80);
    m_control.debugOutput.Take();
    EXPECT_EQ(Invoke(80, {}), AutomationValue(std::monostate()));
    EXPECT_EQ(m_control.debugOutput.Take(), "");
    EXPECT_EQ(m_control->GetNumObjects(), 0);
    EXPECT_FALSE(m_control->m_bModified);
}

TEST_F(AutomationOfTheControl, KeepsTheLineDrawingModeAtId81) { EXPECT_EQ(Method("SetLine3DDrawingMode").id, 81); }

// ---- every method does something

/// Arguments that any method accepts: zeros, empty texts, and host memory for pointers.
std::vector<AutomationValue> HarmlessArguments(const AutomationMethod& method, std::vector<std::uint8_t>& memory) {
    std::vector<AutomationValue> values;
    for (std::size_t i = 1; i < method.signature.size(); ++i) switch (method.signature[i]) {
            case 's':
                values.emplace_back(std::int16_t{0});
                break;
            case 'i':
                values.emplace_back(std::int32_t{0});
                break;
            case 'f':
                values.emplace_back(0.0f);
                break;
            case 'w':
                values.emplace_back(L"");
                break;
            default:
                values.emplace_back(static_cast<void*>(memory.data()));
                break;
        }
    return values;
}

TEST_F(AutomationOfTheControl, NoMethodSaysThatItIsStillToCome) {
    const std::set<std::string_view> sayMoreOrNeedAnEntry = {"AboutBox",
                                                             "GetMeshDataSize",
                                                             "GetObjectBoundingBox",
                                                             "ImportScan",
                                                             "RecreateOpenglContext",
                                                             "ImportMeasurementFromMemory",
                                                             "ImportMeshedMeasurement",
                                                             "ImportMesh",
                                                             "GetPickPointSphereCoords",
                                                             "MovePickPointSphere",
                                                             "RemovePickPointSphere"};
    std::vector<std::uint8_t> memory(2048 * 2048 * 4);  // the largest that a method writes: a screenshot
    int called = 0;
    for (const AutomationMethod& method : AutomationMethods()) {
        if (sayMoreOrNeedAnEntry.contains(method.name)) continue;
        m_control.debugOutput.Take();
        Invoke(method.id, HarmlessArguments(method, memory));
        EXPECT_EQ(m_control.debugOutput.Take(), "") << method.name;
        ++called;
    }
    EXPECT_EQ(called, 120 - static_cast<int>(sayMoreOrNeedAnEntry.size()));
}

}  // namespace
