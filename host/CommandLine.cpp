// Parsing of the command line: a table of the options with values, then the checks of what they are together. Numbers
// are read by std::from_chars, whose result does not depend on the locale.
#include "CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <type_traits>

#include "FileTypes.h"
#include "ProgramName.h"
#include "SceneFile.h"

namespace {

constexpr int kMaxSide = 16384;  // the largest drawing area that common drivers accept, pixels
constexpr int kMaxSkip = 32767;  // the viewer's skip value has 16 bits
constexpr int kMaxGpu = 31;

/// The whole of @p text as a number; empty for any other text, also for a number with something after it.
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

// One function per option: reads its value and stores it. False for an invalid value, and nothing is stored then.

bool ReadSize(std::string_view text, HostOptions& options) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) return false;
    const auto width = IntegerIn(text.substr(0, cross), 1, kMaxSide);
    const auto height = IntegerIn(text.substr(cross + 1), 1, kMaxSide);
    if (!width || !height) return false;
    options.width = *width;
    options.height = *height;
    return true;
}

bool ReadView(std::string_view text, HostOptions& options) {
    const auto view = IntegerIn(text, KV_ScenePane::ViewFromPlusYZUp, KV_ScenePane::ViewFromMinusZYUp);
    if (view) options.view = static_cast<KV_ScenePane::ViewMode>(*view);
    return view.has_value();
}

bool ReadDrawMode(std::string_view text, HostOptions& options) {
    const auto mode = IntegerIn(text, KV_ScenePane::DrawModePoints, KV_ScenePane::DrawModeShadowMap);
    if (mode) options.drawMode = static_cast<KV_ScenePane::DrawMode>(*mode);
    return mode.has_value();
}

bool ReadZoom(std::string_view text, HostOptions& options) {
    const auto zoom = WholeNumber<float>(text);
    if (!zoom || !(*zoom >= 0.1f && *zoom <= 10.0f)) return false;
    options.zoom = *zoom;
    return true;
}

bool ReadSkip(std::string_view text, HostOptions& options) {
    const auto skip = IntegerIn(text, 1, kMaxSkip);
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
    // from_chars accepts a minus sign, which is no digit of a colour.
    if (text.size() != 6 || text.front() == '-') return false;
    const auto rgb = WholeNumber<std::int32_t>(text, 16);
    if (!rgb) return false;
    // RRGGBB to 0x00BBGGRR.
    options.import.color = ((*rgb & 0xFF) << 16) | (*rgb & 0xFF00) | (*rgb >> 16);
    return true;
}

bool ReadGpu(std::string_view text, HostOptions& options) {
    const auto number = IntegerIn(text, 0, kMaxGpu);
    if (!number && text != "software") return false;
    options.gpu = number ? *number : KV_ScenePane::WindowRequest::kSoftware;
    return true;
}

bool ReadPicturePath(std::string_view text, HostOptions& options) {
    options.picturePath = text;
    return !text.empty();
}

/// The runs that an option applies to.
enum class Scope {
    Action,    ///< the option selects the run
    Import,    ///< all runs that open files
    Picture,   ///< all but --info and --convert
    Look,      ///< the window and --screenshot: a capture has a size and a draw mode of its own
    OffScreen  ///< what draws without a window: --screenshot, --capture and the verbose --version
};

/// An option with a value.
struct ValueOption {
    std::string_view name;
    std::string_view expected;  ///< what a valid value is, for the message about an invalid one
    Scope scope;
    bool (*read)(std::string_view text, HostOptions& options);  ///< false for an invalid value
};

constexpr ValueOption kValueOptions[] = {
    {"--screenshot", "a file name", Scope::Action, ReadPicturePath},
    {"--capture", "a file name", Scope::Action, ReadPicturePath},
    {"--size", "WIDTHxHEIGHT, each from 1 to 16384", Scope::Look, ReadSize},
    {"--view", "a whole number from 0 to 7", Scope::Picture, ReadView},
    {"--draw-mode", "a whole number from 0 to 7", Scope::Look, ReadDrawMode},
    {"--zoom", "a number from 0.1 to 10", Scope::Picture, ReadZoom},
    {"--skip", "a whole number from 1 to 32767", Scope::Import, ReadSkip},
    {"--confidence", "a number", Scope::Import, ReadConfidence},
    {"--color", "six hexadecimal digits RRGGBB", Scope::Import, ReadColor},
    {"--gpu", "the number of a graphics device from 0 to 31, or software", Scope::OffScreen, ReadGpu},
};

