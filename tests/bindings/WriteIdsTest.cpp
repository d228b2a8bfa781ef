// kv_scenepane_ids.h against the table and against the enums of C++.
#include "generator/WriteIds.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "KV_ScenePane/Modes.h"
#include "KV_ScenePane/kv_scenepane_ids.h"
#include "control/AutomationTable.h"

namespace bindings {
namespace {

using Macro = std::pair<std::string, int>;

std::string Generated() { return IdsHeader(JoinSurface(ReadHeaders(KV_SOURCE_DIR))); }

/// All macros with a value, in order.
std::vector<Macro> Macros(const std::string& text) {
    const std::regex define(R"(#define KV_(\w+) \(?(-?\d+)\)?)");
    std::vector<Macro> macros;
    for (std::sregex_iterator match(text.begin(), text.end(), define), end; match != end; ++match)
        macros.emplace_back((*match)[1], std::stoi((*match)[2]));
    return macros;
}

TEST(IdsHeader, HasEveryIdAndTheNumberOfEachKindInTheOrderOfTheTable) {
    std::vector<Macro> expected;
    for (const AutomationMethod& row : AutomationMethods()) expected.emplace_back(row.name, row.id);
    expected.emplace_back("METHOD_COUNT", 120);
    for (const AutomationProperty& row : AutomationProperties())
        expected.emplace_back("PROPERTY_" + std::string(row.name), row.id);
    expected.emplace_back("PROPERTY_COUNT", 4);
    for (const AutomationEvent& row : AutomationEvents())
        expected.emplace_back("EVENT_" + std::string(row.name), row.id);
    expected.emplace_back("EVENT_COUNT", 13);
    std::vector<Macro> macros = Macros(Generated());
    ASSERT_GT(macros.size(), expected.size());
    macros.resize(expected.size());
    EXPECT_EQ(macros, expected);
}

TEST(IdsHeader, NegativeIdsAreInParentheses) {
    EXPECT_EQ(KV_AboutBox, -552);
    EXPECT_EQ(KV_PROPERTY_ReadyState, -525);
    EXPECT_EQ(KV_EVENT_ReadyStateChange, -609);
    EXPECT_EQ(1 - KV_AboutBox, 553);
    EXPECT_EQ(KV_SetSize, 4);
    EXPECT_EQ(KV_PROPERTY_DrawMode, 2);
    EXPECT_EQ(KV_EVENT_NeedleCreated, 6);
    EXPECT_EQ(KV_METHOD_COUNT, 120);
    EXPECT_EQ(KV_PROPERTY_COUNT, 4);
    EXPECT_EQ(KV_EVENT_COUNT, 13);
}

TEST(IdsHeader, HasTheValuesOfAllModesAsInCpp) {
    namespace kv = KV_ScenePane;
#define SAME(name) Macro(#name, kv::name), Macro(#name, KV_##name)
    const Macro pairs[] = {
        SAME(DrawModePoints),        SAME(DrawModeWireframe),   SAME(DrawModeFlat),        SAME(DrawModeGouraud),
        SAME(DrawModeBoundingBoxes), SAME(DrawModePerPixel),    SAME(DrawModeNothing),     SAME(DrawModeShadowMap),
        SAME(ViewFromPlusYZUp),      SAME(ViewFromMinusYZUp),   SAME(ViewFromPlusXZUp),    SAME(ViewFromMinusXZUp),
        SAME(ViewFromPlusZYUp),      SAME(ViewFromMinusZYDown), SAME(ViewObliqueZUp),      SAME(ViewFromMinusZYUp),
        SAME(RotateAboutHorizontal), SAME(RotateAboutVertical), SAME(RotateAboutViewAxis), SAME(RotateFree),
        SAME(PickModeOff),           SAME(PickModeCross),       SAME(PickModeObjects),     SAME(PickModeObjectsSecond),
        SAME(PickModeOffSecond),     SAME(PickModePoints),      SAME(PolygonOutside),      SAME(PolygonInside),
        SAME(PolygonVisible),        SAME(FreehandOutside),     SAME(FreehandInside),      SAME(FreehandVisible)};
#undef SAME
    for (std::size_t i = 0; i < std::size(pairs); i += 2) EXPECT_EQ(pairs[i], pairs[i + 1]);

    const std::size_t ids = 120 + 4 + 13 + 3;
    const std::vector<Macro> macros = Macros(Generated());
    ASSERT_EQ(macros.size(), ids + std::size(pairs) / 2);
    for (std::size_t i = ids; i < macros.size(); ++i) EXPECT_EQ(macros[i], pairs[2 * (i - ids)]);
}

TEST(IdsHeader, UsesNoCommentsOfCppAndNoLongLines) {
    const std::string text = Generated();
    EXPECT_EQ(text.find("//"), std::string::npos);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        ASSERT_NE(end, std::string::npos) << "the last line has no end";
        EXPECT_LE(end - start, 120u) << text.substr(start, end - start);
        start = end + 1;
    }
}

TEST(IdsHeader, RefusesATextThatWouldEndItsComment) {
    Surface surface = JoinSurface(ReadHeaders(KV_SOURCE_DIR));
    surface.modes.front().constants.front().text = "Points */ and lines.";
    EXPECT_THROW((void)IdsHeader(surface), SourceError);
}

}  // namespace
}  // namespace bindings
