// The image object: pixels, and the decoder of image files.
#pragma once
#include "KV_Components/Registry.h"

namespace KvComponents::image {

inline constexpr const char* kFactory = "{312F34D3-886E-4DEB-8B33-D8F9B923D637}";
inline constexpr const char* kInterface = "{173B804A-A48B-49A5-8B22-75ABB6FDE390}";

// Pixels are four bytes, red, green, blue, alpha, row after row; the first row is the top of a decoded file.
inline constexpr Operation<std::int32_t(std::int32_t* width, std::int32_t* height)> kSize{8};
/// All pixels become 0.
inline constexpr Operation<std::int32_t(std::int32_t width, std::int32_t height)> kSetSize{9};
/// @param size  of the buffer in bytes: exactly width x height x 4
inline constexpr Operation<std::int32_t(void* pixels, std::size_t size)> kReadPixels{11};
inline constexpr Operation<std::int32_t(const void* pixels, std::size_t size)> kWritePixels{12};
/// Takes the picture of a png or jpeg file over; kFailed when it is none.
inline constexpr Operation<std::int32_t(const void* bytes, std::size_t size)> kDecodeFile{30};
/// Turns the order of the rows round.
inline constexpr Operation<std::int32_t()> kFlip{34};

}  // namespace KvComponents::image
