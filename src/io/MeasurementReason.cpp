// The look-up of MsrLastReason(). Its header gives the type alone: nothing here links against the function.
#include "io/MeasurementReason.h"

#include <dlfcn.h>

#include "MSRDLL/MsrLastReason.h"

void* FindLoadedSymbol(const char* name) { return ::dlsym(RTLD_DEFAULT, name); }

// Called on the thread of the failed load, right after it: the library keeps one reason per thread.
std::string LastMeasurementReason(SymbolLookup lookup) {
    using LastReason = decltype(&MsrLastReason);
    const auto lastReason = reinterpret_cast<LastReason>(lookup("MsrLastReason"));
    const char* const reason = lastReason == nullptr ? nullptr : lastReason();
    return reason == nullptr || *reason == '\0' ? kNoMeasurementReason : reason;
}
