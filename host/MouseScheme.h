// The meaning of the mouse buttons in the viewer.
#pragma once

/// What a drag of each mouse button does.
enum class MouseScheme {
    Normal,   ///< left turns, right moves
    Flipped,  ///< left moves, right turns
    Delayed   ///< right turns, right with left moves; the left one picks. A press waits 0.1 s for the second button
};
