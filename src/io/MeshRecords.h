// The records of binary mesh files: an announced number of records of one size, of which the file can have fewer.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "io/ByteInput.h"

/// Refuses a file that has less than half of the bytes that its header announces. A file with more than that is
/// accepted as one that was cut short, and the rest is made up; the limit keeps memory in proportion to the size of the
/// file.
/// @param headerSize  bytes before the announced ones
/// @throws FileReadError
void RequireHalf(const ByteInput& input, std::size_t headerSize, std::uint64_t announced);

/// Reads an announced number of records in blocks that fit into the processor's cache.
class RecordBlocks {
public:
    /// @param input  must outlive this object; positioned at the first record
    RecordBlocks(ByteInput& input, std::size_t recordSize, std::uint64_t count);
    /// The next whole records, valid until the next call; empty when there are no more.
    [[nodiscard]] std::span<const std::byte> Next();
    /// After the last block: the number of announced records that the file does not have completely.
    [[nodiscard]] std::uint64_t Missing() const { return m_uLeft; }
    /// After the last block: the bytes of the first of these that the file has.
    [[nodiscard]] std::span<const std::byte> Tail() const { return {m_vBlock.data() + m_uWhole, m_uTail}; }

private:
    ByteInput& m_input;
    std::size_t m_uRecordSize;
    std::uint64_t m_uLeft;  ///< announced records that were not read yet
    std::vector<std::byte> m_vBlock;
    std::size_t m_uWhole = 0, m_uTail = 0;  ///< bytes in the block
};
