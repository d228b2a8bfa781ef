// The grammar of a ply file and access to its data, element by element; docs/formats/ply.md describes every byte.
// Nothing here is about meshes: io/PlyMesh.h makes one of the elements. Sources: CPLYFile.cpp has the header's parser;
// PlyDataSection.cpp what text and binary data have in common; PlyTextSection.cpp and PlyBinarySection.cpp the rest.
#pragma once
#include <algorithm>
#include <cstdint>
#include <exception>
#include <istream>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class CPLYFile;

/// Why a ply file was refused, and where.
class CPLYFileError : public std::exception {
public:
    /// @param position  byte offset: in the stream for an error of the header, in the data part for one of the data; -1
    ///                  when the error has no position
    explicit CPLYFileError(std::string message, std::int64_t position = -1)
        : m_sMessage(std::move(message)), m_iPosition(position) {
        // A token of the file can hold zero bytes, which would end the text of what().
        std::ranges::replace(m_sMessage, '\0', '?');
    }
    [[nodiscard]] const char* what() const noexcept override { return m_sMessage.c_str(); }
    [[nodiscard]] std::int64_t GetPosition() const noexcept { return m_iPosition; }

private:
    std::string m_sMessage;
    std::int64_t m_iPosition;
};

/// Codes of the number types. A header names them without the prefix, in lower case.
enum PlyType : int {
    kPlyNone = 0,
    kPlyFloat32 = 1,
    kPlyUInt8 = 2,
    kPlyUInt32 = 3,
    kPlyChar = 4,
    kPlyUChar = 5,
    kPlyShort = 6,
    kPlyUShort = 7,
    kPlyInt = 8,
    kPlyUInt = 9,
    kPlyFloat = 10,
    kPlyDouble = 11,
};
/// Name of a code as a header spells it; "none" for anything but 1 to 11.
[[nodiscard]] const char* PlyTypeName(int type);
/// Width in bytes; 0 for anything but 1 to 11.
[[nodiscard]] int PlyTypeWidth(int type);

/// A part of the header's grammar.
class GrammarItem {
public:
    /// The declaration as a header spells it.
    [[nodiscard]] virtual std::string ToString() const = 0;
    virtual ~GrammarItem() = default;

    std::string m_sName;  // lower case
};

/// A kind of record, such as "vertex": its name, the number of records and what each record consists of.
class Element : public GrammarItem {
public:
    /// A part of every record: a property or a list.
    class ElementSubItem {
    public:
        enum class Kind { kOther, kProperty, kList };

        ElementSubItem() = default;
        [[nodiscard]] virtual std::string ToString() const = 0;
        virtual ~ElementSubItem() = default;

        std::string m_sName;                // lower case
        const Kind m_eKind = Kind::kOther;  // read once per record: a dynamic_cast would cost more than the skip

    protected:
        explicit ElementSubItem(Kind kind) : m_eKind(kind) {}
    };

    /// One number per record.
    class Property : public ElementSubItem {
    public:
        Property() : ElementSubItem(Kind::kProperty) {}
        [[nodiscard]] std::string ToString() const override;

        int m_iType = kPlyNone;
    };

    /// A count, and as many numbers as it says, per record.
    class List : public ElementSubItem {
    public:
        List() : ElementSubItem(Kind::kList) {}
        [[nodiscard]] std::string ToString() const override;

        int m_iCountType = kPlyNone;
        int m_iElementType = kPlyNone;
    };

    /// One item per line, without a line end after the last.
    [[nodiscard]] std::string ToString() const override;
    [[nodiscard]] bool HasProperty(std::string_view name) const;
    /// @throws CPLYFileError "No such property: NAME"
    [[nodiscard]] const ElementSubItem& GetProperty(std::string_view name) const;
    [[nodiscard]] bool HasLists() const;

    std::vector<std::unique_ptr<ElementSubItem>> m_vItems;
    int m_iCount = 0;  // records; not negative
};

/// One property of all records, in place in the data: unconverted, at any alignment, valid as long as the section.
struct PlyArrayView {
    const char* m_pFirst = nullptr;  // value of the first record
    int m_iCount = 0;                // records
    std::int64_t m_iStride = 0;      // bytes from one record's value to the next
    std::int64_t m_iOffset = 0;      // of m_pFirst in the data
    std::int64_t m_iBytes = 0;  // from m_pFirst to the end of the data; all values, at their declared width, are inside

