#include "options/TerminalText.h"

namespace ProgramOptions {

std::string TerminalText(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < ' ' || byte == 0x7F) text[i] = '?';
        // U+0080 to U+009F, in UTF-8 the byte C2 and one more, are control characters too.
        if (i > 0 && text[i - 1] == '\xC2' && byte >= 0x80 && byte < 0xA0) {
            text.erase(i, 1);
            text[--i] = '?';
        }
    }
    return text;
}

}  // namespace ProgramOptions
