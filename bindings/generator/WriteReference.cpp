// docs/automation.md: introduction, contents by subject, methods, properties, events, values of modes, ids.
#include "WriteReference.h"

#include <algorithm>
#include <set>
#include <span>
#include <string_view>

#include "KV_ScenePane/Module.h"
#include "Markdown.h"
#include "ReferenceIntroduction.h"
#include "Subjects.h"

namespace bindings {
namespace {

std::string Code(std::string_view text) { return std::string("`").append(text).append("`"); }

std::string ValuesHeading(const ModeList& mode) { return "Values of " + mode.name; }

class ReferenceWriter {
public:
    explicit ReferenceWriter(const Surface& surface) : m_surface(surface) {
        for (const Member& member : surface.methods) m_names.insert(member.name);
        for (const Member& member : surface.events) m_names.insert(member.name);
        for (const Member& member : surface.properties) m_names.insert(member.name);
        for (const ModeList& mode : surface.modes) m_names.insert(mode.name);
    }

    std::string Text() {
        m_text = std::string(kReferenceHead);
        Paragraph(m_surface.text, "");
        m_text.append(kReferenceBeforeEvents);
        Paragraph(m_surface.eventsText, "");
        m_text.append(kReferenceEnd);
        WriteIdentities();
        WriteContents();
        for (const Subject& subject : Subjects()) {
            Heading("## ", subject.title);
            for (const std::string_view name : subject.methods) WriteMethod(MethodNamed(name));
        }
        Heading("## ", "Properties");
        for (const Member& property : m_surface.properties) WriteProperty(property);
        Heading("## ", "Events");
        for (const Member& event : m_surface.events) WriteEvent(event);
        Heading("## ", "Values of modes");
        for (const ModeList& mode : m_surface.modes) WriteMode(mode);
        WriteIds();
        WriteLinks();
        return m_text;
    }

private:
    [[nodiscard]] const Member& MethodNamed(std::string_view name) const {
        return *std::ranges::find(m_surface.methods, name, &Member::name);
    }

    void Heading(std::string_view level, std::string_view title) {
        m_text.append("\n").append(level).append(title).append("\n");
    }

    // A text of a docstring; `self` is the member that it describes and needs no link.
    void Paragraph(const std::string& text, const std::string& self) {
        m_text.append("\n").append(Wrapped(ProseOf(text, self))).append("\n");
    }

    [[nodiscard]] std::string ProseOf(const std::string& text, const std::string& self) const {
        std::set<std::string> names = m_names;
        names.erase(self);
        return Prose(text, names);
    }

    void Bullet(const std::string& head, const std::string& text, const std::string& self) {
        std::string line = head;
        if (!text.empty()) line.append(": ").append(ProseOf(text, self));
        m_text.append("- ").append(Wrapped(line, "  ", 118)).append("\n");
    }

    // "void SetSize(short sx, short sy)" and its id.
    void WriteDeclaration(const Member& member) {
        std::string declaration = member.type + " " + member.name + "(";
        for (const Argument& argument : member.arguments) {
            if (!declaration.ends_with('(')) declaration.append(", ");
            declaration.append(argument.type).append(" ").append(argument.name);
        }
        declaration.append(")");
        m_text.append("\n").append(Wrapped(Code(declaration) + ", id " + std::to_string(member.id))).append("\n");
    }

    // Direction and type of what is passed, such as "in, array `number` x 3 of float32".
    [[nodiscard]] static std::string Passed(const Argument& argument, MemberKind kind) {
        std::string text;
        if (kind == MemberKind::Method) text = argument.output ? "out, " : "in, ";
        if (!argument.shape.empty())
            return text.append("array ").append(argument.shape).append(" of ").append(argument.element);
        if (argument.type == "VARIANT*") return text.append(argument.element);
        // What an output pointer receives.
        return text.append(argument.type, 0, argument.type.find('*'));
    }

    // Neighbours that differ in their names only are one line.
    void WriteArguments(const Member& member) {
        const std::vector<Argument>& arguments = member.arguments;
        for (std::size_t i = 0; i < arguments.size();) {
            const std::string passed = Passed(arguments[i], member.kind);
            std::string names;
            std::size_t end = i;
            for (; end < arguments.size() && arguments[end].text == arguments[i].text &&
                   Passed(arguments[end], member.kind) == passed;
                 ++end)
                names.append(names.empty() ? "" : ", ").append(Code(arguments[end].name));
            Bullet(names + " (" + passed + ")", arguments[i].text, member.name);
            i = end;
        }
    }

    void WriteCallable(const Member& member) {
        Heading("### ", member.name);
        WriteDeclaration(member);
        Paragraph(member.text, member.name);
        if (!member.arguments.empty() || member.type != "void" || !member.throws.empty()) m_text.append("\n");
        WriteArguments(member);
    }

    void WriteMethod(const Member& method) {
        WriteCallable(method);
        if (method.type != "void") Bullet("Result (" + method.type + ")", method.returns, method.name);
        if (!method.throws.empty()) Bullet("Errors", method.throws, method.name);
    }

