// The kinds of objects that the library can create, by the GUID of their factory.
#pragma once
#include <string_view>

#include "Object.h"

namespace KvComponents {

/// @return a new object with one reference for the caller, whether or not the registry is started; null when no factory
///         has this GUID
[[nodiscard]] Object* MakeObject(std::string_view factoryGuid);

// One function per kind of object, each in the source file of its class. The new object has one reference.
[[nodiscard]] Component* MakeImageObject();
[[nodiscard]] Component* MakeHpsReader();
[[nodiscard]] Component* MakeHpsMesh();
[[nodiscard]] Component* MakeHpsUvDecoder();
[[nodiscard]] Component* MakeHpsFileWriter();
[[nodiscard]] Component* MakeHpsCompressor();
[[nodiscard]] Component* MakeHeightHistogram();
[[nodiscard]] Component* MakePointCloud();
[[nodiscard]] Component* MakeNeighbourSearch();
[[nodiscard]] Component* MakeNormalEstimator();

}  // namespace KvComponents
