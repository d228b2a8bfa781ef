// The list of objects by itself: columns, order, names, selection, and the objects that an alignment may move.
#include "ObjectList.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QColorDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <string>
#include <vector>

#include "ColorButton.h"
#include "ObjectPane.h"
#include "host/QtUnderXvfb.h"
#include "host/WaitUntil.h"

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
    /// From the top to the bottom.
    [[nodiscard]] QStringList Names() const {
        QStringList names;
        for (int row = 0; row < m_list.topLevelItemCount(); ++row) names << Row(row).text(ObjectList::kName);
        return names;
    }
    void Add(const std::string& file, int vertices, const std::array<float, 6>& box) {
        ObjectReport report;
        report.file = file;
        report.vertices = vertices;
        report.triangles = 2 * vertices;
        report.box = box;
        m_list.AddObject(report);
    }
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

TEST_F(ObjectListTest, ShowsTheColumnsUpToTheSizeWithoutScrolling) {
    Add("/data/bust_0001.pcm", 1234567, {0, 300, 0, 400, 0, 200});
    m_list.resize(m_list.sizeHint());
    m_list.show();
    ASSERT_TRUE(WaitUntil([&] { return m_list.viewport()->width() < m_list.header()->length(); }));
    const int end = m_list.columnViewportPosition(ObjectList::kSize) + m_list.columnWidth(ObjectList::kSize);
    EXPECT_LE(end, m_list.viewport()->width());
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
    m_list.ShowPlace(1, {0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f}, false);
    EXPECT_EQ(tip(1), "/data/b.pcm\nno finite coordinates");
    EXPECT_EQ(Row(1).text(ObjectList::kSize), "");
    EXPECT_EQ(m_nChanges + m_nVisibilities, 0);
    m_list.ShowPlace(0, {-2e-15f, 59, -0.01f, 0.01f, 1e-6f, 5e-4f}, true);
    EXPECT_EQ(tip(0), "/data/a.pcm\nx 0 … 59\ny -0.01 … 0.01\nz 0 … 0.0005");
}

// ---- rows and objects

TEST_F(ObjectListTest, ChoosesWhatMayMoveByAllSelectedRows) {
    m_list.Select({0, 2});
    Trigger("onlyThisMayMove");
    EXPECT_EQ(m_list.MovingRows(), (Indices{0, 2}));
    Trigger("allOthersMayMove");
    EXPECT_EQ(m_list.MovingRows(), Indices{1});
}

TEST_F(ObjectListTest, KeepsTheIndicesOfObjectsInAnyOrderOfTheRows) {
    m_list.SortBy(ObjectList::kName, Qt::DescendingOrder);
    EXPECT_EQ(Names(), (QStringList{"c.pcm", "b.pcm", "a.pcm"}));
    EXPECT_EQ(m_list.NameOf(0), "a.pcm");
    m_list.setCurrentItem(m_list.topLevelItem(0));
    EXPECT_EQ(m_list.CurrentObject(), 2);
    EXPECT_EQ(m_list.SelectedObjects(), Indices{2});
    m_list.RemoveObject(1);
    EXPECT_EQ(Names(), (QStringList{"c.pcm", "a.pcm"}));
    EXPECT_EQ(m_list.NameOf(1), "c.pcm");
    EXPECT_EQ(m_list.CurrentObject(), 1);
}

