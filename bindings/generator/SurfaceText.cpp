// Joins the automation table with the texts of the public headers.
#include "SurfaceText.h"

#include <algorithm>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>

#include "control/AutomationTable.h"

namespace bindings {
namespace {

constexpr const char* kMethodsFile = "include/KV_ScenePane/_DKV_ScenePane.h";
constexpr const char* kEventsFile = "include/KV_ScenePane/_DKV_ScenePaneEvents.h";
constexpr const char* kModesFile = "include/KV_ScenePane/Modes.h";
constexpr const char* kCuttingFile = "include/KV_ScenePane/Cutting.h";

[[noreturn]] void Fail(const std::string& place, int line, const std::string& reason) {
    throw SourceError(std::string(place).append(":").append(std::to_string(line)).append(": ").append(reason));
}

std::string ReadText(const std::filesystem::path& file) {
    const std::optional<std::string> text = FileText(file);
    if (!text) throw SourceError(file.string() + ": cannot be read");
    return *text;
}

// The functions of a header in order: each row of the table must have the next one.
class FunctionList {
public:
    FunctionList(std::string_view text, const char* place) : m_place(place), m_functions(ParseFunctions(text, place)) {}

    const DeclaredFunction& Next(const std::string& name) {
        if (m_next == m_functions.size()) Fail(m_place, 1, "the table has " + name + ", the header has not");
        const DeclaredFunction& function = m_functions[m_next++];
        if (function.name != name) Fail(m_place, function.line, function.name + " is where the table has " + name);
        if (function.doc.text.empty()) Fail(m_place, function.line, name + " has no docstring");
        return function;
    }

    void ExpectEnd() const {
        if (m_next < m_functions.size())
            Fail(m_place, m_functions[m_next].line, "the table has no " + m_functions[m_next].name);
    }

    [[nodiscard]] const std::string& Place() const { return m_place; }

private:
    std::string m_place;
    std::vector<DeclaredFunction> m_functions;
    std::size_t m_next = 0;
};

std::vector<Argument> JoinArguments(std::span<const AutomationArgument> rows, const DeclaredFunction& function,
                                    const std::string& place) {
    if (!std::ranges::equal(rows, function.argumentNames, {}, &AutomationArgument::name))
        Fail(place, function.line, "the arguments of " + function.name + " have other names than in the table");
    std::vector<Argument> arguments;
    arguments.reserve(rows.size());
    for (const AutomationArgument& row : rows)
        arguments.push_back({std::string(row.type), std::string(row.name), row.output, std::string(row.element),
                             std::string(row.shape), ""});
    for (const DocString::Parameter& parameter : function.doc.parameters)
        for (const std::string& name : parameter.names) {
            const auto argument = std::ranges::find(arguments, name, &Argument::name);
            if (argument == arguments.end()) Fail(place, function.doc.line, function.name + " has no argument " + name);
            if (!argument->text.empty()) Fail(place, function.doc.line, "a second @param " + name);
            argument->text = parameter.text;
        }
    return arguments;
}

Member JoinMethod(const AutomationMethod& row, FunctionList& functions) {
    const DeclaredFunction& function = functions.Next(std::string(row.name));
    if (row.result == "void" && !function.doc.returns.empty())
        Fail(functions.Place(), function.doc.line, function.name + " has a @return but no result");
    Member member;
    member.id = row.id;
    member.name = row.name;
    member.type = row.result;
    member.arguments = JoinArguments(row.arguments, function, functions.Place());
    member.text = function.doc.text;
    member.returns = function.doc.returns;
    member.throws = function.doc.throws;
    return member;
}

/// The text of an accessor of a property, which has no tags.
std::string AccessorText(const std::string& name, FunctionList& functions) {
    const DeclaredFunction& function = functions.Next(name);
    const DocString& doc = function.doc;
    if (!doc.parameters.empty() || !doc.returns.empty() || !doc.throws.empty())
        Fail(functions.Place(), doc.line, name + " belongs to a property: its docstring is a text without tags");
    return doc.text;
}

Member JoinProperty(const AutomationProperty& row, FunctionList& functions) {
    Member member;
    member.kind = MemberKind::Property;
    member.id = row.id;
    member.name = row.name;
    member.type = row.type;
    member.writable = row.writable;
    member.text = AccessorText("Get" + member.name, functions);
    if (row.writable) member.setterText = AccessorText("Set" + member.name, functions);
    return member;
}

Member JoinEvent(const AutomationEvent& row, FunctionList& functions) {
    const DeclaredFunction& function = functions.Next(std::string(row.name));
    if (!function.doc.returns.empty())
        Fail(functions.Place(), function.doc.line, function.name + " has a @return but no result");
    Member member;
    member.kind = MemberKind::Event;
    member.id = row.id;
    member.name = row.name;
    member.type = "void";
    member.arguments = JoinArguments(row.arguments, function, functions.Place());
    member.text = function.doc.text;
    member.throws = function.doc.throws;
    return member;
}

}  // namespace

std::optional<std::string> FileText(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);  // an error for a folder, too
    if (error) return std::nullopt;
    std::string text(size, '\0');
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(text.data(), static_cast<std::streamsize>(size))) return std::nullopt;
    return text;
}

HeaderTexts ReadHeaders(const std::filesystem::path& root) {
    return {ReadText(root / kMethodsFile), ReadText(root / kEventsFile), ReadText(root / kModesFile),
            ReadText(root / kCuttingFile)};
}

Surface JoinSurface(const HeaderTexts& headers) {
    Surface surface;
    surface.text = ParseClassText(headers.methods, "_DKV_ScenePane", kMethodsFile).text;
    surface.eventsText = ParseClassText(headers.events, "_DKV_ScenePaneEvents", kEventsFile).text;

    // The header has the properties first.
    FunctionList functions(headers.methods, kMethodsFile);
    for (const AutomationProperty& row : AutomationProperties())
        surface.properties.push_back(JoinProperty(row, functions));
    for (const AutomationMethod& row : AutomationMethods()) surface.methods.push_back(JoinMethod(row, functions));
    functions.ExpectEnd();

    FunctionList handlers(headers.events, kEventsFile);
    for (const AutomationEvent& row : AutomationEvents()) surface.events.push_back(JoinEvent(row, handlers));
    handlers.ExpectEnd();

    for (const char* name : {"DrawMode", "ViewMode", "RotationMode", "PickMode"})
        surface.modes.push_back(ParseMode(headers.modes, name, kModesFile));
    surface.modes.push_back(ParseMode(headers.cutting, "SegmentationMode", kCuttingFile));
    return surface;
}

}  // namespace bindings
