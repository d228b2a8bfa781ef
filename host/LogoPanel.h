// The controls of the logo: image, place, margin and visibility.
#pragma once
#include <QWidget>
#include <array>

#include "LogoOverlay.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QSpinBox;

/// The logo itself, with its overlays in the viewer, is a LogoOverlay.
class LogoPanel : public QWidget {
    Q_OBJECT
public:
    explicit LogoPanel(QWidget* parent = nullptr);
    /// @param methods  of the viewer, which must outlive the panel or be replaced by null; null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Shows the image of a file. When it cannot be read, the current logo stays and Failed() is emitted.
    /// @return whether the image was read
    bool OpenImage(const QString& path);
    /// Hides the logo in the viewer, or shows it again if its box is checked. The box stays.
    void HideInViewer(bool isHidden);

signals:
    /// @param text  one line with file and reason
    void Failed(const QString& text);

private:
    /// Nine exclusive buttons in the arrangement of the places.
    QWidget* MakeAnchors();
    void AskForImage();
    /// Moves the logo to the place and margin that the controls show.
    void Place();

    LogoOverlay m_logo;
    QLabel* m_pFile;
    QButtonGroup* m_pAnchors;
    QSpinBox* m_pMargin;
    QCheckBox* m_pVisible;
};
