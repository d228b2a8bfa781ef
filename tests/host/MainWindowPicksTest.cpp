// Picked points in the host's window: what is shown of a pick, the list beside the spheres of the viewer, the distance.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QTextDocument>
#include <QTreeWidget>
#include <cmath>

#include "PickPanel.h"
#include "SceneReport.h"
#include "host/CommaLocale.h"
#include "host/PicksFixture.h"
#include "host/XFocus.h"

namespace {

using KV_ScenePane::MouseInput;
using KV_ScenePane::SurfacePoint;

const double kDiagonal = std::hypot(29.0, 29.0, 5.0);  // of the scene of the tests

class MainWindowPicks : public PicksFixture {};

// ---- what is shown of a pick

TEST_F(MainWindowPicks, AreShownInTheEventsAndTheStatusBar) {
    Trigger("Points on objects");
    const QPoint pixel = OnB();
    const SurfacePoint hit = Surface(pixel);
    ASSERT_EQ(hit.object, 1);
    EXPECT_EQ(LastPick(), "");
    DoubleClick(pixel);
    EXPECT_NE(Events().find("SelectObjCoords(idx = 1, px = " + NumberText(hit.point[0]) +
                            ", py = " + NumberText(hit.point[1]) + ", pz = 5,"),
              std::string::npos)
        << Events();
    EXPECT_NE(Events().find("object 1: b.xdt"), std::string::npos) << Events();
    EXPECT_EQ(LastPick(), "b.xdt: " + ShownText(hit) + " mm");
    EXPECT_NE(Find<QLabel>("lastPick").textInteractionFlags() & Qt::TextSelectableByMouse, 0) << "to be copied";
    EXPECT_EQ(List().topLevelItemCount(), 1);
}

TEST_F(MainWindowPicks, ShowNothingInTheModesWithoutPicks) {
    for (const char* const mode : {"Off", "Centre cross"}) {
        Trigger(mode);
        DoubleClick(OnA());
        EXPECT_EQ(LastPick(), "") << mode;
    }
}

TEST_F(MainWindowPicks, ShowTagsInTheNameOfAFile) {
    WriteXdt(m_folder / "<b>c &lt;.xdt", 30, 30, 8.0f);
    Import({m_folder / "<b>c &lt;.xdt"});
    Trigger("Points on objects");
    DoubleClick(OnA());
    const auto& label = Find<QLabel>("lastPick");
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    QTextDocument shown;
    shown.setHtml(label.toolTip());
    EXPECT_TRUE(shown.toPlainText().startsWith("<b>c &lt;.xdt: ")) << label.toolTip().toStdString();
}

TEST_F(MainWindowPicks, StayInTheStatusBarBesideAMessage) {
    Trigger("Points on objects");
    DoubleClick(OnA());
    const std::string pick = LastPick();
    EXPECT_TRUE(m_window->SaveScreenShot(m_folder / "a.png"));
    EXPECT_EQ(LastPick(), pick);
    EXPECT_TRUE(Find<QLabel>("lastPick").isVisible());
}

// ---- spheres and list

TEST_F(MainWindowPicks, PlaceASphereOfTheChosenColourAndARow) {
    Find<QCheckBox>("placePoints").click();
    EXPECT_EQ(Methods().GetPickMode(), KV_ScenePane::PickModePoints);
    EXPECT_TRUE(MenuAction("Points on objects").isChecked());
    EXPECT_EQ(RedPixels(), 0);
    const QPoint onA = OnA(), onB = OnB();
    DoubleClick(onA);
    EXPECT_GT(RedPixels(), 20);
    DoubleClick(onB);
    EXPECT_EQ(Points(), (std::vector<std::string>{"1 0: a.xdt " + Text(Surface(onA), " "),
                                                  "2 1: b.xdt " + Text(Surface(onB), " ")}));
    ExpectListAsInViewer();
    EXPECT_EQ(View()[9], 1.0f) << "a double click on an object does not centre the view";
}

TEST_F(MainWindowPicks, HaveARadiusInPercentOfTheSceneDiagonal) {
    PlacePoints();
    DoubleClick(OnA());
    // The rim of a sphere is dark: a part of its disc is not counted as red.
    EXPECT_NEAR(RedPixels() / DiscPixels(1.0, kDiagonal), 0.8, 0.25);
    Find<QDoubleSpinBox>("pointRadius").setValue(4.0);
    EXPECT_NEAR(RedPixels() / DiscPixels(4.0, kDiagonal), 0.8, 0.25);
}

TEST_F(MainWindowPicks, HaveARadiusThatFollowsTheScene) {
    PlacePoints();
    DoubleClick(OnA());
    WriteXdt(m_folder / "large.xdt", 60, 60, -20.0f);
    Import({m_folder / "large.xdt"});
    EXPECT_NEAR(RedPixels() / DiscPixels(1.0, std::hypot(59.0, 59.0, 25.0)), 0.8, 0.25);
    m_window->DeleteObject(2);
    EXPECT_NEAR(RedPixels() / DiscPixels(1.0, kDiagonal), 0.8, 0.25) << "the scene is smaller again";
}

TEST_F(MainWindowPicks, AreRemovedWhereTheyAreSelected) {
    PlacePoints();
    for (const float x : {12.0f, 16.0f, 20.0f, 24.0f}) DoubleClick(PixelOf(x, 20));
    const std::vector<std::string> all = Points();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_FALSE(Button("removePoints").isEnabled()) << "nothing is selected";
    Select({0, 2});
    Button("removePoints").click();
    ASSERT_EQ(Points().size(), 2u);
    EXPECT_EQ(Points()[0].substr(1), all[1].substr(1));
    EXPECT_EQ(Points()[1].substr(1), all[3].substr(1));
    EXPECT_TRUE(List().selectedItems().empty()) << "other points would be removed next";
    ExpectListAsInViewer();
    Button("clearPoints").click();
    EXPECT_TRUE(Points().empty());
    EXPECT_EQ(Methods().GetNumberOfPickPointSpheres(), 0);
    EXPECT_EQ(RedPixels(), 0);
}

TEST_F(MainWindowPicks, AreListedOnceAfterSeveralRemovals) {
    PlacePoints();
    for (const float x : {10.0f, 12.0f, 14.0f, 16.0f, 18.0f, 20.0f}) DoubleClick(PixelOf(x, 20));
    Select({0, 1, 2});
    std::vector<std::pair<int, int>> changed;
    const QObject context;  // of the connection
    QObject::connect(List().model(), &QAbstractItemModel::dataChanged, &context,
                     [&](const QModelIndex& cell) { changed.emplace_back(cell.row(), cell.column()); });
    Button("removePoints").click();
    EXPECT_EQ(std::ranges::count(changed, std::pair<int, int>(2, PickPanel::kX)), 1);
    ExpectListAsInViewer();
    EXPECT_EQ(Points().size(), 3u);
}

TEST_F(MainWindowPicks, KeepTheirObjectsWhenAPointBeforeThemIsRemoved) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(OnB());
    m_window->RemovePickPoints({0});
    ASSERT_EQ(Points().size(), 1u);
    EXPECT_TRUE(Points()[0].starts_with("1 1: b.xdt ")) << Points()[0];
}

