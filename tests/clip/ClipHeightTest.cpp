// Which vertices the height estimate passes to the histogram, in which order and with which weight, and how it uses the
// objects of the component library. The library is a scripted one that computes nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

#include "clip/ClipScript.h"

namespace {

using Calls = std::vector<std::string>;
using Samples = std::vector<FakeComponents::HistogramSample>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

std::vector<float> Values(const Samples& samples) {
    std::vector<float> values;
    for (const auto& sample : samples) values.push_back(sample.value);
    return values;
}

// ---- order

TEST(ClipHeightSamples, OfAThinSpotAreAllPointsOnceFacingUpAndOnceFacingSideways) {
    ScriptedLibrary library;
    library.mean = 3.5f;
    const std::vector<Vertex> first{At(-20, -20, 0, 0.25f), At(0, 0, 1, 0.5f), At(20, 60, 10, -0.75f)};
    const std::vector<Vertex> second{At(0.5f, 0.5f, 2, 1.0f), At(5, 5, 3, 0.0f)};
    const PointSpan spans[] = {SpanOf(first), SpanOf(second)};
    const auto found = EstimateFromSpans(spans, 1);
    // The two at the spot, then all by z of the normal, then all by what is left of it to 1. The width of a bin is 1.
    EXPECT_EQ(library.samples, (Samples{{1, 5, 0.5f},
                                        {2, 5, 1.0f},
                                        {0, 5, 0.25f},
                                        {1, 5, 0.5f},
                                        {10, 5, 0.0f},
                                        {2, 5, 1.0f},
                                        {3, 5, 0.0f},
                                        {0, 5, 0.75f},
                                        {1, 5, 0.5f},
                                        {10, 5, 0.25f},
                                        {2, 5, 0.0f},
                                        {3, 5, 1.0f}}));
    EXPECT_EQ(library.calls, (Calls{"new histogram", "histogram.initialize 0 10 500", "histogram.binWidth",
                                    "histogram.reset 2", "histogram.binCenters 500", "histogram.binValues 500",
                                    "histogram.mainPeak 25 1", "histogram.mean", "histogram gone"}));
    EXPECT_TRUE(found.found);
    EXPECT_EQ(found.height, 3.5f);
    EXPECT_EQ(found.kind, KV_ScenePane::HeightFromAllPoints);
}

TEST(ClipHeightSamples, OfADenseSpotAreThoseWithin1UnitAndThenThoseWithin12) {
    ScriptedLibrary library;
    library.binValues[7] = 1;
    library.mainPeak = 7;
    library.centroid = {1, 2, 0.5f};
    library.normal = {0, 0, 1};
    std::vector<Vertex> vertices = Corners();
    Samples expected;
    for (int i = 0; i < 10; ++i)
        vertices.push_back(At(0.09f * static_cast<float>(i), 0, 0.1f * static_cast<float>(i), 0.5f));
    vertices.insert(vertices.begin() + 5, At(6, -10, 1.5f, -0.5f));  // 11.7 from the spot
    const auto found = Estimate(vertices);

    for (int i = 0; i < 10; ++i) expected.push_back({0.1f * static_cast<float>(i), 5, 0.5f});
    Samples wide = expected;
    wide.insert(wide.begin() + 3, {1.5f, 5, 0.0f});
    expected.insert(expected.end(), wide.begin(), wide.end());
    EXPECT_EQ(library.samples, expected);
    EXPECT_EQ(library.calls, (Calls{"new histogram",
                                    "histogram.initialize 0 10 500",
                                    "histogram.binWidth",  //
                                    "new cloud",
                                    "cloud.format P",
                                    "cloud.count 11",
                                    "cloud.points 12 11",
                                    "cloud.centroid",
                                    "new search",
                                    "cloud.addReference",
                                    "search.build cloud",
                                    "new estimator",
                                    "cloud.addReference",
                                    "search.addReference",
                                    "estimator.initialize cloud search",
                                    "estimator.normal 1 2 0.5 3.40282e+38",
                                    "estimator.finish",
                                    "search.finish",
                                    "estimator gone",
                                    "search gone",
                                    "cloud gone",
                                    "histogram.binCenters 500",
                                    "histogram.binValues 500",
                                    "histogram.mainPeak 25 1",
                                    "histogram.peaks 25",
                                    "histogram.variance",
                                    "histogram gone"}));
    EXPECT_EQ(found.height, 107.0f);
    EXPECT_EQ(found.kind, KV_ScenePane::HeightFlatSpot);
    // The plane is fitted to the points of the second pass, also to those of no weight.
    ASSERT_EQ(library.cloudPoints.size(), 11u);
    EXPECT_EQ(library.cloudPoints[3], (std::array<float, 3>{6, -10, 1.5f}));
    EXPECT_EQ(library.cloudPoints[4], (std::array<float, 3>{0.09f * 3, 0, 0.1f * 3}));
}

TEST(ClipHeightSamples, AreThinWithNineAtTheSpotAndDenseWithTen) {
    for (const int count : {9, 10}) {
        ScriptedLibrary library;
        const auto found = Estimate(AtTheSpot(count));
        EXPECT_EQ(found.kind, count < 10 ? KV_ScenePane::HeightFromAllPoints : KV_ScenePane::HeightFlatSpot);
        EXPECT_EQ(library.CallsOf("histogram.reset").size(), count < 10 ? 1u : 0u);
    }
}

// ---- the spot

/// Ten vertices at the spot and one at (x, y) with the height 9: how often that one is a sample.
std::ptrdiff_t TimesSampled(float x, float y) {
    ScriptedLibrary library;
    std::vector<Vertex> vertices = AtTheSpot(10);
    vertices.push_back(At(x, y, 9));
    EXPECT_NE(Estimate(vertices).kind, KV_ScenePane::HeightFromAllPoints);
    return std::ranges::count(Values(library.samples), 9.0f);
}

TEST(ClipHeightSpot, IsACircleInXAndYWithoutItsEdge) {
    const float below1 = std::nextafter(1.0f, 0.0f), below12 = std::nextafter(12.0f, 0.0f);
    EXPECT_EQ(TimesSampled(below1, 0), 2);
    EXPECT_EQ(TimesSampled(1, 0), 1);
    EXPECT_EQ(TimesSampled(0, -1), 1);
    EXPECT_EQ(TimesSampled(0.6f, 0.79f), 2);
    EXPECT_EQ(TimesSampled(0.8f, 0.61f), 1);
    EXPECT_EQ(TimesSampled(0, below12), 1);
    EXPECT_EQ(TimesSampled(12, 0), 0);
    EXPECT_EQ(TimesSampled(-9, 8), 0);
    EXPECT_EQ(TimesSampled(-9, 7.9f), 1);
}

TEST(ClipHeightSpot, IsInTheMiddleInXAndAQuarterFromTheLowEndInY) {
    ScriptedLibrary library;
    library.normal = {0, 0, 1};
    std::vector<Vertex> vertices{At(100, 1000, 0), At(300, 1400, 1), At(200, 1200, 2), At(200, 1300, 3)};
    for (int i = 0; i < 10; ++i) vertices.push_back(At(200.5f, 1100.5f, 4));
    (void)Estimate(vertices);
    EXPECT_EQ(Values(library.samples), std::vector<float>(20, 4.0f));
}

// With a step the box is still that of all vertices: the corners are skipped here, and the spot is where it was.
TEST(ClipHeightSpot, IsThatOfAllVerticesAlsoWithAStep) {
    ScriptedLibrary library;
    std::vector<Vertex> vertices{At(0, 0, 4), At(-20, -20, 0), At(0, 0, 4), At(20, 60, 10)};
    for (int i = 0; i < 16; ++i) vertices.push_back(At(0, 0, 4));
    (void)Estimate(vertices, 2);
    EXPECT_EQ(library.calls[1], "histogram.initialize 0 10 500");
    EXPECT_EQ(Values(library.samples), std::vector<float>(20, 4.0f)) << "ten of twenty vertices, in two passes";
}

// ---- step

TEST(ClipHeightStep, KeepsAPassBelowItsLimit) {
    EXPECT_EQ(ClipHeightStep(0), 1);
    EXPECT_EQ(ClipHeightStep(1), 1);
    EXPECT_EQ(ClipHeightStep(3703489), 1);
    EXPECT_EQ(ClipHeightStep(3703490), 2);
    EXPECT_EQ(ClipHeightStep(7406979), 2);
    EXPECT_EQ(ClipHeightStep(7406980), 3);
    EXPECT_EQ(ClipHeightStep(5'000'000'000), 1351) << "beyond 32 bits";
}

TEST(ClipHeightStep, CountsFromTheFirstVertexOfEachObject) {
    ScriptedLibrary library;
    std::vector<Vertex> first, second;
    for (int i = 0; i < 5; ++i) first.push_back(At(0, 0, static_cast<float>(i)));
    for (int i = 0; i < 7; ++i) second.push_back(At(0, 0, static_cast<float>(10 + i)));
    const PointSpan spans[] = {SpanOf(first), SpanOf(second)};
    (void)EstimateFromSpans(spans, 3);
    const std::vector<float> pass{0, 3, 10, 13, 16};
    ASSERT_EQ(library.samples.size(), 15u);
    EXPECT_EQ(Values(Samples(library.samples.begin(), library.samples.begin() + 5)), pass);
    EXPECT_EQ(Values(Samples(library.samples.begin() + 5, library.samples.begin() + 10)), pass);
}

// Spans without a stride: millions of vertices at one place, one object with 1 less than the limit, one with the rest.
TEST(ClipHeightStep, OfExactly3703490VerticesIs2) {
    const std::vector<Vertex> vertices{At(0, 0, 4)};
    for (const std::int32_t total : {3703489, 3703490}) {
        PointSpan many = SpanOf(vertices), one = many;
        many.positionStride = many.normalStride = 0;
        many.count = total - 1;
        const PointSpan spans[] = {many, one};
        ScriptedLibrary library;
        library.samples.reserve(8'000'000);
        (void)EstimateFromSpans(spans, ClipHeightStep(total));
        EXPECT_EQ(library.samples.size(), 2u * (total == 3703489 ? 3703489u : 1851745u + 1u)) << total;
    }
}

// ---- weights and vertices that are not finite

struct Weights {
    float normalZ, facingUp, facingSideways;
};

TEST(ClipHeightWeights, AreNeverNegativeAndAlwaysFinite) {
    const Weights rows[] = {
        {1, 1, 0},
        {0.25f, 0.25f, 0.75f},
        {0, 0, 1},
        {-0.25f, 0, 0.75f},
        {-1, 0, 0},
        {1.5f, 1.5f, 0},
        {-0.0f, 0, 1},
        {kNan, 0, 0},
        {kInf, 0, 0},
        {-kInf, 0, 0},
        {FLT_MAX, FLT_MAX, 0},
        {-FLT_MAX, 0, 0},
        {FLT_MIN, FLT_MIN, 1},
    };
    for (const Weights& row : rows) {
        ScriptedLibrary library;
        (void)Estimate({At(0, 0, 0, row.normalZ), At(100, 100, 1, row.normalZ)});
        ASSERT_EQ(library.samples.size(), 4u);
        EXPECT_EQ(library.samples[0].weight, row.facingUp) << row.normalZ;
        EXPECT_EQ(library.samples[2].weight, row.facingSideways) << row.normalZ;
        EXPECT_FALSE(std::signbit(library.samples[0].weight)) << row.normalZ;
    }
}

TEST(ClipHeightWeights, OfTheOtherPartsOfANormalDoNotCount) {
    ScriptedLibrary library;
    std::vector<Vertex> vertices{At(0, 0, 0, 0.5f), At(100, 100, 1, 0.5f)};
    for (Vertex& vertex : vertices) vertex.nx = kNan, vertex.ny = kInf;
    (void)Estimate(vertices);
    ASSERT_EQ(library.samples.size(), 4u);
    EXPECT_EQ(library.samples[0].weight, 0.5f);
}

TEST(ClipHeightOfNotFiniteVertices, LeavesThemOutOfBoxSamplesAndPlane) {
    std::vector<Vertex> vertices = AtTheSpot(10);
    for (const float bad : {kNan, kInf, -kInf}) {
        vertices.push_back(At(bad, 0, 50));
        vertices.push_back(At(0, bad, 60));
        vertices.insert(vertices.begin(), At(0, 0, bad));
        vertices.insert(vertices.begin(), At(bad, bad, bad));
    }
    ScriptedLibrary library;
    (void)Estimate(vertices);
    EXPECT_EQ(library.calls[1], "histogram.initialize 0 10 500");
    EXPECT_EQ(Values(library.samples), std::vector<float>(20, 5.0f));
    EXPECT_EQ(library.cloudPoints.size(), 10u);
}

TEST(ClipHeightOfNotFiniteVertices, LeavesThemOutOfAllPoints) {
    ScriptedLibrary library;
    (void)Estimate({At(0, 0, kNan), At(0, 0, 1), At(kInf, 0, 7), At(100, 100, 2), At(-kInf, 0, 8), At(0, kNan, 9)});
    EXPECT_EQ(Values(library.samples), (std::vector<float>{1, 2, 1, 2}));
}

TEST(ClipHeightOfNotFiniteVertices, CountsThemInTheStep) {
    ScriptedLibrary library;
    (void)Estimate({At(0, 0, 1), At(0, 0, kNan), At(100, 100, 2), At(0, 0, 3)}, 2);
    EXPECT_EQ(Values(library.samples), (std::vector<float>{1, 2, 1, 2}));
}

// Their squared distance from the spot is infinite, and so may be the spot itself.
TEST(ClipHeightOfFarVertices, TakesAllOfThem) {
    for (const float far : {1e25f, FLT_MAX}) {
        ScriptedLibrary library;
        (void)Estimate({At(-far, -far, 1), At(far, far, 2), At(far, -far, 3)});
        EXPECT_EQ(Values(library.samples), (std::vector<float>{1, 2, 3, 1, 2, 3})) << far;
    }
    ScriptedLibrary library;
    (void)Estimate({At(FLT_MAX, 0, 1), At(FLT_MAX, 0, 2)});
    EXPECT_EQ(Values(library.samples), (std::vector<float>{1, 2, 1, 2})) << "the middle in x is infinite";
}

TEST(ClipHeightOfNothing, IsNotFoundAndAsksForNoObject) {
    ScriptedLibrary library;
    const std::vector<Vertex> bad{At(kNan, 0, 0), At(0, kInf, 0), At(0, 0, -kInf)};
    const PointSpan spans[] = {SpanOf(bad)};
    for (const std::span<const PointSpan> some : {std::span<const PointSpan>(spans), std::span<const PointSpan>()}) {
        const auto found = EstimateFromSpans(some, 1);
        EXPECT_FALSE(found.found);
        EXPECT_EQ(found.height, -20.0f);
        EXPECT_EQ(found.kind, KV_ScenePane::HeightNotDecided);
    }
    EXPECT_EQ(library.calls, Calls{});
}

// ---- spans of meshes

TEST(ClipHeightSpans, AreThoseOfTheMeshesWithVerticesInPlace) {
    std::vector<std::shared_ptr<Mesh>> meshes;
    for (const std::size_t count : {3u, 0u, 2u}) {
        meshes.push_back(std::make_shared<Mesh>(L"", false));
        meshes.back()->m_vVertices.resize(count);
    }
    meshes[2]->m_iVisible = 0;
    const std::vector<PointSpan> spans = SpansOf(meshes);
    ASSERT_EQ(spans.size(), 2u);
    for (const std::size_t i : {0u, 1u}) {
        const auto& vertices = meshes[2 * i]->m_vVertices;
        EXPECT_EQ(spans[i].count, static_cast<std::int32_t>(vertices.size()));
        EXPECT_EQ(spans[i].positionStride, 32);
        EXPECT_EQ(spans[i].normalStride, 32);
        EXPECT_EQ(static_cast<const void*>(spans[i].positions), vertices.data());
        EXPECT_EQ(spans[i].normals, spans[i].positions + 3);
    }
}

// ---- the objects

/// Dense: every object is used.
TEST(ClipHeightObjects, AreReleasedWhenAnOperationFailsAndItsStatusIsReported) {
    const char* const operations[] = {
        "histogram.initialize", "histogram.binWidth", "cloud.format",       "cloud.count",
        "cloud.points",         "cloud.centroid",     "search.build",       "estimator.initialize",
        "estimator.normal",     "estimator.finish",   "search.finish",      "histogram.binCenters",
        "histogram.binValues",  "histogram.peaks",    "histogram.variance",
    };
    for (const char* operation : operations) {
        ScriptedLibrary library;
        library.answers[operation] = -6;
        try {
            (void)Estimate(AtTheSpot(10));
            ADD_FAILURE() << operation;
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "the operation has been canceled") << operation;
        }
        EXPECT_EQ(library.Alive(), 0) << operation;
        EXPECT_EQ(library.CallsOf(operation).size(), 1u) << operation;
    }
}

TEST(ClipHeightObjects, ThatAreInUseAreFinishedWhenAnOperationFails) {
    ScriptedLibrary library;
    library.answers["estimator.normal"] = -1;
    EXPECT_THROW((void)Estimate(AtTheSpot(10)), std::runtime_error);
    const Calls end{"estimator.finish", "estimator gone", "search.finish",
                    "search gone",      "cloud gone",     "histogram gone"};
    EXPECT_EQ(Calls(library.calls.end() - 6, library.calls.end()), end);
}

TEST(ClipHeightObjects, WithoutAMeanAreReported) {
    ScriptedLibrary library;
    library.answers["histogram.mean"] = -1;
    EXPECT_THROW((void)Estimate(AtTheSpot(1)), std::runtime_error);
    EXPECT_EQ(library.Alive(), 0);
}

TEST(ClipHeightObjects, ThatRefuseSamplesOrAResetAreNoFailure) {
    ScriptedLibrary library;
    library.answers["histogram.addSample"] = -4;
    library.answers["histogram.reset"] = -1;
    library.mean = 2;
    const auto found = Estimate(AtTheSpot(1));
    EXPECT_TRUE(found.found);
    EXPECT_EQ(found.height, 2.0f);
    EXPECT_EQ(library.samples.size(), 7u);
}

TEST(ClipHeightObjects, ThatTheLibraryLacksAreNamed) {
    for (const auto& [name, factory] : {std::pair{"histogram", "{9D7D1BCB-F55C-4D00-9793-96553FE8F32E}"},
                                        std::pair{"cloud", "{C80FC412-6A36-405F-B0EE-3455714BBD76}"},
                                        std::pair{"search", "{8B99E47F-1592-48DF-969E-112FADD993AB}"},
                                        std::pair{"estimator", "{F9D07468-C253-40CC-9985-4424C52D1BC4}"}}) {
        for (const bool query : {false, true}) {
            ScriptedLibrary library;
            if (query)
                library.answers[std::string(name) + ".query"] = -3;
            else
                library.missing.insert(name);
            try {
                (void)Estimate(AtTheSpot(10));
                ADD_FAILURE() << name;
            } catch (const std::runtime_error& error) {
                EXPECT_EQ(std::string(error.what()), std::string("the component library gives no object ") + factory +
                                                         ": is the registry started (InitializeKVReg)?");
            }
            EXPECT_EQ(library.Alive(), 0) << name;
        }
    }
}

}  // namespace
