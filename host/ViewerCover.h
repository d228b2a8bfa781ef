// Hides from the user what the viewer draws for a picture.
#pragma once
#include <cstdint>

class ViewerWidget;

/// Shows, while it lives, what the screen showed in the area of the viewer: a window of the X server above the
/// viewer's, with a copy of its content as background, so that neither the program nor Qt has to paint it. Without X11,
/// and where the server refuses, it does nothing.
class ViewerCover {
public:
    explicit ViewerCover(const ViewerWidget& viewer);
    ~ViewerCover();
    ViewerCover(const ViewerCover&) = delete;
    ViewerCover& operator=(const ViewerCover&) = delete;

private:
    std::uint32_t m_nWindow = 0;  // 0 for none
};
