// The options by name, each with its limits, and the help text.
#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "NumberText.h"
#include "Shapes.h"

namespace simulate {
namespace {

constexpr std::array kFormats = {std::pair{"pcm", FileFormat::Pcm}, std::pair{"pax", FileFormat::Pax},
                                 std::pair{"xdt", FileFormat::Xdt}};

/// @throws UsageError with the joined parts
template <typename... Parts>
[[noreturn]] void Refuse(const Parts&... parts) {
    std::string text;
    (text.append(parts), ...);
    throw UsageError(text);
}

/// The whole text must be one number in the range; the locale has no influence.
template <typename Number>
Number ParseNumber(std::string_view option, std::string_view text, Number lowest, Number highest) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool inRange = value >= lowest && value <= highest;  // false for NaN
    if (error != std::errc{} || end != text.data() + text.size() || !inRange)
        Refuse(option, " must be a number from ", NumberText(lowest), " to ", NumberText(highest), ", not '", text,
               "'");
    return value;
}

/// "640x480"
void ParseSize(std::string_view text, ScannerSettings* scanner) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) Refuse("--size must be WIDTHxHEIGHT, not '", text, "'");
    scanner->width = ParseNumber("--size: the width", text.substr(0, cross), 100, 4096);
    scanner->height = ParseNumber("--size: the height", text.substr(cross + 1), 100, 3072);
}

/// The format by its name.
FileFormat ParseFormat(std::string_view text) {
    for (const auto& [name, format] : kFormats)
        if (text == name) return format;
    Refuse("--format must be pcm, pax or xdt, not '", text, "'");
}

/// "bust, bracket, ...", for messages and help.
std::string JoinedShapeNames() {
    std::string list;
    for (const std::string& name : ShapeNames()) list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::string ParseShape(std::string_view text) {
    const auto& names = ShapeNames();
    if (std::find(names.begin(), names.end(), text) == names.end())
        Refuse("--shape must be one of ", JoinedShapeNames(), ", not '", text, "'");
    return std::string(text);
}

/// Only characters that are safe in file names and in JSON.
std::string ParsePrefix(std::string_view text) {
    const auto isAllowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
               c == '.';
    };
    if (text.empty() || !std::all_of(text.begin(), text.end(), isAllowed))
        Refuse("--prefix must have letters, digits and _ - . only, not '", text, "'");
    return std::string(text);
}

/// An option with a value.
struct ValueOption {
    std::string_view name;
    /// Checks the value and stores it. @throws UsageError
    void (*apply)(std::string_view name, std::string_view value, Options* options);
};

// Each entry checks its limits; the help text repeats them.
constexpr auto kValueOptions = std::to_array<ValueOption>({
    {"--shape", [](auto, auto value, Options* options) { options->shape = ParseShape(value); }},
    {"--scans", [](auto name, auto value, Options* options) { options->scans = ParseNumber(name, value, 1, 999); }},
    {"--size", [](auto, auto value, Options* options) { ParseSize(value, &options->scanner); }},
    {"--format", [](auto, auto value, Options* options) { options->format = ParseFormat(value); }},
    {"--noise",
     [](auto name, auto value, Options* options) { options->scanner.noise = ParseNumber(name, value, 0.0f, 10.0f); }},
    {"--dropout",
     [](auto name, auto value, Options* options) { options->scanner.dropout = ParseNumber(name, value, 0.0f, 1.0f); }},
    {"--max-angle", [](auto name, auto value,
                       Options* options) { options->scanner.maxIncidenceDeg = ParseNumber(name, value, 0.0f, 89.0f); }},
    {"--seed",
     [](auto name, auto value, Options* options) {
         options->scanner.seed = ParseNumber<std::uint64_t>(name, value, 0, UINT64_MAX);
     }},
    {"--threads", [](auto name, auto value, Options* options) { options->threads = ParseNumber(name, value, 1, 256); }},
    {"--out",
     [](auto name, auto value, Options* options) {
         if (value.empty()) Refuse(name, " must be a folder");
         options->folder = value;
     }},
    {"--prefix", [](auto, auto value, Options* options) { options->prefix = ParsePrefix(value); }},
});

/// Applies the argument at @p at, with the value that follows it where the option has one.
/// @return the number of arguments that were used
std::size_t ApplyArgument(std::span<const std::string_view> arguments, std::size_t at, Options* options) {
    const std::string_view argument = arguments[at];
    if (argument == "--colors") return options->scanner.colors = true, 1;
    if (argument == "--parallel") return options->scanner.parallel = true, 1;
    if (!argument.starts_with("--")) Refuse("unexpected argument '", argument, "'");
    // Both "--name value" and "--name=value".
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const auto* option =
        std::find_if(kValueOptions.begin(), kValueOptions.end(), [&](const auto& known) { return known.name == name; });
    if (option == kValueOptions.end()) Refuse("unknown option '", name, "'");
    if (equals != std::string_view::npos) return option->apply(name, argument.substr(equals + 1), options), 1;
    if (at + 1 == arguments.size()) Refuse(name, " needs a value");
    return option->apply(name, arguments[at + 1], options), 2;
}

}  // namespace

Options ParseCommandLine(std::span<const std::string_view> arguments) {
    Options options;
    // --help and --version win over everything else, mistakes included.
    for (const std::string_view argument : arguments) {
        if (argument == "--help") options.help = true;
        if (argument == "--version") options.version = true;
        if (options.help || options.version) return options;
    }
    for (std::size_t at = 0; at < arguments.size();) at += ApplyArgument(arguments, at, &options);
    // Rules between options.
    if (options.folder.empty()) Refuse("--out FOLDER is missing");
    if (options.scanner.colors && options.format != FileFormat::Pcm) Refuse("--colors: only pcm can hold colours");
    if (options.prefix.empty()) options.prefix = options.shape;
    return options;
}

const char* NameOf(FileFormat format) {
    for (const auto& [name, known] : kFormats)
        if (format == known) return name;
    return "";
}

std::string HelpText() {
    return "Usage: simulate-scans [options] --out FOLDER\n"
           "Simulates a structured-light scanner that measures an object from several poses around it. Writes one "
           "file\n"
           "per pose, and PREFIX.json with the settings and the true transforms.\n"
           "\n"
           "  --out FOLDER       folder for the files; it is created if it does not exist\n"
           "  --shape NAME       " +
           JoinedShapeNames() +
           " (bust)\n"
           "  --scans N          number of poses, 1 to 999 (8)\n"
           "  --size WxH         pixels per scan, 100x100 to 4096x3072 (640x480)\n"
           "  --format FORMAT    pcm, pax or xdt (pcm)\n"
           "  --noise MM         standard deviation along the ray in millimetres, 0 to 10 (0.02)\n"
           "  --dropout F        fraction of the measured pixels that are removed, 0 to 1 (0.01)\n"
           "  --max-angle DEG    largest angle between ray and surface normal that is measured, 0 to 89 (75)\n"
           "  --parallel         parallel rays instead of a pinhole camera\n"
           "  --colors           write colours too; pcm only\n"
           "  --seed S           seed of noise and dropouts (1); the same seed gives the same files\n"
           "  --threads N        1 to 256 (one per processor); the files do not depend on it\n"
           "  --prefix NAME      start of the file names (the name of the shape)\n"
           "  --help, --version  print this text, or the version\n"
           "Default values are in parentheses.\n";
}

}  // namespace simulate
