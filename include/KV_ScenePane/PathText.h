// Conversion of paths between bytes and wide strings. A file name on disk is a sequence of bytes that need not be valid
// UTF-8; the conversion there and back keeps every byte. The locale of the process has no influence.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace KV_ScenePane {

namespace detail {
/// Length of the valid UTF-8 sequence at the start of @p bytes, with its code point; 0 when there is none.
inline std::size_t DecodeUtf8(std::string_view bytes, char32_t& codePoint) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    // The lead byte gives the length; 0x80 to 0xC1 and above 0xF4 start no sequence.
    const unsigned char lead = byteAt(0);
    if (lead < 0x80) {
        codePoint = lead;
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return 0;
    codePoint = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (byteAt(i) & 0x3Fu);
    }
    // Overlong forms, surrogates and values above the last code point are not valid UTF-8.
    const char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint < smallest[length] || codePoint > 0x10FFFF || surrogate ? 0 : length;
}
}  // namespace detail

/// A path in bytes as a wide string: UTF-8 is decoded, and a byte b that is not part of valid UTF-8 becomes the lone
/// surrogate 0xDC00 + b, which no valid text holds.
[[nodiscard]] inline std::wstring WidePath(std::string_view bytes) {
    std::wstring wide;
    wide.reserve(bytes.size());
    // One step per code point, or per byte that starts no valid sequence.
    while (!bytes.empty()) {
        char32_t codePoint = 0;
        std::size_t length = detail::DecodeUtf8(bytes, codePoint);
        if (length == 0) {
            codePoint = 0xDC00u + static_cast<unsigned char>(bytes[0]);
            length = 1;
        }
        wide.push_back(static_cast<wchar_t>(codePoint));
        bytes.remove_prefix(length);
    }
    return wide;
}

/// The bytes of a wide path: the exact inverse of WidePath(), so that a lone surrogate 0xDC80 to 0xDCFF becomes its
/// byte. Other code points that UTF-8 cannot encode become '?'.
[[nodiscard]] inline std::string PathBytes(std::wstring_view wide) {
    std::string bytes;
    bytes.reserve(wide.size());
    for (const wchar_t character : wide) {
        const auto c = static_cast<std::uint32_t>(character);
        const auto push = [&](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
        // Code points of one and two bytes; then the lone surrogates of WidePath(), then what UTF-8 cannot encode,
        // and last the code points of three and four bytes.
        if (c < 0x80) {
            push(c);
        } else if (c < 0x800) {
            push(0xC0 | (c >> 6)), push(0x80 | (c & 0x3F));
        } else if (c >= 0xDC80 && c <= 0xDCFF) {
            push(c - 0xDC00);
        } else if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
            push('?');
        } else if (c < 0x10000) {
            push(0xE0 | (c >> 12)), push(0x80 | ((c >> 6) & 0x3F)), push(0x80 | (c & 0x3F));
        } else {
            push(0xF0 | (c >> 18)), push(0x80 | ((c >> 12) & 0x3F)), push(0x80 | ((c >> 6) & 0x3F)),
                push(0x80 | (c & 0x3F));
        }
    }
    return bytes;
}

}  // namespace KV_ScenePane
