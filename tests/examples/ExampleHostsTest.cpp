// Runs the example hosts on an X server of the test program: what they show, and that closing their window ends them.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include "host/ScanFiles.h"
#include "support/XvfbServer.h"

// Last: Xlib defines common words.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

constexpr unsigned long kBackground = 0x191932;  // of the viewer, 0xRRGGBB

/// Waits until @p condition is true; false when it is not within a minute.
bool WaitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // leaves the processor to host and server
    }
    return true;
}

/// The screen, and the one window of the host on it.
class Screen {
public:
    Screen() : m_pDisplay(XOpenDisplay(nullptr), &XCloseDisplay) {}
    [[nodiscard]] bool IsOpen() const { return m_pDisplay != nullptr; }

    /// Of every fifth pixel in both directions of the host's area, 800 x 600 at the top left: how many have the
    /// viewer's background, and how many a colour other than that and black.
    struct Count {
        int background = 0, object = 0;
    };
    [[nodiscard]] Count CountPixels() const {
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

    /// Asks every window on the screen that supports it to close, as the close button of a window manager does.
    void CloseWindows() const {
        Display* const display = m_pDisplay.get();
        const Atom protocols = XInternAtom(display, "WM_PROTOCOLS", False);
        const Atom close = XInternAtom(display, "WM_DELETE_WINDOW", False);
        Window root = None, parent = None, *windows = nullptr;
        unsigned count = 0;
        XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count);
        for (unsigned i = 0; i < count; ++i) {
            if (!Supports(windows[i], close)) continue;
            XEvent event{};
            event.xclient.type = ClientMessage;
            event.xclient.window = windows[i];
            event.xclient.message_type = protocols;
            event.xclient.format = 32;
            event.xclient.data.l[0] = static_cast<long>(close);
            XSendEvent(display, windows[i], False, NoEventMask, &event);
        }
        if (windows != nullptr) XFree(windows);
        XSync(display, False);
    }

private:
    [[nodiscard]] bool Supports(Window window, Atom protocol) const {
        Atom* supported = nullptr;
        int count = 0;
        if (XGetWMProtocols(m_pDisplay.get(), window, &supported, &count) == 0) return false;
        bool found = false;
        for (int i = 0; i < count; ++i) found = found || supported[i] == protocol;
        XFree(supported);
        return found;
    }

    std::unique_ptr<Display, int (*)(Display*)> m_pDisplay;
};

/// A program that runs. A test that fails before its end kills it.
class Program {
public:
    explicit Program(std::vector<std::string> arguments) {
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);
        if (posix_spawn(&m_nProcess, words[0], nullptr, nullptr, words.data(), environ) != 0)
            throw std::runtime_error("cannot start " + arguments[0]);
    }
    ~Program() {
        if (m_nProcess < 0) return;
        kill(m_nProcess, SIGKILL);
        waitpid(m_nProcess, nullptr, 0);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] bool IsRunning() {
        int status = 0;
        if (m_nProcess < 0) return false;
        if (waitpid(m_nProcess, &status, WNOHANG) == 0) return true;
        m_nProcess = -1;
        m_nExitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return false;
    }
    /// Waits for the end; -1 when the program does not end or was killed by a signal.
    [[nodiscard]] int ExitStatus() {
        return WaitUntil([this] { return !IsRunning(); }) ? m_nExitStatus : -1;
    }

private:
    pid_t m_nProcess = -1;  // -1 when it does not run
    int m_nExitStatus = -1;
};

struct Host {
    const char* name;
    const char* program;
};
void PrintTo(const Host& host, std::ostream* out) { *out << host.name; }

class ExampleHost : public testing::TestWithParam<Host> {
protected:
    void SetUp() override { XvfbServer::Shared(); }
};

TEST_P(ExampleHost, ShowsTheScanOfItsArgumentUntilItsWindowIsClosed) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 11, 11);
    const Screen screen;
    ASSERT_TRUE(screen.IsOpen());
    Program host({GetParam().program, folder / "a.xdt"});
    // The diagonal of the square fills the height, so it is 424 pixels wide: 0.37 of the 19,200 pixels that are
    // counted.
    Screen::Count last;
    const auto showsScan = [&] {
        last = screen.CountPixels();
        return (last.background > 10000 && last.object > 6000) || !host.IsRunning();
    };
    EXPECT_TRUE(WaitUntil(showsScan)) << last.background << " and " << last.object << " pixels";
    ASSERT_TRUE(host.IsRunning()) << "it ended before its window was closed, with status " << host.ExitStatus();
    screen.CloseWindows();
    EXPECT_EQ(host.ExitStatus(), 0);
}

TEST_P(ExampleHost, FailsWithoutADisplay) {
    const std::string display = getenv("DISPLAY");
    setenv("DISPLAY", ":nowhere", 1);
    Program host({GetParam().program});
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_TRUE(WaitUntil([&] { return !host.IsRunning(); })) << "it hangs";
    EXPECT_NE(host.ExitStatus(), 0);
}

const Host kHosts[] = {
    {"X11", X11_HOST},
    {"Qt", QT_HOST},
#ifdef GTK_HOST
    {"Gtk", GTK_HOST},
#endif
#ifdef SDL_HOST
    {"Sdl", SDL_HOST},
#endif
};
INSTANTIATE_TEST_SUITE_P(Examples, ExampleHost, testing::ValuesIn(kHosts),
                         [](const auto& row) { return row.param.name; });

}  // namespace
