// The import on threads of the host. No OpenGL here: these tests also run under the thread sanitizer.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "base/ParallelTasks.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"

namespace {

constexpr char kNoMesh[] = "ImportMeasurementInternal(): CreateInternalMesh() returned nullptr\n";

/// A host that imports on threads.
class ParallelImport : public testing::Test {
protected:
    void Begin() { c->BeginParallelImport(&m_control, &m_entry); }
    bool Import(const ScanSample& scan, const wchar_t* name, std::int32_t index, std::uint32_t color = 0x332211) const {
        return m_entry(m_control, name, scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                       scan.trafo.data(), scan.classification.data(),
                       scan.colors.empty() ? nullptr : scan.colors.data(), color, index);
    }
    bool Import(const wchar_t* name, std::int32_t index) const { return Import(ScanSample(3, 3, 1000), name, index); }
    [[nodiscard]] std::wstring Names() const {
        std::wstring names;
        for (const auto& mesh : c->m_vpMeshes) names += mesh->m_sName + L" ";
        return names;
    }

    NoPictureControl c;
    void* m_control = nullptr;
    KV_ScenePane::ImportMeasurementEntry m_entry = nullptr;
};

// ---- order

TEST_F(ParallelImport, ReturnsTheControlAndTheEntry) {
    EXPECT_EQ(c->m_hImportMutex, nullptr);
    Begin();
    EXPECT_EQ(m_control, c.control.get());
    EXPECT_NE(m_entry, nullptr);
    EXPECT_NE(c->m_hImportMutex, nullptr);
    c->EndParallelImport();
    EXPECT_EQ(c->m_hImportMutex, nullptr);
    EXPECT_EQ(c->GetNumObjects(), 0);
}

TEST_F(ParallelImport, LeavesTheOtherCoresToTheThreadsOfTheHost) {
    EXPECT_EQ(c->ImportThreads(), AllowedCores());
    Begin();
    EXPECT_EQ(c->ImportThreads(), 1u);
    c->EndParallelImport();
    EXPECT_EQ(c->ImportThreads(), AllowedCores());
}

TEST_F(ParallelImport, PutsObjectsInTheOrderOfTheirIndices) {
    Begin();
    for (const auto& [name, index] : {std::pair{L"two", 2}, {L"zero", 0}, {L"one", 1}})
        ASSERT_TRUE(Import(name, index));
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"zero one two ");
}

TEST_F(ParallelImport, ClosesGapsBetweenIndices) {
    Begin();
    for (const auto& [name, index] : {std::pair{L"nine", 9}, {L"zero", 0}, {L"five", 5}})
        ASSERT_TRUE(Import(name, index));
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"zero five nine ");
}

TEST_F(ParallelImport, SortsIndicesAsSignedNumbers) {
    Begin();
    for (const auto& [name, index] :
         {std::pair{L"most", 2147483647}, {L"least", -2147483647 - 1}, {L"minus", -2}, {L"zero", 0}})
        ASSERT_TRUE(Import(name, index));
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"least minus zero most ");
}

TEST_F(ParallelImport, PutsEqualIndicesInTheOrderOfTheirAddresses) {
    Begin();
    ASSERT_TRUE(Import(L"last", 8));
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(Import(L"equal", 7));
    ASSERT_TRUE(Import(L"first", 6));
    std::vector<const Mesh*> addresses;
    for (const auto& staged : c->m_vPendingImports)
        if (staged.m_iIndex == 7) addresses.push_back(staged.m_pMesh.get());
    ASSERT_EQ(addresses.size(), 40u);
    // in falling order of their addresses: the order of arrival must not be the expected one by chance
    std::sort(c->m_vPendingImports.begin(), c->m_vPendingImports.end(),
              [](const auto& a, const auto& b) { return a.m_pMesh.get() > b.m_pMesh.get(); });
    c->EndParallelImport();
    std::sort(addresses.begin(), addresses.end());
    ASSERT_EQ(c->GetNumObjects(), 42);
    EXPECT_EQ(c->m_vpMeshes[0]->m_sName, L"first");
    for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(c->m_vpMeshes[i + 1].get(), addresses[i]) << "place " << i;
    EXPECT_EQ(c->m_vpMeshes[41]->m_sName, L"last");
}

