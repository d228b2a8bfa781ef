// One row per object: check mark and name, whether it may move, colour button, counts, bounding box.
#include "ObjectList.h"

#include <QAction>
#include <QHeaderView>
#include <QKeySequence>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "ColorButton.h"
#include "KV_ScenePane/PathText.h"
#include "ToolTip.h"

namespace {

QString FileNameOf(const std::wstring& path) {
    const std::string bytes = KV_ScenePane::PathBytes(path);
    return QString::fromStdString(bytes.substr(bytes.rfind('/') + 1));
}

// What a row holds beside its texts, in the column of the name.
constexpr int kIdRole = Qt::UserRole, kFileRole = Qt::UserRole + 1, kVerticesRole = Qt::UserRole + 2,
              kColoredRole = Qt::UserRole + 3;

/// Ranges of x, y and z, with four digits: enough to find the object, and short enough for the list.
QString BoxText(const std::array<float, 6>& box) {
    float largest = 0.0f;
    for (const float value : box) largest = std::max(largest, std::abs(value));
    // What an alignment leaves of a zero is below the digits of the vertices.
    const auto number = [&](float value) {
        return QString::number(std::abs(value) < 1e-6f * largest ? 0.0f : value, 'g', 4);
    };
    const auto range = [&](std::size_t i) { return QString("%1 … %2").arg(number(box[i]), number(box[i + 1])); };
    return QString("x %1, y %2, z %3").arg(range(0), range(2), range(4));
}

}  // namespace

ObjectList::ObjectList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(kColumnCount);
    setHeaderLabels(
        {tr("Object"), tr("May move"), tr("Place"), tr("Colour"), tr("Vertices"), tr("Triangles"), tr("Box")});
    headerItem()->setToolTip(kMayMove, tr("Whether alignments move the object"));
    headerItem()->setToolTip(kMoved, tr("\"moved\": the object is not where it was imported"));
    setRootIsDecorated(false);
    setSelectionMode(ExtendedSelection);
    setUniformRowHeights(true);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    // Fires for every column of a row; two of them have check marks.
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        if (column == kName) emit VisibilityWanted(IndexOf(item), item->checkState(kName) == Qt::Checked);
        if (column == kMayMove) emit MayMoveChanged();
    });
    MakeActions();
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ObjectList::MakeActions() {
    auto* remove = new QAction(tr("&Delete"), this);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);  // Delete is a key of the viewer too
    connect(remove, &QAction::triggered, this, &ObjectList::DeleteSelected);
    addAction(remove);
    auto* const separator = new QAction(this);
    separator->setSeparator(true);
    addAction(separator);
    // In terms of the current row: the objects that move are often all but one, or only one.
    const auto add = [this](const QString& text, const char* name, bool current, bool others) {
        auto* const action = new QAction(text, this);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, [this, current, others] {
            std::vector<bool> mayMove(m_vItems.size(), others);
            const int object = CurrentObject();
            if (object >= 0) mayMove[static_cast<std::size_t>(object)] = current;
            SetMayMove(mayMove);
        });
        addAction(action);
    };
    add(tr("&Only this object may move"), "onlyThisMayMove", true, false);
    add(tr("All &others may move"), "allOthersMayMove", false, true);
    add(tr("&No object may move"), "noneMayMove", false, false);
}

void ObjectList::AddObject(const ObjectReport& object) {
    const QSignalBlocker quiet(this);
    AddRow({.id = m_nNextId++, .file = object.file}, object);
}

