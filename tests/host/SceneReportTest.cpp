#include "SceneReport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "KV_ScenePane/PathText.h"
#include "host/CommaLocale.h"

namespace {

ObjectReport Sample() {
    ObjectReport object;
    object.file = "dir/a.pcm";
    object.index = 1;
    object.name = L"dir/a.pcm";
    object.vertices = 12;
    object.triangles = 6;
    object.box = {-1.5f, 2, 0, 0.1f, -0.0f, 1e20f};
    object.center = {0.25f, 0.05f, 16777216};
    object.color = 0x030AFF;
    object.hasVertexColors = true;
    object.transform = {1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1};
    return object;
}

TEST(SceneReportJson, HasExactlyTheFieldsThatScriptsRead) {
    const std::string json = ReportJson({{Sample()}, {{"b.pax", "cut short"}}});
    EXPECT_EQ(json,
              "{\"objects\": [\n"
              "  {\"file\": \"dir/a.pcm\", \"index\": 1, \"name\": \"dir/a.pcm\", \"vertices\": 12, \"triangles\": 6, "
              "\"box\": [-1.5, 2, 0, 0.1, -0, 1e+20], \"center\": [0.25, 0.05, 16777216], \"color\": \"FF0A03\", "
              "\"hasVertexColors\": true, \"transform\": [1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1]}\n"
              "],\n"
              "\"failed\": [\n"
              "  {\"file\": \"b.pax\", \"reason\": \"cut short\"}\n"
              "],\n"
              "\"warnings\": [],\n\"points\": []}\n");
}

TEST(SceneReportJson, HasTheWarningsAboutFilesThatWereImported) {
    SceneReport report;
    report.warnings = {{"a.stl", "1 of 2"}, {"a.stl", "odd"}};
    EXPECT_EQ(ReportJson(report),
              "{\"objects\": [],\n\"failed\": [],\n\"warnings\": [\n"
              "  {\"file\": \"a.stl\", \"text\": \"1 of 2\"},\n"
              "  {\"file\": \"a.stl\", \"text\": \"odd\"}\n],\n\"points\": []}\n");
    EXPECT_EQ(ReportText(report), "a.stl\n  warning: 1 of 2\na.stl\n  warning: odd\n");
}

TEST(SceneReportJson, OfAnEmptySceneIsThreeEmptyLists) {
    EXPECT_EQ(ReportJson({}), "{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": []}\n");
}

SceneReport WithPlane(bool found, float height, KV_ScenePane::ClipHeightKind kind) {
    SceneReport report;
    report.clip = ClipReport{{found, height, kind}, {0.5f, -0.1f, height}, {0, 0, 1}};
    return report;
}

TEST(SceneReportJson, HasThePlaneThatWasPlacedAndTheRuleThatGaveItsHeight) {
    using namespace KV_ScenePane;
    for (const auto& [kind, rule] : {std::pair{HeightFromAllPoints, "all points"},
                                     {HeightFlatSpot, "flat spot"},
                                     {HeightCurvedSpot, "curved spot"}})
        EXPECT_EQ(ReportJson(WithPlane(true, 2.25f, kind)),
                  std::string("{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": [],\n"
                              "\"clip\":{\"found\":true,\"height\":2.25,\"rule\":\"") +
                      rule + "\",\"center\":[0.5,-0.1,2.25],\"normal\":[0,0,1]}}\n");
}

TEST(SceneReportJson, HasNoRuleForAHeightThatWasNotFound) {
    using namespace KV_ScenePane;
    for (const ClipHeightKind kind : {HeightNotDecided, HeightFlatSpot})
        EXPECT_EQ(ReportJson(WithPlane(false, -20, kind)),
                  "{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": [],\n"
                  "\"clip\":{\"found\":false,\"height\":-20,\"center\":[0.5,-0.1,-20],\"normal\":[0,0,1]}}\n");
}

TEST(SceneReportText, EndsWithThePlane) {
    SceneReport report = WithPlane(true, 2.25f, KV_ScenePane::HeightCurvedSpot);
    report.failed = {{"b.pax", "cut short"}};
    EXPECT_EQ(ReportText(report),
              "b.pax\n"
              "  nothing added: cut short\n"
              "clip plane\n"
              "  height         2.25\n"
              "  rule           curved spot\n"
              "  center         0.5 -0.1 2.25\n"
              "  normal         0 0 1\n");
    EXPECT_EQ(ReportText(WithPlane(false, -20, KV_ScenePane::HeightNotDecided)),
              "clip plane\n"
              "  height         -20\n"
              "  rule           none, no height was found\n"
              "  center         0.5 -0.1 -20\n"
              "  normal         0 0 1\n");
}

TEST(SceneReportJson, HasTheLassosInTheirOrderAfterThePlane) {
    SceneReport report;
    report.cuts = {{KV_ScenePane::PolygonInside, true}};
    EXPECT_EQ(ReportJson(report),
              "{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": "
              "[],\n\"cuts\":[{\"mode\":\"inside\",\"changed\":true}]}\n");
    report = WithPlane(false, -20, KV_ScenePane::HeightNotDecided);
    report.cuts = {{KV_ScenePane::FreehandVisible, false}, {KV_ScenePane::PolygonOutside, true}};
    EXPECT_EQ(
        ReportJson(report),
        "{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": [],\n"
        "\"clip\":{\"found\":false,\"height\":-20,\"center\":[0.5,-0.1,-20],\"normal\":[0,0,1]},\n"
        "\"cuts\":[{\"mode\":\"freehand-visible\",\"changed\":false},{\"mode\":\"outside\",\"changed\":true}]}\n");
}

TEST(SceneReportText, EndsWithTheLassos) {
    SceneReport report;
    report.failed = {{"b.pax", "cut short"}};
    report.cuts = {{KV_ScenePane::FreehandOutside, false}, {KV_ScenePane::PolygonVisible, true}};
    EXPECT_EQ(ReportText(report),
              "b.pax\n"
              "  nothing added: cut short\n"
              "cuts\n"
              "  freehand-outside changed nothing\n"
              "  visible          changed an object\n");
}

TEST(SceneReportJson, WritesNanAndInfinityAsNull) {
    ObjectReport object = Sample();
    constexpr float inf = std::numeric_limits<float>::infinity();
    object.center = {std::numeric_limits<float>::quiet_NaN(), inf, -inf};
    EXPECT_NE(ReportJson({{object}, {}}).find("\"center\": [null, null, null]"), std::string::npos);
    object.box = {0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f};  // of no finite point
    EXPECT_NE(ReportJson({{object}, {}}).find("\"box\": null, \"center\": null,"), std::string::npos);
    const std::string text = ReportText({{object}, {}});
    EXPECT_NE(text.find("  box            none: no finite coordinates\n  color"), std::string::npos) << text;
}

TEST(SceneReportJson, EscapesCharactersThatJsonRequiresToBeEscaped) {
    const std::string json = ReportJson({{}, {{"a\"b\\c\n\t\x7f", "ä€😀"}}});
    EXPECT_NE(json.find("\"file\": \"a\\\"b\\\\c\\n\\u0009\\u007f\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"reason\": \"ä€😀\""), std::string::npos) << json;
}

TEST(SceneReportJson, WritesBytesThatAreNotUtf8AsLoneSurrogates) {
    ObjectReport object = Sample();
    object.file = "\xff\xc3.pcm";
    object.name = KV_ScenePane::WidePath(object.file);
    const std::string json = ReportJson({{object}, {}});
    EXPECT_NE(json.find("\"file\": \"\\udcff\\udcc3.pcm\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"name\": \"\\udcff\\udcc3.pcm\""), std::string::npos) << json;
}

TEST(SceneReportText, ShowsObjectsAndFailuresWithTheBytesOfTheirNames) {
    ObjectReport object = Sample();
    object.file = "\xff.pcm";
    const std::string text = ReportText({{object}, {{"b.pax", "cut short"}}});
    EXPECT_EQ(text,
              "\xff.pcm\n"
              "  index          1\n"
              "  name           dir/a.pcm\n"
              "  vertices       12\n"
              "  triangles      6\n"
              "  box         x  -1.5 2\n"
              "              y  0 0.1\n"
              "              z  -0 1e+20\n"
              "  center         0.25 0.05 16777216\n"
              "  color          FF0A03\n"
              "  vertex colors  yes\n"
              "  transform      1 0 0 10\n"
              "                 0 1 0 20\n"
              "                 0 0 1 30\n"
              "                 0 0 0 1\n"
              "b.pax\n"
              "  nothing added: cut short\n");
}

TEST(SceneReportNumbers, HaveADecimalPointInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    EXPECT_EQ(NumberText(1.5f), "1.5");
    EXPECT_EQ(NumberText(1234567.0f), "1234567");
}

TEST(SceneReportNumbers, ReadBackAsTheSameFloat) {
    EXPECT_EQ(NumberText(0.1f), "0.1");
    EXPECT_EQ(NumberText(16777217.0f), "16777216");
    EXPECT_EQ(NumberText(std::nextafter(0.2f, 1.0f)), "0.20000002");  // 0.2 + 2^-26
}

TEST(ColorText, PutsRedFirst) {
    EXPECT_EQ(ColorText(0x0000FF), "FF0000");
    EXPECT_EQ(ColorText(0xABCD01), "01CDAB");
}

}  // namespace
