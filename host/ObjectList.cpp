// One row per object. What a row shows and how rows are ordered is in ObjectItem.h.
#include "ObjectList.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QKeySequence>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "ColorButton.h"
#include "ToolTip.h"

namespace {

/// Of the colour of the object.
void NameButton(QWidget& button, const ObjectItem& object) {
    const QString name = object.text(ObjectItem::kName);
    button.setAccessibleName(ObjectList::tr("Colour of %1").arg(name));
    button.setToolTip(object.HasVertexColors()
                          ? ObjectList::tr("The object has its own colours, which are shown instead")
                          : PlainToolTip(ObjectList::tr("Colour of %1: click to choose another one").arg(name)));
}

}  // namespace

ObjectList::ObjectList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(kColumnCount);
    setHeaderLabels(
        {tr("Object"), tr("Colour"), tr("May move"), tr("Triangles"), tr("Size (mm)"), tr("Vertices"), tr("Place")});
    headerItem()->setToolTip(kName, tr("Check mark: shown. Double click: centre. F2: rename."));
    headerItem()->setToolTip(kColor, tr("Click a colour, or press Space there, to choose another one"));
    headerItem()->setToolTip(kSize, tr("Length of the bounding box along x, y and z"));
    headerItem()->setToolTip(kMayMove, tr("Whether alignments move the object"));
    headerItem()->setToolTip(kMoved, tr("\"moved\": the object is not where it was imported"));
    for (const int column : {kTriangles, kSize, kVertices})
        headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);    // F2 is an action: a click must not open the input
    setTextElideMode(Qt::ElideMiddle);  // names of scans often differ at their ends
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(kName, QHeaderView::Interactive);
    header()->setStretchLastSection(false);
    header()->setSectionsClickable(true);
    header()->setSortIndicator(kUnsorted, Qt::AscendingOrder);  // shown in SortBy(): it has space in each column
    connect(header(), &QHeaderView::sectionClicked, this, &ObjectList::OnHeadClicked);
    connect(header(), &QHeaderView::sectionResized, this, [this](int column) {
        // Queued: the header resizes one column after the other, and would undo a change meanwhile.
        if (column != kName)
            QMetaObject::invokeMethod(this, &ObjectList::FitNameColumn, Qt::QueuedConnection);
        else if (!m_bInFit)
            m_bFitsNames = false;
    });
    connect(this, &QTreeWidget::itemChanged, this, &ObjectList::OnItemChanged);
    connect(this, &QTreeWidget::itemDoubleClicked, this, &ObjectList::OnDoubleClick);
    MakeActions();
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ObjectList::MakeActions() {
    auto* remove = new QAction(tr("&Delete"), this);
    remove->setObjectName("deleteObjects");
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);  // Delete is a key of the viewer too
    connect(remove, &QAction::triggered, this, &ObjectList::DeleteSelected);
    addAction(remove);
    auto* const rename = new QAction(tr("&Rename"), this);
    rename->setObjectName("renameObject");
    rename->setShortcut(Qt::Key_F2);
    rename->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(rename, &QAction::triggered, this, &ObjectList::EditName);
    addAction(rename);
    auto* const separator = new QAction(this);
    separator->setSeparator(true);
    addAction(separator);
    // In terms of the selection: the objects that move are often all but one, or only one.
    const auto add = [this](const QString& text, const char* name, bool selected, bool others) {
        auto* const action = new QAction(text, this);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, [this, selected, others] {
            std::vector<bool> mayMove(m_vItems.size(), others);
            for (const int object : SelectedObjects()) mayMove[static_cast<std::size_t>(object)] = selected;
            SetMayMove(mayMove);
        });
        addAction(action);
    };
    add(tr("Only the selected &may move"), "onlyThisMayMove", true, false);
    add(tr("All o&thers may move"), "allOthersMayMove", false, true);
    add(tr("&No object may move"), "noneMayMove", false, false);
}

// ---- objects and rows

void ObjectList::AddObject(const ObjectReport& object) {
    {
        const QSignalBlocker quiet(this);
        AddRow({.id = m_nNextId++, .file = object.file}, object);
        SortAgain();
    }
    emit CountsChanged();
}

ObjectItem* ObjectList::AddRow(const ObjectRow& row, const ObjectReport& object) {
    auto* const item = new ObjectItem(this, row, object);
    m_vItems.push_back(item);
    auto* const button = new ColorButton(object.color);
    NameButton(*button, *item);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);  // the keys stay in the list, where Space does the same
    // By the item and not by its position, which changes when objects are removed.
    connect(button, &ColorButton::ColorChosen, this,
            [this, item](std::int32_t packed) { emit ColorWanted(IndexOf(item), packed); });
    setItemWidget(item, kColor, button);
    item->setHidden(row.isRemoved);
    return item;
}

void ObjectList::RemoveObject(int index) {
    ObjectItem* const item = ItemOf(index);
    if (item == nullptr) return;
    m_vItems.erase(m_vItems.begin() + index);  // before the signals of the deletion
    delete item;
    emit CountsChanged();
}

void ObjectList::RemoveAll() {
    m_vItems.clear();
    QTreeWidget::clear();
    emit CountsChanged();
}

