// The list of objects with a line of totals and a button of commands below it.
#pragma once
#include <QWidget>

class ObjectList;
class QLabel;
class QMenu;

class ObjectPane : public QWidget {
    Q_OBJECT
public:
    /// @param list  becomes a part of the pane
    explicit ObjectPane(ObjectList* list, QWidget* parent = nullptr);

    /// Of the button; empty at first.
    [[nodiscard]] QMenu& Commands() const { return *m_pCommands; }

private:
    /// Objects, triangles and vertices: of the selection when several rows are selected, else of all.
    void ShowTotals();

    ObjectList& m_list;
    QLabel* m_pTotals;
    QMenu* m_pCommands;
};
