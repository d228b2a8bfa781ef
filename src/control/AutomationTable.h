// The automation surface as data: ids, names, types. The dispatch by id reads it, and so does every language binding.
#pragma once
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// One argument or result on its way through the dispatch. Pointers travel as pointers; std::monostate is no value.
using AutomationValue = std::variant<std::monostate, std::int16_t, std::int32_t, float, const wchar_t*, void*>;

struct AutomationArgument {
    std::string_view
        type;  ///< short, long, int, float, VARIANT_BOOL, BSTR, VARIANT*, or an output: float*, long*, int*
    std::string_view name;
    bool output;  ///< the method writes through it
};

struct AutomationMethod {
    std::int32_t id;
    std::string_view result;  ///< void, short, long, int, VARIANT_BOOL
    std::string_view name;
    std::vector<AutomationArgument> arguments;
    /// The types of the C++ method behind it: v void, s 16-bit, i 32-bit, f float, w wide string, p pointer; result
    /// first.
    std::string_view signature;
    AutomationValue (*invoke)(KV_ScenePane::_DKV_ScenePane& target, std::span<const AutomationValue> arguments);
};

struct AutomationProperty {
    std::int32_t id;
    std::string_view type;
    std::string_view name;
    bool writable;
};

struct AutomationEvent {
    std::int32_t id;
    std::string_view name;
    std::vector<AutomationArgument> arguments;
};

/// All 120 methods in the order of their ids, AboutBox last.
[[nodiscard]] std::span<const AutomationMethod> AutomationMethods();
[[nodiscard]] std::span<const AutomationProperty> AutomationProperties();
/// All 13 events, the platform's first.
[[nodiscard]] std::span<const AutomationEvent> AutomationEvents();

enum class AutomationStatus { Done, UnknownId, BadArguments };

/// Calls the method with @p id. Arguments must have the types of its signature, in number and order.
/// @param result  takes the method's result; may be null
AutomationStatus InvokeMethod(KV_ScenePane::_DKV_ScenePane& target, std::int32_t id,
                              std::span<const AutomationValue> arguments, AutomationValue* result);
