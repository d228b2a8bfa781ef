// One row per object: check mark and name, colour button, counts, bounding box.
#include "ObjectList.h"

#include <QAction>
#include <QHeaderView>
#include <QKeySequence>

#include "ColorButton.h"
#include "KV_ScenePane/PathText.h"
#include "ToolTip.h"

namespace {

QString FileNameOf(const std::wstring& path) {
    const std::string bytes = KV_ScenePane::PathBytes(path);
    return QString::fromStdString(bytes.substr(bytes.rfind('/') + 1));
}

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
    // The viewer gives objects of some mesh formats no name.
    const std::wstring path = object.name.empty() ? KV_ScenePane::WidePath(object.file) : object.name;
    auto* const item = new QTreeWidgetItem(this);
    item->setText(kName, FileNameOf(path));
    item->setToolTip(kName, PlainToolTip(QString::fromStdString(KV_ScenePane::PathBytes(path))));
    item->setCheckState(kName, Qt::Checked);
    item->setText(kVertices, QString::number(object.vertices));
    item->setText(kTriangles, QString::number(object.triangles));
    item->setText(kBox, BoxText(object.box));
    auto* const button = new ColorButton(object.color);
    button->SetName(tr("Colour of %1").arg(item->text(kName)));
    if (object.hasVertexColors) button->setToolTip(tr("The scan has its own colours, which are shown instead"));
    // By the item and not by its position, which changes when rows above are removed.
    connect(button, &ColorButton::ColorChosen, this,
            [this, item](std::int32_t packed) { emit ColorWanted(indexOfTopLevelItem(item), packed); });
    setItemWidget(item, kColor, button);
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
