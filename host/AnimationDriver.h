// The frames of the turntable. The viewer turns the scene by the clock in each frame, and asks for no frame itself.
#pragma once
#include <QObject>
#include <QTimer>

#include "KV_ScenePane/_DKV_ScenePane.h"

class AnimationDriver : public QObject {
    Q_OBJECT
public:
    explicit AnimationDriver(QObject* parent = nullptr);

    /// @param methods  of the viewer to be driven; null stops
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Looks whether the viewer's animation runs, and drives it when it does. To be called when it may have been
    /// started: by the host, or by a key of the viewer's.
    void Check();
    [[nodiscard]] bool IsDriving() const { return m_timer.isActive(); }

signals:
    void RunningChanged(bool running);

private:
    void DrawFrame();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    QTimer m_timer;
};
