// A user at a viewer, in two ways: by calls as a host makes them, and by the pointer and the keyboard of an X server.
#pragma once
#include <memory>

#include "support/ControlFixture.h"

enum class Button { Left = 1, Middle = 2, Right = 3 };

/// Whatever is done has reached the viewer when the call returns; a press in the delayed scheme then still waits.
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
    /// Notches away from the user, or with a negative number towards him.
    virtual void Wheel(int notches) = 0;
    virtual void HoldShift(bool down) = 0;
    virtual void HoldCtrl(bool down) = 0;
    /// Presses and releases a key of the codes that KeyInput names.
    virtual void Type(std::int32_t nChar) = 0;
    /// Whether another program could have the pointer to itself now, as a menu has it.
    [[nodiscard]] virtual bool OthersCanTakeThePointer() = 0;

    /// Waits, as a host does, until no press waits for its delivery.
    void WaitForDelivery();
};

/// An off-screen viewer.
std::unique_ptr<UserInput> HandsByCalls();
/// A viewer in a window of its own on an X server of the tests. Lets go of everything at its end.
std::unique_ptr<UserInput> HandsOnTheRealPointer();
