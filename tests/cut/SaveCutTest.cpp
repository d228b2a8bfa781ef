// Which objects are written by a save of cuts, what they keep of their cuts, and the order of objects from one file.
#include "cut/SaveCut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>

#include "cut/CutScan.h"
#include "host/UnprivilegedUser.h"

using KV_ScenePane::CutFileNotRead;
using KV_ScenePane::CutFileNotWritten;
using KV_ScenePane::CutNotFromPcm;
using KV_ScenePane::CutNothingToSave;
using KV_ScenePane::CutSaveEntry;
using KV_ScenePane::CutToBeWritten;
using KV_ScenePane::CutWritten;
namespace fs = std::filesystem;

namespace {

constexpr int kWidth = 6, kHeight = 4;
constexpr CutPlane kPlane = {0, 1, 0, 0};  // removes row 3, whose world y is -0.5

bool IsLeft(int x, int) { return x == 0; }
bool IsRight(int x, int) { return x == kWidth - 1; }
bool IsBottom(int, int y) { return y == kHeight - 1; }

class SaveCut : public testing::Test {
protected:
    SaveCut() { scan.WritePcm(file); }
    bool Save(Mesh& mesh, const std::optional<CutPlane>& plane = std::nullopt) {
        return SaveMeshCutting(mesh, 0.0f, plane, entry);
    }
    [[nodiscard]] std::vector<std::uint8_t> After(const PixelChoice& isCut) const {
        return ClassesAfterCut(scan, isCut);
    }

    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    ScanSample scan = FlatCutScan(kWidth, kHeight);
    std::shared_ptr<const ACAD::CutMask> left = MaskOf(scan, IsLeft), right = MaskOf(scan, IsRight);
    CutSaveEntry entry;
};

/// The file without its content: its inode changes when it is replaced.
ino_t InodeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0);
    return info.st_ino;
}

}  // namespace

TEST_F(SaveCut, WritesNothingWithoutMasksAndPlane) {
    const ino_t before = InodeOf(file);
    const auto mesh = ObjectOf(file);
    EXPECT_FALSE(Save(*mesh));
    EXPECT_EQ(entry.outcome, CutNothingToSave);
    EXPECT_EQ(entry.numberOfCuts, 0);
    EXPECT_EQ(InodeOf(file), before);
}

TEST_F(SaveCut, WritesTheMasksAndDropsThem) {
    const auto mesh = ObjectOf(file, {left, right});
    EXPECT_TRUE(Save(*mesh));
    EXPECT_EQ(entry.outcome, CutWritten);
    EXPECT_EQ(entry.numberOfCuts, 2);
    EXPECT_EQ(entry.file, KV_ScenePane::WidePath(file));
    EXPECT_TRUE(entry.reason.empty());
    EXPECT_EQ(ClassesIn(file), After([](int x, int y) { return IsLeft(x, y) || IsRight(x, y); }));
    EXPECT_TRUE(mesh->m_vpCutMasks.empty());
    EXPECT_FALSE(mesh->m_optCutView.has_value()) << "no plane was written";
    EXPECT_FALSE(Save(*mesh)) << "nothing is left to save";
}

TEST_F(SaveCut, SaysWhenNoPixelOfAFileIsLeft) {
    const auto mesh = ObjectOf(file, {left, MaskOf(scan, [](int x, int) { return x > 1; })});
    EXPECT_TRUE(Save(*mesh));
    EXPECT_FALSE(entry.isNothingLeft);
    mesh->m_vpCutMasks = {MaskOf(scan, [](int x, int) { return x == 1; })};
    EXPECT_TRUE(Save(*mesh));
    EXPECT_TRUE(entry.isNothingLeft);
    EXPECT_EQ(ClassesIn(file), After([](int, int) { return true; }));
}

