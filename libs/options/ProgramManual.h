// What --help, the man page and the completion of the shell say about a program. All three are made from the rows that
// its command line is read by.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "options/ArgumentParser.h"

namespace ProgramOptions {

/// Options under one heading.
struct Group {
    std::string title;  ///< "Imports of scans"; may be empty
    std::vector<const Row*> rows;
};

struct Manual {
    std::string program, version;
    std::string summary;             ///< what it is, without a full stop: "view optical scans"
    std::vector<std::string> usage;  ///< without the program's name; a line feed continues the line
    std::string description;
    std::vector<Group> groups;
    /// Paragraphs after the options: heading of the man page, text.
    std::vector<std::pair<std::string, std::string>> sections;
    /// Of the man page alone: commands and what they do, and names of other pages: "simulate-scans(1)".
    std::vector<std::pair<std::string, std::string>> examples = {};
    std::string seeAlso = {};
    /// Words in braces in the texts above and of the rows, and what replaces them: {"{types}", "ply and stl"}.
    std::vector<std::pair<std::string, std::string>> replacements = {};
    Completion files = Completion::Files;  ///< of arguments that are no options
};

/// The text of --help, at most 118 characters wide; ends with a line feed.
[[nodiscard]] std::string HelpText(const Manual& manual);
/// The page in the language of man.
[[nodiscard]] std::string ManPage(const Manual& manual);
/// A script that bash reads before it completes the first command line of the program.
[[nodiscard]] std::string BashCompletion(const Manual& manual);

}  // namespace ProgramOptions
