// Parsing of the command line: a table of the options, then the checks of what they are together. Numbers are read by
// std::from_chars, whose result does not depend on the locale.
#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "FileTypes.h"
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
    options.given.skip = skip.has_value();
    return skip.has_value();
}

bool ReadConfidence(std::string_view text, HostOptions& options) {
    const auto confidence = WholeNumber<float>(text);
    if (!confidence || !std::isfinite(*confidence)) return false;
    options.import.confidence = *confidence;
    options.given.confidence = true;
    return true;
}

bool ReadColor(std::string_view text, HostOptions& options) {
    // from_chars accepts a minus sign, which is no digit of a colour.
    if (text.size() != 6 || text.front() == '-') return false;
    const auto rgb = WholeNumber<std::int32_t>(text, 16);
    if (!rgb) return false;
    // RRGGBB to 0x00BBGGRR.
    options.import.color = ((*rgb & 0xFF) << 16) | (*rgb & 0xFF00) | (*rgb >> 16);
    options.given.color = true;
    return true;
}

/// A finite number. One that is too small for a float is 0; one that is too small for a double is refused, as
/// std::from_chars does not report on which side a number is out of range.
std::optional<float> FiniteNumber(std::string_view text) {
    const auto number = WholeNumber<float>(text);
    if (number) return std::isfinite(*number) ? number : std::nullopt;
    const auto wide = WholeNumber<double>(text);
    return wide && std::abs(*wide) < 1.0 ? std::optional(0.0f) : std::nullopt;
}

bool ReadClip(std::string_view text, HostOptions& options) {
    std::array<float, 6> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        // The last number ends with the text: one more comma is no part of a number.
        const std::size_t end = i + 1 < numbers.size() ? std::min(text.find(','), text.size()) : text.size();
        const auto number = FiniteNumber(text.substr(0, end));
        if (!number) return false;
        numbers[i] = *number;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const auto& [cx, cy, cz, nx, ny, nz] = numbers;
    if (nx == 0.0f && ny == 0.0f && nz == 0.0f) return false;
    options.clip = ClipPlane{{cx, cy, cz}, {nx, ny, nz}};
    return true;
}

bool ReadGpu(std::string_view text, HostOptions& options) {
    const auto number = IntegerIn(text, 0, kMaxGpu);
    if (!number && text != "software") return false;
    options.gpu = number ? *number : KV_ScenePane::WindowRequest::kSoftware;
    return true;
}

/// The name of a file; the last one counts.
template <std::string HostOptions::*file>
bool ReadFileName(std::string_view text, HostOptions& options) {
    options.*file = text;
    return !text.empty();
}

bool ReadPick(std::string_view text, HostOptions& options) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return false;
    const auto x = IntegerIn(text.substr(0, comma), 0, kMaxSide - 1);
    const auto y = IntegerIn(text.substr(comma + 1), 0, kMaxSide - 1);
    if (!x || !y) return false;
    options.picks.push_back({*x, *y});
    return true;
}

using FileList = std::vector<std::string> HostOptions::*;

/// Appends to one of the lists of files.
template <FileList list>
bool AddFileName(std::string_view text, HostOptions& options) {
    if (text.empty()) return false;
    (options.*list).emplace_back(text);
    return true;
}

template <bool HostOptions::*flag>
bool SetFlag(std::string_view, HostOptions& options) {
    options.*flag = true;
    return true;
}

bool AcceptSwitch(std::string_view, HostOptions&) { return true; }

bool ReadCut(std::string_view text, HostOptions& options) {
    auto lasso = ParseLasso(text);
    auto* const cut = std::get_if<LassoCut>(&lasso);
    if (cut != nullptr) options.cuts.push_back(std::move(*cut));
    return cut != nullptr;
}

/// What is wrong with an invalid value of --cut, which may be too long to be quoted.
std::string CutError(std::string_view text) {
    const auto lasso = ParseLasso(text);
    const auto* const error = std::get_if<LassoError>(&lasso);
    return error == nullptr ? std::string() : error->text;
}

/// The runs as bits, for the sets of runs that an option applies to.
enum Run : unsigned {
    kWindow = 1,
    kScreenshot = 2,
    kCapture = 4,
    kPick = 8,
    kInfo = 16,
    kConvert = 32,
    kVersion = 64,
    kSaveCuts = 128,
    kExport = 256,
    kAlign = 512,
    /// Beside the bit of a run that --cut goes with: it has a view, which it may not have without lassos.
    kCutting = 1024,
    kNoRun = 0,
    kPictures = kWindow | kScreenshot | kCapture,
    kImports = kPictures | kPick | kInfo | kConvert | kSaveCuts | kExport | kAlign,
    kAllRuns = kImports | kVersion
};

