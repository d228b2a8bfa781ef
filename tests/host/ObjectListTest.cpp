// The column that says which objects an alignment may move, and the marks of moved objects.
#include "ObjectList.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <vector>

#include "host/QtUnderXvfb.h"

namespace {

class ObjectListTest : public testing::Test {
protected:
    ObjectListTest() {
        for (const char* const file : {"/data/a.pcm", "/data/b.pcm", "/data/c.pcm"}) {
            ObjectReport report;
            report.file = file;
            report.vertices = 5;
            m_list.AddObject(report);
        }
        QObject::connect(&m_list, &ObjectList::MayMoveChanged, [this] { ++m_nChanges; });
        QObject::connect(&m_list, &ObjectList::VisibilityWanted, [this] { ++m_nVisibilities; });
        QObject::connect(&m_list, &ObjectList::DeletionWanted, [this] { ++m_nDeletions; });
    }
    [[nodiscard]] QTreeWidgetItem& Row(int row) const { return *m_list.topLevelItem(row); }
    void Press(Qt::Key key) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, key == Qt::Key_Space ? " " : "");
        QApplication::sendEvent(&m_list, &press);
    }
    void Trigger(const char* action) const { m_list.findChild<QAction*>(action)->trigger(); }
    using Indices = std::vector<int>;

    ObjectList m_list;
    int m_nChanges = 0, m_nVisibilities = 0, m_nDeletions = 0;
};

TEST_F(ObjectListTest, LetsNoObjectMoveAfterItsImport) {
    EXPECT_EQ(m_list.MovingRows(), Indices{});
    for (const ObjectRow& row : m_list.Rows()) EXPECT_FALSE(row.mayMove);
    EXPECT_EQ(m_list.headerItem()->text(ObjectList::kMayMove), "May move");
    EXPECT_FALSE(m_list.headerItem()->toolTip(ObjectList::kMayMove).isEmpty());
}

TEST_F(ObjectListTest, ReportsAChangeAndTouchesNoVisibility) {
    Row(1).setCheckState(ObjectList::kMayMove, Qt::Checked);
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
    EXPECT_EQ(m_nChanges, 1);
    Row(1).setCheckState(ObjectList::kMayMove, Qt::Unchecked);
    EXPECT_EQ(m_list.MovingRows(), Indices{});
    EXPECT_EQ(m_nChanges, 2);
    Row(1).setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_EQ(m_nVisibilities, 1);
    EXPECT_EQ(m_nChanges, 2);
}

TEST_F(ObjectListTest, KeepsTheMarkOfAnObjectInOtherRows) {
    Row(2).setCheckState(ObjectList::kMayMove, Qt::Checked);
    m_list.RemoveObject(0);
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
    const std::vector<ObjectRow> rows = m_list.Rows();
    m_nChanges = 0;
    m_list.ShowRows(rows, std::vector<ObjectReport>(rows.size()));
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
    EXPECT_EQ(m_nChanges, 0);
}

TEST_F(ObjectListTest, IsUsableByKeysInAllColumns) {
    m_list.setCurrentItem(&Row(0));
    m_list.show();
    for (int i = 0; i < ObjectList::kMayMove; ++i) Press(Qt::Key_Right);
    EXPECT_EQ(m_list.currentColumn(), ObjectList::kMayMove);
    Press(Qt::Key_Down);
    Press(Qt::Key_Space);
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
    EXPECT_EQ(m_nVisibilities, 0);
    Press(Qt::Key_Space);
    EXPECT_EQ(m_list.MovingRows(), Indices{});
    for (int i = 0; i < ObjectList::kMayMove; ++i) Press(Qt::Key_Left);
    EXPECT_EQ(m_list.currentColumn(), ObjectList::kName);
    Press(Qt::Key_Left);
    EXPECT_EQ(m_list.currentColumn(), ObjectList::kName) << "there is none to the left";
    Press(Qt::Key_Space);
    EXPECT_TRUE(m_list.IsHidden(1));
    EXPECT_EQ(m_nVisibilities, 1);
    for (int i = 0; i < 20; ++i) Press(Qt::Key_Right);
    EXPECT_EQ(m_list.currentColumn(), ObjectList::kColumnCount - 1);
    EXPECT_EQ(m_list.indexOfTopLevelItem(m_list.currentItem()), 1);
}

TEST_F(ObjectListTest, ChoosesManyObjectsAtOnceByTheMenuOfTheCurrentOne) {
    m_list.setCurrentItem(&Row(1));
    Trigger("allOthersMayMove");
    EXPECT_EQ(m_list.MovingRows(), (Indices{0, 2}));
    EXPECT_EQ(m_nChanges, 1) << "one report for both";
    Trigger("allOthersMayMove");
    EXPECT_EQ(m_nChanges, 1) << "nothing has changed";
    Trigger("onlyThisMayMove");
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
    Trigger("noneMayMove");
    EXPECT_EQ(m_list.MovingRows(), Indices{});
    EXPECT_EQ(m_nChanges, 3);
    EXPECT_EQ(m_nVisibilities + m_nDeletions, 0);
}

TEST_F(ObjectListTest, ShowsWhereAnObjectIsWithoutAReport) {
    const auto tip = [this](int row) { return Row(row).toolTip(ObjectList::kSize); };
    m_list.ShowPlace(1, {0, 1, 2, 3, 4, 5}, true);
    EXPECT_EQ(Row(1).text(ObjectList::kMoved), "moved");
    EXPECT_EQ(tip(1), "/data/b.pcm\nx 0 … 1\ny 2 … 3\nz 4 … 5");
    EXPECT_EQ(Row(0).text(ObjectList::kMoved), "");
    m_list.ShowPlace(1, {0, 1, 2, 3, 4, 6}, false);
    EXPECT_EQ(Row(1).text(ObjectList::kMoved), "");
    EXPECT_EQ(tip(1), "/data/b.pcm\nx 0 … 1\ny 2 … 3\nz 4 … 6");
    EXPECT_EQ(m_nChanges + m_nVisibilities, 0);
    m_list.ShowPlace(0, {-2e-15f, 59, -0.01f, 0.01f, 1e-6f, 5e-4f}, true);
    EXPECT_EQ(tip(0), "/data/a.pcm\nx 0 … 59\ny -0.01 … 0.01\nz 0 … 0.0005");
}

}  // namespace
