// One bit per character of a block of 64: white space or not. A token starts at every clear bit that follows a set one;
// these are counted and found with bit operations, without a branch per character.
#include "io/TextTokens.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {
constexpr std::ptrdiff_t kChunk = 64;  // characters per word of bits

#ifdef __SSE2__
/// 16 characters are compared with all four kinds of white space at once.
std::uint64_t SpaceBitsOf16(const char* at) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i spaces = _mm_cmpeq_epi8(text, _mm_set1_epi8(' '));
    const __m128i tab = _mm_cmpeq_epi8(text, _mm_set1_epi8('\t'));
    const __m128i feed = _mm_cmpeq_epi8(text, _mm_set1_epi8('\n'));
    const __m128i carriage = _mm_cmpeq_epi8(text, _mm_set1_epi8('\r'));
    const __m128i space = _mm_or_si128(_mm_or_si128(spaces, tab), _mm_or_si128(feed, carriage));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(space)));
}

/// Bit i is set when character i of the chunk is white space.
std::uint64_t SpaceBitsOfChunk(const char* at) {
    return SpaceBitsOf16(at) | SpaceBitsOf16(at + 16) << 16 | SpaceBitsOf16(at + 32) << 32 |
           SpaceBitsOf16(at + 48) << 48;
}
#else
std::uint64_t SpaceBitsOfChunk(const char* at) {
    std::uint64_t bits = 0;
    for (int i = 0; i < kChunk; ++i) bits |= static_cast<std::uint64_t>(IsTokenSpace(at[i])) << i;
    return bits;
}
#endif

/// Moves over a text chunk by chunk. The end of the text counts as white space.
class TokenStarts {
public:
    TokenStarts(const char* first, const char* last) : m_pChunk(first), m_pLast(last) {}
    [[nodiscard]] bool AtEnd() const { return m_pChunk == m_pLast; }
    [[nodiscard]] const char* Chunk() const { return m_pChunk; }
    /// One bit per character of the chunk, set where a token starts. Moves to the next chunk.
    [[nodiscard]] std::uint64_t Next() {
        std::uint64_t space = 0;
        if (m_pLast - m_pChunk >= kChunk) {
            space = SpaceBitsOfChunk(m_pChunk);
            m_pChunk += kChunk;
        } else {
            // the last characters, filled up with white space
            char padded[kChunk];
            std::fill(std::copy(m_pChunk, m_pLast, padded), padded + kChunk, ' ');
            space = SpaceBitsOfChunk(padded);
            m_pChunk = m_pLast;
        }
        const std::uint64_t starts = ~space & (space << 1 | m_uSpaceBefore);
        m_uSpaceBefore = space >> 63;
        return starts;
    }

private:
    const char* m_pChunk;
    const char* m_pLast;
    std::uint64_t m_uSpaceBefore = 1;  // 1: the chunk before ends with white space
};

/// std::popcount() is a table look-up on targets that do not guarantee the instruction.
/// Sums of 2, of 4 and of 8 bits side by side, then all bytes by one multiplication.
int CountBits(std::uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0f;
    return static_cast<int>(bits * 0x0101010101010101 >> 56);
}
}  // namespace

// Most chunks only add to the count; the position of a token is searched in one of several chunks.
std::int64_t IndexTokens(std::string_view text, std::vector<std::int64_t>& startOfEvery64th) {
    startOfEvery64th.clear();
    std::int64_t count = 0;
    std::int64_t untilIndexed = 0;  // tokens before the next one to write down
    TokenStarts walk(text.data(), text.data() + text.size());
    while (!walk.AtEnd()) {
        const std::int64_t chunk = walk.Chunk() - text.data();
        std::uint64_t starts = walk.Next();
        const int found = CountBits(starts);
        count += found;
        if (found <= untilIndexed) {
            untilIndexed -= found;
            continue;
        }
        // clear the lowest set bits up to the wanted token
        for (; untilIndexed > 0; --untilIndexed) starts &= starts - 1;
        startOfEvery64th.push_back(chunk + std::countr_zero(starts));
        untilIndexed =
            64 - CountBits(starts);  // at least 32: a chunk has at most 32 starts, so never two to write down
    }
    return count;
}

const char* SkipTokens(const char* at, const char* end, std::int64_t tokens) {
    TokenStarts walk(at, end);
    while (!walk.AtEnd()) {
        const char* const chunk = walk.Chunk();
        std::uint64_t starts = walk.Next();
        for (; tokens > 0 && starts != 0; --tokens) starts &= starts - 1;
        if (starts != 0) return chunk + std::countr_zero(starts);
    }
    return end;
}
