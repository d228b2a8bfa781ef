// The tints of a freehand lasso as the viewer accepts them.
#pragma once
#include <cstdint>

#include "Settings.h"

/// The arguments of SetLassoCuttingColors().
struct LassoTints {
    std::int32_t inside = 0, outside = 0;  ///< 0x00BBGGRR
    float insideOpacity = 0.0f, outsideOpacity = 0.0f;
};

/// The colours of the settings. Where the viewer would refuse a tint (invisible red, the opaque cyan of the lines), or
/// could not distinguish both tints, a colour is changed by a few steps of 255 of its blue, which nobody sees.
[[nodiscard]] LassoTints TintsOf(const LassoSettings& settings);

/// The word that the viewer makes of a tint: red in the lowest byte, the opacity in the highest.
[[nodiscard]] std::uint32_t PackedTint(std::int32_t color, float opacity);
