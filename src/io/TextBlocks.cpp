// The rest after the last line of a block is moved to the start of the buffer, and the file continues after it.
#include "io/TextBlocks.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

TextBlocks::TextBlocks(ByteInput& input, std::uint64_t offset, Cut cut)
    : m_rInput(input), m_eCut(cut), m_uSize(input.Size() - std::min(offset, input.Size())), m_uLeft(m_uSize) {
    m_rInput.Seek(offset);
}

double TextBlocks::Part() const {
    if (m_uSize == 0) return 1;
    return static_cast<double>(m_uSize - m_uLeft) / static_cast<double>(m_uSize);
}

// Bytes that were appended to the file after it was opened are not read.
void TextBlocks::Fill() {
    m_uEnd -= m_uTail;
    std::memmove(m_pBuffer.get(), m_pBuffer.get() + m_uTail, m_uEnd);
    m_uTail = 0;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock + 1 - m_uEnd, m_uLeft));
    if (m_rInput.Read(m_pBuffer.get() + m_uEnd, wanted) < wanted)
        throw FileReadError("the file became shorter while it was read");
    m_uEnd += wanted;
    m_uLeft -= wanted;
}

std::string_view TextBlocks::Next() {
    Fill();
    if (m_uEnd == 0) return {};
    if (m_uLeft == 0 && m_uEnd <= kBlock && !IsEnd(m_pBuffer[m_uEnd - 1])) m_pBuffer[m_uEnd++] = '\n';
    std::size_t cut = m_uEnd;
    while (cut > 0 && !IsEnd(m_pBuffer[cut - 1])) --cut;
    if (cut == 0) cut = m_uEnd;
    m_uTail = cut;
    return {m_pBuffer.get(), cut};
}

std::string Shown(std::string_view text, std::size_t longest) {
    std::string shown(text.substr(0, longest));
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = '?';
    if (text.size() > longest) shown.append("...");
    return shown;
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    return std::string("\"").append(Shown(text, kLongest)).append("\"");
}

std::string NumberFault(std::string_view text) {
    const bool hasPlus = text.starts_with('+') && !text.starts_with("+-");
    const std::string_view digits = text.substr(hasPlus ? 1 : 0);
    double value = 0;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    std::string reason = Quoted(text);
    if (digits.empty() || end != digits.data() + digits.size() || fault == std::errc::invalid_argument)
        reason.append(" is not a number");
    else if (fault == std::errc{} && !std::isfinite(value))
        reason.append(" is not a finite number");
    else
        reason.append(" is too large for a float");
    return reason;
}
