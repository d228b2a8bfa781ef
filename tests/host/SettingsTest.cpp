// What is stored comes back, and what is no valid value is that of a first start. The settings are those of the test
// program (QtUnderXvfb.h).
#include "Settings.h"

#include <gtest/gtest.h>

#include <limits>

#include "RecentFiles.h"
#include "WindowState.h"
#include "host/QtUnderXvfb.h"
#include "support/ScratchFolder.h"

namespace {

class SettingsTest : public testing::Test {
protected:
    SettingsTest() { ForgetSettings(); }
    ~SettingsTest() override { ForgetSettings(); }
};

TEST_F(SettingsTest, AFirstStartHasTheValuesOfTheViewer) {
    EXPECT_EQ(StoredView(), ViewSettings());
    EXPECT_EQ(StoredImport().skip, 1);
    EXPECT_EQ(StoredImport().confidence, 0.0f);
    EXPECT_EQ(StoredWindow(), WindowState());
    EXPECT_TRUE(StoredRecentFiles().empty());
    EXPECT_EQ(StoredFolder(FolderUse::Export), "");
}

TEST_F(SettingsTest, WhatWasStoredComesBack) {
    const ViewSettings view{MouseScheme::Delayed, KV_ScenePane::RotateAboutHorizontal, {1, 0xFFFFFF, 3, 4}, 0.1f};
    StoreMouseScheme(view.mouse);
    StoreRotation(view.rotation);
    StoreBackground(view.background);
    StorePointSize(view.pointSize);
    EXPECT_EQ(StoredView(), view);
    StoreSkip(4);
    StoreConfidence(0.3f);
    StoreScanColor(0x123456);
    EXPECT_EQ(StoredImport().skip, 4);
    EXPECT_EQ(StoredImport().confidence, 0.3f);
    EXPECT_EQ(StoredImport().color, 0x123456);
    const WindowState window{WindowPlace{{-5, 7}, {800, 600}}, true, QByteArray("\0panes\xff", 7), {"messages"}};
    StoreWindow(window);
    EXPECT_EQ(StoredWindow(), window);
    ForgetSettings();
    EXPECT_EQ(StoredView(), ViewSettings());
    EXPECT_EQ(StoredWindow(), WindowState());
}

struct Nonsense {
    const char* key;
    QVariant value;
};
void PrintTo(const Nonsense& row, std::ostream* out) { *out << row.key; }

class SettingsWithNonsense : public testing::TestWithParam<Nonsense> {};

TEST_P(SettingsWithNonsense, AreThoseOfAFirstStart) {
    ForgetSettings();
    // Beside valid values, which count.
    StoreWindow({WindowPlace{{1, 2}, {800, 600}}, false, "panes", {}});
    OpenSettings().setValue(GetParam().key, GetParam().value);
    const QString key = GetParam().key;
    EXPECT_EQ(StoredView(), ViewSettings());
    EXPECT_EQ(StoredImport().skip, 1);
    EXPECT_EQ(StoredImport().confidence, 0.0f);
    EXPECT_EQ(StoredImport().color, ImportSettings().color);
    EXPECT_EQ(StoredWindow().place.has_value(), key != "window/place");
    EXPECT_FALSE(StoredWindow().maximized);
    EXPECT_EQ(StoredWindow().panes.isEmpty(), key.startsWith("window/panes"));
    EXPECT_TRUE(StoredRecentFiles().empty());
    EXPECT_EQ(StoredFolder(FolderUse::Open), "");
    ForgetSettings();
}

const Nonsense kNonsense[] = {
    {"view/mouseScheme", 3},
    {"view/mouseScheme", -1},
    {"view/mouseScheme", "left"},
    {"view/rotation", 4},
    {"view/background", QStringList{"1", "2", "3"}},
    {"view/background", QStringList{"1", "2", "3", "16777216"}},
    {"view/background", QStringList{"1", "2", "3", "red"}},
    {"view/pointSize", "nan"},
    {"view/pointSize", 0},
    {"view/pointSize", 64.1},
    {"import/skip", 0},
    {"import/skip", 32768},
    {"import/skip", "4 or so"},
    {"import/confidence", "inf"},
    {"import/confidence", "1e39"},
    {"import/color", -1},
    {"window/place", QStringList{"1", "2", "800"}},
    {"window/place", QStringList{"1", "2", "99", "600"}},
    {"window/place", QStringList{"1", "40000", "800", "600"}},
    {"window/place", QStringList{"1", "2", "800", "600000"}},
    {"window/maximized", 7},
    {"window/panes", "AAAA"},
    {"window/panesHash", "0"},
    {"files/recent", QStringList{"", "relative.pcm", "%00/a.pcm", "/%00"}},
    {"files/openFolder", "relative"},
    {"files/openFolder", "/no/such/folder"},
};
INSTANTIATE_TEST_SUITE_P(Settings, SettingsWithNonsense, testing::ValuesIn(kNonsense), [](const auto& row) {
    return QString(row.param.key).replace('/', '_').toStdString() + '_' + std::to_string(row.index);
});

// ---- recent files

class RecentFilesTest : public SettingsTest {
protected:
    /// An empty file. @return its path
    [[nodiscard]] std::string Make(const std::string& name) const {
        WriteBytes(m_folder / name, {});
        return m_folder / name;
    }
    const ScratchFolder m_folder;
};

TEST_F(RecentFilesTest, TheLastOneIsFirstAndEachIsThereOnce) {
    const std::string a = Make("a.pcm"), b = Make("b.pcm"), c = Make("c.pcm");
    AddRecentFiles({a, b});
    AddRecentFiles({c});
    AddRecentFiles({m_folder / "./b.pcm"});
    EXPECT_EQ(StoredRecentFiles(), (std::vector{b, c, a}));
    ClearRecentFiles();
    EXPECT_TRUE(StoredRecentFiles().empty());
}

TEST_F(RecentFilesTest, AnyBytesOfANameComeBack) {
    const std::string odd = Make("a, \"b\"\xff%41\n.pcm");
    AddRecentFiles({odd});
    EXPECT_EQ(StoredRecentFiles(), std::vector{odd});
}

TEST_F(RecentFilesTest, TenAreKept) {
    std::vector<std::string> files;
    for (int i = 0; i < 12; ++i) files.push_back(Make(std::to_string(i) + ".pcm"));
    AddRecentFiles({files[11]});
    AddRecentFiles(files);
    EXPECT_EQ(StoredRecentFiles(), std::vector(files.begin(), files.begin() + 10));
    OpenSettings().setValue("files/recent", QStringList(40, "/a") + QStringList{"/b"});
    EXPECT_EQ(StoredRecentFiles(), (std::vector<std::string>{"/a", "/b"}));
}

TEST_F(RecentFilesTest, AFolderIsOneEntryAndWhatDoesNotExistIsNone) {
    AddRecentFiles({m_folder / "none.pcm", m_folder.Path().string() + "/", m_folder.Path()});
    EXPECT_EQ(StoredRecentFiles(), std::vector{m_folder.Path().string()});
}

TEST_F(RecentFilesTest, EachKindOfDialogHasAFolderAndElseThatOfOpen) {
    const QString folder = QString::fromStdString(m_folder.Path());
    StoreFolderOf(FolderUse::Open, folder + "/a.pcm");
    EXPECT_EQ(StoredFolder(FolderUse::Open), folder);
    EXPECT_EQ(StoredFolder(FolderUse::Picture), folder);
    const ScratchFolder other;
    StoreFolderOf(FolderUse::Picture, QString::fromStdString(other / "b.png"));
    StoreFolderOf(FolderUse::Picture, "");
    EXPECT_EQ(StoredFolder(FolderUse::Picture), QString::fromStdString(other.Path()));
    EXPECT_EQ(StoredFolder(FolderUse::Export), folder);
}

// ---- the place of a window

TEST(MovedInside, TakesTheShortestWay) {
    const QRect area(100, 50, 1000, 700);
    EXPECT_EQ(MovedInside({200, 100, 300, 300}, area), QRect(200, 100, 300, 300));
    EXPECT_EQ(MovedInside({0, 0, 300, 300}, area), QRect(100, 50, 300, 300));
    EXPECT_EQ(MovedInside({900, 600, 300, 300}, area), QRect(800, 450, 300, 300));
    EXPECT_EQ(MovedInside({900, 600, 1000, 700}, area), area);
}

}  // namespace