    /// For readers that read another width than the declared one.
    /// @throws CPLYFileError "Unexpected end of data." when the last value would not fit
    void RequireWidth(int bytes) const;
};

/// Where ReadColumns() stores one number of every record.
struct PlyColumn {
    enum Kind { kFloat, kLowByte };  // the value of ForEachFloat(); the low 8 bits of the value of ForEachInt()
    std::string_view m_sProperty;
    Kind m_eKind = kFloat;
    void* m_pTarget = nullptr;   // for the first record, at any alignment
    std::int64_t m_iStride = 0;  // bytes between the targets of two records
};

/// The data part of a file, with a cursor that points at one item of one record. A section has one cursor: it is not
/// for two walks at once, nor for two threads. Moving the cursor never fails for lack of data: past the end of the data
/// every list counts as empty, and past the current element's records anything is skipped. Reading past the end throws
/// CPLYFileError "Unexpected end of data." with the byte offset.
class DataSection {
public:
    using IntCallback = bool (*)(std::int64_t index, int value, void* user);
    using FloatCallback = bool (*)(std::int64_t index, float value, void* user);
    using IntListCallback = bool (*)(std::int64_t index, const std::vector<int>& list, void* user);
    using FloatListCallback = bool (*)(std::int64_t index, const std::vector<float>& list, void* user);

    /// Finds the start of every element. The time is linear in the size of data and header, for any counts.
    virtual void Scan();
    /// Move @p cursor past one item, which must be a property or a list. The base class's cursor does not move.
    /// @throws CPLYFileError in binary data when the item is of the other kind
    virtual void SkipProperty(const Element& element, int item, std::int64_t& cursor) = 0;
    virtual void SkipList(const Element& element, int item, std::int64_t& cursor) = 0;
    // The value at the cursor. The cursor does not move.
    /// @throws CPLYFileError when the value there is not such a number, or there is no data
    virtual int GetInt() = 0;
    virtual float GetFloat() = 0;
    /// A negative count reads as an empty list.
    virtual void GetUCharList(std::vector<unsigned char>& out) = 0;
    virtual void GetIntList(std::vector<int>& out) = 0;
    virtual void GetFloatList(std::vector<float>& out) = 0;
    virtual ~DataSection() = default;

    DataSection(const DataSection&) = delete;
    DataSection& operator=(const DataSection&) = delete;

    /// Moves the cursor to the property in the element's first record; after that record when the element has no such
    /// property.
    /// @throws CPLYFileError "No such element: NAME"
    void Seek(std::string_view element, std::string_view property);
    /// Moves the cursor to the same item of the next record. The items are skipped in the order of their kinds from the
    /// record's first item on, wherever the cursor is: from another item than the first, an element that mixes lists
    /// and properties loses the order of its items (text) or is refused (binary).
    void NextRecord();

    /// Call the callback with one property of all records, until it returns false. The number of calls can differ from
    /// the number of records where an element mixes lists and properties: a callback that writes by index must check
    /// the index.
    /// @param user  passed on to the callback
    void ForEachInt(std::string_view element, std::string_view property, IntCallback callback, void* user);
    void ForEachFloat(std::string_view element, std::string_view property, FloatCallback callback, void* user);
    void ForEachIntList(std::string_view element, std::string_view property, IntListCallback callback, void* user);
    void ForEachFloatList(std::string_view element, std::string_view property, FloatListCallback callback, void* user);

    /// Throws "Unexpected end of data." unless all records of the element are in the data. Call it before memory is
    /// allocated for them. Text needs no call: its number of tokens is checked by the constructor.
    void RequireRecords(std::string_view element) const;

    /// Binary sections only. All records are checked to be in the data.
    /// @throws CPLYFileError for an element with lists, an unknown name, or records missing at the end
    [[nodiscard]] PlyArrayView GetArrayView(std::string_view element, std::string_view property);
    /// The fastest access to binary faces. True when the element is a single list with a count of one byte and members
    /// of 32-bit integers: a record is then a count byte and its members.
    /// @param indexOut  the first record
    /// @param countOut  number of records, all of which are in the data
    [[nodiscard]] bool GetFaceBlock(std::string_view element, const char*& indexOut, int& countOut);
    [[nodiscard]] const char* GetDataEnd() const { return m_sData.data() + m_sData.size(); }
    /// Bytes after the last announced record; white space at the end of text is none.
    [[nodiscard]] virtual std::int64_t BytesAfterEnd() = 0;

