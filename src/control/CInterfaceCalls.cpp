// The automation surface for programs in C: calls by id, properties, events, and the table as data.
#include <array>
#include <cassert>
#include <list>

#include "KV_ScenePane/PathText.h"
#include "control/AutomationTable.h"
#include "control/CInterfacePane.h"

namespace {

constexpr std::size_t kMostArguments = 17;  // of SetTrafoOfScan

/// Type of a kv_value for a letter of a signature.
std::int32_t TypeOfCode(char code) {
    switch (code) {
        case 's':
            return KV_SHORT;
        case 'i':
            return KV_LONG;
        case 'f':
            return KV_FLOAT;
        case 'w':
            return KV_STRING;
        case 'p':
            return KV_POINTER;
        case 'l':
            return KV_INT64;
        default:
            return KV_VOID;
    }
}

std::string NameOfType(std::int32_t type) {
    constexpr std::array kNames = {"no value", "short", "long", "float", "string", "UTF-8 string", "pointer", "int64"};
    if (type >= 0 && static_cast<std::size_t>(type) < kNames.size()) return kNames[static_cast<std::size_t>(type)];
    return "a value of the unknown type " + std::to_string(type);
}

kv_value Value(std::monostate) { return {}; }
kv_value Value(std::int16_t value) { return {.type = KV_SHORT, .as = {.i16 = value}}; }
kv_value Value(std::int32_t value) { return {.type = KV_LONG, .as = {.i32 = value}}; }
kv_value Value(float value) { return {.type = KV_FLOAT, .as = {.f32 = value}}; }
kv_value Value(const wchar_t* value) { return {.type = KV_STRING, .as = {.wide = value}}; }
kv_value Value(void* value) { return {.type = KV_POINTER, .as = {.pointer = value}}; }
kv_value Value(std::int64_t value) { return {.type = KV_INT64, .as = {.i64 = value}}; }

kv_value Value(const AutomationValue& value) {
    return std::visit([](auto alternative) { return Value(alternative); }, value);
}

/// Reads a value of the host as the type of a letter.
/// @param texts  keeps converted texts for the call; its capacity must suffice for this one
/// @return false when it has another type
bool Read(const kv_value& given, char code, AutomationValue* value, std::vector<std::wstring>* texts) {
    if (code == 'w' && given.type == KV_UTF8) {
        const char* text = given.as.utf8;
        if (text == nullptr)
            *value = static_cast<const wchar_t*>(nullptr);
        else
            *value = texts->emplace_back(KV_ScenePane::WidePath(text)).c_str();
        return true;
    }
    if (given.type != TypeOfCode(code)) return false;
    switch (code) {
        case 's':
            *value = given.as.i16;
            return true;
        case 'i':
            *value = given.as.i32;
            return true;
        case 'f':
            *value = given.as.f32;
            return true;
        case 'w':
            *value = given.as.wide;
            return true;
        case 'p':
            *value = given.as.pointer;
            return true;
        default:
            return false;
    }
}

kv_status RefuseCount(const AutomationMethod& method, std::size_t count) {
    const std::size_t expected = method.arguments.size();
    SetLastError(std::string(method.name) + " has " + (expected == 0 ? "no" : std::to_string(expected)) +
                 (expected == 1 ? " argument, " : " arguments, ") + std::to_string(count) +
                 (count == 1 ? " was given" : " were given"));
    return KV_BAD_ARGUMENTS;
}

kv_status RefuseType(const AutomationMethod& method, std::size_t place, const kv_value& given) {
    SetLastError(std::string(method.name) + ": argument " + std::to_string(place + 1) + ", " +
                 std::string(method.arguments[place].name) + ", must be " +
                 NameOfType(TypeOfCode(method.signature[place + 1])) + ", not " + NameOfType(given.type));
    return KV_BAD_ARGUMENTS;
}

kv_status Invoke(KV_ScenePane::ScenePane& viewer, const AutomationMethod& method, const kv_value* arguments,
                 std::size_t count, kv_value* result) {
    if (count != method.arguments.size()) return RefuseCount(method, count);
    if (arguments == nullptr && count > 0) return RefuseNull(method.name, "the arguments are null");
    assert(count <= kMostArguments);
    std::array<AutomationValue, kMostArguments> values;
    std::vector<std::wstring> texts;  // for the time of the call
    for (std::size_t i = 0; i < count; ++i) {
        if (arguments[i].type == KV_UTF8 && texts.empty()) texts.reserve(count);  // their addresses stay
        if (!Read(arguments[i], method.signature[i + 1], &values[i], &texts))
            return RefuseType(method, i, arguments[i]);
    }
    const AutomationValue value = method.invoke(viewer.Methods(), {values.data(), count});
    if (result != nullptr) *result = Value(value);
    return KV_DONE;
}

kv_status RefuseId(const char* kind, std::int32_t id) {
    SetLastError(std::string("no ") + kind + " has the id " + std::to_string(id));
    return KV_UNKNOWN_ID;
}

}  // namespace

