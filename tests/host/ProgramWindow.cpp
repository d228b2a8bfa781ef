// In a file without Qt. By a connection that is opened for each question: it sees what all others have done before.
#include "host/ProgramWindow.h"

#include <X11/Xutil.h>

#include <string_view>
#include <utility>

#include "host/XWindows.h"
#include "support/Wait.h"

namespace {

bool IsOfProgram(Display* display, Window window) {
    XClassHint hint{};
    if (XGetClassHint(display, window, &hint) == 0) return false;
    const bool isProgram = hint.res_class != nullptr && std::string_view(hint.res_class) == "scenepane";
    XFree(hint.res_name);
    XFree(hint.res_class);
    return isProgram;
}

/// The outermost window of the program that is visible. Native windows inside it have the class of the program as well,
/// and can become visible between the questions about the main window and about them.
Window FindMainWindow(Display* display, Window window) {
    if (IsOfProgram(display, window)) return IsShown(display, window) ? window : None;
    for (const Window child : FamilyOf(display, window).children)
        if (const Window found = FindMainWindow(display, child); found != None) return found;
    return None;
}

std::map<std::string, std::string> WithDefaults(const std::string& display, const std::string& settings,
                                                std::map<std::string, std::string> environment) {
    environment.emplace("DISPLAY", display);
    environment.emplace("XDG_CONFIG_HOME", settings);
    environment.emplace("QT_QPA_PLATFORM", "");
    environment.emplace("WAYLAND_DISPLAY", "");
    return environment;
}

std::vector<std::string> WithProgram(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), KV_SCENEPANE_PROGRAM);
    return arguments;
}

}  // namespace

ProgramWindow::ProgramWindow(const std::string& display, const std::string& settings,
                             std::vector<std::string> arguments, std::map<std::string, std::string> environment)
    : m_display(display),
      m_process(WithProgram(std::move(arguments)), WithDefaults(display, settings, std::move(environment))) {}

bool ProgramWindow::IsShown() {
    return WaitUntil([&] {
               if (!m_process.IsRunning()) return true;
               const XConnection connection = OpenXConnection(m_display);
               Display* const display = connection.get();
               m_window = FindMainWindow(display, DefaultRootWindow(display));
               return m_window != None && ViewerIn(display, m_window);
           }) &&
           m_process.IsRunning();
}

ScreenArea ProgramWindow::Frame() const {
    const XConnection connection = OpenXConnection(m_display);
    Window window = m_window;
    for (Window parent = window; parent != DefaultRootWindow(connection.get()) && parent != None;)
        window = std::exchange(parent, FamilyOf(connection.get(), parent).parent);
    return AreaOf(connection.get(), window).value_or(ScreenArea());
}

ScreenArea ProgramWindow::Inner() const {
    return AreaOf(OpenXConnection(m_display).get(), m_window).value_or(ScreenArea());
}

ScreenArea ProgramWindow::Viewer() const {
    return ViewerIn(OpenXConnection(m_display).get(), m_window).value_or(ScreenArea());
}

ScreenArea ProgramWindow::WorkingArea() const {
    const XConnection connection = OpenXConnection(m_display);
    if (const std::optional<ScreenArea> area = WorkingAreaOf(connection.get())) return *area;
    return AreaOf(connection.get(), DefaultRootWindow(connection.get())).value();
}

int ProgramWindow::Close() {
    const XConnection connection = OpenXConnection(m_display);
    Display* const display = connection.get();
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = m_window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, m_window, False, NoEventMask, &event);
    XSync(display, False);
    return m_process.WaitForEnd().value_or(-1);
}
