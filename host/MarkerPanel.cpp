// One row per set of free points: check mark and name of the file, number of points, opacity. The id is in the row.
#include "MarkerPanel.h"

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <cmath>

#include "ToolTip.h"

namespace {
constexpr int kIdRole = Qt::UserRole, kFileRole = Qt::UserRole + 1;  // of the first column

int IdOf(const QTreeWidgetItem& item) { return item.data(MarkerPanel::kName, kIdRole).toInt(); }
}  // namespace

MarkerPanel::MarkerPanel(QWidget* parent)
    : QWidget(parent), m_pList(new QTreeWidget), m_pDelete(new QPushButton(tr("Delete"))), m_pLines(new QCheckBox) {
    MakeList();
    m_pDelete->setObjectName("deletePoints");
    m_pDelete->setToolTip(tr("Delete the free points of the current row"));
    connect(m_pDelete, &QPushButton::clicked, this, &MarkerPanel::DeleteCurrent);
    m_pLines->setObjectName("lines");
    connect(m_pLines, &QCheckBox::toggled, this, &MarkerPanel::LinesWanted);
    auto* const note = new QLabel(tr("File, Clear removes lines, with all objects and free points."));
    note->setWordWrap(true);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_pList, 1);
    layout->addWidget(m_pDelete, 0, Qt::AlignLeft);
    layout->addWidget(m_pLines);
    layout->addWidget(note);
    ShowLineCount(0);
    FollowCurrent();
}

void MarkerPanel::MakeList() {
    m_pList->setObjectName("pointSets");
    m_pList->setColumnCount(kColumnCount);
    m_pList->setHeaderLabels({tr("Free points"), tr("Points"), tr("Opacity")});
    m_pList->setRootIsDecorated(false);
    m_pList->setUniformRowHeights(true);
    m_pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_pList->header()->setStretchLastSection(false);  // the numbers stay beside each other
    // Fires for every column of a row; the check mark is in the column of the name.
    connect(m_pList, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        if (column == kName) emit PointsVisibilityWanted(IdOf(*item), item->checkState(kName) == Qt::Checked);
    });
    auto* const remove = new QAction(tr("&Delete"), m_pList);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);  // Delete is a key of the viewer too
    connect(remove, &QAction::triggered, this, &MarkerPanel::DeleteCurrent);
    m_pList->addAction(remove);
    m_pList->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_pList->setToolTip(tr("The graphics memory of deleted points is not free before the window is closed."));
    connect(m_pList, &QTreeWidget::currentItemChanged, this, &MarkerPanel::FollowCurrent);
}

void MarkerPanel::AddPoints(int id, const std::string& file, int points, float alpha) {
    const QSignalBlocker quiet(m_pList);
    auto* const item = new QTreeWidgetItem(m_pList);
    item->setData(kName, kIdRole, id);
    item->setData(kName, kFileRole, QByteArray::fromStdString(file));
    item->setText(kName, QString::fromStdString(file.substr(file.rfind('/') + 1)));
    item->setToolTip(kName, PlainToolTip(QString::fromStdString(file)));
    item->setCheckState(kName, Qt::Checked);
    item->setText(kPoints, QString::number(points));
    item->setTextAlignment(kPoints, Qt::AlignRight | Qt::AlignVCenter);
    item->setText(kOpacity, tr("%1 %").arg(std::lround(alpha * 100.0f)));
    item->setTextAlignment(kOpacity, Qt::AlignRight | Qt::AlignVCenter);
}

void MarkerPanel::RemovePoints(int id) {
    for (int row = m_pList->topLevelItemCount() - 1; row >= 0; --row) {
        if (IdOf(*m_pList->topLevelItem(row)) == id) delete m_pList->topLevelItem(row);
    }
}

std::vector<int> MarkerPanel::PointIds() const {
    std::vector<int> ids(static_cast<std::size_t>(m_pList->topLevelItemCount()));
    for (std::size_t row = 0; row < ids.size(); ++row) ids[row] = IdOf(*m_pList->topLevelItem(static_cast<int>(row)));
    return ids;
}

std::vector<std::string> MarkerPanel::PointFiles() const {
    std::vector<std::string> files(static_cast<std::size_t>(m_pList->topLevelItemCount()));
    for (std::size_t row = 0; row < files.size(); ++row)
        files[row] = m_pList->topLevelItem(static_cast<int>(row))->data(kName, kFileRole).toByteArray().toStdString();
    return files;
}

void MarkerPanel::ShowLineCount(int count) {
    m_nLines = count;
    m_pLines->setText(tr("Show lines (%1)").arg(count));
}

void MarkerPanel::ShowLinesDrawn(bool on) {
    const QSignalBlocker quiet(m_pLines);  // the caller has set the mode already
    m_pLines->setChecked(on);
}

void MarkerPanel::Clear() {
    m_pList->clear();
    FollowCurrent();  // no signal reports this change
    ShowLineCount(0);
}

void MarkerPanel::FollowCurrent() { m_pDelete->setEnabled(m_pList->currentItem() != nullptr); }

void MarkerPanel::DeleteCurrent() {
    if (const QTreeWidgetItem* const item = m_pList->currentItem()) emit PointsDeletionWanted(IdOf(*item));
}
