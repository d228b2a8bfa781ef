// Line by line. What is not known is skipped, as long as the layout of the data is known.
#include "PlyHeader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace {

struct TypeName {
    std::string_view name;
    PlyNumber type;
    bool isPlain;  // a name that the viewer's own reader knows
};
constexpr TypeName kTypeNames[] = {
    {"char", PlyNumber::Int8, true},         {"int8", PlyNumber::Int8, false},
    {"uchar", PlyNumber::UInt8, true},       {"uint8", PlyNumber::UInt8, true},
    {"bool", PlyNumber::UInt8, false},       {"short", PlyNumber::Int16, true},
    {"int16", PlyNumber::Int16, false},      {"ushort", PlyNumber::UInt16, true},
    {"uint16", PlyNumber::UInt16, false},    {"int", PlyNumber::Int32, true},
    {"int32", PlyNumber::Int32, false},      {"uint", PlyNumber::UInt32, true},
    {"uint32", PlyNumber::UInt32, true},     {"int64", PlyNumber::Int64, false},
    {"long", PlyNumber::Int64, false},       {"longlong", PlyNumber::Int64, false},
    {"uint64", PlyNumber::UInt64, false},    {"ulong", PlyNumber::UInt64, false},
    {"ulonglong", PlyNumber::UInt64, false}, {"float", PlyNumber::Float32, true},
    {"float32", PlyNumber::Float32, true},   {"double", PlyNumber::Float64, true},
    {"float64", PlyNumber::Float64, false},
};

[[noreturn]] void Refuse(const std::string& reason) { throw std::runtime_error(reason); }

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

constexpr std::string_view kBlanks = " \t\v\f";

