// What simulate-scans was asked to do.
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

struct Options {
    std::string shape = "bust";
    int scans = 8;
    FileFormat format = FileFormat::Pcm;
    int threads = 0;  ///< 0: one a processor
    std::filesystem::path folder;
    std::string prefix;  ///< of the file names
    ScannerSettings scanner;
    bool help = false, version = false;  ///< then nothing else was looked at
};

/// A command line that cannot be followed; the text is one line.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// @param arguments  without the program's name
/// @throws UsageError
[[nodiscard]] Options ParseCommandLine(std::span<const std::string_view> arguments);

[[nodiscard]] std::string HelpText();

/// "pcm", "pax" or "xdt"
[[nodiscard]] const char* NameOf(FileFormat format);

}  // namespace simulate
