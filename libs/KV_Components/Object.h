// The parts that every object of the library is made of: a reference count, interfaces by GUID, and tables of
// operations that call member functions.
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

/// One interface of a component. Callers hold a pointer to its base, Object.
struct Interface : Object {
    Interface(const Entry* operations, Component* owner) : Object{operations}, m_pOwner(owner) {}
    Component* m_pOwner;  ///< the component that the interface is a member of
};

/// A reference-counted object. It begins with one reference, which belongs to the code that created it, and deletes
/// itself with the last one. References can be added and released on any thread.
class Component {
public:
    Component();
    virtual ~Component();
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    /// @return the interface of that GUID, without a further reference; null when there is none
    [[nodiscard]] virtual Interface* FindInterface(std::string_view guid) = 0;
    /// The interface that a factory returns.
    [[nodiscard]] virtual Interface* MainInterface() = 0;

    void AddReference();
    void Release();

    /// Number of components in the process. Tests detect leaks by it.
    [[nodiscard]] static std::int32_t LiveCount();

private:
    std::atomic<std::int32_t> m_iReferences{1};
};

/// A component that has one interface only.
class SingleInterfaceComponent : public Component {
public:
    [[nodiscard]] Interface* FindInterface(std::string_view guid) final {
        return guid == m_guid ? &m_interface : nullptr;
    }
    [[nodiscard]] Interface* MainInterface() final { return &m_interface; }

protected:
    /// @param guid        of the interface; must outlive the component
    /// @param operations  table of the interface; must outlive the component
    SingleInterfaceComponent(std::string_view guid, const Object::Entry* operations)
        : m_guid(guid), m_interface(operations, this) {}

private:
    std::string_view m_guid;
    Interface m_interface;
};

/// @param object  an interface whose table calls operations of class T
/// @return the component that it belongs to
template <class T>
[[nodiscard]] T& OwnerOf(Object* object) {
    return static_cast<T&>(*static_cast<Interface*>(object)->m_pOwner);
}

/// A table of operations. Entries 0 to 2 are the operations of every object; each other entry returns kNotImplemented
/// until it is set.
class OperationTable {
public:
    OperationTable();

    /// Sets the entry of an operation to a member function. When that throws, the caller of the entry receives
    /// kException: an exception must not cross the binary interface.
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
