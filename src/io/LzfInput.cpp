// A control byte below 32 starts a run of literal bytes; any other holds a length and the high bits of a distance.
#include "io/LzfInput.h"

#include <algorithm>
#include <cstring>

namespace {
[[noreturn]] void FailShort() { throw FileReadError("the compressed data is cut short"); }
}  // namespace

LzfInput::LzfInput(ByteInput& compressed, std::uint64_t bytes)
    : m_rInput(compressed), m_uLeft(bytes), m_vOut(kWindow + kRound + kLongest) {}

void LzfInput::Read(void* to, std::size_t size) {
    auto* at = static_cast<std::uint8_t*>(to);
    while (size > 0) {
        if (m_uOutAt == m_uOutEnd) Decompress();
        const std::size_t part = std::min(size, m_uOutEnd - m_uOutAt);
        std::memcpy(at, m_vOut.data() + m_uOutAt, part);
        m_uOutAt += part;
        at += part;
        size -= part;
    }
}

// The last bytes of the window stay in front of the new ones, for the copies.
void LzfInput::Decompress() {
    const std::size_t kept = std::min(kWindow, m_uOutEnd);
    std::memmove(m_vOut.data(), m_vOut.data() + m_uOutEnd - kept, kept);
    m_uOutAt = m_uOutEnd = kept;
    while (m_uOutEnd < kept + kRound && (m_uInAt < m_vIn.size() || m_uLeft > 0)) {
        const std::size_t control = NextByte();
        if (control < 32) {
            CopyLiterals(control + 1);
            continue;
        }
        std::size_t length = control >> 5;
        if (length == 7) length += NextByte();
        const std::size_t distance = (control & 31) << 8 | NextByte();
        CopyBack(distance + 1, length + 2);
    }
    if (m_uOutEnd == kept) FailShort();
}

void LzfInput::CopyLiterals(std::size_t length) {
    for (; length > 0; --length) m_vOut[m_uOutEnd++] = static_cast<std::uint8_t>(NextByte());
}

// Byte by byte: a copy can be longer than its distance and then repeats what it has written.
void LzfInput::CopyBack(std::size_t distance, std::size_t length) {
    if (distance > m_uOutEnd) throw FileReadError("the compressed data is damaged");
    for (; length > 0; --length, ++m_uOutEnd) m_vOut[m_uOutEnd] = m_vOut[m_uOutEnd - distance];
}

std::size_t LzfInput::NextByte() {
    if (m_uInAt == m_vIn.size()) Refill();
    return m_vIn[m_uInAt++];
}

void LzfInput::Refill() {
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, m_uLeft));
    m_vIn.resize(wanted);
    if (wanted == 0 || m_rInput.Read(m_vIn.data(), wanted) < wanted) FailShort();
    m_uInAt = 0;
    m_uLeft -= wanted;
}
