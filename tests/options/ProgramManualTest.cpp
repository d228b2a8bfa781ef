#include "options/ProgramManual.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>

#include "support/ScratchFolder.h"

namespace ProgramOptions {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::array kRows = {
    Row{.name = "--size", .shortName = "-s", .value = "WxH", .help = "a size of {types}; that's all"},
    Row{.name = "--mode", .value = "M", .help = "a mode", .words = "flat {smooth}"},
    Row{.name = "--in", .value = "FILE", .help = "a file", .completion = Completion::Files},
    Row{.name = "--to", .value = "DIR", .help = "a folder", .completion = Completion::Folders},
    Row{.name = "--with-a-long-name", .value = "SOMETHING", .help = "text"},
    Row{.name = "--convert", .help = "write one", .followedBy = "IN OUT"}};

Manual Example() {
    Manual manual{.program = "look-at",
                  .version = "1.2",
                  .summary = "look at files",
                  .usage = {"[options] FILE...", "--convert IN\nOUT"},
                  .description = "Looks at {types} files.",
                  .groups = {{"First", {&kRows[0], &kRows[1]}}, {"", {&kRows[2], &kRows[3], &kRows[4], &kRows[5]}}},
                  .sections = {{"Exit status", "0 or 1."}},
                  .examples = {{"look-at a.ply", "Looks at one."}},
                  .seeAlso = "other(1)",
                  .replacements = {{"{types}", "ply and stl"}, {"{smooth}", "round, smooth"}}};
    return manual;
}

TEST(HelpTextOfAManual, ListsTheOptionsInTwoColumns) {
    EXPECT_EQ(HelpText(Example()),
              "Usage: look-at [options] FILE...\n"
              "       look-at --convert IN\n"
              "               OUT\n"
              "Looks at ply and stl files.\n"
              "\n"
              "First:\n"
              "  -s, --size WxH        a size of ply and stl; that's all\n"
              "  --mode M              a mode\n"
              "\n"
              "  --in FILE             a file\n"
              "  --to DIR              a folder\n"
              "  --with-a-long-name SOMETHING\n"
              "                        text\n"
              "  --convert IN OUT      write one\n"
              "\n"
              "Exit status: 0 or 1.\n");
}

TEST(HelpTextOfAManual, HasNoLineOfMoreThan118Characters) {
    std::string words;
    for (int i = 0; i < 100; ++i) words += "abc ";
    const Row row{.name = "--x", .help = words};
    Manual manual = Example();
    manual.description = words;
    manual.groups = {{"", {&row}}};
    const std::string text = HelpText(manual);
    std::size_t longest = 0, count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        const std::size_t end = text.find('\n', at);
        longest = std::max(longest, end - at);
        at = end + 1;
    }
    EXPECT_LE(longest, 118u);
    EXPECT_GT(longest, 114u) << "the lines are filled";
    EXPECT_GT(count, 8u);
}

TEST(ManPageOfAManual, HasTheSameTextsInTheLanguageOfMan) {
    const std::string page = ManPage(Example());
    EXPECT_THAT(page, HasSubstr(".TH LOOK\\-AT 1 \"\" \"look\\-at 1.2\" \"User Commands\"\n"));
    EXPECT_THAT(page, HasSubstr(".SH NAME\nlook\\-at \\- look at files\n"));
    EXPECT_THAT(page, HasSubstr("\\fBlook\\-at\\fR [options] FILE...\n.br\n\\fBlook\\-at\\fR \\-\\-convert IN OUT\n"));
    EXPECT_THAT(page, HasSubstr(".SS First\n.TP\n\\fB\\-s\\fR, \\fB\\-\\-size\\fR \\fIWxH\\fR\na size of ply and stl"));
    EXPECT_THAT(page, HasSubstr(".SH EXIT STATUS\n0 or 1.\n"));
    EXPECT_THAT(page, HasSubstr(".SH EXAMPLES\n.TP\n\\fBlook\\-at a.ply\\fR\nLooks at one.\n.SH SEE ALSO\nother(1)\n"));
    EXPECT_THAT(HelpText(Example()), testing::Not(HasSubstr("Looks at one.")));
}

TEST(ManPageOfAManual, KeepsLettersThatManWouldReadAsCommands) {
    const Row row{.name = "--x", .help = ".TH is no command, and \\n no escape"};
    Manual manual = Example();
    manual.groups = {{"", {&row}}};
    EXPECT_THAT(ManPage(manual), HasSubstr("\n\\&.TH is no command, and \\en no escape\n"));
}

/// What bash offers for the last of the words.
std::vector<std::string> Offered(const ScratchFolder& folder, const std::string& words) {
    std::ofstream(folder.Path() / "completion") << BashCompletion(Example());
    const std::string command =
        "cd '" + folder.Path().string() + "' && bash -c '. ./completion; COMP_WORDS=(look-at " + words +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _look_at; printf \"%s\\n\" \"${COMPREPLY[@]}\"'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> offered;
    char line[256];
    while (pipe && std::fgets(line, sizeof line, pipe.get()) != nullptr) {
        offered.emplace_back(line);
        offered.back().pop_back();
        if (offered.back().empty()) offered.pop_back();
    }
    return offered;
}

TEST(BashCompletionOfAManual, OffersOptionsValuesAndFiles) {
    const ScratchFolder folder;
    std::ofstream(folder.Path() / "a file.ply") << 'x';
    std::filesystem::create_directory(folder.Path() / "a folder");
    EXPECT_THAT(Offered(folder, "--"),
                ElementsAre("--size", "--mode", "--in", "--to", "--with-a-long-name", "--convert"));
    EXPECT_THAT(Offered(folder, "-"),
                ElementsAre("-s", "--size", "--mode", "--in", "--to", "--with-a-long-name", "--convert"));
    EXPECT_THAT(Offered(folder, "x --wi"), ElementsAre("--with-a-long-name"));
    EXPECT_THAT(Offered(folder, "--mode s"), ElementsAre("smooth"));
    EXPECT_THAT(Offered(folder, "--mode = f"), ElementsAre("flat"));
    EXPECT_THAT(Offered(folder, "--mode ="), ElementsAre("flat", "round", "smooth"));
    EXPECT_THAT(Offered(folder, "--to a"), ElementsAre("a folder"));
    EXPECT_THAT(Offered(folder, "--in a"), testing::UnorderedElementsAre("a file.ply", "a folder"));
    EXPECT_THAT(Offered(folder, "--mode flat a"), testing::UnorderedElementsAre("a file.ply", "a folder"));
    EXPECT_THAT(Offered(folder, "--size 4"), ElementsAre());
    EXPECT_THAT(Offered(folder, "-s 4"), ElementsAre());
}

}  // namespace
}  // namespace ProgramOptions
