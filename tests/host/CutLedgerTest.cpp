// Which cuts no file has, as objects are cut, saved, exported and restored.
#include "CutLedger.h"

#include <gtest/gtest.h>

namespace {

CutObject Scan(int cuts, std::int32_t vertices) {
    return {.id = 1, .cuts = cuts, .isFromPcm = true, .vertices = vertices};
}
CutObject Mesh(int cuts, std::int32_t vertices) { return {.id = 2, .cuts = cuts, .vertices = vertices}; }

TEST(CutLedger, CountsObjectsWithCutsAsUnsaved) {
    const CutLedger ledger;
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 100)));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90)));
    EXPECT_TRUE(ledger.IsUnsaved(Mesh(1, 90)));
}

TEST(CutLedger, CountsAnExportedMeshAsSavedUntilItsNextCut) {
    CutLedger ledger;
    ledger.OnExported(Mesh(1, 90));
    EXPECT_FALSE(ledger.IsUnsaved(Mesh(1, 90)));
    EXPECT_TRUE(ledger.IsUnsaved(Mesh(2, 80)));
    // Taking back the second cut restores what was exported.
    const CutObject first[] = {Mesh(1, 90)};
    ledger.OnUndone(first);
    EXPECT_FALSE(ledger.IsUnsaved(Mesh(1, 90)));
    // Taking back the first one and another first cut: another object than the one in the file.
    const CutObject uncut[] = {Mesh(0, 100)};
    ledger.OnUndone(uncut);
    EXPECT_TRUE(ledger.IsUnsaved(Mesh(1, 70)));
}

TEST(CutLedger, DoesNotCountAnExportOfAScanAsSaved) {
    CutLedger ledger;
    ledger.OnExported(Scan(1, 90));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90))) << "its own file does not have the cut";
}

TEST(CutLedger, KeepsAFailedSaveUntilItsCutsAreTakenBack) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90))) << "the viewer has dropped the cut";
    EXPECT_TRUE(ledger.HasLostCuts(1));
    EXPECT_FALSE(ledger.HasLostCuts(2));
    // A later cut that is saved does not bring the first one into the file.
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 80)));
    const CutObject later[] = {Scan(0, 90)};
    ledger.OnUndone(later);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90)));
    const CutObject uncut[] = {Scan(0, 100)};
    ledger.OnUndone(uncut);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 100)));
}

TEST(CutLedger, KeepsWhatItKnowsOfAnObjectThatIsDeletedForTheUndoThatBringsItBack) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90));
    ledger.OnUndone({});
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90)));
    ledger.Clear();
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 90)));
}

TEST(CutLedger, CountsCutsThatAnUndoRestoresAsSavedWhenTheirFileWasWrittenLater) {
    CutLedger ledger;
    const CutObject first[] = {Scan(1, 90)};  // of two that were saved together
    const int inFile[] = {1};
    ledger.OnUndone(first, inFile);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(1, 90)));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(2, 85))) << "a new cut";
    ledger.OnUndone(first);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(1, 90)));
    const CutObject uncut[] = {Scan(0, 100)};
    ledger.OnUndone(uncut, inFile);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90))) << "another first cut";
}

TEST(CutLedger, RemembersTheFirstOfTwoFailedSaves) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90));
    ledger.OnSaveFailed(Scan(1, 80));
    const CutObject first[] = {Scan(0, 90)};
    ledger.OnUndone(first);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90))) << "the first cut is not in the file either";
}

}  // namespace