struct Option {
    std::string_view name;
    /// What a valid value is, for the message about an invalid one. Empty for an option without a value.
    std::string_view expected;
    /// The run that the option selects.
    Run selects;
    /// The runs that the option applies to, a set of Run.
    unsigned runs;
    /// Reads the value and stores it; false for an invalid one.
    bool (*read)(std::string_view text, HostOptions& options);
    /// The runs of an option that does not apply to the window, as part of a sentence.
    std::string_view goesWith = {};
    /// What is wrong with an invalid value; null: the value is quoted.
    std::string (*explain)(std::string_view text) = nullptr;
    /// Of an option without a value: the list that the file names after it belong to, up to the next option.
    FileList files = nullptr;
    /// Of most options that are given several times the last one counts. Several of this one are a mistake: they look
    /// as if all of them counted.
    bool isOnce = false;
};

// --help is read before all others. Of two options that select a run, a conflict names the upper one first.
constexpr Option kOptions[] = {
    {"--pick", "X,Y, two whole numbers from 0 to 16383", kPick, kAllRuns, ReadPick},
    {"--align", "a file name", kAlign, kAllRuns, ReadFileName<&HostOptions::pairFile>, "", nullptr, nullptr, true},
    {"--convert", "", kConvert, kAllRuns, AcceptSwitch},
    {"--save-cuts", "", kSaveCuts, kAllRuns, AcceptSwitch},
    {"--export", "a file name", kExport, kAllRuns, ReadFileName<&HostOptions::exportPath>},
    {"--info", "", kInfo, kAllRuns, AcceptSwitch},
    {"--screenshot", "a file name", kScreenshot, kAllRuns, ReadFileName<&HostOptions::picturePath>},
    {"--capture", "a file name", kCapture, kAllRuns, ReadFileName<&HostOptions::picturePath>},
    {"--version", "", kVersion, kAllRuns, AcceptSwitch},
    {"--json", "", kNoRun, kInfo | kPick | kAlign, SetFlag<&HostOptions::json>, "--info, --pick and --align"},
    {"--verbose", "", kNoRun, kVersion, SetFlag<&HostOptions::verbose>, "--version"},
    {"--gpu", "the number of a graphics device from 0 to 31, or software", kNoRun,
     kScreenshot | kCapture | kPick | kVersion | kCutting, ReadGpu,
     "--screenshot, --capture, --pick, --cut and --version --verbose"},
    {"--size", "WIDTHxHEIGHT, each from 1 to 16384", kNoRun, kWindow | kScreenshot | kPick | kCutting, ReadSize},
    {"--view", "a whole number from 0 to 7", kNoRun, kPictures | kPick | kCutting, ReadView},
    {"--draw-mode", "a whole number from 0 to 7", kNoRun, kWindow | kScreenshot, ReadDrawMode},
    {"--zoom", "a number from 0.1 to 10", kNoRun, kPictures | kPick | kCutting, ReadZoom},
    {"--shadows", "", kNoRun, kWindow | kScreenshot, SetFlag<&HostOptions::shadows>},
    {"--cut",
     "MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside or freehand-visible",
     kNoRun, kScreenshot | kInfo | kSaveCuts | kExport, ReadCut, "--screenshot, --info, --save-cuts and --export",
     CutError},
    {"--clip", "CX,CY,CZ,NX,NY,NZ, six finite numbers with a normal other than 0,0,0", kNoRun,
     kScreenshot | kSaveCuts | kCutting, ReadClip, "--screenshot, --save-cuts and --cut"},
    {"--clip-auto", "", kNoRun, kScreenshot | kInfo | kSaveCuts | kCutting, SetFlag<&HostOptions::clipAuto>,
     "--screenshot, --info, --save-cuts and --cut"},
    {"--points", "a file name", kNoRun, kPictures, AddFileName<&HostOptions::pointFiles>},
    {"--lines", "a file name", kNoRun, kPictures, AddFileName<&HostOptions::lineFiles>},
    {"--needles", "a file name", kNoRun, kPictures, AddFileName<&HostOptions::needleFiles>},
    {"--moving", "", kNoRun, kAlign, AcceptSwitch, "--align", nullptr, &HostOptions::movingFiles},
    {"--fixed", "", kNoRun, kAlign, AcceptSwitch, "--align", nullptr, &HostOptions::fixedFiles},
    {"--transforms", "a file name", kNoRun, kImports, ReadFileName<&HostOptions::transformFile>, "", nullptr, nullptr,
     true},
    {"--save-transforms", "a file name", kNoRun, kAlign, ReadFileName<&HostOptions::savedTransforms>, "--align",
     nullptr, nullptr, true},
    {"--skip", "a whole number from 1 to 32767", kNoRun, kImports, ReadSkip},
    {"--confidence", "a number", kNoRun, kImports, ReadConfidence},
    {"--color", "six hexadecimal digits RRGGBB", kNoRun, kImports, ReadColor},
    {"--reset-settings", "", kNoRun, kWindow, SetFlag<&HostOptions::resetsSettings>},
};

