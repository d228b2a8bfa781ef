// docs/automation.md: it is complete, its texts are those of the headers, and its links lead somewhere.
#include "generator/WriteReference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "generator/Markdown.h"
#include "generator/Subjects.h"

namespace bindings {
namespace {

const Surface& TheSurface() {
    static const Surface surface = JoinSurface(ReadHeaders(KV_SOURCE_DIR));
    return surface;
}

/// The checked-in file.
std::string Reference() {
    std::ifstream file(KV_SOURCE_DIR "/docs/automation.md");
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A text without markup and with single blanks for all space, to compare words only.
std::string Words(const std::string& text) {
    std::string words;
    for (const char c : text) {
        if (std::string_view("[]`\\").find(c) != std::string_view::npos) continue;
        const bool isSpace = c == ' ' || c == '\n';
        if (isSpace && (words.empty() || words.back() == ' ')) continue;
        words += isSpace ? ' ' : c;
    }
    return words;
}

/// The words below the heading of a member, to the next heading.
std::string SectionOf(const std::string& reference, const std::string& heading) {
    const std::string head = "\n### " + heading + "\n";
    const std::size_t start = reference.find(head);
    if (start == std::string::npos) return "";
    EXPECT_EQ(reference.find(head, start + 1), std::string::npos) << heading << " is described twice";
    const std::size_t first = start + head.size(), end = reference.find("\n#", first);
    return Words(reference.substr(first, end - first));
}

std::string Declaration(const Member& member) {
    std::string text = member.type + " " + member.name + "(";
    for (const Argument& argument : member.arguments)
        text.append(text.ends_with('(') ? "" : ", ").append(argument.type).append(" ").append(argument.name);
    return text.append("), id ").append(std::to_string(member.id));
}

void ExpectText(const std::string& section, const std::string& text, const std::string& name) {
    EXPECT_NE(section.find(Words(text)), std::string::npos) << name << " lacks: " << text;
}

void ExpectDescribed(const std::string& reference, const Member& member) {
    const std::string section = SectionOf(reference, member.name);
    EXPECT_TRUE(section.starts_with(Declaration(member))) << member.name << ": " << section.substr(0, 80);
    // Paragraphs after the tags of the docstring belong to the text as well.
    ExpectText(section, member.text, member.name);
    ExpectText(section, member.returns, member.name);
    ExpectText(section, member.throws, member.name);
    for (const Argument& argument : member.arguments) {
        ExpectText(section, argument.text, member.name);
        // Once in the declaration, and once in the list.
        const std::regex word("\\b" + argument.name + "\\b");
        EXPECT_GE(std::distance(std::sregex_iterator(section.begin(), section.end(), word), {}), 2)
            << member.name << "." << argument.name;
        if (!argument.shape.empty())
            ExpectText(
                section,
                std::string(argument.output ? "out, " : "in, ") + "array " + argument.shape + " of " + argument.element,
                member.name);
    }
}

TEST(Reference, DescribesEveryMethodWithItsDeclarationAndItsTexts) {
    const std::string reference = Reference();
    ASSERT_EQ(TheSurface().methods.size(), 120u);
    for (const Member& method : TheSurface().methods) ExpectDescribed(reference, method);
}

TEST(Reference, DescribesEveryEventWithItsDeclarationAndItsTexts) {
    const std::string reference = Reference();
    ASSERT_EQ(TheSurface().events.size(), 13u);
    for (const Member& event : TheSurface().events) ExpectDescribed(reference, event);
}

TEST(Reference, DescribesEveryProperty) {
    const std::string reference = Reference();
    ASSERT_EQ(TheSurface().properties.size(), 4u);
    for (const Member& property : TheSurface().properties) {
        const std::string section = SectionOf(reference, property.name);
        EXPECT_TRUE(section.starts_with(property.type + " " + property.name + ", id " + std::to_string(property.id) +
                                        (property.writable ? ", read and write " : ", read only ")))
            << section.substr(0, 80);
        ExpectText(section, property.text, property.name);
        ExpectText(section, property.setterText, property.name);
    }
}

TEST(Reference, ListsTheValuesOfAllModes) {
    const std::string reference = Reference();
    for (const ModeList& mode : TheSurface().modes) {
        const std::string section = SectionOf(reference, "Values of " + mode.name);
        ExpectText(section, mode.text, mode.name);
        for (const Constant& constant : mode.constants)
            ExpectText(section, "| " + std::to_string(constant.value) + " | " + constant.name + " | " + constant.text,
                       mode.name);
    }
}

TEST(Reference, StatesTheConventionsOfTheClasses) {
    const std::string words = Words(Reference());
    ExpectText(words, TheSurface().text, "the page");
    ExpectText(words, TheSurface().eventsText, "the page");
}

TEST(Reference, HasATargetForEveryLink) {
    const std::string reference = Reference();
    std::set<std::string> anchors;
    const std::regex heading("\n#+ ([^\n]+)");
    for (std::sregex_iterator match(reference.begin(), reference.end(), heading), end; match != end; ++match)
        EXPECT_TRUE(anchors.insert(Anchor((*match)[1].str())).second) << (*match)[1] << " is a heading twice";
    std::set<std::string> defined;
    const std::regex definition(R"(\n\[([^\]]+)\]: #(\S+))");
    for (std::sregex_iterator match(reference.begin(), reference.end(), definition), end; match != end; ++match) {
        defined.insert((*match)[1]);
        EXPECT_TRUE(anchors.contains((*match)[2])) << (*match)[0];
    }
    const std::regex link(R"(\[([A-Z][^\]]*)\](?!\())");
    std::size_t links = 0;
    for (std::sregex_iterator match(reference.begin(), reference.end(), link), end; match != end; ++match, ++links)
        EXPECT_TRUE(defined.contains((*match)[1])) << (*match)[0];
    EXPECT_GT(links, 400u);
    const std::regex address(R"(\]\(#([^)]+)\))");
    for (std::sregex_iterator match(reference.begin(), reference.end(), address), end; match != end; ++match)
        EXPECT_TRUE(anchors.contains((*match)[1])) << (*match)[0];
}

// ---- subjects

TEST(Subjects, HoldEveryMethodOnce) { EXPECT_NO_THROW(CheckSubjects(Subjects(), TheSurface())); }

TEST(Subjects, RefuseAMethodWithoutSubjectOneWithTwoAndAnUnknownOne) {
    const auto reason = [](const std::vector<Subject>& subjects) -> std::string {
        try {
            CheckSubjects(subjects, TheSurface());
        } catch (const SourceError& error) {
            return error.what();
        }
        return "accepted";
    };
    std::vector<Subject> subjects(Subjects().begin(), Subjects().end());
    subjects.front().methods.push_back("ClearData");
    EXPECT_EQ(reason(subjects), "ClearData has two subjects");
    subjects.front().methods.back() = "ClearDatum";
    EXPECT_EQ(reason(subjects), "the subject Window and repainting has ClearDatum, which is no method");
    subjects.front().methods = {"SetSize"};
    EXPECT_EQ(reason(subjects), "RecreateOpenglContext has no subject in the reference");
}

}  // namespace
}  // namespace bindings
