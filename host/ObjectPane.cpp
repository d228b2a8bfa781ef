// The totals follow the list; hidden objects count, removed ones do not.
#include "ObjectPane.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "ObjectList.h"

ObjectPane::ObjectPane(ObjectList* list, QWidget* parent)
    : QWidget(parent), m_list(*list), m_pTotals(new QLabel), m_pCommands(new QMenu(this)) {
    m_pTotals->setObjectName("objectTotals");
    // A narrow pane cuts the text off; it must not keep the pane from being narrow.
    m_pTotals->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* const button = new QPushButton;  // a tool button draws the arrow over its corner
    button->setObjectName("objectCommands");
    button->setText(tr("Co&mmands"));
    button->setToolTip(tr("What can be done with the selected objects"));
    button->setMenu(m_pCommands);
    button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keyboard where it is
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(4, 0, 0, 0);
    row->addWidget(m_pTotals, 1);
    row->addWidget(button);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(list, 1);
    column->addLayout(row);
    connect(list, &ObjectList::CountsChanged, this, &ObjectPane::ShowTotals);
    connect(list, &ObjectList::itemSelectionChanged, this, &ObjectPane::ShowTotals);
    ShowTotals();
}

void ObjectPane::ShowTotals() {
    const std::vector<int> present = m_list.PresentObjects(), selected = m_list.SelectedObjects();
    const bool isOfSelection = !selected.empty();
    std::int64_t vertices = 0, triangles = 0;
    for (const int index : isOfSelection ? selected : present) {
        vertices += m_list.VerticesOf(index);
        triangles += m_list.TrianglesOf(index);
    }
    const auto count = static_cast<std::int64_t>(present.size());
    const QString text = isOfSelection ? tr("Selected: %1 of %2. Triangles: %3. Vertices: %4")
                                             .arg(CountText(static_cast<std::int64_t>(selected.size())),
                                                  CountText(count), CountText(triangles), CountText(vertices))
                                       : tr("Objects: %1. Triangles: %2. Vertices: %3")
                                             .arg(CountText(count), CountText(triangles), CountText(vertices));
    m_pTotals->setText(text);
    m_pTotals->setToolTip(text);
}
