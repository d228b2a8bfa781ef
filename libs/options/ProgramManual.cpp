// The same texts three times: as plain lines, as roff, and as the words of a shell script.
#include "options/ProgramManual.h"

#include <algorithm>
#include <cctype>

namespace ProgramOptions {
namespace {

constexpr std::size_t kWidth = 118, kTextColumn = 24;

std::string Filled(std::string text, const Manual& manual) {
    for (const auto& [word, replacement] : manual.replacements)
        for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += replacement.size())
            text.replace(at, word.size(), replacement);
    return text;
}

/// "-h, --help", or "--size WxH".
std::string Heading(const Row& row) {
    std::string text = row.shortName.empty() ? "" : std::string(row.shortName) + ", ";
    text += row.name;
    for (const std::string_view part : {row.value, row.followedBy})
        if (!part.empty()) text.append(" ").append(part);
    return text;
}

/// Words in lines of @p kWidth, which continue at a column.
class Wrapped {
public:
    Wrapped(std::string start, std::size_t column) : m_column(column), m_line(std::move(start)) {}

    void Add(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find(' '), text.size());
            AddWord(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }
    [[nodiscard]] std::string Text() const { return m_lines + m_line + '\n'; }

private:
    void AddWord(std::string_view word) {
        const bool isFirst = m_line.size() <= m_column && m_line.find_last_not_of(' ') == std::string::npos;
        if (!isFirst && m_line.size() + 1 + word.size() > kWidth) {
            m_lines += m_line + '\n';
            m_line.clear();
        }
        if (m_line.size() < m_column)
            m_line.resize(m_column, ' ');
        else if (!m_line.empty() && m_line.back() != ' ')
            m_line += ' ';
        m_line += word;
    }

    const std::size_t m_column;
    std::string m_lines, m_line;
};

std::string Paragraph(const std::string& text) {
    Wrapped wrapped("", 0);
    wrapped.Add(text);
    return wrapped.Text();
}

std::string HelpOf(const Row& row, const Manual& manual) {
    std::string start = "  " + Heading(row), before;
    if (start.size() + 2 > kTextColumn) before = std::exchange(start, "") + '\n';
    Wrapped wrapped(start, kTextColumn);
    wrapped.Add(Filled(std::string(row.help), manual));
    return before + wrapped.Text();
}

/// Text for man: no letter is a command, and a minus is the character that people search and copy.
std::string Roff(const std::string& text) {
    std::string roff;
    for (const char c : text) {
        if (c == '\\')
            roff += "\\e";
        else if (c == '-')
            roff += "\\-";
        else if ((c == '.' || c == '\'') && (roff.empty() || roff.back() == '\n'))
            roff.append("\\&").append(1, c);
        else
            roff += c;
    }
    return roff;
}

std::string Upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

std::string ManOf(const Row& row, const Manual& manual) {
    std::string text = ".TP\n";
    if (!row.shortName.empty()) text += "\\fB" + Roff(std::string(row.shortName)) + "\\fR, ";
    text += "\\fB" + Roff(std::string(row.name)) + "\\fR";
    for (const std::string_view part : {row.value, row.followedBy})
        if (!part.empty()) text += " \\fI" + Roff(std::string(part)) + "\\fR";
    return text + '\n' + Roff(Filled(std::string(row.help), manual)) + '\n';
}

/// The pattern of a case of the shell: "--size|-s".
std::string Pattern(const Row& row) {
    return std::string(row.name) + (row.shortName.empty() ? "" : '|' + std::string(row.shortName));
}

std::string CompletionOf(Completion completion) {
    switch (completion) {
        case Completion::Files:
            return "compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- \"$current\")";
        case Completion::Folders:
            return "compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- \"$current\")";
        case Completion::Nothing:
            break;
    }
    return ":";
}

std::string WordsCompletion(std::string words) {
    std::erase(words, ',');
    return "mapfile -t COMPREPLY < <(compgen -W '" + words + "' -- \"$current\")";
}

}  // namespace

