// docs/automation.md: introduction, contents by subject, methods, properties, events and modes.
#include "WriteReference.h"

namespace bindings {

std::string ReferenceText(const Surface& surface) { return surface.text + "\n"; }

}  // namespace bindings