std::string_view Trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::vector<std::string_view> WordsOf(std::string_view line) {
    std::vector<std::string_view> words;
    for (line = Trimmed(line); !line.empty(); line = Trimmed(line)) {
        words.push_back(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

class Parser {
public:
    explicit Parser(std::string_view file) : m_sFile(file) {}

    PlyHeader Read() {
        SkipToMagic();
        bool hasFormat = false;
        for (;;) {
            const std::string_view line = NextLine();
            const std::vector<std::string_view> words = WordsOf(line);
            if (words.empty()) continue;
            const std::string keyword = Lower(words[0]);
            if (keyword == "end_header") break;
            if (keyword == "format") {
                ReadFormat(words);
                hasFormat = true;
            } else if (keyword == "comment") {
                ReadComment(Trimmed(Trimmed(line).substr(words[0].size())));
            } else if (keyword == "element") {
                ReadElement(words);
            } else if (keyword == "property") {
                ReadProperty(words);
            } else {
                m_header.isPlain = false;  // "obj_info" and whatever else other programs write
            }
        }
        if (!hasFormat) Refuse("Unknown file format.");
        FindData();
        return std::move(m_header);
    }

private:
    void SkipToMagic() {
        // Some programs write a mark of the encoding or an empty line before the first word.
        std::size_t start = m_sFile.starts_with("\xEF\xBB\xBF") ? 3 : 0;
        start = m_sFile.find_first_not_of(" \t\r\n", start);
        if (start == std::string_view::npos) Refuse("Magic number in PLY header not found.");
        m_header.isPlain = start == 0;
        m_uAt = start;
        const std::string_view line = m_sFile.substr(start, m_sFile.find_first_of("\r\n", start) - start);
        if (Lower(Trimmed(line)) != "ply") Refuse("Magic number in PLY header not found.");
        (void)NextLine();
    }

    /// The line at the position, which goes to the next one.
    std::string_view NextLine() {
        const std::size_t end = m_sFile.find_first_of("\r\n", m_uAt);
        if (end == std::string_view::npos) Refuse("the header of the file has no end");
        const std::string_view line = m_sFile.substr(m_uAt, end - m_uAt);
        // A file with carriage returns alone may have data that begins with the byte of a line feed.
        m_bReturnsAlone = m_bReturnsAlone || (m_sFile[end] == '\r' && m_sFile.substr(end, 2) != "\r\n");
        m_uAt = end + (m_sFile.substr(end, 2) == "\r\n" && !m_bReturnsAlone ? 2 : 1);
        m_uLineEnd = end;
        return line;
    }

    void ReadFormat(const std::vector<std::string_view>& words) {
        const std::string name = words.size() < 2 ? "" : Lower(words[1]);
        if (name == "ascii")
            m_header.format = PlyHeader::Format::Text;
        else if (name == "binary_little_endian")
            m_header.format = PlyHeader::Format::LittleEndian;
        else if (name == "binary_big_endian")
            m_header.format = PlyHeader::Format::BigEndian;
        else
            Refuse("Unknown file format.");
        if (m_header.format == PlyHeader::Format::BigEndian || words.size() != 3 || words[2] != "1.0")
            m_header.isPlain = false;
    }

    void ReadComment(std::string_view text) {
        constexpr std::string_view kTexture = "texturefile";
        if (Lower(text.substr(0, kTexture.size())) != kTexture) return;
        const std::string_view name = Trimmed(text.substr(kTexture.size()));
        if (!name.empty()) m_header.textureFiles.emplace_back(name);
    }

    void ReadElement(const std::vector<std::string_view>& words) {
        PlyElementHead element;
        const std::string_view count = words.size() < 3 ? std::string_view() : words[2];
        const auto [rest, error] = std::from_chars(count.data(), count.data() + count.size(), element.count);
        if (error != std::errc() || rest != count.data() + count.size())
            Refuse("the header does not say how many \"" + std::string(words.size() < 2 ? "" : words[1]) + "\" follow");
        element.name = Lower(words[1]);
        m_header.elements.push_back(std::move(element));
    }

    void ReadProperty(const std::vector<std::string_view>& words) {
        const bool isList = words.size() > 1 && Lower(words[1]) == "list";
        if (m_header.elements.empty() || words.size() < (isList ? 5U : 3U))
            Refuse("the header has an incomplete property");
        PlyItem item;
        item.name = Lower(words[isList ? 4 : 2]);
        item.type = TypeOf(words[isList ? 3 : 1]);
        if (isList) item.countType = TypeOf(words[2]);
        m_header.elements.back().items.push_back(std::move(item));
    }

    PlyNumber TypeOf(std::string_view name) {
        const std::string lower = Lower(name);
        const auto* const found = std::ranges::find(kTypeNames, lower, &TypeName::name);
        // The size of an unknown type is unknown, and with it where everything after it is.
        if (found == std::end(kTypeNames)) Refuse("values of the type \"" + lower + "\" are not known");
        m_header.isPlain = m_header.isPlain && found->isPlain;
        return found->type;
    }

    /// The data begins after the line of "end_header".
    void FindData() {
        m_header.dataStart = m_uAt;
        if (m_header.format == PlyHeader::Format::Text) return;
        // The viewer's reader decides by the line end of the first line alone, and expects no blanks before it.
        const std::size_t word = m_sFile.rfind('r', m_uLineEnd) + 1;  // the end of "end_header"
        const std::size_t viewerStart = word + (m_sFile.substr(3, 2) == "\r\n" ? 2 : 1);
        m_header.isPlain = m_header.isPlain && viewerStart == m_uAt;
    }

    std::string_view m_sFile;
    PlyHeader m_header;
    std::size_t m_uAt = 0;
    std::size_t m_uLineEnd = 0;  // of the last line
    bool m_bReturnsAlone = false;
};

}  // namespace

std::size_t WidthOf(PlyNumber number) {
    constexpr std::array<std::size_t, 10> kWidths = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    return kWidths[static_cast<std::size_t>(number)];
}

bool IsReal(PlyNumber number) { return number == PlyNumber::Float32 || number == PlyNumber::Float64; }

const PlyItem* PlyElementHead::Find(std::string_view item) const {
    const auto found = std::ranges::find(items, item, &PlyItem::name);
    return found == items.end() ? nullptr : &*found;
}

const PlyItem* PlyElementHead::FindIndices() const {
    for (const char* const usual : {"vertex_indices", "vertex_index"})
        if (const PlyItem* const item = Find(usual); item != nullptr && item->countType) return item;
    const auto list = std::ranges::find_if(items, [](const PlyItem& item) { return item.countType.has_value(); });
    return list == items.end() ? nullptr : &*list;
}

const PlyElementHead* PlyHeader::Find(std::string_view element) const {
    const auto found = std::ranges::find(elements, element, &PlyElementHead::name);
    return found == elements.end() ? nullptr : &*found;
}

PlyHeader ParsePlyHeader(std::string_view file) { return Parser(file).Read(); }
