// Parsing of the command line. Numbers go through std::from_chars: the process's locale has no say.
#include "CommandLine.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <type_traits>

#include "ProgramName.h"
#include "SceneFile.h"

namespace {

constexpr int kLargestSide = 16384;  // what drivers take as a drawing area
constexpr int kLargestSkip = 32767;

/// The whole of @p text as a number, or nothing.
template <class Number>
std::optional<Number> WholeNumber(std::string_view text, int base = 10) {
    Number value{};
    const char* const end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>) {
        result = std::from_chars(text.data(), end, value);
    } else {
        result = std::from_chars(text.data(), end, value, base);
    }
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return value;
}

std::optional<int> IntegerIn(std::string_view text, int smallest, int largest) {
    const auto value = WholeNumber<int>(text);
    return value && *value >= smallest && *value <= largest ? value : std::nullopt;
}

bool ReadSize(std::string_view text, HostOptions& options) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) return false;
    const auto width = IntegerIn(text.substr(0, cross), 1, kLargestSide);
    const auto height = IntegerIn(text.substr(cross + 1), 1, kLargestSide);
    if (!width || !height) return false;
    options.width = *width;
    options.height = *height;
    return true;
}

bool ReadView(std::string_view text, HostOptions& options) {
    const auto view = IntegerIn(text, 0, 7);
    if (view) options.view = *view;
    return view.has_value();
}

bool ReadDrawMode(std::string_view text, HostOptions& options) {
    const auto mode = IntegerIn(text, 0, 7);
    if (mode) options.drawMode = *mode;
    return mode.has_value();
}

bool ReadZoom(std::string_view text, HostOptions& options) {
    const auto zoom = WholeNumber<float>(text);
    if (!zoom || !(*zoom >= 0.1f && *zoom <= 10.0f)) return false;
    options.zoom = *zoom;
    return true;
}

bool ReadSkip(std::string_view text, HostOptions& options) {
    const auto skip = IntegerIn(text, 1, kLargestSkip);
    if (skip) options.import.skip = static_cast<std::int16_t>(*skip);
    return skip.has_value();
}

bool ReadConfidence(std::string_view text, HostOptions& options) {
    const auto confidence = WholeNumber<float>(text);
    if (!confidence || !std::isfinite(*confidence)) return false;
    options.import.confidence = *confidence;
    return true;
}

bool ReadColor(std::string_view text, HostOptions& options) {
    // The sign that from_chars takes is ruled out by the six digits that have to be there.
    if (text.size() != 6 || text.front() == '-') return false;
    const auto rgb = WholeNumber<std::int32_t>(text, 16);
    if (!rgb) return false;
    options.import.color = ((*rgb & 0xFF) << 16) | (*rgb & 0xFF00) | (*rgb >> 16);
    return true;
}

bool ReadPicturePath(std::string_view text, HostOptions& options) {
    options.picturePath = text;
    return !text.empty();
}

/// In which runs an option has a meaning.
enum class Meaning {
    Action,   ///< it names the run itself
    Always,   ///< imports
    Picture,  ///< all but --info and --convert
    Look      ///< the window and --screenshot: a capture has its own size and look
};

/// An option that takes a value.
struct ValueOption {
    std::string_view name;
    std::string_view wants;  ///< what a good value is
    Meaning meaning;
    bool (*read)(std::string_view text, HostOptions& options);
};

constexpr ValueOption kValueOptions[] = {
    {"--screenshot", "a file name", Meaning::Action, ReadPicturePath},
    {"--capture", "a file name", Meaning::Action, ReadPicturePath},
    {"--size", "WIDTHxHEIGHT, each from 1 to 16384", Meaning::Look, ReadSize},
    {"--view", "a whole number from 0 to 7", Meaning::Picture, ReadView},
    {"--draw-mode", "a whole number from 0 to 7", Meaning::Look, ReadDrawMode},
    {"--zoom", "a number from 0.1 to 10", Meaning::Picture, ReadZoom},
    {"--skip", "a whole number from 1 to 32767", Meaning::Always, ReadSkip},
    {"--confidence", "a number", Meaning::Always, ReadConfidence},
    {"--color", "six hexadecimal digits RRGGBB", Meaning::Always, ReadColor},
};

