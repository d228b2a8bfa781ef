// The types of the automation surface in C++.
#pragma once
#include <cstdint>

namespace ACAD {
class CutMask;  // the record of one finished cut (CutMask.h), passed by address
}

namespace KV_ScenePane {

/// 0 is false, -1 is true; any other value that is not 0 counts as true where a method takes one.
using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL kVariantTrue = -1;
inline constexpr VARIANT_BOOL kVariantFalse = 0;

/// A zero-terminated wide string, null for the empty one; owned by the caller and read during the call only.
/// Paths are encoded by WidePath() (PathText.h), which keeps bytes that are not valid UTF-8.
using BSTR = const wchar_t*;

/// Entry for the host's worker threads during a parallel import (BeginParallelImport()). Turns one measured grid into
/// an object. May be called from any number of threads at once; uses no OpenGL. A refused grid is reported in the
/// debugger output. No exception leaves it for what the grid is: exhausted memory is a refusal too.
/// @param control         what BeginParallelImport() stored in its first argument
/// @param name            name of the object; null is an empty one
/// @param width, height   grid size, 1 to 32767 each
/// @param points          3 floats per pixel, row by row, sensor frame, micrometres: they are scaled by 0.001
/// @param confidence      one float per pixel; pixels below the confidence filter are skipped
/// @param trafo           16 floats, row-major 4 x 4, sensor to world; its translation is scaled by 0.001
/// @param classification  one byte per pixel; 240 and above are skipped
/// @param colors          one word per pixel, 0xAARRGGBB, or null
/// @param color           colour of the object when the scan has none of its own, 0x00BBGGRR
/// @param index           place of the object among those of this import, not negative
/// @return true when an object was made
using ImportMeasurementEntry = bool (*)(void* control, const wchar_t* name, std::int32_t width, std::int32_t height,
                                        const float* points, const float* confidence, const float* trafo,
                                        const std::uint8_t* classification, const std::uint32_t* colors,
                                        std::uint32_t color, std::int32_t index);

}  // namespace KV_ScenePane
