// A user at a viewer, in two ways: by calls as a host makes them, and by the pointer and the keyboard of an X server.
#pragma once
#include <functional>
#include <memory>

#include "view/InputHelp.h"

/// Drives the viewer as a host does until @p done returns true.
/// @param what  what is waited for, in the message of a failure
/// @throws std::runtime_error after a minute without it
void PumpUntil(CKV_ScenePaneCtrl& control, const char* what, const std::function<bool()>& done);

/// The delay of the delayed scheme lasts from here on until EndDispatchDelay(), however slow the machine is.
void HoldDispatchTimer(TestControl& viewer);
/// Ends the delay of a pending press as its timer would: by the private message, through the window's queue. Returns at
/// once when none is pending.
void EndDispatchDelay(TestControl& viewer);

/// Every input has reached the viewer when its call returns. A press in the delayed scheme is pending then, until
/// EndDispatchDelay(): the timer of the viewer is held.
class UserInput {
public:
    static constexpr std::int32_t kWidth = 640, kHeight = 480;

    virtual ~UserInput() = default;
    UserInput() = default;
    UserInput(const UserInput&) = delete;
    UserInput& operator=(const UserInput&) = delete;

    virtual TestControl& Viewer() = 0;
    /// In pixels of the viewer, y downward; may be outside it.
    virtual void MoveTo(int x, int y) = 0;
    virtual void Press(Button button) = 0;
    virtual void Release(Button button) = 0;
    /// Press, release, press and release of the left button at one place.
    virtual void DoubleClick() = 0;
    /// @param notches  positive away from the user, negative towards the user
    virtual void Wheel(int notches) = 0;
    virtual void HoldShift(bool down) = 0;
    virtual void HoldCtrl(bool down) = 0;
    /// Presses and releases a key of the codes that KeyInput names.
    virtual void Type(std::int32_t nChar) = 0;
    /// Whether another program could grab the pointer now, as a menu does.
    [[nodiscard]] virtual bool OthersCanGrabThePointer() = 0;
};

/// Calls of the host on an off-screen viewer.
std::unique_ptr<UserInput> MakeCallInput();
/// Pointer and keyboard on a viewer in a top-level window on an X server of the tests. Releases everything held at its
/// end.
std::unique_ptr<UserInput> MakePointerInput();
