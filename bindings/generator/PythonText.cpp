// Types and docstrings of the Python package.
#include "PythonText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <utility>
#include <vector>

#include "TextParts.h"

namespace bindings {
namespace {

constexpr std::size_t kLineLength = 99;
constexpr std::string_view kQuotes = "\"\"\"";

struct TypeRow {
    std::string_view type, code;
    int tag;
    std::string_view python;
};

// Types as declared; the tags are those of kv_value.
constexpr std::array<TypeRow, 12> kTypes{{{"void", "v", 0, "None"},
                                          {"short", "s", 1, "int"},
                                          {"VARIANT_BOOL", "b", 1, "bool"},
                                          {"long", "i", 2, "int"},
                                          {"int", "i", 2, "int"},
                                          {"float", "f", 3, "float"},
                                          {"BSTR", "w", 5, "str"},
                                          {"VARIANT*", "p", 6, "NDArray"},
                                          {"float*", "p", 6, "float"},
                                          {"long*", "p", 6, "int"},
                                          {"int*", "p", 6, "int"},
                                          {"int64", "l", 7, "int"}}};

const TypeRow& RowOf(std::string_view type) {
    const auto row = std::ranges::find(kTypes, type, &TypeRow::type);
    if (row == kTypes.end()) throw SourceError("the Python package has no type for " + std::string(type));
    return *row;
}

// How a phrase of C++ reads in Python.
struct Phrase {
    std::string_view from, to;
};

constexpr Phrase kPhrases[] = {
    {"std::runtime_error", "kv.Error"},
    {"std::bad_alloc", "kv.Error"},
    {"ScenePane::GetCutSaveResults()", "cut_save_entries()"},
    {"HasWindow()", "has_window"},
    {"ProcessEvents()", "process_events()"},
    {", and one line of the debugger output has its path and the reason; a ply file throws the reason as well",
     ", and the reason is an exception"},
    {"A file that adds nothing is reported in the debugger output.", "A file that adds nothing is an exception."},
    {"what the hook throws", "what on_about raises"},
    {"Without that hook", "Without on_about"},
    {"What showMessage throws", "What on_message raises"},
    {"kv.Error, and what handlers and hooks throw",
     "kv.Error when memory is short, and what handlers and on_message raise"},
    {"when the handler throws", "when the handler raises"},
    {"1 when there was at least one file to write, else 0.", "True when there was at least one file to write."},
    {"showAbout of the window request", "on_about"},
    {" (Modes.h)", ""},
    {" (Cutting.h)", ""},
    {"mouse flags of Input.h", "what was held: kv.MOUSE_LEFT and so on"},
    {"as in KeyInput (Input.h)", "as in send_key()"},
    {"address of the ACAD::CutMask (CutMask.h), owned by the viewer",
     "for ScenePane.cut_mask() while the handler runs"},
    {"receives the ", "the "},
    {"receives one", "one"},
    {"receive 3 floats", "3 floats"},
    {"the outputs are then untouched", "the numbers are then 0"},
    {"of the host", "of the program"},
    {"the host", "the program"},
    {"see ImportMeasurementEntry", "parallel_import() is easier to use"},
    {"The id must be valid: it is not checked.", "IndexError for an id that no sphere has."},
    {"The index must be valid: it is not checked.", "IndexError for an index outside the list."},
    {"valid index; it is not checked", "IndexError outside the list"},
    {"The index must be one that AddOverlayData() returned.",
     "IndexError for any other index than those that "
     "AddOverlayData() returned."},
    {"3 indices per triangle; not checked",
     "3 indices per triangle; IndexError for one that no vertex has. No other thread may write to the arrays during "
     "the call"},
};

// What Python itself raises, in place of what the text of C++ says of exceptions.
struct RaisesRow {
    std::string_view method, text;
};

constexpr RaisesRow kRaises[] = {
    {"ImportMesh",
     "kv.ImportFailed: no object was added; its reason is the line of the debugger output, which is not written then. "
     "Between BeginParallelImport() and EndParallelImport() some files are refused by that line alone"},
    {"ImportScan",
     "kv.ImportFailed: no object was added; its reason is the line of the debugger output, which is not written then. "
     "Between BeginParallelImport() and EndParallelImport() there is the line alone"},
    {"ExportMesh", "kv.Error: no file was written, with the reason. IndexError: there is no such object"},
    {"ImportMeshedMeasurement", "kv.ImportFailed: memory is short, nothing was added"},
    {"ImportMeasurementFromMemory",
     "kv.ImportFailed: nothing was added, with the reason, such as a grid without a triangle while "
     "SetAllowEmptyObjects() is off. Between BeginParallelImport() and EndParallelImport() only when memory is short"},
    {"ImportMeshFromMemory",
     "kv.ImportFailed: memory is short, nothing was added. IndexError: triangles hold an index that no vertex has"},
};

// Arguments that may be None.
constexpr std::pair<std::string_view, std::string_view> kOptional[] = {{"AddOverlayData", "argbU8DataPtrHack"},
                                                                       {"CreateLine3D", "XYZs"},
                                                                       {"ImportPoints", "xyz"},
                                                                       {"ImportPoints", "colors"},
                                                                       {"ImportMeshedMeasurement", "filename"}};

// Whole words that are written otherwise in Python.
constexpr Phrase kWords[] = {{"null", "None"}, {"Null", "None"}, {"true", "True"}, {"false", "False"}};

bool IsLetter(const std::string& text, std::size_t at) {
    return at < text.size() && std::isalnum(static_cast<unsigned char>(text[at])) != 0;
}

void Replace(std::string& text, const Phrase& phrase, bool isWord) {
    for (std::size_t at = text.find(phrase.from); at != std::string::npos; at = text.find(phrase.from, at)) {
        const bool isPart = (at > 0 && IsLetter(text, at - 1)) || IsLetter(text, at + phrase.from.size());
        if (!isWord || !isPart) text.replace(at, phrase.from.size(), phrase.to);
        at += phrase.to.size();
    }
}

/// What the docstring says of exceptions, still in the words of C++ unless Python has its own.
std::string_view RaisesOf(const Member& member) {
    const RaisesRow* row = std::ranges::find(kRaises, std::string_view(member.name), &RaisesRow::method);
    return row == std::end(kRaises) ? std::string_view(member.throws) : row->text;
}

std::string InPython(std::string text) {
    for (const Phrase& phrase : kPhrases) Replace(text, phrase, false);
    for (const Phrase& word : kWords) Replace(text, word, true);
    return text;
}

/// Wraps one paragraph.
/// @param first, rest  what the first line and the others start with
std::string Wrapped(std::string_view paragraph, std::string_view first, std::string_view rest) {
    std::string lines, line(first);
    bool isEmpty = true;
    for (const std::string_view word : TextParts(paragraph, " ")) {
        if (!isEmpty && line.size() + 1 + word.size() > kLineLength) {
            lines.append(line).append("\n");
            line = rest;
            isEmpty = true;
        }
        line.append(isEmpty ? "" : " ").append(word);
        isEmpty = false;
    }
    return lines.append(line).append("\n");
}

/// The text of a docstring from its quotes on.
std::string Paragraphs(const std::string& text, std::string_view indent) {
    std::string lines, first(indent);
    first.append(kQuotes);
    for (const std::string_view part : TextParts(text, "\n\n")) {
        if (!lines.empty()) lines.append("\n");
        lines.append(Wrapped(part, lines.empty() ? std::string_view(first) : indent, indent));
    }
    return lines;
}

/// Ends a docstring: on its line when it has only one, else on a line of its own.
std::string Quoted(std::string text, std::string_view indent) {
    const bool hasQuotes = text.find(kQuotes, indent.size() + kQuotes.size()) != std::string::npos;
    if (text.find('\\') != std::string::npos || hasQuotes)
        throw SourceError("a docstring of Python cannot hold this text as it is: " + text);
    text.pop_back();
    const bool isOneLine = text.find('\n') == std::string::npos;
    if (!isOneLine || text.size() + kQuotes.size() > kLineLength) text.append("\n").append(indent);
    return text.append(kQuotes).append("\n");
}

std::string ShapeText(const Argument& argument) {
    if (argument.element == "mesh") return "a kv.Mesh";
    if (argument.shape.empty()) return {};
    return argument.element + " array, " + argument.shape;
}

constexpr std::string_view kIndent = "        ";

std::string TextOf(const Member& member, const Argument& argument) {
    std::string text = ShapeText(argument);
    if (!argument.text.empty()) text.append(text.empty() ? "" : ": ").append(InPython(argument.text));
    if (IsLength(member, argument.name))
        text.append(text.empty() ? "" : "; ").append("taken from the array when left out");
    return text;
}

// Arguments that share a text are one entry.
std::string ArgumentTexts(const Member& member, bool outputs, const std::string& indent) {
    std::vector<std::pair<std::string, std::string>> entries;  // names and text
    for (const Argument& argument : member.arguments) {
        std::string text = TextOf(member, argument);
        if (argument.output != outputs || text.empty()) continue;
        const auto entry = std::ranges::find(entries, text, &std::pair<std::string, std::string>::second);
        if (entry == entries.end())
            entries.emplace_back(argument.name, std::move(text));
        else
            entry->first.append(", ").append(argument.name);
    }
    std::string lines;
    for (const auto& [names, text] : entries)
        lines.append(Wrapped(text, std::string(indent).append(names).append(": "), std::string(indent).append("    ")));
    return lines;
}

std::string Section(std::string_view title, const std::string& lines) {
    if (lines.empty()) return {};
    std::string text = "\n";
    return text.append(kIndent).append(title).append(":\n").append(lines);
}

// Outputs without a text of their own are listed by name, so that the fields of the result can be read here.
std::string OutputNames(const Member& method) {
    std::string names;
    for (const Argument& argument : method.arguments)
        if (argument.output) names.append(names.empty() ? "" : ", ").append(argument.name);
    return names;
}

std::string ReturnsText(const Member& method) {
    const std::string indent = std::string(kIndent).append("    ");
    if (method.name == "GetCutMasks") return Wrapped("a list of kv.CutMask, copies", indent, indent);
    if (method.name == "CaptureScreenShot")
        return Wrapped("uint8 array, 2048 x 2048 x 4: r, g, b, a, top row first. All zero without OpenGL", indent,
                       indent);
    const std::string outputs = OutputNames(method);
    if (outputs.empty()) return method.returns.empty() ? "" : Wrapped(InPython(method.returns), indent, indent);
    std::string lines;
    if (method.type != "void")
        lines = Wrapped(method.returns.empty() ? PythonType(method.type) : InPython(method.returns),
                        std::string(indent).append("result: "), std::string(indent).append("    "));
    const std::string texts = ArgumentTexts(method, true, indent);
    return lines.append(texts.empty() ? Wrapped(outputs, indent, indent) : texts);
}

// All texts that become docstrings, as they are in the headers, one per line.
std::string AllTexts(const Surface& surface) {
    std::string all;
    const auto add = [&all](std::string_view text) { all.append(text).append("\n"); };
    for (const auto* members : {&surface.methods, &surface.properties, &surface.events}) {
        for (const Member& member : *members) {
            for (const std::string_view text : {std::string_view(member.text), std::string_view(member.setterText),
                                                std::string_view(member.returns), RaisesOf(member)})
                add(text);
            for (const Argument& argument : member.arguments) add(argument.text);
        }
    }
    for (const ModeList& mode : surface.modes) {
        add(mode.text);
        for (const Constant& constant : mode.constants) add(constant.text);
    }
    return all;
}

[[noreturn]] void RefuseUnused(std::string_view text) {
    throw SourceError(
        std::string("bindings/generator/PythonText.cpp: no text has \"").append(text).append("\" any more"));
}

void CheckArgument(const Surface& surface, std::string_view name, std::string_view argument) {
    const auto method = std::ranges::find(surface.methods, name, &Member::name);
    const bool hasIt = method != surface.methods.end() &&
                       (argument.empty() || std::ranges::count(method->arguments, argument, &Argument::name) == 1);
    if (!hasIt)
        throw SourceError(std::string("bindings/generator/PythonText.cpp: there is no ")
                              .append(name)
                              .append(argument.empty() ? "" : ".")
                              .append(argument));
}

}  // namespace

void CheckPhrases(const Surface& surface) {
    std::string all = AllTexts(surface);
    for (const Phrase& phrase : kPhrases) {
        if (all.find(phrase.from) == std::string::npos) RefuseUnused(phrase.from);
        Replace(all, phrase, false);
    }
    for (const RaisesRow& row : kRaises) CheckArgument(surface, row.method, "");
    for (const auto& [method, argument] : kOptional) CheckArgument(surface, method, argument);
}

std::string ValueCode(std::string_view type) { return std::string(RowOf(type).code); }

int ValueTag(std::string_view type) { return RowOf(type).tag; }

std::string PythonType(std::string_view type) { return std::string(RowOf(type).python); }

std::string PythonType(const Argument& argument) {
    if (argument.element == "mesh") return "Mesh";
    if (argument.element == "pointer") return "int";
    if (!argument.shape.empty()) return "NDArray[np." + argument.element + "]";
    const bool isPath = argument.name == "path" || argument.name == "filename";
    if (argument.type == "BSTR" && isPath) return "PathLike";
    return PythonType(argument.type);
}

std::string PythonInputType(const Member& method, const Argument& argument) {
    const std::pair<std::string_view, std::string_view> key(method.name, argument.name);
    const bool isOptional = std::ranges::find(kOptional, key) != std::end(kOptional);
    return PythonType(argument).append(isOptional ? " | None" : "");
}

bool IsLength(const Member& method, std::string_view name) {
    const auto counts = [name](const Argument& argument) {
        return std::ranges::count(TextParts(argument.shape, " x "), name) > 0;
    };
    return std::ranges::any_of(method.arguments, counts);
}

std::string MethodDocString(const Member& method) {
    std::string text = Paragraphs(InPython(method.text), kIndent);
    text.append(Section("Arguments", ArgumentTexts(method, false, std::string(kIndent).append("    "))));
    text.append(Section("Returns", ReturnsText(method)));
    if (const std::string_view raises = RaisesOf(method); !raises.empty()) {
        const std::string indent = std::string(kIndent).append("    ");
        text.append(Section("Raises", Wrapped(InPython(std::string(raises)), indent, indent)));
    }
    return Quoted(std::move(text), kIndent);
}

std::string PropertyDocString(const Member& property) {
    std::string text = property.text;
    if (!property.setterText.empty()) text.append("\n\n").append(property.setterText);
    return Quoted(Paragraphs(InPython(std::move(text)), kIndent), kIndent);
}

std::string ClassDocString(const Surface& surface) {
    (void)surface;
    constexpr std::string_view kText =
        "The automation surface of a viewer.\n\n"
        "Colours are 0x00BBGGRR. An object index is a position in the object list, from 0. Points and directions are "
        "in the world frame, lengths in scene units, angles in degrees. Input arrays are read during the call only, "
        "without a copy, and no other thread may write to them meanwhile. Unless a method says otherwise it reports no "
        "error and asks for no repaint.";
    return Quoted(Paragraphs(std::string(kText), "    "), "    ");
}

std::string ModeDocString(const ModeList& mode) {
    std::string text = Paragraphs(InPython(mode.text), "    ");
    std::string values;
    for (const Constant& constant : mode.constants)
        if (!constant.text.empty())
            values.append(Wrapped(InPython(constant.text), "    " + constant.name + ": ", "        "));
    if (!values.empty()) text.append("\n").append(values);
    return Quoted(std::move(text), "    ");
}

std::string EventDocString(const Member& event) {
    std::string text = Paragraphs(InPython(event.text), "");
    const std::string lines = ArgumentTexts(event, false, "");
    if (!lines.empty()) text.append("\n").append(lines);
    text = Quoted(std::move(text), "");
    text.pop_back();
    return text;
}

}  // namespace bindings
