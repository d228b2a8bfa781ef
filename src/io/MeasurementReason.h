// Why the measurement library refused a file, where the library can say it.
#pragma once
#include <string>

/// The reason when the library gives none.
inline constexpr char kNoMeasurementReason[] = "not a readable pcm file, or damaged";

/// Finds an exported C function by its name; null when no loaded library has it.
using SymbolLookup = void* (*)(const char* name);

/// dlsym() over the libraries that this code is linked to and those that are loaded for the whole process.
[[nodiscard]] void* FindLoadedSymbol(const char* name);

/// The reason of this thread's last failed load: what the function MsrLastReason() of the measurement library returns.
/// It is looked up at run time, because a site may put a library without it in the place of ours.
/// @return kNoMeasurementReason when there is no such function or it returns no text
[[nodiscard]] std::string LastMeasurementReason(SymbolLookup lookup = &FindLoadedSymbol);