/// Null for an unknown option.
const ValueOption* FindValueOption(std::string_view name) {
    for (const ValueOption& option : kValueOptions) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

/// Which options were given, for the checks of their combination.
struct GivenOptions {
    bool screenshot = false, capture = false, info = false, convert = false, version = false;
    bool gpu = false;
    bool import = false;             ///< an option of imports
    std::string_view pictureOption;  ///< the last one that applies to pictures; empty without one
    std::string_view lookOption;     ///< the last of these that a capture ignores; empty without one
};

/// Whether the option exists and has no value.
bool IsSwitch(std::string_view name) {
    return name == "--info" || name == "--convert" || name == "--json" || name == "--shadows" || name == "--help" ||
           name == "--version" || name == "--verbose";
}

/// Stores an option without a value; false when there is no such option.
bool StoreSwitch(std::string_view name, HostOptions& options, GivenOptions& given) {
    if (name == "--info") {
        given.info = true;
    } else if (name == "--convert") {
        given.convert = true;
    } else if (name == "--json") {
        options.json = true;
    } else if (name == "--version") {
        given.version = true;
    } else if (name == "--verbose") {
        options.verbose = true;
    } else if (name == "--shadows") {
        options.shadows = true;
        given.pictureOption = given.lookOption = "--shadows";
    } else {
        return false;
    }
    return true;
}

/// The message about two options that each select the run; empty when there are no such two.
std::string ActionConflict(const GivenOptions& given) {
    if (given.info && given.screenshot) return "--info and --screenshot do not go together";
    if (given.info && given.capture) return "--info and --capture do not go together";
    if (given.capture && given.screenshot) return "--screenshot and --capture do not go together";
    if (given.convert && given.info) return "--convert and --info do not go together";
    if (given.convert && given.screenshot) return "--convert and --screenshot do not go together";
    if (given.convert && given.capture) return "--convert and --capture do not go together";
    return {};
}

/// Whether the command line asks for something else besides the version.
bool HasMoreThanVersion(const HostOptions& options, const GivenOptions& given) {
    return given.screenshot || given.capture || given.info || given.convert || given.import ||
           !given.pictureOption.empty() || !options.files.empty();
}

/// The message about options and files that contradict each other; empty when none do.
std::string Conflict(const HostOptions& options, const GivenOptions& given) {
    if (std::string text = ActionConflict(given); !text.empty()) return text;
    if (options.json && !given.info) return "--json goes with --info only";
    if (options.verbose && !given.version) return "--verbose goes with --version only";
    if (given.version && HasMoreThanVersion(options, given)) return "--version --verbose goes with --gpu only";
    if (given.gpu && !given.screenshot && !given.capture && !given.version)
        return "--gpu goes with --screenshot, --capture and --version --verbose only";
    if ((given.info || given.convert) && !given.pictureOption.empty())
        return std::string(given.pictureOption) + " has no meaning with " + (given.info ? "--info" : "--convert");
    if (given.capture && !given.lookOption.empty())
        return std::string(given.lookOption) + " has no meaning with --capture";
    if (options.files.empty() && given.capture) return "--capture needs at least one file";
    if (options.files.empty() && given.screenshot) return "--screenshot needs at least one file";
    if (options.files.empty() && given.info) return "--info needs at least one file";
    if (options.files.size() != 2 && given.convert)
        return "--convert needs two files, the one to read and the one to write";
    if (const std::string reason = given.convert ? ExportRefusal(options.files.back()) : ""; !reason.empty())
        return options.files.back() + ": " + reason;
    return {};
}

/// Reads one option with a value.
/// @param i  position of the option among the arguments; advanced by one when the value is the next argument
std::optional<UsageError> ReadOption(const ValueOption& option, const std::vector<std::string>& arguments,
                                     std::size_t& i, HostOptions& options, GivenOptions& given) {
    const std::string_view argument = arguments[i];
    std::string_view value;
    if (argument.size() > option.name.size()) {
        value = argument.substr(option.name.size() + 1);
    } else if (i + 1 < arguments.size()) {
        value = arguments[++i];
    } else {
        return UsageError{std::string(option.name) + " needs a value: " + std::string(option.expected)};
    }
    if (!option.read(value, options)) {
        return UsageError{std::string(option.name) + " takes " + std::string(option.expected) + ", not \"" +
                          std::string(value) + "\""};
    }
    if (option.name == "--screenshot") given.screenshot = true;
    if (option.name == "--capture") given.capture = true;
    if (option.scope == Scope::Picture || option.scope == Scope::Look) given.pictureOption = option.name;
    if (option.scope == Scope::Look) given.lookOption = option.name;
    if (option.scope == Scope::Import) given.import = true;
    if (option.scope == Scope::OffScreen) given.gpu = true;
    return std::nullopt;
}

bool HasSwitch(const std::vector<std::string>& arguments, std::string_view name) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");  // of the options
    return std::find(arguments.begin(), end, name) != end;
}

}  // namespace

