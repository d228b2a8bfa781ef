// How the height follows from what the histogram and the plane fit report. Both are scripted.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

#include "clip/ClipScript.h"

namespace {

using KV_ScenePane::ClipHeight;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

// ---- the width of the peak window

struct Width {
    float binWidth, spread;
    std::int32_t window;
};

TEST(ClipHeightWindow, IsFiveTimesTheSpreadInWholeBins) {
    const Width rows[] = {
        {1, 5, 25},                               // five bins, five times
        {0.03125f, 0.15625f, 25},                 //
        {0.015625f, 0.1f, 35},                    // 6.4 bins
        {0.0625f, 0.3125f, 25},                   //
        {0.0078125f, 0.1f, 65},                   // 12.8 bins
        {0.125f, 0.625f, 25},                     //
        {0.905302763f, 5.0f * 0.905302763f, 30},  // five bins, which divide to just above 5
        {1e-12f, 0.1f, 1000000000},               // would be beyond an int
    };
    for (const Width& row : rows) {
        ScriptedLibrary library;
        library.binWidth = row.binWidth;
        (void)Estimate(AtTheSpot(10));
        ASSERT_EQ(library.samples.size(), 20u);
        for (const auto& sample : library.samples) EXPECT_EQ(sample.spread, row.spread) << row.binWidth;
        EXPECT_EQ(library.CallsOf("histogram.mainPeak"),
                  std::vector<std::string>{"histogram.mainPeak " + std::to_string(row.window) + " 1"});
        EXPECT_EQ(library.CallsOf("histogram.peaks"),
                  std::vector<std::string>{"histogram.peaks " + std::to_string(row.window)});
    }
}

TEST(ClipHeightWindow, OfABinWidthThatCannotBeIsNotComputed) {
    for (const float width : {0.0f, -0.0f, -1.0f, kNan, kInf}) {
        ScriptedLibrary library;
        library.binWidth = width;
        EXPECT_FALSE(Estimate(AtTheSpot(10)).found) << width;
        EXPECT_EQ(library.samples.size(), 0u);
        EXPECT_EQ(library.calls.back(), "histogram gone");
    }
}

// ---- flat or curved

/// Twelve points at the spot, in pairs at the height z above and below 5; the plane is through 5.
ClipHeight EstimateOfPairs(ScriptedLibrary& library, float z) {
    library.centroid = {0, 0, 5};
    library.normal = {0, 0, 1};
    std::vector<Vertex> vertices = Corners();
    for (int i = 0; i < 12; ++i) vertices.push_back(At(0, 0, i % 2 == 0 ? 5 + z : 5 - z));
    return Estimate(vertices);
}

TEST(ClipHeightKindOfSpot, IsCurvedAboveADistanceFromThePlaneOf1Point1) {
    for (const auto& [z, kind] :
         {std::pair{0.0f, KV_ScenePane::HeightFlatSpot}, std::pair{1.0999f, KV_ScenePane::HeightFlatSpot},
          std::pair{1.1001f, KV_ScenePane::HeightCurvedSpot}, std::pair{4.0f, KV_ScenePane::HeightCurvedSpot}}) {
        ScriptedLibrary library;
        EXPECT_EQ(EstimateOfPairs(library, z).kind, kind) << z;
    }
}

// The mean of the squares, not of the distances: 3 of 12 points at a distance of 2.3 are 1.15 in the root mean square.
TEST(ClipHeightKindOfSpot, GoesByTheRootMeanSquare) {
    for (const auto& [z, kind] :
         {std::pair{2.3f, KV_ScenePane::HeightCurvedSpot}, std::pair{2.1f, KV_ScenePane::HeightFlatSpot}}) {
        ScriptedLibrary library;
        library.centroid = {0, 0, 5};
        library.normal = {0, 0, 1};
        std::vector<Vertex> vertices = Corners();
        for (int i = 0; i < 12; ++i) vertices.push_back(At(0, 0, i < 3 ? 5 + z : 5));
        EXPECT_EQ(Estimate(vertices).kind, kind) << z;
    }
}

TEST(ClipHeightKindOfSpot, GoesByTheDistanceFromTheReportedPlane) {
    ScriptedLibrary library;
    library.centroid = {1, 2, 3};
    library.normal = {0.6f, 0, 0.8f};
    std::vector<Vertex> vertices = Corners();
    // On the plane: 0.6 (x - 1) + 0.8 (z - 3) = 0. From a level plane they are 3 away on average.
    for (int i = 0; i < 12; ++i) {
        const float x = i % 2 == 0 ? 5.0f : -3.0f;
        vertices.push_back(At(x, 0, 3 - 0.75f * (x - 1)));
    }
    for (int i = 0; i < 12; ++i) vertices.push_back(At(0.5f, 0, 3.375f));
    EXPECT_EQ(Estimate(vertices).kind, KV_ScenePane::HeightFlatSpot);
    library.normal = {0, 0, 1};
    EXPECT_EQ(Estimate(vertices).kind, KV_ScenePane::HeightCurvedSpot);
}

// Where the distances are small differences of large numbers.
TEST(ClipHeightKindOfSpot, IsExactFarFromTheOrigin) {
    ScriptedLibrary library;
    const float base = 100000;
    library.normal = {0.57735026f, 0.57735026f, 0.57735026f};
    library.centroid = {base, base, base};
    std::vector<Vertex> vertices;
    for (int i = 0; i < 20; ++i) {
        const float d = i % 2 == 0 ? 1.875f : -1.875f;  // 1.0825 from the plane
        vertices.push_back(At(base, base, base + d));
    }
    vertices.push_back(At(base - 100, base - 100, base));
    vertices.push_back(At(base + 100, base + 300, base));
    EXPECT_EQ(Estimate(vertices).kind, KV_ScenePane::HeightFlatSpot);
    for (Vertex& vertex : vertices) vertex.z = base + 1.0667f * (vertex.z - base);  // 1.1547
    EXPECT_EQ(Estimate(vertices).kind, KV_ScenePane::HeightCurvedSpot);
}

// ---- the height by the rule

struct Rule {
    const char* name;
    std::function<void(ScriptedLibrary&)> script;  ///< of a histogram whose main peak is 10 high, in bin 200
    float height;
};
void PrintTo(const Rule& row, std::ostream* out) { *out << row.name; }
std::string NameOf(const testing::TestParamInfo<Rule>& info) { return info.param.name; }

void Prepare(ScriptedLibrary& library, const Rule& rule) {
    library.mainPeak = 200;
    library.binValues[200] = 10;
    library.variance = 6.25f;
    rule.script(library);
}

class FlatSpot : public testing::TestWithParam<Rule> {};

const Rule kFlatRules[] = {
    {"WithoutPeaksIsAStandardDeviationAboveTheMainLevel", [](ScriptedLibrary&) {}, 302.5f},
    {"WithoutVarianceIsTheMainLevel", [](ScriptedLibrary& l) { l.variance = 0; }, 300},
    {"WithTheMainPeakAloneIsAStandardDeviationAbove", [](ScriptedLibrary& l) { l.peaks = {200}; }, 302.5f},
    {"GoesToTheNextLowerLevelAbove",
     [](ScriptedLibrary& l) {
         l.peaks = {200, 250};
         l.binValues[250] = 3;
     },
     350},
    {"TakesTheFirstOfTheListThatQualifiesNotTheHighest",
     [](ScriptedLibrary& l) {
         l.peaks = {200, 260, 250, 300};
         l.binValues[250] = 4;
         l.binValues[260] = 2;
         l.binValues[300] = 4.5f;
     },
     360},
    {"PassesByLevelsBelowTheMainOne",
     [](ScriptedLibrary& l) {
         l.peaks = {100, 200, 210};
         l.binValues[100] = l.binValues[210] = 3;
     },
     310},
    {"WithLevelsBelowAloneIsAStandardDeviationAbove",
     [](ScriptedLibrary& l) {
         l.peaks = {0, 100, 199};
         l.binValues[0] = l.binValues[100] = l.binValues[199] = 3;
     },
     302.5f},
    {"PassesByLevelsThatAreAsLowAsATenth",
     [](ScriptedLibrary& l) {
         l.peaks = {220, 230};
         l.binValues[220] = 1.0f;
         l.binValues[230] = 1.001f;
     },
     330},
    {"PassesByLevelsThatAreAsHighAsHalf",
     [](ScriptedLibrary& l) {
         l.peaks = {220, 230};
         l.binValues[220] = 5.0f;
         l.binValues[230] = 4.999f;
     },
     330},
    {"InTheNextBinQualifies",
     [](ScriptedLibrary& l) {
         l.peaks = {201};
         l.binValues[201] = 3;
     },
     301},
    {"InTheLastBinQualifies",
     [](ScriptedLibrary& l) {
         l.peaks = {499};
         l.binValues[499] = 3;
     },
     599},
    {"PassesByBinsThatDoNotExist",
     [](ScriptedLibrary& l) {
         l.peaks = {-1, 500, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(), 230};
         l.binValues[230] = 3;
     },
     330},
    {"OfAListWithANegativeCountIsEmpty",
     [](ScriptedLibrary& l) {
         l.peaks = {230};
         l.peakCount = -1;
         l.binValues[230] = 3;
     },
     302.5f},
    {"OfAListWithoutAnArrayIsEmpty", [](ScriptedLibrary& l) { l.peakCount = 3; }, 302.5f},
};

TEST_P(FlatSpot, Height) {
    ScriptedLibrary library;
    Prepare(library, GetParam());
    const ClipHeight found = EstimateOfPairs(library, 0);
    EXPECT_TRUE(found.found);
    EXPECT_EQ(found.kind, KV_ScenePane::HeightFlatSpot);
    EXPECT_EQ(found.height, GetParam().height);
}
INSTANTIATE_TEST_SUITE_P(Rule, FlatSpot, testing::ValuesIn(kFlatRules), NameOf);

TEST(FlatSpotCalls, AskForTheVarianceOnlyWithoutASecondLevel) {
    ScriptedLibrary library;
    Prepare(library, kFlatRules[3]);
    (void)EstimateOfPairs(library, 0);
    EXPECT_TRUE(library.CallsOf("histogram.variance").empty());
}

class CurvedSpot : public testing::TestWithParam<Rule> {};

/// Sets bins to a value.
void Level(ScriptedLibrary& library, std::size_t first, std::size_t last, float value) {
    for (std::size_t i = first; i <= last; ++i) library.binValues[i] = value;
}

const Rule kCurvedRules[] = {
    {"OfASinglePeakIsTheBinBelow", [](ScriptedLibrary&) {}, 299},
    {"IsTheFootOfThePeak",
     [](ScriptedLibrary& l) {
         Level(l, 0, 499, 5);
         l.binValues[200] = 10;
         l.binValues[150] = 1.9f;
         l.binValues[140] = 0;
     },
     250},
    {"PassesByBinsAsHighAsAFifth",
     [](ScriptedLibrary& l) {
         Level(l, 100, 199, 2.0f);
         l.binValues[100] = 1.999f;
     },
     200},
    {"LooksBelowThePeakOnly",
     [](ScriptedLibrary& l) {
         Level(l, 0, 199, 5);
         l.binValues[3] = 1;
     },
     103},
    {"MayBeTheFirstBin",
     [](ScriptedLibrary& l) {
         Level(l, 0, 199, 5);
         l.binValues[0] = 1;
     },
     100},
    {"WithoutAFootIsThePeak", [](ScriptedLibrary& l) { Level(l, 0, 199, 5); }, 300},
    {"WithThePeakInTheFirstBinIsThePeak",
     [](ScriptedLibrary& l) {
         l.mainPeak = 0;
         l.binValues[0] = 10;
         l.binValues[200] = 0;
     },
     100},
    {"WithThePeakInTheLastBinIsItsFoot", [](ScriptedLibrary& l) { l.mainPeak = 499, l.binValues[499] = 10; }, 598},
};

TEST_P(CurvedSpot, Height) {
    ScriptedLibrary library;
    Prepare(library, GetParam());
    const ClipHeight found = EstimateOfPairs(library, 3);
    EXPECT_TRUE(found.found);
    EXPECT_EQ(found.kind, KV_ScenePane::HeightCurvedSpot);
    EXPECT_EQ(found.height, GetParam().height);
    EXPECT_TRUE(library.CallsOf("histogram.peaks").empty());
    EXPECT_TRUE(library.CallsOf("histogram.variance").empty());
}
INSTANTIATE_TEST_SUITE_P(Rule, CurvedSpot, testing::ValuesIn(kCurvedRules), NameOf);

TEST(AllPoints, GiveTheMeanWhateverThePeak) {
    ScriptedLibrary library;
    library.mainPeak = 42;
    library.mean = -7.25f;
    const ClipHeight found = Estimate(AtTheSpot(1));
    EXPECT_TRUE(found.found);
    EXPECT_EQ(found.height, -7.25f);
    EXPECT_EQ(found.kind, KV_ScenePane::HeightFromAllPoints);
}

// ---- not found

void ExpectNotFound(const ClipHeight& found, const char* what) {
    EXPECT_FALSE(found.found) << what;
    EXPECT_EQ(found.height, -20.0f) << what;
    EXPECT_EQ(found.kind, KV_ScenePane::HeightNotDecided) << what;
}

TEST(ClipHeightNotFound, WithoutAMainPeak) {
    for (const std::int32_t status : {-1, 0, -5, 2}) {
        for (const int count : {1, 10}) {
            ScriptedLibrary library;
            library.answers["histogram.mainPeak"] = status;
            ExpectNotFound(Estimate(AtTheSpot(count)), "status");
            EXPECT_EQ(library.calls.back(), "histogram gone");
            EXPECT_TRUE(library.CallsOf("histogram.mean").empty());
            EXPECT_TRUE(library.CallsOf("histogram.peaks").empty());
        }
    }
}

TEST(ClipHeightNotFound, WithAPeakInABinThatDoesNotExist) {
    for (const std::int32_t peak : {-1, 500, std::numeric_limits<std::int32_t>::max()}) {
        ScriptedLibrary library;
        library.mainPeak = peak;
        ExpectNotFound(Estimate(AtTheSpot(10)), "index");
    }
}

TEST(ClipHeightNotFound, WithAHeightThatIsNotFinite) {
    for (const float bad : {kNan, kInf, -kInf}) {
        ScriptedLibrary library;
        library.mean = bad;
        ExpectNotFound(Estimate(AtTheSpot(1)), "mean");
        library.variance = bad;
        ExpectNotFound(Estimate(AtTheSpot(10)), "variance");
        library.variance = -1;
        ExpectNotFound(Estimate(AtTheSpot(10)), "negative variance");
        library.variance = 0;
        library.binCenters[0] = bad;
        ExpectNotFound(Estimate(AtTheSpot(10)), "centre of a bin");
    }
}

}  // namespace