/// Null for an unknown option.
const Option* FindOption(std::string_view name) {
    const auto* const found = std::ranges::find(kOptions, name, &Option::name);
    return found == std::end(kOptions) ? nullptr : found;
}

/// The options that were given, for the checks of their combination.
using GivenOptions = std::vector<const Option*>;

/// The options that select the run; the first ones of the table first, each once.
GivenOptions SelectingOptions(const GivenOptions& given) {
    GivenOptions selecting;
    for (const Option& option : kOptions) {
        if (option.selects != kNoRun && std::ranges::find(given, &option) != given.end()) selecting.push_back(&option);
    }
    return selecting;
}

/// The message about an option that does not apply to the run; empty when all of them do.
/// @param selecting  the option that selects the run; null for the window
/// @param isCutting  with at least one lasso
std::string MisplacedOption(const GivenOptions& given, const Option* selecting, bool isCutting) {
    const Run run = selecting == nullptr ? kWindow : selecting->selects;
    const unsigned runs = isCutting ? run | kCutting : run;
    for (const Option* const option : given) {
        if ((option->runs & runs) != 0) continue;
        if (run == kVersion) return "--version --verbose goes with --gpu only";
        const std::string name(option->name);
        if (selecting == nullptr || !option->goesWith.empty())
            return name + " goes with " + std::string(option->goesWith) + " only";
        return name + " has no meaning with " + std::string(selecting->name);
    }
    return {};
}

/// The message about the files of --align; empty when there are some of both kinds and no others.
std::string WrongAlignFiles(const HostOptions& options) {
    if (!options.files.empty()) return options.files.front() + ": --align needs every file after --moving or --fixed";
    if (options.movingFiles.empty()) return "--align needs at least one file after --moving";
    if (options.fixedFiles.empty()) return "--align needs at least one file after --fixed";
    for (const std::string& file : options.movingFiles)
        if (std::ranges::find(options.fixedFiles, file) != options.fixedFiles.end())
            return file + " is after --moving and after --fixed";
    return {};
}

/// The message about a number of files that the run cannot work with; empty for a good one.
std::string WrongFiles(const HostOptions& options, Run run) {
    const bool hasMarks = !options.lineFiles.empty() || !options.needleFiles.empty();
    if (run == kVersion && !options.files.empty()) return "--version --verbose goes with --gpu only";
    if (run == kConvert && options.files.size() != 2)
        return "--convert needs two files, the one to read and the one to write";
    if (run == kConvert) {
        const std::string reason = ExportRefusal(options.files.back());
        return reason.empty() ? "" : options.files.back() + ": " + reason;
    }
    if (run == kExport && options.files.size() != 1) return "--export writes one object and needs one file to read";
    if (run == kExport) {
        const std::string reason = ExportRefusal(options.exportPath);
        return reason.empty() ? "" : options.exportPath + ": " + reason;
    }
    if (run == kAlign) return WrongAlignFiles(options);
    if (!options.files.empty()) return {};
    if (run == kSaveCuts) return "--save-cuts needs at least one file";
    if (run == kInfo) return "--info needs at least one file";
    if (run == kPick) return "--pick needs at least one file";
    if (run == kScreenshot && !hasMarks && options.pointFiles.empty()) return "--screenshot needs at least one file";
    if (run == kCapture && !hasMarks)
        return options.pointFiles.empty() ? "--capture needs at least one file"
                                          : "--capture draws no free points and needs at least one other file";
    return {};
}