std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments) {
    HostOptions options;
    GivenOptions given;
    bool optionsEnded = false;
    const bool verbose = HasSwitch(arguments, "--verbose");
    // Options and files may be mixed; "--" ends the options.
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
        // These two end the parsing: help must be printed also for a command line with mistakes. The verbose version is
        // a run of its own with an option.
        if (argument == "--help" || (argument == "--version" && !verbose)) {
            options.action = argument == "--help" ? HostAction::Help : HostAction::Version;
            return options;
        }
        if (StoreSwitch(argument, options, given)) continue;
        // "--option value" or "--option=value".
        const std::string_view name = argument.substr(0, argument.find('='));
        const ValueOption* const option = FindValueOption(name);
        if (name != argument && IsSwitch(name)) return UsageError{std::string(name) + " takes no value"};
        if (option == nullptr) return UsageError{"unknown option " + std::string(argument)};
        if (auto error = ReadOption(*option, arguments, i, options, given)) return *error;
    }
    // All options are known now: their combination is checked, and the run follows from them.
    if (const std::string text = Conflict(options, given); !text.empty()) return UsageError{text};
    if (given.version) options.action = HostAction::Version;
    if (given.screenshot) options.action = HostAction::Screenshot;
    if (given.capture) options.action = HostAction::Capture;
    if (given.info) options.action = HostAction::Info;
    if (given.convert) {
        options.action = HostAction::Convert;
        options.exportPath = options.files.back();
        options.files.pop_back();
    }
    return options;
}

std::string HelpText() {
    const std::string scans = ExtensionList(IsImportedScan, "and"), meshes = ExtensionList(IsImportedMesh, "and");
    const std::string written = ExtensionList(IsExported, "or");
    return "Usage: scenepane [options] FILE...\n"
           "       scenepane --screenshot OUT.png [options] FILE...\n"
           "       scenepane --capture OUT.png [options] FILE...\n"
           "       scenepane --info [--json] [options] FILE...\n"
           "       scenepane --convert [options] IN OUT\n"
           "Shows optical scans (" +
           scans + " files) and meshes (" + meshes +
           " files) in a window,\n"
           "as a picture, or as numbers.\n"
           "\n"
           "Without a display:\n"
           "  --screenshot OUT.png  render the scene, fitted to the picture, into a PNG file\n"
           "  --capture OUT.png     render the whole scene at 2048x2048, smooth shaded, whatever the window's\n"
           "                        size; --size, --draw-mode and --shadows have no meaning with it\n"
           "  --info                print what each file holds; needs no OpenGL either\n"
           "  --json                with --info: print one JSON object\n"
           "  --convert IN OUT      write what IN holds, a scan or a mesh, as the " +
           written +
           " file OUT; needs no\n"
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
           "Without a window:\n"
           "  --gpu N|software      draw with graphics device N, from 0 in the order of EGL, or with the processor; "
           "else\n"
           "                        with the first device that can, and with the processor where none can\n"
           "\n"
           "  --help                print this text\n"
           "  --version             print the version\n"
           "  --version --verbose   print the version, and the device, driver and OpenGL version that draw without a\n"
           "                        window\n"
           "  --                    what follows are file names\n"
           "\n"
           "Exit status: 0 when every file added an object and all that was asked for was written, 1 when not, 2 for\n"
           "wrong usage.\n";
}

std::string VersionText() { return std::string(kProgramName) + ' ' + kProgramVersion + '\n'; }
