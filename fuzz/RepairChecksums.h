// Makes mutated pcm and hps files pass the checks of their container, so that the fuzzer reaches what the sections
// hold.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "files/SectionFile.h"

/// Sets the file size in the header, the checksum of each section and that of header and table. Nothing changes where
/// the table does not fit into the file.
/// @param fileSizeOffset  of the file size in the header; the formats differ in it
inline void RepairChecksums(std::vector<std::byte>& bytes, std::size_t fileSizeOffset) {
    using namespace FileStorage;
    const auto store = [&bytes](std::size_t at, std::uint64_t value) { std::memcpy(&bytes[at], &value, sizeof value); };
    if (bytes.size() < HeadSize(0)) return;
    std::uint32_t count = 0;
    std::memcpy(&count, &bytes[12], sizeof count);
    if (count > (bytes.size() - HeadSize(0)) / kEntrySize) return;
    store(fileSizeOffset, bytes.size());
    std::size_t at = HeadSize(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = kHeaderSize + i * kEntrySize;
        std::uint64_t size = 0;
        std::memcpy(&size, &bytes[entry + 8], sizeof size);
        if (size > bytes.size() - at) break;
        store(entry + 16, Checksum(bytes.data() + at, size));
        at += size;
    }
    const std::size_t tableEnd = HeadSize(count) - kChecksumSize;
    store(tableEnd, Checksum(bytes.data(), tableEnd));
}

/// Runs a check on the bytes as they are, and again with repaired checksums.
/// @return the repaired bytes
template <class Check>
std::vector<std::byte> CheckTwice(const std::uint8_t* data, std::size_t size, std::size_t fileSizeOffset, Check check) {
    const auto* from = reinterpret_cast<const std::byte*>(data);
    std::vector<std::byte> bytes(from, from + size);
    check(bytes);
    RepairChecksums(bytes, fileSizeOffset);
    check(bytes);
    return bytes;
}
