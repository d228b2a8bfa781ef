// Menus that a right click in the viewer opens, and clicks on their entries.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <stdexcept>

#include "host/PointerFixture.h"

class MenuFixture : public PointerFixture {
protected:
    void TearDown() override {
        while (QWidget* const popup = QApplication::activePopupWidget()) popup->close();
        Xdotool("mouseup 1 mouseup 3");
    }
    [[nodiscard]] static QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// Waits until the menu is on the screen: it has the keyboard then.
    void OpenMenuAt(const QPoint& global) const {
        Xdotool("mousemove " + At(global) + " click 3");
        ASSERT_TRUE(WaitUntil([] { return OpenMenu() != nullptr && OpenMenu()->windowHandle()->isExposed(); }));
    }
    /// Clicks the entry of the open menu that starts so. @throws std::runtime_error when it has none
    void Choose(const QString& start) const {
        for (QAction* const action : OpenMenu()->actions()) {
            if (!action->text().remove('&').startsWith(start)) continue;
            Xdotool("mousemove " + At(OpenMenu()->mapToGlobal(OpenMenu()->actionGeometry(action).center())) +
                    " click 1");
            if (!WaitUntil([] { return OpenMenu() == nullptr; })) throw std::runtime_error("the menu stays open");
            QCoreApplication::processEvents();
            return;
        }
        throw std::runtime_error("the menu has no entry " + start.toStdString());
    }
    void CloseMenuByEscape() const {
        Xdotool("key Escape");
        ASSERT_TRUE(WaitUntil([] { return OpenMenu() == nullptr; }));
    }
    /// Waits until everything that the clicks so far lead to has happened, menus included.
    void WaitForClicks() const {
        WaitForInput();
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
    /// A drag of the right button, and one that ends where it began.
    void ExpectNoMenuAfterDrags() const {
        const std::array<float, 10> view = View();
        Drag("3", {40, 0});
        WaitForClicks();
        EXPECT_EQ(OpenMenu(), nullptr);
        EXPECT_NE(View(), view) << "the drag did not pan";
        Xdotool("mousemove " + At(Middle()) + " mousedown 3 mousemove " + At(Middle() + QPoint(30, 0)));
        WaitForInput();
        Xdotool("mousemove " + At(Middle()) + " mouseup 3");
        WaitForClicks();
        EXPECT_EQ(OpenMenu(), nullptr) << "there and back";
    }
};
