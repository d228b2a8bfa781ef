// Owning references: to a component by its class, and to an object by its binary interface.
#pragma once
#include <memory>
#include <utility>

#include "Object.h"

namespace KvComponents {

/// A counted reference to a component of known class, or none. Movable; copies are made by a further reference.
template <class T>
class ComponentReference {
public:
    ComponentReference() = default;
    /// A further reference.
    explicit ComponentReference(T& component) : m_pComponent(&component) { component.AddReference(); }
    /// Adopts the reference that a new component has, without a further count.
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

    /// Passes the reference to the caller, who must release it.
    [[nodiscard]] T* Detach() { return std::exchange(m_pComponent, nullptr); }
    explicit operator bool() const { return m_pComponent != nullptr; }
    T* operator->() const { return m_pComponent; }
    T& operator*() const { return *m_pComponent; }

private:
    T* m_pComponent = nullptr;
};

/// @param object  an interface that a caller passed
/// @return the component that it belongs to; null when that is not of class T
template <class T>
[[nodiscard]] T* ComponentOf(Object* object) {
    return dynamic_cast<T*>(static_cast<Interface*>(object)->m_pOwner);
}

struct ReleaseObject {
    void operator()(Object* object) const { kRelease(object); }
};
/// One reference to an object, released at the end.
using ObjectPointer = std::unique_ptr<Object, ReleaseObject>;

}  // namespace KvComponents
