// The options of a command line by the table, then the checks of what they are together.
#include "CommandLine.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "FileTypes.h"
#include "OptionTable.h"
#include "SceneFile.h"
#include "options/ArgumentParser.h"

namespace {

using ProgramOptions::Argument;
using ProgramOptions::ArgumentMistake;

/// The options that were given, for the checks of their combination.
using GivenOptions = std::vector<const Option*>;

/// The options that select the run, each once, by the numbers of their runs.
GivenOptions SelectingOptions(const GivenOptions& given) {
    GivenOptions selecting;
    for (const Option* const option : given) {
        const bool isNew = std::ranges::find(selecting, option) == selecting.end();
        if (option->selects != kNoRun && isNew) selecting.push_back(option);
    }
    std::ranges::sort(selecting, {}, &Option::selects);
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
        const std::string name(option->row.name);
        if (selecting == nullptr || !option->goesWith.empty())
            return name + " goes with " + std::string(option->goesWith) + " only";
        return name + " has no meaning with " + std::string(selecting->row.name);
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
    if (run == kConvert && options.files.back().starts_with('-'))
        return options.files.back() + ": the name of a file to write must not begin with -; write ./" +
               options.files.back();
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

/// The message about the views of several pictures; empty when their files have different names.
std::string WrongViews(const HostOptions& options, const GivenOptions& given) {
    const bool hasPlace = options.picturePath.find(kViewPlace) != std::string::npos;
    if (options.views.empty()) return hasPlace ? "{view} in the name of the picture goes with --views only" : "";
    const auto isView = [](const Option* option) { return option->row.name == "--view"; };
    if (std::ranges::any_of(given, isView)) return "--view and --views do not go together";
    if (!options.cuts.empty()) return "--cut and --views do not go together";
    return hasPlace ? "" : "--views needs {view} in the name of the picture, such as out-{view}.png";
}

/// The message about options and files that contradict each other; empty when none do.
std::string Conflict(const HostOptions& options, const GivenOptions& given) {
    const GivenOptions selecting = SelectingOptions(given);
    const Option* const first = selecting.empty() ? nullptr : selecting.front();
    const bool isVersion = std::ranges::find(selecting, kVersion, &Option::selects) != selecting.end();
    if (selecting.size() > 1 && isVersion) return "--version --verbose goes with --gpu only";
    if (selecting.size() > 1)
        return std::string(first->row.name)
            .append(" and ")
            .append(selecting[1]->row.name)
            .append(" do not go together");
    if (std::string text = MisplacedOption(given, first, !options.cuts.empty()); !text.empty()) return text;
    if (options.clip && options.clipAuto) return "--clip and --clip-auto do not go together";
    if (first == nullptr && options.usesPalette) return "--color auto goes with the runs without a window only";
    if (options.progress && options.quiet) return "--progress and --quiet do not go together";
    if (std::string text = WrongViews(options, given); !text.empty()) return text;
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

std::vector<const ProgramOptions::Row*> Rows() {
    std::vector<const ProgramOptions::Row*> rows;
    for (const Option& option : OptionTable()) rows.push_back(&option.row);
    return rows;
}

const Option& OptionOf(const ProgramOptions::Row* row) {
    return *std::ranges::find(OptionTable(), row, [](const Option& option) { return &option.row; });
}

UsageError ErrorOf(const ArgumentMistake& mistake) {
    switch (mistake.kind) {
        case ArgumentMistake::Kind::HasValue:
            return {mistake.argument + " takes no value"};
        case ArgumentMistake::Kind::NeedsValue:
            return {mistake.argument + " needs a value: " + std::string(OptionOf(mistake.row).expected)};
        case ArgumentMistake::Kind::Unknown:
            break;
    }
    return {"unknown option " + mistake.argument};
}

/// Reads the value of one option. @return the mistake; empty without one
std::string ReadOption(const Option& option, const std::string& value, HostOptions& options, GivenOptions& given) {
    const std::string name(option.row.name);
    if (!option.read(value, options)) {
        const std::string wrong = option.explain != nullptr ? ": " + option.explain(value) : ", not \"" + value + '"';
        return name + " takes " + std::string(option.expected) + wrong;
    }
    if (option.isOnce && std::ranges::find(given, &option) != given.end()) return name + " may be given only once";
    given.push_back(&option);
    return {};
}

/// Reads options and files in their order. Help, and the version without --verbose, end that: they are printed also for
/// a command line with mistakes after them.
/// @param end  receives the action that ends it
std::string ReadArguments(const std::vector<Argument>& arguments, HostOptions& options, GivenOptions& given,
                          std::optional<HostAction>* end) {
    // The verbose version is a run with an option.
    const bool verbose = std::ranges::any_of(arguments, [](const Argument& argument) {
        return argument.row != nullptr && argument.row->name == "--verbose";
    });
    FileList files = &HostOptions::files;
    for (const Argument& argument : arguments) {
        if (argument.row == nullptr) {
            if (argument.text.empty()) return "a file name is empty";
            (options.*files).push_back(argument.text);
            continue;
        }
        const Option& option = OptionOf(argument.row);
        if (option.selects == kHelp) *end = HostAction::Help;
        if (option.selects == kVersion && !verbose) *end = HostAction::Version;
        if (*end) return {};
        if (std::string mistake = ReadOption(option, argument.text, options, given); !mistake.empty()) return mistake;
        files = option.files != nullptr ? option.files : &HostOptions::files;
    }
    return {};
}

}  // namespace

std::variant<HostOptions, UsageError> ParseCommandLine(const std::vector<std::string>& arguments) {
    HostOptions options;
    GivenOptions given;
    const ProgramOptions::ParsedArguments parsed = ProgramOptions::ParseArguments(Rows(), arguments);
    std::optional<HostAction> end;
    if (const std::string text = ReadArguments(parsed.arguments, options, given, &end); !text.empty())
        return UsageError{text};
    if (end) {
        options.action = *end;
        return options;
    }
    if (parsed.mistake) return ErrorOf(*parsed.mistake);
    // All options are known now: their combination is checked, and the run follows from them.
    if (const std::string text = Conflict(options, given); !text.empty()) return UsageError{text};
    options.action = ActionOf(given);
    if (options.action == HostAction::Convert) {
        options.exportPath = options.files.back();
        options.files.pop_back();
    }
    return options;
}
