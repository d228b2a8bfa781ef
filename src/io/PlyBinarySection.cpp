// Data of a little-endian ply file: values at any alignment, copied with memcpy(). The walks over records are in
// PlyDataSection.cpp; every read is checked here against the end of the data.
#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <type_traits>

#include "io/CPLYFile.h"

static_assert(std::endian::native == std::endian::little, "values are copied out of the file as they are");

namespace {
using Kind = Element::ElementSubItem::Kind;

/// A value at any alignment. The compiler makes one load of it.
template <class Value>
Value Load(const char* at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

/// An integer of any width, widened to 64 bits.
/// @return false when the type is not an integer
bool LoadInteger(int type, const char* at, std::int64_t& value) {
    switch (type) {
        case kPlyUInt8:
        case kPlyUChar:
            value = Load<std::uint8_t>(at);
            return true;
        case kPlyChar:
            value = Load<std::int8_t>(at);
            return true;
        case kPlyShort:
            value = Load<std::int16_t>(at);
            return true;
        case kPlyUShort:
            value = Load<std::uint16_t>(at);
            return true;
        case kPlyInt:
            value = Load<std::int32_t>(at);
            return true;
        case kPlyUInt32:
        case kPlyUInt:
            value = Load<std::uint32_t>(at);
            return true;
        default:
            return false;
    }
}

bool IsInteger(int type) { return type >= kPlyUInt8 && type <= kPlyUInt; }
bool IsFloating(int type) { return type == kPlyFloat32 || type == kPlyFloat || type == kPlyDouble; }

[[noreturn]] void FailInteger(int type) { throw CPLYFileError(std::string("not an integer: ") + PlyTypeName(type)); }
[[noreturn]] void FailFloating(int type) {
    throw CPLYFileError(std::string("not a floating-point: ") + PlyTypeName(type));
}

const Element::ElementSubItem& ItemAt(const Element& element, int item) {
    return *element.m_vItems[static_cast<std::size_t>(item)];
}

/// The type of a property; kPlyNone for a list, which is not a number.
int NumberType(const Element& element, int item) {
    const auto& subItem = ItemAt(element, item);
    return subItem.m_eKind == Kind::kProperty ? static_cast<const Element::Property&>(subItem).m_iType : kPlyNone;
}

/// @throws CPLYFileError when the item is not a list
const Element::List& ListAt(const Element& element, int item) {
    const auto& subItem = ItemAt(element, item);
    if (subItem.m_eKind != Kind::kList) throw CPLYFileError("not a list: " + subItem.m_sName);
    return static_cast<const Element::List&>(subItem);
}

/// For elements that mix lists and properties, walked from another item than the first.
[[noreturn]] void FailMixed(const Element& element) {
    throw CPLYFileError("Lists and properties are mixed in element " + element.m_sName +
                        ", and only its first item can be walked.");
}

/// One list's members as ints or floats. Types of the same width keep their bits.
void ConvertList(const char* from, int type, int members, int* target) {
    if (PlyTypeWidth(type) == 4) {
        std::memcpy(target, from, 4 * static_cast<std::size_t>(members));
        return;
    }
    for (int i = 0; i < members; ++i) {
        std::int64_t value = 0;
        LoadInteger(type, from + i * PlyTypeWidth(type), value);
        target[i] = static_cast<int>(value);
    }
}

void ConvertList(const char* from, int type, int members, float* target) {
    if (type != kPlyDouble) {
        std::memcpy(target, from, 4 * static_cast<std::size_t>(members));
        return;
    }
    for (int i = 0; i < members; ++i)
        target[i] = static_cast<float>(Load<double>(from + 8 * static_cast<std::ptrdiff_t>(i)));
}

/// Records of a count byte and 32-bit members, which are copied without a conversion.
/// @return false when a count is not @p members
template <class Number>
bool CopyLists(const char* record, const char* end, int records, int members, Number* target) {
    const std::ptrdiff_t width = 1 + std::ptrdiff_t{4} * members;
    if (records > (end - record) / width) return false;
    for (int i = 0; i < records; ++i, record += width, target += members) {
        if (*record != members) return false;
        if (members == 3)
            std::memcpy(target, record + 1, 12);  // a constant size compiles to moves, not to a call
        else
            std::memcpy(target, record + 1, 4 * static_cast<std::size_t>(members));
    }
    return true;
}
}  // namespace

// Scan() only finds the elements: missing records are reported when they are read.
BinaryDataSection::BinaryDataSection(CPLYFile& file, std::string data) : DataSection(file, std::move(data)) {
    if (file.m_iFormat == CPLYFile::kBinaryBigEndian)
        throw CPLYFileError("Big-endian binary format not yet supported.");
    m_iLimit = static_cast<std::int64_t>(m_sData.size());
    BinaryDataSection::Scan();
}

// "offset > limit - width" and not "offset + width > limit": an offset far after the end must not overflow.
std::int64_t BinaryDataSection::ReadInteger(int type, std::int64_t offset) {
    if (!IsInteger(type)) FailInteger(type);
    const int width = PlyTypeWidth(type);
    if (offset > m_iLimit - width) throw CPLYFileError("Unexpected end of data.", offset);
    std::int64_t value = 0;
    LoadInteger(type, m_sData.data() + offset, value);
    m_iReadOffset = offset + width;
    return value;
}

float BinaryDataSection::ReadFloating(int type, std::int64_t offset) {
    if (!IsFloating(type)) FailFloating(type);
    const int width = PlyTypeWidth(type);
    if (offset > m_iLimit - width) throw CPLYFileError("Unexpected end of data.", offset);
    m_iReadOffset = offset + width;
    const char* const at = m_sData.data() + offset;
    return type == kPlyDouble ? static_cast<float>(Load<double>(at)) : Load<float>(at);
}

// A skip past the end is no error, so a count there is 0; reads of values check the end themselves.
std::int64_t BinaryDataSection::CountForSkip(int type, std::int64_t offset) const {
    char bytes[8] = {};  // bytes after the end of the data count as 0
    if (offset < m_iLimit)
        std::memcpy(bytes, m_sData.data() + offset,
                    static_cast<std::size_t>(std::min<std::int64_t>(8, m_iLimit - offset)));
    std::int64_t count = 0;
    if (!LoadInteger(type, bytes, count)) FailInteger(type);
    return std::max<std::int64_t>(count, 0);
}

std::int64_t BinaryDataSection::BytesAfterEnd() {
    return std::max<std::int64_t>(0, static_cast<std::int64_t>(m_sData.size()) - m_iEnd);
}

void BinaryDataSection::SkipProperty(const Element& element, int item, std::int64_t& cursor) {
    const auto& subItem = ItemAt(element, item);
    if (subItem.m_eKind != Kind::kProperty) FailMixed(element);
    cursor += PlyTypeWidth(static_cast<const Element::Property&>(subItem).m_iType);
}

void BinaryDataSection::SkipList(const Element& element, int item, std::int64_t& cursor) {
    const auto& subItem = ItemAt(element, item);
    if (subItem.m_eKind != Kind::kList) FailMixed(element);
    const auto& list = static_cast<const Element::List&>(subItem);
    const std::int64_t count = CountForSkip(list.m_iCountType, cursor);
    cursor += PlyTypeWidth(list.m_iCountType) + count * PlyTypeWidth(list.m_iElementType);
}

// The lists of most files have the same lengths in all records. A record whose counts equal those of the record before
// has the same size, and all its counts are at the same offsets: they are compared at once, where the plain walk must
// read each count before it knows the offset of the next one.
void BinaryDataSection::SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor) {
    struct Count {
        std::int64_t m_iOffset;  // from the start of the record
        std::size_t m_uWidth;
    };
    std::vector<Count> counts;
    while (element.HasLists() && records > 0 && cursor < m_iLimit) {
        const std::int64_t start = cursor;
        counts.clear();
        // one record item by item, noting its counts
        for (int item = 0; item < static_cast<int>(element.m_vItems.size()); ++item) {
            if (ItemAt(element, item).m_eKind == Kind::kList)
                counts.push_back(
                    {cursor - start, static_cast<std::size_t>(PlyTypeWidth(ListAt(element, item).m_iCountType))});
            SkipItem(element, item, cursor);
        }
        --records;
        // then all records of the same shape
        const std::int64_t width = cursor - start;
        const char* const first = m_sData.data() + start;
        while (records > 0 && width <= m_iLimit - cursor) {
            const char* const record = m_sData.data() + cursor;
            const auto repeats = [&](const Count& count) {
                return std::memcmp(record + count.m_iOffset, first + count.m_iOffset, count.m_uWidth) == 0;
            };
            if (!std::ranges::all_of(counts, repeats)) break;
            cursor += width;
            --records;
        }
    }
    DataSection::SkipRecords(element, records, cursor);
}

