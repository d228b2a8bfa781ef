// Transparent pictures out of two opaque ones.
#pragma once
#include "KV_ScenePane/ScenePane.h"

/// The same view on a black and on a white background, as one picture with a transparent background. A pixel that
/// covers its background by the part a is a x colour on black and a x colour + (1 - a) x 255 on white, so
///     a = 1 - (white - black) / 255, by the mean of the three channels, and colour = black / a.
/// Words 0xAARRGGBB with colours that are not multiplied by alpha, as PNG has them; 0 where nothing covers.
/// @param onBlack  becomes the result. @param onWhite  of the same size
void SetAlphaFrom(KV_ScenePane::Picture& onBlack, const KV_ScenePane::Picture& onWhite);
