// The tools by themselves: what they show, and what they report.
#include "CutToolBar.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QSet>
#include <QSpinBox>
#include <optional>

#include "ColorButton.h"
#include "CutIcons.h"
#include "host/QtUnderXvfb.h"

namespace {

using KV_ScenePane::SegmentationMode;

class CutToolBarTest : public testing::Test {
protected:
    QAction& Tool(const char* name) {
        auto* const action = m_bar.findChild<QAction*>(name);
        if (action == nullptr) throw std::runtime_error(std::string("there is no tool ") + name);
        return *action;
    }
    CutToolBar m_bar{LassoSettings{}};
};

TEST_F(CutToolBarTest, CanDoNothingWithoutAViewer) {
    for (QAction* const way : m_bar.Ways()) EXPECT_FALSE(way->isEnabled()) << way->text().toStdString();
    for (const char* const name : {"cutCancel", "cutUndo", "cutSave"}) EXPECT_FALSE(Tool(name).isEnabled()) << name;
}

TEST_F(CutToolBarTest, ReportsEachWayByItsNumber) {
    m_bar.Show({.canCut = true});
    std::optional<SegmentationMode> wanted;
    QObject::connect(&m_bar, &CutToolBar::WayWanted, [&](SegmentationMode way) { wanted = way; });
    const char* const names[] = {"cutPolygonOutside",  "cutPolygonInside",  "cutPolygonVisible",
                                 "cutFreehandOutside", "cutFreehandInside", "cutFreehandVisible"};
    for (int i = 0; i < 6; ++i) {
        Tool(names[i]).trigger();
        EXPECT_EQ(wanted, static_cast<SegmentationMode>(i)) << names[i];
        EXPECT_EQ(m_bar.Ways()[i], &Tool(names[i]));
    }
}

TEST_F(CutToolBarTest, ChecksOnlyTheWayOfTheLassoThatRuns) {
    for (int running = 0; running < 6; ++running) {
        m_bar.Show({.canCut = true, .way = static_cast<SegmentationMode>(running), .undoSteps = 1});
        for (int i = 0; i < 6; ++i) EXPECT_EQ(m_bar.Ways()[i]->isChecked(), i == running) << running << ' ' << i;
        EXPECT_TRUE(Tool("cutCancel").isEnabled());
        EXPECT_FALSE(Tool("cutUndo").isEnabled());
        EXPECT_FALSE(Tool("cutSave").isEnabled());
    }
    m_bar.Show({.canCut = true, .undoSteps = 1});
    for (QAction* const way : m_bar.Ways()) EXPECT_FALSE(way->isChecked());
    EXPECT_FALSE(Tool("cutCancel").isEnabled());
    EXPECT_TRUE(Tool("cutUndo").isEnabled());
    EXPECT_TRUE(Tool("cutSave").isEnabled());
}

TEST_F(CutToolBarTest, CancelsTheLassoByASecondClickOnItsWay) {
    m_bar.Show({.canCut = true, .way = KV_ScenePane::PolygonInside});
    int cancelled = 0, started = 0;
    QObject::connect(&m_bar, &CutToolBar::CancelWanted, [&] { ++cancelled; });
    QObject::connect(&m_bar, &CutToolBar::WayWanted, [&] { ++started; });
    Tool("cutPolygonInside").trigger();
    EXPECT_EQ(cancelled, 1);
    EXPECT_EQ(started, 0);
}

TEST_F(CutToolBarTest, ShowsTheNumberOfUndoStepsInTheText) {
    m_bar.Show({.canCut = true, .undoSteps = 12});
    EXPECT_EQ(Tool("cutUndo").text().remove('&'), "Undo cut (12)");
    m_bar.Show({.canCut = true, .undoSteps = 0});
    EXPECT_EQ(Tool("cutUndo").text().remove('&'), "Undo");
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
}

TEST_F(CutToolBarTest, NamesTheKeyOfEachToolInItsTip) {
    QMenu menu;
    m_bar.FillMenu(menu);
    m_bar.FillEditMenu(menu);
    m_bar.FillFileMenu(menu);
    QSet<QKeySequence> keys;
    for (const QAction* const action : menu.actions()) {
        if (action->isSeparator()) continue;
        EXPECT_FALSE(action->shortcut().isEmpty()) << action->text().toStdString();
        EXPECT_TRUE(action->toolTip().contains(action->shortcut().toString(QKeySequence::NativeText)))
            << action->toolTip().toStdString();
        keys << action->shortcut();
    }
    EXPECT_EQ(keys.size(), 9) << "six ways, cancel, undo and save";
}

TEST_F(CutToolBarTest, HasAnIconOfItsOwnForEachTool) {
    QList<QImage> pictures;
    for (int i = 0; i < 6; ++i)
        pictures << CutWayIcon(static_cast<SegmentationMode>(i)).pixmap(QSize(24, 24), 1.0).toImage();
    for (const QIcon& icon : {CutCancelIcon(), CutUndoIcon(), CutSaveIcon()})
        pictures << icon.pixmap(QSize(24, 24), 1.0).toImage();
    for (int i = 0; i < pictures.size(); ++i) {
        EXPECT_FALSE(pictures[i].isNull());
        for (int j = 0; j < i; ++j) EXPECT_NE(pictures[i], pictures[j]) << i << ' ' << j;
    }
}

TEST_F(CutToolBarTest, ReportsColoursAndOpacities) {
    int changes = 0;
    QObject::connect(&m_bar, &CutToolBar::ColorsChanged, [&] { ++changes; });
    emit m_bar.findChild<ColorButton*>("lassoColorInside")->ColorChosen(0x112233);
    emit m_bar.findChild<ColorButton*>("lassoColorOutside")->ColorChosen(0x445566);
    m_bar.findChild<QSpinBox*>("lassoOpacityInside")->setValue(75);
    m_bar.findChild<QSpinBox*>("lassoOpacityOutside")->setValue(25);
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(m_bar.Settings(), (LassoSettings{0x112233, 0x445566, 75, 25}));
}

}  // namespace
