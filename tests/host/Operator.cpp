#include "host/Operator.h"

#include <QImage>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <thread>

#include "support/Wait.h"

namespace {

std::map<std::string, std::string> EnvironmentOf(const DesktopKind& kind, const ScratchFolder& settings,
                                                 std::map<std::string, std::string> more) {
    // Of the test, not of the user's desktop.
    more.insert({{"XDG_CONFIG_HOME", settings.Path().string()},
                 {"HOME", settings.Path().string()},
                 {"MESA_SHADER_CACHE_DIR", KV_PICTURE_FOLDER "/shaders"},  // of all runs: compiling takes long
                 {"QT_SCALE_FACTOR", kind.scale == 1 ? "" : std::to_string(kind.scale)},
                 {"QT_QPA_PLATFORM", ""},
                 {"QT_QPA_PLATFORMTHEME", ""},
                 {"QT_STYLE_OVERRIDE", ""},
                 {"WAYLAND_DISPLAY", ""},
                 {"LANGUAGE", ""},
                 {"LC_ALL", "C.UTF-8"}});
    return more;
}

/// How often the threads of a process went to sleep so far; none while one of them runs or wants to.
std::optional<long> SleepsOf(pid_t process) {
    long sleeps = 0;
    std::error_code error;
    const std::filesystem::path threads = "/proc/" + std::to_string(process) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(threads, error)) {
        std::ifstream status(thread.path() / "status");
        for (std::string word; status >> word;) {
            if (word == "State:" && status >> word && word != "S") return std::nullopt;
            long count = 0;
            if (word == "voluntary_ctxt_switches:" && status >> count) sleeps += count;
        }
    }
    return sleeps;
}

}  // namespace

Operator::Operator(const DesktopKind& kind, std::map<std::string, std::string> environment)
    : m_kind(kind),
      m_environment(EnvironmentOf(kind, m_settings, std::move(environment))),
      m_server(kind.screen),
      m_manager(m_server.Name()),
      m_desktop(m_server.Name()) {}

void Operator::Start(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{KV_SCENEPANE};
    all.insert(all.end(), arguments.begin(), arguments.end());
    m_pProgram = StartOther(all);
    WaitFor("the window", [&] {
        if (!m_pProgram->IsRunning()) throw std::runtime_error("scenepane has ended");
        const auto window = m_desktop.FindWindow("scenepane");
        return window && m_desktop.ViewerIn(*window) && m_desktop.HasKeyboard(*window);
    });
}

std::unique_ptr<ChildProcess> Operator::StartOther(const std::vector<std::string>& arguments) const {
    std::map<std::string, std::string> environment = m_environment;
    environment["DISPLAY"] = m_server.Name();
    return std::make_unique<ChildProcess>(arguments, environment);
}

void Operator::WaitFor(const std::string& what, const std::function<bool()>& condition) const {
    if (WaitUntil(condition, [] { std::this_thread::sleep_for(std::chrono::milliseconds(10)); })) return;
    SavePicture("failed");
    throw std::runtime_error("waited for " + what + " in vain; see failed.png in " KV_PICTURE_FOLDER);
}

DesktopWindow Operator::WaitForWindow(const std::string& title) const {
    std::optional<DesktopWindow> window;
    WaitFor("a window \"" + title + "\" with the keyboard", [&] {
        window = m_desktop.FindWindow(title);
        return window && m_desktop.HasKeyboard(*window);
    });
    return *window;
}

void Operator::WaitForNoWindow(const std::string& title) const {
    WaitFor("the end of the window \"" + title + "\"", [&] { return !m_desktop.FindWindow(title); });
}

DesktopWindow Operator::MainWindow() const {
    for (const DesktopWindow& window : m_desktop.Windows()) {
        if (m_desktop.ViewerIn(window)) return window;
    }
    throw std::runtime_error("there is no main window");
}

ScreenArea Operator::Viewer() const {
    const ScreenArea area = *m_desktop.ViewerIn(MainWindow()), screen = m_desktop.WholeScreen();
    const int left = std::max(area.x, 0), right = std::min(area.x + area.width, screen.width);
    const int top = std::max(area.y, 0), bottom = std::min(area.y + area.height, screen.height);
    return {left, top, right - left, bottom - top};
}

