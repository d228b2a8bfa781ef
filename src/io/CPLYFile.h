// The grammar of a ply file and element-by-element access to its data, byte by byte in docs/formats/ply.md. It knows
// nothing about meshes. Header: CPLYFile.cpp; data: PlyDataSection.cpp, PlyTextSection.cpp and PlyBinarySection.cpp.
#pragma once
#include <cstdint>
#include <exception>
#include <istream>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CPLYFile;

/// Why a ply file was refused, and where.
class CPLYFileError : public std::exception {
public:
    /// @param position  byte offset, in the stream for the header and in the data part for the data; -1 when there is
    /// none
    explicit CPLYFileError(std::string message, std::int64_t position = -1)
        : m_sMessage(std::move(message)), m_iPosition(position) {}
    [[nodiscard]] const char* what() const noexcept override { return m_sMessage.c_str(); }
    [[nodiscard]] std::int64_t GetPosition() const noexcept { return m_iPosition; }

private:
    std::string m_sMessage;
    std::int64_t m_iPosition;
};

/// Codes of the number types, as the header names them.
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
/// Name of a code as it stands in a header; "none" for anything but 1 to 11.
[[nodiscard]] const char* PlyTypeName(int type);
/// Width in bytes; 0 for anything but 1 to 11.
[[nodiscard]] int PlyTypeWidth(int type);

class GrammarItem {
public:
    [[nodiscard]] virtual std::string ToString() const = 0;
    virtual ~GrammarItem() = default;

    std::string m_sName;  // lower case
};

/// A kind of record, such as "vertex".
class Element : public GrammarItem {
public:
    class ElementSubItem {
    public:
        enum class Kind { kOther, kProperty, kList };

        ElementSubItem() = default;
        [[nodiscard]] virtual std::string ToString() const = 0;
        virtual ~ElementSubItem() = default;

        std::string m_sName;                // lower case
        const Kind m_eKind = Kind::kOther;  // asked for every record: a cast would cost more than the skip

    protected:
        explicit ElementSubItem(Kind kind) : m_eKind(kind) {}
    };

    /// One number in each record.
    class Property : public ElementSubItem {
    public:
        Property() : ElementSubItem(Kind::kProperty) {}
        [[nodiscard]] std::string ToString() const override;

        int m_iType = kPlyNone;
    };

    /// A count and as many numbers in each record.
    class List : public ElementSubItem {
    public:
        List() : ElementSubItem(Kind::kList) {}
        [[nodiscard]] std::string ToString() const override;

        int m_iCountType = kPlyNone;
        int m_iElementType = kPlyNone;
    };

    /// The declaration as it stands in a header, one item a line, without a line end behind the last.
    [[nodiscard]] std::string ToString() const override;
    [[nodiscard]] bool HasProperty(std::string_view name) const;
    /// @throws CPLYFileError "No such property: NAME"
    [[nodiscard]] const ElementSubItem& GetProperty(std::string_view name) const;
    [[nodiscard]] bool HasLists() const;

    std::vector<std::unique_ptr<ElementSubItem>> m_vItems;
    int m_iCount = 0;  // records; not negative
};

/// One property of every record where it lies in the data, unconverted and at any alignment.
struct PlyArrayView {
    const char* m_pFirst = nullptr;  // the first record's value
    int m_iCount = 0;                // records
    std::int64_t m_iStride = 0;      // bytes from one record's value to the next
    std::int64_t m_iOffset = 0;      // of m_pFirst in the data
    std::int64_t m_iBytes = 0;  // from m_pFirst to the end of the data; every value of its declared width lies inside

    /// For readers that take another width than the declared one.
    /// @throws CPLYFileError "Unexpected end of data." when the last value would not fit
    void RequireWidth(int bytes) const;
};

/// Where ReadColumns() puts one number of every record.
struct PlyColumn {
    enum Kind { kFloat, kLowByte };  // as ForEachFloat reads it; the low 8 bits of what ForEachInt reads
    std::string_view m_sProperty;
    Kind m_eKind = kFloat;
    void* m_pTarget = nullptr;   // the first record's, at any alignment
    std::int64_t m_iStride = 0;  // bytes between the targets of two records
};

