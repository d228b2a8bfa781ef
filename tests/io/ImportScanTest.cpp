// Import of measurement files into the scene of a whole control.
#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "io/ImportScanFixture.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// ---- good files

class ImportScanOf : public ImportScan, public testing::WithParamInterface<const char*> {};

TEST_P(ImportScanOf, AddsOneObjectWithTheFilesName) {
    const std::string name = std::string("scan.") + GetParam();
    Import(ScanSample(3, 3, 1), name);
    ASSERT_EQ(Count(), 1u);
    EXPECT_EQ(Last().m_sName, WidePath(folder / name));
    EXPECT_EQ(c->m_strScanPath, WidePath(folder / name));
    EXPECT_EQ(Last().GetVertexCount(), 9u);
    EXPECT_EQ(Last().GetTriangleCount(), 8u);
    EXPECT_EQ(Last().GetColorRef(), static_cast<std::uint32_t>(kColor));
    EXPECT_FALSE(Last().m_bHasVertexColors);
    EXPECT_TRUE(Last().m_bGrayColors);
    EXPECT_TRUE(Last().m_bBuffersDirty);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_P(ImportScanOf, ShowsTheWaitCursorAndInvalidatesWithErase) {
    Import(ScanSample(3, 3, 1), std::string("scan.") + GetParam());
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
}

TEST_P(ImportScanOf, AcceptsTheExtensionInAnyCase) {
    std::string kind = GetParam();
    ScanSample(3, 3, 1).Write(folder / ("scan." + kind));
    for (char& letter : kind) letter = static_cast<char>(letter - 'a' + 'A');
    std::filesystem::rename(folder / ("scan." + std::string(GetParam())), folder / ("scan." + kind));
    Import("scan." + kind);
    EXPECT_EQ(Count(), 1u);
    kind[0] = GetParam()[0];
    std::filesystem::copy_file(c->m_strScanPath, folder / ("mixed." + kind));
    Import("mixed." + kind);
    EXPECT_EQ(Count(), 2u);
}

TEST_P(ImportScanOf, OpensAFileWhoseNameIsNotUtf8) {
    const std::string name = std::string("caf\xE9 \xE2\x82\xAC\xFF.") + GetParam();
    ScanSample(3, 3, 1).Write(folder / (std::string("plain.") + GetParam()));
    ASSERT_EQ(std::rename((folder / (std::string("plain.") + GetParam())).c_str(), (folder / name).c_str()), 0);
    Import(name);
    ASSERT_EQ(Count(), 1u);
    EXPECT_EQ(KV_ScenePane::PathBytes(Last().m_sName), folder / name) << "the name keeps every byte";
}

TEST_P(ImportScanOf, RefusesASkipValueBelowOneWithAReason) {
    for (const std::int16_t skip : {std::int16_t{0}, std::int16_t{-1}, std::int16_t{-32768}}) {
        for (const std::int16_t allowEmpty : {std::int16_t{0}, std::int16_t{-1}}) {
            c->SetAllowEmptyObjects(allowEmpty);
            c->SetScanSkipVal(skip);
            c.debugOutput.Clear();
            Import(ScanSample(3, 3, 1), std::string("scan.") + GetParam());
            EXPECT_EQ(Count(), 0u);
            EXPECT_THAT(c.debugOutput.Text(), HasSubstr("skip"));
            EXPECT_EQ(c.debugOutput.Text().back(), '\n');
        }
    }
}

TEST_P(ImportScanOf, ThinsByTheSkipValue) {
    c->SetScanSkipVal(2);
    Import(ScanSample(6, 4, 1), std::string("scan.") + GetParam());
    ASSERT_EQ(Count(), 1u);
    EXPECT_EQ(Last().GetVertexCount(), 6u);  // 3 x 2 cells
    EXPECT_EQ(Last().GetTriangleCount(), 4u);
}

TEST_P(ImportScanOf, ChangesNothingWhenTheFileIsMissing) {
    Import(ScanSample(3, 3, 1), std::string("good.") + GetParam());
    const auto before = c->m_vpMeshes;
    const float sceneSize = c->m_fSceneSize;
    c.window->Forget();
    Import(std::string("missing.") + GetParam());
    EXPECT_THAT(c.debugOutput.Text(), HasSubstr(folder / (std::string("missing.") + GetParam()) + ": ")) << "a reason";
    EXPECT_EQ(c->m_vpMeshes, before);
    EXPECT_EQ(c->m_fSceneSize, sceneSize);
    EXPECT_EQ(c->m_strScanPath, WidePath(folder / (std::string("missing.") + GetParam())));
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}

TEST_P(ImportScanOf, ChangesNothingForAFolderOfThatName) {
    std::filesystem::create_directory(folder / (std::string("folder.") + GetParam()));
    Import(std::string("folder.") + GetParam());
    EXPECT_EQ(Count(), 0u);
}

TEST_P(ImportScanOf, ChangesNothingForAnEmptyFile) {
    Import(ScanBytes(), std::string("empty.") + GetParam());
    EXPECT_EQ(Count(), 0u);
    EXPECT_THAT(c.debugOutput.Text(), Not(IsEmpty()));
}

TEST_P(ImportScanOf, FillsTheSceneInCallOrder) {
    Import(ScanSample(3, 3, 1), std::string("b.") + GetParam());
    Import(ScanSample(4, 3, 1), std::string("a.") + GetParam());
    ASSERT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 9u);
    EXPECT_EQ(c->m_vpMeshes[1]->GetVertexCount(), 12u);
}
INSTANTIATE_TEST_SUITE_P(Kinds, ImportScanOf, testing::Values("pcm", "pax", "xdt"),
                         [](const auto& row) { return std::string(row.param); });

