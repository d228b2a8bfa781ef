// Most lines are numbers with one kind of separator, which TryPlainLine() reads in one pass without looking for the end
// of the line first. Every other line is split into fields by ReadLine(), which also finds the reason of a refusal.
#include "io/PointText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/PointCollector.h"
#include "io/StreamNumber.h"
#include "io/TextBlocks.h"

namespace {

/// What a column holds.
enum Role { kX, kY, kZ, kRed, kGreen, kBlue, kIgnoredValue, kIgnoredText, kRoles };

constexpr double kCountPart = 0.05;  // of the whole time that counting the lines needs, for the progress

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

const char* SkipBlanks(const char* at) {
    while (IsBlank(*at)) ++at;
    return at;
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

/// A-Z alone: the locale of the process must not decide what a name is.
std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

/// The role of a column with this name in the header.
Role RoleOf(std::string_view name) {
    constexpr std::pair<std::string_view, Role> kNames[] = {
        {"x", kX},    {"y", kY},     {"z", kZ},         {"r", kRed},     {"g", kGreen},
        {"b", kBlue}, {"red", kRed}, {"green", kGreen}, {"blue", kBlue},
    };
    const std::string lower = LowerCase(name);
    for (const auto& [known, role] : kNames)
        if (lower == known) return role;
    return kIgnoredText;
}

/// @return false when the text is anything but one number that fits a float
bool ReadNumber(std::string_view text, float& value) {
    const char* const last = text.data() + text.size();
    return !text.empty() && text.front() > ' ' && ReadStreamFloat(text.data(), last, value) == last;
}

/// The separator of a line: a semicolon if there is one, else a comma, else white space. Those in quotation marks do
/// not count.
char SeparatorOf(std::string_view line) {
    bool quoted = false;
    char separator = ' ';
    for (const char c : line) {
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == ';') return ';';
        if (c == ',') separator = ',';
    }
    return separator;
}

/// Kinds of separators, as bits.
enum Separators : unsigned { kBlank = 1, kComma = 2, kSemicolon = 4 };
unsigned KindOf(char separator) { return separator == ' ' ? kBlank : separator == ',' ? kComma : kSemicolon; }

bool AreColors(const std::array<float, kRoles>& values) {
    bool are = true;
    for (const Role role : {kRed, kGreen, kBlue})
        are = are && values[role] >= 0 && values[role] <= PointCollector::kLargestColor;
    return are;
}

class Reader {
public:
    Reader(ByteInput& input, ReadProgress& progress) : m_rInput(input), m_rProgress(progress) {}
    KV_ScenePane::PointCloud Read();

private:
    [[nodiscard]] std::uint64_t CountLines();
    void ReadBlock(std::string_view block);
    [[nodiscard]] const char* TryPlainLine(const char* at, const char* end);
    [[nodiscard]] const char* SkipText(const char* at) const;
    void ReadLine(std::string_view line);
    void Split(std::string_view line, char separator);
    [[nodiscard]] const char* SplitQuoted(const char* at, const char* last);
    [[nodiscard]] bool TryHeader(char separator);
    void StartWithoutHeader();
    void Start(bool hasColors);
    void ReadFields();
    void Keep(const std::array<float, kRoles>& values);
    void AddBlock();
    [[noreturn]] void Fail(std::string_view reason) const;

    ByteInput& m_rInput;
    ReadProgress& m_rProgress;
    std::uint64_t m_uLines = 0;               ///< in the file
    std::uint64_t m_uLine = 0;                ///< number of the current line, from 1
    std::vector<Role> m_vRoles;               ///< of the columns; empty before the first line of data or names
    char m_cSeparator = 0;                    ///< of the header; 0: each line shows its own
    std::vector<std::string_view> m_vFields;  ///< of the current line
    std::optional<PointCollector> m_collector;
    std::size_t m_uPoints = 0;  ///< in the block of the collector
};

void Reader::Fail(std::string_view reason) const {
    throw FileReadError(std::string("line ").append(std::to_string(m_uLine)).append(": ").append(reason));
}

KV_ScenePane::PointCloud Reader::Read() {
    m_uLines = CountLines();
    TextBlocks blocks(m_rInput, 0, TextBlocks::Cut::kAfterLine);
    bool isFirst = true;
    for (std::string_view block = blocks.Next(); !block.empty(); block = blocks.Next()) {
        if (isFirst && block.starts_with("\xEF\xBB\xBF")) block.remove_prefix(3);  // byte order mark
        isFirst = false;
        if (block.back() != '\n') {
            ++m_uLine;
            Fail("the line is longer than " + std::to_string(TextBlocks::kBlock) + " characters");
        }
        ReadBlock(block);
        m_rProgress.Report(kCountPart + (1 - kCountPart) * blocks.Part(), 1 - kCountPart);
    }
    if (!m_collector) throw FileReadError("the file holds no points");
    AddBlock();
    return m_collector->Finish();
}

// A last line without a line feed counts, too, since the blocks add one.
std::uint64_t Reader::CountLines() {
    std::uint64_t lines = 0;
    TextBlocks blocks(m_rInput, 0, TextBlocks::Cut::kAfterLine);
    for (std::string_view block = blocks.Next(); !block.empty(); block = blocks.Next()) {
        const char* at = block.data();
        const char* const end = at + block.size();
        while (at != end &&
               (at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at))))) {
            ++lines;
            ++at;
        }
        m_rProgress.Report(kCountPart * blocks.Part(), kCountPart);
    }
    return lines;
}

