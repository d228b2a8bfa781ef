// The image object: pixels in memory, and the decoder of image files.
//
// Pixels are 4 bytes, red, green, blue, alpha, row by row without padding; the first row is the top of a decoded file.
// Buffers belong to the caller; their size in bytes must be exactly width x height x 4. A null pointer or a wrong size
// gives kInvalidArgument and changes nothing.
#pragma once
#include "KV_Components/Registry.h"

namespace KvComponents::image {

inline constexpr const char* kFactory = "{312F34D3-886E-4DEB-8B33-D8F9B923D637}";
inline constexpr const char* kInterface = "{173B804A-A48B-49A5-8B22-75ABB6FDE390}";

/// Width and height in pixels; both 0 for a new object.
inline constexpr Operation<std::int32_t(std::int32_t* width, std::int32_t* height)> kSize{8};
/// Sets the size in pixels, 1 to 16384 each. All bytes of all pixels become 0.
inline constexpr Operation<std::int32_t(std::int32_t width, std::int32_t height)> kSetSize{9};
/// Copies all pixels to a buffer.
inline constexpr Operation<std::int32_t(void* pixels, std::size_t size)> kReadPixels{11};
/// Replaces all pixels by those of a buffer.
inline constexpr Operation<std::int32_t(const void* pixels, std::size_t size)> kWritePixels{12};
/// Replaces size and pixels by those of a png or jpeg file in memory.
/// @return kFailed when the file is in another format, damaged, or larger than 16384 pixels on a side; the image is
///         unchanged then
inline constexpr Operation<std::int32_t(const void* bytes, std::size_t size)> kDecodeFile{30};
/// Reverses the order of the rows.
inline constexpr Operation<std::int32_t()> kFlip{34};

}  // namespace KvComponents::image
