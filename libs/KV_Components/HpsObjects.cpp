// The objects around hps files.
#include <memory>

#include "KV_Components/Hps.h"
#include "ObjectRegistry.h"

namespace KvComponents {
Component* MakeHpsReader() { throw std::bad_alloc(); }
Component* MakeHpsMesh() { throw std::bad_alloc(); }
Component* MakeHpsUvDecoder() { throw std::bad_alloc(); }
Component* MakeHpsFileWriter() { throw std::bad_alloc(); }
Component* MakeHpsCompressor() { throw std::bad_alloc(); }
}  // namespace KvComponents
