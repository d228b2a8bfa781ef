#include "CutSaveReport.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "KV_ScenePane/PathText.h"
#include "host/MeshFiles.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::CutSaveEntry;

CutSaveEntry Entry(const std::string& file, KV_ScenePane::CutSaveOutcome outcome, const std::string& reason = "",
                   bool isMoved = false) {
    return {3, outcome, KV_ScenePane::WidePath(file), reason, 1, isMoved};
}

TEST(CutSaveReport, HasALineForEachOutcome) {
    using namespace KV_ScenePane;
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutToBeWritten)), "a.pcm: to be written");
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutWritten)), "a.pcm: written");
    CutSaveEntry empty = Entry("a.pcm", CutWritten);
    empty.isNothingLeft = true;
    EXPECT_EQ(CutSaveLine(empty), "a.pcm: written, no point is left in it");
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutNothingToSave)), "a.pcm: skipped, nothing new was cut from it");
    EXPECT_EQ(CutSaveLine(Entry("a.stl", CutNotFromPcm)), "a.stl: skipped, only pcm files can hold cuts");
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutFileNotRead, "No such file or directory")),
              "a.pcm: failed, the file could not be read: No such file or directory");
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutFileNotWritten, "No space left on device")),
              "a.pcm: failed, the file could not be written and is as before: No space left on device");
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", CutFileNotRead)), "a.pcm: failed, the file could not be read");
}

TEST(CutSaveReport, NamesAFileByItsBytesAndAnObjectWithoutOneByItsIndex) {
    EXPECT_EQ(CutSaveLine(Entry("d\xff\xc3\xa4.pcm", KV_ScenePane::CutWritten)), "d\xff\xc3\xa4.pcm: written");
    EXPECT_EQ(CutSaveLine(Entry("", KV_ScenePane::CutNotFromPcm)), "object 3: skipped, only pcm files can hold cuts");
}

TEST(CutSaveReport, SkipsForARefusalOnlyWhatWouldBeWritten) {
    EXPECT_EQ(CutSaveLine(Entry("a.pcm", KV_ScenePane::CutToBeWritten), "no way"), "a.pcm: skipped, no way");
    EXPECT_EQ(CutSaveLine(Entry("a.ply", KV_ScenePane::CutNotFromPcm), "no way"),
              "a.ply: skipped, only pcm files can hold cuts");
}

TEST(CutSaveReport, OnlyFilesThatCouldNotBeReadOrWrittenHaveFailed) {
    for (int outcome = KV_ScenePane::CutToBeWritten; outcome <= KV_ScenePane::CutFileNotWritten; ++outcome)
        EXPECT_EQ(HasFailed(Entry("a", static_cast<KV_ScenePane::CutSaveOutcome>(outcome))),
                  outcome >= KV_ScenePane::CutFileNotRead)
            << outcome;
}

/// The names of each file, "NAME = NAME" for one with two.
std::vector<std::string> Names(std::span<const CutSaveEntry> plan) {
    std::vector<std::string> names;
    for (const FileToWrite& file : FilesToWrite(plan)) {
        names.push_back(file.names.front());
        for (std::size_t i = 1; i < file.names.size(); ++i) names.back() += " = " + file.names[i];
    }
    return names;
}

TEST(CutSaveReport, ListsFilesToWriteOnceInTheOrderOfTheObjects) {
    using namespace KV_ScenePane;
    CutSaveEntry plan[] = {Entry("b.pcm", CutToBeWritten), Entry("c.ply", CutNotFromPcm),
                           Entry("a.pcm", CutToBeWritten), Entry("b.pcm", CutToBeWritten),
                           Entry("d.pcm", CutNothingToSave)};
    plan[0].numberOfCuts = plan[2].numberOfCuts = 0;
    EXPECT_EQ(Names(plan), (std::vector<std::string>{"b.pcm", "a.pcm"}));
    EXPECT_TRUE(FilesToWrite(plan).at(0).hasCuts) << "those of the second object";
    EXPECT_FALSE(FilesToWrite(plan).at(1).hasCuts);
    EXPECT_TRUE(FilesToWrite({}).empty());
}

TEST(CutSaveReport, ListsAFileOnceWithTheNamesOfItsLinks) {
    using namespace KV_ScenePane;
    const ScratchFolder folder;
    const std::string file = folder / "a.pcm", link = folder / "link.pcm", hard = folder / "hard.pcm";
    WriteText(file, "a");
    std::filesystem::create_symlink("a.pcm", link);
    std::filesystem::create_hard_link(file, hard);
    const CutSaveEntry plan[] = {Entry(link, CutToBeWritten), Entry(file, CutToBeWritten), Entry(link, CutToBeWritten),
                                 Entry(hard, CutToBeWritten)};
    EXPECT_EQ(Names(plan), (std::vector<std::string>{link + " = " + file, hard}))
        << "a save makes the hard link a file of its own";
}

TEST(CutSaveReport, NamesMovedObjectsThatWouldBeWritten) {
    using namespace KV_ScenePane;
    const CutSaveEntry plan[] = {Entry("a.pcm", CutToBeWritten), Entry("b.pcm", CutToBeWritten, "", true),
                                 Entry("c.pcm", CutNothingToSave, "", true), Entry("d.ply", CutNotFromPcm, "", true)};
    EXPECT_EQ(MovedObjectLines(plan),
              std::vector<std::string>{"b.pcm: moved since its import, take back the alignment first"});
    EXPECT_TRUE(MovedObjectLines(std::span(plan).first(1)).empty());
}

TEST(CutSaveReport, NamesObjectsThatWereCutWhileTheyWereMoved) {
    using namespace KV_ScenePane;
    CutSaveEntry plan[] = {Entry("a.pcm", CutToBeWritten), Entry("b.pcm", CutToBeWritten, "", true),
                           Entry("c.pcm", CutNothingToSave)};
    for (CutSaveEntry& entry : plan) entry.isCutWhileMoved = true;
    const std::string text =
        ": was cut while it was moved; undo these cuts, take back the alignment first, and cut again";
    EXPECT_EQ(MovedObjectLines(plan), (std::vector<std::string>{"a.pcm" + text, "b.pcm" + text}));
}

TEST(CutSaveReport, SaysWhatIsRemovedBesideTheCuts) {
    EXPECT_TRUE(OtherRemovals(false, 0.0f).empty());
    EXPECT_TRUE(OtherRemovals(false, -1.0f).empty());
    EXPECT_EQ(OtherRemovals(true, 0.0f),
              std::vector<std::string>{"the clip plane is active: what it clips is removed from every pcm file"});
    EXPECT_EQ(
        OtherRemovals(false, 0.5f),
        std::vector<std::string>{"the confidence filter is above 0: points below it are removed from the files, too"});
    EXPECT_EQ(OtherRemovals(true, 0.5f).size(), 2u);
}

}  // namespace
