// Files for a scene that holds as many objects as its indices can address.
#include <gtest/gtest.h>

#include <algorithm>

#include "DebugCapture.h"
#include "HeadlessScene.h"
#include "host/FullScene.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

constexpr const char* kFull = "the scene is full: it holds at most 32767 objects: remove some, or open fewer files";

/// One file of each way of reading.
std::vector<std::string> WriteFiles(const ScratchFolder& folder) {
    WritePcm(folder / "a.pcm", 2, 2);
    WriteXdt(folder / "b.xdt", 2, 2);
    WriteText(folder / "c.ply", TetraPlyText());
    return {folder / "a.pcm", folder / "b.xdt", folder / "c.ply"};
}

TEST(FullScene, RefusesOneObjectMoreAndKeepsTheOthers) {
    const ScratchFolder folder;
    const std::vector<std::string> files = WriteFiles(folder);
    const DebugRouter router([](std::string_view) {});
    const auto pane = PaneWithObjects(kMostObjects - 1);
    ASSERT_EQ(pane->Methods().GetNumObjects(), 32766);
    EXPECT_EQ(ImportFile(pane->Methods(), files[0], {}).state, ImportResult::State::Added);
    EXPECT_EQ(FreePlaces(pane->Methods()), 0);
    for (const std::string& file : files) {
        const ImportResult result = ImportFile(pane->Methods(), file, {});
        EXPECT_EQ(result.state, ImportResult::State::Failed) << file;
        EXPECT_EQ(result.text, kFull);
    }
    EXPECT_EQ(pane->Methods().GetNumObjects(), 32767);
    pane->Methods().DeleteObject(0);
    EXPECT_EQ(ImportFile(pane->Methods(), files[2], {}).state, ImportResult::State::Added);
}

TEST(FullScene, OfARunNamesTheFilesThatHadNoPlace) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 2, 2);
    HostOptions options;
    options.files.assign(kMostObjects + 2, folder / "a.xdt");
    const DebugRouter router([](std::string_view) {});
    const auto pane = PaneWithObjects(0);
    const Printed err;
    const auto report = ImportScene(*pane, options, PointFiles::Refused, err);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->objects.size(), 32767u);
    EXPECT_EQ(report->objects.back().index, 32766);
    ASSERT_EQ(report->failed.size(), 2u);
    EXPECT_EQ(report->failed.back().reason, kFull);
    EXPECT_EQ(err.Text(), "scenepane: " + (folder / "a.xdt") + ": " + kFull + "\nscenepane: " + (folder / "a.xdt") +
                              ": " + kFull + '\n');
}

TEST(InfoOfMoreFilesThanASceneHolds, ReportsThemAll) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 2, 2);
    HostOptions options;
    options.json = true;
    options.files.assign(kMostObjects + 2, folder / "a.xdt");
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
    const std::string json = out.Text();
    EXPECT_NE(json.find("\"index\": 32768,"), std::string::npos);
    EXPECT_EQ(json.find("\"index\": 32769,"), std::string::npos);
}

}  // namespace
