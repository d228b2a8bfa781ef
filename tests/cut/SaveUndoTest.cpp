// Cuts by lasso, undo and saves of a whole control in turn: what comes back, and what the files keep.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "cut/CutScan.h"
#include "cut/CutScene.h"

using KV_ScenePane::CutWritten;

namespace {

constexpr int kSide = 40;

/// What a user sees of an object: every byte of its vertices and triangles.
struct ObjectBytes {
    std::vector<std::byte> vertices, triangles;
    std::size_t masks = 0;
    bool operator==(const ObjectBytes&) const = default;
};

ObjectBytes BytesOf(const Mesh& mesh) {
    const auto bytes = [](const auto& values) {
        const auto span = std::as_bytes(std::span(values));
        return std::vector<std::byte>(span.begin(), span.end());
    };
    return {bytes(mesh.m_vVertices), bytes(mesh.m_vTriangles), mesh.m_vpCutMasks.size()};
}

struct MovedFlags {
    bool isMoved = false, isCutWhileMoved = false;
    bool operator==(const MovedFlags&) const = default;
};

/// The pixels of the file that an object has a vertex of.
std::set<std::uint32_t> PixelsOf(const Mesh& mesh) {
    std::set<std::uint32_t> pixels;
    for (const Vertex& vertex : mesh.m_vVertices) pixels.insert(vertex.gridIndex);
    return pixels;
}

/// A scan of 40 x 40 pixels, 5 units wide, in the middle of the window.
class SaveAndUndo : public testing::TestWithParam<int> {
protected:
    SaveAndUndo() : scan(kSide, kSide, 125.0f) {
        scan.trafo = {1, 0, 0, -2437.5f, 0, 1, 0, -2437.5f, 0, 0, 1, 0, 0, 0, 0, 1};
        scan.WritePcm(file);
        c->ImportScan(KV_ScenePane::WidePath(file).c_str(), 0xFFFFFF);
        LookDown(*c);
        c->PerformRefresh();
        c->m_lassoOutside = {0, 0.0f};
    }
    /// Cuts a column of the window, 24 pixels or half a unit wide, at the world x of its left side.
    bool Cut(int unit) {
        const int left = 320 + 48 * unit;
        const bool isCut = c->CutWithLasso(Mode(), FractionsOf(RectangleOf(left, 60, left + 24, 420), 640, 480));
        return isCut;
    }
    /// Moves the object along x: half a unit is four pixels of the scan.
    void MoveBy(float x) {
        ASSERT_EQ(c->SetTrafoOfScan(0, 1, 0, 0, -2.4375f + x, 0, 1, 0, -2.4375f, 0, 0, 1, 0, 0, 0, 0, 1), 0);
    }
    /// What a host is asked to refuse before a save.
    [[nodiscard]] MovedFlags Flags() const {
        const auto plan = c->PlanCutSave();
        return {plan.at(0).isMoved, plan.at(0).isCutWhileMoved};
    }
    /// Whether an import of the saved file has the pixels that the object has.
    [[nodiscard]] bool HasFileThePixelsOfTheObject() {
        EXPECT_EQ(c->SaveCuttingToPcms(), 1);
        c->ImportScan(KV_ScenePane::WidePath(file).c_str(), 0xFFFFFF);
        return PixelsOf(*c->m_vpMeshes.back()) == PixelsOf(Object());
    }
    [[nodiscard]] static SegmentationMode Mode() { return kAllWays[GetParam()]; }
    [[nodiscard]] Mesh& Object() const { return *c->m_vpMeshes.at(0); }
    /// The classes that the file should have: 250 for each pixel that one of the masks removes from the imported scan.
    [[nodiscard]] std::vector<std::uint8_t> ExpectedClasses(
        const std::vector<std::shared_ptr<const ACAD::CutMask>>& masks) const {
        std::vector<std::uint8_t> classes(kSide * kSide, 0);
        for (const auto& mask : masks) {
            std::vector<std::uint32_t> bits((imported.m_vVertices.size() + 31) / 32);
            mask->MarkVertices(imported.m_vVertices, bits);
            for (std::size_t i = 0; i < imported.m_vVertices.size(); ++i) {
                const std::uint32_t grid = imported.m_vVertices[i].gridIndex;
                if ((bits[i / 32] >> (i % 32) & 1) != 0) classes[(grid >> 16) * kSide + (grid & 0xFFFF)] = 250;
            }
        }
        return classes;
    }
    void Import() {
        imported.m_vVertices = Object().m_vVertices;
        ASSERT_EQ(imported.m_vVertices.size(), std::size_t{kSide * kSide});
    }

    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    ScanSample scan;
    OffscreenControl c;
    Mesh imported{L"", false};  ///< the vertices before the first cut
};

}  // namespace