/// The message about the first pixel outside the drawing area; empty when all are inside.
std::string PixelOutside(const HostOptions& options) {
    for (const PickPixel& pixel : options.picks) {
        if (pixel.x >= options.width || pixel.y >= options.height)
            return "--pick " + std::to_string(pixel.x) + ',' + std::to_string(pixel.y) + " is outside of the " +
                   std::to_string(options.width) + 'x' + std::to_string(options.height) + " pixels";
    }
    return {};
}

/// The message about options and files that contradict each other; empty when none do.
std::string Conflict(const HostOptions& options, const GivenOptions& given) {
    const GivenOptions selecting = SelectingOptions(given);
    const Option* const first = selecting.empty() ? nullptr : selecting.front();
    const bool isVersion = std::ranges::find(selecting, kVersion, &Option::selects) != selecting.end();
    if (selecting.size() > 1 && isVersion) return "--version --verbose goes with --gpu only";
    if (selecting.size() > 1)
        return std::string(first->name).append(" and ").append(selecting[1]->name).append(" do not go together");
    if (std::string text = MisplacedOption(given, first, !options.cuts.empty()); !text.empty()) return text;
    if (options.clip && options.clipAuto) return "--clip and --clip-auto do not go together";
    const Run run = first == nullptr ? kWindow : first->selects;
    if (run == kSaveCuts && options.cuts.empty() && !options.clip && !options.clipAuto)
        return "--save-cuts needs --cut, --clip or --clip-auto";
    if (run == kExport && options.cuts.empty()) return "--export needs --cut; --convert writes a file without cuts";
    if (std::string text = WrongFiles(options, run); !text.empty()) return text;
    return PixelOutside(options);
}

/// The action of a command line without a conflict.
HostAction ActionOf(const GivenOptions& given) {
    const GivenOptions selecting = SelectingOptions(given);
    switch (selecting.empty() ? kWindow : selecting.front()->selects) {
        case kScreenshot:
            return HostAction::Screenshot;
        case kCapture:
            return HostAction::Capture;
        case kPick:
            return HostAction::Pick;
        case kInfo:
            return HostAction::Info;
        case kConvert:
            return HostAction::Convert;
        case kSaveCuts:
            return HostAction::SaveCuts;
        case kExport:
            return HostAction::Export;
        case kAlign:
            return HostAction::Align;
        case kVersion:
            return HostAction::Version;
        default:
            return HostAction::Window;
    }
}

/// Reads one option, "--option", "--option value" or "--option=value".
/// @param i  position of the option among the arguments; advanced by one when the value is the next argument
std::optional<UsageError> ReadOption(const std::vector<std::string>& arguments, std::size_t& i, HostOptions& options,
                                     GivenOptions& given) {
    const std::string_view argument = arguments[i];
    const std::string_view name = argument.substr(0, argument.find('='));
    const bool hasEquals = name.size() < argument.size();
    const Option* const option = FindOption(name);
    if (hasEquals && (name == "--help" || (option != nullptr && option->expected.empty())))
        return UsageError{std::string(name) + " takes no value"};
    if (option == nullptr) return UsageError{"unknown option " + std::string(argument)};
    std::string_view value;
    if (hasEquals) {
        value = argument.substr(name.size() + 1);
    } else if (!option->expected.empty()) {
        if (i + 1 == arguments.size())
            return UsageError{std::string(name) + " needs a value: " + std::string(option->expected)};
        value = arguments[++i];
    }
    if (!option->read(value, options)) {
        const std::string wrong =
            option->explain != nullptr ? ": " + option->explain(value) : ", not \"" + std::string(value) + "\"";
        return UsageError{std::string(name) + " takes " + std::string(option->expected) + wrong};
    }
    if (option->isOnce && std::ranges::find(given, option) != given.end())
        return UsageError{std::string(name) + " may be given only once"};
    given.push_back(option);
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
    FileList files = &HostOptions::files;
    const bool verbose = HasSwitch(arguments, "--verbose");
    // Options and files may be mixed; "--" ends the options.
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (optionsEnded || argument.empty() || argument.front() != '-') {
            if (argument.empty()) return UsageError{"a file name is empty"};
            (options.*files).emplace_back(argument);
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
        if (auto error = ReadOption(arguments, i, options, given)) return *error;
        files = given.back()->files != nullptr ? given.back()->files : &HostOptions::files;
    }
    // All options are known now: their combination is checked, and the run follows from them.
    if (const std::string text = Conflict(options, given); !text.empty()) return UsageError{text};
    options.action = ActionOf(given);
    if (options.action == HostAction::Convert) {
        options.exportPath = options.files.back();
        options.files.pop_back();
    }
    return options;
}
