// One row per object: check mark and name, colour button, counts, bounding box.
#include "ObjectList.h"

#include <QAction>
#include <QHeaderView>
#include <QKeySequence>
#include <QScrollBar>

#include "ColorButton.h"
#include "KV_ScenePane/PathText.h"
#include "ToolTip.h"

namespace {

QString FileNameOf(const std::wstring& path) {
    const std::string bytes = KV_ScenePane::PathBytes(path);
    return QString::fromStdString(bytes.substr(bytes.rfind('/') + 1));
}

// What a row holds beside its texts, in the column of the name.
constexpr int kIdRole = Qt::UserRole, kFileRole = Qt::UserRole + 1, kVerticesRole = Qt::UserRole + 2;

/// Ranges of x, y and z, with four digits: enough to find the object, and short enough for the list.
QString BoxText(const std::array<float, 6>& box) {
    const auto range = [&](std::size_t i) {
        return QString("%1 … %2").arg(QString::number(box[i], 'g', 4), QString::number(box[i + 1], 'g', 4));
    };
    return QString("x %1, y %2, z %3").arg(range(0), range(2), range(4));
}

}  // namespace

ObjectList::ObjectList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(kColumnCount);
    setHeaderLabels({tr("Object"), tr("Colour"), tr("Vertices"), tr("Triangles"), tr("Box")});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    // Fires for every column of a row; the check mark is in the column of the name.
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        if (column == kName) emit VisibilityWanted(indexOfTopLevelItem(item), item->checkState(kName) == Qt::Checked);
    });
    auto* remove = new QAction(tr("&Delete"), this);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);  // Delete is a key of the viewer too
    connect(remove, &QAction::triggered, this, &ObjectList::DeleteSelected);
    addAction(remove);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ObjectList::AddObject(const ObjectReport& object) {
    const QSignalBlocker quiet(this);
    AddRow({.id = m_nNextId++, .file = object.file}, object);
}

QTreeWidgetItem* ObjectList::AddRow(const ObjectRow& row, const ObjectReport& object) {
    // The viewer gives objects of some mesh formats no name.
    const std::wstring path = object.name.empty() ? KV_ScenePane::WidePath(row.file) : object.name;
    auto* const item = new QTreeWidgetItem(this);
    item->setText(kName, FileNameOf(path));
    item->setToolTip(kName, PlainToolTip(QString::fromStdString(KV_ScenePane::PathBytes(path))));
    item->setCheckState(kName, row.isVisible ? Qt::Checked : Qt::Unchecked);
    item->setData(kName, kIdRole, row.id);
    item->setData(kName, kFileRole, QByteArray::fromStdString(row.file));
    item->setData(kName, kVerticesRole, object.vertices);
    item->setText(kVertices, QString::number(object.vertices));
    item->setText(kTriangles, QString::number(object.triangles));
    item->setText(kBox, object.vertices > 0 ? BoxText(object.box) : QString());
    auto* const button = new ColorButton(object.color);
    button->SetName(tr("Colour of %1").arg(item->text(kName)));
    if (object.hasVertexColors) button->setToolTip(tr("The scan has its own colours, which are shown instead"));
    // By the item and not by its position, which changes when rows above are removed.
    connect(button, &ColorButton::ColorChosen, this,
            [this, item](std::int32_t packed) { emit ColorWanted(indexOfTopLevelItem(item), packed); });
    setItemWidget(item, kColor, button);
    return item;
}

QSize ObjectList::minimumSizeHint() const {
    const int rows = 2 * fontMetrics().lineSpacing();
    return {QTreeWidget::minimumSizeHint().width(), header()->sizeHint().height() + rows + 2 * frameWidth()};
}

std::vector<ObjectRow> ObjectList::Rows() const {
    std::vector<ObjectRow> rows;
    rows.reserve(static_cast<std::size_t>(topLevelItemCount()));
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const QTreeWidgetItem& item = *topLevelItem(i);
        rows.push_back({.id = item.data(kName, kIdRole).toInt(),
                        .file = item.data(kName, kFileRole).toByteArray().toStdString(),
                        .isVisible = item.checkState(kName) == Qt::Checked,
                        .vertices = item.data(kName, kVerticesRole).toInt()});
    }
    return rows;
}

void ObjectList::ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects) {
    const QSignalBlocker quiet(this);
    const int current = currentItem() != nullptr ? currentItem()->data(kName, kIdRole).toInt() : -1;
    const int scrolled = verticalScrollBar()->value();
    clear();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QTreeWidgetItem* const item = AddRow(rows[i], objects[i]);
        if (rows[i].id == current) setCurrentItem(item);
    }
    verticalScrollBar()->setValue(scrolled);
}

void ObjectList::RemoveObject(int index) { delete topLevelItem(index); }

void ObjectList::ShowColor(int index, std::int32_t packed) {
    static_cast<ColorButton*>(itemWidget(topLevelItem(index), kColor))->SetPacked(packed);
}

bool ObjectList::IsHidden(int index) const {
    const QTreeWidgetItem* const item = topLevelItem(index);
    return item != nullptr && item->checkState(kName) != Qt::Checked;
}

void ObjectList::DeleteSelected() {
    if (QTreeWidgetItem* const item = currentItem()) emit DeletionWanted(indexOfTopLevelItem(item));
}
