// The rows come from the actions themselves; what the viewer does is listed here.
#include "ShortcutDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QSet>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>

namespace {

/// Without the mark of a mnemonic and the dots of a dialog.
QString PlainText(QString text) {
    text.remove('&');
    if (text.endsWith("...")) text.chop(3);
    return text;
}

/// Adds the rows of a menu and of the menus in it.
void AddMenu(const QMenu& menu, const QString& group, std::vector<ShortcutRow>* rows, QSet<const QAction*>* seen) {
    for (const QAction* const action : menu.actions()) {
        if (const QMenu* const below = action->menu()) {
            AddMenu(*below, QString("%1 > %2").arg(group, PlainText(action->text())), rows, seen);
        } else if (!action->shortcuts().isEmpty() && !seen->contains(action)) {
            seen->insert(action);
            rows->push_back({group, QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText),
                             PlainText(action->text())});
        }
    }
}

/// The title of the pane or tool bar that the action belongs to.
QString PlaceOf(const QAction& action) {
    for (const QObject* place = action.parent(); place != nullptr; place = place->parent()) {
        const auto* const widget = qobject_cast<const QWidget*>(place);
        if (widget == nullptr || qobject_cast<const QMainWindow*>(widget) != nullptr) continue;
        if (!widget->windowTitle().isEmpty()) return ShortcutDialog::tr("Pane %1").arg(widget->windowTitle());
    }
    return ShortcutDialog::tr("Window");
}

/// What the buttons do in a scheme, in the order of MouseScheme.
struct MouseRow {
    const char* inputs[3];
    const char* text;
};

const MouseRow kMouseRows[] = {
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Left drag"), QT_TRANSLATE_NOOP("ShortcutDialog", "Right drag"),
      QT_TRANSLATE_NOOP("ShortcutDialog", "Right drag")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Turn the view")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Right drag"), QT_TRANSLATE_NOOP("ShortcutDialog", "Left drag"),
      QT_TRANSLATE_NOOP("ShortcutDialog", "Drag with both buttons")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Move the view")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Wheel"), QT_TRANSLATE_NOOP("ShortcutDialog", "Wheel"),
      QT_TRANSLATE_NOOP("ShortcutDialog", "Wheel")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Zoom")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Double click"), nullptr,
      QT_TRANSLATE_NOOP("ShortcutDialog", "Middle button")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Fit the view")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Double click"), nullptr, QT_TRANSLATE_NOOP("ShortcutDialog", "Left click")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Pick a point, while picking is on")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Right click"), QT_TRANSLATE_NOOP("ShortcutDialog", "Right click"),
      QT_TRANSLATE_NOOP("ShortcutDialog", "Right click")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Menu of the view, of an object or of a picked point")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Ctrl+drag"), QT_TRANSLATE_NOOP("ShortcutDialog", "Ctrl+drag"),
      QT_TRANSLATE_NOOP("ShortcutDialog", "Ctrl+drag")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Turn or move the clip plane, while it is shown")},
    {{QT_TRANSLATE_NOOP("ShortcutDialog", "Ctrl+double click"), nullptr,
      QT_TRANSLATE_NOOP("ShortcutDialog", "Ctrl+middle button")},
     QT_TRANSLATE_NOOP("ShortcutDialog", "Place the clip plane at the data, while it is shown")},
};

struct ViewerKey {
    Qt::Key key;
    const char* text;
};

const ViewerKey kViewerKeys[] = {
    {Qt::Key_Up, QT_TRANSLATE_NOOP("ShortcutDialog", "Move the clip plane along its normal, while it is shown")},
    {Qt::Key_Down, QT_TRANSLATE_NOOP("ShortcutDialog", "Move the clip plane against its normal, while it is shown")},
    {Qt::Key_Space, QT_TRANSLATE_NOOP("ShortcutDialog", "Start the turntable, when the Animation pane allows it")},
    {Qt::Key_Delete, QT_TRANSLATE_NOOP("ShortcutDialog", "Delete the selected needle")},
    {Qt::Key_Escape, QT_TRANSLATE_NOOP("ShortcutDialog", "Deselect needles; put a dragged clip plane back")},
};

}  // namespace

