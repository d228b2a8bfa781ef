// Methods of the surface that this version only declares. Each writes one line to the debugger output, so that a host
// that calls one learns why nothing happened.
#include <string>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"

namespace {
void NotYet(const char* method) {
    DebugOutput(std::string("CKV_ScenePaneCtrl::") + method + "(): this version does not have this operation yet\n");
}
}  // namespace

void CKV_ScenePaneCtrl::AboutBox() { NotYet("AboutBox"); }