TEST_F(ObjectListTest, SortsNumbersAsNumbersAndNamesByTheirNumbers) {
    m_list.RemoveAll();
    Add("/x/scan10.pcm", 900, {0, 9, 0, 1, 0, 1});
    Add("/x/scan9.pcm", 1000000, {0, 100, 0, 1, 0, 1});
    Add("/x/Scan1.pcm", 20, {0, 50, 0, 1, 0, 1});
    m_list.SortBy(ObjectList::kName);
    EXPECT_EQ(Names(), (QStringList{"Scan1.pcm", "scan9.pcm", "scan10.pcm"}));
    m_list.SortBy(ObjectList::kTriangles);
    EXPECT_EQ(Names(), (QStringList{"Scan1.pcm", "scan10.pcm", "scan9.pcm"}));
    m_list.SortBy(ObjectList::kSize);
    EXPECT_EQ(Names(), (QStringList{"scan10.pcm", "Scan1.pcm", "scan9.pcm"})) << "9, 50 and 100 mm";
    m_list.SortBy(ObjectList::kVertices, Qt::DescendingOrder);
    EXPECT_EQ(Names(), (QStringList{"scan9.pcm", "scan10.pcm", "Scan1.pcm"}));
    Add("/x/scan2.pcm", 950, {0, 1, 0, 1, 0, 1});
    EXPECT_EQ(Names(), (QStringList{"scan9.pcm", "scan2.pcm", "scan10.pcm", "Scan1.pcm"})) << "a new row has its place";
    m_list.SortBy(ObjectList::kUnsorted);
    EXPECT_EQ(Names(), (QStringList{"scan10.pcm", "scan9.pcm", "Scan1.pcm", "scan2.pcm"})) << "as opened";
}

TEST_F(ObjectListTest, SortsByAClickOnAHeaderAndRestoresTheOrderByTheThird) {
    m_list.resize(900, 300);
    m_list.show();
    const QHeaderView& head = *m_list.header();
    const auto click = [&] {
        const QPoint at(head.sectionViewportPosition(ObjectList::kName) + 20, head.height() / 2);
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, head.viewport()->mapToGlobal(at), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(head.viewport(), &event);
        }
    };
    m_list.SetRemoved(1, true);
    m_list.SetRemoved(1, false);
    click();
    EXPECT_EQ(Names(), (QStringList{"a.pcm", "b.pcm", "c.pcm"}));
    EXPECT_EQ(head.sortIndicatorSection(), ObjectList::kName);
    click();
    EXPECT_EQ(Names(), (QStringList{"c.pcm", "b.pcm", "a.pcm"}));
    click();
    EXPECT_EQ(Names(), (QStringList{"a.pcm", "b.pcm", "c.pcm"}));
    EXPECT_EQ(head.sortIndicatorSection(), -1);
}

TEST_F(ObjectListTest, KeepsTheColourButtonsOfSortedRows) {
    m_list.ShowColor(0, 0x0000FF);
    m_list.SortBy(ObjectList::kName, Qt::DescendingOrder);
    int index = -1;
    QObject::connect(&m_list, &ObjectList::ColorWanted, [&](int wanted) { index = wanted; });
    auto* const button = qobject_cast<ColorButton*>(m_list.itemWidget(m_list.topLevelItem(2), ObjectList::kColor));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->Packed(), 0x0000FF);
    EXPECT_EQ(button->accessibleName(), "Colour of a.pcm");
    emit button->ColorChosen(1);
    EXPECT_EQ(index, 0);
}

TEST_F(ObjectListTest, HidesTheRowsOfRemovedObjectsFromEverything) {
    Row(1).setCheckState(ObjectList::kMayMove, Qt::Checked);
    m_list.Select({0, 1});
    m_list.SetRemoved(1, true);
    EXPECT_TRUE(m_list.IsRemoved(1));
    EXPECT_TRUE(m_list.IsHidden(1));
    EXPECT_TRUE(m_list.Row(1)->isHidden());
    EXPECT_EQ(m_list.ObjectCount(), 3) << "the viewer still has it";
    EXPECT_EQ(m_list.PresentObjects(), (Indices{0, 2}));
    EXPECT_EQ(m_list.SelectedObjects(), Indices{0});
    EXPECT_EQ(m_list.MovingRows(), Indices{});
    m_list.selectAll();
    EXPECT_EQ(m_list.SelectedObjects(), (Indices{0, 2}));
    m_list.SetMayMove({true, true, true});
    EXPECT_EQ(m_list.MovingRows(), (Indices{0, 2}));
    EXPECT_TRUE(m_list.Rows().at(1).isRemoved);
    const std::vector<ObjectRow> rows = m_list.Rows();
    m_list.ShowRows(rows, std::vector<ObjectReport>(rows.size()));
    EXPECT_TRUE(m_list.IsRemoved(1)) << "after a cut";
    m_list.SetRemoved(1, false);
    EXPECT_EQ(m_list.PresentObjects(), (Indices{0, 1, 2}));
    EXPECT_EQ(m_list.MovingRows(), (Indices{0, 1, 2})) << "with the mark that it had";
}