TEST_F(MainWindowPicks, FollowSpheresThatAnotherPartOfTheHostAddsAndRemoves) {
    PlacePoints();
    DoubleClick(OnA());
    Methods().AddPickPointSphere(1, 2, 3, 0);
    ExpectListAsInViewer();
    Methods().RemovePickPointSphere(0);
    ExpectListAsInViewer();
    Methods().ClearPickPointSpheres();
    ExpectListAsInViewer();
}

TEST_F(MainWindowPicks, EndWithTheirPickMode) {
    PlacePoints();
    DoubleClick(OnA());
    PlacePoints();
    EXPECT_EQ(Points().size(), 1u) << "the same mode again removes nothing";
    Trigger("Off");
    EXPECT_TRUE(Points().empty());
    EXPECT_FALSE(Find<QCheckBox>("placePoints").isChecked());
    PlacePoints();
    DoubleClick(OnA());
    Methods().SetPickMode(KV_ScenePane::PickModePoints);  // by another part of the host
    EXPECT_TRUE(Points().empty());
}

// ---- moves

TEST_F(MainWindowPicks, MoveWithTheNextPickInPlaceOfAddingOne) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(PixelOf(25, 12));
    Select({0});
    Button("movePoint").click();
    const QPoint onB = OnB();
    DoubleClick(onB);
    ASSERT_EQ(Points().size(), 2u);
    EXPECT_EQ(Points()[0], "1 1: b.xdt " + Text(Surface(onB), " "));
    EXPECT_FALSE(Button("movePoint").isChecked());
    ExpectListAsInViewer();
    DoubleClick(OnA());
    EXPECT_EQ(Points().size(), 3u) << "one pick only moves";
}