int BinaryDataSection::GetInt() {
    assert(m_pElement != nullptr);
    return static_cast<int>(ReadInteger(NumberType(*m_pElement, m_iItemIndex), m_iCursor));
}

float BinaryDataSection::GetFloat() {
    assert(m_pElement != nullptr);
    return ReadFloating(NumberType(*m_pElement, m_iItemIndex), m_iCursor);
}

/// One list at the cursor, by its declared types.
/// @param read  reads a member of a type at an offset
template <class Item, class Read>
void BinaryDataSection::ReadList(std::vector<Item>& out, Read read) {
    assert(m_pElement != nullptr);
    out.clear();
    const Element::List& list = ListAt(*m_pElement, m_iItemIndex);
    const std::int64_t count = ReadInteger(list.m_iCountType, m_iCursor);
    if (count <= 0) return;
    const std::int64_t width = PlyTypeWidth(list.m_iElementType);
    // Checked by division before the reserve(): the count comes from the file.
    const std::int64_t fitting = (m_iLimit - m_iReadOffset) / width;
    if (count > fitting) throw CPLYFileError("Unexpected end of data.", m_iReadOffset + fitting * width);
    out.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) out.push_back(static_cast<Item>(read(list.m_iElementType, m_iReadOffset)));
}

void BinaryDataSection::GetUCharList(std::vector<unsigned char>& out) {
    ReadList(out, [this](int type, std::int64_t offset) { return ReadInteger(type, offset); });
}