TEST_F(ObjectListTest, DeletesAllSelectedRowsWithOneReport) {
    Indices deleted;
    QObject::connect(&m_list, &ObjectList::DeletionWanted, [&](const Indices& indices) { deleted = indices; });
    m_list.SortBy(ObjectList::kName, Qt::DescendingOrder);
    m_list.Select({2, 0});
    Trigger("deleteObjects");
    EXPECT_EQ(deleted, (Indices{0, 2}));
    EXPECT_EQ(m_nDeletions, 1);
    m_list.clearSelection();
    Trigger("deleteObjects");
    EXPECT_EQ(m_nDeletions, 1);
}

TEST_F(ObjectListTest, KeepsTheSelectionWhenRowsAreReplaced) {
    m_list.Select({0, 2});
    const std::vector<ObjectRow> rows = m_list.Rows();
    m_list.ShowRows({rows[0], rows[2]}, std::vector<ObjectReport>(2));
    EXPECT_EQ(m_list.SelectedObjects(), (Indices{0, 1}));
    EXPECT_EQ(m_list.CurrentObject(), 0);
}

// ---- what a row shows

TEST_F(ObjectListTest, AlignsNumbersToTheRightWithSeparators) {
    Add("/x/large.pcm", 1234567, {0, 12.26f, 0, 3.5f, 0, 0.126f});
    const QLocale before;
    const QTreeWidgetItem& row = *m_list.Row(3);
    EXPECT_EQ(row.text(ObjectList::kVertices), "1,234,567");
    EXPECT_EQ(row.text(ObjectList::kTriangles), "2,469,134");
    EXPECT_EQ(row.text(ObjectList::kSize), "12.3 × 3.5 × 0.1");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    Add("/x/german.pcm", 1234567, {0, 12.26f, 0, 3.5f, 0, 0.126f});
    QLocale::setDefault(before);
    EXPECT_EQ(m_list.Row(4)->text(ObjectList::kVertices), "1.234.567");
    EXPECT_EQ(m_list.Row(4)->text(ObjectList::kSize), "12,3 × 3,5 × 0,1");
    for (const int column : {ObjectList::kVertices, ObjectList::kTriangles, ObjectList::kSize})
        EXPECT_TRUE(Qt::Alignment(row.textAlignment(column)).testFlag(Qt::AlignRight)) << column;
}

TEST_F(ObjectListTest, NamesAnObjectByTheTextThatTheUserGives) {
    std::vector<int> renamed;
    QObject::connect(&m_list, &ObjectList::Renamed, [&](int index) { renamed.push_back(index); });
    Row(1).setText(ObjectList::kName, "  upper   jaw ");
    EXPECT_EQ(m_list.NameOf(1), "upper jaw");
    EXPECT_EQ(renamed, Indices{1});
    EXPECT_EQ(m_nVisibilities, 0);
    EXPECT_EQ(Row(1).toolTip(ObjectList::kName).section('\n', 0, 0), "/data/b.pcm") << "the path stays";
    const std::vector<ObjectRow> rows = m_list.Rows();
    m_list.ShowRows(rows, std::vector<ObjectReport>(rows.size()));
    EXPECT_EQ(m_list.NameOf(1), "upper jaw") << "after a cut";
    Row(1).setText(ObjectList::kName, " ");
    EXPECT_EQ(m_list.NameOf(1), "b.pcm") << "without a name, that of the file";
}

TEST_F(ObjectListTest, EditsTheNameOfTheCurrentRowInPlace) {
    m_list.resize(900, 300);
    m_list.show();
    m_list.setCurrentItem(&Row(2), ObjectList::kSize);
    Trigger("renameObject");
    auto* const input = m_list.findChild<QLineEdit*>();
    ASSERT_NE(input, nullptr);
    EXPECT_EQ(input->text(), "c.pcm");
    input->setText("lower");
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(input, &enter);
    QApplication::processEvents();
    EXPECT_EQ(m_list.NameOf(2), "lower");
}

