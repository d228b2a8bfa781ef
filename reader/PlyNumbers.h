// The data of a ply file as numbers, one after the other, whatever their form.
#pragma once
#include <cstdint>
#include <memory>
#include <string_view>

#include "PlyHeader.h"

/// Reads forward only.
class PlyNumbers {
public:
    virtual ~PlyNumbers() = default;
    /// Whether so many records can follow; before memory is allocated for them.
    /// @throws UnreadableFile
    virtual void RequireRecords(const PlyElementHead& element) const = 0;
    /// @throws UnreadableFile at the end of the data, and in text for what is no number
    virtual double Next(PlyNumber type) = 0;
    /// The count of a list, of which so many members can follow. A negative count is an empty list.
    /// @throws UnreadableFile
    virtual std::uint64_t NextCount(const PlyItem& list) = 0;
    /// All items of a record were read.
    virtual void EndRecord() {}
    /// After the last number that was read; white space and comments at the end of a text do not count.
    [[nodiscard]] virtual std::uint64_t BytesAfterEnd() const = 0;
};

/// @param file  must outlive the object
[[nodiscard]] std::unique_ptr<PlyNumbers> MakePlyNumbers(const PlyHeader& header, std::string_view file);
