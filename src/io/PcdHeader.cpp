// Line by line into the header, then the checks that need several lines.
#include "io/PcdHeader.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "io/TextBlocks.h"

namespace {
constexpr std::size_t kLongestHeader = std::size_t{1} << 16;  // bytes
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 40;  // of a point: sums and products of these cannot overflow

/// The white space of the classic locale.
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> words;
    while (true) {
        while (!line.empty() && IsSpace(line.front())) line.remove_prefix(1);
        if (line.empty()) return words;
        std::size_t length = 0;
        while (length < line.size() && !IsSpace(line[length])) ++length;
        words.push_back(line.substr(0, length));
        line.remove_prefix(length);
    }
}

class Parser {
public:
    explicit Parser(std::string_view text, bool isWhole) : m_sRest(text), m_bIsWhole(isWhole) {}
    PcdHeader Parse();

private:
    void ParseLine(std::string_view line);
    void ParseFields(const std::vector<std::string_view>& words);
    void ParseData(const std::vector<std::string_view>& words);
    void ParseType(PcdField& field, std::string_view word);
    void ParseWidth(PcdField& field, std::string_view word);
    void ParseCount(PcdField& field, std::string_view word);
    template <class Store>
    void ForEachField(const std::vector<std::string_view>& words, Store store);
    [[nodiscard]] std::uint64_t OneNumber(const std::vector<std::string_view>& words);
    [[nodiscard]] std::uint64_t Number(std::string_view word);
    void FindPoints();
    void PlaceFields();
    [[nodiscard]] std::optional<std::size_t> Find(std::string_view name) const;
    void FindCoordinates();
    void FindColor();
    [[noreturn]] void Fail(const std::string& reason) const {
        throw FileReadError("line " + std::to_string(m_header.lines) + ": " + reason);
    }

    std::string_view m_sRest;
    bool m_bIsWhole;  ///< the text is the whole file
    PcdHeader m_header;
    bool m_bHasData = false, m_bHasTypes = false, m_bHasWidths = false;
    std::optional<std::uint64_t> m_columns, m_rows, m_points;
};

PcdHeader Parser::Parse() {
    const std::size_t size = m_sRest.size();
    while (!m_bHasData) {
        const std::size_t end = m_sRest.find('\n');
        if (end == std::string_view::npos && (!m_bIsWhole || m_sRest.empty()))
            throw FileReadError(m_bIsWhole ? "the header has no line DATA"
                                           : "the header has no line DATA in its first 65536 bytes");
        ++m_header.lines;
        const std::string_view line = m_sRest.substr(0, end);
        m_sRest.remove_prefix(end == std::string_view::npos ? m_sRest.size() : end + 1);
        ParseLine(line);
    }
    m_header.dataOffset = size - m_sRest.size();
    if (m_header.fields.empty()) throw FileReadError("the header has no line FIELDS");
    if (!m_bHasWidths) throw FileReadError("the header has no line SIZE");
    if (!m_bHasTypes) throw FileReadError("the header has no line TYPE");
    FindPoints();
    PlaceFields();
    FindCoordinates();
    FindColor();
    return std::move(m_header);
}

// VERSION and VIEWPOINT have no effect on what is read.
void Parser::ParseLine(std::string_view line) {
    std::vector<std::string_view> words = Words(line);
    if (words.empty() || words[0].starts_with('#')) return;
    const std::string_view key = words[0];
    words.erase(words.begin());
    if (key == "FIELDS" || key == "COLUMNS") return ParseFields(words);
    if (key == "SIZE") {
        m_bHasWidths = true;
        return ForEachField(words, [this](PcdField& field, std::string_view word) { ParseWidth(field, word); });
    }
    if (key == "TYPE") {
        m_bHasTypes = true;
        return ForEachField(words, [this](PcdField& field, std::string_view word) { ParseType(field, word); });
    }
    if (key == "COUNT")
        return ForEachField(words, [this](PcdField& field, std::string_view word) { ParseCount(field, word); });
    if (key == "WIDTH")
        m_columns = OneNumber(words);
    else if (key == "HEIGHT")
        m_rows = OneNumber(words);
    else if (key == "POINTS")
        m_points = OneNumber(words);
    else if (key == "DATA")
        ParseData(words);
    else if (key != "VERSION" && key != "VIEWPOINT")
        Fail(Quoted(key) + " is not a keyword of a pcd header");
}

void Parser::ParseFields(const std::vector<std::string_view>& words) {
    if (!m_header.fields.empty()) Fail("the fields are listed twice");
    if (words.empty()) Fail("there are no fields");
    for (const std::string_view word : words) m_header.fields.push_back({.name = std::string(word)});
}

void Parser::ParseData(const std::vector<std::string_view>& words) {
    const std::string_view form = words.size() == 1 ? words[0] : std::string_view();
    if (form == "ascii")
        m_header.data = PcdHeader::Data::kText;
    else if (form == "binary")
        m_header.data = PcdHeader::Data::kBinary;
    else if (form == "binary_compressed")
        m_header.data = PcdHeader::Data::kCompressed;
    else
        Fail("DATA is not ascii, binary or binary_compressed");
    m_bHasData = true;
}

