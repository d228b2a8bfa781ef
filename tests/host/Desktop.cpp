// By Xlib and XTest, in a file without Qt, because names of Xlib and Qt collide.
#include "host/Desktop.h"

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#include "host/XWindows.h"
#include "support/Wait.h"

namespace {

KeySym SymbolOf(const std::string& name) {
    if (name == "ctrl") return XK_Control_L;
    if (name == "shift") return XK_Shift_L;
    if (name == "alt") return XK_Alt_L;
    const KeySym symbol = XStringToKeysym(name.c_str());
    if (symbol == NoSymbol) throw std::runtime_error("there is no key " + name);
    return symbol;
}

}  // namespace

struct Desktop::Connection {
    explicit Connection(const std::string& name) : owned(OpenXConnection(name)) {}

    const XConnection owned;
    Display* const display = owned.get();
    const Window root = DefaultRootWindow(display);

    void Sync() const { XSync(display, False); }
    void FakeKey(KeySym symbol, bool down) const {
        const KeyCode code = XKeysymToKeycode(display, symbol);
        if (code == 0) throw std::runtime_error("the keyboard has no such key");
        XTestFakeKeyEvent(display, code, down ? True : False, CurrentTime);
        Sync();
    }
};

Desktop::Desktop(const std::string& display) : m_pX(std::make_unique<Connection>(display)) {}

Desktop::~Desktop() = default;

ScreenArea Desktop::WholeScreen() const {
    Display* const d = m_pX->display;
    return {0, 0, DisplayWidth(d, DefaultScreen(d)), DisplayHeight(d, DefaultScreen(d))};
}

ScreenShown Desktop::Show() const { return Show(WholeScreen()); }

ScreenShown Desktop::Show(const ScreenArea& area) const {
    XImage* const image = XGetImage(m_pX->display, m_pX->root, area.x, area.y, static_cast<unsigned>(area.width),
                                    static_cast<unsigned>(area.height), AllPlanes, ZPixmap);
    if (image == nullptr) throw std::runtime_error("the area is not on the screen");
    ScreenShown shown{area.width, area.height, {}};
    shown.pixels.resize(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
    // 32 bits per pixel in the order of the machine, as Xvfb has them for 24 bits of colour.
    if (image->bits_per_pixel != 32) throw std::runtime_error("the screen has no 32 bits per pixel");
    for (int row = 0; row < area.height; ++row) {
        auto* const to = shown.pixels.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(area.width);
        std::memcpy(to, image->data + static_cast<std::ptrdiff_t>(row) * image->bytes_per_line,
                    static_cast<std::size_t>(area.width) * 4);
    }
    for (std::uint32_t& pixel : shown.pixels) pixel &= 0xFFFFFF;
    XDestroyImage(image);
    return shown;
}

std::vector<DesktopWindow> Desktop::Windows() const {
    Display* const d = m_pX->display;
    std::vector<DesktopWindow> windows;
    for (const Window id : ReadProperty(d, m_pX->root, "_NET_CLIENT_LIST").words) {
        const std::optional<ScreenArea> area = AreaOf(d, id);
        if (!area) continue;
        DesktopWindow window{id, ReadProperty(d, id, "_NET_WM_NAME").bytes, *area, *area, 0};
        const XProperty frame = ReadProperty(d, id, "_NET_FRAME_EXTENTS");  // left, right, top, bottom
        if (frame.words.size() == 4) {
            std::array<int, 4> n{};
            std::ranges::transform(frame.words, n.begin(), [](unsigned long w) { return static_cast<int>(w); });
            window.frame = {area->x - n[0], area->y - n[2], area->width + n[0] + n[1], area->height + n[2] + n[3]};
        }
        const XProperty process = ReadProperty(d, id, "_NET_WM_PID");
        if (!process.words.empty()) window.process = static_cast<long>(process.words[0]);
        windows.push_back(window);
    }
    return windows;
}

std::optional<DesktopWindow> Desktop::FindWindow(const std::string& title) const {
    std::optional<DesktopWindow> found;
    for (const DesktopWindow& window : Windows()) {
        if (window.title.find(title) != std::string::npos) found = window;
    }
    return found;
}

std::optional<ScreenArea> Desktop::ViewerIn(const DesktopWindow& window) const {
    return ::ViewerIn(m_pX->display, window.id);
}

bool Desktop::HasKeyboard(const DesktopWindow& window) const {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(m_pX->display, &focus, &revert);
    while (focus != None && focus != PointerRoot && focus != m_pX->root) {
        if (focus == window.id) return true;
        focus = FamilyOf(m_pX->display, focus).parent;
    }
    return false;
}

ScreenArea Desktop::WorkingArea() const {
    const std::optional<ScreenArea> area = WorkingAreaOf(m_pX->display);
    if (!area) throw std::runtime_error("the window manager has no working area");
    return *area;
}

void Desktop::MoveTo(ScreenPoint point) const {
    XTestFakeMotionEvent(m_pX->display, -1, point.x, point.y, CurrentTime);
    m_pX->Sync();
}

void Desktop::Press(int button) const {
    XTestFakeButtonEvent(m_pX->display, static_cast<unsigned>(button), True, CurrentTime);
    m_pX->Sync();
}

void Desktop::Release(int button) const {
    XTestFakeButtonEvent(m_pX->display, static_cast<unsigned>(button), False, CurrentTime);
    m_pX->Sync();
}

void Desktop::Click(ScreenPoint point, int button) const {
    MoveTo(point);
    Press(button);
    Release(button);
}

// The requests arrive together: the server gives each event its time, and on a busy machine the second click would be
// too late for a double click.
void Desktop::DoubleClick(ScreenPoint point) const {
    MoveTo(point);
    for (const Bool down : {True, False, True, False}) XTestFakeButtonEvent(m_pX->display, Button1, down, CurrentTime);
    m_pX->Sync();
}

void Desktop::Drag(const std::vector<ScreenPoint>& points, int button) const {
    MoveTo(points.front());
    Press(button);
    for (const ScreenPoint& point : points) MoveTo(point);
    Release(button);
}

void Desktop::Key(const std::string& keys) const {
    std::vector<KeySym> symbols;
    for (std::size_t start = 0; start <= keys.size();) {
        const std::size_t end = std::min(keys.find('+', start), keys.size());
        symbols.push_back(SymbolOf(keys.substr(start, end - start)));
        start = end + 1;
    }
    for (const KeySym symbol : symbols) m_pX->FakeKey(symbol, true);
    for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol) m_pX->FakeKey(*symbol, false);
}

