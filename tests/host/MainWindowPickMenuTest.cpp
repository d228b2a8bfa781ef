// The menu of a right click on picked points, and keys and clicks that belong to picks: by the pointer and the keyboard
// of the X server.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QDockWidget>
#include <QEventLoop>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QTreeWidget>
#include <cmath>

#include "PickPanel.h"
#include "SceneReport.h"
#include "host/MenuFixture.h"

namespace {

using KV_ScenePane::SurfacePoint;

/// A flat scan seen from +Z, picks place points. Pixels are those of the viewer; on this screen they are Qt's.
class MainWindowPickMenu : public MenuFixture {
protected:
    void SetUp() override {
        PointerFixture::SetUp();
        WriteXdt(m_folder / "a.xdt", 40, 40);
        Import({m_folder / "a.xdt"});
        Trigger("Points on objects");
        QGuiApplication::clipboard()->setText("nothing");
    }
    [[nodiscard]] QPoint Global(const QPoint& pixel) const { return m_viewer->mapToGlobal(pixel); }
    /// Beside the middle of the viewer, by parts of its shorter side.
    [[nodiscard]] QPoint Beside(double right, double down) const {
        return m_viewer->rect().center() +
               QPoint(static_cast<int>(right * ShorterSide()), static_cast<int>(down * ShorterSide()));
    }
    void DoubleClick(const QPoint& pixel) const {
        const int before = Picks();
        Xdotool("mousemove " + At(Global(pixel)) + " click --repeat 2 --delay 10 1");
        ASSERT_TRUE(WaitUntil([&] { return Picks() > before; }));
    }
    [[nodiscard]] int Picks() const { return static_cast<int>(m_window->Events().Text().count("SelectObjCoords(")); }
    void PlacePoints(const std::vector<QPoint>& pixels) const {
        for (const QPoint& pixel : pixels) DoubleClick(pixel);
        ASSERT_EQ(List().topLevelItemCount(), static_cast<int>(pixels.size()));
    }
    void RightClick(const QPoint& pixel) const { OpenMenuAt(Global(pixel)); }
    [[nodiscard]] static std::vector<std::string> Entries() {
        std::vector<std::string> texts;
        for (const QAction* const action : OpenMenu()->actions()) {
            if (action->isEnabled()) texts.push_back(action->text().remove('&').toStdString());
        }
        return texts;
    }
    [[nodiscard]] QTreeWidget& List() const { return Find<QTreeWidget>("pickPoints"); }
    /// x, y and z of a row of the list.
    [[nodiscard]] std::string Point(int row, const QString& separator = " ") const {
        QStringList texts;
        for (int column = PickPanel::kX; column <= PickPanel::kZ; ++column)
            texts << List().topLevelItem(row)->text(column);
        return texts.join(separator).toStdString();
    }
    [[nodiscard]] std::string Surface(const QPoint& pixel) const {
        SurfacePoint hit;
        EXPECT_TRUE(m_window->Pane()->PickSurface(pixel.x(), pixel.y(), &hit));
        return NumberText(hit.point[0]) + " " + NumberText(hit.point[1]) + " " + NumberText(hit.point[2]);
    }
    [[nodiscard]] static std::string Clipboard() { return QGuiApplication::clipboard()->text().toStdString(); }
};

TEST_F(MainWindowPickMenu, NamesTheNearestPoint) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    RightClick(Beside(0.15, 0.05));
    EXPECT_EQ(Entries(),
              (std::vector<std::string>{"Remove point 2", "Move point 2 to the next pick", "Copy coordinates",
                                        "Copy distance of the last two picks", "", "View and object"}));
    ASSERT_EQ(List().selectedItems().size(), 1);
    EXPECT_EQ(List().indexOfTopLevelItem(List().selectedItems().front()), 1);
    CloseMenuByEscape();
    RightClick(Beside(-0.15, 0.05));
    EXPECT_EQ(Entries().front(), "Remove point 1");
}

TEST_F(MainWindowPickMenu, ShowsTheAmpersandOfAFileName) {
    WriteXdt(m_folder / "a&b.xdt", 40, 40, 5.0f);
    Import({m_folder / "a&b.xdt"});
    PlacePoints({Beside(-0.2, 0)});
    RightClick(Beside(-0.2, 0));
    EXPECT_EQ(OpenMenu()->actions().front()->text().toStdString(), "Point 1 on a&&b.xdt");
}