// ---- calls and properties

kv_status kv_invoke(kv_pane* pane, int32_t id, const kv_value* arguments, size_t count, kv_value* result) {
    std::string_view function = "kv_invoke";
    return CallViewer(pane, function, [&](KV_ScenePane::ScenePane& viewer) {
        const AutomationMethod* method = FindMethod(id);
        if (method == nullptr) return RefuseId("method", id);
        function = method->name;  // what the method throws is reported under its name
        return Invoke(viewer, *method, arguments, count, result);
    });
}

kv_status kv_get_property(kv_pane* pane, int32_t id, kv_value* value) {
    return CallViewer(pane, "kv_get_property", [&](KV_ScenePane::ScenePane& viewer) {
        const AutomationProperty* property = FindProperty(id);
        if (property == nullptr) return RefuseId("property", id);
        if (value == nullptr) return RefuseNull(property->name, "the value is null");
        *value = Value(property->get(viewer.Methods()));
        return KV_DONE;
    });
}

kv_status kv_put_property(kv_pane* pane, int32_t id, const kv_value* value) {
    return CallViewer(pane, "kv_put_property", [&](KV_ScenePane::ScenePane& viewer) {
        const AutomationProperty* property = FindProperty(id);
        if (property == nullptr) return RefuseId("property", id);
        const std::string name(property->name);
        if (!property->writable) {
            SetLastError(name + " can only be read");
            return KV_BAD_ARGUMENTS;
        }
        if (value == nullptr) return RefuseNull(name, "the value is null");
        AutomationValue given;
        std::vector<std::wstring> texts;
        if (!Read(*value, property->code, &given, &texts)) {
            SetLastError(name + " must be " + NameOfType(TypeOfCode(property->code)) + ", not " +
                         NameOfType(value->type));
            return KV_BAD_ARGUMENTS;
        }
        property->put(viewer.Methods(), given);
        return KV_DONE;
    });
}

// ---- events

template <typename... Arguments>
void CEventReceiver::Send(std::int32_t id, Arguments... arguments) {
    if (m_pFunction == nullptr) return;
    const std::array<kv_value, sizeof...(Arguments) + 1> values{Value(arguments)..., kv_value{}};
    // The callback may connect another one or destroy the viewer: nothing of this object is used afterwards.
    const std::int32_t answer = m_pFunction(m_pUser, id, values.data(), sizeof...(Arguments));
    if (answer != 0) CheckAnswer(answer, "the callback of the event " + std::string(FindEvent(id)->name));
}

void CEventReceiver::ReadyStateChange() { Send(KV_EVENT_ReadyStateChange); }
void CEventReceiver::SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz) {
    Send(KV_EVENT_SelectViewDirection, px, py, pz, vx, vy, vz);
}
void CEventReceiver::SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                                     std::int32_t mouseX, std::int32_t mouseY) {
    Send(KV_EVENT_SelectObjCoords, idx, px, py, pz, shiftModifiers, mouseX, mouseY);
}
void CEventReceiver::SegmentationDone(std::int16_t numObj) { Send(KV_EVENT_SegmentationDone, numObj); }
void CEventReceiver::ViewDirectionChanged(float vx, float vy, float vz) {
    Send(KV_EVENT_ViewDirectionChanged, vx, vy, vz);
}
void CEventReceiver::AlignmentDone() { Send(KV_EVENT_AlignmentDone); }
void CEventReceiver::NeedleCreated(std::int32_t id) { Send(KV_EVENT_NeedleCreated, id); }
void CEventReceiver::NeedleSelected(std::int32_t id) { Send(KV_EVENT_NeedleSelected, id); }
void CEventReceiver::NeedleDeleted(std::int32_t id) { Send(KV_EVENT_NeedleDeleted, id); }
void CEventReceiver::NeedleDeselected(std::int32_t id) { Send(KV_EVENT_NeedleDeselected, id); }
void CEventReceiver::CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    Send(KV_EVENT_CustomKeyDown, nChar, nRepCnt, nFlags);
}
void CEventReceiver::PickPointCountChanged(std::int32_t newCount) { Send(KV_EVENT_PickPointCountChanged, newCount); }
void CEventReceiver::CutMaskApplied(std::int64_t addr) { Send(KV_EVENT_CutMaskApplied, addr); }

