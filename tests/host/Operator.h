// The program as an operator uses it: a process on a desktop with a window manager, worked with pointer and keys,
// judged by what the screen shows.
#pragma once
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/Desktop.h"
#include "host/ScreenText.h"
#include "host/WindowManager.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"
#include "support/XvfbServer.h"

struct DesktopKind {
    std::string name;
    std::string screen;  ///< "WIDTHxHEIGHT"
    int scale = 1;       ///< device pixels per pixel of Qt, as the user has set it
};

/// Every function that waits throws std::runtime_error with what it waited for; a picture of the screen is saved then.
class Operator {
public:
    static constexpr std::uint32_t kBackground = 0x191932;  ///< of the viewer at the first start, 0xRRGGBB

    /// @param environment  of the programs that are started, beside that of the test; a value that is empty removes
    explicit Operator(const DesktopKind& kind, std::map<std::string, std::string> environment = {});

    /// Starts scenepane and waits until its window has a viewer and the keyboard.
    void Start(const std::vector<std::string>& arguments = {});
    /// Starts another program on the desktop.
    [[nodiscard]] std::unique_ptr<ChildProcess> StartOther(const std::vector<std::string>& arguments) const;
    [[nodiscard]] ChildProcess& Program() { return *m_pProgram; }
    [[nodiscard]] const Desktop& Screen() const { return m_desktop; }
    [[nodiscard]] int Scale() const { return m_kind.scale; }

    /// Waits until the condition is true. @param what  completes "waited for ..."
    void WaitFor(const std::string& what, const std::function<bool()>& condition) const;
    /// Waits until a window with such a title is there, and has the keyboard.
    DesktopWindow WaitForWindow(const std::string& title) const;
    void WaitForNoWindow(const std::string& title) const;
    [[nodiscard]] DesktopWindow MainWindow() const;
    /// The part of the viewer that is on the screen.
    [[nodiscard]] ScreenArea Viewer() const;
    /// A point of the viewer: 0, 0 is its upper left corner, 1, 1 its lower right one.
    [[nodiscard]] ScreenPoint InViewer(double x, double y) const;

    [[nodiscard]] bool Shows(const QString& text, TextMatch match = TextMatch::Whole) const;
    ScreenArea WaitForText(const QString& text, TextMatch match = TextMatch::Whole) const;
    void WaitForNoText(const QString& text, TextMatch match = TextMatch::Whole) const;
    /// Clicks a text as soon as it is shown: a menu, an entry, a button.
    void ClickText(const QString& text) const;
    /// Opens a menu of the menu bar and clicks one entry after the other.
    void Choose(const std::vector<QString>& entries) const;
    /// Types a path into the dialog for files that is open, and accepts it.
    void AnswerFileDialog(const std::string& title, const std::string& path) const;

    /// Pixels of the viewer that show neither the background nor what is drawn over the scene in its corners.
    [[nodiscard]] int ObjectPixels() const;
    [[nodiscard]] ScreenShown ViewerPixels() const { return m_desktop.Show(Viewer()); }
    /// Waits until the viewer shows another picture than this one, and then as WaitForStillPicture().
    ScreenShown WaitForOtherPicture(const ScreenShown& before) const;
    /// Waits until the viewer shows this picture, which is saved as wanted.png when it does not.
    void WaitForPicture(const ScreenShown& wanted) const;
    /// Waits until the program has done nothing for a while, and the viewer shows the same. @return what it shows
    ScreenShown WaitForStillPicture() const;

    /// A PNG file in the folder of pictures of the tests.
    void SavePicture(const std::string& name) const { SavePicture(m_desktop.Show(), name); }
    void SavePicture(const ScreenShown& shown, const std::string& name) const;

    /// For the files of a test.
    [[nodiscard]] const ScratchFolder& Folder() const { return m_folder; }

private:
    /// Looks at each screen that differs from the one before. @param what  as of WaitFor()
    void WaitForScreen(const std::string& what, const std::function<bool(const ScreenShown&)>& condition) const;

    const DesktopKind m_kind;
    const ScratchFolder m_folder, m_settings;
    const std::map<std::string, std::string> m_environment;
    const XvfbServer m_server;
    const WindowManager m_manager;
    const Desktop m_desktop;
    std::unique_ptr<ChildProcess> m_pProgram;
};