TEST_F(MainWindowPickMenu, RemovesThePoint) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    const std::string second = Point(1);
    RightClick(Beside(-0.2, 0));
    Choose("Remove point 1");
    ASSERT_TRUE(WaitUntil([&] { return List().topLevelItemCount() == 1; }));
    EXPECT_EQ(Point(0), second);
    EXPECT_EQ(Methods().GetNumberOfPickPointSpheres(), 1);
}

TEST_F(MainWindowPickMenu, CopiesTheCoordinates) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    RightClick(Beside(0.2, 0));
    Choose("Copy coordinates");
    ASSERT_TRUE(WaitUntil([&] { return Clipboard() != "nothing"; }));
    EXPECT_EQ(Clipboard(), Point(1, "\t") + "\n");
}

TEST_F(MainWindowPickMenu, MovesThePointToTheNextPick) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    const std::string second = Point(1);
    RightClick(Beside(-0.2, 0));
    Choose("Move point 1");
    ASSERT_TRUE(WaitUntil([&] { return Find<QPushButton>("movePoint").isChecked(); }));
    const QPoint target = Beside(0, 0.2);
    DoubleClick(target);
    ASSERT_EQ(List().topLevelItemCount(), 2);
    EXPECT_EQ(Point(0), Surface(target));
    EXPECT_EQ(Point(1), second);
}

TEST_F(MainWindowPickMenu, MovesNothingAfterEscapeInTheViewer) {
    PlacePoints({Beside(-0.2, 0)});
    const std::string first = Point(0);
    RightClick(Beside(-0.2, 0));
    Choose("Move point 1");
    ASSERT_TRUE(WaitUntil([&] { return Find<QPushButton>("movePoint").isChecked(); }));
    WaitForViewerFocus();
    Xdotool("key Escape");
    ASSERT_TRUE(WaitUntil([&] { return !Find<QPushButton>("movePoint").isChecked(); }));
    DoubleClick(Beside(0, 0.2));
    ASSERT_EQ(List().topLevelItemCount(), 2);
    EXPECT_EQ(Point(0), first);
}

TEST_F(MainWindowPickMenu, CancelsAMove) {
    PlacePoints({Beside(-0.2, 0)});
    m_window->MovePickPoint(0);
    RightClick(Beside(-0.2, 0));
    Choose("Cancel the move");
    ASSERT_TRUE(WaitUntil([&] { return !Find<QPushButton>("movePoint").isChecked(); }));
    DoubleClick(Beside(0, 0.2));
    EXPECT_EQ(List().topLevelItemCount(), 2);
}

TEST_F(MainWindowPickMenu, LeavesAViewerThatCanBeDraggedAgain) {
    PlacePoints({Beside(-0.2, 0)});
    const std::array<float, 10> view = View();
    RightClick(Beside(0.1, 0.1));
    Xdotool("mousemove " + At(Global(Beside(-0.3, -0.3))) + " click 1");  // outside the menu: closes it
    ASSERT_TRUE(WaitUntil([] { return OpenMenu() == nullptr; }));
    Xdotool("mousemove " + At(Global(Beside(0.2, -0.1))) + " mousemove " + At(Global(Beside(0.1, 0))));
    EXPECT_EQ(View(), view) << "the drag of the click has not ended";
    Drag("1", {60, 0});
    EXPECT_TRUE(WaitUntil([&] { return View() != view; }));
}

TEST_F(MainWindowPickMenu, OpensInTheDelayedSchemeToo) {
    Trigger("Delayed: right turns, both move, left picks");
    const QPoint pixel = Beside(-0.2, 0);
    Xdotool("mousemove " + At(Global(pixel)) + " click 1");  // one click picks here
    ASSERT_TRUE(WaitUntil([&] { return List().topLevelItemCount() == 1; }));
    const std::array<float, 10> view = View();
    RightClick(pixel);
    CloseMenuByEscape();
    WaitForDelayedPress();
    Xdotool("mousemove " + At(Global(Beside(0.2, 0.2))));
    WaitForClicks();
    EXPECT_EQ(View(), view) << "the right button still turns";
}

TEST_F(MainWindowPickMenu, DoesNotOpenAfterADrag) {
    PlacePoints({Beside(-0.2, 0)});
    ExpectNoMenuAfterDrags();
}

TEST_F(MainWindowPickMenu, IsThatOfTheViewWithoutPointsAndInOtherPickModes) {
    OpenMenuAt(Middle());
    EXPECT_EQ(OpenMenu()->objectName(), "viewMenu") << "no point";
    CloseMenuByEscape();
    Trigger("Centre cross");
    Methods().AddPickPointSphere(1, 1, 0, 0);
    OpenMenuAt(Middle());
    EXPECT_EQ(OpenMenu()->objectName(), "viewMenu") << "the mode draws no spheres";
}

