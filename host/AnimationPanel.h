// The controls of the turntable: start and stop, speed, and whether the space bar starts it.
#pragma once
#include <QWidget>

#include "KV_ScenePane/_DKV_ScenePane.h"

class AnimationDriver;
class QCheckBox;
class QDoubleSpinBox;
class QPushButton;

/// The button starts one revolution about the Z axis or stops it; the speed can be changed while it runs.
class AnimationPanel : public QWidget {
    Q_OBJECT
public:
    explicit AnimationPanel(QWidget* parent = nullptr);
    /// @param methods  of the viewer, which must outlive the panel or be replaced by null; null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Starts drawing frames when a key in the viewer has started the animation, and stops when it has ended.
    void Check();
    /// Sets in the viewer what the space bar does: the end of a lasso has switched it on.
    void ApplySpacebar();
    [[nodiscard]] const AnimationDriver& Driver() const { return *m_pDriver; }

private:
    void StartOrStop();
    void SetSpeed(double revolutionsPerSecond);
    /// The text of the button: what a click does next.
    void ShowRunning(bool running);

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    AnimationDriver* m_pDriver;
    QPushButton* m_pStart;
    QDoubleSpinBox* m_pSpeed;
    QCheckBox* m_pSpacebar;
};
