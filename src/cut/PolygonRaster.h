// The pixels of a polygon.
#pragma once
#include <cstdint>
#include <span>

#include "KV_ScenePane/Cutting.h"
#include "cut/MaskBits.h"

/// The pixels whose centres are inside, by the even-odd rule in single precision. Only corners in the window extend the
/// rectangle; what lies beyond it is cut off.
/// @param width, height  of the window, pixels; no bits when one is not above 0
/// @param points         fractions of the window, the first one repeated at the end
[[nodiscard]] MaskBits CreateMaskBits(std::int32_t width, std::int32_t height,
                                      std::span<const KV_ScenePane::LassoPoint> points);
