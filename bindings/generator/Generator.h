// The program generate-bindings without its main(), so that tests can call it.
#pragma once
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "SurfaceText.h"

namespace bindings {

/// A generated file that is checked in.
struct CheckedInFile {
    std::string path;  ///< relative to the root of the source tree
    std::function<std::string(const Surface&)> text;
};

/// All of them.
[[nodiscard]] std::span<const CheckedInFile> CheckedInFiles();

/// Runs the program.
/// @param arguments  without the name of the program
/// @param output     receives the names of files that were written, and the text of --help
/// @param errors     receives the reason of a failure, one line for each file that is not current
/// @return the exit status: 0 success, 1 failure or a file that is not current, 2 wrong command line
int Run(std::span<const std::string_view> arguments, std::ostream& output, std::ostream& errors);

}  // namespace bindings
