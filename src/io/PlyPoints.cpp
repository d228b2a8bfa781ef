// The header is parsed by io/CPLYFile.h. The data is read here block by block: a DataSection holds all of it.
#include "io/PlyPoints.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "io/CPLYFile.h"
#include "io/PointCollector.h"
#include "io/PointRecords.h"
#include "io/StreamNumber.h"
#include "io/TextBlocks.h"

namespace {
using KV_ScenePane::PointCloud;
using Kind = Element::ElementSubItem::Kind;

constexpr std::size_t kLongestHeader = std::size_t{1} << 20;  // bytes

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

const Element& ElementAt(const CPLYFile& file, std::size_t index) {
    return static_cast<const Element&>(*file.m_vElements[index]);
}

NumberType NumberTypeOf(int plyType) {
    switch (plyType) {
        case kPlyChar:
            return NumberType::kInt8;
        case kPlyUChar:
        case kPlyUInt8:
            return NumberType::kUInt8;
        case kPlyShort:
            return NumberType::kInt16;
        case kPlyUShort:
            return NumberType::kUInt16;
        case kPlyInt:
            return NumberType::kInt32;
        case kPlyUInt:
        case kPlyUInt32:
            return NumberType::kUInt32;
        case kPlyDouble:
            return NumberType::kDouble;
        default:
            return NumberType::kFloat;
    }
}

/// What is read of a vertex: positions of its items, and of their bytes in binary data.
struct Vertex {
    std::size_t element = 0;  ///< index in the file
    std::size_t items = 0;    ///< numbers per record
    std::size_t bytes = 0;    ///< per record
    std::uint64_t records = 0;
    std::array<std::size_t, 6> item{};  ///< of x, y, z, red, green, blue
    PointLayout layout;
};

/// The start of the file as text, with "obj_info" lines turned into comments, which they are.
std::string ReadHeaderText(ByteInput& input) {
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(kLongestHeader, input.Size())), '\0');
    input.Seek(0);
    text.resize(input.Read(text.data(), text.size()));
    constexpr std::string_view kInfo = "\nobj_info", kComment = "\ncomment ";
    static_assert(kInfo.size() == kComment.size());
    const std::size_t end = text.find("\nend_header");
    for (std::size_t at = text.find(kInfo); at < end && at != std::string::npos; at = text.find(kInfo, at + 1))
        text.replace(at, kInfo.size(), kComment);
    return text;
}

/// @return offset of the data
std::uint64_t ReadHeader(ByteInput& input, CPLYFile& file) {
    // other usual names of the types
    for (const auto& [name, type] :
         {std::pair("int8", kPlyChar), std::pair("int16", kPlyShort), std::pair("uint16", kPlyUShort),
          std::pair("int32", kPlyInt), std::pair("float64", kPlyDouble)})
        file.m_mapTypes.emplace(name, type);
    std::istringstream stream(ReadHeaderText(input));
    try {
        file.Read(stream, true);
    } catch (const CPLYFileError& error) {
        throw FileReadError(Shown(error.what(), 200));
    }
    if (file.GetFormat() == CPLYFile::kBinaryBigEndian)
        throw FileReadError("Big-endian binary format not yet supported.");
    const auto offset = static_cast<std::int64_t>(stream.tellg());
    const auto size = static_cast<std::int64_t>(std::min<std::uint64_t>(kLongestHeader, input.Size()));
    if (offset >= 0 && offset < size) return static_cast<std::uint64_t>(offset);
    if (input.Size() > kLongestHeader) throw FileReadError("the header is longer than 1048576 bytes");
    return input.Size();  // no data
}

/// Index of the first item of the name that is a number.
std::optional<std::size_t> FindNumber(const Element& element, std::string_view name) {
    for (std::size_t i = 0; i < element.m_vItems.size(); ++i)
        if (element.m_vItems[i]->m_sName == name && element.m_vItems[i]->m_eKind == Kind::kProperty) return i;
    return {};
}

const Element::Property& PropertyAt(const Element& element, std::size_t item) {
    return static_cast<const Element::Property&>(*element.m_vItems[item]);
}

/// @return the type and the offset in a record without lists
RecordField FieldAt(const Element& element, std::size_t item) {
    RecordField field{NumberTypeOf(PropertyAt(element, item).m_iType), 0};
    for (std::size_t i = 0; i < item; ++i) field.offset += WidthOf(NumberTypeOf(PropertyAt(element, i).m_iType));
    return field;
}

/// The colours under one of their usual names.
/// @return whether there are any
bool FindColors(const Element& element, Vertex& vertex) {
    constexpr std::string_view kNames[][3] = {
        {"red", "green", "blue"}, {"diffuse_red", "diffuse_green", "diffuse_blue"}, {"r", "g", "b"}};
    for (const auto& names : kNames) {
        std::size_t found = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const auto item = FindNumber(element, names[i]);
            if (!item) continue;
            ++found;
            vertex.item[3 + i] = *item;
            vertex.layout.colors[i] = FieldAt(element, *item);
        }
        if (found == 0) continue;
        // "r" alone may be a radius
        if (found < 3 && names[0] == "r") return false;
        if (found < 3) throw FileReadError("the vertices have some of the colours red, green and blue only");
        const auto& colors = vertex.layout.colors;
        if (colors[0].type != colors[1].type || colors[0].type != colors[2].type)
            throw FileReadError("red, green and blue are numbers of different types");
        return true;
    }
    return false;
}

