// The tools by themselves: what they show, and what they report.
#include "AlignToolBar.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QSet>
#include <stdexcept>

#include "AlignIcons.h"
#include "CutToolBar.h"
#include "host/QtUnderXvfb.h"

namespace {

using Phase = KV_ScenePane::AlignmentPhase;

class AlignToolBarTest : public testing::Test {
protected:
    QAction& Tool(const char* name) {
        auto* const action = m_bar.findChild<QAction*>(name);
        if (action == nullptr) throw std::runtime_error(std::string("there is no tool ") + name);
        return *action;
    }
    /// Names of the tools that can be used.
    QStringList Enabled() {
        QStringList names;
        for (const QAction* const action : m_bar.actions())
            if (action->isEnabled()) names << action->objectName();
        return names;
    }
    AlignToolBar m_bar;
};

TEST_F(AlignToolBarTest, EnablesWhatThePhaseAllows) {
    EXPECT_EQ(Enabled(), QStringList());
    const QStringList ways{"alignByHand", "alignByPoints"};
    m_bar.Show({.canAlign = true});
    EXPECT_EQ(Enabled(), ways);
    m_bar.Show({.canAlign = true, .way = AlignWay::ByHand, .progress = {Phase::ByHand, 0, 0}});
    EXPECT_EQ(Enabled(), ways + QStringList{"alignFinish"});
    m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = {Phase::PickMoving, 0, 0}});
    EXPECT_EQ(Enabled(), ways + QStringList{"alignFinish"});
    m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = {Phase::PickMoving, 1, 0}});
    EXPECT_EQ(Enabled(), ways + QStringList({"alignContinue", "alignDrop", "alignFinish"}));
    m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = {Phase::PickFixed, 2, 0}});
    EXPECT_EQ(Enabled(), ways + QStringList{"alignFinish"});
    m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = {Phase::PickFixed, 2, 1}});
    EXPECT_EQ(Enabled(), ways + QStringList({"alignDrop", "alignFinish"}));
}

TEST_F(AlignToolBarTest, ReportsEachTool) {
    QStringList reports;
    QObject::connect(&m_bar, &AlignToolBar::WayWanted,
                     [&](AlignWay way) { reports << (way == AlignWay::ByHand ? "hand" : "points"); });
    QObject::connect(&m_bar, &AlignToolBar::ContinueWanted, [&] { reports << "continue"; });
    QObject::connect(&m_bar, &AlignToolBar::DropWanted, [&] { reports << "drop"; });
    QObject::connect(&m_bar, &AlignToolBar::FinishWanted, [&] { reports << "finish"; });
    m_bar.Show({.canAlign = true});
    Tool("alignByHand").trigger();
    m_bar.Show({.canAlign = true});
    Tool("alignByPoints").trigger();
    m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = {Phase::PickMoving, 1, 0}});
    for (const char* const name : {"alignContinue", "alignDrop", "alignFinish"}) Tool(name).trigger();
    EXPECT_EQ(reports, QStringList({"hand", "points", "continue", "drop", "finish"}));
}

TEST_F(AlignToolBarTest, FinishesTheAlignmentByASecondClickOnItsWay) {
    m_bar.Show({.canAlign = true, .way = AlignWay::ByHand, .progress = {Phase::ByHand, 0, 0}});
    EXPECT_TRUE(Tool("alignByHand").isChecked());
    EXPECT_FALSE(Tool("alignByPoints").isChecked());
    int finished = 0, started = 0;
    QObject::connect(&m_bar, &AlignToolBar::FinishWanted, [&] { ++finished; });
    QObject::connect(&m_bar, &AlignToolBar::WayWanted, [&] { ++started; });
    Tool("alignByHand").trigger();
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(started, 0);
}

TEST_F(AlignToolBarTest, SaysWhatBecomesOfTheAlignmentAtItsEnd) {
    const auto text = [&] { return Tool("alignFinish").text().remove('&').toStdString(); };
    const auto icon = [&] { return Tool("alignFinish").icon().pixmap(QSize(24, 24), 1.0).toImage(); };
    m_bar.Show({.canAlign = true, .way = AlignWay::ByHand, .progress = {Phase::ByHand, 0, 0}});
    EXPECT_EQ(text(), "Finish the alignment");
    const QImage finish = icon();
    for (const AlignProgress& progress : {AlignProgress{Phase::PickMoving, 1, 0}, {Phase::PickFixed, 2, 1}}) {
        m_bar.Show({.canAlign = true, .way = AlignWay::ByPoints, .progress = progress});
        EXPECT_EQ(text(), "End without moving");
        EXPECT_NE(icon(), finish);
        EXPECT_EQ(Tool("alignFinish").toolTip().toStdString(), "End without moving (Esc): drops the points");
    }
}

TEST_F(AlignToolBarTest, NamesTheKeyOfEachToolInItsTipAndSharesNoneWithTheCuts) {
    QMenu menu;
    m_bar.FillMenu(menu);
    const CutToolBar cuts{LassoSettings{}};
    QSet<QKeySequence> keys;
    for (const QAction* const way : cuts.Ways()) keys << way->shortcut();
    const auto ofCuts = keys.size();
    for (const QAction* const action : menu.actions()) {
        if (action->isSeparator()) continue;
        EXPECT_TRUE(action->toolTip().contains(action->shortcut().toString(QKeySequence::NativeText)))
            << action->toolTip().toStdString();
        keys << action->shortcut();
    }
    EXPECT_EQ(keys.size(), ofCuts + 5);
}

TEST_F(AlignToolBarTest, HasAnIconOfItsOwnForEachTool) {
    QList<QImage> pictures;
    for (const QIcon& icon : {AlignWayIcon(AlignWay::ByHand), AlignWayIcon(AlignWay::ByPoints), AlignContinueIcon(),
                              AlignDropIcon(), AlignFinishIcon(), AlignEndIcon()})
        pictures << icon.pixmap(QSize(24, 24), 1.0).toImage();
    for (int i = 0; i < pictures.size(); ++i) {
        EXPECT_FALSE(pictures[i].isNull());
        for (int j = 0; j < i; ++j) EXPECT_NE(pictures[i], pictures[j]) << i << ' ' << j;
    }
}

}  // namespace
