// The image object.
#include <memory>

#include "KV_Components/Image.h"
#include "ObjectRegistry.h"

namespace KvComponents {
Component* MakeImageObject() { throw std::bad_alloc(); }
}  // namespace KvComponents
