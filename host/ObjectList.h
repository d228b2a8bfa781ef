// The objects of the scene as a list.
#pragma once
#include <QTreeWidget>
#include <array>
#include <cstdint>
#include <vector>

#include "ObjectItem.h"
#include "SceneReport.h"

/// Check mark (visibility) and name, colour button, counts, size, and whether an alignment may move it, per object.
/// The Delete key deletes the selected ones; the left and right arrow keys change the column, Space its check mark or
/// its colour, F2 the name. A click on the header of a column sorts by it, ascending, then descending, then no more.
/// An index is always that of the object in the viewer; the rows may have another order.
class ObjectList : public QTreeWidget {
    Q_OBJECT
public:
    using Column = ObjectItem::Column;
    static constexpr int kName = ObjectItem::kName, kColor = ObjectItem::kColor, kTriangles = ObjectItem::kTriangles,
                         kSize = ObjectItem::kSize, kVertices = ObjectItem::kVertices, kMayMove = ObjectItem::kMayMove,
                         kMoved = ObjectItem::kMoved, kColumnCount = ObjectItem::kColumnCount;

    explicit ObjectList(QWidget* parent = nullptr);

    // ---- objects and rows
    /// Appends a row with its check mark set; emits nothing but CountsChanged().
    void AddObject(const ObjectReport& object);
    /// The object is gone from the viewer: later objects have an index less.
    void RemoveObject(int index);
    /// The viewer has no object any more.
    void RemoveAll();
    void clear() = delete;  // of the base class, which does not know the order of the objects
    /// A removed object keeps its index and what its row holds, but the user does not see the row: it is neither
    /// selected nor current, may not move, and is hidden for IsHidden(). The scene is the caller's. Emits nothing but
    /// CountsChanged() and the changes of the selection and of the current row.
    void SetRemoved(int index, bool removed);
    [[nodiscard]] bool IsRemoved(int index) const;
    /// Objects of the viewer, with the removed ones.
    [[nodiscard]] int ObjectCount() const { return static_cast<int>(m_vItems.size()); }
    /// The objects that are not removed, in ascending order.
    [[nodiscard]] std::vector<int> PresentObjects() const;
    /// The objects of the selected rows, in ascending order.
    [[nodiscard]] std::vector<int> SelectedObjects() const;
    /// Selects the rows of these objects and no others; the first one becomes the current one and is scrolled to.
    void Select(const std::vector<int>& indices);
    /// The object of the current row; -1 without one.
    [[nodiscard]] int CurrentObject() const;
    /// The row of an object; null for an index outside the list.
    [[nodiscard]] QTreeWidgetItem* Row(int index) const { return ItemOf(index); }
    /// In the order of the objects.
    [[nodiscard]] std::vector<ObjectRow> Rows() const;
    /// Replaces all rows; the objects of the current row and of the selection stay current and selected. Emits nothing
    /// but CountsChanged().
    /// @param objects  as many as rows
    void ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects);

    // ---- what a row shows. An index is that of an object of the list where nothing else is said
    /// Of ObjectRow; -1 for an index outside the list.
    [[nodiscard]] int IdOf(int index) const;
    /// As the row shows it; empty for an index outside the list.
    [[nodiscard]] QString NameOf(int index) const;
    /// 0x00BBGGRR.
    [[nodiscard]] std::int32_t ColorOf(int index) const;
    [[nodiscard]] bool HasVertexColors(int index) const;
    [[nodiscard]] std::int32_t VerticesOf(int index) const;
    [[nodiscard]] std::int32_t TrianglesOf(int index) const;
    /// Whether the object is in the list, and is removed or has no check mark.
    [[nodiscard]] bool IsHidden(int index) const;
    /// Shows the check mark of the row as the viewer's object is; emits nothing.
    void ShowVisible(int index, bool visible);
    /// Shows another colour in the row; emits nothing.
    void ShowColor(int index, std::int32_t packed);
    /// Shows where the object is now. Emits nothing.
    /// @param isMoved  it has another transform than at its import
    void ShowPlace(int index, const std::array<float, 6>& box, bool isMoved);
    /// The objects that an alignment may move, in ascending order.
    [[nodiscard]] std::vector<int> MovingRows() const;
    /// Changes these rows and emits MayMoveChanged() once, if one was different.
    /// @param mayMove  per object
    void SetMayMove(const std::vector<bool>& mayMove);

    // ---- for the user
    /// Opens the input for the name of the current row.
    void EditName();
    /// @param column  kUnsorted: in the order of the viewer
    void SortBy(int column, Qt::SortOrder order = Qt::AscendingOrder);
    static constexpr int kUnsorted = -1;
    [[nodiscard]] int SortColumn() const { return m_nSortColumn; }

    /// For the first layout only, with the columns up to the size; the user can resize the pane.
    [[nodiscard]] QSize sizeHint() const override { return {480, 300}; }
    /// Five rows, on a screen that has no more space.
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    // What the user asked for. The list itself changes nothing but the check mark and the name.
    // @param packed  0x00BBGGRR
    void VisibilityWanted(int index, bool visible);
    void ColorWanted(int index, std::int32_t packed);
    /// @param indices  of the selected objects, in ascending order; not empty
    void DeletionWanted(const std::vector<int>& indices);
    /// A double click on the row.
    void CentringWanted(int index);
    /// The user changed which objects may move: MovingRows().
    void MayMoveChanged();
    /// The user gave an object another name.
    void Renamed(int index);
    /// Objects were added or removed, or have other numbers of vertices and triangles.
    void CountsChanged();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Nothing: letters are shortcuts of the window.
    void keyboardSearch(const QString& /*text*/) override {}

private:
    void MakeActions();
    ObjectItem* AddRow(const ObjectRow& row, const ObjectReport& object);
    /// Null for an index outside the list.
    [[nodiscard]] ObjectItem* ItemOf(int index) const;
    /// -1 for an item that is not in the list.
    [[nodiscard]] int IndexOf(const QTreeWidgetItem* item) const;
    void OnItemChanged(QTreeWidgetItem* item, int column);
    void OnDoubleClick(QTreeWidgetItem* item, int column);
    void OnHeadClicked(int column);
    /// New rows take their places.
    void SortAgain();
    /// The names have the space that the other columns leave, until the user changes their width.
    void FitNameColumn();
    void DeleteSelected();

    std::vector<ObjectItem*> m_vItems;  // of each object, by its index; the widget owns them
    int m_nNextId = 0;
    int m_nSortColumn = kUnsorted;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_bFitsNames = true, m_bInFit = false;
};
