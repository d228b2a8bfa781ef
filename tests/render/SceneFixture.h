// A control in a window, a camera whose maths the tests can compute, and the frames of the control as pictures.
#pragma once
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "render/MeshTexture.h"
#include "support/ControlFixture.h"
#include "support/LightingModel.h"
#include "support/TestFolder.h"
#include "support/XvfbServer.h"

using lighting::Vec3;

inline constexpr double kTolerance = 2.0;  ///< of 255, for the rounding of the driver

using WindowKind = KV_ScenePane::WindowRequest::Kind;

/// Suffix of the names of parameterised tests.
inline std::string NameOf(WindowKind kind) { return kind == WindowKind::OffScreen ? "OffScreen" : "X11"; }

inline std::vector<WindowKind> WindowKinds() { return {WindowKind::OffScreen, WindowKind::TopLevel}; }

/// Starts what a window of this kind needs: the folder of the log, and an X server for a visible window.
inline WindowKind Prepared(WindowKind kind) {
    TestFolder();
    if (kind == WindowKind::TopLevel) XvfbServer::Shared();
    return kind;
}

/// 0x00BBGGRR.
inline std::uint32_t HostColor(std::uint32_t r, std::uint32_t g, std::uint32_t b) { return r | (g << 8) | (b << 16); }

inline Vertex MakeVertex(const Vec3& p, const Vec3& n, std::uint32_t color = 0) {
    const auto f = [](double value) { return static_cast<float>(value); };
    return {f(p[0]), f(p[1]), f(p[2]), f(n[0]), f(n[1]), f(n[2]), color, 0};
}

/// Two triangles perpendicular to the z axis, the front to +z: (lower left, lower right, upper right), (lower left,
/// upper right, upper left).
struct Square {
    Vec3 center{0, 0, 0};
    double half = 2.0;
    Vec3 normal{0, 0, 1};
    std::uint32_t color = 0;  ///< of the vertices, 0xAARRGGBB
    bool turned = false;      ///< true shows its back to +z

    [[nodiscard]] std::vector<Vertex> Vertices() const {
        std::vector<Vertex> vertices;
        for (const auto& [x, y] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
            vertices.push_back(MakeVertex(lighting::operator+(center, Vec3{x * half, y * half, 0}), normal, color));
        return vertices;
    }
    [[nodiscard]] std::vector<Triangle> Triangles() const {
        if (turned) return {{{0, 2, 1}}, {{0, 3, 2}}};
        return {{{0, 1, 2}}, {{0, 2, 3}}};
    }
    /// The triangle under a point of the square.
    [[nodiscard]] std::array<Vec3, 3> CornersAround(const Vec3& p) const {
        const auto corner = [&](double x, double y) {
            return lighting::operator+(center, Vec3{x * half, y * half, 0});
        };
        const bool lowerRight = p[0] - center[0] > p[1] - center[1];
        return {corner(-1, -1), lowerRight ? corner(1, -1) : corner(-1, 1), corner(1, 1)};
    }
    /// What the camera sees of it at a pixel.
    [[nodiscard]] lighting::Surface At(const lighting::Camera& camera, int x, int y, const Vec3& tint) const {
        lighting::Surface surface;
        surface.position = camera.PointAt(x, y, center, {0, 0, 1});
        surface.normal = normal;
        surface.tint = tint;
        surface.front = !turned;
        surface.corners = CornersAround(surface.position);
        return surface;
    }
    [[nodiscard]] std::shared_ptr<Mesh> ToMesh(bool hasColors) const {
        return std::make_shared<Mesh>(Vertices(), Triangles(), std::wstring(), hasColors);
    }
};

class SceneTest : public testing::Test {
protected:
    explicit SceneTest(WindowKind kind = WindowKind::OffScreen, int width = 320, int height = 240)
        : pane(Prepared(kind), width, height) {
        Look(width, height);
    }

    /// The camera looks down the z axis at the origin; one scene size of 10 units fills the shorter side of the window.
    void Look(int width, int height, double zoom = 1.0) {
        camera = {};
        camera.width = width;
        camera.height = height;
        camera.zoom = zoom;
        pane->m_fAxisX = {1, 0, 0};
        pane->m_fAxisY = {0, 1, 0};
        pane->m_fAxisZ = {0, 0, 1};
        pane->m_fViewCenter = {0, 0, 0};
        pane->m_fSceneSize = static_cast<float>(camera.sceneSize);
        pane->m_fZoom = static_cast<float>(zoom);
        pane->SetupViewMatrices();
    }

    /// Resizes the window and processes its events: the next frame has the new size.
    void Resize(int width, int height) {
        pane.window->Resize(width, height);
        pane->ProcessEvents();
    }

    Mesh& Add(const Square& square, const Vec3& objectColor = {1, 1, 1}, bool hasColors = false) {
        auto mesh = square.ToMesh(hasColors);
        for (std::size_t i = 0; i < 3; ++i) mesh->m_fColor[i] = static_cast<float>(objectColor[i]);
        pane->m_vpMeshes.push_back(mesh);
        return *mesh;
    }

    /// The texture is one texel of that colour; every texture coordinate is (0, 0).
    void AddPlainTexture(Mesh& mesh, const std::array<std::uint8_t, 4>& rgba = {255, 255, 255, 255}) {
        mesh.m_vTexCoords.assign(3 * mesh.GetTriangleCount(), TexCoord{});
        ASSERT_TRUE(pane->MakeContextCurrent());
        CreateTexture(mesh, 1, 1, rgba.data(), {});
    }

