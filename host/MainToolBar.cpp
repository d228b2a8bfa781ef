// The render modes share one button with a menu: the bar fits beside the others on a screen of 1366 pixels.
#include "MainToolBar.h"

#include <QAction>
#include <QMenu>
#include <QToolButton>

#include "ToolAction.h"
#include "ViewIcons.h"

MainToolBar::MainToolBar(const MainTools& tools, QWidget* parent) : QToolBar(parent), m_tools(tools) {
    setObjectName("mainTools");
    setWindowTitle(tr("Main tools"));
    setIconSize({kToolIconSide, kToolIconSide});
    m_tools.open->setIcon(OpenIcon());
    m_tools.savePicture->setIcon(PictureIcon());
    m_tools.fit->setIcon(FitIcon());
    m_tools.shadows->setIcon(ShadowsIcon());
    for (int i = 0; i < m_tools.views.size(); ++i)
        m_tools.views[i]->setIcon(ViewIcon(static_cast<KV_ScenePane::ViewMode>(i)));
    for (int i = 0; i < m_tools.drawModes.size(); ++i)
        m_tools.drawModes[i]->setIcon(DrawModeIcon(static_cast<KV_ScenePane::DrawMode>(i)));
    addActions({m_tools.open, m_tools.fit});
    addActions(m_tools.views);
    addSeparator();
    MakeModeButton();
    addActions({m_tools.shadows, m_tools.savePicture});
}

void MainToolBar::MakeModeButton() {
    m_pMode = new QToolButton;
    m_pMode->setObjectName("drawModeButton");
    m_pMode->setPopupMode(QToolButton::InstantPopup);
    auto* const menu = new QMenu(m_pMode);
    menu->setToolTipsVisible(true);  // why a mode cannot be used now
    menu->addActions(m_tools.drawModes);
    m_pMode->setMenu(menu);
    addWidget(m_pMode);
    for (QAction* const mode : m_tools.drawModes) connect(mode, &QAction::changed, this, &MainToolBar::ShowMode);
    ShowMode();
}

void MainToolBar::ShowMode() {
    const QAction* checked = nullptr;
    bool canChange = false;
    for (const QAction* const mode : m_tools.drawModes) {
        if (mode->isChecked()) checked = mode;
        canChange = canChange || mode->isEnabled();
    }
    const QAction& shown = checked != nullptr ? *checked : *m_tools.drawModes.front();
    m_pMode->setIcon(shown.icon());
    m_pMode->setToolTip(checked != nullptr ? tr("Render mode: %1").arg(QString(shown.text()).remove('&'))
                                           : tr("Render mode"));
    m_pMode->setEnabled(canChange);
}
