// The tools that are used most: open, save a picture, fit, the fixed views, the render modes and shadows.
#pragma once
#include <QList>
#include <QToolBar>

class QAction;
class QToolButton;

/// Actions of the menus that the tool bar shows, too.
struct MainTools {
    QAction *open = nullptr, *savePicture = nullptr, *fit = nullptr, *shadows = nullptr;
    QList<QAction*> views;      ///< in the order of KV_ScenePane::ViewMode
    QList<QAction*> drawModes;  ///< in the order of KV_ScenePane::DrawMode
};

/// In the order of their use: a narrow window hides the last ones in the menu at the end of the bar.
class MainToolBar : public QToolBar {
    Q_OBJECT
public:
    /// Gives the actions their icons, and tips that name their keys.
    explicit MainToolBar(const MainTools& tools, QWidget* parent = nullptr);

private:
    void MakeModeButton();
    /// The button shows the mode that is checked.
    void ShowMode();

    const MainTools m_tools;
    QToolButton* m_pMode = nullptr;
};
