// The generated files of the Python package: _surface.py, whose methods pass their arguments on to the calls that are
// written by hand, and its stub. How a text of C++ reads in Python is in PythonText.h.
#include "WritePython.h"

#include <algorithm>
#include <ranges>
#include <string_view>

#include "PythonText.h"

namespace bindings {
namespace {

constexpr std::string_view kHead =
    "# Made by generate-bindings from the automation table and the public headers of C++: do not edit.\n";

constexpr std::size_t kLineLength = 99;

/// Breaks a line that is too long after its opening parenthesis and after ", ", of which no string in it has one.
std::string Broken(const std::string& line, std::size_t indent) {
    if (line.size() <= kLineLength) return line + "\n";
    const std::size_t open = line.find('(') + 1;
    const std::string rest = line.substr(open);
    std::string text = line.substr(0, open) + "\n", part(indent + 4, ' ');
    for (std::size_t begin = 0; begin < rest.size();) {
        const std::size_t comma = rest.find(", ", begin);
        const std::size_t end = comma == std::string::npos ? rest.size() : comma + 2;
        std::string word = rest.substr(begin, end - begin);
        if (part.size() + word.size() > kLineLength + 1 && part.size() > indent + 4) {
            part.pop_back();  // the blank after the comma
            text.append(part).append("\n");
            part.assign(indent + 4, ' ');
        }
        part.append(word);
        begin = end;
    }
    return text.append(part).append("\n");
}

std::vector<Argument> Inputs(const Member& method) {
    std::vector<Argument> inputs;
    std::ranges::remove_copy_if(method.arguments, std::back_inserter(inputs), &Argument::output);
    return inputs;
}

std::vector<Argument> Outputs(const Member& method) {
    std::vector<Argument> outputs;
    std::ranges::copy_if(method.arguments, std::back_inserter(outputs), &Argument::output);
    return outputs;
}

bool IsArray(const Argument& argument) { return !argument.shape.empty() || argument.element == "mesh"; }

// What the methods of Calls need besides the values: which way of packing a method needs.
enum class Way { Values, Outputs, Arrays, ByName };

Way WayOf(const Member& method) {
    const auto outputs = Outputs(method);
    if (std::ranges::any_of(outputs, [](const Argument& a) { return IsArray(a) || a.element == "pointer"; }))
        return Way::ByName;
    if (std::ranges::any_of(method.arguments, [](const Argument& a) { return IsArray(a) || a.type == "BSTR"; }))
        return Way::Arrays;
    return outputs.empty() ? Way::Values : Way::Outputs;
}

// The only result of these is not what their arguments say.
std::string OwnResult(const std::string& name, std::string_view prefix) {
    if (name == "GetCutMasks") return "list[" + std::string(prefix) + "CutMask]";
    if (name == "CaptureScreenShot") return "NDArray[np.uint8]";
    return {};
}

std::string ResultClass(const Member& method) { return method.name + "Result"; }

// A method with several outputs, or with one and a result, returns a named tuple.
bool HasResultClass(const Member& method) {
    return OwnResult(method.name, "").empty() && Outputs(method).size() + (method.type == "void" ? 0 : 1) > 1 &&
           !Outputs(method).empty();
}

std::string ResultType(const Member& method, std::string_view prefix) {
    if (std::string own = OwnResult(method.name, prefix); !own.empty()) return own;
    if (HasResultClass(method)) return ResultClass(method);
    const auto outputs = Outputs(method);
    return outputs.empty() ? PythonType(method.type) : PythonType(outputs.front());
}

// How the parameters of a method are written. Arguments that only give the length of an array may be left out, and so,
// for the language, may those after them: the code has a mark as their default, and the stub says by two overloads that
// they are needed, after the lengths by position or without them by keyword.
enum class Form { Code, Positional, Keyword };

/// "self, idx: int, color: int".
std::string Parameters(const Member& method, Form form) {
    std::string text = "self";
    bool isAfterLength = false, hasStar = false;
    for (const Argument& argument : Inputs(method)) {
        const bool isLength = IsLength(method, argument.name);
        if (form == Form::Keyword && isAfterLength && !isLength && !hasStar) {
            text.append(", *");
            hasStar = true;
        }
        text.append(", ").append(argument.name).append(": ").append(PythonInputType(method, argument));
        if (isLength)
            text.append(form == Form::Code ? " | None = None" : form == Form::Keyword ? " | None = ..." : " | None");
        if (!isLength && isAfterLength && form == Form::Code) text.append(" = REQUIRED");
        isAfterLength = isAfterLength || isLength;
    }
    return text;
}

std::string Definition(const Member& method, Form form) {
    std::string text = "    def ";
    return text.append(method.name)
        .append("(")
        .append(Parameters(method, form))
        .append(") -> ")
        .append(ResultType(method, ""))
        .append(":");
}

bool HasLength(const Member& method) {
    return std::ranges::any_of(Inputs(method), [&method](const Argument& a) { return IsLength(method, a.name); });
}

std::string StubOf(const Member& method) {
    std::string positional = Broken(Definition(method, Form::Positional).append(" ..."), 4);
    if (!HasLength(method)) return positional;
    const std::string keyword = Broken(Definition(method, Form::Keyword).append(" ..."), 4);
    return std::string("    @overload\n").append(positional).append("    @overload\n").append(keyword);
}

// The words after the name of a method in its call: tags and values, or values alone.
std::string Values(const Member& method) {
    std::string text;
    const bool isTagged = WayOf(method) == Way::Values || WayOf(method) == Way::Outputs;
    for (const Argument& argument : Inputs(method)) {
        text.append(", ");
        if (isTagged) text.append(std::to_string(ValueTag(argument.type))).append(", ");
        const bool isFlag = isTagged && argument.type == "VARIANT_BOOL";
        text.append(isFlag ? "flag(" : "").append(argument.name).append(isFlag ? ")" : "");
    }
    return text;
}

std::string Body(const Member& method) {
    constexpr std::string_view kCalls[] = {"_call", "_read", "_pass", "_call_by_name"};
    std::string text = "        return self.";
    text.append(kCalls[static_cast<std::size_t>(WayOf(method))])
        .append("(_")
        .append(method.name)
        .append(Values(method))
        .append(")");
    return Broken(text, 8);
}

std::string ArgumentRecord(const Argument& argument) {
    std::string text = "(\"";
    text.append(argument.name).append("\", \"").append(ValueCode(argument.type)).append("\"");
    if (!argument.element.empty()) text.append(", \"").append(argument.element).append("\"");
    if (!argument.shape.empty()) text.append(", \"").append(argument.shape).append("\"");
    return text.append(")");
}

std::string RecordTuple(const std::vector<Argument>& arguments) {
    std::string text = "(";
    for (const Argument& argument : arguments) text.append(ArgumentRecord(argument)).append(", ");
    if (arguments.size() > 1) text.erase(text.size() - 2);
    if (arguments.size() == 1) text.erase(text.size() - 1);
    return text.append(")");
}

std::string ResultClassText(const Member& method, bool isStub) {
    std::string text = "\n\nclass ";
    text.append(ResultClass(method)).append("(NamedTuple):\n");
    text.append(isStub ? "" : "    \"\"\"What " + method.name + "() returns.\"\"\"\n\n");
    if (method.type != "void") text.append("    result: ").append(PythonType(method.type)).append("\n");
    for (const Argument& output : Outputs(method))
        text.append("    ").append(output.name).append(": ").append(PythonType(output)).append("\n");
    return text;
}

// One row of the table of methods.
std::string MethodRecord(const Member& method) {
    std::string text = "_";
    text.append(method.name).append(" = Method(").append(std::to_string(method.id)).append(", \"");
    text.append(method.name).append("\", \"").append(ValueCode(method.type)).append("\", ");
    text.append(RecordTuple(Inputs(method))).append(", ").append(RecordTuple(Outputs(method)));
    if (HasResultClass(method)) text.append(", ").append(ResultClass(method));
    return Broken(text.append(")"), 0);
}

std::string PropertyText(const Member& property, bool isStub) {
    const std::string type = PythonType(property.type);
    const std::string name = property.name;
    std::string text = "\n    @property\n    def ";
    text.append(name).append("(self) -> ").append(type).append(":");
    if (isStub)
        text.append(" ...\n");
    else
        text.append("\n")
            .append(PropertyDocString(property))
            .append("        return self._get(_")
            .append(name)
            .append(")\n");
    if (!property.writable) return text;
    text.append("\n    @").append(name).append(".setter\n    def ").append(name);
    text.append("(self, value: ").append(type).append(") -> None:");
    if (isStub) return text.append(" ...\n");
    return text.append("\n        self._put(_").append(name).append(", value)\n");
}

std::string PropertyRecord(const Member& property) {
    std::string text = "_";
    return text.append(property.name)
        .append(" = Property(")
        .append(std::to_string(property.id))
        .append(", \"")
        .append(property.name)
        .append("\", \"")
        .append(ValueCode(property.type))
        .append("\")\n");
}

std::string EventRecord(const Member& event) {
    std::string text = "    EventType(";
    text.append(std::to_string(event.id)).append(", \"").append(event.name).append("\", ");
    text.append(RecordTuple(event.arguments)).append(",");
    return Broken(text, 4).append(EventDocString(event)).append("),\n");
}

std::string EventNames(const Surface& surface) {
    std::string text = "\n\nEventName = Literal[\n";
    for (const Member& event : surface.events) text.append("    \"").append(event.name).append("\",\n");
    return text.append("]\n");
}

std::string ModeText(const ModeList& mode) {
    std::string text = "\n\nclass ";
    text.append(mode.name).append("(enum.IntEnum):\n").append(ModeDocString(mode)).append("\n");
    for (const Constant& constant : mode.constants)
        text.append("    ").append(constant.name).append(" = ").append(std::to_string(constant.value)).append("\n");
    return text;
}

std::string ModeNames(const Surface& surface) {
    std::string text;
    for (const ModeList& mode : surface.modes) text.append(ModeText(mode));
    return text;
}

std::string SurfaceModule(const Surface& surface) {
    std::string text(kHead);
    text.append(
        "\"\"\"The methods, properties, events and modes of the viewer with their texts.\"\"\"\n"
        "from __future__ import annotations\n\n"
        "import enum\n"
        "from typing import Literal, NamedTuple\n\n"
        "import numpy as np\n"
        "from numpy.typing import NDArray\n\n"
        "from ._calls import REQUIRED, Calls, Method, Property, flag\n"
        "from ._mesh import Mesh\n"
        "from ._records import CutMask, EventType\n"
        "from ._values import PathLike\n");
    text.append(ModeNames(surface));
    for (const Member& method : surface.methods)
        if (HasResultClass(method)) text.append(ResultClassText(method, false));
    text.append("\n\n");
    for (const Member& property : surface.properties) text.append(PropertyRecord(property));
    for (const Member& method : surface.methods) text.append(MethodRecord(method));
    text.append("\nEVENTS = (\n");
    for (const Member& event : surface.events) text.append(EventRecord(event));
    text.append(")\n").append(EventNames(surface));
    text.append("\n\nclass Surface(Calls):\n").append(ClassDocString(surface)).append("\n    __slots__ = ()\n");
    for (const Member& property : surface.properties) text.append(PropertyText(property, false));
    for (const Member& method : surface.methods)
        text.append("\n")
            .append(Broken(Definition(method, Form::Code), 8))
            .append(MethodDocString(method))
            .append(Body(method));
    text.append("\n\nMETHODS = (\n");
    for (const Member& method : surface.methods) text.append("    _").append(method.name).append(",\n");
    text.append(")\nPROPERTIES = (\n");
    for (const Member& property : surface.properties) text.append("    _").append(property.name).append(",\n");
    return text.append(")\n");
}

std::string SurfaceStub(const Surface& surface) {
    std::string text(kHead);
    text.append(
        "import enum\n"
        "from typing import Literal, NamedTuple, overload\n\n"
        "import numpy as np\n"
        "from numpy.typing import NDArray\n\n"
        "from ._calls import Calls, Method, Property\n"
        "from ._mesh import Mesh\n"
        "from ._records import CutMask, EventType\n"
        "from ._values import PathLike\n");
    text.append(ModeNames(surface));
    for (const Member& method : surface.methods)
        if (HasResultClass(method)) text.append(ResultClassText(method, true));
    text.append("\n\nMETHODS: tuple[Method, ...]\nPROPERTIES: tuple[Property, ...]\nEVENTS: tuple[EventType, ...]\n");
    text.append(EventNames(surface));
    text.append("\n\nclass Surface(Calls):\n    __slots__ = ()\n");
    for (const Member& property : surface.properties) text.append(PropertyText(property, true));
    text.append("\n");
    for (const Member& method : surface.methods) text.append(StubOf(method));
    return text;
}

}  // namespace

std::map<std::string, std::string> PythonFiles(const Surface& surface) {
    CheckPhrases(surface);
    return {{"_surface.py", SurfaceModule(surface)}, {"_surface.pyi", SurfaceStub(surface)}};
}

}  // namespace bindings
