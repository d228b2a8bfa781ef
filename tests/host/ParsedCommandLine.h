// A command line as the program reads it, or why it refuses it.
#pragma once
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include "CommandLine.h"

inline HostOptions Parsed(const std::vector<std::string>& arguments) {
    const auto result = ParseCommandLine(arguments);
    if (const auto* error = std::get_if<UsageError>(&result)) {
        ADD_FAILURE() << error->text;
        return {};
    }
    return std::get<HostOptions>(result);
}

inline std::string UsageErrorOf(const std::vector<std::string>& arguments) {
    const auto result = ParseCommandLine(arguments);
    const auto* const error = std::get_if<UsageError>(&result);
    return error == nullptr ? "accepted" : error->text;
}

/// A command line that is refused.
struct WrongUsage {
    const char* name;  ///< of the test case
    std::vector<std::string> arguments;
    const char* message;
};
inline void PrintTo(const WrongUsage& row, std::ostream* out) { *out << row.name; }
