// The free points of the scene as a list, and the switch for the lines.
#pragma once
#include <QWidget>
#include <string>
#include <vector>

class QCheckBox;
class QPushButton;
class QTreeWidget;

/// Its first state is that of a new viewer: no points, no lines, lines not drawn.
class MarkerPanel : public QWidget {
    Q_OBJECT
public:
    enum Column { kName, kPoints, kOpacity, kColumnCount };

    explicit MarkerPanel(QWidget* parent = nullptr);

    /// Appends a row with its check mark set; emits nothing.
    /// @param id    of the set in the viewer
    /// @param file  path in bytes
    void AddPoints(int id, const std::string& file, int points, float alpha);
    /// An unknown id does nothing.
    void RemovePoints(int id);
    /// The ids of all rows, from the top.
    [[nodiscard]] std::vector<int> PointIds() const;
    /// The files of all rows, from the top; paths in bytes.
    [[nodiscard]] std::vector<std::string> PointFiles() const;
    /// @param count  of the scene
    void ShowLineCount(int count);
    [[nodiscard]] int LineCount() const { return m_nLines; }
    /// Checks or clears the switch of the lines; emits nothing.
    void ShowLinesDrawn(bool on);
    /// Removes all rows and lines; the switch stays.
    void Clear();

signals:
    // What the user asked for. The panel itself changes nothing but its check marks.
    void PointsVisibilityWanted(int id, bool visible);
    void PointsDeletionWanted(int id);
    void LinesWanted(bool on);

private:
    void DeleteCurrent();
    void MakeList();
    /// The button can be used while there is a current row.
    void FollowCurrent();

    QTreeWidget* m_pList;
    QPushButton* m_pDelete;
    QCheckBox* m_pLines;
    int m_nLines = 0;
};
