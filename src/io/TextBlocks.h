// The text of a file in blocks of whole lines or whole words, for readers of text that is larger than memory should be.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "io/ByteInput.h"

/// Not for two blocks at once: each is valid until the next one is read.
class TextBlocks {
public:
    enum class Cut { kAfterLine, kAfterWord };  ///< where a block may end: at a line feed, at any white space

    /// @param offset  first byte of the text; it ends with the file
    TextBlocks(ByteInput& input, std::uint64_t offset, Cut cut);
    /// The next block; it ends with a line feed or white space, which is added at the end of the file. It ends with
    /// neither when a line or word is longer than kBlock. Empty after the last block.
    /// @throws FileReadError when the file was shortened after it was opened
    [[nodiscard]] std::string_view Next();
    /// How much of the text was returned, 0 to 1.
    [[nodiscard]] double Part() const;

    /// Characters of the longest line or word; a block has one more, for its end, and fits into the cache.
    static constexpr std::size_t kBlock = std::size_t{1} << 18;

private:
    [[nodiscard]] bool IsEnd(char c) const { return c == '\n' || (m_eCut == Cut::kAfterWord && IsSpace(c)); }
    static bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    void Fill();

    ByteInput& m_rInput;
    Cut m_eCut;
    std::uint64_t m_uSize;                ///< bytes of the text
    std::uint64_t m_uLeft;                ///< of these, not read yet
    std::size_t m_uTail = 0, m_uEnd = 0;  ///< what is in the buffer and was not returned
    std::unique_ptr<char[]> m_pBuffer = std::make_unique_for_overwrite<char[]>(kBlock + 1);
};

/// A piece of a file's text for a message of one line: control characters replaced, cut after @p longest characters.
[[nodiscard]] std::string Shown(std::string_view text, std::size_t longest);
/// The same in quotation marks, at most 40 characters.
[[nodiscard]] std::string Quoted(std::string_view text);
/// Why the text is not a number for a point: "\"1e99\" is too large for a float", "... is not a finite number", "... is
/// not a number".
[[nodiscard]] std::string NumberFault(std::string_view text);
