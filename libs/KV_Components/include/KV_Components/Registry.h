// The binary interface of the component library: three exported functions, objects by GUID, operations by their
// position in a table. A library that implements the same interface can replace this one.
//
// On systems where libraries export by ordinal these functions have no names; here each name contains its ordinal.
//
// Use: KV_Components_Ordinal1() once; KV_Components_Ordinal2(guid) for each object; kQuery for another of its
// interfaces; the operations of Geometry.h, Hps.h and Image.h; kRelease for each object and interface received;
// KV_Components_Ordinal3() once.
#pragma once
#include <cstddef>
#include <cstdint>

namespace KvComponents {

/// An object as its callers see it: the address of a table of functions. The first argument of each function is the
/// object.
struct Object {
    using Entry = void (*)();  ///< cast to the type of the operation before it is called
    const Entry* m_pOperations;
};

/// One operation of a kind of object, by its position in the table: `kQuery(object, guid, &out)` calls entry 0 of the
/// object's table. Neither object nor table are checked.
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

/// Number of entries in every table, so that a caller never reads after its end. The entry of a position without an
/// operation returns kNotImplemented.
inline constexpr std::size_t kTableSize = 40;

// ---- the codes that operations return
/// The operation did what it describes.
inline constexpr std::int32_t kSucceeded = 1;
/// Never returned by this library: the only code that is neither positive nor negative.
inline constexpr std::int32_t kInvalidReturnValue = 0;
/// The object is not in the state for the operation, or a file is damaged.
inline constexpr std::int32_t kFailed = -1;
/// An exception was thrown inside the library, mostly because memory was exhausted.
inline constexpr std::int32_t kException = -2;
/// The object has no interface of this GUID.
inline constexpr std::int32_t kNoInterface = -3;
/// A null pointer, a wrong size or an impossible number.
inline constexpr std::int32_t kInvalidArgument = -4;
/// The table has no operation at this position.
inline constexpr std::int32_t kNotImplemented = -5;
/// Never returned by this library: no operation can be canceled.
inline constexpr std::int32_t kCanceled = -6;

// ---- operations of every object; reference counts can be changed on any thread
/// Finds another interface of the same object.
/// @param guid  with braces
/// @param out   receives the interface, with a reference for the caller; null when the operation fails
inline constexpr Operation<std::int32_t(const char* guid, Object** out)> kQuery{0};
/// Adds a reference, which needs a kRelease.
inline constexpr Operation<void()> kAddReference{1};
/// Releases one reference; with the last one the object is destroyed.
inline constexpr Operation<void()> kRelease{2};

}  // namespace KvComponents

extern "C" {
/// Starts the registry. Starts are counted: it stops with as many calls of KV_Components_Ordinal3(). Any thread.
__attribute__((visibility("default"))) void KV_Components_Ordinal1();
/// Creates an object. Any thread.
/// @param guid  of its factory, with braces
/// @return its main interface, with one reference for the caller; null when no factory has this GUID, when the registry
///         is not started, or when memory is exhausted
__attribute__((visibility("default"))) KvComponents::Object* KV_Components_Ordinal2(const char* guid);
/// Stops the registry. Existing objects remain usable until their last reference is released. Any thread.
__attribute__((visibility("default"))) void KV_Components_Ordinal3();
}
