// The options of the program: one row each, from which the command line is read, and --help, the man page and the
// completion of the shell are made.
#pragma once
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "options/ArgumentParser.h"

/// The runs as bits, for the sets of runs that an option applies to. Of two options that select a run, a conflict names
/// the one with the lower number first.
enum Run : unsigned {
    kPick = 1,
    kAlign = 2,
    kConvert = 4,
    kSaveCuts = 8,
    kExport = 16,
    kInfo = 32,
    kScreenshot = 64,
    kCapture = 128,
    kVersion = 256,
    kHelp = 512,
    kWindow = 1024,
    /// Beside the bit of a run that --cut goes with: it has a view, which it may not have without lassos.
    kCutting = 2048,
    kNoRun = 0,
    kPictures = kWindow | kScreenshot | kCapture,
    kImports = kPictures | kPick | kInfo | kConvert | kSaveCuts | kExport | kAlign,
    kAllRuns = kImports | kVersion | kHelp
};

/// The headings of --help, in their order.
enum class OptionGroup {
    Results,
    Imports,
    Places,
    Markers,
    Pictures,
    Clipping,
    Cuts,
    Alignment,
    Window,
    Drawing,
    General
};

using FileList = std::vector<std::string> HostOptions::*;

struct Option {
    ProgramOptions::Row row;
    /// What a valid value is, for the message about an invalid one. Empty for an option without a value.
    std::string_view expected = {};
    OptionGroup group = OptionGroup::General;
    /// The run that the option selects.
    Run selects = kNoRun;
    /// The runs that the option applies to, a set of Run.
    unsigned runs = kAllRuns;
    /// Of most options that are given several times the last one counts. Several of this one are a mistake: they look
    /// as if all of them counted.
    bool isOnce = false;
    /// Reads the value and stores it; false for an invalid one.
    bool (*read)(std::string_view text, HostOptions& options) = nullptr;
    /// The runs of an option that does not apply to the window, as part of a sentence.
    std::string_view goesWith = {};
    /// What is wrong with an invalid value; null: the value is quoted.
    std::string (*explain)(std::string_view text) = nullptr;
    /// Of an option without a value: the list that the file names after it belong to, up to the next option.
    FileList files = nullptr;
};

/// All options, those of a group together.
[[nodiscard]] std::span<const Option> OptionTable();