const ValueOption* FindValueOption(std::string_view name) {
    for (const ValueOption& option : kValueOptions) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

/// What was seen, beside the values.
struct Seen {
    bool screenshot = false, capture = false, info = false, convert = false;
    std::string_view pictureOption;  ///< the last one that asks for something of a picture
    std::string_view lookOption;     ///< the last of these that a capture does not heed
};

bool IsSwitch(std::string_view name) {
    return name == "--info" || name == "--convert" || name == "--json" || name == "--shadows" || name == "--help" ||
           name == "--version";
}

/// Takes an option without a value; false when there is no such option.
bool TakeSwitch(std::string_view name, HostOptions& options, Seen& seen) {
    if (name == "--info") {
        seen.info = true;
    } else if (name == "--convert") {
        seen.convert = true;
    } else if (name == "--json") {
        options.json = true;
    } else if (name == "--shadows") {
        options.shadows = true;
        seen.pictureOption = seen.lookOption = "--shadows";
    } else {
        return false;
    }
    return true;
}

/// Two options that each name the run; empty when there are none.
std::string TwoActions(const Seen& seen) {
    if (seen.info && seen.screenshot) return "--info and --screenshot do not go together";
    if (seen.info && seen.capture) return "--info and --capture do not go together";
    if (seen.capture && seen.screenshot) return "--screenshot and --capture do not go together";
    if (seen.convert && seen.info) return "--convert and --info do not go together";
    if (seen.convert && seen.screenshot) return "--convert and --screenshot do not go together";
    if (seen.convert && seen.capture) return "--convert and --capture do not go together";
    return {};
}

/// What does not go together; empty when all is well.
std::string Contradiction(const HostOptions& options, const Seen& seen) {
    if (std::string text = TwoActions(seen); !text.empty()) return text;
    if (options.json && !seen.info) return "--json goes with --info only";
    if ((seen.info || seen.convert) && !seen.pictureOption.empty())
        return std::string(seen.pictureOption) + " has no meaning with " + (seen.info ? "--info" : "--convert");
    if (seen.capture && !seen.lookOption.empty())
        return std::string(seen.lookOption) + " has no meaning with --capture";
    if (options.files.empty() && seen.capture) return "--capture needs at least one file";
    if (options.files.empty() && seen.screenshot) return "--screenshot needs at least one file";
    if (options.files.empty() && seen.info) return "--info needs at least one file";
    if (options.files.size() != 2 && seen.convert)
        return "--convert needs two files, the one to read and the one to write";
    if (const std::string reason = seen.convert ? WhyNoExportName(options.files.back()) : ""; !reason.empty())
        return options.files.back() + ": " + reason;
    return {};
}

/// Reads one option with a value, at @p i, which moves on when the value is the next argument.
std::optional<UsageError> TakeValue(const ValueOption& option, const std::vector<std::string>& arguments,
                                    std::size_t& i, HostOptions& options, Seen& seen) {
    const std::string_view argument = arguments[i];
    std::string_view value;
    if (argument.size() > option.name.size()) {
        value = argument.substr(option.name.size() + 1);
    } else if (i + 1 < arguments.size()) {
        value = arguments[++i];
    } else {
        return UsageError{std::string(option.name) + " needs a value: " + std::string(option.wants)};
    }
    if (!option.read(value, options)) {
        return UsageError{std::string(option.name) + " takes " + std::string(option.wants) + ", not \"" +
                          std::string(value) + "\""};
    }
    if (option.name == "--screenshot") seen.screenshot = true;
    if (option.name == "--capture") seen.capture = true;
    if (option.meaning == Meaning::Picture || option.meaning == Meaning::Look) seen.pictureOption = option.name;
    if (option.meaning == Meaning::Look) seen.lookOption = option.name;
    return std::nullopt;
}

}  // namespace

