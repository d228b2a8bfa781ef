// Import of measurement files into the scene of a whole control.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>
#include <string>

#include "io/ScanSample.h"
#include "support/ControlFixture.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kNoMesh[] = "SetScanData(): CreateInternalMesh() returned nullptr\n";
constexpr std::int32_t kColor = 0x332211;

class ImportScan : public testing::Test {
protected:
    /// Writes the file and imports it.
    void Import(const ScanSample& scan, const std::string& name) {
        scan.Write(folder / name);
        Import(name);
    }
    void Import(const ScanBytes& bytes, const std::string& name) {
        WriteBytes(folder / name, bytes);
        Import(name);
    }
    void Import(const std::string& name) { c->ImportScan(WidePath(folder / name).c_str(), kColor); }
    [[nodiscard]] const Mesh& Last() const { return *c->m_vpMeshes.back(); }
    [[nodiscard]] std::size_t Count() const { return c->m_vpMeshes.size(); }

    ScratchFolder folder;
    NoPictureControl c;
};

void ExpectBox(const Mesh& mesh, std::array<float, 6> box) {
    for (std::size_t i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(mesh.m_fBoundingBox[i], box[i]) << "bound " << i;
}

// ---- the way of a good file

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

// ---- what adds nothing, and what adds an empty object

TEST_F(ImportScan, ReportsThatAPcmGaveNoMesh) {
    ScanSample scan(3, 3, 1000);
    scan.classification.assign(9, 240);
    Import(scan, "masked.pcm");
    EXPECT_EQ(Count(), 0u);
    EXPECT_EQ(c.debugOutput.Text(), kNoMesh);
}

TEST_F(ImportScan, ReportsThatAMissingOrDamagedPcmGaveNoMesh) {
    Import("missing.pcm");
    EXPECT_THAT(c.debugOutput.Text(), HasSubstr(kNoMesh));
    ScanSample(3, 3, 1000).Write(folder / "good.pcm");
    ScanBytes bytes = ReadBytes(folder / "good.pcm");
    bytes[bytes.size() / 2] ^= std::byte{1};
    c.debugOutput.Clear();
    Import(bytes, "damaged.pcm");
    EXPECT_THAT(c.debugOutput.Text(), HasSubstr(kNoMesh));
    EXPECT_EQ(Count(), 0u);
}

/// The reason of the pcm reader for refusing a file.
std::string PcmReason(const std::string& path) {
    try {
        (void)MsrStorage::ReadPcmFile(path);
    } catch (const MsrStorage::PcmError& error) {
        return error.Explanation();
    }
    return "the file was accepted";
}

TEST_F(ImportScan, GivesEachDamagedPcmItsOwnReason) {
    ScanSample(40, 30, 1000).Write(folder / "good.pcm");
    const ScanBytes good = ReadBytes(folder / "good.pcm");
    ASSERT_GT(good.size(), 2000u);
    ScanBytes changed = good;
    changed[good.size() / 2] ^= std::byte{1};
    const std::pair<const char*, ScanBytes> files[] = {
        {"cut at 100.pcm", {good.begin(), good.begin() + 100}},
        {"cut at 2000.pcm", {good.begin(), good.begin() + 2000}},
        {"changed.pcm", changed},
    };
    std::set<std::string> reasons;
    for (const auto& [name, bytes] : files) {
        c.debugOutput.Clear();
        Import(bytes, name);
        const std::string reason = PcmReason(folder / name);
        EXPECT_EQ(c.debugOutput.Text(), "ImportScan(): " + (folder / name) + ": " + reason + "\n" + kNoMesh);
        reasons.insert(reason);
    }
    EXPECT_EQ(reasons.size(), std::size(files)) << "all reasons are different";
    EXPECT_EQ(Count(), 0u);
}

TEST_F(ImportScan, AddsAnEmptyObjectForAFailedPcmWhereTheseAreAllowed) {
    c->SetAllowEmptyObjects(-1);
    Import("missing.pcm");
    ASSERT_EQ(Count(), 1u);
    EXPECT_EQ(Last().m_sName, WidePath(folder / "missing.pcm"));
    EXPECT_EQ(Last().GetVertexCount(), 0u);
    EXPECT_EQ(Last().GetTriangleCount(), 0u);
    EXPECT_EQ(c->GetObjectColor(0), kColor);
    for (const double element : Last().m_Trafo.m_dTranslation) EXPECT_EQ(element, 0);
    EXPECT_EQ(Last().m_Trafo.m_dQuat[0], 1);
    ExpectBox(Last(), {0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f});
}

TEST_F(ImportScan, AddsNothingForAMissingPaxOrXdtEvenWhereEmptyObjectsAreAllowed) {
    c->SetAllowEmptyObjects(-1);
    Import("missing.pax");
    Import("missing.xdt");
    EXPECT_EQ(Count(), 0u);
}

TEST_F(ImportScan, AddsAnEmptyObjectForAGridWithoutValidPixelsWhereTheseAreAllowed) {
    c->SetAllowEmptyObjects(1);
    c->SetConfidenceFilter(2);
    Import(ScanSample(3, 3, 1), "masked.pax");
    Import(ScanSample(3, 3, 1), "masked.pcm");
    ASSERT_EQ(Count(), 2u);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 0u);
    EXPECT_EQ(c->m_vpMeshes[1]->GetVertexCount(), 0u);
}

