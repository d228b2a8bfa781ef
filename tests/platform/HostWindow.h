// A host's window on a connection of its own, and what a host can see of other windows.
#pragma once
#include <string>

#include "platform/DrawingClient.h"

struct _XDisplay;

struct WindowPlace {
    unsigned long parent = 0;
    int x = 0, y = 0, width = 0, height = 0;
    bool isMapped = false;
};

/// A mapped window of 640 x 480 at the top left of the screen; needs $DISPLAY.
class HostWindow {
public:
    HostWindow();
    ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    [[nodiscard]] unsigned long Id() const { return m_nWindow; }
    [[nodiscard]] _XDisplay* Display() const { return m_pDisplay; }
    unsigned long MakePixmap();
    unsigned long MakeInputOnly();

    WindowPlace PlaceOf(unsigned long window);
    int ChildCount();
    /// Windows of the screen with that title; @p place takes the place of the last.
    int CountTitled(const std::string& title, WindowPlace* place);
    std::string TextProperty(unsigned long window, const char* name);
    /// What the screen shows within this window.
    Rgba ShownAt(int x, int y);
    void SendDelete(unsigned long window);
    bool CanGrabPointer();
    void PointAt(unsigned long window);
    /// A number for the look of the cursor on the screen.
    unsigned long ShownCursor();
    void Destroy();
    /// The server will go: drops the connection without a word to it, for Xlib would end the process.
    void Forget();

private:
    _XDisplay* m_pDisplay;
    unsigned long m_nWindow = 0;
};
