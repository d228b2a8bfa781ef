// SaveCuttingToPcms() and PlanCutSave() of a whole control: which plane is written, what the host sees, and objects
// that were moved.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "cut/CutScan.h"
#include "io/ImportScanFixture.h"

using KV_ScenePane::CutFileNotRead;
using KV_ScenePane::CutNotFromPcm;
using KV_ScenePane::CutNothingToSave;
using KV_ScenePane::CutToBeWritten;
using KV_ScenePane::CutWritten;
namespace fs = std::filesystem;

namespace {

constexpr int kWidth = 6, kHeight = 4;

bool IsLeft(int x, int) { return x == 0; }
bool IsBottom(int, int y) { return y == kHeight - 1; }

class CutSave : public ImportScan {
protected:
    CutSave() {
        Import(scan, "scan.pcm");
        c->m_clipPlane.SetNormal({0, 1, 0});  // removes the last row, whose world y is -0.5
        c->m_clipPlane.SetCenter({3, 0, 5});
        c.debugOutput.Clear();
        c.window->Forget();
    }
    [[nodiscard]] std::vector<std::uint8_t> After(const PixelChoice& isCut) const {
        return ClassesAfterCut(scan, isCut);
    }
    [[nodiscard]] const KV_ScenePane::CutSaveEntry& Result(std::size_t i = 0) const {
        return c->m_vCutSaveResults.at(i);
    }

    ScanSample scan = FlatCutScan(kWidth, kHeight);
    std::string file = folder / "scan.pcm";
    std::shared_ptr<const ACAD::CutMask> left = MaskOf(scan, IsLeft);
};

/// Sets the transform that a host reads: 16 floats.
void ReadAndSetTrafo(CKV_ScenePaneCtrl& control, std::int16_t idx) {
    std::array<float, 16> m{};
    ASSERT_EQ(control.GetTrafoOfScan(idx, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8], &m[9], &m[10],
                                     &m[11], &m[12], &m[13], &m[14], &m[15]),
              0);
    ASSERT_EQ(control.SetTrafoOfScan(idx, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11],
                                     m[12], m[13], m[14], m[15]),
              0);
}

void MoveTo(CKV_ScenePaneCtrl& control, std::int16_t idx, float x) {
    ASSERT_EQ(control.SetTrafoOfScan(idx, 1, 0, 0, x, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1), 0);
}

}  // namespace

TEST_F(CutSave, ReturnsZeroAndTouchesNoFileWithoutCutsAndPlane) {
    const auto before = fs::last_write_time(file);
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(fs::last_write_time(file), before);
    ASSERT_EQ(c->m_vCutSaveResults.size(), 1u);
    EXPECT_EQ(Result().outcome, CutNothingToSave);
    EXPECT_EQ(Result().object, 0);
    EXPECT_EQ(c.debugOutput.Text(), "");
}

TEST_F(CutSave, ReturnsZeroForAnEmptyScene) {
    c->ClearData();
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_TRUE(c->m_vCutSaveResults.empty());
}

TEST_F(CutSave, ReturnsOneAndNotMinusOneAfterAWrite) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), After(IsLeft));
    EXPECT_EQ(Result().outcome, CutWritten);
    EXPECT_EQ(Result().numberOfCuts, 1);
    EXPECT_EQ(Result().file, KV_ScenePane::WidePath(file));
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
    EXPECT_TRUE(c.events.events.empty());
}

// What is imported again from the file lacks what was cut.
TEST_F(CutSave, IsSeenByTheNextImport) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    ASSERT_EQ(c->SaveCuttingToPcms(), 1);
    Import("scan.pcm");
    EXPECT_EQ(Last().GetVertexCount(), std::size_t{(kWidth - 1) * kHeight});
}

TEST_F(CutSave, WritesAnActivePlaneIntoEveryPcmObject) {
    Import(scan, "hidden.pcm");
    c->SetObjectVisibility(1, 0);
    Import(scan, "grid.xdt");
    c->m_bClipPlaneActive = 1;
    c->m_bClipPlaneVisible = 0;  // the plane is hidden and clips
    const auto plan = c->PlanCutSave();
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    for (const char* name : {"scan.pcm", "hidden.pcm"}) EXPECT_EQ(ClassesIn(folder / name), After(IsBottom)) << name;
    ASSERT_EQ(c->m_vCutSaveResults.size(), 3u);
    ASSERT_EQ(plan.size(), 3u);
    for (const std::size_t i : {0, 1}) {
        EXPECT_EQ(plan[i].outcome, CutToBeWritten);
        EXPECT_EQ(Result(i).outcome, CutWritten);
        EXPECT_EQ(Result(i).numberOfCuts, 0);
    }
    EXPECT_EQ(plan[2].outcome, CutNotFromPcm);
    EXPECT_EQ(Result(2).outcome, CutNotFromPcm);
    // a x + b y + c z + d with the normal (0, 1, 0) and the centre (3, 0, 5).
    ASSERT_TRUE(c->m_vpMeshes[0]->m_optCutView.has_value());
    EXPECT_THAT(*c->m_vpMeshes[0]->m_optCutView,
                testing::ElementsAre(testing::FloatNear(0, 1e-6f), 1.0f, testing::FloatNear(0, 1e-6f),
                                     testing::FloatNear(0, 1e-5f)));
}

