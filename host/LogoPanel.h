// Image, place and visibility of the logo.
#pragma once
#include <QWidget>
#include <array>

#include "LogoOverlay.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QSpinBox;

class LogoPanel : public QWidget {
    Q_OBJECT
public:
    explicit LogoPanel(QWidget* parent = nullptr);
    /// @param methods  null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Shows the image of a file. False, and Failed(), when it cannot be read; the present logo stays.
    bool OpenImage(const QString& path);

signals:
    void Failed(const QString& text);

private:
    QWidget* MakeAnchors();
    void AskForImage();
    void Place();

    LogoOverlay m_logo;
    QLabel* m_pFile;
    QButtonGroup* m_pAnchors;
    QSpinBox* m_pMargin;
    QCheckBox* m_pVisible;
};