TEST_P(SaveAndUndo, RestoreTheObjectToTheByteAndTheFileOnlyOnce) {
    Import();
    const ObjectBytes uncut = BytesOf(Object());
    const auto uncutFile = ReadBytes(file);

    // A cut that is taken back leaves nothing for the save.
    ASSERT_TRUE(Cut(0));
    EXPECT_EQ(Object().m_vpCutMasks.size(), 1u);
    EXPECT_LT(Object().GetVertexCount(), imported.m_vVertices.size());
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(BytesOf(Object()), uncut);
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(ReadBytes(file), uncutFile);

    // Another one, which is saved: the file has it, and the object keeps its shape without the mask.
    ASSERT_TRUE(Cut(1));
    const ObjectBytes cut = BytesOf(Object());
    const auto masks = Object().m_vpCutMasks;
    ASSERT_EQ(masks.size(), 1u);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(c->m_vCutSaveResults[0].outcome, CutWritten);
    EXPECT_EQ(ClassesIn(file), ExpectedClasses(masks));
    EXPECT_EQ(BytesOf(Object()).vertices, cut.vertices);
    EXPECT_TRUE(Object().m_vpCutMasks.empty());

    // Undo brings the object back and not the pixels; a save then has nothing to write.
    const auto cutFile = ReadBytes(file);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(BytesOf(Object()), uncut);
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(ReadBytes(file), cutFile);
}

TEST_P(SaveAndUndo, ApplyMasksThatAreInTheFileAgainWithTheSameResult) {
    Import();
    ASSERT_TRUE(Cut(-1));
    const ObjectBytes once = BytesOf(Object());
    // Outside the first column and outside the second one is everywhere: the second cut of that kind has nothing left.
    const bool isOutside = Mode() == KV_ScenePane::PolygonOutside || Mode() == KV_ScenePane::FreehandOutside;
    ASSERT_TRUE(Cut(1));
    const auto masks = Object().m_vpCutMasks;
    ASSERT_EQ(masks.size(), 2u);
    EXPECT_EQ(Object().GetVertexCount() == 0, isOutside);
    ASSERT_EQ(c->SaveCuttingToPcms(), 1);
    const std::vector<std::uint8_t> expected = ExpectedClasses(masks);
    EXPECT_EQ(ClassesIn(file), expected);
    EXPECT_EQ(std::ranges::count(expected, 0) == 0, isOutside);
    const auto saved = ReadBytes(file);

    // The object of the undo step still has the first mask: it is written again, and the file stays as it is.
    EXPECT_EQ(c->PerformUndo(), 1);
    EXPECT_EQ(BytesOf(Object()), once);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ReadBytes(file), saved);
    EXPECT_EQ(c->SaveCuttingToPcms(), 0);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(Object().GetVertexCount(), imported.m_vVertices.size());
}

// The pixels that are left in the file are those that the object still has at an import.
TEST_P(SaveAndUndo, LeaveInTheFileWhatTheObjectHas) {
    Import();
    ASSERT_TRUE(Cut(0));
    ASSERT_EQ(c->SaveCuttingToPcms(), 1);
    c->ImportScan(KV_ScenePane::WidePath(file).c_str(), 0xFFFFFF);
    EXPECT_FALSE(PixelsOf(Object()).empty());
    EXPECT_EQ(PixelsOf(*c->m_vpMeshes[1]), PixelsOf(Object()));
}

