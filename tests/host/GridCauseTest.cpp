#include "GridCause.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "DebugCapture.h"
#include "FileImport.h"
#include "KV_ScenePane/ScenePane.h"
#include "host/ScanFiles.h"

namespace {

/// The arrays of a grid, thousandths of mm.
struct Arrays {
    int width = 0, height = 0;
    std::vector<float> points, confidence;
    std::vector<std::uint8_t> classification;
};

/// Points in a plane. @param stepX, stepY  between neighbours, mm
Arrays Plane(int width, int height, float stepX, float stepY) {
    Arrays arrays{width, height, {}, {}, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (const float part : {stepX * static_cast<float>(x), stepY * static_cast<float>(y), 1.0f})
                arrays.points.push_back(part * 1000.0f);
        }
    }
    arrays.confidence.assign(arrays.points.size() / 3, 1.0f);
    arrays.classification.assign(arrays.points.size() / 3, 0);
    return arrays;
}

/// Every second point in both directions alone is valid.
Arrays Scattered() {
    Arrays arrays = Plane(8, 8, 1, 1);
    for (std::size_t i = 0; i < arrays.classification.size(); ++i) {
        if (i % 2 != 0 || (i / 8) % 2 != 0) arrays.classification[i] = 240;
    }
    return arrays;
}

/// Three neighbours in the corner alone are valid: a triangle at skip 1, too few of a cell at skip 3.
Arrays Corner() {
    Arrays arrays = Plane(9, 9, 1, 1);
    arrays.classification.assign(81, 240);
    for (const std::size_t valid : {0, 1, 9}) arrays.classification[valid] = 0;
    return arrays;
}

struct Case {
    const char* name;
    Arrays arrays;
    int skip;
    float limit;
    const char* cause;
};
void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

const Case kCases[] = {
    {"TooFarApartAtSkip2", Plane(8, 8, 3, 3), 2, 0,
     "no triangle is left: with skip 2 neighbouring points are more than 5 mm apart: import with skip 1"},
    {"TooFarApartAtSkip4", Plane(16, 16, 2, 2), 4, 0,
     "no triangle is left: with skip 4 neighbouring points are more than 5.25 mm apart: import with skip 1"},
    {"TooFarApartAtSkip6", Plane(18, 18, 1, 1), 6, 0,
     "no triangle is left: with skip 6 neighbouring points are more than 5.75 mm apart: import with skip 1"},
    {"TooFarApartAtSkip7", Plane(21, 21, 1, 1), 7, 0,
     "no triangle is left: with skip 7 neighbouring points are more than 6.5 mm apart: import with skip 1"},
    {"TooFarApartAtSkip9", Plane(27, 27, 1, 1), 9, 0,
     "no triangle is left: with skip 9 neighbouring points are more than 8 mm apart: import with skip 1"},
    {"JustNearEnough", Plane(8, 8, 2.5f, 2.5f), 2, 0, ""},
    {"Slivers", Plane(4, 4, 1, 20), 1, 0,
     "no triangle is left: each has an angle below 15 or above 165 degrees: measure the surface less obliquely"},
    {"SliversThatAreNearEnough", Plane(8, 8, 0.1f, 1), 2, 0,
     "no triangle is left: each has an angle below 15 or above 165 degrees: measure the surface less obliquely"},
    {"NoNeighbours", Scattered(), 1, 0,
     "no triangle is left: nowhere are three neighbouring points valid: lower the confidence limit or measure again"},
    {"TooFewPerCell", Corner(), 3, 0,
     "no triangle is left: with skip 3 too few neighbouring cells have 4 valid points: import with a smaller skip"},
    {"OneRow", Plane(9, 1, 1, 1), 1, 0,
     "no triangle is left: a grid of 9 x 1 points has no neighbours in one direction"},
    {"NoPointPassesTheLimit", Plane(4, 4, 1, 1), 1, 2, ""},
    {"APlane", Plane(4, 4, 1, 1), 1, 0, ""},
};
class CauseOfAGrid : public testing::TestWithParam<Case> {
protected:
    [[nodiscard]] static ScanGrid Grid() {
        const Arrays& arrays = GetParam().arrays;
        return {arrays.width, arrays.height, arrays.points.data(), arrays.confidence.data(),
                arrays.classification.data()};
    }
};

TEST_P(CauseOfAGrid, IsTheLimitThatLeavesNoTriangle) {
    EXPECT_EQ(CauseOfNoTriangle(Grid(), GetParam().skip, GetParam().limit), GetParam().cause);
}

// The viewer agrees: it refuses each grid that has a cause and accepts those without one.
TEST_P(CauseOfAGrid, IsGivenForTheGridsThatTheViewerRefuses) {
    const Arrays& arrays = GetParam().arrays;
    const ScratchFolder folder;
    const float trafo[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    MsrStorage::PcmView view;
    view.m_iWidth = arrays.width;
    view.m_iHeight = arrays.height;
    view.m_pPoints = arrays.points.data();
    view.m_pConfidence = arrays.confidence.data();
    view.m_pClassification = arrays.classification.data();
    view.m_pTrafo = trafo;
    MsrStorage::WritePcmFile(folder / "a.pcm", view);
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_TRUE(pane);
    const DebugRouter router([](std::string_view) {});
    const ImportSettings settings{.skip = static_cast<std::int16_t>(GetParam().skip), .confidence = GetParam().limit};
    ApplySettings(pane->Methods(), settings);
    const ImportResult result = ImportFile(pane->Methods(), folder / "a.pcm", settings);
    if (GetParam().limit > 1) {
        EXPECT_EQ(result.text, "no point is left: none has the confidence 2: lower the limit of the import");
        return;
    }
    const std::string cause = GetParam().cause;
    EXPECT_EQ(result.state, cause.empty() ? ImportResult::State::Added : ImportResult::State::Failed);
    EXPECT_EQ(result.text, cause);
    EXPECT_EQ(pane->Methods().GetNumObjects(), cause.empty() ? 1 : 0);
}
INSTANTIATE_TEST_SUITE_P(GridCause, CauseOfAGrid, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.name; });

/// Files that only the viewer reads.
class CauseOfAViewersGrid : public testing::TestWithParam<const char*> {};

TEST_P(CauseOfAViewersGrid, IsFoundByAnImportWithAllPoints) {
    const ScratchFolder folder;
    const std::string file = folder / GetParam();
    GetParam() == std::string("a.pax") ? WritePax(file, 21, 21) : WriteXdt(file, 21, 21);
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_TRUE(pane);
    const DebugRouter router([](std::string_view) {});
    ImportSettings settings{.skip = 7};
    ApplySettings(pane->Methods(), settings);
    const ImportResult result = ImportFile(pane->Methods(), file, settings);
    EXPECT_EQ(result.text, "no triangle is left with skip 7, but 800 with skip 1: import with skip 1");
    EXPECT_EQ(pane->Methods().GetNumObjects(), 0) << "the trial leaves no object";
    EXPECT_EQ(pane->Methods().GetScanSkipVal(), 7) << "the trial leaves the skip value";
    EXPECT_EQ(ImportFile(pane->Methods(), file, settings).state, ImportResult::State::Failed)
        << "still no empty objects";
}
INSTANTIATE_TEST_SUITE_P(GridCause, CauseOfAViewersGrid, testing::Values("a.pax", "a.xdt"),
                         [](const auto& row) { return std::string(row.param).substr(2); });

}  // namespace
