// The running interaction, and how mouse input reaches it.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>

#include "KV_ScenePane/Input.h"
#include "KV_ScenePane/Modes.h"
#include "view/MouseDispatch.h"

/// Values of m_nInteractionMode. 2, 5 and 8 are never assigned.
enum InteractionMode : std::int32_t {
    ModeIdle = 0,
    ModeRotate = 1,
    ModePan = 3,
    ModeLasso = 4,
    ModeAlignInteractive = 6,
    ModeAlignPickPoints = 7,
    ModePlaneHandle = 9,
    ModeMaskLasso = 10,
    ModePlaneRotate = 11,
    ModePlaneMove = 12,
};

/// Written by the mouse and key handlers of view/ and clip/; segmentation and alignment set and reset their modes.
///
/// Invariants: m_nSavedInteractionMode is the mode that the end of a drag returns to, never itself a mode of a drag.
/// m_bRollRotation and m_nRollQuadrant describe the drag under way and mean nothing outside one.
struct InputState {
    std::int32_t m_nInteractionMode = ModeIdle;
    std::int32_t m_nSavedInteractionMode = ModeIdle;
    std::int32_t m_nLastMouseX = 0, m_nLastMouseY = 0;  ///< pixels of the drawing area, y downward
    std::uint8_t m_bMoving = 0;                         ///< a drag that moves the view is under way
    std::uint8_t m_bRollRotation = 0;                   ///< the drag began outside the inscribed circle
    std::int32_t m_nRollQuadrant = 0;                   ///< as RollQuadrant() counts them
    std::uint8_t m_bRightButtonPressed = 0;

    // Set by the host.
    std::int32_t m_nAllowMouse = 1;        ///< moves and wheel act only when exactly 1
    std::int32_t m_nIgdRotation = 0;       ///< not 0: the delayed scheme, where a click is distinguished from a drag
    std::int32_t m_nFlipMouseButtons = 0;  ///< not 0: left pans and right rotates
    std::int32_t m_nRotationMode = KV_ScenePane::RotateFree;  ///< any value of the host; others rotate freely
    /// Null for none. A call that runs holds it, so that the filter may be replaced meanwhile.
    std::shared_ptr<const std::function<bool(const KV_ScenePane::MouseInput&)>> m_pMouseFilter;

    MouseDispatch m_mouseDispatch;
};
