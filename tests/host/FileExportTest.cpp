#include "FileExport.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <new>
#include <stdexcept>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "KV_ScenePane/ScenePane.h"
#include "RegistryStart.h"
#include "host/MeshFiles.h"

namespace {

class WatchedWrite : public testing::Test {
protected:
    void SetUp() override { WriteText(m_folder / "old.ply", "old"); }

    const ScratchFolder m_folder;
    const DebugRouter m_router{[](std::string_view) {}};
};

TEST_F(WatchedWrite, OfANewFileSucceeds) {
    const ExportResult result = WatchWrite(m_folder / "new.ply", [&] { WriteText(m_folder / "new.ply", "x"); });
    EXPECT_TRUE(result.written);
    EXPECT_EQ(result.text, "");
}

TEST_F(WatchedWrite, ThatReplacesAFileByAnEqualOneSucceeds) {
    const ExportResult result = WatchWrite(m_folder / "old.ply", [&] {
        WriteText(m_folder / "beside", "old");
        EXPECT_EQ(std::rename((m_folder / "beside").c_str(), (m_folder / "old.ply").c_str()), 0);
    });
    EXPECT_TRUE(result.written);
}

TEST_F(WatchedWrite, ThatChangesAFileInPlaceSucceeds) {
    EXPECT_TRUE(WatchWrite(m_folder / "old.ply", [&] { WriteText(m_folder / "old.ply", "newer"); }).written);
}

TEST_F(WatchedWrite, ThatDoesNotChangeAnOldFileFails) {
    const ExportResult result = WatchWrite(m_folder / "old.ply", [] {});
    EXPECT_FALSE(result.written);
    EXPECT_EQ(result.text, "the viewer wrote no file and gave no reason");
}

TEST_F(WatchedWrite, ThatFailsSilentlyGetsTheReasonFromTheStateOnDisk) {
    EXPECT_EQ(WatchWrite(m_folder / "no/new.ply", [] {}).text, "No such file or directory");
    EXPECT_EQ(WatchWrite(m_folder.Path().string(), [] {}).text, "Is a directory");
    EXPECT_EQ(WatchWrite("/dev/null", [] {}).text, "not a regular file");
}

TEST_F(WatchedWrite, ThatThrowsFailsWithTheTextOfTheException) {
    const ExportResult result = WatchWrite(m_folder / "new.ply", [] { throw std::runtime_error("Failed"); });
    EXPECT_FALSE(result.written);
    EXPECT_EQ(result.text, "Failed");
}

TEST_F(WatchedWrite, ThatThrowsAfterAPartOfTheFileFails) {
    const ExportResult result = WatchWrite(m_folder / "new.ply", [&] {
        WriteText(m_folder / "new.ply", "half");
        throw std::bad_alloc();
    });
    EXPECT_FALSE(result.written);
    EXPECT_EQ(result.text, "there is not enough memory: close other programs or remove objects");
}

std::string TextOf(const std::function<void()>& thrower) {
    try {
        thrower();
    } catch (...) {
        return TextOfCaughtError();
    }
    return {};
}

TEST(TextOfCaughtError, IsOneLineForAnyException) {
    EXPECT_EQ(TextOf([] { throw std::runtime_error("a\nb\n"); }), "a; b");
    EXPECT_EQ(TextOf([] { throw std::runtime_error(""); }), "an error without a text");
    EXPECT_EQ(TextOf([] { throw std::bad_alloc(); }),
              "there is not enough memory: close other programs or remove objects");
    EXPECT_EQ(TextOf([] { throw 7; }), "an unknown error");
}

class ExportedObject : public WatchedWrite {
protected:
    void SetUp() override {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
        m_pane = CreateScenePane(request, nullptr);
        ASSERT_TRUE(m_pane);
        m_pane->Methods().ImportMeshFromMemory(4, 4, kTetraPoints[0].data(), kTetraTriangles[0].data());
        ASSERT_EQ(m_pane->Methods().GetNumObjects(), 1);
    }
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
};

TEST_F(ExportedObject, IsWrittenByTheExtensionInAnyCase) {
    const RegistryStart registry(m_pane->Methods());
    for (const char* const name : {"a.ply", "a.STL", "a.hps"}) {
        const ExportResult result = ExportObject(m_pane->Methods(), 0, m_folder / name);
        EXPECT_TRUE(result.written) << name << ": " << result.text;
        EXPECT_EQ(access((m_folder / name).c_str(), F_OK), 0);
    }
}

TEST_F(ExportedObject, IsRefusedAnyOtherExtensionWithAReason) {
    for (const char* const name : {"a.obj", "a", "a.", "a.ply.bak", "a.ois", "a.msh", "a.pcm"}) {
        const ExportResult result = ExportObject(m_pane->Methods(), 0, m_folder / name);
        EXPECT_FALSE(result.written);
        EXPECT_EQ(result.text, "only ply, stl and hps files can be written") << name;
    }
    EXPECT_EQ(m_folder.FileCount(), 0u);
}

// The same reason for every format, whichever library writes it.
TEST_F(ExportedObject, ThatCannotBeWrittenHasTheReason) {
    const RegistryStart registry(m_pane->Methods());
    for (const std::string extension : {".ply", ".stl", ".hps"}) {
        ASSERT_EQ(mkdir((m_folder / "folder" + extension).c_str(), 0700), 0);
        ASSERT_EQ(mkfifo((m_folder / "pipe" + extension).c_str(), 0600), 0);
        const auto reasonOf = [&](const std::string& name) {
            const ExportResult result = ExportObject(m_pane->Methods(), 0, m_folder / name + extension);
            EXPECT_FALSE(result.written) << name << extension;
            return result.text;
        };
        EXPECT_EQ(reasonOf("missing/a"),
                  "the file could not be replaced: No such file or directory: check the folder and its permissions")
            << extension;
        EXPECT_EQ(reasonOf("folder"), "this is a folder: choose the name of a file") << extension;
        EXPECT_EQ(reasonOf("pipe"), "this is a device or a pipe and no file: choose another name") << extension;
        // As on a full disk, a write fails after some bytes.
        const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
        const rlimit limit{10, old.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const std::string reason = reasonOf("large");
        setrlimit(RLIMIT_FSIZE, &old);
        signal(SIGXFSZ, oldHandler);
        EXPECT_EQ(reason, "the file could not be replaced: File too large: check the folder and its permissions")
            << extension;
    }
}

TEST_F(WatchedWrite, ThatThrowsAStatusGetsTheReasonFromTheStateOnDisk) {
    const auto fail = [] { throw std::runtime_error("the call failed"); };
    EXPECT_EQ(WatchWrite(m_folder / "no/new.hps", fail).text, "No such file or directory");
    EXPECT_EQ(WatchWrite(m_folder / "new.hps", fail).text,
              "libKV_Components.so has failed and gives no reason: check the file and its folder");
}

TEST_F(ExportedObject, ReportsWhatTheViewerThrows) {
    // Without the component registry no hps file can be written.
    const ExportResult result = ExportObject(m_pane->Methods(), 0, m_folder / "a.hps");
    EXPECT_FALSE(result.written);
    EXPECT_NE(result.text, "");
    EXPECT_EQ(m_folder.FileCount(), 0u);
}

}  // namespace