    /// Draws a frame and keeps it as the picture. The only OpenGL error that it may raise is the one of a shadow pass.
    void Frame() {
        ASSERT_TRUE(pane->CapturePicture(&picture));
        ASSERT_TRUE(pane->MakeContextCurrent());
        const bool shadowPass = pane->m_bShadowEnabled != 0 || pane->m_nDrawMode == KV_ScenePane::DrawModeShadowMap;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(shadowPass ? GL_STACK_UNDERFLOW : GL_NO_ERROR));
        ExpectDefaultStacksAndBindings();
    }
    /// No further OpenGL error, all stacks empty, no program, and the framebuffer of frames bound.
    void ExpectDefaultStacksAndBindings() {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        EXPECT_EQ(Get(GL_ATTRIB_STACK_DEPTH), 0);
        EXPECT_EQ(Get(GL_MODELVIEW_STACK_DEPTH), 1);
        EXPECT_EQ(Get(GL_PROJECTION_STACK_DEPTH), 1);
        EXPECT_EQ(Get(GL_CURRENT_PROGRAM), 0);
        EXPECT_NE(pane->m_frameTarget.Name(), 0u);
        EXPECT_EQ(Get(GL_DRAW_FRAMEBUFFER_BINDING), static_cast<GLint>(pane->m_frameTarget.Name()));
        EXPECT_EQ(Get(GL_READ_FRAMEBUFFER_BINDING), static_cast<GLint>(pane->m_frameTarget.ReadName()));
    }
    /// The first value of an OpenGL state.
    static GLint Get(GLenum name) {
        GLint values[4] = {-1, -1, -1, -1};
        glGetIntegerv(name, values);
        return values[0];
    }

    [[nodiscard]] Vec3 ColorAt(int x, int y) const {
        const std::uint32_t p = picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
        return {(p >> 16 & 0xFF) / 255.0, (p >> 8 & 0xFF) / 255.0, (p & 0xFF) / 255.0};
    }
    /// Largest difference of a channel, in steps of 1/255.
    [[nodiscard]] double DistanceAt(int x, int y, const Vec3& color) const {
        const Vec3 d = lighting::operator-(ColorAt(x, y), color);
        return 255.0 * std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])});
    }
    void ExpectPixel(int x, int y, const Vec3& color, double tolerance = kTolerance) {
        const Vec3 found = ColorAt(x, y);
        EXPECT_LE(DistanceAt(x, y, color), tolerance)
            << "pixel (" << x << ", " << y << ") is " << 255 * found[0] << " " << 255 * found[1] << " "
            << 255 * found[2] << ", expected " << 255 * color[0] << " " << 255 * color[1] << " " << 255 * color[2];
    }
    void ExpectBackground(int x, int y) { ExpectPixel(x, y, kBackground, 1.0); }
    /// Pixels in the rectangle that are not background; right and bottom are exclusive.
    [[nodiscard]] int DrawnPixelsIn(int left, int top, int right, int bottom) const {
        int count = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) count += DistanceAt(x, y, kBackground) > 1.0 ? 1 : 0;
        return count;
    }
    [[nodiscard]] int PixelsThatAreNotBackground() const { return DrawnPixelsIn(0, 0, picture.width, picture.height); }

    /// Writes the last frame of a failed test to /tmp, as an image to look at.
    void TearDown() override {
        if (!HasFailure() || picture.pixels.empty()) return;
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(test.test_suite_name()) + "." + test.name() + ".ppm";
        for (char& c : name) c = c == '/' ? '_' : c;
        std::ofstream file("/tmp/" + name, std::ios::binary);
        file << "P6\n" << picture.width << " " << picture.height << "\n255\n";
        for (const std::uint32_t p : picture.pixels)
            file.put(static_cast<char>(p >> 16)).put(static_cast<char>(p >> 8)).put(static_cast<char>(p));
        std::printf("The last frame is in /tmp/%s\n", name.c_str());
    }

    static constexpr Vec3 kBackground{0x19 / 255.0, 0x19 / 255.0, 0x32 / 255.0};

    TestControl pane;
    lighting::Camera camera;
    KV_ScenePane::Picture picture;
};

/// Base of tests that run off-screen and in an X11 window.
class SceneInEveryWindow : public SceneTest, public testing::WithParamInterface<WindowKind> {
protected:
    SceneInEveryWindow() : SceneTest(GetParam()) {}
};

/// A free point set of one point, with the buffers that an import makes. The context is current.
inline FreePointSet MakePoint(std::int32_t id, const Vec3& at, const Vec3& color) {
    FreePointSet points;
    points.id = id;
    points.numPoints = 1;
    glGenVertexArrays(1, &points.vertexArray);
    glBindVertexArray(points.vertexArray);
    const auto attribute = [](GLuint index, GLuint* buffer, const Vec3& value) {
        const GLfloat data[3] = {static_cast<GLfloat>(value[0]), static_cast<GLfloat>(value[1]),
                                 static_cast<GLfloat>(value[2])};
        glGenBuffers(1, buffer);
        glBindBuffer(GL_ARRAY_BUFFER, *buffer);
        glBufferData(GL_ARRAY_BUFFER, sizeof(data), data, GL_STATIC_DRAW);
        glVertexAttribPointer(index, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
        glEnableVertexAttribArray(index);
    };
    attribute(0, &points.positionBuffer, at);
    attribute(1, &points.colorBuffer, color);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return points;
}
