// The pointer and the keyboard of the X server on the viewer inside a host window.
#pragma once
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <algorithm>
#include <cstdlib>
#include <string>

#include "EventPane.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/XFocus.h"

class PointerFixture : public MainWindowFixture {
protected:
    /// Shows the window and makes it the active one.
    void SetUp() override {
        Show();
        m_window->activateWindow();
        ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
        m_viewer = m_window->findChild<ViewerWidget*>();
    }
    static void Xdotool(const std::string& commands) { ASSERT_EQ(std::system(("xdotool " + commands).c_str()), 0); }
    static std::string At(const QPoint& point) { return std::to_string(point.x()) + " " + std::to_string(point.y()); }
    [[nodiscard]] QPoint Middle() const { return m_viewer->mapToGlobal(m_viewer->rect().center()); }
    [[nodiscard]] int ShorterSide() const { return std::min(m_viewer->width(), m_viewer->height()); }

    /// Waits until the viewer has the keyboard: it requests it when it handles a press of the mouse.
    void WaitForViewerFocus() const {
        ASSERT_TRUE(WaitUntil([&] { return FocusedWindow() == m_window->Pane()->NativeWindow(); }));
    }
    /// Waits until the viewer has handled all input so far, by a key that does nothing: events of one window are
    /// handled in their order. The viewer must have been pressed before, for the keyboard.
    void WaitForInput() const {
        WaitForViewerFocus();
        const auto countKeys = [&] { return m_window->Events().Text().count("CustomKeyDown(nChar = 123,"); };
        const auto before = countKeys();
        Xdotool("key F12");
        ASSERT_TRUE(WaitUntil([&] { return countKeys() > before; }));
    }
    /// Waits until the viewer has acted on a press in the delayed scheme: it waits 0.1 s for a second button.
    void WaitForDelayedPress() const {
        WaitForInput();  // the 0.1 s have begun
        QElapsedTimer timer;
        timer.start();
        ASSERT_TRUE(WaitUntil([&] { return timer.elapsed() > 110; }));
        m_window->Pane()->ProcessEvents();  // the timer of the press has expired: this is its turn at the latest
    }
    /// Drags from the viewer's middle, where no drag rolls the view.
    void Drag(const std::string& button, const QPoint& by) const {
        Xdotool("mousemove " + At(Middle()) + " mousedown " + button);
        WaitForDelayedPress();
        Xdotool("mousemove " + At(Middle() + by) + " mouseup " + button);
    }

    ViewerWidget* m_viewer = nullptr;
};
