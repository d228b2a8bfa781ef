// A view without camera for drawing flat on the window. Decorations, overlays and the frozen image use it.
#pragma once
#include <GL/glew.h>

/// glOrtho(), left out when two opposite borders are equal as floats: OpenGL ignores such a call and raises an error.
inline void MultiplyOrtho(double left, double right, double bottom, double top, double near, double far) {
    const auto isFlat = [](double from, double to) { return static_cast<float>(from) == static_cast<float>(to); };
    if (isFlat(left, right) || isFlat(bottom, top) || isFlat(near, far)) return;
    glOrtho(left, right, bottom, top, near, far);
}

/// Two triangles over the whole window in clip coordinates, for a program that reads neither matrix.
inline void DrawWholeWindow() {
    glBegin(GL_TRIANGLES);
    glVertex3f(-1, -1, 0);
    glVertex3f(1, -1, 0);
    glVertex3f(-1, 1, 0);
    glVertex3f(-1, 1, 0);
    glVertex3f(1, -1, 0);
    glVertex3f(1, 1, 0);
    glEnd();
}

/// Replaces projection and modelview matrix during its lifetime; the destructor restores both and selects the modelview
/// stack. The current context must be the same in both.
class FlatView {
public:
    /// The drawing area spans -halfWidth to halfWidth and -halfHeight to halfHeight.
    FlatView(double halfWidth, double halfHeight) : FlatView(-halfWidth, halfWidth, -halfHeight, halfHeight, -10, 10) {}
    /// Coordinates of the borders of the drawing area, as glOrtho() defines them. The area has no other
    /// coordinates than -1 to 1 when two opposite borders are equal.
    FlatView(double left, double right, double bottom, double top, double near, double far) {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        MultiplyOrtho(left, right, bottom, top, near, far);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
    }
    ~FlatView() {
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
    FlatView(const FlatView&) = delete;
    FlatView& operator=(const FlatView&) = delete;
};
