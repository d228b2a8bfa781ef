// All keys and uses of the mouse as a table that can be searched: Help > Shortcuts.
#pragma once
#include <QDialog>
#include <QString>
#include <vector>

#include "MouseScheme.h"

class QLineEdit;
class QMainWindow;
class QTreeWidget;

/// A line of the table.
struct ShortcutRow {
    QString group;  ///< menus of an action, "Tools > Cut"; or where the keys or the mouse work
    QString keys;   ///< in the language of the desktop
    QString text;   ///< what they do
    friend bool operator==(const ShortcutRow&, const ShortcutRow&) = default;
};

/// What the actions of the window have as keys: first those in menus in their order, then those of panes, lists and
/// tool bars.
[[nodiscard]] std::vector<ShortcutRow> ActionShortcuts(const QMainWindow& window);
/// What the viewer itself does on keys and on the mouse.
[[nodiscard]] std::vector<ShortcutRow> ViewerInputs(MouseScheme scheme);

class ShortcutDialog : public QDialog {
    Q_OBJECT
public:
    explicit ShortcutDialog(QWidget* parent = nullptr);
    /// Replaces the table.
    void ShowRows(const std::vector<ShortcutRow>& rows);

private:
    /// Hides the rows that do not have all words of the search.
    void Filter();

    QLineEdit* m_pSearch;
    QTreeWidget* m_pTable;
};