// ---- which reader

TEST_F(ImportScan, TreatsAPathWithoutAPointAsItsExtension) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    for (const std::string kind : {"pax", "xdt", "pcm"}) {
        ScanSample(3, 3, 1).Write(folder / ("scan." + kind));
        std::filesystem::rename(folder / ("scan." + kind), folder / kind);
        c->ImportScan(WidePath(kind).c_str(), kColor);
        ASSERT_FALSE(c->m_vpMeshes.empty()) << kind;
        EXPECT_EQ(Last().m_sName, WidePath(kind));
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(Count(), 3u);
}

TEST_F(ImportScan, DoesNothingForAnyOtherExtension) {
    std::filesystem::create_directory(folder / "dotted.x");
    for (const std::string name :
         {"scan.pax.bak", "scan.ply", "scan.", "scan.paxx", "scan.pa", "scan.pax ", "dotted.x/pax"}) {
        c.window->Forget();
        Import(ScanSample(3, 3, 1).Pax(), name);
        EXPECT_EQ(Count(), 0u) << name;
        EXPECT_EQ(c->m_strScanPath, WidePath(folder / name));
        EXPECT_EQ(c.window->eraseInvalidates, 1) << name;
    }
}

TEST_F(ImportScan, ShowsTheWaitCursorWhileItWorks) {
    int begun = -1, ended = -1;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        begun = c.window->waitCursorsBegun;
        ended = c.window->waitCursorsEnded;
    });
    Import("missing.pcm");
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(ended, 0);
}

TEST(ImportScanInAWindow, QueuesARepaint) {
    OffscreenControl c;
    ASSERT_FALSE(c.window->IsPaintPending());
    c->ImportScan(L"missing.pax", 0);
    EXPECT_TRUE(c.window->IsPaintPending());
    EXPECT_EQ(c.window->refreshes, 0);
}

// ---- units

TEST_F(ImportScan, ReadsPaxInSceneUnitsAndTheOthersInThousandths) {
    ScanSample scan(3, 3, 1000);
    scan.trafo[3] = 5000;
    scan.trafo[7] = -6000;
    scan.trafo[11] = 7000;
    Import(scan, "scan.pax");
    ExpectBox(Last(), {5000, 7000, -6000, -4000, 7000 - 0.01f, 7000 + 0.01f});
    EXPECT_EQ(Last().m_Trafo.m_dTranslation[0], 5000);
    Import(scan, "scan.pcm");
    ExpectBox(Last(), {5, 7, -6, -4, 7 - 0.01f, 7 + 0.01f});
    EXPECT_FLOAT_EQ(static_cast<float>(Last().m_Trafo.m_dTranslation[2]), 7);
    Import(scan, "scan.xdt");
    ExpectBox(Last(), {0, 2, 0, 2, -0.01f, 0.01f});
    EXPECT_EQ(Last().m_Trafo.m_dTranslation[0], 0) << "xdt has no transform";
    EXPECT_EQ(Last().m_Trafo.m_dQuat[0], 1);
}

