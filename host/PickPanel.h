// The points that were picked on objects: a list of those that the viewer shows as spheres, and the distance between
// the last two picks.
#pragma once
#include <QWidget>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

class ColorButton;
class QBoxLayout;
class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QTreeWidget;

/// A point that was picked on an object.
struct PickedPoint {
    std::array<float, 3> point{};  ///< scene units, world frame
    int object = -1;               ///< index of the object; -1 when it was deleted for good since
    QString name;                  ///< of the object's file, without its folders
    bool isDeleted = false;        ///< the object, which can be restored
};

/// Whether clicks pick points on objects in this mode of the viewer.
[[nodiscard]] bool IsPicking(int mode);
/// "0: scan.pcm".
[[nodiscard]] QString ObjectText(const PickedPoint& pick);
/// x, y and z as NumberText(), whatever the locale.
[[nodiscard]] QString PointText(const PickedPoint& pick, const QString& separator);

// ---- rounded to 3 decimals, to be read
/// "scan.pcm".
[[nodiscard]] QString ShownObject(const PickedPoint& pick);
/// "7.288, -33.502, 1.126".
[[nodiscard]] QString ShownPoint(std::span<const float, 3> point);
[[nodiscard]] QString ShownLength(double length);

/// Shows what the window passes to it and reports what the user asked for; it calls no viewer. Points count from 0 here
/// and from 1 for the user.
class PickPanel : public QWidget {
    Q_OBJECT
public:
    enum Column { kNumber, kObject, kX, kY, kZ, kColumnCount };

    explicit PickPanel(QWidget* parent = nullptr);
    /// Replaces the list. The selection stays unless there are fewer points than before.
    void ShowPoints(const std::vector<PickedPoint>& points);
    /// Selects one point.
    void SelectPoint(int point);
    /// @param text  empty when fewer than two points were picked
    void ShowDistance(const QString& text);
    /// Whether the pick mode is the one that places points. Emits nothing.
    void ShowPlacing(bool on);
    /// The text of the switch. @param clicks  on an object, that place a point: 1 or 2; 0: none does
    void ShowClicks(int clicks);
    /// Which point the next pick moves; -1 for none.
    void ShowMoving(int point);
    /// Colour of the points that are placed from now on, 0x00BBGGRR.
    [[nodiscard]] std::int32_t Color() const;
    /// Radius of the spheres as a part of the diagonal of the scene's box.
    [[nodiscard]] double RadiusOfDiagonal() const;

signals:
    void PlacingWanted(bool on);
    void RadiusChanged();
    /// @param points  in ascending order, at least one
    void RemovalWanted(const std::vector<int>& points);
    void ClearingWanted();
    /// The next pick is to move this point; -1: it is not any more.
    void MoveWanted(int point);
    /// @param points  in ascending order, at least one
    void CopyWanted(const std::vector<int>& points);
    void DistanceCopyWanted();

private:
    void MakeList();
    /// Colour, radius, and whether a pick places a point.
    QBoxLayout* MakeSettings();
    QBoxLayout* MakeButtons();
    QBoxLayout* MakeDistance();
    [[nodiscard]] std::vector<int> SelectedPoints() const;
    void RemoveSelected();
    /// The selected points, or all when none is selected.
    void CopySelected();
    /// Enables the buttons that can be used now.
    void EnableButtons();

    QCheckBox* m_pPlacing;
    ColorButton* m_pColor;
    QDoubleSpinBox* m_pRadius;
    QTreeWidget* m_pList;
    QPushButton *m_pRemove, *m_pClear, *m_pMove, *m_pCopy, *m_pCopyDistance;
    QLabel* m_pDistance;
    int m_nMoving = -1;
};
