// Two forms: bytes in either order, and words.
#include "PlyNumbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "FoundMesh.h"
#include "NumberWords.h"

namespace {

/// Whole, and not more than the data can hold in any form.
std::uint64_t CountOf(double value, std::uint64_t most) {
    if (!(value > 0)) return 0;
    if (value > static_cast<double>(most) || value != std::floor(value)) throw UnreadableFile(kCutShort);
    return static_cast<std::uint64_t>(value);
}

bool IsComment(const NumberWords& words) { return words.Is("comment") || words.Is("obj_info"); }

class BinaryNumbers : public PlyNumbers {
public:
    BinaryNumbers(std::string_view data, bool isSwapped) : m_sData(data), m_bSwapped(isSwapped) {}

    void RequireRecords(const PlyElementHead& element) const override {
        std::size_t least = 0;
        for (const PlyItem& item : element.items) least += WidthOf(item.countType.value_or(item.type));
        if (least > 0 && element.count > m_sData.size() / least) throw UnreadableFile(kCutShort);
    }

    double Next(PlyNumber type) override {
        switch (type) {
            case PlyNumber::Int8:
                return Value<std::int8_t>();
            case PlyNumber::UInt8:
                return Value<std::uint8_t>();
            case PlyNumber::Int16:
                return Value<std::int16_t>();
            case PlyNumber::UInt16:
                return Value<std::uint16_t>();
            case PlyNumber::Int32:
                return Value<std::int32_t>();
            case PlyNumber::UInt32:
                return Value<std::uint32_t>();
            case PlyNumber::Int64:
                return static_cast<double>(Value<std::int64_t>());
            case PlyNumber::UInt64:
                return static_cast<double>(Value<std::uint64_t>());
            case PlyNumber::Float32:
                return double{Value<float>()};
            case PlyNumber::Float64:
                return Value<double>();
        }
        return 0;
    }

    std::uint64_t NextCount(const PlyItem& list) override {
        const double count = Next(*list.countType);
        return CountOf(count, m_sData.size() / WidthOf(list.type));
    }

    [[nodiscard]] std::uint64_t BytesAfterEnd() const override { return m_sData.size(); }

private:
    template <class Number>
    Number Value() {
        std::array<char, sizeof(Number)> bytes;
        if (m_sData.size() < bytes.size()) throw UnreadableFile(kCutShort);
        std::copy_n(m_sData.begin(), bytes.size(), bytes.begin());
        m_sData.remove_prefix(bytes.size());
        if (m_bSwapped) std::ranges::reverse(bytes);
        return std::bit_cast<Number>(bytes);
    }

    std::string_view m_sData;  // what is left
    bool m_bSwapped;           // the order of bytes is not that of the machine
};

/// Lines that are neither empty nor a comment.
std::uint64_t LinesOf(NumberWords words) {
    std::uint64_t lines = 0;
    for (; words.Next(); words.SkipLine())
        if (!IsComment(words)) ++lines;
    return lines;
}

class TextNumbers : public PlyNumbers {
public:
    /// @param records  of all elements
    TextNumbers(std::string_view file, std::size_t dataStart, std::uint64_t records)
        : m_words(file, dataStart),
          m_uMostWords((file.size() - dataStart) / 2 + 1),
          m_bRecordPerLine(LinesOf(m_words) == records) {}

    void RequireRecords(const PlyElementHead& element) const override {
        if (!element.items.empty() && element.count > m_uMostWords / element.items.size())
            throw UnreadableFile(kCutShort);
    }

    double Next(PlyNumber) override {
        if (!NextWord(m_words)) throw UnreadableFile(kCutShort);
        double value = 0;
        if (!m_words.Number(value)) throw m_words.NoNumber();
        return value;
    }

    std::uint64_t NextCount(const PlyItem& list) override { return CountOf(Next(*list.countType), m_uMostWords); }

    // Where each line is a record, more numbers than the header announces do no harm.
    void EndRecord() override {
        if (m_bRecordPerLine) m_words.SkipLine();
    }

    [[nodiscard]] std::uint64_t BytesAfterEnd() const override {
        NumberWords words = m_words;
        return NextWord(words) ? words.BytesFromWord() : 0;
    }

private:
    /// A comment may be between the numbers, from its keyword to the end of its line.
    static bool NextWord(NumberWords& words) {
        bool isWord = words.Next();
        while (isWord && IsComment(words)) {
            words.SkipLine();
            isWord = words.Next();
        }
        return isWord;
    }

    NumberWords m_words;
    std::uint64_t m_uMostWords;  // in all of the data: a word and what separates it from the next one
    bool m_bRecordPerLine;
};

}  // namespace

std::unique_ptr<PlyNumbers> MakePlyNumbers(const PlyHeader& header, std::string_view file) {
    if (header.format == PlyHeader::Format::Text) {
        std::uint64_t records = 0;
        for (const PlyElementHead& element : header.elements) records += element.count;
        return std::make_unique<TextNumbers>(file, header.dataStart, records);
    }
    const bool isBigEndian = header.format == PlyHeader::Format::BigEndian;
    return std::make_unique<BinaryNumbers>(file.substr(header.dataStart),
                                           isBigEndian != (std::endian::native == std::endian::big));
}
