// The header of a pcd file: lines of a keyword and its values, up to DATA. Layout: docs/formats/points.md.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "io/ByteInput.h"
#include "io/PointRecords.h"

/// One field of each point.
struct PcdField {
    std::string name;
    char type = 'F';             ///< 'I' signed, 'U' unsigned, 'F' floating
    std::size_t width = 4;       ///< bytes per value
    std::uint64_t count = 1;     ///< values
    std::uint64_t offset = 0;    ///< from the start of a binary point, bytes
    std::uint64_t position = 0;  ///< from the start of a point in text, values
    [[nodiscard]] std::uint64_t Bytes() const { return width * count; }
};

/// What the header says, checked for contradictions, not against the size of the file.
struct PcdHeader {
    enum class Data { kText, kBinary, kCompressed };
    std::vector<PcdField> fields;
    std::uint64_t points = 0;
    PointHoles holes = PointHoles::kRefused;  ///< omitted in clouds of more than one row
    Data data = Data::kText;
    std::uint64_t dataOffset = 0;   ///< of the first byte after the header
    std::uint64_t lines = 0;        ///< of the header
    std::uint64_t pointBytes = 0;   ///< of a binary point
    std::uint64_t pointValues = 0;  ///< of a point in text

    std::size_t xyz[3] = {};  ///< which fields they are
    bool hasColors = false;
    std::size_t color = 0;  ///< the packed colour
};

/// @throws FileReadError "line N: ..." or a reason about the header as a whole
[[nodiscard]] PcdHeader ReadPcdHeader(ByteInput& input);
/// Type of the values of a field.
[[nodiscard]] NumberType NumberTypeOf(const PcdField& field);
