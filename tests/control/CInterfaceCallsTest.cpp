// Calls by id, properties, events and the table as data, for programs in C.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/kv_scenepane.h"
#include "control/RecordingViewer.h"

namespace {

using Values = std::vector<kv_value>;

kv_value Short(std::int16_t value) { return {.type = KV_SHORT, .as = {.i16 = value}}; }
kv_value Long(std::int32_t value) { return {.type = KV_LONG, .as = {.i32 = value}}; }
kv_value Float(float value) { return {.type = KV_FLOAT, .as = {.f32 = value}}; }
kv_value Wide(const wchar_t* value) { return {.type = KV_STRING, .as = {.wide = value}}; }
kv_value Utf8(const char* value) { return {.type = KV_UTF8, .as = {.utf8 = value}}; }
kv_value Pointer(void* value) { return {.type = KV_POINTER, .as = {.pointer = value}}; }
kv_value Int64(std::int64_t value) { return {.type = KV_INT64, .as = {.i64 = value}}; }

/// Values that differ by position, for the types of a signature without its result; in both forms.
struct DistinctArguments {
    Values c;
    std::vector<AutomationValue> recorded;

    explicit DistinctArguments(std::string_view types) {
        static const wchar_t text[] = L"0123456789abcdefghij";
        static char memory[32];
        for (std::size_t i = 0; i < types.size(); ++i) {
            const auto n = static_cast<std::int32_t>(i);
            switch (types[i]) {
                case 's':
                    Add(Short(static_cast<std::int16_t>(-100 - n)), static_cast<std::int16_t>(-100 - n));
                    break;
                case 'i':
                    Add(Long(1000000 + n), 1000000 + n);
                    break;
                case 'f':
                    Add(Float(0.5f + static_cast<float>(n)), 0.5f + static_cast<float>(n));
                    break;
                case 'w':
                    Add(Wide(text + i), static_cast<const wchar_t*>(text + i));
                    break;
                case 'l':
                    Add(Int64(0x123456789abcdef0 + n), std::int64_t{0x123456789abcdef0 + n});
                    break;
                default:
                    Add(Pointer(memory + i), static_cast<void*>(memory + i));
                    break;
            }
        }
    }

private:
    void Add(kv_value value, AutomationValue sameValue) {
        c.push_back(value);
        recorded.push_back(sameValue);
    }
};

bool IsSame(const kv_value& a, const kv_value& b) {
    if (a.type != b.type) return false;
    switch (a.type) {
        case KV_SHORT:
            return a.as.i16 == b.as.i16;
        case KV_LONG:
            return a.as.i32 == b.as.i32;
        case KV_FLOAT:
            return a.as.f32 == b.as.f32;
        case KV_INT64:
            return a.as.i64 == b.as.i64;
        default:
            return a.as.pointer == b.as.pointer;
    }
}

kv_status Invoke(kv_pane* pane, std::int32_t id, const Values& arguments, kv_value* result = nullptr) {
    return kv_invoke(pane, id, arguments.data(), arguments.size(), result);
}

// ---- kv_invoke

TEST(KvInvoke, CallsTheMethodOfTheIdWithItsArgumentsInOrderAndReturnsTheResultWithItsType) {
    const std::map<char, kv_value> results = {
        {'v', kv_value{}}, {'s', Short(kRecordedShort)}, {'i', Long(kRecordedLong)}};
    for (const AutomationMethod& method : AutomationMethods()) {
        RecordedPane recorded;
        const DistinctArguments arguments(method.signature.substr(1));
        kv_value result = Float(4);
        EXPECT_EQ(Invoke(recorded.pane, method.id, arguments.c, &result), KV_DONE) << method.name;
        const auto& calls = recorded.viewer->methods.calls;
        ASSERT_EQ(calls.size(), 1u) << method.name;
        EXPECT_EQ(calls[0].name, method.name);
        EXPECT_EQ(calls[0].arguments, arguments.recorded) << method.name;
        EXPECT_TRUE(IsSame(result, results.at(method.signature[0]))) << method.name << ", type " << result.type;
    }
}

TEST(KvInvoke, HasRoomForTheArgumentsOfEveryMethod) {
    std::size_t most = 0;
    for (const AutomationMethod& method : AutomationMethods()) most = std::max(most, method.arguments.size());
    EXPECT_EQ(most, 17u) << "kMostArguments in CInterfaceCalls.cpp is this number";
}

TEST(KvInvoke, AcceptsANullResult) {
    RecordedPane recorded;
    EXPECT_EQ(kv_invoke(recorded.pane, KV_GetNumObjects, nullptr, 0, nullptr), KV_DONE);
    EXPECT_EQ(recorded.viewer->methods.calls.size(), 1u);
}

TEST(KvInvoke, RefusesIdsThatAreNotMethods) {
    for (const std::int32_t id : {0, 1, 2, 3, 123, -1, -525, -551, -553, -609, INT32_MAX, INT32_MIN}) {
        RecordedPane recorded;
        kv_value result = Float(4);
        EXPECT_EQ(Invoke(recorded.pane, id, {}, &result), KV_UNKNOWN_ID) << id;
        EXPECT_EQ(kv_last_error(), "no method has the id " + std::to_string(id));
        EXPECT_TRUE(recorded.viewer->methods.calls.empty()) << id;
        EXPECT_TRUE(IsSame(result, Float(4))) << id;
    }
}

TEST(KvInvoke, RefusesOneArgumentTooManyOrTooFew) {
    for (const AutomationMethod& method : AutomationMethods()) {
        RecordedPane recorded;
        Values arguments = DistinctArguments(method.signature.substr(1)).c;
        kv_value result = Float(4);
        if (!arguments.empty()) {
            EXPECT_EQ(kv_invoke(recorded.pane, method.id, arguments.data(), arguments.size() - 1, &result),
                      KV_BAD_ARGUMENTS)
                << method.name;
        }
        arguments.push_back(Short(0));
        EXPECT_EQ(Invoke(recorded.pane, method.id, arguments, &result), KV_BAD_ARGUMENTS) << method.name;
        EXPECT_TRUE(std::string(kv_last_error()).starts_with(method.name)) << kv_last_error();
        EXPECT_TRUE(recorded.viewer->methods.calls.empty()) << method.name;
        EXPECT_TRUE(IsSame(result, Float(4))) << method.name;
    }
}

TEST(KvInvoke, RefusesAWrongTypeInEveryPosition) {
    const std::pair<char, kv_value> ofEachType[] = {{'s', Short(1)},
                                                    {'i', Long(1)},
                                                    {'f', Float(1)},
                                                    {'w', Wide(L"text")},
                                                    {'w', Utf8("text")},
                                                    {'p', Pointer(nullptr)},
                                                    {'l', Int64(1)},
                                                    {'-', {}},
                                                    {'-', {.type = -1, .as = {}}},
                                                    {'-', {.type = 8, .as = {}}}};
    for (const AutomationMethod& method : AutomationMethods())
        for (std::size_t i = 1; i < method.signature.size(); ++i)
            for (const auto& [letter, value] : ofEachType) {
                if (letter == method.signature[i]) continue;
                RecordedPane recorded;
                Values arguments = DistinctArguments(method.signature.substr(1)).c;
                arguments[i - 1] = value;
                EXPECT_EQ(Invoke(recorded.pane, method.id, arguments), KV_BAD_ARGUMENTS)
                    << method.name << ", argument " << i << " as " << value.type;
                const std::string place = std::string(method.name) + ": argument " + std::to_string(i) + ", " +
                                          std::string(method.arguments[i - 1].name) + ", must be ";
                EXPECT_TRUE(std::string(kv_last_error()).starts_with(place)) << kv_last_error();
                EXPECT_TRUE(recorded.viewer->methods.calls.empty()) << method.name;
            }
}

TEST(KvInvoke, SaysWhichArgumentsItWants) {
    struct Row {
        std::int32_t id;
        Values arguments;
        const char* text;
    };
    const Row rows[] = {
        {KV_SetSize, {Short(1), Float(2)}, "SetSize: argument 2, sy, must be short, not float"},
        {KV_SetSize, {Long(1), Short(2)}, "SetSize: argument 1, sx, must be short, not long"},
        {KV_SetSize, {Short(1)}, "SetSize has 2 arguments, 1 was given"},
        {KV_SetSize, {}, "SetSize has 2 arguments, 0 were given"},
        {KV_ClearData, {Short(1)}, "ClearData has no arguments, 1 was given"},
        {KV_SetArrowAngle, {Short(1), Short(1)}, "SetArrowAngle has 1 argument, 2 were given"},
        {KV_ImportMesh, {Pointer(nullptr)}, "ImportMesh: argument 1, path, must be string, not pointer"},
        {KV_SetPickRadius, {Utf8("1")}, "SetPickRadius: argument 1, r, must be float, not UTF-8 string"},
        {KV_SetCrossColor, {Int64(1)}, "SetCrossColor: argument 1, color, must be long, not int64"},
        {KV_SetCrossColor, {kv_value{}}, "SetCrossColor: argument 1, color, must be long, not no value"},
        {KV_CaptureScreenShot, {Wide(L"")}, "CaptureScreenShot: argument 1, buffer, must be pointer, not string"},
        {KV_CaptureScreenShot,
         {{.type = 99, .as = {}}},
         "CaptureScreenShot: argument 1, buffer, must be pointer, not a value of the unknown type 99"}};
    for (const Row& row : rows) {
        RecordedPane recorded;
        EXPECT_EQ(Invoke(recorded.pane, row.id, row.arguments), KV_BAD_ARGUMENTS) << row.text;
        EXPECT_STREQ(kv_last_error(), row.text);
    }
}

TEST(KvInvoke, RefusesNullInPlaceOfTheArguments) {
    RecordedPane recorded;
    EXPECT_EQ(kv_invoke(recorded.pane, KV_SetSize, nullptr, 2, nullptr), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "SetSize: the arguments are null");
    EXPECT_TRUE(recorded.viewer->methods.calls.empty());
}

TEST(KvInvoke, PassesPathsInUtf8WithAllTheirBytes) {
    // The control reports a path that cannot be opened with its bytes.
    kv_window_request request;
    kv_window_request_init(&request);
    request.kind = KV_NO_PICTURE;
    kv_pane* pane = kv_create(&request);
    ASSERT_NE(pane, nullptr) << kv_last_error();
    std::string output;
    kv_set_debug_output(
        [](void* user, const char* text, std::size_t size) { static_cast<std::string*>(user)->append(text, size); },
        &output);
    const char* const path = "/nowhere/sc\xC3\xA4n \xFF\xE2\x82\xAC.stl";  // with a byte that is not UTF-8
    EXPECT_EQ(Invoke(pane, KV_ImportMesh, {Utf8(path)}), KV_DONE);
    EXPECT_NE(output.find(path), std::string::npos) << output;
    output.clear();
    EXPECT_EQ(Invoke(pane, KV_ImportMesh, {Wide(KV_ScenePane::WidePath(path).c_str())}), KV_DONE);
    EXPECT_NE(output.find(path), std::string::npos) << output;
    kv_set_debug_output(nullptr, nullptr);
    kv_destroy(pane);
}

TEST(KvInvoke, PassesNullTextsOn) {
    for (const kv_value& text : {Wide(nullptr), Utf8(nullptr)}) {
        RecordedPane recorded;
        EXPECT_EQ(Invoke(recorded.pane, KV_SetHpsSourceApp, {text, Wide(L"2")}), KV_DONE);
        EXPECT_EQ(recorded.viewer->methods.calls.at(0).arguments[0],
                  AutomationValue(static_cast<const wchar_t*>(nullptr)));
    }
}

// ---- properties

TEST(KvProperties, AreReadAndWrittenByTheirIds) {
    struct Row {
        std::int32_t id;
        const char* get;
        const char* set;
        kv_value read, write;
        AutomationValue written;
    };
    const Row rows[] = {
        {KV_PROPERTY_DrawMosaic, "GetDrawMosaic", "SetDrawMosaic", Short(kRecordedShort), Short(-1), std::int16_t{-1}},
        {KV_PROPERTY_DrawMode, "GetDrawMode", "SetDrawMode", Short(kRecordedShort), Short(5), std::int16_t{5}},
        {KV_PROPERTY_MoveReduced, "GetMoveReduced", "SetMoveReduced", Short(kRecordedShort), Short(-1),
         std::int16_t{-1}}};
    for (const Row& row : rows) {
        RecordedPane recorded;
        kv_value value = Float(4);
        EXPECT_EQ(kv_get_property(recorded.pane, row.id, &value), KV_DONE);
        EXPECT_TRUE(IsSame(value, row.read)) << row.get;
        EXPECT_EQ(kv_put_property(recorded.pane, row.id, &row.write), KV_DONE);
        const auto& calls = recorded.viewer->methods.calls;
        ASSERT_EQ(calls.size(), 2u);
        EXPECT_EQ(calls[0].name, row.get);
        EXPECT_EQ(calls[1].name, row.set);
        EXPECT_EQ(calls[1].arguments, std::vector<AutomationValue>{row.written}) << row.set;
    }
}

TEST(KvProperties, ReadyStateCanOnlyBeRead) {
    RecordedPane recorded;
    kv_value value = Float(4);
    EXPECT_EQ(kv_get_property(recorded.pane, KV_PROPERTY_ReadyState, &value), KV_DONE);
    EXPECT_TRUE(IsSame(value, Long(kRecordedLong)));
    EXPECT_EQ(kv_put_property(recorded.pane, KV_PROPERTY_ReadyState, &value), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "ReadyState can only be read");
    EXPECT_EQ(recorded.viewer->methods.calls.size(), 1u);
}

TEST(KvProperties, RefuseUnknownIdsOtherTypesAndNull) {
    RecordedPane recorded;
    for (const std::int32_t id : {0, 4, -524, -552, INT32_MAX, INT32_MIN}) {
        kv_value value = Float(4);
        EXPECT_EQ(kv_get_property(recorded.pane, id, &value), KV_UNKNOWN_ID) << id;
        EXPECT_TRUE(IsSame(value, Float(4)));
        EXPECT_EQ(kv_put_property(recorded.pane, id, &value), KV_UNKNOWN_ID) << id;
        EXPECT_EQ(kv_last_error(), "no property has the id " + std::to_string(id));
    }
    const kv_value other = Long(1);
    EXPECT_EQ(kv_put_property(recorded.pane, KV_PROPERTY_DrawMode, &other), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "DrawMode must be short, not long");
    EXPECT_EQ(kv_put_property(recorded.pane, KV_PROPERTY_DrawMode, nullptr), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "DrawMode: the value is null");
    EXPECT_EQ(kv_get_property(recorded.pane, KV_PROPERTY_DrawMode, nullptr), KV_BAD_ARGUMENTS);
    EXPECT_TRUE(recorded.viewer->methods.calls.empty());
}

// ---- events

struct Received {
    std::int32_t id = 0;
    Values arguments;
    int count = 0;
    std::int32_t answer = 0;

