// Counts the frames of a control and calls a function inside each, in the step that draws the interaction dialog. Asks
// for the lock that is held during a frame.
#pragma once
#include <functional>
#include <thread>

#include "control/ScenePaneCtrl.h"

class FrameWitness final : public CInteractionDlg {
public:
    explicit FrameWitness(CKV_ScenePaneCtrl& control) : m_control(control) { control.m_pInteractionDlg = this; }
    ~FrameWitness() override { m_control.m_pInteractionDlg = nullptr; }
    FrameWitness(const FrameWitness&) = delete;
    FrameWitness& operator=(const FrameWitness&) = delete;
    void Finish() override {}
    void DrawInteraction() override {
        ++frames;
        if (inside) inside();
    }

    int frames = 0;
    std::function<void()> inside;

private:
    CKV_ScenePaneCtrl& m_control;
};

/// Whether a thread holds the draw lock of the process. Asked from another thread, because the lock is recursive.
inline bool DrawLockIsHeld() {
    bool held = false;
    std::thread([&held] {
        held = !g_drawLock->try_lock();
        if (!held) g_drawLock->unlock();
    }).join();
    return held;
}