    /// The same values and errors as ForEachFloat() or ForEachInt() for one column after the other, but in one pass
    /// over the text where that is possible. The targets hold m_iCount values; values beyond these, which can occur
    /// where an element mixes lists and properties, are dropped.
    void ReadColumns(std::string_view element, std::span<const PlyColumn> columns);
    /// The single pass alone.
    /// @return false when it is not possible; the content of the targets is then undefined
    [[nodiscard]] bool ReadColumnsInOnePass(std::string_view element, std::span<const PlyColumn> columns);
    /// ForEachIntList() or ForEachFloatList() for lists of exactly @p members members, in one fast pass.
    /// @param target  receives m_iCount * members values, without gaps
    /// @return false when a list has another length or the fast pass is not possible for any other reason; the content
    /// of
    ///         the target is then undefined, and ForEach...List() finds the reason
    [[nodiscard]] bool ReadLists(std::string_view element, std::string_view property, int members, int* target);
    [[nodiscard]] bool ReadLists(std::string_view element, std::string_view property, int members, float* target);

    CPLYFile* m_pFile = nullptr;                // the grammar's owner
    std::vector<std::int64_t> m_vElementStart;  // first cursor value of each element
    std::int64_t m_iCursor = 0;                 // token index in text, byte offset in binary
    int m_iCurrentElement = 0;
    int m_iItemIndex = 0;                 // item of the current element at the cursor
    std::int64_t m_iEnd = 0;              // cursor value after all announced data; can exceed the data of the file
    const Element* m_pElement = nullptr;  // the current one
    std::string m_sData;

protected:
    DataSection(CPLYFile& file, std::string data) : m_pFile(&file), m_sData(std::move(data)) {}
    /// Skips @p records whole records; the cursor can end after the data.
    virtual void SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor);
    /// The fast passes. @p items are the item indices of the columns, @p item is that of the list.
    /// @return false when the slow walk must do the work
    virtual bool TryReadColumns(const Element& element, std::span<const PlyColumn> columns, std::span<const int> items);
    virtual bool TryReadLists(const Element& element, int item, int members, int* target) = 0;
    virtual bool TryReadLists(const Element& element, int item, int members, float* target) = 0;

    void SkipItem(const Element& element, int item, std::int64_t& cursor);
    /// Cursor value after an element's last record.
    [[nodiscard]] std::int64_t ElementEnd(int element) const;
    [[nodiscard]] int ElementIndex(std::string_view name) const;

    std::int64_t m_iLimit = 0;       // cursor value at the end of the data in the file
    std::int64_t m_iFixedStep = -1;  // cursor distance of NextRecord(); -1: the current element has lists

private:
    template <class Get, class Callback>
    void ForEach(std::string_view element, std::string_view property, Get get, Callback callback, void* user);
    template <class Number>
    bool ReadListsOf(std::string_view element, std::string_view property, int members, Number* target);
};

/// Data of an ascii file. The cursor counts tokens.
class TextDataSection : public DataSection {
public:
    /// @throws CPLYFileError "Unexpected end of data." when there are fewer tokens than the grammar asks for
    TextDataSection(CPLYFile& file, std::string data);
    void SkipProperty(const Element& element, int item, std::int64_t& cursor) override;
    void SkipList(const Element& element, int item, std::int64_t& cursor) override;
    int GetInt() override;
    float GetFloat() override;
    void GetUCharList(std::vector<unsigned char>& out) override;
    void GetIntList(std::vector<int>& out) override;
    void GetFloatList(std::vector<float>& out) override;
    [[nodiscard]] std::int64_t BytesAfterEnd() override;

    std::vector<std::int64_t>
        m_vTokenStart;     // byte offset of every 64th token: a table of all would be larger than the mesh
    std::string m_sToken;  // the last token in an error message

protected:
    void SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor) override;
    bool TryReadColumns(const Element& element, std::span<const PlyColumn> columns,
                        std::span<const int> items) override;
    bool TryReadLists(const Element& element, int item, int members, int* target) override;
    bool TryReadLists(const Element& element, int item, int members, float* target) override;