TEST_F(MainWindowPicks, MoveNoLongerWhenTheButtonIsReleasedOrThePointsChange) {
    PlacePoints();
    DoubleClick(OnA());
    const std::vector<std::string> start = Points();
    Select({0});
    Button("movePoint").click();
    Button("movePoint").click();
    DoubleClick(OnB());
    ASSERT_EQ(Points().size(), 2u);
    EXPECT_EQ(Points()[0], start[0]);
    Select({1});
    Button("movePoint").click();
    m_window->RemovePickPoints({0});
    EXPECT_FALSE(Button("movePoint").isChecked()) << "point 2 is point 1 now";
    DoubleClick(OnA());
    EXPECT_EQ(Points().size(), 2u);
}

// ---- distance and copies

TEST_F(MainWindowPicks, ShowAndCopyTheDistanceOfTheLastTwo) {
    Trigger("Points on objects");
    QAction& copy = MenuAction("Copy distance of the last two picks");
    const QPoint first = OnA(), second = OnB(), third = PixelOf(25, 3);
    DoubleClick(first);
    EXPECT_FALSE(copy.isEnabled());
    EXPECT_FALSE(Button("copyDistance").isEnabled());
    EXPECT_EQ(Find<QLabel>("distance").text(), "");
    const auto distance = [](const SurfacePoint& a, const SurfacePoint& b) {
        double sum = 0;
        for (int axis = 0; axis < 3; ++axis)
            sum += std::pow(static_cast<double>(a.point[axis]) - static_cast<double>(b.point[axis]), 2);
        return NumberText(static_cast<float>(std::sqrt(sum)));
    };
    DoubleClick(second);
    std::string expected = distance(Surface(first), Surface(second));
    EXPECT_EQ(Find<QLabel>("distance").text().toStdString(), expected);
    const std::string rounded = QString::number(std::stod(expected), 'f', 3).toStdString();
    EXPECT_TRUE(LastPick().ends_with(" mm, distance " + rounded + " mm")) << LastPick();
    copy.trigger();
    EXPECT_EQ(Clipboard(), expected);
    DoubleClick(third);
    expected = distance(Surface(second), Surface(third));
    Button("copyDistance").click();
    EXPECT_EQ(Clipboard(), expected);
}

TEST_F(MainWindowPicks, AreCopiedWithTabsAndWithoutTheLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    PlacePoints();
    const QPoint onA = OnA(), onB = OnB();
    DoubleClick(onA);
    DoubleClick(onB);
    const std::string lineA = Text(Surface(onA), "\t") + "\n", lineB = Text(Surface(onB), "\t") + "\n";
    ASSERT_NE(lineA.find('.'), std::string::npos) << "the point has no decimals";
    Button("copyPoints").click();
    EXPECT_EQ(Clipboard(), lineA + lineB) << "nothing is selected: all";
    Select({1});
    Button("copyPoints").click();
    EXPECT_EQ(Clipboard(), lineB);
}

// ---- objects and viewers that go

TEST_F(MainWindowPicks, KeepTheirPointsWhenTheirObjectIsDeleted) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(OnB());
    m_window->DeleteObject(0);
    ASSERT_EQ(Points().size(), 2u);
    EXPECT_TRUE(Points()[0].starts_with("1 a.xdt (deleted) ")) << Points()[0];
    EXPECT_TRUE(Points()[1].starts_with("2 0: b.xdt ")) << Points()[1];
    EXPECT_TRUE(LastPick().starts_with("b.xdt: ")) << LastPick();
    ExpectListAsInViewer();
}

TEST_F(MainWindowPicks, GoWithAllObjects) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(OnB());
    m_window->ClearScene();
    EXPECT_TRUE(Points().empty());
    EXPECT_EQ(Methods().GetNumberOfPickPointSpheres(), 0);
    EXPECT_EQ(LastPick(), "");
    EXPECT_EQ(Find<QLabel>("distance").text(), "");
    EXPECT_FALSE(MenuAction("Copy distance of the last two picks").isEnabled());
}

TEST_F(MainWindowPicks, GoWithTheViewer) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(OnB());
    Select({0});
    Button("movePoint").click();
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() == nullptr; }));
    EXPECT_TRUE(Points().empty());
    EXPECT_FALSE(List().isEnabled());
    EXPECT_EQ(LastPick(), "");
    EXPECT_FALSE(MenuAction("Cancel the move of a point").isEnabled());
    m_window->RemovePickPoints({0});
    m_window->ClearPickPoints();
    m_window->MovePickPoint(0);
    m_window->CopyPickPoints({0});
    m_window->CopyPickDistance();
    EXPECT_EQ(Clipboard(), "nothing");
}

}  // namespace