/// The data part of a file. Moving the cursor past the end never fails, for there every list is empty; nor does moving
/// it past the current element's records, whatever stands there. Reading past the end throws CPLYFileError "Unexpected
/// end of data." with the byte offset.
class DataSection {
public:
    using IntCallback = bool (*)(std::int64_t index, int value, void* user);
    using FloatCallback = bool (*)(std::int64_t index, float value, void* user);
    using IntListCallback = bool (*)(std::int64_t index, const std::vector<int>& list, void* user);
    using FloatListCallback = bool (*)(std::int64_t index, const std::vector<float>& list, void* user);

    /// Finds where the elements begin. Time is linear in data and header, whatever the counts say.
    virtual void Scan();
    virtual void SkipProperty(const Element& element, int item, std::int64_t& cursor) = 0;
    virtual void SkipList(const Element& element, int item, std::int64_t& cursor) = 0;
    /// The value at the cursor, which stays; so do the others.
    virtual int GetInt() = 0;
    virtual float GetFloat() = 0;
    /// A negative count reads as an empty list.
    virtual void GetUCharList(std::vector<unsigned char>& out) = 0;
    virtual void GetIntList(std::vector<int>& out) = 0;
    virtual void GetFloatList(std::vector<float>& out) = 0;
    virtual ~DataSection() = default;

    DataSection(const DataSection&) = delete;
    DataSection& operator=(const DataSection&) = delete;

    /// Moves to the property in the element's first record; behind that record when it has no such property.
    /// @throws CPLYFileError "No such element: NAME"
    void Seek(std::string_view element, std::string_view property);
    /// Moves to the same item of the next record. The kinds of the skips count from the record's first item wherever
    /// the cursor stands: from another item than the first, an element that mixes lists and properties is left in
    /// disorder (text) or refused (binary).
    void NextRecord();

    /// Walk one property of all records until the callback returns false. Elements that mix lists and properties may
    /// give more or fewer calls than records: a callback that writes by index must check it.
    void ForEachInt(std::string_view element, std::string_view property, IntCallback callback, void* user);
    void ForEachFloat(std::string_view element, std::string_view property, FloatCallback callback, void* user);
    void ForEachIntList(std::string_view element, std::string_view property, IntListCallback callback, void* user);
    void ForEachFloatList(std::string_view element, std::string_view property, FloatListCallback callback, void* user);

    /// Throws "Unexpected end of data." unless all records of the element are there: to be called before memory is
    /// taken for as many. Text is checked when it is read.
    void RequireRecords(std::string_view element) const;

    /// Binary sections only. All records are checked to be there.
    /// @throws CPLYFileError for an element with lists, an unknown name, or records missing at the end
    [[nodiscard]] PlyArrayView GetArrayView(std::string_view element, std::string_view property);
    /// Binary face data at its fastest: true when the element is a single list with a count of one byte and members of
    /// 32-bit integers. Then the records, all of which are there, are a count byte and its members each.
    [[nodiscard]] bool GetFaceBlock(std::string_view element, const char*& indexOut, int& countOut);
    [[nodiscard]] const char* GetDataEnd() const { return m_sData.data() + m_sData.size(); }

    /// ForEachFloat or ForEachInt for each column in turn, with the same values and errors, in one pass over the text
    /// when that can be. The targets hold m_iCount values; what a disordered walk finds beyond these is dropped.
    void ReadColumns(std::string_view element, std::span<const PlyColumn> columns);
    /// The one pass alone: false when it cannot be, and then the targets hold rubbish.
    [[nodiscard]] bool ReadColumnsInOnePass(std::string_view element, std::span<const PlyColumn> columns);
    /// ForEachIntList or ForEachFloatList for lists that have `members` members each, in one fast pass.
    /// @param target  room for m_iCount * members values, densely
    /// @return false when any list is of another length or anything else is in the way: then the target holds rubbish
    /// and
    ///         the slow walk tells the reason
    [[nodiscard]] bool ReadLists(std::string_view element, std::string_view property, int members, int* target);
    [[nodiscard]] bool ReadLists(std::string_view element, std::string_view property, int members, float* target);

