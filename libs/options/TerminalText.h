// Names of files and texts out of them for a terminal.
#pragma once
#include <string>

namespace ProgramOptions {

/// @p text with question marks for control characters, line feeds included: anybody may have named or written a file,
/// and no control sequence of it may reach the terminal. Bytes that are not UTF-8 stay.
[[nodiscard]] std::string TerminalText(std::string text);

}  // namespace ProgramOptions
