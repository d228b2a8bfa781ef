// The matrices of the camera and the conversions by them, against a computation in double precision that uses neither
// OpenGL nor the code under test.
#include <GL/glew.h>

#include <array>
#include <cmath>
#include <numbers>
#include <tuple>

#include "platform/CurrentContext.h"
#include "view/CameraHelp.h"

namespace {

using Matrix = std::array<double, 16>;  // column-major, as OpenGL returns it

/// What the camera of the control should be, from its public state.
struct ReferenceCamera {
    Double3 wx, wy, wz, center;
    double zoom, sceneSize, width, height;

    explicit ReferenceCamera(const CKV_ScenePaneCtrl& control)
        : wx(ToDouble3(control.m_fAxisX)),
          wy(ToDouble3(control.m_fAxisY)),
          wz(ToDouble3(control.m_fAxisZ)),
          center(ToDouble3(control.m_fViewCenter)),
          zoom(control.m_fZoom),
          sceneSize(control.m_fSceneSize),
          width(control.m_nWidth),
          height(control.m_nHeight) {}

    /// The shorter side of the window shows sceneSize * zoom.
    [[nodiscard]] double PixelsPerUnit() const { return std::min(width, height) / (sceneSize * zoom); }
    [[nodiscard]] double Depth() const { return 4 * sceneSize * std::max(zoom, 1.0); }

    [[nodiscard]] Double3 Project(const Double3& p) const {
        const Double3 d = p - center;
        return {width / 2 + PixelsPerUnit() * Dot(wx, d), height / 2 - PixelsPerUnit() * Dot(wy, d),
                0.5 + (2 * sceneSize - Dot(wz, d)) / (2 * Depth())};
    }
    [[nodiscard]] Matrix ModelView() const {
        Matrix m{};
        for (std::size_t i = 0; i < 3; ++i) {
            m[4 * i] = wx[i];
            m[4 * i + 1] = wy[i];
            m[4 * i + 2] = wz[i];
        }
        m[12] = -Dot(wx, center);
        m[13] = -Dot(wy, center);
        m[14] = -Dot(wz, center) - 2 * sceneSize;
        m[15] = 1;
        return m;
    }
    [[nodiscard]] Matrix Projection() const {
        Matrix m{};
        m[0] = 2 * PixelsPerUnit() / width;
        m[5] = 2 * PixelsPerUnit() / height;
        m[10] = -1 / Depth();
        m[15] = 1;
        return m;
    }
};

Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix m{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t k = 0; k < 4; ++k) m[4 * column + row] += a[4 * k + row] * b[4 * column + k];
    return m;
}

Matrix Current(GLenum which) {
    Matrix m{};
    glGetDoublev(which, m.data());
    return m;
}

void ExpectSame(const Matrix& got, const Matrix& expected, double tolerance) {
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(got[i], expected[i], tolerance) << "element " << i;
}

/// A tilted orthonormal frame: the axes of the rotation by 40 degrees about (1, 2, 3) / sqrt(14), computed by
/// Rodrigues' formula.
ViewFrame TiltedFrame() {
    const double angle = 40 * std::numbers::pi / 180;
    const auto rotated = [&](const Double3& v) { return RoundToFloat3(RotateByRodrigues({1, 2, 3}, angle, v)); };
    return {.wx = rotated({1, 0, 0}), .wy = rotated({0, 1, 0}), .wz = rotated({0, 0, 1}), .center = {12, -7, 3}};
}

class Conversions : public testing::TestWithParam<WindowSize> {
protected:
    Conversions() : c(GetParam().width, GetParam().height) {
        const ViewFrame frame = TiltedFrame();
        c->m_fAxisX = frame.wx;
        c->m_fAxisY = frame.wy;
        c->m_fAxisZ = frame.wz;
        c->m_fViewCenter = frame.center;
        c->m_fSceneSize = 150;
        c->m_fZoom = 0.8f;
        c->SetupViewMatrices();
    }
    OffscreenControl c;
};
const Float3 kPoints[] = {{12, -7, 3}, {0, 0, 0}, {-20.5f, 14, 33}, {41, 17.25f, -28}, {5.5f, -3.25f, 1.125f}};

