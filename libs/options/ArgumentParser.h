// The arguments of a command line as options, their values and files, in the order in which they were typed. What the
// values mean is left to the program.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ProgramOptions {

/// What a shell offers for a value.
enum class Completion { Nothing, Files, Folders };

/// One option. The same row is read from the command line, printed by --help and described by the man page and the
/// completion of the shell.
struct Row {
    std::string_view name;            ///< "--size"
    std::string_view shortName = {};  ///< "-s", or empty
    /// What the value looks like in the help text: "WxH". Empty for an option without a value.
    std::string_view value = {};
    std::string_view help = {};  ///< for --help and the man page; Manual fills in words in braces
    Completion completion = Completion::Nothing;
    std::string_view words = {};  ///< values that a shell offers, separated by spaces or commas
    /// File names that follow an option without a value, such as "FILE...": for the help text only.
    std::string_view followedBy = {};
};

/// An option that was given, or a file.
struct Argument {
    const Row* row = nullptr;  ///< null for a file
    std::string text;          ///< the value of the option, or the name of the file
};

/// Why the rest of a command line cannot be read.
struct ArgumentMistake {
    enum class Kind {
        Unknown,     ///< no such option
        NeedsValue,  ///< the last argument is an option with a value
        HasValue     ///< an option without a value has one
    };
    Kind kind = Kind::Unknown;
    /// Of an unknown option the whole argument, else the name of the option as it was typed.
    std::string argument;
    const Row* row = nullptr;  ///< null for Unknown
};

struct ParsedArguments {
    std::vector<Argument> arguments;         ///< up to the mistake
    std::optional<ArgumentMistake> mistake;  ///< the first one
};

/// Reads "--name value", "--name=value", "-n", "-n value" and files, mixed. "--" ends the options: all that follows is
/// a file. An argument that begins with "-" is no file before it, also "-" itself.
/// @param rows  kept by the caller; the result points to them
[[nodiscard]] ParsedArguments ParseArguments(std::span<const Row* const> rows,
                                             const std::vector<std::string>& arguments);

}  // namespace ProgramOptions