TEST_F(ImportScan, AddsAnEmptyObjectForAGridWithoutPixelsWhereTheseAreAllowed) {
    c->SetAllowEmptyObjects(-1);
    ScanSample scan(3, 3, 1);
    scan.height = 0;
    for (const std::string name : {"none.pax", "none.xdt"}) {
        Import(scan, name);
        ASSERT_FALSE(c->m_vpMeshes.empty()) << name;
        EXPECT_EQ(Last().m_sName, WidePath(folder / name));
        EXPECT_EQ(Last().GetVertexCount(), 0u);
    }
    EXPECT_EQ(Count(), 2u);
}

struct BadSize {
    const char* name;
    int width, height;
};
void PrintTo(const BadSize& row, std::ostream* out) { *out << row.name; }

class ImportScanRefusesTheSize : public ImportScan, public testing::WithParamInterface<BadSize> {};

TEST_P(ImportScanRefusesTheSize, AndSaysSo) {
    ScanSample scan(3, 3, 1);
    scan.width = GetParam().width;
    scan.height = GetParam().height;
    for (const std::string name : {"scan.pax", "scan.xdt"}) {
        c.debugOutput.Clear();
        Import(scan, name);
        EXPECT_EQ(Count(), 0u) << name;
        EXPECT_THAT(c.debugOutput.Text(), testing::EndsWith("\n")) << name;
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, ImportScanRefusesTheSize,
                         testing::Values(BadSize{"ZeroWidth", 0, 3}, BadSize{"ZeroHeight", 3, 0},
                                         BadSize{"ZeroByZero", 0, 0}, BadSize{"NegativeWidth", -1, 3},
                                         BadSize{"NegativeHeight", 3, -3}, BadSize{"BothNegative", -3, -3},
                                         BadSize{"Smallest", -32768, -32768},
                                         BadSize{"MuchMoreThanTheFile", 3000, 3000}),
                         [](const auto& row) { return row.param.name; });

// ---- short files

ScanBytes Cut(ScanBytes bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

TEST_F(ImportScan, ReadsTheMissingPixelsOfAShortXdtAsZero) {
    const ScanSample scan(4, 4, 1000);
    Import(Cut(scan.Xdt(), 4 + 8 * 12), "half.xdt");  // two rows of four
    ASSERT_EQ(Count(), 1u);
    ASSERT_EQ(Last().GetVertexCount(), 16u);
    ExpectBox(Last(), {0, 3, 0, 1, -0.01f, 0.01f});
    for (std::size_t row = 2; row < 4; ++row)
        EXPECT_EQ(std::count_if(Last().m_vVertices.begin(), Last().m_vVertices.end(),
                                [row](const Vertex& v) { return v.gridIndex >> 16 == row && v.x == 0 && v.y == 0; }),
                  4);
}

TEST_F(ImportScan, ReadsTheMissingConfidenceOfAShortPaxAsZero) {
    const ScanSample scan(4, 4, 1);
    const ScanBytes half = Cut(scan.Pax(), 4 + 16 * 12);  // all points, nothing after them
    Import(half, "half.pax");
    ASSERT_EQ(Count(), 1u) << "zero is not below the limit of zero";
    EXPECT_EQ(Last().GetVertexCount(), 16u);
    c->SetConfidenceFilter(0.001f);
    c.debugOutput.Clear();
    Import(half, "half.pax");
    EXPECT_EQ(Count(), 1u) << "every pixel is skipped now";
    EXPECT_EQ(c.debugOutput.Text(), kNoMesh);
}

TEST_F(ImportScan, RefusesAFileThatHoldsLessThanAQuarterOfItsGrid) {
    const ScanSample scan(4, 4, 1000);
    Import(Cut(scan.Xdt(), 4 + 4 * 12), "quarter.xdt");
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
    c->SetAllowEmptyObjects(-1);
    Import(Cut(scan.Xdt(), 4 + 4 * 12 - 1), "less.xdt");
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(c.debugOutput.Text(), testing::EndsWith("\n"));
    c.debugOutput.Clear();
    Import(Cut(scan.Pax(), 4 + 2 * 12), "less.pax");
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(c.debugOutput.Text(), testing::EndsWith("\n"));
}

}  // namespace