TEST_F(ParallelImport, AppendsAfterTheExistingObjects) {
    c->AddMeshToScene(std::make_shared<Mesh>(L"before", false), 99);
    Begin();
    ASSERT_TRUE(Import(L"after", -5));
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"before after ");
}

TEST_F(ParallelImport, PutsTheControlsOwnImportsAheadOfTheHosts) {
    Begin();
    ASSERT_TRUE(Import(L"zero", 0));
    c->m_strScanPath = L"own";
    const ScanSample scan(3, 3, 1);
    c->ImportMeasurementFromMemory(3, 3, scan.points.data(), scan.confidence.data(), scan.trafo.data(), 0);
    EXPECT_EQ(c->GetNumObjects(), 0) << "it is staged";
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"own zero ");
}

TEST_F(ParallelImport, StagesMeshedMeasurementsAheadOfTheHosts) {
    Begin();
    ASSERT_TRUE(Import(L"zero", 0));
    const MeshBuffers mesh(false);
    c->ImportMeshedMeasurement(&mesh, L"meshed", 0);
    EXPECT_EQ(c->GetNumObjects(), 0);
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"meshed zero ");
}

TEST_F(ParallelImport, StagesFilesAheadOfTheHosts) {
    const ScratchFolder folder;
    ScanSample(3, 3, 1).Write(folder / "scan.pax");
    Begin();
    ASSERT_TRUE(Import(L"zero", 0));
    c->ImportScan(KV_ScenePane::WidePath(folder / "scan.pax").c_str(), 0);
    EXPECT_EQ(c->GetNumObjects(), 0);
    c->EndParallelImport();
    ASSERT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(c->m_vpMeshes[0]->m_sName, KV_ScenePane::WidePath(folder / "scan.pax"));
}

TEST_F(ParallelImport, AddsMeshesFromMemoryToTheSceneDirectly) {
    Begin();
    ASSERT_TRUE(Import(L"zero", 0));
    ASSERT_TRUE(Import(L"minus", -1));
    const float xyz[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::int32_t corners[] = {0, 1, 2};
    c->ImportMeshFromMemory(3, 1, xyz, corners);
    EXPECT_EQ(c->GetNumObjects(), 1);
    c->EndParallelImport();
    EXPECT_EQ(Names(), L" minus zero ");
}

// ---- states

TEST_F(ParallelImport, DoesNotCountObjectsBeforeItsEnd) {
    Begin();
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(Import(L"x", i));
        EXPECT_EQ(c->GetNumObjects(), 0);
    }
    c->EndParallelImport();
    EXPECT_EQ(c->GetNumObjects(), 5);
    EXPECT_TRUE(c->m_vPendingImports.empty());
}

TEST_F(ParallelImport, CanEndWithNothingStagedOrWithoutAStart) {
    c->AddMeshToScene(std::make_shared<Mesh>(L"there", false), -1);
    const auto before = c->m_vpMeshes;
    c->EndParallelImport();
    EXPECT_EQ(c->m_vpMeshes, before);
    Begin();
    c->EndParallelImport();
    c->EndParallelImport();
    EXPECT_EQ(c->m_vpMeshes, before);
    EXPECT_EQ(c->m_hImportMutex, nullptr);
}

TEST_F(ParallelImport, CanBeStartedTwice) {
    Begin();
    ASSERT_TRUE(Import(L"two", 2));
    Begin();
    EXPECT_EQ(m_control, c.control.get());
    ASSERT_TRUE(Import(L"one", 1));
    EXPECT_EQ(c->GetNumObjects(), 0);
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"one two ");
    EXPECT_EQ(c->m_hImportMutex, nullptr);
}

TEST_F(ParallelImport, CanBeRepeated) {
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        Begin();
        ASSERT_TRUE(Import(name, 0));
        c->EndParallelImport();
    }
    EXPECT_EQ(Names(), L"a b c ");
}