void Reader::ReadBlock(std::string_view block) {
    const char* at = block.data();
    const char* const end = at + block.size();
    while (at != end) {
        ++m_uLine;
        if (const char* const next = TryPlainLine(at, end)) {
            at = next;
            continue;
        }
        const char* const lineEnd = std::find(at, end, '\n');
        std::string_view line(at, static_cast<std::size_t>(lineEnd - at));
        if (line.ends_with('\r')) line.remove_suffix(1);
        ReadLine(Trimmed(line));
        at = lineEnd + 1;
    }
}

/// The white space around a separator belongs to it. Without a separator, white space is one.
/// @return after it; null when there is none
const char* SkipSeparator(const char* at, unsigned& kinds) {
    const char* const next = SkipBlanks(at);
    if (*next == ',' || *next == ';') {
        kinds |= *next == ',' ? kComma : kSemicolon;
        return SkipBlanks(next + 1);
    }
    kinds |= kBlank;
    return next == at ? nullptr : next;
}

bool IsComment(std::string_view line) { return line.starts_with('#') || line.starts_with("//"); }

/// A line with a number in each column that needs one, without quotation marks and with one kind of separator.
/// @param at   start of the line, in a block that ends with a line feed
/// @param end  of the block
/// @return start of the next line; null for any other line, which has had no effect then
const char* Reader::TryPlainLine(const char* at, const char* end) {
    std::array<float, kRoles> values{};
    unsigned kinds = 0;
    at = SkipBlanks(at);
    if (IsComment({at, end})) return nullptr;
    for (std::size_t column = 0; column < m_vRoles.size(); ++column) {
        if (column > 0) at = SkipSeparator(at, kinds);
        if (at == nullptr) return nullptr;
        if (m_vRoles[column] == kIgnoredText)
            at = SkipText(at);
        else if (static_cast<unsigned char>(*at) <= ' ')  // ReadStreamFloat() would skip it, even a line feed
            return nullptr;
        else
            at = ReadStreamFloat(at, end, values[m_vRoles[column]]);
        if (at == nullptr) return nullptr;
    }
    at = SkipBlanks(at);
    if (*at == '\r') ++at;
    if (*at != '\n' || m_vRoles.empty()) return nullptr;
    if (m_cSeparator == 0 ? (kinds & (kinds - 1)) != 0 : kinds != KindOf(m_cSeparator)) return nullptr;
    if (m_collector->HasColors() && !AreColors(values)) return nullptr;
    Keep(values);
    return at + 1;
}

/// A field without quotation marks up to the separator of the header.
/// @return null for a field that needs more care
const char* Reader::SkipText(const char* at) const {
    const bool byBlanks = m_cSeparator == ' ';
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    if (byBlanks && isLineEnd(*at)) return nullptr;
    while (!isLineEnd(*at) && *at != '"' && (byBlanks ? !IsBlank(*at) : *at != m_cSeparator)) ++at;
    return *at == '"' ? nullptr : at;
}

