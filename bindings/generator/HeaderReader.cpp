// Reads the docstrings of the public headers, line by line.
#include "HeaderReader.h"

#include <algorithm>
#include <cctype>
#include <regex>

namespace bindings {
namespace {

struct Line {
    int number;
    std::string text;
};

[[noreturn]] void Fail(const std::string& place, int line, const std::string& reason) {
    throw SourceError(std::string(place).append(":").append(std::to_string(line)).append(": ").append(reason));
}

std::string Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return "";
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

std::vector<Line> LinesOf(std::string_view text) {
    std::vector<Line> lines;
    lines.reserve(static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back({static_cast<int>(lines.size()) + 1, std::string(text.substr(0, end))});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// The text of a "///" line after these characters; false for any other line.
bool IsDocLine(const std::string& line, std::string* text) {
    const std::string trimmed = Trimmed(line);
    if (!trimmed.starts_with("///")) return false;
    *text = trimmed.substr(3);
    return true;
}

// Collects the lines of one docstring: `target` is where the next line belongs.
class DocStringReader {
public:
    DocStringReader(const std::string& place, int line) : m_place(place) { m_doc.line = line; }

    void Add(const std::string& line, int number) {
        const std::string words = Trimmed(line);
        if (words.starts_with('@'))
            StartTag(words, number);
        else if (words.empty())
            m_isNewParagraph = true;
        else if (m_target != &m_doc.text && !line.starts_with("  "))
            ReturnToText(words, number);
        else
            Append(words);
    }

    DocString Finish() {
        CheckTag(m_tagLine);
        return m_doc;
    }

private:
    void Append(const std::string& words) {
        if (!m_target->empty()) *m_target += m_isNewParagraph ? "\n\n" : " ";
        m_isNewParagraph = false;
        *m_target += words;
    }

    // A tag ends: it must have had a text.
    void CheckTag(int line) const {
        if (m_target != &m_doc.text && m_target->empty()) Fail(m_place, line, "a tag without a text");
    }

    void ReturnToText(const std::string& words, int number) {
        CheckTag(number);
        if (std::islower(static_cast<unsigned char>(words.front())))
            Fail(m_place, number, "a line after a tag is neither indented nor a new sentence: \"" + words + "\"");
        m_target = &m_doc.text;
        m_isNewParagraph = true;
        Append(words);
    }

    void StartTag(const std::string& words, int number) {
        CheckTag(number);
        m_tagLine = number;
        m_isNewParagraph = false;
        const std::size_t end = std::min(words.find(' '), words.size());
        const std::string tag = words.substr(0, end), rest = Trimmed(words.substr(end));
        if (tag == "@param")
            StartParameter(rest, number);
        else if (tag == "@return")
            StartOnly(m_doc.returns, tag, rest, number);
        else if (tag == "@throws")
            StartOnly(m_doc.throws, tag, rest, number);
        else
            Fail(m_place, number, "the tag " + tag + " is not known: @param, @return and @throws are");
    }

    void StartOnly(std::string& target, const std::string& tag, const std::string& rest, int number) {
        if (!target.empty()) Fail(m_place, number, "a second " + tag);
        m_target = &target;
        *m_target = rest;
        // "TYPE  text": the type of an exception is set off by two blanks.
        const std::size_t gap = m_target->find("  ");
        if (gap != std::string::npos) m_target->replace(gap, m_target->find_first_not_of(' ', gap) - gap, ": ");
    }

    // "name, name  text": the names are separated by commas.
    void StartParameter(const std::string& rest, int number) {
        static const std::regex head(R"(^(\w+(?:, *\w+)*)(?: +(.*))?$)");
        std::smatch match;
        if (!std::regex_match(rest, match, head))
            Fail(m_place, number, "@param needs names and a text: \"" + rest + "\"");
        DocString::Parameter parameter;
        static const std::regex word(R"(\w+)");
        const std::string names = match[1];
        for (std::sregex_iterator name(names.begin(), names.end(), word), end; name != end; ++name)
            parameter.names.push_back(name->str());
        parameter.text = match[2];
        m_doc.parameters.push_back(std::move(parameter));
        m_target = &m_doc.parameters.back().text;
    }

    std::string m_place;
    DocString m_doc;
    std::string* m_target = &m_doc.text;
    int m_tagLine = 0;
    bool m_isNewParagraph = false;
};

/// The lines of a file together with the docstring that ends before a line.
class HeaderLines {
public:
    HeaderLines(std::string_view text, const std::string& place) : m_lines(LinesOf(text)), m_place(place) {}

    [[nodiscard]] const std::vector<Line>& Lines() const { return m_lines; }

    /// The docstring that ends on the line before the one at @p index; line 0 when there is none.
    [[nodiscard]] DocString DocBefore(std::size_t index) const {
        std::size_t first = index;
        std::string text;
        while (first > 0 && IsDocLine(m_lines[first - 1].text, &text)) --first;
        std::vector<std::string> lines;
        lines.reserve(index - first);
        for (std::size_t i = first; i < index; ++i) {
            (void)IsDocLine(m_lines[i].text, &text);
            lines.push_back(text);
        }
        return lines.empty() ? DocString() : ParseDocString(lines, m_place, m_lines[first].number);
    }

private:
    std::vector<Line> m_lines;
    std::string m_place;
};

/// The names of "type name, type name"; the name of an argument of an empty body is in a comment, "type /*name*/".
std::vector<std::string> ArgumentNames(const std::string& list, const std::string& place, int line) {
    static const std::regex argument(R"(^\s*[\w:*&<> ]*[\s*](?:/\*(\w+)\*/|(\w+))\s*$)");
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(std::ranges::count(list, ',')) + 1);
    if (Trimmed(list).empty()) return names;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t comma = std::min(list.find(',', start), list.size());
        const std::string part = list.substr(start, comma - start);
        std::smatch match;
        if (!std::regex_match(part, match, argument))
            Fail(place, line, "the argument \"" + Trimmed(part) + "\" is not understood");
        names.push_back(match[1].matched ? match[1] : match[2]);
        start = comma + 1;
    }
    return names;
}

}  // namespace

DocString ParseDocString(const std::vector<std::string>& lines, const std::string& place, int line) {
    DocStringReader reader(place, line);
    for (std::size_t i = 0; i < lines.size(); ++i) reader.Add(lines[i], line + static_cast<int>(i));
    return reader.Finish();
}

std::vector<DeclaredFunction> ParseFunctions(std::string_view text, const std::string& place) {
    static const std::regex declaration(R"(^virtual [\w:*& ]+[ *&](\w+)\((.*)\)\s*(?:= 0;|\{\})$)");
    const HeaderLines header(text, place);
    const std::vector<Line>& lines = header.Lines();
    std::vector<DeclaredFunction> functions;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!Trimmed(lines[i].text).starts_with("virtual ")) continue;
        DeclaredFunction function{lines[i].number, {}, {}, header.DocBefore(i)};
        std::string words = Trimmed(lines[i].text);
        while (!words.ends_with(';') && !words.ends_with("{}") && i + 1 < lines.size())
            words.append(" ").append(Trimmed(lines[++i].text));
        std::smatch match;
        if (!std::regex_match(words, match, declaration))
            Fail(place, function.line, "the declaration is not understood: \"" + words + "\"");
        function.name = match[1];
        function.argumentNames = ArgumentNames(match[2], place, function.line);
        functions.push_back(std::move(function));
    }
    return functions;
}

