// The automation surface as data: ids, names, types. The dispatch by id reads it, and so does every language binding.
#pragma once
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"
#include "KV_ScenePane/_DKV_ScenePaneEvents.h"

/// One argument or result of a dispatched call. Pointers are untyped; std::monostate is no value.
using AutomationValue =
    std::variant<std::monostate, std::int16_t, std::int32_t, float, const wchar_t*, void*, std::int64_t>;

/// One argument as it is declared.
struct AutomationArgument {
    std::string_view
        type;  ///< short, long, int, float, VARIANT_BOOL, BSTR, VARIANT*, or an output: float*, long*, int*
    std::string_view name;
    bool output;  ///< the method writes through it
    /// Type of an element of an array or of an output, deduced from the method: int32, float32, uint8, uint32, pointer,
    /// mesh; else empty.
    std::string_view element = {};
    /// Number of elements per dimension of an array, slowest first, in arguments and numbers: "number x 3"; else empty.
    std::string_view shape = {};
};

/// One row of the method table.
struct AutomationMethod {
    std::int32_t id;
    std::string_view result;  ///< void, short, long, int, VARIANT_BOOL
    std::string_view name;
    std::vector<AutomationArgument> arguments;
    /// The types of the C++ method behind it: v void, s 16-bit, i 32-bit, f float, w wide string, p pointer; result
    /// first.
    std::string_view signature;
    /// Calls the method; the arguments must have the types of the signature.
    AutomationValue (*invoke)(KV_ScenePane::_DKV_ScenePane& target, std::span<const AutomationValue> arguments);
};

/// One row of the property table.
struct AutomationProperty {
    std::int32_t id;
    std::string_view type;
    std::string_view name;
    bool writable;
    /// The C++ type behind it, a letter as in a signature.
    char code = 'v';
    AutomationValue (*get)(KV_ScenePane::_DKV_ScenePane& target) = nullptr;
    /// Null for a property that cannot be written; the value must have the type of the property.
    void (*put)(KV_ScenePane::_DKV_ScenePane& target, const AutomationValue& value) = nullptr;
};

/// One row of the event table.
struct AutomationEvent {
    std::int32_t id;
    std::string_view name;
    std::vector<AutomationArgument> arguments;
    /// The C++ types as in AutomationMethod::signature, with l for 64-bit; the result is always v.
    std::string_view signature;
    /// Calls the handler; the arguments must have the types of the signature.
    AutomationValue (*fire)(KV_ScenePane::_DKV_ScenePaneEvents& target, std::span<const AutomationValue> arguments);
};

/// All 120 methods in the order of their ids, AboutBox last. Made at the first call; valid to the end of the process.
[[nodiscard]] std::span<const AutomationMethod> AutomationMethods();
[[nodiscard]] std::span<const AutomationProperty> AutomationProperties();
/// All 13 events, ReadyStateChange first.
[[nodiscard]] std::span<const AutomationEvent> AutomationEvents();

/// The row with an id or a name; null when there is none. The time does not depend on the size of the table.
[[nodiscard]] const AutomationMethod* FindMethod(std::int32_t id);
[[nodiscard]] const AutomationMethod* FindMethod(std::string_view name);
[[nodiscard]] const AutomationProperty* FindProperty(std::int32_t id);
[[nodiscard]] const AutomationProperty* FindProperty(std::string_view name);
[[nodiscard]] const AutomationEvent* FindEvent(std::int32_t id);
[[nodiscard]] const AutomationEvent* FindEvent(std::string_view name);

/// Outcome of a call by id; only Done has called the method.
enum class AutomationStatus { Done, UnknownId, BadArguments };

/// Calls the method with @p id. Arguments must have the types of its signature, in number and order.
/// @param result  receives the method's result; may be null
AutomationStatus InvokeMethod(KV_ScenePane::_DKV_ScenePane& target, std::int32_t id,
                              std::span<const AutomationValue> arguments, AutomationValue* result);
