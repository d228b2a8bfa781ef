// The list of point sets and the switch of the lines.
#include "MarkerPanel.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QPushButton>
#include <QTextDocument>
#include <QTreeWidget>

#include "host/QtUnderXvfb.h"

namespace {

class MarkerPanelTest : public testing::Test {
protected:
    MarkerPanelTest() {
        QObject::connect(&m_panel, &MarkerPanel::PointsVisibilityWanted,
                         [this](int id, bool visible) { m_visible.emplace_back(id, visible); });
        QObject::connect(&m_panel, &MarkerPanel::PointsDeletionWanted, [this](int id) { m_deleted.push_back(id); });
        QObject::connect(&m_panel, &MarkerPanel::LinesWanted, [this](bool on) { m_lines.push_back(on); });
    }
    [[nodiscard]] QTreeWidget& List() const { return *m_panel.findChild<QTreeWidget*>("pointSets"); }
    [[nodiscard]] QCheckBox& Lines() const { return *m_panel.findChild<QCheckBox*>("lines"); }

    MarkerPanel m_panel;
    std::vector<std::pair<int, bool>> m_visible;
    std::vector<int> m_deleted;
    std::vector<bool> m_lines;
};

TEST_F(MarkerPanelTest, ShowsNamePointsAndOpacityOfASet) {
    m_panel.AddPoints(3, "/data/a b.xyz", 1234567, 0.25f);
    ASSERT_EQ(List().topLevelItemCount(), 1);
    const QTreeWidgetItem& row = *List().topLevelItem(0);
    EXPECT_EQ(row.text(MarkerPanel::kName), "a b.xyz");
    EXPECT_EQ(row.toolTip(MarkerPanel::kName), "/data/a b.xyz");
    EXPECT_EQ(row.text(MarkerPanel::kPoints), "1234567");
    EXPECT_EQ(row.text(MarkerPanel::kOpacity), "25 %");
    EXPECT_EQ(row.checkState(MarkerPanel::kName), Qt::Checked);
    EXPECT_TRUE(m_visible.empty()) << "a new set is visible already";
}

TEST_F(MarkerPanelTest, ShowsTagsInTheToolTipOfAName) {
    m_panel.AddPoints(0, "/data/<b>x</b> &amp; y.xyz", 1, 1.0f);
    QTextDocument shown;
    shown.setHtml(List().topLevelItem(0)->toolTip(MarkerPanel::kName));
    EXPECT_EQ(shown.toPlainText(), "/data/<b>x</b> &amp; y.xyz");
}

TEST_F(MarkerPanelTest, RequestsTheVisibilityOfTheCheckMark) {
    m_panel.AddPoints(0, "a", 1, 1.0f);
    m_panel.AddPoints(7, "b", 1, 1.0f);
    List().topLevelItem(1)->setCheckState(MarkerPanel::kName, Qt::Unchecked);
    List().topLevelItem(1)->setCheckState(MarkerPanel::kName, Qt::Checked);
    EXPECT_EQ(m_visible, (std::vector<std::pair<int, bool>>{{7, false}, {7, true}}));
}

TEST_F(MarkerPanelTest, RequestsTheDeletionOfTheCurrentRowOnly) {
    m_panel.AddPoints(4, "a", 1, 1.0f);
    m_panel.AddPoints(9, "b", 1, 1.0f);
    QAction* const remove = List().actions().value(0);
    ASSERT_NE(remove, nullptr);
    EXPECT_EQ(remove->shortcut(), QKeySequence(QKeySequence::Delete));
    List().setCurrentItem(nullptr);
    remove->trigger();
    EXPECT_TRUE(m_deleted.empty());
    List().setCurrentItem(List().topLevelItem(1));
    remove->trigger();
    EXPECT_EQ(m_deleted, std::vector<int>{9});
    EXPECT_EQ(m_panel.PointIds(), (std::vector<int>{4, 9})) << "the window removes the row";
}

TEST_F(MarkerPanelTest, HasAButtonForTheDeletionOfTheCurrentRow) {
    auto& button = *m_panel.findChild<QPushButton*>("deletePoints");
    EXPECT_FALSE(button.isEnabled());
    m_panel.AddPoints(4, "a", 1, 1.0f);
    List().setCurrentItem(List().topLevelItem(0));
    EXPECT_TRUE(button.isEnabled());
    button.click();
    EXPECT_EQ(m_deleted, std::vector<int>{4});
    m_panel.RemovePoints(4);
    EXPECT_FALSE(button.isEnabled());
    m_panel.AddPoints(5, "a", 1, 1.0f);
    List().setCurrentItem(List().topLevelItem(0));
    m_panel.Clear();
    EXPECT_FALSE(button.isEnabled());
}

TEST_F(MarkerPanelTest, RemovesTheRowOfAnIdWhereverItIs) {
    m_panel.AddPoints(2, "a", 1, 1.0f);
    m_panel.AddPoints(0, "b", 1, 1.0f);
    m_panel.AddPoints(1, "c", 1, 1.0f);
    m_panel.RemovePoints(0);
    EXPECT_EQ(m_panel.PointIds(), (std::vector<int>{2, 1}));
    m_panel.RemovePoints(5);
    EXPECT_EQ(m_panel.PointIds(), (std::vector<int>{2, 1}));
}

TEST_F(MarkerPanelTest, CountsLinesBesideTheirSwitch) {
    EXPECT_EQ(Lines().text(), "Show lines (0)");
    m_panel.ShowLineCount(12);
    EXPECT_EQ(Lines().text(), "Show lines (12)");
    EXPECT_EQ(m_panel.LineCount(), 12);
}

TEST_F(MarkerPanelTest, RequestsTheDrawingOfLinesByTheUserOnly) {
    EXPECT_FALSE(Lines().isChecked());
    m_panel.ShowLinesDrawn(true);
    EXPECT_TRUE(Lines().isChecked());
    EXPECT_TRUE(m_lines.empty());
    Lines().click();
    EXPECT_EQ(m_lines, std::vector<bool>{false});
}

TEST_F(MarkerPanelTest, ClearedKeepsTheSwitchOfTheLines) {
    m_panel.AddPoints(0, "a", 1, 1.0f);
    m_panel.ShowLineCount(2);
    m_panel.ShowLinesDrawn(true);
    m_panel.Clear();
    EXPECT_TRUE(m_panel.PointIds().empty());
    EXPECT_EQ(m_panel.LineCount(), 0);
    EXPECT_TRUE(Lines().isChecked());
    EXPECT_TRUE(m_deleted.empty() && m_visible.empty() && m_lines.empty());
}

}  // namespace