TEST_F(ParallelImport, AddsToTheSceneDirectlyAfterItsEnd) {
    Begin();
    c->EndParallelImport();
    ASSERT_TRUE(Import(L"nine", 9));
    ASSERT_TRUE(Import(L"one", 1));
    EXPECT_EQ(Names(), L"nine one ") << "the index is not used outside a parallel import";
}

TEST_F(ParallelImport, RequestsNoRepaint) {
    Begin();
    ASSERT_TRUE(Import(L"x", 0));
    c->EndParallelImport();
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

TEST(ParallelImportOfADestroyedControl, FreesWhatWasStaged) {
    std::weak_ptr<Mesh> staged;
    {
        NoPictureControl c;
        void* control = nullptr;
        KV_ScenePane::ImportMeasurementEntry entry = nullptr;
        c->BeginParallelImport(&control, &entry);
        const ScanSample scan(3, 3, 1000);
        ASSERT_TRUE(entry(control, L"x", 3, 3, scan.points.data(), scan.confidence.data(), scan.trafo.data(),
                          scan.classification.data(), nullptr, 0, 0));
        staged = c->m_vPendingImports.at(0).m_pMesh;
        EXPECT_FALSE(staged.expired());
    }
    EXPECT_TRUE(staged.expired());
}

// ---- one grid

TEST_F(ParallelImport, ScalesPointsAndTranslationToThousandths) {
    ScanSample scan(3, 3, 1000);
    scan.trafo = {0, -1, 0, 5000, 1, 0, 0, -6000, 0, 0, 1, 7000, 0, 0, 0, 1};
    const auto pointsBefore = scan.points;
    const auto trafoBefore = scan.trafo;
    Begin();
    ASSERT_TRUE(Import(scan, L"turned", 0));
    c->EndParallelImport();
    const Mesh& mesh = *c->m_vpMeshes[0];
    const float expected[] = {3, 5, -6, -4, 7 - 0.01f, 7 + 0.01f};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(mesh.m_fBoundingBox[i], expected[i], 1e-5) << "bound " << i;
    EXPECT_FLOAT_EQ(static_cast<float>(mesh.m_Trafo.m_dTranslation[1]), -6);
    EXPECT_EQ(mesh.GetColorRef(), 0x332211u);
    EXPECT_EQ(scan.points, pointsBefore) << "the host's arrays do not change";
    EXPECT_EQ(scan.trafo, trafoBefore);
}

TEST_F(ParallelImport, SkipsByClassAndByConfidence) {
    c->SetConfidenceFilter(0.5f);
    Begin();
    struct {
        int pixelClass;
        float confidence;
        std::size_t vertices;
    } const rows[] = {{239, 0.5f, 9}, {240, 0.5f, 8}, {255, 1, 8}, {0, std::nextafter(0.5f, 0.0f), 8}, {0, 1, 9}};
    for (int i = 0; const auto& row : rows) {
        ScanSample scan(3, 3, 1000);
        scan.classification[kMiddle] = static_cast<std::uint8_t>(row.pixelClass);
        scan.confidence[kMiddle] = row.confidence;
        ASSERT_TRUE(Import(scan, L"x", i++));
    }
    c->EndParallelImport();
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(c->m_vpMeshes[i]->GetVertexCount(), rows[i].vertices) << "row " << i;
}

TEST_F(ParallelImport, UsesColorsLikeAFileImport) {
    ScanSample scan(3, 3, 1000);
    scan.colors.assign(9, 0xFF808080);
    Begin();
    ASSERT_TRUE(Import(scan, L"grey", 0));
    scan.colors[kMiddle] = 0xFF808070;
    ASSERT_TRUE(Import(scan, L"coloured", 1));
    c->EndParallelImport();
    EXPECT_EQ(c->GetObjectColor(0), 0x332211);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_bGrayColors);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_bHasVertexColors);
    EXPECT_EQ(c->GetObjectColor(1), 0xFFFFFF);
    EXPECT_FALSE(c->m_vpMeshes[1]->m_bGrayColors);
}

