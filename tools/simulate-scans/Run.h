// The whole program but for its main(): what to do with a command line.
#pragma once
#include <iosfwd>
#include <span>
#include <string_view>

namespace simulate {

/// @param arguments  without the program's name
/// @return the exit status: 0 done, 1 failed, 2 wrong usage; the reason of a failure is one line on @p errors
int Run(std::span<const std::string_view> arguments, std::ostream& output, std::ostream& errors);

}  // namespace simulate
