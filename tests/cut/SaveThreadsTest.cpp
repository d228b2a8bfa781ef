// Saves of many objects at once, for the thread sanitizer: no OpenGL, and no control.
#include <gtest/gtest.h>

#include "cut/CutScan.h"
#include "cut/SaveCut.h"

TEST(SaveThreads, SaveTwentyObjectsThatShareTheirMasks) {
    const ScratchFolder folder;
    const ScanSample scan = FlatCutScan(120, 90);
    const auto isCut = [](int x, int y) { return x > 30 && x < 70 && y > 20 && y < 50; };
    const auto mask = MaskOf(scan, isCut);
    std::vector<std::shared_ptr<Mesh>> meshes;
    for (int i = 0; i < 20; ++i) {
        const std::string file = folder / ("scan" + std::to_string(i) + ".pcm");
        if (i != 7) scan.WritePcm(file);  // one object without a file
        // Every other object has a second cut of its own.
        const auto own = MaskOf(scan, [&](int x, int) { return x == 80 + i; });
        meshes.push_back(ObjectOf(file, {mask}));
        if (i % 2 == 1) meshes.back()->m_vpCutMasks.push_back(own);
        // And every fifth file has two objects.
        if (i % 5 == 0) meshes.push_back(ObjectOf(file, {mask, own}));
    }
    const CutSaveRun run = SaveMeshCuttings(meshes, 0.0f, CutPlane{0, 1, 0, -5});
    EXPECT_TRUE(run.isWritten);
    for (int i = 0; i < 20; ++i) {
        if (i == 7) continue;
        const auto expected = ClassesAfterCut(scan, [&](int x, int y) {
            const bool hasOwn = i % 2 == 1 || i % 5 == 0;
            return isCut(x, y) || (hasOwn && x == 80 + i) || y >= 90 - 6;  // world y = 88.5 - y
        });
        EXPECT_EQ(ClassesIn(folder / ("scan" + std::to_string(i) + ".pcm")), expected) << i;
    }
    for (const auto& entry : run.entries) {
        const bool isMissing = entry.file.ends_with(L"scan7.pcm");
        EXPECT_EQ(entry.outcome, isMissing ? KV_ScenePane::CutFileNotRead : KV_ScenePane::CutWritten);
        EXPECT_EQ(entry.reason.empty(), !isMissing);
    }
}
