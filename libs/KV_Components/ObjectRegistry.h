// Which factory GUIDs the library knows.
#pragma once
#include <string_view>

#include "Object.h"

namespace KvComponents {

/// A new object with one reference, whether or not the registry is started; null when there is no such GUID.
[[nodiscard]] Object* MakeObject(std::string_view factoryGuid);

// One maker a kind of object, each beside its class.
[[nodiscard]] Component* MakeImageObject();
[[nodiscard]] Component* MakeHpsReader();
[[nodiscard]] Component* MakeHpsMesh();
[[nodiscard]] Component* MakeHpsUvDecoder();
[[nodiscard]] Component* MakeHpsFileWriter();
[[nodiscard]] Component* MakeHpsCompressor();

}  // namespace KvComponents
