// Of how many pieces the plane's handles and guides are made. The calls of OpenGL and GLU that draw them are recorded
// and passed on: the definitions here take the place of those of the libraries in this program.
#include <GL/glew.h>
//
#include <GL/glu.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "support/ControlFixture.h"

namespace {

/// A sphere or cylinder of GLU; a sphere has no height.
struct Solid {
    double base = 0, top = 0, height = 0;
    int slices = 0, stacks = 0;
};

struct Recording {
    std::vector<Double3> vertices;
    std::vector<Solid> spheres, cylinders;
};
Recording* g_recording = nullptr;

/// The definition of the library.
template <class Function>
Function* Next(Function* /*type*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {
void GLAPIENTRY glVertex3dv(const GLdouble* v) {
    static auto* const next = Next(&glVertex3dv, "glVertex3dv");
    if (g_recording != nullptr) g_recording->vertices.push_back({v[0], v[1], v[2]});
    next(v);
}
void GLAPIENTRY gluSphere(GLUquadric* quadric, GLdouble radius, GLint slices, GLint stacks) {
    static auto* const next = Next(&gluSphere, "gluSphere");
    if (g_recording != nullptr) g_recording->spheres.push_back({radius, radius, 0, slices, stacks});
    next(quadric, radius, slices, stacks);
}
void GLAPIENTRY gluCylinder(GLUquadric* quadric, GLdouble base, GLdouble top, GLdouble height, GLint slices,
                            GLint stacks) {
    static auto* const next = Next(&gluCylinder, "gluCylinder");
    if (g_recording != nullptr) g_recording->cylinders.push_back({base, top, height, slices, stacks});
    next(quadric, base, top, height, slices, stacks);
}
}

namespace {

class PlaneShapes : public testing::Test {
protected:
    PlaneShapes() { plane.SetRadiusFromExtent(120); }

    template <class Drawing>
    Recording Record(const Drawing& draw) {
        EXPECT_TRUE(control->MakeContextCurrent());
        Recording recording;
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        g_recording = &recording;
        draw();
        g_recording = nullptr;
        glPopAttrib();
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        return recording;
    }
    Recording Drawn() {
        return Record([this] { plane.Draw(); });
    }
    Recording Offered() {
        return Record([this] { plane.DrawPickIds(0); });
    }
    static void ExpectSolid(const Solid& solid, const Solid& expected) {
        EXPECT_NEAR(solid.base, expected.base, 1e-12);
        EXPECT_NEAR(solid.top, expected.top, 1e-12);
        EXPECT_NEAR(solid.height, expected.height, 1e-12);
        EXPECT_EQ(solid.slices, expected.slices);
        EXPECT_EQ(solid.stacks, expected.stacks);
    }

    OffscreenControl control{100, 100};
    Plane plane;
    const double radius = 120 * std::numbers::sqrt2;  // of the corners
};

TEST_F(PlaneShapes, CircleOfAPickedSphereHas72Steps) {
    plane.m_bFaceVisible = plane.m_bOutlineVisible = false;
    plane.OnPicked(1);
    const std::vector<Double3> vertices = Drawn().vertices;
    ASSERT_EQ(vertices.size(), 2u + 73u) << "the axis, then the circle";
    for (std::size_t k = 0; k <= 72; ++k) {  // from the sphere at -y towards the normal
        const double angle = 5.0 * static_cast<double>(k) * std::numbers::pi / 180;
        EXPECT_NEAR(vertices[k + 2][0], 0, 1e-9) << k;
        EXPECT_NEAR(vertices[k + 2][1], -120 * std::cos(angle), 1e-9) << k;
        EXPECT_NEAR(vertices[k + 2][2], 120 * std::sin(angle), 1e-9) << k;
    }
}

TEST_F(PlaneShapes, SpheresHaveTenSlicesAndTenStacks) {
    plane.m_bCenterVisible = true;
    const std::vector<Solid> drawn = Drawn().spheres, offered = Offered().spheres;
    EXPECT_EQ(drawn.size(), 3u) << "two handles and the centre";
    EXPECT_EQ(offered.size(), 2u);
    for (const auto& spheres : {drawn, offered})
        for (const Solid& sphere : spheres) ExpectSolid(sphere, {radius / 60, radius / 60, 0, 10, 10});
}

TEST_F(PlaneShapes, ArrowsHaveNineSlicesAndFiveStacksInShaftAndHead) {
    for (const auto& cylinders : {Drawn().cylinders, Offered().cylinders}) {
        ASSERT_EQ(cylinders.size(), 4u);
        for (std::size_t i = 0; i < 4; i += 2) {
            ExpectSolid(cylinders[i], {radius / 90, radius / 90, radius / 30, 9, 5});
            ExpectSolid(cylinders[i + 1], {radius / 60, 0, radius / 30, 9, 5});
        }
    }
}

}  // namespace
