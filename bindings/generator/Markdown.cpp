// Texts of docstrings as Markdown.
#include "Markdown.h"

#include <cctype>

#include "TextParts.h"

namespace bindings {
namespace {

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// Whether a line that starts with this word would be a list, a heading, a quotation or a table.
bool IsMarkupAtLineStart(std::string_view word) {
    if (word.empty()) return false;
    if (word == "-" || word == "+" || word == "*" || word.starts_with('#') || word.starts_with('>') ||
        word.starts_with('|') || word.starts_with('='))
        return true;
    const std::size_t digits = word.find_first_not_of("0123456789");
    return digits != 0 && digits == word.size() - 1 && (word.back() == '.' || word.back() == ')');
}

std::string WrappedParagraph(std::string_view text, std::string_view indent, std::size_t width) {
    std::string lines;
    std::size_t column = indent.size();
    for (const std::string_view word : TextParts(text, " ")) {
        if (word.empty()) continue;
        if (!lines.empty() && column + 1 + word.size() > width && !IsMarkupAtLineStart(word)) {
            lines.append("\n").append(indent);
            column = indent.size();
        } else if (!lines.empty()) {
            lines.append(" ");
            ++column;
        }
        lines.append(word);
        column += word.size();
    }
    return lines;
}

}  // namespace

std::string Prose(std::string_view text, const std::set<std::string>& names) {
    std::string prose;
    prose.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i;
        while (end < text.size() && IsWordCharacter(text[end])) ++end;
        if (end == i) {
            if (std::string_view("\\`*[]<>|").find(text[i]) != std::string_view::npos) prose += '\\';
            prose += text[i++];
            continue;
        }
        const std::string_view word = text.substr(i, end - i);
        i = end;
        if (!names.contains(std::string(word))) {
            // Within a word an underscore is none of markup.
            if (word.starts_with('_')) prose += '\\';
            prose.append(word);
            continue;
        }
        const bool isCall = text.substr(i).starts_with("()");
        prose.append("[").append(word).append(isCall ? "()]" : "]");
        if (isCall) i += 2;
        // "[Name](" would start the address of the link, and "[Name]:" its definition.
        if (i < text.size() && (text[i] == '(' || text[i] == ':')) prose += '\\';
    }
    return prose;
}

std::string Wrapped(std::string_view text, std::string_view indent, std::size_t width) {
    std::string lines;
    for (const std::string_view paragraph : TextParts(text, "\n\n")) {
        if (!lines.empty()) lines.append("\n\n").append(indent);
        lines.append(WrappedParagraph(paragraph, indent, width));
    }
    return lines;
}

std::string Anchor(std::string_view heading) {
    std::string anchor;
    anchor.reserve(heading.size());
    for (const char c : heading) {
        if (IsWordCharacter(c) || c == '-') anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (c == ' ') anchor += '-';
    }
    return anchor;
}

}  // namespace bindings
