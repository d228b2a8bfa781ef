// Class MSR as its callers use it: files on disk, null pointers when empty, false and a reason for every failure.
#include "MSRDLL/Msr.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/MsrLastReason.h"
#include "libs/PcmSample.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using MsrStorage::MSR;
namespace fs = std::filesystem;

namespace {

void ExpectEmpty(MSR& msr) {
    EXPECT_EQ(msr.GetWidth(), 0);
    EXPECT_EQ(msr.GetHeight(), 0);
    EXPECT_EQ(msr.GetXYZ(), nullptr);
    EXPECT_EQ(msr.GetConfidence(), nullptr);
    EXPECT_EQ(msr.GetPixelClassification(), nullptr);
    EXPECT_EQ(msr.GetTrafo(), nullptr);
    EXPECT_EQ(msr.GetColorData(), nullptr);
}

bool LoadFrom(MSR& msr, const std::string& path) { return msr.Load(WidePath(path).c_str(), false, true, false); }
bool SaveTo(MSR& msr, const std::string& path) { return msr.Save(WidePath(path).c_str(), true, true); }

class MsrOnDisk : public testing::Test {
protected:
    void Write(const std::string& path) { WriteBytes(path, MsrStorage::WritePcm(sample.View())); }
    ScratchFolder folder;
    PcmSample sample = SmallSample();
    std::string file = folder / "scan.pcm";
    MSR msr;
};

}  // namespace

TEST_F(MsrOnDisk, IsEmptyAtFirst) { ExpectEmpty(msr); }

TEST_F(MsrOnDisk, LoadsWhatWasWritten) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    EXPECT_EQ(msr.GetWidth(), 8);
    EXPECT_EQ(msr.GetHeight(), 5);
    EXPECT_TRUE(SameBits(msr.GetXYZ(), sample.points));
    EXPECT_TRUE(SameBits(msr.GetConfidence(), sample.confidence));
    EXPECT_TRUE(SameBits(msr.GetPixelClassification(), sample.classification));
    EXPECT_TRUE(SameBits(msr.GetColorData(), sample.colors));
    EXPECT_EQ(std::memcmp(msr.GetTrafo(), sample.trafo.data(), 64), 0);
}

TEST_F(MsrOnDisk, ReturnsNullForTheColorsOfAFileWithoutColors) {
    sample.colors.clear();
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    EXPECT_EQ(msr.GetColorData(), nullptr);
}

TEST_F(MsrOnDisk, IgnoresTheFlags) {
    Write(file);
    for (int flags = 0; flags < 8; ++flags) {
        ASSERT_TRUE(msr.Load(WidePath(file).c_str(), flags & 1, flags & 2, flags & 4));
        EXPECT_TRUE(SameBits(msr.GetXYZ(), sample.points));
        EXPECT_TRUE(SameBits(msr.GetColorData(), sample.colors));
    }
}

TEST_F(MsrOnDisk, IsEmptyAfterAFailedLoad) {
    Write(file);
    auto bytes = ReadBytes(file);
    bytes.back() ^= std::byte{1};
    WriteBytes(folder / "damaged.pcm", bytes);
    const auto reload = [&] { ASSERT_TRUE(LoadFrom(msr, file)); };
    reload();
    EXPECT_FALSE(LoadFrom(msr, folder / "missing.pcm"));
    ExpectEmpty(msr);
    reload();
    EXPECT_FALSE(LoadFrom(msr, folder / "damaged.pcm"));
    ExpectEmpty(msr);
    reload();
    EXPECT_FALSE(msr.Load(nullptr, false, true, false));
    ExpectEmpty(msr);
}

TEST_F(MsrOnDisk, LoadRefusesFoldersPipesAndDevicesWithoutWaiting) {
    const std::string pipe = folder / "pipe.pcm";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(LoadFrom(msr, pipe));
    EXPECT_FALSE(LoadFrom(msr, folder / ""));
    EXPECT_FALSE(LoadFrom(msr, "/dev/zero"));
}

