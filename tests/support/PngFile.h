// PNG files made by hand, so that the pixels that a decoder must return are known without one: chunks as the test
// requests them, the pixel data stored and not compressed.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace png_file {

using Bytes = std::vector<std::uint8_t>;

// The colour types of the header.
inline constexpr int kGray = 0, kRgb = 2, kPalette = 3, kGrayAlpha = 4, kRgba = 6;

// Byte by byte: g++ 12 warns of overflows in the ranges that its own library copies.
inline void Append(Bytes& out, std::span<const std::uint8_t> more) {
    for (const std::uint8_t byte : more) out.push_back(byte);
}

inline void AppendBigEndian(Bytes& out, std::uint32_t value) {
    for (const int shift : {24, 16, 8, 0}) out.push_back(static_cast<std::uint8_t>(value >> shift));
}

inline std::uint32_t Crc(const Bytes& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

inline Bytes Chunk(std::string_view type, const Bytes& data) {
    Bytes named(type.begin(), type.end());
    Append(named, data);
    Bytes chunk;
    AppendBigEndian(chunk, static_cast<std::uint32_t>(data.size()));
    Append(chunk, named);
    AppendBigEndian(chunk, Crc(named));
    return chunk;
}

/// A zlib stream of stored blocks.
inline Bytes Stored(const Bytes& data) {
    constexpr std::size_t kBlock = 65535;
    Bytes out{0x78, 0x01};
    std::uint32_t a = 1, b = 0;
    for (const std::uint8_t byte : data) a = (a + byte) % 65521, b = (b + a) % 65521;
    for (std::size_t at = 0; at == 0 || at < data.size(); at += kBlock) {
        const std::size_t size = std::min(kBlock, data.size() - at);
        out.push_back(at + size == data.size() ? 1 : 0);
        for (const std::size_t value : {size, ~size})
            for (const int shift : {0, 8}) out.push_back(static_cast<std::uint8_t>(value >> shift));
        Append(out, std::span(data).subspan(at, size));
    }
    AppendBigEndian(out, b << 16 | a);
    return out;
}

struct Header {
    std::uint32_t width = 1, height = 1;
    int depth = 8, kind = kRgba;
    bool interlaced = false;
};

/// @param scanlines  rows, or rows of passes, each with its filter byte first
/// @param between    chunks between the header and the pixels
inline Bytes Make(const Header& header, const Bytes& scanlines, const Bytes& between = {}) {
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes ihdr;
    AppendBigEndian(ihdr, header.width);
    AppendBigEndian(ihdr, header.height);
    Append(ihdr, Bytes{static_cast<std::uint8_t>(header.depth), static_cast<std::uint8_t>(header.kind), 0, 0,
                       static_cast<std::uint8_t>(header.interlaced ? 1 : 0)});
    Append(file, Chunk("IHDR", ihdr));
    Append(file, between);
    Append(file, Chunk("IDAT", Stored(scanlines)));
    Append(file, Chunk("IEND", {}));
    return file;
}

/// A picture of four bytes per pixel, top row first.
inline Bytes OfRgba(std::uint32_t width, std::uint32_t height, const Bytes& rgba) {
    Bytes scanlines;
    const std::size_t stride = std::size_t{4} * width;
    for (std::size_t y = 0; y < height; ++y) {
        scanlines.push_back(0);
        Append(scanlines, std::span(rgba).subspan(y * stride, stride));
    }
    return Make({.width = width, .height = height}, scanlines);
}

}  // namespace png_file