Vertex FindVertex(const CPLYFile& file) {
    Vertex vertex;
    while (vertex.element < file.m_vElements.size() && file.m_vElements[vertex.element]->m_sName != "vertex")
        ++vertex.element;
    if (vertex.element == file.m_vElements.size()) throw FileReadError("No such element: vertex");
    const Element& element = ElementAt(file, vertex.element);
    if (element.HasLists()) throw FileReadError("vertices with lists are not read");
    constexpr const char* kAxes[] = {"x", "y", "z"};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto item = FindNumber(element, kAxes[i]);
        if (!item) throw FileReadError(std::string("No such property: ").append(kAxes[i]));
        vertex.item[i] = *item;
        vertex.layout.xyz[i] = FieldAt(element, *item);
    }
    if (FindColors(element, vertex)) vertex.layout.form = ColorForm::kChannels;
    vertex.records = static_cast<std::uint64_t>(element.m_iCount);
    vertex.items = element.m_vItems.size();
    const RecordField last = FieldAt(element, vertex.items - 1);
    vertex.bytes = last.offset + WidthOf(last.type);
    return vertex;
}

[[noreturn]] void FailShort() { throw FileReadError("Unexpected end of data."); }

/// Moves over binary elements with lists, which have no fixed size.
class BinarySkipper {
public:
    BinarySkipper(ByteInput& input, std::uint64_t offset, ReadProgress& progress)
        : m_rInput(input), m_rProgress(progress), m_uOffset(offset) {}
    void Skip(const Element& element);
    [[nodiscard]] std::uint64_t Offset() const { return m_uOffset; }
    /// How much of the file is in front of the offset, 0 to 1.
    [[nodiscard]] double Part() const { return static_cast<double>(m_uOffset) / static_cast<double>(m_rInput.Size()); }

private:
    void SkipBytes(std::uint64_t bytes);
    [[nodiscard]] std::uint64_t ReadCount(int plyType);

    ByteInput& m_rInput;
    ReadProgress& m_rProgress;
    std::uint64_t m_uOffset;
    std::array<std::byte, 1 << 16> m_piece{};  ///< of the file, so that not every count is a read
    std::uint64_t m_uPieceAt = 0;
    std::size_t m_uPieceSize = 0;
};

void BinarySkipper::SkipBytes(std::uint64_t bytes) {
    if (m_uOffset > m_rInput.Size() || bytes > m_rInput.Size() - m_uOffset) FailShort();
    m_uOffset += bytes;
}

// A negative count is an empty list.
std::uint64_t BinarySkipper::ReadCount(int plyType) {
    const NumberType type = NumberTypeOf(plyType);
    if (type == NumberType::kFloat || type == NumberType::kDouble)
        throw FileReadError(std::string("not an integer: ").append(PlyTypeName(plyType)));
    const std::uint64_t first = m_uOffset;
    SkipBytes(WidthOf(type));
    if (first < m_uPieceAt || m_uOffset > m_uPieceAt + m_uPieceSize) {
        m_rInput.Seek(first);
        m_uPieceAt = first;
        m_uPieceSize = m_rInput.Read(m_piece.data(), m_piece.size());
        if (m_uPieceSize < WidthOf(type)) FailShort();
        m_rProgress.Report(Part());
    }
    const std::byte* const at = m_piece.data() + (first - m_uPieceAt);
    std::uint32_t bits = 0;
    std::memcpy(&bits, at, WidthOf(type));
    const bool isSigned = type == NumberType::kInt8 || type == NumberType::kInt16 || type == NumberType::kInt32;
    const bool isNegative = isSigned && (bits >> (8 * WidthOf(type) - 1) & 1) != 0;
    return isNegative ? 0 : bits;
}

void BinarySkipper::Skip(const Element& element) {
    if (element.m_vItems.empty()) return;
    if (!element.HasLists()) {
        const RecordField last = FieldAt(element, element.m_vItems.size() - 1);
        return SkipBytes((last.offset + WidthOf(last.type)) * static_cast<std::uint64_t>(element.m_iCount));
    }
    for (int record = 0; record < element.m_iCount; ++record) {
        for (const auto& item : element.m_vItems) {
            if (item->m_eKind == Kind::kProperty) {
                SkipBytes(WidthOf(NumberTypeOf(static_cast<const Element::Property&>(*item).m_iType)));
                continue;
            }
            const auto& list = static_cast<const Element::List&>(*item);
            const std::uint64_t members = ReadCount(list.m_iCountType);
            SkipBytes(members * WidthOf(NumberTypeOf(list.m_iElementType)));
        }
    }
}

