// Decompresses LZF, the compression of pcd files: literal runs and copies of at most 8192 bytes back.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/ByteInput.h"

/// The decompressed bytes in order. The memory is a window of constant size, whatever the sizes are.
class LzfInput {
public:
    /// @param compressed  positioned at the first compressed byte; must outlive this object
    /// @param bytes       how many compressed bytes there are
    LzfInput(ByteInput& compressed, std::uint64_t bytes);
    /// Copies the next @p size bytes.
    /// @throws FileReadError when the data is damaged or there is less of it
    void Read(void* to, std::size_t size);
    /// Whether Read() has returned all of the data.
    [[nodiscard]] bool AtEnd() const { return m_uOutAt == m_uOutEnd && m_uInAt == m_vIn.size() && m_uLeft == 0; }
    /// The largest number of decompressed bytes that so many compressed bytes can expand to.
    [[nodiscard]] static std::uint64_t LargestSize(std::uint64_t bytes) { return bytes / 3 * 264 + 264; }

private:
    void Decompress();
    void CopyLiterals(std::size_t length);
    void CopyBack(std::size_t distance, std::size_t length);
    [[nodiscard]] std::size_t NextByte();
    void Refill();

    static constexpr std::size_t kWindow = 8192;                 ///< how far back a copy can reach
    static constexpr std::size_t kRound = std::size_t{1} << 16;  ///< decompressed bytes at a time
    static constexpr std::size_t kLongest = 264;                 ///< bytes of one run or copy

    ByteInput& m_rInput;
    std::uint64_t m_uLeft;             ///< compressed bytes that were not read
    std::vector<std::uint8_t> m_vIn;   ///< compressed bytes
    std::size_t m_uInAt = 0;           ///< the next one
    std::vector<std::uint8_t> m_vOut;  ///< decompressed bytes, up to kWindow old ones before the new ones
    std::size_t m_uOutAt = 0;          ///< the next one for Read()
    std::size_t m_uOutEnd = 0;
};