TEST_F(ParallelImport, ReturnsFalseWithAReasonForAGridWithoutAMesh) {
    ScanSample masked(3, 3, 1000);
    masked.classification.assign(9, 240);
    Begin();
    ASSERT_TRUE(Import(L"zero", 0));
    EXPECT_FALSE(Import(masked, L"one", 1));
    EXPECT_EQ(c.debugOutput.Text(),
              std::string("ImportMeasurementInternal(): one: all pixels are classified as invalid\n") + kNoMesh);
    ASSERT_TRUE(Import(L"two", 2));
    c->EndParallelImport();
    EXPECT_EQ(Names(), L"zero two ");
}

/// One line, however long the list of settings of the test is.
void ExpectOneReason(const std::string& text, const std::string& file, const std::string& reason) {
    EXPECT_EQ(text, "ImportMeasurementInternal(): " + file + ": " + reason + "\n" + kNoMesh);
}

TEST_F(ParallelImport, NamesTheConfidenceLimitThatNoPixelPasses) {
    Begin();
    for (const auto& [limit, text] : {std::pair{5.0f, "5"}, {1.5f, "1.5"}, {1234567.0f, "1234567"}}) {
        c->SetConfidenceFilter(limit);
        c.debugOutput.Clear();
        EXPECT_FALSE(Import(L"/d/a.pcm", 0));
        ExpectOneReason(c.debugOutput.Text(), "/d/a.pcm", std::string("no pixel passes the confidence limit ") + text);
    }
    // Some pixels fail by their class, the others by their confidence.
    ScanSample scan(3, 3, 1000);
    scan.classification[kMiddle] = 250;
    c.debugOutput.Clear();
    EXPECT_FALSE(Import(scan, L"a", 0));
    ExpectOneReason(c.debugOutput.Text(), "a", "no pixel passes the confidence limit 1234567");
}

TEST_F(ParallelImport, TakesANullNameForAnEmptyOne) {
    ScanSample masked(3, 3, 1000);
    masked.classification.assign(9, 240);
    Begin();
    std::thread([&] {
        EXPECT_TRUE(Import(nullptr, 0));
        EXPECT_FALSE(Import(masked, nullptr, 1));
    }).join();
    c->EndParallelImport();
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->m_sName, L"");
    ExpectOneReason(c.debugOutput.Text(), "(no file)", "all pixels are classified as invalid");
}

TEST_F(ParallelImport, RefusesAGridWithoutItsArrays) {
    const ScanSample scan(3, 3, 1000);
    const auto import = [&](const float* points, const float* confidence, const float* trafo,
                            const std::uint8_t* classes) {
        return m_entry(m_control, L"a", 3, 3, points, confidence, trafo, classes, nullptr, 0, 0);
    };
    Begin();
    EXPECT_FALSE(import(nullptr, scan.confidence.data(), scan.trafo.data(), scan.classification.data()));
    ExpectOneReason(c.debugOutput.Take(), "a", "there is no array of points");
    EXPECT_FALSE(import(scan.points.data(), nullptr, scan.trafo.data(), scan.classification.data()));
    ExpectOneReason(c.debugOutput.Take(), "a", "there is no array of confidence values");
    EXPECT_TRUE(import(scan.points.data(), scan.confidence.data(), nullptr, nullptr)) << "neither is needed";
    EXPECT_EQ(c.debugOutput.Take(), "");
    c->EndParallelImport();
    EXPECT_EQ(c->GetNumObjects(), 1);
}

TEST_F(ParallelImport, CountsTheCoordinatesOfValidPixelsThatAreNotFinite) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    ScanSample scan(3, 3, 1000);
    scan.SetPoint(kMiddle, {NAN, kInf, 0});
    scan.SetPoint(0, {NAN, NAN, NAN});
    scan.classification[0] = 240;
    Begin();
    EXPECT_TRUE(Import(scan, L"/d/a.pcm", 0));
    EXPECT_TRUE(Import(scan, nullptr, 1));
    c->EndParallelImport();
    EXPECT_EQ(c.debugOutput.Text(),
              "/d/a.pcm: 2 coordinates are not finite\n(no file): 2 coordinates are not finite\n");
    EXPECT_EQ(c->GetNumObjects(), 2);
}