TEST_F(ImportScan, AppliesTheWholeMatrixRowByRow) {
    ScanSample scan(3, 3, 1);
    scan.trafo = {0, -2, 0, 10, 2, 0, 0, 20, 0, 0, 2, 30, 0, 0, 0, 1};  // a quarter turn, twice as large
    Import(scan, "scan.pax");
    ExpectBox(Last(), {6, 10, 20, 24, 30 - 0.01f, 30 + 0.01f});
    float m[16] = {};
    c->GetTrafoOfScan(0, m, m + 1, m + 2, m + 3, m + 4, m + 5, m + 6, m + 7, m + 8, m + 9, m + 10, m + 11, m + 12,
                      m + 13, m + 14, m + 15);
    // a rotation alone; that of the quaternion (sqrt(3) / 2, 0, 0, 2 / sqrt(3)), which is (0.6, 0, 0, 0.8) at unit
    // length
    const float expected[16] = {-0.28f, -0.96f, 0, 10, 0.96f, -0.28f, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(m[i], expected[i], 1e-6) << "element " << i;
    for (const Vertex& vertex : Last().m_vVertices) EXPECT_NEAR(std::abs(vertex.nz), 1, 1e-6);
}

TEST_F(ImportScan, ScalesBeforeItLooksForStepsInDepth) {
    // 2 x 2 cells of 2 x 2 pixels, 2 apart; those on the right are 3 or 6 deeper, all in scene units
    const auto stepped = [](float unit, float step) {
        ScanSample scan(4, 4, unit);
        for (std::size_t i = 0; i < 16; ++i)
            if (i % 4 >= 2) scan.points[3 * i + 2] = step * unit;
        return scan;
    };
    c->SetScanSkipVal(2);
    struct {
        const char* kind;
        float unit;
    } const rows[] = {{"pax", 1}, {"pcm", 1000}, {"xdt", 1000}};
    for (const auto& [kind, unit] : rows) {
        const std::size_t before = Count();
        Import(stepped(unit, 3), std::string("shallow.") + kind);
        ASSERT_EQ(Count(), before + 1) << kind;
        EXPECT_EQ(Last().GetVertexCount(), 4u) << kind;
        EXPECT_EQ(Last().GetTriangleCount(), 2u) << kind;
        Import(stepped(unit, 6), std::string("deep.") + kind);
        EXPECT_EQ(Count(), before + 1) << kind;
    }
}

// ---- which pixels

TEST_F(ImportScan, KeepsAPcmPixelOfClass239AndSkips240) {
    for (const auto& [pixelClass, vertices] : {std::pair{239, 9u}, {240, 8u}, {255, 8u}}) {
        ScanSample scan(3, 3, 1000);
        scan.classification[kMiddle] = static_cast<std::uint8_t>(pixelClass);
        Import(scan, "scan.pcm");
        EXPECT_EQ(Last().GetVertexCount(), vertices) << "class " << pixelClass;
    }
}

TEST_F(ImportScan, KeepsConfidenceAtTheLimit) {
    c->SetConfidenceFilter(0.5f);
    const float below = std::nextafter(0.5f, 0.0f);
    for (const std::string name : {"scan.pax", "scan.pcm"}) {
        for (const auto& [confidence, vertices] : {std::pair{0.5f, 9u}, {below, 8u}}) {
            ScanSample scan(3, 3, 1);
            scan.confidence[kMiddle] = confidence;
            Import(scan, name);
            EXPECT_EQ(Last().GetVertexCount(), vertices) << name << ", confidence " << confidence;
        }
    }
}

TEST_F(ImportScan, SkipsOnlyNegativeConfidenceByDefault) {
    for (const std::string name : {"scan.pax", "scan.pcm"}) {
        for (const auto& [confidence, vertices] : {std::pair{0.0f, 9u}, {-0.0f, 9u}, {-1e-30f, 8u}}) {
            ScanSample scan(3, 3, 1);
            scan.confidence[kMiddle] = confidence;
            Import(scan, name);
            EXPECT_EQ(Last().GetVertexCount(), vertices) << name << ", confidence " << confidence;
        }
    }
}

TEST_F(ImportScan, SkipsAnXdtPixelOfOneNegativeNumberThreeTimes) {
    struct {
        std::array<float, 3> point;
        std::size_t vertices;
    } const rows[] = {{{-1, -1, -1}, 8}, {{0, 0, 0}, 9}, {{-1, -1, -2}, 9}, {{-1000, -1000, -1000}, 8}, {{5, 5, 5}, 9}};
    c->SetConfidenceFilter(100);  // xdt has no confidence
    for (const auto& row : rows) {
        ScanSample scan(3, 3, 1000);
        scan.SetPoint(kMiddle, row.point);
        Import(scan, "scan.xdt");
        ASSERT_EQ(Count(), 1u);
        EXPECT_EQ(Last().GetVertexCount(), row.vertices) << row.point[0] << ", " << row.point[2];
        c->m_vpMeshes.clear();
    }
}

// ---- colours

TEST_F(ImportScan, KeepsAPcmFilesOwnColorsAndTurnsTheObjectWhite) {
    ScanSample scan(3, 3, 1000);
    scan.colors.assign(9, 0xFF808080);
    scan.colors[0] = 0xFF102030;
    Import(scan, "scan.pcm");
    EXPECT_EQ(c->GetObjectColor(0), 0xFFFFFF);
    EXPECT_TRUE(Last().m_bHasVertexColors);
    EXPECT_FALSE(Last().m_bGrayColors);
    EXPECT_EQ(Last().m_vVertices[0].color, 0xFF102030);
}

TEST_F(ImportScan, TintsGreyColors) {
    ScanSample scan(3, 3, 1000);
    scan.colors.assign(9, 0x00808080);
    scan.colors[3] = 0xFF202020;
    Import(scan, "scan.pcm");
    EXPECT_EQ(c->GetObjectColor(0), kColor);
    EXPECT_TRUE(Last().m_bHasVertexColors);
    EXPECT_TRUE(Last().m_bGrayColors);
}

TEST_F(ImportScan, DecidesGreynessByTheColorsOfSkippedPixelsToo) {
    ScanSample scan(3, 3, 1000);
    scan.colors.assign(9, 0xFF808080);
    scan.colors[kMiddle] = 0xFF808081;
    scan.classification[kMiddle] = 255;
    Import(scan, "scan.pcm");
    EXPECT_EQ(Last().GetVertexCount(), 8u);
    EXPECT_EQ(c->GetObjectColor(0), 0xFFFFFF);
    EXPECT_FALSE(Last().m_bGrayColors);
}

}  // namespace
