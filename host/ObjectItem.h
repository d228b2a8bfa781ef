// One row of the list of objects: the texts of its columns, and what they are sorted by.
#pragma once
#include <QCoreApplication>
#include <QTreeWidget>
#include <array>
#include <cstdint>
#include <string>

#include "SceneReport.h"

/// What a row holds that the viewer does not return.
struct ObjectRow {
    int id = -1;       ///< of the object and of what cuts leave of it, as long as the list lives
    std::string file;  ///< that it came from; bytes
    bool isVisible = true;
    std::int32_t vertices = 0;
    bool mayMove = false;    ///< in an alignment
    bool isRemoved = false;  ///< see ObjectList::SetRemoved()
    QString name = {};       ///< given by the user; empty: that of the file
};

class ObjectItem : public QTreeWidgetItem {
    Q_DECLARE_TR_FUNCTIONS(ObjectItem)
public:
    enum Column { kName, kColor, kMayMove, kTriangles, kSize, kVertices, kMoved, kColumnCount };

    /// @param list  an ObjectList
    ObjectItem(QTreeWidget* list, const ObjectRow& row, const ObjectReport& object);

    /// As it is now: with the check marks and the name of the user.
    [[nodiscard]] ObjectRow State() const;
    [[nodiscard]] int Id() const { return m_row.id; }
    /// 0x00BBGGRR.
    [[nodiscard]] std::int32_t Color() const { return m_nColor; }
    void SetColor(std::int32_t packed) { m_nColor = packed; }
    [[nodiscard]] bool HasVertexColors() const { return m_bHasVertexColors; }
    [[nodiscard]] std::int32_t Vertices() const { return m_row.vertices; }
    [[nodiscard]] std::int32_t Triangles() const { return m_nTriangles; }
    void ShowPlace(const std::array<float, 6>& box, bool isMoved);
    /// Makes the text of the row, which the user has edited, the name of the object. Without a text it is that of its
    /// file again.
    void TakeName();
    /// The check mark was changed by the user: returns true once after each change.
    [[nodiscard]] bool TakeVisibility();
    /// Shows whether the viewer shows the object.
    void SetVisible(bool visible);
    /// Numbers by their size, objects of equal texts in the order of the viewer.
    bool operator<(const QTreeWidgetItem& other) const override;

private:
    void ShowTips();
    /// Of the column that the list is sorted by. @return less, equal or greater than 0
    [[nodiscard]] int Compare(const ObjectItem& other, int column) const;

    ObjectRow m_row;
    QString m_path, m_fileName;
    std::int32_t m_nTriangles = 0;
    std::int32_t m_nColor = 0;
    bool m_bHasVertexColors = false;
    bool m_bMoved = false;
    bool m_bShown = true;          // as the viewer shows the object
    std::array<float, 6> m_box{};  // min x, max x, min y, max y, min z, max z
};

/// With separators between thousands, in the way of the user's country.
[[nodiscard]] QString CountText(std::int64_t count);