TEST_P(Conversions, MatricesFollowFromTheCamera) {
    for (const float zoom : {0.8f, 1.0f, 2.5f}) {
        c->m_fZoom = zoom;
        c->SetupViewMatrices();
        const ReferenceCamera camera(*c);
        ExpectSame(Current(GL_PROJECTION_MATRIX), camera.Projection(), 1e-8);
        ExpectSame(Current(GL_MODELVIEW_MATRIX), camera.ModelView(), 1e-4);
    }
}

TEST_P(Conversions, ProjectPointDoubleDoesNotRound) {
    const ReferenceCamera camera(*c);
    for (const Float3& point : kPoints) {
        double x = 0, y = 0;
        c->ProjectPointDouble(point[0], point[1], point[2], &x, &y);
        const Double3 expected = camera.Project(ToDouble3(point));
        EXPECT_NEAR(x, expected[0], 1e-3);
        EXPECT_NEAR(y, expected[1], 1e-3);
    }
}

TEST_P(Conversions, ProjectPointTruncates) {
    const ReferenceCamera camera(*c);
    int checked = 0;
    for (const Float3& point : kPoints) {
        const Double3 expected = camera.Project(ToDouble3(point));
        // near a whole number the rounding of floats decides on which side the result is
        if (std::abs(expected[0] - std::round(expected[0])) < 0.01) continue;
        if (std::abs(expected[1] - std::round(expected[1])) < 0.01) continue;
        std::int32_t x = 0, y = 0;
        c->ProjectPoint(point[0], point[1], point[2], &x, &y);
        EXPECT_EQ(x, static_cast<std::int32_t>(expected[0]));
        EXPECT_EQ(y, static_cast<std::int32_t>(expected[1]));
        std::int32_t depthX = 0, depthY = 0;
        float depth = 0;
        c->ProjectPointWithDepth(point[0], point[1], point[2], &depthX, &depthY, &depth);
        EXPECT_EQ(depthX, x);
        EXPECT_EQ(depthY, y);
        EXPECT_NEAR(depth, expected[2], 1e-6);
        ++checked;
    }
    EXPECT_GE(checked, 3);
}

TEST_P(Conversions, UnprojectPointInvertsTheProjection) {
    const ReferenceCamera camera(*c);
    for (const auto& [x, y, depth] : {std::tuple{0, 0, 0.25f}, {17, 301, 0.75f}, {250, 40, 0.1f}}) {
        float p[3] = {};
        ASSERT_EQ(c->UnprojectPoint(x, y, depth, p, p + 1, p + 2), 1);
        const Double3 back = camera.Project({p[0], p[1], p[2]});
        EXPECT_NEAR(back[0], x, 5e-3);
        EXPECT_NEAR(back[1], y, 5e-3);
        EXPECT_NEAR(back[2], depth, 1e-6);
    }
}
INSTANTIATE_TEST_SUITE_P(Shapes, Conversions,
                         testing::Values(WindowSize{640, 480}, WindowSize{333, 777}, WindowSize{400, 400}), NameOfSize);

TEST(ProjectPoint, TruncatesTowardsZeroAlsoOutsideTheWindow) {
    OffscreenControl c(400, 400);
    c->m_fSceneSize = 400;  // one unit per pixel
    c->SetupViewMatrices();
    std::int32_t x = 9, y = 9;
    c->ProjectPoint(-200.5f, 200.5f, 0, &x, &y);  // pixel (-0.5, -0.5)
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    c->ProjectPoint(-203.75f, 203.75f, 0, &x, &y);
    EXPECT_EQ(x, -3);
    EXPECT_EQ(y, -3);
}