TEST_F(SaveCut, WritesAPlaneOnceForAnObjectWithoutMasks) {
    const auto mesh = ObjectOf(file);
    EXPECT_TRUE(Save(*mesh, kPlane));
    EXPECT_EQ(ClassesIn(file), After(IsBottom));
    EXPECT_EQ(mesh->m_optCutView, kPlane);
    const ino_t written = InodeOf(file);
    EXPECT_FALSE(Save(*mesh, kPlane));
    EXPECT_EQ(entry.outcome, CutNothingToSave);
    EXPECT_EQ(InodeOf(file), written);
    // A moved plane is written again.
    EXPECT_TRUE(Save(*mesh, CutPlane{0, 1, 0, -1}));
    EXPECT_EQ(ClassesIn(file), After([](int, int y) { return y >= 2; }));
    EXPECT_EQ(mesh->m_optCutView, (CutPlane{0, 1, 0, -1}));
}

TEST_F(SaveCut, WritesAnObjectWithMasksAlsoWhenThePlaneIsInItsFile) {
    const auto mesh = ObjectOf(file);
    EXPECT_TRUE(Save(*mesh, kPlane));
    mesh->m_vpCutMasks = {left};
    EXPECT_TRUE(Save(*mesh, kPlane));
    EXPECT_EQ(ClassesIn(file), After([](int x, int y) { return IsBottom(x, y) || IsLeft(x, y); }));
}

TEST_F(SaveCut, ForgetsNoPlaneWhenItIsSavedWithoutOne) {
    const auto mesh = ObjectOf(file);
    EXPECT_TRUE(Save(*mesh, kPlane));
    mesh->m_vpCutMasks = {left};
    EXPECT_TRUE(Save(*mesh));
    EXPECT_EQ(mesh->m_optCutView, kPlane);
}

TEST_F(SaveCut, WritesThePlaneOnceMoreForTheCloneThatACutMade) {
    Mesh mesh({{.x = 0}, {.x = 1}, {.y = 1}}, {{{0, 1, 2}}}, KV_ScenePane::WidePath(file), false);
    EXPECT_TRUE(Save(mesh, kPlane));
    const std::uint32_t nothing = 0;
    const auto clone = mesh.CloneWithoutVertices({&nothing, 1});
    EXPECT_TRUE(clone->m_vpCutMasks.empty());
    EXPECT_TRUE(Save(*clone, kPlane));
    EXPECT_FALSE(Save(*clone, kPlane));
}

// ---- which planes are the same: |q - p|^2 <= 1e-10 min(|p|^2, |q|^2) in single precision

TEST_F(SaveCut, ComparesPlanesByTheirDifference) {
    struct Row {
        CutPlane stored, now;
        bool isSame;
    };
    const float step = 0x1p-17f;  // its square is 5.8e-11
    const Row rows[] = {
        {{0, 0, 1, 0}, {0, 0, 1, step}, true},
        {{0, 0, 1, 0}, {0, 0, 1, 1.25f * step}, true},    // 9.1e-11
        {{0, 0, 1, 0}, {0, 0, 1, 1.375f * step}, false},  // 1.1e-10
        {{0, 0, 1, 0}, {0, 0, -1, 0}, false},
        {{0, 0, 1, 0}, {step, step, 1, 0}, false},  // 1.16e-10
        // Farther from the origin the limit grows with |d|: here the squares are about 10001.
        {{0, 0, 1, 100}, {0, 0, 1, 100.0009f}, true},
        {{0, 0, 1, 100}, {0, 0, 1, 100.0011f}, false},
        {{0, 0, 1, 0}, {0, 0, 1, 2}, false},
        {{0, 0, 1, std::numeric_limits<float>::quiet_NaN()}, {0, 0, 1, std::numeric_limits<float>::quiet_NaN()}, false},
    };
    for (const Row& row : rows) {
        const auto mesh = ObjectOf(file);
        mesh->m_optCutView = row.stored;
        const auto outcome = PlanMeshCutting(*mesh, row.now).outcome;
        EXPECT_EQ(outcome, row.isSame ? CutNothingToSave : CutToBeWritten) << row.now[0] << ' ' << row.now[3];
    }
}

TEST_F(SaveCut, HasNothingToSaveWithoutAPlaneWhateverPlaneIsStored) {
    const auto mesh = ObjectOf(file);
    mesh->m_optCutView = kPlane;
    EXPECT_EQ(PlanMeshCutting(*mesh, {}).outcome, CutNothingToSave);
}

// ---- names