bool ObjectList::IsRemoved(int index) const {
    const ObjectItem* const item = ItemOf(index);
    return item != nullptr && item->isHidden();
}

void ObjectList::SetRemoved(int index, bool removed) {
    ObjectItem* const item = ItemOf(index);
    if (item == nullptr || item->isHidden() == removed) return;
    item->setHidden(removed);
    if (removed) {
        item->setSelected(false);
        if (currentItem() == item) setCurrentItem(nullptr, kName, QItemSelectionModel::NoUpdate);
    }
    emit CountsChanged();
}

int ObjectList::IndexOf(const QTreeWidgetItem* item) const {
    const auto found = std::ranges::find(m_vItems, item);
    return found != m_vItems.end() ? static_cast<int>(found - m_vItems.begin()) : -1;
}

ObjectItem* ObjectList::ItemOf(int index) const {
    return index >= 0 && index < ObjectCount() ? m_vItems[static_cast<std::size_t>(index)] : nullptr;
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
    std::erase_if(objects, [this](int index) { return !ItemOf(index)->isSelected(); });
    return objects;
}

void ObjectList::Select(const std::vector<int>& indices) {
    {
        const QSignalBlocker quiet(this);  // one report for all rows
        clearSelection();
        for (const int index : indices) {
            if (!IsRemoved(index) && ItemOf(index) != nullptr) ItemOf(index)->setSelected(true);
        }
    }
    const std::vector<int> selected = SelectedObjects();
    ObjectItem* const first = selected.empty() ? nullptr : ItemOf(selected.front());
    setCurrentItem(first, kName, QItemSelectionModel::NoUpdate);
    if (first != nullptr) scrollToItem(first);
    emit itemSelectionChanged();
}

int ObjectList::CurrentObject() const {
    const int index = IndexOf(currentItem());
    return IsRemoved(index) ? -1 : index;
}

std::vector<ObjectRow> ObjectList::Rows() const {
    std::vector<ObjectRow> rows;
    rows.reserve(m_vItems.size());
    for (const ObjectItem* const item : m_vItems) rows.push_back(item->State());
    return rows;
}

void ObjectList::ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects) {
    {
        const QSignalBlocker quiet(this);
        const int current = IdOf(CurrentObject());
        std::vector<int> selected;
        for (const int index : SelectedObjects()) selected.push_back(IdOf(index));
        const int scrolled = verticalScrollBar()->value();
        RemoveAll();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            ObjectItem* const item = AddRow(rows[i], objects[i]);
            if (rows[i].isRemoved) continue;
            if (rows[i].id == current) setCurrentItem(item, kName, QItemSelectionModel::NoUpdate);
            item->setSelected(std::ranges::find(selected, rows[i].id) != selected.end());
        }
        SortAgain();
        verticalScrollBar()->setValue(scrolled);
    }
    emit CountsChanged();
}

// ---- what a row shows

int ObjectList::IdOf(int index) const {
    const ObjectItem* const item = ItemOf(index);
    return item != nullptr ? item->Id() : -1;
}

QString ObjectList::NameOf(int index) const {
    const ObjectItem* const item = ItemOf(index);
    return item != nullptr ? item->text(kName) : QString();
}

std::int32_t ObjectList::ColorOf(int index) const { return ItemOf(index)->Color(); }

bool ObjectList::HasVertexColors(int index) const { return ItemOf(index)->HasVertexColors(); }

std::int32_t ObjectList::VerticesOf(int index) const { return ItemOf(index)->Vertices(); }

std::int32_t ObjectList::TrianglesOf(int index) const { return ItemOf(index)->Triangles(); }

bool ObjectList::IsHidden(int index) const {
    const ObjectItem* const item = ItemOf(index);
    return item != nullptr && (item->isHidden() || item->checkState(kName) != Qt::Checked);
}

void ObjectList::ShowVisible(int index, bool visible) {
    const QSignalBlocker quiet(this);
    if (ObjectItem* const item = ItemOf(index)) item->SetVisible(visible);
}

void ObjectList::ShowColor(int index, std::int32_t packed) {
    ObjectItem* const item = ItemOf(index);
    item->SetColor(packed);
    static_cast<ColorButton*>(itemWidget(item, kColor))->SetPacked(packed);
}

void ObjectList::ShowPlace(int index, const std::array<float, 6>& box, bool isMoved) {
    const QSignalBlocker quiet(this);
    ItemOf(index)->ShowPlace(box, isMoved);
}

std::vector<int> ObjectList::MovingRows() const {
    std::vector<int> objects = PresentObjects();
    std::erase_if(objects, [this](int index) { return ItemOf(index)->checkState(kMayMove) != Qt::Checked; });
    return objects;
}

void ObjectList::SetMayMove(const std::vector<bool>& mayMove) {
    bool hasChanged = false;
    {
        const QSignalBlocker quiet(this);
        for (const int i : PresentObjects()) {
            const Qt::CheckState state = mayMove.at(static_cast<std::size_t>(i)) ? Qt::Checked : Qt::Unchecked;
            hasChanged = hasChanged || ItemOf(i)->checkState(kMayMove) != state;
            ItemOf(i)->setCheckState(kMayMove, state);
        }
    }
    if (hasChanged) emit MayMoveChanged();
}

