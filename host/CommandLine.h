// What the user asked for on the command line. Pure parsing: no file is opened and nothing is printed here.
#pragma once
#include <string>
#include <variant>
#include <vector>

#include "FileImport.h"
#include "KV_ScenePane/Modes.h"

/// What the program does in this run.
enum class HostAction { Window, Screenshot, Capture, Info, Convert, Help, Version };

/// The options of one command line. An option that was not given has the value below.
struct HostOptions {
    HostAction action = HostAction::Window;
    std::string picturePath;         ///< of Screenshot and Capture; bytes, as typed
    int width = 1024, height = 768;  ///< of the drawing area, device pixels; Capture ignores them
    KV_ScenePane::ViewMode view = KV_ScenePane::ViewFromPlusZYUp;
    KV_ScenePane::DrawMode drawMode = KV_ScenePane::DrawModeGouraud;
    float zoom = 1.0f;  ///< magnification, 0.1 to 10; 2 shows half as much
    ImportSettings import;
    bool shadows = false;
    bool json = false;               ///< of Info
    std::vector<std::string> files;  ///< to open; bytes, as typed, in order
    std::string exportPath;          ///< of Convert, with the extension of a type that can be written; bytes, as typed
};

/// What is wrong with a command line, as one line without the program's name.
struct UsageError {
    std::string text;
};

/// @param arguments  without the program's name
[[nodiscard]] std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help, ends with a line feed.
[[nodiscard]] std::string HelpText();
/// The text of --version, ends with a line feed.
[[nodiscard]] std::string VersionText();