QTreeWidgetItem* ObjectList::AddRow(const ObjectRow& row, const ObjectReport& object) {
    // The viewer gives objects of some mesh formats no name.
    const std::wstring path = object.name.empty() ? KV_ScenePane::WidePath(row.file) : object.name;
    auto* const item = new QTreeWidgetItem(this);
    m_vItems.push_back(item);
    item->setText(kName, FileNameOf(path));
    item->setToolTip(kName, PlainToolTip(QString::fromStdString(KV_ScenePane::PathBytes(path))));
    item->setCheckState(kName, row.isVisible ? Qt::Checked : Qt::Unchecked);
    item->setCheckState(kMayMove, row.mayMove ? Qt::Checked : Qt::Unchecked);
    item->setData(kName, kIdRole, row.id);
    item->setData(kName, kFileRole, QByteArray::fromStdString(row.file));
    item->setData(kName, kVerticesRole, object.vertices);
    item->setData(kName, kColoredRole, object.hasVertexColors);
    item->setText(kVertices, QString::number(object.vertices));
    item->setText(kTriangles, QString::number(object.triangles));
    item->setText(kBox, object.vertices > 0 ? BoxText(object.box) : QString());
    auto* const button = new ColorButton(object.color);
    button->SetName(tr("Colour of %1").arg(item->text(kName)));
    if (object.hasVertexColors) button->setToolTip(tr("The scan has its own colours, which are shown instead"));
    // By the item and not by its position, which changes when rows above are removed.
    connect(button, &ColorButton::ColorChosen, this,
            [this, item](std::int32_t packed) { emit ColorWanted(IndexOf(item), packed); });
    setItemWidget(item, kColor, button);
    item->setHidden(row.isRemoved);
    return item;
}

QSize ObjectList::minimumSizeHint() const {
    constexpr int kRows = 5, kButtonMargin = 8;  // pixels: the colour button is higher than the text
    const int rows = kRows * (fontMetrics().lineSpacing() + kButtonMargin);
    return {QTreeWidget::minimumSizeHint().width(), header()->sizeHint().height() + rows + 2 * frameWidth()};
}

// ---- objects and rows

int ObjectList::IndexOf(const QTreeWidgetItem* item) const {
    const auto found = std::ranges::find(m_vItems, item);
    return found != m_vItems.end() ? static_cast<int>(found - m_vItems.begin()) : -1;
}

QTreeWidgetItem* ObjectList::Row(int index) const {
    return index >= 0 && index < ObjectCount() ? m_vItems[static_cast<std::size_t>(index)] : nullptr;
}

QString ObjectList::NameOf(int index) const {
    const QTreeWidgetItem* const row = Row(index);
    return row != nullptr ? row->text(kName) : QString();
}

int ObjectList::IdOf(int index) const {
    const QTreeWidgetItem* const row = Row(index);
    return row != nullptr ? row->data(kName, kIdRole).toInt() : -1;
}

std::int32_t ObjectList::ColorOf(int index) const {
    return static_cast<const ColorButton*>(itemWidget(Row(index), kColor))->Packed();
}

bool ObjectList::HasVertexColors(int index) const {
    const QTreeWidgetItem* const row = Row(index);
    return row != nullptr && row->data(kName, kColoredRole).toBool();
}

int ObjectList::CurrentObject() const {
    const int index = IndexOf(currentItem());
    return IsRemoved(index) ? -1 : index;
}

std::vector<int> ObjectList::PresentObjects() const {
    std::vector<int> objects;
    for (int i = 0; i < ObjectCount(); ++i) {
        if (!IsRemoved(i)) objects.push_back(i);
    }
    return objects;
}

std::vector<int> ObjectList::SelectedObjects() const {
    std::vector<int> objects = PresentObjects();
    std::erase_if(objects, [this](int index) { return !Row(index)->isSelected(); });
    return objects;
}

std::vector<ObjectRow> ObjectList::Rows() const {
    std::vector<ObjectRow> rows;
    rows.reserve(m_vItems.size());
    for (const QTreeWidgetItem* const item : m_vItems) {
        rows.push_back({.id = item->data(kName, kIdRole).toInt(),
                        .file = item->data(kName, kFileRole).toByteArray().toStdString(),
                        .isVisible = item->checkState(kName) == Qt::Checked,
                        .vertices = item->data(kName, kVerticesRole).toInt(),
                        .mayMove = item->checkState(kMayMove) == Qt::Checked,
                        .isRemoved = item->isHidden()});
    }
    return rows;
}

