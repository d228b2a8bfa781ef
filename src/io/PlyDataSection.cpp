// Walks over the data of a ply file, the same for text and binary: from element to element, from record to record, from
// item to item. The cursor counts tokens in text and bytes in binary data; a skip of one item is virtual.
#include "io/CPLYFile.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

namespace {
using Kind = Element::ElementSubItem::Kind;

const Element& ElementAt(const CPLYFile& file, int index) {
    return static_cast<const Element&>(*file.m_vElements[static_cast<std::size_t>(index)]);
}

/// cursor + times * step without overflow; all three are not negative, and so is the result, which is at most kFar.
std::int64_t Advance(std::int64_t cursor, std::int64_t times, std::int64_t step) {
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 2;  // further steps cannot overflow
    std::int64_t distance = 0;
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(times, step, &distance) || __builtin_add_overflow(cursor, distance, &sum)) return kFar;
    return std::min(sum, kFar);
}

/// Index of the first item of the name; the number of items when there is none.
int FindItem(const Element& element, std::string_view name) {
    std::size_t item = 0;
    while (item < element.m_vItems.size() && element.m_vItems[item]->m_sName != name) ++item;
    return static_cast<int>(item);
}

/// True for an element without items, too.
bool HasOnlyLists(const Element& element) {
    for (const auto& item : element.m_vItems)
        if (item->m_eKind != Kind::kList) return false;
    return true;
}

/// Stores the values of a walk in a column; its functions are callbacks of ForEachFloat() and ForEachInt().
struct ColumnWriter {
    const PlyColumn& m_rColumn;
    int m_iCount;

    static bool StoreFloat(std::int64_t index, float value, void* user) {
        const auto& self = *static_cast<const ColumnWriter*>(user);
        if (index >= self.m_iCount) return false;
        std::memcpy(static_cast<char*>(self.m_rColumn.m_pTarget) + index * self.m_rColumn.m_iStride, &value,
                    sizeof value);
        return true;
    }
    static bool StoreLowByte(std::int64_t index, int value, void* user) {
        const auto& self = *static_cast<const ColumnWriter*>(user);
        if (index >= self.m_iCount) return false;
        static_cast<unsigned char*>(self.m_rColumn.m_pTarget)[index * self.m_rColumn.m_iStride] =
            static_cast<unsigned char>(value);
        return true;
    }
};
}  // namespace

// By subtraction from the bytes that are there: the product of count and stride was checked when the view was made.
void PlyArrayView::RequireWidth(int bytes) const {
    if (m_iCount == 0) return;
    const std::int64_t last = (m_iCount - 1) * m_iStride;
    if (bytes > m_iBytes - last) throw CPLYFileError("Unexpected end of data.", m_iOffset + last);
}

// Without this pass the start of an element would need a walk over all elements before it, at every Seek().
void DataSection::Scan() {
    m_vElementStart.clear();
    std::int64_t cursor = 0;
    for (const auto& element : m_pFile->m_vElements) {
        m_vElementStart.push_back(cursor);
        const auto& records = static_cast<const Element&>(*element);
        if (records.m_iCount > 0) SkipRecords(records, records.m_iCount, cursor);
    }
    m_iEnd = cursor;
}

void DataSection::SkipItem(const Element& element, int item, std::int64_t& cursor) {
    switch (element.m_vItems[static_cast<std::size_t>(item)]->m_eKind) {
        case Kind::kProperty:
            return SkipProperty(element, item, cursor);
        case Kind::kList:
            return SkipList(element, item, cursor);
        case Kind::kOther:
            break;
    }
    throw CPLYFileError("internal error (unknown property type)");
}

void DataSection::SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor) {
    const int items = static_cast<int>(element.m_vItems.size());
    const bool hasLists = element.HasLists();
    while (records > 0) {
        const std::int64_t start = cursor;
        for (int item = 0; item < items; ++item) SkipItem(element, item, cursor);
        --records;
        // Without lists all records have the size of this one, and so have those after the end of the data, where all
        // lists are empty: a count of records in the header cannot make this loop long.
        if (hasLists && start < m_iLimit) continue;
        cursor = Advance(cursor, records, cursor - start);
        return;
    }
}

