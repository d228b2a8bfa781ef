// White space of 64 characters becomes the bits of a word; a token starts where a bit is clear behind a set one.
#include "io/TextTokens.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {
constexpr std::ptrdiff_t kChunk = 64;

#ifdef __SSE2__
std::uint64_t SpaceBitsOf16(const char* at) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i blank = _mm_cmpeq_epi8(text, _mm_set1_epi8(' '));
    const __m128i tab = _mm_cmpeq_epi8(text, _mm_set1_epi8('\t'));
    const __m128i feed = _mm_cmpeq_epi8(text, _mm_set1_epi8('\n'));
    const __m128i carriage = _mm_cmpeq_epi8(text, _mm_set1_epi8('\r'));
    const __m128i space = _mm_or_si128(_mm_or_si128(blank, tab), _mm_or_si128(feed, carriage));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(space)));
}

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

/// Walks a text chunk by chunk.
class TokenStarts {
public:
    TokenStarts(const char* first, const char* last) : m_pChunk(first), m_pLast(last) {}
    [[nodiscard]] bool AtEnd() const { return m_pChunk == m_pLast; }
    [[nodiscard]] const char* Chunk() const { return m_pChunk; }
    /// A bit for every character of the chunk that starts a token; moves to the next chunk.
    [[nodiscard]] std::uint64_t Next() {
        std::uint64_t space = 0;
        if (m_pLast - m_pChunk >= kChunk) {
            space = SpaceBitsOfChunk(m_pChunk);
            m_pChunk += kChunk;
        } else {
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
    std::uint64_t m_uSpaceBefore = 1;  // the last character of the chunk before is white space
};

/// __builtin_popcount is a table look-up where the target need not have the instruction.
int CountBits(std::uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0f;
    return static_cast<int>(bits * 0x0101010101010101 >> 56);
}
}  // namespace

std::int64_t IndexTokens(std::string_view text, std::vector<std::int64_t>& startOfEvery64th) {
    startOfEvery64th.clear();
    std::int64_t count = 0;
    std::int64_t untilNote = 0;  // tokens before the next one that is noted
    TokenStarts walk(text.data(), text.data() + text.size());
    while (!walk.AtEnd()) {
        const std::int64_t chunk = walk.Chunk() - text.data();
        std::uint64_t starts = walk.Next();
        const int found = CountBits(starts);
        count += found;
        if (found <= untilNote) {
            untilNote -= found;
            continue;
        }
        for (; untilNote > 0; --untilNote) starts &= starts - 1;
        startOfEvery64th.push_back(chunk + std::countr_zero(starts));
        untilNote = 64 - CountBits(starts);  // not below 32: a chunk holds at most that many
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