    CPLYFile* m_pFile = nullptr;                // the grammar's owner
    std::vector<std::int64_t> m_vElementStart;  // where each element's data begins, in cursor units
    std::int64_t m_iCursor = 0;                 // token index in text, byte offset in binary
    int m_iCurrentElement = 0;
    int m_iItemIndex = 0;     // the item of the current element that the cursor stands at
    std::int64_t m_iEnd = 0;  // of all data that the grammar asks for; may lie behind the data that is there
    const Element* m_pElement = nullptr;  // the current one
    std::string m_sData;

protected:
    DataSection(CPLYFile& file, std::string data) : m_pFile(&file), m_sData(std::move(data)) {}
    /// Skips so many whole records; the cursor may end behind the data.
    virtual void SkipRecords(const Element& element, std::int64_t records, std::int64_t& cursor);
    /// The fast passes, each with the item of its columns or list; false when the slow walk must do.
    virtual bool TryReadColumns(const Element& element, std::span<const PlyColumn> columns, std::span<const int> items);
    virtual bool TryReadLists(const Element& element, int item, int members, int* target) = 0;
    virtual bool TryReadLists(const Element& element, int item, int members, float* target) = 0;

    void SkipItem(const Element& element, int item, std::int64_t& cursor);
    /// Cursor value behind an element's last record.
    [[nodiscard]] std::int64_t ElementEnd(int element) const;
    [[nodiscard]] int ElementIndex(std::string_view name) const;

    std::int64_t m_iLimit = 0;       // of the data that is there, in cursor units
    std::int64_t m_iFixedStep = -1;  // of NextRecord() in the current element; -1: it has lists

private:
    template <class Get, class Callback>
    void ForEach(std::string_view element, std::string_view property, Get get, Callback callback, void* user);
    template <class Number>
    bool ReadListsOf(std::string_view element, std::string_view property, int members, Number* target);
};

/// Data of an ascii file.
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

    std::vector<std::int64_t> m_vTokenStart;  // byte offset of every 64th token: a table of all would outgrow the mesh
    std::string m_sToken;                     // for messages

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

    std::int64_t m_iKnownToken = 0;  // the last one that was looked up, and where it starts
    std::int64_t m_iKnownStart = 0;
};

/// Data of a little-endian file.
class BinaryDataSection : public DataSection {
public:
    /// @throws CPLYFileError for big-endian files, which stay unsupported on purpose
    BinaryDataSection(CPLYFile& file, std::string data);
    void SkipProperty(const Element& element, int item, std::int64_t& cursor) override;
    void SkipList(const Element& element, int item, std::int64_t& cursor) override;
    int GetInt() override;
    float GetFloat() override;
    void GetUCharList(std::vector<unsigned char>& out) override;
    void GetIntList(std::vector<int>& out) override;
    void GetFloatList(std::vector<float>& out) override;

    std::int64_t m_iReadOffset = 0;  // behind the last read

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

/// Reads a ply file into memory.
class CPLYFile {
public:
    enum Format : int { kNotRead = 0, kAscii = 1, kBinaryLittleEndian = 2, kBinaryBigEndian = 3 };

    CPLYFile() = default;
    CPLYFile(const CPLYFile&) = delete;  // the data knows where the grammar is
    CPLYFile& operator=(const CPLYFile&) = delete;

    /// Takes the stream from its position; the data is read to the stream's end.
    /// @throws CPLYFileError; the object then holds what was read so far, until Clear()
    void Read(std::istream& stream, bool headerOnly);
    void Clear();

    [[nodiscard]] int GetFormat() const { return m_iFormat; }
    /// The first one of this name. Names compare exactly and are all lower case.
    /// @throws CPLYFileError "No such element: NAME"
    [[nodiscard]] const Element& GetElement(std::string_view name) const;
    [[nodiscard]] bool HasElement(std::string_view name) const;
    [[nodiscard]] int GetElementCount(std::string_view name) const { return GetElement(name).m_iCount; }
    [[nodiscard]] int GetVertexCount() const { return GetElementCount("vertex"); }
    [[nodiscard]] int GetFaceCount() const { return GetElementCount("face"); }

    int m_iFormat = kNotRead;
    std::string m_sVersion;                                 // "1.0"
    std::vector<std::string> m_vComments;                   // with the blank behind the keyword
    std::string m_sGrammar;                                 // tokens of the header's body, lower case, single blanks
    std::vector<std::unique_ptr<GrammarItem>> m_vElements;  // all of them Element
    std::unique_ptr<DataSection> m_pDataSection;            // null until the data is read
    std::map<std::string, int, std::less<>> m_mapTypes = TypeNames();

private:
    static std::map<std::string, int, std::less<>> TypeNames();
};