    static std::int32_t Keep(void* user, std::int32_t id, const kv_value* arguments, std::size_t count) {
        auto& received = *static_cast<Received*>(user);
        received.id = id;
        received.arguments.assign(arguments, arguments + count);
        ++received.count;
        return received.answer;
    }
};

TEST(KvEvents, ReachTheCallbackWithTheirIdAndTypedArguments) {
    for (const AutomationEvent& event : AutomationEvents()) {
        RecordedPane recorded;
        Received received;
        EXPECT_EQ(kv_connect(recorded.pane, &Received::Keep, &received), KV_DONE);
        const DistinctArguments arguments(event.signature.substr(1));
        event.fire(*recorded.viewer->events, arguments.recorded);
        EXPECT_EQ(received.count, 1) << event.name;
        EXPECT_EQ(received.id, event.id) << event.name;
        EXPECT_TRUE(std::ranges::equal(received.arguments, arguments.c, &IsSame)) << event.name;
    }
}

TEST(KvEvents, EndTheCallOfTheirViewerWhenTheCallbackDoesNotReturnZero) {
    for (const AutomationEvent& event : AutomationEvents()) {
        RecordedPane recorded;
        Received received;
        received.answer = -3;
        kv_connect(recorded.pane, &Received::Keep, &received);
        bool isReached = false;
        recorded.viewer->process = [&] {
            event.fire(*recorded.viewer->events, DistinctArguments(event.signature.substr(1)).recorded);
            isReached = true;
        };
        EXPECT_EQ(kv_process_events(recorded.pane), KV_HANDLER_FAILED) << event.name;
        EXPECT_FALSE(isReached) << event.name;
        EXPECT_EQ(kv_last_error(), "the callback of the event " + std::string(event.name) + " returned -3");
        recorded.viewer->process = [] {};
        EXPECT_EQ(kv_process_events(recorded.pane), KV_DONE) << "the next call";
    }
}

TEST(KvEvents, GoToTheCallbackThatWasConnectedLastAndToNoneAfterNull) {
    RecordedPane recorded;
    Received first, second;
    kv_connect(recorded.pane, &Received::Keep, &first);
    kv_connect(recorded.pane, &Received::Keep, &second);
    recorded.viewer->events->AlignmentDone();
    EXPECT_EQ(first.count, 0);
    EXPECT_EQ(second.count, 1);
    EXPECT_EQ(kv_connect(recorded.pane, nullptr, nullptr), KV_DONE);
    EXPECT_EQ(recorded.viewer->events, nullptr);
}

TEST(KvEvents, ACallbackMayConnectAnotherOne) {
    RecordedPane recorded;
    struct Both {
        kv_pane* pane;
        Received next;
    } both{recorded.pane, {}};
    kv_connect(
        recorded.pane,
        [](void* user, std::int32_t, const kv_value*, std::size_t) {
            auto& me = *static_cast<Both*>(user);
            EXPECT_EQ(kv_connect(me.pane, &Received::Keep, &me.next), KV_DONE);
            return std::int32_t{0};
        },
        &both);
    recorded.viewer->events->NeedleCreated(1);
    EXPECT_EQ(both.next.count, 0);
    recorded.viewer->events->NeedleCreated(2);
    EXPECT_EQ(both.next.count, 1);
    EXPECT_EQ(both.next.arguments.at(0).as.i32, 2);
}

// ---- the table as data

std::int32_t TypeOf(std::string_view declared) {
    if (declared.ends_with('*')) return KV_POINTER;
    const std::map<std::string_view, std::int32_t> types = {
        {"void", KV_VOID}, {"short", KV_SHORT}, {"VARIANT_BOOL", KV_SHORT}, {"long", KV_LONG},
        {"int", KV_LONG},  {"float", KV_FLOAT}, {"BSTR", KV_STRING},        {"int64", KV_INT64}};
    return types.at(declared);
}

void ExpectSameArguments(const kv_member_info& info, std::span<const AutomationArgument> arguments) {
    ASSERT_EQ(info.argument_count, arguments.size()) << info.name;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        EXPECT_EQ(info.arguments[i].name, arguments[i].name) << info.name;
        EXPECT_EQ(info.arguments[i].type, arguments[i].type) << info.name;
        EXPECT_EQ(info.arguments[i].value, TypeOf(arguments[i].type)) << info.name << ", " << arguments[i].name;
        EXPECT_EQ(info.arguments[i].output, arguments[i].output ? 1 : 0) << info.name;
        EXPECT_EQ(info.arguments[i].element, arguments[i].element) << info.name;
        EXPECT_EQ(info.arguments[i].shape, arguments[i].shape) << info.name;
    }
}

