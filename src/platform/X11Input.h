// Pointer and key events of X as the viewer takes them. Knows no window and asks no server.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "KV_ScenePane/Input.h"
#include "platform/X11Keys.h"

union _XEvent;

/// Of one window, in the order of its events: what a press or a key means depends on those before it.
class X11Input {
public:
    /// Two events, one right after the other, of which one input is made: moves with the same buttons and modifiers
    /// held, of which the later counts, and presses of a held key that repeats.
    [[nodiscard]] static bool CanCoalesce(const _XEvent& event, const _XEvent& next);

    /// The releases that never came, because the window was not there or another program held the pointer: of buttons
    /// that are up by the word of an event that TakeMouse() has not taken yet. They are where the mouse was last.
    [[nodiscard]] std::vector<KV_ScenePane::MouseInput> TakeLostReleases(const _XEvent& event);
    /// The window was hidden: the releases of all buttons, which do not come any more.
    [[nodiscard]] std::vector<KV_ScenePane::MouseInput> ReleaseButtons();
    /// @param event  ButtonPress, ButtonRelease or MotionNotify
    /// @return nothing for a button that the viewer does not know, and for a release without a press
    std::optional<KV_ScenePane::MouseInput> TakeMouse(const _XEvent& event);
    /// @param event     KeyPress or KeyRelease
    /// @param together  presses that the event stands for
    KV_ScenePane::KeyInput TakeKey(const _XEvent& event, std::int32_t together, const X11Keyboard& keyboard);

    /// The focus was lost: releases do not come any more.
    void ForgetKeys() { m_keysDown = {}; }

private:
    struct Click {
        std::uint32_t time = 0;  ///< of the X server, milliseconds; wraps
        std::int32_t x = 0, y = 0;
    };

    std::vector<KV_ScenePane::MouseInput> ReleaseAllBut(std::uint32_t flags);
    std::optional<KV_ScenePane::MouseInput> TakeButton(const _XEvent& event);
    bool TakeLeftPress(const Click& click);

    std::optional<Click> m_firstClick;  ///< of the left button, when the next press may make it a double click
    std::uint32_t m_buttonsHeld = 0;    ///< whose press was taken, and whose release was not
    KV_ScenePane::MouseInput m_last;    ///< the input taken last
    /// By keycode, as it was at the press: a key keeps its meaning until its release, whatever happens to the layout.
    std::array<std::optional<X11Key>, 256> m_keysDown;
};