    void WriteEvent(const Member& event) {
        WriteCallable(event);
        if (!event.throws.empty()) Bullet("Errors", event.throws, event.name);
    }

    void WriteProperty(const Member& property) {
        Heading("### ", property.name);
        m_text.append("\n").append(Code(property.type + " " + property.name)).append(", id ");
        m_text.append(std::to_string(property.id)).append(property.writable ? ", read and write\n" : ", read only\n");
        // The name of a mode means its values, also in the text of the property.
        const std::string self = IsMode(property.name) ? "" : property.name;
        Paragraph(property.text, self);
        if (property.writable) Paragraph(property.setterText, self);
    }

    void WriteMode(const ModeList& mode) {
        Heading("### ", ValuesHeading(mode));
        Paragraph(mode.text, mode.name);
        m_text.append("\n| Value | Name | |\n|---|---|---|\n");
        for (const Constant& constant : mode.constants) {
            m_text.append("| ").append(std::to_string(constant.value)).append(" | ").append(Code(constant.name));
            m_text.append(" | ").append(ProseOf(constant.text, "")).append(" |\n");
        }
    }

    void WriteIdentities() {
        using namespace KV_ScenePane;
        Heading("## ", "Identities");
        m_text.append("\nFor a host that registers the component or looks it up (`KV_ScenePane/Module.h`):\n\n");
        m_text.append("| What | Name | Identity |\n|---|---|---|\n");
        const auto row = [&](std::string_view what, std::string_view name, std::string_view id) {
            m_text.append("| ").append(what).append(" | ").append(Code(name)).append(" | ");
            m_text.append(Code(id)).append(" |\n");
        };
        row("type library " + std::to_string(kTypeLibraryMajor) + "." + std::to_string(kTypeLibraryMinor),
            kTypeLibraryName, kTypeLibraryId);
        row("methods and properties", kDispatchName, kDispatchId);
        row("events", kEventsName, kEventsId);
        row(kControlName, kControlProgId, kControlId);
        row(kPropertyPageName, kPropertyPageProgId, kPropertyPageId);
    }

    // "[Name], [Name]"
    [[nodiscard]] static std::string LinkList(std::span<const std::string> names) {
        std::string list;
        for (const std::string& name : names) list.append(list.empty() ? "[" : ", [").append(name).append("]");
        return list;
    }

    void ContentsLine(std::string_view title, std::span<const std::string> names) {
        std::string line = "**[" + std::string(title) + "](#" + Anchor(title) + ")**: " + LinkList(names);
        m_text.append("- ").append(Wrapped(line, "  ", 118)).append("\n");
    }

    void WriteContents() {
        Heading("## ", "Contents");
        m_text.append("\n");
        for (const Subject& subject : Subjects())
            ContentsLine(subject.title, std::vector<std::string>(subject.methods.begin(), subject.methods.end()));
        const auto namesOf = [](std::span<const Member> members) {
            std::vector<std::string> names;
            names.reserve(members.size());
            for (const Member& member : members) names.push_back(member.name);
            return names;
        };
        std::vector<std::string> properties = namesOf(m_surface.properties);
        for (std::string& name : properties)
            if (IsMode(name)) name += " property";
        ContentsLine("Properties", properties);
        ContentsLine("Events", namesOf(m_surface.events));
        std::vector<std::string> modes;
        modes.reserve(m_surface.modes.size());
        for (const ModeList& mode : m_surface.modes) modes.push_back(mode.name);
        ContentsLine("Values of modes", modes);
        m_text.append("- **[Methods by id](#methods-by-id)**\n");
    }

    [[nodiscard]] bool IsMode(const std::string& name) const {
        return std::ranges::find(m_surface.modes, name, &ModeList::name) != m_surface.modes.end();
    }

    void WriteIds() {
        Heading("## ", "Methods by id");
        std::string list;
        for (const Member& method : m_surface.methods)
            list.append(list.empty() ? "" : ", ")
                .append(std::to_string(method.id))
                .append(" [")
                .append(method.name)
                .append("]");
        m_text.append("\n").append(Wrapped(list)).append("\n");
    }

    // Definitions of the links that occur.
    void WriteLinks() {
        m_text.append("\n");
        const std::string body = m_text;
        const auto define = [&](const std::string& link, const std::string& heading) {
            if (body.find("[" + link + "]") == std::string::npos) return;
            m_text.append("[").append(link).append("]: #").append(Anchor(heading)).append("\n");
        };
        for (const std::string& name : m_names) {
            const std::string heading = IsMode(name) ? "Values of " + name : name;
            define(name, heading);
            define(name + "()", heading);
        }
        for (const Member& property : m_surface.properties)
            if (IsMode(property.name)) define(property.name + " property", property.name);
    }

    const Surface& m_surface;
    std::set<std::string> m_names;
    std::string m_text;
};

}  // namespace

std::string ReferenceText(const Surface& surface) {
    CheckSubjects(Subjects(), surface);
    return ReferenceWriter(surface).Text();
}

}  // namespace bindings