// ---- the order of the rows

void ObjectList::OnHeadClicked(int column) {
    // The header has changed its sort indicator already.
    if (m_nSortColumn != column)
        SortBy(column);
    else if (m_sortOrder == Qt::AscendingOrder)
        SortBy(column, Qt::DescendingOrder);
    else
        SortBy(kUnsorted);
}

void ObjectList::SortBy(int column, Qt::SortOrder order) {
    m_nSortColumn = column;
    m_sortOrder = order;
    header()->setSortIndicatorShown(column != kUnsorted);
    header()->setSortIndicator(column, order);
    model()->sort(std::max<int>(column, kName), order);  // rows ask for SortColumn()
}

void ObjectList::SortAgain() {
    if (m_nSortColumn != kUnsorted) SortBy(m_nSortColumn, m_sortOrder);
}

// ---- input

void ObjectList::OnItemChanged(QTreeWidgetItem* item, int column) {
    const int index = IndexOf(item);
    if (index < 0) return;
    if (column == kMayMove) emit MayMoveChanged();
    if (column != kName) return;
    ObjectItem& object = *ItemOf(index);
    if (object.TakeVisibility()) {
        emit VisibilityWanted(index, object.checkState(kName) == Qt::Checked);
        return;
    }
    {
        const QSignalBlocker quiet(this);
        object.TakeName();
    }
    NameButton(*itemWidget(item, kColor), object);
    emit Renamed(index);
}

void ObjectList::OnDoubleClick(QTreeWidgetItem* item, int column) {
    const int x = viewport()->mapFromGlobal(QCursor::pos()).x() - visualItemRect(item).left();
    const int mark =
        style()->pixelMetric(QStyle::PM_IndicatorWidth) + 2 * style()->pixelMetric(QStyle::PM_FocusFrameHMargin);
    const bool isOnMark = column == kMayMove || (column == kName && x <= mark);
    if (column != kColor && !isOnMark) emit CentringWanted(IndexOf(item));
}

void ObjectList::keyPressEvent(QKeyEvent* event) {
    const int current = CurrentObject();
    if (event->key() != Qt::Key_Space || event->modifiers() != Qt::NoModifier || current < 0) {
        QTreeWidget::keyPressEvent(event);
        return;
    }
    const int column = currentColumn();
    if (column == kColor) {
        static_cast<ColorButton*>(itemWidget(ItemOf(current), kColor))->click();
    } else if (column == kName || column == kMayMove) {
        const Qt::CheckState state = ItemOf(current)->checkState(column) == Qt::Checked ? Qt::Unchecked : Qt::Checked;
        ItemOf(current)->setCheckState(column, state);
        // All selected rows, if the current one is selected.
        if (!ItemOf(current)->isSelected()) return;
        for (const int index : SelectedObjects()) ItemOf(index)->setCheckState(column, state);
    }
}

QModelIndex ObjectList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    // Where whole rows are selected Qt scrolls instead, and the check marks beside the first are for the mouse only.
    const int step = action == MoveLeft ? -1 : action == MoveRight ? 1 : 0;
    const QModelIndex current = currentIndex();
    if (step == 0 || !current.isValid()) return QTreeWidget::moveCursor(action, modifiers);
    return current.siblingAtColumn(std::clamp(current.column() + step, 0, kColumnCount - 1));
}

void ObjectList::EditName() {
    if (CurrentObject() >= 0) editItem(currentItem(), kName);
}

void ObjectList::DeleteSelected() {
    if (const std::vector<int> selected = SelectedObjects(); !selected.empty()) emit DeletionWanted(selected);
}

// ---- the size

QSize ObjectList::minimumSizeHint() const {
    constexpr int kRows = 5, kButtonMargin = 8;  // pixels: the colour button is higher than the text
    const int rows = kRows * (fontMetrics().lineSpacing() + kButtonMargin);
    return {QTreeWidget::minimumSizeHint().width(), header()->sizeHint().height() + rows + 2 * frameWidth()};
}

void ObjectList::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    FitNameColumn();
}

void ObjectList::FitNameColumn() {
    if (!m_bFitsNames || m_bInFit) return;
    constexpr int kLetters = 20, kLeastLetters = 16;  // of a name
    // A check mark and a text have a margin at both sides.
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    const int beside = style()->pixelMetric(QStyle::PM_IndicatorWidth) + 4 * margin;
    const auto widthOf = [&](int letters) { return letters * fontMetrics().averageCharWidth() + beside; };
    const int space = viewport()->width(), all = header()->length() - header()->sectionSize(kName);
    // A narrow list shows the columns up to the size; the others are reached by the scroll bar.
    const int others = all - header()->sectionSize(kVertices) - header()->sectionSize(kMoved);
    const int width = space - all >= widthOf(kLetters) ? space - all : space - others;
    m_bInFit = true;
    header()->resizeSection(kName, std::max(widthOf(kLeastLetters), width));
    m_bInFit = false;
}
