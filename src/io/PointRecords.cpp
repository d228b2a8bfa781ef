// Records are read in blocks that are in the cache; of each block, one column after the other is converted.
#include "io/PointRecords.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

static_assert(std::endian::native == std::endian::little, "values are copied out of the file as they are");

namespace {
constexpr std::size_t kBlockBytes = std::size_t{1} << 17;
constexpr std::size_t kLargestRecord = std::size_t{1} << 20;

template <class Value>
Value Load(const std::byte* at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class Value>
void Convert(const std::byte* from, std::size_t stride, std::size_t records, float* to) {
    for (std::size_t i = 0; i < records; ++i) to[3 * i] = static_cast<float>(Load<Value>(from + i * stride));
}

/// A block of records as points.
void ConvertBlock(const PointLayout& layout, const std::byte* first, std::size_t stride, std::size_t records,
                  PointCollector& points) {
    for (std::size_t i = 0; i < 3; ++i)
        ConvertColumn(layout.xyz[i].type, first + layout.xyz[i].offset, stride, records, points.Xyz() + i);
    float scale = 0;
    if (layout.form == ColorForm::kPacked) {
        UnpackColors(first + layout.colors[0].offset, stride, records, points.Colors());
        return points.Add(records);
    }
    if (layout.form == ColorForm::kChannels) {
        for (std::size_t i = 0; i < 3; ++i)
            ConvertColumn(layout.colors[i].type, first + layout.colors[i].offset, stride, records, points.Colors() + i);
        scale = ScaleOf(layout.colors[0].type);
    }
    if (scale == 0)
        points.AddUnscaled(records);
    else
        points.AddScaled(records, scale);
}
}  // namespace

std::size_t WidthOf(NumberType type) {
    constexpr std::size_t kWidths[] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    return kWidths[static_cast<std::size_t>(type)];
}

float ScaleOf(NumberType type) {
    return type == NumberType::kUInt8 ? 255.0F : type == NumberType::kUInt16 ? 65535.0F : 0.0F;
}

void ConvertColumn(NumberType type, const std::byte* from, std::size_t stride, std::size_t records, float* to) {
    switch (type) {
        case NumberType::kInt8:
            return Convert<std::int8_t>(from, stride, records, to);
        case NumberType::kUInt8:
            return Convert<std::uint8_t>(from, stride, records, to);
        case NumberType::kInt16:
            return Convert<std::int16_t>(from, stride, records, to);
        case NumberType::kUInt16:
            return Convert<std::uint16_t>(from, stride, records, to);
        case NumberType::kInt32:
            return Convert<std::int32_t>(from, stride, records, to);
        case NumberType::kUInt32:
            return Convert<std::uint32_t>(from, stride, records, to);
        case NumberType::kInt64:
            return Convert<std::int64_t>(from, stride, records, to);
        case NumberType::kUInt64:
            return Convert<std::uint64_t>(from, stride, records, to);
        case NumberType::kFloat:
            return Convert<float>(from, stride, records, to);
        case NumberType::kDouble:
            return Convert<double>(from, stride, records, to);
    }
}

void UnpackColors(const std::byte* from, std::size_t stride, std::size_t records, float* to) {
    for (std::size_t i = 0; i < records; ++i, to += 3) {
        const auto packed = Load<std::uint32_t>(from + i * stride);
        to[0] = static_cast<float>(packed >> 16 & 0xFF) / 255;
        to[1] = static_cast<float>(packed >> 8 & 0xFF) / 255;
        to[2] = static_cast<float>(packed & 0xFF) / 255;
    }
}

void RequireSpace(std::uint64_t points, std::uint64_t space) {
    if (points > space)
        throw FileReadError("the file announces " + std::to_string(points) + " points and has space for " +
                            std::to_string(space));
}

KV_ScenePane::PointCloud ReadPointRecords(ByteInput& input, std::uint64_t offset, std::size_t recordSize,
                                          std::uint64_t records, const PointLayout& layout, PointHoles holes,
                                          ReadProgress& progress, double before) {
    RequireSpace(records, (input.Size() - std::min(offset, input.Size())) / recordSize);
    if (recordSize > kLargestRecord)
        throw FileReadError("a point has more than " + std::to_string(kLargestRecord) + " bytes");
    const std::size_t perBlock = std::clamp<std::size_t>(kBlockBytes / recordSize, 1, PointCollector::kBlock);
    std::vector<std::byte> block(perBlock * recordSize);
    PointCollector points(records, layout.form != ColorForm::kNone, holes);
    input.Seek(offset);
    for (std::uint64_t done = 0; done < records;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(perBlock, records - done));
        if (input.Read(block.data(), count * recordSize) < count * recordSize)
            throw FileReadError("the file became shorter while it was read");
        ConvertBlock(layout, block.data(), recordSize, count, points);
        done += count;
        progress.Report(before + (1 - before) * static_cast<double>(done) / static_cast<double>(records));
    }
    return points.Finish();
}