TEST_F(SaveCut, TakesTheTextAfterTheLastPointWithoutRegardToCase) {
    struct Row {
        const wchar_t* name;
        bool isPcm;
    };
    for (const Row& row : {Row{L"a.pcm", true},
                           {L"a.PCM", true},
                           {L"/x/y.stl/a.PcM", true},
                           {L".pcm", true},
                           {L"a.b.pcm", true},
                           {L"a.pcm.stl", false},
                           {L"a.stl", false},
                           {L"pcm", false},
                           {L"", false},
                           {L"a.pcm ", false},
                           {L"a.", false},
                           {L"/x.pcm/scan", false},
                           {L"/x.y/pcm", false},
                           {L"a.pcmx", false},
                           {L"a.pc", false}}) {
        auto mesh = ObjectOf("", {left});
        mesh->m_sName = row.name;
        EXPECT_EQ(PlanMeshCutting(*mesh, {}).outcome, row.isPcm ? CutToBeWritten : CutNotFromPcm)
            << KV_ScenePane::PathBytes(row.name);
    }
}

TEST_F(SaveCut, WritesAFileWhoseExtensionIsInCapitals) {
    const std::string capitals = folder / "SCAN.PCM";
    fs::rename(file, capitals);
    EXPECT_TRUE(Save(*ObjectOf(capitals, {left})));
    EXPECT_EQ(ClassesIn(capitals), After(IsLeft));
}

TEST_F(SaveCut, SkipsAnObjectOfAnotherFormatWhichKeepsItsMasks) {
    const auto mesh = ObjectOf(folder / "part.stl", {left});
    EXPECT_FALSE(Save(*mesh, kPlane));
    EXPECT_EQ(entry.outcome, CutNotFromPcm);
    EXPECT_EQ(entry.numberOfCuts, 1);
    EXPECT_EQ(mesh->m_vpCutMasks.size(), 1u);
    EXPECT_FALSE(mesh->m_optCutView.has_value());
    // With the plane alone it is no pcm file either; without both there is nothing to save.
    mesh->m_vpCutMasks.clear();
    EXPECT_FALSE(Save(*mesh, kPlane));
    EXPECT_EQ(entry.outcome, CutNotFromPcm);
    EXPECT_FALSE(Save(*mesh));
    EXPECT_EQ(entry.outcome, CutNothingToSave);
}

TEST_F(SaveCut, WritesAFileWhoseNameIsNotUtf8) {
    const std::string odd = folder / "scan\xFF\xC3.pcm";
    fs::rename(file, odd);
    EXPECT_TRUE(Save(*ObjectOf(odd, {left})));
    EXPECT_EQ(ClassesIn(odd), After(IsLeft));
}

// ---- failures

TEST_F(SaveCut, CountsAFileThatCannotBeReadAsWritten) {
    fs::remove(file);
    const auto mesh = ObjectOf(file, {left});
    EXPECT_TRUE(Save(*mesh, kPlane));
    EXPECT_EQ(entry.outcome, CutFileNotRead);
    EXPECT_EQ(entry.numberOfCuts, 1);
    EXPECT_THAT(entry.reason, testing::HasSubstr("No such file"));
    EXPECT_TRUE(mesh->m_vpCutMasks.empty());
    EXPECT_EQ(mesh->m_optCutView, kPlane);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(SaveCut, CountsAFileThatCannotBeWrittenAsWritten) {
    fs::permissions(folder.Path(), fs::perms{0755});
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const auto before = ReadBytes(file);
    const auto mesh = ObjectOf(file, {left});
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "the process has all rights";
        EXPECT_TRUE(Save(*mesh, kPlane));
    }
    EXPECT_EQ(entry.outcome, CutFileNotWritten);
    EXPECT_THAT(entry.reason, testing::HasSubstr("cannot be written"));
    EXPECT_TRUE(mesh->m_vpCutMasks.empty());
    EXPECT_EQ(mesh->m_optCutView, kPlane);
    EXPECT_EQ(ReadBytes(file), before);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(SaveCut, LeavesTheFileInAFolderThatCannotBeWritten) {
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    fs::permissions(folder.Path(), fs::perms{0555});
    const auto before = ReadBytes(file);
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "the process has all rights";
        EXPECT_TRUE(Save(*ObjectOf(file, {left})));
    }
    EXPECT_EQ(entry.outcome, CutFileNotWritten);
    EXPECT_THAT(entry.reason, testing::HasSubstr("Permission denied"));
    EXPECT_EQ(ReadBytes(file), before);
    EXPECT_EQ(folder.FileCount(), 1u);
}

