// What an operator works with: the screen of an X server, its windows, the pointer, the keyboard and the clipboard.
// Nothing here depends on the programs whose windows are shown.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/ScreenArea.h"

/// What the screen shows, 0x00RRGGBB in rows from the top.
struct ScreenShown {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;
    [[nodiscard]] std::uint32_t At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    bool operator==(const ScreenShown&) const = default;
};

/// A window that the window manager manages.
struct DesktopWindow {
    std::uintptr_t id = 0;
    std::string title;
    ScreenArea client;  ///< without the frame
    ScreenArea frame;   ///< with the frame of the window manager
    long process = 0;   ///< 0 when the window does not name it
};

/// A connection of a test to an X server with a window manager. Every call waits until the server has executed it.
class Desktop {
public:
    /// @param display  in the form of $DISPLAY
    /// @throws std::runtime_error
    explicit Desktop(const std::string& display);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    [[nodiscard]] ScreenArea WholeScreen() const;
    [[nodiscard]] ScreenShown Show() const;
    [[nodiscard]] ScreenShown Show(const ScreenArea& area) const;

    /// Managed windows, the oldest first.
    [[nodiscard]] std::vector<DesktopWindow> Windows() const;
    /// The newest window whose title contains this text.
    [[nodiscard]] std::optional<DesktopWindow> FindWindow(const std::string& title) const;
    /// The largest window that is shown two levels inside another one: the viewer in a window of the host.
    [[nodiscard]] std::optional<ScreenArea> ViewerIn(const DesktopWindow& window) const;
    /// Whether the keyboard goes to this window or to one inside it.
    [[nodiscard]] bool HasKeyboard(const DesktopWindow& window) const;
    /// What the screen has without panels of the desktop: the working area of the window manager.
    [[nodiscard]] ScreenArea WorkingArea() const;

    void MoveTo(ScreenPoint point) const;
    /// @param button  1 left, 2 middle, 3 right, 4 and 5 the wheel, up and down
    void Press(int button = 1) const;
    void Release(int button = 1) const;
    void Click(ScreenPoint point, int button = 1) const;
    void DoubleClick(ScreenPoint point) const;
    /// Presses at the first point, moves over the others, and releases at the last.
    void Drag(const std::vector<ScreenPoint>& points, int button = 1) const;
    /// @param keys  names of X with modifiers before them: "ctrl+o", "Return", "shift+F1"
    void Key(const std::string& keys) const;
    void HoldKey(const std::string& key) const;
    void ReleaseKey(const std::string& key) const;
    /// Types printable ASCII, as on an American keyboard.
    void Type(const std::string& text) const;
    /// The text of the clipboard; empty when there is none.
    [[nodiscard]] std::string Clipboard() const;
    /// As the button of the frame: the program may ask before it closes.
    void Close(const DesktopWindow& window) const;

private:
    struct Connection;
    const std::unique_ptr<Connection> m_pX;
};
