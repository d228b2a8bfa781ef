// Where the region of a cut comes from.
#pragma once
#include <variant>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "cut/CutSession.h"

/// The corners of a polygon, the first one repeated at its end, or a freehand session.
using CutSource = std::variant<std::vector<KV_ScenePane::LassoPoint>, const CutSession*>;
