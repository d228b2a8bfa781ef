// The eight views, distinguished by an object with a different length on each axis: by numbers, pixels and the shadow
// camera.
#include <string>
#include <utility>
#include <vector>

#include "view/CameraHelp.h"

namespace {

// ---- the eight views

// 420 x 350 pixels show a scene of size 70 around (10, 15, 30): 5 pixels per unit, the centre at pixel (210, 175).
// The corners are at the origin and on the three axes at 20, 30 and 60.
struct Pixel {
    double x, y;
};
struct ViewPicture {
    int mode;
    Pixel corners[4];  // of the origin, of X, of Y, of Z
    int front[4];      // which corner is seen there: 0 white, 1 red, 2 green, 3 blue
    Float3 wx, wy, wz;
    Float3 shadowEye;  // from the centre; (-sin 20 degrees, 0, cos 20 degrees) rotated by hand
};
void PrintTo(const ViewPicture& view, std::ostream* out) { *out << "mode " << view.mode; }

const ViewPicture kViews[] = {
    {0,
     {{260, 325}, {160, 325}, {260, 325}, {260, 25}},
     {2, 1, 2, 3},
     {-1, 0, 0},
     {0, 0, 1},
     {0, 1, 0},
     {kSin20, kCos20, 0}},
    {1,
     {{160, 325}, {260, 325}, {160, 325}, {160, 25}},
     {0, 1, 0, 3},
     {1, 0, 0},
     {0, 0, 1},
     {0, -1, 0},
     {-kSin20, -kCos20, 0}},
    {2,
     {{135, 325}, {135, 325}, {285, 325}, {135, 25}},
     {1, 1, 2, 3},
     {0, 1, 0},
     {0, 0, 1},
     {1, 0, 0},
     {kCos20, -kSin20, 0}},
    {3,
     {{285, 325}, {285, 325}, {135, 325}, {285, 25}},
     {0, 0, 2, 3},
     {0, -1, 0},
     {0, 0, 1},
     {-1, 0, 0},
     {-kCos20, kSin20, 0}},
    {4,
     {{160, 250}, {260, 250}, {160, 100}, {160, 250}},
     {3, 1, 2, 3},
     {1, 0, 0},
     {0, 1, 0},
     {0, 0, 1},
     {0, kSin20, kCos20}},
    {5,
     {{160, 100}, {260, 100}, {160, 250}, {160, 100}},
     {0, 1, 2, 0},
     {1, 0, 0},
     {0, -1, 0},
     {0, 0, -1},
     {0, kSin20, -kCos20}},
    {6,
     {{192.3223, 218.5660}, {121.6117, 268.5660}, {298.3883, 293.5660}, {192.3223, 6.4340}},
     {0, 1, 2, 3},
     {-kS, kS, 0},
     {-0.5f, -0.5f, kS},
     {0.5f, 0.5f, kS},
     {0.711690f, 0.228001f, 0.664463f}},
    {7,
     {{260, 250}, {160, 250}, {260, 100}, {260, 250}},
     {0, 1, 2, 0},
     {-1, 0, 0},
     {0, 1, 0},
     {0, 0, -1},
     {0, kSin20, -kCos20}},
};
const Float3 kCorners[] = {{0, 0, 0}, {20, 0, 0}, {0, 30, 0}, {0, 0, 60}};

/// A cube of side 2 around the point, with a unit normal on each face.
void AddCube(CKV_ScenePaneCtrl& control, const Float3& center, std::uint32_t color) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const float side : {-1.0f, 1.0f}) {
            const auto first = static_cast<std::int32_t>(vertices.size());
            for (const auto& [u, v] : {std::pair{-1.0f, -1.0f}, {side, -side}, {1.0f, 1.0f}, {-side, side}}) {
                Float3 p{}, n{};
                p[axis] = n[axis] = side;
                p[(axis + 1) % 3] = u;
                p[(axis + 2) % 3] = v;
                p = p + center;
                vertices.push_back({.x = p[0], .y = p[1], .z = p[2], .nx = n[0], .ny = n[1], .nz = n[2]});
            }
            triangles.push_back({{first, first + 1, first + 2}});
            triangles.push_back({{first, first + 2, first + 3}});
        }
    }
    AddMesh(control, std::move(vertices), std::move(triangles)).SetColorRef(color);
}

class EightViews : public testing::TestWithParam<ViewPicture> {
protected:
    EightViews() : c(420, 350) {
        c->m_fSceneSize = 70;
        c->m_fViewCenter = {10, 15, 30};
    }
    OffscreenControl c;
};