TEST_F(MainWindowPickMenu, ClosesWhenThePointsChange) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    RightClick(Beside(0.2, 0));
    Methods().RemovePickPointSphere(0);
    EXPECT_TRUE(WaitUntil([] { return OpenMenu() == nullptr; }));
    EXPECT_EQ(List().topLevelItemCount(), 1);
}

TEST_F(MainWindowPickMenu, CopiesTheDistanceByItsShortcutWhileTheViewerHasTheKeyboard) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    const std::array<float, 10> view = View();
    WaitForViewerFocus();
    Xdotool("key ctrl+shift+c");
    ASSERT_TRUE(WaitUntil([&] { return Clipboard() != "nothing"; }));
    EXPECT_EQ(Clipboard(), Find<QLabel>("distance").text().toStdString());
    EXPECT_EQ(View(), view) << "the plain key centres the view";
}

/// Rows of the list that the screen shows. Qt grabs a widget by painting it anew, so the X server is asked.
int RowsOnScreen(const QTreeWidget& list) {
    const QWidget& viewport = *list.viewport();
    const QPoint corner = viewport.mapTo(list.window(), QPoint());
    const QImage shown =
        list.screen()
            ->grabWindow(list.window()->winId(), corner.x(), corner.y(), viewport.width(), viewport.height())
            .toImage();
    const int height = list.visualItemRect(list.topLevelItem(0)).height();
    int rows = 0;
    for (int top = 0; top + height <= shown.height(); top += height) {
        const QImage row = shown.copy(0, top, shown.width(), height);
        QImage plain = row;
        plain.fill(row.pixel(row.width() - 1, 0));
        rows += row != plain ? 1 : 0;
    }
    return rows;
}

TEST_F(MainWindowPickMenu, LeavesThePaintedListAfterARemoval) {
    PlacePoints({Beside(-0.2, 0), Beside(-0.1, 0), Beside(0.1, 0), Beside(0.2, 0)});
    Find<QDockWidget>("picks").raise();
    ASSERT_TRUE(WaitUntil([&] { return RowsOnScreen(List()) == 4; }));
    const auto click = [](const QWidget& widget, const QPoint& point) {
        Xdotool("mousemove " + At(widget.mapToGlobal(point)) + " click 1");
    };
    click(*List().viewport(), List().visualItemRect(List().topLevelItem(1)).center());
    ASSERT_TRUE(WaitUntil([&] { return List().hasFocus() && List().selectedItems().size() == 1; }));
    const auto& button = Find<QPushButton>("removePoints");
    click(button, button.rect().center());
    // As in the program: processEvents() of WaitUntil() runs timers before it paints, which exec() does not.
    QEventLoop loop;
    QTimer poll;
    constexpr int kLimitMs = 20'000;
    QElapsedTimer elapsed;
    elapsed.start();
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (elapsed.elapsed() > kLimitMs || (List().topLevelItemCount() == 3 && RowsOnScreen(List()) == 3)) loop.quit();
    });
    poll.start(20);
    loop.exec();
    EXPECT_EQ(List().topLevelItemCount(), 3);
    EXPECT_EQ(RowsOnScreen(List()), 3);
}

TEST_F(MainWindowPickMenu, CopiesAndRemovesByTheKeysOfTheList) {
    PlacePoints({Beside(-0.2, 0), Beside(0.2, 0)});
    Find<QDockWidget>("picks").raise();
    // A click returns the keyboard from the viewer to the window.
    const QRect row = List().visualItemRect(List().topLevelItem(0));
    Xdotool("mousemove " + At(List().viewport()->mapToGlobal(row.center())) + " click 1");
    ASSERT_TRUE(WaitUntil([&] { return List().hasFocus() && List().selectedItems().size() == 1; }));
    const std::string first = Point(0, "\t");
    Xdotool("mousemove " + At(m_window->mapToGlobal(QPoint(200, 5))) + " key ctrl+c");
    ASSERT_TRUE(WaitUntil([&] { return Clipboard() != "nothing"; }));
    EXPECT_EQ(Clipboard(), first + "\n");
    Xdotool("key Delete");
    EXPECT_TRUE(WaitUntil([&] { return List().topLevelItemCount() == 1; }));
    EXPECT_EQ(ObjectsInViewer(), 1);
}

}  // namespace
