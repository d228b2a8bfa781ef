// What the user asked for on the command line. Pure parsing: nothing is opened or printed here.
#pragma once
#include <string>
#include <variant>
#include <vector>

#include "FileImport.h"

/// What shall happen.
enum class HostAction { Window, Screenshot, Capture, Info, Convert, Help, Version };

/// The wishes of one command line; what was not asked for keeps its start value.
struct HostOptions {
    HostAction action = HostAction::Window;
    std::string picturePath;  ///< of the screenshot or the capture; bytes, as typed
    int width = 1024, height = 768;
    int view = 4;       ///< argument of SetViewMode: along Z, where the viewer starts too
    int drawMode = 3;   ///< lit by vertex normals
    float zoom = 1.0f;  ///< magnification, 0.1 to 10
    ImportSettings import;
    bool shadows = false;
    bool json = false;
    std::vector<std::string> files;  ///< to open; bytes, as typed, in order
    std::string exportPath;          ///< of Convert, a type that can be written; bytes, as typed
};

/// One line that tells what is wrong, without the program's name.
struct UsageError {
    std::string text;
};

/// @param arguments  without the program's name
[[nodiscard]] std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help, ends with a line feed.
[[nodiscard]] std::string HelpText();
/// The text of --version, ends with a line feed.
[[nodiscard]] std::string VersionText();
