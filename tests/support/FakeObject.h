// What the source files of FakeComponents share: one object, and the parts that tables of operations are made of.
#pragma once
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "KV_Components/Registry.h"
#include "support/FakeComponents.h"

using FakeTable = std::array<KvComponents::Object::Entry, KvComponents::kTableSize>;

class FakeObject : public KvComponents::Object {
public:
    FakeObject(const FakeTable& table, std::string kind) : Object{table.data()}, m_sKind(std::move(kind)) {}
    std::string m_sKind;
    int m_iReferences = 1;
    std::vector<FakeObject*> m_held;  ///< objects handed over to this one
};

namespace FakeObjects {

using namespace KvComponents;
using Table = FakeTable;

extern FakeComponents* g_library;  ///< null while there is none

inline FakeObject& Self(Object* object) { return *static_cast<FakeObject*>(object); }

/// Puts a function at the position of the operation in the table.
template <class Result, class... Arguments>
void Enter(Table& table, const Operation<Result(Arguments...)>& operation, Result (*function)(Object*, Arguments...)) {
    table[operation.m_uPosition] = reinterpret_cast<Object::Entry>(function);
}

/// Records the call of an operation, and checks the references of the object.
/// @return the status of the operation
std::int32_t Call(Object* object, const char* operation, const std::string& arguments = "");

/// Fills the caller's buffer when it has the size of the content.
template <class T>
std::int32_t Fill(std::int32_t status, const std::vector<T>& from, void* buffer, std::size_t size) {
    if (status != kSucceeded) return status;
    if (size != from.size() * sizeof(T)) return kInvalidArgument;
    if (size != 0) std::memcpy(buffer, from.data(), size);
    return kSucceeded;
}

/// A table with the operations of every object.
Table EveryObject();
void AddReference(Object* object);
/// Releases the objects that were handed over to this one.
void ReleaseHeld(FakeObject& self);

// ---- FakePointStatistics.cpp
Table Histogram();
Table Cloud();
Table Search();
Table Estimator();

}  // namespace FakeObjects
