// The X server's keyboard focus and windows. In a file without Qt, because names of Xlib and Qt collide.
#pragma once
#include <cstdint>

/// The X window that has the keyboard, as the server of $DISPLAY reports it.
[[nodiscard]] std::uintptr_t FocusedWindow();
/// Destroys an X window of another client.
void DestroyXWindow(std::uintptr_t window);
