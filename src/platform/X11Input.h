// Translates pointer and key events of X into the viewer's input. Independent of any window or server.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "KV_ScenePane/Input.h"
#include "platform/X11Keys.h"

union _XEvent;

/// The input state of one window. Its events must be passed in their order: what a press or a key means depends on the
/// events before it.
class X11Input {
public:
    /// Whether two consecutive events become one input, the later one: moves with the same buttons and modifiers held.
    [[nodiscard]] static bool CanCoalesce(const _XEvent& event, const _XEvent& next);

    /// Releases that X never sent, because the window was not viewable or another program had grabbed the pointer: of
    /// the buttons that are held by our account and up in the state of a mouse event. To be called before
    /// TranslateMouse() for the same event. Their place is that of the last input.
    [[nodiscard]] std::vector<KV_ScenePane::MouseInput> FindLostReleases(const _XEvent& event);
    /// The releases of all buttons of a window that was unmapped: X does not send them any more.
    [[nodiscard]] std::vector<KV_ScenePane::MouseInput> ReleaseButtons();
    /// @param event  ButtonPress, ButtonRelease or MotionNotify
    /// @return nothing for a button that the viewer does not use, and for a release without a press
    std::optional<KV_ScenePane::MouseInput> TranslateMouse(const _XEvent& event);
    /// @param event  KeyPress or KeyRelease
    KV_ScenePane::KeyInput TranslateKey(const _XEvent& event, const X11Keyboard& keyboard);

    /// Whether a press is a notch of the wheel or the repeat of a key that is held: input that comes in runs.
    [[nodiscard]] bool IsNotchOrRepeat(const _XEvent& event) const;
    /// Whether it is the release that X sends with each notch, which is no input.
    [[nodiscard]] static bool IsNotchRelease(const _XEvent& event);

    /// For a window that lost the keyboard focus: the releases of its keys go to another window.
    void ForgetKeys() { m_keysDown = {}; }

private:
    struct Click {
        std::uint32_t time = 0;  ///< of the X server, milliseconds; wraps after 49 days
        std::int32_t x = 0, y = 0;
    };

    std::vector<KV_ScenePane::MouseInput> ReleaseAllBut(std::uint32_t flags);
    std::optional<KV_ScenePane::MouseInput> TranslateButton(const _XEvent& event);
    bool CompletesDoubleClick(const Click& click);

    std::optional<Click> m_firstClick;  ///< of the left button, when the next press may make it a double click
    std::uint32_t m_buttonsHeld = 0;    ///< flags of the buttons whose press was reported and whose release was not
    KV_ScenePane::MouseInput m_last;    ///< the last input of TranslateMouse()
    /// By keycode, as it was at the press: a key keeps its meaning until its release, also when the layout changes.
    std::array<std::optional<X11Key>, 256> m_keysDown;
};
