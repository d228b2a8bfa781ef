// The objects of the scene as a list. The position of a row is the index of its object in the viewer.
#pragma once
#include <QTreeWidget>
#include <cstdint>

#include "SceneReport.h"

/// Check mark (visibility), name, colour button, counts and bounding box per object; the Delete key deletes the current
/// one.
class ObjectList : public QTreeWidget {
    Q_OBJECT
public:
    enum Column { kName, kColor, kVertices, kTriangles, kBox, kColumnCount };

    explicit ObjectList(QWidget* parent = nullptr);

    /// Appends a row with its check mark set; emits nothing.
    void AddObject(const ObjectReport& object);
    /// Later rows move up.
    void RemoveObject(int index);
    /// Shows another colour in the row; emits nothing.
    void ShowColor(int index, std::int32_t packed);
    /// Whether the row exists and has no check mark.
    [[nodiscard]] bool IsHidden(int index) const;
    /// For the first layout only; the user can resize the pane.
    /// Wide enough for all columns but the boxes.
    [[nodiscard]] QSize sizeHint() const override { return {420, 300}; }

signals:
    // What the user asked for. The list itself changes nothing but the check mark.
    // @param packed  0x00BBGGRR
    void VisibilityWanted(int index, bool visible);
    void ColorWanted(int index, std::int32_t packed);
    void DeletionWanted(int index);

private:
    void DeleteSelected();
};
