// The pane of the objects, and what its commands change in the scene.
#include <QAction>
#include <QMenu>

#include "MainWindow.h"
#include "ObjectColors.h"
#include "ObjectList.h"
#include "ObjectPalette.h"

QWidget* MainWindow::MakeObjectPane() {
    m_pObjects = new ObjectList;
    m_pColors = new ObjectColors(*m_pObjects, this);
    connect(m_pObjects, &ObjectList::VisibilityWanted, this, &MainWindow::ShowObject);
    connect(m_pObjects, &ObjectList::ColorWanted, this, &MainWindow::ColorObject);
    m_pColorByObject = new QAction(tr("Colour by &object"), this);
    m_pColorByObject->setObjectName("colorByObject");
    m_pColorByObject->setStatusTip(tr("Give each object a colour of a palette, to tell the objects apart"));
    connect(m_pColorByObject, &QAction::triggered, m_pColors, &ObjectColors::ColorByObject);
    m_pColorAsImported = new QAction(tr("&One colour"), this);
    m_pColorAsImported->setObjectName("oneColor");
    m_pColorAsImported->setStatusTip(tr("Take the colours of the palette back; colours that you have chosen stay"));
    connect(m_pColorAsImported, &QAction::triggered, m_pColors, &ObjectColors::ColorAsImported);
    return m_pObjects;
}

void MainWindow::MakeColorActions(QMenu& menu) { menu.addActions({m_pColorByObject, m_pColorAsImported}); }

bool MainWindow::TellsScansApart(const std::vector<std::string>& files) const {
    const bool isColorChosen = m_options.given.color || m_options.import.color != ImportSettings{}.color;
    return !isColorChosen && CountScans(files) > 1;
}

void MainWindow::ColorObject(int index, std::int32_t packed) {
    if (Pane() != nullptr) m_pColors->Choose(index, packed);
}