std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments) {
    HostOptions options;
    Seen seen;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (optionsEnded || argument.empty() || argument.front() != '-') {
            if (argument.empty()) return UsageError{"a file name is empty"};
            options.files.emplace_back(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (argument == "--help" || argument == "--version") {
            options.action = argument == "--help" ? HostAction::Help : HostAction::Version;
            return options;
        }
        if (TakeSwitch(argument, options, seen)) continue;
        const std::string_view name = argument.substr(0, argument.find('='));
        const ValueOption* const option = FindValueOption(name);
        if (name != argument && IsSwitch(name)) return UsageError{std::string(name) + " takes no value"};
        if (option == nullptr) return UsageError{"unknown option " + std::string(argument)};
        if (auto error = TakeValue(*option, arguments, i, options, seen)) return *error;
    }
    if (const std::string text = Contradiction(options, seen); !text.empty()) return UsageError{text};
    if (seen.screenshot) options.action = HostAction::Screenshot;
    if (seen.capture) options.action = HostAction::Capture;
    if (seen.info) options.action = HostAction::Info;
    if (seen.convert) {
        options.action = HostAction::Convert;
        options.exportPath = options.files.back();
        options.files.pop_back();
    }
    return options;
}

std::string HelpText() {
    return "Usage: scenepane [options] FILE...\n"
           "       scenepane --screenshot OUT.png [options] FILE...\n"
           "       scenepane --capture OUT.png [options] FILE...\n"
           "       scenepane --info [--json] [options] FILE...\n"
           "       scenepane --convert [options] IN OUT\n"
           "Shows optical scans (pcm, pax and xdt files) and meshes (ply, stl, hps, ois and msh files) in a window,\n"
           "as a picture, or as numbers.\n"
           "\n"
           "Without a display:\n"
           "  --screenshot OUT.png  render the scene, fitted to the picture, into a PNG file\n"
           "  --capture OUT.png     render the whole scene at 2048x2048, smooth shaded, whatever the window's\n"
           "                        size; --size, --draw-mode and --shadows have no meaning with it\n"
           "  --info                print what each file holds; needs no OpenGL either\n"
           "  --json                with --info: print one JSON object\n"
           "  --convert IN OUT      write what IN holds, a scan or a mesh, as the ply, stl or hps file OUT; needs no\n"
           "                        OpenGL either\n"
           "\n"
           "Imports of scans:\n"
           "  --skip N              thin the grid: one point for N x N, 1 to 32767 (1)\n"
           "  --confidence F        leave out points of a lower confidence (0)\n"
           "  --color RRGGBB        colour of scans that have none of their own (DCD4C8)\n"
           "\n"
           "Pictures, in the window and in the file:\n"
           "  --size WxH            size in pixels (1024x768)\n"
           "  --view 0..7           0 from +Y, 1 from -Y, 2 from +X, 3 from -X, 6 oblique: Z up;\n"
           "                        4 from +Z, 7 from -Z: Y up; 5 from -Z: Y down (4)\n"
           "  --draw-mode 0..7      0 points, 1 wireframe, 2 flat, 3 smooth, 4 boxes, 5 per pixel, 6 nothing,\n"
           "                        7 shadow map (3)\n"
           "  --zoom Z              magnification, 0.1 to 10: 2 shows half as much (1)\n"
           "  --shadows             cast shadows (draw modes 5 and 6 show no object then)\n"
           "\n"
           "  --help                print this text\n"
           "  --version             print the version\n"
           "  --                    what follows are file names\n"
           "\n"
           "Exit status: 0 when every file added an object and all that was asked for was written, 1 when not, 2 for\n"
           "wrong usage.\n";
}

std::string VersionText() { return std::string(kProgramName) + ' ' + kProgramVersion + '\n'; }
