// Why a pcm file could not be read, where the library that reads it can say so.
#pragma once
#include <string>

/// The sentence for a library that gives no reason.
inline constexpr char kNoPcmReason[] = "not a pcm file, or a damaged one";

/// Finds an exported C function by its name; null when no loaded library has it.
using SymbolLookup = void* (*)(const char* name);

/// dlsym() over all libraries of the process.
[[nodiscard]] void* FindLoadedSymbol(const char* name);

/// The reason of the last failed MSR::Load() on this thread, from MsrLastReason() (MSRDLL/MsrLastReason.h). That
/// function is looked up at run time: the library of a site need not have it, and still has to work.
/// @return kNoPcmReason when there is no such function or it returns no text
[[nodiscard]] std::string LastPcmReason(SymbolLookup lookup = &FindLoadedSymbol);
