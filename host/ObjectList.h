// The objects of the scene as a list.
#pragma once
#include <QTreeWidget>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "SceneReport.h"

/// What a row holds that the viewer does not return.
struct ObjectRow {
    int id = -1;       ///< of the object and of what cuts leave of it, as long as the list lives
    std::string file;  ///< that it came from; bytes
    bool isVisible = true;
    std::int32_t vertices = 0;
    bool mayMove = false;    ///< in an alignment
    bool isRemoved = false;  ///< see SetRemoved()
};

/// Check mark (visibility), name, whether an alignment may move it, colour button, counts and bounding box per object.
/// The Delete key deletes the selected ones; the left and right arrow keys change the column, Space its check mark.
/// An index is always that of the object in the viewer; the rows may have another order.
class ObjectList : public QTreeWidget {
    Q_OBJECT
public:
    enum Column { kName, kMayMove, kMoved, kColor, kVertices, kTriangles, kBox, kColumnCount };

    explicit ObjectList(QWidget* parent = nullptr);

    /// Appends a row with its check mark set; emits nothing.
    void AddObject(const ObjectReport& object);
    /// The object is gone from the viewer: later objects have an index less.
    void RemoveObject(int index);
    /// The viewer has no object any more.
    void RemoveAll();
    void clear() = delete;  // of the base class, which does not know the order of the objects
    /// A removed object keeps its index and what its row holds, but the user does not see the row: it is neither
    /// selected nor current, may not move, and is hidden for IsHidden(). The scene is the caller's. Emits nothing but
    /// the changes of the selection and of the current row.
    void SetRemoved(int index, bool removed);
    [[nodiscard]] bool IsRemoved(int index) const;
    /// Shows the check mark of the row as the viewer's object is; emits nothing.
    void ShowVisible(int index, bool visible);
    /// Shows another colour in the row; emits nothing.
    void ShowColor(int index, std::int32_t packed);
    /// Objects of the viewer, with the removed ones.
    [[nodiscard]] int ObjectCount() const { return static_cast<int>(m_vItems.size()); }
    /// The objects that are not removed, in ascending order.
    [[nodiscard]] std::vector<int> PresentObjects() const;
    /// The objects of the selected rows, in ascending order.
    [[nodiscard]] std::vector<int> SelectedObjects() const;
    /// Of ObjectRow; -1 for an index outside the list.
    [[nodiscard]] int IdOf(int index) const;
    /// As the row shows it, 0x00BBGGRR. @param index  of an object of the list
    [[nodiscard]] std::int32_t ColorOf(int index) const;
    [[nodiscard]] bool HasVertexColors(int index) const;
    /// As the row shows it; empty for an index outside the list.
    [[nodiscard]] QString NameOf(int index) const;
    /// The object of the current row; -1 without one.
    [[nodiscard]] int CurrentObject() const;
    /// The row of an object; null for an index outside the list.
    [[nodiscard]] QTreeWidgetItem* Row(int index) const;
    /// In the order of the objects.
    [[nodiscard]] std::vector<ObjectRow> Rows() const;
    /// Replaces all rows; the objects of the current row and of the selection stay current and selected. Emits nothing.
    /// @param objects  as many as rows
    void ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects);
    /// Whether the object is in the list, and is removed or has no check mark.
    [[nodiscard]] bool IsHidden(int index) const;
    /// The objects that an alignment may move, in ascending order.
    [[nodiscard]] std::vector<int> MovingRows() const;
    /// Changes these rows and emits MayMoveChanged() once, if one was different.
    /// @param mayMove  per object
    void SetMayMove(const std::vector<bool>& mayMove);
    /// Shows where the object is now. Emits nothing.
    /// @param isMoved  it has another transform than at its import
    void ShowPlace(int index, const std::array<float, 6>& box, bool isMoved);
    /// For the first layout only; the user can resize the pane.
    /// Wide enough for all columns but the boxes.
    [[nodiscard]] QSize sizeHint() const override { return {420, 300}; }
    /// Five rows, on a screen that has no more space.
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    // What the user asked for. The list itself changes nothing but the check mark.
    // @param packed  0x00BBGGRR
    void VisibilityWanted(int index, bool visible);
    void ColorWanted(int index, std::int32_t packed);
    /// @param indices  of the selected objects, in ascending order; not empty
    void DeletionWanted(const std::vector<int>& indices);
    /// The user changed which objects may move: MovingRows().
    void MayMoveChanged();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    /// Nothing: letters are shortcuts of the window.
    void keyboardSearch(const QString& /*text*/) override {}

private:
    void MakeActions();
    QTreeWidgetItem* AddRow(const ObjectRow& row, const ObjectReport& object);
    /// -1 for an item that is not in the list.
    [[nodiscard]] int IndexOf(const QTreeWidgetItem* item) const;
    void DeleteSelected();

    std::vector<QTreeWidgetItem*> m_vItems;  // of each object, by its index; the widget owns them
    int m_nNextId = 0;
};
