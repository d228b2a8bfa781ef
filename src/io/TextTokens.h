// Tokens of a text, separated by spaces, tabs, line feeds and carriage returns. They are found 64 characters at a time.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

constexpr bool IsTokenSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Writes down where every 64th token starts, beginning with the first. Costs one pass over the text.
/// @return number of tokens
[[nodiscard]] std::int64_t IndexTokens(std::string_view text, std::vector<std::int64_t>& startOfEvery64th);

/// @param at      start of a token, or `end`
/// @param tokens  how many to move on
/// @return start of that token; `end` when there is none
[[nodiscard]] const char* SkipTokens(const char* at, const char* end, std::int64_t tokens);
