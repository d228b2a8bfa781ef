// The header of a ply file: from characters to tokens, from tokens to the grammar. The data is in PlyDataSection.cpp.
#include "io/CPLYFile.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <new>
#include <stdexcept>

#include "base/HugePages.h"
#include "io/StreamNumber.h"

namespace {
/// In the order of the codes of PlyType.
struct TypeTrait {
    const char* name;
    int width;
};
// Several names for the same type: float and float32, uchar and uint8, uint and uint32.
constexpr std::array<TypeTrait, 12> kTypes{{{"none", 0},
                                            {"float32", 4},
                                            {"uint8", 1},
                                            {"uint32", 4},
                                            {"char", 1},
                                            {"uchar", 1},
                                            {"short", 2},
                                            {"ushort", 2},
                                            {"int", 4},
                                            {"uint", 4},
                                            {"float", 4},
                                            {"double", 8}}};

const TypeTrait& TraitOf(int type) {
    return kTypes.at(type > 0 && type < static_cast<int>(kTypes.size()) ? static_cast<std::size_t>(type) : 0);
}

/// A to Z alone: the process's locale must not decide what a keyword is.
std::string LowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

/// The header of a stream as tokens. It reads the stream's buffer: operator>> would depend on the stream's locale.
class HeaderText {
public:
    explicit HeaderText(std::istream& stream) : m_rStream(stream) {}

    [[nodiscard]] std::int64_t Position() const { return static_cast<std::int64_t>(m_rStream.tellg()); }
    /// The next token; empty at the end of the stream. The white space after it is not consumed.
    [[nodiscard]] std::string Token() {
        int c = Peek();
        while (IsSpace(c)) c = Next();
        std::string token;
        for (; c != kEnd && !IsSpace(c); c = Next()) token += static_cast<char>(c);
        return token;
    }
    /// The characters up to a line feed, without carriage returns. The line feed is consumed.
    [[nodiscard]] std::string RestOfLine() {
        std::string line;
        int c = Peek();
        for (; c != kEnd && c != '\n'; c = Next())
            if (c != '\r') line += static_cast<char>(c);
        Skip(1);
        return line;
    }
    void Skip(int characters) {
        for (; characters > 0 && Peek() != kEnd; --characters) Next();
    }

private:
    static constexpr int kEnd = std::char_traits<char>::eof();
    static bool IsSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

    /// The next character, which is not consumed; kEnd at the end.
    int Peek() {
        return Guarded([](std::streambuf& buffer) { return buffer.sgetc(); });
    }
    /// Consumes a character and returns the one after it.
    int Next() {
        return Guarded([](std::streambuf& buffer) { return buffer.snextc(); });
    }
    /// A read error counts as the end of the stream: a folder can be opened like a file, but reading it throws.
    template <class Get>
    int Guarded(Get get) {
        if (!m_rStream.good()) return kEnd;
        try {
            return get(*m_rStream.rdbuf());
        } catch (const std::ios_base::failure&) {
            m_rStream.setstate(std::ios_base::badbit);
            return kEnd;
        }
    }

    std::istream& m_rStream;
};

/// "ply", then "format NAME VERSION".
void ReadMagicAndFormat(HeaderText& header, CPLYFile& file) {
    std::int64_t position = header.Position();
    if (LowerCase(header.Token()) != "ply") throw CPLYFileError("Magic number in PLY header not found.", position);

    position = header.Position();
    if (LowerCase(header.Token()) != "format") throw CPLYFileError("Unknown file format.", position);
    position = header.Position();
    const std::string format = LowerCase(header.Token());
    if (format == "ascii") file.m_iFormat = CPLYFile::kAscii;
    if (format == "binary_little_endian") file.m_iFormat = CPLYFile::kBinaryLittleEndian;
    if (format == "binary_big_endian") file.m_iFormat = CPLYFile::kBinaryBigEndian;
    if (file.m_iFormat == CPLYFile::kNotRead) throw CPLYFileError("Unknown file format.", position);

    position = header.Position();
    const std::string version = header.Token();
    if (version != "1.0") throw CPLYFileError("Unsupported PLY file version: " + version, position);
    file.m_sVersion = version;
}

/// Collects comments and the tokens of the declarations, up to end_header.
void ReadBody(HeaderText& header, CPLYFile& file) {
    for (std::string token = LowerCase(header.Token()); !token.empty(); token = LowerCase(header.Token())) {
        if (token == "comment") {
            file.m_vComments.push_back(header.RestOfLine());
            continue;
        }
        if (token == "end_header") return;
        if (!file.m_sGrammar.empty()) file.m_sGrammar += ' ';
        file.m_sGrammar += token;
    }
}

/// Recursive descent over the tokens of the grammar, one member function per rule:
///   grammar: element*
///   element: "element" NAME COUNT ("property" item)*
///   item:    TYPE NAME | "list" list
///   list:    COUNT_TYPE TYPE NAME
class GrammarParser {
public:
    explicit GrammarParser(CPLYFile& file) : m_rFile(file), m_sRest(file.m_sGrammar) {}

