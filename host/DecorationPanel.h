// The controls of what the viewer draws around the scene: axes, lighting arrow, centre cross.
#pragma once
#include <QWidget>
#include <functional>

#include "KV_ScenePane/_DKV_ScenePane.h"

class ColorButton;
class QCheckBox;
class QSlider;
class QSpinBox;

/// Its first state is that of a new viewer: no decoration is shown.
class DecorationPanel : public QWidget {
    Q_OBJECT
public:
    explicit DecorationPanel(QWidget* parent = nullptr);
    /// @param methods  of the viewer, which must outlive the panel or be replaced by null; null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Checks or clears the box of the cross, which is a pick mode that the menu chooses too. Emits nothing.
    void ShowCross(bool on);
    /// Hides axes, arrow and cross in the viewer, or shows those again whose boxes are checked. The boxes stay.
    void HideInViewer(bool isHidden);

signals:
    /// The button for the background colours was pressed.
    void BackgroundWanted();
    /// The user switched the cross on or off; the panel itself does not change the pick mode.
    void CrossWanted(bool on);

private:
    /// Names, tool tips and connections of everything but the angle.
    void MakeParts();
    /// The angle, as a slider and as a number.
    void MakeAngle();
    /// Puts all parts into the layout.
    void Arrange();
    /// Calls @p change with the viewer, if there is one.
    void Apply(const std::function<void(KV_ScenePane::_DKV_ScenePane&)>& change) const;

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    QCheckBox *m_pAxes, *m_pArrow, *m_pCross;
    ColorButton *m_pCrossColor, *m_pArrowColor;
    QSlider* m_pAngle;
    QSpinBox* m_pAngleNumber;
};