kv_status kv_connect(kv_pane* pane, kv_event_function function, void* user) {
    return CallViewer(pane, "kv_connect", [&](KV_ScenePane::ScenePane& viewer) {
        pane->m_events.m_pFunction = function;
        pane->m_events.m_pUser = user;
        viewer.Connect(function == nullptr ? nullptr : &pane->m_events);
        return KV_DONE;
    });
}

// ---- the table as data

namespace {

/// The rows of the tables with zero-terminated texts, in the order of the tables.
class Members {
public:
    Members() {
        for (const AutomationMethod& method : AutomationMethods())
            Add(KV_METHOD, method.id, method.name, method.result, method.signature, method.arguments);
        for (const AutomationProperty& property : AutomationProperties()) {
            const std::string signature(1, property.code);
            Add(KV_PROPERTY, property.id, property.name, property.type, signature, {}).writable = property.writable;
        }
        for (const AutomationEvent& event : AutomationEvents())
            Add(KV_EVENT, event.id, event.name, "void", event.signature, event.arguments);
    }

    [[nodiscard]] const std::vector<kv_member_info>* OfKind(std::int32_t kind) const {
        return kind >= KV_METHOD && kind <= KV_EVENT ? &m_vMembers[static_cast<std::size_t>(kind)] : nullptr;
    }

private:
    const char* Keep(std::string_view text) { return m_vTexts.emplace_back(text).c_str(); }

    kv_member_info& Add(std::int32_t kind, std::int32_t id, std::string_view name, std::string_view type,
                        std::string_view signature, std::span<const AutomationArgument> arguments) {
        std::vector<kv_argument_info>& infos = m_vArguments.emplace_back();
        infos.reserve(arguments.size());
        for (std::size_t i = 0; i < arguments.size(); ++i)
            infos.push_back({Keep(arguments[i].name), Keep(arguments[i].type), TypeOfCode(signature[i + 1]),
                             arguments[i].output ? 1 : 0, Keep(arguments[i].element), Keep(arguments[i].shape)});
        return m_vMembers[static_cast<std::size_t>(kind)].emplace_back(
            kv_member_info{kind, id, Keep(name), Keep(type), TypeOfCode(signature[0]), 0, infos.size(), infos.data()});
    }

    std::array<std::vector<kv_member_info>, 3> m_vMembers;
    std::list<std::vector<kv_argument_info>> m_vArguments;  // lists: the addresses of their elements stay
    std::list<std::string> m_vTexts;
};

const std::vector<kv_member_info>* MembersOfKind(std::int32_t kind) noexcept {
    try {
        static const Members members;
        return members.OfKind(kind);
    } catch (...) {
        ReportException("kv_member");
        return nullptr;
    }
}

/// The member of a row, which has the same place in its list.
template <typename Row>
const kv_member_info* MemberOf(std::int32_t kind, const Row* row, std::span<const Row> rows) {
    return row == nullptr ? nullptr : kv_member_at(kind, static_cast<std::size_t>(row - rows.data()));
}

template <typename Key>
const kv_member_info* FindMember(std::int32_t kind, Key key) noexcept {
    try {
        switch (kind) {
            case KV_METHOD:
                return MemberOf(kind, FindMethod(key), AutomationMethods());
            case KV_PROPERTY:
                return MemberOf(kind, FindProperty(key), AutomationProperties());
            case KV_EVENT:
                return MemberOf(kind, FindEvent(key), AutomationEvents());
            default:
                return nullptr;
        }
    } catch (...) {
        ReportException("kv_member");
        return nullptr;
    }
}

}  // namespace

size_t kv_member_count(int32_t kind) {
    const auto* members = MembersOfKind(kind);
    return members == nullptr ? 0 : members->size();
}

const kv_member_info* kv_member_at(int32_t kind, size_t index) {
    const auto* members = MembersOfKind(kind);
    return members != nullptr && index < members->size() ? &(*members)[index] : nullptr;
}

const kv_member_info* kv_member_by_name(int32_t kind, const char* name) {
    return name == nullptr ? nullptr : FindMember(kind, std::string_view(name));
}

const kv_member_info* kv_member_by_id(int32_t kind, int32_t id) { return FindMember(kind, id); }
