// The header of any ply file, read with tolerance: other words, other names of types and other line ends than the
// viewer's own reader knows.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class PlyNumber { Int8, UInt8, Int16, UInt16, Int32, UInt32, Int64, UInt64, Float32, Float64 };

/// Bytes of a number in binary data.
[[nodiscard]] std::size_t WidthOf(PlyNumber number);
[[nodiscard]] bool IsReal(PlyNumber number);

/// A property: one number per record, or a list of numbers.
struct PlyItem {
    std::string name;  ///< lower case
    PlyNumber type = PlyNumber::Float32;
    std::optional<PlyNumber> countType;  ///< of a list
};

struct PlyElementHead {
    std::string name;  ///< lower case
    std::uint64_t count = 0;
    std::vector<PlyItem> items;

    /// Null for an unknown name.
    [[nodiscard]] const PlyItem* Find(std::string_view item) const;
    /// The indices of a face: the list of a usual name, else the first list. Null without a list.
    [[nodiscard]] const PlyItem* FindIndices() const;
};

struct PlyHeader {
    enum class Format { Text, LittleEndian, BigEndian };
    Format format = Format::Text;
    std::vector<PlyElementHead> elements;
    /// Names in comments "TextureFile NAME".
    std::vector<std::string> textureFiles;
    /// Offset of the data in the file.
    std::size_t dataStart = 0;
    /// Whether the viewer's own reader reads this header, and finds the data at the same offset.
    bool isPlain = true;

    /// The first element of this name; null without one.
    [[nodiscard]] const PlyElementHead* Find(std::string_view element) const;
};

/// @param file  the start of the file, with the whole header
/// @throws std::runtime_error with the reason
[[nodiscard]] PlyHeader ParsePlyHeader(std::string_view file);
