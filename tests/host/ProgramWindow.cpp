// In a file without Qt. By a connection that is opened for each question: it sees what all others have done before.
#include "host/ProgramWindow.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <memory>
#include <stdexcept>
#include <string_view>

#include "support/Wait.h"

namespace {

using Connection = std::unique_ptr<Display, int (*)(Display*)>;

Connection Open(const std::string& display) {
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });  // a window may be gone at any time
    Connection connection(XOpenDisplay(display.c_str()), XCloseDisplay);
    if (!connection) throw std::runtime_error("the X display " + display + " cannot be opened");
    return connection;
}

std::vector<Window> Children(Display* display, Window window, Window* parent = nullptr) {
    Window root = None, above = None, *list = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &above, &list, &count) == 0) return {};
    std::vector<Window> children(list, list + count);
    if (list != nullptr) XFree(list);
    if (parent != nullptr) *parent = above;
    return children;
}

bool IsVisible(Display* display, Window window) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable;
}

ScreenRect RectOf(Display* display, Window window) {
    Window root = None, child = None;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border = 0, depth = 0;
    if (XGetGeometry(display, window, &root, &x, &y, &width, &height, &border, &depth) == 0) return {};
    XTranslateCoordinates(display, window, root, 0, 0, &x, &y, &child);
    return {x, y, static_cast<int>(width), static_cast<int>(height)};
}

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
    if (IsOfProgram(display, window)) return IsVisible(display, window) ? window : None;
    for (const Window child : Children(display, window))
        if (const Window found = FindMainWindow(display, child); found != None) return found;
    return None;
}

/// The innermost of the nested native windows: that of the widget holds that of the viewer.
Window ViewerIn(Display* display, Window window) {
    Window inner = None;
    for (const Window child : Children(display, window)) {
        if (!IsVisible(display, child)) continue;
        for (const Window below : Children(display, child))
            if (IsVisible(display, below)) inner = below;
    }
    return inner;
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
               const Connection connection = Open(m_display);
               Display* const display = connection.get();
               m_window = FindMainWindow(display, DefaultRootWindow(display));
               return m_window != None && ViewerIn(display, m_window) != None;
           }) &&
           m_process.IsRunning();
}

ScreenRect ProgramWindow::Frame() const {
    const Connection connection = Open(m_display);
    Window window = m_window;
    for (Window parent = window; parent != DefaultRootWindow(connection.get()) && parent != None;) {
        window = parent;
        Children(connection.get(), window, &parent);
    }
    return RectOf(connection.get(), window);
}

ScreenRect ProgramWindow::Inner() const {
    const Connection connection = Open(m_display);
    return RectOf(connection.get(), m_window);
}

ScreenRect ProgramWindow::Viewer() const {
    const Connection connection = Open(m_display);
    return RectOf(connection.get(), ViewerIn(connection.get(), m_window));
}

ScreenRect ProgramWindow::WorkArea() const {
    const Connection connection = Open(m_display);
    Display* const display = connection.get();
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* value = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), XInternAtom(display, "_NET_WORKAREA", False), 0, 4, False,
                       XA_CARDINAL, &type, &format, &count, &left, &value);
    if (value == nullptr || count < 4) return RectOf(display, DefaultRootWindow(display));
    const auto* const numbers = reinterpret_cast<const unsigned long*>(value);
    const ScreenRect area{static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), static_cast<int>(numbers[2]),
                          static_cast<int>(numbers[3])};
    XFree(value);
    return area;
}

int ProgramWindow::Close() {
    const Connection connection = Open(m_display);
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