TEST_F(ParallelImport, MakesAnEmptyObjectWhereTheseAreAllowed) {
    ScanSample masked(3, 3, 1000);
    masked.classification.assign(9, 240);
    c->SetAllowEmptyObjects(-1);
    Begin();
    EXPECT_TRUE(Import(masked, L"empty", 0));
    c->EndParallelImport();
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 0u);
    EXPECT_EQ(c->m_vpMeshes[0]->m_sName, L"empty");
}

TEST_F(ParallelImport, RefusesImpossibleSizesAndSkipValuesWithAReason) {
    const ScanSample scan(3, 3, 1000);
    Begin();
    for (const auto& [width, height] : {std::pair{-1, 3}, {3, 0}, {0, 0}, {32768, 2}, {2147483647, 2147483647}}) {
        ScanSample bad = scan;
        bad.width = width;
        bad.height = height;
        c.debugOutput.Clear();
        EXPECT_FALSE(Import(bad, L"x", 0)) << width << " x " << height;
        EXPECT_THAT(c.debugOutput.Text(), testing::EndsWith("\n"));
    }
    c->SetScanSkipVal(0);
    c.debugOutput.Clear();
    EXPECT_FALSE(Import(scan, L"x", 0));
    EXPECT_THAT(c.debugOutput.Text(), testing::HasSubstr("skip"));
    c->EndParallelImport();
    EXPECT_EQ(c->GetNumObjects(), 0);
}

// ---- many threads

/// A wavy grid, different for every index; every seventh has no valid pixel, every third has colours.
ScanSample WavyScan(int index) {
    ScanSample scan(4 + index % 9, 3 + index % 5, 1000);
    for (std::size_t i = 0; i < scan.confidence.size(); ++i) {
        scan.points[3 * i + 2] = 300 * std::sin(static_cast<float>(i) + static_cast<float>(index));
        if ((i * 7 + static_cast<std::size_t>(index)) % 11 == 0) scan.classification[i] = 250;
        if (index % 3 == 0) scan.colors.push_back(0xFF000000u + static_cast<std::uint32_t>(index * 1000) + (i & 0xFF));
    }
    scan.trafo[3] = static_cast<float>(index) * 10;
    if (index % 7 == 0) scan.classification.assign(scan.classification.size(), 255);
    return scan;
}

void ExpectSame(const Mesh& got, const Mesh& expected) {
    EXPECT_EQ(got.m_sName, expected.m_sName);
    EXPECT_EQ(got.GetColorRef(), expected.GetColorRef());
    EXPECT_EQ(got.m_bHasVertexColors, expected.m_bHasVertexColors);
    EXPECT_EQ(got.m_bGrayColors, expected.m_bGrayColors);
    EXPECT_EQ(got.m_Trafo.m_dTranslation[0], expected.m_Trafo.m_dTranslation[0]);
    ASSERT_EQ(got.GetVertexCount(), expected.GetVertexCount());
    ASSERT_EQ(got.GetTriangleCount(), expected.GetTriangleCount());
    EXPECT_EQ(std::memcmp(got.m_vVertices.data(), expected.m_vVertices.data(), got.GetVertexCount() * sizeof(Vertex)),
              0);
    EXPECT_EQ(
        std::memcmp(got.m_vTriangles.data(), expected.m_vTriangles.data(), got.GetTriangleCount() * sizeof(Triangle)),
        0);
}

class ManyThreads : public ParallelImport {
protected:
    static constexpr int kThreads = 8, kGrids = 320;

