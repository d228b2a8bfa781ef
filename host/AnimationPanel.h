// Start, speed and space bar of the turntable.
#pragma once
#include <QWidget>

#include "KV_ScenePane/_DKV_ScenePane.h"

class AnimationDriver;
class QCheckBox;
class QDoubleSpinBox;
class QPushButton;

class AnimationPanel : public QWidget {
    Q_OBJECT
public:
    explicit AnimationPanel(QWidget* parent = nullptr);
    /// @param methods  null disables the panel
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Follows an animation that the viewer may have started itself.
    void Check();
    [[nodiscard]] const AnimationDriver& Driver() const { return *m_pDriver; }

private:
    void StartOrStop();
    void SetSpeed(double revolutionsPerSecond);
    void ShowRunning(bool running);

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    AnimationDriver* m_pDriver;
    QPushButton* m_pStart;
    QDoubleSpinBox* m_pSpeed;
    QCheckBox* m_pSpacebar;
};