TEST(ProjectPoint, CountsWindowYDownward) {
    OffscreenControl c(400, 400);
    c->m_fSceneSize = 400;
    c->SetupViewMatrices();
    double x = 0, y = 0;
    c->ProjectPointDouble(0, 150, 0, &x, &y);
    EXPECT_NEAR(x, 200, 1e-4);
    EXPECT_NEAR(y, 50, 1e-4);
    float p[3] = {};
    ASSERT_EQ(c->UnprojectPoint(200, 50, 0.75f, p, p + 1, p + 2), 1);
    EXPECT_NEAR(p[0], 0, 1e-3);
    EXPECT_NEAR(p[1], 150, 1e-3);
    EXPECT_NEAR(p[2], 0, 1e-3);
}

TEST(ProjectPointWithDepth, HasTheCentreAtThreeQuartersAndClipsNothingInFrontOfTheEye) {
    OffscreenControl c;
    std::int32_t x = 0, y = 0;
    float depth = 0;
    c->ProjectPointWithDepth(0, 0, 0, &x, &y, &depth);
    EXPECT_NEAR(depth, 0.75, 1e-6);
    c->ProjectPointWithDepth(0, 0, 5999, &x, &y, &depth);  // four scene sizes in front of the eye
    EXPECT_GT(depth, 0.0f);
    EXPECT_LT(depth, 0.001f);
}

TEST(UnprojectPoint, MakesTheContextCurrentFirst) {
    OffscreenControl first(400, 400), second(100, 100);  // the second one's context is current now
    float p[3] = {};
    ASSERT_EQ(first->UnprojectPoint(200, 200, 0.75f, p, p + 1, p + 2), 1);
    EXPECT_NEAR(p[0], 0, 1e-3);
    EXPECT_NEAR(p[1], 0, 1e-3);
    ReleaseCurrentEgl();
    ASSERT_EQ(first->UnprojectPoint(0, 200, 0.75f, p, p + 1, p + 2), 1);
    EXPECT_NEAR(p[0], -500, 1e-2);
}

TEST(UnprojectPoint, FailsForASingularMatrix) {
    OffscreenControl c;
    glMatrixMode(GL_PROJECTION);
    glScaled(0, 1, 1);
    float p[3] = {7, 8, 9};
    EXPECT_EQ(c->UnprojectPoint(10, 10, 0.5f, p, p + 1, p + 2), 0);
    EXPECT_EQ(p[0], 7);
    EXPECT_EQ(p[1], 8);
    EXPECT_EQ(p[2], 9);
}

TEST(UnprojectPoint, FailsWithoutAContext) {
    NoPictureControl c;
    float p[3] = {7, 8, 9};
    EXPECT_EQ(c->UnprojectPoint(10, 10, 0.5f, p, p + 1, p + 2), 0);
    EXPECT_EQ(p[0], 7);
}

// ---- set-up

TEST(SetupViewMatrices, StoresItsFrameAsTheSavedView) {
    OffscreenControl c;
    const ViewFrame frame = TiltedFrame();
    c->m_fAxisX = frame.wx;
    c->m_fAxisY = frame.wy;
    c->m_fAxisZ = frame.wz;
    c->m_fViewCenter = frame.center;
    c->SetupViewMatrices();
    EXPECT_EQ(c->m_savedView.wx, frame.wx);
    EXPECT_EQ(c->m_savedView.wy, frame.wy);
    EXPECT_EQ(c->m_savedView.wz, frame.wz);
    EXPECT_EQ(c->m_savedView.center, frame.center);
}