    /// Imports all grids, distributed over the threads in turn; returns how many gave an object.
    int ImportAll(int threads) {
        std::atomic<int> made = 0;
        Begin();
        std::vector<std::thread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([this, t, threads, &made] {
                for (int i = kGrids - 1 - t; i >= 0; i -= threads)
                    made += Import(WavyScan(i), (L"grid " + std::to_wstring(i)).c_str(), i) ? 1 : 0;
            });
        for (std::thread& worker : workers) worker.join();
        c->EndParallelImport();
        return made;
    }
};

TEST_F(ManyThreads, GiveTheSameSceneAsOneThread) {
    constexpr int kWithoutAMesh = (kGrids + 6) / 7;  // every seventh
    EXPECT_EQ(ImportAll(kThreads), kGrids - kWithoutAMesh);
    const auto parallel = std::move(c->m_vpMeshes);
    c->m_vpMeshes.clear();
    std::istringstream lines(c.debugOutput.Text());
    std::map<std::string, int> counts;
    for (std::string line; std::getline(lines, line);) ++counts[line + '\n'];
    EXPECT_EQ(counts[kNoMesh], kWithoutAMesh) << "whole lines from all threads";
    for (int i = 0; i < kGrids; i += 7)
        EXPECT_EQ(counts["ImportMeasurementInternal(): grid " + std::to_string(i) +
                         ": all pixels are classified as invalid\n"],
                  1);
    EXPECT_EQ(counts.size(), kWithoutAMesh + 1u);
    EXPECT_EQ(ImportAll(1), kGrids - kWithoutAMesh);
    ASSERT_EQ(parallel.size(), c->m_vpMeshes.size());
    int grid = 0;
    for (std::size_t i = 0; i < parallel.size(); ++i, ++grid) {
        if (grid % 7 == 0) ++grid;
        EXPECT_EQ(parallel[i]->m_sName, L"grid " + std::to_wstring(grid));
        ExpectSame(*parallel[i], *c->m_vpMeshes[i]);
    }
}

TEST_F(ManyThreads, CanImportWhileTheHostsThreadReadsTheScene) {
    Begin();
    std::vector<std::thread> workers;
    for (int t = 0; t < kThreads; ++t)
        workers.emplace_back([this, t] {
            for (int i = 0; i < 20; ++i) EXPECT_TRUE(Import(L"x", 20 * t + i));
        });
    const float xyz[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::int32_t corners[] = {0, 1, 2};
    for (std::int16_t i = 1; i <= 50; ++i) {
        c->ImportMeshFromMemory(3, 1, xyz, corners);
        EXPECT_EQ(c->GetNumObjects(), i);
        EXPECT_EQ(c->GetObjectColor(0), 0xFFFFFF);
    }
    for (std::thread& worker : workers) worker.join();
    c->EndParallelImport();
    EXPECT_EQ(c->GetNumObjects(), 50 + 20 * kThreads);
    EXPECT_EQ(c->m_vpMeshes[49]->m_sName, L"");
    EXPECT_EQ(c->m_vpMeshes[50]->m_sName, L"x");
}

TEST(ParallelImportOfTwoControls, DoNotMix) {
    NoPictureControl first, second;
    void* controls[2] = {};
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    first->BeginParallelImport(&controls[0], &entry);
    second->BeginParallelImport(&controls[1], &entry);
    std::vector<std::thread> workers;
    for (int t = 0; t < 8; ++t)
        workers.emplace_back([&, t] {
            const ScanSample scan(3 + t % 2, 3, 1000);
            for (int i = 0; i < 10; ++i)
                EXPECT_TRUE(entry(controls[t % 2], L"", scan.width, 3, scan.points.data(), scan.confidence.data(),
                                  scan.trafo.data(), scan.classification.data(), nullptr, 0, i));
        });
    for (std::thread& worker : workers) worker.join();
    first->EndParallelImport();
    second->EndParallelImport();
    ASSERT_EQ(first->GetNumObjects(), 40);
    ASSERT_EQ(second->GetNumObjects(), 40);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(first->m_vpMeshes[i]->GetVertexCount(), 9u);
        EXPECT_EQ(second->m_vpMeshes[i]->GetVertexCount(), 12u);
    }
}

}  // namespace
