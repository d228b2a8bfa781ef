// What stands around the scene: axes, centre cross, lighting arrow.
#pragma once
#include <QWidget>
#include <functional>

#include "KV_ScenePane/_DKV_ScenePane.h"

class ColorButton;
class QCheckBox;
class QSlider;
class QSpinBox;

class DecorationPanel : public QWidget {
    Q_OBJECT
public:
    explicit DecorationPanel(QWidget* parent = nullptr);
    /// @param methods  null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// The cross is a pick mode, which is also chosen elsewhere. Emits nothing.
    void ShowCross(bool on);

signals:
    void BackgroundWanted();
    void CrossWanted(bool on);

private:
    void MakeParts();
    void MakeAngle();
    void Arrange();
    /// Tells the viewer, if there is one.
    void Tell(const std::function<void(KV_ScenePane::_DKV_ScenePane&)>& tell) const;

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    QCheckBox *m_pAxes, *m_pArrow, *m_pCross;
    ColorButton *m_pCrossColor, *m_pArrowColor;
    QSlider* m_pAngle;
    QSpinBox* m_pAngleNumber;
};
