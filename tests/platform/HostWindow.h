// A host's window on a connection of its own, and what a host can see of other windows.
#pragma once
#include <string>

#include "platform/DrawingClient.h"
#include "support/Wait.h"

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
    /// The number of windows on the screen with that title; @p place receives the place of the last.
    int CountTitled(const std::string& title, WindowPlace* place);
    std::string TextProperty(unsigned long window, const char* name);
    /// What the screen shows at a point of this window.
    Rgba ShownAt(int x, int y);
    void Resize(unsigned long window, int width, int height);
    void SendDelete(unsigned long window);
    /// Sends events as the server would for the pointer. @p time  in milliseconds of the server
    void SendMove(unsigned long window, int x, int y);
    void SendClick(unsigned long window, unsigned button, int x, int y, unsigned long time);
    /// Presses of a key without a release: the first is one, or a repeat of a key that is held.
    /// @param symbol  a key symbol of X
    void SendKeyPresses(unsigned long window, unsigned long symbol, int count);
    void SendKeyRelease(unsigned long window, unsigned long symbol);
    bool CanGrabPointer();
    void PointAt(unsigned long window);
    /// A hash of the cursor that the screen shows.
    unsigned long ShownCursor();
    void Destroy();
    /// Returns when the server has processed all requests of this connection.
    void Sync();
    /// To be called before the server ends: drops the connection without a request, for Xlib would end the process.
    void Forget();

private:
    void SendKey(unsigned long window, unsigned long symbol, bool isDown);

    _XDisplay* m_pDisplay;
    unsigned long m_nWindow = 0;
};

/// Handles the events of a child window until none is left, wherever it is: in the server, on the connection, in Xlib
/// or in the window. False when they do not end.
/// @param child  PaneWindow or ScenePane
template <HasEvents Window>
[[nodiscard]] bool HandleAllEvents(HostWindow& host, Window& child) {
    const auto isDone = [&] {
        host.Sync();
        // A parent that is no window is refused after a round trip on the child's connection: what the child requested
        // is done then, and all events that this and the host's requests caused are read.
        (void)child.Reparent(0, 0, 0);
        return !IsReadable(child);
    };
    return WaitUntil(isDone, [&] { child.ProcessEvents(); });
}
