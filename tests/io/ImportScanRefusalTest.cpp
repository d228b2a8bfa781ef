// Measurement files that add nothing or an empty object: masked grids, missing, damaged and short files.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>

#include "io/ImportScanFixture.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;

// ---- what adds nothing, and what adds an empty object

TEST_F(ImportScan, ReportsThatAPcmGaveNoMesh) {
    ScanSample scan(3, 3, 1000);
    scan.classification.assign(9, 240);
    Import(scan, "masked.pcm");
    EXPECT_EQ(Count(), 0u);
    EXPECT_EQ(c.debugOutput.Text(),
              "ImportScan(): " + (folder / "masked.pcm") + ": all pixels are classified as invalid\n" + kNoMesh);
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

// With the zeros in its place all points would be at the origin.
TEST_F(ImportScan, RefusesAPaxThatEndsBeforeTheEndOfItsTransform) {
    const ScanSample scan(4, 4, 1);
    const ScanBytes whole = scan.Pax();
    c->SetAllowEmptyObjects(-1);
    for (const std::size_t size : {whole.size() - 1, whole.size() - 64, std::size_t{4 + 16 * 12}}) {
        Import(Cut(whole, size), "short.pax");
        EXPECT_EQ(Count(), 0u) << size;
        EXPECT_EQ(c.debugOutput.Take(),
                  "ImportPax(): " + (folder / "short.pax") + ": ends before the end of its transform\n");
    }
    Import(whole, "whole.pax");
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(ImportScan, RefusesAFileThatHoldsLessThanAQuarterOfItsGrid) {
    const ScanSample scan(4, 4, 1000);
    Import(Cut(scan.Xdt(), 4 + 4 * 12), "quarter.xdt");
    EXPECT_EQ(Count(), 1u);
    EXPECT_THAT(c.debugOutput.Take(), testing::EndsWith(": 4 of 16 pixels are in the file\n"));
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
