// What every object of the library is made of: a reference count, interfaces by GUID, and tables of operations that
// turn into calls of member functions.
#pragma once
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "KV_Components/Registry.h"

namespace KvComponents {

class Component;

/// One interface of a component: what callers hold an Object pointer to.
struct Interface : Object {
    Interface(const Entry* operations, Component* owner) : Object{operations}, m_pOwner(owner) {}
    Component* m_pOwner;
};

/// A reference-counted object. Begins with one reference, which belongs to whoever made it.
class Component {
public:
    Component();
    virtual ~Component();
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    /// The interface of that GUID without a further reference; null when there is none.
    [[nodiscard]] virtual Interface* FindInterface(std::string_view guid) = 0;
    /// What a factory hands out, before anybody asked for an interface.
    [[nodiscard]] virtual Interface* MainInterface() = 0;

    void AddReference();
    void Release();

    /// How many components of the process are alive: tests look here for leaks.
    [[nodiscard]] static std::int32_t LiveCount();

private:
    std::atomic<std::int32_t> m_iReferences{1};
};

/// The component behind an interface pointer of a table that T's operations stand in.
template <class T>
[[nodiscard]] T& OwnerOf(Object* object) {
    return static_cast<T&>(*static_cast<Interface*>(object)->m_pOwner);
}

/// A table of operations whose entries 0 to 2 are those of every object and whose others answer kNotImplemented until
/// they are set.
class OperationTable {
public:
    OperationTable();

    /// Enters a member function, which may throw: its caller then sees kException.
    template <auto Member, class Result, class... Arguments>
    OperationTable& Set(const Operation<Result(Arguments...)>& operation) {
        const typename Operation<Result(Arguments...)>::Function entry = &Enter<Member, Result, Arguments...>;
        m_entries.at(operation.m_uPosition) = reinterpret_cast<Object::Entry>(entry);
        return *this;
    }
    [[nodiscard]] const Object::Entry* Entries() const { return m_entries.data(); }

private:
    template <class T>
    struct ClassOf;
    template <class T, class Function>
    struct ClassOf<Function T::*> {
        using type = T;
    };

    template <auto Member, class Result, class... Arguments>
    static Result Enter(Object* object, Arguments... arguments) {
        using T = typename ClassOf<decltype(Member)>::type;
        if constexpr (std::is_void_v<Result>) {
            (OwnerOf<T>(object).*Member)(arguments...);
        } else {
            try {
                return (OwnerOf<T>(object).*Member)(arguments...);
            } catch (...) {
                return kException;
            }
        }
    }

    std::array<Object::Entry, kTableSize> m_entries;
};

}  // namespace KvComponents
