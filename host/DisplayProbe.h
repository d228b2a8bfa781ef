// Whether an X display can be reached. On its own, since Xlib's names and Qt's do not go into one file.
#pragma once

/// True when $DISPLAY names a display that lets us in.
[[nodiscard]] bool CanOpenDisplay();