TEST_F(ObjectListTest, ChangesTheMarksOfAllSelectedRowsBySpace) {
    m_list.show();
    m_list.Select({0, 2});
    Press(Qt::Key_Space);
    EXPECT_TRUE(m_list.IsHidden(0));
    EXPECT_FALSE(m_list.IsHidden(1));
    EXPECT_TRUE(m_list.IsHidden(2));
    EXPECT_EQ(m_nVisibilities, 2);
    Press(Qt::Key_Space);
    EXPECT_FALSE(m_list.IsHidden(0));
    EXPECT_FALSE(m_list.IsHidden(2));
}

TEST_F(ObjectListTest, OpensTheDialogOfTheColourBySpace) {
    m_list.show();
    m_list.setCurrentItem(&Row(1), ObjectList::kColor);
    std::int32_t chosen = -1;
    int index = -1;
    QObject::connect(&m_list, &ObjectList::ColorWanted,
                     [&](int i, std::int32_t packed) { index = i, chosen = packed; });
    QTimer::singleShot(0, [] {
        auto* const dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        dialog->setCurrentColor(QColor(1, 2, 3));
        dialog->accept();
    });
    Press(Qt::Key_Space);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(chosen, 0x030201);
}

TEST_F(ObjectListTest, CanLoseAnObjectWhileItsColourIsChosen) {
    m_list.setCurrentItem(&Row(1), ObjectList::kColor);
    bool wasAsked = false, wasAnswered = false;
    QObject::connect(&m_list, &ObjectList::ColorWanted, [&] { wasAnswered = true; });
    QTimer::singleShot(0, [&] {
        const QPointer<QColorDialog> dialog(qobject_cast<QColorDialog*>(QApplication::activeModalWidget()));
        wasAsked = dialog != nullptr;
        m_list.RemoveAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_NE(dialog, nullptr) << "it must not end with the row";
        if (dialog != nullptr) dialog->accept();
    });
    Press(Qt::Key_Space);
    EXPECT_TRUE(wasAsked);
    EXPECT_FALSE(wasAnswered);
}

TEST_F(ObjectListTest, NamesTheObjectInTheTipOfItsColourAsTheRowDoes) {
    const QWidget& button = *m_list.itemWidget(&Row(1), ObjectList::kColor);
    EXPECT_EQ(button.toolTip().toStdString(), "Colour of b.pcm: click to choose another one");
    Row(1).setText(ObjectList::kName, "<b>lid</b>");
    EXPECT_EQ(button.accessibleName().toStdString(), "Colour of <b>lid</b>");
    EXPECT_TRUE(button.toolTip().contains("&lt;b&gt;lid")) << button.toolTip().toStdString();
}

// ---- the pane

TEST_F(ObjectListTest, IsSummedUpBelow) {
    auto* const list = new ObjectList;
    const ObjectPane pane(list);
    const auto* const totals = pane.findChild<QLabel*>("objectTotals");
    EXPECT_EQ(totals->text(), "Objects: 0. Triangles: 0. Vertices: 0");
    for (const int vertices : {1000, 20, 3}) {
        ObjectReport report;
        report.file = "/x/" + std::to_string(vertices) + ".pcm";
        report.vertices = vertices;
        report.triangles = 2 * vertices;
        list->AddObject(report);
    }
    EXPECT_EQ(totals->text(), "Objects: 3. Triangles: 2,046. Vertices: 1,023");
    list->Select({0, 2});
    EXPECT_EQ(totals->text(), "Selected: 2 of 3. Triangles: 2,006. Vertices: 1,003");
    list->SetRemoved(0, true);
    EXPECT_EQ(totals->text(), "Selected: 1 of 2. Triangles: 6. Vertices: 3");
    list->Select({});
    EXPECT_EQ(totals->text(), "Objects: 2. Triangles: 46. Vertices: 23");
    list->RemoveAll();
    EXPECT_EQ(totals->text(), "Objects: 0. Triangles: 0. Vertices: 0");
}

}  // namespace
