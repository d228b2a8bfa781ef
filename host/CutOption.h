// The value of --cut: a lasso in fractions of the drawing area.
#pragma once
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KV_ScenePane/Cutting.h"

/// A lasso as ScenePane::CutWithLasso() receives it.
struct LassoCut {
    KV_ScenePane::SegmentationMode mode = KV_ScenePane::PolygonInside;
    /// Finite; may be outside the drawing area. At least two of a polygon and one of a freehand lasso.
    std::vector<KV_ScenePane::LassoPoint> points;
};

/// Why a text is no lasso, as one short line.
struct LassoError {
    std::string text;
};

/// Reads "MODE:X,Y;X,Y;...", without blanks and without a separator at the end, whatever the locale.
[[nodiscard]] std::variant<LassoCut, LassoError> ParseLasso(std::string_view text);

/// The name of a mode in the option, such as "freehand-inside".
[[nodiscard]] std::string_view LassoModeName(KV_ScenePane::SegmentationMode mode);
