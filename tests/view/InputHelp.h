// What the tests of the mouse and key handlers share: a control in a known state, a dialog that records its calls.
#pragma once
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "support/ControlFixture.h"

inline constexpr std::uint32_t kLeft = KV_ScenePane::kMouseLeft, kRight = KV_ScenePane::kMouseRight,
                               kShift = KV_ScenePane::kMouseShift, kCtrl = KV_ScenePane::kMouseCtrl,
                               kMiddle = KV_ScenePane::kMouseMiddle;

enum class Button { Left = 1, Middle = 2, Right = 3 };
inline void PrintTo(Button button, std::ostream* out) {
    *out << (button == Button::Left ? "Left" : button == Button::Middle ? "Middle" : "Right");
}

/// Flag of MouseInput::flags while the button is held.
constexpr std::uint32_t FlagOf(Button button) {
    return button == Button::Left ? kLeft : button == Button::Middle ? kMiddle : kRight;
}

/// Every interaction mode and the numbers between them that are never assigned.
inline constexpr std::int32_t kAllModes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

/// Records each call with its arguments, as "OnRotateDrag 10 20".
class RecordingDialog final : public CInteractionDlg {
public:
    std::vector<std::string> calls;

    void Finish() override { calls.emplace_back("Finish"); }
    void OnInteractionKey(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override {
        calls.push_back("OnInteractionKey " + std::to_string(nChar) + " " + std::to_string(nRepCnt) + " " +
                        std::to_string(nFlags));
    }
    void OnRotateDrag(std::int32_t x, std::int32_t y) override { Keep("OnRotateDrag", x, y); }
    void OnMoveDrag(std::int32_t x, std::int32_t y) override { Keep("OnMoveDrag", x, y); }
    void OnRotateEnd(std::int32_t x, std::int32_t y) override { Keep("OnRotateEnd", x, y); }
    void OnMoveEnd(std::int32_t x, std::int32_t y) override { Keep("OnMoveEnd", x, y); }

private:
    void Keep(const char* name, std::int32_t x, std::int32_t y) {
        calls.push_back(std::string(name) + " " + std::to_string(x) + " " + std::to_string(y));
    }
};

using Calls = std::vector<std::string>;

/// The state before the input.
struct Before {
    std::int32_t mode = ModeIdle;
    std::int32_t igd = 0;   ///< argument of SetIGDRotation()
    std::int32_t flip = 0;  ///< argument of FlipMouseButtons()
    bool plane = false;     ///< the clip plane is shown
    bool dialog = false;    ///< an alignment dialog is open
    bool rightPressed = false;
};

/// In an interactive alignment with its dialog open.
inline Before Aligning(Before state = {}) {
    state.mode = ModeAlignInteractive, state.dialog = true;
    return state;
}
/// In a pick-point alignment with its dialog open.
inline Before PickingPoints(Before state = {}) {
    state.mode = ModeAlignPickPoints, state.dialog = true;
    return state;
}

// Values that no handler writes: what still has them was not written.
inline constexpr std::int32_t kNoMode = 77, kNoX = -5, kNoY = -6;
inline const Float3 kNoAxis{9, 9, 9};

/// 640 x 480, an oblique frame, a running animation, and marker values in all that an input may write. The handlers are
/// called directly, as the dispatcher calls them.
struct InputControl : OffscreenControl {
    explicit InputControl(const Before& before = {}) : OffscreenControl(640, 480), m_freshPlane(control->m_clipPlane) {
        Set(before);
    }
    /// The same as a new control in that state, without the cost of a window per row of a loop.
    void Set(const Before& before) {
        CKV_ScenePaneCtrl& c = *control;
        SetView(c);
        SetInput(c, before);
        c.m_clipPlane = m_freshPlane;
        c.m_bClipPlaneVisible = before.plane;
        c.m_bNeedlePickingMode = 0;
        c.m_pInteractionDlg = before.dialog ? &dialog : nullptr;
        dialog.calls.clear();
        window->ReleaseCapture();
        window->Forget();
        events.events.clear();
    }
    ~InputControl() { control->m_pInteractionDlg = nullptr; }
    InputControl(const InputControl&) = delete;
    InputControl& operator=(const InputControl&) = delete;

    [[nodiscard]] bool BeganDragAt(std::int32_t x, std::int32_t y) const {
        return control->m_nLastMouseX == x && control->m_nLastMouseY == y &&
               control->m_savedView.wx == control->m_fAxisX && control->m_savedView.wy == control->m_fAxisY &&
               control->m_savedView.wz == control->m_fAxisZ && control->m_savedView.center == control->m_fViewCenter;
    }
    [[nodiscard]] bool LastPointUnchanged() const {
        return control->m_nLastMouseX == kNoX && control->m_nLastMouseY == kNoY;
    }
    [[nodiscard]] bool SavedViewUnchanged() const { return control->m_savedView.wx == kNoAxis; }
    [[nodiscard]] int RepaintRequests() const {
        return window->refreshes + window->invalidates + window->eraseInvalidates;
    }

    void Press(Button button, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        if (button == Button::Left) control->OnLeftDown(flags, x, y);
        if (button == Button::Middle) control->OnMiddleDown(flags, x, y);
        if (button == Button::Right) control->OnRightDown(flags, x, y);
    }
    void Release(Button button, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        if (button == Button::Left) control->OnLeftUp(flags, x, y);
        if (button == Button::Middle) control->OnMiddleUp(flags, x, y);
        if (button == Button::Right) control->OnRightUp(flags, x, y);
    }

    RecordingDialog dialog;

private:
    static void SetView(CKV_ScenePaneCtrl& c) {
        c.m_fZoom = 1;
        c.m_fViewCenter = c.m_fRotationCenter = {};
        c.SetViewMode(KV_ScenePane::ViewObliqueZUp);
        c.m_nViewMode = -1;
        c.m_savedView.wx = kNoAxis;
        c.m_bAnimationRunning = 1;
        c.m_fAnimationSpeed = 0;  // never ends by itself and rotates nothing
        c.m_bToggleAnimationOnSpacebar = 0;
    }
    static void SetInput(CKV_ScenePaneCtrl& c, const Before& before) {
        c.m_nInteractionMode = before.mode;
        c.m_nSavedInteractionMode = kNoMode;
        c.m_nIgdRotation = before.igd;
        c.m_nFlipMouseButtons = before.flip;
        c.m_bRightButtonPressed = before.rightPressed;
        c.m_nLastMouseX = kNoX;
        c.m_nLastMouseY = kNoY;
        c.m_nAllowMouse = 1;
        c.m_bMoving = c.m_bRollRotation = c.m_bLassoCursor = 0;
        c.m_vLassoPoints.clear();
        c.m_pCutSession.reset();
    }

    Plane m_freshPlane;
};
