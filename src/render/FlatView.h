// A view without depth for what is drawn flat on the window: its own projection and no camera, while it lives.
#pragma once
#include <GL/glew.h>

class FlatView {
public:
    /// The drawing area spans -halfWidth to halfWidth and -halfHeight to halfHeight.
    FlatView(double halfWidth, double halfHeight) : FlatView(-halfWidth, halfWidth, -halfHeight, halfHeight, -10, 10) {}
    /// The borders of the drawing area; left and right differ, and so do bottom and top.
    FlatView(double left, double right, double bottom, double top, double near, double far) {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(left, right, bottom, top, near, far);
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
