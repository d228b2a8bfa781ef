// CLI11 finds the options and their values. Its headers are slow to compile: they are included here only.
#include "options/ArgumentParser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

namespace ProgramOptions {
namespace {

using Kind = ArgumentMistake::Kind;

const Row* RowOf(std::span<const Row* const> rows, std::string_view name) {
    const auto found = std::ranges::find_if(
        rows, [name](const Row* row) { return row->name == name || (!name.empty() && row->shortName == name); });
    return found == rows.end() ? nullptr : *found;
}

/// The arguments as CLI11 needs them. "--name=" without a value would have the next argument as its value.
/// @param mistake  receives a value of an option without one
std::vector<std::string> Spelled(std::span<const Row* const> rows, const std::vector<std::string>& arguments,
                                 std::optional<ArgumentMistake>* mistake) {
    std::vector<std::string> spelled;
    bool hasEnded = false;
    for (const std::string& argument : arguments) {
        hasEnded = hasEnded || argument == "--";
        const std::size_t equals = hasEnded ? std::string::npos : argument.find('=');
        const Row* const row = equals == std::string::npos ? nullptr : RowOf(rows, argument.substr(0, equals));
        if (row != nullptr && row->value.empty()) {
            *mistake = {Kind::HasValue, argument.substr(0, equals), row};
            break;
        }
        spelled.push_back(argument);
        if (row == nullptr || equals + 1 < argument.size()) continue;
        spelled.back().pop_back();
        spelled.emplace_back();
    }
    return spelled;
}

/// Collects what CLI11 finds. Files are no options of CLI11: it keeps them, and unknown options, in a list of its own,
/// whose new entries belong before the option that was found last.
class Collector {
public:
    Collector(std::span<const Row* const> rows, ParsedArguments* result) : m_result(*result) {
        m_app.set_help_flag();
        m_app.allow_extras();
        for (const Row* const row : rows) {
            std::string names(row->name);
            if (!row->shortName.empty()) names = std::string(row->shortName) + ',' + names;
            CLI::Option* const option = row->value.empty()
                                            ? m_app.add_flag_callback(names, [this, row] { Add(row, {}); })
                                            : m_app.add_option(names, [this, row](const CLI::results_t& values) {
                                                  Add(row, values.back());
                                                  return true;
                                              });
            option->trigger_on_parse();  // in their order, and each time that an option is given
        }
    }

    void Read(std::vector<std::string> arguments) {
        const std::string last = arguments.empty() ? "" : arguments.back();
        std::ranges::reverse(arguments);  // CLI11 reads from the back
        try {
            m_app.parse(std::move(arguments));
            AddFiles();
        } catch (const CLI::ParseError&) {
            // The only one that is possible here: the value after the last option is missing.
            AddFiles();
            m_isLastIncomplete = true;
            m_last = last;
        }
    }

    /// The first unknown option, or the last one if its value is missing.
    [[nodiscard]] std::optional<ArgumentMistake> Mistake(std::span<const Row* const> rows) const {
        if (m_mistake || !m_isLastIncomplete) return m_mistake;
        const Row* const row = RowOf(rows, m_last);
        if (row != nullptr) return ArgumentMistake{Kind::NeedsValue, m_last, row};
        const std::string name = std::string("-") + m_last.back();  // the last one of several letters
        return ArgumentMistake{Kind::NeedsValue, name, RowOf(rows, name)};
    }

private:
    void Add(const Row* row, const std::string& value) {
        AddFiles();
        if (!m_mistake) m_result.arguments.push_back({row, value});
    }
    void AddFiles() {
        const std::vector<std::string> extras = m_app.remaining();
        for (; m_nRead < extras.size() && !m_mistake; ++m_nRead) {
            const std::string& extra = extras[m_nRead];
            const bool isEnd = !m_bOptionsEnded && extra == "--";
            if (!m_bOptionsEnded && !isEnd && extra.starts_with('-'))
                m_mistake = {Kind::Unknown, extra, nullptr};
            else if (!isEnd)
                m_result.arguments.push_back({nullptr, extra});
            m_bOptionsEnded = m_bOptionsEnded || isEnd;
        }
    }

    CLI::App m_app;
    ParsedArguments& m_result;
    std::optional<ArgumentMistake> m_mistake;
    std::size_t m_nRead = 0;  // of the list of CLI11
    bool m_bOptionsEnded = false;
    bool m_isLastIncomplete = false;
    std::string m_last;
};

}  // namespace

ParsedArguments ParseArguments(std::span<const Row* const> rows, const std::vector<std::string>& arguments) {
    ParsedArguments result;
    std::optional<ArgumentMistake> valueMistake;
    const std::vector<std::string> spelled = Spelled(rows, arguments, &valueMistake);
    Collector collector(rows, &result);
    collector.Read(spelled);
    result.mistake = collector.Mistake(rows);
    if (!result.mistake) result.mistake = valueMistake;
    return result;
}

}  // namespace ProgramOptions