TEST_F(CutSave, WritesAnUnchangedPlaneOnce) {
    c->m_bClipPlaneActive = 1;
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    // The same plane with another centre.
    c->m_clipPlane.SetCenter({-20, 0, 1});
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(Result().outcome, CutNothingToSave);
    c->m_clipPlane.SetCenter({3, 1, 5});
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), After([](int, int y) { return y >= kHeight - 2; }));
}

TEST_F(CutSave, WritesNoPlaneThatIsShownAndDoesNotClip) {
    c->m_bClipPlaneVisible = 1;
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(ClassesIn(file), scan.classification);
}

TEST_F(CutSave, WritesAPlaneWithoutANumberAndRemovesNothing) {
    c->m_bClipPlaneActive = 1;
    c->m_clipPlane.SetCenter({std::nan(""), 0, 0});
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), scan.classification);
}

TEST_F(CutSave, AppliesTheConfidenceFilter) {
    scan.confidence[5] = 0.25f;
    Import(scan, "other.pcm");
    c->m_vpMeshes[1]->m_vpCutMasks = {left};
    c->SetConfidenceFilter(0.5f);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(folder / "other.pcm"), After([](int x, int y) { return x == 0 || (x == 5 && y == 0); }));
}

TEST_F(CutSave, FindsEveryPixelOfAThinnedScan) {
    c->SetScanSkipVal(2);
    Import("scan.pcm");
    c->m_vpMeshes[1]->m_vpCutMasks = {left};
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), After(IsLeft));
}

TEST_F(CutSave, ListsAnObjectWhoseFileIsGoneAndWritesALine) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    fs::remove(file);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(Result().outcome, CutFileNotRead);
    EXPECT_EQ(Result().reason, "cannot be opened: No such file or directory");
    EXPECT_EQ(c.debugOutput.Text(), "SaveCuttingToPcms(): " + file + ": " + Result().reason + "\n");
    EXPECT_TRUE(c->m_vpMeshes[0]->m_vpCutMasks.empty());
    // The next save has nothing to write; the entries of the last one are replaced.
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(Result().outcome, CutNothingToSave);
}

TEST_F(CutSave, ListsAnObjectWhoseFolderIsGone) {
    fs::create_directory(folder / "sub");
    Import(scan, "sub/b.pcm");
    c->m_vpMeshes[0]->m_vpCutMasks = c->m_vpMeshes[1]->m_vpCutMasks = {left};
    fs::remove_all(folder / "sub");
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(Result(0).outcome, CutWritten);
    EXPECT_EQ(Result(1).outcome, CutFileNotRead);
    EXPECT_EQ(ClassesIn(file), After(IsLeft));
}

TEST_F(CutSave, WritesTheFileThatTookThePlaceOfTheImportedOne) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    // Three rows more above: the last rows are in the rows of the window. The row above the window counts as its first
    // one, since -0.5 is truncated to 0.
    FlatCutScan(kWidth, kHeight + 3).WritePcm(file);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    const std::vector<std::uint8_t> classes = ClassesIn(file);
    EXPECT_EQ(classes.size(), std::size_t{kWidth * (kHeight + 3)});
    for (std::size_t i = 0; i < classes.size(); ++i)
        EXPECT_EQ(classes[i], i % kWidth == 0 && i / kWidth >= 2 ? 250 : 0) << i;
}

// The sink may call any method; it runs after the save.
TEST_F(CutSave, LetsTheSinkOfTheDebuggerOutputEmptyTheScene) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    Import(scan, "second.pcm");
    c->m_vpMeshes[1]->m_vpCutMasks = {left};
    fs::remove(file);
    fs::remove(folder / "second.pcm");
    int lines = 0;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        if (++lines > 1) return;
        EXPECT_EQ(c->m_vCutSaveResults.size(), 2u);
        c->ClearData();
        EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    });
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(lines, 2);
    EXPECT_TRUE(c->m_vpMeshes.empty());
}

