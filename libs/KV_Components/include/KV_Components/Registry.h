// The binary interface of the component library: three entries, objects by GUID, operations by their position in a
// table. Another library that keeps to it can take this one's place.
//
// The library exports its entries by ordinal on systems that know ordinals; here each has a name that carries it.
#pragma once
#include <cstddef>
#include <cstdint>

namespace KvComponents {

/// What a caller holds: a pointer to a table of operations, which all take the object as their first argument.
struct Object {
    using Entry = void (*)();
    const Entry* m_pOperations;
};

/// One operation of a kind of object. Calling it calls the entry of the table at its position.
template <class Signature>
struct Operation;
template <class Result, class... Arguments>
struct Operation<Result(Arguments...)> {
    using Function = Result (*)(Object*, Arguments...);
    std::size_t m_uPosition;

    Result operator()(Object* object, Arguments... arguments) const {
        return reinterpret_cast<Function>(object->m_pOperations[m_uPosition])(object, arguments...);
    }
};

/// Every table has so many entries. The positions that no operation has answer kNotImplemented.
inline constexpr std::size_t kTableSize = 40;

// What operations answer.
inline constexpr std::int32_t kSucceeded = 1;
inline constexpr std::int32_t kInvalidReturnValue = 0;
inline constexpr std::int32_t kFailed = -1;
inline constexpr std::int32_t kException = -2;
inline constexpr std::int32_t kNoInterface = -3;
inline constexpr std::int32_t kInvalidArgument = -4;
inline constexpr std::int32_t kNotImplemented = -5;
inline constexpr std::int32_t kCanceled = -6;

// ---- on every object
/// The interface of that GUID, with a reference of its own for the caller; null with kNoInterface.
inline constexpr Operation<std::int32_t(const char* guid, Object** out)> kQuery{0};
inline constexpr Operation<void()> kAddReference{1};
/// The object ends with its last reference.
inline constexpr Operation<void()> kRelease{2};

}  // namespace KvComponents

extern "C" {
/// Starts the registry. Every start needs a stop.
__attribute__((visibility("default"))) void KV_Components_Ordinal1();
/// A new object with one reference for the caller; null when there is no such GUID, or when the registry is not
/// started.
/// @param guid  with braces
__attribute__((visibility("default"))) KvComponents::Object* KV_Components_Ordinal2(const char* guid);
/// Stops the registry. Objects that are still held go on working.
__attribute__((visibility("default"))) void KV_Components_Ordinal3();
}
