// Large reads into one block, which is used for all of them.
#include "io/MeshRecords.h"

#include <algorithm>

namespace {

constexpr std::size_t kBlockSize = 256 * 1024;  // fits into a second-level cache

}  // namespace

// By halves and not by twice the available bytes: the product could overflow.
void RequireHalf(const ByteInput& input, std::size_t headerSize, std::uint64_t announced) {
    // max(): the header was read, so it is there, even when the file was shorter when its size was determined.
    const std::uint64_t available = std::max<std::uint64_t>(input.Size(), headerSize) - headerSize;
    if (available < announced - announced / 2)
        throw FileReadError("holds less than half of the mesh that it announces");
}

RecordBlocks::RecordBlocks(ByteInput& input, std::size_t recordSize, std::uint64_t count)
    : m_input(input),
      m_uRecordSize(recordSize),
      m_uLeft(count),
      m_vBlock(recordSize * std::min<std::uint64_t>(count, kBlockSize / recordSize)) {}

std::span<const std::byte> RecordBlocks::Next() {
    // A part of a record is the end of the file; a file that grows meanwhile must not continue there.
    if (m_uTail != 0) return {};
    const std::size_t wanted = m_uRecordSize * std::min<std::uint64_t>(m_uLeft, m_vBlock.size() / m_uRecordSize);
    const std::size_t got = wanted == 0 ? 0 : m_input.Read(m_vBlock.data(), wanted);
    m_uTail = got % m_uRecordSize;
    m_uWhole = got - m_uTail;
    m_uLeft -= m_uWhole / m_uRecordSize;
    return {m_vBlock.data(), m_uWhole};
}