ScreenPoint Operator::InViewer(double x, double y) const {
    const ScreenArea area = Viewer();
    return {area.x + static_cast<int>(x * (area.width - 1)), area.y + static_cast<int>(y * (area.height - 1))};
}

bool Operator::Shows(const QString& text, TextMatch match) const {
    return FindText(m_desktop.Show(), text, m_kind.scale, match).has_value();
}

void Operator::WaitForScreen(const std::string& what, const std::function<bool(const ScreenShown&)>& condition) const {
    ScreenShown last;
    WaitFor(what, [&] {
        ScreenShown now = m_desktop.Show();
        if (now == last) return false;  // a search for text takes much longer than a look
        last = std::move(now);
        return condition(last);
    });
}

ScreenArea Operator::WaitForText(const QString& text, TextMatch match) const {
    std::optional<ScreenArea> place;
    WaitForScreen("the text \"" + text.toStdString() + "\"", [&](const ScreenShown& shown) {
        place = FindText(shown, text, m_kind.scale, match);
        return place.has_value();
    });
    return *place;
}

void Operator::WaitForNoText(const QString& text, TextMatch match) const {
    WaitForScreen("the end of the text \"" + text.toStdString() + "\"",
                  [&](const ScreenShown& shown) { return !FindText(shown, text, m_kind.scale, match); });
}

void Operator::ClickText(const QString& text) const { m_desktop.Click(WaitForText(text).Middle()); }

void Operator::Choose(const std::vector<QString>& entries) const {
    for (const QString& entry : entries) ClickText(entry);
}

void Operator::AnswerFileDialog(const std::string& title, const std::string& path) const {
    (void)WaitForWindow(title);
    m_desktop.Key("ctrl+a");
    m_desktop.Type(path);
    using Clock = std::chrono::steady_clock;
    m_desktop.Key("Return");
    auto pressed = Clock::now();
    WaitFor("the end of the window \"" + title + "\"", [&] {
        const auto window = m_desktop.FindWindow(title);
        if (!window) return true;
        // A list of completions that opened meanwhile uses the key.
        if (Clock::now() - pressed > std::chrono::seconds(2) && m_desktop.HasKeyboard(*window)) {
            m_desktop.Key("Return");
            pressed = Clock::now();
        }
        return false;
    });
}

int Operator::ObjectPixels() const {
    const ScreenShown shown = ViewerPixels();
    const int side = std::min(shown.width, shown.height);
    int count = 0;
    // The square in the middle: axes, logo and texts are in the corners.
    for (int y = (shown.height - side / 2) / 2; y < (shown.height + side / 2) / 2; ++y) {
        for (int x = (shown.width - side / 2) / 2; x < (shown.width + side / 2) / 2; ++x)
            count += shown.At(x, y) != kBackground ? 1 : 0;
    }
    return count;
}

ScreenShown Operator::WaitForOtherPicture(const ScreenShown& before) const {
    WaitFor("another picture in the viewer", [&] { return ViewerPixels() != before; });
    return WaitForStillPicture();
}

ScreenShown Operator::WaitForStillPicture() const {
    constexpr std::chrono::milliseconds kStill{150};
    ScreenShown last = ViewerPixels();
    std::optional<long> sleeps;
    auto since = std::chrono::steady_clock::now();
    WaitFor("a picture that stays", [&] {
        const std::optional<long> sleepsNow = SleepsOf(m_pProgram->Id());
        ScreenShown now = ViewerPixels();
        const bool isStill = sleepsNow && sleepsNow == sleeps && now == last;
        if (!isStill) since = std::chrono::steady_clock::now();
        sleeps = sleepsNow;
        last = std::move(now);
        return isStill && std::chrono::steady_clock::now() - since >= kStill;
    });
    return last;
}

void Operator::WaitForPicture(const ScreenShown& wanted) const {
    try {
        WaitFor("the picture in wanted.png", [&] { return ViewerPixels() == wanted; });
    } catch (...) {
        SavePicture(wanted, "wanted");
        throw;
    }
}

void Operator::SavePicture(const ScreenShown& shown, const std::string& name) const {
    std::filesystem::create_directories(KV_PICTURE_FOLDER);
    const QImage image(reinterpret_cast<const uchar*>(shown.pixels.data()), shown.width, shown.height,
                       QImage::Format_RGB32);
    (void)image.save(QString(KV_PICTURE_FOLDER "/%1.png").arg(QString::fromStdString(name)));
}
