#include "ViewerWidget.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QStringList>
#include <QVBoxLayout>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/QtUnderXvfb.h"

// Last: Xlib defines common words.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

/// A shown widget with a viewer, in the first of two windows, and the reason when the viewer was refused.
struct Shown {
    Shown() {
        QObject::connect(widget, &ViewerWidget::Refused, widget, [this](const QString& why) { reason = why; });
        first.setLayout(new QVBoxLayout);
        first.layout()->addWidget(widget);
        first.show();
    }

    QWidget first, second;
    ViewerWidget* widget = new ViewerWidget({200, 100});
    QString reason;
};

std::unique_ptr<Display, int (*)(Display*)> OwnConnection() { return {XOpenDisplay(nullptr), &XCloseDisplay}; }

/// Attributes of an X window as another client sees them; all 0 when there is no such window.
XWindowAttributes AttributesOf(std::uintptr_t window) {
    const auto display = OwnConnection();
    static bool gone;
    gone = false;
    const auto former = XSetErrorHandler([](Display*, XErrorEvent*) { return gone = true, 0; });
    XWindowAttributes attributes{};
    XGetWindowAttributes(display.get(), window, &attributes);
    XSync(display.get(), False);
    XSetErrorHandler(former);
    return gone ? XWindowAttributes{} : attributes;
}

TEST(ViewerWidget, HasNoViewerBeforeItIsShown) {
    const ViewerWidget widget({200, 100});
    EXPECT_EQ(widget.Pane(), nullptr);
    EXPECT_EQ(widget.sizeHint(), QSize(200, 100));
}

TEST(ViewerWidget, FillsItselfWithTheViewersWindowAndFollowsResizes) {
    Shown shown;
    ASSERT_NE(shown.widget->Pane(), nullptr) << shown.reason.toStdString();
    for (const QSize size : {QSize(300, 200), QSize(150, 333)}) {
        shown.first.resize(size);
        const auto follows = [&] {
            const XWindowAttributes window = AttributesOf(shown.widget->Pane()->NativeWindow());
            return window.width == shown.widget->width() && window.height == shown.widget->height();
        };
        EXPECT_TRUE(WaitUntil(follows));
    }
}

TEST(ViewerWidget, MovesIntoAnotherWindowWithItsViewer) {
    Shown shown;
    ASSERT_NE(shown.widget->Pane(), nullptr) << shown.reason.toStdString();
    const KV_ScenePane::ScenePane* const pane = shown.widget->Pane();
    shown.second.setLayout(new QVBoxLayout);
    shown.second.resize(400, 300);
    shown.second.show();
    shown.second.layout()->addWidget(shown.widget);
    const auto follows = [&] {
        if (shown.widget->Pane() == nullptr) return false;
        const XWindowAttributes window = AttributesOf(shown.widget->Pane()->NativeWindow());
        return window.map_state == IsViewable && window.width == shown.widget->width();
    };
    EXPECT_TRUE(WaitUntil(follows)) << shown.reason.toStdString();
    KV_ScenePane::Picture picture;
    ASSERT_EQ(shown.widget->Pane(), pane) << "the same viewer, not a new and empty one";
    EXPECT_TRUE(shown.widget->Pane()->CapturePicture(&picture));
}

TEST(ViewerWidget, ReportsAnExceptionThatEachCallThrowsOnce) {
    Shown shown;
    ASSERT_NE(shown.widget->Pane(), nullptr) << shown.reason.toStdString();
    shown.first.resize(300, 200);
    ASSERT_TRUE(
        WaitUntil([&] { return AttributesOf(shown.widget->Pane()->NativeWindow()).width == shown.widget->width(); }));
    QStringList reports;
    QObject::connect(shown.widget, &ViewerWidget::Failed, shown.widget, [&](auto text) { reports << text; });
    std::string reason = "no";
    int calls = 0;
    shown.widget->Pane()->SetMouseFilter([&](const KV_ScenePane::MouseInput&) -> bool {
        ++calls;
        throw std::runtime_error(reason);
    });
    const auto display = OwnConnection();
    const auto moveOften = [&](int x) {
        const QPoint at = shown.widget->mapToGlobal(QPoint(x, 50));
        const int before = calls;
        for (int i = 0; i < 4; ++i) {
            XTestFakeMotionEvent(display.get(), -1, at.x() + i, at.y(), CurrentTime);
            XSync(display.get(), False);
            ASSERT_TRUE(WaitUntil([&] { return calls > before + i; }));
        }
    };
    moveOften(50);
    EXPECT_EQ(reports, QStringList{"no"});
    reason = "never";
    moveOften(60);
    EXPECT_EQ(reports, (QStringList{"no", "never"}));
    shown.widget->Pane()->SetMouseFilter({});
}