TEST(SetupViewMatrices, SnapsAViewAlongYWithinTheThreshold) {
    OffscreenControl c;
    c->SetViewMode(KV_ScenePane::ViewFromPlusYZUp);
    c->m_fAxisZ = {0.99e-5f, 1, 0};
    c->m_fAxisX = {-1 + 0.9e-5f, 0.99e-5f, 0};
    c->SetupViewMatrices();
    EXPECT_EQ(c->m_fAxisZ, (Float3{0, 1, 0}));
    EXPECT_EQ(c->m_fAxisX, (Float3{-1, 0, 0}));
    EXPECT_EQ(c->m_fAxisY, (Float3{0, 0, 1}));
    EXPECT_EQ(c->m_savedView.wz, (Float3{0, 1, 0})) << "the snap comes first";
    c->m_fAxisZ = {1.01e-5f, 1, 0};
    c->SetupViewMatrices();
    EXPECT_EQ(c->m_fAxisZ, (Float3{1.01e-5f, 1, 0}));
}

TEST(SetupViewMatrices, FixesTheHeadLightToTheScreen) {
    OffscreenControl c;
    for (const std::int16_t mode :
         {KV_ScenePane::ViewFromPlusZYUp, KV_ScenePane::ViewFromPlusXZUp, KV_ScenePane::ViewObliqueZUp}) {
        c->SetViewMode(mode);
        c->SetupViewMatrices();
        float light[4] = {};
        glGetLightfv(GL_LIGHT0, GL_POSITION, light);  // in the coordinates of the eye
        EXPECT_NEAR(light[0], 0, 1) << "mode " << mode;
        EXPECT_NEAR(light[1], -50000, 1) << "mode " << mode;
        EXPECT_NEAR(light[2], 1000000, 1) << "mode " << mode;
        EXPECT_EQ(light[3], 0) << "mode " << mode;
    }
}

TEST(SetupViewMatrices, SetsOnlyTheMatricesOfItsOwnControl) {
    OffscreenControl first, second;
    second->SetupViewMatrices();
    const Matrix secondProjection = Current(GL_PROJECTION_MATRIX);
    first->m_fSceneSize = 10;
    first->SetupViewMatrices();
    EXPECT_NEAR(Current(GL_PROJECTION_MATRIX)[5], 1 / 5.0, 1e-7);
    ASSERT_TRUE(second->MakeContextCurrent());
    EXPECT_EQ(Current(GL_PROJECTION_MATRIX), secondProjection);
}

// ---- the matrix of another frame

TEST(ComputeFrameMatrix, IsTheProductForThatFrameWithTheLiveZoom) {
    OffscreenControl c(333, 777);
    c->m_fSceneSize = 150;
    c->m_fZoom = 2.5f;
    c->SetupViewMatrices();
    const ViewFrame frame = TiltedFrame();
    float matrix[16] = {};
    c->ComputeFrameMatrix(frame, matrix);
    ReferenceCamera camera(*c);
    camera.wx = ToDouble3(frame.wx);
    camera.wy = ToDouble3(frame.wy);
    camera.wz = ToDouble3(frame.wz);
    camera.center = ToDouble3(frame.center);
    const Matrix expected = Product(camera.Projection(), camera.ModelView());
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(matrix[i], expected[i], 1e-6) << "element " << i;
}

TEST(ComputeFrameMatrix, RestoresTheStateOfOpenGl) {
    OffscreenControl c;
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    const Matrix modelView = Current(GL_MODELVIEW_MATRIX), projection = Current(GL_PROJECTION_MATRIX);
    const ViewFrame saved = c->m_savedView;
    GLint depthBefore = 0, depthAfter = 0, mode = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depthBefore);
    glMatrixMode(GL_TEXTURE);
    float matrix[16] = {};
    c.window->Forget();
    c->ComputeFrameMatrix(TiltedFrame(), matrix);
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depthAfter);
    EXPECT_EQ(mode, GL_TEXTURE);
    EXPECT_EQ(depthAfter, depthBefore);
    EXPECT_EQ(Current(GL_MODELVIEW_MATRIX), modelView);
    EXPECT_EQ(Current(GL_PROJECTION_MATRIX), projection);
    EXPECT_EQ(c->m_savedView.wz, saved.wz);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    ExpectNoRequest(*c.window);
    glMatrixMode(GL_MODELVIEW);
}

}  // namespace