// ---- moved objects

TEST_F(SaveCut, NamesAnObjectMovedWhenItsTransformIsNotThatOfTheImport) {
    const auto mesh = ObjectOf(file, {left});
    mesh->m_Trafo.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 20, 30);
    mesh->m_optImportTrafo = mesh->m_Trafo;
    EXPECT_FALSE(PlanMeshCutting(*mesh, {}).isMoved);
    mesh->m_Trafo.m_dTranslation[2] = std::nextafter(30.0f, 31.0f);  // as a file in another unit has it
    EXPECT_FALSE(PlanMeshCutting(*mesh, {}).isMoved);
    mesh->m_Trafo.m_dTranslation[2] = 30.0001;
    EXPECT_TRUE(PlanMeshCutting(*mesh, {}).isMoved);
    mesh->m_Trafo.m_dTranslation[2] = 30.001;
    EXPECT_TRUE(PlanMeshCutting(*mesh, {}).isMoved);
    mesh->m_Trafo = *mesh->m_optImportTrafo;
    mesh->m_Trafo.Set(0, 1, 0, -1, 0, 0, 0, -1e-4, 1, 10, 20, 30);  // tilted by 1e-4 radians
    EXPECT_TRUE(PlanMeshCutting(*mesh, {}).isMoved);
}

TEST_F(SaveCut, ComparesTheTransformOfOtherObjectsWithTheIdentity) {
    const auto mesh = ObjectOf(folder / "part.stl", {left});
    EXPECT_FALSE(PlanMeshCutting(*mesh, {}).isMoved);
    mesh->m_Trafo.m_dTranslation[0] = 1.0;
    EXPECT_TRUE(PlanMeshCutting(*mesh, {}).isMoved);
}

// A transform with numbers that are none stays as it was imported.
TEST_F(SaveCut, NamesAnObjectNotMovedWhoseTransformIsNotANumber) {
    const auto mesh = ObjectOf(file, {left});
    mesh->m_Trafo.Set(std::nan(""), 0, 0, 0, 1, 0, 0, 0, 1, std::nan(""), 0, 0);
    mesh->m_optImportTrafo = mesh->m_Trafo;
    EXPECT_FALSE(PlanMeshCutting(*mesh, {}).isMoved);
}

// ---- all objects of a scene

TEST_F(SaveCut, ListsEveryObjectInItsOrder) {
    const std::string second = folder / "second.pcm";
    scan.WritePcm(second);
    const std::shared_ptr<Mesh> meshes[] = {ObjectOf(folder / "part.stl", {left}), ObjectOf(file),
                                            ObjectOf(second, {left, right}), ObjectOf(folder / "gone.pcm", {left})};
    const auto plan = PlanMeshCuttings(meshes, {});
    const CutSaveRun run = SaveMeshCuttings(meshes, 0.0f, {});
    EXPECT_TRUE(run.isWritten);
    EXPECT_EQ(run.exception, nullptr);
    ASSERT_EQ(plan.size(), 4u);
    ASSERT_EQ(run.entries.size(), 4u);
    const KV_ScenePane::CutSaveOutcome planned[] = {CutNotFromPcm, CutNothingToSave, CutToBeWritten, CutToBeWritten};
    const KV_ScenePane::CutSaveOutcome done[] = {CutNotFromPcm, CutNothingToSave, CutWritten, CutFileNotRead};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(plan[i].object, static_cast<std::int16_t>(i));
        EXPECT_EQ(run.entries[i].object, static_cast<std::int16_t>(i));
        EXPECT_EQ(plan[i].outcome, planned[i]) << i;
        EXPECT_EQ(run.entries[i].outcome, done[i]) << i;
        EXPECT_EQ(run.entries[i].file, meshes[i]->m_sName);
        EXPECT_EQ(run.entries[i].numberOfCuts, plan[i].numberOfCuts);
    }
    EXPECT_EQ(ClassesIn(file), scan.classification);
    EXPECT_EQ(ClassesIn(second), After([](int x, int y) { return IsLeft(x, y) || IsRight(x, y); }));
}

