// Our use of the component library: objects that release themselves, and the texts of its status codes.
#pragma once
#include <cstdint>
#include <memory>

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