TEST_P(EightViews, SetTheAxesAndKeepCentreAndZoom) {
    c->m_fZoom = 1.5f;
    c->SetViewMode(static_cast<std::int16_t>(GetParam().mode));
    ExpectNear(c->m_fAxisX, GetParam().wx, 1e-6, "wx");
    ExpectNear(c->m_fAxisY, GetParam().wy, 1e-6, "wy");
    ExpectNear(c->m_fAxisZ, GetParam().wz, 1e-6, "wz");
    EXPECT_EQ(c->m_fViewCenter, (Float3{10, 15, 30}));
    EXPECT_EQ(c->m_fZoom, 1.5f);
    EXPECT_EQ(c->m_nViewMode, GetParam().mode);
    ExpectOnlyRefresh(*c.window);
    EXPECT_TRUE(c.events.events.empty());
}

TEST_P(EightViews, ProjectEachCornerToItsPixel) {
    c->SetViewMode(static_cast<std::int16_t>(GetParam().mode));
    for (std::size_t i = 0; i < 4; ++i) {
        double x = 0, y = 0;
        c->ProjectPointDouble(kCorners[i][0], kCorners[i][1], kCorners[i][2], &x, &y);
        EXPECT_NEAR(x, GetParam().corners[i].x, 2e-3) << "corner " << i;
        EXPECT_NEAR(y, GetParam().corners[i].y, 2e-3) << "corner " << i;
    }
}

TEST_P(EightViews, DrawTheNearestCornerAtEachPixel) {
    // red in the low byte
    const std::uint32_t colors[] = {0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000};
    for (std::size_t i = 0; i < 4; ++i) AddCube(*c, kCorners[i], colors[i]);
    c->SetBackgroundColors(0, 0);
    c->SetViewMode(static_cast<std::int16_t>(GetParam().mode));
    KV_ScenePane::Picture picture;
    ASSERT_TRUE(c->CapturePicture(&picture));
    ASSERT_EQ(picture.width, 420);
    ASSERT_EQ(picture.height, 350);
    const auto at = [&](double x, double y) {
        return picture.pixels[static_cast<std::size_t>(y) * 420 + static_cast<std::size_t>(x)];
    };
    for (std::size_t i = 0; i < 4; ++i) {
        const std::uint32_t pixel = at(GetParam().corners[i].x + 1, GetParam().corners[i].y + 1);
        const bool red = ((pixel >> 16) & 255) > 100, green = ((pixel >> 8) & 255) > 100, blue = (pixel & 255) > 100;
        const int seen = GetParam().front[i];
        EXPECT_EQ(red, seen == 0 || seen == 1) << "corner " << i << std::hex << " pixel " << pixel;
        EXPECT_EQ(green, seen == 0 || seen == 2) << "corner " << i << std::hex << " pixel " << pixel;
        EXPECT_EQ(blue, seen == 0 || seen == 3) << "corner " << i << std::hex << " pixel " << pixel;
    }
    // a cube is 10 pixels wide and up to 17 in the oblique view: nothing is seen 12 pixels off a corner
    for (const Pixel& corner : GetParam().corners)
        EXPECT_EQ(at(corner.x + 12, corner.y - 5) & 0xFFFFFF, 0u) << corner.x << ", " << corner.y;
}

TEST_P(EightViews, PlaceTheShadowCamera) {
    c->SetViewMode(static_cast<std::int16_t>(GetParam().mode));
    ExpectNear(c->m_fShadowEye - c->m_fViewCenter, GetParam().shadowEye, 1e-5, "shadow eye");
    EXPECT_EQ(c->m_fShadowCenter, c->m_fViewCenter);
    EXPECT_EQ(c->m_fShadowUp, c->m_fAxisY);
}
INSTANTIATE_TEST_SUITE_P(All, EightViews, testing::ValuesIn(kViews),
                         [](const auto& row) { return "Mode" + std::to_string(row.param.mode); });

TEST(SetViewMode, StoresAnUnknownModeWithoutChangingTheAxes) {
    OffscreenControl c;
    EXPECT_EQ(c->m_nViewMode, -1) << "no view before the first call";
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    const ViewFrame before = c->LiveFrame();
    for (const std::int16_t mode : {std::int16_t{9}, std::int16_t{8}, std::int16_t{-1}, std::int16_t{-32768}}) {
        c.window->Forget();
        c->SetViewMode(mode);
        EXPECT_EQ(c->m_nViewMode, mode);
        EXPECT_EQ(c->m_fAxisX, before.wx);
        EXPECT_EQ(c->m_fAxisY, before.wy);
        EXPECT_EQ(c->m_fAxisZ, before.wz);
        ExpectOnlyRefresh(*c.window);
    }
}

}  // namespace
