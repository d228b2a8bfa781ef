#include "ScanFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ImportPlan.h"
#include "host/ScanFiles.h"

namespace {

TEST(KindOfScan, GoesByTheTextBehindTheLastPointInAnyCase) {
    EXPECT_EQ(KindOfScan("a.pcm"), ScanKind::Pcm);
    EXPECT_EQ(KindOfScan("a.PaX"), ScanKind::Pax);
    EXPECT_EQ(KindOfScan("a.pcm.XDT"), ScanKind::Xdt);
    EXPECT_EQ(KindOfScan("a.pcm.bak"), ScanKind::Unknown);
    EXPECT_EQ(KindOfScan("a.pcm/b"), ScanKind::Unknown);
    EXPECT_EQ(KindOfScan("a."), ScanKind::Unknown);
}

TEST(KindOfScan, WithoutAPointGoesByTheWholeName) {
    EXPECT_EQ(KindOfScan("pax"), ScanKind::Pax);
    EXPECT_EQ(KindOfScan("apax"), ScanKind::Unknown);
}

TEST(WhyNoScanFile, TellsMissingFilesFoldersAndForeignTypesApart) {
    const ScratchFolder folder;
    WriteBytes(folder / "a.pcm", {std::byte{1}});
    WriteBytes(folder / "a.stl", {std::byte{1}});
    ASSERT_EQ(mkdir((folder / "f.pax").c_str(), 0700), 0);
    EXPECT_EQ(WhyNoScanFile(folder / "a.pcm"), "");
    EXPECT_EQ(WhyNoScanFile(folder / "b.pcm"), "No such file or directory");
    EXPECT_EQ(WhyNoScanFile(folder / "f.pax"), "Is a directory");
    EXPECT_EQ(WhyNoScanFile(folder / "a.stl"), "unknown file type");
}

TEST(WhyNoScanFile, TellsOfFilesThatMayNotBeRead) {
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const ScratchFolder folder;
    WriteBytes(folder / "a.pcm", {std::byte{1}});
    ASSERT_EQ(chmod((folder / "a.pcm").c_str(), 0), 0);
    EXPECT_EQ(WhyNoScanFile(folder / "a.pcm"), "Permission denied");
}

TEST(PlanImport, JoinsNeighbouringPcmFilesAndKeepsTheOrder) {
    const auto runs = PlanImport({"a.pcm", "b.PCM", "c.pax", "d.pcm", "e.xdt", "f.xdt", "g.stl"});
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_TRUE(runs[0].parallel);
    EXPECT_EQ(runs[0].files, (std::vector<std::size_t>{0, 1}));
    EXPECT_FALSE(runs[1].parallel);
    EXPECT_EQ(runs[1].files, (std::vector<std::size_t>{2}));
    EXPECT_TRUE(runs[2].parallel);
    EXPECT_EQ(runs[2].files, (std::vector<std::size_t>{3}));
    for (std::size_t i = 3; i < 6; ++i) {
        EXPECT_FALSE(runs[i].parallel);
        EXPECT_EQ(runs[i].files, (std::vector<std::size_t>{i + 1}));
    }
}

TEST(PlanImport, OfNothingIsNothing) { EXPECT_TRUE(PlanImport({}).empty()); }

}  // namespace
