// kv_scenepane_ids.h: macros for C89, in the order of the table.
#include "WriteIds.h"

#include <span>
#include <string_view>

#include "TextParts.h"

namespace bindings {
namespace {

// A negative number is in parentheses, so that "x-KV_AboutBox" is a subtraction.
std::string Define(std::string_view prefix, std::string_view name, std::int32_t value) {
    const std::string number = std::to_string(value);
    std::string line = "#define KV_";
    line.append(prefix).append(name).append(" ");
    if (value < 0) return line.append("(").append(number).append(")");
    return line.append(number);
}

std::string Section(std::string_view title, std::string_view prefix, std::string_view counter,
                    std::span<const Member> members) {
    std::string text = "\n/* ---- ";
    text.append(title).append(" */\n\n");
    for (const Member& member : members) text.append(Define(prefix, member.name, member.id)).append("\n");
    text.append(Define("", counter, static_cast<std::int32_t>(members.size()))).append("\n");
    return text;
}

/// A comment of lines that fit the width of the file.
std::string Comment(std::string_view text) {
    constexpr std::size_t kWidth = 120;
    if (text.find("*/") != std::string_view::npos)
        throw SourceError("kv_scenepane_ids.h: \"*/\" ends a comment of C: \"" + std::string(text) + "\"");
    std::string lines, line = "/*";
    for (const std::string_view word : TextParts(text, " ")) {
        if (line.size() + 1 + word.size() > kWidth - 3) {  // the end of the comment needs the rest
            lines.append(line).append("\n");
            line = "  ";
        }
        line.append(" ").append(word);
    }
    return lines.append(line).append(" */");
}

std::string Values(const ModeList& mode) {
    std::string text = "\n";
    text.append(Comment(mode.text)).append("\n");
    for (const Constant& constant : mode.constants) {
        const std::string define = Define("", constant.name, constant.value);
        const std::string comment = constant.text.empty() ? "" : Comment(constant.text);
        const bool fits = comment.find('\n') == std::string::npos && define.size() + 1 + comment.size() <= 120;
        if (fits)
            text.append(define).append(comment.empty() ? "" : " ").append(comment).append("\n");
        else
            text.append(comment).append("\n").append(define).append("\n");
    }
    return text;
}

}  // namespace

std::string IdsHeader(const Surface& surface) {
    std::string text =
        "/* Ids of the automation surface and the values of its modes. Made by generate-bindings from the automation\n"
        "   table and the public headers of C++: do not edit. What the members do is in docs/automation.md. */\n"
        "#ifndef KV_SCENEPANE_IDS_H\n"
        "#define KV_SCENEPANE_IDS_H\n"
        "/* clang-format off */\n";
    text.append(Section("methods", "", "METHOD_COUNT", surface.methods));
    text.append(Section("properties", "PROPERTY_", "PROPERTY_COUNT", surface.properties));
    text.append(Section("events", "EVENT_", "EVENT_COUNT", surface.events));
    text.append("\n/* ---- values of modes */\n");
    for (const ModeList& mode : surface.modes) text.append(Values(mode));
    return text.append("\n#endif\n");
}

}  // namespace bindings
