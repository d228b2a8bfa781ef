// The program without its main(), so that tests can call it.
#pragma once
#include <iosfwd>
#include <span>
#include <string_view>

namespace simulate {

/// Runs the program.
/// @param arguments  without the name of the program
/// @param output     receives the names of the files, or the text of --help and --version
/// @param errors     receives the reason of a failure, one line
/// @return the exit status: 0 success, 1 failure, 2 wrong command line
int Run(std::span<const std::string_view> arguments, std::ostream& output, std::ostream& errors);

}  // namespace simulate
