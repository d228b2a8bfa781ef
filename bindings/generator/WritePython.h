// The generated files of the Python package.
#pragma once
#include <map>
#include <string>

#include "SurfaceText.h"

namespace bindings {

/// File name, relative to the folder of the package, and text of every generated file of the Python package.
[[nodiscard]] std::map<std::string, std::string> PythonFiles(const Surface& surface);

}  // namespace bindings