TEST_F(SaveCut, WritesNothingForAnEmptyScene) {
    const CutSaveRun run = SaveMeshCuttings({}, 0.0f, kPlane);
    EXPECT_FALSE(run.isWritten);
    EXPECT_TRUE(run.entries.empty());
}

TEST_F(SaveCut, CountsAnUnreadableFileAloneAsWritten) {
    const std::shared_ptr<Mesh> meshes[] = {ObjectOf(folder / "gone.pcm", {left})};
    EXPECT_TRUE(SaveMeshCuttings(meshes, 0.0f, {}).isWritten);
}

// Many objects of few files under names that differ: each file has the cuts of all its objects.
TEST_F(SaveCut, LosesNoCutOfObjectsFromOneFile) {
    constexpr int kFiles = 3, kObjectsPerFile = 16;
    const ScanSample wide = FlatCutScan(kObjectsPerFile + 2, 2);
    fs::create_directory(folder / "real");
    fs::create_directory_symlink("real", folder / "linked");
    std::vector<std::shared_ptr<Mesh>> meshes;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "scan" + std::to_string(i) + ".pcm";
        wide.WritePcm(folder / "real/" + name);
        fs::create_symlink("linked/" + name, folder / name);
    }
    const std::string prefixes[] = {"real/", "linked/", "", "real/../linked/./", "./real//"};
    for (int object = 0; object < kObjectsPerFile; ++object) {
        for (int i = 0; i < kFiles; ++i) {
            const std::string name = prefixes[object % 5] + "scan" + std::to_string(i) + ".pcm";
            meshes.push_back(ObjectOf(folder / name, {MaskOf(wide, [&](int x, int) { return x == object; })}));
        }
    }
    const CutSaveRun run = SaveMeshCuttings(meshes, 0.0f, {});
    for (const CutSaveEntry& saved : run.entries) EXPECT_EQ(saved.outcome, CutWritten) << saved.reason;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "scan" + std::to_string(i) + ".pcm";
        EXPECT_EQ(ClassesIn(folder / "real/" + name),
                  ClassesAfterCut(wide, [](int x, int) { return x < kObjectsPerFile; }));
        EXPECT_TRUE(fs::is_symlink(folder / name));
    }
}

// A file is replaced by another one, so that a second name of it keeps the old content: each name gets the cuts of its
// object.
TEST_F(SaveCut, WritesEachOfTwoHardLinksForItsObject) {
    const std::string other = folder / "other.pcm";
    fs::create_hard_link(file, other);
    const std::shared_ptr<Mesh> meshes[] = {ObjectOf(file, {left}), ObjectOf(other, {right})};
    EXPECT_TRUE(SaveMeshCuttings(meshes, 0.0f, {}).isWritten);
    EXPECT_EQ(ClassesIn(file), After(IsLeft));
    EXPECT_EQ(ClassesIn(other), After(IsRight));
}

TEST_F(SaveCut, AppliesTheConfidenceLimitToEveryFileThatIsWritten) {
    const std::string second = folder / "second.pcm";
    scan.confidence[0] = 0.25f;
    scan.WritePcm(file);
    scan.WritePcm(second);
    const std::shared_ptr<Mesh> meshes[] = {ObjectOf(file, {right}), ObjectOf(second)};
    EXPECT_TRUE(SaveMeshCuttings(meshes, 0.5f, {}).isWritten);
    EXPECT_EQ(ClassesIn(file), After([](int x, int y) { return IsRight(x, y) || (x == 0 && y == 0); }));
    EXPECT_EQ(ClassesIn(second), scan.classification) << "not written: it has no cut";
}

TEST_F(SaveCut, TakesRelativePathsAsTheyWereImported) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    const std::shared_ptr<Mesh> meshes[] = {ObjectOf("scan.pcm", {left}), ObjectOf("./scan.pcm", {right})};
    EXPECT_TRUE(SaveMeshCuttings(meshes, 0.0f, {}).isWritten);
    fs::current_path(before);
    EXPECT_EQ(ClassesIn(file), After([](int x, int y) { return IsLeft(x, y) || IsRight(x, y); }));
}
