// Data of an ascii ply file: tokens between white space. The walks over records are in PlyDataSection.cpp, the search
// for tokens in TextTokens.h, the numbers in StreamNumber.h. There is a way by cursor, which finds any token and
// reports errors, and a faster one from token to token, which gives up at anything unusual.
#include <algorithm>
#include <cassert>
#include <cstring>

#include "io/CPLYFile.h"
#include "io/StreamNumber.h"
#include "io/TextTokens.h"

namespace {
using Kind = Element::ElementSubItem::Kind;
constexpr std::int64_t kIndexStep = 64;  // tokens between two entries of m_vTokenStart

// The reasons of a bad token, which follows them.
constexpr char kNoInteger[] = "Integer expected, but found this: ";
constexpr char kNoFloat[] = "Float expected, but found this: ";
constexpr char kNoListInteger[] = "List element is not an integer: ";
constexpr char kNoListFloat[] = "List element is not a float: ";

// By the type of the value, so that the walks can be templates.
const char* ReadNumber(const char* first, const char* last, int& value) { return ReadStreamInt(first, last, value); }
const char* ReadNumber(const char* first, const char* last, float& value) {
    return ReadStreamFloat(first, last, value);
}

/// A position in the text that moves from token to token and parses them. It stops at a token that is not a plain
/// number: the walk by cursor then reaches the same token and reports the reason.
class TokenWalk {
public:
    TokenWalk(const char* token, const char* end) : m_pToken(token), m_pEnd(end) {}
    [[nodiscard]] const char* At() const { return m_pToken; }

    void Skip(std::int64_t tokens) {
        if (tokens > 0) m_pToken = SkipTokens(m_pToken, m_pEnd, tokens);
    }
    /// Reads the number at the position and moves to the next token.
    /// @return false when there is no plain number; the position is then undefined
    template <class Number>
    bool Read(Number& value) {
        // Form feeds and vertical tabs belong to a token here but are white space to a number: the number after them
        // could be that of the next token.
        if (m_pToken == m_pEnd || static_cast<unsigned char>(*m_pToken) <= ' ') return false;
        const char* at = ReadNumber(m_pToken, m_pEnd, value);
        if (at == nullptr) return false;
        while (at != m_pEnd && !IsTokenSpace(*at)) ++at;
        while (at != m_pEnd && IsTokenSpace(*at)) ++at;
        m_pToken = at;
        return true;
    }

private:
    const char* m_pToken;
    const char* m_pEnd;
};
}  // namespace

// Unlike binary data, text with too few tokens is refused at once: all of it is indexed here anyway.
TextDataSection::TextDataSection(CPLYFile& file, std::string data) : DataSection(file, std::move(data)) {
    m_sToken.reserve(32);
    m_vTokenStart.reserve(m_sData.size() / 15 / kIndexStep);  // a guess: 15 characters per token
    m_iLimit = IndexTokens(m_sData, m_vTokenStart);
    TextDataSection::Scan();
    if (m_iEnd > m_iLimit) throw CPLYFileError("Unexpected end of data.", static_cast<std::int64_t>(m_sData.size()));
}

/// Byte offset of a token. In a walk from token to token it costs the distance to the last one, else at most 63 tokens.
std::int64_t TextDataSection::TokenStart(std::int64_t index) {
    if (index >= m_iLimit) throw CPLYFileError("Unexpected end of data.", static_cast<std::int64_t>(m_sData.size()));
    const std::int64_t sinceIndexed = index % kIndexStep;
    // from the token that was looked up last, or from the indexed one before the wanted one, whichever is nearer
    std::int64_t tokens = index - m_iKnownToken;
    std::int64_t from = m_iKnownStart;
    if (tokens < 0 || tokens >= sinceIndexed) {
        tokens = sinceIndexed;
        from = m_vTokenStart[static_cast<std::size_t>(index / kIndexStep)];
    }
    m_iKnownToken = index;
    m_iKnownStart = tokens == 0 ? from : SkipTokens(m_sData.data() + from, GetDataEnd(), tokens) - m_sData.data();
    return m_iKnownStart;
}

/// The characters of a token, up to white space or the end.
std::string_view TextDataSection::Token(std::int64_t index) {
    const char* const first = m_sData.data() + TokenStart(index);
    const char* last = first;
    while (last != GetDataEnd() && !IsTokenSpace(*last)) ++last;
    return {first, last};
}

/// @return false when the token does not start with a number; what follows the number in the token is ignored
template <class Number>
bool TextDataSection::TryReadToken(std::int64_t index, Number& value) {
    const std::string_view token = Token(index);
    return ReadNumber(token.data(), token.data() + token.size(), value) != nullptr;
}

template <class Number>
Number TextDataSection::ReadToken(std::int64_t index, const char* complaint) {
    Number value = 0;
    if (!TryReadToken(index, value)) FailToken(index, complaint);
    return value;
}

void TextDataSection::FailToken(std::int64_t index, const char* complaint) {
    m_sToken = Token(index);
    throw CPLYFileError(complaint + m_sToken, TokenStart(index));
}

std::int64_t TextDataSection::BytesAfterEnd() {
    return m_iEnd < m_iLimit ? static_cast<std::int64_t>(m_sData.size()) - TokenStart(m_iEnd) : 0;
}

void TextDataSection::SkipProperty(const Element&, int, std::int64_t& cursor) { ++cursor; }

