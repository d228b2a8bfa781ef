#include "PlatformChoice.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "host/QtUnderXvfb.h"
#include "support/ScratchFolder.h"

namespace {

QStringList PluginFolders() {
    QStringList folders;
    for (const QString& folder : QCoreApplication::libraryPaths()) folders << folder + "/platforms";
    return folders;
}

TEST(PluginProblem, ThereIsNoneWithAnInstalledPlugin) {
    const ScratchFolder empty;
    EXPECT_EQ(PluginProblem("xcb", PluginFolders()), "");
    EXPECT_EQ(PluginProblem("xcb", QStringList(QString::fromStdString(empty.Path())) + PluginFolders()), "");
}

TEST(PluginProblem, NamesAPluginThatIsMissing) {
    const ScratchFolder empty;
    EXPECT_EQ(PluginProblem("xcb", {QString::fromStdString(empty.Path())}), "Qt has no platform plugin xcb");
    EXPECT_EQ(PluginProblem("glass", PluginFolders()), "Qt has no platform plugin glass");
}

TEST(PluginProblem, SaysWhyAPluginCannotBeLoaded) {
    const ScratchFolder folder;
    WriteBytes(folder / "libqxcb.so", {std::byte{1}});
    const std::string problem = PluginProblem("xcb", {QString::fromStdString(folder.Path())});
    const std::string start = "Qt's platform plugin xcb cannot be loaded: ";
    EXPECT_TRUE(problem.starts_with(start) && problem.size() > start.size()) << problem;
    EXPECT_EQ(problem.find('\n'), std::string::npos);
}

}  // namespace