    void Parse() {
        while (!m_sRest.empty()) ParseElement();
    }

private:
    /// One element and the items that follow it.
    void ParseElement() {
        if (Peek() != "element") Fail("\"element\" expected.");
        Next();
        Require(2);
        auto element = std::make_unique<Element>();
        element->m_sName = Next();
        element->m_iCount = Count(Peek());
        Next();
        while (Peek() == "property") {
            Next();
            element->m_vItems.push_back(ParseItem());
        }
        m_rFile.m_vElements.push_back(std::move(element));
    }

    /// A property or a list, after the word "property".
    std::unique_ptr<Element::ElementSubItem> ParseItem() {
        if (Peek() == "list") {
            Next();
            return ParseList();
        }
        Require(2);
        auto property = std::make_unique<Element::Property>();
        property->m_iType = TypeOf(Peek());
        if (property->m_iType == kPlyNone) Fail("invalid property type \"" + std::string(Peek()) + '"');
        Next();
        property->m_sName = Next();
        return property;
    }

    /// A list, after the word "list".
    std::unique_ptr<Element::ElementSubItem> ParseList() {
        Require(3);
        auto list = std::make_unique<Element::List>();
        list->m_iCountType = TypeOf(Peek());
        if (list->m_iCountType == kPlyNone) Fail(std::string("invalid count type in list ") + PlyTypeName(kPlyNone));
        Next();
        list->m_iElementType = TypeOf(Peek());
        if (list->m_iElementType == kPlyNone)
            Fail(std::string("invalid element type in list ") + PlyTypeName(kPlyNone));
        Next();
        list->m_sName = Next();
        return list;
    }

    /// kPlyNone for an unknown name. "none" itself is in the table and not a type either.
    [[nodiscard]] int TypeOf(std::string_view name) const {
        const auto found = m_rFile.m_mapTypes.find(name);
        return found == m_rFile.m_mapTypes.end() ? kPlyNone : found->second;
    }

    /// The whole token must be a number from 0 to the largest int.
    int Count(std::string_view token) {
        int count = 0;
        const char* const last = token.data() + token.size();
        if (ReadStreamInt(token.data(), last, count) != last || count < 0) Fail("element count expected (integer)");
        return count;
    }

    /// The next token, which is not consumed; empty at the end.
    [[nodiscard]] std::string_view Peek() const { return m_sRest.substr(0, m_sRest.find(' ')); }
    std::string_view Next() {
        const std::string_view token = Peek();
        m_sRest.remove_prefix(std::min(token.size() + 1, m_sRest.size()));
        ++m_iIndex;
        return token;
    }
    /// Fails unless at least @p tokens tokens are left. The error names the index of the first one that is missing.
    void Require(int tokens) {
        std::string_view ahead = m_sRest;
        for (int present = 0; present < tokens; ++present) {
            if (ahead.empty()) {
                m_iIndex += present;
                Fail("expected " + std::to_string(tokens - present) + " more tokens");
            }
            ahead.remove_prefix(std::min(ahead.find(' '), ahead.size() - 1) + 1);
        }
    }
    [[noreturn]] void Fail(const std::string& reason) const {
        throw CPLYFileError("Error in grammar at token " + std::to_string(m_iIndex) + ": " + reason);
    }

    CPLYFile& m_rFile;
    std::string_view m_sRest;   // the grammar from the next token on
    std::int64_t m_iIndex = 0;  // of the next token, counted from 0
};

/// Width in bytes of the line end after the magic word, which decides for the whole file. The stream's position does
/// not change.
int LineEndWidth(std::istream& stream) {
    const auto position = stream.tellg();
    if (position == std::istream::pos_type(-1)) return 1;
    std::array<char, 5> start{};
    stream.seekg(0);
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    stream.clear();
    stream.seekg(position);
    return start[3] == '\r' && start[4] == '\n' ? 2 : 1;
}

/// Bytes from the stream's position to its end; 0 when the stream has no positions.
std::size_t RestSize(std::streambuf& buffer) {
    const std::streamoff here = buffer.pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    if (here < 0) return 0;
    const std::streamoff end = buffer.pubseekoff(0, std::ios_base::end, std::ios_base::in);
    buffer.pubseekpos(here, std::ios_base::in);
    return end > here ? static_cast<std::size_t>(end - here) : 0;
}

}  // namespace