/// Any line, without its end and without blanks around it. A carriage return may be meant as the end of a line, also of
/// a comment: what follows it must not be lost.
void Reader::ReadLine(std::string_view line) {
    if (line.find('\r') != std::string_view::npos) Fail("a carriage return is not at the end of the line");
    if (line.empty() || IsComment(line)) return;
    if (line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF")) Fail("text in UTF-16 is not read");
    const char separator = m_cSeparator != 0 ? m_cSeparator : SeparatorOf(line);
    Split(line, separator);
    if (m_vRoles.empty()) {
        if (TryHeader(separator)) return;
        StartWithoutHeader();
    }
    ReadFields();
}

// White space separates as a run, commas and semicolons one by one: two of them have an empty field between them.
void Reader::Split(std::string_view line, char separator) {
    m_vFields.clear();
    const char* at = line.data();
    const char* const last = at + line.size();
    const auto isSeparator = [separator](char c) { return separator == ' ' ? IsBlank(c) : c == separator; };
    while (true) {
        while (at != last && IsBlank(*at)) ++at;
        if (at != last && *at == '"') {
            at = SplitQuoted(at, last);
        } else {
            const char* const first = at;
            at = std::find_if(at, last, isSeparator);
            m_vFields.push_back(Trimmed({first, static_cast<std::size_t>(at - first)}));
        }
        // to the separator, and after it
        while (at != last && IsBlank(*at) && separator != ' ') ++at;
        if (at == last) return;
        if (!isSeparator(*at)) Fail("there is text after a quotation mark");
        ++at;
    }
}

/// The text between quotation marks. A doubled one is part of it.
/// @return after the closing one
const char* Reader::SplitQuoted(const char* at, const char* last) {
    const char* const first = ++at;
    while (true) {
        at = std::find(at, last, '"');
        if (at == last) Fail("a quotation mark is not closed");
        if (at + 1 == last || at[1] != '"') break;
        at += 2;
    }
    m_vFields.push_back(Trimmed({first, static_cast<std::size_t>(at - first)}));
    return at + 1;
}

/// A line is a header when it names one of the columns.
/// @return whether it is one
bool Reader::TryHeader(char separator) {
    std::array<int, kRoles> uses{};
    std::vector<Role> roles;
    for (const std::string_view name : m_vFields) {
        roles.push_back(RoleOf(name));
        if (roles.back() != kIgnoredText && ++uses[roles.back()] > 1)
            Fail(std::string("the header names ").append(Quoted(name)).append(" twice"));
    }
    const auto count = [&uses](Role first) { return uses[first] + uses[first + 1] + uses[first + 2]; };
    if (count(kX) == 0 && count(kRed) == 0) return false;
    constexpr const char* kNames[] = {"x", "y", "z", "red", "green", "blue"};
    for (int role = kX; role <= kBlue; ++role) {
        const bool isNeeded = role <= kZ || count(kRed) > 0;
        if (isNeeded && uses[static_cast<std::size_t>(role)] == 0)
            Fail(std::string("the header has no column ").append(Quoted(kNames[role])));
    }
    m_vRoles = std::move(roles);
    m_cSeparator = separator;
    Start(count(kRed) > 0);
    return true;
}

/// The number of fields in the first line decides.
void Reader::StartWithoutHeader() {
    switch (m_vFields.size()) {
        case 3:
            m_vRoles = {kX, kY, kZ};
            break;
        case 4:
            m_vRoles = {kX, kY, kZ, kIgnoredValue};
            break;
        case 6:
            m_vRoles = {kX, kY, kZ, kRed, kGreen, kBlue};
            break;
        case 7:
            m_vRoles = {kX, kY, kZ, kRed, kGreen, kBlue, kIgnoredValue};
            break;
        default: {
            float value = 0;
            for (const std::string_view field : m_vFields)
                if (!ReadNumber(field, value)) Fail(NumberFault(field));
            Fail("expected 3, 4, 6 or 7 numbers, found " + std::to_string(m_vFields.size()));
        }
    }
    Start(m_vFields.size() >= 6);
}

// A point has at least two characters per number, so that lines without points cannot make the arrays large.
void Reader::Start(bool hasColors) {
    const std::uint64_t most = (m_rInput.Size() + 1) / (hasColors ? 12 : 6);
    m_collector.emplace(std::min(m_uLines, most), hasColors);
}

// An ignored value may be anything, also empty: some programs write a separator after the last number.
void Reader::ReadFields() {
    if (m_vFields.size() != m_vRoles.size())
        Fail("expected " + std::to_string(m_vRoles.size()) + (m_cSeparator == 0 ? " numbers" : " columns") +
             ", found " + std::to_string(m_vFields.size()));
    std::array<float, kRoles> values{};
    for (std::size_t i = 0; i < m_vFields.size(); ++i) {
        const Role role = m_vRoles[i];
        const std::string_view field = m_vFields[i];
        if (role == kIgnoredText || role == kIgnoredValue) continue;
        if (!ReadNumber(field, values[role])) Fail(NumberFault(field));
        const bool isColor = role == kRed || role == kGreen || role == kBlue;
        if (isColor && !(values[role] >= 0 && values[role] <= PointCollector::kLargestColor))
            Fail(std::string("colour ").append(Quoted(field)).append(" is not from 0 to 255"));
    }
    Keep(values);
}

void Reader::Keep(const std::array<float, kRoles>& values) {
    std::copy_n(&values[kX], 3, m_collector->Xyz() + 3 * m_uPoints);
    std::copy_n(&values[kRed], 3, m_collector->Colors() + 3 * m_uPoints);
    if (++m_uPoints == PointCollector::kBlock) AddBlock();
}

void Reader::AddBlock() {
    m_collector->AddUnscaled(m_uPoints);
    m_uPoints = 0;
}

}  // namespace

KV_ScenePane::PointCloud ReadPointText(ByteInput& input, ReadProgress& progress) {
    return Reader(input, progress).Read();
}