void ExpectMember(std::int32_t kind, std::size_t place, std::int32_t id, std::string_view name, std::string_view type) {
    const kv_member_info* info = kv_member_at(kind, place);
    ASSERT_NE(info, nullptr) << name;
    EXPECT_EQ(info->kind, kind) << name;
    EXPECT_EQ(info->id, id) << name;
    EXPECT_EQ(info->name, name);
    EXPECT_EQ(info->type, type) << name;
    EXPECT_EQ(info->value, TypeOf(type)) << name;
    EXPECT_EQ(kv_member_by_id(kind, id), info) << name;
    EXPECT_EQ(kv_member_by_name(kind, std::string(name).c_str()), info);
}

TEST(KvMembers, AreTheMethodsOfTheTable) {
    const auto methods = AutomationMethods();
    ASSERT_EQ(kv_member_count(KV_METHOD), 120u);
    EXPECT_EQ(KV_METHOD_COUNT, 120);
    for (std::size_t i = 0; i < methods.size(); ++i) {
        ExpectMember(KV_METHOD, i, methods[i].id, methods[i].name, methods[i].result);
        ExpectSameArguments(*kv_member_at(KV_METHOD, i), methods[i].arguments);
        EXPECT_EQ(kv_member_at(KV_METHOD, i)->writable, 0);
    }
}

