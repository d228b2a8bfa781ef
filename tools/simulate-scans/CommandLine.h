// The command line of simulate-scans.
#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ScanFiles.h"
#include "Scanner.h"

namespace simulate {

/// All options, with their defaults.
struct Options {
    std::string shape = "bust";
    int scans = 8;
    FileFormat format = FileFormat::Pcm;
    int threads = 0;  ///< 0: one per processor
    std::filesystem::path folder;
    std::string prefix;  ///< start of the file names
    ScannerSettings scanner;
    bool help = false, version = false;  ///< the other options were not read then
};

/// Thrown for a wrong command line; what() is one line in plain English.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads and checks all arguments.
/// @param arguments  without the name of the program
/// @throws UsageError
[[nodiscard]] Options ParseCommandLine(std::span<const std::string_view> arguments);

/// The text of --help.
[[nodiscard]] std::string HelpText();
/// The man page, docs/simulate-scans.1.
[[nodiscard]] std::string ManPage();
/// The completion for bash, docs/completions/simulate-scans.
[[nodiscard]] std::string BashCompletion();

/// "pcm", "pax" or "xdt"
[[nodiscard]] const char* NameOf(FileFormat format);

}  // namespace simulate
