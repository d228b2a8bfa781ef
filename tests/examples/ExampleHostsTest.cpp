// Runs the example hosts on an X server of the test's own and looks at what is on its screen.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

#include "host/ScanFiles.h"
#include "support/XvfbServer.h"

// Last: Xlib defines common words.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

constexpr unsigned long kBackground = 0x191932;  // of the viewer, red first

/// The screen, and the one window of the host on it.
class Screen {
public:
    Screen() : m_pDisplay(XOpenDisplay(nullptr), &XCloseDisplay) {}
    [[nodiscard]] bool IsOpen() const { return m_pDisplay != nullptr; }
    /// How many pixels of the host's place, 800 x 600 at the top left, have the viewer's background, and how many
    /// another colour than that and black.
    struct Count {
        int background = 0, object = 0;
    };
    [[nodiscard]] Count Look() const {
        const auto destroy = [](XImage* image) { XDestroyImage(image); };
        const std::unique_ptr<XImage, decltype(destroy)> image(
            XGetImage(m_pDisplay.get(), DefaultRootWindow(m_pDisplay.get()), 0, 0, 800, 600, AllPlanes, ZPixmap),
            destroy);
        Count count;
        for (int y = 0; y < 600; y += 5) {
            for (int x = 0; x < 800; x += 5) {
                const unsigned long pixel = XGetPixel(image.get(), x, y) & 0xFFFFFF;
                if (pixel == kBackground)
                    ++count.background;
                else if (pixel != 0)
                    ++count.object;
            }
        }
        return count;
    }

private:
    std::unique_ptr<Display, int (*)(Display*)> m_pDisplay;
};

struct Host {
    const char* name;
    const char* program;
};
void PrintTo(const Host& host, std::ostream* out) { *out << host.name; }

class ExampleHost : public testing::TestWithParam<Host> {
protected:
    void SetUp() override { XvfbServer::Shared(); }
    [[nodiscard]] pid_t Start(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), GetParam().program);
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);
        pid_t process = -1;
        EXPECT_EQ(posix_spawn(&process, GetParam().program, nullptr, nullptr, words.data(), environ), 0);
        return process;
    }
    static int ExitStatus(pid_t process) {
        int status = 0;
        waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_P(ExampleHost, ShowsTheScanOfItsArgumentAndEndsWell) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 11, 11);
    const Screen screen;
    ASSERT_TRUE(screen.IsOpen());
    const pid_t process = Start({"--frames", "60", folder / "a.xdt"});
    // Its diagonal fills the height, so the square is 424 pixels wide: 0.37 of the 19,200 points that are looked at.
    Screen::Count seen;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        const Screen::Count now = screen.Look();
        if (now.object > seen.object) seen = now;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_GT(seen.background, 10000);
    EXPECT_GT(seen.object, 6000);
}

TEST_P(ExampleHost, WithoutADisplayFailsInsteadOfHanging) {
    const std::string display = getenv("DISPLAY");
    setenv("DISPLAY", ":nowhere", 1);
    const pid_t process = Start({"--frames", "1"});
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_NE(ExitStatus(process), 0);
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleHost, testing::Values(Host{"X11", X11_HOST}, Host{"Qt", QT_HOST}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
