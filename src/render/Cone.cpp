// Lit cones from GLU, which makes cylinders along the z axis.
#include "render/Cone.h"

#include <GL/glew.h>
//
#include <GL/glu.h>

#include <cmath>
#include <numbers>

namespace {

/// Rotates the modelview matrix from the z axis to @p direction, about the axis perpendicular to both. A direction
/// within a millionth of +z or -z has no reliable axis: no rotation then.
void RotateFromZ(const Float3& direction, double length) {
    const double cosine = direction[2] / length;
    if (!(std::abs(std::abs(cosine) - 1.0) > 1e-6)) return;  // a length of 0 too: its cosine is a NaN
    const double degrees = std::acos(cosine) * 180.0 / std::numbers::pi;
    glRotatef(static_cast<GLfloat>(degrees), -direction[1], direction[0], 0.0f);
}

}  // namespace

void DrawCone(const Float3& base, const Float3& tip, float radius, const Float3& color) {
    const GLfloat diffuse[4] = {color[0], color[1], color[2], 1.0f};
    glMaterialfv(GL_FRONT, GL_DIFFUSE, diffuse);  // lighting uses the material, not the current colour
    // To the base, then the z axis to the direction of the cone.
    const Float3 axis = tip - base;
    const double length = std::sqrt(double{Dot(axis, axis)});
    glPushMatrix();
    glTranslatef(base[0], base[1], base[2]);
    RotateFromZ(axis, length);

    // A cylinder with radius 0 at the top.
    GLUquadric* const quadric = gluNewQuadric();
    gluQuadricDrawStyle(quadric, GLU_FILL);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    gluCylinder(quadric, radius, 0.0, length, 24, 2);
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT0);
    gluDeleteQuadric(quadric);
    glPopMatrix();
}