// Files have a handful of elements: a linear search.
int DataSection::ElementIndex(std::string_view name) const {
    const auto& elements = m_pFile->m_vElements;
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (elements[i]->m_sName == name) return static_cast<int>(i);
    throw CPLYFileError("No such element: " + std::string(name));
}

// The end of one element is the start of the next.
std::int64_t DataSection::ElementEnd(int element) const {
    const auto next = static_cast<std::size_t>(element) + 1;
    return next < m_vElementStart.size() ? m_vElementStart[next] : m_iEnd;
}

void DataSection::Seek(std::string_view element, std::string_view property) {
    m_iCurrentElement = ElementIndex(element);
    m_pElement = &ElementAt(*m_pFile, m_iCurrentElement);
    m_iCursor = m_vElementStart[static_cast<std::size_t>(m_iCurrentElement)];
    m_iItemIndex = 0;  // in case a skip throws: the previous element may have more items
    m_iFixedStep = -1;
    const int items = static_cast<int>(m_pElement->m_vItems.size());
    // past the items before the wanted one; past all items when there is none of that name
    const int wanted = FindItem(*m_pElement, property);
    for (int item = 0; item < wanted; ++item) SkipItem(*m_pElement, item, m_iCursor);
    m_iItemIndex = wanted < items ? wanted : 0;

    // Without lists every record has the same size: NextRecord() then adds it.
    if (m_pElement->HasLists()) return;
    m_iFixedStep = 0;
    for (int item = 0; item < items; ++item) SkipItem(*m_pElement, item, m_iFixedStep);
}

void DataSection::NextRecord() {
    assert(m_pElement != nullptr);
    if (m_iFixedStep >= 0) {
        m_iCursor += m_iFixedStep;
        return;
    }
    // one skip per item, by the kinds of the items from the first one on; see the header
    const int items = static_cast<int>(m_pElement->m_vItems.size());
    for (int step = 0; step < items; ++step) {
        if (m_pElement->m_vItems[static_cast<std::size_t>(step)]->m_eKind == Kind::kList)
            SkipList(*m_pElement, m_iItemIndex, m_iCursor);
        else
            SkipProperty(*m_pElement, m_iItemIndex, m_iCursor);
        m_iItemIndex = (m_iItemIndex + 1) % items;
    }
}

/// @param get  reads the value at the cursor
template <class Get, class Callback>
void DataSection::ForEach(std::string_view element, std::string_view property, Get get, Callback callback, void* user) {
    // The end by cursor, not by the number of records: see the header about the number of calls.
    Seek(element, property);
    const std::int64_t end = ElementEnd(m_iCurrentElement);
    for (std::int64_t i = 0; m_iCursor < end; ++i) {
        if (!callback(i, get(), user)) return;
        NextRecord();
    }
}

void DataSection::ForEachInt(std::string_view element, std::string_view property, IntCallback callback, void* user) {
    ForEach(
        element, property, [this] { return GetInt(); }, callback, user);
}

void DataSection::ForEachFloat(std::string_view element, std::string_view property, FloatCallback callback,
                               void* user) {
    ForEach(
        element, property, [this] { return GetFloat(); }, callback, user);
}

void DataSection::ForEachIntList(std::string_view element, std::string_view property, IntListCallback callback,
                                 void* user) {
    std::vector<int> list;
    const auto get = [&]() -> const std::vector<int>& {
        GetIntList(list);
        return list;
    };
    ForEach(element, property, get, callback, user);
}

void DataSection::ForEachFloatList(std::string_view element, std::string_view property, FloatListCallback callback,
                                   void* user) {
    std::vector<float> list;
    const auto get = [&]() -> const std::vector<float>& {
        GetFloatList(list);
        return list;
    };
    ForEach(element, property, get, callback, user);
}

void DataSection::RequireRecords(std::string_view element) const {
    const int index = ElementIndex(element);
    const std::int64_t dataEnd = static_cast<std::int64_t>(m_sData.size());
    if (ElementAt(*m_pFile, index).m_iCount > 0 && ElementEnd(index) > m_iLimit)
        throw CPLYFileError("Unexpected end of data.", dataEnd);
}

