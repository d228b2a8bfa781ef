// Matching is by the literal parts between the places; the tables are short, and messages are few. The rows are in
// MessageRows.cpp.
#include "MessageTable.h"

#include <QCoreApplication>
#include <array>
#include <optional>

#include "DebugCapture.h"

namespace {

/// The texts in the places %1 to %9.
using Places = std::array<std::string, 9>;

bool IsPlace(std::string_view text) { return text.size() >= 2 && text[0] == '%' && text[1] >= '1' && text[1] <= '9'; }

/// Matches from the front: a place gets as little as the rest of the pattern allows.
bool Matches(std::string_view text, std::string_view pattern, Places& places) {
    const std::size_t place = pattern.find('%');
    const std::string_view literal = pattern.substr(0, place);
    if (!text.starts_with(literal)) return false;
    text.remove_prefix(literal.size());
    if (place == std::string_view::npos) return text.empty();
    pattern.remove_prefix(place);
    if (!IsPlace(pattern)) return false;
    std::string& part = places[static_cast<std::size_t>(pattern[1] - '1')];
    pattern.remove_prefix(2);
    for (std::size_t length = 1; length <= text.size(); ++length) {
        if (!Matches(text.substr(length), pattern, places)) continue;
        part = text.substr(0, length);
        return true;
    }
    return false;
}

/// The first row whose pattern matches, with its places filled into @p sentenceOf(row).
template <class Pattern, class Sentence>
std::optional<std::string> Filled(std::string_view text, Pattern patternOf, Sentence sentenceOf) {
    for (const MessageRow& row : MessageRows()) {
        Places places;
        if (Matches(text, patternOf(row), places)) return FilledSentence(sentenceOf(row), places);
    }
    return std::nullopt;
}

/// The same for a text that may end with a position in parentheses, which is kept.
template <class Pattern, class Sentence>
std::string Replaced(std::string_view text, Pattern patternOf, Sentence sentenceOf) {
    if (const auto whole = Filled(text, patternOf, sentenceOf)) return *whole;
    const std::size_t detail = text.ends_with(')') ? text.rfind(" (") : std::string_view::npos;
    if (detail == std::string_view::npos) return std::string(text);
    const auto sentence = Filled(text.substr(0, detail), patternOf, sentenceOf);
    return sentence ? *sentence + std::string(text.substr(detail)) : std::string(text);
}

const char* TextOf(const MessageRow& row) { return row.text; }
const char* SentenceOf(const MessageRow& row) { return row.sentence; }

/// @p text by its parts between separators, each through @p change.
template <class Change>
std::string EachPart(std::string_view text, std::string_view separator, Change change) {
    std::string changed;
    for (;;) {
        const std::size_t end = text.find(separator);
        changed += change(text.substr(0, end));
        if (end == std::string_view::npos) return changed;
        changed += separator;
        text.remove_prefix(end + separator.size());
    }
}

}  // namespace

std::string FilledSentence(std::string_view sentence, std::span<const std::string> parts) {
    std::string filled;
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        const bool isPlace = IsPlace(sentence.substr(i));
        const std::size_t part = isPlace ? static_cast<std::size_t>(sentence[i + 1] - '1') : parts.size();
        if (part < parts.size()) {
            filled += parts[part];
            ++i;
        } else {
            filled += sentence[i];
        }
    }
    return filled;
}

std::string PlainWords(std::string_view line) { return Replaced(WithoutFunctionName(line), TextOf, SentenceOf); }

std::string PlainLines(std::string_view text) {
    std::string lines = EachPart(text, "\n", PlainWords);
    return JoinLines(lines);
}

std::string TranslatedWords(std::string_view line) {
    return EachPart(line, "; ", [](std::string_view part) {
        std::string translated;
        return Replaced(part, SentenceOf, [&translated](const MessageRow& row) -> const std::string& {
            return translated = QCoreApplication::translate("Messages", row.sentence).toStdString();
        });
    });
}
