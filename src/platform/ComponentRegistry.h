// Our use of the component library: objects that release themselves, and the texts of its status codes.
#pragma once
#include <cstdint>
#include <memory>
#include <utility>

#include "KV_Components/Registry.h"

/// The text of an operation's status (KvComponents::kSucceeded ...); "?" for an unknown one.
[[nodiscard]] const char* GetStatusText(std::int32_t status);

/// @throws std::runtime_error with the status text for every status but kSucceeded
void RequireSuccess(std::int32_t status);

/// Deleter of ComponentPtr: gives the reference back instead of deleting.
struct ReleaseComponent {
    void operator()(KvComponents::Object* object) const { KvComponents::kRelease(object); }
};
/// One reference to an object of the library.
using ComponentPtr = std::unique_ptr<KvComponents::Object, ReleaseComponent>;

/// The interface of a new object; null when the library has no such object, when its registry is not started, or when
/// the object has no such interface.
[[nodiscard]] ComponentPtr CreateComponent(const char* factory, const char* interfaceId);
/// Like CreateComponent(), never null.
/// @throws std::runtime_error with the object's id when CreateComponent() returns null
[[nodiscard]] ComponentPtr RequireComponent(const char* factory, const char* interfaceId);
/// Another interface of an object, as a reference of its own; null when the object does not have it.
[[nodiscard]] ComponentPtr QueryComponent(KvComponents::Object* object, const char* interfaceId);

/// The use of an object that works on others, from the operation that began it to the one that ends it: by Finish(), or
/// by the destructor, where a failure does not count.
class ComponentUse {
public:
    using FinishOperation = KvComponents::Operation<std::int32_t()>;
    /// @param status  of the operation that began the use
    /// @throws std::runtime_error when it is not kSucceeded: there is nothing to finish then
    ComponentUse(std::int32_t status, KvComponents::Object* object, const FinishOperation& finish)
        : m_pObject(object), m_finish(finish) {
        RequireSuccess(status);
    }
    ~ComponentUse() {
        if (m_pObject != nullptr) m_finish(m_pObject);
    }
    ComponentUse(const ComponentUse&) = delete;
    ComponentUse& operator=(const ComponentUse&) = delete;

    /// Once. @throws std::runtime_error with the status text when the operation fails
    void Finish() { RequireSuccess(m_finish(std::exchange(m_pObject, nullptr))); }

private:
    KvComponents::Object* m_pObject;
    FinishOperation m_finish;
};
