// Texts of docstrings as Markdown.
#pragma once
#include <set>
#include <string>
#include <string_view>

namespace bindings {

/// Plain text as Markdown: no character is markup, and the words of @p names are links, "[Name]" or "[Name()]", whose
/// definitions the caller adds.
[[nodiscard]] std::string Prose(std::string_view text, const std::set<std::string>& names);

/// Breaks paragraphs into lines of at most @p width columns, where the word at the start of a line is no markup.
/// @param text    paragraphs separated by "\n\n"
/// @param indent  start of every line but the first
[[nodiscard]] std::string Wrapped(std::string_view text, std::string_view indent = "", std::size_t width = 120);

/// The anchor of a heading: small letters, blanks as "-".
[[nodiscard]] std::string Anchor(std::string_view heading);

}  // namespace bindings
