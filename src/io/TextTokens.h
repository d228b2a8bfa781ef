// Tokens of a text between blanks, tabs, line feeds and carriage returns, found 64 characters at a time.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

constexpr bool IsTokenSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Notes where every 64th token starts, from the first on.
/// @return number of tokens
[[nodiscard]] std::int64_t IndexTokens(std::string_view text, std::vector<std::int64_t>& startOfEvery64th);

/// @param at  start of a token, or `end`
/// @return start of the token so many behind it; `end` when there is none
[[nodiscard]] const char* SkipTokens(const char* at, const char* end, std::int64_t tokens);