std::vector<ShortcutRow> ActionShortcuts(const QMainWindow& window) {
    std::vector<ShortcutRow> rows;
    QSet<const QAction*> seen;
    for (const QAction* const top : window.findChild<QMenuBar*>()->actions()) {
        if (top->menu() != nullptr) AddMenu(*top->menu(), PlainText(top->text()), &rows, &seen);
    }
    std::vector<ShortcutRow> others;
    for (const QAction* const action : window.findChildren<QAction*>()) {
        if (action->shortcuts().isEmpty() || action->text().isEmpty() || seen.contains(action)) continue;
        others.push_back({PlaceOf(*action), QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText),
                          PlainText(action->text())});
    }
    std::stable_sort(others.begin(), others.end(),
                     [](const ShortcutRow& a, const ShortcutRow& b) { return a.group < b.group; });
    rows.insert(rows.end(), others.begin(), others.end());
    return rows;
}

std::vector<ShortcutRow> ViewerInputs(MouseScheme scheme) {
    std::vector<ShortcutRow> rows;
    const auto column = static_cast<std::size_t>(scheme);
    for (const MouseRow& row : kMouseRows) {
        if (row.inputs[column] != nullptr)
            rows.push_back({ShortcutDialog::tr("Mouse in the view"), ShortcutDialog::tr(row.inputs[column]),
                            ShortcutDialog::tr(row.text)});
    }
    for (const ViewerKey& row : kViewerKeys)
        rows.push_back({ShortcutDialog::tr("Keys in the view"),
                        QKeySequence(row.key).toString(QKeySequence::NativeText), ShortcutDialog::tr(row.text)});
    return rows;
}

ShortcutDialog::ShortcutDialog(QWidget* parent) : QDialog(parent), m_pSearch(new QLineEdit), m_pTable(new QTreeWidget) {
    setWindowTitle(tr("Shortcuts"));
    m_pSearch->setObjectName("shortcutSearch");
    m_pSearch->setPlaceholderText(tr("Search for a key or a command"));
    m_pSearch->setClearButtonEnabled(true);
    connect(m_pSearch, &QLineEdit::textChanged, this, &ShortcutDialog::Filter);
    m_pTable->setObjectName("shortcuts");
    m_pTable->setHeaderLabels({tr("Keys or mouse"), tr("What they do"), tr("Where")});
    m_pTable->setRootIsDecorated(false);
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setSelectionMode(QAbstractItemView::NoSelection);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_pSearch);
    column->addWidget(m_pTable, 1);
    column->addWidget(buttons);
    resize(680, 560);
}

void ShortcutDialog::ShowRows(const std::vector<ShortcutRow>& rows) {
    m_pTable->clear();
    for (const ShortcutRow& row : rows) m_pTable->addTopLevelItem(new QTreeWidgetItem({row.keys, row.text, row.group}));
    QHeaderView& head = *m_pTable->header();
    head.setStretchLastSection(false);
    for (int column = 0; column < m_pTable->columnCount(); ++column) m_pTable->resizeColumnToContents(column);
    const int bar = m_pTable->verticalScrollBar()->sizeHint().width();
    const int width =
        head.length() + bar + 2 * m_pTable->frameWidth() + style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing);
    m_pTable->setMinimumWidth(std::min(width, screen()->availableSize().width() * 9 / 10));
    head.setStretchLastSection(true);
    Filter();
    m_pSearch->setFocus();
}

void ShortcutDialog::Filter() {
    const QStringList words = m_pSearch->text().split(' ', Qt::SkipEmptyParts);
    for (int i = 0; i < m_pTable->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const row = m_pTable->topLevelItem(i);
        const QString text = row->text(0) + ' ' + row->text(1) + ' ' + row->text(2);
        row->setHidden(!std::all_of(words.begin(), words.end(),
                                    [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); }));
    }
}
