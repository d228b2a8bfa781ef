// Our end of the component library: objects that release themselves, and what a status means.
#pragma once
#include <cstdint>
#include <memory>

#include "KV_Components/Registry.h"

/// The text of an operation's status; "?" for one that is not listed.
[[nodiscard]] const char* GetStatusText(std::int32_t status);

/// @throws std::runtime_error with the status text when the status is not 1
void RequireSuccess(std::int32_t status);

struct ReleaseComponent {
    void operator()(KvComponents::Object* object) const { KvComponents::kRelease(object); }
};
/// One reference to an object of the library.
using ComponentPtr = std::unique_ptr<KvComponents::Object, ReleaseComponent>;

/// The interface of a new object; null when the library has no such object, when its registry is not started, or when
/// the object has no such interface.
[[nodiscard]] ComponentPtr CreateComponent(const char* factory, const char* interfaceId);
/// @throws std::runtime_error naming the object when CreateComponent() gives none
[[nodiscard]] ComponentPtr RequireComponent(const char* factory, const char* interfaceId);
/// The interface of an object that is there; null when it has none.
[[nodiscard]] ComponentPtr QueryComponent(KvComponents::Object* object, const char* interfaceId);
