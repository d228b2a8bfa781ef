// Points as binary records of one size, as pcd and ply files have them. Little-endian.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

#include "KV_ScenePane/PointFiles.h"
#include "io/ByteInput.h"
#include "io/PointCollector.h"
#include "io/ReadProgress.h"

/// Type of a number in a file.
enum class NumberType : std::uint8_t {
    kInt8,
    kUInt8,
    kInt16,
    kUInt16,
    kInt32,
    kUInt32,
    kInt64,
    kUInt64,
    kFloat,
    kDouble
};
/// Width in bytes.
[[nodiscard]] std::size_t WidthOf(NumberType type);

/// How colours are stored.
enum class ColorForm : std::uint8_t {
    kNone,
    kPacked,    ///< one unsigned 32-bit number, red << 16 | green << 8 | blue
    kChannels,  ///< three numbers of one type, see ScaleOf()
};

/// A number in each record.
struct RecordField {
    NumberType type = NumberType::kFloat;
    std::size_t offset = 0;  ///< from the start of the record, bytes
};

/// Where the numbers of a point are.
struct PointLayout {
    std::array<RecordField, 3> xyz;
    ColorForm form = ColorForm::kNone;
    std::array<RecordField, 3> colors;  ///< red, green, blue; packed colours have the first alone
};

/// Converts one number of many records.
/// @param from    that number in the first record, at any alignment
/// @param stride  bytes between records
/// @param to      receives every third float
void ConvertColumn(NumberType type, const std::byte* from, std::size_t stride, std::size_t records, float* to);
/// The same for packed colours.
/// @param to  three per record, 0 to 1
void UnpackColors(const std::byte* from, std::size_t stride, std::size_t records, float* to);
/// What colours of the type are divided by: the largest number of 8 or 16 unsigned bits. 0 for other types, whose
/// values decide, see PointCollector::AddUnscaled().
[[nodiscard]] float ScaleOf(NumberType type);

/// Reads records from the position of the input on.
/// @param offset      position of the first record
/// @param recordSize  bytes
/// @param records     how many there must be
/// @param before      part of the whole work that is done already, for the progress
/// @throws FileReadError when the file has fewer, checked before memory is allocated, or as PointCollector
[[nodiscard]] KV_ScenePane::PointCloud ReadPointRecords(ByteInput& input, std::uint64_t offset, std::size_t recordSize,
                                                        std::uint64_t records, const PointLayout& layout,
                                                        PointHoles holes, ReadProgress& progress, double before = 0);

/// @param space  how many of the points the rest of the file can hold
/// @throws FileReadError "the file announces N points and has space for M"
void RequireSpace(std::uint64_t points, std::uint64_t space);