void BinaryDataSection::GetIntList(std::vector<int>& out) {
    ReadList(out, [this](int type, std::int64_t offset) { return ReadInteger(type, offset); });
}

void BinaryDataSection::GetFloatList(std::vector<float>& out) {
    ReadList(out, [this](int type, std::int64_t offset) { return ReadFloating(type, offset); });
}

/// False at the first list of another length, or where a list needs an error: the slow walk then finds it again.
template <class Number>
bool BinaryDataSection::ReadListsFast(const Element& element, int item, int members, Number* target) {
    const Element::List& list = ListAt(element, item);
    const int type = list.m_iElementType;
    if (std::is_same_v<Number, float> ? !IsFloating(type) : !IsInteger(type)) return false;
    if (!IsInteger(list.m_iCountType)) return false;
    const std::int64_t membersWidth = static_cast<std::int64_t>(members) * PlyTypeWidth(type);
    std::int64_t cursor = m_iCursor;
    // the usual face: one list, a count byte, members of 4 bytes
    if (element.m_vItems.size() == 1 && PlyTypeWidth(list.m_iCountType) == 1 && PlyTypeWidth(type) == 4 &&
        members < 128)
        return CopyLists(m_sData.data() + cursor, GetDataEnd(), element.m_iCount, members, target);
    // any other element: past the items before the list, the list, past the items after it
    for (int record = 0; record < element.m_iCount; ++record) {
        for (int i = 0; i < item; ++i) SkipItem(element, i, cursor);
        const std::int64_t count = CountForSkip(list.m_iCountType, cursor);
        cursor += PlyTypeWidth(list.m_iCountType);
        if (count != members || membersWidth > m_iLimit - cursor) return false;
        ConvertList(m_sData.data() + cursor, type, members, target);
        target += members;
        cursor += membersWidth;
        for (int i = item + 1; i < static_cast<int>(element.m_vItems.size()); ++i) SkipItem(element, i, cursor);
    }
    return true;
}

bool BinaryDataSection::TryReadLists(const Element& element, int item, int members, int* target) {
    return ReadListsFast(element, item, members, target);
}

bool BinaryDataSection::TryReadLists(const Element& element, int item, int members, float* target) {
    return ReadListsFast(element, item, members, target);
}