template <class Store>
void Parser::ForEachField(const std::vector<std::string_view>& words, Store store) {
    if (m_header.fields.empty()) Fail("the line FIELDS must come first");
    if (words.size() != m_header.fields.size())
        Fail("expected one entry for each of the " + std::to_string(m_header.fields.size()) + " fields, found " +
             std::to_string(words.size()));
    for (std::size_t i = 0; i < words.size(); ++i) store(m_header.fields[i], words[i]);
}

void Parser::ParseType(PcdField& field, std::string_view word) {
    if (word != "I" && word != "U" && word != "F") Fail("type " + Quoted(word) + " is not I, U or F");
    field.type = word[0];
}

void Parser::ParseWidth(PcdField& field, std::string_view word) {
    const std::uint64_t width = Number(word);
    if (width != 1 && width != 2 && width != 4 && width != 8) Fail("size " + Quoted(word) + " is not 1, 2, 4 or 8");
    field.width = static_cast<std::size_t>(width);
}

void Parser::ParseCount(PcdField& field, std::string_view word) {
    field.count = Number(word);
    if (field.count == 0 || field.count > kMostBytes) Fail("count " + Quoted(word) + " is not possible");
}

std::uint64_t Parser::OneNumber(const std::vector<std::string_view>& words) {
    if (words.size() != 1) Fail("expected one number, found " + std::to_string(words.size()));
    return Number(words[0]);
}

std::uint64_t Parser::Number(std::string_view word) {
    std::uint64_t number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (fault != std::errc{} || end != word.data() + word.size()) Fail(Quoted(word) + " is not a whole number");
    return number;
}

// POINTS repeats what WIDTH and HEIGHT say; either may be missing.
void Parser::FindPoints() {
    if (m_columns) {
        const std::uint64_t rows = m_rows.value_or(1);
        std::uint64_t product = 0;
        if (__builtin_mul_overflow(*m_columns, rows, &product)) throw FileReadError("WIDTH times HEIGHT is too large");
        if (m_points && *m_points != product)
            throw FileReadError("POINTS is " + std::to_string(*m_points) + ", but WIDTH times HEIGHT is " +
                                std::to_string(product));
        m_points = product;
        if (rows > 1) m_header.holes = PointHoles::kOmitted;
    }
    if (!m_points) throw FileReadError("the header has no number of points");
    m_header.points = *m_points;
}

void Parser::PlaceFields() {
    for (PcdField& field : m_header.fields) {
        field.offset = m_header.pointBytes;
        field.position = m_header.pointValues;
        m_header.pointBytes += field.Bytes();
        m_header.pointValues += field.count;
        if (m_header.pointBytes > kMostBytes) throw FileReadError("a point is too large");
    }
}

/// @throws FileReadError when there are two of the name
std::optional<std::size_t> Parser::Find(std::string_view name) const {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < m_header.fields.size(); ++i) {
        if (m_header.fields[i].name != name) continue;
        if (found) throw FileReadError("the fields name " + Quoted(name) + " twice");
        found = i;
    }
    return found;
}

void Parser::FindCoordinates() {
    constexpr std::string_view kNames[] = {"x", "y", "z"};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto found = Find(kNames[i]);
        if (!found) throw FileReadError("the fields have no " + Quoted(kNames[i]));
        const PcdField& field = m_header.fields[*found];
        if (field.count != 1) throw FileReadError("field " + Quoted(field.name) + " has more than one value");
        if (field.type == 'F' && field.width < 4)
            throw FileReadError("field " + Quoted(field.name) + " is a floating-point number of " +
                                std::to_string(field.width) + " bytes");
        m_header.xyz[i] = *found;
    }
}

void Parser::FindColor() {
    auto found = Find("rgb");
    if (!found) found = Find("rgba");
    if (!found) return;
    const PcdField& field = m_header.fields[*found];
    if (field.Bytes() != 4 || field.count != 1)
        throw FileReadError("field " + Quoted(field.name) + " is not one value of 4 bytes");
    m_header.hasColors = true;
    m_header.color = *found;
}
}  // namespace

PcdHeader ReadPcdHeader(ByteInput& input) {
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(kLongestHeader, input.Size())), '\0');
    input.Seek(0);
    text.resize(input.Read(text.data(), text.size()));
    return Parser(text, text.size() < kLongestHeader).Parse();
}

NumberType NumberTypeOf(const PcdField& field) {
    if (field.type == 'F') return field.width == 8 ? NumberType::kDouble : NumberType::kFloat;
    const bool isSigned = field.type == 'I';
    switch (field.width) {
        case 1:
            return isSigned ? NumberType::kInt8 : NumberType::kUInt8;
        case 2:
            return isSigned ? NumberType::kInt16 : NumberType::kUInt16;
        case 4:
            return isSigned ? NumberType::kInt32 : NumberType::kUInt32;
        default:
            return isSigned ? NumberType::kInt64 : NumberType::kUInt64;
    }
}
