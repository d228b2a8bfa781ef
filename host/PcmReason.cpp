// The look-up of MsrLastReason(). The host does not link against it.
#include "PcmReason.h"

#include <dlfcn.h>

void* FindLoadedSymbol(const char* name) { return dlsym(RTLD_DEFAULT, name); }

std::string LastPcmReason(SymbolLookup lookup) {
    using LastReason = const char* (*)();
    const auto lastReason = reinterpret_cast<LastReason>(lookup("MsrLastReason"));
    const char* const reason = lastReason == nullptr ? nullptr : lastReason();
    return reason == nullptr || *reason == '\0' ? kNoPcmReason : reason;
}
