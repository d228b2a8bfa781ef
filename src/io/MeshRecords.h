// The records of binary mesh files: so many of one size, as far as the file has them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "io/ByteInput.h"

/// Refuses a file whose bytes behind its header are less than half of those that the header announces. Until then a
/// file that was cut short is taken; beyond, more is invented than read, and memory is taken for what is not there.
/// @throws FileReadError
void RequireHalf(const ByteInput& input, std::size_t headerSize, std::uint64_t announced);

/// Hands out an announced number of records in blocks that stay in the processor's cache.
class RecordBlocks {
public:
    RecordBlocks(ByteInput& input, std::size_t recordSize, std::uint64_t count);
    /// The next whole records, valid until the next call; empty when there are no more.
    [[nodiscard]] std::span<const std::byte> Next();
    /// After the last block: how many announced records the file does not have whole.
    [[nodiscard]] std::uint64_t Missing() const { return m_uLeft; }
    /// After the last block: what the file has of the first of them.
    [[nodiscard]] std::span<const std::byte> Tail() const { return {m_vBlock.data() + m_uWhole, m_uTail}; }

private:
    ByteInput& m_input;
    std::size_t m_uRecordSize;
    std::uint64_t m_uLeft;
    std::vector<std::byte> m_vBlock;
    std::size_t m_uWhole = 0, m_uTail = 0;  ///< bytes in the block
};
