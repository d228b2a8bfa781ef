// Tokens found 64 characters at a time compared with those found one by one.
#include "io/TextTokens.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {
std::vector<std::int64_t> StartsOneByOne(const std::string& text) {
    std::vector<std::int64_t> starts;
    bool inside = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool space = text[i] == ' ' || text[i] == 9 || text[i] == 10 || text[i] == 13;
        if (!space && !inside) starts.push_back(static_cast<std::int64_t>(i));
        inside = !space;
    }
    return starts;
}

void ExpectTheSameTokens(const std::string& text, std::mt19937& random) {
    const std::vector<std::int64_t> starts = StartsOneByOne(text);
    std::vector<std::int64_t> noted;
    ASSERT_EQ(IndexTokens(text, noted), static_cast<std::int64_t>(starts.size()));
    ASSERT_EQ(noted.size(), (starts.size() + 63) / 64);
    for (std::size_t i = 0; i < noted.size(); ++i) ASSERT_EQ(noted[i], starts[64 * i]);
    if (starts.empty()) return;
    const char* const end = text.data() + text.size();
    for (int i = 0; i < 20; ++i) {
        const std::size_t from = random() % starts.size();
        const std::size_t step = random() % (i < 10 ? 9 : starts.size() + 2);
        const char* const expected = from + step < starts.size() ? text.data() + starts[from + step] : end;
        ASSERT_EQ(SkipTokens(text.data() + starts[from], end, static_cast<std::int64_t>(step)), expected);
    }
}

TEST(TextTokens, AreThoseThatASearchByCharacterFinds) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        const auto spacing = 1 + random() % 20;  // from long tokens to single characters
        std::string text(random() % (round < 2900 ? 400 : 40000), '\0');
        for (char& c : text) {
            const auto kind = random() % 20;
            c = kind < spacing ? " \t\n\r"[random() % 4] : static_cast<char>(random());
        }
        ExpectTheSameTokens(text, random);
    }
}

TEST(TextTokens, CanHaveOneCharacterEach) {
    std::mt19937 random(8);
    std::string text;
    for (int i = 0; i < 500; ++i) text += "7 ";
    ExpectTheSameTokens(text, random);
    ExpectTheSameTokens(' ' + text, random);
}

TEST(TextTokens, AreSeparatedByFourCharactersOnly) {
    for (int c = 0; c < 256; ++c) {
        const std::string text = std::string("a") + static_cast<char>(c) + "b";
        std::vector<std::int64_t> noted;
        EXPECT_EQ(IndexTokens(text, noted), c == 9 || c == 10 || c == 13 || c == 32 ? 2 : 1) << c;
    }
}
}  // namespace
