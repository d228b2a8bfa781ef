// Whether an X display can be reached. In a file without Qt, because names of Xlib and Qt collide.
#pragma once

/// Opens the display that $DISPLAY names and closes it again. @return whether that succeeded
[[nodiscard]] bool CanOpenDisplay();