TEST(ViewerWidget, ReportsThatTheViewersWindowWasDestroyed) {
    Shown shown;
    ASSERT_NE(shown.widget->Pane(), nullptr) << shown.reason.toStdString();
    const auto display = OwnConnection();
    XDestroyWindow(display.get(), shown.widget->Pane()->NativeWindow());
    XSync(display.get(), False);
    EXPECT_TRUE(WaitUntil([&] { return !shown.reason.isEmpty(); }));
    EXPECT_EQ(shown.reason, "The viewer has lost its window.");
    EXPECT_EQ(shown.widget->Pane(), nullptr);
}

/// Pointer and keyboard of the user, by a separate connection.
class UserInput {
public:
    void Click(const QWidget& widget) {
        const QPoint at = widget.mapToGlobal(QPoint(widget.width() / 2, widget.height() / 2));
        XTestFakeMotionEvent(m_pDisplay.get(), -1, at.x(), at.y(), CurrentTime);
        XTestFakeButtonEvent(m_pDisplay.get(), 1, True, CurrentTime);
        XTestFakeButtonEvent(m_pDisplay.get(), 1, False, CurrentTime);
        XSync(m_pDisplay.get(), False);
    }
    void Type(KeySym symbol) {
        const KeyCode key = XKeysymToKeycode(m_pDisplay.get(), symbol);
        XTestFakeKeyEvent(m_pDisplay.get(), key, True, CurrentTime);
        XTestFakeKeyEvent(m_pDisplay.get(), key, False, CurrentTime);
        XSync(m_pDisplay.get(), False);
    }
    [[nodiscard]] std::uintptr_t Focused() const {
        Window window = None;
        int revert = 0;
        XGetInputFocus(m_pDisplay.get(), &window, &revert);
        return window;
    }

private:
    std::unique_ptr<Display, int (*)(Display*)> m_pDisplay = OwnConnection();
};

TEST(ViewerWidget, ReceivesKeysOnlyAfterAClickIntoIt) {
    Shown shown;
    auto* const field = new QLineEdit;
    shown.first.layout()->addWidget(field);
    shown.first.resize(300, 200);
    ASSERT_NE(shown.widget->Pane(), nullptr) << shown.reason.toStdString();
    std::vector<std::int32_t> keys;
    QObject::connect(shown.widget, &ViewerWidget::KeyPressed, shown.widget, [&](auto key) { keys.push_back(key); });
    ASSERT_TRUE(
        WaitUntil([&] { return AttributesOf(shown.widget->Pane()->NativeWindow()).width == shown.widget->width(); }));
    UserInput user;
    user.Click(*shown.widget);
    ASSERT_TRUE(WaitUntil([&] { return user.Focused() == shown.widget->Pane()->NativeWindow(); }));
    user.Type(XK_Down);
    ASSERT_TRUE(WaitUntil([&] { return !keys.empty(); }));
    user.Click(*field);
    ASSERT_TRUE(WaitUntil([&] { return user.Focused() == shown.first.winId() && field->hasFocus(); }));
    user.Type(XK_c);
    ASSERT_TRUE(WaitUntil([&] { return field->text() == "c"; }));
    EXPECT_EQ(keys, std::vector<std::int32_t>{40});
}

}  // namespace
