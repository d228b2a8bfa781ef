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
    bool mayMove = false;  ///< in an alignment
};

/// Check mark (visibility), name, whether an alignment may move it, colour button, counts and bounding box per object.
/// The Delete key deletes the current one; the left and right arrow keys change the column, Space its check mark.
class ObjectList : public QTreeWidget {
    Q_OBJECT
public:
    enum Column { kName, kMayMove, kMoved, kColor, kVertices, kTriangles, kBox, kColumnCount };

    explicit ObjectList(QWidget* parent = nullptr);

    /// Appends a row with its check mark set; emits nothing.
    void AddObject(const ObjectReport& object);
    /// Later rows move up.
    void RemoveObject(int index);
    /// Shows another colour in the row; emits nothing.
    void ShowColor(int index, std::int32_t packed);
    /// Objects of the viewer, in its order; an index is theirs.
    [[nodiscard]] int ObjectCount() const { return topLevelItemCount(); }
    /// As the row shows it; empty for an index outside the list.
    [[nodiscard]] QString NameOf(int index) const;
    /// The object of the current row; -1 without one.
    [[nodiscard]] int CurrentObject() const { return indexOfTopLevelItem(currentItem()); }
    /// The row of an object; null for an index outside the list.
    [[nodiscard]] QTreeWidgetItem* Row(int index) const { return topLevelItem(index); }
    [[nodiscard]] std::vector<ObjectRow> Rows() const;
    /// Replaces all rows; the object of the current row stays current. Emits nothing.
    /// @param objects  as many as rows
    void ShowRows(const std::vector<ObjectRow>& rows, const std::vector<ObjectReport>& objects);
    /// Whether the row exists and has no check mark.
    [[nodiscard]] bool IsHidden(int index) const;
    /// The objects that an alignment may move, in ascending order.
    [[nodiscard]] std::vector<int> MovingRows() const;
    /// Changes these rows and emits MayMoveChanged() once, if one was different.
    /// @param mayMove  per row
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
    void DeletionWanted(int index);
    /// The user changed which objects may move: MovingRows().
    void MayMoveChanged();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    /// Nothing: letters are shortcuts of the window.
    void keyboardSearch(const QString& /*text*/) override {}

private:
    void MakeActions();
    QTreeWidgetItem* AddRow(const ObjectRow& row, const ObjectReport& object);
    void DeleteSelected();

    int m_nNextId = 0;
};
