// The generated files of the Python package.
#include "WritePython.h"

namespace bindings {

std::map<std::string, std::string> PythonFiles(const Surface& /*surface*/) { return {}; }

}  // namespace bindings