DocString ParseClassText(std::string_view text, std::string_view className, const std::string& place) {
    const HeaderLines header(text, place);
    const std::string head = std::string("class ").append(className).append(" {");
    const auto line = std::ranges::find(header.Lines(), head, &Line::text);
    if (line == header.Lines().end()) Fail(place, 1, "there is no \"" + head + "\"");
    DocString doc = header.DocBefore(static_cast<std::size_t>(line - header.Lines().begin()));
    if (doc.text.empty()) Fail(place, line->number, std::string(className).append(" has no docstring"));
    return doc;
}

ModeList ParseMode(std::string_view text, std::string_view name, const std::string& place) {
    static const std::regex enumerator(R"(^(\w+) = (-?\d{1,9}),?$)");
    const HeaderLines header(text, place);
    const std::vector<Line>& lines = header.Lines();
    const std::string head = std::string("enum ").append(name).append(" : ");
    std::size_t i = 0;
    while (i < lines.size() && !lines[i].text.starts_with(head)) ++i;
    if (i == lines.size()) Fail(place, 1, std::string("there is no enum ").append(name));
    const int headLine = lines[i].number;
    ModeList mode{std::string(name), header.DocBefore(i).text, {}};
    if (mode.text.empty()) Fail(place, headLine, mode.name + " has no docstring");
    for (++i; i < lines.size() && lines[i].text != "};"; ++i) {
        const std::string words = Trimmed(lines[i].text);
        if (words.empty() || words.starts_with("//")) continue;
        std::smatch match;
        if (!std::regex_match(words, match, enumerator))
            Fail(place, lines[i].number, "the value is not understood: \"" + words + "\"");
        mode.constants.push_back({match[1], std::stoi(match[2]), header.DocBefore(i).text});
    }
    if (mode.constants.empty()) Fail(place, headLine, mode.name + " has no values");
    return mode;
}

}  // namespace bindings
