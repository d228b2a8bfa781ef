// The C header with the ids of the surface and the values of its modes.
#pragma once
#include <string>

#include "SurfaceText.h"

namespace bindings {

/// The text of include/KV_ScenePane/kv_scenepane_ids.h.
[[nodiscard]] std::string IdsHeader(const Surface& surface);

}  // namespace bindings