void ObjectList::ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects) {
    const QSignalBlocker quiet(this);
    const auto idOf = [](const QTreeWidgetItem* item) { return item->data(kName, kIdRole).toInt(); };
    const int current = currentItem() != nullptr ? idOf(currentItem()) : -1;
    std::vector<int> selected;
    for (const QTreeWidgetItem* const item : selectedItems()) selected.push_back(idOf(item));
    const int scrolled = verticalScrollBar()->value();
    RemoveAll();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QTreeWidgetItem* const item = AddRow(rows[i], objects[i]);
        if (rows[i].isRemoved) continue;
        if (rows[i].id == current) setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
        item->setSelected(std::ranges::find(selected, rows[i].id) != selected.end());
    }
    verticalScrollBar()->setValue(scrolled);
}

void ObjectList::RemoveObject(int index) {
    QTreeWidgetItem* const item = Row(index);
    if (item == nullptr) return;
    m_vItems.erase(m_vItems.begin() + index);  // before the signals of the deletion
    delete item;
}

void ObjectList::RemoveAll() {
    m_vItems.clear();
    QTreeWidget::clear();
}

bool ObjectList::IsRemoved(int index) const {
    const QTreeWidgetItem* const item = Row(index);
    return item != nullptr && item->isHidden();
}

void ObjectList::SetRemoved(int index, bool removed) {
    QTreeWidgetItem* const item = Row(index);
    if (item == nullptr || item->isHidden() == removed) return;
    item->setHidden(removed);
    if (!removed) return;
    item->setSelected(false);
    if (currentItem() == item) setCurrentItem(nullptr);
}

void ObjectList::ShowVisible(int index, bool visible) {
    const QSignalBlocker quiet(this);
    if (QTreeWidgetItem* const row = Row(index)) row->setCheckState(kName, visible ? Qt::Checked : Qt::Unchecked);
}

void ObjectList::ShowColor(int index, std::int32_t packed) {
    static_cast<ColorButton*>(itemWidget(Row(index), kColor))->SetPacked(packed);
}

bool ObjectList::IsHidden(int index) const {
    const QTreeWidgetItem* const item = Row(index);
    return item != nullptr && (item->isHidden() || item->checkState(kName) != Qt::Checked);
}

std::vector<int> ObjectList::MovingRows() const {
    std::vector<int> objects = PresentObjects();
    std::erase_if(objects, [this](int index) { return Row(index)->checkState(kMayMove) != Qt::Checked; });
    return objects;
}

void ObjectList::SetMayMove(const std::vector<bool>& mayMove) {
    bool hasChanged = false;
    {
        const QSignalBlocker quiet(this);
        for (const int i : PresentObjects()) {
            const Qt::CheckState state = mayMove.at(static_cast<std::size_t>(i)) ? Qt::Checked : Qt::Unchecked;
            hasChanged = hasChanged || Row(i)->checkState(kMayMove) != state;
            Row(i)->setCheckState(kMayMove, state);
        }
    }
    if (hasChanged) emit MayMoveChanged();
}

void ObjectList::ShowPlace(int index, const std::array<float, 6>& box, bool isMoved) {
    const QSignalBlocker quiet(this);
    QTreeWidgetItem& item = *Row(index);
    item.setText(kMoved, isMoved ? tr("moved") : QString());
    item.setText(kBox, item.data(kName, kVerticesRole).toInt() > 0 ? BoxText(box) : QString());
}

QModelIndex ObjectList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    // Where whole rows are selected Qt scrolls instead, and the check marks beside the first are for the mouse only.
    const int step = action == MoveLeft ? -1 : action == MoveRight ? 1 : 0;
    const QModelIndex current = currentIndex();
    if (step == 0 || !current.isValid()) return QTreeWidget::moveCursor(action, modifiers);
    return current.siblingAtColumn(std::clamp(current.column() + step, 0, kColumnCount - 1));
}

void ObjectList::DeleteSelected() {
    if (const std::vector<int> selected = SelectedObjects(); !selected.empty()) emit DeletionWanted(selected);
}