TEST(KvMembers, AreThePropertiesOfTheTable) {
    const auto properties = AutomationProperties();
    ASSERT_EQ(kv_member_count(KV_PROPERTY), 4u);
    for (std::size_t i = 0; i < properties.size(); ++i) {
        ExpectMember(KV_PROPERTY, i, properties[i].id, properties[i].name, properties[i].type);
        EXPECT_EQ(kv_member_at(KV_PROPERTY, i)->argument_count, 0u);
        EXPECT_EQ(kv_member_at(KV_PROPERTY, i)->writable, properties[i].id == KV_PROPERTY_ReadyState ? 0 : 1);
    }
}

TEST(KvMembers, AreTheEventsOfTheTable) {
    const auto events = AutomationEvents();
    ASSERT_EQ(kv_member_count(KV_EVENT), 13u);
    for (std::size_t i = 0; i < events.size(); ++i) {
        ExpectMember(KV_EVENT, i, events[i].id, events[i].name, "void");
        ExpectSameArguments(*kv_member_at(KV_EVENT, i), events[i].arguments);
    }
}

TEST(KvMembers, AreNullOutsideTheTable) {
    for (const std::int32_t kind : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(kv_member_count(kind), 0u) << kind;
        EXPECT_EQ(kv_member_at(kind, 0), nullptr) << kind;
        EXPECT_EQ(kv_member_by_id(kind, KV_SetSize), nullptr) << kind;
        EXPECT_EQ(kv_member_by_name(kind, "SetSize"), nullptr) << kind;
    }
    for (const std::int32_t kind : {KV_METHOD, KV_PROPERTY, KV_EVENT}) {
        EXPECT_EQ(kv_member_at(kind, kv_member_count(kind)), nullptr);
        EXPECT_EQ(kv_member_at(kind, SIZE_MAX), nullptr);
        for (const std::int32_t id : {0, 123, -1, INT32_MAX, INT32_MIN})
            EXPECT_EQ(kv_member_by_id(kind, id), nullptr) << id;
        for (const char* name : {"", "setsize", "SetSize ", "GetDrawMode"})
            EXPECT_EQ(kv_member_by_name(kind, name), nullptr) << name;
        EXPECT_EQ(kv_member_by_name(kind, nullptr), nullptr);
    }
    EXPECT_EQ(kv_member_by_name(KV_EVENT, "SetSize"), nullptr) << "a method is no event";
}

TEST(KvMembers, AreTheSameOnAnyThread) {
    const kv_member_info* found = nullptr;
    std::thread([&] { found = kv_member_by_name(KV_METHOD, "SetSize"); }).join();
    EXPECT_EQ(found, kv_member_by_id(KV_METHOD, KV_SetSize));
}

}  // namespace
