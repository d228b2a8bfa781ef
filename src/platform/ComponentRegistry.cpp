// How every object of the component library is made: the factory, a query for the interface, release of the factory.
#include "platform/ComponentRegistry.h"

#include <stdexcept>
#include <string>

const char* GetStatusText(std::int32_t status) {
    switch (status) {
        case KvComponents::kSucceeded:
            return "the call succeeded";
        case KvComponents::kInvalidReturnValue:
            return "this is an invalid return value";
        case KvComponents::kFailed:
            return "the call failed";
        case KvComponents::kException:
            return "an exception occurred";
        case KvComponents::kNoInterface:
            return "requested interface not supported";
        case KvComponents::kInvalidArgument:
            return "an invalid argument was passed to an interface method";
        case KvComponents::kNotImplemented:
            return "the method is not implemented";
        case KvComponents::kCanceled:
            return "the operation has been canceled";
        default:
            return "?";
    }
}

void RequireSuccess(std::int32_t status) {
    if (status != KvComponents::kSucceeded) throw std::runtime_error(GetStatusText(status));
}

// A failed query may still have written the pointer: it is no reference then, and must not be released.
ComponentPtr QueryComponent(KvComponents::Object* object, const char* interfaceId) {
    KvComponents::Object* found = nullptr;
    if (KvComponents::kQuery(object, interfaceId, &found) != KvComponents::kSucceeded) return nullptr;
    return ComponentPtr(found);
}

ComponentPtr CreateComponent(const char* factory, const char* interfaceId) {
    const ComponentPtr made(KV_Components_Ordinal2(factory));
    return made ? QueryComponent(made.get(), interfaceId) : nullptr;
}

ComponentPtr RequireComponent(const char* factory, const char* interfaceId) {
    ComponentPtr found = CreateComponent(factory, interfaceId);
    if (!found)
        throw std::runtime_error(std::string("the component library gives no object ") + factory +
                                 ": is the registry started (InitializeKVReg)?");
    return found;
}
