// The reference of the surface for programmers in C++, C and Python.
#pragma once
#include <string>

#include "SurfaceText.h"

namespace bindings {

/// The text of docs/automation.md.
[[nodiscard]] std::string ReferenceText(const Surface& surface);

}  // namespace bindings