// An alignment, a cut, a plan: the host refuses the save, for the mask is of the moved object.
TEST_P(SaveAndUndo, NameAnObjectThatWasAlignedBeforeItsCut) {
    Import();
    MoveBy(0.5f);
    ASSERT_TRUE(Cut(0));
    const auto plan = c->PlanCutSave();
    ASSERT_EQ(plan.size(), 1u);
    EXPECT_EQ(plan[0].outcome, KV_ScenePane::CutToBeWritten);
    EXPECT_TRUE(plan[0].isMoved);
    EXPECT_TRUE(plan[0].isCutWhileMoved);
    EXPECT_EQ(plan[0].numberOfCuts, 1);
    // The viewer itself writes, by the transform of the file: half a unit or four pixels beside what was enclosed.
    const auto masks = Object().m_vpCutMasks;
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(ClassesIn(file), ExpectedClasses(masks));
    EXPECT_TRUE(c->m_vCutSaveResults[0].isMoved);
    EXPECT_TRUE(c->m_vCutSaveResults[0].isCutWhileMoved);
}

// The move is taken back, and the mask is still that of the moved object: the file would lose other pixels.
TEST_P(SaveAndUndo, NameACutOfAMovedObjectAlsoAfterTheMoveWasTakenBack) {
    MoveBy(0.5f);
    ASSERT_TRUE(Cut(0));
    MoveBy(0.0f);
    EXPECT_EQ(Flags(), MovedFlags(false, true));
    EXPECT_FALSE(HasFileThePixelsOfTheObject());
    EXPECT_TRUE(c->m_vCutSaveResults[0].isCutWhileMoved);
    EXPECT_EQ(Flags(), MovedFlags()) << "no cut is left";
}

TEST_P(SaveAndUndo, WriteWhatWasEnclosedAfterTheCutAndTheMoveWereTakenBack) {
    MoveBy(0.5f);
    ASSERT_TRUE(Cut(0));
    c->PerformUndo();
    MoveBy(0.0f);
    ASSERT_TRUE(Cut(0));
    EXPECT_EQ(Flags(), MovedFlags());
    EXPECT_TRUE(HasFileThePixelsOfTheObject());
}

TEST_P(SaveAndUndo, WriteWhatWasEnclosedWhenTheObjectWasMovedAfterTheCut) {
    ASSERT_TRUE(Cut(0));
    MoveBy(0.5f);
    EXPECT_EQ(Flags(), MovedFlags(true, false));
    EXPECT_TRUE(HasFileThePixelsOfTheObject()) << "the mask is of the object where the file has it";
}

// The flag is of the masks of an object: a later cut keeps it, and what drops the masks drops it.
TEST_P(SaveAndUndo, NameTheCutsOfEachUndoStep) {
    ASSERT_TRUE(Cut(-1));
    MoveBy(0.125f);
    EXPECT_EQ(Flags(), MovedFlags(true, false));
    ASSERT_TRUE(Cut(-1));  // one more column of pixels
    EXPECT_EQ(Flags(), MovedFlags(true, true));
    MoveBy(0.0f);
    ASSERT_TRUE(Cut(0));
    EXPECT_EQ(Flags(), MovedFlags(false, true)) << "the cut before the last one";
    c->PerformUndo();
    EXPECT_EQ(Flags(), MovedFlags(false, true));
    c->PerformUndo();
    EXPECT_EQ(Flags(), MovedFlags(true, false));
}

TEST_P(SaveAndUndo, NameNoCutAfterTheHostDroppedTheMasks) {
    MoveBy(0.5f);
    ASSERT_TRUE(Cut(0));
    MoveBy(0.0f);
    c->ClearCutMasks();
    EXPECT_EQ(Flags(), MovedFlags());
    ASSERT_TRUE(Cut(1));
    EXPECT_EQ(Flags(), MovedFlags()) << "the cut after them";
}

TEST_P(SaveAndUndo, NameNoCutAfterASaveDroppedTheMasks) {
    MoveBy(0.5f);
    ASSERT_TRUE(Cut(0));
    MoveBy(0.0f);
    EXPECT_EQ(c->SaveCuttingToPcms(), 1);
    EXPECT_EQ(Flags(), MovedFlags());
    ASSERT_TRUE(Cut(1));
    EXPECT_EQ(Flags(), MovedFlags()) << "the cut after them";
}

INSTANTIATE_TEST_SUITE_P(AllWays, SaveAndUndo, testing::Range(0, 6),
                         [](const auto& way) { return kNamesOfWays[way.param]; });