std::string CPLYFile::ReadRest(std::istream& stream) {
    constexpr std::size_t kPiece = std::size_t{1} << 17;  // small enough to be in the cache still when it is appended
    std::string data;
    if (!stream.good()) return data;
    try {
        // The size is that of the stream, not an announced one: a header cannot make this large.
        data.reserve(RestSize(*stream.rdbuf()));
        AdviseHugePages(data.data(), data.capacity());
        const auto piece = std::make_unique<char[]>(kPiece);
        std::streamsize got = 0;
        while ((got = stream.rdbuf()->sgetn(piece.get(), kPiece)) > 0)
            data.append(piece.get(), static_cast<std::size_t>(got));
    } catch (const std::ios_base::failure&) {
        stream.setstate(std::ios_base::badbit);
    } catch (const std::bad_alloc&) {
        throw CPLYFileError("Not enough memory for the data of the file.");
    } catch (const std::length_error&) {
        throw CPLYFileError("Not enough memory for the data of the file.");
    }
    return data;
}

const char* PlyTypeName(int type) { return TraitOf(type).name; }
int PlyTypeWidth(int type) { return TraitOf(type).width; }

std::string Element::Property::ToString() const {
    return std::string("property ") + PlyTypeName(m_iType) + " " + m_sName;
}

std::string Element::List::ToString() const {
    return std::string("property list ") + PlyTypeName(m_iCountType) + " " + PlyTypeName(m_iElementType) + " " +
           m_sName;
}

std::string Element::ToString() const {
    std::string text = "element " + m_sName + " " + std::to_string(m_iCount);
    for (const auto& item : m_vItems) (text += '\n') += item->ToString();
    return text;
}

bool Element::HasProperty(std::string_view name) const {
    return std::ranges::any_of(m_vItems, [&](const auto& item) { return item->m_sName == name; });
}

const Element::ElementSubItem& Element::GetProperty(std::string_view name) const {
    for (const auto& item : m_vItems)
        if (item->m_sName == name) return *item;
    throw CPLYFileError("No such property: " + std::string(name));
}

bool Element::HasLists() const {
    return std::ranges::any_of(m_vItems, [](const auto& item) { return item->m_eKind == ElementSubItem::Kind::kList; });
}

void CPLYFile::Read(std::istream& stream, bool headerOnly) {
    Clear();
    // header: characters, tokens, grammar
    HeaderText header(stream);
    ReadMagicAndFormat(header, *this);
    ReadBody(header, *this);
    GrammarParser(*this).Parse();
    // Binary data starts after exactly one line end, whose bytes are not white space to skip: data can look like it.
    const int lineEnd = LineEndWidth(stream);
    if (m_iFormat != kAscii) header.Skip(lineEnd);
    if (!headerOnly) SetData(ReadRest(stream));
}

// The constructors find the elements in the data and refuse what cannot be read.
void CPLYFile::SetData(std::string data) {
    if (m_iFormat == kAscii)
        m_pDataSection = std::make_unique<TextDataSection>(*this, std::move(data));
    else
        m_pDataSection = std::make_unique<BinaryDataSection>(*this, std::move(data));
}

void CPLYFile::Clear() {
    m_iFormat = kNotRead;
    m_sVersion.clear();
    m_vComments.clear();
    m_sGrammar.clear();
    m_pDataSection.reset();  // before the elements, which it points to
    m_vElements.clear();
}

const Element& CPLYFile::GetElement(std::string_view name) const {
    for (const auto& item : m_vElements)
        if (item->m_sName == name) return static_cast<const Element&>(*item);
    throw CPLYFileError("No such element: " + std::string(name));
}

bool CPLYFile::HasElement(std::string_view name) const {
    return std::ranges::any_of(m_vElements, [&](const auto& item) { return item->m_sName == name; });
}

std::map<std::string, int, std::less<>> CPLYFile::TypeNames() {
    std::map<std::string, int, std::less<>> names;
    for (std::size_t type = 0; type < kTypes.size(); ++type) names.emplace(kTypes[type].name, static_cast<int>(type));
    return names;
}
