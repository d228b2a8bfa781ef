// The program as a desktop starts it: the window system that it chooses, and the place of its window with its frame.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/ProgramWindow.h"
#include "host/WindowManager.h"
#include "support/ScratchFolder.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

namespace {

struct Platform {
    const char* name;
    std::map<std::string, std::string> environment;
};
void PrintTo(const Platform& row, std::ostream* out) { *out << row.name; }

// ---- the window system

class WindowOpensOnX11 : public testing::TestWithParam<Platform> {};

TEST_P(WindowOpensOnX11, WhateverTheEnvironmentNames) {
    const ScratchFolder settings;
    ProgramWindow window(XvfbServer::Shared().Name(), settings.Path(), {}, GetParam().environment);
    EXPECT_TRUE(window.IsShown());
    EXPECT_EQ(window.Close(), 0);
}

const Platform kUsable[] = {
    {"Nothing", {}},
    {"Wayland", {{"QT_QPA_PLATFORM", "wayland"}, {"WAYLAND_DISPLAY", "wayland-7"}}},
    {"WaylandEgl", {{"QT_QPA_PLATFORM", "wayland-egl"}}},
    {"XcbThenWayland", {{"QT_QPA_PLATFORM", "xcb;wayland"}}},
    {"WaylandThenXcb", {{"QT_QPA_PLATFORM", "wayland;xcb"}}},
    {"APluginThatDoesNotExist", {{"QT_QPA_PLATFORM", "glass"}}},
    {"ThePlatformOfAFrameBuffer", {{"QT_QPA_PLATFORM", "linuxfb:fb=/dev/none"}}},
    {"AStyleThatDoesNotExist", {{"QT_STYLE_OVERRIDE", "glass"}}},
    {"AFolderWithoutPlugins", {{"QT_QPA_PLATFORM_PLUGIN_PATH", "/var/empty"}, {"QT_PLUGIN_PATH", "/var/empty"}}},
};
INSTANTIATE_TEST_SUITE_P(Platform, WindowOpensOnX11, testing::ValuesIn(kUsable),
                         [](const auto& row) { return row.param.name; });

class ProgramEndsWithStatusOne : public testing::TestWithParam<Platform> {};

TEST_P(ProgramEndsWithStatusOne, WithoutAnXDisplay) {
    const ScratchFolder settings;
    ProgramWindow window(XvfbServer::Shared().Name(), settings.Path(), {}, GetParam().environment);
    EXPECT_EQ(window.Process().WaitForEnd(), 1);
}

const Platform kUnusable[] = {
    {"WaylandOnly", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-7"}}},
    {"WaylandOnlyAndItsName", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-7"}, {"QT_QPA_PLATFORM", "wayland"}}},
    {"NothingAndTheNameOfX11", {{"DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"}}},
    {"ADisplayThatRefuses", {{"DISPLAY", ":4095"}, {"QT_QPA_PLATFORM", "xcb"}}},
    {"ADisplayThatRefusesAndWayland", {{"DISPLAY", ":4095"}, {"QT_QPA_PLATFORM", "wayland"}}},
};
INSTANTIATE_TEST_SUITE_P(Platform, ProgramEndsWithStatusOne, testing::ValuesIn(kUnusable),
                         [](const auto& row) { return row.param.name; });

// ---- the place

struct Place {
    const char* name;
    const char* screen;    // of the display
    const char* settings;  // lines of the settings file
};
void PrintTo(const Place& row, std::ostream* out) { *out << row.name; }

class WindowWithItsFrame : public testing::TestWithParam<Place> {};

TEST_P(WindowWithItsFrame, IsInsideTheScreenAndHalfOfItIsTheViewer) {
    const XvfbServer server(GetParam().screen);
    const WindowManager manager(server.Name());
    const ScratchFolder settings;
    std::filesystem::create_directory(settings.Path() / "scenepane");
    std::ofstream(settings.Path() / "scenepane/scenepane.conf") << GetParam().settings;
    ProgramWindow window(server.Name(), settings.Path());
    ASSERT_TRUE(window.IsShown());
    EXPECT_TRUE(WaitUntil([&] { return window.Frame().height > window.Inner().height; })) << "openbox adds a title bar";
    // The window is corrected when it is on the screen with its frame.
    EXPECT_TRUE(WaitUntil([&] { return window.WorkingArea().Holds(window.Frame()); }))
        << "frame " << window.Frame().x << ' ' << window.Frame().y << ' ' << window.Frame().width << ' '
        << window.Frame().height;
    EXPECT_TRUE(WaitUntil([&] { return 2 * window.Viewer().width >= window.Inner().width; }))
        << window.Viewer().width << " of " << window.Inner().width;
    EXPECT_EQ(window.Close(), 0);
}

const Place kPlaces[] = {
    {"LargeScreen", "1600x1000", ""},
    {"Laptop", "1366x768", ""},
    {"SmallScreen", "1024x768", ""},
    {"LowScreen", "1280x720", ""},
    {"LowestScreen", "1024x600", ""},
    {"OfALargerScreen", "1366x768", "[window]\nplace=200, 150, 2400, 1300\n"},
    {"OfAScreenThatIsGone", "1366x768", "[window]\nplace=2000, 100, 900, 600\n"},
    {"PartlyOutside", "1366x768", "[window]\nplace=700, 400, 900, 600\n"},
    {"AboveTheScreen", "1366x768", "[window]\nplace=100, -300, 900, 700\n"},
    {"Maximized", "1366x768", "[window]\nmaximized=true\nplace=10, 10, 900, 600\n"},
    {"Nonsense", "1366x768", "[window]\nplace=1, 2, x\nmaximized=17\npanes=AAAA\npanesHash=1\n"},
};
INSTANTIATE_TEST_SUITE_P(Place, WindowWithItsFrame, testing::ValuesIn(kPlaces),
                         [](const auto& row) { return row.param.name; });

}  // namespace
