// Holds one component for another.
#pragma once
#include <utility>

#include "Object.h"

namespace KvComponents {

/// A counted reference to a component of known class, or none.
template <class T>
class ComponentReference {
public:
    ComponentReference() = default;
    /// A further reference.
    explicit ComponentReference(T& component) : m_pComponent(&component) { component.AddReference(); }
    /// Takes over the one reference of a component just made.
    [[nodiscard]] static ComponentReference Adopt(T* component) {
        ComponentReference reference;
        reference.m_pComponent = component;
        return reference;
    }
    ComponentReference(const ComponentReference&) = delete;
    ComponentReference& operator=(const ComponentReference&) = delete;
    ComponentReference(ComponentReference&& other) noexcept
        : m_pComponent(std::exchange(other.m_pComponent, nullptr)) {}
    ComponentReference& operator=(ComponentReference&& other) noexcept {
        std::swap(m_pComponent, other.m_pComponent);
        return *this;
    }
    ~ComponentReference() {
        if (m_pComponent != nullptr) m_pComponent->Release();
    }

    /// Gives the reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(m_pComponent, nullptr); }
    explicit operator bool() const { return m_pComponent != nullptr; }
    T* operator->() const { return m_pComponent; }
    T& operator*() const { return *m_pComponent; }

private:
    T* m_pComponent = nullptr;
};

/// The component of class T behind an interface that a caller passed; null when it is of another class.
template <class T>
[[nodiscard]] T* ComponentOf(Object* object) {
    return dynamic_cast<T*>(static_cast<Interface*>(object)->m_pOwner);
}

}  // namespace KvComponents