/// The words of text data.
class TextPoints {
public:
    TextPoints(ByteInput& input, std::uint64_t offset, const Vertex& vertex, ReadProgress& progress)
        : m_rVertex(vertex), m_rProgress(progress), m_blocks(input, offset, TextBlocks::Cut::kAfterWord) {}
    void Skip(const Element& element);
    PointCloud Read(std::uint64_t space);

private:
    [[nodiscard]] bool FindWord();
    [[nodiscard]] std::string_view SkipWord();
    [[nodiscard]] std::vector<float*> Targets(PointCollector& points) const;
    void ReadPoint(std::uint64_t point, const std::vector<float*>& targets, std::size_t index);

    const Vertex& m_rVertex;
    ReadProgress& m_rProgress;
    TextBlocks m_blocks;
    const char* m_pAt = nullptr;
    const char* m_pEnd = nullptr;
};

/// Moves to the start of the next word.
/// @return false at the end of the data
bool TextPoints::FindWord() {
    while (true) {
        while (m_pAt != m_pEnd && IsSpace(*m_pAt)) ++m_pAt;
        if (m_pAt != m_pEnd) return true;
        const std::string_view block = m_blocks.Next();
        if (block.empty()) return false;
        if (!IsSpace(block.back()))
            throw FileReadError("a word is longer than " + std::to_string(TextBlocks::kBlock) + " characters");
        m_pAt = block.data();
        m_pEnd = m_pAt + block.size();
        m_rProgress.Report(m_blocks.Part());
    }
}

std::string_view TextPoints::SkipWord() {
    if (!FindWord()) FailShort();
    const char* const first = m_pAt;
    m_pAt = std::find_if(first, m_pEnd, IsSpace);
    return {first, static_cast<std::size_t>(m_pAt - first)};
}

void TextPoints::Skip(const Element& element) {
    if (element.m_vItems.empty()) return;
    for (int record = 0; record < element.m_iCount; ++record) {
        for (const auto& item : element.m_vItems) {
            const std::string_view word = SkipWord();
            if (item->m_eKind != Kind::kList) continue;
            int members = 0;
            if (ReadStreamInt(word.data(), word.data() + word.size(), members) != word.data() + word.size())
                throw FileReadError(std::string("Integer expected, but found this: ").append(Quoted(word)));
            for (; members > 0; --members) (void)SkipWord();
        }
    }
}

/// One per item of a vertex: where its value in the first point goes, null when it is not read.
std::vector<float*> TextPoints::Targets(PointCollector& points) const {
    std::vector<float*> targets(m_rVertex.items, nullptr);
    for (std::size_t i = 0; i < 3; ++i) {
        targets[m_rVertex.item[i]] = points.Xyz() + i;
        if (points.HasColors()) targets[m_rVertex.item[3 + i]] = points.Colors() + i;
    }
    return targets;
}

void TextPoints::ReadPoint(std::uint64_t point, const std::vector<float*>& targets, std::size_t index) {
    for (float* const target : targets) {
        if (!FindWord())
            throw FileReadError("the file announces " + std::to_string(m_rVertex.records) + " points and has " +
                                std::to_string(point));
        if (target == nullptr) {
            (void)SkipWord();
            continue;
        }
        const char* const first = m_pAt;
        const char* const after = ReadStreamFloat(first, m_pEnd, target[3 * index]);
        if (after == nullptr || !IsSpace(*after))
            throw FileReadError("point " + std::to_string(point + 1) + ": " + NumberFault(SkipWord()));
        m_pAt = after;
    }
}

/// @param space  the largest number of vertices that fit the file
PointCloud TextPoints::Read(std::uint64_t space) {
    RequireSpace(m_rVertex.records, space);
    const PointLayout& layout = m_rVertex.layout;
    PointCollector points(m_rVertex.records, layout.form == ColorForm::kChannels);
    const std::vector<float*> targets = Targets(points);
    const float scale = points.HasColors() ? ScaleOf(layout.colors[0].type) : 0;
    for (std::uint64_t done = 0; done < m_rVertex.records;) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(PointCollector::kBlock, m_rVertex.records - done));
        for (std::size_t i = 0; i < count; ++i) ReadPoint(done + i, targets, i);
        if (scale == 0)
            points.AddUnscaled(count);
        else
            points.AddScaled(count, scale);
        done += count;
    }
    return points.Finish();
}
}  // namespace

PointCloud ReadPlyPoints(ByteInput& input, ReadProgress& progress) {
    CPLYFile file;
    const std::uint64_t offset = ReadHeader(input, file);
    const Vertex vertex = FindVertex(file);
    if (file.GetFormat() == CPLYFile::kAscii) {
        TextPoints text(input, offset, vertex, progress);
        for (std::size_t i = 0; i < vertex.element; ++i) text.Skip(ElementAt(file, i));
        return text.Read((input.Size() - offset + 1) / (2 * vertex.items));
    }
    BinarySkipper skipper(input, offset, progress);
    for (std::size_t i = 0; i < vertex.element; ++i) skipper.Skip(ElementAt(file, i));
    return ReadPointRecords(input, skipper.Offset(), vertex.bytes, vertex.records, vertex.layout, PointHoles::kRefused,
                            progress, skipper.Part());
}