// Every member of a list is one token, and so is its count.
void TextDataSection::SkipList(const Element& element, int, std::int64_t& cursor) {
    int count = 0;
    if (cursor < m_iLimit && !TryReadToken(cursor, count)) {
        // NextRecord() after the last record can, from a list other than the first, end at a token of the next element,
        // which need not be a count: no error there.
        const bool isAfterElement = &element == m_pElement && cursor >= ElementEnd(m_iCurrentElement);
        if (!isAfterElement) FailToken(cursor, kNoInteger);
        count = 0;
    }
    cursor += std::int64_t{1} + std::max(count, 0);
}

// From token to token where all counts are plain numbers; the rest, and its errors, by cursor in the base class.
void TextDataSection::SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor) {
    if (element.HasLists() && cursor < m_iLimit) {
        TokenWalk walk(m_sData.data() + TokenStart(cursor), GetDataEnd());
        while (records > 0 && cursor < m_iLimit) {
            std::int64_t tokens = 0;  // in this record
            std::int64_t ahead = 0;   // of these, after the position of the walk
            bool plain = true;        // no item that only the walk by cursor can skip
            for (const auto& item : element.m_vItems) {
                int count = 0;
                if (item->m_eKind == Kind::kList) {
                    walk.Skip(ahead);
                    plain = plain && walk.Read(count);
                    ahead = -1;
                }
                plain = plain && item->m_eKind != Kind::kOther;
                tokens += std::int64_t{1} + std::max(count, 0);
                ahead += std::int64_t{1} + std::max(count, 0);
            }
            if (!plain) break;
            walk.Skip(ahead);
            cursor += tokens;
            --records;
        }
    }
    DataSection::SkipRecords(element, records, cursor);
}

int TextDataSection::GetInt() { return ReadToken<int>(m_iCursor, kNoInteger); }

float TextDataSection::GetFloat() { return ReadToken<float>(m_iCursor, kNoFloat); }

/// One list at the cursor.
/// @param complaint  the reason for a member that is not such a number
template <class Item, class Number>
void TextDataSection::ReadList(std::vector<Item>& out, const char* complaint) {
    out.clear();
    const int count = ReadToken<int>(m_iCursor, kNoInteger);
    if (count <= 0) return;
    // checked before the reserve(): the count comes from the file
    if (count > m_iLimit - m_iCursor - 1)
        throw CPLYFileError("Unexpected end of data.", static_cast<std::int64_t>(m_sData.size()));
    out.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 1; i <= count; ++i)
        out.push_back(static_cast<Item>(ReadToken<Number>(m_iCursor + i, complaint)));
}

void TextDataSection::GetUCharList(std::vector<unsigned char>& out) {
    ReadList<unsigned char, int>(out, kNoListInteger);
}

void TextDataSection::GetIntList(std::vector<int>& out) { ReadList<int, int>(out, kNoListInteger); }

void TextDataSection::GetFloatList(std::vector<float>& out) { ReadList<float, float>(out, kNoListFloat); }

bool TextDataSection::TryReadColumns(const Element& element, std::span<const PlyColumn> columns,
                                     std::span<const int> items) {
    if (element.m_iCount == 0) return true;
    // The columns in the order of their items, each with the number of tokens to skip before it.
    struct Step {
        std::int64_t m_iSkip;
        PlyColumn m_column;
    };
    std::vector<std::size_t> order(columns.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::ranges::sort(order, {}, [&](std::size_t column) { return items[column]; });
    std::vector<Step> steps;
    int next = 0;  // first item after those of the steps
    for (const std::size_t column : order) {
        if (items[column] < next) return false;  // two columns of the same property
        steps.push_back({items[column] - next, columns[column]});
        next = items[column] + 1;
    }
    const std::int64_t rest = static_cast<std::int64_t>(element.m_vItems.size()) - next;

    // one pass over all records
    TokenWalk walk(m_sData.data() + TokenStart(m_iCursor), GetDataEnd());
    for (int record = 0; record < element.m_iCount; ++record) {
        for (const Step& step : steps) {
            walk.Skip(step.m_iSkip);
            char* const target = static_cast<char*>(step.m_column.m_pTarget) + record * step.m_column.m_iStride;
            if (step.m_column.m_eKind == PlyColumn::kFloat) {
                float value = 0;
                if (!walk.Read(value)) return false;
                std::memcpy(target, &value, sizeof value);
            } else {
                int value = 0;
                if (!walk.Read(value)) return false;
                *target = static_cast<char>(value);
            }
        }
        walk.Skip(rest);
    }
    return true;
}

/// False at the first list of another length and at any token that is not a plain number.
template <class Number>
bool TextDataSection::ReadListsFast(const Element& element, int item, int members, Number* target) {
    TokenWalk walk(m_sData.data() + TokenStart(m_iCursor), GetDataEnd());
    const int items = static_cast<int>(element.m_vItems.size());
    for (int record = 0; record < element.m_iCount; ++record) {
        for (int i = 0; i < items; ++i) {
            if (element.m_vItems[static_cast<std::size_t>(i)]->m_eKind == Kind::kProperty) {
                walk.Skip(1);
                continue;
            }
            // another list is skipped, the wanted one must have the expected length
            int count = 0;
            if (!walk.Read(count)) return false;
            if (i != item) {
                walk.Skip(count);
                continue;
            }
            if (count != members) return false;
            for (int member = 0; member < members; ++member)
                if (!walk.Read(*target++)) return false;
        }
    }
    return true;
}

bool TextDataSection::TryReadLists(const Element& element, int item, int members, int* target) {
    return ReadListsFast(element, item, members, target);
}

bool TextDataSection::TryReadLists(const Element& element, int item, int members, float* target) {
    return ReadListsFast(element, item, members, target);
}