std::string HelpText(const Manual& manual) {
    std::string text;
    const std::string start = "Usage: " + manual.program + ' ', next(start.size() - manual.program.size() - 1, ' ');
    for (const std::string& usage : manual.usage) {
        std::string lines = usage;
        for (std::size_t at = 0; (at = lines.find('\n', at)) != std::string::npos; at += start.size() + 1)
            lines.insert(at + 1, start.size(), ' ');
        text += (text.empty() ? start : next + manual.program + ' ') + lines + '\n';
    }
    text += Paragraph(Filled(manual.description, manual));
    for (const Group& group : manual.groups) {
        text += '\n';
        if (!group.title.empty()) text += group.title + ":\n";
        for (const Row* const row : group.rows) text += HelpOf(*row, manual);
    }
    for (const auto& [heading, section] : manual.sections)
        text += '\n' + Paragraph(heading + ": " + Filled(section, manual));
    return text;
}

std::string ManPage(const Manual& manual) {
    const std::string bold = "\\fB" + Roff(manual.program) + "\\fR";
    std::string text = ".\\\" Made from the table of the options; do not edit.\n.TH " + Roff(Upper(manual.program)) +
                       " 1 \"\" \"" + Roff(manual.program + ' ' + manual.version) + "\" \"User Commands\"\n" +
                       ".SH NAME\n" + Roff(manual.program) + " \\- " + Roff(manual.summary) + "\n.SH SYNOPSIS\n";
    for (const std::string& usage : manual.usage) {
        std::string line = usage;
        std::ranges::replace(line, '\n', ' ');
        text += (&usage == &manual.usage.front() ? "" : ".br\n") + bold + ' ' + Roff(line) + '\n';
    }
    text += ".SH DESCRIPTION\n" + Roff(Filled(manual.description, manual)) + "\n.SH OPTIONS\n";
    for (const Group& group : manual.groups) {
        if (!group.title.empty()) text += ".SS " + Roff(group.title) + '\n';
        for (const Row* const row : group.rows) text += ManOf(*row, manual);
    }
    for (const auto& [heading, section] : manual.sections)
        text += ".SH " + Roff(Upper(heading)) + '\n' + Roff(Filled(section, manual)) + '\n';
    if (!manual.examples.empty()) text += ".SH EXAMPLES\n";
    for (const auto& [command, meaning] : manual.examples)
        text += ".TP\n\\fB" + Roff(command) + "\\fR\n" + Roff(Filled(meaning, manual)) + '\n';
    if (!manual.seeAlso.empty()) text += ".SH SEE ALSO\n" + Roff(manual.seeAlso) + '\n';
    return text;
}

std::string BashCompletion(const Manual& manual) {
    std::string function("_"), names, cases;
    function += manual.program;
    std::ranges::replace(function, '-', '_');
    for (const Group& group : manual.groups) {
        for (const Row* const row : group.rows) {
            for (const std::string_view name : {row->shortName, row->name})
                if (!name.empty()) names.append(names.empty() ? "" : " ").append(name);
            if (row->value.empty()) continue;
            const std::string reply = row->words.empty() ? CompletionOf(row->completion)
                                                         : WordsCompletion(Filled(std::string(row->words), manual));
            cases += "        " + Pattern(*row) + ")\n            " + reply + "\n            return ;;\n";
        }
    }
    return "# Completion of " + manual.program + " for bash. Made from the table of the options; do not edit.\n" +
           function +
           "() {\n"
           "    local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD - 1]}\"\n"
           "    COMPREPLY=()\n"
           "    # Of --name=value bash makes three words.\n"
           "    if [[ $current == = ]]; then\n"
           "        current=''\n"
           "    elif [[ $previous == = ]]; then\n"
           "        previous=\"${COMP_WORDS[COMP_CWORD - 2]}\"\n"
           "    fi\n"
           "    case $previous in\n" +
           cases +
           "    esac\n"
           "    if [[ $current == -* ]]; then\n        " +
           WordsCompletion(names) + "\n        return\n    fi\n    " + CompletionOf(manual.files) +
           "\n}\ncomplete -F " + function + ' ' + manual.program + '\n';
}

}  // namespace ProgramOptions