PlyArrayView DataSection::GetArrayView(std::string_view element, std::string_view property) {
    assert(m_pFile->m_iFormat != CPLYFile::kAscii);
    const Element& records = m_pFile->GetElement(element);
    if (records.HasLists()) throw CPLYFileError("No array-style access to elements that contain list properties.");
    (void)records.GetProperty(
        property);  // throws: Seek() would end after the first record, and the view would miss the last one
    RequireRecords(element);
    Seek(element, property);
    PlyArrayView view;
    view.m_iCount = records.m_iCount;
    view.m_iOffset = records.m_iCount > 0 ? m_iCursor : 0;  // without records the cursor can be after the data
    view.m_pFirst = m_sData.data() + view.m_iOffset;
    view.m_iBytes = static_cast<std::int64_t>(m_sData.size()) - view.m_iOffset;
    // the stride is the distance to the second record
    const std::int64_t first = m_iCursor;
    NextRecord();
    view.m_iStride = m_iCursor - first;
    return view;
}

bool DataSection::GetFaceBlock(std::string_view element, const char*& indexOut, int& countOut) {
    // binary, one list and nothing else, a count of one byte, members of four bytes
    const Element& records = m_pFile->GetElement(element);
    if (m_pFile->m_iFormat == CPLYFile::kAscii || records.m_vItems.size() != 1 || !records.HasLists()) return false;
    const auto& list = static_cast<const Element::List&>(*records.m_vItems.front());
    const int members = list.m_iElementType;
    if (list.m_iCountType != kPlyChar && list.m_iCountType != kPlyUChar) return false;
    if (members != kPlyUInt32 && members != kPlyInt && members != kPlyUInt) return false;
    RequireRecords(element);
    Seek(element, list.m_sName);
    indexOut = m_sData.data() + (records.m_iCount > 0 ? m_iCursor : 0);
    countOut = records.m_iCount;
    return true;
}

bool DataSection::ReadColumnsInOnePass(std::string_view element, std::span<const PlyColumn> columns) {
    const Element& records = m_pFile->GetElement(element);
    // all columns must be properties of an element without lists: then every record has the same items
    std::vector<int> items;
    bool allThere = !records.HasLists();
    for (const PlyColumn& column : columns) {
        items.push_back(FindItem(records, column.m_sProperty));
        allThere = allThere && items.back() < static_cast<int>(records.m_vItems.size());
    }
    if (!allThere) return false;
    Seek(element, records.m_vItems.empty() ? "" : records.m_vItems.front()->m_sName);
    return TryReadColumns(records, columns, items);
}

// The fast pass does not report errors: after it has failed, the walks start again and find them.
void DataSection::ReadColumns(std::string_view element, std::span<const PlyColumn> columns) {
    if (ReadColumnsInOnePass(element, columns)) return;
    // the slow way: one walk per column, which also finds the reason of an error
    const Element& records = m_pFile->GetElement(element);
    for (const PlyColumn& column : columns) {
        ColumnWriter writer{column, records.m_iCount};
        if (column.m_eKind == PlyColumn::kFloat)
            ForEachFloat(element, column.m_sProperty, &ColumnWriter::StoreFloat, &writer);
        else
            ForEachInt(element, column.m_sProperty, &ColumnWriter::StoreLowByte, &writer);
    }
}

// Binary data has views for columns, see GetArrayView(); text overrides this.
bool DataSection::TryReadColumns(const Element&, std::span<const PlyColumn>, std::span<const int>) { return false; }

/// Checks whether the fast pass has the results of the slow walk, and starts it.
template <class Number>
bool DataSection::ReadListsOf(std::string_view element, std::string_view property, int members, Number* target) {
    const Element& records = m_pFile->GetElement(element);
    const int item = FindItem(records, property);
    if (item == static_cast<int>(records.m_vItems.size())) return false;
    if (records.m_vItems[static_cast<std::size_t>(item)]->m_eKind != Kind::kList) return false;
    // Otherwise NextRecord() of the slow walk loses the order of the items, and the results must be the same.
    if (item != 0 && !HasOnlyLists(records)) return false;
    if (ElementEnd(ElementIndex(element)) > m_iLimit) return false;
    if (records.m_iCount == 0) return true;
    Seek(element, records.m_vItems.front()->m_sName);
    return TryReadLists(records, item, members, target);
}

bool DataSection::ReadLists(std::string_view element, std::string_view property, int members, int* target) {
    return ReadListsOf(element, property, members, target);
}

bool DataSection::ReadLists(std::string_view element, std::string_view property, int members, float* target) {
    return ReadListsOf(element, property, members, target);
}
