// A view without depth for what is drawn flat on the window: its own projection and no camera, while it lives.
#pragma once
#include <GL/glew.h>

class FlatView {
public:
    /// The drawing area spans -halfWidth to halfWidth and -halfHeight to halfHeight.
    FlatView(double halfWidth, double halfHeight) {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(-halfWidth, halfWidth, -halfHeight, halfHeight, -10, 10);
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
