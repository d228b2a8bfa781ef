#include "options/TerminalText.h"

#include <gtest/gtest.h>

namespace ProgramOptions {
namespace {

TEST(TerminalText, HasQuestionMarksForControlCharacters) {
    EXPECT_EQ(TerminalText("a\033[31mb\nc\x7F\t\r"), "a?[31mb?c???");
    EXPECT_EQ(TerminalText("a\xC2\x9B"
                           "b\xC2\x80"),
              "a?b?")
        << "U+009B starts control sequences, too";
}

TEST(TerminalText, KeepsAllOtherCharacters) {
    for (const std::string text : {"", "part 1.ply", "Zähne \xC3\xA4\xC2\xA0\xE2\x82\xAC.ply", "\xff\xe4\x80"})
        EXPECT_EQ(TerminalText(text), text);
}

}  // namespace
}  // namespace ProgramOptions
