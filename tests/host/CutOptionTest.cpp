#include "CutOption.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "host/CommaLocale.h"

namespace {

using KV_ScenePane::LassoPoint;

LassoCut Read(const std::string& text) {
    const auto lasso = ParseLasso(text);
    if (const auto* const error = std::get_if<LassoError>(&lasso)) {
        ADD_FAILURE() << text << ": " << error->text;
        return {};
    }
    return std::get<LassoCut>(lasso);
}

void ExpectPoints(const LassoCut& cut, const std::vector<LassoPoint>& expected) {
    ASSERT_EQ(cut.points.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(cut.points[i].x, expected[i].x) << i;
        EXPECT_EQ(cut.points[i].y, expected[i].y) << i;
    }
}

std::string ErrorOf(const std::string& text) {
    const auto lasso = ParseLasso(text);
    const auto* const error = std::get_if<LassoError>(&lasso);
    return error == nullptr ? "accepted" : error->text;
}

TEST(LassoOption, HasSixModesOfTheSameNamesAsItsReports) {
    const std::pair<const char*, KV_ScenePane::SegmentationMode> modes[] = {
        {"outside", KV_ScenePane::PolygonOutside},         {"inside", KV_ScenePane::PolygonInside},
        {"visible", KV_ScenePane::PolygonVisible},         {"freehand-outside", KV_ScenePane::FreehandOutside},
        {"freehand-inside", KV_ScenePane::FreehandInside}, {"freehand-visible", KV_ScenePane::FreehandVisible},
    };
    for (const auto& [name, mode] : modes) {
        EXPECT_EQ(Read(std::string(name) + ":0,0;1,0;1,1").mode, mode);
        EXPECT_EQ(LassoModeName(mode), name);
    }
}

TEST(LassoOption, KeepsPointsInTheirOrderAlsoEqualOnesAndThoseOutsideTheWindow) {
    ExpectPoints(Read("inside:0.2,0.25;-1,2;-1,2;1e300,-1e-300;.5,7.;3E+2,-0"),
                 {{0.2, 0.25}, {-1, 2}, {-1, 2}, {1e300, -1e-300}, {0.5, 7}, {300, -0.0}});
}

TEST(LassoOption, NeedsTwoPointsOfAPolygonAndOneOfAFreehandLasso) {
    ExpectPoints(Read("visible:0,0;1,1"), {{0, 0}, {1, 1}});
    ExpectPoints(Read("freehand-outside:0.5,0.5"), {{0.5, 0.5}});
    for (const std::string mode : {"inside", "outside", "visible"})
        EXPECT_EQ(ErrorOf(mode + ":0.5,0.5"), "a polygon needs at least two points");
}

TEST(LassoOption, HasNoLimitOfItsPoints) {
    std::string text = "freehand-inside:";
    constexpr int kPoints = 100'000;
    for (int i = 0; i < kPoints; ++i)
        text.append(i == 0 ? "" : ";").append(std::to_string(i)).append(",-").append(std::to_string(i));
    const LassoCut cut = Read(text);
    ASSERT_EQ(cut.points.size(), std::size_t{kPoints});
    for (int i = 0; i < kPoints; ++i) {
        const LassoPoint& point = cut.points[static_cast<std::size_t>(i)];
        ASSERT_TRUE(point.x == i && point.y == -i) << i;
    }
}

TEST(LassoOption, HasDecimalPointsInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    ExpectPoints(Read("inside:0.25,0.5;0.75,1e-3"), {{0.25, 0.5}, {0.75, 0.001}});
    EXPECT_EQ(ErrorOf("inside:0,25,0,5;1,1"), "point 1 is \"0,25,0,5\" and not X,Y, two finite numbers");
}

struct BadLasso {
    const char* name;
    std::string text, reason;
};
void PrintTo(const BadLasso& row, std::ostream* out) { *out << row.name; }

std::string NoPoint(int number, const std::string& text) {
    return "point " + std::to_string(number) + " is \"" + text + "\" and not X,Y, two finite numbers";
}

const BadLasso kBadLassos[] = {
    {"Empty", "", "there is no colon after the mode"},
    {"PointsAlone", "0,0;1,1", "there is no colon after the mode"},
    {"ModeAlone", "inside", "there is no colon after the mode"},
    {"ModeWithoutPoints", "inside:", NoPoint(1, "")},
    {"FreehandWithoutPoints", "freehand-inside:", NoPoint(1, "")},
    {"NoMode", ":0,0;1,1", "\"\" is no mode"},
    {"UnknownMode", "within:0,0;1,1", "\"within\" is no mode"},
    {"ModeInCapitals", "Inside:0,0;1,1", "\"Inside\" is no mode"},
    {"NumberOfAMode", "1:0,0;1,1", "\"1\" is no mode"},
    {"BlankBeforeTheMode", " inside:0,0;1,1", "\" inside\" is no mode"},
    {"BlankAfterTheMode", "inside :0,0;1,1", "\"inside \" is no mode"},
    {"PartOfAMode", "freehand:0,0;1,1", "\"freehand\" is no mode"},
    {"LongMode", std::string(300, 'm') + ":0,0;1,1", "\"" + std::string(40, 'm') + "...\" is no mode"},
    {"ControlCharacters", "a\n\x1b\x7f:0,0;1,1", "\"a???\" is no mode"},
    {"TwoColons", "inside::0,0;1,1", NoPoint(1, ":0,0")},
    {"SemicolonAtTheEnd", "inside:0,0;1,1;", NoPoint(3, "")},
    {"SemicolonAtTheStart", "inside:;0,0;1,1", NoPoint(1, "")},
    {"TwoSemicolons", "inside:0,0;;1,1", NoPoint(2, "")},
    {"SemicolonAlone", "freehand-inside:;", NoPoint(1, "")},
    {"OneNumber", "inside:0,0;1", NoPoint(2, "1")},
    {"ThreeNumbers", "inside:0,0;1,2,3", NoPoint(2, "1,2,3")},
    {"NoX", "inside:,0;1,1", NoPoint(1, ",0")},
    {"NoY", "inside:0,;1,1", NoPoint(1, "0,")},
    {"BlankAfterAComma", "inside:0, 0;1,1", NoPoint(1, "0, 0")},
    {"BlankAfterASemicolon", "inside:0,0; 1,1", NoPoint(2, " 1,1")},
    {"BlankAtTheEnd", "inside:0,0;1,1 ", NoPoint(2, "1,1 ")},
    {"NotANumber", "inside:nan,0;1,1", NoPoint(1, "nan,0")},
    {"Infinity", "inside:0,0;1,-inf", NoPoint(2, "1,-inf")},
    {"InfinityInFull", "inside:0,infinity;1,1", NoPoint(1, "0,infinity")},
    {"TooLarge", "inside:0,0;1e309,1", NoPoint(2, "1e309,1")},
    {"Text", "inside:0,0;left,top", NoPoint(2, "left,top")},
    {"TextAfterANumber", "inside:0,0;1px,1", NoPoint(2, "1px,1")},
    {"PlusSign", "inside:+0,0;1,1", NoPoint(1, "+0,0")},
    {"Hexadecimal", "inside:0,0;0x1,1", NoPoint(2, "0x1,1")},
    {"Percent", "inside:0,0;50%,1", NoPoint(2, "50%,1")},
    {"ZeroByte", std::string("inside:0,0;1,1\0", 15), NoPoint(2, "1,1?")},
};
class LassoOptionRejects : public testing::TestWithParam<BadLasso> {};

TEST_P(LassoOptionRejects, AndSaysWhy) { EXPECT_EQ(ErrorOf(GetParam().text), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(LassoOption, LassoOptionRejects, testing::ValuesIn(kBadLassos),
                         [](const auto& row) { return row.param.name; });

// Each random change of a good text is either read as finite points or refused by one short line.
TEST(LassoOption, AnyTextIsReadAsFinitePointsOrRefusedInOneShortLine) {
    const std::string good = "freehand-visible:0.1,0.2;-3e5,.5;1,1";
    const std::string alphabet = std::string("0123456789.,;:-+eEinfax \n\0\xff\x80", 29);
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); };
    int read = 0, refused = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string text = good;
        for (std::size_t changes = below(4) + 1; changes > 0 && !text.empty(); --changes) {
            const std::size_t at = below(text.size());
            const char c = alphabet[below(alphabet.size())];
            if (const std::size_t kind = below(4); kind == 0)
                text.erase(at, below(8));
            else if (kind == 1)
                text.insert(at, 1, c);
            else
                text[at] = c;
        }
        const auto lasso = ParseLasso(text);
        if (const auto* const cut = std::get_if<LassoCut>(&lasso)) {
            ++read;
            ASSERT_FALSE(cut->points.empty()) << text;
            for (const LassoPoint& point : cut->points)
                ASSERT_TRUE(std::isfinite(point.x) && std::isfinite(point.y)) << text;
            continue;
        }
        ++refused;
        const std::string& reason = std::get<LassoError>(lasso).text;
        ASSERT_FALSE(reason.empty()) << text;
        ASSERT_LT(reason.size(), 120u) << text;
        ASSERT_EQ(reason.find('\n'), std::string::npos) << text;
    }
    EXPECT_GT(read, 1000);
    EXPECT_GT(refused, 1000);
}

}  // namespace