TEST_F(MsrOnDisk, LoadsAFileWhoseNameIsNotUtf8) {
    const std::string odd = folder / "scan\xFF\xC3.pcm";
    Write(odd);
    ASSERT_TRUE(LoadFrom(msr, odd));
    msr.GetPixelClassification()[0] = 250;
    ASSERT_TRUE(SaveTo(msr, odd));
    EXPECT_EQ(MsrStorage::ReadPcmFile(odd).m_pClassification[0], 250);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(MsrOnDisk, SaveWritesTheValuesThatWereChangedThroughThePointersOnly) {
    sample.foreign.push_back({0x65746F6E, 3, 4, std::vector<std::byte>(5, std::byte{6})});
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    for (std::size_t i = 0; i < sample.Pixels(); i += 2)
        sample.classification[i] = msr.GetPixelClassification()[i] = 250;
    ASSERT_TRUE(SaveTo(msr, file));
    const MsrStorage::PcmMeasurement saved = MsrStorage::ReadPcmFile(file);
    ExpectSame(saved, sample);
    ASSERT_EQ(saved.m_vForeign.size(), 1u);
    EXPECT_EQ(saved.m_vForeign[0].m_vBytes, sample.foreign[0].m_vBytes);
}

TEST_F(MsrOnDisk, SaveOfAnEmptyMeasurementFailsAndWritesNothing) {
    Write(file);
    const auto before = ReadBytes(file);
    EXPECT_FALSE(SaveTo(msr, file));
    EXPECT_FALSE(SaveTo(msr, folder / "new.pcm"));
    EXPECT_EQ(ReadBytes(file), before);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(MsrOnDisk, SaveCreatesANewFileWithTheUmaskOfTheProcess) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    const mode_t mask = umask(027);
    EXPECT_TRUE(SaveTo(msr, folder / "new.pcm"));
    umask(mask);
    struct stat info {};
    ASSERT_EQ(stat((folder / "new.pcm").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(ReadBytes(folder / "new.pcm"), ReadBytes(file));
}

TEST_F(MsrOnDisk, SaveKeepsTheModeOfTheOldFile) {
    for (const mode_t mode : {0600u, 0664u, 0777u}) {
        Write(file);
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        ASSERT_TRUE(LoadFrom(msr, file));
        ASSERT_TRUE(SaveTo(msr, file));
        struct stat info {};
        ASSERT_EQ(stat(file.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777, mode);
    }
}

TEST_F(MsrOnDisk, SaveThroughALinkReplacesTheFileThatItPointsTo) {
    fs::create_directory(folder / "real");
    const std::string real = folder / "real/scan.pcm";
    Write(real);
    fs::create_symlink("real/scan.pcm", folder / "inner.pcm");
    fs::create_symlink(folder / "inner.pcm", folder / "outer.pcm");
    ASSERT_TRUE(LoadFrom(msr, folder / "outer.pcm"));
    msr.GetPixelClassification()[1] = 251;
    ASSERT_TRUE(SaveTo(msr, folder / "outer.pcm"));
    EXPECT_TRUE(fs::is_symlink(folder / "outer.pcm"));
    EXPECT_TRUE(fs::is_symlink(folder / "inner.pcm"));
    EXPECT_FALSE(fs::is_symlink(real));
    EXPECT_EQ(MsrStorage::ReadPcmFile(real).m_pClassification[1], 251);
}

TEST_F(MsrOnDisk, SaveThroughADanglingLinkCreatesTheFile) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    fs::create_symlink("later.pcm", folder / "link.pcm");
    ASSERT_TRUE(SaveTo(msr, folder / "link.pcm"));
    EXPECT_TRUE(fs::is_symlink(folder / "link.pcm"));
    EXPECT_EQ(ReadBytes(folder / "later.pcm"), ReadBytes(file));
}

TEST_F(MsrOnDisk, SaveRefusesTargetsThatAreNotRegularFiles) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    const std::string pipe = folder / "pipe.pcm";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("loop.pcm", folder / "loop.pcm");
    EXPECT_FALSE(SaveTo(msr, pipe));
    EXPECT_FALSE(SaveTo(msr, folder / "."));
    EXPECT_FALSE(SaveTo(msr, folder / "loop.pcm"));
    EXPECT_FALSE(SaveTo(msr, folder / "no such folder/scan.pcm"));
    EXPECT_FALSE(SaveTo(msr, ""));
    EXPECT_FALSE(msr.Save(nullptr, true, true));
    EXPECT_EQ(folder.FileCount(), 3u);
}

TEST_F(MsrOnDisk, SaveDoesNotReplaceAWriteProtectedFile) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(chmod((folder / "").c_str(), 0777), 0);  // the folder would allow anybody to replace the file
    const auto before = ReadBytes(file);
    constexpr int kRefused = 3;
    const pid_t child = fork();
    if (child == 0) {  // root can write every file, so the child changes its user
        if (geteuid() == 0 && setuid(65534) != 0) _exit(1);
        _exit(SaveTo(msr, file) ? 2 : kRefused);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == kRefused) << status;
    EXPECT_EQ(ReadBytes(file), before);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(MsrOnDisk, SaveWritesToANameOfTheGreatestLength) {
    Write(file);
    ASSERT_TRUE(LoadFrom(msr, file));
    EXPECT_TRUE(SaveTo(msr, folder / (std::string(251, 'n') + ".pcm")));
}

TEST_F(MsrOnDisk, SaveTrafoMatrixReplacesTheTransformOnly) {
    sample.foreign.push_back({0x65746F6E, 3, 4, std::vector<std::byte>(5, std::byte{6})});
    Write(file);
    for (std::size_t i = 0; i < 16; ++i) sample.trafo[i] = 100.0f + static_cast<float>(i);
    ASSERT_TRUE(MSR::SaveTrafoMatrix(WidePath(file).c_str(), sample.trafo.data()));
    const MsrStorage::PcmMeasurement saved = MsrStorage::ReadPcmFile(file);
    ExpectSame(saved, sample);
    EXPECT_EQ(saved.m_vForeign.size(), 1u);
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST_F(MsrOnDisk, SaveTrafoMatrixRefusesADamagedFile) {
    Write(file);
    auto bytes = ReadBytes(file);
    bytes.back() ^= std::byte{1};
    WriteBytes(file, bytes);
    EXPECT_FALSE(MSR::SaveTrafoMatrix(WidePath(file).c_str(), sample.trafo.data()));
    EXPECT_EQ(ReadBytes(file), bytes);
    EXPECT_FALSE(MSR::SaveTrafoMatrix(WidePath(folder / "missing.pcm").c_str(), sample.trafo.data()));
    EXPECT_FALSE(MSR::SaveTrafoMatrix(nullptr, sample.trafo.data()));
    EXPECT_FALSE(MSR::SaveTrafoMatrix(WidePath(file).c_str(), nullptr));
    EXPECT_EQ(folder.FileCount(), 1u);
}

namespace {

/// A measurement of more than 2000 bytes, so that a cut can be in its header and in its sections.
class MsrReason : public testing::Test {
protected:
    /// The reason after loading a file with these bytes, which must fail.
    std::string ReasonFor(const std::vector<std::byte>& bytes) {
        WriteBytes(file, bytes);
        EXPECT_FALSE(LoadFrom(msr, file));
        return MsrLastReason();
    }
    [[nodiscard]] std::vector<std::byte> CutAt(std::size_t size) const {
        return {good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)};
    }
    ScratchFolder folder;
    std::string file = folder / "scan.pcm";
    std::vector<std::byte> good = MsrStorage::WritePcm(RandomSample(40, 30, 0.4, false, 3).View());
    MSR msr;
};

}  // namespace

TEST_F(MsrReason, NamesTheByteAtWhichTheHeaderIsCutShort) {
    EXPECT_EQ(ReasonFor(CutAt(100)), "header is cut short at byte 100");
    EXPECT_EQ(ReasonFor({}), "header is cut short at byte 0");
}

TEST_F(MsrReason, NamesBothLengthsOfAFileThatIsCutShort) {
    ASSERT_GT(good.size(), 2000u);
    EXPECT_EQ(ReasonFor(CutAt(2000)),
              "file has another length than it should (2000 bytes, not " + std::to_string(good.size()) + ")");
}

// The table has five entries: TRAF, COVR, XYZ, CONF, CLAS. The first section begins at 32 + 5 * 24 + 8 = 160.
TEST_F(MsrReason, NamesTheSectionThatIsDamaged) {
    auto bytes = good;
    bytes[160 + 17] ^= std::byte{1};
    EXPECT_EQ(ReasonFor(bytes), "a section is damaged (TRAF at byte 160)");
    bytes = good;
    bytes.back() ^= std::byte{1};
    EXPECT_TRUE(ReasonFor(bytes).starts_with("a section is damaged (CLAS at byte ")) << MsrLastReason();
    bytes = good;
    bytes[40] ^= std::byte{1};
    EXPECT_EQ(ReasonFor(bytes), "header is damaged");
}

TEST_F(MsrReason, ContainsTheSystemsReasonWhenTheFileCannotBeOpened) {
    EXPECT_FALSE(LoadFrom(msr, folder / "missing.pcm"));
    EXPECT_STREQ(MsrLastReason(), "cannot be opened: No such file or directory");
    EXPECT_FALSE(LoadFrom(msr, folder.Path().string()));
    EXPECT_STREQ(MsrLastReason(), "is not a regular file");
    EXPECT_FALSE(msr.Load(nullptr, false, true, false));
    EXPECT_STREQ(MsrLastReason(), "there is no path");
}

TEST_F(MsrReason, IsSetByAFailedSave) {
    EXPECT_FALSE(SaveTo(msr, file));
    EXPECT_STREQ(MsrLastReason(), "impossible grid size") << "an empty measurement";
    WriteBytes(file, good);
    ASSERT_TRUE(LoadFrom(msr, file));
    EXPECT_FALSE(SaveTo(msr, folder / "no such folder/scan.pcm"));
    EXPECT_STREQ(MsrLastReason(), "cannot open the folder: No such file or directory");
    EXPECT_FALSE(MSR::SaveTrafoMatrix(WidePath(file).c_str(), nullptr));
    EXPECT_STREQ(MsrLastReason(), "there is no matrix");
}

TEST_F(MsrReason, IsClearedByTheNextOperationThatSucceeds) {
    EXPECT_NE(ReasonFor(CutAt(100)), "");
    WriteBytes(file, good);
    ASSERT_TRUE(LoadFrom(msr, file));
    EXPECT_STREQ(MsrLastReason(), "");
    EXPECT_FALSE(SaveTo(msr, ""));
    EXPECT_STRNE(MsrLastReason(), "");
    ASSERT_TRUE(SaveTo(msr, file));
    EXPECT_STREQ(MsrLastReason(), "");
}

TEST_F(MsrReason, IsKeptPerThread) {
    EXPECT_NE(ReasonFor(CutAt(100)), "");
    std::string beforeAnyOperation = "unset", afterAFailure;
    std::thread([&] {
        beforeAnyOperation = MsrLastReason();
        MSR other;
        EXPECT_FALSE(LoadFrom(other, folder / "missing.pcm"));
        afterAFailure = MsrLastReason();
    }).join();
    EXPECT_EQ(beforeAnyOperation, "");
    EXPECT_EQ(afterAFailure, "cannot be opened: No such file or directory");
    EXPECT_STREQ(MsrLastReason(), "header is cut short at byte 100");
}