private:
    [[nodiscard]] std::int64_t TokenStart(std::int64_t index);
    [[nodiscard]] std::string_view Token(std::int64_t index);
    template <class Number>
    bool TryReadToken(std::int64_t index, Number& value);
    template <class Number>
    Number ReadToken(std::int64_t index, const char* complaint);
    [[noreturn]] void FailToken(std::int64_t index, const char* complaint);
    template <class Item, class Number>
    void ReadList(std::vector<Item>& out, const char* complaint);
    template <class Number>
    bool ReadListsFast(const Element& element, int item, int members, Number* target);

    std::int64_t m_iKnownToken = 0;  // the last one that was looked up, and its byte offset
    std::int64_t m_iKnownStart = 0;
};

/// Data of a little-endian file. The cursor counts bytes.
class BinaryDataSection : public DataSection {
public:
    /// @throws CPLYFileError for big-endian files, which are unsupported on purpose
    BinaryDataSection(CPLYFile& file, std::string data);
    void SkipProperty(const Element& element, int item, std::int64_t& cursor) override;
    void SkipList(const Element& element, int item, std::int64_t& cursor) override;
    int GetInt() override;
    float GetFloat() override;
    void GetUCharList(std::vector<unsigned char>& out) override;
    void GetIntList(std::vector<int>& out) override;
    void GetFloatList(std::vector<float>& out) override;
    [[nodiscard]] std::int64_t BytesAfterEnd() override;

    std::int64_t m_iReadOffset = 0;  // after the last value that was read

protected:
    void SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor) override;
    bool TryReadLists(const Element& element, int item, int members, int* target) override;
    bool TryReadLists(const Element& element, int item, int members, float* target) override;

private:
    [[nodiscard]] std::int64_t ReadInteger(int type, std::int64_t offset);
    [[nodiscard]] float ReadFloating(int type, std::int64_t offset);
    [[nodiscard]] std::int64_t CountForSkip(int type, std::int64_t offset) const;
    template <class Item, class Read>
    void ReadList(std::vector<Item>& out, Read read);
    template <class Number>
    bool ReadListsFast(const Element& element, int item, int members, Number* target);
};

/// A ply file in memory. Its size there is that of the file's data; elements and records are not copied.
class CPLYFile {
public:
    enum Format : int { kNotRead = 0, kAscii = 1, kBinaryLittleEndian = 2, kBinaryBigEndian = 3 };

    CPLYFile() = default;
    CPLYFile(const CPLYFile&) = delete;  // the data section points to it
    CPLYFile& operator=(const CPLYFile&) = delete;

    /// Reads from the stream's position; the data extends to the end of the stream.
    /// @throws CPLYFileError; the object then holds what was read before the error, until Clear()
    void Read(std::istream& stream, bool headerOnly);
    /// The data of a file of which the header alone was read. @throws CPLYFileError
    void SetData(std::string data);
    /// A stream from its position to its end; a read error counts as the end.
    /// @throws CPLYFileError when the memory does not suffice
    [[nodiscard]] static std::string ReadRest(std::istream& stream);
    void Clear();

    [[nodiscard]] int GetFormat() const { return m_iFormat; }
    /// The first element of this name. The names of a file are converted to lower case when it is read.
    /// @throws CPLYFileError "No such element: NAME"
    [[nodiscard]] const Element& GetElement(std::string_view name) const;
    [[nodiscard]] bool HasElement(std::string_view name) const;
    [[nodiscard]] int GetElementCount(std::string_view name) const { return GetElement(name).m_iCount; }
    [[nodiscard]] int GetVertexCount() const { return GetElementCount("vertex"); }
    [[nodiscard]] int GetFaceCount() const { return GetElementCount("face"); }

    int m_iFormat = kNotRead;
    std::string m_sVersion;                // "1.0"
    std::vector<std::string> m_vComments;  // with the space after the keyword
    std::string m_sGrammar;                // tokens of the header's body in lower case, separated by one space each
    std::vector<std::unique_ptr<GrammarItem>> m_vElements;  // all of them Element
    std::unique_ptr<DataSection> m_pDataSection;            // null until the data is read
    std::map<std::string, int, std::less<>> m_mapTypes = TypeNames();

private:
    static std::map<std::string, int, std::less<>> TypeNames();
};
