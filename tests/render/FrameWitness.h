// Counts the frames of a control and looks into each from its dialog's step.
#pragma once
#include <functional>

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