void Desktop::HoldKey(const std::string& key) const { m_pX->FakeKey(SymbolOf(key), true); }
void Desktop::ReleaseKey(const std::string& key) const { m_pX->FakeKey(SymbolOf(key), false); }

void Desktop::Type(const std::string& text) const {
    for (const char letter : text) {
        const auto symbol = static_cast<KeySym>(static_cast<unsigned char>(letter));  // the same for printable ASCII
        const KeyCode code = XKeysymToKeycode(m_pX->display, symbol);
        const bool shifted = XkbKeycodeToKeysym(m_pX->display, code, 0, 0) != symbol;
        if (shifted) m_pX->FakeKey(XK_Shift_L, true);
        m_pX->FakeKey(symbol, true);
        m_pX->FakeKey(symbol, false);
        if (shifted) m_pX->FakeKey(XK_Shift_L, false);
    }
}

std::string Desktop::Clipboard() const {
    Display* const d = m_pX->display;
    const Window window = XCreateSimpleWindow(d, m_pX->root, 0, 0, 1, 1, 0, 0, 0);
    const Atom clipboard = XInternAtom(d, "CLIPBOARD", False), utf8 = XInternAtom(d, "UTF8_STRING", False);
    XConvertSelection(d, clipboard, utf8, XInternAtom(d, "KV_TEST", False), window, CurrentTime);
    std::string text;
    (void)WaitUntil([&] {
        XEvent event;
        if (XCheckTypedWindowEvent(d, window, SelectionNotify, &event) == False) return false;
        if (event.xselection.property != None) text = ReadProperty(d, window, "KV_TEST").bytes;
        return true;
    });
    XDestroyWindow(d, window);
    m_pX->Sync();
    return text;
}

void Desktop::Close(const DesktopWindow& window) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window.id;
    event.xclient.message_type = XInternAtom(m_pX->display, "_NET_CLOSE_WINDOW", False);
    event.xclient.format = 32;
    event.xclient.data.l[1] = 2;  // from a pager, on behalf of the user
    XSendEvent(m_pX->display, m_pX->root, False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    m_pX->Sync();
}
