// The table of the options, each with its limits and its help text.
#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include "NumberText.h"
#include "Shapes.h"
#include "options/ProgramManual.h"

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

/// An option of the table.
struct Option {
    ProgramOptions::Row row;
    /// Checks the value and stores it. @throws UsageError
    void (*apply)(std::string_view name, std::string_view value, Options* options);
};

constexpr auto kFolder = ProgramOptions::Completion::Folders;

// Each entry checks its limits; its help text repeats them.
constexpr auto kOptions = std::to_array<Option>({
    {{.name = "--out",
      .value = "FOLDER",
      .help = "folder for the files; it is created if it does not exist",
      .completion = kFolder},
     [](auto name, auto value, Options* options) {
         if (value.empty()) Refuse(name, " must be a folder");
         options->folder = value;
     }},
    {{.name = "--shape", .value = "NAME", .help = "{shapes} (bust)", .words = "{shapes}"},
     [](auto, auto value, Options* options) { options->shape = ParseShape(value); }},
    {{.name = "--scans", .value = "N", .help = "number of poses, 1 to 999 (8)"},
     [](auto name, auto value, Options* options) { options->scans = ParseNumber(name, value, 1, 999); }},
    {{.name = "--size", .value = "WxH", .help = "pixels per scan, 100x100 to 4096x3072 (640x480)"},
     [](auto, auto value, Options* options) { ParseSize(value, &options->scanner); }},
    {{.name = "--format", .value = "FORMAT", .help = "pcm, pax or xdt (pcm)", .words = "pcm pax xdt"},
     [](auto, auto value, Options* options) { options->format = ParseFormat(value); }},
    {{.name = "--noise", .value = "MM", .help = "standard deviation along the ray in millimetres, 0 to 10 (0.02)"},
     [](auto name, auto value, Options* options) { options->scanner.noise = ParseNumber(name, value, 0.0f, 10.0f); }},
    {{.name = "--dropout", .value = "F", .help = "fraction of the measured pixels that are removed, 0 to 1 (0.01)"},
     [](auto name, auto value, Options* options) { options->scanner.dropout = ParseNumber(name, value, 0.0f, 1.0f); }},
    {{.name = "--max-angle",
      .value = "DEG",
      .help = "largest angle between ray and surface normal that is measured, 0 to 89 (75)"},
     [](auto name, auto value, Options* options) {
         options->scanner.maxIncidenceDeg = ParseNumber(name, value, 0.0f, 89.0f);
     }},
    {{.name = "--parallel", .help = "parallel rays instead of a pinhole camera"},
     [](auto, auto, Options* options) { options->scanner.parallel = true; }},
    {{.name = "--colors", .help = "write colours too; pcm only"},
     [](auto, auto, Options* options) { options->scanner.colors = true; }},
    {{.name = "--seed", .value = "S", .help = "seed of noise and dropouts (1); the same seed gives the same files"},
     [](auto name, auto value, Options* options) {
         options->scanner.seed = ParseNumber<std::uint64_t>(name, value, 0, UINT64_MAX);
     }},
    {{.name = "--threads", .value = "N", .help = "1 to 256 (one per processor); the files do not depend on it"},
     [](auto name, auto value, Options* options) { options->threads = ParseNumber(name, value, 1, 256); }},
    {{.name = "--prefix", .value = "NAME", .help = "start of the file names (the name of the shape)"},
     [](auto, auto value, Options* options) { options->prefix = ParsePrefix(value); }},
    {{.name = "--help", .shortName = "-h", .help = "print this text"},
     [](auto, auto, Options* options) { options->help = true; }},
    {{.name = "--version", .shortName = "-V", .help = "print the version"},
     [](auto, auto, Options* options) { options->version = true; }},
});

std::vector<const ProgramOptions::Row*> Rows() {
    std::vector<const ProgramOptions::Row*> rows;
    rows.reserve(kOptions.size());
    for (const Option& option : kOptions) rows.push_back(&option.row);
    return rows;
}

ProgramOptions::Manual ManualOf() {
    return {.program = "simulate-scans",
            .version = KV_VERSION,
            .summary = "simulate a structured-light scanner",
            .usage = {"[options] --out FOLDER"},
            .description =
                "Simulates a structured-light scanner that measures an object from several poses around "
                "it. Writes one file per pose, and PREFIX.json with the settings and the true transforms. "
                "Default values are in parentheses.",
            .groups = {{"", Rows()}},
            .sections = {{"Exit status", "0 when all files were written, 1 when not, 2 for wrong usage."}},
            .examples = {{"simulate-scans --out scans --shape gear --scans 12 --colors",
                          "Twelve coloured scans of a gear."}},
            .seeAlso = "scenepane(1)",
            .replacements = {{"{shapes}", JoinedShapeNames()}},
            .files = ProgramOptions::Completion::Nothing};
}

/// @throws UsageError for the first mistake
void ApplyArguments(const std::vector<std::string>& arguments, Options* options) {
    const auto parsed = ProgramOptions::ParseArguments(Rows(), arguments);
    for (const ProgramOptions::Argument& argument : parsed.arguments) {
        if (argument.row == nullptr) Refuse("unexpected argument '", argument.text, "'");
        const auto* const option =
            std::ranges::find(kOptions, argument.row, [](const Option& known) { return &known.row; });
        option->apply(argument.row->name, argument.text, options);
    }
    if (!parsed.mistake) return;
    using Kind = ProgramOptions::ArgumentMistake::Kind;
    const std::string& name = parsed.mistake->argument;
    if (parsed.mistake->kind == Kind::NeedsValue) Refuse(name, " needs a value");
    if (parsed.mistake->kind == Kind::HasValue) Refuse(name, " takes no value");
    Refuse("unknown option '", name, "'");
}

}  // namespace

Options ParseCommandLine(std::span<const std::string_view> arguments) {
    Options options;
    // --help and --version win over everything else, mistakes included.
    for (const std::string_view argument : arguments) {
        options.help = argument == "--help" || argument == "-h";
        options.version = argument == "--version" || argument == "-V";
        if (options.help || options.version) return options;
    }
    ApplyArguments({arguments.begin(), arguments.end()}, &options);
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

std::string HelpText() { return ProgramOptions::HelpText(ManualOf()); }

std::string ManPage() { return ProgramOptions::ManPage(ManualOf()); }

std::string BashCompletion() { return ProgramOptions::BashCompletion(ManualOf()); }

}  // namespace simulate