TEST_F(CutSave, PassesOnWhatTheSinkThrowsAndEndsTheWaitCursor) {
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    fs::remove(file);
    KV_ScenePane::SetDebugOutputSink([](std::string_view) { throw std::runtime_error("sink"); });
    EXPECT_THROW(c->SaveCuttingToPcms(), std::runtime_error);
    EXPECT_EQ(Result().outcome, CutFileNotRead);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}

TEST_F(CutSave, WritesEveryLineWhenTheSinkThrowsAndPassesOnItsFirstException) {
    for (const char* name : {"second.pcm", "third.pcm"}) Import(scan, name);
    for (const auto& mesh : c->m_vpMeshes) mesh->m_vpCutMasks = {left};
    for (const char* name : {"scan.pcm", "second.pcm", "third.pcm"}) fs::remove(folder / name);
    std::vector<std::string> lines;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view line) {
        lines.emplace_back(line);
        if (lines.size() < 3) throw std::runtime_error(std::to_string(lines.size()));
    });
    try {
        c->SaveCuttingToPcms();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "1");
    }
    EXPECT_THAT(lines, testing::ElementsAre(testing::HasSubstr("scan.pcm: "), testing::HasSubstr("second.pcm: "),
                                            testing::HasSubstr("third.pcm: ")));
}

// ---- moved objects

TEST_F(CutSave, PlansAMovedObjectAsMoved) {
    MoveTo(*c, 0, 1.0f);
    c->m_vpMeshes[0]->m_vpCutMasks = {left};
    ASSERT_EQ(c->PlanCutSave().size(), 1u);
    EXPECT_TRUE(c->PlanCutSave()[0].isMoved);
    EXPECT_EQ(c->PlanCutSave()[0].outcome, CutToBeWritten);
    // The viewer itself writes: the pixels that are in the mask by the transform of the file.
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), After(IsLeft));
    EXPECT_TRUE(Result().isMoved);
}

TEST_F(CutSave, PlansAnObjectThatWasMovedBackAsNotMoved) {
    MoveTo(*c, 0, 1.0f);
    EXPECT_TRUE(c->PlanCutSave()[0].isMoved);
    MoveTo(*c, 0, 0.0f);
    EXPECT_FALSE(c->PlanCutSave()[0].isMoved);
}

// The floats of GetTrafoOfScan() have fewer digits than the transform.
TEST_F(CutSave, PlansAnObjectAsNotMovedWhoseTransformWasReadAndSet) {
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 200; ++i) {
        CACADQTrafo trafo;
        double length = 0;
        for (double& element : trafo.m_dQuat) length += std::pow(element = normal(random), 2);
        for (double& element : trafo.m_dQuat) element /= std::sqrt(length);
        trafo.UpdateMatrix();
        const double* const r = trafo.m_dRotation;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                scan.trafo[static_cast<std::size_t>(4 * row + column)] = static_cast<float>(r[3 * column + row]);
            scan.trafo[static_cast<std::size_t>(4 * row + 3)] = static_cast<float>(1e6 * normal(random));
        }
        c->ClearData();
        Import(scan, "turned.pcm");
        ASSERT_EQ(Count(), 1u);
        for (int times = 0; times < 5; ++times) {
            ReadAndSetTrafo(*c, 0);
            ASSERT_FALSE(c->PlanCutSave()[0].isMoved) << i << ", " << times;
        }
    }
}

TEST_F(CutSave, KeepsTheTransformOfTheImportInClones) {
    MoveTo(*c, 0, 1.0f);
    const std::uint32_t nothing[1] = {0};
    c->m_vpMeshes[0] = c->m_vpMeshes[0]->CloneWithoutVertices(nothing);
    EXPECT_TRUE(c->PlanCutSave()[0].isMoved);
    MoveTo(*c, 0, 0.0f);
    EXPECT_FALSE(c->PlanCutSave()[0].isMoved);
}

// A parallel import makes its objects by the same way.
TEST_F(CutSave, KnowsTheTransformOfObjectsFromAParallelImport) {
    scan.trafo[3] = 5000.0f;
    c->ClearData();
    void* self = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&self, &entry);
    ASSERT_TRUE(entry(self, L"a.pcm", kWidth, kHeight, scan.points.data(), scan.confidence.data(), scan.trafo.data(),
                      scan.classification.data(), nullptr, 0, 0));
    c->EndParallelImport();
    ASSERT_EQ(Count(), 1u);
    EXPECT_FALSE(c->PlanCutSave()[0].isMoved);
    MoveTo(*c, 0, 0.0f);
    EXPECT_TRUE(c->PlanCutSave()[0].isMoved);
}
