// The automation table joined with the headers: every text arrives, and a header that does not fit is refused.
#include "generator/SurfaceText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "control/AutomationTable.h"

namespace bindings {
namespace {

const HeaderTexts& Headers() {
    static const HeaderTexts headers = ReadHeaders(KV_SOURCE_DIR);
    return headers;
}

const Member& Named(const std::vector<Member>& members, const std::string& name) {
    return *std::ranges::find(members, name, &Member::name);
}

TEST(JoinSurface, HasEveryRowOfTheTableInItsOrderWithAText) {
    const Surface surface = JoinSurface(Headers());
    ASSERT_EQ(surface.methods.size(), AutomationMethods().size());
    ASSERT_EQ(surface.properties.size(), AutomationProperties().size());
    ASSERT_EQ(surface.events.size(), AutomationEvents().size());
    for (std::size_t i = 0; i < surface.methods.size(); ++i) {
        const AutomationMethod& row = AutomationMethods()[i];
        EXPECT_EQ(surface.methods[i].name, row.name);
        EXPECT_EQ(surface.methods[i].id, row.id);
        EXPECT_EQ(surface.methods[i].type, row.result);
        EXPECT_NE(surface.methods[i].text, "") << row.name;
        ASSERT_EQ(surface.methods[i].arguments.size(), row.arguments.size());
        for (std::size_t a = 0; a < row.arguments.size(); ++a) {
            const Argument& argument = surface.methods[i].arguments[a];
            EXPECT_EQ(argument.name, row.arguments[a].name);
            EXPECT_EQ(argument.type, row.arguments[a].type);
            EXPECT_EQ(argument.output, row.arguments[a].output);
            EXPECT_EQ(argument.element, row.arguments[a].element);
            EXPECT_EQ(argument.shape, row.arguments[a].shape);
        }
    }
    for (std::size_t i = 0; i < surface.properties.size(); ++i) {
        EXPECT_EQ(surface.properties[i].name, AutomationProperties()[i].name);
        EXPECT_EQ(surface.properties[i].id, AutomationProperties()[i].id);
        EXPECT_NE(surface.properties[i].text, "");
        EXPECT_EQ(surface.properties[i].writable, AutomationProperties()[i].writable);
        EXPECT_EQ(surface.properties[i].setterText.empty(), !AutomationProperties()[i].writable);
    }
    for (std::size_t i = 0; i < surface.events.size(); ++i) {
        EXPECT_EQ(surface.events[i].name, AutomationEvents()[i].name);
        EXPECT_EQ(surface.events[i].id, AutomationEvents()[i].id);
        EXPECT_NE(surface.events[i].text, "");
    }
}

TEST(JoinSurface, PutsEachTextWhereItBelongs) {
    HeaderTexts headers = Headers();
    const std::string size = "    virtual void SetSize(";
    const std::size_t place = headers.methods.find(size);
    ASSERT_NE(place, std::string::npos);
    const std::size_t before = headers.methods.rfind("\n\n", place);
    headers.methods.replace(before, place - before,
                            "\n\n/// First text.\n/// @param sy  height\n/// @param sx  width\n/// @throws nothing\n");
    const Member method = Named(JoinSurface(headers).methods, "SetSize");
    EXPECT_EQ(method.text, "First text.");
    EXPECT_EQ(method.arguments.at(0).text, "width");
    EXPECT_EQ(method.arguments.at(1).text, "height");
    EXPECT_EQ(method.throws, "nothing");
}

TEST(JoinSurface, HasTheValuesOfTheFiveModes) {
    const Surface surface = JoinSurface(Headers());
    std::string counts;
    for (const ModeList& mode : surface.modes)
        counts.append(mode.name).append(" ").append(std::to_string(mode.constants.size())).append(" ");
    EXPECT_EQ(counts, "DrawMode 8 ViewMode 8 RotationMode 4 PickMode 6 SegmentationMode 6 ");
}

/// One change of a header that must be refused.
struct BadHeader {
    const char* name;
    std::string HeaderTexts::*header;
    const char* from;
    const char* to;
    const char* reason;  ///< part of the message
};
void PrintTo(const BadHeader& row, std::ostream* out) { *out << row.name; }

const BadHeader kBadHeaders[] = {
    {"MethodWithoutDocstring", &HeaderTexts::methods,
     "    /// Drops all undo steps; the objects of the scene stay. Asks for no repaint.\n", "",
     "ClearUndoStack has no docstring"},
    {"MethodWithTagsOnly", &HeaderTexts::methods,
     "    /// Drops all undo steps; the objects of the scene stay. Asks for no repaint.\n", "    /// @throws nothing\n",
     "ClearUndoStack has no docstring"},
    {"PropertyWithoutDocstring", &HeaderTexts::methods, "    virtual VARIANT_BOOL GetMoveReduced()",
     "\n    virtual VARIANT_BOOL GetMoveReduced()", "GetMoveReduced has no docstring"},
    {"PropertyWithATag", &HeaderTexts::methods, "    virtual VARIANT_BOOL GetMoveReduced()",
     "    /// @return whether\n    virtual VARIANT_BOOL GetMoveReduced()", "its docstring is a text without tags"},
    {"ParameterOfAnUnknownArgument", &HeaderTexts::methods, "@param sx, sy  pixels of the device",
     "@param sx, sz  pixels of the device", "SetSize has no argument sz"},
    {"ParameterTwice", &HeaderTexts::methods, "@param sx, sy  pixels of the device",
     "@param sx, sx  pixels of the device", "a second @param sx"},
    {"ReturnOfAMethodWithoutResult", &HeaderTexts::methods, "    virtual void ClearUndoStack()",
     "    /// @return nothing\n    virtual void ClearUndoStack()", "ClearUndoStack has a @return but no result"},
    {"ReturnOfAnEvent", &HeaderTexts::events, "    virtual void AlignmentDone()",
     "    /// @return nothing\n    virtual void AlignmentDone()", "AlignmentDone has a @return but no result"},
    {"MissingMethod", &HeaderTexts::methods, "    virtual void ClearUndoStack() = 0;\n", "",
     "is where the table has ClearUndoStack"},
    {"MissingLastEvent", &HeaderTexts::events, "    virtual void CutMaskApplied(std::int64_t /*addr*/) {}\n", "",
     "the table has CutMaskApplied, the header has not"},
    {"OneMethodMore", &HeaderTexts::methods, "    virtual void AboutBox() = 0;\n",
     "    virtual void AboutBox() = 0;\n    /// More.\n    virtual void More() = 0;\n", "the table has no More"},
    {"OtherArgumentName", &HeaderTexts::methods, "virtual void SetPickRadius(float r)",
     "virtual void SetPickRadius(float radius)", "the arguments of SetPickRadius have other names than in the table"},
    {"OneArgumentMore", &HeaderTexts::events, "virtual void NeedleCreated(std::int32_t /*id*/)",
     "virtual void NeedleCreated(std::int32_t /*id*/, float /*more*/)",
     "the arguments of NeedleCreated have other names than in the table"},
    {"UnknownTag", &HeaderTexts::events, "@param numObj", "@parameter numObj", "the tag @parameter is not known"},
    {"NoClassText", &HeaderTexts::methods, "class _DKV_ScenePane {", "\nclass _DKV_ScenePane {", "has no docstring"},
    {"NoMode", &HeaderTexts::modes, "enum PickMode", "enum PickModes", "there is no enum PickMode"},
    {"NoSegmentationMode", &HeaderTexts::cutting, "enum SegmentationMode", "enum Mode",
     "there is no enum SegmentationMode"},
};
class JoinSurfaceRefuses : public testing::TestWithParam<BadHeader> {};

TEST_P(JoinSurfaceRefuses, AHeaderThatDoesNotFitAndSaysWhereAndWhy) {
    HeaderTexts headers = Headers();
    std::string& text = headers.*GetParam().header;
    const std::size_t place = text.find(GetParam().from);
    ASSERT_NE(place, std::string::npos) << "the header has no such text";
    text.replace(place, std::string(GetParam().from).size(), GetParam().to);
    try {
        (void)JoinSurface(headers);
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        const std::string message = error.what();
        EXPECT_NE(message.find(GetParam().reason), std::string::npos) << message;
        EXPECT_TRUE(message.starts_with("include/KV_ScenePane/")) << message;
    }
}
INSTANTIATE_TEST_SUITE_P(Headers, JoinSurfaceRefuses, testing::ValuesIn(kBadHeaders),
                         [](const auto& row) { return row.param.name; });

TEST(ReadHeaders, NamesAFileThatIsMissing) {
    try {
        (void)ReadHeaders("/nowhere");
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        EXPECT_STREQ(error.what(), "/nowhere/include/KV_ScenePane/_DKV_ScenePane.h: cannot be read");
    }
}

}  // namespace
}  // namespace bindings
