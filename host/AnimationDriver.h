// Drives the turntable. The viewer turns the scene by the clock in each frame that it draws, but it requests no frame
// itself: that is for the host.
#pragma once
#include <QObject>
#include <QTimer>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// Draws frames at a fixed rate while the animation of a viewer runs.
class AnimationDriver : public QObject {
    Q_OBJECT
public:
    explicit AnimationDriver(QObject* parent = nullptr);

    /// @param methods  of the viewer to be driven, which must outlive the driver or be replaced by null; null stops
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Starts or stops the timer as the viewer's animation runs or not. Must be called whenever the animation may have
    /// been started, by the host or by a key in the viewer.
    void Check();
    [[nodiscard]] bool IsDriving() const { return m_timer.isActive(); }

signals:
    /// The timer was started or stopped.
    void RunningChanged(bool running);

private:
    void DrawFrame();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    QTimer m_timer;
};
