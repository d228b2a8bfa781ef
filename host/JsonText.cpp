#include "JsonText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "KV_ScenePane/PathText.h"

namespace {

/// "\u" and four lower-case hexadecimal digits.
std::string Escape(std::uint32_t character) {
    std::string text = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text += "0123456789abcdef"[(character >> shift) & 0xF];
    return text;
}

}  // namespace

std::string JsonString(std::wstring_view text) {
    std::string json = "\"";
    for (const wchar_t character : text) {
        const auto c = static_cast<std::uint32_t>(character);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += static_cast<char>(c);
        } else if (c == '\n') {
            json += "\\n";
        } else if (c < 0x20 || c == 0x7F || (c >= 0xD800 && c <= 0xDFFF)) {
            json += Escape(c);
        } else {
            json += KV_ScenePane::PathBytes({&character, 1});
        }
    }
    return json + '"';
}

std::string JsonString(std::string_view bytes) { return JsonString(KV_ScenePane::WidePath(bytes)); }

std::string JsonDouble(double value) {
    if (!std::isfinite(value)) throw std::runtime_error("a number is not finite");
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), value + 0.0).ptr;  // -0 + 0 is 0
    return {text.data(), end};
}
