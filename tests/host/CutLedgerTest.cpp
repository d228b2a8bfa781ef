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
    ledger.OnUndone(first, 1);
    EXPECT_FALSE(ledger.IsUnsaved(Mesh(1, 90)));
    // Taking back the first one and another first cut: another object than the one in the file.
    const CutObject uncut[] = {Mesh(0, 100)};
    ledger.OnUndone(uncut, 0);
    EXPECT_TRUE(ledger.IsUnsaved(Mesh(1, 70)));
}

TEST(CutLedger, DoesNotCountAnExportOfAScanAsSaved) {
    CutLedger ledger;
    ledger.OnExported(Scan(1, 90));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90))) << "its own file does not have the cut";
}

TEST(CutLedger, KeepsAFailedSaveUntilItsCutsAreTakenBack) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90), 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90))) << "the viewer has dropped the cut";
    EXPECT_TRUE(ledger.HasLostCuts(1));
    EXPECT_FALSE(ledger.HasLostCuts(2));
    // A later cut that is saved does not bring the first one into the file.
    ledger.OnSaved(1, 2);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 80)));
    const CutObject later[] = {Scan(0, 90)};
    ledger.OnUndone(later, 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90)));
    const CutObject uncut[] = {Scan(0, 100)};
    ledger.OnUndone(uncut, 0);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 100)));
}

TEST(CutLedger, KeepsWhatItKnowsOfAnObjectThatIsDeletedForTheUndoThatBringsItBack) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90), 1);
    ledger.OnPlaneFailed(1);
    ledger.OnSaved(2, 1);
    ledger.OnUndone({}, 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90)));
    ledger.Clear();
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 90)));
    EXPECT_FALSE(ledger.HasLostPlane(1));
    EXPECT_FALSE(ledger.IsInFile(2, 1));
}

TEST(CutLedger, CountsCutsThatAnUndoRestoresAsSavedWhenTheirFileWasWrittenLater) {
    CutLedger ledger;
    ledger.OnSaved(1, 2);
    EXPECT_TRUE(ledger.IsInFile(1, 2));
    EXPECT_FALSE(ledger.IsInFile(2, 2));
    const CutObject first[] = {Scan(1, 90)};  // of two that were saved together
    ledger.OnUndone(first, 1);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(1, 90)));
    EXPECT_TRUE(ledger.IsUnsaved(Scan(2, 85))) << "a new cut";
    EXPECT_FALSE(ledger.IsInFile(1, 2)) << "of the new cut";
    ledger.OnUndone(first, 1);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(1, 90)));
    const CutObject uncut[] = {Scan(0, 100)};
    ledger.OnUndone(uncut, 0);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90))) << "another first cut";
}

TEST(CutLedger, RemembersTheFirstOfTwoFailedSaves) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(1, 90), 1);
    ledger.OnSaveFailed(Scan(1, 80), 2);
    const CutObject first[] = {Scan(0, 90)};
    ledger.OnUndone(first, 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 90))) << "the first cut is not in the file either";
}

// ---- one object that is saved several times

TEST(CutLedger, CountsACutAsUnsavedThatAnUndoRestoresWhenOnlyAnEarlierSaveWasWritten) {
    CutLedger ledger;
    ledger.OnSaved(1, 1);
    ledger.OnSaveFailed(Scan(2, 70), 3);
    EXPECT_FALSE(ledger.IsInFile(1, 3));
    const CutObject second[] = {Scan(1, 80)};
    ledger.OnUndone(second, 2);
    EXPECT_FALSE(ledger.HasLostCuts(1)) << "the restored object has its cut";
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 80)));
}

TEST(CutLedger, CountsACutAsUnsavedThatAnUndoRestoresWhenOnlyALaterOneWasWritten) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(2, 80), 2);
    ledger.OnSaved(1, 3);
    EXPECT_TRUE(ledger.IsInFile(1, 3));
    const CutObject second[] = {Scan(0, 80)}, first[] = {Scan(1, 90)};
    ledger.OnUndone(second, 2);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(0, 80)));
    ledger.OnUndone(first, 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90)));
}

TEST(CutLedger, KeepsTheFailureOfCutsBelowAStepThatIsTakenBack) {
    CutLedger ledger;
    ledger.OnSaveFailed(Scan(2, 80), 3);  // the third cut was one of another object
    const CutObject second[] = {Scan(0, 80)}, first[] = {Scan(1, 90)};
    ledger.OnUndone(second, 2);
    ledger.OnSaved(1, 3);
    ledger.OnUndone(second, 2);
    ledger.OnUndone(first, 1);
    EXPECT_TRUE(ledger.IsUnsaved(Scan(1, 90)));
}

TEST(CutLedger, LosesNoCutsInAFailedSaveThatTheFileHasAlready) {
    CutLedger ledger;
    ledger.OnSaved(1, 2);
    const CutObject first[] = {Scan(1, 90)};
    ledger.OnUndone(first, 1);
    ledger.OnSaveFailed(Scan(1, 90), 1);
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 90)));
}

TEST(CutLedger, KeepsAPlaneThatFailedUntilTheFileIsWritten) {
    CutLedger ledger;
    ledger.OnPlaneFailed(1);
    EXPECT_TRUE(ledger.HasLostPlane(1));
    EXPECT_FALSE(ledger.HasLostPlane(2));
    EXPECT_FALSE(ledger.IsUnsaved(Scan(0, 90))) << "a plane is no cut";
    ledger.OnSaved(1, 0);
    EXPECT_FALSE(ledger.HasLostPlane(1));
}

}  // namespace
