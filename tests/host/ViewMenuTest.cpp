// The menu of a right click in the view, by the pointer of the X server.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QTreeWidget>

#include "CutCommands.h"
#include "PickPanel.h"
#include "SceneReport.h"
#include "host/MenuFixture.h"

namespace {

/// A flat scan in the middle of the view, seen from +Z.
class ViewMenu : public MenuFixture {
protected:
    void SetUp() override {
        PointerFixture::SetUp();
        WriteXdt(m_folder / "a&b.xdt", 40, 40);
        Import({m_folder / "a&b.xdt"});
        QGuiApplication::clipboard()->setText("nothing");
    }
    [[nodiscard]] QPoint Corner() const { return m_viewer->mapToGlobal(QPoint(8, 8)); }
    [[nodiscard]] static QStringList Entries(const QMenu& menu) {
        QStringList texts;
        for (const QAction* const action : menu.actions()) {
            if (!action->isSeparator()) texts << QString(action->text()).remove('&');
        }
        return texts;
    }
    const QStringList m_ofView{"Fit the view", "Views", "Render mode", "Shadows", "Background colours..."};
};

TEST_F(ViewMenu, HasTheViewWhereNothingIsUnderThePointer) {
    OpenMenuAt(Corner());
    EXPECT_EQ(OpenMenu()->objectName(), "viewMenu");
    EXPECT_EQ(Entries(*OpenMenu()).first(5), m_ofView);
    Choose("Fit the view");
}

TEST_F(ViewMenu, ChoosesAViewInItsSecondMenu) {
    OpenMenuAt(Corner());
    const std::array<float, 10> before = View();
    Xdotool("key i key Down key Return");
    EXPECT_TRUE(WaitUntil([&] { return View() != before; }));
}

TEST_F(ViewMenu, NamesTheObjectUnderThePointer) {
    OpenMenuAt(Middle());
    const QStringList entries = Entries(*OpenMenu());
    EXPECT_EQ(OpenMenu()->actions().front()->text(), "a&&b.xdt");
    EXPECT_FALSE(OpenMenu()->actions().front()->isEnabled());
    EXPECT_EQ(entries.mid(1, 3), (QStringList{"Select in the list", "Hide", "Delete"}));
    EXPECT_EQ(entries.mid(5, 5), m_ofView);
}

TEST_F(ViewMenu, CopiesThePointUnderThePointer) {
    KV_ScenePane::SurfacePoint hit;
    const QPoint pixel = m_viewer->rect().center();
    ASSERT_TRUE(m_window->Pane()->PickSurface(pixel.x(), pixel.y(), &hit));
    OpenMenuAt(Middle());
    EXPECT_TRUE(Entries(*OpenMenu()).contains("Copy the point " + ShownPoint(hit.point)));
    Choose("Copy the point");
    ASSERT_TRUE(WaitUntil([] { return QGuiApplication::clipboard()->text() != "nothing"; }));
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              NumberText(hit.point[0]) + '\t' + NumberText(hit.point[1]) + '\t' + NumberText(hit.point[2]));
}

TEST_F(ViewMenu, HidesTheObjectAsItsCheckMarkDoes) {
    OpenMenuAt(Middle());
    Choose("Hide");
    EXPECT_TRUE(WaitUntil([&] { return m_window->Objects().IsHidden(0); }));
    EXPECT_EQ(MiddlePixel(), kBackground);
}

TEST_F(ViewMenu, SelectsTheRowOfTheObject) {
    m_window->Objects().setCurrentItem(nullptr);
    OpenMenuAt(Middle());
    Choose("Select");
    EXPECT_TRUE(WaitUntil([&] { return m_window->Objects().CurrentObject() == 0; }));
}

TEST_F(ViewMenu, DeletesTheObjectAndUndoBringsItBack) {
    OpenMenuAt(Middle());
    Choose("Delete");
    ASSERT_TRUE(WaitUntil([&] { return m_window->Objects().PresentObjects().empty(); }));
    m_window->Undo();
    EXPECT_EQ(m_window->Objects().PresentObjects().size(), 1u);
}

TEST_F(ViewMenu, DoesNotOpenAfterADragOfTheRightButton) { ExpectNoMenuAfterDrags(); }

TEST_F(ViewMenu, DoesNotOpenDuringALasso) {
    m_window->Cuts().Start(KV_ScenePane::PolygonInside);
    Xdotool("mousemove " + At(Corner()) + " click 1 mousemove " + At(Corner() + QPoint(20, 5)) + " click 3");
    WaitForClicks();
    EXPECT_EQ(OpenMenu(), nullptr);
    EXPECT_FALSE(m_window->Cuts().RunningWay().has_value()) << "the right click cuts";
}

TEST_F(ViewMenu, EndsTheDragThatItsClickBegan) {
    OpenMenuAt(Corner());
    CloseMenuByEscape();
    const std::array<float, 10> view = View();
    Xdotool("mousemove " + At(Middle()) + " mousemove " + At(Middle() + QPoint(50, 20)));
    WaitForClicks();
    EXPECT_EQ(View(), view) << "the drag of the click has not ended";
}

}  // namespace
