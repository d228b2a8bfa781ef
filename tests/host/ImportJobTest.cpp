// The import of the window into a scene that is nearly full.
#include "ImportJob.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

#include "DebugCapture.h"
#include "host/FullScene.h"
#include "host/MeshFiles.h"
#include "host/QtUnderXvfb.h"

namespace {

TEST(ImportJobIntoANearlyFullScene, RefusesWhatHasNoPlace) {
    const ScratchFolder folder;
    std::vector<std::string> files;
    for (const char* const name : {"a.pcm", "b.pcm", "c.pcm"}) {
        WritePcm(folder / name, 2, 2);
        files.push_back(folder / name);
    }
    WriteText(folder / "d.ply", TetraPlyText());
    files.push_back(folder / "d.ply");
    const DebugRouter router([](std::string_view) {});
    const auto pane = PaneWithObjects(kMostObjects - 2);
    ImportJob job(*pane, files, {});
    QEventLoop loop;
    QObject::connect(&job, &ImportJob::Finished, &loop, &QEventLoop::quit);
    job.Start();
    loop.exec();
    EXPECT_EQ(pane->Methods().GetNumObjects(), 32767);
    int added = 0, refused = 0;
    for (const ImportResult& result : job.Results()) {
        added += result.state == ImportResult::State::Added ? 1 : 0;
        refused += result.text.starts_with("the scene is full: ") ? 1 : 0;
    }
    EXPECT_EQ(added, 2);
    EXPECT_EQ(refused, 2);
}

}  // namespace
