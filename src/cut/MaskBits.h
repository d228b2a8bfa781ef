// The set pixels of a mask.
#pragma once
#include "KV_ScenePane/CutMask.h"

/// Bits of width x height pixels, as in ACAD::CutMask.
struct MaskBits {
    ACAD::CutMask::Rectangle m_rcBounds = ACAD::CutMask::kNoPixel;
    ACAD::PackedBits m_vBits;
};
