// The live orthographic camera of a control.
#pragma once
#include <cstdint>

#include "geometry/Vector3.h"
#include "view/ViewFrame.h"
#include "view/ViewMatrices.h"

/// Written by view/Camera.cpp; rotation, animation and decorations change it through SetLiveFrame() and
/// SetupViewMatrices().
///
/// Invariants: m_fAxisX, m_fAxisY and m_fAxisZ are orthonormal and right-handed up to the rounding of the drags, world
/// frame; m_fAxisZ points from the scene to the viewer. The OpenGL matrices equal these members only after
/// SetupViewMatrices(). One of the two aspect factors is 1.
struct CameraState {
    Float3 m_fAxisX{1, 0, 0}, m_fAxisY{0, 1, 0}, m_fAxisZ{0, 0, 1};
    Float3 m_fViewCenter{};      ///< world point at the centre of the window
    Float3 m_fRotationCenter{};  ///< pivot of the free rotation, world frame
    float m_fAspectY = 1.0f, m_fAspectX = 1.0f;
    float m_fDefaultZoom = 1.0f, m_fZoom = 1.0f;  ///< larger shows more of the scene
    float m_fSceneSize = 1000.0f;                 ///< diagonal of the fitted box
    ViewFrame m_savedView;                        ///< at the start of each drag and at each SetupViewMatrices()
    std::int16_t m_nViewMode = -1;                ///< argument of the last SetViewMode(), unchecked; -1 before it
    ViewMatrices m_viewMatrices;                  ///< what OpenGL has of all this
    std::uint8_t m_bTracingMode = 0;              ///< the view direction is reported while it changes
};
